// SPDX-License-Identifier: BSD-3-Clause
// The shaders of light and sampling in scenes that are read and rendered, against closed forms.
#include "host/language/read.h"
#include "host/render/rendering.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <optional>
#include <string>

namespace {

constexpr int pixels = 16;

/// The colours along the middle of a floor at z = 0, seen from above in parallel: pixel i shows x from i - 8
/// to i - 7, half of it. `elements` has the material "floor" and what else there is; `members` are instances
/// of it.
std::vector<miColor> rendered(const std::string& elements, const std::string& members)
{
    const std::string text = R"(
$include <vhl.mi>
$include <base.mi>
options "opt" samples 0 0 object space end options
camera "cam" focal infinity aperture 16 aspect 16 resolution 16 1 end camera
instance "cam-i" "cam" transform 1 0 0 0  0 1 0 0  0 0 1 0  0 0 -50 1 end instance
)" + elements + R"(
object "plate" visible trace shadow
    group -100 -100 0  100 -100 0  100 100 0  -100 100 0  v 0 v 1 v 2 v 3  c 0 1 2 3 end group
end object
instance "floor-i" "plate" material "floor" end instance
instgroup "root" "cam-i" "floor-i" )" +
                             members + R"( end instgroup
render "root" "cam-i" "opt"
)";
    host::Session session;
    session.libraries.link(VHL_LIBRARY, {}, {});
    session.libraries.link(BASE_LIBRARY, {}, {});
    session.paths.include = {VHL_DECLARATIONS, BASE_DECLARATIONS};
    std::optional<host::Picture> picture;
    session.onRender = [&](const host::RenderCommand& command) {
        const host::Database& database = session.database;
        picture =
            host::renderPicture(session, command, *database.findAs<host::Camera>(database.lookup("cam")),
                                *database.findAs<host::Options>(command.options), {2, false, {}});
    };
    host::readScene(session, text, "floor");
    return picture.value().colors;
}

/// Where a pixel's sample lies.
double place(int pixel) { return pixel - 7.5; }

/// A plate at height z that covers what is left of x = 0, unseen by the camera.
std::string blocker(double z)
{
    return "material \"black\" opaque \"vhConstColor_v2\" ( ) end material\n"
           "object \"half\" shadow\n"
           "group -100 -100 0  0 -100 0  0 100 0  -100 100 0  v 0 v 1 v 2 v 3  c 0 1 2 3 end group end "
           "object\n"
           "instance \"half-i\" \"half\" material \"black\" transform 1 0 0 0  0 1 0 0  0 0 1 0  0 0 " +
           std::to_string(-z) + " 1 end instance\n";
}

const std::string shadowPass =
    "material \"floor\" \"vhShadowPass_v1\" ( \"lights\" [ \"lamp-i\" ] ) end material\n";

/// Particles of white light, and a floor of Lambert's kind.
std::string particles(const std::string& positions, const std::string& colors, const std::string& falloff)
{
    return "light \"lamp\" \"vhParticleLight_v1\" ( \"falloff\" " + falloff + ", \"positions\" [" +
           positions + "], \"colors\" [" + colors +
           "] ) origin 0 0 0 user end light\n"
           "instance \"lamp-i\" \"lamp\" end instance\n"
           "material \"floor\" \"mib_illum_lambert\" ( \"diffuse\" 1 1 1, \"lights\" [ \"lamp-i\" ] ) end "
           "material\n";
}

} // namespace

TEST(LitScene, TheShadowPassIsNothingInShadowAndOneOutside)
{
    // The sun comes straight down upon half a floor; red light of it, so that the other channels have none.
    const std::vector<miColor> seen =
        rendered("light \"lamp\" \"mib_light_infinite\" ( \"color\" 3 0 0 ) direction 0 0 -1 end light\n"
                 "instance \"lamp-i\" \"lamp\" end instance\n" +
                     shadowPass + blocker(5),
                 "\"lamp-i\" \"half-i\"");
    for (int i = 0; i < pixels; ++i) {
        const miColor& c = seen[std::size_t(i)];
        EXPECT_EQ(c.r, place(i) < 0 ? 0.0f : 1.0f) << i;
        EXPECT_EQ(c.g, 0.0f);
        EXPECT_EQ(c.a, 1.0f);
    }
}

TEST(LitScene, TheShadowPassIsAHalfWhereHalfAnAreaLightIsSeen)
{
    // A bar of light 4 long at height 8 and an edge at height 4: from x the light is seen whose own x is
    // beyond -x. Samples weigh by their cosine, which varies by less than 0.07 over the bar from here.
    const std::vector<miColor> seen = rendered(
        "light \"lamp\" \"mib_light_point\" ( ) origin 0 0 8 rectangle 2 0 0  0 .01 0  256 1 end light\n"
        "instance \"lamp-i\" \"lamp\" end instance\n" +
            shadowPass + blocker(4),
        "\"lamp-i\" \"half-i\"");
    for (int i = 0; i < pixels; ++i) {
        const double x = place(i);
        double lit = 0, all = 0;
        for (int k = 0; k < 4000; ++k) {
            const double from = -2 + 4 * (k + 0.5) / 4000;
            const double cosine = 8 / std::hypot(from - x, 8);
            all += cosine;
            lit += from + x > 0 ? cosine : 0;
        }
        EXPECT_NEAR(seen[std::size_t(i)].g, lit / all, 0.006) << i;
    }
    EXPECT_NEAR(0.5 * (seen[7].g + seen[8].g), 0.5, 0.006); // on either side of the middle
}

