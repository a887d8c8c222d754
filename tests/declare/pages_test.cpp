// SPDX-License-Identifier: BSD-3-Clause
// The reference pages, on shaders made up for the test; what a browser makes of them is tested in
// tests/site/.
#include "declare/catalog.h"
#include "declare/html.h"
#include "declare/pages.h"
#include "declare/prose.h"
#include "declare/shaders.h"

#include <gtest/gtest.h>

#include <array>
#include <set>

using declare::Catalog;
using declare::Html;
using declare::html;

struct Tinted {
    miColor input1;
    miScalar weight;

    static constexpr auto fields()
    {
        return std::array{VHL_FIELD(Tinted, input1, "Colour <b> & \"c\"."),
                          VHL_FIELD(Tinted, weight, "Weight, as in vhAddScalar_v1.")};
    }
};
static constexpr auto fields = Tinted::fields();

static VHL::Description made(std::string_view name, std::string_view unit, std::string_view text = "Does.")
{
    return {name, unit, 1, 7, VHL::Kind::color, {}, fields, {text}};
}

static const std::array sample = {
    made("vhAddScalar_v1", "add"),
    made("vhAddColor_v2", "add", "input1 < 2 & weight."),
    made("vhAddColor_v1", "add"),
    made("vhSetOpacity_v1", "util"),
    made("vhMixerColor4_v1", "mixer"),
    made("vhMixerScalar16_v1", "mixer"),
    made("vhBoolean2Color_v1", "conversion"),
    made("vhSomethingNew_v1", "new"),
};

static std::vector<std::string> names(const declare::Shaders& shaders)
{
    std::vector<std::string> all;
    for (const VHL::Description* shader : shaders)
        all.emplace_back(shader->name);
    return all;
}

class Pages : public testing::Test {
protected:
    const Catalog catalog{sample};
    const VHL::Description& shader = *catalog.find("vhAddColor_v2");
    const declare::Subject subject = declare::subjectOf(shader);

    std::string page(const declare::Exhibits& exhibits = {}) const
    {
        return declare::shaderPage(catalog, exhibits, shader);
    }
    std::string line(std::string_view text) const { return declare::line(catalog, subject, text).str(); }
    std::string blocks(std::string_view text) const { return declare::blocks(catalog, subject, text).str(); }
    std::string scene(std::string_view text) const { return declare::scene(catalog, subject, text).str(); }
};
using List = std::vector<std::string>;

TEST(HtmlText, IsEscapedUnlessItIsHtml)
{
    EXPECT_EQ(Html("a<b>&\"c\"").str(), "a&lt;b&gt;&amp;&quot;c&quot;");
    EXPECT_EQ(html("<i title=\"{}\">{}</i>", "\"{}\"", html("<b>{}</b>", "&")).str(),
              "<i title=\"&quot;{}&quot;\"><b>&amp;</b></i>");
    EXPECT_EQ(html("{} of {}", std::size_t{2}, std::string("{}")).str(), "2 of {}");
    EXPECT_TRUE(Html().empty());
}

TEST(NameParts, LeaveTheOperation)
{
    for (const auto& [name, stem, operation] :
         std::vector<std::array<std::string_view, 3>>{{"vhAddScalar_v1", "AddScalar", "Add"},
                                                      {"vhMixerColor16_v1", "MixerColor16", "Mixer"},
                                                      {"vhBoolean2Integer_v1", "Boolean2Integer", "Boolean"},
                                                      {"vhColor2Scalars_v1", "Color2Scalars", "Color"},
                                                      {"vhVectorNorm_v1", "VectorNorm", "VectorNorm"},
                                                      {"vhNot_v1", "Not", "Not"}}) {
        EXPECT_EQ(declare::partsOf(name).stem, stem);
        EXPECT_EQ(declare::partsOf(name).operation, operation);
    }
}

TEST_F(Pages, CatalogTakesByNameBeforeUnitAndLeavesTheUnknown)
{
    EXPECT_EQ(catalog.groupOf(*catalog.find("vhSetOpacity_v1")).name, "layers");
    EXPECT_EQ(catalog.groupOf(shader).name, "arithmetic");
    EXPECT_EQ(names(catalog.strays()), List{"vhSomethingNew_v1"});
    EXPECT_EQ(catalog.find("vhSomethingNew_v1"), nullptr);
    for (const declare::Group& group : catalog.groups())
        EXPECT_FALSE(group.shaders.empty()) << group.name;
}

