// SPDX-License-Identifier: BSD-3-Clause
// An input and its bounds: clamp, clampChannel, compress, expand and the range tests of comparison.
#pragma once

#include "core/export.h"
#include "shaders/components.h"

#include <array>
#include <string_view>

namespace VHL {

/// An input with a lower and an upper bound. Role says what they are to the operation.
template <class T, class Role>
struct Range {
    T input;
    T lower;
    T upper;

    static constexpr auto fields()
    {
        return std::array{VHL_FIELD(Range, input, Role::input), VHL_FIELD(Range, lower, Role::lower),
                          VHL_FIELD(Range, upper, Role::upper).by(1)};
    }
};

/// The same of colours, where each bound may take its alpha from a scalar; the input keeps its own.
template <class Role>
struct ColorRange {
    miColor input;
    miColor lower;
    miBoolean useAlphaLower;
    miScalar alphaLower;
    miColor upper;
    miBoolean useAlphaUpper;
    miScalar alphaUpper;

    static constexpr auto fields()
    {
        using P = ColorRange;
        return std::array{
            VHL_FIELD(P, input, Role::input),
            VHL_FIELD(P, lower, Role::lower),
            VHL_FIELD_AS(P, boolean, useAlphaLower, "On: lower keeps its alpha. Off: alphaLower replaces it.")
                .by(1),
            VHL_FIELD(P, alphaLower, "Alpha of lower while useAlphaLower is off."),
            VHL_FIELD(P, upper, Role::upper).by(1),
            VHL_FIELD_AS(P, boolean, useAlphaUpper, "On: upper keeps its alpha. Off: alphaUpper replaces it.")
                .by(1),
            VHL_FIELD(P, alphaUpper, "Alpha of upper while useAlphaUpper is off.").by(1)};
    }
};

inline constexpr std::string_view rangeOrder = "input, lower, then upper, each once.";
inline constexpr std::string_view colorRangeOrder =
    "input, lower, upper, useAlphaLower and useAlphaUpper, each once; then alphaLower only while "
    "useAlphaLower is off, and alphaUpper only while useAlphaUpper is off.";

/// Input, lower and upper bound, evaluated in field order.
template <class T, class Role>
std::array<Value<T>, 3> bounded(miState* state, Range<T, Role>& p)
{
    const Value<T> input = evaluate(state, p.input);
    const Value<T> lower = evaluate(state, p.lower);
    const Value<T> upper = evaluate(state, p.upper);
    return {input, lower, upper};
}

/// All colours, then both flags, then only the alphas that replace one.
template <class Role>
std::array<dColor, 3> bounded(miState* state, ColorRange<Role>& p)
{
    const dColor input = evaluate(state, p.input);
    dColor lower = evaluate(state, p.lower);
    dColor upper = evaluate(state, p.upper);
    const bool keepLower = evaluate(state, p.useAlphaLower);
    const bool keepUpper = evaluate(state, p.useAlphaUpper);
    if (!keepLower)
        lower.a() = evaluate(state, p.alphaLower);
    if (!keepUpper)
        upper.a() = evaluate(state, p.alphaUpper);
    return {input, lower, upper};
}

/// `execute` of a shader with bounds: op on each component of input, lower and upper, alpha included.
template <class Op, class Result, class Params>
int withinBounds(Op op, Result* result, miState* state, Params& params)
{
    const auto [input, lower, upper] = bounded(state, params);
    *result = perComponent(op, input, lower, upper);
    return 1;
}

/// The clamp of the shaders, deliberately not that of the value types: the lower bound is asked first, so
/// that bounds the wrong way round make a step from one to the other, and a NaN passes.
inline constexpr auto clamp = [](float input, float lower, float upper) {
    return lower > input ? lower : input > upper ? upper : input;
};

/// What clamp makes of its parameters.
struct ClampBounds {
    static constexpr std::string_view input = "What is held between the bounds; NaN passes.";
    static constexpr std::string_view lower = "What an input below it becomes, also where it is above upper.";
    static constexpr std::string_view upper = "What any other input above it becomes.";
};

inline constexpr std::string_view clampEdges =
    "A NaN input passes, and a NaN bound holds nothing back. With lower above upper, an input below lower "
    "gives lower, any other upper. 0 and -0 are equal: neither replaces the other.";

} // namespace VHL
