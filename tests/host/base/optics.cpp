// SPDX-License-Identifier: BSD-3-Clause
#include "host/base/optics.h"

#include <gtest/gtest.h>

#include <numbers>

using namespace host::base;

namespace {

constexpr miVector up = {0.0f, 1.0f, 0.0f};

/// Comes down onto the plane y = 0 at this angle to its normal.
miVector falling(float degrees)
{
    const float angle = degrees * std::numbers::pi_v<float> / 180.0f;
    return {std::sin(angle), -std::cos(angle), 0.0f};
}

} // namespace

TEST(Mirrored, TurnsTheNormalPart)
{
    const miVector result = mirrored({3.0f, -4.0f, 5.0f}, up);
    EXPECT_EQ(result.x, 3.0f);
    EXPECT_EQ(result.y, 4.0f);
    EXPECT_EQ(result.z, 5.0f);
}

TEST(Refracted, ObeysSnellsLaw)
{
    for (const float degrees : {0.0f, 10.0f, 30.0f, 60.0f, 85.0f})
        for (const float index : {1.0f, 1.33f, 1.5f, 2.4f}) {
            const miVector direction = falling(degrees);
            const auto result = refracted(direction, up, 1.0f, index);
            ASSERT_TRUE(result) << degrees << " degrees, index " << index;
            EXPECT_NEAR(result->x, direction.x / index, 1e-6f) << "sin b = sin a / n";
            EXPECT_LT(result->y, 0.0f);
            EXPECT_NEAR(dot(*result, *result), 1.0f, 1e-6f);
        }
}

TEST(Refracted, IsTotallyReflectedBeyondTheCriticalAngle)
{
    // arcsin(1 / 1.5) is 41.81 degrees.
    EXPECT_TRUE(refracted(falling(41.7f), up, 1.5f, 1.0f));
    EXPECT_FALSE(refracted(falling(41.9f), up, 1.5f, 1.0f));
}

TEST(Reflection, OfALeaningNormalStaysAboveTheSurface)
{
    miState state = {};
    state.normal_geom = up;
    state.dir = falling(80.0f);
    const float lean = std::numbers::pi_v<float> / 6.0f;
    state.normal = {std::sin(lean), std::cos(lean), 0.0f};
    EXPECT_LT(mirrored(state.dir, state.normal).y, 0.0f) << "what the test needs";
    EXPECT_GT(reflection(state).y, 0.0f);

    state.normal = up;
    EXPECT_FLOAT_EQ(reflection(state).y, -state.dir.y);
}
