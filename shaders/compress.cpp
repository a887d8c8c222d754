// SPDX-License-Identifier: BSD-3-Clause
// Compress: 0 to 1 becomes lower to upper.

#include "shaders/range.h"

static constexpr auto compress = [](float input, float lower, float upper) {
    return lower + input * (upper - lower);
};

static constexpr const char* edges = "Bounds the wrong way round turn the result round, and equal ones give "
                                     "that number. A NaN gives NaN, an infinite bound an infinity or NaN.";

namespace {

struct Target {
    static constexpr std::string_view input = "Position between the bounds: 0 is lower, 1 is upper.";
    static constexpr std::string_view lower = "What an input of 0 becomes.";
    static constexpr std::string_view upper = "What an input of 1 becomes, to rounding.";
};

} // namespace

struct _vhCompressScalarParams : VHL::Range<miScalar, Target> {};
struct _vhCompressVectorParams : VHL::Range<miVector, Target> {};
struct _vhCompressColor_v2Params : VHL::ColorRange<Target> {};

struct vhCompressScalar final : VHL::dMentalRayShader<miScalar, _vhCompressScalarParams, 1> {
    int execute(miScalar* result, miState* state, Params* params) override
    {
        return VHL::withinBounds(compress, result, state, *params);
    }
};

struct vhCompressVector final : VHL::dMentalRayShader<miVector, _vhCompressVectorParams, 1> {
    int execute(miVector* result, miState* state, Params* params) override
    {
        return VHL::withinBounds(compress, result, state, *params);
    }
};

struct vhCompressColorv2 final : VHL::dMentalRayShader<miColor, _vhCompressColor_v2Params, 2> {
    int execute(miColor* result, miState* state, Params* params) override
    {
        return VHL::withinBounds(compress, result, state, *params);
    }
};

VHL_EXPORT_SHADER(vhCompressScalar_v1, vhCompressScalar,
                  "lower + input * (upper - lower): 0 to 1 becomes lower to upper; inputs beyond 0 and 1 go "
                  "beyond the bounds.",
                  .order = VHL::rangeOrder, .edges = edges)
VHL_EXPORT_SHADER(vhCompressVector_v1, vhCompressVector,
                  "lower + input * (upper - lower), component by component: 0 to 1 becomes lower to upper; "
                  "inputs beyond 0 and 1 go beyond the bounds.",
                  .order = VHL::rangeOrder, .edges = edges)
VHL_EXPORT_SHADER(vhCompressColor_v2, vhCompressColorv2,
                  "lower + input * (upper - lower), channel by channel, alpha included: 0 to 1 becomes lower "
                  "to upper; inputs beyond 0 and 1 go beyond the bounds.",
                  .order = VHL::colorRangeOrder, .edges = edges)
