// SPDX-License-Identifier: BSD-3-Clause
// The whole program on good and bad input: one clear message, the right exit status, nothing half-written.
#include "tests/harness/folder.h"
#include "tests/harness/program.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <sys/mount.h>
#include <sys/resource.h>

using namespace test;

namespace {

Outcome run(const Launch& launch) { return test::run(VHRENDER, launch); }

/// A square that fills a 4 by 4 picture with a constant colour, in parts that tests replace.
struct Scene {
    std::string head = "link \"libvhl.so\"\n"
                       "$include <vhl.mi>\n";
    std::string shaders = "shader \"red\" \"vhConstColor_v2\" ( \"input\" 1 0 0 1, \"useAlpha\" on )\n";
    std::string options = "options \"opt\" samples 0 0 object space end options\n";
    std::string camera = "camera \"cam\" output \"rgba\" \"tif\" \"out.tif\"\n"
                         "focal 1 aperture 1 aspect 1 resolution 4 4 end camera\n";
    std::string material = "material \"m\" = \"red\" end material\n";
    std::string object = "object \"quad\" visible trace shadow\n"
                         "group -2 -2 -1 2 -2 -1 2 2 -1 -2 2 -1\n"
                         "v 0 v 1 v 2 v 3\n"
                         "c \"m\" 0 1 2 3\n"
                         "end group end object\n";
    std::string instances = "instance \"cam-i\" \"cam\" end instance\n"
                            "instance \"quad-i\" \"quad\" end instance\n"
                            "instgroup \"root\" \"cam-i\" \"quad-i\" end instgroup\n";
    std::string render = "render \"root\" \"cam-i\" \"opt\"\n";

    std::string text() const
    {
        return head + shaders + options + camera + material + object + instances + render;
    }
};

/// Runs a scene written to a folder of its own.
class Program : public testing::Test {
protected:
    Outcome render(const std::string& text, std::vector<std::string> arguments = {})
    {
        folder.write("scene.mi", text);
        arguments.emplace_back("scene.mi");
        return run({folder.path(), arguments, {}, -1});
    }

    Outcome render(const Scene& scene, std::vector<std::string> arguments = {})
    {
        return render(scene.text(), std::move(arguments));
    }

    /// One line on the error stream that contains every given piece, status 1, and no picture.
    void expectError(const Outcome& outcome, const std::vector<std::string>& pieces)
    {
        EXPECT_EQ(outcome.status, 1);
        EXPECT_EQ(std::count(outcome.messages.begin(), outcome.messages.end(), '\n'), 1) << outcome.messages;
        for (const std::string& piece : pieces)
            EXPECT_NE(outcome.messages.find(piece), std::string::npos) << outcome.messages;
        EXPECT_EQ(folder.names(), std::vector<std::string>{"scene.mi"});
    }

    Folder folder;
};

std::string repeated(const std::string& text, int times)
{
    std::string result;
    for (int i = 0; i < times; ++i)
        result += text;
    return result;
}

} // namespace

TEST_F(Program, RendersAndSaysNothing)
{
    const Outcome outcome = render(Scene());
    EXPECT_EQ(outcome.status, 0);
    EXPECT_EQ(outcome.messages, "");
    EXPECT_EQ(outcome.output, "");
    EXPECT_TRUE(folder.holds("out.tif"));
}

TEST_F(Program, ReadsStandardInputAndSeveralFilesAsOne)
{
    const Scene scene;
    const std::string text = scene.text();
    const auto feed = [&](int input) { feedBytes(input, text.data(), text.size()); };
    EXPECT_EQ(run({folder.path(), {}, feed, -1}).status, 0);
    EXPECT_TRUE(folder.holds("out.tif"));

    const Folder other;
    other.write("a.mi", scene.head + scene.shaders + scene.options + scene.camera + scene.material);
    other.write("b.mi", scene.object + scene.instances + scene.render);
    EXPECT_EQ(run({other.path(), {"a", "b.mi"}, {}, -1}).status, 0); // "a" is tried with .mi appended
    EXPECT_TRUE(other.holds("out.tif"));
}

TEST_F(Program, WrongCallsEndWithStatus2)
{
    const Outcome outcome = run({folder.path(), {"-nonsense"}, {}, -1});
    EXPECT_EQ(outcome.status, 2);
    EXPECT_EQ(outcome.messages, "vhrender: unknown option '-nonsense'; -help lists them all\n");
}

