// SPDX-License-Identifier: BSD-3-Clause
// Environment: the surroundings of a scene, from a panoramic image.

#include "core/evaluate.h"
#include "core/export.h"
#include "shaders/panoramic_mapping.h"

#include <array>

struct _vhEnvironmentPanoramicParams {
    miInteger mapping;
    miTag texture;

    static constexpr auto fields()
    {
        using P = _vhEnvironmentPanoramicParams;
        return std::array{VHL_FIELD_AS(P, integer, mapping, VHL::mappingMeaning).within(0, 4),
                          VHL_FIELD_AS(P, colorTexture, texture, "Panoramic image. None: no colour.")};
    }
};

static bool isZero(const miVector& v) { return v.x == 0.0f && v.y == 0.0f && v.z == 0.0f; }

struct vhEnvironmentPanoramic final : VHL::dMentalRayShader<miColor, _vhEnvironmentPanoramicParams, 1> {
    void init(miState* state, Params* params) override
    {
        mapping.select(VHL::evaluate(state, params->mapping));
    }
    int execute(miColor* result, miState* state, Params* params) override
    {
        const miTag texture = VHL::evaluate(state, params->texture);
        *result = {0, 0, 0, 0};
        if (texture == 0)
            return 0;
        miVector direction;
        mi_vector_to_world(state, &direction, &state->dir);
        if (isZero(direction))
            return 0;
        miVector coordinates = mapping->toTextureCoordinates(direction);
        return mi_lookup_color_texture(result, state, texture, &coordinates);
    }

private:
    VHL::PanoramicMapping mapping;
};

VHL_EXPORT_SHADER(
    vhEnvironmentPanoramic_v1, vhEnvironmentPanoramic,
    "The colour that a panoramic image has in the direction of the ray. No colour, and no success, without "
    "an image and for the zero direction. Directions are those of the world, so the surroundings stay "
    "where they are when the camera turns. A fisheye has the half towards the world's -z alone, and gives "
    "the colour of the image's lower left corner in the other, wherever the camera looks.",
    .apply = "environment",
    .order = "mapping once, when the shader is made ready. For each ray texture once, then, with a texture "
             "and a direction, one look-up in it.",
    .edges = "mapping below 0 or above 4 is as 0. Without a texture, and for the direction 0 0 0, the result "
             "is 0 0 0 0 without success; success is else what the look-up says. Directions need to be of "
             "length 1, as the renderer's are.")
