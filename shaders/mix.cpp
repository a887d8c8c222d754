// SPDX-License-Identifier: BSD-3-Clause
// Mix: from input1 to input2 by a percentage.

#include "shaders/binary.h"

namespace {

/// Two operands and how much of the second there is.
template <class Operands>
struct Weighted {
    Operands operands;
    miScalar weight;

    static constexpr auto fields()
    {
        return VHL::concatenate(VHL::fieldsOf<Operands>(offsetof(Weighted, operands)),
                                std::array{VHL_FIELD(Weighted, weight,
                                                     "Percentage of input2, held to 0 to 100: 0 gives "
                                                     "input1, 100 gives input2; NaN gives NaN.")
                                               .by(50)
                                               .within(0, 100)});
    }
};

/// The weight is read last. Held between 0 and 100 by comparisons that let a NaN pass, unlike the value
/// types' clamp.
template <class Result, class Operands>
int mix(Result* result, miState* state, Weighted<Operands>& params)
{
    const auto [a, b] = VHL::operands(state, params.operands);
    const float weight = VHL::evaluate(state, params.weight);
    const float percentage = weight < 0.0f ? 0.0f : weight > 100.0f ? 100.0f : weight;
    const float w = percentage / 100.0f;
    *result = VHL::perComponent([w](float from, float to) { return (1.0f - w) * from + w * to; }, a, b);
    return 1;
}

} // namespace

struct _vhMixScalarParams : Weighted<VHL::Pair<miScalar>> {};
struct _vhMixVectorParams : Weighted<VHL::Pair<miVector>> {};
struct _vhMixColor_v2Params : Weighted<VHL::ColorPair<>> {};

struct vhMixScalar final : VHL::dMentalRayShader<miScalar, _vhMixScalarParams, 1> {
    int execute(miScalar* result, miState* state, Params* params) override
    {
        return mix(result, state, *params);
    }
};

struct vhMixVector final : VHL::dMentalRayShader<miVector, _vhMixVectorParams, 1> {
    int execute(miVector* result, miState* state, Params* params) override
    {
        return mix(result, state, *params);
    }
};

struct vhMixColor_v2 final : VHL::dMentalRayShader<miColor, _vhMixColor_v2Params, 2> {
    int execute(miColor* result, miState* state, Params* params) override
    {
        return mix(result, state, *params);
    }
};

static constexpr const char* order =
    "input1, input2, then weight, each once: also the input that counts for nothing.";
static constexpr const char* colorOrder =
    "input1, input2, useAlpha1 and useAlpha2; alpha1 only while useAlpha1 is off, and alpha2 only while "
    "useAlpha2 is off; weight last. Each once, also the input that counts for nothing.";
static constexpr const char* edges =
    "A weight below 0, minus infinity too, is 0, one above 100 is 100, and NaN gives NaN. The input that has "
    "no weight counts still: an infinity or NaN there gives NaN.";

VHL_EXPORT_SHADER(
    vhMixScalar_v1, vhMixScalar,
    "Blend from input1 to input2 by a percentage; an infinity on the side that has no weight gives NaN.",
    .order = order, .edges = edges)
VHL_EXPORT_SHADER(vhMixVector_v1, vhMixVector,
                  "Blend from input1 to input2 by a percentage, component by component; an infinity on the "
                  "side that has no weight gives NaN.",
                  .order = order, .edges = edges)
VHL_EXPORT_SHADER(vhMixColor_v2, vhMixColor_v2,
                  "Blend from input1 to input2 by a percentage, channel by channel, alpha included; an "
                  "infinity on the side that has no weight gives NaN.",
                  .order = colorOrder, .edges = edges)
