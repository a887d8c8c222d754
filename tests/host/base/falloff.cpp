// SPDX-License-Identifier: BSD-3-Clause
#include "host/base/falloff.h"

#include <gtest/gtest.h>

using namespace host::base;

TEST(Attenuation, FallsLinearlyFromStartToStop)
{
    EXPECT_EQ(attenuation(0.0f, 2.0f, 6.0f), 1.0f);
    EXPECT_EQ(attenuation(2.0f, 2.0f, 6.0f), 1.0f);
    EXPECT_EQ(attenuation(3.0f, 2.0f, 6.0f), 0.75f);
    EXPECT_EQ(attenuation(4.0f, 2.0f, 6.0f), 0.5f);
    EXPECT_EQ(attenuation(6.0f, 2.0f, 6.0f), 0.0f);
    EXPECT_EQ(attenuation(100.0f, 2.0f, 6.0f), 0.0f);
}

TEST(Attenuation, HasAHardEdgeWhenStopIsNotBehindStart)
{
    EXPECT_EQ(attenuation(4.999f, 5.0f, 5.0f), 1.0f);
    EXPECT_EQ(attenuation(5.0f, 5.0f, 5.0f), 0.0f);
    EXPECT_EQ(attenuation(2.5f, 5.0f, 3.0f), 1.0f);
    EXPECT_EQ(attenuation(4.0f, 5.0f, 3.0f), 0.0f);
}

TEST(ConeFalloff, FadesLinearlyInTheCosine)
{
    EXPECT_EQ(coneFalloff(1.0f, 0.75f, 0.25f), 1.0f);
    EXPECT_EQ(coneFalloff(0.75f, 0.75f, 0.25f), 1.0f);
    EXPECT_EQ(coneFalloff(0.5f, 0.75f, 0.25f), 0.5f);
    EXPECT_EQ(coneFalloff(0.375f, 0.75f, 0.25f), 0.25f);
    EXPECT_EQ(coneFalloff(0.25f, 0.75f, 0.25f), 0.0f);
    EXPECT_EQ(coneFalloff(-1.0f, 0.75f, 0.25f), 0.0f);
}

TEST(ConeFalloff, HasAHardEdgeWhenTheConeIsNotInsideTheSpread)
{
    EXPECT_EQ(coneFalloff(0.51f, 0.5f, 0.5f), 1.0f);
    EXPECT_EQ(coneFalloff(0.5f, 0.5f, 0.5f), 0.0f);
    EXPECT_EQ(coneFalloff(0.6f, 0.25f, 0.5f), 1.0f);
    EXPECT_EQ(coneFalloff(0.4f, 0.25f, 0.5f), 0.0f);
}

TEST(Softened, LeavesAtLeastTheFactor)
{
    EXPECT_EQ(softened(0.0f, 0.25f), 0.25f);
    EXPECT_EQ(softened(1.0f, 0.25f), 1.0f);
    EXPECT_EQ(softened(0.5f, 0.0f), 0.5f);
    EXPECT_EQ(softened(0.5f, 0.5f), 0.75f);
}
