// SPDX-License-Identifier: BSD-3-Clause
// Shaders that hand every call on to the test that loaded it, so that each test says in place what its
// materials, lights and lenses do.
#include "tests/host/render/hook.h"

extern "C" {

DLLEXPORT __attribute__((visibility("default"))) Hook hook_target = {nullptr, nullptr};

__attribute__((visibility("default"))) int hook_version() { return 1; }

__attribute__((visibility("default"))) miBoolean hook(void* result, miState* state,
                                                      HookParameters* parameters)
{
    const int number = *static_cast<int*>(mi_eval(state, &parameters->number));
    return hook_target.call(hook_target.context, number, result, state, parameters);
}

__attribute__((visibility("default"))) int geometry_hook_version() { return 1; }

__attribute__((visibility("default"))) miBoolean geometry_hook(miTag* result, miState* state,
                                                               HookParameters* parameters)
{
    return hook(result, state, parameters);
}

__attribute__((visibility("default"))) int argued_version() { return 1; }

// The coordinate that it is called with as a colour; true in the left half.
__attribute__((visibility("default"))) miBoolean argued(miColor* result, miState*, void*,
                                                        const miVector* coord)
{
    *result = {coord->x, coord->y, coord->z, 1.0f};
    return coord->x < 0.5f;
}

__attribute__((visibility("default"))) int stated_version() { return 1; }

__attribute__((visibility("default"))) miBoolean stated(void* result, miState* state,
                                                        StatedParameters* parameters)
{
    return hook(result, state, &parameters->hook);
}
}
