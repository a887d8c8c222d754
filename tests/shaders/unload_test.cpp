// SPDX-License-Identifier: BSD-3-Clause
// Loading, using and unloading the library over and over, as interactive renderers do.
#include "declare/shaders.h"
#include "entry_points.h"
#include "tests/core/bare_renderer.h"

#include <gtest/gtest.h>

#include <memory>

static bool isLoaded()
{
    void* const handle = dlopen(VHL_LIBRARY, RTLD_NOW | RTLD_NOLOAD);
    if (handle)
        dlclose(handle);
    return handle != nullptr;
}

TEST(Unload, LeavesNothingLoadedAThousandTimes)
{
    const std::vector<VHL::Description> shaders = declare::shaders();
    BareRenderer& renderer = BareRenderer::get();
    ASSERT_FALSE(isLoaded());
    for (std::size_t round = 0; round < 1000; ++round) {
        renderer.reset();
        Block<AnyParams> block;
        {
            const Library library;
            ASSERT_TRUE(isLoaded());
            const EntryPoints shader(library, shaders[round % shaders.size()].name);
            miBoolean request = miFALSE;
            shader.init(&block.state, nullptr, &request);
            shader.init(&block.state, &block.params, &request);
            AnyParams result;
            ASSERT_EQ(shader.execute(&result, &block.state, &block.params), returnedForZeros(shader.name));
            shader.exit(&block.state, &block.params);
            shader.exit(&block.state, nullptr);

            const auto join =
                library.function<char*(char, std::vector<char*>)>("_ZN3VHL4joinEcSt6vectorIPcSaIS1_EE");
            char piece[] = "piece";
            const std::unique_ptr<char, decltype(&std::free)> text(join(',', {piece}), std::free);
            ASSERT_STREQ(text.get(), "piece,");
        }
        ASSERT_FALSE(isLoaded()) << "round " << round;
        ASSERT_TRUE(renderer.hasAllBlocks());
    }
}
