// SPDX-License-Identifier: BSD-3-Clause
// If, then, else: one of two values, and only that one is evaluated.

#include "core/evaluate.h"
#include "core/export.h"

#include <array>

namespace {

/// Left out, the branches make a mask of the condition: 1 where it holds, else 0.
template <class T>
struct Choice {
    miBoolean condition;
    T ifTrue;
    T ifFalse;

    static constexpr auto fields()
    {
        return std::array{
            VHL_FIELD_AS(Choice, boolean, condition, "Which branch is taken; any word but 0 is on."),
            VHL_FIELD(Choice, ifTrue, "Result while the condition is on; not evaluated while it is off.")
                .by(1),
            VHL_FIELD(Choice, ifFalse, "Result while the condition is off; not evaluated while it is on.")};
    }
};

template <class T>
int choose(T* result, miState* state, Choice<T>& params)
{
    const bool condition = VHL::evaluate(state, params.condition);
    *result = VHL::evaluate(state, condition ? params.ifTrue : params.ifFalse);
    return 1;
}

} // namespace

struct _vhIfThenElseScalarParams : Choice<miScalar> {};
struct _vhIfThenElseVectorParams : Choice<miVector> {};
struct _vhIfThenElseColorParams : Choice<miColor> {};

struct vhIfThenElseScalar final : VHL::dMentalRayShader<miScalar, _vhIfThenElseScalarParams, 1> {
    int execute(miScalar* result, miState* state, Params* params) override
    {
        return choose(result, state, *params);
    }
};

struct vhIfThenElseVector final : VHL::dMentalRayShader<miVector, _vhIfThenElseVectorParams, 1> {
    int execute(miVector* result, miState* state, Params* params) override
    {
        return choose(result, state, *params);
    }
};

struct vhIfThenElseColor final : VHL::dMentalRayShader<miColor, _vhIfThenElseColorParams, 1> {
    int execute(miColor* result, miState* state, Params* params) override
    {
        return choose(result, state, *params);
    }
};

static constexpr const char* branchOnly =
    "condition once, then the branch that it takes, once. A shader behind the other branch does not run.";
static constexpr const char* unchanged =
    "Any condition but 0 takes ifTrue. The branch's value passes unchanged: NaN, infinities, -0.";

VHL_EXPORT_SHADER(vhIfThenElseScalar_v1, vhIfThenElseScalar,
                  "ifTrue while the condition is on, else ifFalse; only that branch is evaluated.",
                  .order = branchOnly, .edges = unchanged)
VHL_EXPORT_SHADER(vhIfThenElseVector_v1, vhIfThenElseVector,
                  "ifTrue while the condition is on, else ifFalse; only that branch is evaluated.",
                  .order = branchOnly, .edges = unchanged)
VHL_EXPORT_SHADER(vhIfThenElseColor_v1, vhIfThenElseColor,
                  "ifTrue while the condition is on, else ifFalse, alpha and all; only that branch is "
                  "evaluated.",
                  .order = branchOnly, .edges = unchanged)
