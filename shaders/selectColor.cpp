// SPDX-License-Identifier: BSD-3-Clause
// Select: one of several colours, by its position.

#include "shaders/select.h"

struct _vhSelectColorParams : VHL::Selection<miColor> {};

struct vhSelectColor final : VHL::dMentalRayShader<miColor, _vhSelectColorParams, 1> {
    void init(miState* state, Params* params) override { choice_.init(state, *params); }
    void exit(miState*, Params*) override { choice_.exit(); }
    int execute(miColor* result, miState* state, Params* params) override
    {
        return choice_.execute(result, state, *params);
    }

private:
    VHL::Choice<miColor> choice_;
};

VHL_EXPORT_SHADER(
    vhSelectColor_v1, vhSelectColor,
    "One of several colours, by its position; only that one is evaluated. Without any, there is no "
    "result.",
    .order = VHL::chosenOnly, .edges = VHL::anyPosition)
