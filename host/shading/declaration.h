// SPDX-License-Identifier: BSD-3-Clause
// What the scene declares about a shader, and the renderer's layout rules for parameter blocks.
#pragma once

#include "host/report/error.h"

#include <cstddef>
#include <map>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace host {

enum class Type {
    boolean,
    integer,
    scalar,
    vector,
    color,
    transform,
    string,
    colorTexture,
    scalarTexture,
    vectorTexture,
    light,
    material,
    geometry,
    shader,
    lightProfile,
    spectrum,
    data,
    structure
};

/// The type's name in scene text, "color texture" for example; "struct" for a structure.
std::string_view typeName(Type type);

/// True for the types stored as a tag, strings included.
bool isTag(Type type);

/// The largest parameter block, array payloads included. The renderer's record counts its bytes in an int.
inline constexpr std::size_t maximumBlockSize = std::size_t{256} * 1024 * 1024;

/// The largest fixed part of a block, before any array payload.
inline constexpr std::size_t maximumDeclaredSize = std::size_t{1024} * 1024;

/// How many numbers make a value: 1 for boolean, integer and scalar, 3, 4 and 16 for vector, color and
/// transform, 0 for the rest.
int componentCount(Type type);

/// A parameter, a member of a structure, or a result. Filled by the scene language up to `defaults`; `layOut`
/// computes the rest.
struct Field {
    std::string name; ///< empty for a result
    Type type = Type::color;
    bool isArray = false;
    std::vector<Field> members;   ///< of a structure, in order
    std::vector<double> defaults; ///< numbers given after `default`; booleans as 0 and 1
    Location where;

    std::size_t offset = 0;      ///< bytes from the start of the block, or of the structure
    std::size_t elementSize = 0; ///< bytes of one value; of one element when it is an array
    std::size_t size = 0;        ///< bytes in the block; for an array 8 + elementSize

    /// Bytes from `offset` to the value itself, or to the first element slot of an array: 8 for arrays.
    std::size_t slot() const;
};

/// "color", "array light": how messages call a field's type.
std::string typeText(const Field& field);

/// The field of that name, or null.
const Field* findField(const std::vector<Field>& fields, std::string_view name);

/// True when the names, types and defaults are the same, in the same order.
bool sameFields(const std::vector<Field>& a, const std::vector<Field>& b);

/// What `declare phenomenon` has between its parameters and its end; known to the scene language only.
struct PhenomenonBody;

/// `declare shader` and `declare phenomenon`.
struct Declaration {
    std::string name;
    Field result;
    std::vector<Field> parameters;
    std::optional<int> version; ///< not given counts as 0
    std::vector<std::string> apply;
    std::shared_ptr<const PhenomenonBody> body; ///< of a phenomenon; null for a shader of a library
    Location where;

    std::size_t blockSize = 0; ///< bytes of the fixed part of the parameter block

    const Field* parameter(std::string_view name) const;
};

/// Computes every offset and size by the renderer's rules: fields in order, C structure layout, arrays as
/// `int i; int n; T slot[1]`. Throws Error for a name given twice, nesting deeper than 64, a structure
/// without members, an array in the result, a block beyond maximumDeclaredSize, or a default that the type
/// does not take: more numbers than it has components, or a fraction for an integer.
void layOut(Declaration& declaration);

/// True when two declarations mean the same; places and `apply`, which is for applications only, aside.
bool sameDeclaration(const Declaration& a, const Declaration& b);

/// Declarations by name, a name space of their own.
class Declarations {
public:
    /// Lays it out and keeps it. Declaring the same again is silent; declaring something else under the name
    /// throws Error that names the place of the first. The address of a declaration never changes.
    const Declaration& add(Declaration declaration);
    const Declaration* find(std::string_view name) const;
    const std::map<std::string, Declaration, std::less<>>& all() const { return all_; }

private:
    std::map<std::string, Declaration, std::less<>> all_;
};

} // namespace host
