// SPDX-License-Identifier: BSD-3-Clause
// Select: one of several scalars, by its position.

#include "shaders/select.h"

struct _vhSelectScalarParams : VHL::Selection<miScalar> {};

struct vhSelectScalar final : VHL::dMentalRayShader<miScalar, _vhSelectScalarParams, 1> {
    void init(miState* state, Params* params) override { choice_.init(state, *params); }
    void exit(miState*, Params*) override { choice_.exit(); }
    int execute(miScalar* result, miState* state, Params* params) override
    {
        return choice_.execute(result, state, *params);
    }

private:
    VHL::Choice<miScalar> choice_;
};

VHL_EXPORT_SHADER(
    vhSelectScalar_v1, vhSelectScalar,
    "One of several scalars, by its position; only that one is evaluated. Without any, there is no "
    "result.",
    .order = VHL::chosenOnly, .edges = VHL::anyPosition)
