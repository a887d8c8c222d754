// SPDX-License-Identifier: BSD-3-Clause
#include "tests/harness/folder.h"
#include "tests/host/language/scene.h"

#include <algorithm>

namespace test {

namespace {

const std::string declared = R"(declare color "leaf" ( scalar "s" )
declare struct { color "rgb", scalar "mask", struct "deep" { vector "v" } } "split" ( color "in" )
declare color "all" ( color "c", vector "v", scalar "s", integer "n", boolean "b", transform "m", string "t",
    light "l", color texture "tex", shader "sub", array color "cs", struct "st" { scalar "a", color "b" }, array light "ls" )
shader "leaf1" "leaf" ( "s" 1 ) shader "s1" "split" ( )
light "lamp" end light instance "lamp-i" "lamp" end instance color texture "img" "x.tif"
)";

struct Net {
    explicit Net(const std::string& arguments)
        : scene(declared + "shader \"x\" \"all\" ( " + arguments + " )")
    {
    }
    template <class T>
    T get(const char* name)
    {
        return scene.parameter<T>("x", name);
    }
    const std::vector<host::Connection>& connections()
    {
        return scene.get<host::Function>("x").connections();
    }
    Scene scene;
};

std::string refusal(const std::string& arguments)
{
    return Scene(declared).errorOf("shader \"x\" \"all\" (\n" + arguments + " )");
}

struct Array {
    int i, n;
    miColor slot;
};

} // namespace

TEST(Value, NumbersFillTheComponentsInOrder)
{
    Net x("\"c\" 1 2 3, \"v\" 1 2 3, \"n\" -4, \"b\" on, \"m\" 1 2 3 4 5 6 7 8 9 10 11 12 13 14 15 16, \"s\" "
          ".5,");
    EXPECT_EQ(list(x.get<miColor>("c")), (Floats{1, 2, 3, 0}))
        << "a parameter's alpha is 0 when it is not given";
    EXPECT_EQ(list(x.get<miVector>("v")), (Floats{1, 2, 3}));
    EXPECT_EQ(x.get<int>("n"), -4);
    EXPECT_EQ(x.get<int>("b"), 1);
    EXPECT_EQ(x.get<float>("s"), .5f);
    const float* const m = reinterpret_cast<const float*>(x.scene.parameterAt("x", "m"));
    EXPECT_EQ(m[0], 1.0f);
    EXPECT_EQ(m[15], 16.0f);
    EXPECT_EQ(list(Net("\"c\" 1 2 3 4").get<miColor>("c")), (Floats{1, 2, 3, 4}));
    EXPECT_EQ(list(Net("\"v\" 1").get<miVector>("v")), (Floats{1, 0, 0})) << "too few leave the rest zero";
}

TEST(Value, TheLaterOfTwoIsKept) { EXPECT_EQ(Net("\"s\" 1, \"s\" 2").get<float>("s"), 2.0f); }

TEST(Value, TextIsAStringOrAName)
{
    Net x("\"t\" \"hello\", \"l\" \"lamp-i\", \"tex\" \"img\", \"sub\" \"leaf1\"");
    EXPECT_EQ(x.scene.textOf("x", "t"), "hello");
    EXPECT_EQ(x.get<miTag>("l"), x.scene.session.database.lookup("lamp-i"));
    EXPECT_EQ(x.get<miTag>("tex"), x.scene.session.database.lookup("img"));
    EXPECT_EQ(x.get<miTag>("sub"), x.scene.session.database.lookup("leaf1"));
    Net none("\"t\" \"\", \"l\" null, \"tex\" \"\"");
    for (const char* const name : {"t", "l", "tex"})
        EXPECT_EQ(none.get<miTag>(name), miNULLTAG) << name;
}

TEST(Value, Connections)
{
    Net x("\"c\" = \"leaf1\", \"s\" = \"s1.mask\", \"v\" = \"s1.deep.v\"");
    ASSERT_EQ(x.connections().size(), 3u);
    std::vector<std::string> fields;
    for (const host::Connection& c : x.connections())
        fields.push_back(c.field);
    std::sort(fields.begin(), fields.end());
    EXPECT_EQ(fields, (std::vector<std::string>{"c", "s", "v"}));
    EXPECT_EQ(x.scene.get<host::Function>("x").record()->ghost_flag, 1);
    EXPECT_EQ(Net("\"s\" 1").scene.get<host::Function>("x").record()->ghost_flag, 0);
}

