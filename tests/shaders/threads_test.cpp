// SPDX-License-Identifier: BSD-3-Clause
// One instance in many threads. What is wrong here shows under the thread sanitizer first.
#include "components.h"
#include "evaluation_order.h"
#include "tests/harness/call.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <atomic>
#include <cstring>
#include <latch>

namespace {

using test::Call;

constexpr int threadCount = 8;
constexpr int runs = 1000;

/// Different numbers for all components of all parameters, positive and negative, and all flags alike: off
/// has all alphas read, on what switches guard.
void setParameters(Call& call, bool flags)
{
    float next = 0.3f;
    const auto number = [&next] { return next = -1.3f * next + 0.2f; };
    for (const host::Field& parameter : call.declaration().parameters) {
        if (parameter.type == host::Type::scalar)
            call.set(parameter.name, number());
        else if (parameter.type == host::Type::vector)
            call.set(parameter.name, miVector{number(), number(), number()});
        else if (parameter.type == host::Type::color)
            call.set(parameter.name, miColor{number(), number(), number(), number()});
        else if (parameter.type == host::Type::integer)
            call.set(parameter.name, static_cast<int>(100 * number()));
        else if (parameter.type == host::Type::boolean)
            call.set(parameter.name, flags);
    }
}

/// Runs the call in all threads, which start with its init, then once alone, and compares: the bits, as a
/// word that is an integer may be no number when read as a float.
void expectSameResults(Call& call)
{
    const std::size_t size = call.declaration().result.size;
    std::vector<std::vector<Components>> results(threadCount);
    std::atomic<std::size_t> threads = 0;
    std::latch start(threadCount);
    call.onThreads(threadCount, [&](test::Sample& sample) {
        std::vector<Components>& mine = results[threads++];
        start.arrive_and_wait();
        for (int round = 0; round < runs; ++round)
            mine.push_back(run(sample, size));
    });
    const Components alone = run(call, size);
    const auto sameBits = [&alone](const Components& result) {
        return std::memcmp(result.data(), alone.data(), alone.size() * sizeof(float)) == 0;
    };
    for (const std::vector<Components>& mine : results)
        EXPECT_EQ(std::ranges::count_if(mine, sameBits), runs);
}

TEST(Threads, GiveWhatOneGivesWithLiteralParameters)
{
    for (const Orders& orders : evaluationOrders()) {
        SCOPED_TRACE(orders.shader);
        for (const bool flags : {false, true}) {
            Call call(orders.shader);
            setParameters(call, flags);
            expectSameResults(call);
        }
    }
}

TEST(Threads, GiveWhatOneGivesWithConnectedParameters)
{
    for (const Orders& orders : evaluationOrders()) {
        SCOPED_TRACE(orders.shader);
        for (const bool flags : {false, true}) {
            Call call(orders.shader);
            setParameters(call, flags);
            call.connectAll();
            expectSameResults(call);
        }
    }
}

TEST(Threads, GiveWhatOneGivesInANetwork)
{
    using test::argument;
    using test::connection;
    Call mix("vhMixColor_v2");
    mix.define("shared", "vhConstColor_v2", {argument("input", miColor{0.5f, -2, 3, 0.25f})})
        .define("sum", "vhAddColor_v2",
                {argument("input1", connection("shared")), argument("input2", miColor{1, 2, 3, 4})})
        .define("product", "vhMultColor_v2",
                {argument("input1", connection("shared")), argument("input2", connection("sum")),
                 argument("useAlpha2", false), argument("alpha2", 8.0f)})
        .define("length", "vhVectorNorm_v1", {argument("input", miVector{0, 15, 20})});
    mix.set("input1", connection("sum")).set("input2", connection("product"));
    mix.set("weight", connection("length"));
    expectSameResults(mix);

    // 25% of the way from sum (1.5, 0, 6, 4.25) to product (0.75, 0, 18, 2), exact in binary.
    const miColor result = mix.run<miColor>();
    EXPECT_EQ(result.r, 0.75f * 1.5f + 0.25f * 0.75f);
    EXPECT_EQ(result.g, 0);
    EXPECT_EQ(result.b, 0.75f * 6 + 0.25f * 18);
    EXPECT_EQ(result.a, 0.75f * 4.25f + 0.25f * 2);
}

TEST(Threads, InitAndExitAnInstanceOnce)
{
    Call call("vhAddColor_v2");
    call.record();
    std::latch start(threadCount);
    call.onThreads(threadCount, [&start](test::Sample& sample) {
        start.arrive_and_wait();
        for (int round = 0; round < runs; ++round)
            sample.run<miColor>();
    });
    call.end();
    const std::vector<std::string> events = call.events();
    for (const char* const once : {"version", "init", "init instance", "exit instance", "exit"})
        EXPECT_EQ(std::ranges::count(events, once), 1) << once;
    EXPECT_EQ(std::ranges::count(events, "execute"), threadCount * runs);
    ASSERT_GE(events.size(), 5u);
    EXPECT_EQ(events[1], "init");
    EXPECT_EQ(events[2], "init instance");
    EXPECT_EQ(events.back(), "exit");
}

} // namespace
