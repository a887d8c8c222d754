// SPDX-License-Identifier: BSD-3-Clause
// Gathering what a rendering can reach; changing shaders between renderings.
#include "tests/harness/stage.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <string>

namespace {

using namespace test;
using host::Function;
using host::Type;

class NetworkTest : public testing::Test {
protected:
    NetworkTest()
    {
        stage.declare("t_add", field(Type::scalar, ""),
                      {field(Type::scalar, "a"), field(Type::scalar, "b", {1})});
        stage.declare("t_sum", field(Type::scalar, ""), {array(field(Type::scalar, "values"))});
        stage.declare("t_pair", structure("", {field(Type::color, "color"), field(Type::scalar, "mask")}),
                      {field(Type::color, "color")});
        stage.declare("t_color", field(Type::color, ""), {field(Type::color, "input")});
        stage.declare("t_raster", field(Type::scalar, ""), {});
        stage.declare("t_query", field(Type::vector, ""),
                      {field(Type::integer, "code"), field(Type::shader, "tag")});
        stage.declare("t_pin", field(Type::scalar, ""), {field(Type::colorTexture, "tag")});
    }

    Function& add(const std::string& name, const std::vector<host::Argument>& arguments = {})
    {
        return stage.make(name, "t_add", arguments);
    }

    /// A chain of so many adds, each adding 1; its last member.
    Function& chain(int length)
    {
        Function* last = &add("n0");
        for (int k = 1; k < length; ++k)
            last = &add("n" + std::to_string(k), {argument("a", connection("n" + std::to_string(k - 1)))});
        return *last;
    }

    bool reaches(const Function& f)
    {
        const std::vector<Function*>& all = stage.network().functions();
        return std::find(all.begin(), all.end(), &f) != all.end();
    }

    void redefine(Function& f, const std::vector<host::Argument>& arguments)
    {
        f.redefine(f.declaration(), arguments, {});
    }

