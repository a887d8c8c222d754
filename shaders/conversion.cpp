// SPDX-License-Identifier: BSD-3-Clause
// Conversions between booleans, integers, scalars, vectors and colours, each a rule from the evaluated
// parameters to the result.

#include "core/evaluate.h"
#include "core/export.h"

#include <array>
#include <limits>
#include <tuple>

using VHL::dColor;
using VHL::dVector;
using VHL::Kind;

// ---- Results that are structures

struct _vhVectorScalars {
    miScalar x;
    miScalar y;
    miScalar z;

    static constexpr auto fields()
    {
        using R = _vhVectorScalars;
        return std::array{VHL_FIELD(R, x, "x of the input."), VHL_FIELD(R, y, "y of the input."),
                          VHL_FIELD(R, z, "z of the input.")};
    }
};

struct _vhColorScalars {
    miScalar r;
    miScalar g;
    miScalar b;
    miScalar a;

    static constexpr auto fields()
    {
        using R = _vhColorScalars;
        return std::array{VHL_FIELD(R, r, "Red of the input."), VHL_FIELD(R, g, "Green of the input."),
                          VHL_FIELD(R, b, "Blue of the input."), VHL_FIELD(R, a, "Alpha of the input.")};
    }
};

namespace {

// ---- Parameters: each structure ties its fields together in the order in which they are read

template <class T, Kind kind = VHL::kindOf<T>()>
struct Input {
    T input;

    auto tied() { return std::tie(input); }
    static constexpr std::string_view order = "input, once.";
    static constexpr auto fields()
    {
        return std::array{VHL::plainField("input", VHL::kindAs<kind, T>(), offsetof(Input, input), sizeof(T),
                                          "What is converted.")};
    }
};

using Boolean = Input<miBoolean, Kind::boolean>;
using Integer = Input<miInteger, Kind::integer>;
using Scalar = Input<miScalar>;
using Vector = Input<miVector>;
using Color = Input<miColor>;

/// Weights left alone make it the sum: no one number for all channels makes a mean of an opaque colour.
template <class T>
struct Weighted {
    T input;
    T weights;

    auto tied() { return std::tie(input, weights); }
    static constexpr std::string_view order = "input, then weights, each once.";
    static constexpr auto fields()
    {
        return std::array{VHL_FIELD(Weighted, input, "What is converted."),
                          VHL_FIELD(Weighted, weights,
                                    "Factor of each component. Thirds give the mean, with 0 for the alpha of "
                                    "a colour; 1 and otherwise 0 picks one component.")
                              .by(1)};
    }
};

struct ThreeScalars {
    miScalar x;
    miScalar y;
    miScalar z;

    auto tied() { return std::tie(x, y, z); }
    static constexpr std::string_view order = "x, y, then z, each once.";
    static constexpr auto fields()
    {
        using P = ThreeScalars;
        return std::array{VHL_FIELD(P, x, "x of the result."), VHL_FIELD(P, y, "y of the result."),
                          VHL_FIELD(P, z, "z of the result.")};
    }
};

struct FourScalars {
    miScalar r;
    miScalar g;
    miScalar b;
    miScalar a;

