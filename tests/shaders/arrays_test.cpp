// SPDX-License-Identifier: BSD-3-Clause
// Shaders with arrays, names and messages, seen by the least renderer: every call they make of it, what they
// print to the byte, and arrays laid out in ways that a host does not happen to choose.
#include "arena.h"

#include <geoshader.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <climits>
#include <cmath>

namespace {

// Where the second array of a switch begins: behind i, n and one tag.
constexpr int names = 0;
constexpr int values = 12;

using Color = std::array<float, 4>;
constexpr Color red{1, 0, 0, 1}, green{0, 1, 0, 0.5f}, blue{0.125f, -2, 1e6f, 0};

} // namespace

TEST(Arrays, TheSwitchOfColoursPrintsItsPairs)
{
    const Library library;
    Arena arena(library, "vhSwitchColor_v1");
    arena.array(names, 40, arena.texts({"a", "two words", "%s"}));
    arena.array(values, 4, std::vector{red, green, blue});
    arena.init();
    EXPECT_EQ(arena.renderer.messages, (Strings{" switchColor name / value pairs - begin\n",
                                                " switchColor pair 0 : a / 1.000 0.000 0.000 1.000\n",
                                                " switchColor pair 1 : two words / 0.000 1.000 0.000 0.500\n",
                                                " switchColor pair 2 : %s / 0.125 -2.000 1000000.000 0.000\n",
                                                " switchColor name / value pairs - end\n"}));
    EXPECT_EQ(calls(arena.renderer),
              (Strings{"mi_db_access", "mi_db_unpin", "mi_db_access", "mi_db_unpin", "mi_db_access",
                       "mi_db_unpin", "mi_info", "mi_info", "mi_info", "mi_info", "mi_info"}));
    arena.exit();
}

TEST(Arrays, TheSwitchOfScalarsPrintsItsPairsUnderTheOtherName)
{
    const Library library;
    Arena arena(library, "vhSwitchScalar_v1");
    arena.array(names, 40, arena.texts({"a", "b"}));
    arena.array(values, 4, std::vector{0.5f, -1.0f / 3});
    arena.init();
    EXPECT_EQ(arena.renderer.messages,
              (Strings{" switchScalar name / value pairs - begin\n", " switchColor pair 0 : a / 0.500\n",
                       " switchColor pair 1 : b / -0.333\n", " switchScalar name / value pairs - end\n"}));
    arena.exit();
}

TEST(Arrays, AMismatchIsAWarningAndNoList)
{
    const Library library;
    for (const int more : {-1, 1}) {
        SCOPED_TRACE(more);
        {
            Arena arena(library, "vhSwitchColor_v1");
            arena.array(names, 40, arena.texts({"a", "b"}));
            arena.array(values, 4, std::vector(static_cast<std::size_t>(2 + more), red));
            arena.init();
            EXPECT_EQ(arena.renderer.messages,
                      Strings{" switchColor - length of name and value arrays do not match.\n"});
            EXPECT_EQ(calls(arena.renderer).back(), "mi_warning");
            arena.exit();
        }
        Arena arena(library, "vhSwitchScalar_v1");
        arena.array(names, 40, arena.texts({"a", "b"}));
        arena.array(values, 4, std::vector(static_cast<std::size_t>(2 + more), 1.0f));
        arena.init();
        EXPECT_EQ(arena.renderer.messages,
                  Strings{" switchScalar - length of name and value arrays do not match.\n"});
        EXPECT_EQ(calls(arena.renderer).back(), "mi_warning");
        arena.exit();
    }
}

TEST(Arrays, TheShorterOfTwoArraysCounts)
{
    const Library library;
    for (const std::size_t valueCount : {1u, 2u, 3u, 4u}) {
        Arena arena(library, "vhSwitchScalar_v1");
        arena.array(names, 40, arena.texts({"a", "b", "c"}));
        arena.array(values, 4, std::vector<float>{1, 2, 3, 4});
        arena.at<int>(values + 4) = static_cast<int>(valueCount);
        arena.init();
        for (const auto& [name, value] : {std::pair("a", 1.0f), {"b", 2.0f}, {"c", 3.0f}}) {
            arena.shade(name);
            float result = -1;
            EXPECT_EQ(arena.execute(result), 1);
            EXPECT_EQ(result, value <= static_cast<float>(valueCount) ? value : -1) << name << valueCount;
        }
        arena.exit();
    }
}

