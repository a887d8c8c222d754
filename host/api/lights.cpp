// SPDX-License-Identifier: BSD-3-Clause
// Lights as shaders sample and list them.
#include "host/render/trace.h"

namespace {

/// The list is the renderer's own; shaders only read it.
miBoolean replaceList(int* n, miTag** lights, miState* state, bool exclusive)
{
    const std::vector<miTag>& list = host::lightList(*state, *lights, *n, exclusive);
    *n = static_cast<int>(list.size());
    *lights = const_cast<miTag*>(list.data());
    return miTRUE;
}

} // namespace

miBoolean mi_sample_light(miColor* const result, miVector* const dir, float* const dot_nl,
                          miState* const state, const miTag light, int* const samples)
{
    return host::sampleLight(*result, dir, dot_nl, *state, light, *samples);
}

miBoolean mi_inclusive_lightlist(int* n, miTag** lights, miState* state)
{
    return replaceList(n, lights, state, false);
}

miBoolean mi_exclusive_lightlist(int* n, miTag** lights, miState* state)
{
    return replaceList(n, lights, state, true);
}

miBoolean mi_instance_lightlist(int* n, miTag** lights, miState* state)
{
    const std::vector<miTag>& list = host::instanceLights(*state);
    *n = static_cast<int>(list.size());
    *lights = const_cast<miTag*>(list.data());
    return miTRUE;
}
