// SPDX-License-Identifier: BSD-3-Clause
// vhIsObject_v1: whether the shaded instance bears a name.
#include "named_instances.h"
#include "tests/harness/messages.h"

#include <gtest/gtest.h>

#include <latch>
#include <map>
#include <mutex>

namespace {

using test::Call;
using test::leafOf;

int answer(Call& call, miTag instance)
{
    call.state().instance = instance;
    const miBoolean result = call.run<miBoolean>();
    EXPECT_EQ(call.returned(), 1);
    return result;
}

TEST(IsObject, UpperAndLowerCaseAreTheSameOnBothSides)
{
    Call call("vhIsObject_v1");
    call.set("objectName", "Box");
    for (const char* const name : {"box", "Box", "BOX", "bOx"})
        EXPECT_EQ(answer(call, leafOf(name)), 1) << name;
    for (const char* const name : {"box1", "abox", "bo", "bo?", "", "b\xC3\xB6x"})
        EXPECT_EQ(answer(call, leafOf(name)), 0) << name;
}

TEST(IsObject, NothingInANameIsAWildcard)
{
    Call call("vhIsObject_v1");
    call.set("objectName", "b*|.+[x]?");
    EXPECT_EQ(answer(call, leafOf("B*|.+[X]?")), 1);
    for (const char* const name : {"b", "box", "bx", "b*|.+[x]"})
        EXPECT_EQ(answer(call, leafOf(name)), 0) << name;
}

TEST(IsObject, BytesBeyondAsciiCompareAsTheyAre)
{
    Call call("vhIsObject_v1");
    call.set("objectName", "Stra\xC3\x9F"
                           "e \xFF");
    EXPECT_EQ(answer(call, leafOf("STRA\xC3\x9F"
                                  "E \xFF")),
              1);
    EXPECT_EQ(answer(call, leafOf("STRA\xC3\x9E"
                                  "E \xFF")),
              0);
}

TEST(IsObject, AnEmptyNameIsThatOfInstancesWithoutOne)
{
    for (const host::Value& none : {test::value(""), test::null()}) {
        Call call("vhIsObject_v1");
        call.set("objectName", none);
        EXPECT_EQ(answer(call, leafOf("")), 1) << "a missing parent name is the empty text";
        EXPECT_EQ(answer(call, leafOf("box")), 0);
    }
}

TEST(IsObject, NamesOfAnyLength)
{
    const std::string longName(10'000, 'N');
    Call call("vhIsObject_v1");
    call.set("objectName", longName);
    EXPECT_EQ(answer(call, leafOf(longName)), 1);
    EXPECT_EQ(answer(call, leafOf(longName + 'N')), 0);
}

TEST(IsObject, AnInstanceIsAskedForItsNameOnce)
{
    Call call("vhIsObject_v1");
    call.set("objectName", "box");
    const miTag box = leafOf("box");
    const miTag ball = leafOf("ball");
    host::Database& database = Call::session().database;
    EXPECT_EQ(answer(call, box), 1);
    EXPECT_EQ(answer(call, ball), 0);
    const auto parent = [&](miTag leaf) {
        return database.find(database.findAs<host::Instance>(leaf)->record.parent);
    };
    std::swap(parent(box)->name, parent(ball)->name);
    EXPECT_EQ(answer(call, box), 1) << "as known";
    EXPECT_EQ(answer(call, ball), 0) << "as known";
    call.end();
    EXPECT_EQ(answer(call, box), 0) << "a new instance of the shader learns anew";
    EXPECT_EQ(answer(call, ball), 1);
}

TEST(IsObject, LeavesOfOneSceneInstanceAreAskedForEach)
{
    Call call("vhIsObject_v1");
    call.set("objectName", "box");
    const miTag scene = test::sceneInstance("Box");
    const miTag left = leafOf(scene);
    const miTag right = leafOf(scene);
    EXPECT_EQ(answer(call, left), 1);
    EXPECT_EQ(answer(call, right), 1);
    const miTag late = leafOf(scene);
    Call::session().database.find(scene)->name = "ball";
    EXPECT_EQ(answer(call, left), 1) << "as known";
    EXPECT_EQ(answer(call, right), 1) << "as known";
    EXPECT_EQ(answer(call, late), 0) << "a leaf is known by itself, not by its scene instance";
}

TEST(IsObject, KeepsNoPointerToItsName)
{
    const test::RelocatedStrings moving;
    for (const std::string name : {"box", "a name that is too long for a short string"}) {
        Call call("vhIsObject_v1");
        call.set("objectName", name);
        EXPECT_EQ(answer(call, leafOf("#")), 0);
        EXPECT_EQ(answer(call, leafOf(name)), 1);
        EXPECT_EQ(answer(call, leafOf(std::string(name.size(), '#'))), 0) << "what is left where it was";
    }
}

TEST(IsObject, TheNameIsEvaluatedInInitAndOnlyThere)
{
    Call call("vhIsObject_v1");
    call.set("objectName", "ball").connect("objectName");
    const miTag ball = leafOf("BALL");
    EXPECT_EQ(answer(call, ball), 1);
    EXPECT_EQ(call.trace(), "objectName");
    EXPECT_EQ(answer(call, ball), 1);
    EXPECT_EQ(answer(call, leafOf("box")), 0);
    EXPECT_EQ(call.trace(), "");
}

TEST(IsObject, PrintsNothingAndLeavesNothingPinned)
{
    const test::Messages messages;
    const miTag box = leafOf("box");
    {
        Call call("vhIsObject_v1");
        call.set("objectName", "box");
        answer(call, box);
        answer(call, box);
    }
    EXPECT_EQ(messages.lines(), std::vector<std::string>());
    EXPECT_EQ(Call::session().database.pins(box), 0);
}

TEST(IsObject, ManyInstancesInManyThreads)
{
    constexpr int threads = 8;
    std::map<miTag, int> expected;
    for (int k = 0; k < 300; ++k)
        expected[leafOf(k % 3 == 0 ? "Target" : "other " + std::to_string(k))] = k % 3 == 0;
    Call call("vhIsObject_v1");
    call.set("objectName", "target");
    std::mutex lock;
    int wrong = 0;
    std::latch start(threads);
    call.onThreads(threads, [&](test::Sample& sample) {
        start.arrive_and_wait();
        int mine = 0;
        for (int round = 0; round < 20; ++round)
            for (const auto& [tag, bears] : expected) {
                sample.state.instance = tag;
                mine += sample.run<miBoolean>() != bears;
            }
        const std::lock_guard guard(lock);
        wrong += mine;
    });
    EXPECT_EQ(wrong, 0);
}

} // namespace
