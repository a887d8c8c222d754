// SPDX-License-Identifier: BSD-3-Clause
#include "core/text.h"

#include <gtest/gtest.h>

#include <cstdlib>
#include <memory>
#include <string>

using Strings = std::vector<std::string>;

static std::string joined(char separator, Strings pieces)
{
    std::vector<char*> pointers;
    for (std::string& piece : pieces)
        pointers.push_back(piece.data());
    const std::unique_ptr<char, decltype(&std::free)> text(VHL::join(separator, pointers), std::free);
    return text.get();
}

static Strings pieces(char separator, std::string text)
{
    const std::vector<char*> pieces = VHL::split(separator, text.data());
    EXPECT_GE(pieces.capacity(), 32u);
    return {pieces.begin(), pieces.end()};
}

TEST(Join, EndsWithASeparator)
{
    EXPECT_EQ(joined(',', {"a"}), "a,");
    EXPECT_EQ(joined(',', {"a", "bc", "d"}), "a,bc,d,");
}

TEST(Join, NothingGivesAnEmptyText) { EXPECT_EQ(joined(',', {}), ""); }

TEST(Join, EmptyPiecesKeepTheirSeparators) { EXPECT_EQ(joined('/', {"", "", "x", ""}), "//x//"); }

TEST(Join, LeavesThePiecesAlone)
{
    char a[] = "a";
    std::vector<char*> list = {a};
    std::free(VHL::join(';', list));
    EXPECT_EQ(list, std::vector<char*>{a});
    EXPECT_STREQ(a, "a");
}

TEST(Split, CutsAtSeparators)
{
    EXPECT_EQ(pieces(',', "a,bc,d"), (Strings{"a", "bc", "d"}));
    EXPECT_EQ(pieces(',', "abc"), (Strings{"abc"}));
}

TEST(Split, EmptyTextIsOneEmptyPiece) { EXPECT_EQ(pieces(',', ""), (Strings{""})); }

TEST(Split, FirstCharacterIsNeverASeparator)
{
    EXPECT_EQ(pieces(',', ","), (Strings{","}));
    EXPECT_EQ(pieces(',', ",a"), (Strings{",a"}));
    EXPECT_EQ(pieces(',', ",,a"), (Strings{",", "a"}));
}

TEST(Split, SeparatorsSideBySideGiveEmptyPieces)
{
    EXPECT_EQ(pieces(',', "a,,b"), (Strings{"a", "", "b"}));
    EXPECT_EQ(pieces(',', "a,,,b"), (Strings{"a", "", "", "b"}));
}

TEST(Split, SeparatorAtTheEndGivesNoEmptyPiece)
{
    EXPECT_EQ(pieces(',', "a,"), (Strings{"a"}));
    EXPECT_EQ(pieces(',', "a,b,"), (Strings{"a", "b"}));
    EXPECT_EQ(pieces(',', "a,,"), (Strings{"a", ""}));
    EXPECT_EQ(pieces(',', ",,"), (Strings{","}));
}

TEST(Split, WorksInPlace)
{
    char text[] = "ab,c";
    const std::vector<char*> pieces = VHL::split(',', text);
    ASSERT_EQ(pieces.size(), 2u);
    EXPECT_EQ(pieces[0], text);
    EXPECT_EQ(pieces[1], text + 3);
    EXPECT_EQ(text[2], '\0');
}

TEST(Split, MoreThanTheReserve)
{
    Strings many;
    for (int i = 0; i < 100; ++i)
        many.push_back("piece" + std::to_string(i));
    EXPECT_EQ(pieces(';', joined(';', many)), many);
}
