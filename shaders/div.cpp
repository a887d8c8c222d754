// SPDX-License-Identifier: BSD-3-Clause
// Divide: input1 / input2.

#include "shaders/binary.h"

// The value types' division would give 0 for a divisor of 0; this one deliberately does not.
static constexpr auto divide = [](float a, float b) { return a / b; };

static constexpr const char* edges =
    "No guard: a divisor of 0 gives an infinity, whose sign is that of both operands together and counts -0 "
    "as negative; 0 / 0 gives NaN, as do a NaN and two infinities.";

namespace {

struct Division {
    static constexpr std::string_view first = "Dividend.";
    static constexpr std::string_view second = "Divisor; 0 gives an infinity or NaN, there is no guard.";
    static constexpr float standard = 1;
};

} // namespace

struct _vhDivScalarParams : VHL::Pair<miScalar, Division> {};
struct _vhDivVectorParams : VHL::Pair<miVector, Division> {};
struct _vhDivColor_v2Params : VHL::ColorPair<Division> {};

struct vhDivScalar final : VHL::dMentalRayShader<miScalar, _vhDivScalarParams, 1> {
    int execute(miScalar* result, miState* state, Params* params) override
    {
        return VHL::binary(divide, result, state, *params);
    }
};

struct vhDivVector final : VHL::dMentalRayShader<miVector, _vhDivVectorParams, 1> {
    int execute(miVector* result, miState* state, Params* params) override
    {
        return VHL::binary(divide, result, state, *params);
    }
};

struct vhDivColor_v2 final : VHL::dMentalRayShader<miColor, _vhDivColor_v2Params, 2> {
    int execute(miColor* result, miState* state, Params* params) override
    {
        return VHL::binary(divide, result, state, *params);
    }
};

VHL_EXPORT_SHADER(vhDivScalar_v1, vhDivScalar,
                  "input1 / input2, unguarded: dividing by 0 gives an infinity or NaN.",
                  .order = VHL::pairOrder, .edges = edges)
VHL_EXPORT_SHADER(
    vhDivVector_v1, vhDivVector,
    "input1 / input2, component by component, unguarded: dividing by 0 gives an infinity or NaN.",
    .order = VHL::pairOrder, .edges = edges)
VHL_EXPORT_SHADER(
    vhDivColor_v2, vhDivColor_v2,
    "input1 / input2, channel by channel, alpha included, unguarded: dividing by 0 gives an infinity or NaN.",
    .order = VHL::colorPairOrder, .edges = edges)
