// SPDX-License-Identifier: BSD-3-Clause
#include "declare/prose.h"

#include <algorithm>

namespace declare {

static bool isUpper(char c) { return c >= 'A' && c <= 'Z'; }
static bool isDigit(char c) { return c >= '0' && c <= '9'; }
static bool isWordPart(char c) { return (c >= 'a' && c <= 'z') || isUpper(c) || isDigit(c) || c == '_'; }

/// Takes `count` characters from the front.
static std::string_view take(std::string_view& text, std::size_t count)
{
    const std::string_view front = text.substr(0, count);
    text.remove_prefix(front.size());
    return front;
}

/// Takes everything before the mark, and the mark.
static std::string_view takeUntil(std::string_view& text, std::string_view mark)
{
    const std::string_view front = take(text, text.find(mark));
    text.remove_prefix(std::min(text.size(), mark.size()));
    return front;
}

template <class Predicate>
static std::string_view takeWhile(std::string_view& text, Predicate belongs)
{
    return take(text, std::size_t(std::ranges::find_if_not(text, belongs) - text.begin()));
}

Html breakable(std::string_view name)
{
    Html all;
    while (!name.empty()) {
        const bool wordFollows = isUpper(name.front()) || name.front() == '_';
        if (wordFollows && !all.empty())
            all += html("<wbr>");
        const std::string_view first = take(name, 1);
        const std::string_view rest = takeWhile(name, [](char c) { return !isUpper(c) && c != '_'; });
        all += html("{}{}", first, rest);
    }
    return all;
}

Html link(std::string_view name)
{
    return html(R"(<a href="{}.html"><code>{}</code></a>)", name, breakable(name));
}

static bool isParameter(const Subject& subject, std::string_view word, Names names)
{
    return (names == Names::all ||
            std::ranges::any_of(word, [](char c) { return isUpper(c) || isDigit(c); })) &&
           std::ranges::find(subject.parameters, word, &Parameter::name) != subject.parameters.end();
}

static Html word(const Catalog& catalog, const Subject& subject, std::string_view text, Names names)
{
    const bool isSubject = text == subject.name;
    if (catalog.knows(text) && !isSubject)
        return link(text);
    return isSubject || isParameter(subject, text, names) ? html("<code>{}</code>", text) : Html(text);
}

Html line(const Catalog& catalog, const Subject& subject, std::string_view text, Names names)
{
    Html all;
    while (!text.empty())
        if (isWordPart(text.front()))
            all += word(catalog, subject, takeWhile(text, isWordPart), names);
        else if (const std::string_view mark = take(text, 1); mark == "`")
            all += html("<code>{}</code>", takeUntil(text, "`"));
        else
            all += mark;
    return all;
}

/// The cells of a row of a table, `\|` being a bar within a cell.
static std::vector<std::string> cells(std::string_view row)
{
    std::vector<std::string> all;
    takeUntil(row, "|");
    for (std::string cell; !row.empty();)
        if (row.starts_with("\\|"))
            cell += take(row, 2)[1];
        else if (const std::string_view c = take(row, 1); c == "|") {
            const std::size_t first = std::min(cell.find_first_not_of(' '), cell.size());
            all.push_back(cell.substr(first, cell.find_last_not_of(' ') + 1 - first));
            cell.clear();
        } else
            cell += c;
    return all;
}

Html table(std::string_view kind, std::span<const Html> heads, const Html& rows)
{
    Html head;
    for (const Html& title : heads)
        head += html(R"(<th scope="col">{}</th>)", title);
    return html(R"(<table class="{}">
<thead><tr>{}</tr></thead>
<tbody>
{}</tbody>
</table>
)",
                kind, head, rows);
}

static std::vector<Html> cellLines(const Catalog& catalog, const Subject& subject, std::string_view row)
{
    std::vector<Html> all;
    for (const std::string& cell : cells(row))
        all.push_back(line(catalog, subject, cell));
    return all;
}

static Html tableOf(const Catalog& catalog, const Subject& subject, std::string_view text)
{
    const std::vector<Html> heads = cellLines(catalog, subject, takeUntil(text, "\n"));
    takeUntil(text, "\n"); // the rule below the head
    Html rows;
    while (!text.empty()) {
        Html row;
        for (const Html& cell : cellLines(catalog, subject, takeUntil(text, "\n")))
            row += html("<td>{}</td>", cell);
        rows += html("<tr>{}</tr>\n", row);
    }
    return table("notes", heads, rows);
}

static Html list(const Catalog& catalog, const Subject& subject, std::string_view text)
{
    Html items;
    takeUntil(text, "- ");
    while (!text.empty())
        items += html("<li>{}</li>\n", line(catalog, subject, takeUntil(text, "\n- ")));
    return html("<ul>\n{}</ul>\n", items);
}

Html blocks(const Catalog& catalog, const Subject& subject, std::string_view markdown)
{
    Html all;
    while (!markdown.empty())
        if (markdown.starts_with('\n'))
            take(markdown, 1);
        else if (markdown.starts_with("```")) {
            takeUntil(markdown, "\n");
            all += html("<pre tabindex=\"0\"><code>{}</code></pre>\n", takeUntil(markdown, "\n```"));
        } else if (const std::string_view block = takeUntil(markdown, "\n\n"); block.starts_with('|'))
            all += tableOf(catalog, subject, block);
        else if (block.starts_with("- "))
            all += list(catalog, subject, block);
        else
            all += html("<p>{}</p>\n", line(catalog, subject, block));
    return all;
}

static Html quoted(const Catalog& catalog, const Subject& subject, std::string_view content)
{
    return html(R"(<span class="s">"{}"</span>)", catalog.knows(content) && content != subject.name
                                                      ? html(R"(<a href="{}.html">{}</a>)", content, content)
                                                      : Html(content));
}

Html scene(const Catalog& catalog, const Subject& subject, std::string_view text)
{
    Html all;
    while (!text.empty())
        if (text.front() == '#')
            all += html(R"(<span class="c">{}</span>)", takeWhile(text, [](char c) { return c != '\n'; }));
        else if (isWordPart(text.front())) {
            const std::string_view word = takeWhile(text, [](char c) { return isWordPart(c) || c == '.'; });
            all += isDigit(word.front()) ? Html(word) : html(R"(<span class="k">{}</span>)", word);
        } else if (const std::string_view mark = take(text, 1); mark == "\"")
            all += quoted(catalog, subject, takeUntil(text, "\""));
        else
            all += mark;
    return all;
}

} // namespace declare
