// SPDX-License-Identifier: BSD-3-Clause
// Shaders that go by names, in scenes that are read and rendered: which name a thing in nested groups has,
// and for how many things a decision is made.
#include "host/language/read.h"
#include "host/render/rendering.h"
#include "tests/harness/messages.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <optional>
#include <string>
#include <vector>

namespace {

using Lines = std::vector<std::string>;

/// An instance of an element, so many units to the right.
std::string place(const std::string& name, const std::string& element, int right)
{
    return "instance \"" + name + "\" \"" + element + "\" transform 1 0 0 0  0 1 0 0  0 0 1 0  " +
           std::to_string(-right) + " 0 0 1 end instance\n";
}

std::string group(const std::string& name, const std::string& members)
{
    return "instgroup \"" + name + "\" " + members + " end instgroup\n";
}

struct Settings {
    int threads = 1;
    bool relocateStrings = false;
};

/// Renders a row of squares, each one unit wide, and returns the colours of so many from the left. `shaders`
/// has one called "paint", which colours all; `things` has instances of "square" and the group "row" of them,
/// whose first square stands at 0.
std::vector<miColor> painted(int squares, const std::string& shaders, const std::string& things,
                             const Settings& settings = {})
{
    const std::string count = std::to_string(squares);
    const std::string text = R"(
$include <vhl.mi>
options "opt" samples 1 1 object space end options
camera "cam" focal infinity aperture )" +
                             count + " aspect " + count + " resolution " + count + R"( 1 end camera
instance "cam-i" "cam" transform 1 0 0 0  0 1 0 0  0 0 1 0  )" +
                             std::to_string(0.5 - 0.5 * squares) + R"( 0 -5 1 end instance
)" + shaders + R"(
material "painted" = "paint" end material
object "square" visible
    group -0.5 -0.5 0  0.5 -0.5 0  0.5 0.5 0  -0.5 0.5 0  v 0 v 1 v 2 v 3  c "painted" 0 1 2 3 end group
end object
)" + things + R"(
instance "row-i" "row" end instance
instgroup "root" "cam-i" "row-i" end instgroup
render "root" "cam-i" "opt"
)";

    host::Session session;
    session.libraries.link(VHL_LIBRARY, {}, {});
    session.paths.include = {VHL_DECLARATIONS};
    session.database.relocateStrings(settings.relocateStrings);
    std::optional<host::Picture> picture;
    session.onRender = [&](const host::RenderCommand& command) {
        const host::Database& database = session.database;
        const auto& camera = *database.findAs<host::Camera>(database.lookup("cam"));
        const auto& options = *database.findAs<host::Options>(command.options);
        picture = host::renderPicture(session, command, camera, options, {settings.threads, false, {}}).value();
    };
    host::readScene(session, text, "row");
    std::vector<miColor> colors;
    for (int square = 0; square < squares; ++square)
        colors.push_back(picture->color(square, 0));
    return colors;
}

/// Their red, green and blue as a word of three digits each: "100" is red.
Lines words(const std::vector<miColor>& colors)
{
    Lines words;
    for (const miColor& c : colors) {
        std::string& word = words.emplace_back();
        for (const float channel : {c.r, c.g, c.b})
            word += channel == 0 ? '0' : channel == 1 ? '1' : '?';
    }
    return words;
}

// ---- the shaders, each a "paint" that colours a name red

