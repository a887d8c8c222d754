// SPDX-License-Identifier: BSD-3-Clause
// Vectors and colors compared number by number, so that a failure names the one that differs.
#pragma once

#include <gtest/gtest.h>
#include <shader.h>

/// Compares as floats do: 0 equals -0, NaN nothing.
inline void expectVector(const miVector& result, const miVector& expected)
{
    EXPECT_EQ(result.x, expected.x);
    EXPECT_EQ(result.y, expected.y);
    EXPECT_EQ(result.z, expected.z);
}

inline void expectColor(const miColor& result, const miColor& expected)
{
    EXPECT_EQ(result.r, expected.r);
    EXPECT_EQ(result.g, expected.g);
    EXPECT_EQ(result.b, expected.b);
    EXPECT_EQ(result.a, expected.a);
}