TEST(Arrays, CountsOfNoneOrLessAreEmpty)
{
    const Library library;
    for (const int count : {0, -1, INT_MIN}) {
        SCOPED_TRACE(count);
        Arena arena(library, "vhSwitchColor_v1");
        arena.at<int>(names + 4) = arena.at<int>(values + 4) = count;
        arena.shade("");
        arena.init();
        EXPECT_EQ(arena.renderer.messages, (Strings{" switchColor name / value pairs - begin\n",
                                                    " switchColor name / value pairs - end\n"}));
        Color color = blue;
        EXPECT_EQ(arena.execute(color), 1);
        EXPECT_EQ(color, blue);
        arena.exit();

        Arena selects(library, "vhSelectColor_v1");
        selects.at<float>(0) = 1;
        selects.at<int>(8) = count;
        selects.connect(0);
        selects.renderer.evaluate = [](void* parameter) { return parameter; };
        selects.init();
        EXPECT_EQ(selects.execute(color), 0);
        EXPECT_EQ(color, blue);
        EXPECT_EQ(calls(selects.renderer), Strings()) << "the position is not evaluated";
        selects.exit();
    }
    Arena uneven(library, "vhSwitchColor_v1");
    uneven.array(values, 4, std::vector{red});
    uneven.at<int>(names + 4) = -1;
    uneven.init();
    EXPECT_EQ(uneven.renderer.messages,
              Strings{" switchColor - length of name and value arrays do not match.\n"});
    uneven.exit();
}

TEST(Arrays, MayBeginAnywhere)
{
    const Library library;
    for (const auto& [nameStart, valueStart] : {std::pair(20, 8), {-40, 8}, {20, -8}, {-200, -8}, {60, 4}}) {
        SCOPED_TRACE(nameStart);
        Arena arena(library, "vhSwitchColor_v1");
        arena.array(names, nameStart, arena.texts({"a", "b", "c"}));
        arena.array(values, valueStart, std::vector{red, green, blue});
        arena.shade("b");
        arena.init();
        Color color{};
        arena.execute(color);
        EXPECT_EQ(color, green);
        arena.exit();

        Arena matches(library, "vhSwitchColor_v4");
        matches.array(16, nameStart, matches.texts({"a", "b", "^c"}));
        matches.array(28, valueStart, std::vector{red, green, blue});
        matches.shade("cab");
        matches.init();
        EXPECT_EQ(matches.execute(color), 1);
        EXPECT_EQ(color, blue);
        matches.exit();

        Arena selects(library, "vhSelectColor_v1");
        selects.at<float>(0) = 2;
        selects.array(4, valueStart, std::vector{red, green, blue});
        selects.init();
        EXPECT_EQ(selects.execute(color), 1);
        EXPECT_EQ(color, blue);
        selects.exit();

        Arena vectors(library, "vhSelectVector_v1");
        vectors.at<float>(0) = 1;
        vectors.array(4, valueStart, std::vector<miVector>{{1, 2, 3}, {4, 5, 6}, {7, 8, 9}});
        vectors.init();
        miVector vector{};
        EXPECT_EQ(vectors.execute(vector), 1);
        EXPECT_EQ(vector.x + 10 * vector.y + 100 * vector.z, 654);
        vectors.exit();

        Arena scalars(library, "vhSelectScalar_v1");
        scalars.at<float>(0) = 1;
        scalars.array(4, valueStart, std::vector<float>{1, 2, 3});
        scalars.init();
        float scalar = 0;
        EXPECT_EQ(scalars.execute(scalar), 1);
        EXPECT_EQ(scalar, 2);
        scalars.exit();
    }
}