TEST_F(Program, RenderOffOnlyReads)
{
    EXPECT_EQ(render(Scene(), {"-render", "off"}).status, 0);
    EXPECT_FALSE(folder.holds("out.tif"));
}

TEST_F(Program, SceneWithoutRenderIsAWarning)
{
    Scene scene;
    scene.render.clear();
    const Outcome outcome = render(scene);
    EXPECT_EQ(outcome.status, 0);
    EXPECT_NE(outcome.messages.find("no render command"), std::string::npos) << outcome.messages;
    EXPECT_FALSE(folder.holds("out.tif"));
}

TEST_F(Program, MissingFile)
{
    const Outcome outcome = run({folder.path(), {"nowhere.mi"}, {}, -1});
    EXPECT_EQ(outcome.status, 1);
    EXPECT_NE(outcome.messages.find("nowhere.mi"), std::string::npos) << outcome.messages;
}

TEST_F(Program, MissingInclude)
{
    Scene scene;
    scene.head += "$include \"absent.mi\"\n";
    expectError(render(scene), {"scene.mi:3:", "absent.mi"});
}

TEST_F(Program, SyntaxError)
{
    Scene scene;
    scene.options = "options \"opt\" samples 0 0 object end options\n";
    expectError(render(scene), {"scene.mi:4:34: ", "space"});
}

TEST_F(Program, UnknownShader)
{
    Scene scene;
    scene.shaders = "shader \"red\" \"vhConstColour\" ( )\n";
    expectError(render(scene), {"scene.mi:3:14: ", "vhConstColour"});
}

TEST_F(Program, UnknownParameter)
{
    Scene scene;
    scene.shaders = "shader \"red\" \"vhConstColor_v2\" ( \"inputs\" 1 0 0 1 )\n";
    expectError(render(scene), {"scene.mi:3:34: ", "inputs", "vhConstColor_v2"});
}

TEST_F(Program, WrongType)
{
    Scene scene;
    scene.shaders = "shader \"red\" \"vhConstColor_v2\" ( \"input\" \"blue\" )\n";
    expectError(render(scene), {"scene.mi:3:42: ", "input", "color"});
}

TEST_F(Program, ConnectionOfWrongType)
{
    Scene scene;
    scene.shaders = "shader \"up\" \"vhConstVector_v1\" ( \"input\" 0 1 0 )\n"
                    "shader \"red\" \"vhConstColor_v2\" ( \"input\" = \"up\" )\n";
    expectError(render(scene), {"scene.mi:4:", "vector", "color", "input"});
}

TEST_F(Program, Cycle)
{
    Scene scene;
    scene.shaders += "shader \"a\" \"vhNullColor_v2\" ( \"input\" = \"red\" )\n"
                     "incremental shader \"red\" \"vhConstColor_v2\" ( \"input\" = \"a\" )\n";
    expectError(render(scene), {"scene.mi:", "circle", "\"a\"", "\"red\""});
}

TEST_F(Program, MissingLibrary)
{
    Scene scene;
    scene.head += "link \"libabsent.so\"\n";
    expectError(render(scene), {"scene.mi:3:", "libabsent.so"});
}

TEST_F(Program, MissingSymbol)
{
    Scene scene;
    scene.shaders = "declare shader color \"vhAbsent_v1\" ( ) end declare\n"
                    "shader \"red\" \"vhAbsent_v1\" ( )\n";
    expectError(render(scene), {"scene.mi:4:14: shader \"vhAbsent_v1\", declared at scene.mi:3:22, "});
}

TEST_F(Program, AForgottenLinkIsToldWhereThePhenomenonIsUsed)
{
    Scene scene;
    scene.head = "$include <vhl.mi>\n"
                 "declare phenomenon color \"plain\" ( )\n"
                 "shader \"inner\" \"vhConstColor_v2\" ( ) root = \"inner\" end declare\n";
    scene.shaders = "shader \"red\" \"plain\" ( )\n";
    expectError(render(scene), {"scene.mi:4:14: shader \"vhConstColor_v2\", declared at ",
                                "/vhl.mi:", "is a link missing, such as link \"libvhl.so\"?"});
}

