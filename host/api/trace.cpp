// SPDX-License-Identifier: BSD-3-Clause
// Rays that shaders cast.
#include "host/render/trace.h"
#include "host/api/further.h"

miBoolean mi_trace_eye(miColor* result, miState* state, miVector* origin, miVector* direction)
{
    return host::traceEye(*result, *state, *origin, *direction);
}

miBoolean mi_trace_reflection(miColor* result, miState* state, miVector* direction)
{
    return host::traceSecondary(*result, *state, *direction, miRAY_REFLECT);
}

miBoolean mi_trace_refraction(miColor* result, miState* state, miVector* direction)
{
    return host::traceSecondary(*result, *state, *direction, miRAY_REFRACT);
}

miBoolean mi_trace_transparent(miColor* result, miState* state)
{
    return host::traceSecondary(*result, *state, state->dir, miRAY_TRANSPARENT);
}

miBoolean mi_trace_environment(miColor* result, miState* state, miVector* direction)
{
    return host::traceEnvironment(*result, *state, *direction);
}

miBoolean mi_trace_shadow(miColor* const result, miState* const state)
{
    return host::traceShadow(*result, *state);
}

miBoolean mi_trace_shadow_seg(miColor*, miState*) { return miTRUE; }

miBoolean mi_trace_probe(miState* state, miVector* direction, miVector* origin)
{
    return host::traceProbe(*state, *direction, *origin);
}

void mi_opacity_set(miState* state, miColor const* const opacity) { host::setOpacity(*state, *opacity); }

miBoolean mi_opacity_get(miState* state, miColor* opacity)
{
    const std::optional<miColor> stored = host::opacityOf(*state);
    if (stored)
        *opacity = *stored;
    return stored.has_value();
}
