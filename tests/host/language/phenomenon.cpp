// SPDX-License-Identifier: BSD-3-Clause
// Phenomena: what their definitions become. How such networks are called is tested with pictures.
#include "tests/host/language/scene.h"

#include <algorithm>
#include <cstring>

namespace test {

namespace {

const std::string shaders = R"(declare color "leaf" ( scalar "s", color "c", vector "v" )
declare scalar "number" ( scalar "s" )
declare color "all" ( color "c", vector "v", scalar "s", integer "n", boolean "b", string "t", material "m",
    color texture "tex", shader "sub", array color "cs", array scalar "ss", struct "st" { scalar "a", color "b" } )
)";

/// A phenomenon "p" with these parameters and this body, its result a colour.
std::string phenomenon(const std::string& parameters, const std::string& body,
                       const std::string& result = "color")
{
    return "declare phenomenon " + result + " \"p\" ( " + parameters + " )\n" + body + "\nend declare\n";
}

const std::string wood =
    phenomenon("color \"tint\" default 1 2 3 4, scalar \"scale\" default 7",
               "shader \"pattern\" \"leaf\" ( \"s\" = interface \"scale\" )\n"
               "shader \"mixed\" \"leaf\" ( \"c\" = \"pattern\", \"s\" 5 )\n"
               "root = \"mixed\" version 3 apply material, texture shadow on object space");

std::string errorIn(const std::string& body,
                    const std::string& parameters = "color \"tint\", scalar \"scale\"",
                    const std::string& result = "color")
{
    return errorOf(shaders + phenomenon(parameters, body, result));
}

/// What one connection of a function leads to once everything is found.
host::Connection followed(Scene& scene, const std::string& shader, std::size_t index = 0)
{
    auto& function = scene.get<host::Function>(shader);
    function.findSources();
    return function.connections().at(index);
}

float valueAt(const host::Connection& connection) { return *static_cast<const float*>(connection.value); }

} // namespace

TEST(Phenomenon, IsDeclaredLikeAShader)
{
    Scene scene(shaders + wood);
    const host::Declaration* const p = scene.session.declarations.find("p");
    ASSERT_TRUE(p);
    EXPECT_TRUE(p->body);
    EXPECT_EQ(p->version, 3);
    EXPECT_EQ(p->apply, (std::vector<std::string>{"material", "texture"}));
    EXPECT_EQ(p->parameters.size(), 2u);
    EXPECT_EQ(p->blockSize, 20u);
    for (miTag tag = 1; tag <= scene.session.database.last(); ++tag)
        EXPECT_FALSE(scene.session.database.find(tag)) << "declaring defines nothing";
    EXPECT_TRUE(scene.messages.lines().empty());
}

TEST(Phenomenon, EachDefinitionHasANetworkOfItsOwn)
{
    Scene scene(shaders + wood +
                "shader \"oak\" \"p\" ( \"scale\" 2 ) shader \"ash\" \"p\" ( \"tint\" 9 9 9 )");
    auto& oak = scene.get<host::Function>("oak");
    ASSERT_TRUE(oak.expansion);
    EXPECT_EQ(oak.record()->type, miFUNCTION_PHEN);
    EXPECT_EQ(oak.expansion->roots, host::ShaderList{scene.session.database.lookup("oak::mixed")});
    EXPECT_EQ(oak.expansion->members.size(), 2u);
    EXPECT_EQ(scene.get<host::Function>("oak::mixed").record()->type, miFUNCTION_C);
    EXPECT_EQ(scene.get<host::Function>("ash::mixed").connections().at(0).sourceTag,
              scene.session.database.lookup("ash::pattern"));
    EXPECT_EQ(scene.session.database.lookup("pattern"), miNULLTAG) << "names of the network are its own";
    EXPECT_EQ(valueAt(followed(scene, "oak::pattern")), 2.0f);
    EXPECT_EQ(valueAt(followed(scene, "ash::pattern")), 7.0f) << "defaults of the phenomenon's parameters";
    EXPECT_EQ(scene.parameter<float>("oak::mixed", "s"), 5.0f);
}

