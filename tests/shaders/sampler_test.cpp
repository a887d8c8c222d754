// SPDX-License-Identifier: BSD-3-Clause
// The sampler: where it evaluates its input, with which weights, and what it leaves of the state.
#include "arena.h"
#include "expect.h"
#include "tests/core/floats.h"

#include <gtest/gtest.h>

#include <array>
#include <bit>
#include <climits>
#include <cmath>
#include <cstdlib>
#include <cstring>
#include <ctime>

namespace {

constexpr int input = 0, samples = 16, profile = 20, normalize = 32, start = 36, end = 48, jitter = 60;
constexpr int firstWeight = 20, weightByte = profile + 8 + firstWeight * 4;

/// A sampler whose input is connected to a function of the point.
class Sampler {
public:
    explicit Sampler(int count) : arena(library, "vhSampleStatePoint_v1")
    {
        arena.at<int>(samples) = count;
        arena.connect(input);
        arena.renderer.evaluate = [this](void* parameter) -> void* {
            if (parameter != &arena.at<char>(input))
                return parameter;
            points.push_back(arena.state().point);
            color = seen(points.back());
            return &color;
        };
    }
    ~Sampler() { arena.exit(); }

    miColor run()
    {
        points.clear();
        arena.renderer.calls.clear();
        miColor result{};
        EXPECT_EQ(arena.execute(result), 1);
        return result;
    }

    miVector& point() { return arena.state().point; }

    Library library;
    Arena arena;
    std::vector<miVector> points; ///< at which the latest run evaluated the input
    std::function<miColor(const miVector&)> seen = [](const miVector& p) {
        return miColor{p.x, p.y, p.z, 1};
    };

private:
    miColor color{};
};

/// The rule, in plain words. Init makes the table, execute goes through the positions.
struct Rule {
    int count;
    miVector from, to;
    float random;

    Rule(int n, const miVector& a, const miVector& b, float spread, std::vector<float> curve, bool normalized)
        : count(n), from(a), to(b), random(spread)
    {
        if (curve.empty())
            curve = {1, 1};
        float sum = 0;
        for (int i = 0; i < 255; ++i) {
            const float t = (static_cast<float>(i) + 0.5f) / 255.0f;
            const float f = static_cast<float>(curve.size() - 1) * t;
            const float lo = std::floor(f), hi = std::ceil(f), frac = f - lo;
            table[i] = curve[static_cast<std::size_t>(lo)] * (1.0f - frac) +
                       curve[static_cast<std::size_t>(hi)] * frac;
            sum += table[i];
        }
        if (normalized)
            for (float& weight : table)
                weight /= sum;
    }

    template <class Input>
    miColor run(const miVector& p, Input seen) const
    {
        float s[4] = {}, w = 0;
        for (int i = 0; i < count; ++i) {
            float t = (static_cast<float>(i) + 0.5f) / static_cast<float>(count);
            if (random != 0.0f) {
                const double r = std::rand() / 2147483648.0;
                t = static_cast<float>(t + (0.5 / count) * (2 * r - 1) * random);
            }
            const auto along = [t](float a, float b, float origin) { return (b - a) * t + a + origin; };
            const miColor c =
                seen(miVector{along(from.x, to.x, p.x), along(from.y, to.y, p.y), along(from.z, to.z, p.z)});
            const double place = std::trunc(254.0f * t);
            const float weight = table[place >= 254 ? 254 : place > 0 ? static_cast<int>(place) : 0];
            w += weight;
            s[0] += weight * c.r;
            s[1] += weight * c.g;
            s[2] += weight * c.b;
            s[3] += weight * c.a;
        }
        return {s[0] / w, s[1] / w, s[2] / w, s[3] / w};
    }

    float table[255];
};

void expectSame(const miColor& result, const miColor& expected)
{
    EXPECT_EQ(Exactly{result.r}, Exactly{expected.r});
    EXPECT_EQ(Exactly{result.g}, Exactly{expected.g});
    EXPECT_EQ(Exactly{result.b}, Exactly{expected.b});
    EXPECT_EQ(Exactly{result.a}, Exactly{expected.a});
}

} // namespace

TEST(Sampler, WithoutAProfileIsThePlainAverage)
{
    for (const int on : {0, 1}) {
        Sampler sampler(4);
        sampler.arena.at<int>(normalize) = on;
        sampler.arena.at<miVector>(start) = {0, 0, 0};
        sampler.arena.at<miVector>(end) = {8, 16, -8};
        sampler.arena.init();
        sampler.point() = {100, 200, 300};
        const miColor result = sampler.run(); // at 1/8, 3/8, 5/8, 7/8 of the way
        EXPECT_FLOAT_EQ(result.r, 104);
        EXPECT_FLOAT_EQ(result.g, 208);
        EXPECT_FLOAT_EQ(result.b, 296);
        EXPECT_FLOAT_EQ(result.a, 1);
        ASSERT_EQ(sampler.points.size(), 4u);
        expectVector(sampler.points[0], {101, 202, 299});
        expectVector(sampler.points[3], {107, 214, 293});
    }
}

