// SPDX-License-Identifier: BSD-3-Clause
// What users of the comparisons may rely on at the edges of each rule, one test each.
#include "tests/harness/call.h"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>

namespace {

using test::Call;

constexpr float infinity = std::numeric_limits<float>::infinity();
constexpr float nan = std::numeric_limits<float>::quiet_NaN();

/// The words that a comparison may give are 0 and 1.
int answer(Call& call)
{
    const miInteger word = call.run<miInteger>();
    EXPECT_TRUE(word == 0 || word == 1) << word;
    EXPECT_EQ(call.returned(), 1);
    return word;
}

/// The relation of two values of one kind.
template <class T>
int holds(const char* shader, const T& input1, const T& input2)
{
    Call call(shader);
    call.set("input1", input1).set("input2", input2);
    return answer(call);
}

template <class T>
int inRange(const char* shader, const T& input, const T& lower, const T& upper, bool includeLower,
            bool includeUpper)
{
    Call call(shader);
    call.set("input", input).set("lower", lower).set("upper", upper);
    call.set("includeLower", includeLower).set("includeUpper", includeUpper);
    return answer(call);
}

int between(const miVector& input, const miVector& start, const miVector& end)
{
    Call call("vhInBetweenVector_v1");
    call.set("input", input).set("start", start).set("end", end);
    return answer(call);
}

// ---- two values

TEST(ComparisonEdges, EqualityHasNoTolerance)
{
    EXPECT_EQ(holds("vhEqualScalar_v1", 1.0f, 1.0000001f), 0);
    EXPECT_EQ(holds("vhNotEqualScalar_v1", 1.0f, 1.0000001f), 1);
    EXPECT_EQ(holds("vhLessThanScalar_v1", 1.0f, 1.0000001f), 1);
    EXPECT_EQ(holds("vhEqualScalar_v1", 1e-45f, 0.0f), 0) << "a denormal number is not 0";
}

TEST(ComparisonEdges, ZerosAreEqualWhateverTheirSigns)
{
    EXPECT_EQ(holds("vhEqualScalar_v1", 0.0f, -0.0f), 1);
    EXPECT_EQ(holds("vhNotEqualScalar_v1", 0.0f, -0.0f), 0);
    EXPECT_EQ(holds("vhLessThanScalar_v1", -0.0f, 0.0f), 0);
    EXPECT_EQ(holds("vhGreaterThanOrEqualScalar_v1", -0.0f, 0.0f), 1);
}

TEST(ComparisonEdges, EachRelationOfScalarsBelowAtAndAbove)
{
    const struct {
        const char* shader;
        int below, at, above;
    } table[] = {
        {"vhEqualScalar_v1", 0, 1, 0},       {"vhNotEqualScalar_v1", 1, 0, 1},
        {"vhLessThanScalar_v1", 1, 0, 0},    {"vhLessThanOrEqualScalar_v1", 1, 1, 0},
        {"vhGreaterThanScalar_v1", 0, 0, 1}, {"vhGreaterThanOrEqualScalar_v1", 0, 1, 1},
    };
    for (const auto& [shader, below, at, above] : table) {
        SCOPED_TRACE(shader);
        EXPECT_EQ(holds(shader, 1.0f, 2.0f), below);
        EXPECT_EQ(holds(shader, 2.0f, 2.0f), at);
        EXPECT_EQ(holds(shader, 3.0f, 2.0f), above);
        EXPECT_EQ(holds(shader, -infinity, infinity), below);
        EXPECT_EQ(holds(shader, infinity, infinity), at);
    }
}

TEST(ComparisonEdges, NoNumberIsDifferentAndInNoOrder)
{
    for (const char* const shader : {"vhEqualScalar_v1", "vhLessThanScalar_v1", "vhLessThanOrEqualScalar_v1",
                                     "vhGreaterThanScalar_v1", "vhGreaterThanOrEqualScalar_v1"}) {
        SCOPED_TRACE(shader);
        EXPECT_EQ(holds(shader, nan, 1.0f), 0);
        EXPECT_EQ(holds(shader, 1.0f, nan), 0);
        EXPECT_EQ(holds(shader, nan, nan), 0);
    }
    EXPECT_EQ(holds("vhNotEqualScalar_v1", nan, nan), 1);
    EXPECT_EQ(holds("vhNotEqualScalar_v1", 1.0f, nan), 1);
}

TEST(ComparisonEdges, EveryComponentHasToPass)
{
    const miVector low{0, 0, 0}, high{2, 2, 2};
    for (const miVector& mixed : {miVector{3, 1, 1}, miVector{1, 3, 1}, miVector{1, 1, 3}}) {
        EXPECT_EQ(holds("vhLessThanVector_v1", mixed, high), 0);
        EXPECT_EQ(holds("vhLessThanOrEqualVector_v1", mixed, high), 0);
        EXPECT_EQ(holds("vhGreaterThanVector_v1", high, mixed), 0);
        EXPECT_EQ(holds("vhGreaterThanOrEqualVector_v1", high, mixed), 0);
        EXPECT_EQ(holds("vhGreaterThanVector_v1", mixed, low), 1);
        const miColor color{mixed.x, mixed.y, mixed.z, 0};
        EXPECT_EQ(holds("vhLessThanColor_v1", color, miColor{2, 2, 2, 0}), 0);
        EXPECT_EQ(holds("vhLessThanOrEqualColor_v1", color, miColor{2, 2, 2, 0}), 0);
        EXPECT_EQ(holds("vhGreaterThanColor_v1", miColor{2, 2, 2, 0}, color), 0);
        EXPECT_EQ(holds("vhGreaterThanOrEqualColor_v1", miColor{2, 2, 2, 0}, color), 0);
    }
    EXPECT_EQ(holds("vhLessThanVector_v1", miVector{0, 0, 1}, miVector{1, 1, 1}), 0);
    EXPECT_EQ(holds("vhLessThanOrEqualVector_v1", miVector{0, 0, 1}, miVector{1, 1, 1}), 1);
}

TEST(ComparisonEdges, OrderedColorsIgnoreAlpha)
{
    EXPECT_EQ(holds("vhLessThanOrEqualColor_v1", miColor{0, 0, 0, 5}, miColor{1, 1, 1, 0}), 1);
    for (const float alpha : {-5.0f, 0.0f, 5.0f, infinity, nan}) {
        SCOPED_TRACE(alpha);
        const miColor dark{0, 0, 0, alpha}, bright{1, 1, 1, 0};
        EXPECT_EQ(holds("vhLessThanColor_v1", dark, bright), 1);
        EXPECT_EQ(holds("vhLessThanOrEqualColor_v1", dark, bright), 1);
        EXPECT_EQ(holds("vhGreaterThanColor_v1", bright, dark), 1);
        EXPECT_EQ(holds("vhGreaterThanOrEqualColor_v1", bright, dark), 1);
        EXPECT_EQ(holds("vhGreaterThanColor_v1", dark, bright), 0);
    }
}

TEST(ComparisonEdges, EqualColorsCountAlpha)
{
    const miColor color{1, 2, 3, 4};
    EXPECT_EQ(holds("vhEqualColor_v1", color, color), 1);
    EXPECT_EQ(holds("vhNotEqualColor_v1", color, color), 0);
    EXPECT_EQ(holds("vhEqualColor_v1", color, miColor{1, 2, 3, 5}), 0);
    EXPECT_EQ(holds("vhNotEqualColor_v1", color, miColor{1, 2, 3, 5}), 1);
}

TEST(ComparisonEdges, NotEqualColorIsTheNegationOfEqualColor)
{
    for (const miColor& other : {miColor{0, 2, 3, 4}, miColor{1, 0, 3, 4}, miColor{1, 2, 0, 4},
                                 miColor{nan, 2, 3, 4}, miColor{1, 2, 3, nan}, miColor{1, 2, 3, 4}}) {
        const int equal = holds("vhEqualColor_v1", miColor{1, 2, 3, 4}, other);
        EXPECT_EQ(holds("vhNotEqualColor_v1", miColor{1, 2, 3, 4}, other), 1 - equal);
    }
    EXPECT_EQ(holds("vhNotEqualColor_v1", miColor{1, 2, 3, nan}, miColor{1, 2, 3, nan}), 1);
}

TEST(ComparisonEdges, NotEqualVectorTellsWhetherVectorsAreEqual)
{
    EXPECT_EQ(holds("vhNotEqualVector_v1", miVector{1, 2, 3}, miVector{1, 2, 3}), 1);
    EXPECT_EQ(holds("vhNotEqualVector_v1", miVector{0, 0, 0}, miVector{1, 0, 0}), 0);
    EXPECT_EQ(holds("vhNotEqualVector_v1", miVector{0, 0, 0}, miVector{0, 1, 0}), 0);
    EXPECT_EQ(holds("vhNotEqualVector_v1", miVector{0, 0, 0}, miVector{0, 0, 1}), 0);
    EXPECT_EQ(holds("vhNotEqualVector_v1", miVector{1, 2, 3}, miVector{4, 5, 6}), 0);
    EXPECT_EQ(holds("vhNotEqualVector_v1", miVector{nan, 2, 3}, miVector{nan, 2, 3}), 0);
    EXPECT_EQ(holds("vhEqualVector_v1", miVector{1, 2, 3}, miVector{1, 2, 3}), 1);
    EXPECT_EQ(holds("vhEqualVector_v1", miVector{0, 0, 0}, miVector{1, 0, 0}), 0);
}

// ---- ranges

TEST(InRangeEdges, EachEndIsInTheRangeWhileItsFlagIsOn)
{
    for (const bool other : {false, true}) {
        EXPECT_EQ(inRange("vhInRangeScalar_v1", 1.0f, 1.0f, 2.0f, true, other), 1);
        EXPECT_EQ(inRange("vhInRangeScalar_v1", 1.0f, 1.0f, 2.0f, false, other), 0);
        EXPECT_EQ(inRange("vhInRangeScalar_v1", 2.0f, 1.0f, 2.0f, other, true), 1);
        EXPECT_EQ(inRange("vhInRangeScalar_v1", 2.0f, 1.0f, 2.0f, other, false), 0);
        EXPECT_EQ(inRange("vhInRangeScalar_v1", 1.5f, 1.0f, 2.0f, other, other), 1);
        EXPECT_EQ(inRange("vhInRangeScalar_v1", 0.5f, 1.0f, 2.0f, other, other), 0);
        EXPECT_EQ(inRange("vhInRangeScalar_v1", 2.5f, 1.0f, 2.0f, other, other), 0);
    }
}

TEST(InRangeEdges, AnyWordButZeroIncludesAnEnd)
{
    Call call("vhInRangeScalar_v1");
    call.set("input", 1.0f).set("lower", 1.0f).set("upper", 2.0f);
    for (const miInteger word : {1, 2, -1, 0x100, 0x10000, 0x7FFFFFFF})
        EXPECT_EQ(answer(call.change("includeLower", word)), 1) << word;
    EXPECT_EQ(answer(call.change("includeLower", miInteger{0})), 0);
}

TEST(InRangeEdges, ARangeOfOneValueHoldsItWhenBothEndsAreIncluded)
{
    EXPECT_EQ(inRange("vhInRangeScalar_v1", 1.0f, 1.0f, 1.0f, true, true), 1);
    EXPECT_EQ(inRange("vhInRangeScalar_v1", 1.0f, 1.0f, 1.0f, true, false), 0);
    EXPECT_EQ(inRange("vhInRangeScalar_v1", 1.0f, 1.0f, 1.0f, false, true), 0);
}

TEST(InRangeEdges, NothingIsInARangeTheWrongWayRound)
{
    for (const float input : {0.0f, 1.0f, 1.5f, 2.0f, 3.0f})
        EXPECT_EQ(inRange("vhInRangeScalar_v1", input, 2.0f, 1.0f, true, true), 0) << input;
}

TEST(InRangeEdges, NoNumberIsInNoRange)
{
    EXPECT_EQ(inRange("vhInRangeScalar_v1", nan, -infinity, infinity, true, true), 0);
    EXPECT_EQ(inRange("vhInRangeScalar_v1", 1.0f, nan, 2.0f, true, true), 0);
    EXPECT_EQ(inRange("vhInRangeScalar_v1", 1.0f, 0.0f, nan, true, true), 0);
}

TEST(InRangeEdges, ColorsIgnoreAlpha)
{
    for (const float alpha : {-5.0f, 0.5f, 5.0f, nan})
        EXPECT_EQ(inRange("vhInRangeColor_v1", miColor{0.5f, 0.5f, 0.5f, alpha}, miColor{0, 0, 0, 0},
                          miColor{1, 1, 1, 1}, true, true),
                  1)
            << alpha;
}

TEST(InRangeEdges, EveryComponentHasToBeInTheRange)
{
    const miVector lower{0, 0, 0}, upper{1, 1, 1};
    for (const float outside : {-1.0f, 2.0f})
        for (const miVector& input :
             {miVector{outside, 0.5f, 0.5f}, miVector{0.5f, outside, 0.5f}, miVector{0.5f, 0.5f, outside}}) {
            EXPECT_EQ(inRange("vhInRangeVector_v1", input, lower, upper, true, true), 0);
            EXPECT_EQ(inRange("vhInRangeColor_v1", miColor{input.x, input.y, input.z, 0.5f},
                              miColor{0, 0, 0, 0}, miColor{1, 1, 1, 1}, true, true),
                      0);
        }
}

TEST(InRangeEdges, OneComponentOnAnExcludedEndIsOutside)
{
    const miVector lower{0, 0, 0}, upper{1, 1, 1};
    for (const miVector& input :
         {miVector{0, 0.5f, 0.5f}, miVector{0.5f, 0, 0.5f}, miVector{0.5f, 0.5f, 0}}) {
        EXPECT_EQ(inRange("vhInRangeVector_v1", input, lower, upper, true, false), 1);
        EXPECT_EQ(inRange("vhInRangeVector_v1", input, lower, upper, false, true), 0);
    }
}

// ---- between two points

TEST(InBetweenEdges, EverythingIsBetweenAPointAndItself)
{
    for (const miVector& input : {miVector{1, 2, 3}, miVector{0, 0, 0}, miVector{-1e30f, 5, 1e30f},
                                  miVector{infinity, 0, 0}, miVector{nan, 0, 0}})
        EXPECT_EQ(between(input, {1, 2, 3}, {1, 2, 3}), 1);
}

TEST(InBetweenEdges, TheSlabIsAsWideAsTheLineIsLong)
{
    const miVector start{0, 0, 0}, end{1, 0, 0};
    EXPECT_EQ(between({0.5f, 100, -100}, start, end), 1) << "however far from the line";
    EXPECT_EQ(between({1.5f, 0, 0}, start, end), 0);
    EXPECT_EQ(between({-0.1f, 0, 0}, start, end), 0);
}

TEST(InBetweenEdges, BothPlanesAreInTheSlab)
{
    EXPECT_EQ(between({0, 5, 0}, {0, 0, 0}, {1, 0, 0}), 1);
    EXPECT_EQ(between({1, 5, 0}, {0, 0, 0}, {1, 0, 0}), 1);
}

TEST(InBetweenEdges, TheLineMayStandAnywhereAndHaveAnyLength)
{
    const miVector start{1, 2, 3}, end{1, 2 + 256, 3}; // a power of two leaves no rounding
    EXPECT_EQ(between({50, 130, -9}, start, end), 1);
    EXPECT_EQ(between({50, 2, -9}, start, end), 1);
    EXPECT_EQ(between({50, 258, -9}, start, end), 1);
    EXPECT_EQ(between({50, 1, -9}, start, end), 0);
    EXPECT_EQ(between({50, 260, -9}, start, end), 0);
    EXPECT_EQ(between({50, 130, -9}, end, start), 1) << "and either way";
}

TEST(InBetweenEdges, NoNumberIsBetween)
{
    for (const miVector& input : {miVector{nan, 0, 0}, miVector{9, nan, 0}, miVector{9, 0, nan}})
        EXPECT_EQ(between(input, {0, 0, 0}, {1, 0, 0}), 1);
    EXPECT_EQ(between({9, 0, 0}, {nan, 0, 0}, {1, 0, 0}), 1);
    EXPECT_EQ(between({9, 0, 0}, {0, 0, 0}, {1, nan, 0}), 1);
}

TEST(InBetweenEdges, LengthsOutsideTheRangeOfTheSquares)
{
    EXPECT_EQ(between({9, 0, 0}, {0, 0, 0}, {1e30f, 0, 0}), 1);
    EXPECT_EQ(between({-9, 0, 0}, {0, 0, 0}, {1e30f, 0, 0}), 1) << "scaled by 1 / infinity, nothing is far";
    EXPECT_EQ(between({9, 0, 0}, {0, 0, 0}, {1e-30f, 0, 0}), 1) << "not scaled, and the products vanish";
}

// ---- the raster

class RasterRectangle : public testing::Test {
protected:
    RasterRectangle()
    {
        call.set("lowerX", 10.0f).set("lowerY", 20.0f).set("upperX", 30.0f).set("upperY", 50.0f);
    }

