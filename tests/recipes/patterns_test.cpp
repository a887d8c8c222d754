// SPDX-License-Identifier: BSD-3-Clause
// Patterns over texture coordinates and over vectors, and what is drawn into the picture's frame.
#include "tests/recipes/recipe.h"

#include <algorithm>
#include <functional>

using namespace test;

namespace {

const Rgba first = {0.25, 0.5, 0.75, 1};
const Rgba second = {1, 0, 0.125, 0.5};

// Off the cells' edges, where a rounding would decide.
const std::vector<double> places = range(-1.03, 1.03, 0.0571);

/// `part` of the second colour at each place, over texture coordinates and then over the vector, which has
/// the pattern's third dimension too.
void expectPattern(Recipe& r, const std::function<double(double, double)>& part, double tolerance = 4e-5)
{
    for (const bool useCoord : {false, true}) {
        r.set("useCoord", useCoord);
        for (const double x : places)
            for (const double y : places) {
                SCOPED_TRACE(std::to_string(x) + ' ' + std::to_string(y));
                r.atUv(useCoord ? 9 : float(x), useCoord ? 9 : float(y));
                r.set("coord", useCoord ? miVector{float(x), float(y), 0.3f} : miVector{7, 7, 7});
                expectClose(r.run<miColor>(), mix(first, second, part(x, y)), tolerance);
            }
    }
}

Recipe& paint(Recipe& r, const std::string& one = "color1", const std::string& two = "color2")
{
    return r.set(one, color(first)).set(two, color(second));
}

double edgeDistance(double x) { return 0.5 - std::fabs(fract(x) - 0.5); }

} // namespace

TEST(Patterns, Checker)
{
    Recipe r("vhrCheckerColor_v1");
    paint(r).set("frequency", miVector{4, 3, 0});
    const auto odd = [](double cells) { return std::fmod(std::fabs(cells), 2) == 1; };
    expectPattern(r, [&](double x, double y) { return odd(std::floor(4 * x) + std::floor(3 * y)) ? 1 : 0; });
    r.set("frequency", miVector{1, 1, 1}).set("useCoord", true).set("coord", miVector{0.5f, 0.5f, 1.5f});
    expectClose(r.run<miColor>(), second);
    r.set("coord", miVector{-0.5f, 0.5f, 1.5f});
    expectClose(r.run<miColor>(), first);
}

TEST(Patterns, Stripes)
{
    Recipe r("vhrStripesColor_v1");
    paint(r)
        .set("direction", miVector{1, 0.5f, 0})
        .set("frequency", 3.0)
        .set("width", 0.4)
        .set("softness", 0.25);
    const auto part = [](double softness) {
        return [softness](double x, double y) {
            return (0.4 - std::fabs(2 * fract(3 * (x + 0.5 * y)) - 1)) / softness + 0.5;
        };
    };
    expectPattern(r, part(0.25));
    r.set("softness", 0.0);
    expectPattern(r, part(1e-6));
}

TEST(Patterns, Dots)
{
    Recipe r("vhrDotsColor_v1");
    paint(r).set("frequency", miVector{3, 2, 5}).set("radius", 0.3).set("softness", 0.2);
    expectPattern(r, [](double x, double y) {
        return (0.3 - std::hypot(fract(3 * x) - 0.5, fract(2 * y) - 0.5)) / 0.2 + 0.5;
    });
    r.set("softness", 0.0);
    expectPattern(r, [](double x, double y) {
        return std::hypot(fract(3 * x) - 0.5, fract(2 * y) - 0.5) < 0.3 ? 1 : 0;
    });
}

TEST(Patterns, Grid)
{
    Recipe r("vhrGridColor_v1");
    paint(r).set("frequency", miVector{3, 2, 5}).set("width", 0.25);
    expectPattern(r, [](double x, double y) {
        return std::min(edgeDistance(3 * x), edgeDistance(2 * y)) < 0.125 ? 1 : 0;
    });
}

TEST(Patterns, Brick)
{
    Recipe r("vhrBrickColor_v1");
    paint(r, "brick", "mortar").set("frequency", miVector{2, 5, 0}).set("joint", 0.25).set("shift", 0.25);
    expectPattern(r, [](double x, double y) {
        const double row = std::floor(5 * y);
        const double shift = std::fmod(std::fabs(row), 2) == 1 ? 0.25 : 0;
        return std::min(edgeDistance(2 * x + shift) * 5 / 2, edgeDistance(5 * y)) < 0.125 ? 1 : 0;
    });
}

