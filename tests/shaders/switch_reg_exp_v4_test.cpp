// SPDX-License-Identifier: BSD-3-Clause
// vhSwitchColor_v4: a colour by the pattern that the shaded instance's name matches.
#include "named_instances.h"
#include "tests/harness/messages.h"

#include <boost/regex.hpp>
#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <atomic>
#include <latch>
#include <optional>
#include <random>

namespace {

using test::Call;
using test::leafOf;
using test::list;
using Lines = std::vector<std::string>;

constexpr float fallback = -1; ///< red of the default colour

/// A colour that tells the position of its pattern.
miColor colorOf(std::size_t position) { return {float(position), 0.25f, 0.5f, 0.75f}; }

std::string info(const std::string& text) { return "RC   0.0  info : vhSwitchColor_v4 " + text + ' '; }
std::string warning(const std::string& text) { return "RC   0.0  warn : vhSwitchColor_v4 " + text + ' '; }

class PatternSwitch : public testing::Test {
protected:
    /// Patterns, and a value for each unless another number is given.
    void set(const std::vector<std::string>& patterns, std::optional<std::size_t> values = {})
    {
        std::vector<miColor> colors;
        for (std::size_t k = 0; k < values.value_or(patterns.size()); ++k)
            colors.push_back(colorOf(k));
        call.set("defaultColor", miColor{fallback, 2, 3, 4});
        call.set("patterns", list(patterns)).set("values", list(colors));
    }

    /// The position of the value that an instance gets, or `fallback`.
    float chosen(miTag instance)
    {
        call.state().instance = instance;
        const miColor result = call.run<miColor>();
        EXPECT_EQ(call.returned(), 1);
        const miColor expected =
            result.r == fallback ? miColor{fallback, 2, 3, 4} : colorOf(static_cast<std::size_t>(result.r));
        EXPECT_EQ(result.g, expected.g);
        EXPECT_EQ(result.b, expected.b);
        EXPECT_EQ(result.a, expected.a);
        return result.r;
    }
    float chosen(const std::string& name) { return chosen(leafOf(name)); }

    /// What one pattern makes of a name.
    bool matches(const std::string& pattern, const std::string& name)
    {
        set({pattern});
        return chosen(name) == 0;
    }

    /// Lines printed since the last time.
    Lines printed()
    {
        const Lines all = messages.lines();
        Lines news(all.begin() + static_cast<std::ptrdiff_t>(read_), all.end());
        read_ = all.size();
        return news;
    }

