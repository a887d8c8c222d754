// SPDX-License-Identifier: BSD-3-Clause
// Debug: what passes, how often it is told, and under which label. The lines to the byte are in arrays_test.
#include "tests/harness/call.h"
#include "tests/harness/messages.h"

#include <gtest/gtest.h>

#include <cstring>

namespace {

using test::Call;

std::string line(const std::string& text) { return "RC   0.0  info : " + text + " "; }

/// How many of so many calls print.
int printed(Call& call, int calls)
{
    const test::Messages messages;
    for (int k = 0; k < calls; ++k)
        EXPECT_EQ(call.run<miScalar>(), 0.5f) << "the value passes all the same";
    return messages.count("vhDebugScalar : l - 0.500");
}

Call& prepared(Call& call) { return call.set("input", 0.5f).set("name", "l"); }

TEST(Debug, PassesAnyValueBitByBit)
{
    for (const std::uint32_t bits : {0x80000000u, 1u, 0x7F800000u, 0xFF800000u, 0x7FC00000u, 0x7FA12345u}) {
        float number;
        std::memcpy(&number, &bits, sizeof number);
        Call scalar("vhDebugScalar_v1");
        scalar.set("enable", false).change("input", number);
        const float passed = scalar.run<miScalar>();
        EXPECT_EQ(std::memcmp(&passed, &number, sizeof number), 0);

        Call color("vhDebugColor_v1");
        color.change("input", miColor{number, 1, number, 2});
        const miColor c = color.run<miColor>();
        EXPECT_EQ(std::memcmp(&c.r, &number, sizeof number), 0);
        EXPECT_EQ(std::memcmp(&c.b, &number, sizeof number), 0);
        EXPECT_TRUE(c.g == 1 && c.a == 2);
    }
    Call boolean("vhDebugBoolean_v1");
    boolean.change("input", miBoolean{7});
    EXPECT_EQ(boolean.run<miBoolean>(), 7) << "not brought to 1";
}

TEST(Debug, PrintsAllWithoutALimit)
{
    Call off("vhDebugScalar_v1");
    EXPECT_EQ(printed(prepared(off).set("useLimit", false).set("limit", 3), 100), 100);
    Call nought("vhDebugScalar_v1");
    EXPECT_EQ(printed(prepared(nought).set("useLimit", true).set("limit", 0), 100), 100);
}

TEST(Debug, StopsAtTheLimit)
{
    Call call("vhDebugScalar_v1");
    prepared(call).set("useLimit", true).set("limit", 3);
    EXPECT_EQ(printed(call, 2), 2);
    EXPECT_EQ(printed(call, 5), 1);
    EXPECT_EQ(printed(call, 5), 0);
    call.end();
    EXPECT_EQ(printed(call, 5), 3) << "a new instance begins anew";
}

TEST(Debug, PrintsTenLinesWhenNothingIsSaid)
{
    Call call("vhDebugScalar_v1");
    EXPECT_EQ(printed(prepared(call), 20), 10);
}

TEST(Debug, ANegativeLimitPrintsNothing)
{
    for (const int limit : {-1, -2147483647 - 1}) {
        Call call("vhDebugScalar_v1");
        EXPECT_EQ(printed(prepared(call).set("useLimit", true).set("limit", limit), 5), 0);
    }
}

TEST(Debug, WhatIsSwitchedOffCostsNoLine)
{
    Call call("vhDebugScalar_v1");
    prepared(call).set("limit", 2);
    call.change("enable", false);
    EXPECT_EQ(printed(call, 5), 0);
    call.change("enable", true);
    EXPECT_EQ(printed(call, 5), 2);
}

TEST(Debug, LabelAndLimitAreThoseOfInit)
{
    const test::Messages messages;
    Call call("vhDebugVector_v1");
    call.set("input", miVector{1, 2, 3}).set("name", "the %s label").set("limit", 2);
    call.run<miVector>();
    call.change("limit", 100).change("useLimit", false).change("input", miVector{4, 5, -6});
    for (int k = 0; k < 3; ++k)
        call.run<miVector>();
    EXPECT_EQ(messages.lines(),
              (std::vector<std::string>{line("vhDebugVector : the %s label - 1.000 2.000 3.000"),
                                        line("vhDebugVector : the %s label - 4.000 5.000 -6.000")}));
}

TEST(Debug, InstancesHaveABudgetEach)
{
    const test::Messages messages;
    Call call("vhDebugScalar_v1");
    call.define("inner", "vhDebugScalar_v1",
                {test::argument("input", 2), test::argument("name", "inner"), test::argument("limit", 1)});
    call.set("input", test::connection("inner")).set("name", "outer").set("limit", 2);
    for (int k = 0; k < 4; ++k)
        EXPECT_EQ(call.run<miScalar>(), 2);
    EXPECT_EQ(messages.lines(), (std::vector<std::string>{line("vhDebugScalar : inner - 2.000"),
                                                          line("vhDebugScalar : outer - 2.000"),
                                                          line("vhDebugScalar : outer - 2.000")}));
}

TEST(Debug, KeepsNoPointerToItsLabel)
{
    const test::RelocatedStrings moving;
    const std::string label = "a label too long for a short string";
    const test::Messages messages;
    Call boolean("vhDebugBoolean_v1");
    boolean.set("input", true).set("name", label).run<miBoolean>();
    Call scalar("vhDebugScalar_v1");
    scalar.set("name", "s").run<miScalar>();
    Call vector("vhDebugVector_v1");
    vector.set("name", label).run<miVector>();
    Call color("vhDebugColor_v1");
    color.set("name", label).run<miColor>();
    EXPECT_EQ(messages.lines(), (std::vector<std::string>{
                                    line("vhDebugBoolean : " + label + " - 1.0"),
                                    line("vhDebugScalar : s - 0.000"),
                                    line("vhDebugVector : " + label + " - 0.000 0.000 0.000"),
                                    line("vhDebugColor : " + label + " - 0.000 0.000 0.000 0.000"),
                                }));
}

TEST(Debug, ALimitHoldsInManyThreads)
{
    for (const int limit : {1, 100}) {
        const test::Messages messages;
        Call call("vhDebugScalar_v1");
        call.set("name", "l").set("limit", limit);
        call.onThreads(8, [](test::Sample& sample) {
            for (int round = 0; round < 1000; ++round)
                sample.run<miScalar>();
        });
        EXPECT_EQ(messages.count("vhDebugScalar : l - 0.000"), limit);
    }
}

} // namespace