TEST(Sampler, OneSampleIsTheMiddleUnchanged)
{
    Sampler sampler(1);
    sampler.arena.at<miVector>(start) = {1, 2, 3};
    sampler.arena.at<miVector>(end) = {3, -2, 7};
    sampler.arena.init();
    sampler.point() = {10, 20, 30};
    sampler.seen = [](const miVector&) { return miColor{0.1f, -0.7f, 1e30f, 0.3f}; };
    expectColor(sampler.run(), {0.1f, -0.7f, 1e30f, 0.3f});
    ASSERT_EQ(sampler.points.size(), 1u);
    expectVector(sampler.points[0], {12, 20, 35});
}

TEST(Sampler, ARisingProfileWeighsTheEndMost)
{
    for (const int on : {0, 1}) {
        Sampler sampler(3);
        sampler.arena.array(profile, firstWeight, std::vector<float>{0, 1});
        sampler.arena.at<int>(normalize) = on;
        sampler.arena.at<miVector>(end) = {3, 0, 0};
        sampler.arena.init();
        // One channel for each of the positions 0.5, 1.5 and 2.5.
        sampler.seen = [](const miVector& p) {
            return miColor{p.x < 1 ? 1.0f : 0, p.x > 1 && p.x < 2 ? 1.0f : 0, p.x > 2 ? 1.0f : 0, 1};
        };
        const miColor result = sampler.run();
        const float first = 42.5f / 255, second = 127.5f / 255, third = 211.5f / 255;
        const float sum = first + second + third;
        EXPECT_NEAR(result.r, first / sum, 1e-6);
        EXPECT_NEAR(result.g, second / sum, 1e-6);
        EXPECT_NEAR(result.b, third / sum, 1e-6);
        EXPECT_NEAR(result.a, 1, 1e-6);
    }
}

TEST(Sampler, WithoutSamplesOrWeightsThereIsNoNumber)
{
    for (const int count : {0, -1, INT_MIN}) {
        Sampler sampler(count);
        sampler.arena.init();
        const miColor result = sampler.run();
        for (const float channel : {result.r, result.g, result.b, result.a})
            EXPECT_TRUE(std::isnan(channel)) << count;
        EXPECT_EQ(calls(sampler.arena.renderer), Strings());
    }
    for (const int on : {0, 1}) {
        Sampler sampler(4);
        sampler.arena.array(profile, firstWeight, std::vector<float>{0, 0, 0});
        sampler.arena.at<int>(normalize) = on;
        sampler.arena.init();
        EXPECT_FALSE(std::isfinite(sampler.run().r));
    }
}

TEST(Sampler, GivesThePointBackToTheBit)
{
    const float odd = std::bit_cast<float>(0xFFC12345u); // a NaN with something in it
    for (const miVector& point : {miVector{1, 2, 3}, {0.1f, -0.0f, 1e-45f}, {infinity, odd, -infinity}})
        for (const float channel : {0.5f, NaN})
            for (const int count : {0, 1, 7}) {
                Sampler sampler(count);
                sampler.arena.at<miVector>(end) = {1e30f, NaN, 3};
                sampler.arena.at<float>(jitter) = 1;
                sampler.arena.init();
                sampler.point() = point;
                sampler.seen = [&](const miVector&) {
                    sampler.point() = {7, 7, 7}; // whatever the shaders behind do
                    return miColor{channel, channel, channel, channel};
                };
                const miColor result = sampler.run();
                EXPECT_EQ(std::isnan(result.r), std::isnan(channel) || count == 0);
                EXPECT_EQ(std::memcmp(&sampler.point(), &point, sizeof point), 0);
            }
}

TEST(Sampler, ForgetsWhatWasEvaluatedAfterEachPosition)
{
    Sampler sampler(3);
    sampler.arena.init();
    sampler.run();
    EXPECT_EQ(calls(sampler.arena.renderer), (Strings{"mi_phen_eval", "mi_flush_cache", "mi_phen_eval",
                                                      "mi_flush_cache", "mi_phen_eval", "mi_flush_cache"}));
}

TEST(Sampler, ALiteralInputIsItsOwnAverage)
{
    const Library library;
    Arena arena(library, "vhSampleStatePoint_v1");
    arena.at<miColor>(input) = {0.5f, -2, 3, 0.25f};
    arena.at<int>(samples) = 8;
    arena.init();
    miColor result{};
    arena.execute(result);
    expectColor(result, {0.5f, -2, 3, 0.25f});
    arena.exit();
}