TEST(Phenomenon, AnInterfaceParameterIsConnectedInTheNetwork)
{
    Scene scene(shaders + wood + "shader \"oak\" \"p\" ( )");
    const miFunction& r = *scene.get<host::Function>("oak::pattern").record();
    EXPECT_EQ(r.ghost_flag, 1) << "shaders that read it without evaluating it see nothing";
    EXPECT_EQ(scene.parameter<float>("oak::pattern", "s"), 0.0f);
}

TEST(Phenomenon, WhatADefinitionConnectsDrivesTheNetwork)
{
    Scene scene(shaders + wood +
                "declare struct { scalar \"x\", scalar \"y\" } \"pair\" ( scalar \"s\" ) shader \"two\" "
                "\"pair\" ( )\n"
                "shader \"one\" \"number\" ( ) shader \"oak\" \"p\" ( \"scale\" = \"one\" )"
                " shader \"ash\" \"p\" ( \"scale\" = \"two.y\" )");
    const host::Connection whole = followed(scene, "oak::pattern");
    EXPECT_EQ(whole.source, &scene.get<host::Function>("one"));
    EXPECT_EQ(whole.resultOffset, 0u);
    const host::Connection member = followed(scene, "ash::pattern");
    EXPECT_EQ(member.source, &scene.get<host::Function>("two"));
    EXPECT_EQ(member.resultOffset, 4u);
}

TEST(Phenomenon, AConnectionToADefinitionLeadsToItsRoot)
{
    Scene scene(shaders + wood + "shader \"oak\" \"p\" ( ) shader \"user\" \"leaf\" ( \"c\" = \"oak\" )");
    EXPECT_EQ(followed(scene, "user").source, &scene.get<host::Function>("oak::mixed"));
}

TEST(Phenomenon, InterfaceTakesEveryFormOfParameter)
{
    Scene scene(
        shaders +
        phenomenon("color \"c\", struct \"st\" { scalar \"a\", color \"b\" }, array color \"cs\", string "
                   "\"t\", integer \"n\","
                   " scalar \"dotted.name\", array struct \"as\" { scalar \"x\" }",
                   R"(shader "in" "all" ( "c" = interface "c", "s" = interface "st.a", "st" = interface "st",
    "cs" = interface "cs", "ss" = interface "cs", "t" = interface "t", "b" = interface "n", "v" = interface "st.b" )
shader "rest" "all" ( "s" = interface "dotted.name", "cs" [ 1 1 1, = interface "c" ] )
shader "plain" "all" ( "s" = interface "c" )
root = "in")") +
        "shader \"x\" \"p\" ( \"c\" 1 2 3 4, \"st\" { \"a\" 5, \"b\" 6 7 8 9 }, \"cs\" [ 10 0 0, 20 0 0 ], "
        "\"n\" 1, "
        "\"t\" \"text\", \"dotted.name\" 30 )");
    auto& in = scene.get<host::Function>("x::in");
    in.findSources();
    std::map<std::string, float> values;
    for (const host::Connection& c : in.connections())
        values[c.field] = c.field == "t" || c.field == "b" ? 0.0f : valueAt(c);
    EXPECT_EQ(values, (std::map<std::string, float>{{"c", 1},
                                                    {"s", 5},
                                                    {"st.a", 5},
                                                    {"st.b", 6},
                                                    {"cs[0]", 10},
                                                    {"cs[1]", 20},
                                                    {"ss[0]", 10},
                                                    {"ss[1]", 20},
                                                    {"t", 0},
                                                    {"b", 0},
                                                    {"v", 6}}));
    const auto array = scene.parameter<std::array<int, 2>>("x::in", "cs");
    EXPECT_EQ(array[1], 2) << "the array is as long as the definition's";
    EXPECT_EQ(valueAt(followed(scene, "x::rest")), 30.0f);
    EXPECT_EQ(followed(scene, "x::rest", 1).field, "cs[1]");
    EXPECT_EQ(valueAt(followed(scene, "x::plain")), 1.0f) << "a colour drives a scalar with its red";
}

