// SPDX-License-Identifier: BSD-3-Clause
// What goes by the surface and by space, at states of the test.
#include "tests/recipes/recipe.h"

#include <algorithm>

using namespace test;

namespace {

const Rgba first = {0.25, 0.5, 0.75, 1};
const Rgba second = {1, 0, 0.125, 0.5};
const std::vector<double> cosines = range(-1, 0, 1.0 / 16);

/// Points in and around a cube of three units.
std::vector<miVector> points()
{
    std::vector<miVector> all;
    for (const double x : range(-1.5, 1.5, 0.375))
        for (const double y : range(-1.5, 1.5, 0.375))
            for (const double z : {-1.25, 0.0, 0.7})
                all.push_back({float(x), float(y), float(z)});
    return all;
}

} // namespace

TEST(Surfaces, Facing)
{
    Recipe r("vhrFacingScalar_v1");
    for (const double cosine : cosines) {
        r.state.dot_nd = float(cosine);
        expectClose(r.run<float>(), -cosine);
    }
    r.set("center", 2.0).set("edge", 10.0);
    for (const double cosine : cosines) {
        r.state.dot_nd = float(cosine);
        expectClose(r.run<float>(), 10 + 8 * cosine);
    }
}

TEST(Surfaces, Rim)
{
    Recipe r("vhrRimColor_v1");
    r.set("input", color(first)).set("color", color(second)).set("width", 0.4).set("intensity", 2.0);
    for (const double cosine : cosines) {
        r.state.dot_nd = float(cosine);
        const double rim = 2 * smoothstep(0.6, 1, 1 + cosine);
        expectClose(r.run<miColor>(),
                    {first[0] + second[0] * rim, first[1] + second[1] * rim, first[2] + second[2] * rim, 1});
    }
    for (const double width : {0.0, -1.0}) {
        r.set("width", width);
        r.state.dot_nd = -0.001f;
        expectClose(r.run<miColor>(), first);
        r.state.dot_nd = 0;
        EXPECT_TRUE(std::isfinite(r.run<miColor>().r)) << "also at the very outline";
    }
}

TEST(Surfaces, Fresnel)
{
    Recipe r("vhrFresnelScalar_v1");
    for (const double ior : {1.0, 1.33, 1.5, 2.42}) {
        r.set("ior", ior);
        const double f0 = std::pow((ior - 1) / (ior + 1), 2);
        for (const double cosine : cosines) {
            r.state.dot_nd = float(cosine);
            expectClose(r.run<float>(), f0 + (1 - f0) * std::pow(1 + cosine, 5));
        }
    }
}

TEST(Surfaces, DepthCue)
{
    Recipe r("vhrDepthCueColor_v1");
    r.set("input", color(first)).set("color", color(second)).set("near", 2.0).set("far", 10.0);
    for (const double distance : range(0.5, 12, 0.5)) {
        r.state.dist = distance;
        expectClose(r.run<miColor>(), mix(first, second, (distance - 2) / 8));
    }
    r.state.dist = 0; // met nothing
    expectClose(r.run<miColor>(), second);
}

TEST(Surfaces, Height)
{
    Recipe r("vhrHeightColor_v1");
    r.set("low", color(first)).set("high", color(second)).set("lower", -0.5).set("upper", 1.0);
    for (const miVector& p : points()) {
        r.state.point = p;
        r.set("up", miVector{0, 1, 0});
        expectClose(r.run<miColor>(), mix(first, second, (p.y + 0.5) / 1.5));
        r.set("up", miVector{0.6f, 0, 0.8f});
        expectClose(r.run<miColor>(), mix(first, second, (0.6 * p.x + 0.8 * p.z + 0.5) / 1.5));
    }
}

TEST(Surfaces, Slope)
{
    Recipe r("vhrSlopeScalar_v1");
    for (const double degrees : range(0, 180, 7.5)) {
        const double angle = degrees * 3.14159265358979 / 180;
        r.state.normal = {float(std::sin(angle)), float(std::cos(angle)), 0};
        expectClose(r.run<float>(), smoothstep(0.5, 0.7, std::cos(angle)), 2e-5);
    }
    r.set("up", miVector{1, 0, 0}).set("lower", 0.0).set("upper", 1.0);
    r.state.normal = {0.25f, 0, 0.9f};
    expectClose(r.run<float>(), smoothstep(0, 1, 0.25));
}

TEST(Surfaces, Falloff)
{
    Recipe r("vhrFalloffScalar_v1");
    r.set("center", miVector{0.5f, 0, -1}).set("half", 2.0);
    for (const miVector& p : points()) {
        r.state.point = p;
        const double square = std::pow(p.x - 0.5, 2) + std::pow(p.y, 2) + std::pow(p.z + 1, 2);
        expectClose(r.run<float>(), 1 / (1 + square / 4));
    }
    r.state.point = {0.5f, 2, -1};
    EXPECT_EQ(r.run<float>(), 0.5f) << "half of it at that distance";
}

