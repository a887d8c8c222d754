// SPDX-License-Identifier: BSD-3-Clause
// Values into parameter blocks.
#include "host/shading/block.h"

#include "tests/harness/stage.h"

#include <gtest/gtest.h>

#include <cstring>
#include <set>

namespace {

using namespace test;
using host::Type;

template <class T>
T at(host::Function& function, std::size_t offset)
{
    T copy;
    std::memcpy(&copy, static_cast<const char*>(function.parameters()) + offset, sizeof copy);
    return copy;
}

/// A shader "s" with one parameter "p" of any kind, and what can be named.
class BlockTest : public testing::Test {
protected:
    BlockTest()
    {
        host::Database& db = stage.session.database;
        db.make<host::Instance>("instance");
        db.make<host::Light>("light");
        db.make<host::Material>("material");
        db.make<host::Object>("object");
        db.make<host::Camera>("camera");
        db.make<host::Texture>("texture");
        stage.declare("colors", field(Type::color, ""), {});
        stage.declare("pairs",
                      structure("", {field(Type::color, "rgb"), field(Type::scalar, "mask"),
                                     structure("deep", {field(Type::boolean, "on")})}),
                      {});
        stage.make("tex", "colors");
        stage.make("pair", "pairs");
        stage.make("a.rgb", "colors");
    }

    host::Function& make(const host::Field& parameter, const host::Value& given)
    {
        static int serial = 0;
        const std::string name = "s" + std::to_string(++serial);
        stage.declare(name, field(Type::color, ""), {field(Type::integer, "before"), parameter});
        return stage.make("", name, {{parameter.name, {}, given}});
    }

    /// The error without the part that names the shader, whose name varies.
    std::string error(const host::Field& parameter, const host::Value& given)
    {
        std::string text = errorOf([&] { make(parameter, given); });
        const std::size_t begin = text.find(" of shader \"");
        const std::size_t end = text.find("\": ");
        return begin == std::string::npos || end == std::string::npos ? text
                                                                      : text.erase(begin, end + 1 - begin);
    }

    miTag tagOf(const std::string& name) { return stage.session.database.lookup(name); }

