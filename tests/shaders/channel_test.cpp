// SPDX-License-Identifier: BSD-3-Clause
// Reorder: every pattern of four letters against the rule restated, and its edges.
#include "expect.h"
#include "tests/harness/call.h"
#include "tests/harness/messages.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <cstdint>
#include <map>

namespace {

using test::Call;

/// Bits, so that what passes is seen to pass: a signalling NaN, -0, an infinity and a denormal among them.
template <std::size_t Count>
using Bits = std::array<std::uint32_t, Count>;

constexpr std::uint32_t one = 0x3F800000;

struct Color {
    static constexpr const char* shader = "vhReorderColor_v1";
    static constexpr std::string_view names = "rgba";
    static constexpr Bits<4> input = {0x7F800001, 0x80000000, 0xFF800000, 0x00000003};
};

struct Vector {
    static constexpr const char* shader = "vhReorderVector_v1";
    static constexpr std::string_view names = "xyz";
    static constexpr Bits<3> input = {0xFF800001, 0x80000000, 0x00000003};
};

/// The rule as a table of what the letters stand for.
template <class Kind>
auto expected(const std::string& pattern)
{
    std::map<char, std::uint32_t> meanings = {{'0', 0}, {'1', one}};
    for (std::size_t i = 0; i < Kind::names.size(); ++i)
        meanings[Kind::names[i]] = Kind::input[i];
    auto result = Kind::input;
    for (std::size_t i = 0; i < std::min(pattern.size(), result.size()); ++i)
        if (meanings.contains(pattern[i]))
            result[i] = meanings[pattern[i]];
    return result;
}

template <class Kind>
auto reordered(const std::string& pattern)
{
    Call call(Kind::shader);
    call.set("order", pattern);
    auto input = Kind::input;
    return call.change("input", input).template run<decltype(input)>();
}

template <class Kind>
class Reorder : public testing::Test {
};
using Kinds = testing::Types<Color, Vector>;
TYPED_TEST_SUITE(Reorder, Kinds);

// Up to one letter more than there are components; of other letters those of the other kind and a capital.
TYPED_TEST(Reorder, AgreesWithTheRuleForEveryPattern)
{
    const std::string letters =
        std::string(TypeParam::names) + "01" + (TypeParam::names[0] == 'r' ? "yR" : "gX");
    std::vector<std::string> patterns = {""};
    for (std::size_t i = 0; i < patterns.size(); ++i) {
        const std::string pattern = patterns[i];
        ASSERT_EQ(reordered<TypeParam>(pattern), expected<TypeParam>(pattern)) << pattern;
        if (pattern.size() < TypeParam::names.size())
            for (const char letter : letters)
                patterns.push_back(pattern + letter);
    }
}

TYPED_TEST(Reorder, AgreesWithTheRuleForEveryCharacterAtEveryPlace)
{
    for (std::size_t place = 0; place < TypeParam::names.size(); ++place)
        for (int character = 1; character < 256; ++character) {
            std::string pattern(TypeParam::names.size(), '0');
            pattern[place] = static_cast<char>(character);
            ASSERT_EQ(reordered<TypeParam>(pattern), expected<TypeParam>(pattern)) << pattern;
        }
}

TYPED_TEST(Reorder, KeepsTheInputWithoutAPattern)
{
    test::Messages messages;
    EXPECT_EQ(reordered<TypeParam>(""), TypeParam::input);
    auto input = TypeParam::input;
    Call left(TypeParam::shader); // the default
    EXPECT_EQ(left.change("input", input).template run<decltype(input)>(), input);
    Call null(TypeParam::shader);
    null.set("order", test::null());
    EXPECT_EQ(null.change("input", input).template run<decltype(input)>(), input);
    EXPECT_TRUE(messages.lines().empty()) << "no tag is looked up: " << messages.lines()[0];
}

TYPED_TEST(Reorder, TakesThePatternOfAnotherShader)
{
    Call call(TypeParam::shader);
    auto input = TypeParam::input;
    call.set("order", "01").connectAll();
    const auto result = call.change("input", input).template run<decltype(input)>();
    EXPECT_EQ(result, expected<TypeParam>("01"));
    EXPECT_EQ(call.trace(), "input order");
    EXPECT_EQ(call.returned(), 1);
}

miColor color(const char* pattern, const miColor& input)
{
    return Call("vhReorderColor_v1").set("input", input).set("order", pattern).run<miColor>();
}

constexpr miColor input = {0.1f, 0.2f, 0.3f, 0.4f};

TEST(ReorderEdges, AnEmptyPatternKeepsTheColor) { expectColor(color("", input), input); }

TEST(ReorderEdges, OneChannelInAllPlaces) { expectColor(color("aaaa", input), {0.4f, 0.4f, 0.4f, 0.4f}); }

TEST(ReorderEdges, CapitalsAreNoNames) { expectColor(color("RGBA", input), input); }

TEST(ReorderEdges, LettersOfAVectorAreNoNamesInAColor) { expectColor(color("xyzw", input), input); }

TEST(ReorderEdges, AShortPatternKeepsTheRest)
{
    expectColor(color("r1", input), {0.1f, 1, 0.3f, 0.4f});
    expectColor(color("rg", input), input);
}

TEST(ReorderEdges, CommonPatterns)
{
    expectColor(color("bgra", input), {0.3f, 0.2f, 0.1f, 0.4f});
    expectColor(color("rgb1", input), {0.1f, 0.2f, 0.3f, 1});
    expectColor(color("000a", input), {0, 0, 0, 0.4f});
}

TEST(ReorderEdges, LettersBeyondTheLastComponentAreIgnored)
{
    expectColor(color("abgr01", input), {0.4f, 0.3f, 0.2f, 0.1f});
    Call vector("vhReorderVector_v1");
    vector.set("input", miVector{1, 2, 3}).set("order", "zyx1");
    const miVector result = vector.run<miVector>();
    EXPECT_EQ(result.x, 3);
    EXPECT_EQ(result.y, 2);
    EXPECT_EQ(result.z, 1);
}

} // namespace
