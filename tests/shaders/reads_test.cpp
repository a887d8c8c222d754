// SPDX-License-Identifier: BSD-3-Clause
// How shaders read their parameters, seen from the renderer's side of mi_phen_eval. A renderer
// may remember results and so hide a second read; here nothing is remembered.
#include "declare/shaders.h"
#include "entry_points.h"
#include "evaluation_order.h"
#include "tests/core/bare_renderer.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <array>

static VHL::Description description(const std::string& shader)
{
    for (const VHL::Description& each : declare::shaders())
        if (each.name == shader)
            return each;
    throw std::logic_error("no shader " + shader);
}

TEST(Reads, EachConnectedParameterIsEvaluatedOnce)
{
    const Library library;
    BareRenderer& renderer = BareRenderer::get();
    for (const auto& [name, orders] : evaluationOrders()) {
        SCOPED_TRACE(name);
        const EntryPoints shader(library, name);
        const VHL::Description about = description(name);
        for (const Order& order : orders) {
            renderer.reset();
            Block<AnyParams> block;
            for (const VHL::Field& field : about.fields) {
                char& place = block.params.bytes[field.offset];
                block.connect(place);
                const miBoolean on = std::ranges::count(order.on, std::string_view(field.name)) != 0;
                if (field.kind == VHL::Kind::boolean)
                    std::memcpy(&place, &on, sizeof on);
            }
            std::string evaluated;
            renderer.evaluate = [&](void* parameter) {
                for (const VHL::Field& field : about.fields)
                    if (&block.params.bytes[field.offset] == parameter)
                        evaluated +=
                            (evaluated.empty() ? "" : " ") + std::string(std::string_view(field.name));
                return parameter;
            };
            AnyParams result;
            miBoolean request = miFALSE;
            shader.init(&block.state, &block.params, &request);
            shader.execute(&result, &block.state, &block.params);
            shader.exit(&block.state, &block.params);
            EXPECT_EQ(evaluated, order.parameters);
            EXPECT_EQ(std::ranges::count(renderer.calls, "mi_phen_eval"),
                      order.parameters.empty() ? 0 : std::ranges::count(order.parameters, ' ') + 1)
                << "nothing else is evaluated";
        }
    }
}

// A renderer may put every result into the same memory: a shader that kept the address of its first operand
// would subtract the second from itself.
TEST(Reads, ValuesOutliveTheNextEvaluation)
{
    const Library library;
    BareRenderer& renderer = BareRenderer::get();
    for (const char* const name : {"vhSubScalar_v1", "vhSubVector_v1", "vhSubColor_v2"}) {
        SCOPED_TRACE(name);
        const EntryPoints shader(library, name);
        const VHL::Description about = description(name);
        renderer.reset();
        Block<AnyParams> block;
        for (const VHL::Field& field : about.fields) {
            char& place = block.params.bytes[field.offset];
            const miBoolean keepAlpha = miTRUE;
            if (field.kind == VHL::Kind::boolean)
                std::memcpy(&place, &keepAlpha, sizeof keepAlpha);
            else if (field.kind == about.result)
                block.connect(place);
        }
        std::array<float, 4> shared = {2, 20, 200, 2000};
        renderer.evaluate = [&shared](void*) {
            for (float& component : shared)
                component *= 2;
            return static_cast<void*>(&shared);
        };
        std::array<float, 4> result{};
        miBoolean request = miFALSE;
        shader.init(&block.state, &block.params, &request);
        shader.execute(&result, &block.state, &block.params);
        shader.exit(&block.state, &block.params);
        const std::array<float, 4> first = {4, 40, 400, 4000}; // the second is twice that
        for (int i = 0; i < VHL::componentCount(about.result); ++i)
            EXPECT_EQ(result[i], -first[i]) << i;
    }
}

// The shader behind a parameter may take long: what it is read from is not held in memory meanwhile.
TEST(Reads, APatternIsPinnedAfterAllEvaluationsAndNoLonger)
{
    const Library library;
    BareRenderer& renderer = BareRenderer::get();
    for (const char* const name : {"vhReorderColor_v1", "vhReorderVector_v1"}) {
        SCOPED_TRACE(name);
        const EntryPoints shader(library, name);
        renderer.reset();
        Block<AnyParams> block;
        for (const VHL::Field& field : description(name).fields)
            block.connect(block.params.bytes[field.offset]);
        std::array<miTag, 4> connected = {7, 8, 9, 10};
        renderer.evaluate = [&connected](void*) { return static_cast<void*>(&connected); };
        char pattern[] = "10";
        renderer.access = [&pattern](miTag tag) { return tag == 7 ? static_cast<void*>(pattern) : nullptr; };
        miBoolean request = miFALSE;
        shader.init(&block.state, &block.params, &request);
        renderer.calls.clear();
        std::array<float, 4> result{};
        shader.execute(&result, &block.state, &block.params);
        EXPECT_EQ(renderer.calls, (std::vector<std::string>{"mi_query", "mi_phen_eval", "mi_phen_eval",
                                                            "mi_db_access", "mi_db_unpin"}));
        EXPECT_EQ(renderer.pins, (std::map<miTag, int>{{7, 0}}));
        EXPECT_EQ(result[0], 1);
        EXPECT_EQ(result[1], 0);
        shader.exit(&block.state, &block.params);
    }
}