TEST(LitScene, AParticleFallsOffByItsLaw)
{
    for (const float falloff : {0.0f, 1.0f, 2.0f}) {
        const std::vector<miColor> seen =
            rendered(particles("1 0 3", "1 .5 .25 .5", std::to_string(falloff)), "\"lamp-i\"");
        for (int i = 0; i < pixels; ++i) {
            const double distance = std::hypot(place(i) - 1, 3);
            const double expected = 0.5 / (1 + std::pow(distance, falloff)) * 3 / distance;
            EXPECT_NEAR(seen[std::size_t(i)].r, expected, 2e-6) << i;
            EXPECT_NEAR(seen[std::size_t(i)].b, expected / 4, 1e-6) << i;
        }
    }
}

TEST(LitScene, ParticlesAddUp)
{
    const std::vector<miColor> seen =
        rendered(particles("1 0 3, -4 0 2, 5 1 6", "1 1 1 1, 1 1 1 2, 1 1 1 .5", "2"), "\"lamp-i\"");
    const double at[][4] = {{1, 0, 3, 1}, {-4, 0, 2, 2}, {5, 1, 6, 0.5}};
    for (int i = 0; i < pixels; ++i) {
        double sum = 0;
        for (const auto& [x, y, z, weight] : at) {
            const double distance = std::hypot(place(i) - x, y, z);
            sum += weight / (1 + distance * distance) * z / distance;
        }
        EXPECT_NEAR(seen[std::size_t(i)].g, sum, 1e-6) << i;
    }
}

TEST(LitScene, AParticlesShadowHasASharpEdge)
{
    // From height 8 over x = 2, past an edge at height 4: the shadow ends at x = -2.
    const std::vector<miColor> seen =
        rendered(particles("2 0 8", "1 1 1 1", "2") + blocker(4), "\"lamp-i\" \"half-i\"");
    for (int i = 0; i < pixels; ++i)
        EXPECT_EQ(seen[std::size_t(i)].r > 0, place(i) > -2) << i;
}

TEST(LitScene, ABlurredStepIsTheProfilesIntegral)
{
    // A step at x = 0, sampled along four units to both sides: of the line from x - 4 to x + 4 the part
    // beyond the step counts, from t0 = (4 - x) / 8 on.
    const std::string step = R"(
shader "point" "vhStatePoint_v1" ( )
shader "parts" "vhVector2Scalars_v1" ( "input" = "point" )
shader "beyond" "vhGreaterThanScalar_v1" ( "input1" = "parts.x", "input2" 0 )
shader "step" "vhIfThenElseColor_v1" ( "condition" = "beyond", "ifTrue" 1 .5 .25 1, "ifFalse" 0 0 0 1 )
)";
    struct Row {
        const char* profile;
        double (*beyond)(double t0);
    };
    const Row rows[] = {{"[]", [](double t0) { return 1 - t0; }},
                        {"[ 0, 1 ]", [](double t0) { return 1 - t0 * t0; }},
                        {"[ 0, 1, 0 ]", [](double t0) { // a triangle
                             return t0 < 0.5 ? 1 - 2 * t0 * t0 : 2 * (1 - t0) * (1 - t0);
                         }}};
    for (const Row& row : rows)
        for (const char* const normalize : {"off", "on"}) {
            const std::vector<miColor> seen = rendered(
                step +
                    "material \"floor\" \"vhSampleStatePoint_v1\" ( \"input\" = \"step\", \"samples\" 400, "
                    "\"profile\" " +
                    row.profile + ", \"normalize\" " + normalize +
                    ", \"start\" -4 0 0, \"end\" 4 0 0 ) end material\n",
                "");
            for (int i = 0; i < pixels; ++i) {
                const double expected = row.beyond(std::clamp((4 - place(i)) / 8, 0.0, 1.0));
                EXPECT_NEAR(seen[std::size_t(i)].r, expected, 0.005) << row.profile << i;
                EXPECT_NEAR(seen[std::size_t(i)].g, expected / 2, 0.003) << row.profile << i;
                EXPECT_NEAR(seen[std::size_t(i)].a, 1, 1e-5);
            }
        }
}

TEST(LitScene, AfterTheSamplerThePointIsTheSurfacesAgain)
{
    // The sampler feeds one input and the point another, read after it: they differ where the sampler left
    // the point moved.
    const std::vector<miColor> seen = rendered(R"(
shader "point" "vhStatePoint_v1" ( )
shader "here" "vhVector2Color_v1" ( "input" = "point" )
shader "blurred" "vhSampleStatePoint_v1" ( "input" = "here", "samples" 3, "start" 1 0 0, "end" 7 0 0 )
shader "after" "vhStatePoint_v1" ( )
shader "again" "vhVector2Color_v1" ( "input" = "after" )
material "floor" "vhSubColor_v2" ( "input1" = "blurred", "input2" = "again" ) end material
)",
                                               "");
    for (int i = 0; i < pixels; ++i)
        EXPECT_NEAR(seen[std::size_t(i)].r, 4.0f, 2e-5) << i; // the line's middle lies 4 beyond the point
}
