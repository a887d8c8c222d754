// SPDX-License-Identifier: BSD-3-Clause
// What a parameter structure says about itself: each field's declared kind, place, description and sensible
// values.
//
// A structure lists its fields in a static constexpr fields(). The compiler checks that the list and the
// structure agree; the declarations that scenes include and the reference pages are written from it.
#pragma once

#include <shader.h>

#include <array>
#include <cstddef>
#include <optional>
#include <string_view>
#include <tuple>
#include <type_traits>
#include <utility>

namespace VHL {

/// The declared type of a parameter. One word of 32 bits may be a boolean, an integer or one of several
/// handles, which its C++ type does not tell.
enum class Kind {
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
    structure ///< of several members; only as a result
};

/// Components of a value: what a default has to give.
constexpr int componentCount(Kind kind)
{
    switch (kind) {
    case Kind::boolean:
    case Kind::integer:
    case Kind::scalar:
        return 1;
    case Kind::vector:
        return 3;
    case Kind::color:
        return 4;
    case Kind::transform:
        return 16;
    default:
        return 0;
    }
}

/// A field's name. A copy, as numbered() makes names that stand nowhere in the source. At most 28 characters,
/// and a number up to 99 after them; 0 stands for none.
struct FieldName {
    std::array<char, 32> text{};

    constexpr FieldName(std::string_view name, int number = 0)
    {
        if (name.size() > text.size() - 4 || number > 99)
            throw "a field's name is at most 28 characters and two digits";
        std::size_t length = name.copy(text.data(), text.size() - 4);
        if (number >= 10)
            text[length++] = static_cast<char>('0' + number / 10);
        if (number >= 1)
            text[length] = static_cast<char>('0' + number % 10);
    }
    constexpr operator std::string_view() const { return text.data(); }
};

/// One parameter.
struct Field {
    FieldName name;
    Kind kind;
    std::size_t offset; ///< bytes into the structure
    std::size_t size;   ///< bytes; an array's start, count and first element together
    bool isArray;
    std::string_view about; ///< one line: meaning, unit, and what it does at the ends of its range

    float standard = 0; ///< the default of every component
    std::optional<float> least{};
    std::optional<float> most{};