TEST(Value, AWholeNameGoesBeforeItsMember)
{
    Scene scene(declared + "shader \"s1.rgb\" \"leaf\" ( ) shader \"x\" \"leaf\" ( \"s\" = \"s1.rgb\" )");
    ASSERT_EQ(scene.get<host::Function>("x").connections().size(), 1u);
    EXPECT_EQ(scene.get<host::Function>("x").connections()[0].sourceTag,
              scene.session.database.lookup("s1.rgb"));
}

TEST(Value, ArraysAndStructures)
{
    Net x("\"cs\" [ 1 0 0 1, = \"leaf1\", = \"s1.rgb\", ], \"st\" { \"b\" 1 2 3, \"a\" 7 }, \"ls\" [ "
          "\"lamp-i\", null ]");
    const Array& cs = *reinterpret_cast<const Array*>(x.scene.parameterAt("x", "cs"));
    ASSERT_EQ(cs.n, 3);
    EXPECT_EQ(list((&cs.slot)[cs.i]), (Floats{1, 0, 0, 1}));
    EXPECT_EQ(x.connections().size(), 2u);
    EXPECT_EQ(x.get<float>("st"), 7.0f);
    EXPECT_EQ(Net("\"cs\" [ ]").get<Array>("cs").n, 0);
    EXPECT_EQ(Net("").get<Array>("cs").n, 0);
}

TEST(Value, MistakesHaveTheirPlace)
{
    for (const auto& [arguments, place] :
         std::vector<std::pair<std::string, std::string>>{{"\"nope\" 1", "2:1: "},
                                                          {"\"s\"   1 2", "2:7: "},
                                                          {"\"n\" 1.5", "2:5: "},
                                                          {"\"t\" 1", "2:5: "},
                                                          {"\"s\" \"text\"", "2:5: "},
                                                          {"\"l\" \"nobody\"", "2:5: "},
                                                          {"\"l\" \"img\"", "2:5: "},
                                                          {"\"c\" = \"nobody\"", "2:5: "},
                                                          {"\"c\" = \"s1.nothing\"", "2:5: "},
                                                          {"\"t\" = \"leaf1\"", "2:5: "},
                                                          {"\"cs\" 1 2 3", "2:6: "},
                                                          {"\"s\" [ 1 ]", "2:5: "},
                                                          {"\"st\" { \"z\" 1 }", "2:8: "},
                                                          {"\"cs\" [ 1 2 3,\n  \"x\" ]", "3:3: "}}) {
        const std::string error = refusal(arguments);
        EXPECT_EQ(error.substr(0, place.size()), place) << arguments << ": " << error;
    }
    EXPECT_EQ(refusal("\"c\" 1 2 3 \"s\" 1"),
              "2:11: found the string \"s\", expected a number, \")\", \",\", \"off\" or \"on\"");
    EXPECT_EQ(refusal("\"c\" camera"), "2:5: found the keyword \"camera\", expected a name, a number, \"[\", "
                                       "\"{\", \"=\", \"null\", \"off\" or \"on\"");
}

TEST(Shader, MustBeDeclared)
{
    const std::string hint = "; is a $include missing?";
    EXPECT_EQ(errorOf("shader \"x\" \"y\" ( )"), "1:12: the shader \"y\" is not declared" + hint);
    EXPECT_EQ(errorOf("light \"l\" \"y\" ( )"), "1:11: the shader \"y\" is not declared" + hint);
    EXPECT_EQ(errorOf("material \"l\" = \"y\" end material"), "1:16: there is no shader \"y\"");
    EXPECT_EQ(errorOf("camera \"c\" end camera material \"l\" = \"c\" end material"),
              "1:38: \"c\" is not the name of a shader but of a camera");
}

TEST(Shader, ANameThatIsNearIsOffered)
{
    const std::string text = "declare color \"mixColor\" ( ) declare color \"mixColor2\" ( )\n";
    EXPECT_EQ(errorOf(text + "shader \"x\" \"mixColour\" ( )"),
              "2:12: the shader \"mixColour\" is not declared; did you mean \"mixColor\"?");
    EXPECT_EQ(errorOf(text + "shader \"x\" \"mixColor5\" ( )"),
              "2:12: the shader \"mixColor5\" is not declared; did you mean \"mixColor\"?")
        << "the first of two";
    EXPECT_EQ(errorOf("declare color \"mix_v1\" ( ) declare color \"mix_v2\" ( )\nshader \"x\" \"mix\" ( )"),
              "2:12: the shader \"mix\" is not declared; did you mean \"mix_v2\"?")
        << "the last version";
    EXPECT_EQ(
        errorOf("shader \"x\" \"mixColour\" ( )\n" + text + "declare color \"mixColour\" ( )"),
        "1:12: the shader \"mixColour\" is not declared; it comes at scene:3:15, but must be defined above "
        "its use")
        << "what there is goes before what is near";
}

