// SPDX-License-Identifier: BSD-3-Clause
#include "tests/harness/folder.h"

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <stdexcept>
#include <stdlib.h>

namespace test {

namespace fs = std::filesystem;

Folder::Folder()
{
    std::string pattern = (fs::temp_directory_path() / "vhl-test-XXXXXX").string();
    if (!::mkdtemp(pattern.data()))
        throw std::runtime_error("no temporary folder");
    path_ = pattern;
}

Folder::~Folder()
{
    std::error_code ignored;
    fs::remove_all(path_, ignored);
}

std::string Folder::path(const std::string& name) const { return name.empty() ? path_ : path_ + '/' + name; }

std::string Folder::write(const std::string& name, const std::string& text) const
{
    const std::string file = path(name);
    fs::create_directories(fs::path(file).parent_path());
    std::ofstream(file, std::ios::binary) << text;
    return file;
}

std::string Folder::read(const std::string& name) const
{
    std::ifstream file(path(name), std::ios::binary);
    return {std::istreambuf_iterator<char>(file), {}};
}

bool Folder::holds(const std::string& name) const { return fs::exists(path(name)); }

std::vector<std::string> Folder::names() const
{
    std::vector<std::string> result;
    for (const fs::directory_entry& entry : fs::directory_iterator(path_))
        result.push_back(entry.path().filename().string());
    std::sort(result.begin(), result.end());
    return result;
}

} // namespace test
