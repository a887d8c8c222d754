// SPDX-License-Identifier: BSD-3-Clause
#include "tests/harness/folder.h"
#include "tests/host/language/scene.h"

#include <filesystem>
#include <fstream>
#include <unistd.h>

namespace fs = std::filesystem;

namespace test {

namespace {

std::string fileError(Scene& scene, const std::string& file)
{
    try {
        host::readScene(scene.session, file);
    } catch (const host::Error& error) {
        return error.what();
    }
    return "accepted";
}

bool isSet(const Scene& scene, const std::string& name) { return scene.session.variables.contains(name); }

} // namespace

TEST(Include, IsFoundBesideTheFileThatNamesIt)
{
    const Folder folder;
    const std::string file = folder.write("main.mi", "$include \"below/a.mi\"\nset \"main\"");
    folder.write("below/a.mi", "set \"a\"\n$include \"b\"   # and on\nset \"after\"");
    folder.write("below/b.mi", "set \"b\"");
    Scene scene;
    EXPECT_EQ(fileError(scene, file), "accepted");
    EXPECT_TRUE(isSet(scene, "a") && isSet(scene, "b") && isSet(scene, "after") && isSet(scene, "main"));
}

TEST(Include, AnglesLookAlongThePathFirst)
{
    const Folder folder;
    const std::string quoted = folder.write("quoted.mi", "$include \"x.mi\"");
    const std::string angled = folder.write("angled.mi", "$include <x.mi>");
    folder.write("x.mi", "set \"beside\"");
    folder.write("below/x.mi", "set \"path\"");
    Scene first;
    first.session.paths.include = {folder.path("below")};
    EXPECT_EQ(fileError(first, quoted), "accepted");
    EXPECT_TRUE(isSet(first, "beside") && !isSet(first, "path"));
    Scene second;
    second.session.paths.include = {folder.path("nowhere"), folder.path("below")};
    EXPECT_EQ(fileError(second, angled), "accepted");
    EXPECT_TRUE(isSet(second, "path") && !isSet(second, "beside"));
}

TEST(Include, ErrorsNameTheIncludedFile)
{
    const Folder folder;
    const std::string file = folder.write("main.mi", "$include \"x.mi\"");
    const std::string inner = folder.write("x.mi", "\n  foo");
    Scene scene;
    EXPECT_EQ(fileError(scene, file), inner + ":2:3: found the name \"foo\", expected a command");
}

TEST(Include, AMissingFileOrAFolderIsRefused)
{
    EXPECT_EQ(errorOf("$include \"no such file\""),
              "1:10: cannot find the file \"no such file\" to include; looked in \".\"");
    const Folder folder;
    EXPECT_EQ(errorOf("$include \"" + folder.path() + "\""),
              "1:10: cannot find the file \"" + folder.path() + "\" to include");
}

TEST(Include, FilesMayNotIncludeOneAnotherForever)
{
    const Folder folder;
    const std::string file = folder.write("a.mi", "$include \"b.mi\"");
    folder.write("b.mi", "$include \"a.mi\"");
    Scene scene;
    const std::string place = folder.path(host::maximumIncludes % 2 == 0 ? "a.mi" : "b.mi");
    EXPECT_EQ(fileError(scene, file), place + ":1:10: files include one another deeper than " +
                                          std::to_string(host::maximumIncludes) + " levels");
}

TEST(Include, AsDeepAsTheLimitSays)
{
    const Folder folder;
    for (int i = 0; i < host::maximumIncludes; ++i)
        folder.write(std::to_string(i) + ".mi", "$include \"" + std::to_string(i + 1) + ".mi\"");
    folder.write(std::to_string(host::maximumIncludes) + ".mi", "set \"deepest\"");
    Scene scene;
    EXPECT_EQ(fileError(scene, folder.path("0.mi")), "accepted");
    EXPECT_TRUE(isSet(scene, "deepest"));
}

TEST(Include, AFileDoesNotShareItsLastTokenOrItsConditionals)
{
    const Folder folder;
    const std::string file = folder.write("main.mi", "$include \"x.mi\"\n\"cd\"");
    const std::string inner = folder.write("x.mi", "set \"ab\"");
    Scene scene;
    EXPECT_EQ(fileError(scene, file), "accepted");
    EXPECT_EQ(scene.session.variables["ab"], "cd") << "tokens go on in the next file";

    folder.write("x.mi", "set \"y\"\n$ifdef \"y\"");
    Scene second;
    EXPECT_EQ(fileError(second, file), inner + ":2:8: this conditional has no $endif");
}

TEST(File, IsTriedWithTheEndingToo)
{
    const Folder folder;
    folder.write("a.mi", "set \"found\"");
    folder.write("below/x.mi", "");
    Scene scene;
    EXPECT_EQ(fileError(scene, folder.path("a")), "accepted");
    EXPECT_TRUE(isSet(scene, "found"));
    EXPECT_EQ(fileError(scene, folder.path("b")),
              "cannot read \"" + folder.path("b") + "\": No such file or directory");
    EXPECT_EQ(fileError(scene, folder.path("below")),
              "cannot read \"" + folder.path("below") + "\": it is a folder");
}

TEST(Conditional, SelectsByVariable)
{
    Scene scene("set \"x\" \"value\"\n"
                "$ifdef \"x\"\nset \"1\"\n$else\nset \"2\"\n$endif\n"
                "$ifndef x\nset \"3\"\n$else # else\nset \"4\"\n$endif\n"
                "$ifdef \"y\"\nset \"5\" junk ' \"\n$endif\n"
                "$ifndef \"y\"\nset \"6\"\n$endif\n");
    EXPECT_EQ(scene.session.variables["x"], "value");
    scene.session.variables.erase("x");
    std::string seen;
    for (const auto& [name, value] : scene.session.variables)
        seen += name;
    EXPECT_EQ(seen, "146");
}

TEST(Conditional, SeesAVariableThatWasSetJustBefore)
{
    Scene scene("set \"x\"\n$ifdef \"x\"\nset \"1\"\n$else\nset \"2\"\n$endif\n"
                "set y\n$ifndef y\nset \"3\"\n$else\nset \"4\"\n$endif");
    EXPECT_TRUE(isSet(scene, "1") && isSet(scene, "4"));
    EXPECT_FALSE(isSet(scene, "2") || isSet(scene, "3"));
}

TEST(Conditional, SkippedTextIsSearchedForItsEndOnly)
{
    Scene scene("$ifdef \"no\"\n"
                "$ifdef \"inner\"\nset \"a\"\n$else\nset \"b\"\n$endif\n"
                "$include \"no such file\"\n$code\n  $endif\n$end code\n"
                "$else\nset \"c\"\n$endif");
    EXPECT_FALSE(isSet(scene, "a") || isSet(scene, "b"));
    EXPECT_TRUE(isSet(scene, "c"));
}

TEST(Conditional, GuardsAFileAgainstASecondReading)
{
    const std::string guarded = "$ifndef \"guard\"\nset \"guard\"\noptions \"o\" end options\n$endif\n";
    Scene scene(guarded + guarded);
    EXPECT_EQ(scene.messages.count("defined again"), 0);
    EXPECT_EQ(scene.session.database.last(), 1u);
}

TEST(Conditional, MistakesAreRefused)
{
    EXPECT_EQ(errorOf("$endif"), "1:1: $endif without $ifdef");
    EXPECT_EQ(errorOf("\n$else"), "2:1: $else without $ifdef");
    EXPECT_EQ(errorOf("$ifdef \"x\"\n"), "1:8: this conditional has no $endif");
    EXPECT_EQ(errorOf("$ifndef \"x\"\n"), "1:9: this conditional has no $endif");
    EXPECT_EQ(errorOf("$ifdef \"x\"\n$else\n$else\n"),
              "3:1: a second $else for the conditional of scene:1:8");
    EXPECT_EQ(errorOf("$ifndef \"x\"\n$else\n$else\n"),
              "3:1: a second $else for the conditional of scene:1:9");
    EXPECT_EQ(errorOf("$ifdef\n\"x\""), "1:7: a name must follow the directive on its line");
    EXPECT_EQ(errorOf("$ifdef"), "1:7: a name must follow the directive on its line");
}

TEST(Conditional, NestsOnlySoDeep)
{
    std::string text;
    for (int i = 0; i < host::maximumNesting; ++i)
        text += "$ifndef \"x\"\n";
    std::string closed = text;
    for (int i = 0; i < host::maximumNesting; ++i)
        closed += "$endif\n";
    EXPECT_EQ(errorOf(closed), "accepted");
    EXPECT_EQ(errorOf(text + "$ifndef \"x\"\n"), "257:9: conditionals are nested deeper than 256 levels");
}

TEST(Directive, BeginsInTheFirstColumn)
{
    EXPECT_EQ(errorOf(" $endif"), "1:2: a directive must begin in the first column of its line");
}

TEST(Directive, OthersAreNotSupported)
{
    for (const std::string word : {"$code", "$if", "$end", "$x", "$"})
        EXPECT_EQ(errorOf(word + " \"x\""), "1:1: \"" + word + "\" is not supported");
}

} // namespace test
