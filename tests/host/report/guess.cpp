// SPDX-License-Identifier: BSD-3-Clause
#include "host/report/guess.h"

#include <gtest/gtest.h>

#include <initializer_list>
#include <string>

namespace {

using host::editDistance;

std::string guess(std::string_view wrong, std::initializer_list<std::string_view> names)
{
    host::Guess made(wrong);
    for (const std::string_view name : names)
        made.offer(name);
    return made.text();
}

TEST(EditDistance, OfKnownPairs)
{
    struct Row {
        const char* a;
        const char* b;
        std::size_t distance;
    };
    for (const Row& row : {Row{"", "", 0}, Row{"", "abc", 3}, Row{"abc", "abc", 0},
                           Row{"kitten", "sitting", 3}, Row{"saturday", "sunday", 3}, Row{"flaw", "lawn", 2},
                           Row{"weight", "wieght", 1}, Row{"ab", "ba", 1}, Row{"abcd", "badc", 2},
                           Row{"ca", "abc", 3}, Row{"color", "colour", 1}, Row{"Case", "case", 1}}) {
        EXPECT_EQ(editDistance(row.a, row.b), row.distance) << row.a << " " << row.b;
        EXPECT_EQ(editDistance(row.b, row.a), row.distance) << row.b << " " << row.a;
    }
}

TEST(Guess, IsTheNearest)
{
    EXPECT_EQ(guess("wieght", {"height", "weight", "input"}), "; did you mean \"weight\"?");
    EXPECT_EQ(guess("wieght", {"weight", "height", "input"}), "; did you mean \"weight\"?");
    EXPECT_EQ(guess("wieght", {"input", "weights"}), "; did you mean \"weights\"?") << "two edits";
}

TEST(Guess, OfEquallyNearOnesIsTheFirstInTheAlphabet)
{
    EXPECT_EQ(guess("mix_v3", {"mix_v2", "mix_v1", "mix_v4"}), "; did you mean \"mix_v1\"?");
}

TEST(Guess, HasAtMostTwoEditsAndAThirdOfTheLength)
{
    EXPECT_EQ(guess("abcdefghi", {"abcdef"}), "") << "three edits";
    EXPECT_EQ(guess("abcdefghi", {"abcdefg"}), "; did you mean \"abcdefg\"?");
    EXPECT_EQ(guess("abcde", {"abc"}), "") << "two edits of five characters";
    EXPECT_EQ(guess("abcde", {"abcd"}), "; did you mean \"abcd\"?");
    EXPECT_EQ(guess("ab", {"a", "abc", "ac"}), "") << "one edit of two characters";
    EXPECT_EQ(guess("", {"a"}), "");
    EXPECT_EQ(guess("abc", {}), "");
}

TEST(Guess, DoesNotCompareWhatNobodyTypes)
{
    const std::string endless(1000000, 'a');
    EXPECT_EQ(guess(endless, {endless + 'b'}), "");
    EXPECT_EQ(guess("abc", {endless}), "");
}

} // namespace
