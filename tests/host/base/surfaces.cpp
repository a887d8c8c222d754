// SPDX-License-Identifier: BSD-3-Clause
// Illumination, textures and secondary rays on plain surfaces, against closed forms.
#include "tests/harness/messages.h"
#include "tests/host/base/scene.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <tuple>

namespace {

/// A surface that shows a fixed colour: ambient light alone.
std::string plain(const std::string& name, const std::string& color)
{
    return "material \"" + name + "\" \"mib_illum_lambert\" ( \"ambience\" 1 1 1, \"ambient\" " + color +
           " ) end material\n";
}

const std::string ownColor = R"(shader "own" "mib_illum_lambert" ( "ambience" 1 1 1, "ambient" .2 .4 .6 ))"
                             "\n";
const std::string surroundings =
    R"(shader "surroundings" "mib_illum_lambert" ( "ambience" 1 1 1, "ambient" .8 .8 .8 ))"
    "\n";

void expectColor(const miColor& color, float r, float g, float b)
{
    EXPECT_NEAR(color.r, r, 1e-5f);
    EXPECT_NEAR(color.g, g, 1e-5f);
    EXPECT_NEAR(color.b, b, 1e-5f);
    EXPECT_NEAR(color.a, 1.0f, 1e-5f);
}

miColor middle(const std::string& body, const std::string& instances)
{
    return rendered(body, instances).at(20, 20);
}

} // namespace

TEST(Illumination, PhongAddsAHighlightAroundTheMirrorDirection)
{
    const auto picture = rendered(R"(
light "lamp" "mib_light_point" () origin 0 0 2 end light
instance "lamp-i" "lamp" end instance
material "shiny"
    "mib_illum_phong" ( "ambience" .5 .5 .5, "ambient" .2 .2 .2, "diffuse" .3 .3 .3, "specular" .6 .6 .6,
                        "exponent" 10, "lights" ["lamp-i"] )
end material
)" + square("wall", 0.0f, "shiny"),
                                  R"("wall-i" "lamp-i")");
    // The view is along the normal and so is the mirrored view: its angle to the light is the light's own.
    for (int i = 0; i < picture.width; i += 5) {
        const float cosine = 2.0f / std::hypot(place(i), place(7), 2.0f);
        EXPECT_NEAR(picture.at(i, 7).r, 0.1f + 0.3f * cosine + 0.6f * std::pow(cosine, 10.0f), 1e-4f);
    }
}

TEST(Illumination, HighlightOfASmoothSurfaceIsSmooth)
{
    // Light and view come the same way, along z: the mirrored view is twice as far off as the normal is.
    // Facets would be seen: their normals are up to 3.75 degrees off.
    const auto picture = rendered(R"(
light "sun" "mib_light_infinite" () direction 0 0 -1 end light
instance "sun-i" "sun" end instance
material "shiny"
    "mib_illum_phong" ( "diffuse" .2 .2 .2, "specular" .8 .8 .8, "exponent" 30, "mode" 4 )
end material
instance "ball-i" geometry "mib_geo_sphere" ( "u" 48, "v" 24, "radius" 1.5 ) material "shiny" end instance
)",
                                  R"("ball-i" "sun-i")");
    for (int i = 8; i <= 32; ++i) {
        const float across = std::hypot(place(i), place(18)) / 1.5f;
        const float normal = std::sqrt(1.0f - across * across);
        const float highlight = std::max(2.0f * normal * normal - 1.0f, 0.0f);
        EXPECT_NEAR(picture.at(i, 18).r, 0.2f * normal + 0.8f * std::pow(highlight, 30.0f), 0.02f) << i;
    }
}

