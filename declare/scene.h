// SPDX-License-Identifier: BSD-3-Clause
// Scenes that stand alone: with the text of what they include, as far as they use it.
#pragma once

#include <filesystem>
#include <set>
#include <string>
#include <string_view>

namespace declare {

/// A scene and what has to lie beside it.
struct WholeScene {
    std::string text;
    std::set<std::filesystem::path> textures; ///< where they are; the text has their file names alone
};

/// The scene of a file. What it includes in quotes takes the place of the line, without its licence and,
/// with $ifndef, once; what is included in angle brackets is installed, and stays.
WholeScene wholeScene(const std::filesystem::path& file);

/// Scene text without the shaders, textures and declarations at the beginning of a line that nothing names,
/// and without comments, after the first, that are left with nothing below them.
std::string used(std::string_view text);

} // namespace declare