TEST_F(Pages, CatalogKnowsRelatives)
{
    EXPECT_EQ(names(catalog.versions(shader)), List{"vhAddColor_v1"});
    EXPECT_EQ(names(catalog.siblings(shader)), List{"vhAddScalar_v1"});
    EXPECT_EQ(names(catalog.siblings(*catalog.find("vhMixerColor4_v1"))), List{"vhMixerScalar16_v1"});
    EXPECT_EQ(catalog.neighbour(*catalog.shaders().front(), -1), nullptr);
    EXPECT_EQ(catalog.neighbour(*catalog.shaders().back(), +1), nullptr);
    EXPECT_EQ(catalog.neighbour(shader, +1), catalog.find("vhAddColor_v1"));
}

TEST(Catalog, KnowsBothWaysWhatGoesTogether)
{
    const std::vector<VHL::Description> shaders = declare::shaders();
    const Catalog catalog(shaders);
    const auto companions = [&](std::string_view name) {
        return names(catalog.companions(*catalog.find(name)));
    };
    EXPECT_EQ(companions("vhExpandColor_v2"), List{"vhCompressColor_v2"});
    EXPECT_EQ(companions("vhCompressColor_v2"), List{"vhExpandColor_v2"});
    EXPECT_EQ(companions("vhSwitchMatte_v1"), (List{"vhSwitchColor_v4", "vhIsObject_v1"}));
    EXPECT_EQ(companions("vhAddColor_v2"), List());
}

TEST(Catalog, TakesEveryShaderOfTheLibraryAndShowsOneOfEachGroup)
{
    const std::vector<VHL::Description> shaders = declare::shaders();
    const Catalog catalog(shaders);
    EXPECT_EQ(names(catalog.strays()), List());
    EXPECT_EQ(catalog.shaders().size(), shaders.size());
    for (const declare::Group& group : catalog.groups()) {
        const VHL::Description* const cover = catalog.find(group.cover);
        ASSERT_NE(cover, nullptr) << group.name;
        EXPECT_EQ(&catalog.groupOf(*cover), &group) << group.name;
    }
}

TEST_F(Pages, LineLinksOthersAndMarksOwnNames)
{
    EXPECT_EQ(line("As vhAddScalar_v1."),
              "As <a href=\"vhAddScalar_v1.html\"><code>vh<wbr>Add<wbr>Scalar<wbr>_v1</code></a>.");
    EXPECT_EQ(line("vhAddColor_v2, vhAddColor_v3"), "<code>vhAddColor_v2</code>, vhAddColor_v3");
    EXPECT_EQ(line("input1 < weight"), "<code>input1</code> &lt; weight");
    EXPECT_EQ(declare::line(catalog, subject, "Then weight.", declare::Names::all).str(),
              "Then <code>weight</code>.");
    EXPECT_EQ(line("`a<b` and `rest"), "<code>a&lt;b</code> and <code>rest</code>");
    EXPECT_EQ(line(""), "");
}

TEST_F(Pages, BlocksAreParagraphsListsTablesAndCode)
{
    EXPECT_EQ(blocks("One\ntwo.\n\nThree."), "<p>One\ntwo.</p>\n<p>Three.</p>\n");
    EXPECT_EQ(blocks("- a\n  more\n- b"), "<ul>\n<li>a\n  more</li>\n<li>b</li>\n</ul>\n");
    EXPECT_EQ(blocks("| x | y |\n|---|---|\n| `a\\|b` | < |\n\nEnd."),
              "<table class=\"notes\">\n<thead><tr><th scope=\"col\">x</th><th "
              "scope=\"col\">y</th></tr></thead>\n<tbody>\n"
              "<tr><td><code>a|b</code></td><td>&lt;</td></tr>\n</tbody>\n</table>\n<p>End.</p>\n");
    EXPECT_EQ(blocks("```\nvhAddScalar_v1\n\n<\n```\n\nEnd."),
              "<pre tabindex=\"0\"><code>vhAddScalar_v1\n\n&lt;</code></pre>\n<p>End.</p>\n");
}

