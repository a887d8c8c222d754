// SPDX-License-Identifier: BSD-3-Clause
// Recipes in pictures: what goes by names, labels, sides, rays, shadows and places, where scenes decide.
#include "host/language/read.h"
#include "host/render/rendering.h"
#include "tests/harness/messages.h"
#include "tests/recipes/recipe.h"

#include <functional>
#include <optional>

using namespace test;

namespace {

/// A wall of 8 by 4 unit squares, "t0" in the lower left corner, seen from 5 units away by one sample in the
/// middle of each. `shaders` has "seen", which shows itself on all of them; `flags` are those of each
/// square's object.
std::vector<miColor> wall(const std::string& shaders, const std::function<std::string(int)>& flags = {},
                          const std::function<std::string(int)>& corners = {}, const std::string& rest = {},
                          const std::string& members = {})
{
    std::string text = R"(
link "base.so"
$include <vhl.mi>
$include <recipes.mi>
$include <recipes.mi>
$include <base.mi>
options "opt" samples 0 0 shadow on trace depth 2 object space end options
camera "cam" focal infinity aperture 8 aspect 2 resolution 8 4 end camera
instance "cam-i" "cam" transform 1 0 0 0  0 1 0 0  0 0 1 0  0 0 -5 1 end instance
)" + shaders + R"(
material "look" = "seen" end material
)";
    std::string group = "instgroup \"root\" \"cam-i\" " + members;
    for (int k = 0; k < 32; ++k) {
        const std::string name = "t" + std::to_string(k);
        const std::string shift = std::to_string(3.5 - k % 8) + ' ' + std::to_string(1.5 - k / 8);
        text += "object \"o-" + name + "\" visible shadow trace " + (flags ? flags(k) : "") +
                "\ngroup -0.5 -0.5 0  0.5 -0.5 0  0.5 0.5 0  -0.5 0.5 0  v 0 v 1 v 2 v 3  p \"look\" " +
                (corners ? corners(k) : "0 1 2 3") + " end group\nend object\ninstance \"" + name +
                "\" \"o-" + name + "\" transform 1 0 0 0  0 1 0 0  0 0 1 0  " + shift + " 0 1 end instance\n";
        group += '"' + name + "\" ";
    }
    text += rest + group + "end instgroup\nrender \"root\" \"cam-i\" \"opt\"\n";

    host::Session session;
    session.libraries.link(VHL_LIBRARY, {}, {});
    session.paths.library = {BASE_LIBRARY_FOLDER};
    session.paths.include = {VHL_DECLARATIONS, BASE_INCLUDE_FOLDER};
    std::optional<host::Picture> picture;
    session.onRender = [&](const host::RenderCommand& command) {
        const host::Database& database = session.database;
        const auto& camera = *database.findAs<host::Camera>(database.lookup("cam"));
        const auto& options = *database.findAs<host::Options>(command.options);
        picture = host::renderPicture(session, command, camera, options, {1, false, {}}).value();
    };
    host::readScene(session, text, "wall.mi");
    std::vector<miColor> colors;
    for (int k = 0; k < 32; ++k)
        colors.push_back(picture->color(k % 8, k / 8));
    return colors;
}

/// Compares the wall with a colour for each of its squares.
template <class Expected>
void expectWall(const std::vector<miColor>& seen, Expected expected, double tolerance = 4e-6)
{
    for (int k = 0; k < 32; ++k) {
        SCOPED_TRACE(k);
        expectClose(seen.at(static_cast<std::size_t>(k)), expected(k), tolerance);
    }
}

double x(int square) { return square % 8 - 3.5; }
double y(int square) { return square / 8 - 1.5; }

} // namespace

TEST(InScenes, ObjectMattesGoByWholeNamesInAnySpelling)
{
    expectWall(wall(R"(shader "seen" "vhrIdMatteColor_v1" ( "red" "t1", "green" "T12", "blue" "t1" ))"),
               [](int k) {
                   return Rgba{k == 1 ? 1.0 : 0, k == 12 ? 1.0 : 0, k == 1 ? 1.0 : 0, 1};
               });
}

// Squares are t0 to t31. One pattern fits several names, some names fit two, and $. fits none.
TEST(InScenes, PatternMattesGoByWhatNamesHaveInCommon)
{
    const Messages messages;
    expectWall(wall(R"(shader "seen" "vhrPatternMatteColor_v1" ( "red" "^T1", "green" "?5$", "blue" "$." ))"),
               [](int k) {
                   const bool beginsWithOne = k == 1 || (k >= 10 && k < 20);
                   return Rgba{beginsWithOne ? 1.0 : 0, k % 10 == 5 ? 1.0 : 0, 0, 1};
               });
    EXPECT_EQ(messages.count("not matched to a pattern"), (32 - 11) + (32 - 3) + 32)
        << "once for each pattern that does not fit";
}