// The start and count of an array are parameters like any other, which a renderer may hand out from
// elsewhere.
TEST(Arrays, StartsAndCountsAreEvaluatedInOrderAndOnce)
{
    const Library library;
    Arena arena(library, "vhSwitchScalar_v1");
    arena.array(names, 40, arena.texts({"a", "b"}));
    arena.array(values, 6, std::vector<float>{1, 2});
    const std::vector<int> order = {names,      names + 4,          names + 8,         values,
                                    values + 4, values + 8 + 6 * 4, values + 8 + 7 * 4};
    arena.watch(order);
    arena.init();
    EXPECT_EQ(arena.evaluated, order);
    arena.evaluated.clear();
    arena.shade("b");
    float result = 0;
    arena.execute(result);
    EXPECT_EQ(result, 2);
    EXPECT_EQ(arena.evaluated, std::vector<int>{values + 8 + 7 * 4});
    arena.exit();

    Arena selects(library, "vhSelectScalar_v1");
    selects.array(4, 3, std::vector<float>{1, 2});
    selects.watch({0, 4, 8, 12 + 3 * 4});
    selects.init();
    EXPECT_EQ(selects.evaluated, (std::vector<int>{4, 8})) << "the slot is an address only";
    selects.evaluated.clear();
    selects.execute(result);
    EXPECT_EQ(selects.evaluated, (std::vector<int>{0, 12 + 3 * 4}));
    selects.exit();
}

TEST(Arrays, TheOnlyNameMayComeFromElsewhere)
{
    const Library library;
    Arena arena(library, "vhSwitchScalar_v1");
    miTag other = arena.text("other");
    arena.array(names, 0, arena.texts({"a"}));
    arena.array(values, 0, std::vector<float>{7});
    arena.connect(names + 8);
    arena.renderer.evaluate = [&other](void*) { return static_cast<void*>(&other); };
    arena.shade("other");
    arena.init();
    float result = 0;
    arena.execute(result);
    EXPECT_EQ(result, 7);
    arena.exit();
}

TEST(Arrays, TheOnlyPatternMayComeFromElsewhere)
{
    const Library library;
    for (const auto& [name, expected] : std::map<std::string, Color>{{"ball", red}, {"box", blue}}) {
        SCOPED_TRACE(name);
        Arena arena(library, "vhSwitchColor_v4");
        constexpr int defaultColor = 0, patternArray = 16, valueArray = 28;
        miTag other = arena.text("ball");
        arena.at<Color>(defaultColor) = blue;
        arena.array(patternArray, 0, arena.texts({"box"}));
        arena.array(valueArray, 0, std::vector{red});
        arena.connect(patternArray + 8);
        arena.renderer.evaluate = [&other](void*) { return static_cast<void*>(&other); };
        arena.shade(name);
        arena.init();
        Color result{};
        arena.execute(result);
        EXPECT_EQ(result, expected);
        arena.exit();
    }
}

TEST(Arrays, TheShadedInstanceIsPinnedWhileItsNameIsUsed)
{
    const Library library;
    Arena arena(library, "vhSwitchScalar_v1");
    arena.array(names, 40, arena.texts({"a", "b"}));
    arena.array(values, 4, std::vector<float>{1, 2});
    arena.connect(values + 8 + 4 * 4);
    arena.renderer.evaluate = [](void* parameter) { return parameter; };
    arena.shade("a");
    arena.init();
    arena.renderer.calls.clear();
    float result = 0;
    arena.execute(result);
    EXPECT_EQ(calls(arena.renderer), (Strings{"mi_db_access", "mi_api_tag_lookup", "mi_api_tag_lookup",
                                              "mi_phen_eval", "mi_db_unpin"}));
    for (const auto& [tag, pins] : arena.renderer.pins)
        EXPECT_EQ(pins, 0) << tag;
    arena.exit();
}

