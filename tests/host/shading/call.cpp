// SPDX-License-Identifier: BSD-3-Clause
// Calling shaders and evaluating what they are connected to.
#include "host/shading/call.h"

#include "tests/harness/messages.h"
#include "tests/harness/stage.h"

#include <gtest/gtest.h>

namespace {

using namespace test;
using host::Function;
using host::Type;

struct Pair {
    miColor color;
    miScalar mask;
};

class CallTest : public testing::Test {
protected:
    CallTest()
    {
        const host::Field scalar = field(Type::scalar, "");
        stage.declare("t_add", scalar, {field(Type::scalar, "a"), field(Type::scalar, "b")});
        stage.declare("t_asks", scalar, {field(Type::scalar, "a"), field(Type::scalar, "b")});
        stage.declare("t_middle", scalar, {field(Type::scalar, "input")});
        stage.declare("t_pair", structure("", {field(Type::color, "color"), field(Type::scalar, "mask")}),
                      {field(Type::color, "color")});
        stage.declare("t_color", field(Type::color, ""), {field(Type::color, "input")});
        stage.declare("t_cache", field(Type::vector, ""), {field(Type::scalar, "input")});
        for (const char* const name : {"t_raster", "t_false", "t_untouched", "t_throw", "t_throw_number"})
            stage.declare(name, scalar, {});
        for (const char* const name : {"t_pin", "t_unpin"})
            stage.declare(name, scalar, {field(Type::string, "tag")});
        executions();
    }

    /// Executions of counting shaders since it was last asked.
    int executions() { return stage.symbol<int()>("test_executions")(); }

