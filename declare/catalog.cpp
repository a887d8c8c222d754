// SPDX-License-Identifier: BSD-3-Clause
#include "declare/catalog.h"

#include <algorithm>
#include <array>
#include <iterator>

namespace declare {

/// What a group takes: whole units, and single shaders out of other groups' units.
struct Rule {
    std::string_view name, title, about;
    std::string_view cover;
    std::initializer_list<std::string_view> units, singles{};
};

// clang-format off
static const Rule rules[] = {
    {"arithmetic", "Arithmetic",
     "Sums, products, remainders, rounding and lengths, component by component.",
     "vhAddColor_v2",
     {"add", "sub", "subA", "mult", "div", "mod", "min", "max", "floor", "ceiling", "util"}},
    {"ranges", "Ranges",
     "Values held to bounds, stretched from one range to another, turned around or cut off.",
     "vhClampScalar_v1",
     {"clamp", "clampChannel", "compress", "expand", "invert", "threshold"}},
    {"conversions", "Conversions",
     "From every type to every other, together from scalars and apart into them.",
     "vhVector2Color_v1",
     {"conversion"}},
    {"channels", "Channels and constants",
     "Channels copied, set and put in another order; values to share and to pass on.",
     "vhReorderColor_v1",
     {"channel", "copychannel", "setchannel", "null"}},
    {"mixing", "Mixing",
     "Two values blended by a weight, and weighted sums of up to sixteen.",
     "vhMixerColor4_v1",
     {"mix", "mixer"}},
    {"logic", "Logic and choices",
     "Booleans combined, and what is chosen by them or by a number.",
     "vhXOr_v1",
     {"boolean", "conditional", "selectColor", "selectScalar", "selectVector"}},
    {"comparisons", "Comparisons",
     "Two values compared; ranges of values, of space and of the picture.",
     "vhGreaterThanVector_v1",
     {"comparison"}},
    {"state", "State and debugging",
     "What the renderer knows of the sample: place, normals, ray, levels. Values told in the log.",
     "vhStateNormal_v1",
     {"state", "debug"}},
    {"names", "Selection by object name",
     "Colours and scalars that depend on what is being shaded, by name or by pattern.",
     "vhSwitchColor_v4",
     {"switchColor", "switchScalar", "switchRegExp_v4"}, {"vhIsObject_v1"}},
    {"layers", "Mattes and layers",
     "Layers composited, alpha and opacity set, mattes multiplied in and divided out.",
     "vhOver_v1",
     {"layer"}, {"vhSetOpacity_v1"}},
    {"panoramas", "Lenses and environments",
     "Pictures all around, rendered through a lens or used as surroundings; gamma and brightness.",
     "vhEnvironmentPanoramic_v1",
     {"lens", "environment"}},
    {"lights", "Lights and sampling",
     "Area lights, light from particles, shadow passes and blurs along a line.",
     "vhParticleLight_v1",
     {"particleLight", "geometry", "shadowPass", "sampler"}},
};
// clang-format on

/// Shaders whose readers want to know of each other, though neither names nor groups tell.
static const std::initializer_list<std::string_view> companies[] = {
    {"vhCompressScalar_v1", "vhExpandScalar_v1"},
    {"vhCompressVector_v1", "vhExpandVector_v1"},
    {"vhCompressColor_v2", "vhExpandColor_v2"},
    {"vhMatteMult_v1", "vhMatteDiv_v1"},
    {"vhScalars2Color_v1", "vhColor2Scalars_v1"},
    {"vhScalars2Vector_v1", "vhVector2Scalars_v1"},
    {"vhSelectColor_v1", "vhSwitchColor_v1", "vhSwitchColor_v4"},
    {"vhSelectScalar_v1", "vhSwitchScalar_v1"},
    {"vhSwitchColor_v4", "vhSwitchMatte_v1"},
    {"vhIsObject_v1", "vhSwitchMatte_v1"},
    {"vhStateInstance_v1", "vhIsObject_v1", "vhSwitchColor_v4"},
    {"vhSetAlpha_v1", "vhSetOpacity_v1"},
    {"vhLensPanoramic_v1", "vhEnvironmentPanoramic_v1"},
    {"vhParticleLight_v1", "vhGeomSetAreaLightType_v1"},
};

static bool contains(std::initializer_list<std::string_view> list, std::string_view word)
{
    return std::ranges::find(list, word) != list.end();
}

/// The index of the rule that takes a shader, by its name before its unit.
static std::size_t ruleFor(const Shader& shader)
{
    const auto single =
        std::ranges::find_if(rules, [&](const Rule& rule) { return contains(rule.singles, shader.name); });
    const auto taking =
        single != std::end(rules) ? single : std::ranges::find_if(rules, [&](const Rule& rule) {
            return contains(rule.units, shader.unit);
        });
    return std::size_t(taking - std::begin(rules));
}

static void removeDigits(std::string_view& text)
{
    text = text.substr(0, text.find_last_not_of("0123456789") + 1);
}

NameParts partsOf(std::string_view name)
{
    NameParts parts;
    parts.stem = name.substr(0, name.rfind("_v"));
    parts.stem.remove_prefix(parts.stem.starts_with("vh") ? 2 : 0);
    parts.operation = parts.stem;
    removeDigits(parts.operation);
    for (const std::string_view kind : {"Boolean", "Integer", "Scalar", "Scalars", "Vector", "Color"})
        if (parts.operation.size() > kind.size() && parts.operation.ends_with(kind)) {
            parts.operation.remove_suffix(kind.size());
            removeDigits(parts.operation); // as in Boolean2Integer
            break;
        }
    return parts;
}

Catalog::Catalog(std::span<const Shader> shaders, std::span<const RecipeGroup> recipes) : byPurpose(recipes)
{
    for (const RecipeGroup& group : recipes)
        for (const Recipe& recipe : group.recipes)
            recipesInOrder.push_back(&recipe);
    for (const Rule& rule : rules)
        all.push_back({rule.name, rule.title, rule.about, rule.cover});
    for (const Shader& shader : shaders)
        if (const std::size_t group = ruleFor(shader); group < all.size())
            all[group].shaders.push_back(&shader);
        else
            outside.push_back(&shader);
    std::erase_if(all, [](const Group& group) { return group.shaders.empty(); });

    for (std::size_t group = 0; group < all.size(); ++group) {
        const auto unitOrder = [&](const Shader* shader) {
            const Rule& rule = rules[ruleFor(*shader)];
            return std::ranges::find(rule.units, shader->unit) - rule.units.begin();
        };
        std::ranges::stable_sort(all[group].shaders, {}, unitOrder);
        for (const Shader* shader : all[group].shaders) {
            places[shader->name] = {group, inOrder.size()};
            inOrder.push_back(shader);
        }
    }
}

const Shader* Catalog::find(std::string_view name) const
{
    const auto place = places.find(name);
    return place == places.end() ? nullptr : inOrder[place->second.index];
}

bool Catalog::knows(std::string_view name) const
{
    return find(name) || std::ranges::find(recipesInOrder, name, &Recipe::name) != recipesInOrder.end();
}

Recipes Catalog::users(std::string_view name) const
{
    Recipes found;
    for (const Recipe* recipe : recipesInOrder)
        if (std::ranges::find(recipe->uses, name) != recipe->uses.end())
            found.push_back(recipe);
    return found;
}

template <class T>
static const T* stepped(const std::vector<const T*>& all, std::size_t index, int step)
{
    index += std::size_t(step); // wraps around below 0
    return index < all.size() ? all[index] : nullptr;
}

const Shader* Catalog::neighbour(const Shader& shader, int step) const
{
    return stepped(inOrder, places.at(shader.name).index, step);
}

const Recipe* Catalog::neighbour(const Recipe& recipe, int step) const
{
    return stepped(recipesInOrder,
                   std::size_t(std::ranges::find(recipesInOrder, &recipe) - recipesInOrder.begin()), step);
}

Shaders Catalog::versions(const Shader& shader) const
{
    Shaders found;
    for (const Shader* other : inOrder)
        if (other->name != shader.name && partsOf(other->name).stem == partsOf(shader.name).stem)
            found.push_back(other);
    return found;
}

Shaders Catalog::siblings(const Shader& shader) const
{
    const NameParts parts = partsOf(shader.name);
    Shaders found;
    for (const Shader* other : inOrder)
        if (const NameParts its = partsOf(other->name);
            its.operation == parts.operation && its.stem != parts.stem)
            found.push_back(other);
    return found;
}

Shaders Catalog::companions(const Shader& shader) const
{
    Shaders found;
    for (const auto& company : companies)
        if (contains(company, shader.name))
            for (const std::string_view name : company)
                if (const Shader* const other = find(name); other && other != &shader)
                    found.push_back(other);
    return found;
}

} // namespace declare