// Other shaders may set opacity too, and the last one counts: it is set when all evaluations are done.
TEST(Reads, OpacityIsSetAfterAllEvaluationsWhateverTheFlagSays)
{
    const Library library;
    BareRenderer& renderer = BareRenderer::get();
    const EntryPoints shader(library, "vhSetOpacity_v1");
    for (const miBoolean multiply : {miFALSE, miTRUE}) {
        SCOPED_TRACE(multiply);
        renderer.reset();
        struct Parameters {
            miColor input, opacity;
            miBoolean multiply;
        };
        Block<Parameters> block;
        block.params = {{1, 2, 3, 4}, {0.5f, 0.25f, 2, -1}, multiply};
        block.connect(block.params.multiply);
        renderer.evaluate = [](void* parameter) { return parameter; };
        miBoolean request = miFALSE;
        shader.init(&block.state, &block.params, &request);
        renderer.calls.clear();
        miColor result{};
        shader.execute(&result, &block.state, &block.params);
        EXPECT_EQ(renderer.calls, (std::vector<std::string>{"mi_query", "mi_phen_eval", "mi_opacity_set"}));
        EXPECT_EQ(renderer.opacity.r, 0.5f);
        EXPECT_EQ(renderer.opacity.g, 0.25f);
        EXPECT_EQ(renderer.opacity.b, 2);
        EXPECT_EQ(renderer.opacity.a, -1);
        EXPECT_EQ(result.a, multiply ? -4 : 4);
        shader.exit(&block.state, &block.params);
    }
}

// The rule that tells a connected parameter from a literal one, as it came out in the built library.
class GhostRule : public testing::Test {
protected:
    GhostRule()
    {
        BareRenderer::get().reset();
        BareRenderer::get().evaluate = [this](void*) { return static_cast<void*>(&connected); };
        block.params = literal;
        miBoolean request = miFALSE;
        shader.init(&block.state, &block.params, &request);
    }
    ~GhostRule() override { shader.exit(&block.state, &block.params); }

    float value()
    {
        float result = 0;
        shader.execute(&result, &block.state, &block.params);
        return result;
    }

    static constexpr float literal = 1;
    float connected = 2;
    Library library;
    EntryPoints shader{library, "vhNullScalar_v1"};
    Block<miScalar> block;
};

TEST_F(GhostRule, TagsZeroAndMinusTwoAreLiteral)
{
    for (const miTag tag : {0u, 0xFFFFFFFEu}) {
        block.connect(block.params, tag);
        EXPECT_EQ(value(), literal) << tag;
    }
}

TEST_F(GhostRule, AnyOtherTagIsConnected)
{
    for (const miTag tag : {1u, 0x7FFFFFFFu, 0x80000000u, 0xFFFFFFFDu, 0xFFFFFFFFu}) {
        block.connect(block.params, tag);
        EXPECT_EQ(value(), connected) << tag;
    }
}

TEST_F(GhostRule, OnlyAGhostFlagOfExactlyOneCounts)
{
    block.connect(block.params);
    for (int flag = 0; flag < 256; ++flag) {
        block.function.ghost_flag = static_cast<miCBoolean>(flag);
        EXPECT_EQ(value(), flag == 1 ? connected : literal) << flag;
    }
}

TEST_F(GhostRule, TheGhostOffsetMayBeNegative)
{
    const auto distance = reinterpret_cast<char*>(&block.before) - reinterpret_cast<char*>(&block.params);
    ASSERT_LT(distance, 0);
    block.connect(block.params); // a tag behind the parameters, where none is looked for now
    block.function.ghost_offs = static_cast<int>(distance);
    EXPECT_EQ(value(), literal);
    block.connect(block.params);
    EXPECT_EQ(value(), connected);
}

TEST_F(GhostRule, TheValueIsWhatTheEvaluationLeadsToAndNotTheField)
{
    block.connect(block.params);
    connected = 3;
    EXPECT_EQ(value(), 3);
    EXPECT_EQ(block.params, literal) << "the block stays as it is";
}
