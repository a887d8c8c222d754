// SPDX-License-Identifier: BSD-3-Clause
// The function record, the ghost area, and the rule by which shaders read it.
#include "tests/harness/stage.h"

#include <gtest/gtest.h>

#include <cstring>

namespace {

using namespace test;
using host::Type;

class GhostTest : public testing::Test {
protected:
    GhostTest()
    {
        stage.declare("t_add", field(Type::scalar, ""), {field(Type::scalar, "a"), field(Type::scalar, "b")});
        stage.declare("t_color", field(Type::color, ""), {field(Type::color, "input")});
        stage.declare("t_sum", field(Type::scalar, ""), {array(field(Type::scalar, "values"))});
        stage.make("three", "t_add", {argument("a", 1), argument("b", 2)});
    }

    static miTag ghost(host::Function& function, std::size_t offset)
    {
        miTag tag;
        std::memcpy(&tag,
                    static_cast<const char*>(function.parameters()) + function.record()->ghost_offs + offset,
                    sizeof tag);
        return tag;
    }

    Stage stage{TEST_SHADERS};
};

TEST_F(GhostTest, WithoutConnectionsThereIsNoGhostArea)
{
    host::Function& f = stage.make("", "t_add", {argument("a", 1)});
    EXPECT_EQ(f.record()->ghost_flag, 0);
    EXPECT_EQ(f.record()->ghost_offs, 0);
    EXPECT_EQ(f.record()->parameter_size, 8);
    EXPECT_EQ(f.record()->result_size, 4);
    EXPECT_EQ(f.record()->type, miFUNCTION_C);
    EXPECT_EQ(&host::Function::of(f.record()), &f);
}

TEST_F(GhostTest, TheGhostAreaMirrorsTheBlock)
{
    host::Function& f = stage.make("", "t_add", {argument("a", 1), argument("b", connection("three"))});
    EXPECT_EQ(f.record()->ghost_flag, 1);
    EXPECT_EQ(f.record()->ghost_offs, 8) << "the block's size, rounded up to 8";
    EXPECT_EQ(ghost(f, 0), 0u);
    EXPECT_NE(ghost(f, 4), 0u);
    EXPECT_NE(ghost(f, 4), 0xFFFFFFFEu);
}

TEST_F(GhostTest, OnlyTheFirstWordOfAWideFieldCounts)
{
    stage.make("white", "t_color", {argument("input", numbers({1, 1, 1, 1}))});
    host::Function& f = stage.make("", "t_color", {argument("input", connection("white"))});
    EXPECT_NE(ghost(f, 0), 0u);
    for (std::size_t offset = 4; offset < 16; offset += 4)
        EXPECT_EQ(ghost(f, offset), 0u);
}

TEST_F(GhostTest, ArraysHaveAGhostForEachElementButNoneForStartAndCount)
{
    host::Function& f = stage.make("", "t_sum", {argument("values", list(1, connection("three"), 5))});
    ASSERT_EQ(f.record()->parameter_size, 12 + 3 * 4);
    int first = 0;
    std::memcpy(&first, f.parameters(), sizeof first);
    ASSERT_NE(first, 0);
    const std::size_t payload = 8 + 4 * static_cast<std::size_t>(first);
    for (std::size_t offset = 0; offset < 24; offset += 4)
        EXPECT_EQ(ghost(f, offset) != 0, offset == payload + 4) << offset;
    EXPECT_EQ(stage.runAlone<miScalar>(f), 1 + 3 + 5);
}

// Shaders that evaluate the slot itself, to find the elements, must not run what is connected to the first.
TEST_F(GhostTest, ASingleArrayElementThatIsConnectedLeavesTheSlotWithoutAGhost)
{
    host::Function& f = stage.make("", "t_sum", {argument("values", list(connection("three")))});
    EXPECT_EQ(ghost(f, 8), 0u);
    EXPECT_NE(ghost(f, 12), 0u);
    EXPECT_EQ(stage.runAlone<miScalar>(f), 3);
}

// The record with its area may lie anywhere: these are made by hand around an instance's connections.
class HandMadeTest : public GhostTest {
protected:
    struct Before {
        alignas(8) char ghosts[8];
        miFunction record;
    };

    /// What the shader returns when the host calls it with this record.
    float execute(miFunction& record, host::Function& function)
    {
        stage.prepare({&function});
        miTs thread(stage.network(), 0);
        miState state = stage.firstState(thread);
        const host::StateScope scope(state);
        host::call(function, &result_, state); // initialises, and is overwritten below
        state.shader = &record;
        result_ = 0;
        function.shader->execute(&result_, &state, record.parameters, nullptr);
        return result_;
    }

    float result_ = 0;
};

TEST_F(HandMadeTest, TheGhostOffsetIsSigned)
{
    host::Function& f = stage.make("", "t_add", {argument("a", 10), argument("b", connection("three"))});
    Before made{};
    std::memcpy(&made.record, f.record(), sizeof made.record);
    made.record.ghost_offs = -static_cast<int>(offsetof(Before, record) + offsetof(miFunction, parameters));
    const miTag tag = ghost(f, 4);
    std::memcpy(made.ghosts + 4, &tag, sizeof tag);
    EXPECT_EQ(execute(made.record, f), 13);
}

TEST_F(HandMadeTest, MinusTwoAndZeroMeanNotConnected)
{
    host::Function& f = stage.make("", "t_add", {argument("a", 10), argument("b", connection("three"))});
    Before made{};
    std::memcpy(&made.record, f.record(), sizeof made.record);
    made.record.ghost_offs = -static_cast<int>(offsetof(Before, record) + offsetof(miFunction, parameters));
    const float literal = 0.25f;
    std::memcpy(made.record.parameters + 4, &literal, sizeof literal);
    for (const miTag tag : {0u, 0xFFFFFFFEu}) {
        std::memcpy(made.ghosts + 4, &tag, sizeof tag);
        EXPECT_EQ(execute(made.record, f), 10.25f) << tag;
    }
}

TEST_F(HandMadeTest, AFlagOtherThanOneMeansLiteral)
{
    host::Function& f = stage.make("", "t_add", {argument("a", 10), argument("b", connection("three"))});
    for (const int flag : {0, 2, 255}) {
        f.record()->ghost_flag = static_cast<miCBoolean>(flag);
        EXPECT_EQ(stage.runAlone<miScalar>(f), 10) << flag;
    }
}

} // namespace
