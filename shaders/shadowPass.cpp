// SPDX-License-Identifier: BSD-3-Clause
// Shadow pass: how much of the direct light survives the shadows.

#include "core/color.h"
#include "core/evaluate.h"
#include "core/export.h"
#include "shaders/restored.h"

#include <algorithm>
#include <array>

struct _vhShadowPassParams {
    miInteger lightMode;
    miInteger i_lights;
    miInteger n_lights;
    miTag lights[1];

    static constexpr auto fields()
    {
        using P = _vhShadowPassParams;
        return std::array{
            VHL_FIELD_AS(
                P, integer, lightMode,
                "Which lights, in the gathering with shadows: 1 the renderer's inclusive list made of "
                "lights, 2 its exclusive list, any other number lights as they are.")
                .within(0, 2),
            VHL_FIELD_ARRAY_AS(P, light, lights, "Instances of lights. None: black, in every mode.")};
    }
};

/// A copy of the options that turns shadows off, in the renderer's memory.
class ShadowlessOptions {
public:
    void take(const miOptions& options)
    {
        copy_ = static_cast<miOptions*>(mi_mem_int_allocate(VHL_UNIT, line, sizeof(miOptions)));
        if (!copy_)
            return;
        *copy_ = options;
        copy_->shadow = 0;
    }
    void release()
    {
        if (copy_)
            mi_mem_int_release(VHL_UNIT, line, copy_);
        copy_ = nullptr;
    }

    /// The others when there was no memory for a copy.
    const miOptions* orElse(const miOptions* options) const { return copy_ ? copy_ : options; }

private:
    static constexpr int line = __LINE__; // labels the memory in the renderer's accounts
    miOptions* copy_ = nullptr;
};

/// The light that reaches the point under the options in force: each light's mean over its samples, weighted
/// by the cosine.
static VHL::dColor gather(miState* state, const miTag* lights, int count)
{
    VHL::dColor light(0);
    for (int k = 0; k < count; ++k) {
        VHL::dColor sum(0);
        miColor color{};
        miVector direction{};
        float cosine = 0;
        int samples = 0;
        while (mi_sample_light(&color, &direction, &cosine, state, lights[k], &samples))
            sum += VHL::dColor(cosine * color.r, cosine * color.g, cosine * color.b, 0);
        if (samples != 0)
            light += sum / VHL::dColor(static_cast<float>(samples));
    }
    light.a() = 1;
    return light;
}

struct vhShadowPass final : VHL::dMentalRayShader<miColor, _vhShadowPassParams, 1> {
    void init(miState* state, Params*) override { noShadowOptions.take(*state->options); }
    void exit(miState*, Params*) override { noShadowOptions.release(); }

    int execute(miColor* result, miState* state, Params* params) override
    {
        if (state->type == miRAY_SHADOW || state->type == miRAY_DISPLACE)
            return 0;
        const int mode = VHL::evaluate(state, params->lightMode);
        const int listed = VHL::evaluate(state, params->n_lights);
        const int first = VHL::evaluate(state, params->i_lights);
        miTag* lights = VHL::evaluateAddress(state, params->lights[0]) + first;
        int count = listed;
        if (mode == 1)
            mi_inclusive_lightlist(&count, &lights, state);
        else if (mode == 2)
            mi_exclusive_lightlist(&count, &lights, state);
        const VHL::dColor lit = gather(state, lights, count);
        const VHL::dColor unshadowed = gatherUnshadowed(state, *params, first, std::min(count, listed));
        *result = lit / unshadowed; // 0 in a channel without light
        return 1;
    }

private:
    /// Deliberately from the parameter's own array in every mode: as many of it as the list had, which modes
    /// 1 and 2 may have changed.
    VHL::dColor gatherUnshadowed(miState* state, Params& params, int first, int count) const
    {
        const VHL::Restored options(state->options);
        state->options = noShadowOptions.orElse(state->options);
        const miTag* const lights = VHL::evaluateAddress(state, params.lights[0]) + first;
        return gather(state, lights, count);
    }

    ShadowlessOptions noShadowOptions;
};

static constexpr const char* notes =
    R"(A material that renders a pass: 1 where the light arrives, 0 in full shadow, something between in the
penumbra of an area light, by channel. Light is gathered twice, with shadows and without, and divided; where
no light would arrive anyway the result is 0. Alpha is 1. Surfaces turned away from a light get none of it.

With mode 1 or 2 the gathering without shadows still goes through the array as it is given, as far as the
renderer's list is long and no further than the array. With mode 1 both go through the same lights if the array
names instances of lights, not of groups. With mode 2 the one goes through all other lights and the other
through those of the array, so that the quotient tells of shadows only where both shine alike: use mode 0.

The copy of the options without shadows is made when the shader is made ready, and is as long as the record
that this library was compiled with. Compiled with the renderer's own headers it is exact; otherwise a
renderer whose record is longer would read past the copy's end.

For shadow rays and displacement there is no result.)";

VHL_EXPORT_SHADER(
    vhShadowPass_v1, vhShadowPass,
    "How much of the lights' direct light survives the shadows, by channel: 1 all of it, 0 none.",
    .apply = "material",
    .order = "lightMode, the number and the place of the lights, lights, each once; lights once more for the "
             "gathering without shadows. Each light is sampled in the order of the list, with shadows first.",
    .edges = "A channel that no light reaches is 0, not a division by 0; no lights at all give 0 0 0 1. On "
             "shadow rays and in displacement there is no success and no result, and nothing is evaluated.",
    .notes = notes)
