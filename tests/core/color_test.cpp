// SPDX-License-Identifier: BSD-3-Clause
#include "core/color.h"

#include "floats.h"

#include <gtest/gtest.h>

#include <cstring>

using VHL::dColor;
using VHL::dScalar;

static_assert(requires(dColor a, const dColor b, const miColor mi, const dScalar s) {
    {
        b + b
        } -> std::same_as<dColor>;
    {
        b* b
        } -> std::same_as<dColor>;
    {
        b / b
        } -> std::same_as<dColor>;
    {
        b * 2.0f
        } -> std::same_as<dColor>;
    {
        b* mi
        } -> std::same_as<dColor>;
    {
        b* dColor(s)
        } -> std::same_as<dColor>;
    {
        a += b
        } -> std::same_as<dColor&>;
    {
        a -= b
        } -> std::same_as<dColor&>;
    {
        a *= b
        } -> std::same_as<dColor&>;
    {
        b != b
        } -> std::same_as<bool>;
    {
        a = b
        } -> std::same_as<dColor&>;
    {
        a = mi
        } -> std::same_as<dColor&>;
    {
        a = 0.5f
        } -> std::same_as<dColor&>;
    {
        a = 1
        } -> std::same_as<dColor&>;
    {
        a = s
        } -> std::same_as<dColor&>;
    {
        a.a() = s
        } -> std::same_as<float&>;
    {
        a[3] = 1.0f
        } -> std::same_as<float&>;
    {
        b.r() + b.g() + b.b() + b.a() + b.x() + b.y() + b.z() + b.w() + b[3]
        } -> std::same_as<float>;
});
static_assert(std::is_convertible_v<miColor, dColor> && std::is_convertible_v<const dColor, miColor>);
static_assert(dColor(1, 1, 1, 0) != dColor(1), "usable in constant expressions");

static void expectColor(const dColor& c, float r, float g, float b, float a)
{
    EXPECT_EQ(Exactly{c.r()}, Exactly{r});
    EXPECT_EQ(Exactly{c.g()}, Exactly{g});
    EXPECT_EQ(Exactly{c.b()}, Exactly{b});
    EXPECT_EQ(Exactly{c.a()}, Exactly{a});
}

TEST(Color, OneFloatFillsAlphaToo)
{
    expectColor(dColor(0.5f), 0.5f, 0.5f, 0.5f, 0.5f);
    dColor c(1, 2, 3, 4);
    c = 0.25f;
    expectColor(c, 0.25f, 0.25f, 0.25f, 0.25f);
}

TEST(Color, HasTheRenderersLayout)
{
    const miColor in = {1, 2, 3, 4};
    const dColor c = in;
    EXPECT_EQ(std::memcmp(&c, &in, sizeof in), 0);
    const miColor out = c;
    EXPECT_EQ(std::memcmp(&out, &in, sizeof in), 0);
}

TEST(Color, CoordinateNamesMeanTheChannels)
{
    dColor c(0);
    c.x() = 1;
    c.y() = 2;
    c.z() = 3;
    c.w() = 4;
    expectColor(c, 1, 2, 3, 4);
    const dColor& constant = c;
    EXPECT_EQ(&constant.x(), &constant.r());
    EXPECT_EQ(&constant.w(), &constant.a());
    for (int i = 0; i < 4; ++i)
        EXPECT_EQ(c[i], float(i + 1));
}

TEST(Color, ChannelWithZeroDivisorComesOutZero)
{
    expectColor(dColor(1, 2, 3, 4) / dColor(1, 0, 1, 0), 1, 0, 3, 0);
    expectColor(dColor(1, 1, 1, 1) / dColor(-0.0f, NaN, infinity, 2), 0, NaN, 0, 0.5f);
}

TEST(Color, ExpandWithEqualBoundsGivesInfinityOrNaN)
{
    expectColor(dColor::expand(dColor(2, 1, 0, 1), dColor(1), dColor(1)), infinity, NaN, -infinity, NaN);
}

TEST(Color, ComparisonSeesAlpha)
{
    EXPECT_TRUE(dColor(1, 1, 1, 0) != dColor(1, 1, 1, 1));
    EXPECT_FALSE(dColor(1, 2, 3, 4) != dColor(1, 2, 3, 4));
    EXPECT_FALSE(dColor(0.0f) != dColor(-0.0f));
}

TEST(Color, NaNDiffersFromItself)
{
    for (int i = 0; i < 4; ++i) {
        dColor c(1);
        c[i] = NaN;
        EXPECT_TRUE(c != c) << "channel " << i; // NOLINT(misc-redundant-expression)
    }
}

TEST(Color, CompoundAssignmentReturnsTheObject)
{
    dColor c(1, 2, 3, 4);
    (c += dColor(1)) *= dColor(2);
    expectColor(c, 4, 6, 8, 10);
    const dColor& same = c;
    (c -= same) = 3.0f;
    expectColor(c, 3, 3, 3, 3);
}

TEST(Color, AnyFloatsFollowTheRules)
{
    AnyFloat any(3);
    for (int round = 0; round < rounds; ++round) {
        const dColor a(any(), any(), any(), any()), b(any(), any(), any(), any()),
            c(any(), any(), any(), any());
        const dColor sum = a + b, product = a * b, quotient = a / b;
        const dColor compressed = dColor::compress(a, b, c), expanded = dColor::expand(a, b, c);
        dColor added = a, reduced = a, scaled = a;
        added += b;
        reduced -= b;
        scaled *= b;
        bool differs = false;
        for (int i = 0; i < 4; ++i) {
            ASSERT_EQ(Exactly{sum[i]}, Exactly{a[i] + b[i]});
            ASSERT_EQ(Exactly{added[i]}, Exactly{a[i] + b[i]});
            ASSERT_EQ(Exactly{reduced[i]}, Exactly{a[i] - b[i]});
            ASSERT_EQ(Exactly{product[i]}, Exactly{a[i] * b[i]});
            ASSERT_EQ(Exactly{scaled[i]}, Exactly{a[i] * b[i]});
            ASSERT_EQ(Exactly{quotient[i]}, Exactly{b[i] == 0 ? 0.0f : a[i] / b[i]});
            ASSERT_EQ(Exactly{compressed[i]}, Exactly{b[i] + a[i] * (c[i] - b[i])});
            ASSERT_EQ(Exactly{expanded[i]}, Exactly{(a[i] - b[i]) / (c[i] - b[i])});
            differs = differs || a[i] != b[i];
        }
        ASSERT_EQ(a != b, differs);
    }
}