    test::Messages messages; // outlives the call, whose end prints too
    Call call{"vhSwitchColor_v4"};

private:
    std::size_t read_ = 0;
};

// ---- what matches

TEST_F(PatternSwitch, StarIsAnyTextFoundAnywhereInTheName)
{
    set({"box*"});
    EXPECT_EQ(chosen("box01"), 0);
    EXPECT_EQ(chosen("mybox"), 0);
    EXPECT_EQ(chosen("box"), 0);
    EXPECT_EQ(chosen("Box01"), fallback) << "the pattern is lower-cased, the name is not";
    EXPECT_EQ(chosen("bo"), fallback);
}

TEST_F(PatternSwitch, QuestionMarkIsOneCharacter)
{
    set({"b?x"});
    EXPECT_EQ(chosen("bax"), 0);
    EXPECT_EQ(chosen("xxbox"), 0);
    EXPECT_EQ(chosen("bx"), fallback);
    EXPECT_EQ(chosen("baax"), fallback);
}

TEST_F(PatternSwitch, ThePatternIsLoweredAndTheNameIsNot)
{
    EXPECT_TRUE(matches("BOX*", "mybox1"));
    EXPECT_FALSE(matches("BOX*", "BOX1"));
    EXPECT_FALSE(matches("Box", "Box"));
    EXPECT_TRUE(matches("?ox", "Box"));
    EXPECT_TRUE(matches("^\\D$", "7")) << "escapes are lowered too";
    EXPECT_FALSE(matches("^\\D$", "x"));
}

TEST_F(PatternSwitch, OtherCharactersAreRegularExpressionSyntax)
{
    EXPECT_TRUE(matches("b.x", "box"));
    EXPECT_TRUE(matches("^b[a-o]x$", "box"));
    EXPECT_FALSE(matches("^b[a-n]x$", "box"));
    EXPECT_TRUE(matches("^(box|ball)$", "ball"));
    EXPECT_FALSE(matches("^(box|ball)$", "balls"));
    EXPECT_TRUE(matches("^bo+x$", "booox"));
    EXPECT_TRUE(matches("^bo{2}x$", "boox"));
    EXPECT_TRUE(matches("a\\.b", "a.b"));
    EXPECT_FALSE(matches("a\\.b", "axb"));
    EXPECT_FALSE(matches("^a*b$", "xab")) << "* is any text, not a repetition, between the ends given";
    EXPECT_TRUE(matches("^a*b$", "a--b"));
}

TEST_F(PatternSwitch, AnchorsSayWhereTheNameBeginsAndEnds)
{
    EXPECT_TRUE(matches("box", "mailbox2"));
    EXPECT_FALSE(matches("^box$", "mailbox2"));
    EXPECT_TRUE(matches("^box$", "box"));
    EXPECT_TRUE(matches("^box??$", "box01"));
    EXPECT_FALSE(matches("^box??$", "box1"));
    EXPECT_TRUE(matches("^box*left$", "box_2_left"));
    EXPECT_FALSE(matches("^box*left$", "box_left_2"));
}

TEST_F(PatternSwitch, TheLastPatternThatMatchesWins)
{
    set({"s*", "sphere*"});
    EXPECT_EQ(chosen("sphere1"), 1);
    EXPECT_EQ(chosen("square"), 0);
    set({"sphere*", "s*"});
    EXPECT_EQ(chosen("sphere1"), 1);
    set({"s", "nothing", "s", "none"});
    EXPECT_EQ(chosen("s"), 2);
}

TEST_F(PatternSwitch, StarAloneAndEmptyPatternsMatchEverythingAndEnd)
{
    for (const char* const pattern : {"*", "", "**", "()", "^", "$"}) {
        set({pattern});
        EXPECT_EQ(chosen("box"), 0) << pattern;
        EXPECT_EQ(chosen(""), 0) << pattern << ": an instance without a name has the empty one";
    }
}

TEST_F(PatternSwitch, AMissingNameComparesAsTheEmptyText)
{
    set({"?", "^$"});
    EXPECT_EQ(chosen(""), 1);
    set({"?"});
    EXPECT_EQ(chosen(""), fallback);
}

TEST_F(PatternSwitch, StringsThatAreNotThereAreEmptyPatterns)
{
    call.set("patterns", list(test::null(), "ball")).set("values", list(colorOf(0), colorOf(1)));
    EXPECT_EQ(chosen("ball"), 1);
    EXPECT_EQ(chosen("box"), 0);
    EXPECT_EQ(messages.count("error"), 0) << "the null tag is not accessed";
}

TEST_F(PatternSwitch, PatternsAndNamesOfAnyLength)
{
    const std::string text(10'000, 'x');
    set({text});
    EXPECT_EQ(chosen(text), 0);
    EXPECT_EQ(chosen("a" + text + "b"), 0);
    EXPECT_EQ(chosen(text.substr(1)), fallback);
    std::string stars;
    for (int k = 0; k < 2'500; ++k)
        stars += "ab?*";
    set({stars});
    EXPECT_EQ(chosen("ab"), fallback);
}

TEST_F(PatternSwitch, BytesBeyondAscii)
{
    EXPECT_TRUE(matches("stra??e", "stra\xC3\x9F"
                                   "e")); // two bytes
    EXPECT_TRUE(matches("\xC3\x9F", "stra\xC3\x9F"
                                    "e"));
    EXPECT_TRUE(matches("[\xC0-\xCF]", "stra\xC3\x9F"
                                       "e"));
    EXPECT_FALSE(matches("\xC3\x9E", "stra\xC3\x9F"
                                     "e"));
    EXPECT_TRUE(matches("^\xFF?\x80$", "\xFF\xFE\x80"));
}

TEST_F(PatternSwitch, ASearchWithoutEndIsGivenUpForTheDefault)
{
    for (const char* const pattern : {"(a+)+b", "(a*)*b", "(*a)+b"}) {
        set({"a", pattern});
        EXPECT_EQ(chosen(std::string(1'000, 'a')), fallback) << pattern;
        EXPECT_EQ(chosen("ab"), 1) << pattern << ": other instances are none the worse for it";
        const Lines lines = printed();
        EXPECT_EQ(std::ranges::count(lines, warning("- object " + std::string(1'000, 'a') +
                                                    " not matched to a pattern. Using default color")),
                  1)
            << pattern;
        call.end();
        EXPECT_EQ(printed().back(), info("- evaluated 2 times, 2 matches"));
    }
}

TEST_F(PatternSwitch, APatternThatIsRefusedLeavesInitAsBoostsError)
{
    for (const auto& [pattern, reason] : std::vector<std::pair<std::string, std::string>>{
             {"box[", "Character set declaration starting with [ terminated prematurely"},
             {"(", "Unmatched marking parenthesis"},
             {"+", "The repeat operator \"+\" cannot start a regular expression"},
             {"a{2,1}", "Invalid content of repeat range"},
             {"\\", "Incomplete escape sequence found"}}) {
        set({"fine", pattern});
        try {
            chosen("box");
            ADD_FAILURE() << pattern;
        } catch (const host::Error& error) {
            const std::string what = error.what();
            EXPECT_EQ(what.find("shader vhSwitchColor_v4: init failed: " + reason), 0u) << what;
        }
        call.end();
        EXPECT_EQ(printed(), Lines()) << pattern << ": no list before, no exit after";
    }
}

// ---- what is printed

TEST_F(PatternSwitch, PrintsThePairsThenADecisionForEachInstanceThenTheCount)
{
    set({"Box*", "b?ll", ""});
    const miTag box = leafOf("thebox");
    EXPECT_EQ(chosen(box), 2);
    EXPECT_EQ(printed(),
              (Lines{info("pattern / value pairs - begin"), info("pattern 0 : Box*"),
                     info("pattern 1 : b?ll"), info("pattern 2 : "), info("pattern / value pairs - end"),
                     info("- matched object thebox to pattern ")}));
    set({"Box*", "b?ll"});
    EXPECT_EQ(printed(), Lines{info("- evaluated 1 times, 1 matches")});
    chosen(box);
    printed();
    chosen(leafOf("ball"));
    chosen(leafOf("Ball"));
    EXPECT_EQ(printed(), (Lines{info("- matched object ball to pattern b?ll"),
                                warning("- object Ball not matched to a pattern. Using default color")}));
    call.end();
    EXPECT_EQ(printed(), Lines{info("- evaluated 3 times, 3 matches")});
}

TEST_F(PatternSwitch, AnInstanceIsDecidedOnceAndSaidOnce)
{
    set({"box"});
    const miTag ball = leafOf("ball");
    const miTag box = leafOf("box");
    chosen(ball);
    chosen(box);
    printed();
    for (int k = 0; k < 10; ++k) {
        EXPECT_EQ(chosen(ball), fallback);
        EXPECT_EQ(chosen(box), 0);
    }
    EXPECT_EQ(printed(), Lines());
    EXPECT_EQ(chosen(leafOf("box")), 0);
    EXPECT_EQ(printed(), Lines{info("- matched object box to pattern box")}) << "by instance, not by name";
}

TEST_F(PatternSwitch, LeavesOfOneSceneInstanceAreDecidedForEach)
{
    set({"box"});
    const miTag scene = test::sceneInstance("box");
    const miTag leaves[] = {leafOf(scene), leafOf(scene)};
    EXPECT_EQ(chosen(leaves[0]), 0);
    printed();
    EXPECT_EQ(chosen(leaves[1]), 0);
    EXPECT_EQ(printed(), Lines{info("- matched object box to pattern box")});
    for (const miTag leaf : leaves)
        EXPECT_EQ(chosen(leaf), 0);
    call.end();
    EXPECT_EQ(printed(), Lines{info("- evaluated 4 times, 2 matches")});
}

TEST_F(PatternSwitch, KeepsNoPointerToItsPatterns)
{
    const test::RelocatedStrings moving;
    const std::string longOne = "a*pattern*that is too long for a short string";
    set({"box", longOne});
    EXPECT_EQ(chosen("a pattern that is too long for a short string"), 1);
    EXPECT_EQ(chosen("boxes"), 0);
    EXPECT_EQ(chosen("###"), fallback) << "what is left where a pattern was";
    EXPECT_EQ(
        printed(),
        (Lines{info("pattern / value pairs - begin"), info("pattern 0 : box"), info("pattern 1 : " + longOne),
               info("pattern / value pairs - end"),
               info("- matched object a pattern that is too long for a short string to pattern " + longOne),
               info("- matched object boxes to pattern box"),
               warning("- object ### not matched to a pattern. Using default color")}));
    call.end(); // while strings move
}

TEST_F(PatternSwitch, TheCountIsOfSamplesAndOfInstances)
{
    set({"box"});
    const miTag instances[] = {leafOf("box"), leafOf("ball"), leafOf("cone")};
    for (int sample = 0; sample < 1000; ++sample)
        chosen(instances[sample % 3]);
    call.end();
    EXPECT_EQ(printed().back(), info("- evaluated 1000 times, 3 matches"));
}

TEST_F(PatternSwitch, ADecisionIsPrintedOfAllTheNamesText)
{
    set({"%s%n"});
    EXPECT_EQ(chosen("50%s%n"), 0);
    EXPECT_EQ(printed().back(), info("- matched object 50%s%n to pattern %s%n"));
}

TEST_F(PatternSwitch, EachShaderInstanceLearnsByItself)
{
    set({"box"});
    const miTag box = leafOf("box");
    chosen(box);
    call.end();
    printed();
    chosen(box);
    EXPECT_EQ(printed().back(), info("- matched object box to pattern box"));
    call.end();
    EXPECT_EQ(printed(), Lines{info("- evaluated 1 times, 1 matches")});
}

// ---- arrays

TEST_F(PatternSwitch, ArraysOfUnequalLengthWarnAndUseTheShorter)
{
    set({"a", "b"}, 3);
    EXPECT_EQ(chosen("b"), 1);
    EXPECT_EQ(printed(), (Lines{warning("- length of pattern and value arrays do not match."),
                                info("- matched object b to pattern b")}));
    set({"a", "b", "c"}, 2);
    printed();
    EXPECT_EQ(chosen("c"), fallback);
    EXPECT_EQ(chosen("b"), 1);
    EXPECT_EQ(printed(), (Lines{warning("- length of pattern and value arrays do not match."),
                                warning("- object c not matched to a pattern. Using default color"),
                                info("- matched object b to pattern b")}));
    set({"a", "b["}, 1); // what is left over is not compiled either
    EXPECT_EQ(chosen("a"), 0);
}

TEST_F(PatternSwitch, EmptyArrays)
{
    set({});
    EXPECT_EQ(chosen("box"), fallback);
    EXPECT_EQ(printed(), (Lines{info("pattern / value pairs - begin"), info("pattern / value pairs - end"),
                                warning("- object box not matched to a pattern. Using default color")}));
    set({}, 2);
    printed();
    EXPECT_EQ(chosen("box"), fallback);
    EXPECT_EQ(printed().front(), warning("- length of pattern and value arrays do not match."));
}

/// An array's start and count in the parameter block.
struct Extent {
    int first, count;
};
Extent& extent(Call& call, const std::string& parameter)
{
    auto* const block = static_cast<char*>(call.function().parameters());
    return *reinterpret_cast<Extent*>(block + call.declaration().parameter(parameter)->offset);
}

TEST_F(PatternSwitch, NegativeCountsAreNoPairs)
{
    set({"a", "b"});
    extent(call, "patterns").count = -1;
    EXPECT_EQ(chosen("b"), fallback);
    EXPECT_EQ(printed().front(), warning("- length of pattern and value arrays do not match."));
    set({"a", "b"});
    printed();
    extent(call, "patterns").count = extent(call, "values").count = -3;
    EXPECT_EQ(chosen("b"), fallback);
    EXPECT_EQ(printed(), (Lines{info("pattern / value pairs - begin"), info("pattern / value pairs - end"),
                                warning("- object b not matched to a pattern. Using default color")}));
}

TEST_F(PatternSwitch, ArraysBeginWhereTheirStartSays)
{
    set({"a", "b", "c"});
    ASSERT_NE(extent(call, "patterns").first, 0) << "several elements lie behind the structure";
    ASSERT_NE(extent(call, "values").first, 0);
    EXPECT_EQ(chosen("c"), 2);
    set({"a", "b", "c"});
    ++extent(call, "patterns").first;
    extent(call, "patterns").count = 2;
    extent(call, "values").count = 2;
    EXPECT_EQ(chosen("b"), 0);
    EXPECT_EQ(chosen("c"), 1);
    EXPECT_EQ(chosen("a"), fallback);
    set({"a"});
    ASSERT_EQ(extent(call, "patterns").first, 0) << "one element sits in the slot";
    EXPECT_EQ(chosen("a"), 0);
}

// ---- connections

TEST_F(PatternSwitch, OnlyTheChosenValueIsEvaluated)
{
    set({"a", "b", "c"});
    call.connect("values").connect("defaultColor");
    const miTag b = leafOf("b");
    EXPECT_EQ(chosen(b), 1);
    EXPECT_EQ(call.trace(), "values[0] values[1] values[2]")
        << "init reads all, in order, and b is then known";
    EXPECT_EQ(chosen(b), 1);
    EXPECT_EQ(call.trace(), "values[1]");
    EXPECT_EQ(chosen("a"), 0);
    EXPECT_EQ(call.trace(), "values[0]");
    EXPECT_EQ(chosen("none"), fallback);
    EXPECT_EQ(call.trace(), "defaultColor");
}

TEST_F(PatternSwitch, UnequalArraysAreNotReadInInit)
{
    set({"a", "b"}, 3);
    call.connect("values").connect("defaultColor");
    EXPECT_EQ(chosen("b"), 1);
    EXPECT_EQ(call.trace(), "values[1]");
}

// ---- against the rule written out

/// Whether the pattern is found in the name: the translation by hand, the search with Boost as it comes, each
/// match walked through to the end.
bool found(const std::string& pattern, const std::string& name)
{
    std::string text;
    for (const char c : pattern)
        text += c == '*' ? ".*" : c == '?' ? "." : std::string(1, c >= 'A' && c <= 'Z' ? char(c + 32) : c);
    const boost::regex regex(text);
    boost::match_results<std::string::const_iterator> match;
    boost::match_flag_type flags = boost::match_default;
    bool any = false;
    for (auto from = name.begin(); boost::regex_search(from, name.end(), match, regex, flags);) {
        any = true;
        from = match[0].second;
        flags |= boost::match_prev_avail | boost::match_not_bob;
        if (match[0].first == match[0].second)
            break;
    }
    return any;
}

std::string randomText(std::mt19937& random, const std::string& alphabet, std::size_t most)
{
    std::string text(random() % (most + 1), ' ');
    for (char& c : text)
        c = alphabet[random() % alphabet.size()];
    return text;
}

TEST_F(PatternSwitch, ManyPatternsAndNamesAgreeWithTheRule)
{
    std::mt19937 random(3);
    const std::string letters = "abAB1_\xE4";
    int matched = 0;
    int refused = 0;
    for (int round = 0; round < 1'500; ++round) {
        std::vector<std::string> patterns(1 + random() % 4);
        for (std::string& pattern : patterns)
            pattern = randomText(random, "aabbAB1_\xE4**??.[]()+|^$\\dw", 6);
        const std::string name = randomText(random, letters, 8);
        SCOPED_TRACE(testing::PrintToString(patterns) + " and " + name);
        float expected = fallback;
        try {
            for (std::size_t k = 0; k < patterns.size(); ++k)
                if (found(patterns[k], name))
                    expected = float(k);
            set(patterns);
            ASSERT_EQ(chosen(name), expected);
            matched += expected != fallback;
        } catch (const boost::regex_error&) {
            ++refused;
            set(patterns);
            ASSERT_THROW(chosen(name), host::Error);
        }
    }
    EXPECT_GT(matched, 100);
    EXPECT_GT(refused, 100);
}

// ---- threads

TEST_F(PatternSwitch, EightThreadsDecideOnceForEachInstance)
{
    constexpr int threads = 8;
    constexpr int rounds = 10;
    std::vector<std::pair<miTag, float>> expected;
    for (int k = 0; k < 300; ++k) {
        const std::string number = std::to_string(k);
        expected.emplace_back(leafOf(std::array{"box", "ball", "Cone"}[k % 3] + number),
                              std::array{0.0f, 1.0f, fallback}[k % 3]);
    }
    set({"b*", "ball*"});
    std::atomic<int> wrong = 0;
    std::latch start(threads);
    call.onThreads(threads, [&](test::Sample& sample) {
        start.arrive_and_wait();
        for (int round = 0; round < rounds; ++round)
            for (const auto& [instance, value] : expected) {
                sample.state.instance = instance;
                wrong += sample.run<miColor>().r != value;
            }
    });
    EXPECT_EQ(wrong, 0);
    EXPECT_EQ(messages.count("- matched object "), 200);
    EXPECT_EQ(messages.count(" not matched to a pattern."), 100);
    call.end();
    EXPECT_EQ(printed().back(), info("- evaluated 24000 times, 300 matches"));
}

} // namespace
