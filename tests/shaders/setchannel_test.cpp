// SPDX-License-Identifier: BSD-3-Clause
// Set channel against its rule, over all floats and words, and its edges.
#include "expect.h"
#include "tests/core/floats.h"
#include "tests/harness/call.h"

#include <gtest/gtest.h>

#include <array>

namespace {

using test::Call;

struct Color {
    static constexpr const char* shader = "vhSetChannelColor_v1";
    static constexpr std::string_view names = "RGBA";
};

struct Vector {
    static constexpr const char* shader = "vhSetChannelVector_v1";
    static constexpr std::string_view names = "XYZ";
};

template <class Kind>
class SetChannel : public testing::Test {
};
using Kinds = testing::Types<Color, Vector>;
TYPED_TEST_SUITE(SetChannel, Kinds);

TYPED_TEST(SetChannel, AgreesWithTheRule)
{
    constexpr std::size_t count = TypeParam::names.size();
    using Bits = std::array<std::uint32_t, count>;
    static constexpr miInteger words[] = {0, 0, 0, 1, 2, -1, 0x100, static_cast<miInteger>(0x80000000)};
    Call literal(TypeParam::shader);
    Call connected(TypeParam::shader);
    connected.connectAll();
    AnyFloat any(20260401);
    std::mt19937 choice(20260402);
    const auto bits = [&any] { return std::bit_cast<std::uint32_t>(any()); };
    for (int round = 0; round < 20000; ++round) {
        Bits input;
        for (std::uint32_t& each : input)
            each = bits();
        Bits expected = input;
        for (Call* const call : {&literal, &connected})
            call->change("input", input);
        for (std::size_t i = 0; i < count; ++i) {
            const miInteger set = words[choice() % std::size(words)];
            const std::uint32_t value = bits();
            if (set != 0)
                expected[i] = value;
            for (Call* const call : {&literal, &connected})
                call->change(std::string("set") + TypeParam::names[i], set)
                    .change(std::string("value") + TypeParam::names[i], value);
        }
        for (Call* const call : {&literal, &connected}) {
            ASSERT_EQ(call->template run<Bits>(), expected);
            ASSERT_EQ(call->returned(), 1);
        }
    }
}

TEST(SetChannelEdges, OneComponentAloneAndTheOtherValuesAreNotEvaluated)
{
    Call call("vhSetChannelVector_v1");
    call.set("input", miVector{1, 2, 3}).set("setY", true);
    call.set("valueX", 4).set("valueY", 5).set("valueZ", 6);
    expectVector(call.run<miVector>(), {1, 5, 3});
    call.connect("valueX").connect("valueY").connect("valueZ");
    expectVector(call.run<miVector>(), {1, 5, 3});
    EXPECT_EQ(call.trace(), "valueY");
}

TEST(SetChannelEdges, EachValueIsEvaluatedRightAfterItsSwitch)
{
    Call call("vhSetChannelColor_v1");
    call.set("setR", true).set("setB", true).connectAll();
    call.run<miColor>();
    EXPECT_EQ(call.trace(), "input setR valueR setG setB valueB setA");
}

TEST(SetChannelEdges, WithAllSwitchesOffItIsTheInput)
{
    expectColor(Call("vhSetChannelColor_v1")
                    .set("input", miColor{1, 2, 3, 4})
                    .set("valueR", 5)
                    .set("valueA", 8)
                    .run<miColor>(),
                {1, 2, 3, 4});
}

TEST(SetChannelEdges, AlphaThatIsSetIs1UnlessAnotherValueIsGiven)
{
    Call call("vhSetChannelColor_v1");
    call.set("input", miColor{2, 3, 4, 5}).set("setA", true);
    expectColor(call.run<miColor>(), {2, 3, 4, 1});
    call.set("valueA", 0.5f);
    expectColor(call.run<miColor>(), {2, 3, 4, 0.5f});
}

} // namespace
