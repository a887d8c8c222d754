// SPDX-License-Identifier: BSD-3-Clause
// Noise from several threads at the same time.
#include "core/noise.h"
#include "core/noise_batch.h"

#include "noise_points.h"

#include <gtest/gtest.h>

#include <thread>
#include <vector>

using VHL::dColor;
using VHL::dScalar;
using VHL::dVector;
using namespace VHLNoise;

namespace {

using Values = std::vector<dScalar>;

/// Runs the same in four threads at once and in this one after them, and compares.
template <class Evaluate>
void expectTheSameInEveryThread(Evaluate evaluate)
{
    Values results[4];
    std::vector<std::thread> threads;
    for (Values& result : results)
        threads.emplace_back([&] { result = evaluate(); });
    for (std::thread& thread : threads)
        thread.join();
    const Values expected = evaluate();
    ASSERT_FALSE(expected.empty());
    for (const Values& result : results) {
        ASSERT_EQ(result.size(), expected.size());
        for (std::size_t i = 0; i < expected.size(); ++i)
            ASSERT_EQ(Exactly{result[i]}, Exactly{expected[i]}) << i;
    }
}

TEST(NoiseInThreads, IsThatOfOne)
{
    init_noise();
    expectTheSameInEveryThread([] {
        Coordinate coordinate(12);
        Values values;
        for (int i = 0; i < 20'000; ++i) {
            const auto p = coordinate.point<4>();
            values.push_back(VHLNoise::inoise(dColor(p[0], p[1], p[2], p[3])));
            values.push_back(cellular(dVector(p[0], p[1], p[2]), 1.0f)[0]);
        }
        return values;
    });
}

TEST(NoiseInThreads, OfManyPointsIsThatOfOne)
{
    init_noise();
    std::vector<dVector> at(20'000, dVector(0.0f));
    Coordinate coordinate(41);
    for (dVector& p : at)
        p = dVector(coordinate(), coordinate(), coordinate());
    for (const Batch* const set : {&plainBatch, &avx2Batch, &avx512Batch}) {
        if (!chooseBatch(set))
            continue;
        SCOPED_TRACE(set->name);
        expectTheSameInEveryThread([&] {
            Values values(at.size(), 0.0f);
            VHLNoise::inoise(at.data(), values.data(), at.size());
            return values;
        });
    }
    chooseBatch(nullptr);
}

} // namespace
