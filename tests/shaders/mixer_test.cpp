// SPDX-License-Identifier: BSD-3-Clause
// The mixers: weighted sums against the rule in its plainest form, what users rely on at its edges, and what
// is not evaluated.
#include "components.h"
#include "expect.h"
#include "mixer_orders.h"
#include "tests/core/floats.h"
#include "tests/harness/call.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <bit>

namespace {

using test::Call;

std::string numbered(const char* name, int number) { return name + std::to_string(number); }

/// The sum of these, each with its weight, in slots that are on.
float mix(const std::vector<std::pair<float, float>>& inputsAndWeights)
{
    Call call("vhMixerScalar16_v1");
    int number = 0;
    for (const auto& [input, weight] : inputsAndWeights) {
        ++number;
        call.set(numbered("input", number), input).set(numbered("weight", number), weight);
    }
    return call.run<miScalar>();
}

// ---- the rule

struct Mixer {
    const char* kind;
    std::size_t components;
    int slots;

    std::string shader() const { return std::string("vhMixer") + kind + std::to_string(slots) + "_v1"; }
};

std::ostream& operator<<(std::ostream& out, const Mixer& mixer) { return out << mixer.shader(); }

std::vector<Mixer> mixers()
{
    std::vector<Mixer> all;
    for (const int slots : {2, 4, 8, 16}) {
        all.push_back({"Color", 4, slots});
        all.push_back({"Scalar", 1, slots});
        all.push_back({"Vector", 3, slots});
    }
    return all;
}

/// Wide: any bits. Else numbers of one size, so that sums and products round in every place.
class Numbers {
public:
    explicit Numbers(unsigned seed) : any_(seed), source_(seed) {}

