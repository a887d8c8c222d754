// SPDX-License-Identifier: BSD-3-Clause
// Multiply: input1 * input2.

#include "shaders/binary.h"

static constexpr auto multiply = [](float a, float b) { return a * b; };

static constexpr const char* edges =
    "Any input is fine. A NaN and 0 times an infinity give NaN, a product too large an infinity.";

namespace {

struct Factors : VHL::Operands {
    static constexpr float standard = 1;
};

} // namespace

struct _vhMultScalarParams : VHL::Pair<miScalar, Factors> {};
struct _vhMultVectorParams : VHL::Pair<miVector, Factors> {};
struct _vhMultColor_v2Params : VHL::ColorPair<Factors> {};

struct vhMultScalar final : VHL::dMentalRayShader<miScalar, _vhMultScalarParams, 1> {
    int execute(miScalar* result, miState* state, Params* params) override
    {
        return VHL::binary(multiply, result, state, *params);
    }
};

struct vhMultVector final : VHL::dMentalRayShader<miVector, _vhMultVectorParams, 1> {
    int execute(miVector* result, miState* state, Params* params) override
    {
        return VHL::binary(multiply, result, state, *params);
    }
};

struct vhMultColor_v2 final : VHL::dMentalRayShader<miColor, _vhMultColor_v2Params, 2> {
    int execute(miColor* result, miState* state, Params* params) override
    {
        return VHL::binary(multiply, result, state, *params);
    }
};

VHL_EXPORT_SHADER(vhMultScalar_v1, vhMultScalar, "input1 * input2.", .order = VHL::pairOrder, .edges = edges)
VHL_EXPORT_SHADER(vhMultVector_v1, vhMultVector, "input1 * input2, component by component.",
                  .order = VHL::pairOrder, .edges = edges)
VHL_EXPORT_SHADER(vhMultColor_v2, vhMultColor_v2, "input1 * input2, channel by channel, alpha included.",
                  .order = VHL::colorPairOrder, .edges = edges)
