// SPDX-License-Identifier: BSD-3-Clause
// The pair of parameters "mode" and "lights" by which shaders choose lights.
#pragma once

#include "host/api/warning.h"
#include "host/base/shader.h"

namespace host::base {

/// Values of the parameter `mode`.
enum class LightMode { given = 0, inclusive = 1, exclusive = 2, instance = 4 };

struct LightChoice {
    miInteger mode;
    Array<miTag> lights;
};

/// The init of a shader with a LightChoice `lights` among its parameters, which are null when it is asked for
/// the shader itself. Warns of a mode that is none, which is taken as exclusive. One that is connected is not
/// known before its call, and what stands in its place is the default.
template <class Parameters>
void checkMode(const miState* state, const Parameters* parameters, miBoolean* instances)
{
    if (!parameters) {
        *instances = miTRUE;
        return;
    }
    const int mode = parameters->lights.mode;
    if (mode < 0 || mode == 3 || mode > 4)
        host_warning(state, "\"mode\" is none of 0, 1, 2 and 4, and taken as 2");
}

#define BASE_LIGHTS_INIT(shader, Parameters)                                                                 \
    BASE_ENTRY void shader##_init(miState* state, Parameters* p, miBoolean* instances)                       \
    {                                                                                                        \
        host::base::checkMode(state, p, instances);                                                          \
    }

/// Calls visit(light instance) for each chosen light, in the order of the array or of the renderer's list.
/// Mode 0 takes the array as it is; every mode the renderer answers gives leaf instances.
template <class Visit>
void forEachLight(miState* state, LightChoice& choice, Visit visit)
{
    const auto mode = static_cast<LightMode>(read(state, choice.mode));
    int count = read(state, choice.lights.count);
    miTag* lights = elements(state, choice.lights);
    if (mode == LightMode::given) {
        for (int i = 0; i < count; ++i)
            visit(read(state, lights[i]));
        return;
    }
    if (mode == LightMode::inclusive)
        mi_inclusive_lightlist(&count, &lights, state);
    else if (mode == LightMode::instance)
        mi_instance_lightlist(&count, &lights, state);
    else
        mi_exclusive_lightlist(&count, &lights, state);
    for (int i = 0; i < count; ++i)
        visit(lights[i]);
}

} // namespace host::base
