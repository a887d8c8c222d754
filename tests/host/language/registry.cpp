// SPDX-License-Identifier: BSD-3-Clause
// Registry entries, and {KEY} in file names.
#include "tests/harness/folder.h"
#include "tests/host/language/scene.h"

namespace test {

TEST(Registry, AnEntryHoldsAValueAndActionsInOrder)
{
    Scene scene(
        "registry \"{A}\" value \"one\" link \"l\" mi \"m\" value \"two\" echo \"e\" system \"s\" code \"c\" "
        "spdl \"p\" \"any\" \"thing\" end registry");
    const host::Registry::Entry* const entry = scene.session.registry.find("{A}");
    ASSERT_TRUE(entry);
    EXPECT_EQ(entry->value, "two") << "a second value overwrites the first";
    EXPECT_EQ(entry->actions, (std::vector<std::pair<std::string, std::string>>{{"link", "l"},
                                                                                {"mi", "m"},
                                                                                {"echo", "e"},
                                                                                {"system", "s"},
                                                                                {"code", "c"},
                                                                                {"spdl", "p"},
                                                                                {"any", "thing"}}));
    EXPECT_TRUE(scene.messages.lines().empty()) << "actions wait for the look-up";
    scene.read("registry \"{A}\" end registry");
    EXPECT_EQ(scene.session.registry.find("{A}")->value, "");
    EXPECT_EQ(errorOf("registry \"a\" value 5"), "1:20: found 5, expected a string");
    EXPECT_EQ(errorOf("registry \"a\" camera"),
              "1:14: found the keyword \"camera\", expected a name, \"code\", \"echo\", \"end\", \"link\" or "
              "\"system\"");
}

TEST(Registry, ValuesReplaceTheirKeysInFileNames)
{
    Scene scene(
        "registry \"{SITE}\" value \"/site\" end registry registry \"{MR}\" value \"{SITE}/mr\" end "
        "registry\n"
        "registry \"BARE\" value \"b\" end registry\n"
        "color texture \"t\" \"{MR}/{BARE}/x.tif\" color texture \"u\" \"{NONE}/{{SITE}/{MR\"\n"
        "camera \"c\" output \"tif\" \"{MR}/out.tif\" framebuffer \"f\" filename \"{BARE}.exr\" end camera\n"
        "declare color \"s\" ( string \"p\" ) shader \"p\" \"s\" ( \"p\" \"{MR}\" )");
    EXPECT_EQ(scene.get<host::Texture>("t").file, "/site/mr/b/x.tif");
    EXPECT_EQ(scene.get<host::Texture>("u").file, "{NONE}/{/site/{MR") << "what is no key stays";
    EXPECT_EQ(scene.get<host::Camera>("c").outputs.at(0).file, "/site/mr/out.tif");
    EXPECT_EQ(scene.get<host::Camera>("c").outputs.at(1).file, "b.exr");
    EXPECT_EQ(scene.textOf("p", "p"), "{MR}") << "a string parameter is no file name";
}

TEST(Registry, EntriesThatLeadInCirclesAreToldOf)
{
    EXPECT_EQ(
        errorOf("registry \"{A}\" value \"{B}\" end registry registry \"{B}\" value \"x{A}\" end registry\n"
                "color texture \"t\" \"{A}\""),
        "2:19: registry entries lead to one another without end: \"{A}\"");
    std::string doubling;
    for (char c = 'A'; c < 'Z'; ++c)
        doubling += std::string("registry \"{") + c + "}\" value \"{" + char(c + 1) + "}{" + char(c + 1) +
                    "}\" end registry ";
    EXPECT_NE(errorOf(doubling + "color texture \"t\" \"{A}\"").find("without end"), std::string::npos);
    EXPECT_NE(errorOf("registry \"{A}\" value \"" + std::string(60000, 'x') +
                      "\" end registry color texture \"t\" \"{A}{A}\"")
                  .find("registry entries make a name longer than 65536 bytes"),
              std::string::npos);
}

TEST(Registry, ConditionalsSeeKeys)
{
    Scene scene("registry \"{A}\" end registry\n$ifdef \"{A}\"\nset \"yes\"\n$endif\n$ifndef \"{A}\"\nset "
                "\"no\"\n$endif");
    EXPECT_TRUE(scene.session.variables.contains("yes"));
    EXPECT_FALSE(scene.session.variables.contains("no"));
}

TEST(Registry, ALookUpReadsItsScenesInOrder)
{
    const Folder folder;
    folder.write("a.mi", "set \"order\" \"a\"\n$ifdef \"b read\"\nset \"wrong\"\n$endif\n");
    folder.write("b.mi", "set \"b read\" set \"order\" \"b\"");
    Scene scene;
    scene.read(
        "registry \"{IN}\" value \"" + folder.path() +
        "\" end registry registry \"{SITE}\" mi \"{IN}/a.mi\" echo \"hello\" mi \"{IN}/b\" end registry\n"
        "$lookup \"{SITE}\"\nset \"last\" ");
    EXPECT_EQ(scene.session.variables["order"], "b");
    EXPECT_FALSE(scene.session.variables.contains("wrong"));
    EXPECT_TRUE(scene.session.variables.contains("last"));
    EXPECT_EQ(scene.messages.count("info : hello"), 1);
}

TEST(Registry, ALookUpSaysWhatItDoesNotDo)
{
    EXPECT_EQ(errorOf("\n$lookup \"x\""), "2:9: there is no registry entry \"x\"");
    EXPECT_EQ(errorOf("$lookup 5"), "1:9: a name must follow the directive on its line");
    EXPECT_EQ(errorOf("registry \"x\" code \"f.c\" end registry\n$lookup \"x\""),
              "2:9: registry entry \"x\" wants \"code\" compiled, which is not supported");
    Scene scene("registry \"x\" system \"rm\" spdl \"f\" end registry\n$lookup \"x\"\n");
    EXPECT_EQ(scene.messages.lines().size(), 1u);
    EXPECT_EQ(scene.messages.count("scene:2:9: the command \"system\" of registry entry \"x\" is ignored"),
              1);
    scene.session.linkLibraries = true;
    EXPECT_NE(scene.errorOf("registry \"y\" link \"no such.so\" end registry\n$lookup \"y\"")
                  .find("2:9: library \"no such.so\" cannot be linked"),
              std::string::npos);
}

TEST(Registry, AFileThatLooksItselfUpEnds)
{
    const Folder folder;
    folder.write("a.mi", "$lookup \"A\"\n");
    Scene scene;
    EXPECT_NE(scene.errorOf("registry \"A\" mi \"" + folder.path("a.mi") + "\" end registry\n$lookup \"A\"\n")
                  .find("files include one another deeper than 64 levels"),
              std::string::npos);
}

TEST(Registry, WellKnownKeysAreTheLastFoldersOfTheSearchPaths)
{
    Scene scene;
    scene.session.paths.library = {"/first"};
    scene.read("registry \"{_MI_REG_LIBRARY}\" value \"/a:/b;;/c\" end registry\n"
               "registry \"{_MI_REG_INCLUDE}\" value \"/i\" end registry\n"
               "registry \"_MI_REG_TEXTURE\" value \"/t\" end registry");
    EXPECT_EQ(scene.session.paths.library, (std::vector<std::string>{"/first", "/a", "/b", "/c"}));
    EXPECT_EQ(scene.session.paths.include, std::vector<std::string>{"/i"});
    EXPECT_EQ(scene.session.paths.texture, std::vector<std::string>{"/t"});
    scene.read("registry \"{_MI_REG_LIBRARY}\" value \"/d\" end registry");
    EXPECT_EQ(scene.session.paths.library, (std::vector<std::string>{"/first", "/d"}))
        << "in place of the former";
}

TEST(Registry, AFileThatIsNowhereIsToldWithTheFoldersLookedAt)
{
    Scene scene;
    scene.session.paths.include = {"/one", "/two", "/one"};
    EXPECT_EQ(scene.errorOf("$include \"gone.mi\""),
              "1:10: cannot find the file \"gone.mi\" to include; looked in "
              "\".\", \"/one\", \"/two\"");
    EXPECT_EQ(scene.errorOf("$include \"/gone.mi\""), "1:10: cannot find the file \"/gone.mi\" to include");
}

} // namespace test
