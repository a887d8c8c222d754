// SPDX-License-Identifier: BSD-3-Clause
// Ceiling: the nearest whole number at or above the input.

#include "shaders/unary.h"

#include <cmath>

static constexpr auto roundUp = [](float a) { return std::ceil(a); };

static constexpr const char* edges =
    "Any input is fine. NaN, infinities and -0 stay as they are, as does every number from 8388608 on, of "
    "either sign, which is whole already; an input between -1 and 0 gives -0.";

struct _vhCeilScalarParams : VHL::Single<miScalar> {};
struct _vhCeilVectorParams : VHL::Single<miVector> {};
struct _vhCeilColor_v2Params : VHL::Single<miColor> {}; // version 2 without an alpha of its own, deliberately

struct vhCeilScalar final : VHL::dMentalRayShader<miScalar, _vhCeilScalarParams, 1> {
    int execute(miScalar* result, miState* state, Params* params) override
    {
        return VHL::unary(roundUp, result, state, *params);
    }
};

struct vhCeilVector final : VHL::dMentalRayShader<miVector, _vhCeilVectorParams, 1> {
    int execute(miVector* result, miState* state, Params* params) override
    {
        return VHL::unary(roundUp, result, state, *params);
    }
};

struct vhCeilColorv2 final : VHL::dMentalRayShader<miColor, _vhCeilColor_v2Params, 2> {
    int execute(miColor* result, miState* state, Params* params) override
    {
        return VHL::unary(roundUp, result, state, *params);
    }
};

VHL_EXPORT_SHADER(vhCeilScalar_v1, vhCeilScalar, "The nearest whole number at or above the input.",
                  .order = VHL::singleOrder, .edges = edges)
VHL_EXPORT_SHADER(vhCeilVector_v1, vhCeilVector,
                  "The nearest whole number at or above the input, component by component.",
                  .order = VHL::singleOrder, .edges = edges)
VHL_EXPORT_SHADER(vhCeilColor_v2, vhCeilColorv2,
                  "The nearest whole number at or above the input, channel by channel, alpha included.",
                  .order = VHL::singleOrder, .edges = edges)
