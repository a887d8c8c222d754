// SPDX-License-Identifier: BSD-3-Clause
// Expand: lower to upper becomes 0 to 1, the inverse of compress.

#include "shaders/range.h"

// Deliberately without a guard: scenes see the infinity or NaN that equal bounds give.
static constexpr auto expand = [](float input, float lower, float upper) {
    return (input - lower) / (upper - lower);
};

static constexpr const char* edges =
    "No guard: equal bounds give an infinity with the sign of input - lower, and NaN for an input equal to "
    "them. Bounds the wrong way round turn the result round. A NaN gives NaN, as does an infinite lower.";

namespace {

struct Source {
    static constexpr std::string_view input = "Value between the bounds, or beyond.";
    static constexpr std::string_view lower = "What becomes 0.";
    static constexpr std::string_view upper = "What becomes 1; equal to lower it gives an infinity or NaN.";
};

} // namespace

struct _vhExpandScalarParams : VHL::Range<miScalar, Source> {};
struct _vhExpandVectorParams : VHL::Range<miVector, Source> {};
struct _vhExpandColor_v2Params : VHL::ColorRange<Source> {};

struct vhExpandScalar final : VHL::dMentalRayShader<miScalar, _vhExpandScalarParams, 1> {
    int execute(miScalar* result, miState* state, Params* params) override
    {
        return VHL::withinBounds(expand, result, state, *params);
    }
};

struct vhExpandVector final : VHL::dMentalRayShader<miVector, _vhExpandVectorParams, 1> {
    int execute(miVector* result, miState* state, Params* params) override
    {
        return VHL::withinBounds(expand, result, state, *params);
    }
};

struct vhExpandColorv2 final : VHL::dMentalRayShader<miColor, _vhExpandColor_v2Params, 2> {
    int execute(miColor* result, miState* state, Params* params) override
    {
        return VHL::withinBounds(expand, result, state, *params);
    }
};

VHL_EXPORT_SHADER(vhExpandScalar_v1, vhExpandScalar,
                  "(input - lower) / (upper - lower): lower to upper becomes 0 to 1; inputs beyond the "
                  "bounds go beyond 0 and 1, and equal bounds give an infinity or NaN.",
                  .order = VHL::rangeOrder, .edges = edges)
VHL_EXPORT_SHADER(vhExpandVector_v1, vhExpandVector,
                  "(input - lower) / (upper - lower), component by component: lower to upper becomes 0 to 1; "
                  "inputs beyond the bounds go beyond 0 and 1, and equal bounds give an infinity or NaN.",
                  .order = VHL::rangeOrder, .edges = edges)
VHL_EXPORT_SHADER(
    vhExpandColor_v2, vhExpandColorv2,
    "(input - lower) / (upper - lower), channel by channel, alpha included: lower to upper becomes 0 to 1; "
    "inputs beyond the bounds go beyond 0 and 1, and equal bounds give an infinity or NaN.",
    .order = VHL::colorRangeOrder, .edges = edges)
