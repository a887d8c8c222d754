// SPDX-License-Identifier: BSD-3-Clause
// Boolean logic: truth tables, results of 0 and 1 only, and how far arrays are evaluated.
#include "tests/harness/call.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <random>

namespace {

using test::Call;
using test::list;

/// Words as operands. Rules that join their bits rather than their truth fail on some pair.
constexpr miInteger words[] = {0, 1, 2, 3, 5, 7, -1, -2, 0x100, 0x10000, static_cast<miInteger>(0x80000000)};

/// Compares a shader with two inputs with its rule for all pairs of words, literal and connected.
template <class Rule>
void expectRule(const char* shader, Rule rule)
{
    Call literal(shader);
    Call connected(shader);
    connected.connectAll();
    for (const miInteger a : words)
        for (const miInteger b : words)
            for (Call* const call : {&literal, &connected}) {
                call->change("input1", a).change("input2", b);
                EXPECT_EQ(call->run<miInteger>(), rule(a != 0, b != 0) ? 1 : 0) << a << ' ' << b;
                EXPECT_EQ(call->returned(), 1);
            }
}

TEST(Boolean, OrIsOnWhenAtLeastOneInputIs)
{
    expectRule("vhOr_v1", [](bool a, bool b) { return a || b; });
}

TEST(Boolean, AndIsOnWhenBothInputsAre)
{
    expectRule("vhAnd_v1", [](bool a, bool b) { return a && b; });
}

TEST(Boolean, XOrIsOnWhenExactlyOneInputIs)
{
    expectRule("vhXOr_v1", [](bool a, bool b) { return a != b; });
}

TEST(Boolean, XOrOf5And7IsOffAndOf5And0IsOne)
{
    Call call("vhXOr_v1");
    EXPECT_EQ(call.change("input1", 5).change("input2", 7).run<miInteger>(), 0);
    EXPECT_EQ(call.change("input1", 5).change("input2", 0).run<miInteger>(), 1);
}

TEST(Boolean, NotIsOnForZeroAlone)
{
    Call literal("vhNot_v1");
    Call connected("vhNot_v1");
    connected.connectAll();
    for (const miInteger word : words)
        for (Call* const call : {&literal, &connected})
            EXPECT_EQ(call->change("input", word).run<miInteger>(), word == 0 ? 1 : 0) << word;
    EXPECT_EQ(literal.change("input", 3).run<miInteger>(), 0);
}

TEST(Boolean, TwoInputsAreBothEvaluatedEvenWhenTheFirstDecides)
{
    for (const auto& [shader, decides] : {std::pair{"vhAnd_v1", false}, {"vhOr_v1", true}}) {
        SCOPED_TRACE(shader);
        Call call(shader);
        call.set("input1", decides).connect("input2");
        call.run<miInteger>();
        EXPECT_EQ(call.trace(), "input2");
    }
}

TEST(Boolean, AnInputThatIsLeftOutDecidesNothing)
{
    for (const char* const shader : {"vhOr_v1", "vhAnd_v1", "vhXOr_v1"})
        for (const char* const given : {"input1", "input2"})
            for (const bool on : {false, true})
                EXPECT_EQ(Call(shader).set(given, on).run<miInteger>(), on ? 1 : 0) << shader << ' ' << given;
}

// ---- arrays

miInteger ofArray(const char* shader, const std::vector<bool>& elements)
{
    return Call(shader).set("input", list(elements)).run<miInteger>();
}

/// Names of the elements of a connected array that a run evaluates.
std::string evaluated(const char* shader, const std::vector<bool>& elements)
{
    Call call(shader);
    call.set("input", list(elements)).connect("input");
    call.run<miInteger>();
    return call.trace();
}

TEST(BooleanArray, OrOfNothingIsOffAndAndOfNothingIsOn)
{
    EXPECT_EQ(ofArray("vhOr_v2", {}), 0);
    EXPECT_EQ(ofArray("vhAnd_v2", {}), 1);
    EXPECT_EQ(Call("vhOr_v2").run<miInteger>(), 0) << "left out";
    EXPECT_EQ(Call("vhAnd_v2").run<miInteger>(), 1) << "left out";
}

TEST(BooleanArray, OrStopsAtTheFirstThatIsOn)
{
    for (const bool behind : {false, true})
        EXPECT_EQ(evaluated("vhOr_v2", {false, true, behind}), "input[0] input[1]");
    EXPECT_EQ(evaluated("vhOr_v2", {true, true}), "input[0]");
    EXPECT_EQ(evaluated("vhOr_v2", {false, false, false}), "input[0] input[1] input[2]");
}

TEST(BooleanArray, AndStopsAtTheFirstThatIsOff)
{
    for (const bool behind : {false, true})
        EXPECT_EQ(evaluated("vhAnd_v2", {true, false, behind}), "input[0] input[1]");
    EXPECT_EQ(evaluated("vhAnd_v2", {false, false}), "input[0]");
    EXPECT_EQ(evaluated("vhAnd_v2", {true, true, true}), "input[0] input[1] input[2]");
}

// The element's shader must not run in init: its value is that of each sample.
TEST(BooleanArray, ASingleConnectedElementIsEvaluatedAtEachSample)
{
    using test::argument;
    using test::connection;
    for (const char* const shader : {"vhOr_v2", "vhAnd_v2"}) {
        Call call(shader);
        call.define("element", "probe_boolean", {argument("name", "element")})
            .set("input", list(connection("element")));
        call.run<miInteger>(); // init comes before it
        host::Function& element = *call.function().connections().at(0).source;
        for (const miInteger word : {1, 0, 2, 0, -1}) {
            *static_cast<miInteger*>(element.parameters()) = word;
            EXPECT_EQ(call.run<miInteger>(), word != 0 ? 1 : 0) << shader << ' ' << word;
            EXPECT_EQ(call.trace(), "element");
        }
    }
}

TEST(BooleanArray, ElementsMayBeConnectedOneByOne)
{
    using test::argument;
    using test::connection;
    Call call("vhAnd_v2");
    call.define("on", "vhNot_v1", {argument("input", false)})
        .define("off", "vhXOr_v1", {argument("input1", true), argument("input2", true)});
    EXPECT_EQ(call.set("input", list(true, connection("on"), true)).run<miInteger>(), 1);
    EXPECT_EQ(call.set("input", list(true, connection("on"), connection("off"))).run<miInteger>(), 0);
}

TEST(BooleanArray, AgreesWithTheRuleForListsOfAnyLength)
{
    std::mt19937 source(41);
    for (int round = 0; round < 300; ++round) {
        const bool decides = source() % 2 != 0; // true: or; false: and
        const char* const shader = decides ? "vhOr_v2" : "vhAnd_v2";
        std::vector<bool> elements(source() % 40);
        for (std::size_t k = 0; k < elements.size(); ++k)
            elements[k] = (source() % 16 == 0) == decides;
        const auto decisive = std::find(elements.begin(), elements.end(), decides);
        const bool decided = decisive != elements.end();
        EXPECT_EQ(ofArray(shader, elements), (decided ? decides : !decides) ? 1 : 0);

        std::string visited;
        const auto end = decided ? decisive + 1 : decisive;
        for (std::ptrdiff_t k = 0; k < end - elements.begin(); ++k)
            visited += (k == 0 ? "input[" : " input[") + std::to_string(k) + ']';
        EXPECT_EQ(evaluated(shader, elements), visited);
    }
}

TEST(BooleanArray, GivesTheSameInManyThreads)
{
    for (const bool last : {false, true}) {
        Call call("vhAnd_v2");
        call.set("input", list(std::vector<bool>{true, true, true, last})).connect("input");
        call.onThreads(8, [last](test::Sample& sample) {
            for (int round = 0; round < 1000; ++round)
                ASSERT_EQ(sample.run<miInteger>(), last ? 1 : 0);
        });
    }
}

} // namespace