TEST(Shader, TheMissingIncludeIsTheOneThatDeclaresIt)
{
    const test::Folder folder;
    folder.write(
        "vhl.mi",
        "$include \"inner.mi\"\ndeclare shader struct { color \"a\" } \"vhLeaf\" ( color \"c\" ) end "
        "declare\n");
    folder.write("inner.mi", "declare color \"within\" ( )");
    folder.write("recipes.mi", "declare phenomenon color \"vhrLeaf\" ( )\n"
                               "shader \"mib_inside\" \"vhLeaf\" ( ) root = \"mib_inside\" end declare\n");
    folder.write("base.mi", "$ifndef \"base\" set \"base\"\n"
                            "declare shader color \"mib_leaf\" ( color \"c\" ) end declare\n$endif\n");
    const auto hint = [&](const std::string& type, const std::string& before = {}) {
        Scene scene;
        scene.session.paths.include = {"/nowhere", folder.path()};
        const std::string error = scene.errorOf(before + "\nshader \"x\" \"" + type + "\" ( )");
        const std::string told = "2:12: the shader \"" + type + "\" is not declared; ";
        EXPECT_EQ(error.substr(0, told.size()), told);
        return error.substr(std::min(told.size(), error.size()));
    };
    EXPECT_EQ(hint("vhLeaf"), "is $include \"vhl.mi\" missing?");
    EXPECT_EQ(hint("vhrLeaf"), "is $include \"recipes.mi\" missing?");
    EXPECT_EQ(hint("mib_leaf"), "is $include \"base.mi\" missing?");
    EXPECT_EQ(hint("mib_leaf", "declare color \"mib_leaf2\" ( )"), "is $include \"base.mi\" missing?")
        << "before what is near";
    EXPECT_EQ(hint("within"), "is a $include missing?") << "no file of ours";
    EXPECT_EQ(hint("other", "declare color \"leaf\" ( )"), "is a $include missing?");

    const std::string none =
        "this host's base library has no such shader, docs/base.md lists those that there are";
    EXPECT_EQ(hint("mib_inside"), none) << "the name of an instance is no declaration";
    EXPECT_EQ(hint("mib_other"), none);
    EXPECT_EQ(hint("mib_other", "$include \"base.mi\""), none);
    EXPECT_EQ(hint("mib_laef", "$include \"base.mi\""), "did you mean \"mib_leaf\"?");
    EXPECT_EQ(errorOf("shader \"x\" \"mib_other\" ( )"),
              "1:12: the shader \"mib_other\" is not declared; is a $include missing?")
        << "without the library's file nothing is known about it";

    folder.write("base.mi", "declare color \"mib_huge\" ( ) #" + std::string(4 << 20, '.') + '\n');
    EXPECT_EQ(hint("mib_huge"), "is a $include missing?") << "too long to look through";
}

TEST(Shader, AParameterThatIsNearIsOffered)
{
    EXPECT_EQ(refusal("\"tez\" 1"), "2:1: shader \"all\" has no parameter \"tez\"; did you mean \"tex\"?");
    EXPECT_EQ(refusal("\"nope\" 1"), "2:1: shader \"all\" has no parameter \"nope\"");
    EXPECT_EQ(
        Scene("declare color \"deep\" ( struct \"layer\" { color \"weight\" } )")
            .errorOf("shader \"x\" \"deep\" ( \"layer\" { \"wieght\" 1 } )"),
        "1:31: parameter \"layer\" of shader \"deep\": the structure has no member \"wieght\"; did you mean "
        "\"weight\"?");
    EXPECT_EQ(refusal("\"c\" = \"s1.rbg\""), "2:5: parameter \"c\" of shader \"all\": the result of shader "
                                             "\"split\" has no member \"rbg\"; did you "
                                             "mean \"rgb\"?");
}

TEST(Shader, ANameMayStandForAList)
{
    Scene scene(declared + R"(shader "list" "leaf" ( "s" 1 ) = "leaf1" = shader "new" "leaf" ( "s" 2 )
        shader "longer" = "list" = "leaf1"
        material "m" = "list" = "leaf1" end material material "n" = "longer" end material material "o" = "new" end material)");
    const auto tag = [&](const char* name) { return scene.session.database.lookup(name); };
    const host::ShaderList m = scene.get<host::Material>("m").shader;
    ASSERT_EQ(m.size(), 4u);
    EXPECT_EQ(m[1], tag("leaf1"));
    EXPECT_EQ(m[2], tag("new"));
    EXPECT_EQ(m[3], tag("leaf1"));
    EXPECT_EQ(scene.get<host::Material>("n").shader, m);
    EXPECT_EQ(scene.get<host::Material>("o").shader, (host::ShaderList{tag("new")}));
}

