// SPDX-License-Identifier: BSD-3-Clause
#include "tests/host/language/scene.h"

namespace test {

namespace {

const std::string shaders = "declare color \"a\" ( ) declare color \"b\" ( )\n"
                            "shader \"s\" \"a\" ( ) shader \"t\" \"b\" ( )\n";

struct Cam {
    explicit Cam(const std::string& statements)
        : scene(shaders + "camera \"c\" " + statements + " end camera")
    {
    }
    host::Camera& camera() { return scene.get<host::Camera>("c"); }
    miCamera& record() { return camera().record; }
    void change(const std::string& statements)
    {
        scene.read("incremental camera \"c\" " + statements + " end camera");
    }
    Scene scene;
};

std::string refusal(const std::string& statements)
{
    return errorOf("camera \"c\"\n" + statements + " end camera");
}

} // namespace

TEST(Camera, NumbersGoToTheRecord)
{
    Cam c("focal 50 aperture 36 aspect 1.5 resolution 640 480 offset 1.5 -2 window 10 20 30 40 clip .1 100 "
          "frame 7 .25 field 2");
    const miCamera& r = c.record();
    EXPECT_EQ(r.orthographic, 0);
    EXPECT_EQ(
        (Floats{r.focal, r.aperture, r.aspect, r.x_offset, r.y_offset, r.clip.min, r.clip.max, r.frame_time}),
        (Floats{50, 36, 1.5f, 1.5f, -2, .1f, 100, .25f}));
    EXPECT_EQ((std::vector<int>{r.x_resolution, r.y_resolution, r.window.xl, r.window.yl, r.window.xh,
                                r.window.yh, r.frame, r.frame_field}),
              (std::vector<int>{640, 480, 10, 20, 30, 40, 7, 2}));
    EXPECT_TRUE(c.camera().hasWindow);
    EXPECT_FALSE(Cam("").camera().hasWindow);
}

TEST(Camera, InfinityIsOrthographic)
{
    Cam c("focal 50 focal infinity");
    EXPECT_EQ(c.record().orthographic, 1);
    EXPECT_EQ(c.record().focal, 1.0f);
    c.change("focal 35");
    EXPECT_EQ(c.record().orthographic, 0);
}

TEST(Camera, ImpossibleNumbersAreRefused)
{
    EXPECT_EQ(refusal("focal 0"), "2:1: \"focal\" must be above 0, found 0");
    EXPECT_EQ(refusal("aperture -1"), "2:1: \"aperture\" must be above 0, found -1");
    EXPECT_EQ(refusal("aspect 0.0"), "2:1: \"aspect\" must be above 0, found 0");
    EXPECT_EQ(refusal("resolution 0 10"), "2:1: \"resolution\" takes integers from 1 to 2147483647, found 0");
    EXPECT_EQ(refusal("resolution 10"), "2:1: \"resolution\" takes 2 numbers, found 1");
    EXPECT_EQ(refusal("window 1 2 3"), "2:1: \"window\" takes 4 numbers, found 3");
    EXPECT_EQ(refusal("field 3"), "2:1: \"field\" takes integers from 0 to 2, found 3");
    EXPECT_EQ(refusal("frame .5"), "2:1: \"frame\" takes integers, found 0.5");
}

TEST(Camera, ShaderListsAppendAndClear)
{
    Cam c("lens = \"s\" \"b\" ( ) lens = \"t\" environment = \"t\" volume = \"s\"");
    const miTag s = c.scene.session.database.lookup("s");
    const miTag t = c.scene.session.database.lookup("t");
    ASSERT_EQ(c.camera().lens.size(), 3u);
    EXPECT_EQ(c.camera().lens[0], s);
    EXPECT_EQ(c.camera().lens[2], t);
    EXPECT_EQ(c.record().lens, s);
    EXPECT_EQ(c.record().environment, t);
    EXPECT_EQ(c.record().volume, s);
    c.change("lens environment volume lens = \"t\"");
    EXPECT_EQ(c.camera().lens, (host::ShaderList{t}));
    EXPECT_TRUE(c.camera().environment.empty() && c.camera().volume.empty());
    EXPECT_EQ(c.record().lens, t);
    EXPECT_EQ(c.record().environment, miNULLTAG);
}

TEST(Camera, OutputsHaveFourForms)
{
    Cam c(R"(output "tif" "a.tif" output "rgba_fp" "exr" "b.exr" output "rgba" "jpg" quality 90 "c.jpg"
             output "tif" compress "zip" dpi 72 even "d.tif")");
    const std::vector<host::Output>& o = c.camera().outputs;
    ASSERT_EQ(o.size(), 4u);
    const auto words = [](const host::Output& output) {
        return output.dataType + ' ' + output.format + ' ' + output.file + ' ' + output.compression + ' ' +
               std::to_string(output.quality);
    };
    EXPECT_EQ(words(o[0]), " tif a.tif  -1");
    EXPECT_EQ(words(o[1]), "rgba_fp exr b.exr  -1");
    EXPECT_EQ(words(o[2]), "rgba jpg c.jpg  90");
    EXPECT_EQ(words(o[3]), " tif d.tif zip -1");
    EXPECT_EQ(o[0].where.text(), "scene:3:19");
    c.change("output output \"png\" \"e.png\"");
    ASSERT_EQ(c.camera().outputs.size(), 1u);
    EXPECT_EQ(c.camera().outputs[0].file, "e.png");
}

TEST(Camera, AFrameBufferWithAFileIsAnOutput)
{
    Cam c(
        R"(framebuffer "no" datatype "z" framebuffer "main" datatype "rgba_16" filename "a.png" filetype "png"
             quality 5 compression "x" primary on filtering on user off useopacity off premultiplied on dod off dpi 72
             field "even" framebuffer "c" colorprofile "x" field 1)");
    ASSERT_EQ(c.camera().outputs.size(), 1u);
    EXPECT_EQ(c.camera().outputs[0].dataType, "rgba_16");
    EXPECT_EQ(c.camera().outputs[0].format, "png");
    EXPECT_EQ(c.camera().outputs[0].file, "a.png");
    EXPECT_EQ(c.camera().outputs[0].quality, 5);
    EXPECT_EQ(c.record().frame_field, 1);
}

TEST(Camera, AFrameBufferWithoutAFormatTakesThatOfItsFile)
{
    Cam c(R"(framebuffer "a" filename "x.y/a.exr" framebuffer "b" filename "b.tif" filetype "png")");
    ASSERT_EQ(c.camera().outputs.size(), 2u);
    EXPECT_EQ(c.camera().outputs[0].format, "exr");
    EXPECT_EQ(c.camera().outputs[1].format, "png");
    EXPECT_EQ(refusal("framebuffer \"a\" filename \"x.y/a\""),
              "2:13: frame buffer \"a\" has neither a \"filetype\" nor a file with an extension");
}

TEST(Camera, AFrameBufferOfShadersIsNoOutput)
{
    Cam c(R"(framebuffer "own" user on datatype "rgba" filename "a.png" filetype "png"
             framebuffer "more" filename "b.png" filetype "png" user on
             framebuffer "main" filename "c.png" filetype "png" primary on)");
    ASSERT_EQ(c.camera().outputs.size(), 1u);
    EXPECT_EQ(c.camera().outputs[0].file, "c.png");
    EXPECT_EQ(c.scene.messages.count("the frame buffers of shaders are ignored"), 1);
    EXPECT_EQ(c.scene.messages.lines().size(), 1u);
}

TEST(Camera, OutputShadersAndPassesAreNotSupported)
{
    EXPECT_EQ(refusal("output \"+rgba,+z\" \"shader\" ( )"), "2:19: \"output shader\" is not supported");
    EXPECT_EQ(refusal("output = \"shader\""), "2:8: \"output shader\" is not supported");
    EXPECT_EQ(refusal("output \"shader\" ( )"), "2:8: \"output shader\" is not supported");
    EXPECT_EQ(refusal("pass"), "2:1: \"pass\" is not supported");
    EXPECT_EQ(refusal("output \"jpg\" quality 101 \"x\""),
              "2:14: \"quality\" takes integers from 0 to 100, found 101");
}

TEST(Camera, WhatHasNoEffectIsOneWarning)
{
    Cam c("dof 1 2 dof 1 2 data \"d\" data null");
    EXPECT_EQ(c.scene.messages.count("\"dof\" is ignored"), 1);
    EXPECT_EQ(c.scene.messages.count("user data"), 1);
    EXPECT_EQ(c.scene.messages.lines().size(), 2u);
}

} // namespace test
