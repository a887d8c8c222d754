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

/// What the state shaders give, each in the place of the parameter that is connected to it.
struct StateFacts {
    miVector point, normal, geometric, org, dir, motion, rasterPos, textureCoord;
    miScalar rasterX, rasterY, width, height, dist, time, dotND;
    miBoolean inverted;
    miInteger reflection, refraction, label, instance, rayType;
    miScalar reflectionScalar, refractionScalar, labelScalar, instanceScalar, rayTypeScalar;
};

/// Parameters of the shader "stated".
struct StatedParameters {
    HookParameters hook;
    StateFacts facts;
};

/// Where both shaders' calls go: the library's variable "hook_target".
struct Hook {
    miBoolean (*call)(void* context, int number, void* result, miState* state, HookParameters* parameters);
    void* context;
};
