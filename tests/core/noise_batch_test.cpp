// SPDX-License-Identifier: BSD-3-Clause
// Noise at many points, with each set of instructions that this processor has.
#include "core/noise.h"
#include "core/noise_batch.h"

#include "noise_points.h"
#include "noise_rule.h"

#include <gtest/gtest.h>

#include <functional>
#include <vector>

using VHL::dColor;
using VHL::dScalar;
using VHL::dVector;
using namespace VHLNoise;

namespace {

const Batch* const sets[] = {&plainBatch, &avx2Batch, &avx512Batch};

constexpr std::size_t points = 300'000;

dVector vector(const rule::Vector& v) { return {v[0], v[1], v[2]}; }

/// Many points, with one coordinate after another from a stream.
template <class Point, int Axes, class Stream>
std::vector<Point> from(Stream stream, std::size_t size)
{
    std::vector<Point> result(size, Point(0.0f));
    for (Point& p : result)
        for (int i = 0; i < Axes; ++i)
            p[i] = stream();
    return result;
}

std::string text(const dVector& p) { return ::text(rule::Vector{p[0], p[1], p[2]}); }
std::string text(const dColor& p) { return ::text(rule::Vector4{p[0], p[1], p[2], p[3]}); }

class NoiseBatch : public testing::TestWithParam<const Batch*> {
protected:
    static void SetUpTestSuite() { init_noise(); }