    /// A default other than 0, black or off.
    constexpr Field by(float value) const
    {
        Field field = *this;
        field.standard = value;
        return field;
    }
    /// The range outside which values make no difference or no sense.
    constexpr Field within(float low, float high) const
    {
        Field field = *this;
        field.least = low;
        field.most = high;
        return field;
    }
};

/// The kind that a C++ type stands for by itself; a 32-bit word does not compile here: name its kind.
template <class T>
constexpr Kind kindOf()
{
    if constexpr (std::is_same_v<T, miScalar>)
        return Kind::scalar;
    else if constexpr (std::is_same_v<T, miVector>)
        return Kind::vector;
    else if constexpr (std::is_same_v<T, miColor>)
        return Kind::color;
    else {
        static_assert(std::is_same_v<T, miMatrix>, "a word may be many things: use VHL_FIELD_AS");
        return Kind::transform;
    }
}

/// Whether a value of the kind is stored in the type.
template <class T>
constexpr bool isStoredAs(Kind kind)
{
    switch (kind) {
    case Kind::boolean:
        return std::is_same_v<T, miBoolean>;
    case Kind::integer:
        return std::is_same_v<T, miInteger>;
    case Kind::scalar:
        return std::is_same_v<T, miScalar>;
    case Kind::vector:
        return std::is_same_v<T, miVector>;
    case Kind::color:
        return std::is_same_v<T, miColor>;
    case Kind::transform:
        return std::is_same_v<T, miMatrix>;
    case Kind::structure:
        return false;
    default:
        return std::is_same_v<T, miTag>; // a handle
    }
}

/// A kind that was named, checked against the type it is stored in.
template <Kind kind, class T>
constexpr Kind kindAs()
{
    static_assert(isStoredAs<T>(kind), "values of this kind are stored in another type");
    return kind;
}

/// A plain member as a field.
constexpr Field plainField(std::string_view name, Kind kind, std::size_t offset, std::size_t size,
                           std::string_view about)
{
    return {name, kind, offset, size, false, about};
}

/// An array's three members, `int i_x; int n_x; T x[1];`, as one field.
constexpr Field arrayField(std::string_view name, Kind kind, std::array<std::size_t, 3> offsets,
                           std::size_t slotSize, std::string_view about)
{
    if (offsets[1] != offsets[0] + sizeof(int) || offsets[2] != offsets[1] + sizeof(int))
        throw "an array is its start, its count and its first element, in this order";
    return {name, kind, offsets[0], 2 * sizeof(int) + slotSize, true, about};
}

// Members of `Params` as fields: one whose type tells its kind, one whose kind is named, and both for arrays.
#define VHL_FIELD(Params, member, about)                                                                     \
    VHL::plainField(#member, VHL::kindOf<decltype(Params::member)>(), offsetof(Params, member),              \
                    sizeof(Params::member), about)
#define VHL_FIELD_AS(Params, kind, member, about)                                                            \
    VHL::plainField(#member, VHL::kindAs<VHL::Kind::kind, decltype(Params::member)>(),                       \
                    offsetof(Params, member), sizeof(Params::member), about)
#define VHL_FIELD_ARRAY(Params, member, about)                                                               \
    VHL::arrayField(#member, VHL::kindOf<std::remove_extent_t<decltype(Params::member)>>(),                  \
                    {offsetof(Params, i_##member), offsetof(Params, n_##member), offsetof(Params, member)},  \
                    sizeof(Params::member), about)
#define VHL_FIELD_ARRAY_AS(Params, kind, member, about)                                                      \
    VHL::arrayField(#member, VHL::kindAs<VHL::Kind::kind, std::remove_extent_t<decltype(Params::member)>>(), \
                    {offsetof(Params, i_##member), offsetof(Params, n_##member), offsetof(Params, member)},  \
                    sizeof(Params::member), about)

/// The fields of a structure that is itself a member, `offset` bytes on.
template <class Part>
constexpr auto fieldsOf(std::size_t offset = 0)
{
    auto fields = Part::fields();
    for (Field& field : fields)
        field.offset += offset;
    return fields;
}

/// Several lists as one.
template <std::size_t... Counts>
constexpr auto concatenate(const std::array<Field, Counts>&... lists)
{
    return std::apply([](const auto&... all) { return std::array{all...}; }, std::tuple_cat(lists...));
}

/// Field `index` of a row of structures of a kind, the structure's number from 1 appended to its name.
template <class Part>
constexpr Field fieldInRow(std::size_t index)
{
    const auto part = Part::fields();
    const std::size_t number = index / part.size();
    Field field = part[index % part.size()];
    field.name = FieldName(field.name, static_cast<int>(number) + 1);
    field.offset += number * sizeof(Part);
    return field;
}

/// The fields of `Count` structures of a kind one after another: input1, weight1, input2, weight2 ...
template <class Part, std::size_t Count>
constexpr auto numbered()
{
    return []<std::size_t... Index>(std::index_sequence<Index...>)
    {
        return std::array{fieldInRow<Part>(Index)...};
    }
    (std::make_index_sequence<Part::fields().size() * Count>());
}

/// Whether the fields, end to end, fill the structure.
template <class Params>
constexpr bool tiles()
{
    std::size_t end = 0;
    for (const Field& field : Params::fields()) {
        if (field.offset != end)
            return false;
        end += field.size;
    }
    return end == sizeof(Params);
}

/// Whether each field has a description.
template <class Params>
constexpr bool documented()
{
    for (const Field& field : Params::fields())
        if (field.about.empty())
            return false;
    return true;
}

} // namespace VHL
