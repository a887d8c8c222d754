// SPDX-License-Identifier: BSD-3-Clause
// Comparisons: what a network branches on. Numbers are compared as plain floats, without a tolerance; one
// shader compares the name of the object being shaded.

#include "shaders/binary.h"
#include "shaders/decisions.h"
#include "shaders/instance_name.h"
#include "shaders/length.h"
#include "shaders/range.h"
#include "shaders/string_parameter.h"

#include <boost/algorithm/string/case_conv.hpp>

#include <algorithm>
#include <array>
#include <functional>
#include <string>

namespace {

// ---- what is compared of a value

std::array<float, 1> components(const VHL::dScalar& s) { return {s}; }
std::array<float, 3> components(const VHL::dVector& v) { return {v.x(), v.y(), v.z()}; }
std::array<float, 4> components(const VHL::dColor& c) { return {c.r(), c.g(), c.b(), c.a()}; }

/// Deliberately without alpha, which equality does count: a colour is brighter or darker by what is seen.
std::array<float, 3> ordered(const VHL::dColor& c) { return {c.r(), c.g(), c.b()}; }
auto ordered(const auto& value) { return components(value); }

/// Whether the relation holds for every component.
template <class Relation, std::size_t Count>
bool every(Relation relation, const std::array<float, Count>& a, const std::array<float, Count>& b)
{
    return std::equal(a.begin(), a.end(), b.begin(), relation);
}

// ---- two values

struct Sides {
    static constexpr std::string_view first = "Left side of the comparison.";
    static constexpr std::string_view second = "Right side of the comparison.";
    static constexpr float standard = 0;
};

constexpr auto equal = [](const auto& a, const auto& b) {
    return every(std::equal_to<float>(), components(a), components(b));
};
constexpr auto different = [](const auto& a, const auto& b) { return !equal(a, b); };

template <class Relation>
constexpr auto inOrder =
    [](const auto& a, const auto& b) { return every(Relation(), ordered(a), ordered(b)); };
constexpr auto less = inOrder<std::less<float>>;
constexpr auto lessOrEqual = inOrder<std::less_equal<float>>;
constexpr auto greater = inOrder<std::greater<float>>;
constexpr auto greaterOrEqual = inOrder<std::greater_equal<float>>;

/// `execute` of the relations: both sides are read, then compared.
template <class Test, class T>
int compare(Test test, miBoolean* result, miState* state, VHL::Pair<T, Sides>& params)
{
    const auto [a, b] = VHL::operands(state, params);
    *result = miBoolean(test(a, b));
    return 1;
}

// ---- a value and a range

/// Each end is inclusive or exclusive for all components together.
template <std::size_t Count>
bool inRange(const std::array<float, Count>& input, const std::array<float, Count>& lower,
             const std::array<float, Count>& upper, bool includeLower, bool includeUpper)
{
    const auto above = [](const auto& a, const auto& b, bool inclusive) {
        return inclusive ? every(std::greater_equal<float>(), a, b) : every(std::greater<float>(), a, b);
    };
    return above(input, lower, includeLower) && above(upper, input, includeUpper);
}

struct Ends {
    static constexpr std::string_view input = "What is looked for in the range; NaN is in none.";
    static constexpr std::string_view lower = "Lower end of the range.";
    static constexpr std::string_view upper = "Upper end of the range; below the lower one nothing is in it.";
};

template <class T>
struct InRange {
    VHL::Range<T, Ends> range;
    miBoolean includeLower;
    miBoolean includeUpper;

