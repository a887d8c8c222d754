// SPDX-License-Identifier: BSD-3-Clause
// The shaders in order for readers: by what they are for, with their relatives, and the recipes made of them.
#pragma once

#include "core/describe.h"
#include "declare/recipes.h"

#include <map>
#include <span>
#include <string>
#include <string_view>
#include <vector>

namespace declare {

using Shader = VHL::Description;
using Shaders = std::vector<const Shader*>;
using Recipes = std::vector<const Recipe*>;

/// Shaders for one purpose.
struct Group {
    std::string_view name; ///< of its page's file
    std::string_view title;
    std::string_view about;
    std::string_view cover; ///< the shader whose picture stands for all
    Shaders shaders{};
};

/// What a name says: "vh", the operation, the kind of value, "_v" and the version.
struct NameParts {
    std::string_view stem;      ///< "AddScalar"
    std::string_view operation; ///< "Add", the same for all kinds of value
};
NameParts partsOf(std::string_view name);

/// The groups, and what stands beside what.
class Catalog {
public:
    explicit Catalog(std::span<const Shader> shaders, std::span<const RecipeGroup> recipes = {});

    std::span<const Group> groups() const { return all; }
    const Shaders& shaders() const { return inOrder; }
    const Group& groupOf(const Shader& shader) const { return all[places.at(shader.name).group]; }
    const Shader* find(std::string_view name) const;

    std::span<const RecipeGroup> recipeGroups() const { return byPurpose; }
    const Recipes& recipes() const { return recipesInOrder; }
    /// The recipes that have a shader or a recipe in their networks.
    Recipes users(std::string_view name) const;

    /// Whether a shader or a recipe, and so a page, has this name.
    bool knows(std::string_view name) const;

    /// The shader so many places on, none beyond the ends.
    const Shader* neighbour(const Shader& shader, int step) const;
    const Recipe* neighbour(const Recipe& recipe, int step) const;
    /// The same name with another version.
    Shaders versions(const Shader& shader) const;
    /// The same operation for other kinds of value.
    Shaders siblings(const Shader& shader) const;

    /// What undoes it, or is used together with it or in its place.
    Shaders companions(const Shader& shader) const;

    /// Shaders that no group takes.
    const Shaders& strays() const { return outside; }

private:
    struct Place {
        std::size_t group, index;
    };
    std::vector<Group> all;
    Shaders inOrder, outside;
    std::map<std::string_view, Place> places;
    std::span<const RecipeGroup> byPurpose;
    Recipes recipesInOrder;
};

} // namespace declare
