// SPDX-License-Identifier: BSD-3-Clause
// The four entry points of every exported shader, from the list of export lines.
#include "declare/shaders.h"
#include "entry_points.h"
#include "tests/core/bare_renderer.h"

#include <gtest/gtest.h>

/// Runs a check on each shader with a renderer as new.
template <class Check>
static void forEachShader(Check check)
{
    const Library library;
    for (const VHL::Description& description : declare::shaders()) {
        SCOPED_TRACE(description.name);
        BareRenderer& renderer = BareRenderer::get();
        renderer.reset();
        Block<AnyParams> block;
        check(description, EntryPoints(library, description.name), renderer, block);
    }
}

TEST(Protocol, VersionIsTheOneInTheName)
{
    forEachShader([](const VHL::Description& description, const EntryPoints& shader, auto&, auto&) {
        EXPECT_EQ(shader.version(), description.version);
        const int named = std::stoi(shader.name.substr(shader.name.rfind("_v") + 2));
        EXPECT_EQ(shader.version(), shader.name == "vhSwitchColor_v4" ? 3 : named);
    });
}

TEST(Protocol, InitOfTheShaderAsksForInstancesAndTouchesNoUserSlot)
{
    forEachShader([](auto&, const EntryPoints& shader, BareRenderer& renderer, Block<AnyParams>& block) {
        miBoolean request = miFALSE;
        shader.init(&block.state, nullptr, &request);
        EXPECT_EQ(request, 1);
        EXPECT_TRUE(renderer.calls.empty());
        EXPECT_EQ(renderer.userSlot, nullptr);
    });
}

TEST(Protocol, ExitOfTheShaderTouchesNoUserSlot)
{
    forEachShader([](auto&, const EntryPoints& shader, BareRenderer& renderer, Block<AnyParams>& block) {
        shader.exit(&block.state, nullptr);
        EXPECT_TRUE(renderer.calls.empty());
    });
}

TEST(Protocol, InstanceTakesOneCellAndGivesItBack)
{
    forEachShader([](const VHL::Description& description, const EntryPoints& shader, BareRenderer& renderer,
                     Block<AnyParams>& block) {
        miBoolean request = miFALSE;
        shader.init(&block.state, &block.params, &request);
        EXPECT_EQ(request, 0);
        const std::vector<BareRenderer::Block> cell = {{std::string(description.unit), description.line, 8}};
        const int more = static_cast<int>(bytesBesidesTheCell(shader.name));
        std::erase_if(renderer.allocated, [more](const BareRenderer::Block& b) { return b.size == more; });
        EXPECT_EQ(renderer.allocated, cell);
        void* const slot = renderer.userSlot;
        ASSERT_NE(slot, nullptr);

        AnyParams result;
        EXPECT_EQ(shader.execute(&result, &block.state, &block.params), returnedForZeros(shader.name));

        shader.exit(&block.state, &block.params);
        EXPECT_EQ(
            std::erase_if(renderer.released, [more](const BareRenderer::Block& b) { return b.size == more; }),
            more > 0 ? 1u : 0u);
        EXPECT_EQ(renderer.released, cell);
        EXPECT_EQ(renderer.userSlot, slot) << "the renderer discards it";
        for (const auto& [tag, pins] : renderer.pins)
            EXPECT_EQ(pins, tag == miNULLTAG ? pins : 0) << tag;
        std::erase_if(renderer.calls, [](const std::string& call) {
            return call != "mi_query" && !call.starts_with("mi_mem_");
        });
        std::vector<std::string> calls = {"mi_query", "mi_mem_int_allocate", "mi_query", "mi_query",
                                          "mi_mem_int_release"};
        if (more > 0) {
            calls.insert(calls.begin() + 2, "mi_mem_int_allocate");
            calls.emplace_back("mi_mem_int_release");
        }
        EXPECT_EQ(renderer.calls, calls);
    });
}
