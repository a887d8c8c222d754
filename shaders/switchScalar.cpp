// SPDX-License-Identifier: BSD-3-Clause
// Switch: one of several scalars, by the name of the object being shaded.

#include "shaders/switch.h"

struct _vhSwitchScalarParams : VHL::NamedValues<miScalar> {};

struct vhSwitchScalar final : VHL::dMentalRayShader<miScalar, _vhSwitchScalarParams, 1> {
    void init(miState* state, Params* params) override { switch_.init(state, *params); }
    void exit(miState*, Params*) override { switch_.exit(); }
    int execute(miScalar* result, miState* state, Params*) override { return switch_.execute(result, state); }

private:
    VHL::SwitchByName<miScalar> switch_;
};

VHL_EXPORT_SHADER(
    vhSwitchScalar_v1, vhSwitchScalar,
    "The scalar listed under the name of the object instance being shaded, capitals as they are; of "
    "equal names the last counts. Without a match the result is left as it was. Prints its pairs "
    "as information before the first sample.",
    .order = VHL::fittingOnly, .edges = VHL::noName, .messages = VHL::Listing<miScalar>::messages)