TEST_F(Pages, SceneTellsWordsStringsAndCommentsApart)
{
    EXPECT_EQ(scene("# \"no\" <\nshader \"a\" -0.5 1e3"),
              "<span class=\"c\"># &quot;no&quot; &lt;</span>\n<span class=\"k\">shader</span> "
              "<span class=\"s\">\"a\"</span> -0.5 1e3");
    EXPECT_EQ(scene("\"vhAddScalar_v1\""),
              "<span class=\"s\">\"<a href=\"vhAddScalar_v1.html\">vhAddScalar_v1</a>\"</span>");
    EXPECT_EQ(scene("\"vhAddColor_v2\""), "<span class=\"s\">\"vhAddColor_v2\"</span>");
    EXPECT_EQ(scene("\"open <"), "<span class=\"s\">\"open &lt;\"</span>");
}

TEST(Caption, IsTheFirstCommentWithoutTheLicence)
{
    EXPECT_EQ(declare::captionOf("# SPDX-License-Identifier: X\n# Two\n#\n# discs.\n\n# No.\n"),
              "Two discs.");
    EXPECT_EQ(declare::captionOf("shader \"a\""), "");
    EXPECT_EQ(declare::captionOf("# SPDX"), "");
    EXPECT_EQ(declare::captionOf(""), "");
}

TEST_F(Pages, ShowPicturesAndScenesThatThereAre)
{
    EXPECT_EQ(page().find("pictures/"), std::string::npos);
    EXPECT_EQ(page().find("id=\"example\""), std::string::npos);
    const std::string full = page(
        {{"vhAddColor_v2"},
         {{"vhAddColor_v2", {"# SPDX\n# Both <sums>.\n\nshader \"x\"\n", {"whole <scene>", {"a/b.png"}}}}}});
    EXPECT_NE(full.find("src=\"pictures/vhAddColor_v2.png\""), std::string::npos);
    EXPECT_NE(full.find("<figcaption>Both &lt;sums&gt;.</figcaption>"), std::string::npos);
    EXPECT_NE(full.find("href=\"#example\""), std::string::npos);
    EXPECT_NE(full.find("<code id=\"whole\"><span class=\"k\">whole</span> &lt;"), std::string::npos);
    EXPECT_NE(full.find("<a href=\"scenes/b.png\" download>b.png</a>"), std::string::npos);
}

TEST_F(Pages, SayWhatIsSaidOfAShader)
{
    VHL::Description told = shader;
    told.about.order = "First input1.";
    told.about.edges = "0 < NaN.";
    const std::array alone = {told};
    const Catalog one(alone);
    const std::string text = declare::shaderPage(one, {}, *one.shaders().front());
    for (const char* const part :
         {"<p>First <code>input1</code>.</p>", "<p>0 &lt; NaN.</p>", "<p>None.</p>", "version 7",
          "<code>input1</code> &lt; 2 &amp; weight.", "Colour &lt;b&gt; &amp; &quot;c&quot;.",
          "content=\"input1 &lt; 2 &amp; weight.\""})
        EXPECT_NE(text.find(part), std::string::npos) << part;
    EXPECT_EQ(page().find("id=\"evaluation\""), std::string::npos);
    EXPECT_EQ(page().find("id=\"notes\""), std::string::npos);
}

static const char* const twoRecipes = R"(# Of the file.

# ---- soft things ----
# What is
# soft.

# Half < of vhAddScalar_v1: input1.
# Formula: a; b < c
# Network: one sum.
# Edges: None.
declare phenomenon
    scalar "vhrHalfScalar_v3" (
        scalar "input1" default 0.5             # (0, 1] what is halved
    )
    shader "sum" "vhAddScalar_v1" ( "input1" = interface "input1" )
    root = "sum"
    version 3
    apply texture
end declare

# A quarter.
# Formula: a
# Source: Somebody
# Network: twice vhrHalfScalar_v3.
# Edges: None.
declare phenomenon
    color "vhrQuarterColor_v1" (
        array string "names",                   # who
        boolean "on" default off                # on: more
    )
    shader "a" "vhrHalfScalar_v3" ()
    shader "b" "vhrHalfScalar_v3" ( "input1" = "a" )
    root = "b"
    version 1
    apply texture, material
end declare
)";

class RecipePages : public testing::Test {
protected:
    const std::vector<declare::RecipeGroup> groups = declare::recipes(twoRecipes);
    const Catalog catalog{sample, groups};
    const declare::Recipe &half = groups.at(0).recipes.at(0), &quarter = groups.at(0).recipes.at(1);