constexpr const char* byExactName = R"(
    shader "rest" "vhConstColor_v2" ( "input" 0 0 1 1 )
    shader "named" "vhSwitchScalar_v1" ( "names" [ "Box", "left", "row-i", "square" ], "values" [ 1, 2, 3, 4 ] )
    shader "is" "vhEqualScalar_v1" ( "input1" = "named", "input2" 1 )
    shader "paint" "vhIfThenElseColor_v1" ( "condition" = "is", "ifTrue" 1 0 0 1, "ifFalse" = "rest" )
)";
constexpr const char* byAnyCase = R"(
    shader "is" "vhIsObject_v1" ( "objectName" "bOX" )
    shader "paint" "vhIfThenElseColor_v1" ( "condition" = "is", "ifTrue" 1 0 0 1, "ifFalse" 0 0 1 1 )
)";
constexpr const char* byPattern = R"(
    shader "paint" "vhSwitchColor_v4"
        ( "defaultColor" 0 0 1 1, "patterns" [ "row|square|left", "^?ox$" ], "values" [ 0 1 0 1, 1 0 0 1 ] )
)";

} // namespace

// A group that stands in the scene twice has all of its things twice, under the same names.
TEST(NamedScene, TwoPathsThroughOneInstanceHaveItsName)
{
    const std::string things = place("Box", "square", 0) + group("pair", "\"Box\"") +
                               place("left", "pair", 0) + place("right", "pair", 1) +
                               place("ball", "square", 2) + group("row", "\"left\" \"right\" \"ball\"");
    for (const char* const shaders : {byExactName, byAnyCase, byPattern}) {
        SCOPED_TRACE(shaders);
        EXPECT_EQ(words(painted(3, shaders, things)), (Lines{"100", "100", "001"}));
    }
}

TEST(NamedScene, EachPathIsDecidedOnce)
{
    const std::string things = place("box", "square", 0) + group("pair", "\"box\"") +
                               place("left", "pair", 0) + place("right", "pair", 1) +
                               place("ball", "square", 2) + group("row", "\"left\" \"right\" \"ball\"");
    const test::Messages messages(5);
    painted(3, byPattern, things);
    EXPECT_EQ(messages.count("vhSwitchColor_v4 - matched object box to pattern ^?ox$"), 2);
    EXPECT_EQ(messages.count("vhSwitchColor_v4 - object ball not matched to a pattern. Using default color"),
              1);
    EXPECT_EQ(messages.count("vhSwitchColor_v4 - evaluated 12 times, 3 matches"), 1)
        << "four samples a pixel";
}

TEST(NamedScene, OfNestedGroupsTheLowestInstanceCounts)
{
    const std::string things =
        place("Box", "square", 0) + group("low", "\"Box\"") + place("middle", "low", 0) +
        group("mid", "\"middle\"") + place("high", "mid", 0) +
        // The other way round: the name stands further up, where it is that of a group.
        place("other", "square", 1) + group("lone", "\"other\"") + place("box-group", "lone", 0) +
        group("row", "\"high\" \"box-group\"");
    for (const char* const shaders : {byExactName, byAnyCase, byPattern}) {
        SCOPED_TRACE(shaders);
        EXPECT_EQ(words(painted(2, shaders, things)), (Lines{"100", "001"}));
    }
    const std::string above = place("thing", "square", 0) + group("inner", "\"thing\"") +
                              place("Box", "inner", 0) + group("row", "\"Box\"");
    for (const char* const shaders : {byExactName, byAnyCase, byPattern}) {
        SCOPED_TRACE(shaders);
        EXPECT_EQ(words(painted(1, shaders, above)), Lines{"001"});
    }
}

TEST(NamedScene, OnlyTheExactNameCaresForCapitals)
{
    const std::string things = place("Box", "square", 0) + place("box", "square", 1) +
                               place("BOX", "square", 2) + group("row", "\"Box\" \"box\" \"BOX\"");
    EXPECT_EQ(words(painted(3, byExactName, things)), (Lines{"100", "001", "001"}));
    EXPECT_EQ(words(painted(3, byAnyCase, things)), (Lines{"100", "100", "100"}));
    EXPECT_EQ(words(painted(3, byPattern, things)), (Lines{"100", "100", "001"})) << "OX is not ox";
}