TEST_F(Program, VersionMismatchIsRefusedUnlessTold)
{
    Scene scene;
    scene.head = "link \"libvhl.so\"\n";
    scene.shaders = "declare shader color \"vhConstColor_v2\" ( color \"input\", boolean \"useAlpha\", "
                    "scalar \"alpha\" )\n"
                    "version 7 end declare\n"
                    "shader \"red\" \"vhConstColor_v2\" ( \"input\" 1 0 0 1, \"useAlpha\" on )\n";
    expectError(render(scene), {"vhConstColor_v2", "7", "2"});

    const Outcome forced = render(scene, {"-ignore_version"});
    EXPECT_EQ(forced.status, 0);
    EXPECT_NE(forced.messages.find("vhConstColor_v2"), std::string::npos) << forced.messages;
    EXPECT_TRUE(folder.holds("out.tif"));
}

TEST_F(Program, MissingTexture)
{
    Scene scene;
    scene.head += "link \"base.so\"\n$include <base.mi>\n";
    scene.shaders = "color texture \"wood\" \"absent.png\"\n"
                    "shader \"red\" \"mib_texture_lookup\" ( \"tex\" \"wood\", \"coord\" .5 .5 0 )\n";
    expectError(render(scene), {"scene.mi:5:", "absent.png"});
}

TEST_F(Program, AnInitThatThrowsStopsTheRendering)
{
    Scene scene;
    scene.shaders = "shader \"red\" \"vhSwitchColor_v4\" ( \"patterns\" [ \"quad\", \"box[\" ],\n"
                    "\"values\" [ 1 0 0 1, 0 1 0 1 ] )\n";
    for (const char* const threads : {"1", "4"})
        expectError(render(scene, {"-threads", threads, "-resolution", "200", "200"}),
                    {"fatal: scene.mi:3:14: shader \"red\" (vhSwitchColor_v4): init failed: Character set "
                     "declaration starting with [ terminated prematurely",
                     "'box[>>>HERE>>>'"});

    folder.write("out.tif", "the old picture");
    EXPECT_EQ(render(scene).status, 1);
    EXPECT_EQ(folder.read("out.tif"), "the old picture");
}

TEST_F(Program, WhatAnInitThatThrowsFindsInitialisedIsEnded)
{
    Scene scene;
    scene.shaders =
        "shader \"good\" \"vhSwitchColor_v4\" ( \"patterns\" [ \"quad\" ], \"values\" [ 1 0 0 ] )\n"
        "shader \"bad\" \"vhSwitchColor_v4\" ( \"patterns\" [ \"(\" ], \"values\" [ 0 1 0 ] )\n"
        "shader \"outer\" \"vhSwitchColor_v4\" ( \"patterns\" [ \"quad\" ], "
        "\"values\" [ = \"bad\" ] )\n"
        "shader \"red\" \"vhAddColor_v2\" ( \"input1\" = \"good\", \"input2\" = \"outer\" )\n";
    const Outcome outcome = render(scene, {"-verbose", "4", "-threads", "1"});
    EXPECT_EQ(outcome.status, 1);
    EXPECT_EQ(folder.names(), std::vector<std::string>{"scene.mi"});
    const auto count = [&outcome](const std::string& text) {
        int found = 0;
        for (std::size_t at = 0; (at = outcome.messages.find(text, at)) != std::string::npos; ++at)
            ++found;
        return found;
    };
    EXPECT_EQ(count("fatal"), 1) << outcome.messages;
    EXPECT_EQ(count("shader \"bad\" (vhSwitchColor_v4): init failed: Unmatched marking parenthesis"), 1)
        << outcome.messages;
    EXPECT_EQ(count("evaluated 1 times, 1 matches"), 1) << "good's; the others never were\n"
                                                        << outcome.messages;
    EXPECT_EQ(count("evaluated"), 1) << outcome.messages;
    EXPECT_LT(outcome.messages.find("evaluated"), outcome.messages.find("fatal"));
}