TEST(InScenes, PatternMattesOfNoPatternAreEverywhere)
{
    const Messages messages;
    expectWall(wall(R"(shader "seen" "vhrPatternMatteColor_v1" ( "green" "^t(3|4)$" ))"), [](int k) {
        return Rgba{1, k == 3 || k == 4 ? 1.0 : 0, 1, 1};
    });
}

TEST(InScenes, LabelsGiveHues)
{
    const auto seen =
        wall(R"(shader "seen" "vhrLabelColor_v1" ())", [](int k) { return "tag " + std::to_string(k / 4); });
    Recipe alone("vhrLabelColor_v1");
    expectWall(seen, [&](int k) {
        alone.state.label = static_cast<miUint>(k / 4);
        const miColor c = alone.run<miColor>();
        return Rgba{c.r, c.g, c.b, c.a};
    });
    EXPECT_NE(seen[0].r, seen[4].r);
}

TEST(InScenes, SidesAreThoseOfThePolygons)
{
    expectWall(wall(R"(shader "seen" "vhrTwoSidedColor_v1" ( "front" 0 1 0 1, "back" 1 0 0 1 ))", {},
                    [](int k) { return k % 3 == 0 ? "0 3 2 1" : "0 1 2 3"; }),
               [](int k) {
                   return k % 3 == 0 ? Rgba{1, 0, 0, 1} : Rgba{0, 1, 0, 1};
               });
}

// A mirror in front of the right half shows what the eye does not see directly.
TEST(InScenes, RaysDecideWhatMirrorsShow)
{
    const std::string mirrored = R"(
shader "chrome" "mib_reflect" ( "reflect" 1 1 1 1 )
shader "seen" "vhrRaySwitchColor_v1" ( "eye" = "chrome", "reflect" 0 0 1 1 )
)";
    const std::string behind = R"(
object "back" visible shadow trace
group -9 -9 6  9 -9 6  9 9 6  -9 9 6  v 0 v 1 v 2 v 3  p "look" 0 1 2 3 end group
end object
instance "back-i" "back" end instance
)";
    expectWall(wall(mirrored, {}, {}, behind, "\"back-i\" "), [](int) { return Rgba{0, 0, 1, 1}; });
}

// Lights from the right, from the left and from the eye; a screen stands between the first and the lower
// half.
TEST(InScenes, ShadowMattesHaveAChannelForEachGroupOfLights)
{
    const std::string lights = R"(
light "right" "mib_light_infinite" ( "color" 0.5 0.5 0.5, "shadow" on ) direction -1 0 -1 end light
light "left" "mib_light_infinite" ( "color" 0.2 0.2 0.2, "shadow" on ) direction 1 0 -1 end light
light "dim" "mib_light_infinite" ( "color" 0.1 0 0, "shadow" on ) direction 0 0 -1 end light
instance "right-i" "right" end instance instance "left-i" "left" end instance instance "dim-i" "dim" end instance
shader "seen" "vhrShadowMatteColor_v1"
    ( "redLights" [ "right-i" ], "greenLights" [ "left-i", "dim-i" ], "blueLights" [] )
)";
    // In the light from the right alone: it stands at 10 to 12 and casts 10 to the left.
    const std::string screen = R"(
object "screen" shadow
group 5 -2 10  16 -2 10  16 0 10  5 0 10  v 0 v 1 v 2 v 3  p "look" 0 1 2 3 end group
end object
instance "screen-i" "screen" end instance
)";
    expectWall(wall(lights, {}, {}, screen, "\"right-i\" \"left-i\" \"dim-i\" \"screen-i\" "), [](int k) {
        return Rgba{y(k) < 0 ? 0.0 : 1.0, 1, 0, 1};
    });
}

// A light of one colour is no less lit in that channel for having no other.
TEST(InScenes, ShadowMattesTakeTheChannelThatALightHas)
{
    for (const char* const paint : {"1 0 0", "0 1 0", "0 0 1"}) {
        const std::string light = std::string(R"(
light "lamp" "mib_light_infinite" ( "color" )") +
                                  paint + R"() direction 0 0 -1 end light
instance "lamp-i" "lamp" end instance
shader "seen" "vhrShadowMatteColor_v1" ( "redLights" [ "lamp-i" ], "greenLights" [ "lamp-i" ], "blueLights" [ "lamp-i" ] )
)";
        expectWall(wall(light, {}, {}, {}, "\"lamp-i\" "), [](int) { return Rgba{1, 1, 1, 1}; });
    }
}

