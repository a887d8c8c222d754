// SPDX-License-Identifier: BSD-3-Clause
#include "host/cli/command_line.h"

#include <gtest/gtest.h>

#include <cmath>

namespace {

using Strings = std::vector<std::string>;

host::CommandLine parse(const Strings& arguments)
{
    const host::ParsedCommandLine parsed = host::parseCommandLine(arguments);
    EXPECT_TRUE(parsed.command.has_value()) << parsed.text;
    return parsed.command.value_or(host::CommandLine());
}

std::string usageError(const Strings& arguments)
{
    const host::ParsedCommandLine parsed = host::parseCommandLine(arguments);
    EXPECT_FALSE(parsed.command.has_value());
    EXPECT_EQ(parsed.status, 2);
    return parsed.text;
}

} // namespace

TEST(CommandLine, OneDashTwoDashesAndAbbreviationsAreTheSame)
{
    const std::array<int, 2> wanted = {640, 480};
    EXPECT_EQ(parse({"-resolution", "640", "480", "a.mi"}).resolution, wanted);
    EXPECT_EQ(parse({"--resolution", "640", "480", "a.mi"}).resolution, wanted);
    EXPECT_EQ(parse({"-res", "640", "480", "a.mi"}).resolution, wanted);
    EXPECT_EQ(parse({"-resolution=640", "480", "a.mi"}).resolution, wanted);
}

TEST(CommandLine, ShortForms)
{
    EXPECT_EQ(parse({"-v", "4", "a.mi"}).verbosity, 4);
    EXPECT_EQ(parse({"-v", "on", "a.mi"}).verbosity, 5);
    EXPECT_EQ(parse({"-v", "off", "a.mi"}).verbosity, 2);
    EXPECT_EQ(parse({"-o", "x.png", "a.mi"}).fileName, "x.png");
    EXPECT_EQ(parse({"--o", "x.png", "a.mi"}).fileName, "x.png");
    EXPECT_EQ(parse({"-I", "a", "-Ib", "-include_path", "c", "s.mi"}).includePath, (Strings{"a", "b", "c"}));
    EXPECT_EQ(parse({"-Llib", "s.mi"}).libraryPath, (Strings{"lib"}));
}

TEST(CommandLine, OptionalNumbersLeaveSceneFilesAlone)
{
    const host::CommandLine command = parse({"-trace_depth", "2", "a.mi", "-filter", "gauss", "b.mi"});
    EXPECT_EQ(command.scenes, (Strings{"a.mi", "b.mi"}));
    EXPECT_EQ(command.traceDepth, (std::array<int, 3>{2, 2, 4}));
    EXPECT_EQ(command.filter, host::Filter::gauss);
    EXPECT_FALSE(command.filterSize.has_value());
}

TEST(CommandLine, DepthSumsAsTheSceneLanguageDoes)
{
    EXPECT_EQ(parse({"-trace_depth", "2", "3", "a"}).traceDepth, (std::array<int, 3>{2, 3, 5}));
    EXPECT_EQ(parse({"-trace_depth", "2", "3", "4", "a"}).traceDepth, (std::array<int, 3>{2, 3, 4}));
}

TEST(CommandLine, OneSampleNumberIsTheMaximum)
{
    EXPECT_EQ(parse({"-samples", "2", "a"}).samples, (std::array<int, 2>{0, 2}));
    EXPECT_EQ(parse({"-samples", "-1", "2", "a"}).samples, (std::array<int, 2>{-1, 2}));
}

TEST(CommandLine, NegativeNumbersAreValues)
{
    EXPECT_EQ(parse({"-offset", "-3", "-.5", "a"}).offset, (std::array<float, 2>{-3.0f, -0.5f}));
}

TEST(CommandLine, ListsEndAtTwoDashesOrTheNextOption)
{
    const host::CommandLine ended = parse({"-link", "a.so", "b.so", "--", "x.mi"});
    EXPECT_EQ(ended.libraries, (Strings{"a.so", "b.so"}));
    EXPECT_EQ(ended.scenes, (Strings{"x.mi"}));
    const host::CommandLine next = parse({"-link", "a.so", "-v", "2", "x.mi"});
    EXPECT_EQ(next.libraries, (Strings{"a.so"}));
    EXPECT_EQ(next.scenes, (Strings{"x.mi"}));
}

TEST(CommandLine, LaterOptionsWin) { EXPECT_EQ(parse({"-threads", "2", "-threads", "7", "a"}).threads, 7); }

TEST(CommandLine, EveryWrongCallSaysWhatIsWrong)
{
    EXPECT_EQ(usageError({"-foo"}), "unknown option '-foo'; -help lists them all");
    EXPECT_EQ(usageError({"-file_", "x"}), "option '-file_' is ambiguous: -file_name, -file_type, -file_dir");
    EXPECT_EQ(usageError({"-threads", "many"}), "option '-threads': 'many' is not a whole number");
    EXPECT_EQ(usageError({"-threads", "-3"}), "option '-threads': '-3' is not from 0 to 1024");
    EXPECT_EQ(usageError({"-v", "9"}), "option '-verbose': '9' is not from 0 to 7");
    EXPECT_EQ(usageError({"-aspect", "wide"}), "option '-aspect': 'wide' is not a number");
    EXPECT_EQ(usageError({"-shadow", "maybe"}),
              "option '-shadow': 'maybe' is none of off, on, segments, sort");
    EXPECT_EQ(usageError({"-resolution", "640"}), "option '-resolution' needs W H");
    EXPECT_EQ(usageError({"-file_name", "-v", "3"}), "option '-file_name' needs FILE");
    EXPECT_EQ(usageError({"-link", "--", "x.mi"}), "option '-link' needs LIB... --");
}