TEST_F(Program, StringsThatMoveChangeNothing)
{
    Scene scene;
    scene.camera = "camera \"cam\" output \"rgb\" \"ppm\" \"out.ppm\"\n" // a format without a date
                   "focal 1 aperture 1 aspect 1 resolution 4 4 end camera\n";
    scene.shaders =
        "shader \"by-pattern\" \"vhSwitchColor_v4\" ( \"patterns\" [ \"q*\", \"^quad-i$\" ],\n"
        "\"values\" [ 0 1 0 1, 1 0.5 0 1 ] )\n"
        "shader \"red\" \"vhDebugColor_v1\" ( \"input\" = \"by-pattern\", \"name\" \"the square\" )\n";
    const Outcome staying = render(scene, {"-verbose", "4", "-threads", "1"});
    EXPECT_EQ(staying.status, 0);
    EXPECT_NE(staying.messages.find("matched object quad-i to pattern ^quad-i$"), std::string::npos);
    EXPECT_NE(staying.messages.find("vhDebugColor : the square - 1.000 0.500"), std::string::npos);
    const std::string picture = folder.read("out.ppm");
    const Outcome moving = render(scene, {"-verbose", "4", "-threads", "1", "-relocate_strings", "on"});
    EXPECT_EQ(moving.status, 0);
    EXPECT_EQ(moving.messages, staying.messages);
    EXPECT_EQ(folder.read("out.ppm"), picture);
}

TEST_F(Program, AShaderThatWasDeletedIsMissed)
{
    Scene scene;
    scene.render.insert(0, "delete \"red\"\n");
    expectError(render(scene), {"scene.mi:7:", "material \"m\"", "deleted"});
}

TEST_F(Program, ZeroSizedImage)
{
    expectError(render(Scene(), {"-resolution", "0", "4"}), {"0", "4"});
    Scene scene;
    scene.camera.replace(scene.camera.find("resolution 4 4"), 14, "resolution 4 0");
    expectError(render(scene), {"4", "0"});
}

TEST_F(Program, NumbersThatNothingCanBeRenderedWith)
{
    const std::vector<std::vector<std::string>> options = {
        {"-focal", "0"},      {"-focal", "nan"},     {"-aperture", "-3"},      {"-aspect", "0"},
        {"-clip", "-1", "5"}, {"-clip", "5", "1"},   {"-clip", "nan", "nan"},  {"-gamma", "0"},
        {"-jitter", "9"},     {"-shutter", "-1"},    {"-filter", "box", "-3"}, {"-samples", "3", "1"},
        {"-samples", "30"},   {"-trace_depth", "-1"}};
    for (const std::vector<std::string>& option : options) {
        SCOPED_TRACE(option[0] + ' ' + option[1]);
        const Outcome outcome = render(Scene(), option);
        expectError(outcome, {"must "});
        EXPECT_EQ(outcome.messages.find("scene.mi:"), std::string::npos) << "the scene is not to blame";
    }
    Scene scene;
    scene.camera.replace(scene.camera.find("focal 1"), 7, "focal 1 clip -1 4");
    expectError(render(scene), {"scene.mi:5:", "-1 and 4"});
}

TEST_F(Program, TheExtensionChoosesAFormatThatHoldsThePicture)
{
    for (const std::string name : {"a.exr", "a.hdr", "a.PNG", "a.tiff", "a.jpg"}) {
        const Outcome outcome = render(Scene(), {"-o", name});
        EXPECT_EQ(outcome.status, 0) << outcome.messages;
        EXPECT_TRUE(folder.holds(name));
    }
    const Outcome unknown = render(Scene(), {"-o", "a.xyz"});
    EXPECT_EQ(unknown.status, 1);
    EXPECT_NE(unknown.messages.find("\"xyz\""), std::string::npos) << unknown.messages;
    EXPECT_EQ(unknown.messages.find("scene.mi:"), std::string::npos) << "the scene is not to blame";
    EXPECT_FALSE(folder.holds("a.xyz"));
}

TEST_F(Program, FramesThatAreNotThereAreAnError)
{
    expectError(render(Scene(), {"-render", "3", "5"}), {"no frame of the scene is among the wanted ones"});
}

TEST_F(Program, OneNameForSeveralFramesIsAWarning)
{
    Scene scene;
    EXPECT_EQ(render(scene, {"-o", "one.tif"}).messages, "");
    scene.render += scene.render + scene.render;
    const Outcome outcome = render(scene, {"-o", "one.tif"});
    EXPECT_EQ(outcome.status, 0);
    EXPECT_EQ(std::count(outcome.messages.begin(), outcome.messages.end(), '\n'), 1) << outcome.messages;
    EXPECT_NE(
        outcome.messages.find("overwrites \"one.tif\" of an earlier frame; -file_name is one name for all"),
        std::string::npos)
        << outcome.messages;
    EXPECT_EQ(render(scene, {"-o", "one.tif", "-check"}).messages, "");
}

