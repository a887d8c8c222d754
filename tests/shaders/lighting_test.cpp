// SPDX-License-Identifier: BSD-3-Clause
// Shaders of lighting and sampling in a network of the host, and in many threads.
#include "expect.h"
#include "tests/harness/call.h"

#include <gtest/gtest.h>

#include <atomic>
#include <cstring>
#include <latch>

namespace {

using test::argument;
using test::Call;
using test::connection;
using test::list;

constexpr int threadCount = 8;
constexpr int runs = 1000;

/// A sampler along x of the point's own coordinates, by way of two other shaders.
void connectPoint(Call& sampler)
{
    sampler.define("point", "vhStatePoint_v1", {})
        .define("color", "vhVector2Color_v1", {argument("input", connection("point"))});
    sampler.set("input", connection("color")).set("samples", 4);
    sampler.set("start", miVector{-4, 0, 0}).set("end", miVector{4, 0, 0});
}

/// Particles on a line over the point, brighter and brighter.
void setParticles(Call& light, int count)
{
    std::vector<miVector> positions;
    std::vector<miColor> colors;
    for (int k = 0; k < count; ++k) {
        positions.push_back({static_cast<float>(k), 0, 1});
        colors.push_back({static_cast<float>(k), 1, 2, 0.5f});
    }
    light.set("positions", list(positions)).set("colors", list(colors)).set("shadow", false);
}

// The host remembers results: without forgetting them the sampler would see the first position four times.
TEST(Lighting, TheSamplersNetworkRunsAtEachPosition)
{
    Call sampler("vhSampleStatePoint_v1");
    connectPoint(sampler);
    sampler.set("profile", list(0.0f, 1.0f));
    sampler.state().point = {10, 20, 30};
    // At -3, -1, 1 and 3, with the entries 31, 95, 158 and 222 of a table from 0 to 1.
    const float w[] = {31.5f / 255, 95.5f / 255, 158.5f / 255, 222.5f / 255};
    const float x = (7 * w[0] + 9 * w[1] + 11 * w[2] + 13 * w[3]) / (w[0] + w[1] + w[2] + w[3]);
    for (int again = 0; again < 2; ++again) {
        const miColor result = sampler.run<miColor>();
        EXPECT_NEAR(result.r, x, 1e-5);
        EXPECT_NEAR(result.g, 20, 1e-5);
        EXPECT_NEAR(result.b, 30, 1e-5);
        expectVector(sampler.state().point, {10, 20, 30});
    }
}

TEST(Lighting, SamplersInThreadsSeeTheirOwnPoints)
{
    Call sampler("vhSampleStatePoint_v1");
    connectPoint(sampler);
    std::atomic<int> numbers = 0;
    std::latch start(threadCount);
    sampler.onThreads(threadCount, [&](test::Sample& sample) {
        const float x = static_cast<float>(numbers++);
        start.arrive_and_wait();
        for (int round = 0; round < runs; ++round) {
            sample.state.point = {x, 1, 2};
            const miColor result = sample.run<miColor>();
            if (std::abs(result.r - x) > 1e-5f) {
                ADD_FAILURE() << result.r << " at " << x;
                return;
            }
        }
    });
}

// The generator is the C library's, which all threads share.
TEST(Lighting, JitterStaysInsideTheLineInThreads)
{
    Call sampler("vhSampleStatePoint_v1");
    connectPoint(sampler);
    sampler.set("jitter", 1.0f).set("samples", 1);
    std::latch start(threadCount);
    sampler.onThreads(threadCount, [&](test::Sample& sample) {
        start.arrive_and_wait();
        for (int round = 0; round < runs; ++round) {
            const float x = sample.run<miColor>().r;
            if (!(x >= -4 && x <= 4)) {
                ADD_FAILURE() << x;
                return;
            }
        }
    });
}

TEST(Lighting, AParticleLightServesThreadsAtOnce)
{
    constexpr int particles = 50;
    Call light("vhParticleLight_v1");
    setParticles(light, particles);
    std::latch start(threadCount);
    light.onThreads(threadCount, [&](test::Sample& sample) {
        start.arrive_and_wait();
        sample.state.type = miRAY_LIGHT;
        sample.state.normal = {0, 0, 1};
        for (int round = 0; round < runs; ++round) {
            const int k = round % (particles + 1);
            sample.state.count = static_cast<miUshort>(k);
            const miColor color = sample.run<miColor>();
            const float q = static_cast<float>(1 + (k * k + 1)); // 1 + distance squared
            const bool right = k == particles
                                   ? sample.returned() == 2 && sample.state.count == 1
                                   : sample.returned() == 1 && std::abs(color.g - 0.5f / q) <= 1e-6f;
            if (!right) {
                ADD_FAILURE() << "sample " << k << " returned " << sample.returned() << ", " << color.g;
                return;
            }
        }
    });
}

TEST(Lighting, AParticleLightLightsFromAllItsParticlesByDefault)
{
    Call light("vhParticleLight_v1");
    setParticles(light, 3);
    light.state().type = miRAY_LIGHT;
    light.state().normal = {0, 0, 1};
    for (const miUshort sample : {0, 1, 2, 3}) {
        light.state().count = sample;
        const miColor color = light.run<miColor>();
        EXPECT_EQ(light.returned(), sample < 3 ? 1 : 2);
        if (sample < 3) {
            EXPECT_FLOAT_EQ(color.b, 1.0f / static_cast<float>(2 + sample * sample)) << "falloff 2";
        }
    }
}

} // namespace
