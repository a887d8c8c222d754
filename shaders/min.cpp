// SPDX-License-Identifier: BSD-3-Clause
// Minimum.

#include "shaders/binary.h"

// Ties give b; a NaN on either side gives b.
static constexpr auto smaller = [](float a, float b) { return a < b ? a : b; };

static constexpr const char* edges =
    "Ties, 0 and -0 among them, and a NaN on either side give input2. Infinities are numbers like others.";

struct _vhMinScalarParams : VHL::Pair<miScalar> {};
struct _vhMinVectorParams : VHL::Pair<miVector> {};
struct _vhMinColor_v2Params : VHL::ColorPair<> {};

struct vhMinScalar final : VHL::dMentalRayShader<miScalar, _vhMinScalarParams, 1> {
    int execute(miScalar* result, miState* state, Params* params) override
    {
        return VHL::binary(smaller, result, state, *params);
    }
};

struct vhMinVector final : VHL::dMentalRayShader<miVector, _vhMinVectorParams, 1> {
    int execute(miVector* result, miState* state, Params* params) override
    {
        return VHL::binary(smaller, result, state, *params);
    }
};

struct vhMinColor_v2 final : VHL::dMentalRayShader<miColor, _vhMinColor_v2Params, 2> {
    int execute(miColor* result, miState* state, Params* params) override
    {
        return VHL::binary(smaller, result, state, *params);
    }
};

VHL_EXPORT_SHADER(vhMinScalar_v1, vhMinScalar,
                  "The smaller of input1 and input2; ties and a NaN on either side give input2.",
                  .order = VHL::pairOrder, .edges = edges)
VHL_EXPORT_SHADER(
    vhMinVector_v1, vhMinVector,
    "The smaller of input1 and input2, component by component; ties and a NaN on either side give input2.",
    .order = VHL::pairOrder, .edges = edges)
VHL_EXPORT_SHADER(vhMinColor_v2, vhMinColor_v2,
                  "The smaller of input1 and input2, channel by channel, alpha included; ties and a NaN on "
                  "either side give input2.",
                  .order = VHL::colorPairOrder, .edges = edges)