TEST_F(Program, AFrameThatOverwritesAnEarlierOneIsAWarning)
{
    const auto frames = [](const std::string& before) {
        Scene scene;
        for (const std::string number : {"2", "3"})
            scene.render += "incremental camera \"cam\" frame " + number + before +
                            " output \"rgba\" \"tif\" \"out" + number + ".tif\" end camera\n" +
                            Scene().render;
        return scene;
    };
    const Outcome added = render(frames(""));
    EXPECT_EQ(added.status, 0);
    EXPECT_EQ(std::count(added.messages.begin(), added.messages.end(), '\n'), 1) << added.messages;
    EXPECT_NE(
        added.messages.find("warn : frame 2 overwrites \"out.tif\" of an earlier frame; \"output\" alone "
                            "clears a camera's list of files"),
        std::string::npos)
        << added.messages;
    EXPECT_TRUE(folder.holds("out.tif") && folder.holds("out2.tif") && folder.holds("out3.tif"));
    EXPECT_EQ(render(frames(""), {"-check"}).messages, "");
    EXPECT_EQ(render(frames(" output")).messages, "") << "each has its own file";
}

TEST_F(Program, OnceMoreTheSameFileInOneFrameIsNoEarlierFrame)
{
    Scene scene;
    scene.camera.insert(scene.camera.find("focal"), "output \"rgba\" \"tif\" \"out.tif\" ");
    EXPECT_EQ(render(scene).messages, "");
}

TEST_F(Program, PolygonsWithoutAMaterialAreAWarning)
{
    Scene scene;
    scene.object.replace(scene.object.find("c \"m\""), 5, "c");
    const Outcome outcome = render(scene);
    EXPECT_EQ(outcome.status, 0);
    EXPECT_NE(outcome.messages.find("instance \"quad-i\" of object \"quad\" has polygons without a material; "
                                    "they are not seen, but cast shadows\n"),
              std::string::npos)
        << outcome.messages;

    Scene shape;
    shape.head += "link \"base.so\"\n$include <base.mi>\n";
    shape.object.clear();
    shape.instances.replace(shape.instances.find("\"quad\""), 6, "geometry \"mib_geo_square\" ( )");
    EXPECT_NE(render(shape).messages.find("instance \"quad-i\" has polygons without a material; they"),
              std::string::npos);
}

TEST_F(Program, AForgottenBaseLibraryIsNamed)
{
    const std::string use = "shader \"red\" \"mib_illum_phong\" ( )\n";
    Scene scene;
    scene.shaders = use;
    expectError(render(scene), {"is not declared; is $include \"base.mi\" missing?"});
    scene.shaders = "$include <base.mi>\n" + use;
    expectError(render(scene), {"/base.mi:", "is a link missing, such as link \"base.so\"?"});
    scene.shaders = "shader \"red\" \"mib_illum_ward\" ( )\n";
    expectError(render(scene), {"this host's base library has no such shader, docs/base.md lists"});
    scene.head.clear();
    scene.shaders = "shader \"red\" \"vhrFractScalar_v1\" ( )\n";
    expectError(render(scene), {"is not declared; is $include \"recipes.mi\" missing?"});
}

TEST_F(Program, IndicesBeyondTheirLists)
{
    Scene scene;
    scene.object.replace(scene.object.find("v 3"), 3, "v 4");
    expectError(render(scene), {"scene.mi:10:", "4"});
    scene = Scene();
    scene.object.replace(scene.object.find("0 1 2 3"), 7, "0 1 2 9");
    expectError(render(scene), {"scene.mi:11:", "9"});
    scene = Scene();
    scene.object.replace(scene.object.find("v 3"), 3, "v 3 n 99");
    expectError(render(scene), {"scene.mi:10:", "99"});
    scene = Scene();
    scene.object.replace(scene.object.find("0 1 2 3"), 7, "0 1 2 -1");
    expectError(render(scene), {"scene.mi:11:"});
}

TEST_F(Program, NestingIsLimited)
{
    const int depth = 100000;
    for (const std::string bracket : {"[ ", "{ \"a\" "}) {
        Scene scene;
        scene.shaders += "shader \"deep\" \"vhConstColor_v2\" ( \"input\" " + repeated(bracket, depth);
        expectError(render(scene), {"scene.mi:4:", "nest"});
    }
}

