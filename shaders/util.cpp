// SPDX-License-Identifier: BSD-3-Clause
// The length of a vector, the vector brought to length 1, and the opacity of the sample.

#include "shaders/length.h"
#include "shaders/unary.h"

struct _vhVectorNormParams : VHL::Single<miVector> {};
struct _vhNormalizeVectorParams : VHL::Single<miVector> {};

struct _vhSetOpacityParams {
    miColor input;
    miColor opacity;
    miBoolean multiply;

    static constexpr auto fields()
    {
        using P = _vhSetOpacityParams;
        return std::array{
            VHL_FIELD(P, input, "The result."),
            VHL_FIELD(P, opacity, "Opacity of the sample by channel: 0 lets everything behind it through.")
                .by(1),
            VHL_FIELD_AS(P, boolean, multiply, "On: the result is multiplied by opacity, alpha too.")};
    }
};

struct vhVectorNorm final : VHL::dMentalRayShader<miScalar, _vhVectorNormParams, 1> {
    int execute(miScalar* result, miState* state, Params* params) override
    {
        const VHL::dVector v = VHL::evaluate(state, params->input);
        *result = VHL::length(v);
        return 1;
    }
};

struct vhNormalizeVector final : VHL::dMentalRayShader<miVector, _vhNormalizeVectorParams, 1> {
    int execute(miVector* result, miState* state, Params* params) override
    {
        const VHL::dVector v = VHL::evaluate(state, params->input);
        const float norm = VHL::length(v);
        *result = norm != 0.0f ? v * (1.0f / norm) : v;
        return 1;
    }
};

struct vhSetOpacity final : VHL::dMentalRayShader<miColor, _vhSetOpacityParams, 1> {
    int execute(miColor* result, miState* state, Params* params) override
    {
        const VHL::dColor input = VHL::evaluate(state, params->input);
        const VHL::dColor opacity = VHL::evaluate(state, params->opacity);
        const bool multiply = VHL::evaluate(state, params->multiply);
        const miColor stored = opacity;
        mi_opacity_set(state, &stored);
        *result = multiply ? input * opacity : input;
        return 1;
    }
};

VHL_EXPORT_SHADER(
    vhVectorNorm_v1, vhVectorNorm,
    "Length of the input, its squares summed in single precision, the root in double: infinite beyond about "
    "1.8e19, 0 below about 2.6e-23.",
    .order = VHL::singleOrder,
    .edges = "A NaN component gives NaN, an infinite one an infinity, unless there is a NaN too. Squares "
             "that are too large or too small for single precision give an infinity or 0.")
VHL_EXPORT_SHADER(
    vhNormalizeVector_v1, vhNormalizeVector,
    "The input brought to length 1, the length as vhVectorNorm_v1 has it: 0 leaves the input as it is, an "
    "infinite one gives 0 (NaN from an infinite component), NaN gives NaN.",
    .order = VHL::singleOrder,
    .edges = "A vector of length 0, also one so short that its squares vanish, passes as it is. Infinite "
             "lengths give 0, and NaN in an infinite component; a NaN component makes all of them NaN.")
VHL_EXPORT_SHADER(
    vhSetOpacity_v1, vhSetOpacity,
    "Sets the opacity of the sample and hands the input on, multiplied by the opacity if multiply is on. "
    "What the opacity does is the renderer's: it counts where it composites layers itself.",
    .order = "input, opacity, then multiply, each once; then the opacity is set.",
    .edges =
        "Any input is fine. The opacity is handed to the renderer as it is, below 0, above 1 and NaN too.")