TEST(Sampler, ReadsAllButTheInputInInitInOrderAndOnce)
{
    Sampler sampler(2);
    sampler.arena.array(profile, firstWeight, std::vector<float>{1, 2, 3});
    const std::vector<int> order = {samples, start,       end,        jitter,         normalize,
                                    profile, profile + 4, weightByte, weightByte + 4, weightByte + 8};
    sampler.arena.watch(order);
    sampler.arena.init();
    EXPECT_EQ(sampler.arena.evaluated, order);
    sampler.arena.evaluated.clear();
    sampler.run();
    EXPECT_EQ(sampler.arena.evaluated, (std::vector<int>{input, input}));
}

TEST(Sampler, WeightsMayComeFromShaders)
{
    Sampler sampler(2);
    sampler.arena.array(profile, firstWeight, std::vector<float>{1, 1});
    sampler.arena.at<miVector>(end) = {2, 0, 0};
    sampler.arena.connect(weightByte);
    float zero = 0;
    const auto evaluate = sampler.arena.renderer.evaluate;
    sampler.arena.renderer.evaluate = [&](void* parameter) {
        return parameter == &sampler.arena.at<char>(weightByte) ? static_cast<void*>(&zero)
                                                                : evaluate(parameter);
    };
    sampler.arena.init();
    sampler.seen = [](const miVector& p) { return miColor{p.x, 0, 0, 0}; };
    // At a quarter and three quarters: table entries 63 and 190, of a curve from 0 to 1.
    const float a = 63.5f / 255, b = 190.5f / 255;
    EXPECT_NEAR(sampler.run().r, (0.5f * a + 1.5f * b) / (a + b), 1e-6);
}

TEST(Sampler, ACountBelowZeroIsNoProfile)
{
    Sampler sampler(3);
    sampler.arena.at<int>(profile + 4) = -5;
    sampler.arena.init();
    sampler.point() = {1, 2, 3};
    expectColor(sampler.run(), {1, 2, 3, 1});
}

// ---- jitter

TEST(Sampler, StartsTheGeneratorFromTheClock)
{
    const std::time_t before = std::time(nullptr);
    Sampler sampler(1);
    sampler.arena.init();
    const int first = std::rand();
    const std::time_t after = std::time(nullptr);
    bool found = false;
    for (std::time_t second = before; second <= after && !found; ++second) {
        std::srand(static_cast<unsigned>(second));
        found = std::rand() == first;
    }
    EXPECT_TRUE(found);
}

TEST(Sampler, WithoutJitterDrawsNoNumbers)
{
    for (const float none : {0.0f, -0.0f}) {
        Sampler sampler(5);
        sampler.arena.at<float>(jitter) = none;
        sampler.arena.init();
        std::srand(7);
        const int first = std::rand();
        std::srand(7);
        sampler.run();
        EXPECT_EQ(std::rand(), first);
    }
}

TEST(Sampler, JitterMovesEachPositionInItsOwnPart)
{
    constexpr int count = 50;
    Sampler sampler(count);
    sampler.arena.at<miVector>(end) = {count, 0, 0};
    sampler.arena.at<float>(jitter) = 1;
    sampler.arena.init();
    std::srand(5);
    float least = 1, most = 0;
    for (int round = 0; round < 100; ++round) {
        sampler.run();
        ASSERT_EQ(sampler.points.size(), static_cast<std::size_t>(count));
        for (int i = 0; i < count; ++i) {
            const float within = sampler.points[static_cast<std::size_t>(i)].x - static_cast<float>(i);
            EXPECT_GE(within, -1e-5f);
            EXPECT_LE(within, 1 + 1e-5f);
            least = std::min(least, within);
            most = std::max(most, within);
        }
    }
    EXPECT_LT(least, 0.01f) << "to its ends";
    EXPECT_GT(most, 0.99f);
}