TEST_F(Program, NetworksAreLimitedInDepth)
{
    Scene scene;
    scene.shaders += "shader \"n0\" \"vhNullColor_v2\" ( \"input\" 1 1 1 )\n";
    const int depth = 100000;
    for (int i = 1; i <= depth; ++i)
        scene.shaders += "shader \"n" + std::to_string(i) + "\" \"vhNullColor_v2\" ( \"input\" = \"n" +
                         std::to_string(i - 1) + "\" )\n";
    scene.material = "material \"m\" = \"n" + std::to_string(depth) + "\" end material\n";
    expectError(render(scene), {"scene.mi:", "chain"});
}

TEST_F(Program, GroupsAreLimitedInDepth)
{
    Scene scene;
    const int depth = 100000;
    scene.instances = "instance \"cam-i\" \"cam\" end instance\n"
                      "instance \"i0\" \"quad\" end instance\n";
    for (int i = 1; i <= depth; ++i)
        scene.instances += "instgroup \"g" + std::to_string(i) + "\" \"i" + std::to_string(i - 1) +
                           "\" end instgroup\ninstance \"i" + std::to_string(i) + "\" \"g" +
                           std::to_string(i) + "\" end instance\n";
    scene.instances += "instgroup \"root\" \"cam-i\" \"i" + std::to_string(depth) + "\" end instgroup\n";
    expectError(render(scene), {"deep"});
}

TEST_F(Program, RaysAreLimitedByTheStack)
{
    Scene scene; // between two mirrors that face each other
    scene.head += "link \"base.so\"\n$include <base.mi>\n";
    scene.shaders = "shader \"red\" \"mib_reflect\" ( \"input\" 0 0 0 1, \"reflect\" 1 1 1 )\n";
    scene.options = "options \"opt\" samples 0 0 trace depth 1000000 end options\n";
    scene.object.insert(scene.object.find("v 0"), "2 -2 1 -2 -2 1 -2 2 1 2 2 1\n");
    scene.object.insert(scene.object.find("c \"m\""), "v 4 v 5 v 6 v 7\nc \"m\" 4 5 6 7\n");
    expectError(render(scene, {"-resolution", "1", "1"}), {"nest too deep", "trace depth"});
    scene.options = "options \"opt\" samples 0 0 trace depth 1000 end options\n";
    EXPECT_EQ(render(scene, {"-resolution", "1", "1"}).status, 0);
}

TEST_F(Program, AreaLightsAreLimitedInSamples)
{
    Scene scene;
    scene.head += "link \"base.so\"\n$include <base.mi>\n"
                  "light \"lamp\" \"mib_light_point\" ( ) origin 0 0 0 sphere 1 32767 32767 end light\n"
                  "instance \"lamp-i\" \"lamp\" end instance\n";
    scene.instances.replace(scene.instances.find("\"quad-i\" end instgroup"), 8, "\"quad-i\" \"lamp-i\"");
    expectError(render(scene), {"scene.mi:5:", "lamp", "65535"});
}

TEST_F(Program, ALineOfTwoGigabytesWithoutAnEnd)
{
    const std::string block(1 << 20, 'x');
    for (const std::string begin : {"\"", "", "1", "echo \"", "# "}) {
        bool all = true;
        const Outcome outcome = run({folder.path(),
                                     {},
                                     [&](int input) {
                                         feedBytes(input, begin.data(), begin.size());
                                         for (int i = 0; all && i < 2048; ++i)
                                             all = feedBytes(input, block.data(), block.size());
                                     },
                                     -1});
        if (begin == "# ") { // a comment is skipped, however long
            EXPECT_EQ(outcome.status, 0);
            EXPECT_TRUE(all);
        } else {
            EXPECT_EQ(outcome.status, 1) << begin;
            EXPECT_NE(outcome.messages.find("<standard input>:1:"), std::string::npos) << outcome.messages;
        }
    }
}

TEST_F(Program, ASceneCutOffAtEveryByte)
{
    const std::string text = Scene().text();
    const std::size_t renderAt = text.find("render \"root\"");
    for (std::size_t size = 0; size < text.size();
         size += size < renderAt ? std::min<std::size_t>(397, renderAt - size) : 1) {
        // Every byte is cut at in one process by the reader's own tests; here the whole program, in steps.
        const Outcome outcome = render(text.substr(0, size));
        EXPECT_TRUE(outcome.status == 0 || outcome.status == 1) << size << ": " << outcome.messages;
        EXPECT_FALSE(outcome.status == 1 && outcome.messages.empty()) << size;
    }
}

