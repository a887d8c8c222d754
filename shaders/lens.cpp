// SPDX-License-Identifier: BSD-3-Clause
// Lenses: panoramic projections, and colour changes of what the camera sees.

#include "core/evaluate.h"
#include "core/export.h"
#include "core/transforms.h"
#include "shaders/panoramic_mapping.h"

#include <array>

struct _vhPanoramicLensParams {
    miInteger mapping;

    static constexpr auto fields()
    {
        return std::array{
            VHL_FIELD_AS(_vhPanoramicLensParams, integer, mapping, VHL::mappingMeaning).within(0, 4)};
    }
};

struct _vhGammaLensParams {
    miScalar gamma;

    static constexpr auto fields()
    {
        return std::array{
            VHL_FIELD(_vhGammaLensParams, gamma,
                      "Above 1 brightens, 1 changes nothing, 0 gives 0 or infinity. Read once, when "
                      "the shader is made ready.")
                .by(1)};
    }
};

struct _vhBrightnessLensParams {
    miScalar brightness;

    static constexpr auto fields()
    {
        return std::array{
            VHL_FIELD(_vhBrightnessLensParams, brightness,
                      "Factor of red, green and blue. Read once, when the shader is made ready.")
                .by(1)};
    }
};

/// The camera's instance matrix, from camera to world space, applied to a direction. Pinned no longer than
/// that.
static VHL::dVector cameraToWorld(const miState* state, const VHL::dVector& direction)
{
    const miVector inCamera = direction;
    miVector inWorld;
    const auto* const camera = static_cast<const miInstance*>(mi_db_access(state->camera_inst));
    mi_vector_transform(&inWorld, &inCamera, camera->tf.local_to_global);
    mi_db_unpin(state->camera_inst);
    return inWorld;
}

/// What the lens sees as it is: black if nothing wrote a colour.
static VHL::dColor seen(miState* state)
{
    miColor color{};
    mi_trace_eye(&color, state, &state->org, &state->dir);
    return color;
}

struct vhPanoramicLens final : VHL::dMentalRayShader<miColor, _vhPanoramicLensParams, 1> {
    void init(miState* state, Params* params) override
    {
        mapping.select(VHL::evaluate(state, params->mapping));
    }

    /// Deliberate: where the image has no direction, outside a circle, the zero direction is traced as it is;
    /// the renderer then asks the environment.
    int execute(miColor* result, miState* state, Params*) override
    {
        const float u = state->raster_x / static_cast<float>(state->camera->x_resolution);
        const float v = state->raster_y / static_cast<float>(state->camera->y_resolution);
        state->dir = cameraToWorld(state, mapping->toDirection({u, v, 0}));
        mi_trace_eye(result, state, &state->org, &state->dir);
        return 1;
    }

private:
    VHL::PanoramicMapping mapping;
};

struct vhGammaLens final : VHL::dMentalRayShader<miColor, _vhGammaLensParams, 1> {
    void init(miState* state, Params* params) override
    {
        transform.setGamma(static_cast<float>(VHL::evaluate(state, params->gamma)));
    }
    int execute(miColor* result, miState* state, Params*) override
    {
        *result = transform.transformCl(seen(state));
        return 1;
    }

private:
    VHL::dGamma transform{1};
};

struct vhBrightnessLens final : VHL::dMentalRayShader<miColor, _vhBrightnessLensParams, 1> {
    void init(miState* state, Params* params) override
    {
        brightness = VHL::evaluate(state, params->brightness);
    }
    int execute(miColor* result, miState* state, Params*) override
    {
        const VHL::dColor color = seen(state);
        *result =
            VHL::dColor(color.r() * brightness, color.g() * brightness, color.b() * brightness, color.a());
        return 1;
    }

private:
    float brightness = 0;
};

VHL_EXPORT_SHADER(
    vhLensPanoramic_v1, vhPanoramicLens,
    "Renders the whole surroundings of the camera into one of five panoramic layouts instead of its "
    "usual projection. Outside the circle of a round layout the environment is asked for the zero "
    "direction.",
    .apply = "lens",
    .order =
        "mapping once, when the shader is made ready. For each sample one eye ray, and nothing is evaluated.",
    .edges =
        "mapping below 0 or above 4 is as 0. Where the layout has no direction, outside its circle, the ray "
        "has the direction 0 0 0, which meets nothing but the environment. The shader always succeeds.")
VHL_EXPORT_SHADER(
    vhLensGamma_v1, vhGammaLens,
    "What the camera sees, red, green and blue to the power of 1 / gamma; alpha stays.", .apply = "lens",
    .order =
        "gamma once, when the shader is made ready. For each sample one eye ray, and nothing is evaluated.",
    .edges = "gamma 0 makes of channels between 0 and 1 a 0 and of those above 1 infinity; a negative gamma "
             "turns dark and bright round, and 0 becomes infinity. Negative channels give NaN, unless 1 / "
             "gamma is whole or infinite. A ray that no shader gives a colour is black.")
VHL_EXPORT_SHADER(
    vhLensBrightness_v1, vhBrightnessLens,
    "What the camera sees, red, green and blue times brightness; alpha stays.", .apply = "lens",
    .order = "brightness once, when the shader is made ready. For each sample one eye ray, and nothing is "
             "evaluated.",
    .edges =
        "Any factor is fine, nothing is clamped: 0 leaves black under the alpha that was seen, and NaN of an "
        "infinite channel; below 0 colours are negative. A ray that no shader gives a colour is black.")