    int at(float x, float y)
    {
        call.state().raster_x = x;
        call.state().raster_y = y;
        return answer(call);
    }

    Call call{"vhInRasterPositionRange_v1"};
};

TEST_F(RasterRectangle, HoldsWhatLiesInBothRanges)
{
    EXPECT_EQ(at(20, 40), 1);
    EXPECT_EQ(at(9, 40), 0);
    EXPECT_EQ(at(31, 40), 0);
    EXPECT_EQ(at(20, 19), 0);
    EXPECT_EQ(at(20, 51), 0);
    EXPECT_EQ(at(40, 20), 0) << "x and y are not mistaken for each other";
}

TEST_F(RasterRectangle, HoldsItsLowerEdgesWhileTheyAreIncluded)
{
    for (const bool other : {false, true}) {
        call.set("includeLower", true).set("includeUpper", other);
        EXPECT_EQ(at(10, 40), 1);
        EXPECT_EQ(at(20, 20), 1);
        call.set("includeLower", false);
        EXPECT_EQ(at(10, 40), 0);
        EXPECT_EQ(at(20, 20), 0);
    }
}

TEST_F(RasterRectangle, HoldsItsUpperEdgesWhileTheyAreIncluded)
{
    for (const bool other : {false, true}) {
        call.set("includeLower", other).set("includeUpper", true);
        EXPECT_EQ(at(30, 40), 1);
        EXPECT_EQ(at(20, 50), 1);
        call.set("includeUpper", false);
        EXPECT_EQ(at(30, 40), 0);
        EXPECT_EQ(at(20, 50), 0);
    }
}

TEST_F(RasterRectangle, HoldsNoPositionThatIsNoNumber)
{
    EXPECT_EQ(at(nan, 40), 0);
    EXPECT_EQ(at(20, nan), 0);
}

} // namespace
