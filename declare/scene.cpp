// SPDX-License-Identifier: BSD-3-Clause
#include "declare/scene.h"

#include "declare/files.h"
#include "declare/lines.h"

#include <algorithm>
#include <ranges>
#include <vector>

namespace declare {

namespace fs = std::filesystem;

/// What is pasted has its conditions decided: `set` are the names that have been set before.
static void paste(WholeScene& whole, std::set<std::string>& set, const fs::path& file, bool isFirst)
{
    bool isSkipped = false;
    for (const std::string& line : linesOf(readFile(file)))
        if (line.starts_with("$ifndef \""))
            isSkipped = set.contains(strings(line).front());
        else if (line == "$endif")
            isSkipped = false;
        else if (isSkipped)
            continue;
        else if (line.starts_with("set \""))
            set.insert(strings(line).front());
        else if (line.starts_with("$include \""))
            paste(whole, set, file.parent_path() / strings(line).front(), false);
        else if (line.starts_with("color texture ")) {
            const fs::path texture = strings(line).back();
            const std::size_t at = line.rfind(texture.string());
            whole.textures.insert(file.parent_path() / texture);
            whole.text += line.substr(0, at) + texture.filename().string() + "\"\n";
        } else if (isFirst || !line.starts_with("# SPDX"))
            whole.text += line + '\n';
}

WholeScene wholeScene(const fs::path& file)
{
    WholeScene whole;
    std::set<std::string> set;
    paste(whole, set, file, true);
    whole.text = used(whole.text);
    std::erase_if(whole.textures, [&](const fs::path& texture) {
        return whole.text.find('"' + texture.filename().string() + '"') == std::string::npos;
    });
    return whole;
}

namespace {

/// Lines that stay or go together.
struct Piece {
    enum { comment, gap, named, other } kind = other;
    Lines lines{};
    std::string name{}; ///< of a shader, a texture, a declaration
    bool stays = false;
};

/// Lines of a statement, by what it has outside of strings and comments.
struct Brackets {
    int open = 0; ///< how many more round brackets open than close
    char last = ' ';

    void pass(std::string_view line)
    {
        bool isInString = false;
        for (const char c : line) {
            if (c == '#' && !isInString)
                break;
            if (c == '"')
                isInString = !isInString;
            else if (!isInString)
                open += (c == '(') - (c == ')');
            last = c == ' ' ? last : c;
        }
    }
};

} // namespace

static std::vector<Piece> piecesOf(std::string_view text)
{
    std::vector<Piece> pieces;
    const Lines lines = linesOf(text);
    for (auto line = lines.begin(); line != lines.end();) {
        Piece piece{Piece::other, {*line}};
        const auto takeUntil = [&](auto&& isLast) {
            piece.kind = Piece::named;
            piece.name = strings(piece.lines.back()).front();
            while (!isLast() && line + 1 != lines.end())
                piece.lines.push_back(*++line);
        };
        if (line->empty())
            piece.kind = Piece::gap;
        else if (line->starts_with('#'))
            piece.kind = Piece::comment;
        else if (line->starts_with("declare "))
            takeUntil([&] { return *line == "end declare"; });
        else if (line->starts_with("shader "))
            takeUntil([&, brackets = Brackets()]() mutable {
                brackets.pass(*line);
                return brackets.open == 0 && brackets.last == ')';
            });
        else if (line->starts_with("color texture "))
            takeUntil([] { return true; });
        pieces.push_back(std::move(piece));
        ++line;
    }
    return pieces;
}

std::string used(std::string_view text)
{
    std::vector<Piece> pieces = piecesOf(text);
    std::set<std::string> names;
    const auto keep = [&](Piece& piece) {
        piece.stays = true;
        for (const std::string& line : piece.lines)
            for (const std::string& name : strings(line)) {
                names.insert(name);
                names.insert(name.substr(0, name.find('.'))); // of a structure's member
            }
    };
    for (Piece& piece : pieces)
        if (piece.kind == Piece::other)
            keep(piece);
    // What is named was written before, so one pass from the end reaches all.
    for (Piece& piece : std::views::reverse(pieces))
        if (piece.kind == Piece::named && names.contains(piece.name))
            keep(piece);

    // Up from each gap: a comment stays with what is left below it; of those that stand alone the scene's
    // first, which says what is seen.
    std::string left;
    for (auto first = pieces.begin(); first != pieces.end();) {
        const auto last = std::ranges::find(first, pieces.end(), Piece::gap, &Piece::kind);
        bool stays = first == pieces.begin();
        for (Piece& piece : std::views::reverse(std::ranges::subrange(first, last)))
            if (piece.kind == Piece::comment)
                piece.stays = stays;
            else
                stays |= piece.stays;
        std::string paragraph;
        for (const Piece& piece : std::ranges::subrange(first, last))
            for (const std::string& line : piece.stays ? piece.lines : Lines())
                paragraph += line + '\n';
        if (!paragraph.empty())
            left += (left.empty() ? "" : "\n") + paragraph;
        first = last == pieces.end() ? last : last + 1;
    }
    return left;
}

} // namespace declare