TEST(Sampler, EveryBitIsTheRules)
{
    const Library loaded; // for all rounds, as loading takes longest
    AnyFloat any(8201);
    std::mt19937 engine(8202);
    std::uniform_real_distribution<float> near(-3, 3);
    for (int round = 0; round < 4'000; ++round) {
        const bool wild = round % 2 == 0;
        const auto number = [&] { return wild ? any() : near(engine); };
        const auto vector = [&] { return miVector{number(), number(), number()}; };
        const int count = static_cast<int>(engine() % 12);
        std::vector<float> curve(engine() % 5 == 0 ? engine() % 200 : engine() % 6);
        for (float& weight : curve)
            weight = number();
        const bool normalized = engine() % 2 != 0;
        const float spread = engine() % 2 == 0 ? 0 : number();
        const miVector a = vector(), b = vector(), point = vector();

        Sampler sampler(count);
        sampler.arena.array(profile, firstWeight, curve);
        sampler.arena.at<int>(normalize) = normalized;
        sampler.arena.at<miVector>(start) = a;
        sampler.arena.at<miVector>(end) = b;
        sampler.arena.at<float>(jitter) = spread;
        sampler.arena.init();
        sampler.point() = point;
        sampler.seen = [](const miVector& p) { return miColor{p.x, p.y, p.x * p.z, p.z + 1}; };
        const unsigned seed = engine();
        std::srand(seed);
        const miColor result = sampler.run();
        std::srand(seed);
        std::vector<miVector> expected;
        const miColor rule = Rule(count, a, b, spread, curve, normalized).run(point, [&](const miVector& p) {
            expected.push_back(p);
            return sampler.seen(p);
        });
        expectSame(result, rule);
        ASSERT_EQ(sampler.points.size(), expected.size());
        for (std::size_t i = 0; i < expected.size(); ++i) {
            EXPECT_EQ(Exactly{sampler.points[i].x}, Exactly{expected[i].x});
            EXPECT_EQ(Exactly{sampler.points[i].y}, Exactly{expected[i].y});
            EXPECT_EQ(Exactly{sampler.points[i].z}, Exactly{expected[i].z});
        }
        if (HasFailure())
            return;
    }
}

// Weights 1 and 2 at the ends and nothing between: what lies outside has those of the ends.
TEST(Sampler, OutsideTheLineTheWeightsAreThoseOfItsEnds)
{
    std::vector<float> curve(200, 0);
    curve.front() = 1;
    curve.back() = 2;
    for (const float spread : {1e6f, 1e38f, infinity, -infinity}) {
        Sampler sampler(2);
        sampler.arena.array(profile, firstWeight, curve);
        sampler.arena.at<float>(jitter) = spread;
        sampler.arena.init();
        for (unsigned seed = 0; seed < 50; ++seed) {
            std::srand(seed);
            int above = 0;
            for (int i = 0; i < 2; ++i)
                above += (std::rand() / 2147483648.0 > 0.5) == (spread > 0) ? 1 : 0;
            int calls = 0;
            sampler.seen = [&calls](const miVector&) { return miColor{calls++ == 0 ? 1.0f : 0, 1, 1, 1}; };
            std::srand(seed);
            const bool firstAbove = (std::rand() / 2147483648.0 > 0.5) == (spread > 0);
            const Rule rule(2, {}, {}, spread, curve, false);
            const float low = rule.table[0], high = rule.table[254];
            const float total = static_cast<float>(above) * high + static_cast<float>(2 - above) * low;
            std::srand(seed);
            EXPECT_FLOAT_EQ(sampler.run().r, (firstAbove ? high : low) / total) << seed;
        }
    }
}

TEST(Sampler, ANaNForJitterIsSomeJitterAndTheFirstWeight)
{
    Sampler sampler(3);
    sampler.arena.array(profile, firstWeight, std::vector<float>{1, 5});
    sampler.arena.at<float>(jitter) = NaN;
    sampler.arena.init();
    std::srand(9);
    for (int i = 0; i < 3; ++i)
        std::rand();
    const int fourth = std::rand();
    int calls = 0;
    sampler.seen = [&calls](const miVector&) { return miColor{static_cast<float>(calls++), 0, 0, 1}; };
    std::srand(9);
    const miColor result = sampler.run();
    EXPECT_EQ(std::rand(), fourth);
    EXPECT_TRUE(std::isnan(sampler.points[0].x));
    EXPECT_FLOAT_EQ(result.r, 1) << "all weights alike";
}

TEST(Sampler, InstancesHaveWeightsOfTheirOwn)
{
    const Library library;
    Arena one(library, "vhSampleStatePoint_v1"), two(library, "vhSampleStatePoint_v1");
    for (Arena* const arena : {&one, &two}) {
        arena->at<int>(samples) = 2;
        arena->at<miColor>(input) = {1, 2, 3, 4};
        arena->array(profile, firstWeight, std::vector<float>{arena == &one ? 1.0f : 0.0f});
        arena->init();
    }
    miColor result{};
    one.execute(result);
    expectColor(result, {1, 2, 3, 4});
    two.execute(result);
    EXPECT_TRUE(std::isnan(result.r));
    two.exit();
    one.execute(result);
    expectColor(result, {1, 2, 3, 4});
    one.exit();
    EXPECT_TRUE(one.renderer.hasAllBlocks());
}
