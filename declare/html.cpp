// SPDX-License-Identifier: BSD-3-Clause
#include "declare/html.h"

namespace declare {

Html::Html(std::string_view text)
{
    for (const char c : text)
        switch (c) {
        case '&':
            html += "&amp;";
            break;
        case '<':
            html += "&lt;";
            break;
        case '>':
            html += "&gt;";
            break;
        case '"':
            html += "&quot;";
            break;
        default:
            html += c;
        }
}

Html Html::filled(std::string_view pattern, std::span<const Html> values)
{
    Html all;
    for (const Html& value : values) {
        const std::size_t gap = pattern.find("{}");
        all.html.append(pattern.substr(0, gap)).append(value.html);
        pattern.remove_prefix(gap + 2);
    }
    all.html += pattern;
    return all;
}

} // namespace declare
