// SPDX-License-Identifier: BSD-3-Clause
#include "core/scalar.h"

#include "floats.h"

#include <gtest/gtest.h>

using VHL::dScalar;

// What has to compile, on constants and temporaries too, and to which type.
template <class A, class B>
concept Computes = requires(const A a, const B b)
{
    {
        a + b
        } -> std::same_as<dScalar>;
    {
        a - b
        } -> std::same_as<dScalar>;
    {
        a* b
        } -> std::same_as<dScalar>;
    {
        a / b
        } -> std::same_as<dScalar>;
    {
        a < b
        } -> std::same_as<bool>;
    {
        a <= b
        } -> std::same_as<bool>;
    {
        a >= b
        } -> std::same_as<bool>;
};
static_assert(Computes<dScalar, dScalar>);
static_assert(Computes<dScalar, float>);
static_assert(Computes<dScalar, double>);
static_assert(Computes<dScalar, int>);
static_assert(requires(dScalar a, const dScalar b, float f) {
    {
        a = b
        } -> std::same_as<dScalar&>;
    {
        a = f
        } -> std::same_as<dScalar&>;
    {
        a = 1
        } -> std::same_as<dScalar&>;
    {
        a += b
        } -> std::same_as<dScalar&>;
    {
        a *= b
        } -> std::same_as<dScalar&>;
    {
        a += f
        } -> std::same_as<dScalar&>;
    {
        a *= 2.0
        } -> std::same_as<dScalar&>;
    {
        2.0f * b
        } -> std::same_as<float>;
});
static_assert(std::is_convertible_v<float, dScalar> && std::is_convertible_v<const dScalar, float>);
static_assert(dScalar(3) + 4 * dScalar(2) >= 11.0f, "usable in constant expressions");

TEST(Scalar, DividingByZeroGivesZero)
{
    EXPECT_EQ(dScalar(1) / dScalar(0), 0.0f);
    EXPECT_EQ(dScalar(1) / 0.0f, 0.0f);
}

TEST(Scalar, NegativeZeroCountsAsZeroDivisorAndGivesPlainZero)
{
    EXPECT_EQ(Exactly{dScalar(1) / dScalar(-0.0f)}, Exactly{0.0f});
    EXPECT_EQ(Exactly{dScalar(NaN) / dScalar(-0.0f)}, Exactly{0.0f});
}

TEST(Scalar, NaNDivides)
{
    EXPECT_TRUE(std::isnan(dScalar(1) / dScalar(NaN)));
    EXPECT_TRUE(std::isnan(dScalar(NaN) / dScalar(2)));
}

TEST(Scalar, ANumberOnTheLeftDividesAsUsual)
{
    EXPECT_EQ(1.0f / dScalar(0), infinity);
    EXPECT_TRUE(std::isnan(0.0f / dScalar(0)));
}

TEST(Scalar, ADoubleOnTheRightIsRoundedFirst)
{
    static_assert(0.1f > 0.1 && 0.3f > 0.3);
    EXPECT_TRUE(dScalar(0.1f) <= 0.1);
    EXPECT_FALSE(dScalar(0.3f) < 0.3 || dScalar(0.1f) < 0.1);
    EXPECT_EQ(dScalar(0.1f) - 0.1, 0.0f);
    EXPECT_EQ(dScalar(1) / 1e-50, 0.0f) << "a divisor that rounds to 0";
}

TEST(Scalar, ComparisonsWithNaNAreFalse)
{
    for (const float other : {0.0f, 1.0f, infinity, NaN}) {
        EXPECT_FALSE(dScalar(NaN) < dScalar(other));
        EXPECT_FALSE(dScalar(NaN) <= dScalar(other));
        EXPECT_FALSE(dScalar(NaN) >= dScalar(other));
        EXPECT_FALSE(dScalar(other) < dScalar(NaN));
        EXPECT_FALSE(dScalar(other) <= dScalar(NaN));
        EXPECT_FALSE(dScalar(other) >= dScalar(NaN));
    }
}

TEST(Scalar, ClampHoldsBetweenTheBounds)
{
    EXPECT_EQ(dScalar::clamp(5, 0, 1), 1.0f);
    EXPECT_EQ(dScalar::clamp(-5, 0, 1), 0.0f);
    EXPECT_EQ(dScalar::clamp(0.25f, 0, 1), 0.25f);
}

TEST(Scalar, ClampWithSwappedBoundsGivesLow)
{
    EXPECT_EQ(dScalar::clamp(0.5f, 1, 0), 1.0f);
    EXPECT_EQ(dScalar::clamp(-5, 1, 0), 1.0f);
    EXPECT_EQ(dScalar::clamp(5, 1, 0), 1.0f);
}

TEST(Scalar, ClampTakesNaNToHighOrToLowAboveIt)
{
    EXPECT_EQ(dScalar::clamp(NaN, 0, 1), 1.0f);
    EXPECT_EQ(dScalar::clamp(NaN, 1, 0), 1.0f);
    EXPECT_EQ(dScalar::clamp(NaN, 7, 3), 7.0f);
}

TEST(Scalar, AssignmentReturnsTheObject)
{
    dScalar a = 1.0f;
    const dScalar b = 2.0f;
    (a = b) += 1.0f;
    EXPECT_EQ(a, 3.0f);
    (a = 4.0f) *= b;
    EXPECT_EQ(a, 8.0f);
}

TEST(Scalar, AnyFloatsFollowTheRules)
{
    AnyFloat any(1);
    for (int round = 0; round < rounds; ++round) {
        const float a = any(), b = any(), c = any();
        ASSERT_EQ(Exactly{dScalar(a)}, Exactly{a});
        ASSERT_EQ(Exactly{dScalar(a) + dScalar(b)}, Exactly{a + b});
        ASSERT_EQ(Exactly{dScalar(a) - dScalar(b)}, Exactly{a - b});
        ASSERT_EQ(Exactly{dScalar(a) * dScalar(b)}, Exactly{a * b});
        ASSERT_EQ(Exactly{dScalar(a) / dScalar(b)}, Exactly{b == 0 ? 0.0f : a / b});
        dScalar sum = a, product = a;
        sum += b;
        product *= b;
        ASSERT_EQ(Exactly{sum}, Exactly{a + b});
        ASSERT_EQ(Exactly{product}, Exactly{a * b});
        ASSERT_EQ(dScalar(a) < dScalar(b), a < b);
        ASSERT_EQ(dScalar(a) <= dScalar(b), a <= b);
        ASSERT_EQ(dScalar(a) >= dScalar(b), a >= b);
        // min takes its second argument only when the first is greater, max only when the second is.
        const float atMost = c > a ? a : c;
        ASSERT_EQ(Exactly{dScalar::clamp(a, b, c)}, Exactly{atMost > b ? atMost : b})
            << a << ' ' << b << ' ' << c;
    }
}
