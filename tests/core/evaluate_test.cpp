// SPDX-License-Identifier: BSD-3-Clause
#include "core/evaluate.h"

#include "bare_renderer.h"

#include <gtest/gtest.h>

#include <array>

enum Switch { off, on };

struct Params {
    miColor color;
    miVector vector;
    miScalar scalar;
    miBoolean boolean;
    miInteger integer;
    miTag tag;
    Switch choice;
};

static_assert(std::is_same_v<VHL::Value<miColor>, VHL::dColor>);
static_assert(std::is_same_v<VHL::Value<miVector>, VHL::dVector>);
static_assert(std::is_same_v<VHL::Value<miScalar>, VHL::dScalar>);
static_assert(std::is_same_v<VHL::Value<miInteger>, int>);
static_assert(std::is_same_v<VHL::Value<miTag>, unsigned>);
static_assert(std::is_same_v<VHL::Value<Switch>, int>);

class Evaluate : public testing::Test {
protected:
    void SetUp() override
    {
        renderer.reset();
        renderer.evaluate = [this](void* parameter) {
            evaluated = parameter;
            return static_cast<void*>(&connected);
        };
        block.params.scalar = 1;
    }

    float scalar() { return VHL::evaluate(&block.state, block.params.scalar); }

    BareRenderer& renderer = BareRenderer::get();
    Block<Params> block;
    float connected = 2;
    void* evaluated = nullptr;
};

TEST_F(Evaluate, IsLiteralUnlessTheGhostFlagIsExactlyOne)
{
    block.connect(block.params.scalar);
    for (int flag = 0; flag < 256; ++flag) {
        block.function.ghost_flag = static_cast<miCBoolean>(flag);
        EXPECT_EQ(scalar(), flag == 1 ? 2 : 1) << flag;
    }
    EXPECT_EQ(renderer.calls.size(), 1u);
    EXPECT_EQ(evaluated, &block.params.scalar);
}

TEST_F(Evaluate, IsLiteralForTheTwoEmptyGhostTags)
{
    for (const miTag tag : {0u, 0xFFFFFFFEu}) {
        block.connect(block.params.scalar, tag);
        EXPECT_EQ(scalar(), 1) << tag;
    }
    EXPECT_TRUE(renderer.calls.empty());
}

TEST_F(Evaluate, AnyOtherGhostTagMeansConnected)
{
    for (const miTag tag : {1u, 2u, 0x7FFFFFFFu, 0x80000000u, 0xFFFFFFFDu, 0xFFFFFFFFu}) {
        block.connect(block.params.scalar, tag);
        EXPECT_EQ(scalar(), 2) << tag;
    }
}

TEST_F(Evaluate, GhostTagsMayLieBeforeTheParameters)
{
    const auto distance = reinterpret_cast<char*>(&block.before) - reinterpret_cast<char*>(&block.params);
    ASSERT_LT(distance, 0);
    block.function.ghost_offs = static_cast<int>(distance);
    block.function.ghost_flag = 1;
    EXPECT_EQ(scalar(), 1);
    block.connect(block.params.scalar);
    EXPECT_EQ(scalar(), 2);
}

TEST_F(Evaluate, OnlyTheParametersOwnTagCounts)
{
    block.connect(block.params.boolean);
    block.connect(block.params.vector);
    EXPECT_EQ(scalar(), 1);
}

TEST_F(Evaluate, EveryReadEvaluatesAnew)
{
    block.connect(block.params.scalar);
    EXPECT_EQ(scalar(), 2);
    connected = 3;
    EXPECT_EQ(scalar(), 3);
    EXPECT_EQ(renderer.calls, (std::vector<std::string>{"mi_phen_eval", "mi_phen_eval"}));
}

// A renderer may put every result into the same memory: references that outlive the next read would all see
// the last one.
TEST_F(Evaluate, CopiesTheValueAtOnce)
{
    Params& p = block.params;
    block.connect(p.scalar);
    block.connect(p.vector);
    block.connect(p.color);
    std::array<float, 4> result{};
    renderer.evaluate = [&result](void*) {
        for (float& component : result)
            ++component;
        return static_cast<void*>(&result);
    };
    const auto expectTwoValues = [this](auto& field) {
        auto&& first = VHL::evaluate(&block.state, field);
        auto&& second = VHL::evaluate(&block.state, field);
        const std::remove_reference_t<decltype(field)> values[] = {first, second};
        std::array<float, sizeof field / sizeof(float)> before, after;
        std::memcpy(&before, &values[0], sizeof before);
        std::memcpy(&after, &values[1], sizeof after);
        for (std::size_t i = 0; i < before.size(); ++i)
            EXPECT_EQ(after[i] - before[i], 1) << i;
    };
    expectTwoValues(p.scalar);
    expectTwoValues(p.vector);
    expectTwoValues(p.color);
}

TEST_F(Evaluate, ReadsEveryType)
{
    Params& p = block.params;
    p = {{1, 2, 3, 4}, {5, 6, 7}, 8, 9, -10, 0xFFFFFFFF, on};
    const miColor color = VHL::evaluate(&block.state, p.color);
    const miVector vector = VHL::evaluate(&block.state, p.vector);
    EXPECT_EQ(std::memcmp(&color, &p.color, sizeof color), 0);
    EXPECT_EQ(std::memcmp(&vector, &p.vector, sizeof vector), 0);
    EXPECT_EQ(VHL::evaluate(&block.state, p.scalar), 8.0f);
    EXPECT_EQ(VHL::evaluate(&block.state, p.boolean), 9);
    EXPECT_EQ(VHL::evaluate(&block.state, p.integer), -10);
    EXPECT_EQ(VHL::evaluate(&block.state, p.tag), 0xFFFFFFFFu);
    EXPECT_EQ(VHL::evaluate(&block.state, p.choice), 1);
}

TEST_F(Evaluate, ReadsTheWholeWordOfAnEnumeration)
{
    const int word = 7;
    std::memcpy(&block.params.choice, &word, sizeof word);
    EXPECT_EQ(VHL::evaluate(&block.state, block.params.choice), 7);
}

TEST_F(Evaluate, AddressIsTheFieldOrTheResult)
{
    EXPECT_EQ(VHL::evaluateAddress(&block.state, block.params.scalar), &block.params.scalar);
    block.connect(block.params.scalar);
    EXPECT_EQ(VHL::evaluateAddress(&block.state, block.params.scalar), &connected);
    renderer.evaluate = [](void*) { return nullptr; };
    EXPECT_EQ(VHL::evaluateAddress(&block.state, block.params.scalar), nullptr);
}