TEST(Illumination, ModeChoosesTheLights)
{
    const auto lit = [](const std::string& choice, const std::string& list = {}) {
        std::string body;
        for (const char* const name : {"1", "2", "4"})
            body += "light \"l" + std::string(name) + "\" \"mib_light_infinite\" ( \"color\" ." + name +
                    " ." + name + " ." + name + " ) direction 0 0 -1 end light\ninstance \"l" + name +
                    "-i\" \"l" + name + "\" end instance\n";
        body += R"(instgroup "pair" "l1-i" "l2-i" end instgroup  instance "pair-i" "pair" end instance
material "white" "mib_illum_lambert" ( "diffuse" 1 1 1, )" +
                choice + R"( ) end material
)" + square("wall", 0.0f, "white") +
                "incremental instance \"wall-i\" " + list + " end instance\n";
        return middle(body, R"("wall-i" "pair-i" "l4-i")").r;
    };
    EXPECT_NEAR(lit(R"("mode" 0, "lights" ["l4-i"])"), 0.4f, 1e-6f);
    EXPECT_NEAR(lit(R"("mode" 0, "lights" ["l4-i", "l1-i"])"), 0.5f, 1e-6f);
    EXPECT_NEAR(lit(R"("mode" 0)"), 0.0f, 1e-6f);
    EXPECT_NEAR(lit(R"("mode" 1, "lights" ["pair-i"])"), 0.3f, 1e-6f);
    EXPECT_NEAR(lit(R"("mode" 2, "lights" ["pair-i"])"), 0.4f, 1e-6f);
    EXPECT_NEAR(lit(R"("mode" 4, "lights" ["l4-i"])"), 0.7f, 1e-6f);
    // The light list of the wall's instance counts in mode 4 alone.
    EXPECT_NEAR(lit(R"("mode" 4)", R"(light [ "pair-i" ])"), 0.3f, 1e-6f);
    EXPECT_NEAR(lit(R"("mode" 4, "lights" ["l4-i"])", R"(light [ "l1-i" ])"), 0.1f, 1e-6f);
    EXPECT_NEAR(lit(R"("mode" 4)", R"(light "exclusive" [ "l1-i", "l1-i" ])"), 0.6f, 1e-6f);
    EXPECT_NEAR(lit(R"("mode" 4)", R"(light "exclusive" [])"), 0.7f, 1e-6f);
    EXPECT_NEAR(lit(R"("mode" 4)", R"(light [ "l1-i" ] light [])"), 0.7f, 1e-6f) << "taken back";
    for (const std::string list : {R"(light [ "l1-i" ])", R"(light "exclusive" [ "l4-i" ])"}) {
        EXPECT_NEAR(lit(R"("mode" 0, "lights" ["l4-i"])", list), 0.4f, 1e-6f);
        EXPECT_NEAR(lit(R"("mode" 0)", list), 0.0f, 1e-6f);
        EXPECT_NEAR(lit(R"("mode" 1, "lights" ["pair-i"])", list), 0.3f, 1e-6f);
        EXPECT_NEAR(lit(R"("mode" 2, "lights" ["pair-i"])", list), 0.4f, 1e-6f);
    }
}

TEST(Illumination, AModeThatIsNoneIsAWarningAndExcludes)
{
    const auto lit = [](const std::string& material) {
        return middle(
                   "light \"sun\" \"mib_light_infinite\" ( \"color\" .5 .5 .5 ) direction 0 0 -1 end light\n"
                   "instance \"sun-i\" \"sun\" end instance\n" +
                       material + square("wall", 0.0f, "white"),
                   R"("wall-i" "sun-i")")
            .r;
    };
    for (const std::string shader : {"mib_illum_lambert", "mib_illum_phong"})
        for (const std::string mode : {"-1", "3", "5"}) {
            const test::Messages messages(3);
            EXPECT_EQ(lit("shader \"named\" \"" + shader + "\" ( \"diffuse\" 1 1 1, \"mode\" " + mode +
                          ", \"lights\" [\"sun-i\"] )\nmaterial \"white\" = \"named\" end material\n"),
                      0.0f);
            ASSERT_EQ(messages.lines().size(), 1u);
            const std::string line = messages.lines().front();
            EXPECT_NE(line.find(": shader \"named\" (" + shader +
                                "): \"mode\" is none of 0, 1, 2 and 4, and taken as 2"),
                      std::string::npos)
                << line;
        }
    const test::Messages messages(3);
    lit("material \"white\" \"mib_illum_lambert\" ( \"mode\" 4 ) end material\n");
    EXPECT_TRUE(messages.lines().empty());
}

