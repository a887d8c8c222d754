// SPDX-License-Identifier: BSD-3-Clause
// Files as a whole; what fails is thrown, with the file's name.
#pragma once

#include <filesystem>
#include <fstream>
#include <iterator>
#include <stdexcept>
#include <string>

namespace declare {

inline std::string readFile(const std::filesystem::path& file)
{
    std::ifstream stream(file, std::ios::binary);
    const std::string text{std::istreambuf_iterator<char>(stream), {}};
    if (!stream)
        throw std::runtime_error("cannot read " + file.string());
    return text;
}

/// Makes the folders above it, too.
inline void writeFile(const std::filesystem::path& file, const std::string& text)
{
    std::filesystem::create_directories(file.parent_path());
    std::ofstream stream(file, std::ios::binary);
    stream << text;
    stream.close();
    if (!stream)
        throw std::runtime_error("cannot write " + file.string());
}

} // namespace declare