TEST(Phenomenon, LiteralElementsOfAnArrayAreThereForShadersThatReadOnFromTheSlot)
{
    Scene scene(shaders +
                phenomenon("array color \"cs\"",
                           "shader \"in\" \"all\" ( \"cs\" = interface \"cs\" ) root = \"in\"") +
                "shader \"one\" \"leaf\" ( ) shader \"x\" \"p\" ( \"cs\" [ 1 2 3 4, = \"one\", 5 6 7 8 ] )");
    const auto& declaration = scene.get<host::Function>("x::in").declaration();
    const auto array = scene.parameter<std::array<int, 2>>("x::in", "cs");
    const auto* const block = static_cast<const std::byte*>(scene.get<host::Function>("x::in").parameters());
    const host::Field& field = *declaration.parameter("cs");
    std::array<miColor, 3> colors{};
    std::memcpy(colors.data(),
                block + field.offset + field.slot() + static_cast<std::size_t>(array[0]) * sizeof(miColor),
                sizeof colors);
    EXPECT_EQ(colors[0].g, 2.0f);
    EXPECT_EQ(colors[1].g, 0.0f) << "connected in the definition";
    EXPECT_EQ(colors[2].a, 8.0f);
}

TEST(Phenomenon, InterfaceIsChecked)
{
    const auto refusal = [](const std::string& value) {
        return errorIn("shader \"a\" \"all\" (\n" + value + " ) root = \"a\"",
                       "color \"tint\", array color \"many\", struct \"st\" { scalar \"a\" }, string \"t\"");
    };
    const std::string p = "phenomenon \"p\" has no parameter ";
    EXPECT_EQ(refusal("\"s\" = interface \"none\""),
              "7:5: parameter \"s\" of shader \"all\": " + p + "\"none\"");
    EXPECT_EQ(refusal("\"s\" = interface \"tin.x\""),
              "7:5: parameter \"s\" of shader \"all\": " + p + "\"tin.x\"; did you mean \"tint\"?");
    EXPECT_EQ(refusal("\"s\" = interface \"\""), "7:5: parameter \"s\" of shader \"all\": " + p + "\"\"");
    EXPECT_EQ(refusal("\"s\" = interface \"st.b\""),
              "7:5: parameter \"s\" of shader \"all\": " + p + "\"st.b\"");
    EXPECT_EQ(refusal("\"s\" = interface \"tint.r\""),
              "7:5: parameter \"s\" of shader \"all\": " + p + "\"tint.r\"");
    EXPECT_EQ(refusal("\"c\" = interface \"many.x\""),
              "7:5: parameter \"c\" of shader \"all\": " + p + "\"many.x\"");
    EXPECT_EQ(refusal("\"n\" = interface \"tint\""),
              "7:5: parameter \"n\" of shader \"all\": \"tint\" gives color, which cannot drive integer");
    EXPECT_EQ(refusal("\"c\" = interface \"many\""),
              "7:5: parameter \"c\" of shader \"all\": \"many\" gives array color, which cannot drive color");
    EXPECT_EQ(
        refusal("\"cs\" = interface \"tint\""),
        "7:6: parameter \"cs\" of shader \"all\": \"tint\" gives color, which cannot drive array color");
    EXPECT_EQ(refusal("\"st\" = interface \"tint\""),
              "7:6: parameter \"st\" of shader \"all\": \"tint\" gives color, which cannot drive struct");
    EXPECT_EQ(refusal("\"cs\" = interface \"many\""), "accepted");
    EXPECT_EQ(
        errorOf(shaders + "shader \"a\" \"leaf\" ( \"s\" = interface \"x\" )"),
        "5:25: parameter \"s\" of shader \"leaf\": \"interface\" stands for a phenomenon's parameter and is "
        "known inside of one only");
}

