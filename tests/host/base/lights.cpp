// SPDX-License-Identifier: BSD-3-Clause
// Lights on a white wall: what each pixel must show follows from its distance and angle to the light.
#include "tests/host/base/scene.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>

namespace {

const std::string white = R"(
material "white"  "mib_illum_lambert" ( "diffuse" 1 1 1, "mode" 4 )  end material
)" + square("wall", 0.0f, "white");

std::string light(const std::string& statements)
{
    return "light \"lamp\" " + statements + " end light\ninstance \"lamp-i\" \"lamp\" end instance\n";
}

/// A light shader's parameters, and the wall's colour by cosine and distance of the point to a light at (0,
/// 0, 2).
template <class Expected>
void expectOnWall(const Picture& picture, Expected expected)
{
    for (int j = 0; j < picture.height; j += 4)
        for (int i = 0; i < picture.width; i += 4) {
            const float distance = std::hypot(place(i), place(j), 2.0f);
            EXPECT_NEAR(picture.at(i, j).g, expected(2.0f / distance, distance), 1e-4f) << i << " " << j;
            EXPECT_EQ(picture.at(i, j).a, 1.0f);
        }
}

} // namespace

TEST(Lights, PointLightsAWallByTheCosine)
{
    const auto picture = rendered(white + light(R"("mib_light_point" ( "color" .5 .8 1 ) origin 0 0 2)"),
                                  R"("wall-i" "lamp-i")");
    expectOnWall(picture, [](float cosine, float) { return 0.8f * cosine; });
}

TEST(Lights, PointFallsOffBetweenStartAndStop)
{
    const auto picture =
        rendered(white + light(R"("mib_light_point" ( "atten" on, "start" 2.2, "stop" 2.7 ) origin 0 0 2)"),
                 R"("wall-i" "lamp-i")");
    expectOnWall(picture, [](float cosine, float distance) {
        if (distance <= 2.2f)
            return cosine;
        return distance >= 2.7f ? 0.0f : cosine * (2.7f - distance) / 0.5f;
    });
}

TEST(Lights, SpotFadesFromConeToSpread)
{
    const auto picture =
        rendered(white + light(R"("mib_light_spot" ( "cone" .95 ) origin 0 0 2 direction 0 0 -3 spread .8)"),
                 R"("wall-i" "lamp-i")");
    // It shines straight onto the wall, so the angle to its axis is that to the normal.
    expectOnWall(picture, [](float cosine, float) {
        if (cosine >= 0.95f)
            return cosine;
        return cosine <= 0.8f ? 0.0f : cosine * (cosine - 0.8f) / 0.15f;
    });
}

TEST(Lights, SpotIsTurnedByItsInstance)
{
    // In its own space the spot shines along +x from the origin; the instance turns that to -z and moves it
    // to (0, 0, 2). A point of the world becomes (2 - z, y, x).
    const auto picture = rendered(white + R"(
light "lamp" "mib_light_spot" ( "cone" .95 ) origin 0 0 0 direction 1 0 0 spread .8 end light
instance "lamp-i" "lamp"  transform 0 0 1 0  0 1 0 0  -1 0 0 0  2 0 0 1  end instance
)",
                                  R"("wall-i" "lamp-i")");
    expectOnWall(picture, [](float cosine, float) {
        if (cosine >= 0.95f)
            return cosine;
        return cosine <= 0.8f ? 0.0f : cosine * (cosine - 0.8f) / 0.15f;
    });
}

TEST(Lights, AMovingSpotSweepsTheWall)
{
    // While the shutter is open the spot's matrix shears its axis from (0, 0, -1) to (1/2, 0, -1): the round
    // spot on the wall, of the radius 2 tan(acos .9), goes from the middle to x = 1, and a place is lit for
    // as long as it is inside.
    const auto picture = rendered(white + R"(
light "lamp" "mib_light_spot" ( "cone" .9 ) origin 0 0 0 direction 0 0 -1 spread .9 end light
instance "lamp-i" "lamp"
    transform 1 0 0 0  0 1 0 0  0 0 1 0  0 0 -2 1  motion transform 1 0 0 0  0 1 0 0  .5 0 1 0  -1 0 -2 1
end instance
)",
                                  R"("wall-i" "lamp-i")", "samples 3 3  shutter 1");
    const double radius = 2.0 * std::tan(std::acos(0.9));
    const auto colour = [&](double x, double y) {
        const double half = std::sqrt(std::max(0.0, radius * radius - y * y));
        const double share = std::max(0.0, std::min(1.0, x + half) - std::max(0.0, x - half));
        return share * 2.0 / std::hypot(x, y, 2.0);
    };
    constexpr int steps = 16; // over the width of a pixel
    constexpr double width = 4.0 / 41.0 / steps;
    double total = 0.0, difference = 0.0, squares = 0.0;
    for (int j = 0; j < picture.height; ++j)
        for (int i = 0; i < picture.width; ++i) {
            double expected = 0.0;
            for (int k = 0; k < steps * steps; ++k)
                expected += colour(place(i) + (k % steps - (steps - 1) / 2.0) * width,
                                   place(j) + (k / steps - (steps - 1) / 2.0) * width) /
                            (steps * steps);
            const double error = picture.at(i, j).g - expected;
            total += expected;
            difference += error;
            squares += error * error;
        }
    // 64 samples in each pixel.
    EXPECT_GT(total, 100.0);
    EXPECT_NEAR(difference / total, 0.0, 3e-3);
    EXPECT_LT(std::sqrt(squares / (41.0 * 41.0)), 0.02);
}

