// SPDX-License-Identifier: BSD-3-Clause
// The reference as HTML pages.
#pragma once

#include "declare/catalog.h"
#include "declare/scene.h"

#include <filesystem>
#include <map>
#include <set>
#include <string>

namespace declare {

/// A scene as it was written, and as it is handed out.
struct Example {
    std::string text;
    WholeScene whole{};
};

/// What is shown besides the descriptions, by shader and recipe.
struct Exhibits {
    std::set<std::string, std::less<>> pictures;
    std::map<std::string, Example, std::less<>> scenes;
};

std::string startPage(const Catalog& catalog, const Exhibits& exhibits);
std::string groupPage(const Catalog& catalog, const Exhibits& exhibits, const Group& group);
std::string shaderPage(const Catalog& catalog, const Exhibits& exhibits, const Shader& shader);
std::string recipesPage(const Catalog& catalog, const Exhibits& exhibits);
std::string recipePage(const Catalog& catalog, const Exhibits& exhibits, const RecipeGroup& group,
                       const Recipe& recipe);

/// What the pages search in, as a script, for pages that are opened from a disk may load nothing else.
std::string searchIndex(const Catalog& catalog);

/// What a scene's first comment says is seen; empty without one.
std::string captionOf(std::string_view scene);

/// Writes all of it to a folder, with the pictures and scenes that the sources have.
void writePages(const Catalog& catalog, const std::filesystem::path& folder,
                const std::filesystem::path& source);

} // namespace declare
