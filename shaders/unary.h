// SPDX-License-Identifier: BSD-3-Clause
// Shaders with one operand: floor, ceiling and null.
#pragma once

#include "core/export.h"
#include "shaders/components.h"

#include <array>

namespace VHL {

/// One operand.
template <class T>
struct Single {
    T input;

    static constexpr auto fields() { return std::array{VHL_FIELD(Single, input, "Operand.")}; }
};

inline constexpr std::string_view singleOrder = "input, once.";

template <class T>
Value<T> operand(miState* state, Single<T>& p)
{
    return evaluate(state, p.input);
}

/// `execute` of a shader with one operand: op on each component, alpha included.
template <class Op, class Result, class Params>
int unary(Op op, Result* result, miState* state, Params& params)
{
    *result = perComponent(op, operand(state, params));
    return 1;
}

} // namespace VHL