    static constexpr auto fields()
    {
        return VHL::concatenate(
            VHL::fieldsOf<VHL::Range<T, Ends>>(),
            std::array{VHL_FIELD_AS(InRange, boolean, includeLower, "On: lower is in the range.").by(1),
                       VHL_FIELD_AS(InRange, boolean, includeUpper, "On: upper is in the range.").by(1)});
    }
};

template <class T>
int inRange(miBoolean* result, miState* state, InRange<T>& params)
{
    const auto [input, lower, upper] = VHL::bounded(state, params.range);
    const bool includeLower = VHL::evaluate(state, params.includeLower);
    const bool includeUpper = VHL::evaluate(state, params.includeUpper);
    *result = miBoolean(inRange(ordered(input), ordered(lower), ordered(upper), includeLower, includeUpper));
    return 1;
}

// ---- a point and two others

float dot(const VHL::dVector& a, const VHL::dVector& b)
{
    return a.x() * b.x() + a.y() * b.y() + a.z() * b.z();
}

/// Whether the point lies between the planes through start and end that stand upright on the line between
/// them. Positions along that line are measured from start and from end, where 1 is the distance between the
/// two. Asks what is outside, so that a NaN is between, as everything is while start is end.
bool between(const VHL::dVector& point, const VHL::dVector& start, const VHL::dVector& end)
{
    VHL::dVector line = end - start;
    VHL::dVector fromStart = point - start;
    VHL::dVector fromEnd = point - end;
    const float distance = VHL::length(line);
    if (distance != 0.0f) {
        const float scale = 1.0f / distance;
        line = line * scale;
        fromStart = fromStart * scale;
        fromEnd = fromEnd * scale;
    }
    return !(dot(fromStart, line) > 1.0f || dot(fromEnd, line) < -1.0f);
}

} // namespace

struct _vhScalarComparisonParams : VHL::Pair<miScalar, Sides> {};
struct _vhColorComparisonParams : VHL::Pair<miColor, Sides> {};
struct _vhVectorComparisonParams : VHL::Pair<miVector, Sides> {};

struct _vhInRangeScalarParams : InRange<miScalar> {};
struct _vhInRangeColorParams : InRange<miColor> {};
struct _vhInRangeVectorParams : InRange<miVector> {};

struct _vhInBetweenVectorParams {
    miVector input;
    miVector start;
    miVector end;

    static constexpr auto fields()
    {
        using P = _vhInBetweenVectorParams;
        return std::array{
            VHL_FIELD(P, input, "The point that is looked for; NaN in it is between any two."),
            VHL_FIELD(P, start,
                      "Where the slab begins: at the plane through it, upright on the line to end."),
            VHL_FIELD(P, end, "Where the slab ends; equal to start, every point is between.")};
    }
};

struct _vhInRasterPositionRangeParams {
    miScalar lowerX;
    miScalar lowerY;
    miScalar upperX;
    miScalar upperY;
    miBoolean includeLower;
    miBoolean includeUpper;

    static constexpr auto fields()
    {
        using P = _vhInRasterPositionRangeParams;
        return std::array{
            VHL_FIELD(P, lowerX, "Left edge, in pixels from the left of the picture."),
            VHL_FIELD(P, lowerY, "Lower edge, in pixels from the bottom of the picture."),
            VHL_FIELD(P, upperX, "Right edge, in pixels from the left of the picture."),
            VHL_FIELD(P, upperY, "Upper edge, in pixels from the bottom of the picture."),
            VHL_FIELD_AS(P, boolean, includeLower, "On: the left and lower edges are in the rectangle.")
                .by(1),
            VHL_FIELD_AS(P, boolean, includeUpper, "On: the right and upper edges are in the rectangle.")
                .by(1)};
    }
};

static constexpr const char* equality =
    "No tolerance: the next float is another number. 0 equals -0, an infinity equals itself, and with a NaN "
    "on either side the result is off.";
static constexpr const char* inequality =
    "No tolerance: the next float is another number. 0 equals -0, an infinity equals itself, and with a NaN "
    "on either side the result is on.";
static constexpr const char* ordering =
    "No tolerance. 0 and -0 are equal, infinities lie beyond all numbers, and with a NaN on either side the "
    "result is off, unless it is in an alpha, which is ignored.";

// Six relations of three kinds; the macro spells their names and holds no logic.
#define RELATION(Name, Of, test, itsEdges, description)                                                      \
    struct vh##Name##Of final : VHL::dMentalRayShader<miBoolean, _vh##Of##ComparisonParams, 1> {             \
        int execute(miBoolean* result, miState* state, Params* params) override                              \
        {                                                                                                    \
            return compare(test, result, state, *params);                                                    \
        }                                                                                                    \
    };                                                                                                       \
    VHL_EXPORT_SHADER(vh##Name##Of##_v1, vh##Name##Of, description, .result = VHL::Kind::boolean,            \
                      .order = VHL::pairOrder, .edges = itsEdges)