TEST(Phenomenon, MistakesOfABodyAreFoundWhereItIsDeclared)
{
    EXPECT_EQ(errorIn("shader \"a\" \"leag\" ( ) root = \"a\""),
              "6:12: the shader \"leag\" is not declared; did you mean \"leaf\"?");
    EXPECT_EQ(errorIn("shader \"a\" \"leaf\" ( \"q\" 1 ) root = \"a\""),
              "6:21: shader \"leaf\" has no parameter \"q\"");
    EXPECT_EQ(errorIn("root = \"a\""), "6:8: there is no shader \"a\"");
    EXPECT_EQ(errorIn(""), "5:26: phenomenon \"p\" has no root");
    EXPECT_EQ(errorIn("root \"leaf\" ( ) root \"leaf\" ( )"), "6:17: a phenomenon has one root only");
    EXPECT_EQ(errorIn("root \"number\" ( )"),
              "5:26: phenomenon \"p\" is declared to give color, but its root \"number\" gives scalar");
    EXPECT_EQ(errorIn("root \"leaf\" ( ) \"number\" ( )"),
              "5:26: phenomenon \"p\" is declared to give color, but its root \"number\" gives scalar");
    EXPECT_EQ(errorIn("material \"m\" end material root material \"m\""),
              "5:26: phenomenon \"p\" is declared to give color, but its root is a material");
    EXPECT_EQ(errorIn("root \"leaf\" ( ) end camera"),
              "6:17: found the keyword \"end\", expected a phenomenon statement, a name or \"=\"");
    EXPECT_EQ(errorIn("shader \"::a\" \"leaf\" ( ) root = \"a\""),
              "6:14: what a phenomenon defines is its own: \"::a\"");
    EXPECT_EQ(errorIn("shader \"a\" \"leaf\" ( ) shader \"::b\" = \"a\" root = \"a\""),
              "6:30: what a phenomenon defines is its own: \"::b\"");
    EXPECT_EQ(errorIn("output \"leaf\" ( )"), "6:1: \"output\" is not supported");
    EXPECT_EQ(errorOf("declare phenomenon \"p\" ( ) root"),
              "1:32: found the end of the text, expected \"end declare\"");
    EXPECT_EQ(errorOf("declare phenomenon \"p\" ( color \"a\", color \"a\" ) end declare"),
              "1:43: \"a\" is declared twice");
}

TEST(Phenomenon, NothingOfAFailedDeclarationStays)
{
    Scene scene(shaders);
    EXPECT_NE(scene.errorOf(phenomenon("", "light \"l\" end light shader \"a\" \"leaf\" ( ) root = \"b\"")),
              "accepted");
    EXPECT_FALSE(scene.session.declarations.find("p"));
    for (miTag tag = 1; tag <= scene.session.database.last(); ++tag)
        EXPECT_FALSE(scene.session.database.find(tag));
}

TEST(Phenomenon, NamesOfTheSceneAreSeenFromInside)
{
    Scene scene(
        shaders + "shader \"shared\" \"leaf\" ( ) shader \"own\" \"leaf\" ( )\n" +
        phenomenon("",
                   "shader \"own\" \"leaf\" ( ) shader \"a\" \"leaf\" ( \"c\" = \"shared\" )"
                   " shader \"b\" \"leaf\" ( \"c\" = \"own\" ) shader \"d\" \"leaf\" ( \"c\" = \"::own\" )"
                   " root = \"b\"") +
        "namespace \"n\" shader \"shared\" \"leaf\" ( ) shader \"x\" \"p\" ( ) end namespace");
    const auto tag = [&](const char* name) { return scene.session.database.lookup(name); };
    const auto source = [&](const char* name) {
        return scene.get<host::Function>(name).connections().at(0).sourceTag;
    };
    EXPECT_EQ(source("n::x::a"), tag("shared"))
        << "names mean what they mean where the phenomenon is declared";
    EXPECT_EQ(source("n::x::b"), tag("n::x::own"));
    EXPECT_EQ(source("n::x::d"), tag("own"));
}

