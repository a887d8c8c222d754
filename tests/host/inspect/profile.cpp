// SPDX-License-Identifier: BSD-3-Clause
#include "host/inspect/profile.h"
#include "tests/host/inspect/scene.h"

#include <gtest/gtest.h>

#include <chrono>

using namespace host;

namespace {

constexpr std::uint64_t samples = 16; // a picture of 4 by 4 pixels, one for each

const Profile::Row& row(const std::vector<Profile::Row>& rows, const std::string& name)
{
    for (const Profile::Row& found : rows)
        if (found.name == name)
            return found;
    throw std::runtime_error("no row " + name);
}

// "outer" takes 300 microseconds and asks for "sum" twice anew, which asks for "s" once and once more for
// what is remembered.
const std::string network =
    "shader \"s\" \"split\" ( )\n"
    "shader \"sum\" \"total\" ( \"values\" [ = \"s.mask\", = \"s.mask\" ] )\n"
    "shader \"surface\" \"spend\" ( \"microseconds\" 300, \"times\" 2, \"input\" = \"sum\" )\n"
    "shader \"idle\" \"choose\" ( )\n";

} // namespace

TEST(Profile, CountsCallsAndWhatWasRemembered)
{
    for (const int threads : {1, 3}) {
        Profile profile;
        EXPECT_TRUE(test::look(profile, network, threads));
        const std::vector<Profile::Row> rows = profile.byInstance();
        EXPECT_EQ(rows.size(), 3u);
        EXPECT_EQ(row(rows, "\"surface\" spend").figures.calls, samples);
        EXPECT_EQ(row(rows, "\"sum\" total").figures.calls, 2 * samples);
        EXPECT_EQ(row(rows, "\"s\" split").figures.calls, 2 * samples);
        EXPECT_EQ(row(rows, "\"s\" split").figures.reused, 2 * samples);
        EXPECT_EQ(row(rows, "\"sum\" total").figures.reused, 0u);
        EXPECT_EQ(row(rows, "\"s\" split").place, "test.mi:" + std::to_string(test::firstLine) + ":12");
    }
}

