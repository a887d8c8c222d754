// SPDX-License-Identifier: BSD-3-Clause
// Texture look-ups.
#include "host/render/thread.h"

miBoolean mi_lookup_color_texture(miColor* const result, miState* const state, const miTag texture,
                                  miVector* const coord)
{
    *result = {0.0f, 0.0f, 0.0f, 0.0f};
    const host::TextureImage* const image = host::RenderThread::of(*state).stage.textures.image(texture);
    return image && image->lookup(coord->x, coord->y, *result);
}
