// SPDX-License-Identifier: BSD-3-Clause
// Add: input1 + input2.

#include "shaders/binary.h"

static constexpr auto add = [](float a, float b) { return a + b; };

static constexpr const char* edges =
    "Any input is fine. A NaN and infinities of opposite signs give NaN, a sum too large an infinity.";

struct _vhAddScalarParams : VHL::Pair<miScalar> {};
struct _vhAddVectorParams : VHL::Pair<miVector> {};
struct _vhAddColor_v2Params : VHL::ColorPair<> {};

struct vhAddScalar final : VHL::dMentalRayShader<miScalar, _vhAddScalarParams, 1> {
    int execute(miScalar* result, miState* state, Params* params) override
    {
        return VHL::binary(add, result, state, *params);
    }
};

struct vhAddVector final : VHL::dMentalRayShader<miVector, _vhAddVectorParams, 1> {
    int execute(miVector* result, miState* state, Params* params) override
    {
        return VHL::binary(add, result, state, *params);
    }
};

struct vhAddColor_v2 final : VHL::dMentalRayShader<miColor, _vhAddColor_v2Params, 2> {
    int execute(miColor* result, miState* state, Params* params) override
    {
        return VHL::binary(add, result, state, *params);
    }
};

VHL_EXPORT_SHADER(vhAddScalar_v1, vhAddScalar, "input1 + input2.", .order = VHL::pairOrder, .edges = edges)
VHL_EXPORT_SHADER(vhAddVector_v1, vhAddVector, "input1 + input2, component by component.",
                  .order = VHL::pairOrder, .edges = edges)
VHL_EXPORT_SHADER(vhAddColor_v2, vhAddColor_v2, "input1 + input2, channel by channel, alpha included.",
                  .order = VHL::colorPairOrder, .edges = edges)
