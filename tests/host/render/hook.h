// SPDX-License-Identifier: BSD-3-Clause
// What the test and the shader library agree on.
#pragma once

#include <shader.h>

/// Parameters of the shader "hook".
struct HookParameters {
    int number; ///< which of the test's functions is meant
    miTag texture;
    miColor color;
};

/// Where its calls go: the library's variable "hook_target".
struct Hook {
    miBoolean (*call)(void* context, int number, void* result, miState* state, HookParameters* parameters);
    void* context;
};