RELATION(Equal, Scalar, equal, equality,
         "Whether input1 = input2 without a tolerance; 0 equals -0; false for NaN.")
RELATION(NotEqual, Scalar, different, inequality,
         "Whether input1 and input2 differ at all; 0 equals -0; true for NaN.")
RELATION(LessThan, Scalar, less, ordering, "Whether input1 < input2; false for NaN.")
RELATION(LessThanOrEqual, Scalar, lessOrEqual, ordering, "Whether input1 <= input2; false for NaN.")
RELATION(GreaterThan, Scalar, greater, ordering, "Whether input1 > input2; false for NaN.")
RELATION(GreaterThanOrEqual, Scalar, greaterOrEqual, ordering, "Whether input1 >= input2; false for NaN.")

RELATION(Equal, Color, equal, equality, "Whether all four channels are equal, alpha included; false for NaN.")
RELATION(NotEqual, Color, different, inequality,
         "Whether any of the four channels differs, alpha included; true for NaN.")
RELATION(LessThan, Color, less, ordering,
         "Whether red, green and blue are each <, alpha ignored; false for NaN.")
RELATION(LessThanOrEqual, Color, lessOrEqual, ordering,
         "Whether red, green and blue are each <=, alpha ignored; false for NaN.")
RELATION(GreaterThan, Color, greater, ordering,
         "Whether red, green and blue are each >, alpha ignored; false for NaN.")
RELATION(GreaterThanOrEqual, Color, greaterOrEqual, ordering,
         "Whether red, green and blue are each >=, alpha ignored; false for NaN.")

RELATION(Equal, Vector, equal, equality, "Whether x, y and z are all equal; false for NaN.")
// Deliberately the test for equality: scenes rely on what this shader has always answered.
RELATION(
    NotEqual, Vector, equal, equality,
    "Despite its name: whether x, y and z are all equal, as vhEqualVector_v1; negate that one to ask for a "
    "difference.")
RELATION(LessThan, Vector, less, ordering, "Whether x, y and z are each <; false for NaN.")
RELATION(LessThanOrEqual, Vector, lessOrEqual, ordering, "Whether x, y and z are each <=; false for NaN.")
RELATION(GreaterThan, Vector, greater, ordering, "Whether x, y and z are each >; false for NaN.")
RELATION(GreaterThanOrEqual, Vector, greaterOrEqual, ordering,
         "Whether x, y and z are each >=; false for NaN.")
#undef RELATION

struct vhInRangeScalar final : VHL::dMentalRayShader<miBoolean, _vhInRangeScalarParams, 1> {
    int execute(miBoolean* result, miState* state, Params* params) override
    {
        return inRange(result, state, *params);
    }
};

struct vhInRangeColor final : VHL::dMentalRayShader<miBoolean, _vhInRangeColorParams, 1> {
    int execute(miBoolean* result, miState* state, Params* params) override
    {
        return inRange(result, state, *params);
    }
};

struct vhInRangeVector final : VHL::dMentalRayShader<miBoolean, _vhInRangeVectorParams, 1> {
    int execute(miBoolean* result, miState* state, Params* params) override
    {
        return inRange(result, state, *params);
    }
};

struct vhInBetweenVector final : VHL::dMentalRayShader<miBoolean, _vhInBetweenVectorParams, 1> {
    int execute(miBoolean* result, miState* state, Params* params) override
    {
        const VHL::dVector start = VHL::evaluate(state, params->start);
        const VHL::dVector input = VHL::evaluate(state, params->input);
        const VHL::dVector end = VHL::evaluate(state, params->end);
        *result = miBoolean(between(input, start, end));
        return 1;
    }
};

struct vhInRasterPositionRange final : VHL::dMentalRayShader<miBoolean, _vhInRasterPositionRangeParams, 1> {
    int execute(miBoolean* result, miState* state, Params* params) override
    {
        const float lowerX = VHL::evaluate(state, params->lowerX);
        const float lowerY = VHL::evaluate(state, params->lowerY);
        const float upperX = VHL::evaluate(state, params->upperX);
        const float upperY = VHL::evaluate(state, params->upperY);
        const bool includeLower = VHL::evaluate(state, params->includeLower);
        const bool includeUpper = VHL::evaluate(state, params->includeUpper);
        *result = miBoolean(inRange<2>({state->raster_x, state->raster_y}, {lowerX, lowerY}, {upperX, upperY},
                                       includeLower, includeUpper));
        return 1;
    }
};