TEST(Shadows, AModeThatIsNoneIsAWarningAndExcludes)
{
    for (const auto& [mode, passes, warnings] :
         {std::tuple{"1", 1.0f, 0u}, {"2", 0.0f, 0u}, {"3", 0.0f, 1u}, {"4", 1.0f, 0u}}) {
        const test::Messages messages(3);
        const auto color = middle(R"(
light "sun" "mib_light_infinite" ( "color" 1 1 1, "shadow" on ) direction 0 0 -1 end light
instance "sun-i" "sun" end instance
material "white" "mib_illum_lambert" ( "diffuse" 1 1 1, "mode" 4 ) end material
material "glass" "mib_illum_lambert" ()
    shadow "mib_shadow_transparency" ( "transp" 1 1 1, "lights" ["sun-i"], "mode" )" +
                                      std::string(mode) + R"( )
end material
)" + square("wall", 0.0f, "white") + square("pane", 2.0f, "glass", "shadow"),
                                  R"("wall-i" "pane-i" "sun-i")");
        EXPECT_NEAR(color.r, passes, 1e-5f) << mode;
        EXPECT_EQ(messages.lines().size(), warnings) << mode;
    }
}

TEST(Textures, LookupShowsTheImageAtTheRemappedCoordinate)
{
    // Two texels in a row, black and white: between their centres, at 1/4 and 3/4, the colour is linear.
    const auto picture = rendered(R"(
color texture "ramp" [2 1] '000000ff' 'ffffffff'
shader "uv"   "mib_texture_vector" ( "select" 0 )
shader "half" "mib_texture_remap"  ( "input" = "uv", "repeat" 2 1 1, "alt_x" on, "min" .25 0 0, "max" .75 1 1 )
shader "grey" "mib_texture_lookup" ( "tex" "ramp", "coord" = "half" )
material "show" "mib_illum_lambert" ( "ambience" 1 1 1, "ambient" = "grey" ) end material
)" + square("wall", 0.0f, "show"),
                                  R"("wall-i")");
    for (int i = 0; i < picture.width; i += 3) {
        const float u = (place(i) + 5.0f) / 10.0f;
        // Two mirrored copies: up to the middle and down again.
        EXPECT_NEAR(picture.at(i, 11).r, 1.0f - std::fabs(2.0f * u - 1.0f), 1e-4f) << i;
    }
}

TEST(Textures, SpaceThatIsNotThereIsZero)
{
    const auto shown = [](const std::string& select) {
        return middle(R"(
color texture "ramp" [2 1] '000000ff' 'ffffffff'
shader "uv"   "mib_texture_vector" ( "select" )" +
                          select + R"( )
shader "grey" "mib_texture_lookup" ( "tex" "ramp", "coord" = "uv" )
material "show" "mib_illum_lambert" ( "ambience" 1 1 1, "ambient" = "grey" ) end material
)" + square("wall", 0.0f, "show"),
                      R"("wall-i")")
            .r;
    };
    EXPECT_FLOAT_EQ(shown("0"), 0.5f) << "the middle of the wall";
    EXPECT_EQ(shown("1"), 0.0f) << "the texture is black at (0, 0)";
    EXPECT_EQ(shown("2000000000"), 0.0f);
}

