// SPDX-License-Identifier: BSD-3-Clause
// Set channel: the input with some of its components set to scalars.

#include "core/evaluate.h"
#include "core/export.h"

#include <array>
#include <initializer_list>

namespace {

/// Of one component.
struct Setting {
    miBoolean& set;
    miScalar& value;
};

/// `execute` of both; `settings` are those of the components, in order. A value whose switch is off is not
/// evaluated, so nothing wired into it runs.
template <class T>
int setChannels(T* result, miState* state, T& input, std::initializer_list<Setting> settings)
{
    VHL::Value<T> value = VHL::evaluate(state, input);
    int component = 0;
    for (const Setting& setting : settings) {
        if (VHL::evaluate(state, setting.set))
            value[component] = VHL::evaluate(state, setting.value);
        ++component;
    }
    *result = value;
    return 1;
}

} // namespace

struct _vhSetChannelColor_v1Params {
    miColor input;
    miBoolean setR;
    miScalar valueR;
    miBoolean setG;
    miScalar valueG;
    miBoolean setB;
    miScalar valueB;
    miBoolean setA;
    miScalar valueA;

    static constexpr auto fields()
    {
        using P = _vhSetChannelColor_v1Params;
        return std::array{VHL_FIELD(P, input, "Gives every channel that is not set."),
                          VHL_FIELD_AS(P, boolean, setR, "On: red is valueR."),
                          VHL_FIELD(P, valueR, "Red while setR is on."),
                          VHL_FIELD_AS(P, boolean, setG, "On: green is valueG."),
                          VHL_FIELD(P, valueG, "Green while setG is on."),
                          VHL_FIELD_AS(P, boolean, setB, "On: blue is valueB."),
                          VHL_FIELD(P, valueB, "Blue while setB is on."),
                          VHL_FIELD_AS(P, boolean, setA, "On: alpha is valueA."),
                          VHL_FIELD(P, valueA, "Alpha while setA is on.").by(1)};
    }
};

struct _vhSetChannelVector_v1Params {
    miVector input;
    miBoolean setX;
    miScalar valueX;
    miBoolean setY;
    miScalar valueY;
    miBoolean setZ;
    miScalar valueZ;

    static constexpr auto fields()
    {
        using P = _vhSetChannelVector_v1Params;
        return std::array{VHL_FIELD(P, input, "Gives every component that is not set."),
                          VHL_FIELD_AS(P, boolean, setX, "On: x is valueX."),
                          VHL_FIELD(P, valueX, "x while setX is on."),
                          VHL_FIELD_AS(P, boolean, setY, "On: y is valueY."),
                          VHL_FIELD(P, valueY, "y while setY is on."),
                          VHL_FIELD_AS(P, boolean, setZ, "On: z is valueZ."),
                          VHL_FIELD(P, valueZ, "z while setZ is on.")};
    }
};

struct vhSetChannelColor_v1 final : VHL::dMentalRayShader<miColor, _vhSetChannelColor_v1Params, 1> {
    int execute(miColor* result, miState* state, Params* p) override
    {
        return setChannels(
            result, state, p->input,
            {{p->setR, p->valueR}, {p->setG, p->valueG}, {p->setB, p->valueB}, {p->setA, p->valueA}});
    }
};

struct vhSetChannelVector_v1 final : VHL::dMentalRayShader<miVector, _vhSetChannelVector_v1Params, 1> {
    int execute(miVector* result, miState* state, Params* p) override
    {
        return setChannels(result, state, p->input,
                           {{p->setX, p->valueX}, {p->setY, p->valueY}, {p->setZ, p->valueZ}});
    }
};

static constexpr const char* edges =
    "Any input is fine; NaN, infinities and -0 are set as they are. With all switches off input passes.";

VHL_EXPORT_SHADER(
    vhSetChannelColor_v1, vhSetChannelColor_v1,
    "The input with the channels that are switched on set to the values beside the switches.",
    .order =
        "input; then for r, g, b and a in turn the switch and, only while it is on, its value. Each once.",
    .edges = edges)
VHL_EXPORT_SHADER(
    vhSetChannelVector_v1, vhSetChannelVector_v1,
    "The input with the components that are switched on set to the values beside the switches.",
    .order = "input; then for x, y and z in turn the switch and, only while it is on, its value. Each once.",
    .edges = edges)
