// SPDX-License-Identifier: BSD-3-Clause
// Clamp: a scalar held between two bounds.

#include "shaders/range.h"

struct _vhClampScalarParams : VHL::Range<miScalar, VHL::ClampBounds> {};

struct vhClampScalar final : VHL::dMentalRayShader<miScalar, _vhClampScalarParams, 1> {
    int execute(miScalar* result, miState* state, Params* params) override
    {
        return VHL::withinBounds(VHL::clamp, result, state, *params);
    }
};

VHL_EXPORT_SHADER(vhClampScalar_v1, vhClampScalar,
                  "The input held between lower and upper: lower for an input below it, else upper for an "
                  "input above it; NaN passes.",
                  .order = VHL::rangeOrder, .edges = VHL::clampEdges)