TEST_F(Program, UnwritableOutput)
{
    const Outcome outcome = render(Scene(), {"-file_name", "absent/out.tif"});
    expectError(outcome, {"absent"});
}

TEST_F(Program, AFullDiskLosesNothing)
{
    Folder disk;
    const bool mounted = ::mount("tmpfs", disk.path().c_str(), "tmpfs", 0, "size=64k") == 0;
    const std::string old = "the old picture";
    disk.write("out.ppm", old);
    folder.write("scene.mi", Scene().text());
    // 120,000 bytes, as this format does not compress.
    Launch launch{
        folder.path(), {"-resolution", "200", "200", "-o", disk.path("out.ppm"), "scene.mi"}, {}, -1};
    if (!mounted) // without the right to mount, files that may not grow past 64 KiB fail in the same way
        launch.fileSizeLimit = 64 * 1024;
    const Outcome outcome = run(launch);
    EXPECT_EQ(outcome.status, 1) << outcome.messages;
    EXPECT_NE(outcome.messages.find("out.ppm"), std::string::npos) << outcome.messages;
    EXPECT_EQ(disk.names(), std::vector<std::string>{"out.ppm"});
    EXPECT_EQ(disk.read("out.ppm"), old);
    if (mounted) {
        EXPECT_EQ(::umount(disk.path().c_str()), 0) << std::strerror(errno);
    }
}

TEST_F(Program, CheckRendersNothing)
{
    const Outcome good = render(Scene(), {"-check"});
    EXPECT_EQ(good.status, 0);
    EXPECT_EQ(good.messages, "");
    EXPECT_EQ(
        good.output,
        "frame 0: 1 shader, 1 material, 0 lights, 1 object with 1 polygon in 1 place, can be rendered\n");
    EXPECT_EQ(folder.names(), std::vector<std::string>{"scene.mi"});
    Scene bad;
    bad.shaders = "color texture \"t\" \"absent.png\"\n" + bad.shaders;
    bad.head += "link \"base.so\"\n$include <base.mi>\n";
    bad.material = "material \"m\" \"mib_texture_lookup\" ( \"tex\" \"t\" ) end material\n";
    expectError(render(bad, {"-check"}), {"absent.png"});
}

TEST_F(Program, ProbePrintsATreeAndRendersNothing)
{
    const Outcome outcome = render(Scene(), {"-probe", "1", "2"});
    EXPECT_EQ(outcome.status, 0) << outcome.messages;
    EXPECT_EQ(outcome.output.rfind("frame 0: pixel 1 2 ", 0), 0u) << outcome.output;
    EXPECT_NE(outcome.output.find("\n|  gives 1 0 0 1\nsample = 1 0 0 1\n"), std::string::npos)
        << outcome.output;
    EXPECT_EQ(folder.names(), std::vector<std::string>{"scene.mi"});
    expectError(render(Scene(), {"-probe", "4", "0"}), {"pixel 4 0", "4 by 4"});
}

TEST_F(Program, ProfileAndGraphComeWithThePicture)
{
    const Outcome outcome = render(Scene(), {"-profile", "-graph", "net.dot"});
    EXPECT_EQ(outcome.status, 0) << outcome.messages;
    EXPECT_NE(outcome.output.find("\n\"red\" vhConstColor_v2 "), std::string::npos) << outcome.output;
    EXPECT_EQ(folder.names(), (std::vector<std::string>{"net.dot", "out.tif", "scene.mi"}));
    EXPECT_EQ(folder.read("net.dot").rfind("digraph", 0), 0u);
}

