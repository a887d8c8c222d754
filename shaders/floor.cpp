// SPDX-License-Identifier: BSD-3-Clause
// Floor: the nearest whole number at or below the input.

#include "shaders/unary.h"

#include <cmath>

static constexpr auto roundDown = [](float a) { return std::floor(a); };

static constexpr const char* edges = "Any input is fine. NaN, infinities and -0 stay as they are, as does "
                                     "every number from 8388608 on, of either sign, which is whole already.";

struct _vhFloorScalarParams : VHL::Single<miScalar> {};
struct _vhFloorVectorParams : VHL::Single<miVector> {};
struct _vhFloorColor_v2Params : VHL::Single<miColor> {
}; // version 2 without an alpha of its own, deliberately

struct vhFloorScalar final : VHL::dMentalRayShader<miScalar, _vhFloorScalarParams, 1> {
    int execute(miScalar* result, miState* state, Params* params) override
    {
        return VHL::unary(roundDown, result, state, *params);
    }
};

struct vhFloorVector final : VHL::dMentalRayShader<miVector, _vhFloorVectorParams, 1> {
    int execute(miVector* result, miState* state, Params* params) override
    {
        return VHL::unary(roundDown, result, state, *params);
    }
};

struct vhFloorColorv2 final : VHL::dMentalRayShader<miColor, _vhFloorColor_v2Params, 2> {
    int execute(miColor* result, miState* state, Params* params) override
    {
        return VHL::unary(roundDown, result, state, *params);
    }
};

VHL_EXPORT_SHADER(vhFloorScalar_v1, vhFloorScalar, "The nearest whole number at or below the input.",
                  .order = VHL::singleOrder, .edges = edges)
VHL_EXPORT_SHADER(vhFloorVector_v1, vhFloorVector,
                  "The nearest whole number at or below the input, component by component.",
                  .order = VHL::singleOrder, .edges = edges)
VHL_EXPORT_SHADER(vhFloorColor_v2, vhFloorColorv2,
                  "The nearest whole number at or below the input, channel by channel, alpha included.",
                  .order = VHL::singleOrder, .edges = edges)
