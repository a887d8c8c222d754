// SPDX-License-Identifier: BSD-3-Clause
// Debug: the input, unchanged, and a line in the log that tells it.

#include "core/evaluate.h"
#include "core/export.h"
#include "shaders/string_parameter.h"

#include <array>
#include <atomic>
#include <string>

namespace {

/// A value to pass on, and how to tell of it.
template <class T, VHL::Kind kind>
struct Watched {
    T input;
    miBoolean enable;
    miTag name;
    miBoolean useLimit;
    miInteger limit;

    static constexpr auto fields()
    {
        return std::array{
            VHL::plainField("input", VHL::kindAs<kind, T>(), offsetof(Watched, input), sizeof(input),
                            "Value to pass on, and to print."),
            VHL_FIELD_AS(Watched, boolean, enable, "On: print a line for each sample. Off: print nothing.")
                .by(1),
            VHL_FIELD_AS(
                Watched, string, name,
                "Label to print with the value. Without one it is empty, and some renderers complain "
                "of its absence. Read once, before the first sample."),
            VHL_FIELD_AS(Watched, boolean, useLimit,
                         "On: stop printing after so many lines as limit says. Read once, before the first "
                         "sample.")
                .by(1),
            VHL_FIELD_AS(Watched, integer, limit,
                         "Lines to print while useLimit is on: 0 for any number, less for none. Read once, "
                         "before the first sample.")
                .by(10)};
    }
};

// One line for each kind of value.
void print(const std::string& label, int on)
{
    mi_info("vhDebugBoolean : %s - %1.1f\n", label.c_str(), on ? 1.0 : 0.0);
}
void print(const std::string& label, const VHL::dScalar& value)
{
    mi_info("vhDebugScalar : %s - %3.3f\n", label.c_str(), static_cast<float>(value));
}
void print(const std::string& label, const VHL::dVector& v)
{
    mi_info("vhDebugVector : %s - %3.3f %3.3f %3.3f\n", label.c_str(), v.x(), v.y(), v.z());
}
void print(const std::string& label, const VHL::dColor& c)
{
    mi_info("vhDebugColor : %s - %3.3f %3.3f %3.3f %3.3f\n", label.c_str(), c.r(), c.g(), c.b(), c.a());
}

/// An instance's label and what it may still print, from its init to its exit.
class Watch {
public:
    template <class Params>
    void init(miState* state, Params& params)
    {
        if (VHL::evaluate(state, params.useLimit))
            limit_ = VHL::evaluate(state, params.limit);
        const miTag name = VHL::evaluate(state, params.name);
        label_ = VHL::textOf(name);
    }

    /// `execute` of the four shaders.
    template <class Result, class Params>
    int execute(Result* result, miState* state, Params& params)
    {
        const bool enable = VHL::evaluate(state, params.enable);
        const auto input = VHL::evaluate(state, params.input);
        *result = static_cast<Result>(input);
        if (enable && mayPrint())
            print(label_, input);
        return 1;
    }

private:
    /// Takes a line from the budget. Exact in any number of threads: a line is taken, not looked at and taken
    /// later; the look before it keeps the counter from running on for ever.
    bool mayPrint()
    {
        using std::memory_order_relaxed;
        return limit_ == 0 || (count_.load(memory_order_relaxed) < limit_ &&
                               count_.fetch_add(1, memory_order_relaxed) < limit_);
    }

    int limit_ = 0;              ///< 0: none
    std::atomic<int> count_ = 0; ///< lines printed, while there is a limit; written while rendering
    std::string label_;
};

} // namespace

struct _vhDebugBooleanParams : Watched<miBoolean, VHL::Kind::boolean> {};
struct _vhDebugScalarParams : Watched<miScalar, VHL::Kind::scalar> {};
struct _vhDebugVectorParams : Watched<miVector, VHL::Kind::vector> {};
struct _vhDebugColorParams : Watched<miColor, VHL::Kind::color> {};

struct vhDebugBoolean final : VHL::dMentalRayShader<miBoolean, _vhDebugBooleanParams, 1> {
    void init(miState* state, Params* params) override { watch_.init(state, *params); }
    int execute(miBoolean* result, miState* state, Params* params) override
    {
        return watch_.execute(result, state, *params);
    }

private:
    Watch watch_;
};

struct vhDebugScalar final : VHL::dMentalRayShader<miScalar, _vhDebugScalarParams, 1> {
    void init(miState* state, Params* params) override { watch_.init(state, *params); }
    int execute(miScalar* result, miState* state, Params* params) override
    {
        return watch_.execute(result, state, *params);
    }

private:
    Watch watch_;
};

struct vhDebugVector final : VHL::dMentalRayShader<miVector, _vhDebugVectorParams, 1> {
    void init(miState* state, Params* params) override { watch_.init(state, *params); }
    int execute(miVector* result, miState* state, Params* params) override
    {
        return watch_.execute(result, state, *params);
    }

private:
    Watch watch_;
};

struct vhDebugColor final : VHL::dMentalRayShader<miColor, _vhDebugColorParams, 1> {
    void init(miState* state, Params* params) override { watch_.init(state, *params); }
    int execute(miColor* result, miState* state, Params* params) override
    {
        return watch_.execute(result, state, *params);
    }

private:
    Watch watch_;
};

static constexpr const char* passedOn =
    "useLimit, then limit unless that is off, then name: once, when the shader is made ready. For each "
    "sample enable, then input, each once; the input also while nothing is printed.";
static constexpr const char* anyValue = "Any value passes as it is; NaN and infinities print as nan and inf. "
                                        "A limit of 0 is none, and with one below 0 nothing is printed.";
static constexpr const char* aLine =
    "Info: the value, a line for each sample while enable is on, as often as useLimit and limit allow.";

VHL_EXPORT_SHADER(vhDebugBoolean_v1, vhDebugBoolean,
                  "The input, unchanged, also where it is neither 0 nor 1; the log tells it, as information: "
                  "\"vhDebugBoolean : label - 1.0\", 0.0 when it is off.",
                  .result = VHL::Kind::boolean, .order = passedOn,
                  .edges = "Any word passes as it is, and prints as 1.0 unless it is 0. A limit of 0 is "
                           "none, and with one below 0 nothing is printed.",
                  .messages = aLine)
VHL_EXPORT_SHADER(
    vhDebugScalar_v1, vhDebugScalar,
    "The input, unchanged; the log tells it, as information: \"vhDebugScalar : label - 0.500\".",
    .order = passedOn, .edges = anyValue, .messages = aLine)
VHL_EXPORT_SHADER(
    vhDebugVector_v1, vhDebugVector,
    "The input, unchanged; the log tells it, as information: \"vhDebugVector : label - 0.000 1.000 "
    "-2.500\", x, y and z.",
    .order = passedOn, .edges = anyValue, .messages = aLine)
VHL_EXPORT_SHADER(
    vhDebugColor_v1, vhDebugColor,
    "The input, unchanged; the log tells it, as information: \"vhDebugColor : label - 1.000 0.500 "
    "0.000 1.000\", red, green, blue and alpha.",
    .order = passedOn, .edges = anyValue, .messages = aLine)