TEST(Textures, VectorsAreTakenToTheSpaceThatIsAskedFor)
{
    // A wall four times as wide as it was made, turned by 45 degrees about y and moved to x = 1. Its own
    // normal (3/5, 0, 4/5) leans less where the wall is wide: 3/20 along it for 4/5 up.
    const std::string wall = R"(
material "m" "mib_illum_lambert" ( "ambience" 1 1 1, "ambient" = "look" ) end material
object "wall" visible trace shadow
    group
        -5 -5 0  5 -5 0  5 5 0  -5 5 0  .6 0 .8
        v 0 n 4  v 1 n 4  v 2 n 4  v 3 n 4
        c "m" 0 1 2 3
    end group
end object
instance "wall-i" "wall"
    transform .176776695 0 .707106781 0  0 1 0 0  -.176776695 0 .707106781 0  -.176776695 0 -.707106781 1
end instance
)";
    const auto look = [&](int select, int space) {
        return middle("color texture \"vector\" \"mib_texture_vector\" ( \"select\" " +
                          std::to_string(select) + ", \"selspace\" " + std::to_string(space) +
                          " )\nshader \"look\" \"mib_texture_lookup\" ( \"tex\" \"vector\" )\n" + wall,
                      R"("wall-i")");
    };
    const float r = std::sqrt(0.5f);
    // Of unit length, along the world's x and z; the turn takes (x, z) to (x + z, z - x) / sqrt 2.
    const float norm = std::hypot(0.15f, 0.8f);
    const miVector leaning = {(0.15f + 0.8f) / norm, 0, (0.8f - 0.15f) / norm};
    // p_local = (p_world - (1, 0, 0)) turned, x divided by 4. The middle of the picture meets the plane
    // x + z = 1 at (0, 0, 1).
    const auto expect = [&](int select, int space, float x, float y, float z) {
        SCOPED_TRACE(std::to_string(select) + " in space " + std::to_string(space));
        const miColor color = look(select, space);
        EXPECT_NEAR(color.r, x, 1e-5f);
        EXPECT_NEAR(color.g, y, 1e-5f);
        EXPECT_NEAR(color.b, z, 1e-5f);
    };
    for (const int space : {0, 1}) {
        expect(-1, space, 0, 0, 1);
        expect(-2, space, r * leaning.x, 0, r * leaning.z);
        expect(-5, space, r, 0, r);
    }
    expect(-1, 2, 0, 0, -9);
    expect(-1, 3, -2 * r / 4, 0, 0);
    expect(-4, 3, r / 4, 0, -r);  // a direction goes like the points
    expect(-2, 3, 0.6f, 0, 0.8f); // a normal as it was made
    expect(-5, 3, 0, 0, 1);
    expect(-2, 2, r * leaning.x, 0, r * leaning.z);
}

TEST(Secondary, AllFourBlendByTheirAmount)
{
    const auto blended = [](const std::string& shader) {
        return middle(ownColor + surroundings + "material \"m\" " + shader + " end material\n" +
                          square("wall", 0.0f, "m"),
                      R"("wall-i")");
    };
    const auto expectBlend = [](const miColor& c, float r, float g, float b) {
        expectColor(c, 0.2f * (1 - r) + 0.8f * r, 0.4f * (1 - g) + 0.8f * g, 0.6f * (1 - b) + 0.8f * b);
    };
    expectBlend(blended(R"("mib_transparency" ( "input" = "own", "transp" .25 .5 1 ))"), 0.25f, 0.5f, 1.0f);
    expectBlend(blended(R"("mib_opacity" ( "input" = "own", "opacity" .25 .5 1 ))"), 0.75f, 0.5f, 0.0f);
    expectBlend(blended(R"("mib_reflect" ( "input" = "own", "reflect" .25 .5 1 ))"), 0.25f, 0.5f, 1.0f);
    expectBlend(blended(R"("mib_reflect" ( "input" = "own", "reflect" 1 1 1, "notrace" on ))"), 1.0f, 1.0f,
                1.0f);
    expectBlend(blended(R"("mib_refract" ( "input" = "own", "refract" .25 .5 1, "ior" 1.5 ))"), 0.25f, 0.5f,
                1.0f);
}

