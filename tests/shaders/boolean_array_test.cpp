// SPDX-License-Identifier: BSD-3-Clause
// Or and and of arrays in blocks that no host would lay out: where init looks for the elements, and that
// execute relies on what init found.
#include "core/frame.h"
#include "entry_points.h"
#include "tests/core/bare_renderer.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <limits>

/// The parameters with room behind the one element that the declared structure has.
struct _vhOrArrayParams {
    miInteger i_input;
    miInteger n_input;
    miBoolean input[16];
};
struct _vhAndArrayParams : _vhOrArrayParams {};

namespace {

class BooleanArrayBlock : public testing::TestWithParam<const char*> {
protected:
    BooleanArrayBlock()
    {
        BareRenderer::get().reset();
        BareRenderer::get().evaluate = [this](void* parameter) {
            evaluated.push_back(parameter);
            return parameter;
        };
        fill(!decides());
    }

    /// The element's value at which the shader stops, which then is its result.
    static bool decides() { return std::string_view(GetParam()) == "vhOr_v2"; }

    void fill(bool value) { std::ranges::fill(block.params.input, miBoolean(value)); }

    void init()
    {
        miBoolean request = miFALSE;
        shader.init(&block.state, &block.params, &request);
    }
    miInteger execute()
    {
        miBoolean result = -1;
        EXPECT_EQ(shader.execute(&result, &block.state, nullptr), 1)
            << "the parameters do not matter any more";
        return result;
    }
    void exit() { shader.exit(&block.state, &block.params); }

    Library library;
    EntryPoints shader{library, GetParam()};
    Block<_vhOrArrayParams> block;
    std::vector<void*> evaluated;
};

TEST_P(BooleanArrayBlock, ElementsBeginAtTheStartIndexAndAreAsManyAsCounted)
{
    for (int start = 0; start < 12; ++start)
        for (int count = 0; start + count <= 16; ++count)
            for (int decisive = 0; decisive < 16; ++decisive) {
                block.params.i_input = start;
                block.params.n_input = count;
                fill(!decides());
                block.params.input[decisive] = miBoolean(decides());
                const bool among = decisive >= start && decisive < start + count;
                init();
                EXPECT_EQ(execute(), among == decides()) << start << ' ' << count << ' ' << decisive;
                exit();
            }
}

TEST_P(BooleanArrayBlock, AStartBeforeTheStorageIsFollowed)
{
    // The two words before the storage are the start itself and the count, neither of them 0.
    block.params.i_input = -1;
    block.params.n_input = 1;
    init();
    EXPECT_EQ(execute(), 1);
    exit();
}

TEST_P(BooleanArrayBlock, ANegativeCountVisitsNothing)
{
    fill(decides());
    for (const int count : {-1, -5, std::numeric_limits<int>::min()}) {
        block.params.n_input = count;
        init();
        EXPECT_EQ(execute(), !decides()) << count;
        exit();
    }
}

TEST_P(BooleanArrayBlock, WhatInitFoundStays)
{
    block.params.i_input = 2;
    block.params.n_input = 3;
    init();
    block.params.i_input = 7;
    block.params.n_input = 9;
    block.params.input[7] = miBoolean(decides());
    EXPECT_EQ(execute(), !decides()) << "start and count are those of init";
    block.params.input[4] = miBoolean(decides());
    EXPECT_EQ(execute(), decides()) << "but elements are those of now";
    exit();
}

TEST_P(BooleanArrayBlock, InitEvaluatesStartCountAndStorage)
{
    static miInteger start = 3;
    static miInteger count = 2;
    static miBoolean storage[5];
    std::ranges::fill(storage, miBoolean(!decides()));
    storage[4] = miBoolean(decides());
    block.connect(block.params.i_input);
    block.connect(block.params.n_input);
    block.connect(block.params.input[0]);
    BareRenderer::get().evaluate = [this](void* parameter) -> void* {
        evaluated.push_back(parameter);
        return parameter == &block.params.i_input   ? &start
               : parameter == &block.params.n_input ? &count
                                                    : storage;
    };
    init();
    const std::vector<void*> all = {&block.params.i_input, &block.params.n_input, &block.params.input[0]};
    EXPECT_EQ(evaluated, all);
    block.function.ghost_flag = 0; // the other storage has no ghost tags
    EXPECT_EQ(execute(), decides());
    storage[4] = miBoolean(!decides());
    EXPECT_EQ(execute(), !decides());
    EXPECT_EQ(evaluated, all);
    exit();
}

TEST_P(BooleanArrayBlock, ElementsAreEvaluatedOneByOneUpToTheOneThatDecides)
{
    block.params.i_input = 3;
    block.params.n_input = 5;
    for (miBoolean& element : block.params.input)
        block.connect(element);
    block.connect(block.params.input[0], 0); // the slot, which is no element here
    block.params.input[5] = miBoolean(decides());
    init();
    EXPECT_TRUE(evaluated.empty());
    execute();
    EXPECT_EQ(evaluated,
              (std::vector<void*>{&block.params.input[3], &block.params.input[4], &block.params.input[5]}));
    exit();
}

/// The exit of the shader's object alone, which outlives it here. Reached as the frame does: by user slot and
/// cell.
template <class Params>
void exitObject(miState* state)
{
    using Shader = VHL::dMentalRayShader<miBoolean, Params, 2>;
    (*static_cast<Shader**>(BareRenderer::get().userSlot))->exit(state, nullptr);
}

TEST_P(BooleanArrayBlock, ExitForgetsTheElements)
{
    block.params.n_input = 16;
    fill(decides());
    init();
    EXPECT_EQ(execute(), decides());
    decides() ? exitObject<_vhOrArrayParams>(&block.state) : exitObject<_vhAndArrayParams>(&block.state);
    EXPECT_EQ(execute(), !decides()) << "as of an empty array";
    exit();
}

INSTANTIATE_TEST_SUITE_P(Of, BooleanArrayBlock, testing::Values("vhOr_v2", "vhAnd_v2"),
                         [](const auto& instance) { return std::string(instance.param); });

} // namespace