TEST(Shader, AnotherNameForOneMayBeConnected)
{
    Scene scene(declared + "shader \"other\" = \"leaf1\" shader \"x\" \"all\" ( \"c\" = \"other\" )");
    const miTag leaf = scene.session.database.lookup("leaf1");
    EXPECT_EQ(scene.session.database.lookup("other"), leaf);
    ASSERT_EQ(scene.get<host::Function>("x").connections().size(), 1u);
    EXPECT_EQ(scene.get<host::Function>("x").connections()[0].sourceTag, leaf);
    EXPECT_EQ(scene.messages.lines().size(), 0u);
    scene.read("shader \"other\" = \"x\"");
    EXPECT_EQ(scene.messages.lines().size(), 1u) << "the name was taken";
}

TEST(Shader, AListInPlaceOfAShaderParameterIsRefused)
{
    Scene scene(declared + "shader \"list\" \"leaf\" ( ) \"leaf\" ( )");
    EXPECT_NE(scene.errorOf("shader \"x\" \"all\" ( \"c\" = \"list\" )"), "accepted");
    EXPECT_NE(scene.errorOf("shader \"x\" \"all\" ( \"tex\" \"list\" )"), "accepted");
    EXPECT_NE(scene.errorOf("shader \"x\" \"all\" ( \"sub\" \"list\" )"), "accepted");
}

TEST(Shader, AListThatNamesItselfDoesNotHang)
{
    EXPECT_EQ(Scene(declared).errorOf("shader \"a\" \"leaf\" ( ) = \"a\""), "1:25: there is no shader \"a\"");
    Scene scene(declared + "shader \"a\" \"leaf\" ( ) = \"leaf1\" incremental shader \"a\" = \"a\" = \"a\"");
    scene.read("material \"m\" = \"a\" end material");
    EXPECT_EQ(scene.get<host::Material>("m").shader.size(), 4u);
}

TEST(Shader, AChangeIsSeenByWhoeverRefersToIt)
{
    Scene scene(
        declared +
        "shader \"x\" \"all\" ( \"c\" = \"leaf1\", \"s\" 3, \"n\" 5 ) material \"m\" = \"x\" end material\n");
    const miTag x = scene.session.database.lookup("x");
    scene.read(
        "incremental shader \"x\" \"all\" ( \"s\" 4 ) incremental shader \"leaf1\" \"leaf\" ( \"s\" 9 )");
    EXPECT_EQ(scene.session.database.lookup("x"), x);
    EXPECT_EQ(scene.parameter<float>("x", "s"), 4.0f);
    EXPECT_EQ(scene.parameter<int>("x", "n"), 5) << "what is not mentioned stays";
    ASSERT_EQ(scene.get<host::Function>("x").connections().size(), 1u);
    EXPECT_EQ(scene.get<host::Function>("x").connections()[0].sourceTag,
              scene.session.database.lookup("leaf1"));
    EXPECT_EQ(scene.parameter<float>("leaf1", "s"), 9.0f);
    EXPECT_EQ(scene.get<host::Material>("m").shader, (host::ShaderList{x}));
    EXPECT_EQ(scene.messages.lines().size(), 0u);
}

TEST(Shader, AChangeIsOneDefinition)
{
    Scene scene(declared);
    EXPECT_EQ(scene.errorOf("incremental shader \"leaf1\" \"leaf\" ( ) \"leaf\" ( )"),
              "1:20: a single shader can only be changed into a single shader");
    EXPECT_EQ(scene.errorOf("incremental shader \"leaf1\" = \"s1\""),
              "1:20: a single shader can only be changed into a single shader");
    EXPECT_EQ(scene.errorOf("incremental shader \"nobody\" \"leaf\" ( )"),
              "1:20: there is no shader \"nobody\"");
}

TEST(Shader, ACycleMadeByAChangeDoesNotHangTheReader)
{
    Scene scene(declared + "shader \"a\" \"leaf\" ( ) shader \"b\" \"leaf\" ( \"s\" = \"a\" )");
    EXPECT_EQ(scene.errorOf("incremental shader \"a\" \"leaf\" ( \"s\" = \"b\" )"), "accepted");
}

} // namespace test
