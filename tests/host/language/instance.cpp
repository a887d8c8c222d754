// SPDX-License-Identifier: BSD-3-Clause
#include "tests/host/language/scene.h"

namespace test {

namespace {

const std::string before =
    "declare shader geometry \"maker\" ( ) end declare\n"
    "object \"o\" end object material \"red\" end material material \"blue\" end material\n"
    "light \"l\" end light instance \"key\" \"l\" end instance instance \"fill\" \"l\" end instance\n";

struct Placed {
    explicit Placed(const std::string& statements)
        : scene(before + "instance \"i\" \"o\" " + statements + " end instance")
    {
    }
    host::Instance& instance() { return scene.get<host::Instance>("i"); }
    miInstance& record() { return instance().record; }
    miTag tag(const char* name) { return scene.session.database.lookup(name); }
    void change(const std::string& text)
    {
        scene.read("incremental instance \"i\" " + text + " end instance");
    }
    Scene scene;
};

std::string refusal(const std::string& text)
{
    return Scene(before).errorOf("instance \"i\" \"o\"\n" + text + " end instance");
}

Floats list(const miMatrix& m) { return {m, m + 16}; }

const Floats identity = {1, 0, 0, 0, 0, 1, 0, 0, 0, 0, 1, 0, 0, 0, 0, 1};

} // namespace

TEST(Instance, TheMatrixLeadsFromParentToLocalSpace)
{
    // Half the size, then moved by -1 -2 -3: the way back is forward by 1 2 3, then twice the size.
    Placed p("transform .5 0 0 0  0 .5 0 0  0 0 .5 0  -1 -2 -3 1");
    EXPECT_EQ(list(p.record().tf.global_to_local),
              (Floats{.5f, 0, 0, 0, 0, .5f, 0, 0, 0, 0, .5f, 0, -1, -2, -3, 1}));
    EXPECT_EQ(list(p.record().tf.local_to_global), (Floats{2, 0, 0, 0, 0, 2, 0, 0, 0, 0, 2, 0, 2, 4, 6, 1}));
    EXPECT_EQ(p.record().tf.identity, 0);
    p.change("transform");
    EXPECT_EQ(list(p.record().tf.global_to_local), identity);
    EXPECT_EQ(list(p.record().tf.local_to_global), identity);
    EXPECT_EQ(p.record().tf.identity, 1);
}

TEST(Instance, AnyInvertibleMatrixIsInverted)
{
    // A quarter turn about z with the rows in an order that needs pivots, and a scale far below single
    // precision.
    Placed turned("transform 0 1 0 0  -1 0 0 0  0 0 1 0  0 0 0 1"),
        tiny("transform 1e-12 0 0 0  0 1e-12 0 0  0 0 1e-12 0  0 0 0 1");
    EXPECT_EQ(list(turned.record().tf.local_to_global),
              (Floats{0, -1, 0, 0, 1, 0, 0, 0, 0, 0, 1, 0, 0, 0, 0, 1}));
    EXPECT_FLOAT_EQ(tiny.record().tf.local_to_global[0], 1e12f);
    EXPECT_EQ(tiny.scene.messages.lines().size(), 0u);
}

TEST(Instance, ASingularMatrixIsAWarningAndTheIdentity)
{
    for (const char* const matrix : {"0 0 0 0 0 0 0 0 0 0 0 0 0 0 0 0", "1 0 0 0 0 1 0 0 1 1 0 0 5 5 5 1"}) {
        Placed p("transform " + std::string(matrix));
        EXPECT_EQ(list(p.record().tf.global_to_local), identity);
        EXPECT_EQ(list(p.record().tf.local_to_global), identity);
        EXPECT_EQ(p.scene.messages.count(
                      "scene:4:18: the matrix of instance \"i\" is singular, the identity is used"),
                  1);
    }
    EXPECT_EQ(refusal("transform 1 2 3"), "2:1: \"transform\" takes no or 16 numbers, found 3");
    EXPECT_EQ(refusal("transform \"maker\" ( )"), "2:1: \"transform shader\" is not supported");
}

TEST(Instance, FlagsAreUnsetOnOrOff)
{
    Placed none(""), on("visible on shadow on trace on transparency on"),
        off("visible off shadow off trace off transparency off"),
        modes("shadow 5 reflection 1 refraction 2 transparency 8 caustic 3 globillum 12 finalgather 15");
    const auto bits = [](const miInstance& r) {
        return std::vector<int>{r.visible,    r.shadow,      r.reflection,
                                r.refraction, r.finalgather, r.transparency};
    };
    EXPECT_EQ(bits(none.record()), (std::vector<int>{0, 0, 0, 0, 0, 0}));
    EXPECT_EQ(bits(on.record()), (std::vector<int>{2, 3, 3, 3, 3, 3}));
    EXPECT_EQ(bits(off.record()), (std::vector<int>{1, 6, 12, 12, 12, 12}));
    EXPECT_EQ(bits(modes.record()), (std::vector<int>{0, 5, 1, 2, 15, 8}));
    EXPECT_EQ(modes.record().caustic, 3);
    EXPECT_EQ(modes.record().globillum, 12);
    EXPECT_EQ(refusal("shadow 16"), "2:8: a mode is on, off or a number from 0 to 15, found 16");
}

TEST(Instance, TheRestOfTheRecord)
{
    Placed p("hide on face front select on shading samples 2.5 tag 8 override shadowmap on approximate fine "
             "view length .1");
    EXPECT_EQ(p.record().item, p.tag("o"));
    EXPECT_EQ(p.record().off, 1);
    EXPECT_EQ(p.record().face, 'f');
    EXPECT_EQ(p.record().select, 1);
    EXPECT_EQ(p.record().shading_samples, 2.5f);
    EXPECT_EQ(p.record().label, 8u);
    EXPECT_EQ(p.record().mtl_override, 1);
    p.change("hide off");
    EXPECT_EQ(p.record().off, 0);
    EXPECT_EQ(p.record().label, 8u);
}

TEST(Instance, MotionIsInheritedGivenOrOff)
{
    Placed none(""), given("motion transform 1 0 0 0 0 1 0 0 0 0 1 0 4 0 0 1"), off("motion off");
    EXPECT_FALSE(none.instance().hasMotion);
    EXPECT_EQ(none.record().gen_motion, 0);
    EXPECT_TRUE(given.instance().hasMotion);
    EXPECT_EQ(given.record().motion_transform[12], 4.0f);
    EXPECT_EQ(given.instance().motionInverse[12], -4.0f);
    EXPECT_EQ(given.record().gen_motion, 1);
    EXPECT_FALSE(off.instance().hasMotion);
    EXPECT_EQ(off.record().gen_motion, 2);
    given.change("motion transform");
    EXPECT_FALSE(given.instance().hasMotion);
    EXPECT_EQ(given.record().gen_motion, 0);
    EXPECT_EQ(list(given.record().motion_transform), identity);
    EXPECT_EQ(list(given.instance().motionInverse), identity);
}

TEST(Instance, ASingularMotionMatrixIsNone)
{
    Placed p("motion transform 0 0 0 0 0 0 0 0 0 0 0 0 0 0 0 0");
    EXPECT_FALSE(p.instance().hasMotion);
    EXPECT_EQ(p.record().gen_motion, 0);
    EXPECT_EQ(list(p.record().motion_transform), identity);
    EXPECT_EQ(list(p.instance().motionInverse), identity);
    EXPECT_EQ(
        p.scene.messages.count("scene:4:18: the motion matrix of instance \"i\" is singular and is ignored"),
        1);
}

TEST(Instance, MaterialsAreOneOrAList)
{
    Placed one("material \"red\""), more("material [ \"red\", \"blue\", \"red\" ]"),
        trailing("material [\"blue\",]");
    EXPECT_EQ(one.instance().materials, (std::vector<miTag>{one.tag("red")}));
    EXPECT_EQ(one.record().material, one.tag("red"));
    EXPECT_EQ(more.instance().materials,
              (std::vector<miTag>{more.tag("red"), more.tag("blue"), more.tag("red")}));
    EXPECT_EQ(more.record().mtl_array_size, 3);
    EXPECT_EQ(trailing.record().material, trailing.tag("blue"));
    one.change("tag 1");
    EXPECT_EQ(one.instance().materials.size(), 1u);
    one.change("material");
    EXPECT_TRUE(one.instance().materials.empty());
    EXPECT_EQ(one.record().material, miNULLTAG);
    EXPECT_EQ(refusal("material \"o\""), "2:10: \"o\" is not the name of a material but of an object");
}

TEST(Instance, LightListsMayExclude)
{
    Placed p("light [ \"key\", \"fill\" ] light shadow \"exclusive\" [ \"fill\" ]");
    EXPECT_EQ(p.instance().lights, (std::vector<miTag>{p.tag("key"), p.tag("fill")}));
    EXPECT_TRUE(p.instance().hasLights && p.instance().hasShadowLights);
    EXPECT_EQ(p.record().exclusive, 0);
    EXPECT_EQ(p.instance().shadowLights, (std::vector<miTag>{p.tag("fill")}));
    EXPECT_EQ(p.record().shadow_excl, 1);
    p.change("light exclusive [ \"key\" ] light shadow []");
    EXPECT_EQ(p.record().exclusive, 1);
    EXPECT_FALSE(p.instance().hasShadowLights);
    EXPECT_EQ(refusal("light \"only\" [ \"key\" ]"), "2:7: \"light\" takes exclusive, found \"only\"");
    EXPECT_EQ(refusal("light [ \"red\" ]"),
              "2:9: \"red\" is not the name of a light instance but of a material");
}

TEST(Instance, AListOfLightsMayHoldWhatIsNoneWithAWarning)
{
    Placed p("light [ \"key\" ]");
    EXPECT_TRUE(p.scene.messages.lines().empty());
    p.scene.read("instgroup \"g\" \"key\" end instgroup instance \"pair\" \"g\" end instance\n"
                 "instance \"ball\" \"o\" end instance\n");
    p.change("light [ \"pair\" ]");
    EXPECT_TRUE(p.scene.messages.lines().empty());
    p.change("light [ \"l\" ] light shadow [ \"ball\" ]");
    EXPECT_EQ(p.scene.messages.count(
                  "light \"l\" is listed by itself, which stands for nothing; name its instance"),
              1);
    EXPECT_EQ(p.scene.messages.count("instance \"ball\" is listed as a light and is none"), 1);
    EXPECT_EQ(p.scene.messages.lines().size(), 2u);
    EXPECT_EQ(p.instance().lights, std::vector<miTag>{p.tag("l")});
}

TEST(Instance, GeometryShadersStandInPlaceOfAnElement)
{
    Scene scene(before + "instance \"g\" geometry \"maker\" ( ) \"maker\" ( ) tag 3 end instance");
    EXPECT_EQ(scene.get<host::Instance>("g").geometry.size(), 2u);
    EXPECT_EQ(scene.get<host::Instance>("g").record.item, miNULLTAG);
    scene.read("incremental instance \"g\" \"o\" end instance");
    EXPECT_TRUE(scene.get<host::Instance>("g").geometry.empty());
    EXPECT_NE(scene.get<host::Instance>("g").record.item, miNULLTAG);
}

TEST(Instance, WhatIsInstancedMustBeThere)
{
    EXPECT_EQ(errorOf("instance \"i\" end instance"), "1:10: instance \"i\" names no element");
    EXPECT_EQ(errorOf("instance \"i\" \"x\" end instance"), "1:14: there is no element \"x\"");
    EXPECT_EQ(Scene(before).errorOf("instance \"i\" \"red\" end instance"),
              "1:14: \"red\" is not the name of an object, light, camera or group but of a material");
    EXPECT_EQ(Scene(before).errorOf("instance \"i\" \"key\" end instance"),
              "1:14: \"key\" is not the name of an object, light, camera or group but of an instance");
}

TEST(Instance, ParametersAndUserDataAreAcceptedWithAWarning)
{
    Placed p("data \"d\" ( \"x\" 1, \"y\" [ 1 2 ] )");
    EXPECT_EQ(p.scene.messages.count("the parameters of instances are ignored"), 1);
    EXPECT_EQ(p.scene.messages.count("user data"), 1);
}

TEST(Group, HoldsInstances)
{
    Scene scene(
        before +
        "instance \"i\" \"o\" end instance instgroup \"g\" tag 3 \"i\" \"key\" data null end instgroup\n"
        "instance \"gi\" \"g\" end instance instgroup \"h\" \"gi\" end instgroup");
    const auto tag = [&](const char* name) { return scene.session.database.lookup(name); };
    EXPECT_EQ(scene.get<host::Group>("g").members, (std::vector<miTag>{tag("i"), tag("key")}));
    EXPECT_EQ(scene.get<host::Group>("h").members, (std::vector<miTag>{tag("gi")}));
    scene.read("incremental instgroup \"g\" \"fill\" end instgroup");
    EXPECT_EQ(scene.get<host::Group>("g").members, (std::vector<miTag>{tag("fill")}));
    EXPECT_EQ(scene.errorOf("instgroup \"x\" \"o\""),
              "1:15: \"o\" is not the name of an instance but of an object");
    EXPECT_EQ(scene.errorOf("instgroup \"x\" 3"),
              "1:15: found 3, expected a name, \"data\", \"end\" or \"tag\"");
}

TEST(Group, ACycleMadeByAChangeDoesNotHangTheReader)
{
    Scene scene("instgroup \"g\" end instgroup instance \"i\" \"g\" end instance\n"
                "incremental instgroup \"g\" \"i\" end instgroup");
    EXPECT_EQ(scene.get<host::Group>("g").members.size(), 1u);
}

} // namespace test
