// SPDX-License-Identifier: BSD-3-Clause
// Evaluation of connected parameters, and calls of shaders by tag.
#include "host/session.h"
#include "host/shading/call.h"

void* mi_phen_eval(miState* state, void* parameter) { return host::evaluateConnected(*state, parameter); }

void mi_flush_cache(miState* state) { host::flushResults(*state); }

// The renderer's headers have a type of their own for `kind`, an enumeration; here a shader is called as what
// it is, whatever it is called for.
extern "C" {

miBoolean mi_call_shader_x(miColor* result, int /*kind*/, miState* state, miTag shader, void* argument)
{
    auto* const function = host::Session::current()->database.findAs<host::Function>(shader);
    return function ? host::callNested({function}, result, *state, argument) : miFALSE;
}

miBoolean mi_call_shader(miColor* result, int kind, miState* state, miTag shader)
{
    return mi_call_shader_x(result, kind, state, shader, nullptr);
}
}
