// SPDX-License-Identifier: BSD-3-Clause
// Null and constant: the input, unchanged. Two names for one class: the one marks a place in a network, the
// other holds a value that many shaders share.

#include "shaders/unary.h"

struct _vhNullScalarParams : VHL::Single<miScalar> {};
struct _vhNullVectorParams : VHL::Single<miVector> {};

struct _vhNullColor_v2Params {
    miColor input;
    miBoolean useAlpha;
    miScalar alpha;

    static constexpr auto fields()
    {
        using P = _vhNullColor_v2Params;
        return std::array{
            VHL_FIELD(P, input, "Operand."),
            VHL_FIELD_AS(P, boolean, useAlpha, "On: input keeps its alpha. Off: alpha replaces it.").by(1),
            VHL_FIELD(P, alpha, "Alpha of the result while useAlpha is off.").by(1)};
    }
};

struct vhNullScalar final : VHL::dMentalRayShader<miScalar, _vhNullScalarParams, 1> {
    int execute(miScalar* result, miState* state, Params* params) override
    {
        *result = VHL::evaluate(state, params->input);
        return 1;
    }
};

struct vhNullVector final : VHL::dMentalRayShader<miVector, _vhNullVectorParams, 1> {
    int execute(miVector* result, miState* state, Params* params) override
    {
        *result = VHL::evaluate(state, params->input);
        return 1;
    }
};

struct vhNullColorv2 final : VHL::dMentalRayShader<miColor, _vhNullColor_v2Params, 2> {
    int execute(miColor* result, miState* state, Params* params) override
    {
        VHL::dColor color = VHL::evaluate(state, params->input);
        if (!VHL::evaluate(state, params->useAlpha))
            color.a() = VHL::evaluate(state, params->alpha);
        *result = color;
        return 1;
    }
};

static constexpr const char* colorOrder =
    "input, then useAlpha, each once; alpha only while useAlpha is off.";
static constexpr const char* edges = "Any input is fine and passes as it is, NaN, infinities and -0 too.";

VHL_EXPORT_SHADER(vhNullScalar_v1, vhNullScalar, "The input, unchanged.", .order = VHL::singleOrder,
                  .edges = edges)
VHL_EXPORT_SHADER(vhNullVector_v1, vhNullVector, "The input, unchanged.", .order = VHL::singleOrder,
                  .edges = edges)
VHL_EXPORT_SHADER(vhNullColor_v2, vhNullColorv2,
                  "The input, unchanged; while useAlpha is off, alpha replaces its alpha.",
                  .order = colorOrder, .edges = edges)
VHL_EXPORT_SHADER(vhConstScalar_v1, vhNullScalar, "A value for several shaders to share.",
                  .order = VHL::singleOrder, .edges = edges)
VHL_EXPORT_SHADER(vhConstVector_v1, vhNullVector, "A vector for several shaders to share.",
                  .order = VHL::singleOrder, .edges = edges)
VHL_EXPORT_SHADER(vhConstColor_v2, vhNullColorv2,
                  "A colour for several shaders to share; while useAlpha is off, alpha replaces its alpha.",
                  .order = colorOrder, .edges = edges)