    float operator()(bool wide) { return wide ? any_() : static_cast<float>(source_()) * 0x1p-30f - 2; }
    bool coin() { return source_() % 2 != 0; }

private:
    AnyFloat any_;
    std::mt19937 source_;
};

/// Gives a parameter of both calls the same new numbers.
Components change(Call* const (&calls)[2], const std::string& parameter, const Components& values)
{
    for (Call* const call : calls)
        switch (values.size()) {
        case 1:
            call->change(parameter, values[0]);
            break;
        case 3:
            call->change(parameter, std::array{values[0], values[1], values[2]});
            break;
        default:
            call->change(parameter, std::array{values[0], values[1], values[2], values[3]});
        }
    return values;
}

class MixerRule : public testing::TestWithParam<Mixer> {};

TEST_P(MixerRule, IsTheSumOfWeightTimesInputInSlotOrder)
{
    const Mixer& mixer = GetParam();
    Call literal(mixer.shader());
    Call connected(mixer.shader());
    connected.connectAll();
    Call* const calls[] = {&literal, &connected};
    Numbers numbers(static_cast<unsigned>(mixer.slots));
    for (int round = 0; round < 4000; ++round) {
        const bool wide = numbers.coin();
        Components expected(mixer.components, 0.0f);
        for (int slot = 1; slot <= mixer.slots; ++slot) {
            const bool on = numbers.coin() || numbers.coin();
            for (Call* const call : calls)
                call->change(numbered("enable", slot), on);
            Components input(mixer.components);
            std::ranges::generate(input, [&] { return numbers(wide); });
            change(calls, numbered("input", slot), input);
            const float weight = numbers(wide);
            change(calls, numbered("weight", slot), {weight});
            if (!on)
                continue;
            for (std::size_t component = 0; component < input.size(); ++component) {
                const volatile float product = input[component] * weight; // rounded before it is added
                expected[component] = expected[component] + product;
            }
        }
        for (Call* const call : calls) {
            const Components result = run(*call, mixer.components * sizeof(float));
            for (std::size_t component = 0; component < expected.size(); ++component)
                ASSERT_EQ(Exactly{result[component]}, Exactly{expected[component]}) << "round " << round;
            ASSERT_EQ(call->returned(), 1);
        }
    }
}

TEST_P(MixerRule, IsZeroInEveryComponentWhileAllSlotsAreOff)
{
    const Mixer& mixer = GetParam();
    Call literal(mixer.shader());
    Call connected(mixer.shader());
    connected.connectAll();
    Call* const calls[] = {&literal, &connected};
    for (int slot = 1; slot <= mixer.slots; ++slot) {
        for (Call* const call : calls)
            call->change(numbered("enable", slot), false);
        change(calls, numbered("input", slot), Components(mixer.components, slot % 2 ? NaN : -infinity));
        change(calls, numbered("weight", slot), {slot % 2 ? -1.0f : NaN});
    }
    for (Call* const call : calls)
        for (const float component : run(*call, mixer.components * sizeof(float)))
            EXPECT_EQ(Exactly{component}, Exactly{0.0f});
}

// Slots that nobody touches add nothing, and one whose input alone is given counts in full.
TEST_P(MixerRule, NeedsNoMoreThanAnInput)
{
    const Mixer& mixer = GetParam();
    Call call(mixer.shader());
    for (const float component : run(call, mixer.components * sizeof(float)))
        EXPECT_EQ(Exactly{component}, Exactly{0.0f});
    for (int slot = 1; slot <= mixer.slots; ++slot) {
        Call one(mixer.shader());
        const std::string input = numbered("input", slot);
        if (mixer.components == 1)
            one.set(input, 0.7f);
        else if (mixer.components == 3)
            one.set(input, miVector{0.7f, 0.7f, 0.7f});
        else
            one.set(input, miColor{0.7f, 0.7f, 0.7f, 0.7f});
        EXPECT_EQ(run(one, mixer.components * sizeof(float)), Components(mixer.components, 0.7f)) << slot;
    }
}

INSTANTIATE_TEST_SUITE_P(Of, MixerRule, testing::ValuesIn(mixers()),
                         [](const auto& instance) { return instance.param.shader(); });

// ---- the edges

TEST(Mixer, WeightsAreNotBroughtToASumOfOne)
{
    Call call("vhMixerColor2_v1");
    call.set("input1", miColor{1, 1, 1, 1}).set("input2", miColor{1, 1, 1, 1});
    call.set("weight1", 1.0f).set("weight2", 1.0f).set("enable1", true).set("enable2", true);
    expectColor(call.run<miColor>(), {2, 2, 2, 2});
    call.change("enable1", false);
    expectColor(call.run<miColor>(), {1, 1, 1, 1});
}

TEST(Mixer, ANegativeWeightSubtracts)
{
    EXPECT_EQ(mix({{5, 1}, {3, -1}}), 2);
    EXPECT_EQ(mix({{5, 1}, {3, -2}}), -1);
}

TEST(Mixer, NothingIsHeldBetween0And1) { EXPECT_EQ(mix({{3, 10}, {2, 20}}), 70); }

TEST(Mixer, AlphaIsAChannelLikeTheOthers)
{
    Call call("vhMixerColor4_v1");
    call.set("input1", miColor{1, 2, 3, 4}).set("weight1", 0.5f);
    call.set("input3", miColor{10, 20, 30, 0}).set("weight3", 0.25f);
    expectColor(call.run<miColor>(), {3, 6, 9, 2});
}

TEST(Mixer, ASlotThatIsOffHasNoEffectWhateverItsWeightAndValue)
{
    for (const float value : oddFloats)
        for (const float weight : oddFloats) {
            Call call("vhMixerScalar4_v1");
            call.set("input1", 3.0f).set("enable2", false).change("input2", value).change("weight2", weight);
            EXPECT_EQ(call.run<miScalar>(), 3) << value << ' ' << weight;
        }
}

TEST(Mixer, ShadersBehindASlotThatIsOffAreNotCalled)
{
    Call call("vhMixerColor4_v1");
    call.set("enable2", false).connect("input2").connect("weight2");
    call.run<miColor>();
    EXPECT_EQ(call.trace(), "");
    call.change("enable2", true).run<miColor>();
    EXPECT_EQ(call.trace(), "input2 weight2");
}

TEST(Mixer, AWeightOfZeroStillEvaluatesTheInput)
{
    for (const float zero : {0.0f, -0.0f}) {
        Call call("vhMixerColor2_v1");
        call.set("weight1", zero).connect("input1");
        call.run<miColor>();
        EXPECT_EQ(call.trace(), "input1");
    }
    EXPECT_TRUE(std::isnan(mix({{infinity, 0}, {1, 1}})));
    EXPECT_TRUE(std::isnan(mix({{NaN, 0}, {1, 1}})));
}

TEST(Mixer, AnyWordButZeroSwitchesASlotOn)
{
    Call call("vhMixerScalar2_v1");
    call.set("input1", 1.0f).set("input2", 2.0f);
    for (const miInteger word : {1, 2, -1, 0x100, 0x10000, 0x7FFFFFFF, static_cast<int>(0x80000000)})
        EXPECT_EQ(call.change("enable2", word).run<miScalar>(), 3) << word;
    EXPECT_EQ(call.change("enable2", miInteger{0}).run<miScalar>(), 1);
}

TEST(Mixer, SlotsAreAddedOneAfterAnother)
{
    EXPECT_EQ(mix({{1e8f, 1}, {1, 1}, {-1e8f, 1}}), 0) << "1 is lost beside 1e8";
    EXPECT_EQ(mix({{1e8f, 1}, {-1e8f, 1}, {1, 1}}), 1);
    EXPECT_EQ(mix({{1, 1}, {1e8f, 1}, {-1e8f, 1}}), 0);
}

// A fused multiply and add would keep the last bit of the square, 2^-24.
TEST(Mixer, AProductIsRoundedBeforeItIsAdded)
{
    EXPECT_EQ(mix({{-1, 1}, {1 + 0x1p-12f, 1 + 0x1p-12f}}), 0x1p-11f);
}

TEST(Mixer, TheSumBeginsAtZeroSoANegativeZeroIsLost)
{
    EXPECT_EQ(Exactly{mix({{-0.0f, 1}})}, Exactly{0.0f});
    EXPECT_EQ(Exactly{mix({{0, -1}, {-0.0f, 1}})}, Exactly{0.0f});
}

TEST(Mixer, ProductsMayOverflowAndUnderflow)
{
    EXPECT_EQ(mix({{3e38f, 2}}), infinity);
    EXPECT_TRUE(std::isnan(mix({{3e38f, 2}, {3e38f, -2}})));
    EXPECT_EQ(mix({{0x1p-149f, 0.5f}}), 0);
    EXPECT_EQ(mix({{0x1p-149f, 3}}), 3 * 0x1p-149f) << "denormals are not flushed";
}

// ---- what is evaluated

/// Goes through every combination of the switches with everything connected.
void expectOrders(const char* shader, int slots)
{
    Call call(shader);
    call.connectAll();
    for (std::uint32_t on = 0; on < 1u << slots; ++on) {
        for (int slot = 1; slot <= slots; ++slot)
            call.change(numbered("enable", slot), (on >> (slot - 1) & 1) != 0);
        call.run<miScalar>();
        ASSERT_EQ(call.trace(), mixerOrder(slots, on).parameters);
    }
}

TEST(Mixer, EveryCombinationOf8SwitchesEvaluatesTheSlotsThatAreOn) { expectOrders("vhMixerScalar8_v1", 8); }

TEST(Mixer, EveryCombinationOf16SwitchesEvaluatesTheSlotsThatAreOn)
{
    expectOrders("vhMixerScalar16_v1", 16);
}

} // namespace