    Stage stage;
};

TEST_F(BlockTest, NumbersFillComponentsInOrder)
{
    EXPECT_EQ(at<int>(make(field(Type::boolean, "p"), value(true)), 4), 1);
    EXPECT_EQ(at<int>(make(field(Type::boolean, "p"), value(1)), 4), 1);
    EXPECT_EQ(at<int>(make(field(Type::integer, "p"), value(-7)), 4), -7);
    EXPECT_EQ(at<float>(make(field(Type::scalar, "p"), value(3)), 4), 3.0f)
        << "an integer where a float is expected";
    EXPECT_EQ(at<float>(make(field(Type::scalar, "p"), value(0.1)), 4), 0.1f);

    host::Function& v = make(field(Type::vector, "p"), numbers({1, 2, 3}));
    EXPECT_EQ(at<float>(v, 4), 1);
    EXPECT_EQ(at<float>(v, 8), 2);
    EXPECT_EQ(at<float>(v, 12), 3);

    host::Function& m =
        make(field(Type::transform, "p"), numbers({1, 2, 3, 4, 5, 6, 7, 8, 9, 10, 11, 12, 13, 14, 15, 16}));
    for (int k = 0; k < 16; ++k)
        EXPECT_EQ(at<float>(m, 4 + 4 * static_cast<std::size_t>(k)), static_cast<float>(k + 1));
}

TEST_F(BlockTest, AColorOfThreeNumbersHasAlphaZero)
{
    host::Function& c = make(field(Type::color, "p", {1, 1, 1, 1}), numbers({.5, .25, .125}));
    EXPECT_EQ(at<float>(c, 4), .5f);
    EXPECT_EQ(at<float>(c, 12), .125f);
    EXPECT_EQ(at<float>(c, 16), 0.0f) << "not the default's alpha";
}

TEST_F(BlockTest, WhatIsLeftOutTakesItsDefaultOrZero)
{
    stage.declare("defaults", field(Type::color, ""),
                  {field(Type::boolean, "b", {1}), field(Type::integer, "i", {-3}),
                   field(Type::scalar, "s", {.5}), field(Type::color, "c", {1, 2, 3, 4}),
                   field(Type::vector, "v"), field(Type::string, "t"), array(field(Type::scalar, "a")),
                   structure("st", {field(Type::scalar, "x", {9}), field(Type::scalar, "y")})});
    host::Function& f = stage.make("", "defaults");
    EXPECT_EQ(at<int>(f, 0), 1);
    EXPECT_EQ(at<int>(f, 4), -3);
    EXPECT_EQ(at<float>(f, 8), .5f);
    EXPECT_EQ(at<float>(f, 12), 1);
    EXPECT_EQ(at<float>(f, 24), 4);
    for (std::size_t offset = 28; offset < 28 + 12 + 4 + 12; offset += 4)
        EXPECT_EQ(at<int>(f, offset), 0) << offset;
    EXPECT_EQ(at<float>(f, 56), 9);
    EXPECT_EQ(at<float>(f, 60), 0);
    EXPECT_EQ(f.record()->parameter_size, 64);
}

TEST_F(BlockTest, AParameterGivenTwiceKeepsTheLaterValue)
{
    stage.declare("twice", field(Type::color, ""), {field(Type::scalar, "p")});
    EXPECT_EQ(at<float>(stage.make("", "twice", {argument("p", 1.0f), argument("p", 2.0f)}), 0), 2);
    host::Function& literal =
        stage.make("", "twice", {argument("p", connection("tex")), argument("p", 2.0f)});
    EXPECT_TRUE(literal.connections().empty());
}

TEST_F(BlockTest, AStringBecomesATextElement)
{
    host::Function& f = make(field(Type::string, "p"), value("some text"));
    const host::Text* const text = stage.session.database.findAs<host::Text>(at<miTag>(f, 4));
    ASSERT_NE(text, nullptr);
    EXPECT_EQ(text->text, "some text");
    EXPECT_EQ(at<miTag>(make(field(Type::string, "p"), value("")), 4), 0u);
    EXPECT_EQ(at<miTag>(make(field(Type::string, "p"), null()), 4), 0u);
}

TEST_F(BlockTest, TagsNameElementsOfTheirKind)
{
    struct Row {
        Type type;
        const char* good;
        const char* alsoGood;
        const char* bad;
        const char* error;
    };
    const std::vector<Row> rows = {
        {Type::light, "instance", "light", "material",
         "parameter \"p\": an element that can serve as light expected (instance of a light), but "
         "\"material\" is of "
         "kind material"},
        {Type::geometry, "instance", "object", "light",
         "parameter \"p\": an element that can serve as geometry expected (instance or an object), but "
         "\"light\" is "
         "of kind light"},
        {Type::material, "material", "material", "tex",
         "parameter \"p\": an element that can serve as material expected (material), but \"tex\" is of kind "
         "shader"},
        {Type::colorTexture, "texture", "texture", "camera",
         "parameter \"p\": an element that can serve as color texture expected (texture), but \"camera\" is "
         "of kind "
         "camera"},
        {Type::scalarTexture, "texture", "texture", "object",
         "parameter \"p\": an element that can serve as scalar texture expected (texture), but \"object\" is "
         "of kind "
         "object"},
        {Type::vectorTexture, "texture", "texture", "instance",
         "parameter \"p\": an element that can serve as vector texture expected (texture), but \"instance\" "
         "is of "
         "kind instance"},
        {Type::shader, "tex", "pair", "texture",
         "parameter \"p\": an element that can serve as shader expected (shader), but \"texture\" is of kind "
         "texture"},
    };
    for (const Row& row : rows) {
        SCOPED_TRACE(host::typeName(row.type));
        const host::Field p = field(row.type, "p");
        EXPECT_EQ(at<miTag>(make(p, value(row.good)), 4), tagOf(row.good));
        EXPECT_EQ(at<miTag>(make(p, value(row.alsoGood)), 4), tagOf(row.alsoGood));
        EXPECT_EQ(at<miTag>(make(p, null()), 4), 0u);
        EXPECT_EQ(at<miTag>(make(p, value("")), 4), 0u);
        EXPECT_EQ(error(p, value(row.bad)), row.error);
    }
    EXPECT_EQ(error(field(Type::light, "p"), value("nobody")),
              "parameter \"p\": there is no instance of a light named \"nobody\"");
}

TEST_F(BlockTest, ValuesOfTheWrongFormAreTold)
{
    struct Row {
        host::Field parameter;
        host::Value given;
        const char* error;
    };
    const host::Field pair = structure("p", {field(Type::scalar, "x")});
    const std::vector<Row> rows = {
        {field(Type::scalar, "p"), numbers({1, 2}), "parameter \"p\": 2 numbers for a scalar, which has 1"},
        {field(Type::color, "p"), numbers({1, 2, 3, 4, 5}),
         "parameter \"p\": 5 numbers for a color, which has 4"},
        {field(Type::scalar, "p"), value("x"), "parameter \"p\": scalar expected, not \"x\""},
        {field(Type::vector, "p"), null(), "parameter \"p\": vector expected, not null"},
        {field(Type::color, "p"), list(1.0f), "parameter \"p\": color expected, not a list in brackets"},
        {field(Type::color, "p"), structure({}),
         "parameter \"p\": color expected, not a structure in braces"},
        {field(Type::scalar, "p"), value(true), "parameter \"p\": scalar expected, not on or off"},
        {field(Type::integer, "p"), value(1.0f), "parameter \"p\": integer expected, not a fraction"},
        {field(Type::integer, "p"), value(true), "parameter \"p\": integer expected, not on or off"},
        {field(Type::boolean, "p"), value("yes"), "parameter \"p\": on, off, 0 or 1 expected, not \"yes\""},
        {field(Type::boolean, "p"), value(2), "parameter \"p\": on, off, 0 or 1 expected"},
        {field(Type::boolean, "p"), value(1.0f), "parameter \"p\": on, off, 0 or 1 expected"},
        {field(Type::string, "p"), value(1), "parameter \"p\": string expected, not a number"},
        {field(Type::light, "p"), value(true), "parameter \"p\": light expected, not on or off"},
        {array(field(Type::scalar, "p")), value(1),
         "parameter \"p\": a list in brackets expected, not a number"},
        {array(field(Type::scalar, "p")), connection("tex"),
         "parameter \"p\": a whole array cannot be connected, only its elements"},
        {array(field(Type::scalar, "p")), list(1.0f, "x"), "parameter \"p[1]\": scalar expected, not \"x\""},
        {pair, value(1), "parameter \"p\": a structure in braces expected, not a number"},
        {pair, structure({argument("y", 1)}), "parameter \"p\": the structure has no member \"y\""},
        {pair, structure({argument("x", "t")}), "parameter \"p.x\": scalar expected, not \"t\""},
    };
    for (const Row& row : rows)
        EXPECT_EQ(error(row.parameter, row.given), row.error);
    host::Value huge = value(0);
    std::get<host::Numbers>(huge.form).numbers[0].value = 4e9;
    EXPECT_EQ(error(field(Type::integer, "p"), huge), "parameter \"p\": an integer of 32 bits expected");
}

TEST_F(BlockTest, ErrorsBeginWithTheArgumentsPlace)
{
    stage.declare("placed", field(Type::color, ""), {field(Type::scalar, "p")});
    const host::Location where{host::fileName("scene.mi"), 12, 34};
    host::Argument wrong = argument("p", "text");
    wrong.value.where = where;
    EXPECT_EQ(errorOf([&] { stage.make("", "placed", {wrong}); }),
              "scene.mi:12:34: parameter \"p\" of shader \"placed\": scalar expected, not \"text\"");
    host::Argument unknown = argument("q", 1);
    unknown.where = where;
    EXPECT_EQ(errorOf([&] { stage.make("", "placed", {unknown}); }),
              "scene.mi:12:34: shader \"placed\" has no parameter \"q\"");
}

TEST_F(BlockTest, ArraysOfNoneOneAndMany)
{
    const host::Field p = array(field(Type::vector, "p"));
    host::Function& none = make(p, list(std::vector<float>{}));
    EXPECT_EQ(at<int>(none, 4), 0);
    EXPECT_EQ(at<int>(none, 8), 0);
    EXPECT_EQ(none.record()->parameter_size, 24);

    host::Function& one = make(p, list(numbers({1, 2, 3})));
    EXPECT_EQ(at<int>(one, 4), 0) << "a single element sits in the slot";
    EXPECT_EQ(at<int>(one, 8), 1);
    EXPECT_EQ(at<float>(one, 12), 1);
    EXPECT_EQ(one.record()->parameter_size, 24);

    host::Function& many = make(p, list(numbers({1, 2, 3}), numbers({4, 5, 6})));
    const int first = at<int>(many, 4);
    EXPECT_EQ(first, 1) << "the structure ends right behind the slot";
    EXPECT_EQ(at<int>(many, 8), 2);
    EXPECT_EQ(at<float>(many, 12 + 12 * static_cast<std::size_t>(first)), 1);
    EXPECT_EQ(at<float>(many, 12 + 12 * static_cast<std::size_t>(first + 1) + 8), 6);
    EXPECT_EQ(many.record()->parameter_size, 24 + 2 * 12);
}

// A field behind the array makes the payload start at the next multiple of the element's size.
TEST_F(BlockTest, ArrayPayloadsLieAMultipleOfTheirSizeFromTheSlot)
{
    struct Params {
        int i_colors, n_colors;
        miColor colors[1];
        miScalar between;
        int i_scalars, n_scalars;
        miScalar scalars[1];
    };
    stage.declare("arrays", field(Type::color, ""),
                  {array(field(Type::color, "colors")), field(Type::scalar, "between"),
                   array(field(Type::scalar, "scalars"))});
    host::Function& f = stage.make(
        "", "arrays",
        {argument("colors", list(numbers({1, 2, 3, 4}), numbers({5, 6, 7, 8}), numbers({9, 10, 11, 12}))),
         argument("scalars", list(21, 22)), argument("between", 20)});
    const Params& p = *static_cast<const Params*>(f.parameters());
    EXPECT_EQ(p.between, 20);
    ASSERT_EQ(p.n_colors, 3);
    EXPECT_GT(p.i_colors, 0);
    const miColor* const colors = p.colors;
    EXPECT_EQ(colors[p.i_colors].r, 1);
    EXPECT_EQ(colors[p.i_colors + 2].a, 12);
    ASSERT_EQ(p.n_scalars, 2);
    const miScalar* const scalars = p.scalars;
    EXPECT_EQ(scalars[p.i_scalars], 21);
    EXPECT_EQ(scalars[p.i_scalars + 1], 22);
}

TEST_F(BlockTest, ArraysInsideArraysOfStructures)
{
    struct Layer {
        miScalar weight;
        int i_values, n_values;
        miScalar values[1];
    };
    struct Params {
        int i_layers, n_layers;
        Layer layers[1];
    };
    stage.declare("layers", field(Type::color, ""),
                  {array(structure("layers", {field(Type::scalar, "weight", {1}),
                                              array(field(Type::scalar, "values"))}))});
    host::Function& f =
        stage.make("", "layers",
                   {argument("layers", list(structure({argument("values", list(1, 2, 3))}),
                                            structure({argument("weight", 5), argument("values", list(4))}),
                                            structure({})))});
    const Params& p = *static_cast<const Params*>(f.parameters());
    ASSERT_EQ(p.n_layers, 3);
    const Layer* const layers = static_cast<const Layer*>(p.layers) + p.i_layers;
    EXPECT_EQ(layers[0].weight, 1) << "a member's default holds in elements too";
    ASSERT_EQ(layers[0].n_values, 3);
    EXPECT_NE(layers[0].i_values, 0);
    const miScalar* const values = layers[0].values;
    EXPECT_EQ(values[layers[0].i_values + 2], 3);
    EXPECT_EQ(layers[1].weight, 5);
    EXPECT_EQ(layers[1].values[layers[1].i_values], 4);
    EXPECT_EQ(layers[2].n_values, 0);
    EXPECT_EQ(layers[2].i_values, 0);
}

TEST_F(BlockTest, ABlockBeyondTheLimitIsTold)
{
    host::Field element = structure("p", {});
    for (int k = 0; k < 1024; ++k)
        element.members.push_back(field(Type::transform, "m" + std::to_string(k)));
    const std::vector<host::Value> empty(5000, structure({}));
    EXPECT_EQ(error(array(element), list(empty)),
              "parameter \"p\": the parameters would take more than 268435456 bytes");
}

// ---- connections

TEST_F(BlockTest, ConnectionTypesHaveToAgree)
{
    const auto result = [&](Type type) {
        const std::string name = "gives " + std::string(host::typeName(type));
        stage.declare(name, field(type, ""), {});
        stage.make(name, name);
        return name;
    };
    const std::vector<Type> types = {Type::boolean, Type::integer,   Type::scalar, Type::vector,
                                     Type::color,   Type::transform, Type::string, Type::colorTexture,
                                     Type::light,   Type::material,  Type::shader, Type::geometry};
    const std::set<std::pair<Type, Type>> alsoAllowed = {{Type::boolean, Type::integer},
                                                         {Type::integer, Type::boolean},
                                                         {Type::color, Type::scalar},
                                                         {Type::color, Type::vector}};
    for (const Type from : types) {
        const std::string source = result(from);
        for (const Type to : types) {
            SCOPED_TRACE(source + " to " + std::string(host::typeName(to)));
            const host::Field p = field(to, "p");
            if (from == to || alsoAllowed.count({from, to}))
                EXPECT_EQ(make(p, connection(source)).connections().size(), 1u);
            else
                EXPECT_EQ(error(p, connection(source)),
                          "parameter \"p\": \"" + source + "\" gives " + std::string(host::typeName(from)) +
                              ", which cannot drive " + std::string(host::typeName(to)));
        }
    }
}

TEST_F(BlockTest, MembersAreAddressedByDots)
{
    const host::Connection rgb = make(field(Type::color, "p"), connection("pair.rgb")).connections().at(0);
    EXPECT_EQ(rgb.memberOffset, 0u);
    EXPECT_EQ(rgb.fieldOffset, 4u);
    EXPECT_EQ(rgb.sourceTag, tagOf("pair"));
    EXPECT_EQ(make(field(Type::scalar, "p"), connection("pair.mask")).connections().at(0).memberOffset, 16u);
    EXPECT_EQ(make(field(Type::boolean, "p"), connection("pair.deep.on")).connections().at(0).memberOffset,
              20u);

    EXPECT_EQ(error(field(Type::scalar, "p"), connection("pair.nothing")),
              "parameter \"p\": the result of shader \"pairs\" has no member \"nothing\"");
    EXPECT_EQ(error(field(Type::scalar, "p"), connection("pair.deep.off")),
              "parameter \"p\": the result of shader \"pairs\" has no member \"deep.off\"");
    EXPECT_EQ(error(field(Type::scalar, "p"), connection("tex.r")),
              "parameter \"p\": the result of shader \"colors\" has no member \"r\"");
    EXPECT_EQ(error(field(Type::scalar, "p"), connection("pair")),
              "parameter \"p\": \"pair\" gives struct, which cannot drive scalar");
    EXPECT_EQ(error(field(Type::scalar, "p"), connection("nobody.x")),
              "parameter \"p\": there is no shader named \"nobody.x\"");
    EXPECT_EQ(error(field(Type::scalar, "p"), connection("camera")),
              "parameter \"p\": \"camera\" cannot be connected: its kind is camera, not shader");
    EXPECT_EQ(error(field(Type::scalar, "p"), connection("")),
              "parameter \"p\": there is no shader named \"\"");
}

TEST_F(BlockTest, AWholeNameWithADotComesFirst)
{
    stage.make("a", "pairs"); // "a.rgb" is a shader, too
    EXPECT_EQ(make(field(Type::color, "p"), connection("a.rgb")).connections().at(0).sourceTag,
              tagOf("a.rgb"));
    EXPECT_EQ(make(field(Type::scalar, "p"), connection("a.mask")).connections().at(0).sourceTag, tagOf("a"));
}

TEST_F(BlockTest, AConnectedFieldKeepsItsDefaultAsLiteralValue)
{
    EXPECT_EQ(at<float>(make(field(Type::scalar, "p", {.75}), connection("tex")), 4), .75f);
}

TEST_F(BlockTest, AWholeStructureConnectsMemberByMember)
{
    const host::Field same = structure("p", {field(Type::color, "rgb"), field(Type::scalar, "mask"),
                                             structure("deep", {field(Type::boolean, "on")})});
    const std::vector<host::Connection> made = make(same, connection("pair")).connections();
    ASSERT_EQ(made.size(), 3u);
    EXPECT_EQ(made[1].field, "p.mask");
    EXPECT_EQ(made[1].fieldOffset, 4u + 16u);
    EXPECT_EQ(made[1].memberOffset, 16u);
    EXPECT_EQ(made[2].field, "p.deep.on");
    EXPECT_EQ(error(structure("p", {field(Type::color, "rgb")}), connection("pair")),
              "parameter \"p\": \"pair\" gives struct, which cannot drive struct");
}

TEST_F(BlockTest, ConnectionsInArraysAndStructuresAreNamed)
{
    const std::vector<host::Connection> made =
        make(array(structure("p", {field(Type::color, "c")})),
             list(structure({}), structure({argument("c", connection("tex"))})))
            .connections();
    ASSERT_EQ(made.size(), 1u);
    EXPECT_EQ(made[0].field, "p[1].c");
}

} // namespace
