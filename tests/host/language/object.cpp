// SPDX-License-Identifier: BSD-3-Clause
#include "tests/host/language/scene.h"

namespace test {

namespace {

using Indices = std::vector<std::uint32_t>;

const std::string square = " 0 0 0  1 0 0  1 1 0  0 1 0  0 0 1\n v 0 v 1 v 2 v 3 v 0\n";

struct Shape {
    explicit Shape(const std::string& geometry, const std::string& flags = "")
        : scene("material \"red\" end material material \"blue\" end material\nobject \"o\" " + flags +
                " group" + square + geometry + " end group end object")
    {
    }
    host::Object& object() { return scene.get<host::Object>("o"); }
    Indices loop(std::size_t i)
    {
        const host::Loop& l = object().loops.at(i);
        return {object().loopVertices.begin() + l.first, object().loopVertices.begin() + l.first + l.count};
    }
    miTag tag(const char* name) { return scene.session.database.lookup(name); }
    Scene scene;
};

std::string refusal(const std::string& geometry, const std::string& flags = "")
{
    return errorOf("object \"o\" " + flags + " group" + square + geometry + " end group end object");
}

host::Object& flags(Scene& scene, const std::string& text)
{
    scene.read("object \"o\" " + text + " end object");
    return scene.get<host::Object>("o");
}

} // namespace

TEST(Object, FlagsStartOffAndAWordAloneMeansOn)
{
    Scene none, words, off;
    const host::Object& a = flags(none, "");
    EXPECT_FALSE(a.visible || a.tagged);
    EXPECT_EQ((std::vector<int>{a.shadow, a.reflection, a.refraction, a.transparency, a.finalgather, a.face}),
              (std::vector<int>{2, 2, 2, 2, 2, 'a'}));
    const host::Object& b = flags(words, "visible trace shadow tagged transparency tag 7 face back");
    EXPECT_TRUE(b.visible && b.tagged);
    EXPECT_EQ((std::vector<int>{b.shadow, b.reflection, b.refraction, b.transparency, b.finalgather, b.face}),
              (std::vector<int>{3, 3, 3, 3, 3, 'b'}));
    EXPECT_EQ(b.label, 7u);
    const host::Object& c = flags(off, "visible on visible off shadow on shadow off trace on trace off");
    EXPECT_FALSE(c.visible);
    EXPECT_EQ((std::vector<int>{c.shadow, c.reflection, c.refraction, c.finalgather}),
              (std::vector<int>{2, 2, 2, 2}));
}

TEST(Object, ModesMayBeNumbers)
{
    Scene scene;
    const host::Object& o = flags(scene, "shadow 1 reflection 0 refraction 3 transparency 1 finalgather 2");
    EXPECT_EQ((std::vector<int>{o.shadow, o.reflection, o.refraction, o.transparency, o.finalgather}),
              (std::vector<int>{1, 0, 3, 1, 2}));
    EXPECT_EQ(errorOf("object shadow 4"), "1:15: a mode is on, off or a number from 0 to 3, found 4");
    EXPECT_EQ(errorOf("object shadow -1"), "1:15: a mode is on, off or a number from 0 to 3, found -1");
}

TEST(Object, OtherFlagsAreAccepted)
{
    Scene scene;
    flags(scene,
          "select on shadowmap caustic 3 globillum off samples 1 2 shading samples 2 max displace .5 ray "
          "offset .1 "
          "box 0 0 0 1 1 1 motion box 0 0 0 1 1 1 transform 1 0 0 0 0 1 0 0 0 0 1 0 0 0 0 1 volume group 1 "
          "approximate fine view length .1");
    EXPECT_EQ(scene.messages.lines().size(), 0u);
}

TEST(Object, VerticesIndexTheOneVectorList)
{
    Shape shape("", "");
    Scene scene("object \"o\" group 0 0 0 1 0 0 2 0 0 3 0 0 v 0 n 3 d 0 1 t 1 t 2 0 1 m 2 m 3 u 0 v 2 end "
                "group end object");
    const host::Object& o = scene.get<host::Object>("o");
    ASSERT_EQ(o.vertices.size(), 2u);
    const host::Vertex& v = o.vertices[0];
    EXPECT_EQ(v.point, 0u);
    EXPECT_EQ(v.normal, 3u);
    EXPECT_EQ(Indices(o.textureIndices.begin() + v.firstTexture,
                      o.textureIndices.begin() + v.firstTexture + v.textureCount),
              (Indices{1, 2}));
    EXPECT_EQ(Indices(o.motionIndices.begin() + v.firstMotion,
                      o.motionIndices.begin() + v.firstMotion + v.motionCount),
              (Indices{2, 3}));
    EXPECT_EQ(o.vertices[1].point, 2u);
    EXPECT_EQ(o.vertices[1].normal, host::Vertex::none);
    EXPECT_EQ(o.vertices[1].textureCount, 0u);
    EXPECT_EQ(shape.object().vertices[4].point, 0u);
}

TEST(Object, BumpBasesBelongToTextureVectors)
{
    Scene scene(
        "object \"o\" group 0 0 0 1 0 0 2 0 0 3 0 0 v 0 t 1 v 1 t 0 t 2 3 1 v 2 t 1 0 2 t 3 end group end "
        "object");
    const host::Object& o = scene.get<host::Object>("o");
    constexpr std::uint32_t none = host::Vertex::none;
    const auto basis = [&](std::size_t vertex, std::uint32_t space) {
        const host::BumpBasis found = o.bumpBasis(o.vertices[vertex], space);
        return Indices{found.x, found.y};
    };
    EXPECT_EQ(basis(0, 0), (Indices{none, none}));
    EXPECT_EQ(basis(1, 0), (Indices{none, none}));
    EXPECT_EQ(basis(1, 1), (Indices{3, 1}));
    EXPECT_EQ(basis(2, 0), (Indices{0, 2}));
    EXPECT_EQ(basis(2, 1), (Indices{none, none}));
    EXPECT_EQ(o.textureIndices, (Indices{1, 0, 2, 1, 3}));
}

TEST(Object, DerivativesHaveTheirPlacesByTheirNumber)
{
    // Two are those of first order, three those of second order, five both.
    Scene scene("object \"o\" group 0 0 0 1 0 0 2 0 0 v 0 v 1 d 1 2 v 2 n 0 d 0 1 2 t 0 v 0 d 0 1 2 1 0 v 1 "
                "end group end "
                "object");
    const host::Object& o = scene.get<host::Object>("o");
    constexpr std::uint32_t none = host::Vertex::none;
    const host::Derivatives expected[] = {{none, none, none, none, none},
                                          {1, 2, none, none, none},
                                          {none, none, 0, 1, 2},
                                          {0, 1, 2, 1, 0},
                                          {none, none, none, none, none}};
    for (std::uint32_t i = 0; i < 5; ++i)
        EXPECT_EQ(o.derivativesOf(i), expected[i]) << i;
}

TEST(Object, WithoutThemThereIsNoRoomForBumpBasesAndDerivatives)
{
    Scene scene("object \"o\" group 0 0 0 v 0 t 0 v 0 t 0 end group end object");
    const host::Object& o = scene.get<host::Object>("o");
    EXPECT_EQ(o.bumpBases.capacity(), 0u);
    EXPECT_EQ(o.derivatives.capacity(), 0u);
    EXPECT_EQ(sizeof(host::Vertex), 24u);
}

TEST(Object, AVertexHasTwoThreeOrFiveDerivatives)
{
    const auto refused = [](const std::string& indices) {
        return errorOf("object \"o\" group 0 0 0\nv 0 v 0\nn 0 d " + indices + " v 0");
    };
    for (const auto& [indices, found] :
         {std::pair("0", "1"), std::pair("0 0 0 0", "4"), std::pair("0 0 0 0 0 0", "6"),
          std::pair("0 0 0 0 0 0 0 0 0 0", "10")})
        EXPECT_EQ(refused(indices), "3:5: vertex 1 needs 2, 3 or 5 derivatives, found " + std::string(found));
    EXPECT_EQ(refused("0 0 0 0 0 0 1"), "3:19: vertex 1 uses vector 1 of 1");
    EXPECT_EQ(refused(""), "3:8: found the keyword \"v\", expected an integer");
    EXPECT_EQ(refused("0 0.5"), "3:9: found 0.5, expected a vertex, a polygon, an integer or \"end\"");
}

TEST(Object, ABumpBasisIsTwoVectors)
{
    EXPECT_EQ(errorOf("object \"o\" group 0 0 0 v 0\nt 0 0 v 0"),
              "2:7: found the keyword \"v\", expected an integer");
    EXPECT_EQ(errorOf("object \"o\" group 0 0 0 v 0\nt 0 0 0 0"),
              "2:9: found 0, expected a vertex, a polygon or \"end\"");
}

TEST(Object, PolygonsHaveMaterialsAndKinds)
{
    Shape s("c 0 1 2  cp \"red\" 0 1 2 3  p \"blue\" 1 2 3  p red 0 2 3");
    const std::vector<host::Polygon>& p = s.object().polygons;
    ASSERT_EQ(p.size(), 4u);
    EXPECT_EQ(p[0].material, miNULLTAG);
    EXPECT_EQ(p[1].material, s.tag("red"));
    EXPECT_EQ(p[2].material, s.tag("blue"));
    EXPECT_EQ(p[3].material, s.tag("red"));
    EXPECT_TRUE(p[0].convex && p[1].convex);
    EXPECT_FALSE(p[2].convex || p[3].convex);
    EXPECT_EQ(s.loop(p[1].firstLoop), (Indices{0, 1, 2, 3}));
    EXPECT_EQ(s.loop(p[3].firstLoop), (Indices{0, 2, 3}));
}

TEST(Object, HolesAreLoopsAfterTheOutline)
{
    Shape s("p 0 1 2 3 hole 3 2 1 hole 4 1 2  c 1 2 3");
    ASSERT_EQ(s.object().polygons.size(), 2u);
    EXPECT_EQ(s.object().polygons[0].loopCount, 3u);
    EXPECT_EQ(s.loop(1), (Indices{3, 2, 1}));
    EXPECT_EQ(s.loop(2), (Indices{4, 1, 2}));
    EXPECT_EQ(s.object().polygons[1].firstLoop, 3u);
    EXPECT_EQ(refusal("c 0 1 2 hole 1 2 3"), "3:9: only polygons that begin with \"p\" may have holes");
    EXPECT_EQ(refusal("p 0 1 2 hole 1 2"), "3:1: polygon 0 needs 3 or more vertices, found 2");
}

TEST(Object, StripsAndFansBecomeTriangles)
{
    Shape s("strip \"red\" 0 1 3 2 4  fan 0 1 2 3");
    ASSERT_EQ(s.object().polygons.size(), 5u);
    EXPECT_EQ(s.loop(0), (Indices{0, 1, 3}));
    EXPECT_EQ(s.loop(1), (Indices{3, 1, 2})) << "every second triangle of a strip is turned";
    EXPECT_EQ(s.loop(2), (Indices{3, 2, 4}));
    EXPECT_EQ(s.loop(3), (Indices{0, 1, 2}));
    EXPECT_EQ(s.loop(4), (Indices{0, 2, 3}));
    EXPECT_EQ(s.object().polygons[2].material, s.tag("red"));
    EXPECT_EQ(s.object().polygons[3].material, miNULLTAG);
    for (std::size_t i = 0; i < 5; ++i) {
        EXPECT_EQ(s.object().polygons[i].firstLoop, i);
        EXPECT_EQ(s.object().polygons[i].loopCount, 1u);
        EXPECT_TRUE(s.object().polygons[i].convex);
    }
}

TEST(Object, TaggedPolygonsBeginWithTheirLabel)
{
    Shape s("c 0 0 1 2  c 9 1 2 3  strip 3 0 1 2 3", "tagged");
    ASSERT_EQ(s.object().polygons.size(), 4u);
    EXPECT_EQ(s.object().polygons[0].label, 0);
    EXPECT_EQ(s.object().polygons[1].label, 9);
    EXPECT_EQ(s.object().polygons[3].label, 3);
    EXPECT_EQ(s.loop(1), (Indices{1, 2, 3}));
    EXPECT_EQ(refusal("c 0 1 2", "tagged"), "3:1: polygon 0 needs 3 or more vertices, found 2");
}

TEST(Object, IndicesAreCheckedWhereTheyStand)
{
    EXPECT_EQ(errorOf("object \"o\" group 0 0 0\nv 0 v 1"), "2:7: vertex 1 uses vector 1 of 1");
    EXPECT_EQ(errorOf("object \"o\" group 0 0 0\nv -1"), "2:3: vertex 0 uses vector -1 of 1");
    EXPECT_EQ(errorOf("object \"o\" group 0 0 0\nv 0 t 0 12 0"), "2:9: vertex 0 uses vector 12 of 1");
    for (const std::string field : {"n", "t", "m", "u", "d", "d 0 0 0 0", "t 0 0"})
        EXPECT_EQ(errorOf("object \"o\" group 0 0 0\nv 0 " + field + "\n12 v 0"),
                  "3:1: vertex 0 uses vector 12 of 1")
            << field;
    EXPECT_EQ(refusal("c 0 1 2\nc 0 5 1"), "4:5: polygon 1 uses vertex 5 of 5");
    EXPECT_EQ(refusal("p 0 1 2 hole 0 1 -3"), "3:18: polygon 0 uses vertex -3 of 5");
    EXPECT_EQ(refusal("strip 0 1 7"), "3:11: polygon 0 uses vertex 7 of 5");
    EXPECT_EQ(errorOf("object \"o\" group v 0"), "1:20: vertex 0 uses vector 0 of 0");
}

TEST(Object, MistakesInAGroupSayWhatWasExpected)
{
    EXPECT_EQ(errorOf("object \"o\" group 1 2 v 0"), "1:22: found the keyword \"v\", expected a number");
    EXPECT_EQ(errorOf("object \"o\" group 0 0 0 v 1.5"), "1:26: found 1.5, expected an integer");
    EXPECT_EQ(refusal("c \"red\" 0 1 2"), "3:1: there is no material \"red\"");
    EXPECT_EQ(errorOf("camera \"red\" end camera object \"o\" group 0 0 0 v 0 c \"red\" 0"),
              "1:52: \"red\" is not the name of a material but of a camera");
    EXPECT_EQ(refusal("c 0 1"), "3:1: polygon 0 needs 3 or more vertices, found 2");
    EXPECT_EQ(errorOf("object \"o\" group 0 0 0 n 0"),
              "1:24: found the keyword \"n\", expected a vertex, a polygon, a number or \"end\"");
}

TEST(Object, OtherGeometryIsAnErrorThatNamesTheObject)
{
    const auto inGroup = [](const std::string& word) { return refusal(word); };
    EXPECT_EQ(inGroup("trilist"), "3:1: object \"o\": triangle lists (\"trilist\") are not supported");
    EXPECT_EQ(inGroup("subdivision"), "3:1: object \"o\": subdivision surfaces are not supported");
    EXPECT_EQ(inGroup("surface"), "3:1: object \"o\": free-form surfaces are not supported");
    EXPECT_EQ(inGroup("curve"), "3:1: object \"o\": free-form surfaces are not supported");
    EXPECT_EQ(inGroup("hair"), "3:1: object \"o\": hair is not supported");
    EXPECT_EQ(errorOf("object \"x\" trilist"),
              "1:12: object \"x\": triangle lists (\"trilist\") are not supported");
    EXPECT_EQ(errorOf("object \"x\" basis"), "1:12: object \"x\": free-form surfaces are not supported");
    EXPECT_EQ(errorOf("object \"x\" file \"y\""),
              "1:12: object \"x\": objects read from files are not supported");
    EXPECT_EQ(errorOf("object ccmesh"),
              "1:8: object \"\": subdivision surfaces (\"ccmesh\") are not supported");
    EXPECT_EQ(
        Shape("c 0 1 2 approximate surface fine .1 approximate fine view length .5").object().polygons.size(),
        1u);
}

TEST(Object, ASecondGroupCountsFromItsOwnBeginning)
{
    Scene scene("object \"o\" group 0 0 0 1 0 0 0 1 0 v 0 v 1 v 2 c 0 1 2 end group\n"
                "group 5 0 0 6 0 0 5 1 0 v 0 d 1 2 t 0 1 2 v 1 v 2 c 2 1 0 end group end object");
    const host::Object& o = scene.get<host::Object>("o");
    EXPECT_EQ(o.vertices[3].point, 3u);
    EXPECT_EQ(o.derivativesOf(3)[0], 4u);
    EXPECT_EQ(o.bumpBasis(o.vertices[3], 0).y, 5u);
    EXPECT_EQ(o.loopVertices, (Indices{0, 1, 2, 5, 4, 3}));
}

TEST(Object, AChangeReplacesTheGeometryAndKeepsTheFlags)
{
    Shape s("v 0 d 0 1 t 0 1 2 c 0 1 2", "visible shadow tag 3");
    s.scene.read("incremental object \"o\" shadow off end object");
    EXPECT_EQ(s.object().polygons.size(), 1u);
    EXPECT_EQ(s.object().derivatives.size(), 6u);
    EXPECT_EQ(s.object().bumpBases.size(), 1u);
    s.scene.read("incremental object \"o\" group 0 0 0 1 0 0 0 1 0 v 0 v 1 v 2 c 2 1 0 end group end object");
    EXPECT_EQ(s.object().vectors.size(), 3u);
    EXPECT_TRUE(s.object().derivatives.empty());
    EXPECT_TRUE(s.object().bumpBases.empty());
    EXPECT_EQ(s.object().loopVertices, (Indices{2, 1, 0}));
    EXPECT_TRUE(s.object().visible);
    EXPECT_EQ(s.object().shadow, 2);
    EXPECT_EQ(s.object().label, 3u);
}

TEST(Object, MayHaveNoName)
{
    Scene scene("object visible end object object end object");
    EXPECT_EQ(scene.session.database.last(), 2u);
    EXPECT_EQ(scene.messages.lines().size(), 0u);
}

} // namespace test
