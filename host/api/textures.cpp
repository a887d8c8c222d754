// SPDX-License-Identifier: BSD-3-Clause
// Texture look-ups.
#include "host/render/footprint.h"

#include <utility>

miBoolean mi_lookup_color_texture(miColor* const result, miState* const state, const miTag texture,
                                  miVector* const coord)
{
    *result = {0.0f, 0.0f, 0.0f, 0.0f};
    const host::Textures& textures = host::RenderThread::of(*state).stage.textures;
    if (const host::FunctionList* const procedure = textures.procedure(texture)) {
        const miVector outer = std::exchange(state->tex, *coord);
        const miBoolean found = host::callNested(*procedure, result, *state, coord);
        state->tex = outer;
        return found;
    }
    const host::TextureImage* const image = textures.image(texture);
    if (!image)
        return miFALSE;
    const host::Footprint footprint =
        image->filters() ? host::footprintOf(host::RenderThread::of(*state), *state) : host::Footprint{};
    return image->lookup(coord->x, coord->y, *result, footprint);
}
