// SPDX-License-Identifier: BSD-3-Clause
// The white furnace: where light 1 comes from everywhere, a ball that takes none of it away is 1 wherever one
// looks, and one that reflects a part of it is that part.
#include "tests/host/base/scene.h"

#include <gtest/gtest.h>

#include <cmath>
#include <string>

namespace {

constexpr float radius = 1.5f;

/// Every pixel of a ball of that material, and of what is seen beside it.
template <class Check>
void forEachPixel(const std::string& body, const std::string& lights, Check check)
{
    const Picture picture =
        rendered(body + "instance \"ball-i\" geometry \"mib_geo_sphere\" ( \"u\" 64, \"v\" 32, \"radius\" " +
                     std::to_string(radius) + " ) material \"m\" end instance\n",
                 "\"ball-i\" " + lights);
    for (int j = 0; j < picture.height; ++j)
        for (int i = 0; i < picture.width; ++i)
            check(picture.at(i, j), std::hypot(place(i), place(j)) / radius);
}

const std::string white = R"(
shader "surroundings" "mib_illum_lambert" ( "ambience" 1 1 1, "ambient" 1 1 1 )
shader "own" "mib_illum_lambert" ( "ambience" 1 1 1, "ambient" 1 1 1 )
shader "glass" "mib_refract" ( "refract" 1 1 1, "ior" 1.5 )
)";

/// The ball is not to be seen in the furnace.
void expectInvisible(const std::string& shader)
{
    forEachPixel(white + "material \"m\" " + shader + " end material\n", "",
                 [&](const miColor& c, float across) {
                     for (const float channel : {c.r, c.g, c.b, c.a})
                         ASSERT_NEAR(channel, 1.0f, 1e-5f) << shader << ", at " << across;
                 });
}

} // namespace

TEST(Furnace, AMirrorIsNotSeen)
{
    expectInvisible(R"("mib_reflect" ( "reflect" 1 1 1 ))");
    expectInvisible(R"("mib_reflect" ( "reflect" 1 1 1, "notrace" on ))");
}

TEST(Furnace, AMirrorThatTakesLightAwayIsSeen)
{
    forEachPixel(white + "material \"m\" \"mib_reflect\" ( \"reflect\" .5 .5 .5 ) end material\n", "",
                 [](const miColor& c, float across) {
                     if (std::abs(across - 1.0f) > 0.01f) {
                         ASSERT_NEAR(c.r, across < 1.0f ? 0.5f : 1.0f, 1e-5f) << across;
                     }
                 });
}

TEST(Furnace, GlassOfAnyIndexIsNotSeen)
{
    for (const std::string ior : {"1", "1.33", "1.5", "2.4", ".7"})
        expectInvisible(R"("mib_refract" ( "refract" 1 1 1, "ior" )" + ior + " )");
}

TEST(Furnace, WhatIsSeenThroughAddsNothing)
{
    expectInvisible(R"("mib_transparency" ( "transp" 1 1 1 ))");
    expectInvisible(R"("mib_opacity" ( "opacity" 0 0 0 ))");
}

TEST(Furnace, PartsOfAWhiteSurfaceAddUp)
{
    for (const std::string amount : {"0 0 0", ".25 .5 .75", "1 1 1"}) {
        expectInvisible(R"("mib_reflect" ( "input" = "own", "reflect" )" + amount + " )");
        expectInvisible(R"("mib_refract" ( "input" = "own", "ior" 1.5, "refract" )" + amount + " )");
        expectInvisible(R"("mib_transparency" ( "input" = "own", "transp" )" + amount + " )");
        expectInvisible(R"("mib_opacity" ( "input" = "own", "opacity" )" + amount + " )");
        // What a mirror does not reflect goes on into the glass.
        expectInvisible(R"("mib_reflect" ( "input" = "glass", "reflect" )" + amount + " )");
    }
}

TEST(Furnace, AMattBallIsItsAlbedo)
{
    // The light is the mean over samples that are spread evenly over the directions, and the mean of the
    // cosine, nothing where it is negative, is a quarter. So the furnace is a light of 4, far away on all
    // sides.
    constexpr float albedo = 0.6f;
    for (const std::string shader :
         {"\"mib_illum_lambert\" (", "\"mib_illum_phong\" ( \"specular\" 0 0 0,"}) {
        double sum = 0.0;
        int pixels = 0;
        forEachPixel("light \"walls\" \"mib_light_point\" ( \"color\" 4 4 4, \"shadow\" off ) origin 0 0 0\n"
                     "sphere 10000 24 24 end light instance \"walls-i\" \"walls\" end instance\n"
                     "material \"m\" " +
                         shader + " \"diffuse\" .6 .6 .6, \"mode\" 4 ) end material\n",
                     "\"walls-i\"", [&](const miColor& c, float across) {
                         if (across > 0.99f)
                             return;
                         EXPECT_NEAR(c.r, albedo, 0.015f) << shader << ", at " << across;
                         sum += c.r;
                         ++pixels;
                     });
        EXPECT_GT(pixels, 600);
        EXPECT_NEAR(sum / pixels, albedo, 0.001) << shader << ": nothing is lost on the whole";
    }
}
