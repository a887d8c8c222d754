// SPDX-License-Identifier: BSD-3-Clause
// Colour correction, and the colours that tell of numbers, each against its formula in double precision.
#include "tests/recipes/recipe.h"

#include <algorithm>

using namespace test;

namespace {

/// Calls the recipe for every colour and compares with `expected` of it.
template <class Expected>
void expectForAll(Recipe& recipe, Expected expected)
{
    for (const Rgba& c : colors()) {
        SCOPED_TRACE(testing::PrintToString(c));
        expectClose(recipe.set("input", color(c)).run<miColor>(), expected(c));
    }
}

Rgba same(const Rgba& c) { return c; }

} // namespace

TEST(Colours, Brightness)
{
    Recipe r("vhrBrightnessColor_v1");
    expectForAll(r, same);
    r.set("gain", 2.5).set("offset", -0.25);
    expectForAll(r, [](const Rgba& c) { return byChannel(c, [](double x) { return x * 2.5 - 0.25; }); });
}

TEST(Colours, Contrast)
{
    Recipe r("vhrContrastColor_v1");
    expectForAll(r, same);
    for (const double contrast : {0.0, 3.0, -1.0}) {
        r.set("contrast", contrast).set("pivot", 0.25);
        expectForAll(r, [&](const Rgba& c) {
            return byChannel(c, [&](double x) { return (x - 0.25) * contrast + 0.25; });
        });
    }
}

TEST(Colours, Luminance)
{
    Recipe r("vhrLuminanceScalar_v1");
    for (const Rgba& c : colors())
        expectClose(r.set("input", color(c)).run<float>(), luminance(c));
}

TEST(Colours, Saturation)
{
    Recipe r("vhrSaturationColor_v1");
    expectForAll(r, same);
    for (const double saturation : {0.0, 0.5, 2.0, -1.0}) {
        r.set("saturation", saturation);
        expectForAll(r, [&](const Rgba& c) {
            return byChannel(c, [&](double x) { return luminance(c) + saturation * (x - luminance(c)); });
        });
    }
}

TEST(Colours, Levels)
{
    Recipe r("vhrLevelsColor_v1");
    expectForAll(r, [](const Rgba& c) { return byChannel(c, clamp01); });
    r.set("inBlack", 0.125).set("inWhite", 0.625).set("outBlack", 0.9).set("outWhite", 0.1);
    expectForAll(r, [](const Rgba& c) {
        return byChannel(c, [](double x) { return 0.9 - 0.8 * clamp01((x - 0.125) / 0.5); });
    });
}

TEST(Colours, Sepia)
{
    Recipe r("vhrSepiaColor_v1");
    for (const double amount : {1.0, 0.25, 0.0, 2.0}) {
        r.set("amount", amount);
        expectForAll(r, [&](const Rgba& c) {
            const Rgba toned = {0.393 * c[0] + 0.769 * c[1] + 0.189 * c[2],
                                0.349 * c[0] + 0.686 * c[1] + 0.168 * c[2],
                                0.272 * c[0] + 0.534 * c[1] + 0.131 * c[2], c[3]};
            return mix(c, toned, amount);
        });
    }
}

TEST(Colours, Posterize)
{
    Recipe r("vhrPosterizeColor_v1");
    for (const double levels : {4.0, 2.0, 7.0}) {
        r.set("levels", levels);
        // Away from the steps, where a rounding decides; for 4 and 2 the quarters are exact and count.
        for (const Rgba& c : {Rgba{0, 0.24, 0.26, 0.5}, Rgba{0.49, 0.51, 0.74, 1}, Rgba{0.76, 0.99, 1, 0},
                              Rgba{1.5, 0.9, 0.1, 1}})
            expectClose(r.set("input", color(c)).run<miColor>(), byChannel(c, [&](double x) {
                            return std::min(std::floor(x * levels), levels - 1) / (levels - 1);
                        }));
    }
    r.set("levels", 4.0).set("input", miColor{0.25f, 0.5f, 0.75f, 1});
    expectClose(r.run<miColor>(), {1 / 3.0, 2 / 3.0, 1, 1});
}

TEST(Colours, BlackWhite)
{
    Recipe r("vhrBlackWhiteColor_v1");
    for (const double threshold : {0.5, 0.2}) {
        r.set("threshold", threshold);
        expectForAll(r, [&](const Rgba& c) {
            return byChannel(c, [&](double) { return luminance(c) >= threshold ? 1 : 0; });
        });
    }
    r.set("input", miColor{noNumber, 1, 1, 0.5f});
    expectClose(r.run<miColor>(), {0, 0, 0, 0.5});
}

TEST(Colours, Duotone)
{
    Recipe r("vhrDuotoneColor_v1");
    r.set("shadow", miColor{0.1f, 0.2f, 0.5f, 0.3f}).set("highlight", miColor{1, 0.75f, 0.5f, 0.6f});
    expectForAll(r, [](const Rgba& c) {
        Rgba mixed = mix(Rgba{0.1, 0.2, 0.5, 0}, Rgba{1, 0.75, 0.5, 0}, luminance(c));
        mixed[3] = c[3];
        return mixed;
    });
}