TEST(CommandLine, FramesAreSelectedByNumber)
{
    EXPECT_FALSE(parse({"-render", "off", "a"}).wants(1));
    EXPECT_TRUE(parse({"-render", "on", "a"}).wants(1));
    const host::CommandLine some = parse({"-render", "2", "8", "3", "a"});
    for (int frame = 0; frame < 12; ++frame)
        EXPECT_EQ(some.wants(frame), frame == 2 || frame == 5 || frame == 8) << frame;
}

TEST(CommandLine, OverridesReachOptionsAndCamera)
{
    host::Options options;
    host::Camera camera;
    camera.outputs.emplace_back();
    camera.outputs[0].format = "tif";
    camera.outputs[0].file = "deep/pic.tif";
    const host::CommandLine command = parse({"-samples",  "1",        "3",       "-contrast", ".2",
                                             ".4",        ".6",       "-shadow", "sort",      "-trace",
                                             "off",       "-shutter", ".25",     ".5",        "-premultiply",
                                             "off",       "-lens",    "off",     "-focal",    "infinity",
                                             "-window",   "1",        "2",       "3",         "4",
                                             "-file_dir", "out",      "a"});
    command.adjust(options);
    command.adjust(camera);
    EXPECT_EQ(options.record.min_samples, 1);
    EXPECT_EQ(options.record.max_samples, 3);
    EXPECT_FLOAT_EQ(options.record.contrast.a, 0.4f);
    EXPECT_EQ(options.record.shadow, 'l');
    EXPECT_EQ(options.record.trace, miFALSE);
    EXPECT_FLOAT_EQ(options.record.shutter_delay, 0.25f);
    EXPECT_FLOAT_EQ(options.record.shutter, 0.5f);
    EXPECT_NE(options.record.motion, 0u);
    EXPECT_NE(options.record.nopremult, miFALSE);
    EXPECT_NE(options.record.no_lens, 0);
    EXPECT_NE(camera.record.orthographic, miFALSE);
    EXPECT_EQ(camera.record.focal, 1.0f);
    EXPECT_TRUE(camera.hasWindow);
    EXPECT_EQ(camera.record.window.yh, 4);
    EXPECT_EQ(camera.outputs[0].file, "out/pic.tif");
    EXPECT_EQ(camera.outputs[0].format, "tif");
}

TEST(CommandLine, TheExtensionChoosesTheFormatUnlessATypeIsGiven)
{
    host::Camera camera;
    parse({"-o", "x.exr", "a"}).adjust(camera);
    ASSERT_EQ(camera.outputs.size(), 1u);
    EXPECT_EQ(camera.outputs[0].format, "exr");
    parse({"-o", "x.exr", "-file_type", "tif", "a"}).adjust(camera);
    EXPECT_EQ(camera.outputs[0].format, "tif");
}

TEST(CommandLine, APictureWithoutNameOrFormatIsAnError)
{
    host::Camera camera;
    EXPECT_THROW(parse({"a"}).adjust(camera), host::Error);
    EXPECT_THROW(parse({"-o", "name", "a"}).adjust(camera), host::Error);
}

TEST(CommandLine, InformationIsNoError)
{
    for (const char* option : {"-help", "--help", "-h", "-version", "-copyright"}) {
        const host::ParsedCommandLine parsed = host::parseCommandLine({option});
        EXPECT_FALSE(parsed.command.has_value()) << option;
        EXPECT_EQ(parsed.status, 0) << option;
        EXPECT_FALSE(parsed.text.empty()) << option;
    }
    EXPECT_NE(host::parseCommandLine({"-help"}).text.find("-file_name FILE"), std::string::npos);
}

TEST(CommandLine, LookingInside)
{
    const host::CommandLine command = parse({"-probe", "12", "34", "--check", "-graph", "net.dot", "a.mi"});
    EXPECT_EQ(command.probe, (std::array<int, 2>{12, 34}));
    EXPECT_TRUE(command.check);
    EXPECT_FALSE(command.profile);
    EXPECT_TRUE(parse({"-profile", "-graph", "net.dot", "a.mi"}).profile);
    EXPECT_EQ(command.graph, "net.dot");
    EXPECT_FALSE(parse({"a.mi"}).probe.has_value());
    EXPECT_FALSE(parse({"a.mi"}).check);
    usageError({"-probe", "12", "a.mi"});
    EXPECT_EQ(usageError({"-profile", "-probe", "1", "2", "a.mi"}),
              "-profile times a whole picture, and with -probe there is none");
    EXPECT_EQ(usageError({"-check", "-profile", "a.mi"}),
              "-profile times a whole picture, and with -check there is none");
}

TEST(CommandLine, FramesUnderBothNames)
{
    EXPECT_EQ(parse({"-frame", "3", "a.mi"}).frames, (std::array<int, 3>{3, 3, 1}));
    EXPECT_EQ(parse({"--frame", "3", "9", "2", "a.mi"}).frames,
              parse({"-render", "3", "9", "2", "a.mi"}).frames);
    EXPECT_EQ(parse({"-frame", "3", "9", "2", "a.mi"}).scenes, (Strings{"a.mi"}));
    usageError({"-frame", "on", "a.mi"});
    usageError({"-frame", "1", "2", "0", "a.mi"});
}
