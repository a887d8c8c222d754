// SPDX-License-Identifier: BSD-3-Clause
// The shadow shader: what light passes through a surface on its way.

#include "host/base/lightlist.h"
#include "host/base/vector.h"

namespace host::base {

namespace {

struct ShadowTransparency {
    miColor color;
    miColor transp;
    LightChoice lights;
};

/// Whether the light that the shadow ray belongs to is among the chosen ones. The array names scene instances
/// and the state a leaf, so the renderer has to expand the list; modes 0 and 1 are therefore the same, and an
/// empty array leaves nothing out.
bool chosen(miState* state, LightChoice& choice)
{
    const auto mode = static_cast<LightMode>(read(state, choice.mode));
    int count = read(state, choice.lights.count);
    if (mode == LightMode::instance || count == 0)
        return true;
    miTag* lights = elements(state, choice.lights);
    mi_inclusive_lightlist(&count, &lights, state);
    bool listed = false;
    for (int i = 0; i < count && !listed; ++i)
        listed = lights[i] == state->light_instance;
    return listed == (mode == LightMode::given || mode == LightMode::inclusive);
}

} // namespace

BASE_VERSION(mib_shadow_transparency, 1)
BASE_LIGHTS_INIT(mib_shadow_transparency, ShadowTransparency)
BASE_ENTRY miBoolean mib_shadow_transparency(miColor* result, miState* state, ShadowTransparency* p)
{
    if (!chosen(state, p->lights)) {
        *result = {0.0f, 0.0f, 0.0f, result->a};
        return miFALSE;
    }
    const miColor color = read(state, p->color);
    const miColor transp = read(state, p->transp);
    *result = *result * color * transp;
    return !isBlack(*result);
}

} // namespace host::base
