// SPDX-License-Identifier: BSD-3-Clause
// Switches by exact name: which value an instance gets. What they print, and every call that they make, is in
// arrays_test.
#include "named_instances.h"
#include "tests/harness/messages.h"

#include <gtest/gtest.h>

namespace {

using test::Call;
using test::leafOf;
using test::list;

struct Marked {
    float number = 42;
};
struct MarkedColor {
    miColor color{42, 43, 44, 45};
};

/// The value that a switch of scalars gives an instance, 42 when it does not write one.
float shaded(Call& call, miTag leaf)
{
    call.state().instance = leaf;
    const float number = call.run<Marked>().number;
    EXPECT_EQ(call.returned(), 1);
    return number;
}

TEST(Switch, GivesTheValueOfTheName)
{
    Call scalar("vhSwitchScalar_v1");
    scalar.set("names", list("a", "b", "c")).set("values", list(1.0f, 2.0f, 3.0f));
    EXPECT_EQ(shaded(scalar, leafOf("a")), 1);
    EXPECT_EQ(shaded(scalar, leafOf("b")), 2);
    EXPECT_EQ(shaded(scalar, leafOf("c")), 3);

    Call color("vhSwitchColor_v1");
    color.set("names", list("a", "b")).set("values", list(miColor{1, 2, 3, 4}, miColor{5, 6, 7, 8}));
    color.state().instance = leafOf("b");
    const miColor c = color.run<MarkedColor>().color;
    EXPECT_TRUE(c.r == 5 && c.g == 6 && c.b == 7 && c.a == 8);
    EXPECT_EQ(color.returned(), 1);
}

TEST(Switch, TheLastOfEqualNamesCounts)
{
    Call call("vhSwitchColor_v1");
    call.set("names", list("a", "b", "a"))
        .set("values", list(miColor{1, 1, 1, 1}, miColor{2, 2, 2, 2}, miColor{3, 3, 3, 3}))
        .connect("values");
    call.state().instance = leafOf("a");
    call.run<miColor>(); // init evaluates all values for its list
    EXPECT_EQ(call.trace(), "values[0] values[1] values[2]");
    EXPECT_EQ(call.run<miColor>().g, 3);
    EXPECT_EQ(call.trace(), "values[0] values[2]") << "the values of both are evaluated";
    call.state().instance = leafOf("none of them");
    call.run<miColor>();
    EXPECT_EQ(call.trace(), "");
}

TEST(Switch, ComparesWholeNamesWithTheirCapitals)
{
    Call call("vhSwitchScalar_v1");
    call.set("names", list("Box")).set("values", list(1.0f));
    EXPECT_EQ(shaded(call, leafOf("Box")), 1);
    for (const char* const other :
         {"box", "BOX", "Bo", "Box1", " Box", "Box ", "aBox", "scene::Box", "the object of Box"})
        EXPECT_EQ(shaded(call, leafOf(other)), 42) << other;
}

TEST(Switch, ANameIsBytes)
{
    Call call("vhSwitchScalar_v1");
    const std::string longName(5000, 'n');
    call.set("names", list("K\xc3\xbcste", longName, "a*", "%d")).set("values", list(1.0f, 2.0f, 3.0f, 4.0f));
    EXPECT_EQ(shaded(call, leafOf("K\xc3\xbcste")), 1);
    EXPECT_EQ(shaded(call, leafOf("K\xfcste")), 42);
    EXPECT_EQ(shaded(call, leafOf(longName)), 2);
    EXPECT_EQ(shaded(call, leafOf(longName + 'n')), 42);
    EXPECT_EQ(shaded(call, leafOf("a*")), 3);
    EXPECT_EQ(shaded(call, leafOf("abc")), 42) << "no pattern";
    EXPECT_EQ(shaded(call, leafOf("%d")), 4);
}

TEST(Switch, WithoutAMatchTheResultIsLeftAlone)
{
    Call color("vhSwitchColor_v1");
    color.set("names", list("a")).set("values", list(miColor{1, 2, 3, 4}));
    color.state().instance = leafOf("b");
    const miColor c = color.run<MarkedColor>().color;
    EXPECT_TRUE(c.r == 42 && c.g == 43 && c.b == 44 && c.a == 45);
    EXPECT_EQ(color.returned(), 1);

    Call empty("vhSwitchScalar_v1");
    EXPECT_EQ(shaded(empty, leafOf("a")), 42);
}

TEST(Switch, ThreeNamesAndTwoValuesAreTwoPairs)
{
    for (const char* const shader : {"vhSwitchScalar_v1", "vhSwitchColor_v1"}) {
        SCOPED_TRACE(shader);
        test::Messages messages;
        Call call(shader);
        call.set("names", list("a", "b", "c"));
        const bool colors = call.declaration().result.type == host::Type::color;
        if (colors)
            call.set("values", list(miColor{1, 0, 0, 0}, miColor{2, 0, 0, 0}));
        else
            call.set("values", list(1.0f, 2.0f));
        const auto number = [&](const char* name) {
            call.state().instance = leafOf(name);
            return colors ? call.run<MarkedColor>().color.r : call.run<Marked>().number;
        };
        EXPECT_EQ(number("a"), 1);
        EXPECT_EQ(number("b"), 2);
        EXPECT_EQ(number("c"), 42);
        EXPECT_EQ(messages.lines(),
                  std::vector<std::string>{std::string("RC   0.0  warn :  ") +
                                           (colors ? "switchColor" : "switchScalar") +
                                           " - length of name and value arrays do not match. "});
    }
}

TEST(Switch, ListsItsPairsAsInformationWithDrivenValues)
{
    test::Messages messages;
    Call call("vhSwitchScalar_v1");
    call.define("three", "vhAddScalar_v1", {test::argument("input1", 1), test::argument("input2", 2)});
    call.set("names", list("a", "b")).set("values", list(test::connection("three"), 0.25f));
    EXPECT_EQ(shaded(call, leafOf("a")), 3);
    EXPECT_EQ(messages.lines(), (std::vector<std::string>{
                                    "RC   0.0  info :  switchScalar name / value pairs - begin ",
                                    "RC   0.0  info :  switchColor pair 0 : a / 3.000 ",
                                    "RC   0.0  info :  switchColor pair 1 : b / 0.250 ",
                                    "RC   0.0  info :  switchScalar name / value pairs - end ",
                                }));
}

TEST(Switch, AnInstanceWithoutANameIsTheEmptyOne)
{
    Call call("vhSwitchScalar_v1");
    call.set("names", list("a", "")).set("values", list(1.0f, 2.0f));
    EXPECT_EQ(shaded(call, leafOf("")), 2);
    host::Database& database = Call::session().database;
    EXPECT_EQ(shaded(call, database.make<host::Instance>("no leaf").tag), 2) << "there is no parent at all";
}

TEST(Switch, LeavesOfOneSceneInstanceHaveItsName)
{
    Call call("vhSwitchScalar_v1");
    call.set("names", list("a", "b")).set("values", list(1.0f, 2.0f));
    const miTag scene = test::sceneInstance("a");
    const miTag leaves[] = {leafOf(scene), leafOf(scene)};
    for (const miTag leaf : leaves)
        EXPECT_EQ(shaded(call, leaf), 1);
    Call::session().database.find(scene)->name = "b";
    for (const miTag leaf : leaves)
        EXPECT_EQ(shaded(call, leaf), 2) << "asked at every sample";
}

TEST(Switch, KeepsNoPointerToItsNames)
{
    const test::RelocatedStrings moving;
    Call keeper("probe_keeper");
    keeper.set("text", "kept");
    EXPECT_EQ(keeper.run<miBoolean>(), miFALSE) << "strings do move";
    Call call("vhSwitchScalar_v1");
    call.set("names", list("a", "and a name too long for a short string")).set("values", list(1.0f, 2.0f));
    EXPECT_EQ(shaded(call, leafOf("a")), 1);
    EXPECT_EQ(shaded(call, leafOf("and a name too long for a short string")), 2);
    EXPECT_EQ(shaded(call, leafOf("#")), 42);
    Call color("vhSwitchColor_v1");
    color.set("names", list("a")).set("values", list(miColor{1, 2, 3, 4}));
    color.state().instance = leafOf("a");
    EXPECT_EQ(color.run<MarkedColor>().color.r, 1);
    EXPECT_EQ(color.run<MarkedColor>().color.r, 1);
}

TEST(Switch, GivesBackEveryPin)
{
    test::Messages messages(2); // errors, which the host prints for pins that are left
    Call call("vhSwitchScalar_v1");
    call.set("names", list("a", "b")).set("values", list(1.0f, 2.0f));
    const miTag leaf = leafOf("a");
    shaded(call, leaf);
    EXPECT_EQ(Call::session().database.pins(leaf), 0);
    call.state().instance = miNULLTAG; // in a lens shader, for example
    EXPECT_EQ(call.run<Marked>().number, 42);
    EXPECT_EQ(messages.count("pinned"), 0);
}

TEST(Switch, ManyThreadsShadeManyInstances)
{
    Call call("vhSwitchScalar_v1");
    std::vector<std::string> names;
    std::vector<float> values;
    std::vector<miTag> leaves;
    for (int k = 0; k < 20; ++k) {
        names.push_back("thing " + std::to_string(k));
        values.push_back(static_cast<float>(k));
        leaves.push_back(leafOf(names.back()));
    }
    call.set("names", list(names)).set("values", list(values));
    call.onThreads(8, [&](test::Sample& sample) {
        for (std::size_t round = 0; round < 2000; ++round) {
            const std::size_t k = (round * 7 + static_cast<std::size_t>(sample.state.thread)) % leaves.size();
            sample.state.instance = leaves[k];
            if (sample.run<miScalar>() != values[k])
                throw std::logic_error("another instance's value");
        }
    });
}

} // namespace