    auto tied() { return std::tie(r, g, b, a); }
    static constexpr std::string_view order = "r, g, b, then a, each once.";
    static constexpr auto fields()
    {
        using P = FourScalars;
        return std::array{VHL_FIELD(P, r, "Red of the result."), VHL_FIELD(P, g, "Green of the result."),
                          VHL_FIELD(P, b, "Blue of the result."),
                          VHL_FIELD(P, a, "Alpha of the result.").by(1)};
    }
};

// ---- Rules; a single number fills a vector or a colour

/// A boolean's or an integer's word as it is. Deliberately not reduced to 0 and 1: these two kinds share a
/// word, and networks pass integers through booleans.
constexpr auto word = [](int value) { return value; };

constexpr auto oneOrZero = [](int on) { return on != 0 ? 1.0f : 0.0f; };
constexpr auto number = [](int value) { return static_cast<float>(value); };
constexpr auto scalar = [](float value) { return value; };

struct NotZero {
    int operator()(float s) const { return s != 0.0f; }
    int operator()(const dVector& v) const { return v.x() != 0.0f || v.y() != 0.0f || v.z() != 0.0f; }
    int operator()(const dColor& c) const { return c != dColor(0.0f); }
};
constexpr NotZero notZero;

/// What an integer cannot hold becomes the nearest that it can, and NaN 0.
constexpr auto truncated = [](float value) {
    using Limits = std::numeric_limits<miInteger>;
    constexpr float beyond = 0x1p31f; // Limits::max() itself is no float
    if (value >= beyond)
        return Limits::max();
    if (value < -beyond)
        return Limits::min();
    return value == value ? static_cast<miInteger>(value) : 0;
};

/// Products first, summed in the order of the components.
struct WeightedSum {
    float operator()(const dVector& v, const dVector& w) const
    {
        return v.x() * w.x() + v.y() * w.y() + v.z() * w.z();
    }
    float operator()(const dColor& c, const dColor& w) const
    {
        return c.r() * w.r() + c.g() * w.g() + c.b() * w.b() + c.a() * w.a();
    }
};
constexpr WeightedSum weightedSum;

constexpr auto truncatedSum = [](const auto& input, const auto& weights) {
    return truncated(weightedSum(input, weights));
};

constexpr auto opaque = [](const dVector& v) { return dColor(v.x(), v.y(), v.z(), 1.0f); };
constexpr auto withoutAlpha = [](const dColor& c) { return dVector(c.r(), c.g(), c.b()); };
constexpr auto splitVector = [](const dVector& v) { return _vhVectorScalars{v.x(), v.y(), v.z()}; };
constexpr auto splitColor = [](const dColor& c) { return _vhColorScalars{c.r(), c.g(), c.b(), c.a()}; };
constexpr auto vector = [](float x, float y, float z) { return dVector(x, y, z); };
constexpr auto color = [](float r, float g, float b, float a) { return dColor(r, g, b, a); };

// ---- The shaders

/// `execute` of all of them.
template <class Rule, class Result, class Params>
int convert(Rule rule, Result* result, miState* state, Params& params)
{
    const auto values = std::apply(
        [state](auto&... fields) {
            return std::tuple{VHL::evaluate(state, fields)...}; // braces: in order
        },
        params.tied());
    *result = static_cast<Result>(VHL::Value<Result>(std::apply(rule, values)));
    return 1;
}

// ---- What happens at the edges

constexpr std::string_view anyWord = "Any input is fine.";
constexpr std::string_view anyNumber = "Any input is fine; NaN, infinities and -0 pass as they are.";
constexpr std::string_view comparedWithZero = "Any input is fine: NaN and infinities are not 0, -0 is.";
constexpr std::string_view heldToIntegers = "What is above 2147483647 gives that number, what is below "
                                            "-2147483648 that one; infinities likewise, and NaN gives 0.";
constexpr std::string_view productsOfAll =
    "Any input is fine. Components of weight 0 count too: an infinity or NaN there makes the sum NaN.";
constexpr std::string_view productsHeld =
    "Components of weight 0 count too: an infinity or NaN there makes the sum NaN, which gives 0. Sums "
    "beyond what an integer can be give the nearest that it can.";

} // namespace