TEST_F(Program, AMillionParticles)
{
    // Of which the renderer's counter reaches 65535, whose light adds up: together they give 200/255.
    std::string positions, colors;
    for (int k = 0; k < 1'000'000; ++k) {
        positions += k ? ", 0 0 5" : "0 0 5";
        colors += k ? ", 1 1 1 2.3935e-5" : "1 1 1 2.3935e-5";
    }
    Scene scene;
    scene.shaders =
        "light \"swarm\" \"vhParticleLight_v1\" ( \"falloff\" 0, \"shadow\" off, \"positions\" [" +
        positions + "], \"colors\" [" + colors +
        "] ) origin 0 0 0 user end light\n"
        "instance \"swarm-i\" \"swarm\" end instance\n";
    scene.head += "link \"base.so\"\n$include <base.mi>\n";
    scene.material =
        "material \"m\" \"mib_illum_lambert\" ( \"diffuse\" 1 1 1, \"lights\" [\"swarm-i\"] ) end "
        "material\n";
    scene.camera = "camera \"cam\" output \"rgb\" \"ppm\" \"out.ppm\"\n"
                   "focal 1 aperture 0.001 aspect 1 resolution 1 1 end camera\n";
    scene.instances.replace(scene.instances.find("\"quad-i\" end instgroup"), 8, "\"quad-i\" \"swarm-i\"");
    const Outcome outcome = render(scene);
    EXPECT_EQ(outcome.status, 0) << outcome.messages;
    EXPECT_EQ(outcome.messages, "");
    EXPECT_EQ(folder.read("out.ppm").substr(folder.read("out.ppm").size() - 3), std::string(3, '\xc8'));

    rusage used{};
    ASSERT_EQ(getrusage(RUSAGE_CHILDREN, &used), 0);
#if !defined(__SANITIZE_ADDRESS__) && !defined(__SANITIZE_THREAD__)
    EXPECT_LT(used.ru_maxrss, 1000 * 1024) << "KiB"; // what docs/host.md states, and a quarter more
#endif
}

TEST_F(Program, AShaderThatCrashesIsNamed)
{
    Scene scene;
    scene.head = "link \"" TEST_CRASH_SHADERS "\"\n"
                 "declare shader color \"t_crash\" () version 0 end declare\n"
                 "declare shader color \"t_abort\" () version 0 end declare\n";
    scene.shaders = "shader \"red\" \"t_crash\" ( )\n";
    const Outcome named = render(scene);
    EXPECT_NE(named.status, 0);
    const std::string line =
        "fatal: scene.mi:4:14: shader \"red\" (t_crash) crashed: invalid memory access\n";
    EXPECT_NE(named.messages.find(line), std::string::npos) << named.messages;
    // Also when it has no name, and in an init.
    scene.material = "material \"m\" \"t_abort\" ( ) end material\n";
    const Outcome unnamed = render(scene);
    EXPECT_NE(unnamed.status, 0);
    EXPECT_NE(unnamed.messages.find(": shader t_abort crashed: abort\n"), std::string::npos)
        << unnamed.messages;
    EXPECT_EQ(folder.names(), std::vector<std::string>{"scene.mi"});
}

TEST_F(Program, ShadersInPlacesOfOthers)
{
    // A result of four numbers where a tag is waited for, and the other way round.
    Scene geometry;
    geometry.instances.insert(0, "instance \"made-i\" geometry \"vhConstColor_v2\" ( ) end instance\n");
    geometry.instances.replace(geometry.instances.find("\"quad-i\" end instgroup"), 8,
                               "\"quad-i\" \"made-i\"");
    expectError(render(geometry), {"instance \"made-i\"", "vhConstColor_v2", "gives color, not geometry"});
    Scene material;
    material.material = "material \"m\" \"vhGeomSetAreaLightType_v1\" ( ) end material\n";
    expectError(render(material), {"material \"m\"", "gives geometry, not a color"});
    material.material = "material \"m\" \"vhConstScalar_v1\" ( ) end material\n";
    expectError(render(material, {"-check"}), {"gives scalar, not a color"});
}

TEST_F(Program, ALightWhoseShaderIsLitByIt)
{
    Scene scene;
    scene.head +=
        "link \"base.so\"\n$include <base.mi>\n"
        "light \"lamp\" \"mib_illum_lambert\" ( \"diffuse\" 1 1 1, \"mode\" 4 ) origin 0 0 5 end light\n"
        "instance \"lamp-i\" \"lamp\" end instance\n";
    scene.material = "material \"m\" \"mib_illum_lambert\" ( \"mode\" 4 ) end material\n";
    scene.instances.replace(scene.instances.find("\"quad-i\" end instgroup"), 8, "\"quad-i\" \"lamp-i\"");
    expectError(render(scene), {"scene.mi:5:", "lamp", "sample lights"});
}