TEST(InScenes, PlacesInThePictureArePixels)
{
    expectWall(
        wall(
            R"(shader "seen" "vhrWipeColor_v1" ( "a" 1 0 0 1, "b" 0 1 0 1, "position" 0.25, "lineWidth" 0 ))"),
        [](int k) {
            return k % 8 < 2 ? Rgba{1, 0, 0, 1} : Rgba{0, 1, 0, 1};
        });
    expectWall(wall(R"(shader "seen" "vhrRegionColor_v1" ( "input" 1 0 0 1, "outside" 0 1 0 1,
                        "lower" 0.5 0.25 0, "upper" 1 0.75 0 ))"),
               [](int k) {
                   return k % 8 >= 4 && k / 8 >= 1 && k / 8 < 3 ? Rgba{1, 0, 0, 1} : Rgba{0, 1, 0, 1};
               });
}

TEST(InScenes, PointsNormalsAndDistancesAreThoseOfTheWall)
{
    expectWall(wall(R"(shader "seen" "vhrPositionColor_v1" ( "lower" -4 -2 -1, "upper" 4 2 1 ))"), [](int k) {
        return Rgba{(x(k) + 4) / 8, (y(k) + 2) / 4, 0.5, 1};
    });
    expectWall(wall(R"(shader "seen" "vhrNormalColor_v1" ())"), [](int) { return Rgba{0.5, 0.5, 1, 1}; });
    expectWall(
        wall(
            R"(shader "seen" "vhrDepthCueColor_v1" ( "input" 0 0 0 1, "color" 1 1 1 1, "near" 4, "far" 8 ))"),
        [](int) {
            return Rgba{0.25, 0.25, 0.25, 1};
        });
    expectWall(
        wall(R"(shader "seen" "vhrHeightColor_v1" ( "low" 0 0 0 1, "high" 1 1 1 1, "lower" -2, "upper" 2 ))"),
        [](int k) {
            return Rgba{(y(k) + 2) / 4, (y(k) + 2) / 4, (y(k) + 2) / 4, 1};
        });
}

TEST(InScenes, RecipesFeedRecipes)
{
    expectWall(wall(R"(
shader "saw" "vhStateRasterX_v1" ()
shader "soft" "vhrSmoothstepScalar_v1" ( "input" = "saw", "lower" 0, "upper" 8 )
shader "steps" "vhrRampColor_v1" ( "input" = "soft", "low" 0 0 0 1, "middle" 0.5 0.5 0.5 1, "high" 1 1 1 1 )
shader "seen" "vhrContrastColor_v1" ( "input" = "steps", "contrast" 0.5 ))"),
               [](int k) {
                   const double v = 0.25 + 0.5 * smoothstep(0, 8, k % 8 + 0.5);
                   return Rgba{v, v, v, 1};
               });
}

// What is not seen is not evaluated: a costly branch costs nothing where the other one is taken.
TEST(InScenes, OnlyWhatIsSeenIsEvaluated)
{
    const std::string branches = R"(
shader "ever"  "vhDebugColor_v1" ( "input" 0 1 0 1, "name" "ever", "useLimit" off )
shader "never" "vhDebugColor_v1" ( "input" 1 0 0 1, "name" "never", "useLimit" off )
shader "seen"  )";
    for (
        const char* const shader : {
            R"("vhrCheckerColor_v1" ( "color1" = "ever", "color2" = "never", "frequency" 0 0 0 ))",
            R"("vhrGridColor_v1" ( "color1" = "ever", "color2" = "never", "width" 0 ))",
            R"("vhrBrickColor_v1" ( "brick" = "ever", "mortar" = "never", "joint" 0 ))",
            R"("vhrWipeColor_v1" ( "a" = "ever", "b" = "never", "lineColor" = "never", "position" 1, "lineWidth" 0 ))",
            R"("vhrRegionColor_v1" ( "input" = "ever", "outside" = "never", "lower" 0 0 0, "upper" 1 1 0 ))",
            R"("vhrTwoSidedColor_v1" ( "front" = "ever", "back" = "never" ))",
            R"("vhrRaySwitchColor_v1" ( "eye" = "ever", "reflect" = "never", "refract" = "never", "other" = "never" ))",
            R"("vhrNanMarkerColor_v1" ( "input" = "ever", "nan" = "never", "infinite" = "never" ))",
        }) {
        SCOPED_TRACE(shader);
        const Messages messages;
        expectWall(wall(branches + shader), [](int) { return Rgba{0, 1, 0, 1}; });
        EXPECT_EQ(messages.count("vhDebugColor : ever"), 32) << "once for each sample";
        EXPECT_EQ(messages.count("vhDebugColor : never"), 0);
    }
}
