// SPDX-License-Identifier: BSD-3-Clause
#include "host/inspect/parameters.h"

#include <gtest/gtest.h>

#include <bit>
#include <cmath>
#include <cstdlib>
#include <limits>
#include <random>

using namespace host;

TEST(NumberText, IsWhatPeopleWouldWrite)
{
    EXPECT_EQ(numberText(0.1f), "0.1");
    EXPECT_EQ(numberText(1.0f), "1");
    EXPECT_EQ(numberText(-0.0f), "-0");
    EXPECT_EQ(numberText(16777216.0f), "16777216");
    EXPECT_EQ(numberText(std::numeric_limits<float>::infinity()), "inf");
    EXPECT_EQ(numberText(-std::numeric_limits<float>::infinity()), "-inf");
    EXPECT_EQ(numberText(std::nanf("")), "nan");
}

TEST(NumberText, ReadsBackAsTheSameNumber)
{
    std::mt19937 random(1);
    for (int i = 0; i < 200000; ++i) {
        const auto bits = std::uint32_t(random());
        const float value = std::bit_cast<float>(bits);
        if (!std::isnan(value)) {
            ASSERT_EQ(std::bit_cast<std::uint32_t>(std::strtof(numberText(value).c_str(), nullptr)), bits);
        }
    }
}
