// SPDX-License-Identifier: BSD-3-Clause
// HTML as a type of its own: text gets into it escaped, or not at all.
#pragma once

#include <array>
#include <cstddef>
#include <span>
#include <string>
#include <string_view>

namespace declare {

/// A piece of a page.
class Html {
public:
    Html() = default;
    Html(std::string_view text); ///< escaped
    Html(const std::string& text) : Html(std::string_view(text)) {}
    Html(const char* text) : Html(std::string_view(text)) {}
    Html(std::size_t number) : Html(std::to_string(number)) {}

    Html& operator+=(const Html& more)
    {
        html += more.html;
        return *this;
    }
    friend Html operator+(Html left, const Html& right) { return left += right; }
    bool empty() const { return html.empty(); }
    const std::string& str() const { return html; }

    /// The pattern with its {} replaced by the values, one after the other.
    static Html filled(std::string_view pattern, std::span<const Html> values);

private:
    std::string html;
};

/// HTML with a {} for each of `Count` values: always a literal of the source, its gaps counted by the
/// compiler.
template <std::size_t Count>
struct Pattern {
    consteval Pattern(const char* literal) : text(literal)
    {
        std::size_t gaps = 0;
        for (std::size_t at = text.find("{}"); at != text.npos; at = text.find("{}", at + 2))
            ++gaps;
        if (gaps != Count)
            throw "as many values as there are gaps";
    }
    std::string_view text;
};

template <class... Values>
Html html(Pattern<sizeof...(Values)> pattern, const Values&... values)
{
    return Html::filled(pattern.text, std::array<Html, sizeof...(Values)>{Html(values)...});
}

} // namespace declare
