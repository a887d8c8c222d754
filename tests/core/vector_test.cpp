// SPDX-License-Identifier: BSD-3-Clause
#include "core/vector.h"

#include "floats.h"

#include <gtest/gtest.h>

#include <cstring>

using VHL::dScalar;
using VHL::dVector;

static_assert(requires(dVector a, const dVector b, const dScalar s, const miVector mi) {
    {
        b + b
        } -> std::same_as<dVector>;
    {
        b - b
        } -> std::same_as<dVector>;
    {
        b* b
        } -> std::same_as<dVector>;
    {
        b / b
        } -> std::same_as<dVector>;
    {
        b* s
        } -> std::same_as<dVector>;
    {
        b * 2.0f
        } -> std::same_as<dVector>;
    {
        b * 2
        } -> std::same_as<dVector>;
    {
        b + mi
        } -> std::same_as<dVector>;
    {
        b / 2.0f
        } -> std::same_as<dVector>;
    {
        a -= b
        } -> std::same_as<dVector&>;
    {
        a = b
        } -> std::same_as<dVector&>;
    {
        a = mi
        } -> std::same_as<dVector&>;
    {
        a = 0.5f
        } -> std::same_as<dVector&>;
    {
        a.x() = 1.0f
        } -> std::same_as<float&>;
    {
        a[2] = 1.0f
        } -> std::same_as<float&>;
    {
        b.x() + b.y() + b.z() + b[0]
        } -> std::same_as<float>;
});
static_assert(std::is_convertible_v<miVector, dVector> && std::is_convertible_v<const dVector, miVector>);
static_assert((dVector(1, 2, 3) * dScalar(2)).z() == 6.0f, "usable in constant expressions");

static void expectVector(const dVector& v, float x, float y, float z)
{
    EXPECT_EQ(Exactly{v.x()}, Exactly{x});
    EXPECT_EQ(Exactly{v.y()}, Exactly{y});
    EXPECT_EQ(Exactly{v.z()}, Exactly{z});
}

TEST(Vector, OneFloatFillsAllComponents) { expectVector(dVector(0.5f), 0.5f, 0.5f, 0.5f); }

TEST(Vector, HasTheRenderersLayout)
{
    const miVector in = {1, 2, 3};
    const dVector v = in;
    EXPECT_EQ(std::memcmp(&v, &in, sizeof in), 0);
    expectVector(v, 1, 2, 3);
    miVector out = dVector(4, 5, 6);
    expectVector(out, 4, 5, 6);
    out = dVector(-0.0f);
    expectVector(out, -0.0f, -0.0f, -0.0f);
}

TEST(Vector, ComponentsAreReferences)
{
    dVector v(0);
    v.x() = 1;
    v.y() = 2;
    v.z() = 3;
    for (int i = 0; i < 3; ++i)
        EXPECT_EQ(v[i], float(i + 1));
    v[1] = 7;
    expectVector(v, 1, 7, 3);
}

TEST(Vector, ComponentWithZeroDivisorComesOutZero)
{
    expectVector(dVector(1, 2, 3) / dVector(0, 1, 0), 0, 2, 0);
    expectVector(dVector(1, 2, -3) / dVector(-0.0f, NaN, infinity), 0, NaN, -0.0f);
}

TEST(Vector, AssignmentReturnsTheObject)
{
    dVector a(0);
    (a = dVector(5)) -= dVector(1, 2, 3);
    expectVector(a, 4, 3, 2);
    (a = miVector{1, 1, 1}) -= a;
    expectVector(a, 0, 0, 0);
}

TEST(Vector, AnyFloatsFollowTheRules)
{
    AnyFloat any(2);
    for (int round = 0; round < rounds; ++round) {
        const dVector a(any(), any(), any()), b(any(), any(), any()), c(any(), any(), any());
        const float s = any();
        const dVector sum = a + b, difference = a - b, product = a * b, quotient = a / b,
                      scaled = a * dScalar(s);
        const dVector clamped = dVector::clamp(a, b, c);
        dVector reduced = a;
        reduced -= b;
        for (int i = 0; i < 3; ++i) {
            ASSERT_EQ(Exactly{sum[i]}, Exactly{a[i] + b[i]});
            ASSERT_EQ(Exactly{difference[i]}, Exactly{a[i] - b[i]});
            ASSERT_EQ(Exactly{reduced[i]}, Exactly{a[i] - b[i]});
            ASSERT_EQ(Exactly{product[i]}, Exactly{a[i] * b[i]});
            ASSERT_EQ(Exactly{quotient[i]}, Exactly{b[i] == 0 ? 0.0f : a[i] / b[i]});
            ASSERT_EQ(Exactly{scaled[i]}, Exactly{a[i] * s});
            const float atMost = c[i] > a[i] ? a[i] : c[i];
            ASSERT_EQ(Exactly{clamped[i]}, Exactly{atMost > b[i] ? atMost : b[i]});
        }
    }
}
