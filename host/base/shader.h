// SPDX-License-Identifier: BSD-3-Clause
// How the base library's shaders are exported and read their parameters.
#pragma once

#include <shader.h>

/// In front of an entry point.
#define BASE_ENTRY extern "C" __attribute__((visibility("default")))

/// The version that a shader's declaration must name.
#define BASE_VERSION(shader, number)                                                                         \
    BASE_ENTRY int shader##_version() { return number; }

namespace host::base {

/// The parameter's value for this sample. A connected shader may run again at each call: read once, into a
/// local of its own, and only where the value is needed.
template <class T>
T read(miState* state, T& field)
{
    return *static_cast<T*>(mi_eval(state, &field));
}

/// An array parameter. Its elements lie anywhere at a multiple of their size from the slot.
template <class T>
struct Array {
    int first;
    int count;
    T slot[1];
};

/// The elements, `count` of them; each may be connected and is to be read by itself.
template <class T>
T* elements(miState* state, Array<T>& array)
{
    const int first = read(state, array.first);
    return array.slot + first;
}

} // namespace host::base