TEST(Surfaces, SphereMask)
{
    Recipe r("vhrSphereMaskScalar_v1");
    r.set("center", miVector{0.5f, 0, 0}).set("radius", 0.75).set("softness", 0.5);
    const auto distance = [](const miVector& p) { return std::hypot(p.x - 0.5, p.y, p.z); };
    for (const miVector& p : points()) {
        r.state.point = p;
        expectClose(r.run<float>(), smoothstep(0, 1, 1 - (distance(p) - 0.75) / 0.5), 2e-5);
    }
    r.set("softness", 0.0);
    for (const miVector& p : points()) {
        r.state.point = p;
        EXPECT_EQ(r.run<float>(), distance(p) <= 0.75 ? 1 : 0) << p.x << ' ' << p.y << ' ' << p.z;
    }
}

TEST(Surfaces, BoxMask)
{
    Recipe r("vhrBoxMaskScalar_v1");
    r.set("center", miVector{0.25f, 0, 0}).set("size", miVector{1, 2, 1.5f}).set("softness", 0.5);
    const auto beyond = [](const miVector& p) {
        return std::max({std::fabs(p.x - 0.25) - 0.5, std::fabs(p.y) - 1.0, std::fabs(p.z) - 0.75});
    };
    for (const miVector& p : points()) {
        r.state.point = p;
        expectClose(r.run<float>(), smoothstep(0, 1, 1 - beyond(p) / 0.5), 2e-5);
    }
    r.set("softness", 0.0);
    for (const miVector& p : points()) {
        r.state.point = p;
        EXPECT_EQ(r.run<float>(), beyond(p) <= 0 ? 1 : 0) << p.x << ' ' << p.y << ' ' << p.z;
    }
    r.state.point = {0.76f, 0, 0};
    EXPECT_EQ(r.run<float>(), 0) << "a hundredth outside";
}

TEST(Surfaces, TwoSided)
{
    Recipe r("vhrTwoSidedColor_v1");
    r.set("front", color(first)).set("back", color(second));
    expectClose(r.run<miColor>(), first);
    r.state.inv_normal = true;
    expectClose(r.run<miColor>(), second);
}

TEST(Surfaces, RaySwitch)
{
    Recipe r("vhrRaySwitchColor_v1");
    const std::array<Rgba, 4> looks = {first, second, {0, 1, 0, 1}, {0, 0, 1, 1}};
    r.set("eye", color(looks[0])).set("reflect", color(looks[1])).set("refract", color(looks[2]));
    r.set("other", color(looks[3]));
    const auto expectFor = [&](miRay_type type, std::size_t look) {
        r.state.type = type;
        expectClose(r.run<miColor>(), looks.at(look));
    };
    expectFor(miRAY_EYE, 0);
    expectFor(miRAY_TRANSPARENT, 0);
    expectFor(miRAY_REFLECT, 1);
    expectFor(miRAY_REFRACT, 2);
    expectFor(miRAY_LIGHT, 3);
    expectFor(miRAY_SHADOW, 3);
    expectFor(miRAY_ENVIRONMENT, 3);
}

TEST(Passes, Normal)
{
    Recipe r("vhrNormalColor_v1");
    r.state.normal = {-1, 0.5f, 0.25f};
    expectClose(r.run<miColor>(), {0, 0.75, 0.625, 1});
}

TEST(Passes, Position)
{
    Recipe r("vhrPositionColor_v1");
    r.set("lower", miVector{-2, 0, 1}).set("upper", miVector{2, 4, -1});
    for (const miVector& p : points()) {
        r.state.point = p;
        expectClose(r.run<miColor>(), {(p.x + 2) / 4.0, p.y / 4.0, (1 - p.z) / 2.0, 1});
    }
}

TEST(Passes, Label)
{
    Recipe r("vhrLabelColor_v1");
    // A hue by its sixths, as colours are told to be arranged around a circle.
    const auto wheel = [](double hue) {
        const double six = 6 * hue;
        const double up = six - std::floor(six);
        const std::array<Rgba, 6> sixths = {Rgba{1, up, 0, 1}, {1 - up, 1, 0, 1}, {0, 1, up, 1},
                                            {0, 1 - up, 1, 1}, {up, 0, 1, 1},     {1, 0, 1 - up, 1}};
        return sixths.at(static_cast<std::size_t>(six));
    };
    for (const double offset : {0.0, 7.0}) {
        r.set("offset", offset);
        for (unsigned label = 0; label < 40; ++label) {
            r.state.label = label;
            expectClose(r.run<miColor>(), wheel(fract(0.618034 * (label + offset))), 6e-5);
        }
    }
}
