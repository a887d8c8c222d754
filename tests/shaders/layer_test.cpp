// SPDX-License-Identifier: BSD-3-Clause
// Mattes, layers and opacity: against the rule in its plainest form, and what users rely on at its edges.
#include "expect.h"
#include "layer_orders.h"
#include "rules.h"

namespace {

using test::Call;

/// Red, green and blue changed by the operation; alpha is what is given.
template <class Apply>
Components under(const Apply& apply, const Components& color, float alpha)
{
    return {apply(color[0], alpha), apply(color[1], alpha), apply(color[2], alpha), alpha};
}

float kept(float channel, float) { return channel; }
float multiplied(float channel, float alpha) { return channel * alpha; }
float divided(float channel, float alpha) { return channel / alpha; }

Components over(const Inputs& in)
{
    const Components& front = in.at("foreground");
    return each([&](float f, float b) { return f + (1 - front[3]) * b; }, front, in.at("background"));
}

Components withAlpha(const Inputs& in, float alpha)
{
    return under(in.at("premultiply")[0] != 0 ? multiplied : kept, in.at("input"), alpha);
}

std::function<Components(const Inputs&)> byOwnAlpha(float (*apply)(float channel, float alpha))
{
    return [apply](const Inputs& in) {
        const Components& input = in.at("input");
        return input[3] == 0 ? input : under(apply, input, input[3]);
    };
}

Components opaque(const Inputs& in)
{
    return in.at("multiply")[0] != 0 ? each(multiplied, in.at("input"), in.at("opacity")) : in.at("input");
}

std::vector<Rule> rules()
{
    return {
        {"vhOver_v1", over},
        {"vhSetAlpha_v1", [](const Inputs& in) { return withAlpha(in, in.at("alpha")[0]); }},
        {"vhSwitchMatte_v1", [](const Inputs& in) { return withAlpha(in, in.at("matte")[3]); }},
        {"vhMatteMult_v1", byOwnAlpha(multiplied)},
        {"vhMatteDiv_v1", byOwnAlpha(divided)},
        {"vhSetOpacity_v1", opaque},
    };
}

TEST(LayerRules, AreThereForEveryShader) { expectRulesForAll(rules(), layerOrders()); }

class Layer : public testing::TestWithParam<Rule> {};

TEST_P(Layer, AgreesWithTheRule) { expectAgreement(GetParam()); }

INSTANTIATE_TEST_SUITE_P(Of, Layer, testing::ValuesIn(rules()),
                         [](const auto& instance) { return instance.param.shader; });

TEST(LayerEdges, AnOpaqueForegroundHidesTheBackground)
{
    Call call("vhOver_v1");
    call.set("foreground", miColor{0.25f, 2, -3, 1}).set("background", miColor{5, 6, 7, 0.5f});
    expectColor(call.run<miColor>(), {0.25f, 2, -3, 1});
}

TEST(LayerEdges, ThroughATransparentForegroundTheBackgroundIsSeenWithItsAlpha)
{
    Call call("vhOver_v1");
    call.set("foreground", miColor{0, 0, 0, 0}).set("background", miColor{5, 6, 7, 0.5f});
    expectColor(call.run<miColor>(), {5, 6, 7, 0.5f});
}

TEST(LayerEdges, ColourWithoutAlphaIsAddedToTheBackground)
{
    Call call("vhOver_v1");
    call.set("foreground", miColor{1, 2, 3, 0}).set("background", miColor{0.5f, 0.5f, 0.5f, 1});
    expectColor(call.run<miColor>(), {1.5f, 2.5f, 3.5f, 1});
}

TEST(LayerEdges, PremultiplyingWithoutAlphaDoesNotTurnBlack)
{
    for (const float zero : {0.0f, -0.0f})
        for (const char* const shader : {"vhMatteMult_v1", "vhMatteDiv_v1"})
            expectColor(Call(shader).set("input", miColor{0.5f, 0.5f, 0.5f, zero}).run<miColor>(),
                        {0.5f, 0.5f, 0.5f, zero});
}

TEST(LayerEdges, AnAlphaThatIsNoNumberIsNotZero)
{
    for (const char* const shader : {"vhMatteMult_v1", "vhMatteDiv_v1"}) {
        const miColor result = Call(shader).set("input", miColor{1, 2, 3, std::nanf("")}).run<miColor>();
        EXPECT_TRUE(std::isnan(result.r) && std::isnan(result.g) && std::isnan(result.b));
    }
}

TEST(LayerEdges, DividingByAlphaDoesNotClamp)
{
    expectColor(Call("vhMatteDiv_v1").set("input", miColor{0.25f, 0.5f, 0, 0.5f}).run<miColor>(),
                {0.5f, 1, 0, 0.5f});
    expectColor(Call("vhMatteDiv_v1").set("input", miColor{1, 2, -3, 0.5f}).run<miColor>(), {2, 4, -6, 0.5f});
}

TEST(LayerEdges, SettingAlphaAloneLeavesAColourThatWasPremultiplied)
{
    Call call("vhSetAlpha_v1");
    call.set("input", miColor{0.25f, 0.5f, 0.125f, 0.5f}).set("alpha", 0.75f);
    expectColor(call.run<miColor>(), {0.25f, 0.5f, 0.125f, 0.75f});
    call.set("premultiply", true);
    expectColor(call.run<miColor>(), {0.1875f, 0.375f, 0.09375f, 0.75f});
}

TEST(LayerEdges, OnlyTheAlphaOfTheMatteCounts)
{
    Call call("vhSwitchMatte_v1");
    call.set("input", miColor{1, 2, 4, 8}).set("matte", miColor{100, 200, 300, 0.25f});
    expectColor(call.run<miColor>(), {1, 2, 4, 0.25f});
    call.set("premultiply", true);
    expectColor(call.run<miColor>(), {0.25f, 0.5f, 1, 0.25f});
}

TEST(LayerEdges, AnOpacityLeftAloneLetsNothingThrough)
{
    expectColor(
        Call("vhSetOpacity_v1").set("input", miColor{1, 2, 3, 4}).set("multiply", true).run<miColor>(),
        {1, 2, 3, 4});
}

} // namespace