    Stage stage{TEST_SHADERS};
};

TEST_F(CallTest, LiteralsAndConnectionsAreRead)
{
    stage.make("three", "t_add", {argument("a", 1), argument("b", 2)});
    Function& f = stage.make("", "t_add", {argument("a", connection("three")), argument("b", 10)});
    EXPECT_EQ(stage.runAlone<miScalar>(f), 13);
}

TEST_F(CallTest, AskedForWhatIsNotConnectedEvaluationGivesTheFieldItself)
{
    stage.make("three", "t_add", {argument("a", 1), argument("b", 2)});
    Function& one = stage.make("", "t_asks", {argument("a", connection("three")), argument("b", 10)});
    EXPECT_EQ(stage.runAlone<miScalar>(one), 13);
    Function& none = stage.make("", "t_asks", {argument("a", 20), argument("b", 10)});
    EXPECT_EQ(stage.runAlone<miScalar>(none), 30);
}

TEST_F(CallTest, AColorDrivesAScalarByItsRedComponent)
{
    stage.make("c", "t_color", {argument("input", numbers({7, 8, 9, 10}))});
    EXPECT_EQ(stage.runAlone<miScalar>(stage.make("", "t_add", {argument("a", connection("c"))})), 7);
}

TEST_F(CallTest, AStructResultThroughTwoMembersRunsOnce)
{
    stage.make("pair", "t_pair", {argument("color", numbers({1, 2, 3, 4}))});
    Function& f = stage.make(
        "", "t_add", {argument("a", connection("pair.mask")), argument("b", connection("pair.color"))});
    EXPECT_EQ(stage.runAlone<miScalar>(f), 40 + 1);
    EXPECT_EQ(executions(), 2) << "the pair and the add";
}

TEST_F(CallTest, ASharedSourceRunsOnceForOneState)
{
    stage.make("r", "t_raster");
    stage.make("x", "t_add", {argument("a", connection("r")), argument("b", connection("r"))});
    Function& f = stage.make("", "t_add", {argument("a", connection("x")), argument("b", connection("r"))});
    stage.runAlone<miScalar>(f);
    EXPECT_EQ(executions(), 3);
}

TEST_F(CallTest, AChangedStateNeedsAFlush)
{
    stage.make("r", "t_raster");
    Function& f = stage.make("", "t_cache", {argument("input", connection("r"))});
    const miVector v = stage.runAlone<miVector>(f);
    EXPECT_EQ(v.x, 1);
    EXPECT_EQ(v.y, 1) << "the old result, without a flush";
    EXPECT_EQ(v.z, 2);
    EXPECT_EQ(executions(), 2);
}

TEST_F(CallTest, ANewStateStartsEmptyAndTheOldOneKeepsItsResults)
{
    stage.make("r", "t_raster");
    Function& f = stage.make("", "t_add", {argument("a", connection("r"))});
    stage.prepare({&f});
    miTs thread(stage.network(), 0);
    const auto run = [&](miState& state) {
        float result = 0;
        host::call(f, &result, state);
        return result;
    };
    miState outer = stage.firstState(thread);
    const host::StateScope outerScope(outer);
    outer.raster_x = 5;
    EXPECT_EQ(run(outer), 5);
    {
        miState inner = outer;
        const host::StateScope innerScope(inner);
        inner.raster_x = 6;
        EXPECT_EQ(run(inner), 6);
        inner.raster_x = 7;
        EXPECT_EQ(run(inner), 6);
    }
    outer.raster_x = 8;
    EXPECT_EQ(run(outer), 5) << "remembered all the while";
    {
        miState again = outer; // in the memory that the first inner state had
        const host::StateScope innerScope(again);
        EXPECT_EQ(run(again), 8);
    }
}

TEST_F(CallTest, ReturnValuesAreHandedOnAndFalseResultsUsedAsTheyAre)
{
    Function& f = stage.make("f", "t_false");
    Function& user = stage.make("", "t_add", {argument("a", connection("f"))});
    EXPECT_EQ(stage.runAlone<miScalar>(user), 0.5f);
    stage.prepare({&f});
    miTs thread(stage.network(), 0);
    miState state = stage.firstState(thread);
    const host::StateScope scope(state);
    float result = 0;
    EXPECT_EQ(host::call(f, &result, state), miFALSE);
}

TEST_F(CallTest, AConnectedShadersResultStartsAsZero)
{
    stage.make("r", "t_raster");
    stage.make("u", "t_untouched");
    Function& f = stage.make("", "t_add", {argument("a", connection("u")), argument("b", connection("r"))});
    stage.prepare({&f});
    miTs thread(stage.network(), 0);
    for (int k = 0; k < 2; ++k) {
        miState state = stage.firstState(thread);
        const host::StateScope scope(state);
        float result = 0;
        state.raster_x = 3;
        host::call(f, &result, state);
        EXPECT_EQ(result, 3);
    }
}

TEST_F(CallTest, AListRunsOnOneResultAndReturnsTheLastValue)
{
    Function& sets = stage.make("", "t_add", {argument("a", 1)});
    Function& fails = stage.make("", "t_false");
    Function& keeps = stage.make("", "t_untouched");
    stage.prepare({&sets, &fails, &keeps});
    miTs thread(stage.network(), 0);
    miState state = stage.firstState(thread);
    const host::StateScope scope(state);
    const host::Database& db = stage.session.database;
    float result = 0;
    EXPECT_EQ(host::call(db, {fails.tag, sets.tag, keeps.tag}, &result, state), miTRUE);
    EXPECT_EQ(result, 1);
    EXPECT_EQ(host::call(db, {sets.tag, fails.tag}, &result, state), miFALSE);
    EXPECT_EQ(result, 0.5f);
    EXPECT_EQ(host::call(db, {}, &result, state), miFALSE);
}

// ---- state->shader and failures

TEST_F(CallTest, TheStatesShaderIsRestoredAlsoAfterAFailure)
{
    stage.make("t", "t_throw");
    Function& good = stage.make("good", "t_untouched");
    Function& bad = stage.make("", "t_middle", {argument("input", connection("t"))});
    stage.prepare({&good, &bad});
    miTs thread(stage.network(), 0);
    miState state = stage.firstState(thread);
    const host::StateScope scope(state);
    state.shader = good.record();
    float result = 0;
    host::call(good, &result, state);
    EXPECT_EQ(state.shader, good.record());
    EXPECT_THROW(host::call(bad, &result, state), host::Error);
    EXPECT_EQ(state.shader, good.record());
    EXPECT_EQ(host::runningFunction(), nullptr);
    EXPECT_EQ(host::runningThread(), nullptr);
}

TEST_F(CallTest, AnExceptionNamesItsShaderAndPassesThroughOthers)
{
    stage.make("culprit", "t_throw");
    Function& f = stage.make("f", "t_middle", {argument("input", connection("culprit"))});
    EXPECT_EQ(errorOf([&] { stage.runAlone<miScalar>(f); }),
              "shader \"culprit\" (t_throw): execute failed: the shader's own words");
    EXPECT_EQ(errorOf([&] { stage.runAlone<miScalar>(stage.make("n", "t_throw_number")); }),
              "shader \"n\" (t_throw_number): execute failed");
}

TEST_F(CallTest, AShaderOutsideTheNetworkIsTold)
{
    Function& in = stage.make("in", "t_untouched");
    Function& out = stage.make("out", "t_untouched");
    stage.prepare({&in});
    EXPECT_EQ(errorOf([&] { stage.run<miScalar>(out); }),
              "shader \"out\" (t_untouched) is called, but nothing in the scene leads to it");
}

// ---- pins

TEST_F(CallTest, PinsThatAreNotGivenBackAreReportedOnceForEachInstance)
{
    Function& pins = stage.make("pins", "t_pin", {argument("tag", "text")});
    Function& unpins = stage.make("unpins", "t_unpin", {argument("tag", "text")});
    stage.make("inner", "t_pin", {argument("tag", "text")});
    Function& outer = stage.make("outer", "t_middle", {argument("input", connection("inner"))});
    stage.prepare({&pins, &unpins, &outer});
    Messages messages;
    for (int k = 0; k < 3; ++k) {
        stage.run<miScalar>(pins);
        stage.run<miScalar>(outer);
    }
    EXPECT_EQ(messages.lines(),
              (std::vector<std::string>{
                  "RC   0.0  error: shader \"pins\" (t_pin): left 1 database elements pinned",
                  "RC   0.0  error: shader \"inner\" (t_pin): left 1 database elements pinned"}));
    stage.run<miScalar>(unpins);
    EXPECT_EQ(messages.count("shader \"unpins\" (t_unpin): unpinned 1 database elements too many"), 1);
}

} // namespace
