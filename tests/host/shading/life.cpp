// SPDX-License-Identifier: BSD-3-Clause
// Init and exit: order, laziness, failures and threads.
#include "tests/harness/messages.h"
#include "tests/harness/stage.h"

#include <gtest/gtest.h>

#include <barrier>
#include <thread>

namespace {

using namespace test;
using host::Function;
using host::Type;

class LifeTest : public testing::Test {
protected:
    LifeTest()
    {
        const host::Field scalar = field(Type::scalar, "");
        stage.declare("t_life", scalar, {field(Type::string, "name"), field(Type::scalar, "input")});
        stage.declare("t_late", scalar, {field(Type::scalar, "input")});
        for (const char* const name : {"t_whole", "t_throw_init", "t_throw_exit", "t_throw"})
            stage.declare(name, scalar, {});
        stage.symbol<void()>("test_clear")();
    }

    Function& life(const std::string& name, const host::Value& input = value(1))
    {
        return stage.make(name, "t_life", {argument("name", name), argument("input", input)});
    }

    std::string log() { return stage.symbol<const char*()>("test_log")(); }

    Stage stage{TEST_SHADERS};
};

TEST_F(LifeTest, TheWholeProtocolInOrder)
{
    Function& a = life("a");
    Function& b = life("b");
    stage.prepare({&a, &b});
    EXPECT_EQ(log(), "version");
    EXPECT_EQ(stage.run<miScalar>(b), 2);
    EXPECT_EQ(stage.run<miScalar>(b), 2);
    EXPECT_EQ(stage.run<miScalar>(a), 2);
    EXPECT_EQ(log(), "version; init; init b 1; init a 1");
    stage.finish();
    EXPECT_EQ(log(), "version; init; init b 1; init a 1; exit b; exit a; exit");
}

TEST_F(LifeTest, AnInstanceThatIsNeverCalledIsNeverInitialised)
{
    Function& a = life("a");
    Function& b = life("b");
    stage.prepare({&a, &b});
    stage.run<miScalar>(a);
    stage.finish();
    EXPECT_EQ(log(), "version; init; init a 1; exit a; exit");
    stage.prepare({&b});
    stage.finish();
    EXPECT_EQ(log(), "version; init; init a 1; exit a; exit; version") << "no call, no init, no exit";
}

TEST_F(LifeTest, EachRenderingInitialisesAnew)
{
    Function& a = life("a");
    for (int k = 0; k < 2; ++k)
        stage.runAlone<miScalar>(a);
    stage.finish();
    EXPECT_EQ(log(), "version; init; init a 1; exit a; exit; version; init; init a 1; exit a; exit");
}

TEST_F(LifeTest, AnInitMayEvaluateConnectedParametersWhichAreInitialisedFirst)
{
    life("inner");
    life("middle", connection("inner"));
    Function& outer = life("outer", connection("middle"));
    EXPECT_EQ(stage.runAlone<miScalar>(outer), 4);
    EXPECT_EQ(log(), "version; init; init inner 1; init middle 2; init outer 3");
}

TEST_F(LifeTest, WithoutARequestOnlyTheShaderIsInitialised)
{
    stage.runAlone<miScalar>(stage.make("w", "t_whole"));
    stage.finish();
    EXPECT_EQ(log(), "whole; whole exit");
}

TEST_F(LifeTest, ExitsRunAfterAFailureToo)
{
    Function& a = life("a");
    Function& bad = stage.make("bad", "t_throw");
    stage.prepare({&a, &bad});
    stage.run<miScalar>(a);
    EXPECT_THROW(stage.run<miScalar>(bad), host::Error);
    stage.finish();
    EXPECT_EQ(log(), "version; init; init a 1; exit a; exit");
}

TEST_F(LifeTest, AFailedInitIsToldToEveryCallAndHasNoExit)
{
    Function& f = stage.make("f", "t_throw_init");
    stage.prepare({&f});
    for (int k = 0; k < 2; ++k)
        EXPECT_EQ(errorOf([&] { stage.run<miScalar>(f); }),
                  "shader \"f\" (t_throw_init): init failed: bad pattern");
    stage.finish();
    EXPECT_EQ(log(), "throwing; whole exit");
}

TEST_F(LifeTest, AFailedExitBecomesAMessageAndTheOthersGoOn)
{
    Function& f = stage.make("f", "t_throw_exit");
    Function& a = life("a");
    stage.prepare({&f, &a});
    stage.run<miScalar>(f);
    stage.run<miScalar>(a);
    Messages messages;
    stage.finish();
    EXPECT_EQ(log(), "version; init; init a 1; instance exit; exit a; whole exit; exit");
    EXPECT_EQ(messages.count("shader \"f\" (t_throw_exit): exit failed: no way out"), 2);
}

TEST_F(LifeTest, AnExitMayStillEvaluateWhatHasEnded)
{
    life("source");
    Function& late = stage.make("late", "t_late", {argument("input", connection("source"))});
    EXPECT_EQ(stage.runAlone<miScalar>(late), 2);
    stage.finish();
    EXPECT_EQ(log(), "version; init; init source 1; late 2; exit source; exit")
        << "late was initialised first";

    stage.symbol<void()>("test_clear")();
    life("source");
    Function& source = *stage.session.database.findAs<Function>(stage.session.database.lookup("source"));
    Function& again = stage.make("late", "t_late", {argument("input", connection("source"))});
    stage.prepare({&source, &again});
    stage.run<miScalar>(source);
    stage.run<miScalar>(again);
    stage.finish();
    EXPECT_EQ(log(), "version; init; init source 1; exit source; init source 1; late 2; exit source; exit")
        << "initialised anew for the exit, and ended again";
}

TEST_F(LifeTest, ManyThreadsInitialiseAnInstanceOnce)
{
    life("inner");
    life("middle", connection("inner"));
    Function& left = life("left", connection("middle"));
    Function& right = life("right", connection("middle"));
    constexpr int threads = 8;
    stage.prepare({&left, &right});
    std::barrier start(threads);
    std::atomic<int> wrong{0};
    std::vector<std::thread> running;
    for (int number = 0; number < threads; ++number)
        running.emplace_back([&, number] {
            Function& mine = number % 2 ? left : right;
            start.arrive_and_wait();
            for (int k = 0; k < 100; ++k)
                wrong += stage.run<miScalar>(mine) != 4;
        });
    for (std::thread& each : running)
        each.join();
    EXPECT_EQ(wrong, 0);
    const std::string all = log();
    for (const char* const event :
         {"version", "init;", "init inner 1", "init middle 2", "init left 3", "init right 3"}) {
        const std::size_t first = all.find(event);
        ASSERT_NE(first, std::string::npos) << event << " in " << all;
        EXPECT_EQ(all.find(event, first + 1), std::string::npos) << event << " twice in " << all;
    }
}

} // namespace