TEST(Phenomenon, ADeclarationInANamespaceSeesIt)
{
    Scene scene(shaders + "namespace \"n\" shader \"a\" \"leaf\" ( )\n" +
                phenomenon("", "root \"leaf\" ( \"c\" = \"a\" )") + "end namespace shader \"x\" \"p\" ( )");
    const auto& x = scene.get<host::Function>("x");
    EXPECT_EQ(scene.session.database.findAs<host::Function>(x.expansion->roots.at(0))
                  ->connections()
                  .at(0)
                  .sourceTag,
              scene.session.database.lookup("n::a"));
}

TEST(Phenomenon, PhenomenaMayUsePhenomena)
{
    Scene scene(
        shaders + wood +
        "declare phenomenon color \"outer\" ( scalar \"q\" )\n"
        "shader \"w\" \"p\" ( \"scale\" = interface \"q\" ) root \"leaf\" ( \"c\" = \"w\" ) end declare\n"
        "shader \"one\" \"number\" ( ) shader \"x\" \"outer\" ( \"q\" 11 ) shader \"y\" \"outer\" ( \"q\" = "
        "\"one\" )");
    EXPECT_EQ(valueAt(followed(scene, "x::w::pattern")), 11.0f);
    EXPECT_EQ(followed(scene, "y::w::pattern").source, &scene.get<host::Function>("one"));
    EXPECT_EQ(scene.get<host::Function>("x").expansion->members.size(), 2u);
}

TEST(Phenomenon, MayGiveAMaterial)
{
    Scene scene(
        shaders +
        phenomenon(
            "color \"c\"",
            "material \"m\" opaque \"leaf\" ( \"c\" = interface \"c\" ) shadow \"leaf\" ( ) end material\n"
            "root material \"m\"",
            "material") +
        "shader \"red\" \"p\" ( \"c\" 1 0 0 ) shader \"user\" \"all\" ( \"m\" \"red\" )\n"
        "object \"o\" group 0 0 0 1 0 0 0 1 0 v 0 v 1 v 2 c \"red\" 0 1 2 end group end object\n"
        "instance \"i\" \"o\" material [\"red\"] end instance\n"
        "material \"named\" = \"red\" end material material \"made\" \"p\" ( ) end material");
    const miTag m = scene.session.database.lookup("red::m");
    EXPECT_EQ(scene.parameter<miTag>("user", "m"), m);
    EXPECT_EQ(scene.get<host::Object>("o").polygons.at(0).material, m);
    EXPECT_EQ(scene.get<host::Instance>("i").materials, std::vector<miTag>{m});
    const auto& named = scene.get<host::Material>("named");
    EXPECT_EQ(named.shader, scene.get<host::Material>("red::m").shader);
    EXPECT_EQ(named.shadow, scene.get<host::Material>("red::m").shadow);
    EXPECT_TRUE(named.record.opaque);
    EXPECT_NE(scene.get<host::Material>("made").shader, named.shader);
    EXPECT_EQ(scene.errorOf("\nmaterial \"two\" = \"red\" = \"red\" end material"),
              "2:18: phenomenon \"red\" (p) gives a material, it cannot be called as a shader");
}

TEST(Phenomenon, MayGiveALight)
{
    Scene scene(
        shaders +
        phenomenon("color \"c\"",
                   "light \"l\" \"leaf\" ( \"c\" = interface \"c\" ) origin 1 2 3 end light root light \"l\"",
                   "light") +
        "shader \"lamp\" \"p\" ( ) instance \"i\" \"lamp\" end instance");
    EXPECT_EQ(scene.get<host::Instance>("i").record.item, scene.session.database.lookup("lamp::l"));
    EXPECT_EQ(scene.errorOf("\nmaterial \"m\" = \"lamp\" end material"),
              "2:16: phenomenon \"lamp\" (p) gives a light, it cannot be called as a shader");
}

