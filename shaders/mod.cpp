// SPDX-License-Identifier: BSD-3-Clause
// Modulo: what is left of input1 after taking input2 away as often as it fits.

#include "shaders/binary.h"

#include <cmath>

// In double precision, rounded once.
static constexpr auto modulo = [](float a, float b) {
    return static_cast<float>(std::fmod(double(a), double(b)));
};

static constexpr const char* edges =
    "A NaN, an infinite dividend and a divisor of 0 give NaN; an infinite divisor gives a finite dividend "
    "back. The sign of the divisor does not count, and a remainder of 0 has the sign of the dividend.";

namespace {

struct Remainder {
    static constexpr std::string_view first = "Dividend; the result has its sign.";
    static constexpr std::string_view second = "Divisor; 0 gives NaN.";
    static constexpr float standard = 1;
};

} // namespace

struct _vhModScalarParams : VHL::Pair<miScalar, Remainder> {};
struct _vhModVectorParams : VHL::Pair<miVector, Remainder> {};
struct _vhModColor_v2Params : VHL::ColorPair<Remainder> {};

struct vhModScalar final : VHL::dMentalRayShader<miScalar, _vhModScalarParams, 1> {
    int execute(miScalar* result, miState* state, Params* params) override
    {
        return VHL::binary(modulo, result, state, *params);
    }
};

struct vhModVector final : VHL::dMentalRayShader<miVector, _vhModVectorParams, 1> {
    int execute(miVector* result, miState* state, Params* params) override
    {
        return VHL::binary(modulo, result, state, *params);
    }
};

struct vhModColor_v2 final : VHL::dMentalRayShader<miColor, _vhModColor_v2Params, 2> {
    int execute(miColor* result, miState* state, Params* params) override
    {
        return VHL::binary(modulo, result, state, *params);
    }
};

VHL_EXPORT_SHADER(
    vhModScalar_v1, vhModScalar,
    "Remainder of input1 / input2; computed in double, with the sign of input1; NaN for an input2 of 0.",
    .order = VHL::pairOrder, .edges = edges)
VHL_EXPORT_SHADER(vhModVector_v1, vhModVector,
                  "Remainder of input1 / input2, component by component; computed in double, with the sign "
                  "of input1; NaN for an input2 of 0.",
                  .order = VHL::pairOrder, .edges = edges)
VHL_EXPORT_SHADER(vhModColor_v2, vhModColor_v2,
                  "Remainder of input1 / input2, channel by channel, alpha included; computed in double, "
                  "with the sign of input1; NaN for an input2 of 0.",
                  .order = VHL::colorPairOrder, .edges = edges)
