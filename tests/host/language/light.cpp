// SPDX-License-Identifier: BSD-3-Clause
#include "tests/host/language/scene.h"

namespace test {

namespace {

struct Lamp {
    explicit Lamp(const std::string& statements)
        : scene("declare color \"a\" ( )\nlight \"l\" " + statements + " end light")
    {
    }
    host::Light& light() { return scene.get<host::Light>("l"); }
    miLight& record() { return light().record; }
    void change(const std::string& statements)
    {
        scene.read("incremental light \"l\" " + statements + " end light");
    }
    std::vector<int> samples()
    {
        return {record().samples_u, record().samples_v, record().low_level, record().low_samples_u,
                record().low_samples_v};
    }
    Scene scene;
};

std::string refusal(const std::string& statements)
{
    return errorOf("light \"l\"\n" + statements + " end light");
}

} // namespace

TEST(Light, TheKindFollowsFromWhatWasGiven)
{
    struct Row {
        const char* text;
        miLight_type type;
        int origin;
    };
    for (const Row& row :
         {Row{"", miLIGHT_ORIGIN, 0}, Row{"origin 1 2 3", miLIGHT_ORIGIN, 0},
          Row{"spread .5", miLIGHT_ORIGIN, 0}, Row{"origin 1 2 3 spread .5", miLIGHT_ORIGIN, 0},
          Row{"direction 0 0 -1", miLIGHT_DIRECTION, 0},
          Row{"direction 0 0 -1 spread .5", miLIGHT_DIRECTION, 0},
          Row{"direction 0 0 -1 origin 1 2 3", miLIGHT_DIRECTION, 1},
          Row{"spread .5 direction 0 0 -1 origin 1 2 3", miLIGHT_SPOT, 0}}) {
        SCOPED_TRACE(row.text);
        Lamp lamp(row.text);
        EXPECT_EQ(lamp.record().type, row.type);
        EXPECT_EQ(lamp.record().dirlight_has_org, row.origin);
    }
}

TEST(Light, DirectionsAreNormalised)
{
    Lamp lamp("direction 3 0 -4 origin 1 2 3 spread .75");
    EXPECT_EQ(list(lamp.record().direction), (Floats{.6f, 0, -.8f}));
    EXPECT_EQ(list(lamp.record().origin), (Floats{1, 2, 3}));
    EXPECT_EQ(lamp.record().spread, .75f);
    EXPECT_EQ(refusal("direction 0 0 0"), "2:1: \"direction\" must not be the null vector");
    EXPECT_EQ(refusal("origin 1 2"), "2:1: \"origin\" takes 3 numbers, found 2");
}

TEST(Light, ShapesGoToTheRecord)
{
    Lamp rectangle("rectangle 1 2 3 4 5 6"), disc("disc 0 0 1 2"), sphere("sphere 2"),
        cylinder("cylinder 0 1 0 3"), user("user");
    EXPECT_EQ(rectangle.record().area, miLIGHT_RECTANGLE);
    EXPECT_EQ(list(rectangle.record().primitive.rectangle.edge_u), (Floats{1, 2, 3}));
    EXPECT_EQ(list(rectangle.record().primitive.rectangle.edge_v), (Floats{4, 5, 6}));
    EXPECT_EQ(disc.record().area, miLIGHT_DISC);
    EXPECT_EQ(list(disc.record().primitive.disc.normal), (Floats{0, 0, 1}));
    EXPECT_EQ(disc.record().primitive.disc.radius, 2.0f);
    EXPECT_EQ(sphere.record().area, miLIGHT_SPHERE);
    EXPECT_EQ(sphere.record().primitive.sphere.radius, 2.0f);
    EXPECT_EQ(cylinder.record().area, miLIGHT_CYLINDER);
    EXPECT_EQ(cylinder.record().primitive.cylinder.radius, 3.0f);
    EXPECT_EQ(user.record().area, miLIGHT_USER);
    rectangle.change("rectangle");
    EXPECT_EQ(rectangle.record().area, miLIGHT_NONE);
    EXPECT_EQ(refusal("rectangle 1 2 3"), "2:1: \"rectangle\" takes 6, 7, 8, 9 or 11 numbers, found 3");
    EXPECT_EQ(refusal("sphere 1 2 3 4 5"), "2:1: \"sphere\" takes 1, 2, 3, 4 or 6 numbers, found 5");
}

TEST(Light, SampleCountsHaveFiveForms)
{
    EXPECT_EQ(Lamp("user").samples(), (std::vector<int>{3, 3, 0, 2, 2}));
    EXPECT_EQ(Lamp("user 5").samples(), (std::vector<int>{5, 1, 0, 2, 2}));
    EXPECT_EQ(Lamp("sphere 1 5 6").samples(), (std::vector<int>{5, 6, 0, 2, 2}));
    EXPECT_EQ(Lamp("disc 0 0 1 1 5 6 1").samples(), (std::vector<int>{5, 6, 1, 2, 2}));
    EXPECT_EQ(Lamp("rectangle 1 0 0 0 1 0 5 6 1 3 4").samples(), (std::vector<int>{5, 6, 1, 3, 4}));
    EXPECT_EQ(refusal("user 0"), "2:1: \"user\" takes integers from 1 to 32767, found 0");
    EXPECT_EQ(refusal("sphere 1 2.5"), "2:1: \"sphere\" takes integers, found 2.5");
}

TEST(Light, AnInstancedObjectMayBeTheShape)
{
    Scene scene(
        "object \"o\" end object instance \"i\" \"o\" end instance light \"l\" object \"i\" 4 end light");
    EXPECT_EQ(scene.get<host::Light>("l").record.area, miLIGHT_OBJECT);
    EXPECT_EQ(scene.get<host::Light>("l").record.primitive.object.object, scene.session.database.lookup("i"));
    EXPECT_EQ(scene.get<host::Light>("l").record.samples_u, 4);
    EXPECT_EQ(scene.errorOf("light \"m\" object \"l\" end light"),
              "1:18: \"l\" is not the name of an instance but of a light");
    EXPECT_EQ(scene.errorOf("light \"m\" object \"x\" end light"), "1:18: there is no instance \"x\"");
}

TEST(Light, ADirectionalLightHasNoArea)
{
    Lamp lamp("direction 0 0 1 sphere 1");
    EXPECT_EQ(lamp.record().area, miLIGHT_NONE);
    EXPECT_EQ(lamp.scene.messages.count("the area of a directional light is ignored"), 1);
}

TEST(Light, TheRestOfTheRecord)
{
    Lamp lamp("visible energy 1 2 3 exponent 2 tag 9");
    EXPECT_EQ(lamp.record().visible, 1);
    EXPECT_EQ(list(lamp.record().energy), (Floats{1, 2, 3, 1})) << "alpha is 1 when it is not given";
    EXPECT_EQ(lamp.record().exponent, 2.0f);
    EXPECT_EQ(lamp.record().label, 9u);
    EXPECT_EQ(Lamp("visible off").record().visible, 0);
    EXPECT_EQ(list(Lamp("energy 1 2 3 4").record().energy), (Floats{1, 2, 3, 4}));
}

TEST(Light, ShadersAddUpAndAChangeReplacesThem)
{
    Lamp lamp("\"a\" ( ) origin 0 0 0 \"a\" ( )");
    ASSERT_EQ(lamp.light().shader.size(), 2u);
    EXPECT_EQ(lamp.record().shader, lamp.light().shader[0]);
    const host::ShaderList before = lamp.light().shader;
    lamp.change("spread .5");
    EXPECT_EQ(lamp.light().shader, before);
    lamp.change("\"a\" ( )");
    ASSERT_EQ(lamp.light().shader.size(), 1u);
    EXPECT_NE(lamp.light().shader[0], before[0]);
    EXPECT_TRUE(lamp.light().hasOrigin) << "what is not mentioned stays";
}

TEST(Light, WhatHasNoEffectIsAccepted)
{
    Lamp lamp(
        R"(caustic photons 10 globillum photons 10 20 photons only shadowmap shadowmap on shadowmap resolution 100
        shadowmap samples 4 shadowmap softness .1 shadowmap bias .1 shadowmap detail shadowmap detail samples 2
        shadowmap window 0 0 1 1 shadowmap merge on shadowmap trace off shadowmap file "x" "a" ( ))");
    EXPECT_EQ(lamp.light().shader.size(), 1u);
    EXPECT_EQ(lamp.scene.messages.lines().size(), 0u);
}

} // namespace test
