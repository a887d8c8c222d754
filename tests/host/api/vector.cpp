// SPDX-License-Identifier: BSD-3-Clause
#include <gtest/gtest.h>
#include <shader.h>

namespace {

TEST(Vector, TransformIsARowTimesTheUpperThreeByThree)
{
    const miMatrix m = {1, 2, 3, 100, 4, 5, 6, 100, 7, 8, 9, 100, 1000, 1000, 1000, 100};
    const miVector v = {1, 10, 100};
    miVector r;
    mi_vector_transform(&r, &v, m);
    EXPECT_EQ(r.x, 1 + 40 + 700);
    EXPECT_EQ(r.y, 2 + 50 + 800);
    EXPECT_EQ(r.z, 3 + 60 + 900);
    miVector same = v;
    mi_vector_transform(&same, &same, m);
    EXPECT_EQ(same.x, r.x);
    EXPECT_EQ(same.y, r.y);
    EXPECT_EQ(same.z, r.z);
}

TEST(Vector, InternalSpaceIsWorldSpace)
{
    const miVector v = {1, 2, 3};
    miVector r{};
    const miState state{};
    mi_vector_to_world(&state, &r, &v);
    EXPECT_EQ(r.x, 1);
    EXPECT_EQ(r.y, 2);
    EXPECT_EQ(r.z, 3);
}

TEST(Matrix, IdentHasOnesOnItsDiagonal)
{
    miMatrix m;
    for (miScalar& each : m)
        each = 9;
    mi_matrix_ident(m);
    for (int row = 0; row < 4; ++row)
        for (int column = 0; column < 4; ++column)
            EXPECT_EQ(m[4 * row + column], row == column ? 1 : 0);
}

} // namespace
