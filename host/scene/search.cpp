// SPDX-License-Identifier: BSD-3-Clause
#include "host/scene/search.h"

#include <filesystem>

namespace host {

namespace fs = std::filesystem;

namespace {

// Pipes and devices count: scenes may come through them.
bool isFile(const fs::path& path)
{
    std::error_code ignored;
    return fs::exists(path, ignored) && !fs::is_directory(path, ignored);
}

} // namespace

std::string findFile(const std::string& name, const std::string& besideFile,
                     const std::vector<std::string>& path)
{
    const fs::path wanted(name);
    if (isFile(wanted))
        return name;
    if (wanted.is_absolute())
        return {};
    const fs::path beside = fs::path(besideFile).parent_path() / wanted;
    if (isFile(beside))
        return beside.string();
    for (const std::string& folder : path) {
        const fs::path candidate = fs::path(folder) / wanted;
        if (isFile(candidate))
            return candidate.string();
    }
    return {};
}

} // namespace host
