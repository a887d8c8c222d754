// SPDX-License-Identifier: BSD-3-Clause
// Recipes as they are read from a declaration file, and their pages of the manual.
#include "declare/recipes.h"
#include "declare/write.h"

#include <gtest/gtest.h>

#include <array>
#include <stdexcept>

using declare::Recipe;

/// A file of one recipe, with parts of it as the test wants them.
static std::string file(const std::string& comment, const std::string& parameter = "scalar \"input\" # x")
{
    return "# About the file.\n\n$ifndef \"recipes\"\nset \"recipes\"\n\n# ---- two words ----\n# All of\n# "
           "it.\n\n" +
           comment + "declare phenomenon\n    color \"vhrTest_v2\" (\n        " + parameter +
           "\n    )\n    shader \"a\" \"vhMade_v1\" ( \"in\" = interface \"input\" )\n"
           "    shader \"b\"  \"vhrOther_v1\" ( \"in\" = \"a\" )\n"
           "    shader \"c\"  \"vhMade_v1\" ( \"in\" = \"b\" )\n"
           "    root = \"c\"\n    version 2\n    apply texture, light\nend declare\n\n$endif\n";
}
static const std::string comment = "# What it\n# does: 0.5 | more. Really.\n# Formula: x = 1; y\n"
                                   "# Source: Me, 2001\n# Network: some words.\n# Edges: NaN: none.\n";

static Recipe read(const std::string& text) { return declare::recipes(text).at(0).recipes.at(0); }

TEST(Recipes, AreReadWithTheirComments)
{
    const std::vector<declare::RecipeGroup> groups = declare::recipes(file(comment));
    ASSERT_EQ(groups.size(), 1u);
    EXPECT_EQ(groups[0].title, "Two words");
    EXPECT_EQ(groups[0].about, "All of it.");
    ASSERT_EQ(groups[0].recipes.size(), 1u);
    const Recipe& recipe = groups[0].recipes[0];
    EXPECT_EQ(recipe.name, "vhrTest_v2");
    EXPECT_EQ(recipe.result, "color");
    EXPECT_EQ(recipe.version, 2);
    EXPECT_EQ(recipe.apply, "texture, light");
    EXPECT_EQ(recipe.text, "What it does: 0.5 | more. Really.");
    EXPECT_EQ(recipe.formula, "x = 1\ny");
    EXPECT_EQ(recipe.source, "Me, 2001");
    EXPECT_EQ(recipe.network, "Some words.");
    EXPECT_EQ(recipe.edges, "NaN: none.");
    EXPECT_EQ(recipe.uses, (std::vector<std::string>{"vhMade_v1", "vhrOther_v1"}));
    const std::string text = file(comment);
    const std::size_t begin = text.find("declare phenomenon");
    EXPECT_EQ(recipe.declaration, text.substr(begin, text.find("\n\n", begin) + 1 - begin));
}

TEST(Recipes, ParametersHaveTypeDefaultRangeAndMeaning)
{
    const auto expectParameter = [](const std::string& line, const std::array<std::string, 5>& expected) {
        const declare::Parameter p = read(file(comment, line)).parameters.at(0);
        EXPECT_EQ((std::array{p.name, p.type, p.standard, p.range, p.about}), expected) << line;
    };
    expectParameter("scalar \"a\" default -0.5,   # [0, ...] of it",
                    {"a", "scalar", "-0.5", "[0, ...]", "Of it."});
    expectParameter("color  \"b\"  default 1 0 0 1 # (0, 1) half, (not) all",
                    {"b", "color", "1 0 0 1", "(0, 1)", "Half, (not) all."});
    expectParameter("boolean \"c\" default on, # on: it", {"c", "boolean", "on", "on, off", "On: it."});
    expectParameter("array light \"d\"   # whose", {"d", "array of light", "empty", "any", "Whose."});
    expectParameter("color texture \"e\", # which", {"e", "color texture", "empty", "any", "Which."});
}

TEST(Recipes, WhatTheyLackIsTold)
{
    const auto expectFault = [](const std::string& text, const std::string& told) {
        try {
            declare::recipes(text);
            ADD_FAILURE() << "read: " << told;
        } catch (const std::runtime_error& error) {
            EXPECT_NE(std::string(error.what()).find(told), std::string::npos) << error.what();
        }
    };
    expectFault(file("# Does.\n# Formula: x\n# Edges: None.\n"),
                "vhrTest_v2: nothing is said after Network: ");
    expectFault(file("# Formula: x\n# Network: y\n# Edges: None.\n"), "vhrTest_v2: nothing is said of what");
    expectFault(file(comment + "# And so on.\n"), "vhrTest_v2: no word begins the line And so on.");
    expectFault(file(comment, "scalar \"input\" default 1"), "vhrTest_v2: cannot read the parameter");
    expectFault("declare phenomenon\nend declare\n", "in no group");
    expectFault("# ---- a ----\ndeclare phenomenon\n", "has no end");
    expectFault("# ---- a ----\ndeclare phenomenon\nend declare\n", "cannot read the recipe");
}

TEST(RecipeReference, LinksWhatItIsMadeOfAndShowsItsScene)
{
    VHL::Description made{};
    made.name = "vhMade_v1";
    made.unit = "unit";
    const std::string page =
        declare::recipeReference(read(file(comment)), "# SPDX: x\n# A scene.\nrender\n", std::array{made});
    for (const char* const part :
         {"# vhrTest_v2\n", "What it does: 0.5 | more. Really.\n",
          "![What it does](../pictures/recipes/vhrTest_v2.png)", "Result: color. Version 2.\n",
          "| `input` | scalar | empty | any | X. |\n",
          "## Formula\n\n```\nx = 1\ny\n```\n\nSource: Me, 2001.\n",
          "Made of [`vhMade_v1`](../reference/unit.md#vhmade_v1) and [`vhrOther_v1`](vhrOther_v1.md).\n",
          "## Edges\n\nNaN: none.\n", "```\n# A scene.\nrender\n```\n"})
        EXPECT_NE(page.find(part), std::string::npos) << part << "\n" << page;
}

TEST(RecipeReference, IndexListsAllByGroup)
{
    const std::string page = declare::recipeReferenceIndex(declare::recipes(file(comment)));
    for (const char* const part :
         {"1 networks for everyday needs", "## Two words\n\nAll of it.\n",
          "[vhrTest_v2](vhrTest_v2.md) | color | What it does: 0.5 \\| more. Really. |\n"})
        EXPECT_NE(page.find(part), std::string::npos) << part << "\n" << page;
}
