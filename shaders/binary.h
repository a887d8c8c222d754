// SPDX-License-Identifier: BSD-3-Clause
// Shaders with two operands: add, sub, subA, mult, div, mod, min, max, mix and the relations of comparison.
#pragma once

#include "core/export.h"
#include "shaders/components.h"

#include <array>
#include <string_view>
#include <utility>

namespace VHL {

/// What the operands are to most operations, and what each is when a scene leaves it out.
struct Operands {
    static constexpr std::string_view first = "First operand.";
    static constexpr std::string_view second = "Second operand.";
    static constexpr float standard = 0;
};

/// Two operands of one kind.
template <class T, class Role = Operands>
struct Pair {
    T input1;
    T input2;

    static constexpr auto fields()
    {
        return std::array{VHL_FIELD(Pair, input1, Role::first).by(Role::standard),
                          VHL_FIELD(Pair, input2, Role::second).by(Role::standard)};
    }
};

/// Two colours, each of which may take its alpha from a scalar: the layout of version 2.
template <class Role = Operands>
struct ColorPair {
    miColor input1;
    miBoolean useAlpha1;
    miScalar alpha1;
    miColor input2;
    miBoolean useAlpha2;
    miScalar alpha2;

    static constexpr auto fields()
    {
        using P = ColorPair;
        return std::array{
            VHL_FIELD(P, input1, Role::first).by(Role::standard),
            VHL_FIELD_AS(P, boolean, useAlpha1, "On: input1 keeps its alpha. Off: alpha1 replaces it.").by(1),
            VHL_FIELD(P, alpha1, "Alpha of input1 while useAlpha1 is off.").by(1),
            VHL_FIELD(P, input2, Role::second).by(Role::standard),
            VHL_FIELD_AS(P, boolean, useAlpha2, "On: input2 keeps its alpha. Off: alpha2 replaces it.").by(1),
            VHL_FIELD(P, alpha2, "Alpha of input2 while useAlpha2 is off.").by(1)};
    }
};

inline constexpr std::string_view pairOrder = "input1, then input2, each once.";
inline constexpr std::string_view colorPairOrder =
    "input1, input2, useAlpha1 and useAlpha2, each once; then alpha1 only while useAlpha1 is off, and alpha2 "
    "only while useAlpha2 is off.";

/// Both operands, evaluated in field order.
template <class T, class Role>
std::pair<Value<T>, Value<T>> operands(miState* state, Pair<T, Role>& p)
{
    const Value<T> a = evaluate(state, p.input1);
    const Value<T> b = evaluate(state, p.input2);
    return {a, b};
}

/// Both inputs, then both flags, then only the alphas that replace one.
template <class Role>
std::pair<dColor, dColor> operands(miState* state, ColorPair<Role>& p)
{
    dColor a = evaluate(state, p.input1);
    dColor b = evaluate(state, p.input2);
    const bool keep1 = evaluate(state, p.useAlpha1);
    const bool keep2 = evaluate(state, p.useAlpha2);
    if (!keep1)
        a.a() = evaluate(state, p.alpha1);
    if (!keep2)
        b.a() = evaluate(state, p.alpha2);
    return {a, b};
}

/// `execute` of a shader with two operands: op on each component, alpha included.
template <class Op, class Result, class Params>
int binary(Op op, Result* result, miState* state, Params& params)
{
    const auto [a, b] = operands(state, params);
    *result = perComponent(op, a, b);
    return 1;
}

} // namespace VHL
