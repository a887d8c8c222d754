// SPDX-License-Identifier: BSD-3-Clause
// Secondary rays: what is seen through or in a surface, blended over the surface's own colour. All four blend
// per channel, input·(1 − amount) + seen·amount, and neither trace for an amount of black nor read the input
// for an amount of white.

#include "host/base/optics.h"
#include "host/base/shader.h"
#include "host/base/vector.h"

namespace host::base {

namespace {

struct Opacity {
    miColor input;
    miColor opacity;
};

struct Transparency {
    miColor input;
    miColor transp;
};

struct Reflect {
    miColor input;
    miColor reflect;
    miBoolean notrace;
};

struct Fade {
    miColor color;
    miScalar max;
};

struct Refract {
    miColor input;
    miColor refract;
    miScalar ior;
};

/// trace(&seen) casts the ray; what a ray that finds nothing leaves in `seen` is black. Alpha is blended by
/// the mean of the amount.
template <class Trace>
miBoolean blend(miColor* result, miState* state, miColor& input, const miColor& amount, Trace trace)
{
    const miColor rest = complement(amount);
    miColor own = {};
    if (!isBlack(rest))
        own = read(state, input);
    miColor seen = {};
    if (!isBlack(amount))
        trace(&seen);
    *result = own * rest + seen * amount;
    const float share = mean(amount);
    result->a = own.a * (1.0f - share) + seen.a * share;
    return miTRUE;
}

/// For eye rays and the like a transparent ray; for shadow rays what light passes.
miBoolean seeThrough(miColor* result, miState* state, miColor& input, const miColor& amount)
{
    if (state->type == miRAY_SHADOW) {
        *result = *result * amount;
        return !isBlack(*result);
    }
    return blend(result, state, input, amount, [&](miColor* seen) { mi_trace_transparent(seen, state); });
}

/// The refracted ray, or the mirrored one in case of total reflection. Outside is vacuum, so that entering
/// goes from index 1 to `ior` and leaving back; flipped normals tell that the ray leaves. The state keeps the
/// pair only while the ray is traced.
void traceThrough(miColor* seen, miState* state, float ior)
{
    const miScalar before[] = {state->ior_in, state->ior};
    state->ior_in = state->inv_normal ? ior : 1.0f;
    state->ior = state->inv_normal ? 1.0f : ior;
    if (auto direction = refracted(state->dir, state->normal, state->ior_in, state->ior)) {
        mi_trace_refraction(seen, state, &*direction);
    } else {
        miVector mirror = reflection(*state);
        mi_trace_reflection(seen, state, &mirror);
    }
    state->ior_in = before[0];
    state->ior = before[1];
}

} // namespace

BASE_VERSION(mib_opacity, 1)
BASE_ENTRY miBoolean mib_opacity(miColor* result, miState* state, Opacity* p)
{
    const miColor opacity = read(state, p->opacity);
    return seeThrough(result, state, p->input, complement(opacity));
}

BASE_VERSION(mib_transparency, 1)
BASE_ENTRY miBoolean mib_transparency(miColor* result, miState* state, Transparency* p)
{
    const miColor transp = read(state, p->transp);
    return seeThrough(result, state, p->input, transp);
}

BASE_VERSION(mib_reflect, 1)
BASE_ENTRY miBoolean mib_reflect(miColor* result, miState* state, Reflect* p)
{
    const miColor reflect = read(state, p->reflect);
    const bool environmentOnly = read(state, p->notrace);
    return blend(result, state, p->input, reflect, [&](miColor* seen) {
        miVector direction = reflection(*state);
        if (environmentOnly)
            mi_trace_environment(seen, state, &direction);
        else
            mi_trace_reflection(seen, state, &direction);
        seen->a = 1.0f; // a mirror covers what is behind it, whatever it shows
    });
}

BASE_VERSION(mib_refract, 1)
BASE_ENTRY miBoolean mib_refract(miColor* result, miState* state, Refract* p)
{
    const miColor refract = read(state, p->refract);
    const float ior = read(state, p->ior);
    return blend(result, state, p->input, refract,
                 [&](miColor* seen) { traceThrough(seen, state, ior != 0.0f ? ior : 1.0f); });
}

BASE_VERSION(mib_volume, 1)
BASE_ENTRY miBoolean mib_volume(miColor* result, miState* state, Fade* p)
{
    const miColor color = read(state, p->color);
    const float max = read(state, p->max);
    const float dist = float(state->dist);
    // A ray that meets nothing is as long as can be.
    const float share = dist <= 0.0f || dist >= max ? 1.0f : dist / max;
    *result = {result->r * (1.0f - share) + color.r * share, result->g * (1.0f - share) + color.g * share,
               result->b * (1.0f - share) + color.b * share, result->a * (1.0f - share) + color.a * share};
    return miTRUE;
}

} // namespace host::base
