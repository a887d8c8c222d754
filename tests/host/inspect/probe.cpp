// SPDX-License-Identifier: BSD-3-Clause
#include "host/inspect/probe.h"
#include "tests/host/inspect/scene.h"

#include <gtest/gtest.h>

#include <cstdio>
#include <utility>

using namespace host;

namespace {

std::string probed(const std::string& shaders)
{
    Probe probe(1, 2);
    EXPECT_FALSE(test::look(probe, shaders));
    std::string text = probe.text();
    // Where intersection has found the square: the pixel's centre, but for rounding.
    const std::size_t at = text.find(" ray at ");
    if (at != std::string::npos) {
        float x = 0.0f, y = 0.0f, z = 0.0f;
        int length = 0;
        EXPECT_EQ(std::sscanf(text.c_str() + at, " ray at %g %g %g%n", &x, &y, &z, &length), 3);
        EXPECT_NEAR(x, -0.125f, 1e-6f);
        EXPECT_NEAR(y, 0.125f, 1e-6f);
        EXPECT_NEAR(z, -1.0f, 1e-6f);
        text.replace(at, std::size_t(length), " ray at P");
    }
    return text;
}

} // namespace

TEST(Probe, ShowsCallsInOrderWithParametersAndResults)
{
    // "s" gives a structure, and false; its second use is remembered. "other" is never asked for.
    const std::string text =
        probed("shader \"s\" \"split\" ( \"in\" .25 .5 .75 1 )\n"
               "shader \"inner\" \"choose\" ( \"which\" off, \"second\" = \"s.rgb\" )\n"
               "shader \"sum\" \"total\" ( \"start\" 1, \"values\" [ 2, = \"s.mask\" ] )\n"
               "shader \"other\" \"choose\" ( )\n"
               "shader \"both\" \"spend\" ( \"times\" 1, \"input\" = \"inner\" )\n"
               "shader \"surface\" \"choose\" ( \"which\" on, \"first\" = \"sum\",\n"
               "\"second\" = \"other\" )\n");
    EXPECT_EQ(text, "pixel 1 2 from the lower left, row 1 from the top\n"
                    "material \"m\", eye ray at P: shader \"surface\" (choose)\n"
                    "|  which = on\n"
                    "|  first: shader \"sum\" (total)\n"
                    "|  |  start = 1\n"
                    "|  |  values = [ 2, = \"s.mask\" ]\n"
                    "|  |  values[1]: shader \"s\" (split)\n"
                    "|  |  |  in = 0.25 0.5 0.75 1\n"
                    "|  |  |  gives { \"rgb\" 0.25 0.5 0.75 1, \"mask\" 0.5 }, returns 0\n"
                    "|  |  values[1] = 0.5, of \"s.mask\"\n"
                    "|  |  gives 3.5 3.5 3.5 1\n"
                    "|  second = \"other\", not read\n"
                    "|  gives 3.5 3.5 3.5 1\n"
                    "sample = 3.5 3.5 3.5 1\n");
}

TEST(Probe, TellsWhatIsRememberedAndWhatRunsAgain)
{
    const std::string text = probed("shader \"s\" \"split\" ( \"in\" .25 .5 .75 1 )\n"
                                    "shader \"sum\" \"total\" ( \"values\" [ = \"s.mask\", = \"s.mask\" ] )\n"
                                    "shader \"surface\" \"spend\" ( \"times\" 2, \"input\" = \"sum\" )\n");
    const std::string round = "|  input: shader \"sum\" (total)\n"
                              "|  |  start = 0\n"
                              "|  |  values = [ = \"s.mask\", = \"s.mask\" ]\n"
                              "|  |  values[0]: shader \"s\" (split)\n"
                              "|  |  |  in = 0.25 0.5 0.75 1\n"
                              "|  |  |  gives { \"rgb\" 0.25 0.5 0.75 1, \"mask\" 0.5 }, returns 0\n"
                              "|  |  values[0] = 0.5, of \"s.mask\"\n"
                              "|  |  values[1] = 0.5, remembered of \"s.mask\"\n"
                              "|  |  gives 1 1 1 1\n";
    EXPECT_EQ(text, "pixel 1 2 from the lower left, row 1 from the top\n"
                    "material \"m\", eye ray at P: shader \"surface\" (spend)\n"
                    "|  microseconds = 0\n"
                    "|  times = 2\n" +
                        round + round +
                        "|  gives 1 1 1 1\n"
                        "sample = 1 1 1 1\n");
}