TEST(Secondary, MirrorShowsWhatStandsInFrontOfIt)
{
    // A mirror leaning by 45 degrees turns the view to +x, where the red wall stands.
    const auto color = middle(plain("red", "1 .25 .125") + R"(
material "silver" "mib_reflect" ( "reflect" 1 1 1 ) end material
object "mirror" visible trace
    group  -1 -1 1  1 -1 -1  1 1 -1  -1 1 1   v 0 v 1 v 2 v 3   c "silver" 0 1 2 3  end group
end object
instance "mirror-i" "mirror" end instance
object "wall" visible trace
    group  3 -5 -5  3 5 -5  3 5 5  3 -5 5   v 0 v 1 v 2 v 3   c "red" 0 1 2 3  end group
end object
instance "wall-i" "wall" end instance
)",
                              R"("mirror-i" "wall-i")");
    expectColor(color, 1.0f, 0.25f, 0.125f);
}

TEST(Secondary, MirrorIsOpaqueWhateverItShows)
{
    const auto color = middle("material \"m\" \"mib_reflect\" ( \"reflect\" 1 1 1 ) end material\n" +
                                  square("wall", 0.0f, "m"),
                              R"("wall-i")");
    expectColor(color, 0.0f, 0.0f, 0.0f);
}

TEST(Secondary, GlassMirrorsTotallyBeyondTheCriticalAngle)
{
    // The view comes from inside, 45 degrees off the normal of a face that leads out: arcsin(1 / 1.5)
    // is 41.8.
    const auto color = middle(plain("red", "1 .25 .125") + R"(
material "clear" "mib_refract" ( "refract" 1 1 1, "ior" 1.5 ) end material
object "face" visible trace
    group  -1 -1 1  -1 1 1  1 1 -1  1 -1 -1   v 0 v 1 v 2 v 3   c "clear" 0 1 2 3  end group
end object
instance "face-i" "face" end instance
object "wall" visible trace
    group  3 -5 -5  3 5 -5  3 5 5  3 -5 5   v 0 v 1 v 2 v 3   c "red" 0 1 2 3  end group
end object
instance "wall-i" "wall" end instance
)",
                              R"("face-i" "wall-i")");
    expectColor(color, 1.0f, 0.25f, 0.125f);
}

TEST(Secondary, SlabOfGlassMovesTheViewSideways)
{
    // Both faces lean by `lean`, the lower one `drop` below the other: in between the ray turns by `off`, and
    // behind them it is parallel again.
    const float lean = 0.6f, drop = 1.5f;
    const float slope = std::tan(lean);
    const auto corner = [&](const char* xy, float x, float below) {
        return std::string(xy) + std::to_string(-slope * x - below) + " ";
    };
    const std::string upper =
        corner("-2 -1 ", -2, 0) + corner("2 -1 ", 2, 0) + corner("2 1 ", 2, 0) + corner("-2 1 ", -2, 0);
    const std::string lower = corner("-2 -1 ", -2, drop) + corner("-2 1 ", -2, drop) +
                              corner("2 1 ", 2, drop) + corner("2 -1 ", 2, drop);
    const auto picture = rendered(R"(
color texture "ramp" [2 1] '000000ff' 'ffffffff'
shader "uv"   "mib_texture_vector" ( "select" 0 )
shader "grey" "mib_texture_lookup" ( "tex" "ramp", "coord" = "uv" )
material "show"  "mib_illum_lambert" ( "ambience" 1 1 1, "ambient" = "grey" ) end material
material "clear" "mib_refract" ( "refract" 1 1 1, "ior" 1.5 ) end material
object "slab" visible trace
    group )" + upper + lower + R"(
        v 0 v 1 v 2 v 3 v 4 v 5 v 6 v 7   c "clear" 0 1 2 3   c "clear" 4 5 6 7
    end group
end object
instance "slab-i" "slab" end instance
)" + square("wall", -4.0f, "show"),
                                  R"("slab-i" "wall-i")");
    const float off = lean - std::asin(std::sin(lean) / 1.5f);
    const float shift = drop * std::sin(off) / (std::cos(off) + slope * std::sin(off));
    for (const int i : {12, 20, 28}) {
        const float u = (place(i) - shift) / 10.0f + 0.5f;
        EXPECT_NEAR(picture.at(i, 20).r, 2.0f * u - 0.5f, 1e-3f) << i;
    }
}

