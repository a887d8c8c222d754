// SPDX-License-Identifier: BSD-3-Clause
#include "declare/recipes.h"

#include "declare/lines.h"

#include <algorithm>
#include <regex>
#include <stdexcept>

namespace declare {

static std::string capitalised(std::string text)
{
    if (!text.empty() && text[0] >= 'a' && text[0] <= 'z')
        text[0] += 'A' - 'a';
    return text;
}

/// Adds a line to a paragraph.
static void append(std::string& paragraph, const std::string& line)
{
    paragraph += (paragraph.empty() ? "" : " ") + line;
}

/// A parameter's line: its comment begins with the range in brackets, where there is one.
static Parameter parameter(const std::string& recipe, const std::string& line)
{
    static const std::regex pattern(R"x(\s*(array )?([a-z ]*[a-z])\s+"(\w+)"(?:\s+default ([^,#]*?))?,?)x"
                                    R"x(\s*# (?:([\[(][^\])]*[\])]) )?(.*))x");
    std::smatch found;
    if (!std::regex_match(line, found, pattern))
        throw std::runtime_error(recipe + ": cannot read the parameter " + line);
    const std::string type = found[2];
    const std::string any = type == "boolean" ? "on, off" : "any";
    return {.name = found[3],
            .type = (found[1].matched ? "array of " : "") + type,
            .standard = found[4].matched ? found[4].str() : "empty",
            .range = found[5].matched ? found[5].str() : any,
            .about = capitalised(found[6]) + '.'};
}

/// What the comment before a recipe says: its purpose, then lines that begin with a word.
static void readComment(Recipe& recipe, const Lines& comment)
{
    struct {
        std::string_view word;
        std::string& text;
    } const parts[] = {{"Formula: ", recipe.formula},
                       {"Source: ", recipe.source},
                       {"Network: ", recipe.network},
                       {"Edges: ", recipe.edges}};
    bool isPurpose = true;
    for (const std::string& line : comment) {
        const auto part =
            std::ranges::find_if(parts, [&](const auto& it) { return line.starts_with(it.word); });
        isPurpose &= part == std::end(parts);
        if (isPurpose)
            append(recipe.text, line);
        else if (part == std::end(parts))
            throw std::runtime_error(recipe.name + ": no word begins the line " + line);
        else
            part->text = line.substr(part->word.size());
    }
    if (recipe.text.empty())
        throw std::runtime_error(recipe.name + ": nothing is said of what it is for");
    for (const auto& part : parts)
        if (part.text.empty() && part.word != "Source: ")
            throw std::runtime_error(recipe.name + ": nothing is said after " + std::string(part.word));
    recipe.formula = std::regex_replace(recipe.formula, std::regex("; "), "\n");
    recipe.network = capitalised(recipe.network);
}

static Recipe recipe(const Lines& comment, const Lines& declaration)
{
    static const std::regex head(R"x(\s*([a-z ]*[a-z]) "(\w+)" \()x");
    static const std::regex version(R"(\s*version (\d+))");
    static const std::regex apply(R"(\s*apply (.+))");
    static const std::regex shader(R"x(\s*shader "[^"]*"\s+"(\w+)".*)x");
    Recipe made;
    bool isInParameters = false;
    for (const std::string& line : declaration) {
        made.declaration += line + '\n';
        std::smatch found;
        if (made.name.empty() && std::regex_match(line, found, head)) {
            made.result = found[1];
            made.name = found[2];
            isInParameters = true;
        } else if (line == "    )")
            isInParameters = false;
        else if (isInParameters)
            made.parameters.push_back(parameter(made.name, line));
        else if (std::regex_match(line, found, version))
            made.version = std::stoi(found[1]);
        else if (std::regex_match(line, found, apply))
            made.apply = found[1];
        else if (std::regex_match(line, found, shader) && std::ranges::count(made.uses, found[1]) == 0)
            made.uses.push_back(found[1]);
    }
    if (made.name.empty() || made.version == 0 || made.uses.empty())
        throw std::runtime_error("cannot read the recipe:\n" + made.declaration);
    readComment(made, comment);
    return made;
}

std::vector<RecipeGroup> recipes(std::string_view text)
{
    static const std::regex title("# ---- (.*) ----");
    std::vector<RecipeGroup> groups;
    Lines comment;
    const Lines lines = linesOf(text);
    for (auto line = lines.begin(); line != lines.end(); ++line)
        if (std::smatch found; std::regex_match(*line, found, title))
            groups.push_back({capitalised(found[1]), {}, {}});
        else if (line->starts_with("# "))
            comment.push_back(line->substr(2));
        else if (*line == "declare phenomenon") {
            const auto end = std::find(line, lines.end(), "end declare");
            if (groups.empty() || end == lines.end())
                throw std::runtime_error("a recipe is in no group, or has no end");
            groups.back().recipes.push_back(recipe(comment, Lines(line, end + 1)));
            comment.clear();
            line = end;
        } else {
            if (!groups.empty() && groups.back().recipes.empty())
                for (const std::string& said : comment)
                    append(groups.back().about, said);
            comment.clear();
        }
    return groups;
}

/// What follows the number of recipes.
static constexpr std::string_view introduction =
    " networks for everyday needs that no single shader covers, ready to be used like shaders. They are "
    "phenomena of shaders of `libvhl.so` and need nothing else:\n\n"
    "```\nlink \"libvhl.so\"\n$include <vhl.mi>\n$include <recipes.mi>\n\n"
    "shader \"soft\" \"vhrSmoothstepScalar_v1\" ( \"input\" = \"height\", \"lower\" 0.2, \"upper\" 0.8 )\n"
    "```\n\n"
    "Their names begin with `vhr`. Parameters that are left out have their defaults, and each recipe does "
    "something without any. A recipe may be connected to another, and be used in one.\n\n"
    "Unless a page tells otherwise, colours keep the alpha of their input, nothing is clamped, and NaN stays "
    "NaN.\n";

std::string recipeIntroduction(std::span<const RecipeGroup> groups)
{
    std::size_t count = 0;
    for (const RecipeGroup& group : groups)
        count += group.recipes.size();
    return std::to_string(count).append(introduction);
}

} // namespace declare