TEST(Phenomenon, ExtraRootsAreKeptWithTheirPriority)
{
    Scene scene(
        shaders +
        phenomenon("",
                   "root \"leaf\" ( ) lens \"leaf\" ( ) \"leaf\" ( ) priority 4 environment \"leaf\" ( )\n"
                   "volume \"leaf\" ( ) priority -1 geometry \"leaf\" ( )\n"
                   "contour store \"leaf\" ( ) priority 2 contour contrast \"leaf\" ( )") +
        "shader \"x\" \"p\" ( )");
    const std::vector<host::ExtraRoot>& extra = scene.get<host::Function>("x").expansion->extra;
    ASSERT_EQ(extra.size(), 4u);
    EXPECT_EQ(extra[0].kind, host::ExtraRoot::Kind::lens);
    EXPECT_EQ(extra[0].priority, 4);
    EXPECT_EQ(extra[0].shaders.size(), 2u);
    EXPECT_EQ(extra[1].kind, host::ExtraRoot::Kind::environment);
    EXPECT_EQ(extra[1].priority, 0);
    EXPECT_EQ(extra[2].kind, host::ExtraRoot::Kind::volume);
    EXPECT_EQ(extra[2].priority, -1);
    EXPECT_EQ(extra[3].kind, host::ExtraRoot::Kind::geometry);
    EXPECT_EQ(scene.messages.count("contour roots are ignored"), 1);
    EXPECT_EQ(scene.messages.lines().size(), 1u);
}

TEST(Phenomenon, TheBodyMayHoldElementsOfAllKinds)
{
    Scene scene(
        shaders +
        phenomenon("", "light \"l\" end light instance \"li\" \"l\" end instance color texture \"t\" \"f\"\n"
                       "instgroup \"g\" \"li\" end instgroup material \"m\" end material root \"leaf\" ( )") +
        "shader \"x\" \"p\" ( )");
    for (const char* const name : {"x::l", "x::li", "x::t", "x::g", "x::m"})
        EXPECT_NE(scene.session.database.lookup(name), miNULLTAG) << name;
}

TEST(Phenomenon, AChangeKeepsTheTagsOfTheNetwork)
{
    Scene scene(
        shaders + wood +
        "shader \"oak\" \"p\" ( \"scale\" 2, \"tint\" 8 8 8 ) shader \"user\" \"leaf\" ( \"c\" = \"oak\" )");
    const miTag oak = scene.session.database.lookup("oak");
    const miTag pattern = scene.session.database.lookup("oak::pattern");
    scene.read("incremental shader \"oak\" \"p\" ( \"scale\" 3 )");
    EXPECT_EQ(valueAt(followed(scene, "oak::pattern")), 3.0f);
    EXPECT_EQ(scene.parameter<miColor>("oak", "tint").r, 8.0f);
    scene.read("shader \"oak\" \"p\" ( \"scale\" 4 )");
    EXPECT_EQ(scene.session.database.lookup("oak"), oak);
    EXPECT_EQ(scene.session.database.lookup("oak::pattern"), pattern);
    EXPECT_EQ(valueAt(followed(scene, "oak::pattern")), 4.0f);
    EXPECT_EQ(scene.parameter<miColor>("oak", "tint").r, 1.0f);
    EXPECT_EQ(followed(scene, "user").source, &scene.get<host::Function>("oak::mixed"));
    EXPECT_EQ(scene.messages.lines().size(), 1u) << "the second definition itself";
    scene.read("shader \"oak\" \"leaf\" ( )");
    EXPECT_EQ(scene.session.database.lookup("oak::pattern"), miNULLTAG) << "a plain shader has no network";
    EXPECT_EQ(followed(scene, "user").source, &scene.get<host::Function>("oak"));
    scene.read("incremental shader \"oak\" \"p\" ( )");
    EXPECT_NE(scene.session.database.lookup("oak::pattern"), miNULLTAG);
}

TEST(Phenomenon, DeletingADefinitionDeletesItsNetwork)
{
    Scene scene(shaders + wood +
                "declare phenomenon color \"outer\" ( ) shader \"w\" \"p\" ( ) root = \"w\" end declare\n"
                "shader \"x\" \"outer\" ( ) delete \"x\"");
    for (miTag tag = 1; tag <= scene.session.database.last(); ++tag)
        EXPECT_FALSE(scene.session.database.find(tag)) << scene.session.database.find(tag)->name;
}

