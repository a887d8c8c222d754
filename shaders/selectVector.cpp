// SPDX-License-Identifier: BSD-3-Clause
// Select: one of several vectors, by its position.

#include "shaders/select.h"

struct _vhSelectVectorParams : VHL::Selection<miVector> {};

struct vhSelectVector final : VHL::dMentalRayShader<miVector, _vhSelectVectorParams, 1> {
    void init(miState* state, Params* params) override { choice_.init(state, *params); }
    void exit(miState*, Params*) override { choice_.exit(); }
    int execute(miVector* result, miState* state, Params* params) override
    {
        return choice_.execute(result, state, *params);
    }

private:
    VHL::Choice<miVector> choice_;
};

VHL_EXPORT_SHADER(
    vhSelectVector_v1, vhSelectVector,
    "One of several vectors, by its position; only that one is evaluated. Without any, there is no "
    "result.",
    .order = VHL::chosenOnly, .edges = VHL::anyPosition)