// One shader a line: name, result, parameters, rule, edges and what else the export line says. The macro
// spells names.
#define CONVERSION(Name, Result, Parameters, rule, edge, ...)                                                \
    struct _vh##Name##Params : Parameters {};                                                                \
    struct vh##Name final : VHL::dMentalRayShader<Result, _vh##Name##Params, 1> {                            \
        int execute(Result* result, miState* state, Params* params) override                                 \
        {                                                                                                    \
            return convert(rule, result, state, *params);                                                    \
        }                                                                                                    \
    };                                                                                                       \
    VHL_EXPORT_SHADER(vh##Name##_v1, vh##Name, __VA_ARGS__, .order = Parameters::order, .edges = edge)

CONVERSION(Boolean2Integer, miInteger, Boolean, word, anyWord,
           "The input's word, unchanged: off is 0, on is 1 or whatever other number its source gave.",
           .result = Kind::integer)
CONVERSION(Boolean2Scalar, miScalar, Boolean, oneOrZero, anyWord, "1 for on, 0 for off.")
CONVERSION(Boolean2Vector, miVector, Boolean, oneOrZero, anyWord, "1 1 1 for on, 0 0 0 for off.")
CONVERSION(Boolean2Color, miColor, Boolean, oneOrZero, anyWord,
           "Opaque white, 1 1 1 1, for on; transparent black, 0 0 0 0, for off.")

CONVERSION(Integer2Boolean, miBoolean, Integer, word, anyWord,
           "The input's word, unchanged: off for 0, on for any other number, which stays that number.",
           .result = Kind::boolean)
CONVERSION(Integer2Scalar, miScalar, Integer, number, anyWord,
           "The input as a scalar, rounded to the nearest beyond 16777216.")
CONVERSION(Integer2Vector, miVector, Integer, number, anyWord,
           "The input in x, y and z, rounded to the nearest scalar beyond 16777216.")
CONVERSION(Integer2Color, miColor, Integer, number, anyWord,
           "The input in r, g, b and a, rounded to the nearest scalar beyond 16777216.")

CONVERSION(Scalar2Boolean, miBoolean, Scalar, notZero, comparedWithZero,
           "On when the input is not 0, NaN included; -0 is 0.", .result = Kind::boolean)
CONVERSION(Scalar2Integer, miInteger, Scalar, truncated, heldToIntegers,
           "The input without its fraction: 2.9 gives 2, -2.9 gives -2. Held to what an integer can be; NaN "
           "gives 0.",
           .result = Kind::integer)
CONVERSION(Scalar2Vector, miVector, Scalar, scalar, anyNumber, "The input in x, y and z.")
CONVERSION(Scalar2Color, miColor, Scalar, scalar, anyNumber, "The input in r, g, b and a.")

CONVERSION(Vector2Boolean, miBoolean, Vector, notZero, comparedWithZero,
           "On when any component is not 0, NaN included; -0 is 0.", .result = Kind::boolean)
CONVERSION(Vector2Integer, miInteger, Weighted<miVector>, truncatedSum, productsHeld,
           "Sum of the components, each times its weight, without the fraction: -2.9 gives -2. Held to what "
           "an integer can be; NaN gives 0.",
           .result = Kind::integer)
CONVERSION(Vector2Scalar, miScalar, Weighted<miVector>, weightedSum, productsOfAll,
           "Sum of the components, each times its weight: the dot product.")
CONVERSION(Vector2Color, miColor, Vector, opaque, anyNumber, "x, y and z as r, g and b; alpha is 1.")
CONVERSION(Vector2Scalars, _vhVectorScalars, Vector, splitVector, anyNumber,
           "The components as scalars to connect one by one, as \"name.x\".")

CONVERSION(Color2Boolean, miBoolean, Color, notZero, comparedWithZero,
           "On when any channel is not 0, alpha and NaN included; -0 is 0.", .result = Kind::boolean)
CONVERSION(Color2Integer, miInteger, Weighted<miColor>, truncatedSum, productsHeld,
           "Sum of the channels, alpha included, each times its weight, without the fraction: -2.9 gives -2. "
           "Held to what an integer can be; NaN gives 0.",
           .result = Kind::integer)
CONVERSION(Color2Scalar, miScalar, Weighted<miColor>, weightedSum, productsOfAll,
           "Sum of the channels, alpha included, each times its weight: the dot product.")
CONVERSION(Color2Vector, miVector, Color, withoutAlpha, anyNumber,
           "r, g and b as x, y and z; alpha is dropped.")
CONVERSION(Color2Scalars, _vhColorScalars, Color, splitColor, anyNumber,
           "The channels as scalars to connect one by one, as \"name.r\".")

CONVERSION(Scalars2Vector, miVector, ThreeScalars, vector, anyNumber, "A vector of three scalars.")
CONVERSION(Scalars2Color, miColor, FourScalars, color, anyNumber,
           "A colour of four scalars; alpha is 1 when it is left out.")

#undef CONVERSION
