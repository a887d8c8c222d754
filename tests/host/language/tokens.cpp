// SPDX-License-Identifier: BSD-3-Clause
#include "tests/host/language/scene.h"

using namespace std::string_literals;

namespace test {

namespace {

const std::string declared =
    "declare color \"any\" ( string \"text\", vector \"v\", integer \"n\", boolean \"b\", scalar \"s\" )\n";

std::string text(const std::string& quoted)
{
    Scene scene(declared + "shader \"x\" \"any\" ( \"text\" " + quoted + " )");
    return scene.textOf("x", "text");
}

float scalar(const std::string& number)
{
    Scene scene(declared + "shader \"x\" \"any\" ( \"s\" " + number + " )");
    return scene.parameter<float>("x", "s");
}

int integer(const std::string& number)
{
    Scene scene(declared + "shader \"x\" \"any\" ( \"n\" " + number + " )");
    return scene.parameter<int>("x", "n");
}

} // namespace

TEST(Tokens, QuotesAndBackslashesAreEscaped)
{
    EXPECT_EQ(text(R"("plain")"), "plain");
    EXPECT_EQ(text(R"("say \"so\"")"), "say \"so\"");
    EXPECT_EQ(text(R"("back\\slash")"), "back\\slash");
    EXPECT_EQ(text(R"("\\")"), "\\");
    EXPECT_EQ(text(R"("C:\new")"), "C:\\new") << "a backslash before anything else stands for itself";
    EXPECT_EQ(text("\"# no comment\""), "# no comment");
    EXPECT_EQ(text("\"gr\xc3\xbc\xc3\x9f\""), "gr\xc3\xbc\xc3\x9f");
}

TEST(Tokens, ANameNeedsNoQuotesUnlessItIsAKeyword)
{
    EXPECT_EQ(text("bare_name2"), "bare_name2");
    EXPECT_EQ(text("\"camera\""), "camera");
    EXPECT_EQ(errorOf("options camera"), "1:9: found the keyword \"camera\", expected a name");
}

TEST(Tokens, NumbersHaveThePointAnywhere)
{
    EXPECT_EQ(scalar("1.0"), 1.0f);
    EXPECT_EQ(scalar(".5"), 0.5f);
    EXPECT_EQ(scalar("2."), 2.0f);
    EXPECT_EQ(scalar("-.25"), -0.25f);
    EXPECT_EQ(scalar("7"), 7.0f) << "an integer where a float is expected";
    EXPECT_EQ(scalar("1.5e3"), 1500.0f);
    EXPECT_EQ(scalar("1.5E-1"), 0.15f);
    EXPECT_EQ(scalar("2e+2"), 200.0f);
    EXPECT_EQ(scalar("2.e+2"), 200.0f);
    EXPECT_EQ(scalar("1e-400"), 0.0f) << "too small to be told from zero";
    for (const std::string text : {"1e5e3", "1.5e3e1", "1e", "1..2", "1.5.2"})
        EXPECT_EQ(errorOf(text), "1:1: \"" + text + "\" is not a number");
}

TEST(Tokens, IntegersHave32Bits)
{
    EXPECT_EQ(integer("2147483647"), 2147483647);
    EXPECT_EQ(integer("-2147483648"), -2147483647 - 1);
    EXPECT_EQ(errorOf("2147483648"), "1:1: the integer 2147483648 does not fit into 32 bits");
    EXPECT_EQ(errorOf("\n -2147483649"), "2:2: the integer -2147483649 does not fit into 32 bits");
}

TEST(Tokens, BooleansHaveTwoSpellings)
{
    for (const char* const word : {"on", "true", "1"}) {
        Scene scene(declared + "shader \"x\" \"any\" ( \"b\" " + word + " )");
        EXPECT_EQ(scene.parameter<int>("x", "b"), 1) << word;
    }
    for (const char* const word : {"off", "false", "0"}) {
        Scene scene(declared + "shader \"x\" \"any\" ( \"b\" " + word + " )");
        EXPECT_EQ(scene.parameter<int>("x", "b"), 0) << word;
    }
}

TEST(Tokens, ABinaryVectorIsThreeBigEndianFloats)
{
    // 1, -2 and 0.5; among the bytes of the last vector are a newline and a zero.
    const std::string vector = "`\x3f\x80\x00\x00\xc0\x00\x00\x00\x3f\x00\x00\x00`"s;
    Scene scene(declared + "shader \"x\" \"any\" ( \"v\" " + vector + " )");
    EXPECT_EQ(list(scene.parameter<miVector>("x", "v")), (Floats{1, -2, 0.5f}));

    Scene object("object \"o\" group " + vector + " 1 2 3 " + vector + " end group end object");
    ASSERT_EQ(object.get<host::Object>("o").vectors.size(), 3u);
    EXPECT_EQ(list(object.get<host::Object>("o").vectors[2]), (Floats{1, -2, 0.5f}));

    const std::string withNewline = "`\x3f\x80\x00\x0a\xc0\x00\x00\x00\x3f\x00\x00\x00`"s;
    EXPECT_EQ(errorOf("object \"o\" group " + withNewline + " ?"), "2:11: unexpected character '?'");
    EXPECT_EQ(errorOf("object \"o\" group `short`"),
              "1:18: a binary vector is 12 bytes between two back-quotes");
    const std::string infinite = "`\x7f\x80\x00\x00\xc0\x00\x00\x00\x3f\x00\x00\x00`"s;
    EXPECT_EQ(errorOf("object \"o\" group " + infinite),
              "1:18: a binary vector holds a number that is not finite");
}

TEST(Tokens, ByteStringsMayGoOverLines)
{
    Scene scene("scalar texture \"t\" [2 2] '00 fF\n 10' '7f'");
    EXPECT_EQ(scene.get<host::Texture>("t").bytes, (std::vector<unsigned char>{0, 255, 16, 127}));
    EXPECT_EQ(errorOf("scalar texture \"t\" [2 2] '00\nfg'"),
              "2:2: a byte string holds pairs of hexadecimal digits only");
    EXPECT_EQ(errorOf("scalar texture \"t\" [1 1] '0'"), "1:28: a byte string has an odd number of digits");
    EXPECT_EQ(errorOf("scalar texture \"t\" [1 1] '00\n"), "2:1: the text ends inside a byte string");
}

TEST(Tokens, AByteStringHoldsAtMost1024Bytes)
{
    const std::string full(2 * host::maximumByteString, '0');
    EXPECT_EQ(errorOf("scalar texture \"t\" [32 32] '" + full + "'"), "accepted");
    EXPECT_EQ(errorOf("scalar texture \"t\" [32 32] '" + full + "00'").substr(0, 7), "1:2077:");
}

TEST(Tokens, CommentsEndWithTheirLine)
{
    EXPECT_EQ(errorOf("# \" ' ` $ { not read\nfoo"), "2:1: found the name \"foo\", expected a command");
    EXPECT_EQ(errorOf("#: default 1\n#"), "accepted");
}

TEST(Tokens, ColumnsCountBytesFromOne)
{
    EXPECT_EQ(errorOf("  foo"), "1:3: found the name \"foo\", expected a command");
    EXPECT_EQ(errorOf("\t\r\n\tfoo"), "2:2: found the name \"foo\", expected a command");
}

TEST(Tokens, WhatIsNoTokenIsRefused)
{
    EXPECT_EQ(errorOf("\"abc"), "1:1: a string must end on the line where it begins");
    EXPECT_EQ(errorOf("\"abc\n\""), "1:1: a string must end on the line where it begins");
    EXPECT_EQ(errorOf("\"abc\\\n\""), "1:1: a string must end on the line where it begins");
    EXPECT_EQ(errorOf("\"a\0b\""s), "1:1: a string holds a zero byte");
    EXPECT_EQ(errorOf("1.2.3"), "1:1: \"1.2.3\" is not a number");
    EXPECT_EQ(errorOf("12ab"), "1:1: \"12ab\" is not a number");
    EXPECT_EQ(errorOf("1e39"), "1:1: the number 1e39 is too large");
    EXPECT_EQ(errorOf("-1e999"), "1:1: the number -1e999 is too large");
    EXPECT_EQ(errorOf("?"), "1:1: unexpected character '?'");
    EXPECT_EQ(errorOf("a\0"s), "1:1: found the name \"a\", expected a command");
    EXPECT_EQ(errorOf("\0"s), "1:1: unexpected byte 0x00");
    EXPECT_EQ(errorOf("\xc3\xa9"), "1:1: unexpected byte 0xc3");
    EXPECT_EQ(errorOf("\x1b[2J"), "1:1: unexpected byte 0x1b");
}

} // namespace test