    void SetUp() override
    {
        if (!chooseBatch(GetParam()))
            GTEST_SKIP() << "this processor has no " << GetParam()->name;
        ASSERT_EQ(&chosenBatch(), GetParam());
    }
    void TearDown() override { chooseBatch(nullptr); }
};

/// Compares a batch with the function for one point.
template <class Point, class Many, class One>
void expectTheSame(const std::vector<Point>& at, Many many, One one)
{
    std::vector<dScalar> results(at.size(), 7.0f);
    many(at.data(), results.data(), at.size());
    for (std::size_t i = 0; i < at.size(); ++i)
        ASSERT_EQ(Exactly{results[i]}, Exactly{one(at[i])}) << i << ": " << text(at[i]);
}

template <class Point>
void inoiseMany(const Point* at, dScalar* results, std::size_t size)
{
    VHLNoise::inoise(at, results, size);
}

template <class Point>
dScalar inoiseOne(Point p)
{
    return VHLNoise::inoise(p);
}

TEST_P(NoiseBatch, OfThreeDimensionsIsThatOfEachPoint)
{
    expectTheSame(from<dVector, 3>(Coordinate(21), points), inoiseMany<dVector>, inoiseOne<dVector>);
    expectTheSame(from<dVector, 3>(NearCorner(22), points), inoiseMany<dVector>, inoiseOne<dVector>);
    expectTheSame(from<dVector, 3>(AnyFloat(23), points), inoiseMany<dVector>, inoiseOne<dVector>);
}

TEST_P(NoiseBatch, OfFourDimensionsIsThatOfEachPoint)
{
    expectTheSame(from<dColor, 4>(Coordinate(24), points), inoiseMany<dColor>, inoiseOne<dColor>);
    expectTheSame(from<dColor, 4>(NearCorner(25), points), inoiseMany<dColor>, inoiseOne<dColor>);
    expectTheSame(from<dColor, 4>(AnyFloat(26), points), inoiseMany<dColor>, inoiseOne<dColor>);
}

// Not only the single form's word for it.
TEST_P(NoiseBatch, FollowsTheRule)
{
    Coordinate coordinate(27);
    std::vector<dVector> at3;
    std::vector<dColor> at4;
    for (std::size_t i = 0; i < points; ++i) {
        at3.emplace_back(vector(coordinate.point<3>()));
        const auto p = coordinate.point<4>();
        at4.emplace_back(p[0], p[1], p[2], p[3]);
    }
    expectTheSame(at3, inoiseMany<dVector>, [](dVector p) {
        return rule::inoise(rule::Vector{p[0], p[1], p[2]});
    });
    expectTheSame(at4, inoiseMany<dColor>, [](dColor p) {
        return rule::inoise(rule::Vector4{p[0], p[1], p[2], p[3]});
    });
}

// Every cell, so every hash, on each axis.
TEST_P(NoiseBatch, KnowsEveryCell)
{
    std::mt19937 engine(28);
    std::vector<dVector> at3;
    std::vector<dColor> at4;
    for (int cell = -260; cell < 520; ++cell)
        for (int axis = 0; axis < 4; ++axis)
            for (int i = 0; i < 50; ++i) {
                dColor p(0.0f);
                for (int k = 0; k < 4; ++k)
                    p[k] = std::uniform_real_distribution<float>(-300.0f, 300.0f)(engine);
                p[axis] += float(cell) - std::floor(p[axis]);
                at4.push_back(p);
                at3.emplace_back(p[0], p[1], p[axis == 3 ? 3 : 2]);
            }
    expectTheSame(at3, inoiseMany<dVector>, inoiseOne<dVector>);
    expectTheSame(at4, inoiseMany<dColor>, inoiseOne<dColor>);
    const auto many = [](const dVector* at, dScalar* results, std::size_t size) {
        cellnoise(at, results, size);
    };
    expectTheSame(at3, many, [](dVector p) { return cellnoise(p); });
}

TEST_P(NoiseBatch, OfCellsIsThatOfEachPoint)
{
    const auto many = [](const dVector* at, dScalar* results, std::size_t size) {
        cellnoise(at, results, size);
    };
    const auto one = [](dVector p) { return cellnoise(p); };
    expectTheSame(from<dVector, 3>(Coordinate(29), points), many, one);
    expectTheSame(from<dVector, 3>(AnyFloat(30), points), many, one);
}

TEST_P(NoiseBatch, OfDistancesIsThatOfEachPoint)
{
    std::mt19937 engine(31);
    const auto nearTheWrap = [&] {
        return float(256 * int(engine() % 5) - 512) + std::uniform_real_distribution<float>(-3, 3)(engine);
    };
    for (const float jitter : {1.0f, 0.0f, 0.3f, -1.0f, 2.5f, 1e-44f, 1e20f, 3e38f, NaN, -0.0f, infinity}) {
        const auto many = [&](const dVector* at, dScalar* results, std::size_t size) {
            cellular(at, jitter, results, size);
        };
        const auto one = [&](dVector p) { return cellular(p, jitter).x(); };
        const std::size_t few = points / 100;
        expectTheSame(from<dVector, 3>(Coordinate(32), few), many, one);
        expectTheSame(from<dVector, 3>(AnyFloat(33), few), many, one);
        expectTheSame(from<dVector, 3>(nearTheWrap, few), many, one);
    }
}

TEST_P(NoiseBatch, OfOctavesIsThatOfEachPoint)
{
    std::mt19937 engine(34);
    for (int round = 0; round < 200; ++round) {
        const auto at = from<dVector, 3>(Coordinate(35 + unsigned(round)), 300);
        const int count = int(engine() % 8) - 1;
        const float lacunarity = float(engine() % 9) * 0.5f, gain = float(engine() % 5) * 0.25f;
        const float frequency = float(engine() % 7) - 3.0f, amplitude = float(engine() % 7) * 0.5f;
        expectTheSame(
            at,
            [&](const dVector* p, dScalar* results, std::size_t size) {
                octaves(p, count, lacunarity, gain, frequency, amplitude, results, size);
            },
            [&](dVector p) { return octaves(p, count, lacunarity, gain, frequency, amplitude); });
        expectTheSame(
            at,
            [&](const dVector* p, dScalar* results, std::size_t size) {
                octaves_abs(p, count, lacunarity, gain, frequency, amplitude, results, size);
            },
            [&](dVector p) { return octaves_abs(p, count, lacunarity, gain, frequency, amplitude); });
    }
}

// Of any length, from any place on, and without a word beside the results. Arrays end with their memory, so
// that a sanitizer sees what is read beyond.
TEST_P(NoiseBatch, TakesArraysOfAnyLength)
{
    using Call = std::function<void(const float* at, dScalar* results, std::size_t size)>;
    const auto vectors = [](const float* at) { return reinterpret_cast<const dVector*>(at); };
    const Call calls[] = {
        [&](const float* at, dScalar* results, std::size_t size) {
            VHLNoise::inoise(vectors(at), results, size);
        },
        [](const float* at, dScalar* results, std::size_t size) {
            VHLNoise::inoise(reinterpret_cast<const dColor*>(at), results, size);
        },
        [&](const float* at, dScalar* results, std::size_t size) { cellnoise(vectors(at), results, size); },
        [&](const float* at, dScalar* results, std::size_t size) {
            cellular(vectors(at), 1.0f, results, size);
        },
        [&](const float* at, dScalar* results, std::size_t size) {
            octaves(vectors(at), 2, 2, 0.5f, 1, 1, results, size);
        }};
    for (const Call& call : calls) {
        const std::size_t axes = &call == &calls[1] ? 4 : 3;
        for (std::size_t size = 0; size < 150; ++size)
            for (const std::size_t offset : {0, 1, 3}) {
                Coordinate coordinate(40 + unsigned(size));
                std::vector<float> at(offset + axes * size);
                for (float& x : at)
                    x = coordinate();
                std::vector<dScalar> results(offset + size + 4, 7.0f);
                call(at.data() + offset, results.data() + offset, size);
                for (std::size_t i = 0; i < results.size(); ++i) {
                    dScalar expected = 7.0f;
                    if (i >= offset && i < offset + size)
                        call(at.data() + offset + axes * (i - offset), &expected, 1);
                    ASSERT_EQ(Exactly{results[i]}, Exactly{expected}) << size << ' ' << offset << ' ' << i;
                }
            }
    }
}

TEST_P(NoiseBatch, OfNoPointsTouchesNothing)
{
    VHLNoise::inoise(static_cast<const dVector*>(nullptr), nullptr, 0);
    VHLNoise::inoise(static_cast<const dColor*>(nullptr), nullptr, 0);
    cellnoise(nullptr, nullptr, 0);
    cellular(nullptr, 1.0f, nullptr, 0);
    octaves(nullptr, 3, 2, 0.5f, 1, 1, nullptr, 0);
    octaves_abs(nullptr, 3, 2, 0.5f, 1, 1, nullptr, 0);
}

INSTANTIATE_TEST_SUITE_P(Sets, NoiseBatch, testing::ValuesIn(sets),
                         [](const auto& set) { return "Set" + std::to_string(set.index); });

TEST(NoiseBatchChoice, IsTheBestOfAll)
{
    ASSERT_TRUE(chooseBatch(nullptr));
    const Batch* best = nullptr;
    for (const Batch* const set : sets)
        if (chooseBatch(set))
            best = set;
    ASSERT_TRUE(chooseBatch(nullptr));
    EXPECT_EQ(&chosenBatch(), best);
}

/// Batches before init_noise(), written down when the program starts: the tests run in any order.
struct Before {
    Before()
    {
        for (const Batch* const set : sets) {
            if (!chooseBatch(set))
                continue;
            Values v;
            VHLNoise::inoise(at3, v.noise3, 9);
            VHLNoise::inoise(at4, v.noise4, 9);
            cellnoise(at3, v.cell, 9);
            cellular(at3, 1.0f, v.distance, 9);
            values.push_back(v);
        }
        chooseBatch(nullptr);
        distance = cellular(at3[0], 1.0f).x();
    }

