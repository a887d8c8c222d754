// SPDX-License-Identifier: BSD-3-Clause
// Threshold: the input where it is large enough, else 0.

#include "core/export.h"
#include "shaders/components.h"

#include <array>

// Deliberately two rules: a scalar or a component passes at its threshold, a colour's channel only above it.
// Scenes tell them apart wherever values are exactly on the threshold, 0 and 1 most of all.
static constexpr auto reaching = [](float input, float threshold) {
    return input >= threshold ? input : 0.0f;
};
static constexpr auto exceeding = [](float input, float threshold) {
    return input > threshold ? input : 0.0f;
};

namespace {

template <class T>
struct Limited {
    T input;
    T threshold;

    static constexpr auto fields()
    {
        return std::array{VHL_FIELD(Limited, input, "What passes or becomes 0; NaN becomes 0."),
                          VHL_FIELD(Limited, threshold, "The least input that passes; at NaN none does.")};
    }
};

template <class T>
int threshold(T* result, miState* state, Limited<T>& params)
{
    const VHL::Value<T> input = VHL::evaluate(state, params.input);
    const VHL::Value<T> threshold = VHL::evaluate(state, params.threshold);
    *result = VHL::perComponent(reaching, input, threshold);
    return 1;
}

} // namespace

struct _vhThresholdScalarParams : Limited<miScalar> {};
struct _vhThresholdVectorParams : Limited<miVector> {};

/// The alpha of choice belongs to the threshold, not to the input.
struct _vhThresholdColor_v2Params {
    miColor input;
    miColor threshold;
    miBoolean useAlpha;
    miScalar alpha;

    static constexpr auto fields()
    {
        using P = _vhThresholdColor_v2Params;
        return std::array{
            VHL_FIELD(P, input, "What passes or becomes 0; NaN becomes 0."),
            VHL_FIELD(P, threshold, "What a channel has to exceed to pass; at NaN none does."),
            VHL_FIELD_AS(P, boolean, useAlpha, "On: threshold keeps its alpha. Off: alpha replaces it.")
                .by(1),
            VHL_FIELD(P, alpha, "Alpha of threshold while useAlpha is off.")};
    }
};

struct vhThresholdScalar final : VHL::dMentalRayShader<miScalar, _vhThresholdScalarParams, 1> {
    int execute(miScalar* result, miState* state, Params* params) override
    {
        return threshold(result, state, *params);
    }
};

struct vhThresholdVector final : VHL::dMentalRayShader<miVector, _vhThresholdVectorParams, 1> {
    int execute(miVector* result, miState* state, Params* params) override
    {
        return threshold(result, state, *params);
    }
};

struct vhThresholdColorv2 final : VHL::dMentalRayShader<miColor, _vhThresholdColor_v2Params, 2> {
    int execute(miColor* result, miState* state, Params* params) override
    {
        const VHL::dColor input = VHL::evaluate(state, params->input);
        VHL::dColor threshold = VHL::evaluate(state, params->threshold);
        if (!VHL::evaluate(state, params->useAlpha))
            threshold.a() = VHL::evaluate(state, params->alpha);
        *result = VHL::perComponent(exceeding, input, threshold);
        return 1;
    }
};

static constexpr const char* order = "input, then threshold, each once.";
static constexpr const char* edges = "A NaN on either side gives 0, and what does not pass gives 0, not -0. "
                                     "An input equal to the threshold passes; 0 and -0 are equal.";

VHL_EXPORT_SHADER(vhThresholdScalar_v1, vhThresholdScalar,
                  "The input where it is greater than or equal to the threshold, else 0; NaN gives 0.",
                  .order = order, .edges = edges)
VHL_EXPORT_SHADER(vhThresholdVector_v1, vhThresholdVector,
                  "Each component where it is greater than or equal to the threshold's, else 0; NaN gives 0.",
                  .order = order, .edges = edges)
VHL_EXPORT_SHADER(vhThresholdColor_v2, vhThresholdColorv2,
                  "Each channel, alpha included, where it is greater than the threshold's, else 0: unlike "
                  "scalars and vectors, a channel equal to its threshold gives 0; NaN gives 0.",
                  .order = "input, threshold, then useAlpha, each once; alpha only while useAlpha is off.",
                  .edges = "A NaN on either side gives 0, and what does not pass gives 0, not -0. A channel "
                           "equal to its threshold gives 0.")