TEST(Arrays, AnInstanceWithoutANameHasTheEmptyOne)
{
    const Library library;
    Arena arena(library, "vhSwitchScalar_v1");
    arena.array(names, 40, arena.texts({"a", ""}));
    arena.array(values, 4, std::vector<float>{1, 2});
    arena.shadeNameless();
    arena.init();
    float result = 0;
    EXPECT_EQ(arena.execute(result), 1);
    EXPECT_EQ(result, 2);
    arena.exit();
}

TEST(Arrays, NamesAndLabelsAreCopies)
{
    const Library library;
    Arena arena(library, "vhSwitchScalar_v1");
    arena.array(names, 40, arena.texts({"short", std::string(100, 'l')}));
    arena.array(values, 4, std::vector<float>{1, 2});
    arena.init();
    arena.spoilTexts();
    float result = 0;
    arena.shade("short");
    arena.execute(result);
    EXPECT_EQ(result, 1);
    arena.shade(std::string(100, 'l'));
    arena.execute(result);
    EXPECT_EQ(result, 2);
    arena.exit();

    Arena debug(library, "vhDebugScalar_v1");
    debug.at<float>(0) = 0.5f;
    debug.at<int>(4) = 1;
    debug.at<miTag>(8) = debug.text("label");
    debug.init();
    debug.spoilTexts();
    debug.execute(result);
    EXPECT_EQ(debug.renderer.messages, Strings{"vhDebugScalar : label - 0.500\n"});
    debug.exit();
}

TEST(Arrays, WithoutAShadedInstanceTheNameIsEmptyAndNothingIsUnpinned)
{
    const Library library;
    Arena arena(library, "vhSwitchScalar_v1");
    arena.array(names, 40, arena.texts({"a", ""}));
    arena.array(values, 4, std::vector<float>{1, 2});
    arena.init();
    arena.shadeNothing();
    arena.renderer.calls.clear();
    float result = 0;
    EXPECT_EQ(arena.execute(result), 1);
    EXPECT_EQ(result, 2);
    EXPECT_EQ(calls(arena.renderer), (Strings{"mi_db_access", "mi_api_tag_lookup", "mi_api_tag_lookup"}));
    arena.exit();
}

// ---- the pattern switch: defaultColor, patterns, values

TEST(PatternArrays, StartsAndCountsAreEvaluatedInOrderAndOnce)
{
    const Library library;
    Arena arena(library, "vhSwitchColor_v4");
    constexpr int defaultColor = 0, patterns = 16, colors = 28;
    constexpr int firstColor = colors + 8 + 6 * 16, secondColor = firstColor + 16;
    arena.array(patterns, 60, arena.texts({"a", "b"}));
    arena.array(colors, 6, std::vector{red, green});
    const std::vector<int> order = {patterns,   patterns + 4, patterns + 8, colors,
                                    colors + 4, firstColor,   secondColor};
    arena.watch(order);
    arena.connect(defaultColor);
    arena.init();
    EXPECT_EQ(arena.evaluated, order);
    for (const char* const name : {"b", "a", "c"}) {
        arena.evaluated.clear();
        arena.shade(name);
        Color result{};
        arena.execute(result);
        EXPECT_EQ(arena.evaluated, std::vector<int>{secondColor}) << "the leaf is known by its first name";
        EXPECT_EQ(result, green);
    }
    arena.exit();
}

