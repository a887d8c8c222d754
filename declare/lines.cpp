// SPDX-License-Identifier: BSD-3-Clause
#include "declare/lines.h"

#include <algorithm>

namespace declare {

Lines linesOf(std::string_view text)
{
    Lines lines;
    while (!text.empty()) {
        const std::size_t end = std::min(text.find('\n'), text.size());
        lines.emplace_back(text.substr(0, end));
        text.remove_prefix(std::min(end + 1, text.size()));
    }
    return lines;
}

Lines strings(std::string_view line)
{
    Lines found;
    for (std::size_t at = line.find_first_of("\"#"); at < line.size() && line[at] == '"';) {
        const std::size_t end = std::min(line.find('"', at + 1), line.size());
        found.emplace_back(line.substr(at + 1, end - at - 1));
        at = line.find_first_of("\"#", std::min(end + 1, line.size()));
    }
    return found;
}

} // namespace declare
