// SPDX-License-Identifier: BSD-3-Clause
#include "host/shading/declaration.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <limits>
#include <set>

namespace host {

namespace {

struct TypeInfo {
    std::string_view name;
    int components;   // numbers in a value
    std::size_t size; // bytes of a value
    bool tag;
};

// In the order of Type.
constexpr std::array<TypeInfo, 18> types = {{
    {"boolean", 1, 4, false},
    {"integer", 1, 4, false},
    {"scalar", 1, 4, false},
    {"vector", 3, 12, false},
    {"color", 4, 16, false},
    {"transform", 16, 64, false},
    {"string", 0, 4, true},
    {"color texture", 0, 4, true},
    {"scalar texture", 0, 4, true},
    {"vector texture", 0, 4, true},
    {"light", 0, 4, true},
    {"material", 0, 4, true},
    {"geometry", 0, 4, true},
    {"shader", 0, 4, true},
    {"lightprofile", 0, 4, true},
    {"spectrum", 0, 4, true},
    {"data", 0, 4, true},
    {"struct", 0, 0, false},
}};
static_assert(types.size() == static_cast<std::size_t>(Type::structure) + 1);

const TypeInfo& info(Type type) { return types[static_cast<std::size_t>(type)]; }

constexpr int maximumNesting = 64;
constexpr std::size_t arrayHead = 8; // the fields i and n

bool fitsInt(double value)
{
    return value == std::floor(value) && value >= std::numeric_limits<int>::min() &&
           value <= std::numeric_limits<int>::max();
}

void checkDefaults(const Field& field)
{
    const std::size_t count = field.defaults.size();
    if (count == 0)
        return;
    const auto fail = [&field](const std::string& text) {
        throw Error(field.where, "default of parameter " + inQuotes(field.name) + ": " + text);
    };
    if (field.isArray || componentCount(field.type) == 0)
        fail("a parameter of type " + typeText(field) + " takes none");
    if (count > static_cast<std::size_t>(componentCount(field.type)))
        fail(std::to_string(count) + " numbers for a " + std::string(typeName(field.type)) + ", which has " +
             std::to_string(componentCount(field.type)));
    if (field.type == Type::boolean && field.defaults[0] != 0 && field.defaults[0] != 1)
        fail("on, off, 0 or 1 expected");
    if (field.type == Type::integer && !fitsInt(field.defaults[0]))
        fail("an integer expected");
}

void layOutField(Field& field, bool ofResult, int depth);

// Lays fields out one after another and returns their size; all alignments are 4 and all sizes multiples of
// it.
std::size_t layOutFields(std::vector<Field>& fields, bool ofResult, int depth)
{
    std::set<std::string_view> names;
    std::size_t offset = 0;
    for (Field& field : fields) {
        if (!names.insert(field.name).second)
            throw Error(field.where, inQuotes(field.name) + " is declared twice");
        layOutField(field, ofResult, depth);
        field.offset = offset;
        offset += field.size;
        if (offset > maximumDeclaredSize)
            throw Error(field.where,
                        "parameters take more than " + std::to_string(maximumDeclaredSize) + " bytes");
    }
    return offset;
}

void layOutField(Field& field, bool ofResult, int depth)
{
    if (depth > maximumNesting)
        throw Error(field.where,
                    "structures are nested deeper than " + std::to_string(maximumNesting) + " levels");
    if (ofResult && field.isArray)
        throw Error(field.where, "a result cannot be an array");
    checkDefaults(field);
    field.offset = 0;
    field.elementSize = field.type == Type::structure ? layOutFields(field.members, ofResult, depth + 1)
                                                      : info(field.type).size;
    if (field.elementSize == 0)
        throw Error(field.where, "a structure needs at least one member");
    field.size = field.slot() + field.elementSize;
}

} // namespace

std::string_view typeName(Type type) { return info(type).name; }

std::string typeText(const Field& field)
{
    return (field.isArray ? "array " : "") + std::string(typeName(field.type));
}

bool isTag(Type type) { return info(type).tag; }

int componentCount(Type type) { return info(type).components; }

std::size_t Field::slot() const { return isArray ? arrayHead : 0; }

const Field* Declaration::parameter(std::string_view wanted) const { return findField(parameters, wanted); }

const Field* findField(const std::vector<Field>& fields, std::string_view name)
{
    const auto found =
        std::find_if(fields.begin(), fields.end(), [name](const Field& field) { return field.name == name; });
    return found == fields.end() ? nullptr : &*found;
}

void layOut(Declaration& declaration)
{
    layOutField(declaration.result, true, 0);
    declaration.blockSize = layOutFields(declaration.parameters, false, 0);
}

bool sameFields(const std::vector<Field>& a, const std::vector<Field>& b)
{
    return std::equal(a.begin(), a.end(), b.begin(), b.end(), [](const Field& x, const Field& y) {
        return x.name == y.name && x.type == y.type && x.isArray == y.isArray && x.defaults == y.defaults &&
               sameFields(x.members, y.members);
    });
}

bool sameDeclaration(const Declaration& a, const Declaration& b)
{
    return a.name == b.name && a.version.value_or(0) == b.version.value_or(0) && a.body == b.body &&
           sameFields({a.result}, {b.result}) && sameFields(a.parameters, b.parameters);
}

const Declaration& Declarations::add(Declaration declaration)
{
    if (const Declaration* first = find(declaration.name)) {
        if (sameDeclaration(*first, declaration))
            return *first;
        const std::string place = first->where.text();
        throw Error(declaration.where, "shader " + inQuotes(declaration.name) + " is declared differently" +
                                           (place.empty() ? " before" : " at " + place));
    }
    layOut(declaration);
    std::string name = declaration.name;
    return all_.emplace(std::move(name), std::move(declaration)).first->second;
}

const Declaration* Declarations::find(std::string_view name) const
{
    const auto found = all_.find(name);
    return found == all_.end() ? nullptr : &found->second;
}

} // namespace host
