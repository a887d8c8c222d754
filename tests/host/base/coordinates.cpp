// SPDX-License-Identifier: BSD-3-Clause
#include "host/base/coordinates.h"

#include <gtest/gtest.h>

using namespace host::base;

TEST(Remap, LeavesACoordinateAloneByDefault)
{
    for (const float c : {-2.5f, 0.0f, 0.25f, 1.0f, 7.0f})
        EXPECT_EQ(remapped(c, {}), c);
}

TEST(Remap, RepeatsAndWraps)
{
    struct {
        const char* why;
        float coordinate, repeat, expected;
    } const rows[] = {
        {"inside the first copy", 0.125f, 4.0f, 0.5f},
        {"the second copy begins anew", 0.25f, 4.0f, 0.0f},
        {"inside the third copy", 0.625f, 4.0f, 0.5f},
        {"below 0 the copies go on", -0.25f, 1.0f, 0.75f},
        {"a repeat of 0 counts as 1", 0.75f, 0.0f, 0.75f},
        {"a negative repeat mirrors all", 0.25f, -1.0f, 0.75f},
    };
    for (const auto& row : rows)
        EXPECT_EQ(remapped(row.coordinate, {.repeat = row.repeat, .torus = true}), row.expected) << row.why;
}

TEST(Remap, WithoutWrappingCopiesBeyondTheFirstStayOutside)
{
    EXPECT_EQ(remapped(0.625f, {.repeat = 4.0f}), 2.5f);
    EXPECT_EQ(remapped(-0.25f, {.repeat = 4.0f}), -1.0f);
}

TEST(Remap, AlternateMirrorsEverySecondCopy)
{
    const AxisRemap axis = {.repeat = 2.0f, .alternate = true};
    EXPECT_EQ(remapped(0.125f, axis), 0.25f);
    EXPECT_EQ(remapped(0.625f, axis), 0.75f);
    EXPECT_EQ(remapped(1.125f, axis), 0.25f);
    EXPECT_EQ(remapped(-0.125f, axis), 0.25f);
}

TEST(Remap, NeverLeavesTheHalfOpenRangeWhenItWraps)
{
    EXPECT_LT(remapped(-1e-9f, {.torus = true}), 1.0f) << "-1e-9 + 1 rounds to 1";
    EXPECT_LT(remapped(1.0f, {.alternate = true}), 1.0f) << "the mirrored 0";
    EXPECT_EQ(remapped(1.0f, {.torus = true}), 0.0f);
}

TEST(Remap, ShowsThePartBetweenMinAndMax)
{
    const AxisRemap axis = {.torus = true, .min = 0.25f, .max = 0.75f};
    EXPECT_EQ(remapped(0.0f, axis), 0.25f);
    EXPECT_EQ(remapped(0.5f, axis), 0.5f);
    EXPECT_EQ(remapped(1.5f, axis), 0.5f);
    EXPECT_EQ(remapped(0.5f, {.min = 0.0f, .max = 0.0f}), 0.5f) << "an empty part counts as all";
    EXPECT_EQ(remapped(0.25f, {.min = 1.0f, .max = 0.0f}), 0.75f) << "turned round";
}

TEST(Projection, OfThePlanesTakesTwoAxes)
{
    const miVector p = {1.0f, 2.0f, 3.0f};
    const auto expect = [](const miVector& v, float x, float y) {
        EXPECT_EQ(v.x, x);
        EXPECT_EQ(v.y, y);
    };
    expect(projected(p, Projection::none), 1.0f, 2.0f);
    expect(projected(p, Projection::front), 1.0f, 2.0f);
    expect(projected(p, Projection::side), -3.0f, 2.0f);
    expect(projected(p, Projection::top), 1.0f, -3.0f);
    expect(projected(p, static_cast<Projection>(99)), 1.0f, 2.0f);
}

TEST(Projection, AroundTheAxisTurnsOnceFromTheBack)
{
    struct {
        miVector point;
        float turn;
    } const rows[] = {{{0.0f, 0.0f, 1.0f}, 0.5f},
                      {{1.0f, 0.0f, 0.0f}, 0.75f},
                      {{-1.0f, 0.0f, 0.0f}, 0.25f},
                      {{0.0f, 0.0f, -1.0f}, 1.0f}};
    for (const auto& row : rows) {
        EXPECT_FLOAT_EQ(projected(row.point, Projection::spherical).x, row.turn);
        EXPECT_FLOAT_EQ(projected(row.point, Projection::cylindrical).x, row.turn);
    }
    EXPECT_FLOAT_EQ(projected({0.0f, 3.0f, 0.0f}, Projection::spherical).y, 1.0f);
    EXPECT_FLOAT_EQ(projected({0.0f, -3.0f, 0.0f}, Projection::spherical).y, 0.0f);
    EXPECT_FLOAT_EQ(projected({3.0f, 3.0f, 0.0f}, Projection::spherical).y, 0.75f);
    EXPECT_FLOAT_EQ(projected({3.0f, 7.0f, 4.0f}, Projection::cylindrical).y, 7.0f);
    EXPECT_FLOAT_EQ(projected({3.0f, 7.0f, 4.0f}, Projection::cylindrical).z, 5.0f);
}
