// SPDX-License-Identifier: BSD-3-Clause
// Copy channel: the input with some of its components taken from a source.

#include "core/evaluate.h"
#include "core/export.h"

#include <array>
#include <initializer_list>

/// `execute` of both; `copies` are the switches of the components, in order. The source is read even when all
/// are off.
template <class T>
static int copyChannels(T* result, miState* state, T& input, T& source,
                        std::initializer_list<miBoolean*> copies)
{
    VHL::Value<T> value = VHL::evaluate(state, input);
    const VHL::Value<T> from = VHL::evaluate(state, source);
    int component = 0;
    for (miBoolean* const copy : copies) {
        if (VHL::evaluate(state, *copy))
            value[component] = from[component];
        ++component;
    }
    *result = value;
    return 1;
}

struct _vhCopyChannelColor_v1Params {
    miColor input;
    miColor source;
    miBoolean copyR;
    miBoolean copyG;
    miBoolean copyB;
    miBoolean copyA;

    static constexpr auto fields()
    {
        using P = _vhCopyChannelColor_v1Params;
        return std::array{VHL_FIELD(P, input, "Gives every channel that is not copied."),
                          VHL_FIELD(P, source, "Gives every channel that is copied."),
                          VHL_FIELD_AS(P, boolean, copyR, "On: red comes from source."),
                          VHL_FIELD_AS(P, boolean, copyG, "On: green comes from source."),
                          VHL_FIELD_AS(P, boolean, copyB, "On: blue comes from source."),
                          VHL_FIELD_AS(P, boolean, copyA, "On: alpha comes from source.")};
    }
};

struct _vhCopyChannelVector_v1Params {
    miVector input;
    miVector source;
    miBoolean copyX;
    miBoolean copyY;
    miBoolean copyZ;

    static constexpr auto fields()
    {
        using P = _vhCopyChannelVector_v1Params;
        return std::array{VHL_FIELD(P, input, "Gives every component that is not copied."),
                          VHL_FIELD(P, source, "Gives every component that is copied."),
                          VHL_FIELD_AS(P, boolean, copyX, "On: x comes from source."),
                          VHL_FIELD_AS(P, boolean, copyY, "On: y comes from source."),
                          VHL_FIELD_AS(P, boolean, copyZ, "On: z comes from source.")};
    }
};

struct vhCopyChannelColor_v1 final : VHL::dMentalRayShader<miColor, _vhCopyChannelColor_v1Params, 1> {
    int execute(miColor* result, miState* state, Params* p) override
    {
        return copyChannels(result, state, p->input, p->source, {&p->copyR, &p->copyG, &p->copyB, &p->copyA});
    }
};

struct vhCopyChannelVector_v1 final : VHL::dMentalRayShader<miVector, _vhCopyChannelVector_v1Params, 1> {
    int execute(miVector* result, miState* state, Params* p) override
    {
        return copyChannels(result, state, p->input, p->source, {&p->copyX, &p->copyY, &p->copyZ});
    }
};

static constexpr const char* edges =
    "Any input is fine; NaN, infinities and -0 are copied as they are. With all switches off input passes.";

VHL_EXPORT_SHADER(
    vhCopyChannelColor_v1, vhCopyChannelColor_v1,
    "The input with the channels that are switched on taken from source, each from its own.",
    .order =
        "input, source, copyR, copyG, copyB, then copyA, each once; source even while all switches are off.",
    .edges = edges)
VHL_EXPORT_SHADER(
    vhCopyChannelVector_v1, vhCopyChannelVector_v1,
    "The input with the components that are switched on taken from source, each from its own.",
    .order = "input, source, copyX, copyY, then copyZ, each once; source even while all switches are off.",
    .edges = edges)
