// SPDX-License-Identifier: BSD-3-Clause
// Text that was made to hurt.
#include "tests/host/language/scene.h"

#include <algorithm>
#include <array>
#include <cstdio>
#include <cstring>
#include <sys/resource.h>

namespace test {

namespace {

/// A stream that begins with some text, goes on with one byte repeated, and ends with other text.
class LongText {
public:
    LongText(std::string begin, std::string filler, std::size_t fillerBytes, std::string end)
        : begin_(std::move(begin)), filler_(std::move(filler)), end_(std::move(end)),
          fillerBytes_(fillerBytes)
    {
        cookie_io_functions_t functions{};
        functions.read = [](void* self, char* bytes, std::size_t size) {
            return static_cast<LongText*>(self)->read(bytes, size);
        };
        stream_ = fopencookie(this, "r", functions);
    }
    ~LongText() { std::fclose(stream_); }
    LongText(const LongText&) = delete;
    LongText& operator=(const LongText&) = delete;

    std::FILE* stream() { return stream_; }
    std::size_t delivered() const { return delivered_; }

private:
    ssize_t read(char* bytes, std::size_t size)
    {
        std::size_t count = 0;
        while (count < size && delivered_ < begin_.size() + fillerBytes_ + end_.size()) {
            const std::size_t at = delivered_++;
            bytes[count++] = at < begin_.size() ? begin_[at]
                             : at < begin_.size() + fillerBytes_
                                 ? filler_[(at - begin_.size()) % filler_.size()]
                                 : end_[at - begin_.size() - fillerBytes_];
        }
        return static_cast<ssize_t>(count);
    }

    std::string begin_, filler_, end_;
    std::size_t fillerBytes_;
    std::size_t delivered_ = 0;
    std::FILE* stream_ = nullptr;
};

constexpr std::size_t wholeLine = std::size_t(64) << 20;

std::string errorOfLongText(LongText& text)
{
    Scene scene;
    try {
        host::readScene(scene.session, text.stream(), "scene");
    } catch (const host::Error& error) {
        return error.what();
    }
    return "accepted";
}

/// Largest memory that the process ever had, in bytes.
std::size_t peakMemory()
{
    rusage usage{};
    getrusage(RUSAGE_SELF, &usage);
    return static_cast<std::size_t>(usage.ru_maxrss) * 1024;
}

const std::string everything =
    R"(declare shader struct { color "c", scalar "s" } "any" ( scalar "s", array color "cs" ) version 1 end declare
$ifndef "x"
options "opt" samples 0 1 "text" "x" filter box end options
camera "cam" lens "any" ( ) output "rgba" "tif" "a.tif" end camera
light "l" "any" ( "s" 1.5 ) origin 0 0 0 user 3 1 end light
instance "l-i" "l" transform 2 0 0 0 0 2 0 0 0 0 2 0 1 2 3 1 end instance
color texture "t" [1 1] '00112233'
shader "s" "any" ( "cs" [ 1 0 0, = "z" ] )
$endif
material "m" "any" ( ) shadow = shader "q" "any" ( ) end material
object "o" group 0 0 0 1 0 0 0 1 0 v 0 v 1 n 2 v 2 c "m" 0 1 2 end group end object
instgroup "g" "l-i" end instgroup
)";

} // namespace

TEST(Hostile, ASceneCutAnywhereIsReadOrRefused)
{
    // The whole is refused too, as "z" is not there: so every cut ends in an Error or in the end of the text.
    int refused = 0;
    for (std::size_t size = 0; size <= everything.size(); ++size) {
        const std::string text = everything.substr(0, size);
        const std::string error = errorOf(text);
        refused += error != "accepted";
        EXPECT_EQ(error.find('\n'), std::string::npos) << error;
    }
    EXPECT_GT(refused, static_cast<int>(everything.size()) / 2);
}

TEST(Hostile, EveryByteMayBeAnyOther)
{
    for (const char byte : {'\0', '"', '`', '[', '\n'})
        for (std::size_t i = 0; i < everything.size(); ++i) {
            std::string text = everything;
            text[i] = byte;
            errorOf(text);
        }
}

