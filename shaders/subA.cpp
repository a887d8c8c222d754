// SPDX-License-Identifier: BSD-3-Clause
// Absolute difference: |input1 - input2|.

#include "shaders/binary.h"

#include <cmath>

static constexpr auto difference = [](float a, float b) { return std::fabs(a - b); };

static constexpr const char* edges =
    "Any input is fine. The result is never below 0 and never -0; a NaN and equal infinities give NaN.";

struct _vhSubAScalarParams : VHL::Pair<miScalar> {};
struct _vhSubAVectorParams : VHL::Pair<miVector> {};
struct _vhSubAColorParams : VHL::Pair<miColor> {};
struct _vhSubAColor_v2Params : VHL::ColorPair<> {};

struct vhSubAScalar final : VHL::dMentalRayShader<miScalar, _vhSubAScalarParams, 1> {
    int execute(miScalar* result, miState* state, Params* params) override
    {
        return VHL::binary(difference, result, state, *params);
    }
};

struct vhSubAVector final : VHL::dMentalRayShader<miVector, _vhSubAVectorParams, 1> {
    int execute(miVector* result, miState* state, Params* params) override
    {
        return VHL::binary(difference, result, state, *params);
    }
};

struct vhSubAColor final : VHL::dMentalRayShader<miColor, _vhSubAColorParams, 1> {
    int execute(miColor* result, miState* state, Params* params) override
    {
        return VHL::binary(difference, result, state, *params);
    }
};

struct vhSubAColor_v2 final : VHL::dMentalRayShader<miColor, _vhSubAColor_v2Params, 2> {
    int execute(miColor* result, miState* state, Params* params) override
    {
        return VHL::binary(difference, result, state, *params);
    }
};

VHL_EXPORT_SHADER(vhSubAScalar_v1, vhSubAScalar, "Absolute value of input1 - input2.",
                  .order = VHL::pairOrder, .edges = edges)
VHL_EXPORT_SHADER(vhSubAVector_v1, vhSubAVector, "Absolute value of input1 - input2, component by component.",
                  .order = VHL::pairOrder, .edges = edges)
VHL_EXPORT_SHADER(vhSubAColor_v1, vhSubAColor,
                  "Absolute value of input1 - input2, channel by channel, alpha included.",
                  .order = VHL::pairOrder, .edges = edges)
VHL_EXPORT_SHADER(vhSubAColor_v2, vhSubAColor_v2,
                  "Absolute value of input1 - input2, channel by channel, alpha included.",
                  .order = VHL::colorPairOrder, .edges = edges)
