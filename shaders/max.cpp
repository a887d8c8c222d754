// SPDX-License-Identifier: BSD-3-Clause
// Maximum.

#include "shaders/binary.h"

// Ties give a; a NaN on either side gives b.
static constexpr auto larger = [](float a, float b) { return a >= b ? a : b; };

static constexpr const char* edges = "Ties, 0 and -0 among them, give input1; a NaN on either side gives "
                                     "input2. Infinities are numbers like others.";

struct _vhMaxScalarParams : VHL::Pair<miScalar> {};
struct _vhMaxVectorParams : VHL::Pair<miVector> {};
struct _vhMaxColor_v2Params : VHL::ColorPair<> {};

struct vhMaxScalar final : VHL::dMentalRayShader<miScalar, _vhMaxScalarParams, 1> {
    int execute(miScalar* result, miState* state, Params* params) override
    {
        return VHL::binary(larger, result, state, *params);
    }
};

struct vhMaxVector final : VHL::dMentalRayShader<miVector, _vhMaxVectorParams, 1> {
    int execute(miVector* result, miState* state, Params* params) override
    {
        return VHL::binary(larger, result, state, *params);
    }
};

struct vhMaxColor_v2 final : VHL::dMentalRayShader<miColor, _vhMaxColor_v2Params, 2> {
    int execute(miColor* result, miState* state, Params* params) override
    {
        return VHL::binary(larger, result, state, *params);
    }
};

VHL_EXPORT_SHADER(vhMaxScalar_v1, vhMaxScalar,
                  "The larger of input1 and input2; ties give input1, a NaN on either side gives input2.",
                  .order = VHL::pairOrder, .edges = edges)
VHL_EXPORT_SHADER(vhMaxVector_v1, vhMaxVector,
                  "The larger of input1 and input2, component by component; ties give input1, a NaN on "
                  "either side gives input2.",
                  .order = VHL::pairOrder, .edges = edges)
VHL_EXPORT_SHADER(vhMaxColor_v2, vhMaxColor_v2,
                  "The larger of input1 and input2, channel by channel, alpha included; ties give input1, a "
                  "NaN on either side gives input2.",
                  .order = VHL::colorPairOrder, .edges = edges)
