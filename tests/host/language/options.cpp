// SPDX-License-Identifier: BSD-3-Clause
#include "tests/host/language/scene.h"

namespace test {

namespace {

struct Opt {
    explicit Opt(const std::string& statements) : scene("options \"o\" " + statements + " end options") {}
    miOptions& record() { return scene.get<host::Options>("o").record; }
    host::Options::StringOption& string(const std::string& name)
    {
        return scene.get<host::Options>("o").strings.at(name);
    }
    Scene scene;
};

std::string refusal(const std::string& statements)
{
    return errorOf("options \"o\"\n" + statements + " end options");
}

} // namespace

TEST(Options, SamplesHaveThreeForms)
{
    Opt one("samples 2"), two("samples -1 3"), four("samples 0 1 -2 4");
    EXPECT_EQ(one.record().min_samples, 0);
    EXPECT_EQ(one.record().max_samples, 2);
    EXPECT_EQ(two.record().min_samples, -1);
    EXPECT_EQ(two.record().max_samples, 3);
    EXPECT_EQ(four.record().def_min_samples, -2);
    EXPECT_EQ(four.record().def_max_samples, 4);
    EXPECT_EQ(refusal("samples 1 2 3"), "2:1: \"samples\" takes 1, 2 or 4 numbers, found 3");
    EXPECT_EQ(refusal("samples 1.5"), "2:1: \"samples\" takes integers, found 1.5");
    EXPECT_EQ(refusal("samples 200"), "2:1: \"samples\" takes integers from -128 to 127, found 200");
}

TEST(Options, ContrastWithoutAlphaTakesTheMean)
{
    EXPECT_EQ(list(Opt("contrast 1 2 3").record().contrast), (Floats{1, 2, 3, 2}));
    EXPECT_EQ(list(Opt("contrast 1 2 3 4").record().contrast), (Floats{1, 2, 3, 4}));
    EXPECT_EQ(list(Opt("time contrast 1 2 3").record().time_contrast), (Floats{1, 2, 3, 2}));
    EXPECT_EQ(refusal("contrast 1"), "2:1: \"contrast\" takes 3 or 4 numbers, found 1");
}

TEST(Options, FiltersHaveSizes)
{
    struct Row {
        const char* text;
        host::Filter filter;
        float x, y;
    };
    for (const Row& row :
         {Row{"filter box", host::Filter::box, 0, 0}, Row{"filter triangle 3", host::Filter::triangle, 3, 3},
          Row{"filter gauss 2 4", host::Filter::gauss, 2, 4},
          Row{"filter mitchell", host::Filter::mitchell, 0, 0},
          Row{"filter lanczos", host::Filter::lanczos, 0, 0},
          Row{"filter clip mitchell", host::Filter::clippedMitchell, 0, 0},
          Row{"filter clip lanczos 5 6", host::Filter::clippedLanczos, 5, 6}}) {
        SCOPED_TRACE(row.text);
        Opt options(row.text);
        EXPECT_EQ(options.record().filter, static_cast<char>(row.filter));
        EXPECT_EQ(options.record().filter_size_x, row.x);
        EXPECT_EQ(options.record().filter_size_y, row.y);
    }
    EXPECT_EQ(refusal("filter fuzzy"),
              "2:8: \"filter\" takes box, triangle, gauss, mitchell or lanczos, found \"fuzzy\"");
    EXPECT_EQ(refusal("filter clip box"), "2:13: \"filter clip\" takes mitchell or lanczos, found \"box\"");
    EXPECT_EQ(refusal("filter box -1"), "2:1: \"filter\" takes sizes of at least 0");
}

TEST(Options, TraceDepthCompletesWhatIsNotGiven)
{
    const auto depths = [](const std::string& text) {
        Opt options(text);
        return std::vector<int>{options.record().reflection_depth, options.record().refraction_depth,
                                options.record().trace_depth};
    };
    EXPECT_EQ(depths("trace depth 3"), (std::vector<int>{3, 3, 6}));
    EXPECT_EQ(depths("trace depth 3 4"), (std::vector<int>{3, 4, 7}));
    EXPECT_EQ(depths("trace depth 3 4 5"), (std::vector<int>{3, 4, 5}));
    EXPECT_EQ(refusal("trace depth -1"), "2:1: \"trace depth\" takes integers from 0 to 1048576, found -1");
}

TEST(Options, ModesAreLetters)
{
    EXPECT_EQ(Opt("shadow off").record().shadow, 0);
    EXPECT_EQ(Opt("shadow on").record().shadow, 1);
    EXPECT_EQ(Opt("shadow sort").record().shadow, 'l');
    EXPECT_EQ(Opt("shadow segments").record().shadow, 's');
    EXPECT_EQ(Opt("face front").record().face, 'f');
    EXPECT_EQ(Opt("face back").record().face, 'b');
    EXPECT_EQ(Opt("face front face both").record().face, 'a');
    EXPECT_EQ(Opt("camera space").record().render_space, 'c');
    EXPECT_EQ(Opt("mixed space").record().render_space, 'm');
    EXPECT_EQ(Opt("camera space object space").record().render_space, 'o');
    EXPECT_EQ(Opt("colorclip rgb").record().colorclip, 0);
    EXPECT_EQ(Opt("colorclip alpha").record().colorclip, 1);
    EXPECT_EQ(Opt("colorclip alpha colorclip raw").record().colorclip, 2);
    EXPECT_EQ(Opt("scanline off").record().scanline, 0);
    EXPECT_NE(Opt("scanline rasterizer").record().scanline, 0);
    EXPECT_EQ(refusal("shadow soft"), "2:8: \"shadow\" takes sort or segments, found \"soft\"");
    EXPECT_EQ(refusal("face up"), "2:6: \"face\" takes front, back or both, found \"up\"");
    EXPECT_EQ(refusal("colorclip x"), "2:11: \"colorclip\" takes rgb, alpha or raw, found \"x\"");
    EXPECT_EQ(refusal("scanline x"), "2:10: \"scanline\" takes rasterizer or opengl, found \"x\"");
}

TEST(Options, SwitchesAreStoredAsTheRecordHasThem)
{
    Opt off("trace off lens off volume off geometry off displace off output off hair off pass off merge off "
            "premultiply off");
    EXPECT_EQ(off.record().trace, 0);
    for (const int no :
         {int(off.record().no_lens), int(off.record().no_volume), int(off.record().no_geometry),
          int(off.record().no_displace), int(off.record().no_output), int(off.record().no_hair),
          int(off.record().no_pass), int(off.record().no_merge), off.record().nopremult})
        EXPECT_EQ(no, 1);
    Opt on("desaturate on dither on gamma 2.2 jitter .5");
    EXPECT_EQ(on.record().desaturate, 1);
    EXPECT_EQ(on.record().dither, 1);
    EXPECT_EQ(on.record().gamma, 2.2f);
    EXPECT_EQ(on.record().jitter, 0.5f);
    EXPECT_EQ(refusal("gamma 0"), "2:1: \"gamma\" must be above 0, found 0");
}

TEST(Options, AShutterSwitchesMotionOn)
{
    Opt open("shutter .5"), pair("shutter .25 .5"),
        delay("shutter delay .25 shutter 0 motion on motion steps 3");
    EXPECT_EQ(open.record().shutter, 0.5f);
    EXPECT_EQ(open.record().motion, 1u);
    EXPECT_EQ(pair.record().shutter_delay, 0.25f);
    EXPECT_EQ(pair.record().shutter, 0.5f);
    EXPECT_EQ(delay.record().shutter_delay, 0.25f);
    EXPECT_EQ(delay.record().motion, 1u);
    EXPECT_EQ(delay.record().n_motion_vectors, 3);
    EXPECT_EQ(Opt("shutter 0").record().motion, 0u);
}

TEST(Options, StringOptionsHaveTypes)
{
    Opt o(R"("b" on "i" 3 "f" 3.5 "t" "x" "v" 1 2 3 "c" 1 2 3 4 "i" 4)");
    EXPECT_EQ(std::get<bool>(o.string("b")), true);
    EXPECT_EQ(std::get<int>(o.string("i")), 4) << "the last of equal names wins";
    EXPECT_EQ(std::get<float>(o.string("f")), 3.5f);
    EXPECT_EQ(std::get<std::string>(o.string("t")), "x");
    EXPECT_EQ(std::get<Floats>(o.string("v")), (Floats{1, 2, 3}));
    EXPECT_EQ(std::get<Floats>(o.string("c")), (Floats{1, 2, 3, 4}));
    EXPECT_EQ(refusal("\"p\" 1 2"), "2:1: \"string option\" takes 1, 3 or 4 numbers, found 2");
}

TEST(Options, WhatHasNoEffectIsAccepted)
{
    Opt o(R"(maxdisplace 1 max displace 1 shading samples 2 task size 8 acceleration bsp acceleration bsp2
        acceleration large bsp acceleration grid bsp size 10 bsp depth 40 bsp memory 5 bsp shadow on grid size 3
        grid depth 2 grid resolution 3 3 3 approximate fine view length .1 all approximate displace fine .2 all
        samplelock off field off inheritance "x" traversal "x" luminance weight .3 .5 .2 diagnostic samples on
        diagnostic off finalgather accuracy 10 1 finalgather trace depth 2 finalgather scale 1 1 1
        finalgather off globillum off globillum accuracy 10 caustic off caustic filter box 1 photon trace depth 1 1
        photonmap file "x" photonvol accuracy 10 shadowmap off lightmap off autovolume off)");
    EXPECT_EQ(o.scene.messages.lines(), std::vector<std::string>{});
}

TEST(Options, AFeatureThatIsSwitchedOnIsOneWarning)
{
    Opt o(
        R"(finalgather on finalgather on globillum on caustic on shadowmap on lightmap on autovolume on frame buffer 0 "rgba"
             state [ = "s", = "t" ] state = "s")");
    for (const char* const feature : {"finalgather", "globillum", "caustic", "shadowmap", "lightmap",
                                      "autovolume", "state", "frame buffer"})
        EXPECT_EQ(o.scene.messages.count("\"" + std::string(feature) + "\""), 1) << feature;
    EXPECT_EQ(o.scene.messages.lines().size(), 8u);
    EXPECT_EQ(o.scene.messages.count("scene:1:13: \"finalgather\" is not supported: it is ignored"), 1);
}

TEST(Options, IncrementalKeepsWhatIsNotMentioned)
{
    Opt o("samples 1 2 contrast 1 1 1 1 \"a\" 1");
    const miTag tag = o.scene.session.database.lookup("o");
    o.scene.read("incremental options \"o\" samples 3 4 \"b\" 2 end options");
    EXPECT_EQ(o.scene.session.database.lookup("o"), tag);
    EXPECT_EQ(o.record().max_samples, 4);
    EXPECT_EQ(o.record().contrast.r, 1.0f);
    EXPECT_EQ(std::get<int>(o.string("a")), 1);
    EXPECT_EQ(o.scene.messages.lines().size(), 0u);
}

} // namespace test
