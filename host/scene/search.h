// SPDX-License-Identifier: BSD-3-Clause
// Where files are looked for.
#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace host {

/// Where files are looked for: as given (relative to the working directory), then beside the file that names
/// them, then along these lists in order.
struct SearchPaths {
    std::vector<std::string> include;
    std::vector<std::string> library;
    std::vector<std::string> texture;
};

/// The file to open for a name, or an empty string when it is nowhere. Folders are not files.
std::string findFile(const std::string& name, const std::string& besideFile,
                     const std::vector<std::string>& path);

/// The parts of a list between any of the separators; empty ones count for nothing.
std::vector<std::string> splitAt(std::string_view text, std::string_view separators);

/// Where findFile looks for a name: `; looked in ".", "a"`, for messages about one that is nowhere.
std::string lookedIn(const std::string& name, const std::string& besideFile,
                     const std::vector<std::string>& path);

} // namespace host
