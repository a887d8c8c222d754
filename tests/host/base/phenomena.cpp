// SPDX-License-Identifier: BSD-3-Clause
// Phenomena in pictures: what their networks show.
#include "tests/host/base/scene.h"

#include "host/report/error.h"

#include <gtest/gtest.h>

namespace {

/// Colours that add up: "ambience" times "ambient".
const std::string glow = R"(
declare phenomenon color "glow" ( color "tint" default .5 .5 .5, color "times" default 1 1 1 )
    shader "in" "mib_illum_lambert" ( "ambience" = interface "times", "ambient" = interface "tint" )
    shader "out" "mib_illum_lambert" ( "ambience" 1 1 1, "ambient" = "in" )
    root = "out"
end declare
)";

void expectColor(const miColor& color, float r, float g, float b)
{
    EXPECT_NEAR(color.r, r, 1e-5f);
    EXPECT_NEAR(color.g, g, 1e-5f);
    EXPECT_NEAR(color.b, b, 1e-5f);
}

miColor middle(const std::string& body, const std::string& instances)
{
    return rendered(body, instances).at(20, 20);
}

miColor wall(const std::string& body) { return middle(body + square("wall", 0.0f, "m"), "\"wall-i\""); }

} // namespace

TEST(Phenomena, EachDefinitionHasItsOwnValues)
{
    const std::string definitions = glow + R"(
shader "a" "glow" ( "tint" .2 .4 .6 ) shader "b" "glow" ( "times" = "a" ) shader "c" "glow" ( "tint" = "b" )
)";
    expectColor(wall(definitions + "material \"m\" = \"a\" end material\n"), .2f, .4f, .6f);
    expectColor(wall(definitions + "material \"m\" = \"b\" end material\n"), .1f, .2f, .3f);
    expectColor(wall(definitions + "material \"m\" = \"c\" end material\n"), .1f, .2f, .3f);
    expectColor(wall(glow + "material \"m\" \"glow\" ( \"tint\" 1 0 .5 ) end material\n"), 1, 0, .5f);
}

TEST(Phenomena, InsideOneAnother)
{
    expectColor(wall(glow + R"(
declare phenomenon color "twice" ( color "first", color "second" )
    shader "g" "glow" ( "tint" = interface "first", "times" = interface "second" )
    shader "h" "glow" ( "tint" = "g", "times" 2 2 2 )
    root = "h"
end declare
shader "half" "glow" ( )
material "m" "twice" ( "first" .2 .4 .6, "second" = "half" ) end material
)"),
                .2f, .4f, .6f);
}

TEST(Phenomena, AListOfRootsIsCalledInOrderAlsoWhereItIsConnected)
{
    const std::string list = R"(
declare phenomenon color "stack" ( color "c" )
    root "mib_illum_lambert" ( "ambience" 1 1 1, "ambient" 9 9 9 )
         "mib_illum_lambert" ( "ambience" 1 1 1, "ambient" = interface "c" )
end declare
)";
    expectColor(wall(list + "material \"m\" \"stack\" ( \"c\" .1 .2 .3 ) end material\n"), .1f, .2f, .3f);
    expectColor(wall(list + R"(shader "s" "stack" ( "c" .1 .2 .3 )
material "m" "mib_illum_lambert" ( "ambience" 2 2 2, "ambient" = "s" ) end material
)"),
                .2f, .4f, .6f);
}

TEST(Phenomena, WholeArraysArePassedOn)
{
    const auto picture = [](const std::string& lights) {
        return middle(R"(
declare phenomenon color "lit" ( array light "lamps" )
    root "mib_illum_lambert" ( "diffuse" 1 1 1, "lights" = interface "lamps" )
end declare
light "red" "mib_light_infinite" ( "color" 1 0 0, "shadow" off ) direction 0 0 -1 end light
light "blue" "mib_light_infinite" ( "color" 0 0 1, "shadow" off ) direction 0 0 -1 end light
instance "red-i" "red" end instance instance "blue-i" "blue" end instance
material "m" "lit" ( "lamps" [)" +
                          lights + "] ) end material\n" + square("wall", 0.0f, "m"),
                      "\"wall-i\" \"red-i\" \"blue-i\"");
    };
    expectColor(picture("\"red-i\""), 1, 0, 0);
    expectColor(picture("\"blue-i\""), 0, 0, 1);
    expectColor(picture("\"red-i\", \"blue-i\""), 1, 0, 1);
}

TEST(Phenomena, MayBeMaterialsAndLights)
{
    const std::string paint = R"(
declare phenomenon material "paint" ( color "c" )
    material "m" opaque "mib_illum_lambert" ( "ambience" 1 1 1, "ambient" = interface "c" ) end material
    root material "m"
end declare
declare phenomenon light "lamp" ( color "c" )
    light "l" "mib_light_infinite" ( "color" = interface "c", "shadow" off ) direction 0 0 -1 end light
    root light "l"
end declare
)";
    expectColor(wall(paint + "shader \"m\" \"paint\" ( \"c\" .1 .2 .3 )\n"), .1f, .2f, .3f);
    expectColor(wall(paint + "material \"m\" \"paint\" ( \"c\" .1 .2 .3 ) end material\n"), .1f, .2f, .3f);
    expectColor(middle(paint + R"(
shader "green" "lamp" ( "c" 0 1 0 ) instance "green-i" "green" end instance
material "m" "mib_illum_lambert" ( "diffuse" .5 .5 .5, "lights" ["green-i"] ) end material
)" + square("wall", 0.0f, "m"),
                       "\"wall-i\" \"green-i\""),
                0, .5f, 0);
}