TEST(PatternArrays, PatternsArePinnedWhileTheyAreCompiledAndAgainWhileTheyArePrinted)
{
    const Library library;
    Arena arena(library, "vhSwitchColor_v4");
    constexpr int patterns = 16, colors = 28;
    arena.array(patterns, 60, arena.texts({"%d*", "B?"}));
    arena.array(colors, 6, std::vector{red, green});
    arena.init();
    EXPECT_EQ(calls(arena.renderer), (Strings{"mi_db_access", "mi_db_unpin", "mi_db_access", "mi_db_unpin",
                                              "mi_info", "mi_db_access", "mi_info", "mi_db_unpin",
                                              "mi_db_access", "mi_info", "mi_db_unpin", "mi_info"}));
    EXPECT_EQ(
        arena.renderer.messages,
        (Strings{"vhSwitchColor_v4 pattern / value pairs - begin\n", "vhSwitchColor_v4 pattern 0 : %d*\n",
                 "vhSwitchColor_v4 pattern 1 : B?\n", "vhSwitchColor_v4 pattern / value pairs - end\n"}));

    arena.renderer.calls.clear();
    arena.renderer.messages.clear();
    arena.spoilTexts(); // what is printed later are copies
    arena.shade("%s bx");
    Color result{};
    for (int sample = 0; sample < 2; ++sample) {
        EXPECT_EQ(arena.execute(result), 1);
        EXPECT_EQ(result, green);
    }
    const Strings naming = {"mi_db_access", "mi_api_tag_lookup", "mi_api_tag_lookup"};
    Strings expected = naming;
    expected.insert(expected.end(), {"mi_info", "mi_db_unpin"});
    expected.insert(expected.end(), naming.begin(), naming.end());
    expected.emplace_back("mi_db_unpin");
    EXPECT_EQ(calls(arena.renderer), expected) << "named at every sample, decided and told at the first";
    arena.exit();
    EXPECT_EQ(arena.renderer.messages, (Strings{"vhSwitchColor_v4 - matched object %s bx to pattern B?\n",
                                                "vhSwitchColor_v4 - evaluated 2 times, 1 matches\n"}));
    for (const auto& [tag, pins] : arena.renderer.pins)
        EXPECT_EQ(pins, 0) << tag;
}

// ---- the object test: objectName

TEST(ObjectName, IsReadInInitAndAnInstanceIsNamedAtItsFirstSample)
{
    const Library library;
    Arena arena(library, "vhIsObject_v1");
    arena.at<miTag>(0) = arena.text("A Name");
    arena.connect(0);
    arena.renderer.evaluate = [](void* parameter) { return parameter; };
    arena.init();
    EXPECT_EQ(calls(arena.renderer), (Strings{"mi_phen_eval", "mi_db_access", "mi_db_unpin"}));
    arena.renderer.calls.clear();
    arena.spoilTexts();
    arena.shade("a nAME");
    for (int sample = 0; sample < 3; ++sample) {
        int result = -1;
        EXPECT_EQ(arena.execute(result), 1);
        EXPECT_EQ(result, 1);
    }
    EXPECT_EQ(calls(arena.renderer),
              (Strings{"mi_db_access", "mi_api_tag_lookup", "mi_api_tag_lookup", "mi_db_unpin"}));
    for (const auto& [tag, pins] : arena.renderer.pins)
        EXPECT_EQ(pins, 0) << tag;
    arena.exit();
    EXPECT_EQ(arena.renderer.messages, Strings());
}

TEST(ObjectName, ThatCannotBeEvaluatedIsTheEmptyOne)
{
    const Library library;
    for (const auto& [name, expected] : {std::pair("", 1), {"a", 0}}) {
        Arena arena(library, "vhIsObject_v1");
        arena.at<miTag>(0) = arena.text("a");
        arena.connect(0);
        arena.renderer.evaluate = [](void*) -> void* { return nullptr; };
        arena.init();
        EXPECT_EQ(calls(arena.renderer), Strings{"mi_phen_eval"}) << "no text is looked for";
        arena.shade(name);
        int result = -1;
        EXPECT_EQ(arena.execute(result), 1);
        EXPECT_EQ(result, expected);
        arena.exit();
    }
}

TEST(ObjectName, WithoutAShadedInstanceNothingIsUnpinned)
{
    const Library library;
    Arena arena(library, "vhIsObject_v1");
    arena.at<miTag>(0) = arena.text("a");
    arena.init();
    arena.shadeNothing();
    arena.renderer.calls.clear();
    int result = -1;
    EXPECT_EQ(arena.execute(result), 1);
    EXPECT_EQ(result, 0);
    EXPECT_EQ(calls(arena.renderer), (Strings{"mi_db_access", "mi_api_tag_lookup", "mi_api_tag_lookup"}));
    arena.exit();
}

