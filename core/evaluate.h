// SPDX-License-Identifier: BSD-3-Clause
// Reading a shader parameter.
#pragma once

#include "color.h"
#include "scalar.h"
#include "vector.h"

#include <shader.h>

#include <cstring>
#include <type_traits>

namespace VHL {

/// The type to compute with for a type of the renderer: the value types, and int for an enumeration, as some
/// renderers' boolean is one and its word may hold more than the enumerators.
template <class T>
struct ValueOf {
    using type = std::conditional_t<std::is_enum_v<T>, int, T>;
};
template <>
struct ValueOf<miScalar> {
    using type = dScalar;
};
template <>
struct ValueOf<miVector> {
    using type = dVector;
};
template <>
struct ValueOf<miColor> {
    using type = dColor;
};
template <class T>
using Value = typename ValueOf<T>::type;

/// Where the parameter's value for this sample lies: the field itself or, when a shader is wired into it, the
/// result of running that shader now. For arrays and null tests; the memory is the renderer's and is good
/// until the next evaluation.
template <class T>
T* evaluateAddress(miState* state, T& field)
{
    void* const parameter = &field;
    return static_cast<T*>(mi_eval(state, parameter));
}

/// The parameter's value for this sample: the literal in the block or, when a shader is wired into it, what
/// that shader returns now. Each call may run that shader again: read once, keep the copy, one named local
/// per read so that the order of evaluation is the order of the lines.
template <class T>
Value<T> evaluate(miState* state, T& field)
{
    using Word = std::conditional_t<std::is_enum_v<T>, int, T>;
    Word copy;
    static_assert(sizeof copy == sizeof field);
    std::memcpy(&copy, evaluateAddress(state, field), sizeof copy);
    return copy;
}

} // namespace VHL