static constexpr const char* rangeInOrder =
    "input, lower, upper, includeLower, includeUpper, each once; always all of them.";
static constexpr const char* emptyRange =
    "Nothing lies between ends that are the wrong way round, in one component or in all, nor anything where "
    "a NaN is compared. Between equal ends lies what equals them, while both are included. An infinite end "
    "leaves its side open.";

VHL_EXPORT_SHADER(vhInRangeScalar_v1, vhInRangeScalar,
                  "Whether the input lies between lower and upper, each end included or not; false for NaN.",
                  .result = VHL::Kind::boolean, .order = rangeInOrder, .edges = emptyRange)
VHL_EXPORT_SHADER(
    vhInRangeColor_v1, vhInRangeColor,
    "Whether red, green and blue each lie between those of lower and upper, each end included or "
    "not; alpha ignored; false for NaN.",
    .result = VHL::Kind::boolean, .order = rangeInOrder, .edges = emptyRange)
VHL_EXPORT_SHADER(vhInRangeVector_v1, vhInRangeVector,
                  "Whether x, y and z each lie between those of lower and upper, each end included or not; "
                  "false for NaN.",
                  .result = VHL::Kind::boolean, .order = rangeInOrder, .edges = emptyRange)
VHL_EXPORT_SHADER(
    vhInBetweenVector_v1, vhInBetweenVector,
    "Whether a point lies between the planes through start and end, upright on the line between "
    "them, however far from that line; the planes count, and NaN is true.",
    .result = VHL::Kind::boolean, .order = "start, then input, then end, each once.",
    .edges = "Equal start and end, and a NaN anywhere: on, as it is asked what lies outside. Infinite "
             "coordinates count where the line runs along them; across it they make a NaN.")
VHL_EXPORT_SHADER(
    vhInRasterPositionRange_v1, vhInRasterPositionRange,
    "Whether the sample lies in a rectangle of the picture, in pixels; the lower edges included "
    "or not, and the upper ones.",
    .result = VHL::Kind::boolean,
    .order = "lowerX, lowerY, upperX, upperY, includeLower, includeUpper, each once; always all of them.",
    .edges = emptyRange)

// ---- the name of the object being shaded

struct _vhIsObjectParams {
    miTag objectName;

    static constexpr auto fields()
    {
        return std::array{
            VHL_FIELD_AS(_vhIsObjectParams, string, objectName,
                         "Name of the instance; upper and lower case are the same. No wildcards. Empty: "
                         "instances without a name.")};
    }
};

struct vhIsObject final : VHL::dMentalRayShader<miBoolean, _vhIsObjectParams, 1> {
    void init(miState* state, Params* params) override
    {
        decisions.clear();
        if (const miTag* const name = VHL::evaluateAddress(state, params->objectName))
            lowerName = boost::algorithm::to_lower_copy(std::string(VHL::PinnedText(*name).get()));
    }

    void exit(miState*, Params*) override { decisions.clear(); }

    /// An instance is named and compared at its first sample.
    int execute(miBoolean* result, miState* state, Params*) override
    {
        if (const auto known = decisions.find(state->instance)) {
            *result = miBoolean(*known);
            return 1;
        }
        const VHL::ShadedInstance shaded(state);
        const std::string name = boost::algorithm::to_lower_copy(std::string(shaded.name()));
        *result = miBoolean(decisions.insert(state->instance, name == lowerName).answer);
        return 1;
    }

private:
    VHL::Decisions decisions; ///< 1 for instances that bear the name, 0 for others
    std::string lowerName;
};

VHL_EXPORT_SHADER(
    vhIsObject_v1, vhIsObject,
    "Whether the instance being shaded bears the name, letter by letter but for upper and lower "
    "case. Asked once for each instance; later samples know.",
    .result = VHL::Kind::boolean,
    .order = "objectName once, when the shader is made ready. Samples evaluate nothing: an instance is named "
             "and compared at its first one, and the answer is kept.",
    .edges = "An empty objectName fits instances without a name, and no others. Which letters have two cases "
             "is up to the program's locale: those of ASCII, unless the program sets another.")