    Stage stage{TEST_SHADERS};
};

TEST_F(NetworkTest, GathersWhatIsConnectedAndNothingElse)
{
    Function& source = add("source");
    Function& other = add("other");
    Function& user = add("user", {argument("a", connection("source")), argument("b", connection("source"))});
    stage.prepare({&user, &user});
    EXPECT_EQ(stage.network().functions(), (std::vector<Function*>{&source, &user}));
    EXPECT_FALSE(reaches(other));
}

TEST_F(NetworkTest, GathersWhatIsNamedByTag)
{
    Function& inner = add("inner");
    Function& named = add("named", {argument("a", connection("inner"))});
    Function& byTag = stage.make("q", "t_query", {argument("tag", "named")});
    Function& procedure = stage.make("procedure", "t_color");
    stage.session.database.make<host::Texture>("texture").procedural = {procedure.tag};
    Function& textured = stage.make("p", "t_pin", {argument("tag", "texture")});
    stage.prepare({&byTag, &textured});
    for (const Function* const f : {&inner, &named, &byTag, &procedure, &textured})
        EXPECT_TRUE(reaches(*f)) << f->title();
}

TEST_F(NetworkTest, ResultsLieApartAndAligned)
{
    Function& pair = stage.make("pair", "t_pair");
    Function& sum = stage.make("sum", "t_sum");
    Function& user = add("user", {argument("a", connection("pair.mask")), argument("b", connection("sum"))});
    stage.prepare({&user});
    EXPECT_EQ(pair.resultOffset % 16, 0u);
    EXPECT_EQ(sum.resultOffset % 16, 0u);
    EXPECT_EQ(stage.network().resultBytes(), (16u + 32u) + (16u + 16u)) << "a stamp and a result for each";
}

TEST_F(NetworkTest, ACycleNamesTheShadersOnIt)
{
    Function& a = add("a");
    add("b", {argument("a", connection("a"))});
    Function& c = add("c", {argument("a", connection("b"))});
    Function& user = add("user", {argument("a", connection("c"))});
    redefine(a, {argument("b", connection("c"))});
    EXPECT_EQ(
        errorOf([&] { stage.prepare({&user}); }),
        "shaders are connected in a circle: shader \"c\" (t_add) -> shader \"b\" (t_add) -> shader \"a\" "
        "(t_add) -> shader \"c\" (t_add)");
    redefine(a, {argument("b", connection("a"))});
    EXPECT_EQ(errorOf([&] { stage.prepare({&c}); }),
              "shaders are connected in a circle: shader \"a\" (t_add) -> shader \"a\" (t_add)");
}

TEST_F(NetworkTest, TheLongestChainThatIsAcceptedWorks)
{
    EXPECT_EQ(stage.runAlone<miScalar>(chain(host::maximumNetworkDepth)),
              static_cast<float>(host::maximumNetworkDepth));
}

TEST_F(NetworkTest, ADeeperChainIsTold)
{
    Function& last = chain(host::maximumNetworkDepth + 1);
    EXPECT_EQ(errorOf([&] { stage.prepare({&last}); }),
              "shader \"n1024\" (t_add): more than 1024 shaders are connected in a chain");
}

TEST_F(NetworkTest, AHugeChainIsToldToo)
{
    Function& last = chain(50'000);
    EXPECT_NE(errorOf([&] { stage.prepare({&last}); }).find("connected in a chain"), std::string::npos);
}

// 2^200 paths, if paths were walked.
TEST_F(NetworkTest, SharedSourcesAreVisitedOnce)
{
    add("n0");
    Function* last = nullptr;
    for (int k = 1; k <= 200; ++k) {
        const host::Value before = connection("n" + std::to_string(k - 1));
        last = &add("n" + std::to_string(k), {argument("a", before), argument("b", before)});
    }
    stage.prepare({last});
    EXPECT_EQ(stage.network().functions().size(), 201u);
    EXPECT_EQ(stage.run<miScalar>(*last), std::ldexp(1.0f, 200)) << "and each runs once";
}

// ---- redefining

TEST_F(NetworkTest, ARedefinedShaderKeepsWhatIsNotMentioned)
{
    Function& five = add("five", {argument("a", 5), argument("b", 0)});
    Function& f = add("f", {argument("a", connection("five")), argument("b", 7)});
    redefine(f, {argument("b", 8)});
    EXPECT_EQ(stage.runAlone<miScalar>(f), 5 + 8);
    redefine(f, {argument("a", 1)});
    EXPECT_TRUE(f.connections().empty());
    EXPECT_EQ(f.record()->ghost_flag, 0);
    EXPECT_EQ(stage.runAlone<miScalar>(f), 1 + 8);
    redefine(f, {argument("b", connection("five"))});
    EXPECT_EQ(stage.runAlone<miScalar>(f), 1 + 5);
    EXPECT_EQ(stage.runAlone<miScalar>(five), 5);
}

TEST_F(NetworkTest, ARedefinedShaderKeepsArraysWithTheirConnections)
{
    add("five", {argument("a", 5), argument("b", 0)});
    stage.declare("t_sum_too", field(Type::scalar, ""),
                  {array(field(Type::scalar, "values")),
                   array(structure("s", {array(field(Type::scalar, "deep"))})), field(Type::string, "text")});
    host::Function& f = stage.make("f", "t_sum_too",
                                   {argument("values", list(1, connection("five"), 3)),
                                    argument("s", list(structure({argument("deep", list(10, 20))}),
                                                       structure({argument("deep", list(30))})))});
    const std::size_t size = static_cast<std::size_t>(f.record()->parameter_size);
    const std::string before(static_cast<const char*>(f.parameters()), size);
    redefine(f, {argument("text", null())});
    ASSERT_EQ(f.record()->parameter_size, static_cast<int>(size));
    EXPECT_EQ(std::string(static_cast<const char*>(f.parameters()), size), before);
    ASSERT_EQ(f.connections().size(), 1u);
    EXPECT_EQ(f.connections()[0].field, "values[1]");
}

TEST_F(NetworkTest, ConnectionsFollowARedefinedSource)
{
    Function& source = add("source", {argument("a", 1)});
    Function& user = add("user", {argument("a", connection("source"))});
    EXPECT_EQ(stage.runAlone<miScalar>(user), 1 + 1 + 1);
    stage.finish();
    source.redefine(*stage.session.declarations.find("t_sum"), {argument("values", list(4, 5))}, {});
    EXPECT_EQ(stage.runAlone<miScalar>(user), 9 + 1);
}

TEST_F(NetworkTest, AnErrorLeavesTheShaderAsItWas)
{
    Function& f = add("f", {argument("a", 3)});
    EXPECT_NE(errorOf([&] { redefine(f, {argument("a", 9), argument("b", "text")}); }), "nothing was thrown");
    EXPECT_EQ(stage.runAlone<miScalar>(f), 3 + 1);
}

TEST_F(NetworkTest, ASourceThatIsGoneOrAnotherIsTold)
{
    Function& source = add("source");
    Function& user = add("user", {argument("a", connection("source"))});
    source.redefine(*stage.session.declarations.find("t_color"), {}, {});
    EXPECT_EQ(
        errorOf([&] { stage.prepare({&user}); }),
        "shader \"user\" (t_add): what \"a\" is connected to has become a shader with another result, shader "
        "\"source\" (t_color)");
    stage.session.database.remove(source.tag);
    EXPECT_EQ(errorOf([&] { stage.prepare({&user}); }),
              "shader \"user\" (t_add): what \"a\" is connected to has been deleted");
}

TEST_F(NetworkTest, TitlesNameTheInstanceOrItsPlace)
{
    EXPECT_EQ(add("f").title(), "shader \"f\" (t_add)");
    Function anonymous(*stage.session.declarations.find("t_add"), {}, stage.session.database,
                       {host::fileName("scene.mi"), 3, 14});
    EXPECT_EQ(anonymous.title(), "shader t_add at scene.mi:3:14");
}

} // namespace
