// SPDX-License-Identifier: BSD-3-Clause
// Layout rules and declarations.
#include "host/shading/declaration.h"

#include "tests/harness/stage.h"

#include <gtest/gtest.h>

namespace {

using namespace test;
using host::Type;

host::Declaration laidOut(std::vector<host::Field> parameters)
{
    host::Declaration made = declaration("d", field(Type::color, ""), std::move(parameters));
    host::layOut(made);
    return made;
}

TEST(Declaration, EveryTypeTakesItsBytesInOrder)
{
    struct Row {
        Type type;
        std::size_t bytes;
        std::string name;
    };
    const std::vector<Row> rows = {
        {Type::boolean, 4, "boolean"},
        {Type::integer, 4, "integer"},
        {Type::scalar, 4, "scalar"},
        {Type::vector, 12, "vector"},
        {Type::color, 16, "color"},
        {Type::transform, 64, "transform"},
        {Type::string, 4, "string"},
        {Type::colorTexture, 4, "color texture"},
        {Type::scalarTexture, 4, "scalar texture"},
        {Type::vectorTexture, 4, "vector texture"},
        {Type::light, 4, "light"},
        {Type::material, 4, "material"},
        {Type::geometry, 4, "geometry"},
        {Type::shader, 4, "shader"},
        {Type::lightProfile, 4, "lightprofile"},
        {Type::spectrum, 4, "spectrum"},
        {Type::data, 4, "data"},
    };
    std::vector<host::Field> fields;
    for (const Row& row : rows)
        fields.push_back(field(row.type, row.name));
    const host::Declaration d = laidOut(fields);
    std::size_t offset = 0;
    for (std::size_t k = 0; k < rows.size(); ++k) {
        SCOPED_TRACE(rows[k].name);
        EXPECT_EQ(host::typeName(rows[k].type), rows[k].name);
        EXPECT_EQ(d.parameters[k].offset, offset);
        EXPECT_EQ(d.parameters[k].size, rows[k].bytes);
        offset += rows[k].bytes;
    }
    EXPECT_EQ(d.blockSize, offset);
}

// The same as a C structure, which is what shaders are compiled against.
TEST(Declaration, LayoutIsThatOfTheCStructure)
{
    struct Layer {
        miColor color;
        int i_weights;
        int n_weights;
        miScalar weights[1];
    };
    struct Params {
        miBoolean on;
        int i_layers;
        int n_layers;
        Layer layers[1];
        Layer base;
        miMatrix matrix;
        int i_points;
        int n_points;
        miVector points[1];
        miTag text;
    };
    const auto layer = [](const std::string& name) {
        return structure(name, {field(Type::color, "color"), array(field(Type::scalar, "weights"))});
    };
    const host::Declaration d = laidOut({field(Type::boolean, "on"), array(layer("layers")), layer("base"),
                                         field(Type::transform, "matrix"),
                                         array(field(Type::vector, "points")), field(Type::string, "text")});
    EXPECT_EQ(d.parameter("layers")->offset, offsetof(Params, i_layers));
    EXPECT_EQ(d.parameter("layers")->elementSize, sizeof(Layer));
    EXPECT_EQ(d.parameter("layers")->members[1].offset, offsetof(Layer, i_weights));
    EXPECT_EQ(d.parameter("base")->offset, offsetof(Params, base));
    EXPECT_EQ(d.parameter("matrix")->offset, offsetof(Params, matrix));
    EXPECT_EQ(d.parameter("points")->offset, offsetof(Params, i_points));
    EXPECT_EQ(d.parameter("points")->size, 8 + sizeof(miVector));
    EXPECT_EQ(d.parameter("text")->offset, offsetof(Params, text));
    EXPECT_EQ(d.blockSize, sizeof(Params));
    EXPECT_EQ(d.parameter("nothing"), nullptr);
}

TEST(Declaration, AStructResultIsAPlainStructure)
{
    host::Declaration d =
        declaration("d",
                    structure("", {field(Type::color, "rgb"), field(Type::scalar, "mask"),
                                   structure("more", {field(Type::vector, "v"), field(Type::integer, "n")})}),
                    {});
    host::layOut(d);
    EXPECT_EQ(d.result.size, 16u + 4u + 16u);
    EXPECT_EQ(d.result.members[2].offset, 20u);
    EXPECT_EQ(d.result.members[2].members[1].offset, 12u);
    EXPECT_EQ(d.blockSize, 0u);
}

TEST(Declaration, WhatCannotBeLaidOutIsTold)
{
    const auto error = [](std::vector<host::Field> parameters) {
        return errorOf([&] { laidOut(std::move(parameters)); });
    };
    EXPECT_EQ(error({field(Type::scalar, "a"), field(Type::color, "a")}), "\"a\" is declared twice");
    EXPECT_EQ(error({structure("s", {field(Type::scalar, "m"), field(Type::scalar, "m")})}),
              "\"m\" is declared twice");
    EXPECT_EQ(error({structure("s", {})}), "a structure needs at least one member");
    EXPECT_EQ(error({field(Type::vector, "v", {1, 2, 3, 4})}),
              "default of parameter \"v\": 4 numbers for a vector, which has 3");
    EXPECT_EQ(error({field(Type::string, "s", {1})}),
              "default of parameter \"s\": a parameter of type string takes none");
    EXPECT_EQ(error({array(field(Type::scalar, "s", {1}))}),
              "default of parameter \"s\": a parameter of type array scalar takes none");
    EXPECT_EQ(error({field(Type::boolean, "b", {2})}),
              "default of parameter \"b\": on, off, 0 or 1 expected");
    EXPECT_EQ(error({field(Type::integer, "i", {1.5})}), "default of parameter \"i\": an integer expected");
    EXPECT_EQ(error({field(Type::integer, "i", {3e9})}), "default of parameter \"i\": an integer expected");

    host::Declaration result = declaration("d", array(field(Type::scalar, "")), {});
    EXPECT_EQ(errorOf([&] { host::layOut(result); }), "a result cannot be an array");
}

TEST(Declaration, NestingEndsAt64)
{
    const auto nested = [](int levels) {
        host::Field inner = field(Type::scalar, "x");
        for (int k = 0; k < levels; ++k)
            inner = structure("s", {inner});
        return inner;
    };
    EXPECT_NO_THROW(laidOut({nested(64)}));
    EXPECT_EQ(errorOf([&] { laidOut({nested(65)}); }), "structures are nested deeper than 64 levels");
}

TEST(Declaration, ABlockBeyondTheLimitIsTold)
{
    const auto transforms = [](std::size_t count) {
        std::vector<host::Field> fields;
        for (std::size_t k = 0; k < count; ++k)
            fields.push_back(field(Type::transform, "m" + std::to_string(k)));
        return fields;
    };
    const std::size_t most = host::maximumDeclaredSize / sizeof(miMatrix);
    EXPECT_NO_THROW(laidOut(transforms(most)));
    EXPECT_EQ(errorOf([&] { laidOut(transforms(most + 1)); }), "parameters take more than 1048576 bytes");
}

TEST(Declarations, TheSameAgainIsSilentAndAnotherIsNot)
{
    host::Declarations all;
    host::Declaration first = declaration("d", field(Type::color, ""), {field(Type::scalar, "a", {2})});
    first.where = {host::fileName("first.mi"), 7, 3};
    const host::Declaration& kept = all.add(first);
    first.where.line = 9;
    first.apply = {"texture"};
    EXPECT_EQ(&all.add(first), &kept);

    const std::vector<host::Declaration> others = {
        declaration("d", field(Type::scalar, ""), {field(Type::scalar, "a", {2})}),
        declaration("d", field(Type::color, ""), {field(Type::scalar, "a", {3})}),
        declaration("d", field(Type::color, ""), {field(Type::scalar, "b", {2})}),
        declaration("d", field(Type::color, ""), {field(Type::boolean, "a")}),
        declaration("d", field(Type::color, ""), {array(field(Type::scalar, "a"))}),
        declaration("d", field(Type::color, ""), {}),
        declaration("d", field(Type::color, ""), {field(Type::scalar, "a", {2})}, 2),
    };
    for (const host::Declaration& other : others)
        EXPECT_EQ(errorOf([&] { all.add(other); }), "shader \"d\" is declared differently at first.mi:7:3");
    EXPECT_EQ(all.find("d"), &kept);
    EXPECT_EQ(all.find("e"), nullptr);
}

TEST(Declarations, NoVersionIsVersionZero)
{
    host::Declarations all;
    host::Declaration first = declaration("d", field(Type::color, ""), {}, 0);
    all.add(first);
    first.version.reset();
    EXPECT_NO_THROW(all.add(first));
}

} // namespace
