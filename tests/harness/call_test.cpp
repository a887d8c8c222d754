// SPDX-License-Identifier: BSD-3-Clause
// The harness is what other tests rely on: that it sees what it claims to see.
#include "tests/harness/call.h"

#include "host/api/memory.h"

#include <gtest/gtest.h>

#include <atomic>

namespace {

using namespace test;

std::size_t blocksInUse()
{
    std::size_t blocks = 0;
    for (const host::MemoryUse& use : host::memoryInUse())
        blocks += use.blocks;
    return blocks;
}

TEST(Call, ValuesThatAreSetAreReadAndTheRestHasItsDefault)
{
    Call add("vhAddScalar_v1");
    add.set("input1", 1.5f).set("input2", 2);
    EXPECT_EQ(add.run<miScalar>(), 3.5f);
    EXPECT_EQ(add.returned(), 1);
    EXPECT_EQ(add.trace(), "") << "nothing is connected";

    Call color("vhAddColor_v2");
    color.set("input1", miColor{1, 2, 3, 4}).set("useAlpha2", false).set("alpha2", .5);
    const miColor sum = color.run<miColor>();
    EXPECT_EQ(sum.b, 3);
    EXPECT_EQ(sum.a, 4.5f);
}

TEST(Call, ProbesTellWhatIsEvaluatedInWhichOrder)
{
    Call add("vhAddColor_v2");
    add.set("useAlpha1", true).set("useAlpha2", false).connectAll();
    add.run<miColor>();
    EXPECT_EQ(add.trace(), "input1 input2 useAlpha1 useAlpha2 alpha2");
    add.set("useAlpha2", true);
    add.run<miColor>();
    EXPECT_EQ(add.trace(), "input1 input2 useAlpha1 useAlpha2");
}

TEST(Call, AProbeReturnsWhatWasSetOrTheDefault)
{
    Call add("vhAddColor_v2");
    add.set("input1", miColor{1, 2, 3, 4}).set("useAlpha2", false).connectAll();
    const miColor sum = add.run<miColor>();
    EXPECT_EQ(sum.r, 1);
    EXPECT_EQ(sum.a, 4 + 1) << "alpha2 is 1 by default";
}

TEST(Call, SingleParametersCanBeConnected)
{
    Call add("vhAddScalar_v1");
    add.set("input1", 1).set("input2", 2).connect("input2");
    EXPECT_EQ(add.run<miScalar>(), 3);
    EXPECT_EQ(add.trace(), "input2");
}

TEST(Call, NetworksCanBeBuilt)
{
    Call add("vhAddScalar_v1");
    EXPECT_THROW(add.define("unknown", "vhAddScalar_v1", {argument("input3", 3)}), host::Error);

    Call outer("vhAddScalar_v1");
    outer.define("p", "probe_scalar", {argument("value", 4), argument("name", "leaf")})
        .define("inner", "vhAddScalar_v1", {argument("input1", 3), argument("input2", connection("p"))})
        .set("input1", connection("inner"))
        .set("input2", connection("p"));
    EXPECT_EQ(outer.run<miScalar>(), 3 + 4 + 4);
    EXPECT_EQ(outer.trace(), "leaf") << "its result is remembered for the second reader";
}

TEST(Call, ValuesChangeBetweenRunsOfOneInstance)
{
    Call add("vhAddScalar_v1");
    add.record();
    add.set("input2", 1).connect("input2");
    for (int k = 0; k < 3; ++k) {
        add.change("input1", static_cast<float>(k)).change("input2", 10.0f * static_cast<float>(k));
        EXPECT_EQ(add.run<miScalar>(), 11.0f * static_cast<float>(k));
        EXPECT_EQ(add.trace(), "input2");
    }
    EXPECT_EQ(add.events(), (std::vector<std::string>{"version", "init", "init instance", "execute",
                                                      "execute", "execute"}));
}

TEST(Call, TheProtocolAndItsMemoryAreSeen)
{
    const std::size_t blocks = blocksInUse();
    Call add("vhAddScalar_v1");
    add.record();
    add.run<miScalar>();
    EXPECT_EQ(blocksInUse(), blocks + 1) << "an instance has one cell";
    add.end();
    EXPECT_EQ(add.events(), (std::vector<std::string>{"version", "init", "init instance", "execute",
                                                      "exit instance", "exit"}));
    EXPECT_EQ(blocksInUse(), blocks);
    add.run<miScalar>();
    add.set("input1", 1);
    EXPECT_EQ(add.events().size(), 12u) << "setting a value ends the instance";
}

TEST(Call, ThreadsShareTheInstanceAndHaveTracesOfTheirOwn)
{
    Call add("vhAddScalar_v1");
    add.set("input1", 2).set("input2", 3).connectAll();
    std::atomic<int> good{0};
    add.onThreads(8, [&](Sample& sample) {
        for (int k = 0; k < 100; ++k)
            good += sample.run<miScalar>() == 5 && sample.trace() == "input1 input2";
    });
    EXPECT_EQ(good, 800);
    EXPECT_THROW(add.onThreads(2, [](Sample& sample) { sample.run<miColor>(); }), std::logic_error);
}

TEST(Call, ItsStateIsTheOneThatTheShaderSees)
{
    static const auto execute = +[](void* result, miState* state, void*, void*) -> miBoolean {
        *static_cast<miScalar*>(result) = state->raster_x;
        state->raster_y = 7;
        return 2;
    };
    Call call("vhAddScalar_v1");
    host::Shader& shader = Call::session().libraries.resolve(call.declaration());
    const host::Shader::Execute original = std::exchange(shader.execute, execute);
    call.state().raster_x = 12;
    EXPECT_EQ(call.run<miScalar>(), 12);
    EXPECT_EQ(call.state().raster_y, 7);
    EXPECT_EQ(call.returned(), 2);
    shader.execute = original;
}

TEST(Call, AShaderThatKeepsAPointerIsSeenWhereStringsMove)
{
    Call keeper("probe_keeper");
    keeper.set("text", "a string");
    EXPECT_EQ(keeper.run<miBoolean>(), miTRUE) << "they stay, as the renderer promises";
    EXPECT_EQ(keeper.run<miBoolean>(), miTRUE);
    keeper.end();
    {
        const RelocatedStrings moving;
        EXPECT_EQ(keeper.run<miBoolean>(), miFALSE);
        EXPECT_EQ(keeper.run<miBoolean>(), miFALSE);
        keeper.end();
    }
    EXPECT_EQ(keeper.run<miBoolean>(), miTRUE);
}

TEST(Call, ParametersStayWhereStringsMove)
{
    const RelocatedStrings moving;
    Call keeper("probe_keeper");
    keeper.set("text", "a string");
    const void* const block = keeper.function().parameters();
    keeper.run<miBoolean>();
    EXPECT_EQ(keeper.function().parameters(), block);
}

TEST(Call, MistakesInATestAreTold)
{
    EXPECT_THROW(Call("vhNothing_v1"), std::logic_error);
    Call add("vhAddScalar_v1");
    EXPECT_THROW(add.set("input3", 1), std::logic_error);
    EXPECT_THROW(add.connect("input3"), std::logic_error);
    EXPECT_THROW(add.change("input1", miVector{}), std::logic_error);
    EXPECT_THROW(add.run<miColor>(), std::logic_error);
    add.set("input1", "text");
    EXPECT_THROW(add.run<miScalar>(), host::Error);
}

} // namespace
