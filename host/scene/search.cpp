// SPDX-License-Identifier: BSD-3-Clause
#include "host/scene/search.h"

#include "host/report/error.h"

#include <algorithm>
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

std::vector<std::string> splitAt(std::string_view text, std::string_view separators)
{
    std::vector<std::string> parts;
    while (!text.empty()) {
        const std::size_t end = std::min(text.find_first_of(separators), text.size());
        if (end > 0)
            parts.emplace_back(text.substr(0, end));
        text.remove_prefix(std::min(end + 1, text.size()));
    }
    return parts;
}

std::string lookedIn(const std::string& name, const std::string& besideFile,
                     const std::vector<std::string>& path)
{
    if (fs::path(name).is_absolute())
        return {};
    std::vector<std::string> folders = {"."};
    const auto add = [&folders](const std::string& folder) {
        if (!folder.empty() && std::find(folders.begin(), folders.end(), folder) == folders.end())
            folders.push_back(folder);
    };
    add(fs::path(besideFile).parent_path().string());
    std::for_each(path.begin(), path.end(), add);
    std::string text = "; looked in ";
    for (std::size_t i = 0; i < folders.size(); ++i)
        text += (i == 0 ? "" : ", ") + inQuotes(folders[i]);
    return text;
}

} // namespace host