    struct Values {
        dScalar noise3[9] = {7, 7, 7, 7, 7, 7, 7, 7, 7};
        dScalar noise4[9] = {7, 7, 7, 7, 7, 7, 7, 7, 7};
        dScalar cell[9] = {7, 7, 7, 7, 7, 7, 7, 7, 7};
        dScalar distance[9] = {7, 7, 7, 7, 7, 7, 7, 7, 7};
    };
    std::vector<dVector> many3 = std::vector<dVector>(9, dVector(0.3f, -4.6f, 7.2f));
    std::vector<dColor> many4 = std::vector<dColor>(9, dColor(0.3f, -4.6f, 7.2f, 1.9f));
    const dVector* at3 = many3.data();
    const dColor* at4 = many4.data();
    std::vector<Values> values;
    float distance = 0.0f;
};
const Before before;

TEST(NoiseBatchBefore, IsZeroBeforeTheTablesAreFilled)
{
    ASSERT_FALSE(before.values.empty());
    for (const Before::Values& v : before.values)
        for (int i = 0; i < 9; ++i) {
            EXPECT_EQ(v.noise3[i], 0.0f);
            EXPECT_EQ(v.noise4[i], 0.0f);
            EXPECT_EQ(v.cell[i], 0.0f);
            EXPECT_EQ(v.distance[i], before.distance);
        }
}

} // namespace