TEST(Lights, InfiniteIsTheSameEverywhere)
{
    const auto picture = rendered(
        white + light(R"("mib_light_infinite" ( "color" 1 .5 1 ) direction 3 0 -4)"), R"("wall-i" "lamp-i")");
    expectOnWall(picture, [](float, float) { return 0.5f * 0.8f; });
}

TEST(Lights, FactorSoftensTheShadowOfWhatBlocks)
{
    const std::string blocker = square("blocker", 1.0f, "white", "shadow");
    struct {
        const char* parameters;
        float share;
    } const rows[] = {{R"("factor" 0)", 0.0f}, {R"("factor" .25)", 0.25f}, {R"("shadow" off)", 1.0f}};
    for (const auto& row : rows) {
        const auto picture =
            rendered(white + blocker +
                         light("\"mib_light_point\" ( " + std::string(row.parameters) + " ) origin 0 0 2"),
                     R"("wall-i" "blocker-i" "lamp-i")");
        expectOnWall(picture, [&](float cosine, float) { return row.share * cosine; });
    }
}

TEST(Lights, AVisibleOneIsSeenInItsPlainColour)
{
    // Colours of three numbers have alpha 0; what is looked at is opaque nevertheless.
    for (const char* const shader : {R"("mib_light_point" ( "color" 3 2 1, "atten" on, "stop" .1 ))",
                                     R"("mib_light_spot" ( "color" 3 2 1 ) direction 0 0 -1 spread .9)"}) {
        const auto picture =
            rendered(light(std::string(shader) + " origin 0 0 2 visible disc 0 0 1 1 2 2"), R"("lamp-i")");
        for (int j = 0; j < picture.height; ++j)
            for (int i = 0; i < picture.width; ++i) {
                const bool inside = std::hypot(place(i), place(j)) < 1.0f;
                EXPECT_EQ(picture.at(i, j).g, inside ? 2.0f : 0.0f);
                EXPECT_EQ(picture.at(i, j).a, inside ? 1.0f : 0.0f);
            }
    }
}

TEST(Lights, AnObjectLightsAsTheMeanOfItsPoints)
{
    // A thin strip from (-1, 0, 2) to (1, 0, 2), sampled often along it.
    const auto picture = rendered(white + R"(
object "strip"
    group  -1 0 2  1 0 2  1 .001 2  -1 .001 2   v 0 v 1 v 2 v 3   p 0 1 2 3  end group
end object
instance "strip-i" "strip" material "white" end instance
)" + light(R"("mib_light_point" ( "shadow" off ) object "strip-i" 50 50)"),
                                  R"("wall-i" "strip-i" "lamp-i")");
    for (int i = 0; i < picture.width; i += 4) {
        const double x = place(i), y = place(20);
        // The mean of 2 / sqrt((x - t)² + y² + 4) for t from -1 to 1.
        const double h = std::hypot(y, 2.0);
        const double mean = std::asinh((x + 1) / h) - std::asinh((x - 1) / h);
        EXPECT_NEAR(picture.at(i, 20).g, mean, 2e-3) << i;
    }
}

TEST(Shadows, TransparentOnesMultiply)
{
    const std::string panes = R"(
material "pane-1"  "mib_illum_lambert" ()
    shadow "mib_shadow_transparency" ( "color" 1 .5 .25, "transp" .8 .8 .8 )
end material
material "pane-2"  "mib_illum_lambert" ()
    shadow "mib_transparency" ( "transp" .5 .25 1 )
end material
)" + square("first", 1.0f, "pane-1", "shadow") +
                              square("second", 1.5f, "pane-2", "shadow");
    const auto picture = rendered(white + panes + light(R"("mib_light_point" ( "factor" .1 ) origin 0 0 2)"),
                                  R"("wall-i" "first-i" "second-i" "lamp-i")");
    expectOnWall(picture, [](float cosine, float) { return cosine * (0.1f + 0.9f * (0.5f * 0.8f * 0.25f)); });
    const float middle = picture.at(20, 20).r;
    EXPECT_NEAR(middle, 0.1f + 0.9f * (1.0f * 0.8f * 0.5f), 1e-5f) << "the cosine is 1 there";
}

TEST(Shadows, TransparencyCanBeForSomeLightsOnly)
{
    const auto wallBehind = [](const std::string& choice) {
        return rendered(white + R"(
light "near" "mib_light_infinite" ( "color" .2 .2 .2 ) direction 0 0 -1 end light
instance "near-i" "near" end instance
light "far" "mib_light_infinite" ( "color" .4 .4 .4 ) direction 0 0 -1 end light
instance "far-i" "far" end instance
material "tinted"  "mib_illum_lambert" ()
    shadow "mib_shadow_transparency" ( "transp" .5 .5 .5, )" +
                            choice + R"( )
end material
)" + square("pane", 1.0f, "tinted", "shadow"),
                        R"("wall-i" "pane-i" "near-i" "far-i")")
            .at(20, 20)
            .r;
    };
    EXPECT_NEAR(wallBehind(R"("mode" 0)"), 0.5f * 0.6f, 1e-5f);
    EXPECT_NEAR(wallBehind(R"("mode" 1, "lights" ["far-i"])"), 0.5f * 0.4f, 1e-5f);
    EXPECT_NEAR(wallBehind(R"("mode" 2, "lights" ["far-i"])"), 0.5f * 0.2f, 1e-5f);
    EXPECT_NEAR(wallBehind(R"("mode" 4, "lights" ["far-i"])"), 0.5f * 0.6f, 1e-5f);
}
