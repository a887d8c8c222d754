// SPDX-License-Identifier: BSD-3-Clause
// Array parameters that are read whole.
#pragma once

#include "core/evaluate.h"

#include <algorithm>
#include <vector>

namespace VHL {

/// Start, count and then every element, evaluated in order: shaders may be wired into elements. For init, as
/// it allocates. No renderer counts below 0; what does counts as empty.
template <class T>
std::vector<Value<T>> evaluateArray(miState* state, miInteger& start, miInteger& count, T* slot)
{
    const int first = evaluate(state, start);
    const int length = std::max(int(evaluate(state, count)), 0);
    T* const elements = slot + first;
    std::vector<Value<T>> values;
    values.reserve(static_cast<std::size_t>(length));
    for (int k = 0; k < length; ++k)
        values.push_back(evaluate(state, elements[k]));
    return values;
}

} // namespace VHL