// ---- the picture's frame: 200 by 100 pixels

namespace {

void forPixels(Recipe& r, const std::function<Rgba(double, double)>& expected)
{
    for (double x = 0.5; x < 200; x += 3)
        for (double y = 0.5; y < 100; y += 3) {
            SCOPED_TRACE(std::to_string(x) + ' ' + std::to_string(y));
            r.atPixel(float(x), float(y));
            expectClose(r.run<miColor>(), expected(x, y));
        }
}

} // namespace

TEST(Frame, Vignette)
{
    Recipe r("vhrVignetteColor_v1");
    r.set("input", color(first)).set("amount", 0.8).set("inner", 0.2).set("outer", 0.9);
    forPixels(r, [](double x, double y) {
        const double radius = std::hypot((x - 100) / 100, (y - 50) / 50) / std::sqrt(2);
        return byChannel(first, [&](double c) { return c * (1 - 0.8 * smoothstep(0.2, 0.9, radius)); });
    });
    r.set("outer", 1.0).set("amount", 1.0);
    r.atPixel(0, 0);
    expectClose(r.run<miColor>(), {0, 0, 0, 1});
}

TEST(Frame, Wipe)
{
    Recipe r("vhrWipeColor_v1");
    const Rgba line = {0, 1, 0, 1};
    r.set("a", color(first)).set("b", color(second)).set("lineColor", color(line)).set("lineWidth", 4.0);
    r.set("position", 0.31);
    forPixels(r, [&](double x, double) { return std::fabs(x - 62) < 2 ? line : x < 62 ? first : second; });
    r.set("vertical", true);
    forPixels(r, [&](double, double y) { return std::fabs(y - 31) < 2 ? line : y < 31 ? first : second; });
    r.set("lineWidth", 0.0);
    forPixels(r, [&](double, double y) { return y < 31 ? first : second; });
}

TEST(Frame, SafeFrame)
{
    Recipe r("vhrSafeFrameColor_v1");
    r.set("input", color(first)).set("lineColor", color(second)).set("opacity", 0.75);
    r.set("action", 0.9).set("title", 0.7).set("lineWidth", 3.0);
    // On the outline of a rectangle: within reach of one side and not beyond the others.
    const auto on = [](double x, double y, double share) {
        const double dx = std::fabs(x - 100) - 100 * share;
        const double dy = std::fabs(y - 50) - 50 * share;
        return (std::fabs(dx) < 1.5 && dy < 1.5) || (std::fabs(dy) < 1.5 && dx < 1.5);
    };
    forPixels(
        r, [&](double x, double y) { return mix(first, second, on(x, y, 0.9) || on(x, y, 0.7) ? 0.75 : 0); });
}

TEST(Frame, Region)
{
    Recipe r("vhrRegionColor_v1");
    r.set("input", color(first)).set("outside", color(second));
    r.set("lower", miVector{0.25f, 0.1f, 0}).set("upper", miVector{0.5f, 0.8f, 0});
    forPixels(r, [](double x, double y) { return x >= 50 && x < 100 && y >= 10 && y < 80 ? first : second; });
    r.atPixel(50, 10);
    expectClose(r.run<miColor>(), first);
    r.atPixel(100, 50);
    expectClose(r.run<miColor>(), second);
}

TEST(Frame, Zebra)
{
    Recipe r("vhrZebraColor_v1");
    r.set("color", color(second)).set("width", 5.0).set("limit", 0.75);
    r.set("input", color({0.25, 0.5, 0.75, 1}));
    forPixels(r, [](double, double) { return Rgba{0.25, 0.5, 0.75, 1}; }); // the limit is no warning
    for (const Rgba& bright : {Rgba{0.8, 0, 0, 1}, Rgba{0, 0.8, 0, 1}, Rgba{0, 0, 0.8, 1}}) {
        r.set("input", color(bright));
        forPixels(r, [&](double x, double y) { return fract((x + y) / 10) < 0.5 ? second : bright; });
    }
}
