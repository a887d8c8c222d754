// SPDX-License-Identifier: BSD-3-Clause
// Blending: the formulas as they are published, by cases, where the networks have none.
#include "tests/recipes/recipe.h"

#include <algorithm>

using namespace test;

namespace {

/// All pairs of colours, at several opacities, against `blend` of each pair of channels.
template <class Blend>
void expectBlend(const std::string& name, Blend blend, double tolerance = 4e-6)
{
    Recipe r(name);
    for (const Rgba& a : colors())
        for (const Rgba& b : colors())
            for (const double opacity : {1.0, 0.25, 0.0, 3.0}) {
                SCOPED_TRACE(testing::PrintToString(a) + testing::PrintToString(b));
                r.set("base", color(a)).set("over", color(b)).set("opacity", opacity);
                Rgba expected = a;
                for (std::size_t k = 0; k < 3; ++k)
                    expected[k] = mix(a[k], blend(a[k], b[k]), opacity);
                expectClose(r.run<miColor>(), expected, tolerance);
            }
}

} // namespace

TEST(Blends, Screen)
{
    expectBlend("vhrScreenColor_v1", [](double a, double b) { return a + b - a * b; });
}

TEST(Blends, Overlay)
{
    expectBlend("vhrOverlayColor_v1",
                [](double a, double b) { return a < 0.5 ? 2 * a * b : 1 - 2 * (1 - a) * (1 - b); });
}

TEST(Blends, SoftLight)
{
    expectBlend("vhrSoftLightColor_v1", [](double a, double b) { return (1 - 2 * b) * a * a + 2 * a * b; });
}

TEST(Blends, Dodge)
{
    // Within 0 and 1 as the source has it; beyond, as the page says.
    expectBlend("vhrDodgeColor_v1", [](double a, double b) {
        return a <= 0 && b >= 1 ? a / 1e-6 : b >= 1 ? 1 : std::min(1.0, a / (1 - b));
    });
}

TEST(Blends, Burn)
{
    expectBlend("vhrBurnColor_v1", [](double a, double b) {
        return b <= 0 ? (a >= 1 ? 1 - (1 - a) / 1e-6 : 0) : 1 - std::min(1.0, (1 - a) / b);
    });
}

TEST(Blends, Difference)
{
    expectBlend("vhrDifferenceColor_v1", [](double a, double b) { return std::fabs(a - b); });
    Recipe r("vhrDifferenceColor_v1");
    r.set("base", miColor{0.5f, 0.25f, 0, 0.5f}).set("over", miColor{0.25f, 0.5f, 0, 1}).set("gain", 8.0);
    expectClose(r.run<miColor>(), {2, 2, 0, 0.5});
}
