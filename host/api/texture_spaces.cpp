// SPDX-License-Identifier: BSD-3-Clause
#include "host/api/texture_spaces.h"

#include "host/render/thread.h"

int host_texture_spaces(const miState* state)
{
    if (!state->tex_list)
        return 0;
    const auto& textures = host::RenderThread::of(*state).top().textures;
    return state->tex_list == textures.data() ? static_cast<int>(textures.size()) : 0;
}
