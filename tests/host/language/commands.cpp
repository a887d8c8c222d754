// SPDX-License-Identifier: BSD-3-Clause
#include "tests/host/language/scene.h"

#include "host/report/message.h"

namespace test {

TEST(Command, VersionsAreComparedPartByPart)
{
    for (const char* const text :
         {"version \"3.1\"", "min version \"3.14\"", "min version \"2.99.9\"", "max version \"3.14\"",
          "max version \"3.14.2\"", "max version \"4\"", "max version \"3\"", "min version \"3\""})
        EXPECT_EQ(errorOf(text), "accepted") << text;
    EXPECT_EQ(errorOf("version \"3.15\""), "1:9: the scene needs version 3.15 or later, this is 3.14");
    EXPECT_EQ(errorOf("min version \"3.14.1\""),
              "1:13: the scene needs version 3.14.1 or later, this is 3.14");
    EXPECT_EQ(errorOf("max version \"3.9\""), "1:13: the scene needs version 3.9 or earlier, this is 3.14");
    EXPECT_EQ(errorOf("version \"new\""),
              "1:9: a version is numbers with points between them, found \"new\"");
    EXPECT_EQ(errorOf("version \"3..1\""),
              "1:9: a version is numbers with points between them, found \"3..1\"");
    EXPECT_EQ(errorOf("version \"\""), "1:9: a version is numbers with points between them, found \"\"");
}

TEST(Command, VerboseSetsTheLevelUnlessTheUserDid)
{
    Scene scene;
    scene.read("verbose 6");
    EXPECT_EQ(host::verbosity(), 4) << "the command line's level stays";
    scene.session.keepVerbosity = false;
    for (const auto& [text, level] :
         std::vector<std::pair<const char*, int>>{{"on", 5}, {"off", 2}, {"true", 5}, {"0", 0}, {"7", 7}}) {
        scene.read("verbose " + std::string(text));
        EXPECT_EQ(host::verbosity(), level) << text;
    }
    EXPECT_EQ(scene.errorOf("verbose 8"), "1:1: \"verbose\" takes integers from 0 to 7, found 8");
}

TEST(Command, EchoIsAnInfoMessage)
{
    Scene scene("echo \"hello\"");
    ASSERT_EQ(scene.messages.lines().size(), 1u);
    EXPECT_NE(scene.messages.lines()[0].find("info : hello"), std::string::npos);
}

TEST(Command, WhatIsNotDoneIsOneWarning)
{
    Scene scene(
        "system \"rm x\" system \"rm y\" memory 5 debug \"a\" debug \"b\" \"c\" private session depth 2");
    EXPECT_EQ(scene.messages.count("the command \"system\" is ignored"), 1);
    EXPECT_EQ(scene.messages.count("the command \"memory\" is ignored"), 1);
    EXPECT_EQ(scene.messages.count("the command \"debug\" is ignored"), 1);
    EXPECT_EQ(scene.messages.lines().size(), 3u);
}

TEST(Command, SetDefinesVariables)
{
    Scene scene("set \"a\" set \"b\" \"1\" set \"b\" \"2\" set d2");
    EXPECT_EQ(scene.session.variables,
              (std::map<std::string, std::string>{{"a", ""}, {"b", "2"}, {"d2", ""}}));
}

TEST(Command, DeleteRemovesTheElement)
{
    Scene scene("camera \"c\" end camera touch \"c\" delete \"c\"");
    EXPECT_EQ(scene.session.database.lookup("c"), miNULLTAG);
    EXPECT_EQ(scene.errorOf("delete \"c\""), "1:8: there is no element \"c\"");
    EXPECT_EQ(scene.errorOf("touch \"c\""), "1:7: there is no element \"c\"");
    scene.read("light \"c\" end light");
    EXPECT_EQ(scene.messages.lines().size(), 0u);
}

TEST(Command, ASecondDefinitionIsOneWarning)
{
    Scene scene("camera \"c\" end camera\nlight \"c\" end light");
    EXPECT_EQ(scene.messages.lines().size(), 1u);
    EXPECT_EQ(scene.messages.count("scene:2:7: \"c\" is defined again, it was defined at scene:1:8"), 1);
    EXPECT_NO_THROW(scene.get<host::Light>("c"));
}

TEST(Command, ASecondDefinitionHoldsForEarlierUsesToo)
{
    Scene scene("declare color \"leaf\" ( scalar \"s\", color \"c\" ) shader \"a\" \"leaf\" ( \"s\" 1 )\n"
                "shader \"b\" \"leaf\" ( \"c\" = \"a\" ) material \"m\" = \"a\" end material\n"
                "camera \"c\" focal 2 end camera instance \"ci\" \"c\" end instance");
    const miTag shader = scene.session.database.lookup("a");
    const miTag camera = scene.session.database.lookup("c");
    scene.read("shader \"a\" \"leaf\" ( \"c\" 5 6 7 ) camera \"c\" aperture 3 end camera");
    EXPECT_EQ(scene.messages.count("defined again"), 2);
    EXPECT_EQ(scene.session.database.lookup("a"), shader);
    EXPECT_EQ(scene.session.database.lookup("c"), camera);
    EXPECT_EQ(scene.parameter<float>("a", "s"), 0.0f) << "nothing of the first definition stays";
    EXPECT_EQ(scene.get<host::Camera>("c").record.focal, 1.0f);
    EXPECT_EQ(scene.get<host::Instance>("ci").record.item, camera);
    EXPECT_EQ(scene.get<host::Material>("m").shader, std::vector<miTag>{shader});
    EXPECT_EQ(scene.get<host::Function>("b").connections()[0].sourceTag, shader);
}

TEST(Command, AnotherNameOfAnElementIsNotTheElement)
{
    Scene scene("declare color \"leaf\" ( scalar \"s\" ) shader \"a\" \"leaf\" ( \"s\" 1 )\n"
                "shader \"b\" = \"a\" shader \"b\" \"leaf\" ( \"s\" 2 )");
    EXPECT_EQ(scene.parameter<float>("a", "s"), 1.0f);
    EXPECT_EQ(scene.parameter<float>("b", "s"), 2.0f);
}

TEST(Command, WhatComesTooLateIsPointedOut)
{
    const std::string leaf = "declare color \"leaf\" ( color \"c\" ) ";
    EXPECT_EQ(errorOf(leaf + "shader \"b\" \"leaf\" ( \"c\" = \"late\" )\n camera \"late\" end camera\n"
                             "shader \"late\" \"leaf\" ( )"),
              "1:60: parameter \"c\" of shader \"leaf\": there is no shader named \"late\"; it comes at "
              "scene:3:8, but must be defined above its use");
    EXPECT_EQ(errorOf("instance \"i\" \"o\" end instance\ninstance \"j\" \"o\" end instance\n"
                      "object \"o\" group end group end object"),
              "1:14: there is no element \"o\"; it comes at scene:3:8, but must be defined above its use");
    EXPECT_EQ(
        errorOf("shader \"a\" \"leaf\" ( )\ndeclare shader color \"leaf\" ( scalar \"a\" ) end declare"),
        "1:12: the shader \"leaf\" is not declared; it comes at scene:2:22, but must be defined above its "
        "use");
    EXPECT_EQ(
        errorOf(
            "shader \"a\" \"leaf\" ( )\n"
            "declare color \"lit\" ( array light \"lamps\", shader \"leaf\" ) declare color \"leaf\" ( )"),
        "1:12: the shader \"leaf\" is not declared; it comes at scene:2:74, but must be defined above its "
        "use")
        << "parameters begin nothing";
    EXPECT_EQ(errorOf("shader \"a\" \"leaf\" ( )\nmaterial \"leaf\""),
              "1:12: the shader \"leaf\" is not declared; is a $include missing?")
        << "no element can serve as a declaration";
    EXPECT_EQ(errorOf("delete \"a\"\ninstance \"i\" material \"a\" end instance"),
              "1:8: there is no element \"a\"")
        << "an instance's material is a use";
    EXPECT_EQ(errorOf("delete \"a\"\n$lookup \"a\"\n?"), "1:8: there is no element \"a\"")
        << "mistakes further down are not told";
}

TEST(Command, IncrementalNeedsTheElement)
{
    EXPECT_EQ(errorOf("incremental camera \"c\" end camera"), "1:20: there is no camera \"c\"");
    EXPECT_EQ(errorOf("light \"c\" end light incremental camera \"c\" end camera"),
              "1:40: \"c\" is not the name of a camera but of a light");
    EXPECT_EQ(
        errorOf("options \"o\" end options incremental options \"o\" end options options \"o\" end options"),
        "accepted");
    EXPECT_EQ(errorOf("incremental render \"a\" \"b\" \"c\""),
              "1:13: found the keyword \"render\", expected a definition");
}

TEST(Command, IncrementalHoldsForOneDefinition)
{
    Scene scene(
        "camera \"c\" end camera incremental camera \"c\" focal 2 end camera camera \"c\" end camera");
    EXPECT_EQ(scene.messages.count("defined again"), 1);
    EXPECT_EQ(scene.get<host::Camera>("c").record.focal, 1.0f);
}

TEST(Command, RenderIsCarriedOutWhereItStands)
{
    Scene scene;
    const std::string scenery = "options \"o\" end options camera \"c\" end camera instance \"i\" \"c\" end "
                                "instance instgroup \"g\" \"i\" end instgroup\n";
    int frame = 0;
    std::vector<int> frames;
    scene.session.onRender = [&](const host::RenderCommand&) {
        frames.push_back(scene.get<host::Camera>("c").record.frame);
    };
    scene.read(scenery +
               "incremental camera \"c\" frame 1 end camera render \"g\" \"i\" \"o\"\n"
               "incremental camera \"c\" frame 2 end camera render \"g\" \"i\" \"o\" set \"after\"");
    EXPECT_EQ(frames, (std::vector<int>{1, 2}));
    scene.session.onRender = [&](const host::RenderCommand& command) {
        ++frame;
        throw host::Error(command.where, "no");
    };
    EXPECT_EQ(scene.errorOf("\nrender \"g\" \"i\" \"o\" set \"never\""), "2:8: no");
    EXPECT_EQ(frame, 1);
    EXPECT_FALSE(scene.session.variables.contains("never"));
    EXPECT_TRUE(scene.session.variables.contains("after"));
    scene.session.onRender = {};
    EXPECT_EQ(scene.errorOf("render \"g\" \"i\" \"o\""), "accepted");
}

TEST(Command, RenderNamesThreeElements)
{
    Scene scene("options \"o\" end options camera \"c\" end camera instance \"i\" \"c\" end instance "
                "instgroup \"g\" \"i\" end instgroup");
    EXPECT_EQ(scene.errorOf("render \"x\" \"i\" \"o\""), "1:8: there is no group \"x\"");
    EXPECT_EQ(scene.errorOf("render \"g\" \"c\" \"o\""),
              "1:12: \"c\" is not the name of an instance but of a camera");
    EXPECT_EQ(scene.errorOf("render \"g\" \"i\" \"g\""),
              "1:16: \"g\" is not the name of an options element but of a group");
    EXPECT_TRUE(scene.renders.empty());
}

TEST(Command, LinkLoadsALibrary)
{
    Scene scene;
    scene.session.linkLibraries = true;
    EXPECT_EQ(scene.errorOf("\n link \"no such library.so\"").rfind("2:7: ", 0), 0u);
    scene.session.linkLibraries = false;
    EXPECT_EQ(scene.errorOf("link \"no such library.so\""), "accepted");
}

TEST(Command, UnsupportedOnesSaySo)
{
    for (const std::string word : {"code", "call", "root", "frame", "data", "lightprofile", "spectrum"})
        EXPECT_EQ(errorOf("\n  " + word + " \"x\""), "2:3: \"" + word + "\" is not supported");
}

} // namespace test
