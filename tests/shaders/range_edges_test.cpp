// SPDX-License-Identifier: BSD-3-Clause
// What users of the range shaders may rely on at the edges of each rule, one test each.
#include "expect.h"
#include "tests/harness/call.h"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>

namespace {

using test::Call;

constexpr float infinity = std::numeric_limits<float>::infinity();
constexpr float nan = std::numeric_limits<float>::quiet_NaN();

float ranged(const char* shader, float input, float lower, float upper)
{
    return Call(shader).set("input", input).set("lower", lower).set("upper", upper).run<miScalar>();
}

float threshold(float input, float threshold)
{
    return Call("vhThresholdScalar_v1").set("input", input).set("threshold", threshold).run<miScalar>();
}

/// A color with the same number in all channels.
miColor grey(float value) { return {value, value, value, value}; }

// ---- clamp

TEST(ClampEdges, ScalarsAreHeldBetweenTheBounds)
{
    EXPECT_EQ(ranged("vhClampScalar_v1", 5, 0, 1), 1);
    EXPECT_EQ(ranged("vhClampScalar_v1", -1, 0, 1), 0);
    EXPECT_EQ(ranged("vhClampScalar_v1", 0.25f, 0, 1), 0.25f);
    EXPECT_EQ(ranged("vhClampScalar_v1", infinity, 0, 1), 1);
    EXPECT_EQ(ranged("vhClampScalar_v1", -infinity, 0, 1), 0);
}

TEST(ClampEdges, TheLowerBoundIsAskedFirst)
{
    EXPECT_EQ(ranged("vhClampScalar_v1", 0.5f, 1, 0), 1) << "below lower and above upper";
    EXPECT_EQ(ranged("vhClampScalar_v1", -5, 1, 0), 1) << "below both";
    EXPECT_EQ(ranged("vhClampScalar_v1", 5, 1, 0), 0) << "above both";
    EXPECT_EQ(ranged("vhClampScalar_v1", 1, 1, 0), 0) << "not below lower";
}

TEST(ClampEdges, AnInputThatIsNoNumberPasses)
{
    EXPECT_TRUE(std::isnan(ranged("vhClampScalar_v1", nan, 0, 1)));
    const miVector vector = Call("vhClampVector_v2").set("input", miVector{nan, 5, nan}).run<miVector>();
    EXPECT_TRUE(std::isnan(vector.x));
    EXPECT_EQ(vector.y, 1);
    EXPECT_TRUE(std::isnan(vector.z));
    const miColor color = Call("vhClampColor_v3").set("input", miColor{5, nan, 5, nan}).run<miColor>();
    EXPECT_EQ(color.r, 1);
    EXPECT_TRUE(std::isnan(color.g));
    EXPECT_EQ(color.b, 1);
    EXPECT_TRUE(std::isnan(color.a));
}

TEST(ClampEdges, ABoundThatIsNoNumberBoundsNothing)
{
    EXPECT_EQ(ranged("vhClampScalar_v1", -5, nan, 1), -5);
    EXPECT_EQ(ranged("vhClampScalar_v1", 5, nan, 1), 1);
    EXPECT_EQ(ranged("vhClampScalar_v1", 5, 0, nan), 5);
    EXPECT_EQ(ranged("vhClampScalar_v1", -5, 0, nan), 0);
}

TEST(ClampEdges, AZeroOnABoundKeepsItsSign)
{
    EXPECT_TRUE(std::signbit(ranged("vhClampScalar_v1", -0.0f, 0.0f, 1)));
    EXPECT_FALSE(std::signbit(ranged("vhClampScalar_v1", 0.0f, -1, -0.0f)));
}

TEST(ClampEdges, VectorsAreClampedWhereTheFlagIsOn)
{
    const char* const flags[] = {"clampX", "clampY", "clampZ"};
    for (int on = 0; on < 8; ++on) {
        SCOPED_TRACE(on);
        Call clamp("vhClampVector_v2");
        clamp.set("input", miVector{-8, 9, 7})
            .set("lower", miVector{1, 2, 3})
            .set("upper", miVector{4, 5, 6});
        for (int i = 0; i < 3; ++i)
            clamp.set(flags[i], (on & 1 << i) != 0);
        expectVector(clamp.run<miVector>(),
                     {on & 1 ? 1.0f : -8.0f, on & 2 ? 5.0f : 9.0f, on & 4 ? 6.0f : 7.0f});
    }
}

TEST(ClampEdges, ColorsAreClampedWhereTheFlagIsOn)
{
    const char* const flags[] = {"clampR", "clampG", "clampB", "clampA"};
    for (int on = 0; on < 16; ++on) {
        SCOPED_TRACE(on);
        Call clamp("vhClampColor_v3");
        clamp.set("input", miColor{-8, 9, 70, -6})
            .set("lower", miColor{1, 2, 3, 4})
            .set("upper", miColor{5, 6, 7, 8});
        for (int i = 0; i < 4; ++i)
            clamp.set(flags[i], (on & 1 << i) != 0);
        expectColor(clamp.run<miColor>(), {on & 1 ? 1.0f : -8.0f, on & 2 ? 6.0f : 9.0f, on & 4 ? 7.0f : 70.0f,
                                           on & 8 ? 4.0f : -6.0f});
    }
}

TEST(ClampEdges, AlphaAloneIsClampedByTheAlphasOfTheBounds)
{
    Call clamp("vhClampColor_v3");
    clamp.set("input", miColor{-9, 0.5f, 9, 3})
        .set("lower", miColor{0, 0, 0, 0.25f})
        .set("upper", miColor{1, 1, 1, 0.75f})
        .set("clampR", false)
        .set("clampG", false)
        .set("clampB", false)
        .set("alphaLower", 10.0f)
        .set("alphaUpper", 2.0f);
    expectColor(clamp.run<miColor>(), {-9, 0.5f, 9, 0.75f});
    clamp.set("useAlphaUpper", false);
    expectColor(clamp.run<miColor>(), {-9, 0.5f, 9, 2});
    clamp.set("useAlphaLower", false);
    expectColor(clamp.run<miColor>(), {-9, 0.5f, 9, 10});
}

TEST(ClampEdges, AnyWordButZeroTurnsAChannelOn)
{
    Call clamp("vhClampVector_v2");
    clamp.set("input", miVector{5, 5, 5});
    for (const miInteger word : {1, 2, -1, 0x100, 0x10000, 0x7FFFFFFF})
        EXPECT_EQ(clamp.change("clampY", word).run<miVector>().y, 1) << word;
    EXPECT_EQ(clamp.change("clampY", miInteger{0}).run<miVector>().y, 5);
}

TEST(ClampEdges, VersionsAreThoseOfTheExportedNames)
{
    EXPECT_EQ(Call("vhClampScalar_v1").declaration().version, 1);
    EXPECT_EQ(Call("vhClampVector_v2").declaration().version, 2);
    EXPECT_EQ(Call("vhClampColor_v3").declaration().version, 3);
}

// ---- compress and expand

TEST(CompressEdges, ZeroToOneBecomesLowerToUpper)
{
    EXPECT_EQ(ranged("vhCompressScalar_v1", 0.5f, 2, 4), 3);
    EXPECT_EQ(ranged("vhCompressScalar_v1", 0, 2, 4), 2);
    EXPECT_EQ(ranged("vhCompressScalar_v1", 1, 2, 4), 4);
    EXPECT_EQ(ranged("vhCompressScalar_v1", 0.25f, 4, 2), 3.5f);
}

TEST(CompressEdges, NothingHoldsTheInputBetweenZeroAndOne)
{
    EXPECT_EQ(ranged("vhCompressScalar_v1", 2, 2, 4), 6);
    EXPECT_EQ(ranged("vhCompressScalar_v1", -1, 2, 4), 0);
    EXPECT_TRUE(std::isnan(ranged("vhCompressScalar_v1", nan, 2, 4)));
    EXPECT_TRUE(std::isnan(ranged("vhCompressScalar_v1", 0, 2, infinity)));
}

TEST(CompressEdges, OneMissesUpperWhereTheDifferenceIsRounded)
{
    EXPECT_EQ(ranged("vhCompressScalar_v1", 1, 0x1p25f, 1), 0) << "2^25 - (2^25 - 1), which becomes 2^25";
}

TEST(CompressEdges, ColorsTakeTheAlphaOfTheUpperBoundFromTheParameter)
{
    Call compress("vhCompressColor_v2");
    compress.set("input", miColor{0.5f, 0.5f, 0.5f, 0.5f})
        .set("lower", miColor{1, 2, 3, 0})
        .set("upper", miColor{3, 6, 9, 100})
        .set("alphaUpper", 0.8f)
        .set("useAlphaUpper", false);
    expectColor(compress.run<miColor>(), {2, 4, 6, 0.4f});
    compress.set("useAlphaUpper", true);
    expectColor(compress.run<miColor>(), {2, 4, 6, 50});
}

TEST(CompressEdges, ColorsTakeTheAlphaOfTheLowerBoundFromTheParameter)
{
    Call compress("vhCompressColor_v2");
    compress.set("input", grey(0.5f)).set("lower", grey(2)).set("upper", grey(4));
    compress.set("alphaLower", 0.0f).set("useAlphaLower", false);
    expectColor(compress.run<miColor>(), {3, 3, 3, 2});
}

TEST(ExpandEdges, LowerToUpperBecomesZeroToOne)
{
    EXPECT_EQ(ranged("vhExpandScalar_v1", 3, 2, 4), 0.5f);
    EXPECT_EQ(ranged("vhExpandScalar_v1", 2, 2, 4), 0);
    EXPECT_EQ(ranged("vhExpandScalar_v1", 4, 2, 4), 1);
    EXPECT_EQ(ranged("vhExpandScalar_v1", 6, 2, 4), 2);
    EXPECT_EQ(ranged("vhExpandScalar_v1", 3.5f, 4, 2), 0.25f);
}

TEST(ExpandEdges, EqualBoundsAreNotGuarded)
{
    EXPECT_EQ(ranged("vhExpandScalar_v1", 3, 2, 2), infinity);
    EXPECT_EQ(ranged("vhExpandScalar_v1", 1, 2, 2), -infinity);
    EXPECT_TRUE(std::isnan(ranged("vhExpandScalar_v1", 2, 2, 2)));
}

TEST(ExpandEdges, EqualBoundsOfVectorsAndColorsAreNotGuardedEither)
{
    const miVector vector = Call("vhExpandVector_v1")
                                .set("input", miVector{3, 1, 2})
                                .set("lower", miVector{2, 2, 2})
                                .set("upper", miVector{2, 2, 2})
                                .run<miVector>();
    EXPECT_EQ(vector.x, infinity);
    EXPECT_EQ(vector.y, -infinity);
    EXPECT_TRUE(std::isnan(vector.z));
    const miColor color = Call("vhExpandColor_v2")
                              .set("input", miColor{3, 1, 2, 3})
                              .set("lower", grey(2))
                              .set("upper", grey(2))
                              .run<miColor>();
    EXPECT_EQ(color.r, infinity);
    EXPECT_EQ(color.g, -infinity);
    EXPECT_TRUE(std::isnan(color.b));
    EXPECT_EQ(color.a, infinity);
}

TEST(ExpandEdges, ColorsTakeTheAlphasOfTheBoundsFromTheParameters)
{
    Call expand("vhExpandColor_v2");
    expand.set("input", grey(3)).set("lower", grey(2)).set("upper", grey(4));
    expand.set("alphaLower", 1.0f).set("alphaUpper", 9.0f);
    expectColor(expand.run<miColor>(), {0.5f, 0.5f, 0.5f, 0.5f});
    expand.set("useAlphaLower", false).set("useAlphaUpper", false);
    expectColor(expand.run<miColor>(), {0.5f, 0.5f, 0.5f, 0.25f});
}

TEST(RangeEdges, TheInputsOwnAlphaIsNeverReplaced)
{
    for (const char* const shader : {"vhClampColor_v3", "vhCompressColor_v2", "vhExpandColor_v2"}) {
        Call call(shader);
        call.set("input", grey(0.25f)).set("useAlphaLower", false).set("useAlphaUpper", false);
        call.set("alphaLower", 0.0f).set("alphaUpper", 1.0f);
        expectColor(call.run<miColor>(), grey(0.25f));
    }
}

TEST(RangeEdges, WithoutBoundsTheyAreZeroAndOne)
{
    EXPECT_EQ(Call("vhClampScalar_v1").set("input", 3.0f).run<miScalar>(), 1);
    EXPECT_EQ(Call("vhClampScalar_v1").set("input", -3.0f).run<miScalar>(), 0);
    expectColor(Call("vhClampColor_v3").set("input", miColor{-1, 0.5f, 2, 2}).run<miColor>(),
                {0, 0.5f, 1, 1});
    EXPECT_EQ(Call("vhCompressScalar_v1").set("input", 3.0f).run<miScalar>(), 3);
    EXPECT_EQ(Call("vhExpandScalar_v1").set("input", 3.0f).run<miScalar>(), 3);
}

// ---- threshold

TEST(ThresholdEdges, AScalarPassesAtItsThreshold)
{
    EXPECT_EQ(threshold(0.5f, 0.5f), 0.5f);
    EXPECT_EQ(threshold(0.75f, 0.5f), 0.75f);
    EXPECT_EQ(threshold(0.25f, 0.5f), 0);
    EXPECT_EQ(threshold(-1, -1), -1);
}

TEST(ThresholdEdges, AVectorsComponentPassesAtItsThreshold)
{
    expectVector(Call("vhThresholdVector_v1")
                     .set("input", miVector{1, 2, 3})
                     .set("threshold", miVector{1, 1, 4})
                     .run<miVector>(),
                 {1, 2, 0});
}

TEST(ThresholdEdges, AColorsChannelPassesOnlyAboveItsThreshold)
{
    expectColor(Call("vhThresholdColor_v2")
                    .set("input", miColor{0.5f, 0.75f, 0.25f, 0.5f})
                    .set("threshold", grey(0.5f))
                    .run<miColor>(),
                {0, 0.75f, 0, 0});
}

TEST(ThresholdEdges, AColorsAlphaIsComparedAsTheOtherChannels)
{
    Call call("vhThresholdColor_v2");
    call.set("input", grey(0.5f)).set("threshold", miColor{0, 0, 0, 0.75f}).set("alpha", 0.25f);
    expectColor(call.run<miColor>(), {0.5f, 0.5f, 0.5f, 0});
    call.set("useAlpha", false);
    expectColor(call.run<miColor>(), {0.5f, 0.5f, 0.5f, 0.5f});
    call.set("alpha", 0.5f);
    expectColor(call.run<miColor>(), {0.5f, 0.5f, 0.5f, 0});
}

TEST(ThresholdEdges, NoNumberOnEitherSideGivesZero)
{
    EXPECT_EQ(threshold(nan, 0), 0);
    EXPECT_EQ(threshold(1, nan), 0);
    expectColor(Call("vhThresholdColor_v2")
                    .set("input", miColor{nan, 1, 1, nan})
                    .set("threshold", miColor{0, nan, 0, -1})
                    .run<miColor>(),
                {0, 0, 1, 0});
}

TEST(ThresholdEdges, WhatDoesNotPassBecomesPositiveZero)
{
    EXPECT_FALSE(std::signbit(threshold(-1, 0)));
    EXPECT_TRUE(std::signbit(threshold(-0.0f, 0))) << "equal, so it passes as it is";
    EXPECT_FALSE(std::signbit(
        Call("vhThresholdColor_v2").set("input", grey(-0.0f)).set("threshold", grey(0)).run<miColor>().r));
}

} // namespace