TEST(Phenomena, BringTheirEnvironmentAndGeometryAlong)
{
    const std::string world = R"(
declare phenomenon color "world" ( color "c", color "sky" )
    root "mib_illum_lambert" ( "ambience" 1 1 1, "ambient" = interface "c" )
    environment "mib_illum_lambert" ( "ambience" 1 1 1, "ambient" = interface "sky" )
end declare
declare phenomenon color "body" ( color "c" )
    root "mib_illum_lambert" ( "ambience" 1 1 1, "ambient" = interface "c" )
    geometry "mib_geo_sphere" ( )
end declare
material "m" "world" ( "c" 1 0 0, "sky" 0 0 1 ) end material
instance "small" geometry "mib_geo_square" ( "width" 1, "height" 1 ) material "m" end instance
)";
    const Picture picture = rendered(world, "\"small\"");
    expectColor(picture.at(20, 20), 1, 0, 0);
    expectColor(picture.at(2, 2), 0, 0, 1);
    // Of what the scene does not use nothing is added.
    expectColor(rendered(world, "").at(2, 2), 0, 0, 0);
    const Picture added = rendered(world + "shader \"b\" \"body\" ( )\n", "\"small\"");
    expectColor(added.at(20, 20), 1, 0, 0);
}

TEST(Phenomena, ThoseThatNeedThemselvesAreToldOf)
{
    try {
        wall(glow + R"(
shader "late" "glow" ( )
declare phenomenon color "loop" ( )
    root "mib_illum_lambert" ( "ambient" = "late" ) "mib_illum_lambert" ( "ambient" = "late" )
end declare
shader "user" "loop" ( )
shader "late" "glow" ( "tint" = "user" )
material "m" = "late" end material
)");
        FAIL();
    } catch (const host::Error& error) {
        EXPECT_NE(std::string(error.what()).find("shaders are connected in a circle"), std::string::npos)
            << error.what();
    }
}

TEST(Textures, AProceduralTextureIsLookedUpWithTheShadersState)
{
    expectColor(wall(R"(
color texture "t" "mib_illum_lambert" ( "ambience" 1 1 1, "ambient" .3 .2 .1 )
shader "look" "mib_texture_lookup" ( "tex" "t", "coord" .5 .5 0 )
material "m" "mib_illum_lambert" ( "ambience" 1 1 1, "ambient" = "look" ) end material
)"),
                .3f, .2f, .1f);
    expectColor(wall(glow + R"(
color texture "t" "glow" ( "tint" .3 .2 .1 )
declare phenomenon color "board" ( color texture "picture" )
    root "mib_texture_lookup" ( "tex" = interface "picture", "coord" .5 .5 0 )
end declare
material "m" "board" ( "picture" "t" ) end material
)"),
                .3f, .2f, .1f);
}

TEST(Geometry, AListOfShadersAddsUp)
{
    const Picture picture = rendered(R"(
material "m" "mib_illum_lambert" ( "ambience" 1 1 1, "ambient" 1 0 0 ) end material
declare phenomenon geometry "both" ( scalar "w" )
    root "mib_geo_square" ( "width" = interface "w", "height" .5 ) "mib_geo_square" ( "width" .5, "height" = interface "w" )
end declare
instance "cross" geometry "both" ( "w" 3 ) material "m" end instance
)",
                                     "\"cross\"");
    for (const auto& [x, y, red] : {std::tuple{20, 20, 1.0f}, {32, 20, 1.0f}, {20, 32, 1.0f}, {32, 32, 0.0f}})
        EXPECT_EQ(picture.at(x, y).r, red) << x << ' ' << y;
}