TEST(Hostile, BracketsNestOnlySoDeep)
{
    constexpr std::size_t deep = 100000;
    const std::string declaration = "declare color \"a\" ( array scalar \"s\", shader \"t\" )\n";
    const std::string limit =
        " brackets are nested deeper than " + std::to_string(host::maximumNesting) + " levels";
    EXPECT_EQ(errorOf(declaration + "shader \"x\" \"a\" ( \"s\" " + std::string(deep, '[')),
              "2:277:" + limit);
    std::string text = declaration + "shader \"x\" \"a\" ( \"s\" ";
    for (std::size_t i = 0; i < deep; ++i)
        text += "{ \"s\" ";
    EXPECT_EQ(errorOf(text).substr(0, 2), "2:");
    EXPECT_NE(errorOf(text).find(limit), std::string::npos);

    text = "declare shader ";
    for (std::size_t i = 0; i < deep; ++i)
        text += "struct { struct \"s\" { ";
    EXPECT_NE(errorOf(text).find("expected"), std::string::npos);
    text = "declare color \"a\" ( ";
    for (std::size_t i = 0; i < deep; ++i)
        text += "struct \"s\" { ";
    EXPECT_NE(errorOf(text).find(limit), std::string::npos);
    EXPECT_NE(errorOf("declare shader \"a\" ( ) gui " + std::string(deep, '{')).find(limit),
              std::string::npos);
    EXPECT_EQ(errorOf("declare shader \"a\" ( ) gui {"), "1:28: this bracket is never closed");
}

TEST(Hostile, ValuesAsDeepAsTheLimitAreRefusedForWhatTheyAre)
{
    const std::size_t depth = host::maximumNesting - 1; // the parameter list's own bracket is the first
    const std::string text = "declare color \"a\" ( array scalar \"s\" )\nshader \"x\" \"a\" ( \"s\" " +
                             std::string(depth, '[') + std::string(depth, ']') + " )";
    EXPECT_EQ(errorOf(text).find("nested deeper"), std::string::npos);
    EXPECT_NE(errorOf(text), "accepted");
}

TEST(Hostile, ALongStringNameOrNumberIsRefusedEarly)
{
    struct Row {
        std::string begin, filler, what;
    };
    for (const Row& row :
         {Row{"echo \"", "a", "a string"}, Row{"echo \"", "\\\"", "a string"}, Row{"echo ", "b", "a name"},
          Row{"echo ", "1", "a number"}, Row{"echo .", "1", "a number"}, Row{"$include \"", "a", "a string"},
          Row{"$", "include", "a name"}, Row{"$ifdef ", "x", "a name"}}) {
        SCOPED_TRACE(row.begin + row.filler);
        LongText text(row.begin, row.filler, wholeLine, "\n");
        const std::string error = errorOfLongText(text);
        EXPECT_EQ(error.rfind("scene:1:", 0), 0u) << error;
        EXPECT_NE(error.find(": " + row.what + " is longer than 1048576 bytes"), std::string::npos) << error;
        EXPECT_LT(text.delivered(), 4 * host::maximumToken);
    }
}

TEST(Hostile, LongBlanksCommentsAndSkippedTextAreReadOver)
{
    struct Row {
        std::string begin, filler, end;
    };
    const std::size_t before = peakMemory();
    for (const Row& row :
         {Row{"", " ", ""}, Row{"# ", "x", "\n"}, Row{"$ifdef \"no\"\n", "y \"", "\n$endif\n"}}) {
        SCOPED_TRACE(row.begin + row.filler);
        LongText text(row.begin, row.filler, wholeLine, row.end + "set \"after\"");
        EXPECT_EQ(errorOfLongText(text), "accepted");
        EXPECT_EQ(text.delivered(), row.begin.size() + wholeLine + row.end.size() + 11);
    }
    EXPECT_LT(peakMemory() - before, wholeLine / 2);
}

TEST(Hostile, TheLongestTokenIsStillRead)
{
    Scene scene;
    scene.read("set \"x\" \"" + std::string(host::maximumToken - 2, 'a') + '"');
    EXPECT_EQ(scene.session.variables["x"].size(), host::maximumToken - 2);
    EXPECT_EQ(errorOf("set \"x\" \"" + std::string(host::maximumToken - 1, 'a') + '"'),
              "1:9: a string is longer than 1048576 bytes");
}

TEST(Hostile, AStreamThatFailsIsAnError)
{
    cookie_io_functions_t functions{};
    functions.read = [](void*, char*, std::size_t) -> ssize_t {
        errno = EIO;
        return -1;
    };
    std::FILE* const stream = fopencookie(nullptr, "r", functions);
    Scene scene;
    std::string message = "accepted";
    try {
        host::readScene(scene.session, stream, "scene");
    } catch (const host::Error& error) {
        message = error.what();
    }
    std::fclose(stream);
    EXPECT_EQ(message, "scene:1:1: reading fails: Input/output error");
}

TEST(Hostile, ControlCharactersDoNotReachTheTerminal)
{
    EXPECT_EQ(errorOf("delete \"\x1b[2J\""), "1:8: there is no element \"?[2J\"");
}

} // namespace test
