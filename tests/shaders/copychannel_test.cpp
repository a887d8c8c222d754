// SPDX-License-Identifier: BSD-3-Clause
// Copy channel against its rule, over all floats and words, and its edges.
#include "tests/core/floats.h"
#include "tests/harness/call.h"

#include <gtest/gtest.h>

#include <array>

namespace {

using test::Call;

struct Color {
    static constexpr const char* shader = "vhCopyChannelColor_v1";
    static constexpr std::array switches{"copyR", "copyG", "copyB", "copyA"};
};

struct Vector {
    static constexpr const char* shader = "vhCopyChannelVector_v1";
    static constexpr std::array switches{"copyX", "copyY", "copyZ"};
};

template <class Kind>
class CopyChannel : public testing::Test {
};
using Kinds = testing::Types<Color, Vector>;
TYPED_TEST_SUITE(CopyChannel, Kinds);

TYPED_TEST(CopyChannel, AgreesWithTheRule)
{
    constexpr std::size_t count = TypeParam::switches.size();
    using Bits = std::array<std::uint32_t, count>;
    static constexpr miInteger words[] = {0, 0, 0, 1, 2, -1, 0x100, static_cast<miInteger>(0x80000000)};
    Call literal(TypeParam::shader);
    Call connected(TypeParam::shader);
    connected.connectAll();
    AnyFloat any(20260301);
    std::mt19937 choice(20260302);
    for (int round = 0; round < 20000; ++round) {
        Bits input, source;
        for (Bits* const bits : {&input, &source})
            for (std::uint32_t& each : *bits)
                each = std::bit_cast<std::uint32_t>(any());
        Bits expected = input;
        std::array<miInteger, count> copy;
        for (std::size_t i = 0; i < count; ++i) {
            copy[i] = words[choice() % std::size(words)];
            if (copy[i] != 0)
                expected[i] = source[i];
        }
        for (Call* const call : {&literal, &connected}) {
            call->change("input", input).change("source", source);
            for (std::size_t i = 0; i < count; ++i)
                call->change(TypeParam::switches[i], copy[i]);
            ASSERT_EQ(call->template run<Bits>(), expected);
            ASSERT_EQ(call->returned(), 1);
        }
    }
}

class CopyChannelEdges : public testing::Test {
protected:
    CopyChannelEdges() { call.set("input", miColor{1, 2, 3, 4}).set("source", miColor{5, 6, 7, 8}); }

    void expect(const miColor& expected)
    {
        const miColor result = call.run<miColor>();
        EXPECT_EQ(result.r, expected.r);
        EXPECT_EQ(result.g, expected.g);
        EXPECT_EQ(result.b, expected.b);
        EXPECT_EQ(result.a, expected.a);
    }

    Call call{"vhCopyChannelColor_v1"};
};

TEST_F(CopyChannelEdges, WithAllSwitchesOffItIsTheInput) { expect({1, 2, 3, 4}); }

TEST_F(CopyChannelEdges, AlphaAlone)
{
    call.set("copyA", true);
    expect({1, 2, 3, 8});
}

TEST_F(CopyChannelEdges, EachChannelIsCopiedOntoItself)
{
    call.set("copyR", true).set("copyB", true);
    expect({5, 2, 7, 4});
}

TEST_F(CopyChannelEdges, TheSourceIsEvaluatedEvenWhenNothingIsCopied)
{
    call.connectAll();
    expect({1, 2, 3, 4});
    EXPECT_EQ(call.trace(), "input source copyR copyG copyB copyA");
}

} // namespace
