// SPDX-License-Identifier: BSD-3-Clause
// Subtract: input1 - input2.

#include "shaders/binary.h"

static constexpr auto subtract = [](float a, float b) { return a - b; };

static constexpr const char* edges =
    "Any input is fine. A NaN and equal infinities give NaN, a difference too large an infinity.";

struct _vhSubScalarParams : VHL::Pair<miScalar> {};
struct _vhSubVectorParams : VHL::Pair<miVector> {};
struct _vhSubColor_v2Params : VHL::ColorPair<> {};

struct vhSubScalar final : VHL::dMentalRayShader<miScalar, _vhSubScalarParams, 1> {
    int execute(miScalar* result, miState* state, Params* params) override
    {
        return VHL::binary(subtract, result, state, *params);
    }
};

struct vhSubVector final : VHL::dMentalRayShader<miVector, _vhSubVectorParams, 1> {
    int execute(miVector* result, miState* state, Params* params) override
    {
        return VHL::binary(subtract, result, state, *params);
    }
};

struct vhSubColor_v2 final : VHL::dMentalRayShader<miColor, _vhSubColor_v2Params, 2> {
    int execute(miColor* result, miState* state, Params* params) override
    {
        return VHL::binary(subtract, result, state, *params);
    }
};

VHL_EXPORT_SHADER(vhSubScalar_v1, vhSubScalar, "input1 - input2.", .order = VHL::pairOrder, .edges = edges)
VHL_EXPORT_SHADER(vhSubVector_v1, vhSubVector, "input1 - input2, component by component.",
                  .order = VHL::pairOrder, .edges = edges)
VHL_EXPORT_SHADER(vhSubColor_v2, vhSubColor_v2, "input1 - input2, channel by channel, alpha included.",
                  .order = VHL::colorPairOrder, .edges = edges)
