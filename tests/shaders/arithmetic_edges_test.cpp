// SPDX-License-Identifier: BSD-3-Clause
// What users of the arithmetic shaders may rely on at the edges of each rule, one test each.
#include "expect.h"
#include "tests/harness/call.h"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>

namespace {

using test::Call;

constexpr float infinity = std::numeric_limits<float>::infinity();
constexpr float nan = std::numeric_limits<float>::quiet_NaN();

float scalars(const char* shader, float input1, float input2)
{
    return Call(shader).set("input1", input1).set("input2", input2).run<miScalar>();
}

float mix(float input1, float input2, float weight)
{
    return Call("vhMixScalar_v1")
        .set("input1", input1)
        .set("input2", input2)
        .set("weight", weight)
        .run<miScalar>();
}

miVector normalized(const miVector& input)
{
    return Call("vhNormalizeVector_v1").set("input", input).run<miVector>();
}

TEST(ArithmeticEdges, DivScalarByZeroIsNotGuarded)
{
    EXPECT_EQ(scalars("vhDivScalar_v1", 1, 0), infinity);
    EXPECT_EQ(scalars("vhDivScalar_v1", -1, 0), -infinity);
    EXPECT_EQ(scalars("vhDivScalar_v1", 1, -0.0f), -infinity);
    EXPECT_TRUE(std::isnan(scalars("vhDivScalar_v1", 0, 0)));
}

TEST(ArithmeticEdges, DivVectorAndColorByZeroAreNotGuardedEither)
{
    expectVector(Call("vhDivVector_v1")
                     .set("input1", miVector{1, -1, 6})
                     .set("input2", miVector{0, 0, 2})
                     .run<miVector>(),
                 {infinity, -infinity, 3});
    expectColor(Call("vhDivColor_v2")
                    .set("input1", miColor{1, -1, 6, 1})
                    .set("input2", miColor{0, 0, 2, 0})
                    .run<miColor>(),
                {infinity, -infinity, 3, infinity});
}

TEST(ArithmeticEdges, MixWeightIsHeldBetween0And100)
{
    EXPECT_EQ(mix(3, 7, 150), 7);
    EXPECT_EQ(mix(3, 7, 100), 7);
    EXPECT_EQ(mix(3, 7, infinity), 7);
    EXPECT_EQ(mix(3, 7, -20), 3);
    EXPECT_EQ(mix(3, 7, 0), 3);
    EXPECT_EQ(mix(3, 7, -infinity), 3);
}

TEST(ArithmeticEdges, MixWeightIsAPercentage) { EXPECT_EQ(mix(3, 7, 25), 0.75f * 3 + 0.25f * 7); }

TEST(ArithmeticEdges, MixWithAWeightThatIsNoNumberIsNone) { EXPECT_TRUE(std::isnan(mix(3, 7, nan))); }

TEST(ArithmeticEdges, MixMultipliesBothInputsEvenByZero)
{
    EXPECT_TRUE(std::isnan(mix(infinity, 7, 100)));
    EXPECT_TRUE(std::isnan(mix(3, nan, 0)));
}

TEST(ArithmeticEdges, AddColorTakesTheAlphaOfTheParameterWhenTheFlagIsOff)
{
    for (const float ownAlpha : {0.0f, 0.25f, 100.0f, nan})
        expectColor(Call("vhAddColor_v2")
                        .set("input1", miColor{1, 2, 3, ownAlpha})
                        .set("useAlpha1", false)
                        .set("alpha1", 0.5f)
                        .set("input2", miColor{10, 20, 30, 0.125f})
                        .set("useAlpha2", true)
                        .set("alpha2", 99.0f)
                        .run<miColor>(),
                    {11, 22, 33, 0.625f});
}

TEST(ArithmeticEdges, AddColorTakesTheOtherAlphaOfTheParameterToo)
{
    expectColor(Call("vhAddColor_v2")
                    .set("input1", miColor{1, 2, 3, 4})
                    .set("useAlpha1", true)
                    .set("alpha1", 99.0f)
                    .set("input2", miColor{10, 20, 30, 40})
                    .set("useAlpha2", false)
                    .set("alpha2", 0.5f)
                    .run<miColor>(),
                {11, 22, 33, 4.5f});
}

TEST(ArithmeticEdges, AddColorNeverEvaluatesAlpha1WhileUseAlpha1IsOn)
{
    Call add("vhAddColor_v2");
    add.set("useAlpha1", true).connect("alpha1");
    add.run<miColor>();
    EXPECT_EQ(add.trace(), "");
    add.set("useAlpha1", false);
    add.run<miColor>();
    EXPECT_EQ(add.trace(), "alpha1");
}

TEST(ArithmeticEdges, AnyWordButZeroTurnsAFlagOn)
{
    Call add("vhAddColor_v2");
    add.set("input1", miColor{0, 0, 0, 1}).set("alpha1", 2.0f).set("input2", miColor{0, 0, 0, 0});
    for (const miInteger word : {1, 2, -1, 0x100, 0x10000, 0x7FFFFFFF})
        EXPECT_EQ(add.change("useAlpha1", word).run<miColor>().a, 1) << word;
    EXPECT_EQ(add.change("useAlpha1", miInteger{0}).run<miColor>().a, 2);
}

TEST(ArithmeticEdges, InvertColorTakesAlphaAsTheMaximumsAlpha)
{
    Call invert("vhInvertColor_v2");
    invert.set("input", miColor{0.25f, 0.5f, 2, 0.125f})
        .set("maximum", miColor{1, 1, 1, 10})
        .set("alpha", 3.0f)
        .set("useAlpha", false);
    expectColor(invert.run<miColor>(), {0.75f, 0.5f, -1, 3 - 0.125f});
    invert.set("useAlpha", true);
    expectColor(invert.run<miColor>(), {0.75f, 0.5f, -1, 10 - 0.125f});
}

TEST(ArithmeticEdges, NullColorTakesTheAlphaOfTheParameterWhenTheFlagIsOff)
{
    for (const char* const shader : {"vhNullColor_v2", "vhConstColor_v2"}) {
        Call null(shader);
        null.set("input", miColor{1, 2, 3, 4}).set("alpha", 5.0f).set("useAlpha", false);
        expectColor(null.run<miColor>(), {1, 2, 3, 5});
        null.set("useAlpha", true);
        expectColor(null.run<miColor>(), {1, 2, 3, 4});
    }
}

TEST(ArithmeticEdges, FloorColorFloorsTheAlphaToo)
{
    expectColor(Call("vhFloorColor_v2").set("input", miColor{0.5f, -0.5f, 2, 1.7f}).run<miColor>(),
                {0, -1, 2, 1});
}

TEST(ArithmeticEdges, CeilColorCeilsTheAlphaToo)
{
    expectColor(Call("vhCeilColor_v2").set("input", miColor{0.5f, -1.5f, 2, 1.2f}).run<miColor>(),
                {1, -1, 2, 2});
}

TEST(ArithmeticEdges, MinAndMaxGiveTheSecondInputWhenOneIsNoNumber)
{
    EXPECT_TRUE(std::isnan(scalars("vhMinScalar_v1", 1, nan)));
    EXPECT_EQ(scalars("vhMinScalar_v1", nan, 1), 1);
    EXPECT_TRUE(std::isnan(scalars("vhMaxScalar_v1", 1, nan)));
    EXPECT_EQ(scalars("vhMaxScalar_v1", nan, 1), 1);
}

TEST(ArithmeticEdges, TiesGiveMaxTheFirstInputAndMinTheSecond)
{
    // Only zeros tell equal numbers apart.
    EXPECT_FALSE(std::signbit(scalars("vhMaxScalar_v1", 0.0f, -0.0f)));
    EXPECT_TRUE(std::signbit(scalars("vhMaxScalar_v1", -0.0f, 0.0f)));
    EXPECT_TRUE(std::signbit(scalars("vhMinScalar_v1", 0.0f, -0.0f)));
    EXPECT_FALSE(std::signbit(scalars("vhMinScalar_v1", -0.0f, 0.0f)));
}

TEST(ArithmeticEdges, ModByZeroIsNoNumberAndTheSignIsTheFirstInputs)
{
    EXPECT_TRUE(std::isnan(scalars("vhModScalar_v1", 1, 0)));
    EXPECT_EQ(scalars("vhModScalar_v1", 5.5f, -2), 1.5f);
    EXPECT_EQ(scalars("vhModScalar_v1", -5.5f, 2), -1.5f);
    EXPECT_TRUE(std::signbit(scalars("vhModScalar_v1", -4, 2)));
}

TEST(ArithmeticEdges, NormalizeVectorReturnsAZeroVectorUnchanged)
{
    expectVector(normalized({0, 0, 0}), {0, 0, 0});
    EXPECT_TRUE(std::signbit(normalized({0, -0.0f, 0}).y));
    expectVector(normalized({1e-30f, 0, 0}), {1e-30f, 0, 0}); // its square is 0 in single precision
}

TEST(ArithmeticEdges, NormalizeVectorMultipliesByOneOverTheLength)
{
    expectVector(normalized({3, 0, 4}), {3 * (1.0f / 5), 0, 4 * (1.0f / 5)});
    EXPECT_FLOAT_EQ(normalized({3, 0, 4}).x, 0.6f);
    EXPECT_FLOAT_EQ(normalized({3, 0, 4}).z, 0.8f);
}

TEST(ArithmeticEdges, LengthIsLimitedByTheRangeOfTheSquares)
{
    EXPECT_EQ(Call("vhVectorNorm_v1").set("input", miVector{3, 0, 4}).run<miScalar>(), 5);
    EXPECT_EQ(Call("vhVectorNorm_v1").set("input", miVector{1e30f, 0, 0}).run<miScalar>(), infinity);
    expectVector(normalized({1e30f, 2, -3}), {0, 0, 0});
}

} // namespace
