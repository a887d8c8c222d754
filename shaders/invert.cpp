// SPDX-License-Identifier: BSD-3-Clause
// Invert: maximum - input.

#include "core/export.h"
#include "shaders/components.h"

#include <array>

static constexpr auto inverse = [](float input, float maximum) { return maximum - input; };

namespace {

template <class T>
struct Inversion {
    T input;
    T maximum;

    static constexpr auto fields()
    {
        return std::array{VHL_FIELD(Inversion, input, "What is turned round."),
                          VHL_FIELD(Inversion, maximum, "What an input of 0 becomes.").by(1)};
    }
};

template <class T>
int invert(T* result, miState* state, Inversion<T>& params)
{
    const VHL::Value<T> input = VHL::evaluate(state, params.input);
    const VHL::Value<T> maximum = VHL::evaluate(state, params.maximum);
    *result = VHL::perComponent(inverse, input, maximum);
    return 1;
}

} // namespace

struct _vhInvertScalarParams : Inversion<miScalar> {};
struct _vhInvertVectorParams : Inversion<miVector> {};

/// The alpha of choice belongs to the maximum, not to the input.
struct _vhInvertColor_v2Params {
    miColor input;
    miColor maximum;
    miBoolean useAlpha;
    miScalar alpha;

    static constexpr auto fields()
    {
        using P = _vhInvertColor_v2Params;
        return std::array{
            VHL_FIELD(P, input, "What is turned round."),
            VHL_FIELD(P, maximum, "What an input of 0 becomes.").by(1),
            VHL_FIELD_AS(P, boolean, useAlpha, "On: maximum keeps its alpha. Off: alpha replaces it.").by(1),
            VHL_FIELD(P, alpha, "Alpha of maximum while useAlpha is off.").by(1)};
    }
};

struct vhInvertScalar final : VHL::dMentalRayShader<miScalar, _vhInvertScalarParams, 1> {
    int execute(miScalar* result, miState* state, Params* params) override
    {
        return invert(result, state, *params);
    }
};

struct vhInvertVector final : VHL::dMentalRayShader<miVector, _vhInvertVectorParams, 1> {
    int execute(miVector* result, miState* state, Params* params) override
    {
        return invert(result, state, *params);
    }
};

struct vhInvertColorv2 final : VHL::dMentalRayShader<miColor, _vhInvertColor_v2Params, 2> {
    int execute(miColor* result, miState* state, Params* params) override
    {
        const VHL::dColor input = VHL::evaluate(state, params->input);
        VHL::dColor maximum = VHL::evaluate(state, params->maximum);
        if (!VHL::evaluate(state, params->useAlpha))
            maximum.a() = VHL::evaluate(state, params->alpha);
        *result = VHL::perComponent(inverse, input, maximum);
        return 1;
    }
};

static constexpr const char* order = "input, then maximum, each once.";
static constexpr const char* edges =
    "Any input is fine; one above maximum gives a number below 0. A NaN and equal infinities give NaN.";

VHL_EXPORT_SHADER(vhInvertScalar_v1, vhInvertScalar, "maximum - input.", .order = order, .edges = edges)
VHL_EXPORT_SHADER(vhInvertVector_v1, vhInvertVector, "maximum - input, component by component.",
                  .order = order, .edges = edges)
VHL_EXPORT_SHADER(vhInvertColor_v2, vhInvertColorv2,
                  "maximum - input, channel by channel, alpha included; while useAlpha is off, alpha "
                  "replaces the alpha of maximum, not of input.",
                  .order = "input, maximum, then useAlpha, each once; alpha only while useAlpha is off.",
                  .edges = edges)
