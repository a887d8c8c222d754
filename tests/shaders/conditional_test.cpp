// SPDX-License-Identifier: BSD-3-Clause
// If, then, else: which branch is taken, that it comes out unchanged, and that the other one is left alone.
#include "expect.h"
#include "tests/core/floats.h"
#include "tests/harness/call.h"

#include <gtest/gtest.h>

#include <array>
#include <bit>
#include <cstdint>

namespace {

using test::Call;

/// Words that are on.
constexpr miInteger onWords[] = {1, 2, -1, 0x100, 0x10000, 0x7FFFFFFF, static_cast<miInteger>(0x80000000)};

miColor choose(bool condition)
{
    return Call("vhIfThenElseColor_v1")
        .set("condition", condition)
        .set("ifTrue", miColor{1, 2, 3, 0.25f})
        .set("ifFalse", miColor{10, 20, 30, 7})
        .run<miColor>();
}

TEST(Conditional, GivesIfTrueWhileTheConditionIsOn) { expectColor(choose(true), {1, 2, 3, 0.25f}); }

TEST(Conditional, GivesIfFalseWhileTheConditionIsOff) { expectColor(choose(false), {10, 20, 30, 7}); }

TEST(Conditional, AnyWordButZeroIsOn)
{
    Call literal("vhIfThenElseScalar_v1");
    Call connected("vhIfThenElseScalar_v1");
    connected.connectAll();
    for (Call* const call : {&literal, &connected}) {
        call->set("ifTrue", 5.0f).set("ifFalse", 7.0f);
        for (const miInteger word : onWords)
            EXPECT_EQ(call->change("condition", word).run<miScalar>(), 5) << word;
        EXPECT_EQ(call->change("condition", miInteger{0}).run<miScalar>(), 7);
    }
}

TEST(Conditional, AShaderBehindIfFalseIsNotCalledWhileTheConditionIsOn)
{
    for (const miInteger word : onWords) {
        Call call("vhIfThenElseColor_v1");
        call.connect("ifFalse").change("condition", word);
        call.run<miColor>();
        EXPECT_EQ(call.trace(), "") << word;
    }
}

TEST(Conditional, AShaderBehindIfTrueIsNotCalledWhileTheConditionIsOff)
{
    Call call("vhIfThenElseColor_v1");
    call.set("condition", false).connect("ifTrue");
    call.run<miColor>();
    EXPECT_EQ(call.trace(), "");
}

// A condition that changes from sample to sample calls, at each, the branch of that sample.
TEST(Conditional, TheBranchFollowsTheConditionFromSampleToSample)
{
    Call call("vhIfThenElseVector_v1");
    call.connectAll();
    for (const bool condition : {true, false, false, true, true}) {
        call.change("condition", condition).run<miVector>();
        EXPECT_EQ(call.trace(), condition ? "condition ifTrue" : "condition ifFalse");
    }
}

TEST(Conditional, GuardsEverythingBehindTheBranchThatIsNotTaken)
{
    using test::argument;
    using test::connection;
    Call call("vhIfThenElseScalar_v1");
    call.define("probe", "probe_scalar", {argument("value", 3.0f), argument("name", "guarded")})
        .define("sum", "vhAddScalar_v1", {argument("input1", connection("probe")), argument("input2", 4.0f)})
        .set("ifTrue", connection("sum"))
        .set("ifFalse", 1.0f);
    EXPECT_EQ(call.run<miScalar>(), 1);
    EXPECT_EQ(call.trace(), "");
    EXPECT_EQ(call.change("condition", true).run<miScalar>(), 7);
    EXPECT_EQ(call.trace(), "guarded");
}

TEST(Conditional, ConditionsAloneMakeAMask)
{
    Call call("vhIfThenElseColor_v1");
    expectColor(call.set("condition", true).run<miColor>(), {1, 1, 1, 1});
    expectColor(call.set("condition", false).run<miColor>(), {0, 0, 0, 0});
}

/// Both branches any bits, NaNs that signal among them: what is taken comes out to the bit, alpha included.
template <std::size_t Count>
void expectUnchanged(const char* shader)
{
    using Bits = std::array<std::uint32_t, Count>;
    std::mt19937 source(31);
    AnyFloat numbers(37);
    Call literal(shader);
    Call connected(shader);
    connected.connectAll();
    for (int round = 0; round < 20'000; ++round) {
        const bool any = source() % 2 != 0;
        Bits branches[2];
        for (Bits& branch : branches)
            for (std::uint32_t& bits : branch)
                bits = any ? static_cast<std::uint32_t>(source()) : std::bit_cast<std::uint32_t>(numbers());
        const bool condition = source() % 2 != 0;
        for (Call* const call : {&literal, &connected}) {
            call->change("condition", condition).change("ifTrue", branches[0]).change("ifFalse", branches[1]);
            ASSERT_EQ(call->run<Bits>(), branches[condition ? 0 : 1]);
            ASSERT_EQ(call->returned(), 1);
        }
    }
}

TEST(Conditional, PassesScalarsUnchanged) { expectUnchanged<1>("vhIfThenElseScalar_v1"); }
TEST(Conditional, PassesVectorsUnchanged) { expectUnchanged<3>("vhIfThenElseVector_v1"); }
TEST(Conditional, PassesColorsUnchangedWithTheirAlpha) { expectUnchanged<4>("vhIfThenElseColor_v1"); }

} // namespace