namespace {

/// Every shader that goes by a name or keeps a text, in one network: red for exact names, green for a name in
/// any case, blue for a pattern. Where no exact name fits, the number is the 0 that the host has put there.
constexpr const char* all = R"(
    shader "exact" "vhSwitchColor_v1"
        ( "names" [ "Thing 7", "Thing 8", "a thing whose name no short string holds" ],
          "values" [ 1 0 0 1, 1 0 0 1, 1 0 0 1 ] )
    shader "number" "vhSwitchScalar_v1"
        ( "names" [ "Thing 7", "Thing 8", "a thing whose name no short string holds" ], "values" [ 1, 1, 1 ] )
    shader "known" "vhDebugScalar_v1" ( "input" = "number", "name" "the number of one of them", "limit" 1 )
    shader "is-known" "vhEqualScalar_v1" ( "input1" = "known", "input2" 1 )
    shader "red" "vhIfThenElseColor_v1" ( "condition" = "is-known", "ifTrue" = "exact", "ifFalse" 0 0 0 1 )
    shader "is" "vhIsObject_v1" ( "objectName" "tHING 5, which has no short name either" )
    shader "green" "vhIfThenElseColor_v1" ( "condition" = "is", "ifTrue" 0 1 0 0, "ifFalse" 0 0 0 0 )
    shader "blue" "vhSwitchColor_v4"
        ( "defaultColor" 0 0 0 0, "patterns" [ "nothing that there is in the row", "^?hing ?0$" ],
          "values" [ 0 0 0 0, 0 0 1 0 ] )
    shader "order" "vhReorderColor_v1" ( "input" = "blue", "order" "rgba and more that is not read" )
    shader "shown" "vhDebugColor_v1" ( "input" = "order", "name" "a colour of the pattern switch", "limit" 1 )
    shader "paint" "vhMixerColor4_v1" ( "input1" = "red", "input2" = "green", "input3" = "shown" )
)";

constexpr int count = 60;

std::string manyThings()
{
    std::string things, members;
    for (int k = 0; k < count; ++k) {
        const std::string number = std::to_string(k);
        const std::string name = k == 5   ? "Thing 5, which has no short name either"
                                 : k == 9 ? "a thing whose name no short string holds"
                                          : "Thing " + number;
        things += place(name, "square", k);
        members += '"' + name + "\" ";
    }
    return things + group("row", members);
}

Lines expectedOfMany()
{
    Lines expected;
    for (int k = 0; k < count; ++k)
        expected.push_back(k >= 7 && k <= 9 ? "100" : k == 5 ? "010" : k % 10 == 0 && k != 0 ? "001" : "000");
    return expected;
}

} // namespace

TEST(NamedScene, ManyThreadsPaintWhatOneDoes)
{
    for (const int threads : {1, 2, 8}) {
        SCOPED_TRACE(threads);
        const test::Messages messages(5);
        EXPECT_EQ(words(painted(count, all, manyThings(), {threads})), expectedOfMany());
        EXPECT_EQ(messages.count("- matched object Thing "), 5);
        EXPECT_EQ(messages.count(" not matched to a pattern. Using default color"), count - 5);
        EXPECT_EQ(messages.count("vhSwitchColor_v4 - evaluated 240 times, 60 matches"), 1);
    }
}

TEST(NamedScene, NothingChangesWhereStringsMove)
{
    const auto told = [](bool relocateStrings) {
        const test::Messages messages(5);
        EXPECT_EQ(words(painted(count, all, manyThings(), {1, relocateStrings})), expectedOfMany());
        Lines lines;
        for (const std::string& line : messages.lines())
            if (line.find("witch") != line.npos || line.find("vhDebug") != line.npos)
                lines.push_back(line);
        return lines;
    };
    const Lines staying = told(false);
    EXPECT_EQ(std::ranges::count(staying, "RC   0.1  info : vhSwitchColor_v4 - matched object Thing 10 to "
                                          "pattern ^?hing ?0$ "),
              1);
    EXPECT_EQ(told(true), staying);
}