TEST(Secondary, RefractedRayFollowsSnellsLaw)
{
    // The view meets glass that leans by `lean` and, below it, a wall that shows its own x as a grey: u =
    // x/10 + 1/2.
    const float lean = 0.5f;
    const float slope = std::tan(lean);
    const std::string left = std::to_string(slope), right = std::to_string(-slope);
    const auto picture = rendered(R"(
color texture "ramp" [2 1] '000000ff' 'ffffffff'
shader "uv"   "mib_texture_vector" ( "select" 0 )
shader "grey" "mib_texture_lookup" ( "tex" "ramp", "coord" = "uv" )
material "show"  "mib_illum_lambert" ( "ambience" 1 1 1, "ambient" = "grey" ) end material
material "clear" "mib_refract" ( "refract" 1 1 1, "ior" 1.5 ) end material
object "glass" visible trace
    group  -1 -1 )" + left + " 1 -1 " +
                                      right + " 1 1 " + right + " -1 1 " + left +
                                      R"(  v 0 v 1 v 2 v 3   c "clear" 0 1 2 3  end group
end object
instance "glass-i" "glass" end instance
)" + square("wall", -3.0f, "show"),
                                  R"("glass-i" "wall-i")");
    // From the normal, which leans by `lean`, the ray goes on by asin(sin(lean)/1.5); from the vertical by
    // the rest.
    const float off = lean - std::asin(std::sin(lean) / 1.5f);
    for (const int i : {12, 20, 28}) {
        const float height = 3.0f - place(i) * slope;
        const float x = place(i) - height * std::tan(off);
        const float u = x / 10.0f + 0.5f;
        EXPECT_NEAR(picture.at(i, 20).r, 2.0f * u - 0.5f, 1e-3f) << i;
    }
}

TEST(Geometry, SphereIsRoundAndSmooth)
{
    const auto picture = rendered(R"(
light "sun" "mib_light_infinite" () direction 0 0 -1 end light
instance "sun-i" "sun" end instance
material "white" "mib_illum_lambert" ( "diffuse" 1 1 1, "mode" 4 ) end material
instance "ball-i" geometry "mib_geo_sphere" ( "u" 200, "v" 100, "radius" 1.5 ) material "white" end instance
)",
                                  R"("ball-i" "sun-i")");
    for (int j = 0; j < picture.height; ++j)
        for (int i = 0; i < picture.width; ++i) {
            const float across = std::hypot(place(i), place(j)) / 1.5f;
            if (across > 1.02f) {
                EXPECT_EQ(picture.at(i, j).a, 0.0f) << i << " " << j;
            }
            if (across < 0.95f) {
                EXPECT_NEAR(picture.at(i, j).r, std::sqrt(1.0f - across * across), 0.02f) << i << " " << j;
            }
        }
}

TEST(Volume, FadesWithDistance)
{
    // The camera is at z = 10, and its rays run along z: the wall is 4 away.
    const auto fogged = [](const std::string& max) {
        return rendered("shader \"fog\" \"mib_volume\" ( \"color\" .5 .25 .75 1, \"max\" " + max + " )\n" +
                            plain("wall", "1 1 1") + square("near", 6.0f, "wall"),
                        "\"near-i\"");
    };
    expectColor(fogged("16").at(20, 20), 0.875f, 0.8125f, 0.9375f); // a quarter of it
    expectColor(fogged("4").at(20, 20), 0.5f, 0.25f, 0.75f);
    expectColor(fogged("2").at(20, 20), 0.5f, 0.25f, 0.75f);
    const auto nothing =
        rendered("shader \"fog\" \"mib_volume\" ( \"color\" .5 .25 .75 1, \"max\" 1000 )\n", "");
    expectColor(nothing.at(20, 20), 0.5f, 0.25f, 0.75f);
}