TEST(Phenomenon, TheSameDeclarationAgainIsSilent)
{
    Scene scene(shaders + wood + wood);
    EXPECT_TRUE(scene.messages.lines().empty());
    std::string other = wood;
    other.replace(other.find("\"s\" 5"), 5, "\"s\" 6");
    EXPECT_EQ(scene.errorOf("\n" + other), "2:26: shader \"p\" is declared differently at scene:5:26");
    EXPECT_EQ(
        scene.errorOf("declare color \"p\" ( color \"tint\" default 1 2 3 4, scalar \"scale\" default 7 )"),
        "1:15: shader \"p\" is declared differently at scene:5:26");
}

TEST(Phenomenon, NestingIsLimited)
{
    std::string text = shaders + "declare phenomenon color \"p0\" ( ) root \"leaf\" ( ) end declare\n";
    for (int i = 1; i < 66; ++i)
        text += "declare phenomenon color \"p" + std::to_string(i) + "\" ( ) root \"p" +
                std::to_string(i - 1) + "\" ( ) end declare\n";
    EXPECT_NE(errorOf(text).find("phenomena are nested deeper than 64 levels"), std::string::npos)
        << errorOf(text);
}

TEST(Phenomenon, AllTogetherAreLimitedInSize)
{
    std::string text = shaders + "declare phenomenon color \"p0\" ( ) root \"leaf\" ( ) end declare\n";
    for (int i = 1; i < 40; ++i) {
        const std::string use = " \"p" + std::to_string(i - 1) + "\" ( )";
        text += "declare phenomenon color \"p" + std::to_string(i) + "\" ( ) root" + use + use + use + use +
                " end declare\n";
    }
    EXPECT_NE(errorOf(text).find("all definitions of phenomena together take more than"), std::string::npos);
}

TEST(Phenomenon, ArraysCountForEachOfTheirUses)
{
    const auto text = [](int uses) {
        std::string body, many = "1";
        for (int i = 0; i < uses; ++i)
            body += "shader \"s" + std::to_string(i) + "\" \"all\" ( \"cs\" = interface \"cs\" ) ";
        for (int i = 1; i < 3000; ++i)
            many += ", 1";
        return shaders + phenomenon("array color \"cs\"", body + "root = \"s0\"") +
               "shader \"x\" \"p\" ( \"cs\" [ " + many + " ] )";
    };
    EXPECT_EQ(errorOf(text(3)), "accepted");
    EXPECT_NE(errorOf(text(400)).find("all definitions of phenomena together take more than"),
              std::string::npos);
}

TEST(Phenomenon, AListWithADeletedShaderIsNoNetwork)
{
    EXPECT_EQ(errorOf(shaders +
                      "shader \"a\" \"leaf\" ( ) shader \"l\" = \"a\" = \"a\" delete \"a\" material \"m\" = "
                      "\"l\" end material"),
              "accepted");
    EXPECT_EQ(errorOf(shaders + "shader \"a\" \"leaf\" ( ) shader \"l\" = \"a\" = \"a\" delete \"a\"\n" +
                      phenomenon("", "root = \"l\"")),
              "6:26: phenomenon \"p\" has a root that was deleted");
}

TEST(Phenomenon, OneThatLeadsIntoItselfIsToldOf)
{
    Scene scene(shaders + "shader \"g\" \"leaf\" ( )\n" + phenomenon("", "root = \"g\"") +
                "shader \"g\" \"p\" ( ) shader \"user\" \"leaf\" ( \"c\" = \"g\" )");
    try {
        scene.get<host::Function>("user").findSources();
        FAIL();
    } catch (const host::Error& error) {
        EXPECT_NE(std::string(error.what()).find("is a phenomenon that leads into itself"),
                  std::string::npos);
    }
    const host::ShaderList list = {scene.session.database.lookup("g")};
    EXPECT_THROW(host::functionsOf(scene.session.database, list, scene.get<host::Function>("user")),
                 host::Error);
}

} // namespace test
