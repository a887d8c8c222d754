// SPDX-License-Identifier: BSD-3-Clause
#include "core/noise.h"

#include "noise_points.h"
#include "noise_rule.h"

#include <gtest/gtest.h>

#include <cstring>
#include <string>
#include <vector>

using VHL::dColor;
using VHL::dScalar;
using VHL::dVector;
using namespace VHLNoise;

namespace {

constexpr int points = 1'000'000;

dVector vector(rule::Vector v) { return {v[0], v[1], v[2]}; }
dColor color(rule::Vector4 v) { return {v[0], v[1], v[2], v[3]}; }

/// The library's values before init_noise(), written down when the program starts: the tests run in any
/// order.
struct Before {
    float inoise3 = VHLNoise::inoise(dVector(0.3f, -4.6f, 7.2f));
    float inoise4 = VHLNoise::inoise(dColor(0.3f, -4.6f, 7.2f, 1.9f));
    float cell = cellnoise(dVector(0.3f, -4.6f, 7.2f));
    float sum = octaves(dVector(0.3f, -4.6f, 7.2f), 3, 2, 0.5f, 1, 1);
    float notANumber = VHLNoise::inoise(dVector(NaN, 0, 0));
    // The offsets to the neighbours are zero too, which leaves the point's own cell.
    float nearest = cellular(dVector(0.25f, 0.75f, 0.5f), 1)[0];
    float own = cellular(dVector(0.01f, 0.01f, 0.01f), 1)[0];
};
const Before before;

class Noise : public testing::Test {
protected:
    static void SetUpTestSuite() { init_noise(); }
};

TEST_F(Noise, IsZeroBeforeTheTablesAreFilled)
{
    EXPECT_EQ(before.inoise3, 0.0f);
    EXPECT_EQ(before.inoise4, 0.0f);
    EXPECT_EQ(before.cell, 0.0f);
    EXPECT_EQ(before.sum, 0.0f);
    EXPECT_TRUE(std::isnan(before.notANumber));
    EXPECT_EQ(before.nearest, std::sqrt(0.125f));
    EXPECT_EQ(before.own, std::sqrt(0.49f * 0.49f + 0.49f * 0.49f + 0.49f * 0.49f));
}

TEST_F(Noise, MayBeInitialisedAgain)
{
    const dVector p(1.25f, -2.5f, 3.75f);
    const float first = VHLNoise::inoise(p);
    init_noise();
    init_neighbor();
    init_g4();
    init_g();
    EXPECT_EQ(Exactly{VHLNoise::inoise(p)}, Exactly{first});
    EXPECT_NE(first, 0.0f);
}

TEST_F(Noise, PermutesTheNumbersBelow256)
{
    for (int i = 0; i < 256; ++i)
        EXPECT_EQ(perm(float(i) / 256.0f), float(rule::table[i]) / 255.0f) << i;
}

TEST_F(Noise, PermRepeats)
{
    EXPECT_EQ(perm(0.0f), 151.0f / 255.0f);
    EXPECT_EQ(perm(1.0f), perm(0.0f));
    EXPECT_EQ(perm(-0.25f), perm(0.75f));
    EXPECT_EQ(perm(-1e-20f), 180.0f / 255.0f) << "wraps to 1, which is held below it";
    for (const float x : {NaN, infinity, -infinity})
        EXPECT_EQ(perm(x), 180.0f / 255.0f) << x;
}

// The hash adds numbers divided by 255 as floats and looks them up by 256ths. On the few values that there
// are, this is a sum of integers modulo 255.
TEST_F(Noise, HashIsASumModulo255)
{
    const auto looked = [](int index) { return Exactly{float(rule::table[index]) / 255.0f}; };
    for (int coordinate = 0; coordinate < 256; ++coordinate) {
        const dScalar P = dScalar(float(coordinate)) / 255.0f;
        ASSERT_EQ(Exactly{perm(P)}, looked(coordinate % 255)) << coordinate;
        ASSERT_EQ(Exactly{perm(P + rule::one)}, looked((coordinate + 1) % 255)) << coordinate;
        for (int value = 0; value < 256; ++value) {
            const dScalar sum = dScalar(float(value)) / 255.0f + P;
            ASSERT_EQ(Exactly{perm(sum)}, looked((value + coordinate) % 255)) << value << '+' << coordinate;
            ASSERT_EQ(Exactly{perm(sum + rule::one)}, looked((value + coordinate + 1) % 255))
                << value << '+' << coordinate << "+1";
        }
    }
}

// So is the choice of the gradient.
TEST_F(Noise, GradientOfAHashIsAnInteger)
{
    for (int value = 0; value < 256; ++value) {
        const dScalar hash = float(value) / 255.0f;
        const float* const three = rule::g[value * 16 / 255 % 16];
        for (int i = 0; i < 3; ++i) {
            dVector axis(0.0f);
            axis[i] = 1.0f;
            ASSERT_EQ(grad(hash, axis), three[i]) << value;
        }
        const float* const four = rule::g4[value * 32 / 255 % 32];
        for (int i = 0; i < 4; ++i) {
            dColor axis(0.0f);
            axis[i] = 1.0f;
            ASSERT_EQ(grad(hash, axis), four[i]) << value;
        }
    }
}

TEST_F(Noise, GradRepeatsAndHoldsWhatIsNoPosition)
{
    const dVector p(3, 50, 700);
    EXPECT_EQ(grad(0.0f, p), 53.0f);
    EXPECT_EQ(grad(1.0f, p), 53.0f);
    EXPECT_EQ(grad(-0.5f, p), 750.0f);
    EXPECT_EQ(grad(0.5f, p), 750.0f);
    for (const float h : {NaN, infinity, -infinity, -1e-20f}) {
        EXPECT_EQ(grad(h, p), -750.0f) << h;
        EXPECT_EQ(grad(h, dColor(3, 50, 700, 9000)), 750.0f) << h;
    }
}

TEST_F(Noise, SmallFunctionsAreWhatTheySay)
{
    AnyFloat any(1);
    for (int i = 0; i < rounds; ++i) {
        const float a = any(), b = any(), t = any(), x = any(), y = any(), z = any(), w = any();
        const auto describe = [&] { return testing::PrintToString(std::vector{a, b, t, x, y, z, w}); };
        ASSERT_EQ(Exactly{fade(dVector(t, x, y))[0]}, Exactly{rule::fade(t)}) << describe();
        ASSERT_EQ(Exactly{fade(dVector(x, y, t))[2]}, Exactly{rule::fade(t)}) << describe();
        ASSERT_EQ(Exactly{fade(dColor(x, y, z, t))[3]}, Exactly{rule::fade(t)}) << describe();
        ASSERT_EQ(Exactly{lerp(dScalar(a), dScalar(b), dScalar(t))}, Exactly{rule::lerp(a, b, t)})
            << describe();
        const dVector between = lerp(dVector(x, a, y), dVector(z, b, w), dScalar(t));
        ASSERT_EQ(Exactly{between[0]}, Exactly{rule::lerp(x, z, t)}) << describe();
        ASSERT_EQ(Exactly{between[1]}, Exactly{rule::lerp(a, b, t)}) << describe();
        ASSERT_EQ(Exactly{between[2]}, Exactly{rule::lerp(y, w, t)}) << describe();
        ASSERT_EQ(Exactly{dot(dVector(a, b, t), dVector(x, y, z))}, Exactly{a * x + b * y + t * z})
            << describe();
        ASSERT_EQ(Exactly{dot(dColor(a, b, t, x), dColor(x, y, z, w))},
                  Exactly{a * x + b * y + t * z + x * w})
            << describe();
        ASSERT_EQ(Exactly{length(dVector(a, b, t))}, Exactly{std::sqrt(a * a + b * b + t * t)}) << describe();
        const float d[3] = {a - x, b - y, t - z};
        ASSERT_EQ(Exactly{VHLNoise::distance(dVector(a, b, t), dVector(x, y, z))},
                  Exactly{std::sqrt(d[0] * d[0] + d[1] * d[1] + d[2] * d[2])})
            << describe();
        const float remainder = b == 0.0f ? a - b * 0.0f : rule::fmod(a, b);
        ASSERT_EQ(Exactly{VHLNoise::fmod(dScalar(a), dScalar(b))}, Exactly{remainder}) << describe();
        ASSERT_EQ(Exactly{VHLNoise::fmod(dVector(x, a, y), dVector(z, b, w))[1]}, Exactly{remainder})
            << describe();
        ASSERT_EQ(Exactly{VHLNoise::fmod(dColor(x, y, z, a), dColor(x, z, w, b))[3]}, Exactly{remainder})
            << describe();
        ASSERT_EQ(Exactly{vfloor(dVector(x, y, a))[2]}, Exactly{std::floor(a)}) << describe();
        ASSERT_EQ(Exactly{vfloor(dColor(x, a, y, z))[1]}, Exactly{std::floor(a)}) << describe();
        ASSERT_EQ(Exactly{perm(a)}, Exactly{rule::perm(a)}) << describe();
        ASSERT_EQ(Exactly{grad(a, dVector(x, y, z))}, Exactly{rule::grad(a, rule::Vector{x, y, z})})
            << describe();
        ASSERT_EQ(Exactly{grad(a, dColor(x, y, z, w))}, Exactly{rule::grad(a, rule::Vector4{x, y, z, w})})
            << describe();
    }
}

TEST_F(Noise, FmodHasTheSignOfTheDivisor)
{
    EXPECT_EQ(VHLNoise::fmod(dScalar(-1), dScalar(3)), 2.0f);
    EXPECT_EQ(VHLNoise::fmod(dScalar(1), dScalar(-3)), -2.0f);
    EXPECT_EQ(VHLNoise::fmod(dScalar(7), dScalar(0)), 7.0f);
}

TEST_F(Noise, LerpEndsAtItsEnds)
{
    EXPECT_EQ(lerp(dScalar(2), dScalar(5), dScalar(1.5f)), 5.0f);
    EXPECT_EQ(lerp(dScalar(2), dScalar(5), dScalar(-1)), 2.0f);
    EXPECT_EQ(lerp(dScalar(2), dScalar(infinity), dScalar(0)), 2.0f);
    EXPECT_EQ(lerp(dScalar(NaN), dScalar(5), dScalar(1)), 5.0f);
}

TEST_F(Noise, ThreeDimensionsFollowTheRule)
{
    Coordinate coordinate(3);
    for (int i = 0; i < points; ++i) {
        const auto p = coordinate.point<3>();
        ASSERT_EQ(Exactly{VHLNoise::inoise(vector(p))}, Exactly{rule::inoise(p)}) << text(p);
    }
}

// Any bits at all: mostly far away, and often a zero of either sign.
TEST_F(Noise, AnyFloatsFollowTheRule)
{
    AnyFloat any(13);
    for (int i = 0; i < points; ++i) {
        const rule::Vector4 p = {any(), any(), any(), any()};
        const rule::Vector q = {p[0], p[1], p[2]};
        ASSERT_EQ(Exactly{VHLNoise::inoise(vector(q))}, Exactly{rule::inoise(q)}) << text(q);
        ASSERT_EQ(Exactly{VHLNoise::inoise(color(p))}, Exactly{rule::inoise(p)}) << text(p);
        ASSERT_EQ(Exactly{cellnoise(vector(q))}, Exactly{rule::cellnoise(q)}) << text(q);
    }
}

// In every cell's corner, where noise is 0, of the sign that the rule gives.
TEST_F(Noise, WholeCoordinatesFollowTheRule)
{
    std::mt19937 engine(14);
    const auto whole = [&] {
        const float x = float(int(engine() % 1024) - 512);
        return engine() % 4 ? x : std::copysign(0.0f, x);
    };
    for (int i = 0; i < points; ++i) {
        const rule::Vector4 p = {whole(), whole(), whole(), whole()};
        const rule::Vector q = {p[0], p[1], p[2]};
        ASSERT_EQ(Exactly{VHLNoise::inoise(vector(q))}, Exactly{rule::inoise(q)}) << text(q);
        ASSERT_EQ(Exactly{VHLNoise::inoise(color(p))}, Exactly{rule::inoise(p)}) << text(p);
    }
}

TEST_F(Noise, FourDimensionsFollowTheRule)
{
    Coordinate coordinate(4);
    for (int i = 0; i < points; ++i) {
        const auto p = coordinate.point<4>();
        ASSERT_EQ(Exactly{VHLNoise::inoise(color(p))}, Exactly{rule::inoise(p)}) << text(p);
    }
}

// Every cell's hashes, along each axis with the others anywhere.
TEST_F(Noise, EveryCellFollowsTheRule)
{
    std::mt19937 engine(5);
    for (int cell = -260; cell < 260; ++cell)
        for (int axis = 0; axis < 4; ++axis)
            for (int i = 0; i < 100; ++i) {
                rule::Vector4 p;
                for (float& x : p)
                    x = std::uniform_real_distribution<float>(-300.0f, 300.0f)(engine);
                p[axis] += float(cell) - std::floor(p[axis]);
                ASSERT_EQ(Exactly{VHLNoise::inoise(color(p))}, Exactly{rule::inoise(p)}) << text(p);
                const rule::Vector q = {p[0], p[1], p[axis == 3 ? 1 : 2]};
                ASSERT_EQ(Exactly{VHLNoise::inoise(vector(q))}, Exactly{rule::inoise(q)}) << text(q);
                ASSERT_EQ(Exactly{cellnoise(vector(q))}, Exactly{rule::cellnoise(q)}) << text(q);
            }
}

// Where products underflow and zeros have signs: all coordinates within a hair of a corner, or on it.
TEST_F(Noise, CornersFollowTheRule)
{
    NearCorner coordinate(6);
    for (int i = 0; i < points / 2; ++i) {
        const rule::Vector4 p = {coordinate(), coordinate(), coordinate(), coordinate()};
        const rule::Vector q = {p[0], p[1], p[2]};
        ASSERT_EQ(Exactly{VHLNoise::inoise(vector(q))}, Exactly{rule::inoise(q)}) << text(q);
        ASSERT_EQ(Exactly{VHLNoise::inoise(color(p))}, Exactly{rule::inoise(p)}) << text(p);
    }
}

TEST_F(Noise, IsZeroAtWholeCoordinates)
{
    std::mt19937 engine(7);
    for (int i = 0; i < 10'000; ++i) {
        const auto whole = [&] { return float(int(engine() % 2000) - 1000); };
        ASSERT_EQ(VHLNoise::inoise(dVector(whole(), whole(), whole())), 0.0f);
        ASSERT_EQ(VHLNoise::inoise(dColor(whole(), whole(), whole(), whole())), 0.0f);
    }
    EXPECT_EQ(VHLNoise::inoise(dVector(3e38f, -3e38f, 16777216.0f)), 0.0f);
}

TEST_F(Noise, CellsHashAliasAtTheWrap)
{
    // Modulo 256 the cells differ, modulo 255 they do not.
    EXPECT_EQ(VHLNoise::inoise(dVector(255.25f, 0.5f, 0.75f)), VHLNoise::inoise(dVector(0.25f, 0.5f, 0.75f)));
    EXPECT_EQ(VHLNoise::inoise(dVector(0.25f, -0.5f, 0.75f)), VHLNoise::inoise(dVector(0.25f, 0.5f, 0.75f)));
    EXPECT_NE(VHLNoise::inoise(dVector(254.25f, 0.5f, 0.75f)),
              VHLNoise::inoise(dVector(-0.75f, 0.5f, 0.75f)));
}

TEST_F(Noise, OfWhatIsNoNumberIsNone)
{
    for (const float odd : {NaN, infinity, -infinity})
        for (int axis = 0; axis < 4; ++axis)
            for (const float other : {0.0f, 0.3f, -7.0f, 3e38f}) {
                dColor p(other);
                p[axis] = odd;
                EXPECT_TRUE(std::isnan(float(VHLNoise::inoise(p))));
                if (axis == 3)
                    continue;
                dVector q(other);
                q[axis] = odd;
                EXPECT_TRUE(std::isnan(float(VHLNoise::inoise(q))));
                EXPECT_TRUE(std::isnan(float(cellnoise(q))));
                EXPECT_EQ(cellular(q, 1.0f)[0], 1000.0f) << "no distance is below it";
            }
}

TEST_F(Noise, CellnoiseDependsOnTheCellAlone)
{
    EXPECT_EQ(cellnoise(dVector(3.1f, -2.7f, 0.0f)), cellnoise(dVector(3.9f, -2.1f, 0.99f)));
    Coordinate coordinate(8);
    for (int i = 0; i < points / 2; ++i) {
        const auto p = coordinate.point<3>();
        ASSERT_EQ(Exactly{cellnoise(vector(p))}, Exactly{rule::cellnoise(p)}) << text(p);
    }
}

TEST_F(Noise, CellularFollowsTheRule)
{
    Coordinate coordinate(9);
    std::mt19937 engine(9);
    for (int i = 0; i < points / 10; ++i) {
        const auto p = coordinate.point<3>();
        constexpr float jitters[] = {1.0f,  0.0f,  0.5f,  -1.0f, 2.5f,  1e-3f,    1e-44f,   700.0f,
                                     1e10f, 1e20f, 3e38f, NaN,   -0.0f, infinity, -infinity};
        // Mostly in 0..1, where they are of use.
        const float jitter =
            engine() % 2 ? float(engine()) * 0x1p-32f : jitters[engine() % std::size(jitters)];
        const dVector result = cellular(vector(p), jitter);
        ASSERT_EQ(Exactly{result[0]}, Exactly{rule::cellular(p, jitter)}) << text(p) << jitter;
        ASSERT_EQ(Exactly{result[1]}, Exactly{result[0]});
        ASSERT_EQ(Exactly{result[2]}, Exactly{result[0]});
    }
}

// Whether the neighbours' wrap is right shows only where their points are near.
TEST_F(Noise, CellularFollowsTheRuleAcrossTheWrap)
{
    std::mt19937 engine(10);
    for (int i = 0; i < points / 20; ++i) {
        rule::Vector p;
        for (float& x : p)
            x = float(256 * int(engine() % 5) - 512) + std::uniform_real_distribution<float>(-3, 3)(engine);
        ASSERT_EQ(Exactly{cellular(vector(p), 1.0f)[0]}, Exactly{rule::cellular(p, 1.0f)}) << text(p);
    }
}

TEST_F(Noise, CellularWithoutJitterIsTheDistanceToTheMiddle)
{
    EXPECT_EQ(cellular(dVector(0.5f, 7.5f, -3.5f), 0.0f)[0], 0.0f);
    EXPECT_EQ(cellular(dVector(0.75f, 7.5f, -3.5f), 0.0f)[0], 0.25f);
    EXPECT_EQ(cellular(dVector(8.0f, 8.0f, 8.0f), 0.0f)[0], std::sqrt(0.75f));
}

TEST_F(Noise, OctavesFollowTheRule)
{
    Coordinate coordinate(11);
    std::mt19937 engine(11);
    for (int i = 0; i < points / 20; ++i) {
        const auto p = coordinate.point<3>();
        const int count = int(engine() % 8) - 1;
        const float lacunarity = float(engine() % 9) * 0.5f, gain = float(engine() % 5) * 0.25f;
        const float frequency = coordinate() * 0.01f, amplitude = coordinate();
        ASSERT_EQ(Exactly{octaves(vector(p), count, lacunarity, gain, frequency, amplitude)},
                  Exactly{rule::octaves(p, count, lacunarity, gain, frequency, amplitude, false)})
            << text(p) << count << ' ' << lacunarity << ' ' << gain << ' ' << frequency << ' ' << amplitude;
        ASSERT_EQ(Exactly{octaves_abs(vector(p), count, lacunarity, gain, frequency, amplitude)},
                  Exactly{rule::octaves(p, count, lacunarity, gain, frequency, amplitude, true)})
            << text(p) << count << ' ' << lacunarity << ' ' << gain << ' ' << frequency << ' ' << amplitude;
    }
}

TEST_F(Noise, OneOctaveIsTheNoiseAndNoneIsZero)
{
    const dVector p(0.3f, -4.6f, 7.2f);
    EXPECT_EQ(octaves(p, 1, 2.0f, 0.5f, 1.0f, 1.0f), VHLNoise::inoise(p));
    EXPECT_EQ(octaves_abs(p, 1, 2.0f, 0.5f, 1.0f, 1.0f), std::fabs(float(VHLNoise::inoise(p))));
    for (const int count : {0, -1, -1000}) {
        EXPECT_EQ(Exactly{octaves(p, count, 2.0f, 0.5f, 1.0f, 1.0f)}, Exactly{0.0f});
        EXPECT_EQ(Exactly{octaves_abs(p, count, 2.0f, 0.5f, 1.0f, 1.0f)}, Exactly{0.0f});
    }
}

} // namespace
