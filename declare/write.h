// SPDX-License-Identifier: BSD-3-Clause
// The texts made from the shaders' descriptions and from the recipes.
#pragma once

#include "core/describe.h"
#include "declare/recipes.h"

#include <span>
#include <string>
#include <string_view>

namespace declare {

/// The declaration file: one `declare shader` for each, with hints for applications, in plain ASCII.
std::string declarations(std::span<const VHL::Description> shaders);

/// One shader's part of it.
std::string declaration(const VHL::Description& shader);

/// A reference page for the shaders of one unit, and the page that lists all units.
std::string referencePage(std::span<const VHL::Description> shaders);
std::string referenceIndex(std::span<const VHL::Description> shaders);

/// A page for a recipe, with the text of its scene and links to the shaders' pages, and the page of all
/// recipes.
std::string recipeReference(const Recipe& recipe, std::string_view scene,
                            std::span<const VHL::Description> shaders);
std::string recipeReferenceIndex(std::span<const RecipeGroup> groups);

} // namespace declare