TEST(Profile, TimesAddUp)
{
    Profile profile;
    const auto begin = std::chrono::steady_clock::now();
    test::look(profile, network);
    const std::int64_t wall = std::chrono::nanoseconds(std::chrono::steady_clock::now() - begin).count();
    const std::vector<Profile::Row> rows = profile.byInstance();
    const Profile::Figures& outer = row(rows, "\"surface\" spend").figures;
    const Profile::Figures& sum = row(rows, "\"sum\" total").figures;
    const Profile::Figures& inner = row(rows, "\"s\" split").figures;
    EXPECT_GE(outer.exclusive, std::int64_t(samples) * 300'000);
    EXPECT_LE(outer.inclusive, wall);
    // Whatever takes time within a call is its own or that of another call, and is counted once.
    EXPECT_EQ(outer.inclusive, outer.exclusive + sum.inclusive + sum.init);
    EXPECT_EQ(sum.inclusive, sum.exclusive + inner.inclusive);
    EXPECT_EQ(inner.inclusive, inner.exclusive);
    EXPECT_GT(sum.init, 0);
}

TEST(Profile, CallsOfTheSameShaderWithinEachOtherCountOnce)
{
    Profile profile;
    test::look(profile,
               "shader \"inner\" \"spend\" ( \"microseconds\" 200 )\n"
               "shader \"surface\" \"spend\" ( \"microseconds\" 100, \"times\" 1, \"input\" = \"inner\" )\n");
    const std::vector<Profile::Row> shaders = profile.byShader();
    ASSERT_EQ(shaders.size(), 1u);
    const Profile::Figures& both = shaders[0].figures;
    EXPECT_EQ(shaders[0].name, "spend");
    EXPECT_EQ(both.calls, 2 * samples);
    EXPECT_EQ(both.inclusive, both.exclusive);
    const std::vector<Profile::Row> instances = profile.byInstance();
    ASSERT_EQ(instances.size(), 2u);
    EXPECT_GE(instances[0].figures.exclusive, instances[1].figures.exclusive); // the longest first
    EXPECT_EQ(row(instances, "\"surface\" spend").figures.inclusive, both.inclusive);
}

TEST(Profile, APhenomenonHasTheCallsIntoItAndTheTimeOfWhatIsInside)
{
    // "h" is entered twice in each sample, once for both uses of its result. "deep" is another phenomenon
    // inside of it; "outside" is called from inside and belongs to neither.
    Profile profile;
    test::look(
        profile,
        "declare phenomenon color \"deep\" ( color \"from\" )\n"
        "shader \"last\" \"spend\" ( \"microseconds\" 50, \"times\" 1, \"input\" = interface \"from\" )\n"
        "root = \"last\" end declare\n"
        "declare phenomenon color \"half\" ( color \"from\" )\n"
        "shader \"inner\" \"deep\" ( \"from\" = interface \"from\" )\n"
        "shader \"twice\" \"spend\" ( \"microseconds\" 100, \"times\" 2, \"input\" = \"inner\" )\n"
        "root = \"twice\" end declare\n"
        "shader \"outside\" \"spend\" ( \"microseconds\" 300 )\n"
        "shader \"h\" \"half\" ( \"from\" = \"outside\" )\n"
        "shader \"surface\" \"spend\" ( \"times\" 2, \"input\" = \"h\" )\n");
    const std::vector<Profile::Row> instances = profile.byInstance();
    const Profile::Figures& twice = row(instances, "\"h::twice\" spend").figures;
    const Profile::Figures& last = row(instances, "\"h::inner::last\" spend").figures;
    const std::vector<Profile::Row> phenomena = profile.byPhenomenon();
    ASSERT_EQ(phenomena.size(), 2u);
    const Profile::Figures& h = row(phenomena, "\"h\" half").figures;
    EXPECT_EQ(h.calls, 2 * samples);
    EXPECT_EQ(h.inclusive, twice.inclusive);
    EXPECT_EQ(h.exclusive, twice.exclusive + last.exclusive);
    EXPECT_EQ(h.init, twice.init + last.init);
    const Profile::Figures& inner = row(phenomena, "\"h::inner\" deep").figures;
    EXPECT_EQ(inner.calls, 4 * samples);
    EXPECT_EQ(inner.inclusive, last.inclusive);
    EXPECT_EQ(inner.exclusive, last.exclusive);
    EXPECT_NE(profile.text().find("\n\nphenomenon "), std::string::npos) << profile.text();
}

TEST(Profile, ARememberedResultIsOneOfThePhenomenonToo)
{
    Profile profile;
    test::look(
        profile,
        "declare phenomenon color \"part\" ( )\n"
        "shader \"s\" \"split\" ( ) shader \"sum\" \"total\" ( \"values\" [ = \"s.mask\", = \"s.mask\" ] )\n"
        "root = \"sum\" end declare\n"
        "shader \"p\" \"part\" ( )\n"
        "shader \"surface\" \"total\" ( \"values\" [ = \"p\", = \"p\" ] )\n");
    const std::vector<Profile::Row> phenomena = profile.byPhenomenon();
    EXPECT_EQ(row(phenomena, "\"p\" part").figures.calls, samples);
    EXPECT_EQ(row(phenomena, "\"p\" part").figures.reused, samples) << "not those inside";
}

TEST(Profile, IsATableForPeople)
{
    Profile profile;
    test::look(profile, network);
    const std::string text = profile.text();
    EXPECT_EQ(text.rfind("shader ", 0), 0u) << text;
    EXPECT_NE(text.find("\n\nshader instance "), std::string::npos) << text;
    EXPECT_NE(text.find("\"sum\" total "), std::string::npos) << text;
    EXPECT_EQ(text.find("idle"), std::string::npos) << text;
    EXPECT_EQ(text.find("phenomenon"), std::string::npos) << "there is none";
}
