// SPDX-License-Identifier: BSD-3-Clause
// Light shaders. Asked by any ray but a light ray, when a visible area light is looked at, they give their
// plain colour, opaque.

#include "host/api/further.h"
#include "host/base/falloff.h"
#include "host/base/shader.h"
#include "host/base/vector.h"

namespace host::base {

namespace {

struct Infinite {
    miColor color;
    miBoolean shadow;
    miScalar factor;
};

struct Point {
    Infinite light;
    miBoolean atten;
    miScalar start;
    miScalar stop;
};

struct Spot {
    Point light;
    miScalar cone;
};

/// What is seen of a light whose shape is looked at; false on light rays.
bool lookedAt(miColor& color, const miState* state)
{
    if (state->type == miRAY_LIGHT)
        return false;
    color.a = 1.0f;
    return true;
}

/// Multiplies `color` by what arrives through the occluders; false when nothing does.
bool castShadow(miColor& color, miState* state, Infinite& p)
{
    const bool shadow = read(state, p.shadow);
    if (!shadow)
        return true;
    const float factor = read(state, p.factor);
    if (factor >= 1.0f)
        return true;
    miColor through = {1.0f, 1.0f, 1.0f, 1.0f};
    if (!mi_trace_shadow(&through, state)) {
        if (factor == 0.0f)
            return false;
        through = {};
    }
    color.r *= softened(through.r, factor);
    color.g *= softened(through.g, factor);
    color.b *= softened(through.b, factor);
    return true;
}

/// Multiplies `color` by the fall over the distance; false out of range.
bool attenuate(miColor& color, miState* state, Point& p)
{
    const bool atten = read(state, p.atten);
    if (!atten)
        return true;
    const float start = read(state, p.start);
    const float stop = read(state, p.stop);
    const float share = attenuation(static_cast<float>(state->dist), start, stop);
    color = color * share;
    return share > 0.0f;
}

/// Cosine between the light's axis and the ray, in the light's own space, and the light's spread.
struct Aim {
    float cosine;
    float spread;
};

Aim aim(miState* state)
{
    miVector ray;
    mi_vector_to_light(state, &ray, &state->dir);
    const miTag instanceTag = state->light_instance;
    const auto* const instance = static_cast<const miInstance*>(mi_db_access(instanceTag));
    const miTag lightTag = instance->item;
    const auto* const light = static_cast<const miLight*>(mi_db_access(lightTag));
    const Aim result = {dot(normalised(ray), normalised(light->direction)), light->spread};
    mi_db_unpin(lightTag);
    mi_db_unpin(instanceTag);
    return result;
}

} // namespace

BASE_VERSION(mib_light_infinite, 1)
BASE_ENTRY miBoolean mib_light_infinite(miColor* result, miState* state, Infinite* p)
{
    *result = read(state, p->color);
    if (lookedAt(*result, state))
        return miTRUE;
    return castShadow(*result, state, *p);
}

BASE_VERSION(mib_light_point, 1)
BASE_ENTRY miBoolean mib_light_point(miColor* result, miState* state, Point* p)
{
    *result = read(state, p->light.color);
    if (lookedAt(*result, state))
        return miTRUE;
    return attenuate(*result, state, *p) && castShadow(*result, state, p->light);
}

BASE_VERSION(mib_light_spot, 1)
BASE_ENTRY miBoolean mib_light_spot(miColor* result, miState* state, Spot* p)
{
    *result = read(state, p->light.light.color);
    if (lookedAt(*result, state))
        return miTRUE;
    const float cone = read(state, p->cone);
    const auto [cosine, spread] = aim(state);
    const float share = coneFalloff(cosine, cone, spread);
    if (share <= 0.0f)
        return miFALSE;
    *result = *result * share;
    return attenuate(*result, state, p->light) && castShadow(*result, state, p->light.light);
}

} // namespace host::base
