// SPDX-License-Identifier: BSD-3-Clause
#include "tests/host/language/scene.h"

namespace test {

namespace {

using host::Type;

const host::Declaration& declaration(Scene& scene, const char* name)
{
    const host::Declaration* const found = scene.session.declarations.find(name);
    if (!found)
        throw std::logic_error("not declared");
    return *found;
}

} // namespace

TEST(Declare, AShaderMayBeTheResult)
{
    Scene scene("declare shader shader \"chooser\" ( ) end declare");
    EXPECT_EQ(declaration(scene, "chooser").result.type, Type::shader);
}

TEST(Declare, EveryType)
{
    Scene scene(
        R"(declare shader color "all" ( boolean "a", integer "b", scalar "c", vector "d", color "e", transform "f",
        string "g", color texture "h", scalar texture "i", vector texture "j", light "k", material "l", geometry "m",
        shader "n", lightprofile "o", spectrum "p", data "q", struct "r" { scalar "x", array color "y", }, array light "s",
        array struct "t" { struct "u" { vector "v" } }, ) end declare)");
    const host::Declaration& d = declaration(scene, "all");
    std::vector<Type> types;
    for (const host::Field& field : d.parameters)
        types.push_back(field.type);
    EXPECT_EQ(types, (std::vector<Type>{
                         Type::boolean,       Type::integer,       Type::scalar,       Type::vector,
                         Type::color,         Type::transform,     Type::string,       Type::colorTexture,
                         Type::scalarTexture, Type::vectorTexture, Type::light,        Type::material,
                         Type::geometry,      Type::shader,        Type::lightProfile, Type::spectrum,
                         Type::data,          Type::structure,     Type::light,        Type::structure}));
    EXPECT_TRUE(d.parameter("s")->isArray && d.parameter("t")->isArray);
    EXPECT_FALSE(d.parameter("r")->isArray);
    EXPECT_EQ(d.parameter("r")->members.size(), 2u);
    EXPECT_TRUE(d.parameter("r")->members[1].isArray);
    EXPECT_EQ(d.parameter("t")->members[0].members[0].name, "v");
    EXPECT_EQ(d.parameter("b")->where.text(), "scene:1:51");
    EXPECT_EQ(d.where.text(), "scene:1:22");
}

TEST(Declare, Results)
{
    Scene scene(R"(declare shader "a" ( ) end declare declare shader vector texture "b" ( ) end declare
        declare shader struct { color "c", scalar "m" } "c" ( ) end declare declare shader geometry "d" ( ) end declare)");
    EXPECT_EQ(declaration(scene, "a").result.type, Type::color) << "no result type means a colour";
    EXPECT_EQ(declaration(scene, "b").result.type, Type::vectorTexture);
    EXPECT_EQ(declaration(scene, "c").result.type, Type::structure);
    EXPECT_EQ(declaration(scene, "c").result.members[1].name, "m");
    EXPECT_EQ(declaration(scene, "d").result.type, Type::geometry);
}

TEST(Declare, TheOldFormHasNoEnd)
{
    Scene scene("declare color \"a\" ( scalar \"s\" ) declare \"b\" ( ) declare struct { vector \"v\" } "
                "\"c\" ( ) options \"o\" end options");
    EXPECT_EQ(declaration(scene, "a").parameters.size(), 1u);
    EXPECT_EQ(declaration(scene, "b").result.type, Type::color);
    EXPECT_EQ(declaration(scene, "c").result.members.size(), 1u);
}

TEST(Declare, VersionAndApply)
{
    Scene scene(
        R"(declare shader "a" ( ) apply lens, material, light, shadow, environment, volume, texture, photon, geometry,
        displace, emitter, output, lightmap, photonvol, state version 3 end declare declare shader "b" ( ) end declare)");
    EXPECT_EQ(declaration(scene, "a").version, 3);
    EXPECT_EQ(declaration(scene, "a").apply.size(), 15u);
    EXPECT_EQ(declaration(scene, "a").apply[14], "state");
    EXPECT_FALSE(declaration(scene, "b").version.has_value());
}

TEST(Declare, RequirementsAreAccepted)
{
    Scene scene(
        R"(declare shader "a" ( ) scanline off trace on shadow sort shadow on face both texture 2 bump 1 derivative 1 2
        derivative object space camera space mixed space parallel volume level 2 gui "g" { control "x" [ ( a ) ] "{" }
        hardware ( "y" { 1 } ) version 2 end declare)");
    EXPECT_EQ(declaration(scene, "a").version, 2);
    EXPECT_EQ(scene.messages.lines().size(), 0u);
}

TEST(Declare, DefaultsFillWhatIsLeftOut)
{
    Scene scene(
        R"(declare "a" ( color "c" default 1 .5 .25 1, boolean "b" default on, integer "n" default -3, scalar "s" )
        shader "x" "a" ( ))");
    EXPECT_EQ(list(scene.parameter<miColor>("x", "c")), (Floats{1, .5f, .25f, 1}));
    EXPECT_EQ(scene.parameter<int>("x", "b"), 1);
    EXPECT_EQ(scene.parameter<int>("x", "n"), -3);
    EXPECT_EQ(scene.parameter<float>("x", "s"), 0.0f);
}

TEST(Declare, TheSameAgainIsSilentAndAnotherIsAnError)
{
    const std::string text = "declare \"a\" ( color \"c\" )\n";
    Scene scene(text + text);
    EXPECT_EQ(scene.messages.lines().size(), 0u);
    EXPECT_EQ(scene.errorOf("\n declare \"a\" ( scalar \"c\" )").substr(0, 6), "2:10: ");
}

TEST(Declare, UserDataIsOneWarning)
{
    Scene scene("declare data \"d\" ( integer \"i\" ) end declare declare data \"e\" ( )");
    EXPECT_EQ(scene.messages.lines().size(), 1u);
}

TEST(Declare, MistakesSayWhatWasExpected)
{
    EXPECT_EQ(errorOf("declare colour \"a\" ( )"), "1:16: found the string \"a\", expected \"(\"");
    EXPECT_EQ(errorOf("declare color \"a\" ( colour \"c\" )"),
              "1:21: found the name \"colour\", expected a type or \")\"");
    EXPECT_EQ(errorOf("declare color \"a\" ( color \"c\" scalar \"d\" )"),
              "1:31: found the keyword \"scalar\", expected \")\", \",\" or \"default\"");
    EXPECT_EQ(errorOf("declare color \"a\" ( color \"c\" default )"),
              "1:39: found \")\", expected a number, \"off\" or \"on\"");
    EXPECT_EQ(errorOf("declare shader \"a\" ( ) options"),
              "1:24: found the keyword \"options\", expected a property of the shader or \"end\"");
    EXPECT_EQ(errorOf("declare shader \"a\" ( ) apply magic"),
              "1:30: found the name \"magic\", expected a kind of shader");
    EXPECT_EQ(errorOf("declare shader \"a\" ( ) version 1.5"), "1:32: found 1.5, expected an integer");
    EXPECT_EQ(errorOf("declare shader \"a\" ( ) end shader"),
              "1:28: found the keyword \"shader\", expected \"declare\"");
}

} // namespace test
