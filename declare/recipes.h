// SPDX-License-Identifier: BSD-3-Clause
// The recipes: the phenomena of recipes.mi, with what its comments say of them.
#pragma once

#include "declare/shaders.h"

#include <span>
#include <string>
#include <string_view>
#include <vector>

namespace declare {

struct Recipe : Subject {
    std::string formula; ///< of one line or several
    std::string source;  ///< whose formula it is, if anybody's
    std::string network; ///< in words
    std::string edges;
    std::vector<std::string> uses; ///< the shaders and recipes that it is made of, each once
    std::string declaration;
};

struct RecipeGroup {
    std::string title, about;
    std::vector<Recipe> recipes;
};

/// The recipes of a declaration file's text, by group. Throws what a recipe lacks.
std::vector<RecipeGroup> recipes(std::string_view text);

/// What is to be known of all of them, as Markdown.
std::string recipeIntroduction(std::span<const RecipeGroup> groups);

} // namespace declare
