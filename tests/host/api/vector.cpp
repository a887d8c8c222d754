// SPDX-License-Identifier: BSD-3-Clause
#include "host/api/further.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <limits>
#include <random>

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

void expectSame(const miVector& a, const miVector& b)
{
    EXPECT_EQ(a.x, b.x);
    EXPECT_EQ(a.y, b.y);
    EXPECT_EQ(a.z, b.z);
}

TEST(Vector, NoMatrixIsTheIdentity)
{
    const miVector v = {1, -2, 3};
    miVector r{};
    mi_vector_transform(&r, &v, nullptr);
    expectSame(r, v);
    r = {};
    mi_point_transform(&r, &v, nullptr);
    expectSame(r, v);
    miMatrix m, ident;
    mi_matrix_ident(ident);
    mi_matrix_copy(m, nullptr);
    EXPECT_TRUE(std::equal(m, m + 16, ident));
    mi_matrix_null(m);
    mi_matrix_prod(m, nullptr, nullptr);
    EXPECT_TRUE(std::equal(m, m + 16, ident));
}

TEST(Vector, PointsAreMovedToo)
{
    const miMatrix m = {1, 2, 3, 0, 4, 5, 6, 0, 7, 8, 9, 0, 1000, 2000, 3000, 1};
    miVector v = {1, 10, 100};
    mi_point_transform(&v, &v, m);
    expectSame(v, {1741, 2852, 3963});
}

TEST(Vector, PointsAreDividedByWUnlessItIsZero)
{
    // w = 2 z + 4.
    const miMatrix m = {1, 0, 0, 0, 0, 1, 0, 0, 0, 0, 1, 2, 0, 0, 0, 4};
    miVector r{};
    const miVector v = {12, 24, 2};
    mi_point_transform(&r, &v, m);
    expectSame(r, {1.5f, 3, 0.25f});
    const miVector flat = {12, 24, -2}; // where w is 0
    mi_point_transform(&r, &flat, m);
    expectSame(r, flat);
}

TEST(Vector, NormalizeLeavesANullVectorAlone)
{
    miVector v = {3, 0, -4};
    mi_vector_normalize(&v);
    expectSame(v, {0.6f, 0, -0.8f});
    v = {0, 0, 0};
    mi_vector_normalize(&v);
    expectSame(v, {0, 0, 0});
    v = {3e38f, 0, 0};
    mi_vector_normalize(&v);
    expectSame(v, {1, 0, 0});
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

TEST(Matrix, NullAndCopy)
{
    miMatrix m, copy;
    for (int i = 0; i < 16; ++i)
        m[i] = float(i) - 7.5f;
    mi_matrix_copy(copy, m);
    EXPECT_TRUE(std::equal(m, m + 16, copy));
    mi_matrix_null(m);
    for (const miScalar each : m)
        EXPECT_EQ(each, 0.0f);
}

TEST(Matrix, ProductAppliesTheFirstFirst)
{
    // Twice as large, then moved.
    const miMatrix larger = {2, 0, 0, 0, 0, 2, 0, 0, 0, 0, 2, 0, 0, 0, 0, 1};
    const miMatrix moved = {1, 0, 0, 0, 0, 1, 0, 0, 0, 0, 1, 0, 10, 20, 30, 1};
    miMatrix both;
    mi_matrix_prod(both, larger, moved);
    const miVector v = {1, 2, 3};
    miVector r{};
    mi_point_transform(&r, &v, both);
    expectSame(r, {12, 24, 36});
    // The result may be either of them.
    miMatrix first, second;
    mi_matrix_copy(first, larger);
    mi_matrix_prod(first, first, moved);
    mi_matrix_copy(second, moved);
    mi_matrix_prod(second, larger, second);
    EXPECT_TRUE(std::equal(both, both + 16, first));
    EXPECT_TRUE(std::equal(both, both + 16, second));
}

TEST(Matrix, InvertUndoesAnyInvertibleMatrix)
{
    std::mt19937 engine(5);
    std::uniform_real_distribution<float> element(-1, 1);
    for (int round = 0; round < 1000; ++round) {
        miMatrix m, inverse, product;
        for (miScalar& each : m)
            each = element(engine);
        for (int i = 0; i < 16; i += 5)
            m[i] += m[i] < 0 ? -4.0f : 4.0f; // greater than the rest of its row
        ASSERT_TRUE(mi_matrix_invert(inverse, m));
        mi_matrix_prod(product, m, inverse);
        for (int i = 0; i < 16; ++i)
            ASSERT_NEAR(product[i], i % 5 == 0 ? 1 : 0, 1e-5);
        ASSERT_TRUE(mi_matrix_invert(m, m)); // in place
        ASSERT_TRUE(std::equal(m, m + 16, inverse));
    }
    // Zeros on the diagonal are no matter.
    const miMatrix turned = {0, 1, 0, 0, 0, 0, 1, 0, 1, 0, 0, 0, 5, 6, 7, 1};
    miMatrix back;
    ASSERT_TRUE(mi_matrix_invert(back, turned));
    const miMatrix expected = {0, 0, 1, 0, 1, 0, 0, 0, 0, 1, 0, 0, -6, -7, -5, 1};
    for (int i = 0; i < 16; ++i)
        EXPECT_NEAR(back[i], expected[i], 1e-6);
}

TEST(Matrix, InvertTellsASingularMatrixAndLeavesTheResultAlone)
{
    miMatrix singular = {1, 2, 3, 0, 2, 4, 6, 0, 0, 0, 1, 0, 0, 0, 0, 1}, result, before;
    for (int i = 0; i < 16; ++i)
        result[i] = before[i] = float(i);
    EXPECT_FALSE(mi_matrix_invert(result, singular));
    mi_matrix_null(singular);
    EXPECT_FALSE(mi_matrix_invert(result, singular));
    mi_matrix_ident(singular);
    for (const float odd : {std::numeric_limits<float>::infinity(), std::nanf("")}) {
        singular[5] = odd;
        EXPECT_FALSE(mi_matrix_invert(result, singular));
    }
    EXPECT_TRUE(std::equal(result, result + 16, before));
}

} // namespace