    std::string page(const declare::Recipe& recipe) const
    {
        return declare::recipePage(catalog, {}, groups.front(), recipe);
    }
};

TEST_F(RecipePages, CatalogKnowsWhoUsesWhat)
{
    EXPECT_TRUE(catalog.knows("vhrHalfScalar_v3"));
    EXPECT_TRUE(catalog.knows("vhAddScalar_v1"));
    EXPECT_FALSE(catalog.knows("vhrThird_v1"));
    EXPECT_EQ(catalog.users("vhAddScalar_v1"), declare::Recipes{&half});
    EXPECT_EQ(catalog.users("vhrHalfScalar_v3"), declare::Recipes{&quarter});
    EXPECT_EQ(catalog.users("vhAddColor_v2"), declare::Recipes());
    EXPECT_EQ(catalog.neighbour(half, -1), nullptr);
    EXPECT_EQ(catalog.neighbour(half, +1), &quarter);
    EXPECT_EQ(catalog.neighbour(quarter, +1), nullptr);
}

TEST_F(RecipePages, LinkWhatTheyAreMadeOfAndWhoUsesThem)
{
    for (const char* const part :
         {"Half &lt; of <a href=\"vhAddScalar_v1.html\">", ">: <code>input1</code>.",
          "a\nb &lt; c</code></pre>",
          "<h3>Made of</h3>\n<ul class=\"names\">\n<li><a href=\"vhAddScalar_v1.html\">",
          "<h3>Used by recipes</h3>\n<ul class=\"names\">\n<li><a href=\"vhrQuarterColor_v1.html\">",
          "\"<a href=\"vhAddScalar_v1.html\">vhAddScalar_v1</a>\"", "<span>recipes.mi</span>",
          "<a href=\"recipes.html#soft-things\">Soft things</a>", "version 3", "(0, 1]", "What is halved.",
          "rel=\"next\" href=\"vhrQuarterColor_v1.html\""})
        EXPECT_NE(page(half).find(part), std::string::npos) << part;
    EXPECT_EQ(page(half).find("Source:"), std::string::npos);
    EXPECT_NE(page(quarter).find("<p>Source: Somebody.</p>"), std::string::npos);
    EXPECT_NE(page(quarter).find("array of <span class=\"type string\">string</span>"), std::string::npos);

    const std::string shader = declare::shaderPage(catalog, {}, *catalog.find("vhAddScalar_v1"));
    EXPECT_NE(
        shader.find("<h3>Used by recipes</h3>\n<ul class=\"names\">\n<li><a href=\"vhrHalfScalar_v3.html\">"),
        std::string::npos);
    EXPECT_EQ(declare::shaderPage(catalog, {}, *catalog.find("vhAddColor_v2")).find("Used by"),
              std::string::npos);
}

TEST_F(RecipePages, AreListedByGroupAndFound)
{
    const std::string all = declare::recipesPage(catalog, {});
    EXPECT_NE(all.find("<h2 id=\"soft-things\">Soft things</h2>\n<p>What is soft.</p>"), std::string::npos);
    EXPECT_NE(all.find("<h3><a href=\"vhrQuarterColor_v1.html\">"), std::string::npos);
    EXPECT_NE(declare::startPage(catalog, {}).find("href=\"recipes.html#soft-things\""), std::string::npos);
    const std::string index = declare::searchIndex(catalog);
    EXPECT_NE(index.find(R"(const recipes = [
["vhrHalfScalar_v3", "Soft things", "scalar", "Half < of vhAddScalar_v1: input1.", "input1"],
["vhrQuarterColor_v1", "Soft things", "color", "A quarter.", "names on"],
];)"),
              std::string::npos)
        << index;
}

TEST_F(Pages, SayNothingOfRecipesWhereThereAreNone)
{
    EXPECT_EQ(declare::startPage(catalog, {}).find("recipes.html"), std::string::npos);
}

TEST(SearchIndex, IsAScriptWhateverTheTextsAre)
{
    const std::array one = {made("vhAddScalar_v1", "add", "A \"b\" \\ </script>.")};
    EXPECT_NE(
        declare::searchIndex(Catalog(one))
            .find(R"(["vhAddScalar_v1", "Arithmetic", "color", "A \"b\" \\ </script>.", "input1 weight"],)"),
        std::string::npos);
}
