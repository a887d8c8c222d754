// SPDX-License-Identifier: BSD-3-Clause
// Clamp of vectors and colours: each channel that is switched on, held between its bounds.

#include "shaders/range.h"

#include <initializer_list>

namespace {

/// A flag is read when the turn of its channel comes.
template <class V>
V clampChannels(miState* state, const std::array<V, 3>& range, std::initializer_list<miBoolean*> flags)
{
    auto [result, lower, upper] = range;
    int channel = 0;
    for (miBoolean* const flag : flags) {
        if (VHL::evaluate(state, *flag))
            result[channel] = VHL::clamp(result[channel], lower[channel], upper[channel]);
        ++channel;
    }
    return result;
}

} // namespace

struct _vhClampChannelVector_v1Params {
    using Range = VHL::Range<miVector, VHL::ClampBounds>;

    Range range;
    miBoolean clampX;
    miBoolean clampY;
    miBoolean clampZ;

    static constexpr auto fields()
    {
        using P = _vhClampChannelVector_v1Params;
        return VHL::concatenate(
            VHL::fieldsOf<Range>(),
            std::array{VHL_FIELD_AS(P, boolean, clampX, "On: x is clamped. Off: x passes.").by(1),
                       VHL_FIELD_AS(P, boolean, clampY, "On: y is clamped. Off: y passes.").by(1),
                       VHL_FIELD_AS(P, boolean, clampZ, "On: z is clamped. Off: z passes.").by(1)});
    }
};

struct _vhClampChannelColor_v1Params {
    using Range = VHL::ColorRange<VHL::ClampBounds>;

    Range range;
    miBoolean clampR;
    miBoolean clampG;
    miBoolean clampB;
    miBoolean clampA;

    static constexpr auto fields()
    {
        using P = _vhClampChannelColor_v1Params;
        return VHL::concatenate(
            VHL::fieldsOf<Range>(),
            std::array{VHL_FIELD_AS(P, boolean, clampR, "On: red is clamped. Off: red passes.").by(1),
                       VHL_FIELD_AS(P, boolean, clampG, "On: green is clamped. Off: green passes.").by(1),
                       VHL_FIELD_AS(P, boolean, clampB, "On: blue is clamped. Off: blue passes.").by(1),
                       VHL_FIELD_AS(P, boolean, clampA, "On: alpha is clamped. Off: alpha passes.").by(1)});
    }
};

struct vhClampChannelVector_v1 final : VHL::dMentalRayShader<miVector, _vhClampChannelVector_v1Params, 2> {
    int execute(miVector* result, miState* state, Params* params) override
    {
        *result = clampChannels(state, VHL::bounded(state, params->range),
                                {&params->clampX, &params->clampY, &params->clampZ});
        return 1;
    }
};

struct vhClampChannelColor_v1 final : VHL::dMentalRayShader<miColor, _vhClampChannelColor_v1Params, 3> {
    int execute(miColor* result, miState* state, Params* params) override
    {
        *result = clampChannels(state, VHL::bounded(state, params->range),
                                {&params->clampR, &params->clampG, &params->clampB, &params->clampA});
        return 1;
    }
};

VHL_EXPORT_SHADER(vhClampVector_v2, vhClampChannelVector_v1,
                  "Each component that is switched on, held between those of lower and upper: lower for an "
                  "input below it, else upper for an input above it; NaN passes.",
                  .order = "input, lower and upper, then clampX, clampY and clampZ in turn; each once.",
                  .edges = VHL::clampEdges)
VHL_EXPORT_SHADER(vhClampColor_v3, vhClampChannelColor_v1,
                  "Each channel that is switched on, held between those of lower and upper: lower for an "
                  "input below it, else upper for an input above it; NaN passes.",
                  .order = "input, lower, upper, useAlphaLower and useAlphaUpper; alphaLower only while "
                           "useAlphaLower is off, and alphaUpper only while useAlphaUpper is off; then "
                           "clampR, clampG, clampB and clampA in turn. Each once.",
                  .edges = VHL::clampEdges)