// ---- debug: input, enable, name, useLimit, limit

TEST(DebugMessages, ToTheByte)
{
    const Library library;
    struct Row {
        const char* shader;
        int inputSize;
        std::array<float, 4> input;
        const char* message;
    };
    const Row rows[] = {
        {"vhDebugScalar_v1", 4, {0.5f}, "vhDebugScalar : the label - 0.500\n"},
        {"vhDebugScalar_v1", 4, {-0.0f}, "vhDebugScalar : the label - -0.000\n"},
        {"vhDebugScalar_v1", 4, {-1234.5678f}, "vhDebugScalar : the label - -1234.568\n"},
        {"vhDebugScalar_v1", 4, {INFINITY}, "vhDebugScalar : the label - inf\n"},
        {"vhDebugScalar_v1", 4, {NAN}, "vhDebugScalar : the label - nan\n"},
        {"vhDebugVector_v1", 12, {1, -2, 0.25f}, "vhDebugVector : the label - 1.000 -2.000 0.250\n"},
        {"vhDebugColor_v1", 16, {1, 0.5f, 0, 2}, "vhDebugColor : the label - 1.000 0.500 0.000 2.000\n"},
    };
    for (const Row& row : rows) {
        SCOPED_TRACE(row.message);
        Arena arena(library, row.shader);
        std::memcpy(&arena.at<char>(0), &row.input, static_cast<std::size_t>(row.inputSize));
        arena.at<int>(row.inputSize) = 1;
        arena.at<miTag>(row.inputSize + 4) = arena.text("the label");
        arena.init();
        EXPECT_EQ(arena.renderer.messages, Strings());
        std::array<float, 4> result{};
        EXPECT_EQ(arena.execute(result), 1);
        EXPECT_EQ(std::memcmp(&result, &row.input, sizeof result), 0);
        EXPECT_EQ(arena.renderer.messages, Strings{row.message});
        EXPECT_EQ(arena.renderer.calls.back(), "mi_info");
        arena.exit();
    }
}

TEST(DebugMessages, ABooleanIsOneOrNoughtAndPassesAsItIs)
{
    const Library library;
    for (const auto& [input, message] : {std::pair(0, "vhDebugBoolean : b - 0.0\n"),
                                         {1, "vhDebugBoolean : b - 1.0\n"},
                                         {2, "vhDebugBoolean : b - 1.0\n"},
                                         {-7, "vhDebugBoolean : b - 1.0\n"},
                                         {INT_MIN, "vhDebugBoolean : b - 1.0\n"},
                                         {0x100, "vhDebugBoolean : b - 1.0\n"}}) {
        Arena arena(library, "vhDebugBoolean_v1");
        arena.at<int>(0) = input;
        arena.at<int>(4) = 2; // any word but 0 is on
        arena.at<miTag>(8) = arena.text("b");
        arena.init();
        int result = 99;
        arena.execute(result);
        EXPECT_EQ(result, input);
        EXPECT_EQ(arena.renderer.messages, Strings{message});
        arena.exit();
    }
}

TEST(DebugMessages, WithoutALabelItIsEmptyThoughLookedUp)
{
    const Library library;
    for (const bool handsOutNothing : {true, false}) {
        Arena arena(library, "vhDebugScalar_v1");
        if (!handsOutNothing)
            arena.renderer.access = [](miTag) {
                static char rubbish[] = "rubbish";
                return static_cast<void*>(rubbish);
            };
        arena.at<int>(4) = 1;
        arena.init();
        EXPECT_EQ(calls(arena.renderer), (Strings{"mi_db_access", "mi_db_unpin"}));
        EXPECT_EQ(arena.renderer.pins, (std::map<miTag, int>{{miNULLTAG, 0}}));
        float result = 1;
        arena.execute(result);
        EXPECT_EQ(arena.renderer.messages, Strings{"vhDebugScalar :  - 0.000\n"});
        arena.exit();
    }
}