TEST(Probe, ShowsWhatRunsInsideAPhenomenon)
{
    // A literal parameter stands in the network's shader, a connected one leads out of it again.
    const std::string text =
        probed("declare phenomenon color \"half\" ( color \"one\", scalar \"two\" )\n"
               "shader \"sum\" \"total\" ( \"start\" = interface \"two\" )\n"
               "shader \"pick\" \"choose\" ( \"which\" on, \"first\" = interface \"one\",\n"
               "\"second\" = \"sum\" )\n"
               "root = \"pick\" end declare\n"
               "shader \"s\" \"split\" ( \"in\" .25 .5 .75 1 )\n"
               "shader \"h\" \"half\" ( \"one\" = \"s.rgb\", \"two\" 3 )\n"
               "shader \"surface\" \"choose\" ( \"which\" on, \"first\" = \"h\" )\n");
    EXPECT_EQ(text, "pixel 1 2 from the lower left, row 1 from the top\n"
                    "material \"m\", eye ray at P: shader \"surface\" (choose)\n"
                    "|  which = on\n"
                    "|  second = 0 0 0 0\n"
                    "|  first: phenomenon \"h\" (half)\n"
                    "|  |  one = \"s\"\n"
                    "|  |  two = 3\n"
                    "|  |  shader \"h::pick\" (choose)\n"
                    "|  |  |  which = on\n"
                    "|  |  |  first: shader \"s\" (split)\n"
                    "|  |  |  |  in = 0.25 0.5 0.75 1\n"
                    "|  |  |  |  gives { \"rgb\" 0.25 0.5 0.75 1, \"mask\" 0.5 }, returns 0\n"
                    "|  |  |  first = 0.25 0.5 0.75 1, of \"s.rgb\"\n"
                    "|  |  |  second = \"h::sum\", not read\n"
                    "|  |  |  gives 0.25 0.5 0.75 1\n"
                    "|  gives 0.25 0.5 0.75 1\n"
                    "sample = 0.25 0.5 0.75 1\n");
}

TEST(Probe, ShowsAnInitThatReadsParameters)
{
    const std::string text = probed("shader \"s\" \"split\" ( )\n"
                                    "shader \"surface\" \"total\" ( \"start\" = \"s.mask\" )\n");
    EXPECT_NE(text.find("init of shader \"surface\" (total)\n"
                        "|  start: shader \"s\" (split)\n"
                        "|  |  in = 0 0 0 0\n"),
              std::string::npos)
        << text;
    EXPECT_EQ(text.find("init of the shader as a whole"), std::string::npos) << text;
}

TEST(Probe, LeavesOutWhatWouldFillTheMemory)
{
    const std::string text =
        probed("shader \"inner\" \"choose\" ( )\n"
               "shader \"surface\" \"spend\" ( \"times\" 100100, \"input\" = \"inner\" )\n");
    const auto count = [&](const std::string& wanted) {
        std::size_t found = 0;
        for (std::size_t at = text.find(wanted); at != std::string::npos; at = text.find(wanted, at + 1))
            ++found;
        return found;
    };
    // The surface and its inner calls, of which 101 go over the limit; inits are none.
    EXPECT_EQ(count("input: shader"), Probe::mostCalls - 1);
    EXPECT_NE(text.find("\nand 101 more calls\n"), std::string::npos);
    EXPECT_NE(text.find("\n|  gives 0 0 0 0\nand"), std::string::npos);
}

TEST(Probe, SaysThatNothingIsThere)
{
    Probe probe(1, 2);
    test::look(probe, "shader \"surface\" \"choose\" ( )\n", 1,
               "incremental instance \"quad-i\" visible off end instance\n");
    EXPECT_EQ(probe.text(),
              "pixel 1 2 from the lower left, row 1 from the top\n"
              "no shader is called: no surface with a shader is hit, and there is no environment\n"
              "sample = 0 0 0 0\n");
}

TEST(Probe, RefusesPixelsOutsideThePicture)
{
    for (const auto& [x, y] : {std::pair{4, 0}, {0, 4}, {-1, 0}, {0, -1}}) {
        Probe probe(x, y);
        EXPECT_THROW(test::look(probe, "shader \"surface\" \"choose\" ( )\n"), Error) << x << " " << y;
    }
}
