// SPDX-License-Identifier: BSD-3-Clause
// The reference pages, and those of the recipes.
#include "declare/shaders.h"
#include "declare/write.h"

#include <algorithm>
#include <regex>

namespace declare {

static const char* const written = "<!-- Written from the sources by `cmake --build <build> --target "
                                   "declarations`: change those, not this page. -->\n";

/// A vertical bar would end the cell.
static std::string cell(std::string_view text)
{
    std::string escaped;
    for (const char c : text) {
        if (c == '|')
            escaped += '\\';
        escaped += c;
    }
    return escaped;
}

/// What is said of one side of a shader, if anything is.
static std::string paragraph(std::string_view title, std::string_view text)
{
    return text.empty() ? "" : "\n**" + std::string(title) + ".** " + std::string(text) + '\n';
}

static std::string parameterTable(const Subject& subject)
{
    std::string text = "\n| parameter | type | default | range | |\n|---|---|---|---|---|\n";
    for (const auto& [name, type, standard, range, about] : subject.parameters)
        text +=
            "| `" + name + "` | " + type + " | " + standard + " | " + range + " | " + cell(about) + " |\n";
    return text;
}

std::string referencePage(std::span<const VHL::Description> shaders)
{
    std::string text = "# " + std::string(shaders.front().unit) + "\n\n" + written;
    for (const VHL::Description& shader : shaders) {
        text += "\n## " + std::string(shader.name) + "\n\n" + std::string(shader.about.text) +
                "\n\nResult: " + std::string(typeName(shader.result)) + ". Version " +
                std::to_string(shader.version) + ".\n";
        if (!shader.members.empty())
            text += "\n| member | type | |\n|---|---|---|\n";
        for (const VHL::Field& member : shader.members)
            text += std::string("| `") + member.name.text.data() + "` | " +
                    std::string(typeName(member.kind)) + " | " + cell(member.about) + " |\n";
        text += parameterTable(subjectOf(shader));
        text += paragraph("Evaluation", shader.about.order) + paragraph("Edge cases", shader.about.edges) +
                paragraph("Messages", shader.about.messages);
        if (!shader.about.notes.empty())
            text += '\n' + std::string(shader.about.notes) + '\n';
    }
    return text;
}

std::string referenceIndex(std::span<const VHL::Description> shaders)
{
    std::string text =
        std::string("# Shaders\n\n") + written +
        "\nThe same and the [recipes](../recipes/README.md) as pages for a browser, with pictures, "
        "scenes to copy and a\nsearch: `cmake --build <build> --target reference` writes them to "
        "`<build>/reference/index.html`; an installation\nhas them in `share/doc/vhl/reference`.\n"
        "\n| shader | result | |\n|---|---|---|\n";
    for (const VHL::Description& shader : shaders)
        text += "| [`" + std::string(shader.name) + "`](" + std::string(shader.unit) + ".md) | " +
                std::string(typeName(shader.result)) + " | " + cell(shader.about.text) + " |\n";
    return text;
}

static const char* const writtenFromRecipes = "<!-- Written from declarations/recipes.mi by `cmake --build "
                                              "<build> --target declarations`: change that, "
                                              "not this page. -->\n";

/// A shader or recipe that a recipe is made of.
static std::string used(const std::string& name, std::span<const VHL::Description> shaders)
{
    const auto shader = std::ranges::find(shaders, name, &VHL::Description::name);
    if (shader == shaders.end())
        return "[`" + name + "`](" + name + ".md)";
    std::string anchor = name;
    for (char& c : anchor)
        c += c >= 'A' && c <= 'Z' ? 'a' - 'A' : 0;
    return "[`" + name + "`](../reference/" + std::string(shader->unit) + ".md#" + anchor + ')';
}

std::string recipeReference(const Recipe& recipe, std::string_view scene,
                            std::span<const VHL::Description> shaders)
{
    const std::string title = std::regex_replace(recipe.text, std::regex("[:.]( .*|$)"), "");
    std::string text = "# " + recipe.name + "\n\n" + writtenFromRecipes + '\n' + recipe.text + "\n\n![" +
                       title + "](../pictures/recipes/" + recipe.name + ".png)\n\nResult: " + recipe.result +
                       ". Version " + std::to_string(recipe.version) + ".\n" + parameterTable(recipe) +
                       "\n## Formula\n\n```\n" + recipe.formula + "\n```\n";
    if (!recipe.source.empty())
        text += "\nSource: " + recipe.source + ".\n";
    text += "\n## Network\n\n" + recipe.network + "\n\nMade of ";
    for (const std::string& name : recipe.uses) {
        if (&name != &recipe.uses.front())
            text += &name == &recipe.uses.back() ? " and " : ", ";
        text += used(name, shaders);
    }
    const std::string file = recipe.name + ".mi";
    scene.remove_prefix(scene.starts_with("# SPDX") ? scene.find('\n') + 1 : 0);
    return text + ".\n\n## Edges\n\n" + recipe.edges + "\n\n## Use\n\n[" + file +
           "](../../examples/recipes/" + file + "), the scene of the picture:\n\n```\n" + std::string(scene) +
           "```\n";
}

std::string recipeReferenceIndex(std::span<const RecipeGroup> groups)
{
    std::string text = std::string("# Recipes\n\n") + writtenFromRecipes + '\n' + recipeIntroduction(groups) +
                       "\nHow names are made: [names](../naming.md). The scenes are in "
                       "[examples/recipes](../../examples/recipes); [the pages for a "
                       "browser](../reference/README.md) have a search, and each scene whole in one file.\n";
    for (const RecipeGroup& group : groups) {
        text += "\n## " + group.title + "\n\n" + group.about +
                "\n\n| | recipe | gives | what it is for |\n|---|---|---|---|\n";
        for (const Recipe& recipe : group.recipes)
            text += "| <img src=\"../pictures/recipes/" + recipe.name + ".png\" width=\"120\" alt=\"\"> | [" +
                    recipe.name + "](" + recipe.name + ".md) | " + recipe.result + " | " + cell(recipe.text) +
                    " |\n";
    }
    return text +
           "\n## Adding one\n\nWrite it in `declarations/recipes.mi`, with the comments that its neighbours "
           "have, a scene of its name in `examples/recipes/`, and a test in `tests/recipes/` that restates "
           "its formula. `scripts/reference-pictures BUILD NAME` renders the picture, which wants looking "
           "at, and `cmake --build BUILD --target declarations` writes the pages; the tests tell what is "
           "missing.\n";
}

} // namespace declare