TEST(Colours, Ramp)
{
    Recipe r("vhrRampColor_v1");
    const Rgba low = {0, 0.25, 0.5, 1};
    const Rgba middle = {1, 0.5, 0.25, 0.5};
    const Rgba high = {0.75, 1, 0, 0};
    r.set("low", color(low)).set("middle", color(middle)).set("high", color(high));
    for (const double position : {0.5, 0.25}) {
        r.set("position", position);
        for (const double x : range(-0.5, 1.5, 1.0 / 16))
            expectClose(r.set("input", x).run<miColor>(),
                        x < position ? mix(low, middle, x / position)
                                     : mix(middle, high, (x - position) / (1 - position)));
    }
    r.set("position", 0.0);
    expectClose(r.set("input", 0.5).run<miColor>(), mix(middle, high, 0.5));
    EXPECT_TRUE(std::isnan(r.set("input", 0.0).run<miColor>().r));
}

TEST(Colours, ChannelMixer)
{
    Recipe r("vhrChannelMixerColor_v1");
    expectForAll(r, same);
    const std::array<Rgba, 3> weights = {Rgba{0, 0.5, 0.5, 0}, Rgba{1, -1, 0, 0.25}, Rgba{2, 0, 0, 1}};
    r.set("red", color(weights[0])).set("green", color(weights[1])).set("blue", color(weights[2]));
    expectForAll(r, [&](const Rgba& c) {
        const auto sum = [&](const Rgba& w) { return w[0] * c[0] + w[1] * c[1] + w[2] * c[2] + w[3] * c[3]; };
        return Rgba{sum(weights[0]), sum(weights[1]), sum(weights[2]), c[3]};
    });
}

TEST(Colours, ToneMap)
{
    Recipe r("vhrToneMapColor_v1");
    for (const double exposure : {1.0, 3.0}) {
        r.set("exposure", exposure).set("white", 5.0);
        expectForAll(r, [&](const Rgba& c) {
            return byChannel(c, [&](double v) {
                const double x = v * exposure;
                return x * (1 + x / 25) / (1 + x);
            });
        });
    }
    r.set("exposure", 1.0).set("input", miColor{5, 10, 0, 1});
    const miColor white = r.run<miColor>();
    expectClose(white.r, 1);
    EXPECT_GT(white.g, 1);
    EXPECT_EQ(white.b, 0);
}

TEST(Colours, Premultiply)
{
    Recipe r("vhrPremultiplyColor_v1");
    expectForAll(r, [](const Rgba& c) { return byChannel(c, [&](double x) { return x * c[3]; }); });
    EXPECT_EQ(r.set("input", miColor{1, 1, 1, 0}).run<miColor>().r, 0) << "also where alpha is 0";
}

TEST(Colours, InvertMatte)
{
    Recipe r("vhrInvertMatteColor_v1");
    expectForAll(r, [](const Rgba& c) { return Rgba{c[0], c[1], c[2], 1 - c[3]}; });
    r.set("premultiply", true);
    expectForAll(r, [](const Rgba& c) {
        const double a = 1 - c[3];
        return Rgba{c[0] * a, c[1] * a, c[2] * a, a};
    });
}

// The five colours, and straight lines between them.
TEST(Colours, HeatMap)
{
    Recipe r("vhrHeatMapColor_v1");
    r.set("lower", 10.0).set("upper", 50.0);
    const std::array<Rgba, 5> stops = {
        Rgba{0, 0, 1, 1}, {0, 1, 1, 1}, {0, 1, 0, 1}, {1, 1, 0, 1}, {1, 0, 0, 1}};
    for (const double value : range(0, 60, 1)) {
        const double t = 4 * clamp01((value - 10) / 40);
        const auto stop = std::min<std::size_t>(static_cast<std::size_t>(t), 3);
        expectClose(r.set("input", value).run<miColor>(),
                    mix(stops.at(stop), stops.at(stop + 1), t - static_cast<double>(stop)));
    }
    EXPECT_TRUE(std::isnan(r.set("input", noNumber).run<miColor>().g));
}

TEST(Colours, NanMarker)
{
    Recipe r("vhrNanMarkerColor_v1");
    expectForAll(r, same);
    const Rgba marked = {1, 0, 1, 1};
    const Rgba infinite = {0, 1, 1, 1};
    expectClose(r.set("input", miColor{0, noNumber, 0, 1}).run<miColor>(), marked);
    expectClose(r.set("input", miColor{0, 0, 0, noNumber}).run<miColor>(), marked);
    expectClose(r.set("input", miColor{endless, noNumber, 0, 1}).run<miColor>(), marked);
    expectClose(r.set("input", miColor{0, 0, endless, 1}).run<miColor>(), infinite);
    expectClose(r.set("input", miColor{-endless, 0, 0, 1}).run<miColor>(), infinite);
    const float most = std::numeric_limits<float>::max();
    for (const miColor& largest : {miColor{most, most, most, 1}, miColor{-most, -most, -most, 1}})
        EXPECT_EQ(r.set("input", largest).run<miColor>().g, largest.g) << "the largest are numbers";
    EXPECT_EQ(r.set("input", miColor{0.25f, 0, 0, endless}).run<miColor>().r, 0.25f) << "alpha is not marked";
}
