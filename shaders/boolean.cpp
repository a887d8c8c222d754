// SPDX-License-Identifier: BSD-3-Clause
// Boolean logic: not, exclusive or, or, and. Any word but 0 is on; results are 0 or 1.

#include "core/evaluate.h"
#include "core/export.h"

#include <array>
#include <functional>

namespace {

/// Two operands; one that is left out does not decide.
template <int standard>
struct Operands {
    miBoolean input1;
    miBoolean input2;

    static constexpr auto fields()
    {
        return std::array{VHL_FIELD_AS(Operands, boolean, input1, "First operand.").by(standard),
                          VHL_FIELD_AS(Operands, boolean, input2, "Second operand.").by(standard)};
    }
};

/// `execute` of the operators with two operands. Both are evaluated, even when the first decides.
template <class Op, int standard>
int combine(Op op, miBoolean* result, miState* state, Operands<standard>& params)
{
    const bool a = VHL::evaluate(state, params.input1);
    const bool b = VHL::evaluate(state, params.input2);
    *result = miBoolean(op(a, b));
    return 1;
}

/// Any number of operands, in the renderer's layout of an array.
struct OperandArray {
    miInteger i_input;
    miInteger n_input;
    miBoolean input[1];

    static constexpr auto fields()
    {
        return std::array{VHL_FIELD_ARRAY_AS(OperandArray, boolean, input,
                                             "Operands, evaluated in order up to the one that decides.")};
    }
};

/// Where an instance has its array, from its init to its exit. The elements are the renderer's.
class Elements {
public:
    void find(miState* state, OperandArray& params)
    {
        const int start = VHL::evaluate(state, params.i_input);
        count_ = VHL::evaluate(state, params.n_input);
        first_ = VHL::evaluateAddress(state, params.input[0]) + start;
    }

    void forget() { *this = {}; }

    /// Whether one of them is as wanted. Those behind the first such one are not evaluated.
    bool include(bool wanted, miState* state) const
    {
        for (int k = 0; k < count_; ++k) {
            const bool element = VHL::evaluate(state, first_[k]);
            if (element == wanted)
                return true;
        }
        return false;
    }

private:
    int count_ = 0;
    miBoolean* first_ = nullptr;
};

} // namespace

struct _vhNotParams {
    miBoolean input;

    static constexpr auto fields()
    {
        return std::array{VHL_FIELD_AS(_vhNotParams, boolean, input, "Operand.")};
    }
};
struct _vhXOrParams : Operands<0> {};
struct _vhOrParams : Operands<0> {};
struct _vhAndParams : Operands<1> {};
struct _vhOrArrayParams : OperandArray {};
struct _vhAndArrayParams : OperandArray {};

struct vhNot final : VHL::dMentalRayShader<miBoolean, _vhNotParams, 1> {
    int execute(miBoolean* result, miState* state, Params* params) override
    {
        *result = miBoolean(!VHL::evaluate(state, params->input));
        return 1;
    }
};

struct vhXOr final : VHL::dMentalRayShader<miBoolean, _vhXOrParams, 1> {
    int execute(miBoolean* result, miState* state, Params* params) override
    {
        return combine(std::not_equal_to(), result, state, *params);
    }
};

struct vhOr final : VHL::dMentalRayShader<miBoolean, _vhOrParams, 1> {
    int execute(miBoolean* result, miState* state, Params* params) override
    {
        return combine(std::logical_or(), result, state, *params);
    }
};

struct vhAnd final : VHL::dMentalRayShader<miBoolean, _vhAndParams, 1> {
    int execute(miBoolean* result, miState* state, Params* params) override
    {
        return combine(std::logical_and(), result, state, *params);
    }
};

struct vhOrArray final : VHL::dMentalRayShader<miBoolean, _vhOrArrayParams, 2> {
    void init(miState* state, Params* params) override { elements_.find(state, *params); }
    void exit(miState*, Params*) override { elements_.forget(); }
    int execute(miBoolean* result, miState* state, Params*) override
    {
        *result = miBoolean(elements_.include(true, state));
        return 1;
    }

private:
    Elements elements_;
};

struct vhAndArray final : VHL::dMentalRayShader<miBoolean, _vhAndArrayParams, 2> {
    void init(miState* state, Params* params) override { elements_.find(state, *params); }
    void exit(miState*, Params*) override { elements_.forget(); }
    int execute(miBoolean* result, miState* state, Params*) override
    {
        *result = miBoolean(!elements_.include(false, state));
        return 1;
    }

private:
    Elements elements_;
};

static constexpr const char* bothAlways = "input1, then input2, each once; both also when the first decides.";
static constexpr const char* untilDecided =
    "The elements in order, each at most once, up to the one that decides; those behind it not at all. When "
    "the shader is made ready, once: where the array lies, how long it is, and the element at its first "
    "place.";
static constexpr const char* anyWord =
    "Any input is fine: 0 is off, every other word is on. The result is 0 or 1.";
static constexpr const char* anyArray =
    "Any element is fine: 0 is off, every other word is on. An array of no elements decides nothing and "
    "gives what its description says. The result is 0 or 1.";

VHL_EXPORT_SHADER(vhNot_v1, vhNot, "On when the input is off.", .result = VHL::Kind::boolean,
                  .order = "input, once.", .edges = anyWord)
VHL_EXPORT_SHADER(vhXOr_v1, vhXOr, "On when exactly one of the two inputs is on.",
                  .result = VHL::Kind::boolean, .order = bothAlways, .edges = anyWord)
VHL_EXPORT_SHADER(vhOr_v1, vhOr,
                  "On when at least one of the two inputs is on. Both are always evaluated; vhOr_v2 stops at "
                  "the first that is on.",
                  .result = VHL::Kind::boolean, .order = bothAlways, .edges = anyWord)
VHL_EXPORT_SHADER(
    vhAnd_v1, vhAnd,
    "On when both inputs are on. Both are always evaluated; vhAnd_v2 stops at the first that is "
    "off.",
    .result = VHL::Kind::boolean, .order = bothAlways, .edges = anyWord)
VHL_EXPORT_SHADER(
    vhOr_v2, vhOrArray,
    "On when at least one element is on, off for an empty array. Elements behind the first that "
    "is on are not evaluated.",
    .result = VHL::Kind::boolean, .order = untilDecided, .edges = anyArray)
VHL_EXPORT_SHADER(
    vhAnd_v2, vhAndArray,
    "On when every element is on, and for an empty array. Elements behind the first that is off "
    "are not evaluated.",
    .result = VHL::Kind::boolean, .order = untilDecided, .edges = anyArray)
