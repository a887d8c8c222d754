// SPDX-License-Identifier: BSD-3-Clause
// What a material shader is told about the place that was hit, and what is hit at all.
#include "tests/harness/stage.h"
#include "tests/host/render/scene.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>

namespace {

using host::operator+;
using test::Scene;

void expectNear(const miVector& v, double x, double y, double z, double tolerance = 1e-5)
{
    EXPECT_NEAR(v.x, x, tolerance);
    EXPECT_NEAR(v.y, y, tolerance);
    EXPECT_NEAR(v.z, z, tolerance);
}

/// Renders one pixel and returns the state of the material that the ray along -z meets.
struct Looking : Scene {
    miState seen{};
    int calls = 0;
    std::vector<miVector> textures;

    host::Material& watcher(std::size_t spaces = 0)
    {
        return material([this, spaces](miColor& result, miState& state) {
            seen = state;
            ++calls;
            if (state.tex_list)
                textures.assign(state.tex_list, state.tex_list + spaces);
            result = {1, 1, 1, 1};
            return miTRUE;
        });
    }
};

TEST(Hit, AllFieldsOfAPrimaryHit)
{
    Looking scene;
    auto& square = scene.square(1.0f);
    square.label = 77;
    auto& material = scene.watcher();
    auto& instance = scene.place(square, {0.25f, -0.25f, -5.0f});
    instance.materials = {material.tag};
    const host::Polygon* const polygon = square.polygons.data();
    scene.look();
    EXPECT_EQ(scene.calls, 1);
    const miState& s = scene.seen;
    EXPECT_EQ(s.version, MI_STATE_VERSION);
    EXPECT_EQ(s.type, miRAY_EYE);
    EXPECT_EQ(s.parent, nullptr);
    EXPECT_EQ(s.camera, &scene.camera.record);
    EXPECT_EQ(s.options, &scene.options.record);
    EXPECT_FLOAT_EQ(s.raster_x, 0.5f);
    EXPECT_FLOAT_EQ(s.raster_y, 0.5f);
    expectNear(s.org, 0, 0, 0);
    expectNear(s.dir, 0, 0, -1);
    expectNear(s.point, 0, 0, -5);
    expectNear(s.normal, 0, 0, 1);
    expectNear(s.normal_geom, 0, 0, 1);
    EXPECT_NEAR(s.dist, 5.0, 1e-5);
    EXPECT_NEAR(s.dot_nd, -1.0, 1e-6);
    EXPECT_FALSE(s.inv_normal);
    EXPECT_EQ(s.label, 77u);
    EXPECT_EQ(s.material, material.tag);
    EXPECT_EQ(s.pri, polygon);
    EXPECT_EQ(s.tex_list, nullptr);
    expectNear(s.motion, 0, 0, 0);
    EXPECT_EQ(s.reflection_level, 0);
    EXPECT_EQ(s.refraction_level, 0);
    EXPECT_EQ(s.user, nullptr);
    EXPECT_NEAR(s.bary[0] + s.bary[1] + s.bary[2], 1.0, 1e-6);
    EXPECT_NE(s.instance, instance.tag);
    EXPECT_NE(s.camera_inst, scene.cameraInstance.tag);
    EXPECT_FALSE(scene.session.database.find(s.instance)) << "the leaf outlived the rendering";
}

TEST(Hit, TheLeafKnowsItsSceneInstanceAndItsObject)
{
    Scene scene;
    auto& square = scene.square(1.0f);
    auto& inner = scene.session.database.make<host::Group>();
    auto& low = scene.place(square, {0, 0, -2}, &inner);
    scene.place(inner, {0, 0, -1});
    miInstance leaf{};
    low.materials = {scene
                         .material([&](miColor&, miState& state) {
                             leaf = scene.session.database.findAs<host::Instance>(state.instance)->record;
                             return miTRUE;
                         })
                         .tag};
    scene.look();
    EXPECT_EQ(leaf.parent, low.tag);
    EXPECT_EQ(leaf.item, square.tag);
    EXPECT_FLOAT_EQ(leaf.tf.local_to_global[14], -3.0f);
    EXPECT_FLOAT_EQ(leaf.tf.global_to_local[14], 3.0f);
}

TEST(Hit, BehindASurfaceBothNormalsAreTurned)
{
    Looking scene;
    auto& instance = scene.place(scene.square(1.0f));
    test::setMatrix(instance, {-1, 0, 0, 0, 0, 1, 0, 0, 0, 0, -1, 0, 0, 0, -2, 1}); // half a turn about y
    instance.materials = {scene.watcher().tag};
    scene.look();
    EXPECT_TRUE(scene.seen.inv_normal);
    expectNear(scene.seen.normal, 0, 0, 1);
    expectNear(scene.seen.normal_geom, 0, 0, 1);
    EXPECT_LE(scene.seen.dot_nd, 0.0f);
}

TEST(Hit, NormalsAreInterpolatedAndGoWithTheTransposedInverse)
{
    Looking scene;
    auto& triangle = scene.object({{-1, -1, 0}, {1, -1, 0}, {0, 1, 0}}, {{0, 1, 2}});
    // Two to the left and right, one upwards.
    const miVector normals[] = {{-0.6f, 0, 0.8f}, {0.6f, 0, 0.8f}, {0, 0.6f, 0.8f}};
    for (std::uint32_t i = 0; i < 3; ++i) {
        triangle.vertices[i].normal = std::uint32_t(triangle.vectors.size());
        triangle.vectors.push_back(normals[i]);
    }
    auto& instance = scene.place(triangle);
    test::setMatrix(instance, {1, 0, 0, 0, 0, 2, 0, 0, 0, 0, 3, 0, 0, 0, -4, 1});
    instance.materials = {scene.watcher().tag};
    scene.look();
    // The ray meets (0, 0, 0) of the object: weights 1/4, 1/4, 1/2, sum (0, 0.3, 0.8), whose unit vector is
    // then divided by the scale of each axis.
    const double y = 0.3 / 2.0, z = 0.8 / 3.0, norm = std::hypot(y, z);
    expectNear(scene.seen.normal, 0, y / norm, z / norm);
    expectNear(scene.seen.normal_geom, 0, 0, 1);
    EXPECT_NEAR(scene.seen.bary[0], 0.25, 1e-5);
    EXPECT_NEAR(scene.seen.bary[1], 0.25, 1e-5);
    EXPECT_NEAR(scene.seen.bary[2], 0.5, 1e-5);
}

TEST(Hit, AVertexWithoutANormalMakesTheSurfaceFaceted)
{
    Looking scene;
    auto& triangle = scene.object({{-1, -1, 0}, {1, -1, 0}, {0, 1, 0}, {0.6f, 0, 0.8f}}, {{0, 1, 2}});
    triangle.vertices[0].normal = triangle.vertices[1].normal = 3;
    scene.place(triangle, {0, 0, -2}).materials = {scene.watcher().tag};
    scene.look();
    expectNear(scene.seen.normal, 0, 0, 1);
}

TEST(Hit, TextureSpacesAndMotionAreInterpolated)
{
    Looking scene;
    auto& triangle = scene.object({{-1, -1, 0}, {1, -1, 0}, {0, 1, 0}}, {{0, 1, 2}});
    for (std::uint32_t i = 0; i < 3; ++i) {
        host::Vertex& v = triangle.vertices[i];
        v.firstTexture = std::uint32_t(triangle.textureIndices.size());
        v.textureCount = 2;
        v.firstMotion = std::uint32_t(triangle.motionIndices.size());
        v.motionCount = 1;
        const float f = float(i);
        for (const miVector& vector : {miVector{f, 0, 1}, miVector{0, f * f, -f}}) {
            triangle.textureIndices.push_back(std::uint32_t(triangle.vectors.size()));
            triangle.vectors.push_back(vector);
        }
        triangle.motionIndices.push_back(std::uint32_t(triangle.vectors.size()));
        triangle.vectors.push_back({f, 1, 0});
    }
    auto& instance = scene.place(triangle);
    test::setMatrix(instance, {1, 0, 0, 0, 0, 2, 0, 0, 0, 0, 1, 0, 0, 0, -2, 1});
    instance.materials = {scene.watcher(2).tag};
    scene.look();
    // Weights 1/4, 1/4, 1/2 of vertices 0, 1, 2.
    ASSERT_EQ(scene.textures.size(), 2u);
    expectNear(scene.textures[0], 1.25, 0, 1);
    expectNear(scene.textures[1], 0, 2.25, -1.25);
    expectNear(scene.seen.tex, 1.25, 0, 1);    // the first space
    expectNear(scene.seen.motion, 1.25, 2, 0); // a direction, taken to internal space
}

namespace {

/// Adds a vector to an object's list and returns its index.
std::uint32_t added(host::Object& object, const miVector& vector)
{
    object.vectors.push_back(vector);
    return std::uint32_t(object.vectors.size() - 1);
}

/// A triangle whose bottom corners have the weight 1/4 and whose top has 1/2 where the ray along -z meets it.
/// Each corner has two texture spaces, the second with the bump basis (i, 1, 0), (0, i, -1), and the
/// derivatives (i, 0, 1), (0, 1, i), (i², 0, 0), (0, i², 0), (0, 0, i²), i from 0 to 2.
host::Object& derivedTriangle(Scene& scene)
{
    host::Object& made = scene.object({{-1, -1, 0}, {1, -1, 0}, {0, 1, 0}}, {{0, 1, 2}});
    for (std::uint32_t i = 0; i < 3; ++i) {
        const float f = float(i), ff = f * f;
        made.vertices[i].firstTexture = 2 * i;
        made.vertices[i].textureCount = 2;
        made.textureIndices.insert(made.textureIndices.end(), 2, added(made, {f, 0, 0}));
        made.bumpBases.push_back({});
        made.bumpBases.push_back({added(made, {f, 1, 0}), added(made, {0, f, -1})});
        made.derivatives.push_back({added(made, {f, 0, 1}), added(made, {0, 1, f}), added(made, {ff, 0, 0}),
                                    added(made, {0, ff, 0}), added(made, {0, 0, ff})});
    }
    return made;
}

/// Copies of what the state's pointers lead to. Null pointers give empty lists.
struct SurfaceLists {
    std::vector<miVector> bumpX, bumpY, derivatives;

    SurfaceLists() = default;
    SurfaceLists(const miState& state, std::size_t spaces)
    {
        const auto copy = [](const miVector* list, std::size_t count) {
            return list ? std::vector<miVector>(list, list + count) : std::vector<miVector>();
        };
        bumpX = copy(state.bump_x_list, spaces);
        bumpY = copy(state.bump_y_list, spaces);
        derivatives = copy(state.derivs, 5);
    }
};

void expectSame(const SurfaceLists& a, const SurfaceLists& b)
{
    for (const auto list : {&SurfaceLists::bumpX, &SurfaceLists::bumpY, &SurfaceLists::derivatives}) {
        ASSERT_EQ((a.*list).size(), (b.*list).size());
        for (std::size_t i = 0; i < (a.*list).size(); ++i)
            expectNear((a.*list)[i], (b.*list)[i].x, (b.*list)[i].y, (b.*list)[i].z, 0);
    }
}

/// A material that notes the lists, and then goes on.
host::Material& listing(Scene& scene, SurfaceLists& lists, std::function<void(miState&)> goOn = {})
{
    return scene.material([&lists, goOn](miColor& result, miState& state) {
        lists = SurfaceLists(state, 2);
        if (goOn)
            goOn(state);
        result = {1, 1, 1, 1};
        return miTRUE;
    });
}

} // namespace

TEST(Hit, BumpBasesAreInterpolatedInObjectSpace)
{
    Scene scene;
    SurfaceLists lists;
    auto& instance = scene.place(derivedTriangle(scene));
    test::setMatrix(instance, {0, 3, 0, 0, -2, 0, 0, 0, 0, 0, 1, 0, 0, 0, -2, 1}); // turned and scaled
    instance.materials = {listing(scene, lists).tag};
    scene.look();
    // i is 5/4 in the mean.
    ASSERT_EQ(lists.bumpX.size(), 2u);
    expectNear(lists.bumpX[0], 0, 0, 0, 0); // the first space has none
    expectNear(lists.bumpY[0], 0, 0, 0, 0);
    expectNear(lists.bumpX[1], 1.25, 1, 0);
    expectNear(lists.bumpY[1], 0, 1.25, -1);
}

TEST(Hit, DerivativesAreInterpolatedAndTakenToInternalSpaceAsVectors)
{
    Scene scene;
    SurfaceLists lists;
    // Turned by a quarter about z and scaled by 3, 2 and 5; with the back to the eye, which turns normals,
    // and nothing else.
    auto& instance = scene.place(derivedTriangle(scene));
    test::setMatrix(instance, {0, 3, 0, 0, 2, 0, 0, 0, 0, 0, -5, 0, 0, 0, -2, 1});
    miState seen{};
    instance.materials = {listing(scene, lists, [&](miState& state) { seen = state; }).tag};
    scene.look();
    EXPECT_TRUE(seen.inv_normal);
    ASSERT_EQ(lists.derivatives.size(), 5u);
    // In the mean i is 5/4 and i² is 9/4; (x, y, z) becomes (2 y, 3 x, -5 z).
    expectNear(lists.derivatives[0], 0, 3.75, -5);
    expectNear(lists.derivatives[1], 2, 0, -6.25);
    expectNear(lists.derivatives[2], 0, 6.75, 0);
    expectNear(lists.derivatives[3], 4.5, 0, 0);
    expectNear(lists.derivatives[4], 0, 0, -11.25);
}

TEST(Hit, DerivativesTurnWithWhatMoves)
{
    // At t the axis x is (1 - t, t, 0), y (-t, 1 - t, 0).
    Scene scene;
    scene.options.record.motion = 1;
    scene.options.record.shutter = 1;
    auto& instance = scene.place(derivedTriangle(scene));
    test::setMatrix(instance, {1, 0, 0, 0, 0, 1, 0, 0, 0, 0, 1, 0, 0, 0, -2, 1});
    test::setMotion(instance, {0, 1, 0, 0, -1, 0, 0, 0, 0, 0, 1, 0, 0, 0, -2, 1});
    int seen = 0;
    instance.materials = {scene
                              .material([&](miColor&, miState& state) {
                                  const double t = state.time, i = state.bary[1] + 2.0 * state.bary[2];
                                  EXPECT_TRUE(state.derivs);
                                  if (state.derivs) {
                                      expectNear(state.derivs[0], i * (1 - t), i * t, 1);
                                      expectNear(state.derivs[1], -t, 1 - t, i);
                                  }
                                  ++seen;
                                  return miTRUE;
                              })
                              .tag};
    scene.options.record.min_samples = scene.options.record.max_samples = 2;
    scene.render();
    EXPECT_GT(seen, 16);
}

TEST(Hit, OnlyWhatAllThreeVerticesHaveIsInterpolated)
{
    Scene scene;
    SurfaceLists lists;
    host::Object& triangle = derivedTriangle(scene);
    scene.place(triangle, {0, 0, -2}).materials = {listing(scene, lists).tag};
    const auto look = [&] {
        lists = SurfaceLists();
        scene.look();
        return lists;
    };
    // One vertex has the first order only.
    std::fill_n(triangle.derivatives[1].begin() + 2, 3, host::Vertex::none);
    EXPECT_EQ(look().derivatives.size(), 5u);
    expectNear(lists.derivatives[0], 1.25, 0, 1);
    for (int i = 2; i < 5; ++i)
        expectNear(lists.derivatives[std::size_t(i)], 0, 0, 0, 0);
    // The last has none.
    triangle.derivatives.pop_back();
    EXPECT_TRUE(look().derivatives.empty());
    EXPECT_EQ(lists.bumpX.size(), 2u);
    // Nor a basis.
    triangle.bumpBases.resize(5);
    EXPECT_TRUE(look().bumpX.empty());
    EXPECT_TRUE(lists.bumpY.empty());
}

TEST(Hit, WithoutBumpBasesAndDerivativesTheirPointersAreNull)
{
    Looking scene;
    host::Object& triangle = derivedTriangle(scene);
    triangle.bumpBases.clear();
    triangle.derivatives.clear();
    scene.place(triangle, {0, 0, -2}).materials = {scene.watcher(2).tag};
    scene.look();
    EXPECT_EQ(scene.textures.size(), 2u);
    EXPECT_EQ(scene.seen.bump_x_list, nullptr);
    EXPECT_EQ(scene.seen.bump_y_list, nullptr);
    EXPECT_EQ(scene.seen.derivs, nullptr);
}

TEST(Hit, ListsOutliveWhateverTheShaderAsksFor)
{
    // A mirror that shows a triangle with other vectors and is lit through it; what leaves the scene has
    // none.
    Scene scene;
    SurfaceLists before, reflected, lit, shadowed, outside, after;
    outside.bumpX.resize(1);
    host::Object& mirror = derivedTriangle(scene);
    host::Object& other = derivedTriangle(scene);
    for (miVector& vector : other.vectors)
        vector = vector + miVector{9, 9, 9};
    other.vectors[0] = {-50, -50, 0};
    other.vectors[1] = {50, -50, 0};
    other.vectors[2] = {0, 50, 0};
    const miTag lamp = scene
                           .place(scene.pointLight({0, 0, 9},
                                                   [&](miColor& result, miState& state) {
                                                       lit = SurfaceLists(state, 2);
                                                       return mi_trace_shadow(&result, &state);
                                                   }))
                           .tag;
    host::Material& behind = listing(scene, reflected);
    behind.shadow = {scene
                         .shader([&](miColor&, miState& state) {
                             shadowed = SurfaceLists(state, 2);
                             return miTRUE;
                         })
                         .tag};
    scene.place(other, {0, 0, 5}).materials = {behind.tag};
    scene.camera.environment = {scene
                                    .shader([&](miColor&, miState& state) {
                                        outside = SurfaceLists(state, 2);
                                        return miTRUE;
                                    })
                                    .tag};
    scene.options.record.reflection_depth = scene.options.record.trace_depth = 2;
    scene.place(mirror, {0, 0, -2}).materials = {
        listing(scene, before, [&](miState& state) {
            miColor color;
            miVector back = {0, 0, 1}, away = {0, 1, 0};
            mi_trace_reflection(&color, &state, &back);
            mi_trace_environment(&color, &state, &away);
            int samples = 0;
            while (mi_sample_light(&color, nullptr, nullptr, &state, lamp, &samples)) {
            }
            after = SurfaceLists(state, 2);
        }).tag};
    scene.look();
    EXPECT_EQ(before.derivatives.size(), 5u);
    expectSame(after, before);
    expectSame(lit, before);
    expectSame(shadowed, reflected);
    ASSERT_EQ(reflected.bumpX.size(), 2u);
    expectNear(reflected.bumpX[1], 1.25 + 9, 10, 9, 1e-4);
    expectSame(outside, {});
}

TEST(Hit, MotionIsThatOfTheObjectAndOfItsInstances)
{
    // A square of motion (1, 0, 0) that is turned by a quarter about z and lifted by 5 while the shutter is
    // open.
    Looking scene;
    auto& square = scene.square(1);
    for (host::Vertex& vertex : square.vertices) {
        vertex.firstMotion = 0;
        vertex.motionCount = 1;
    }
    square.motionIndices.push_back(std::uint32_t(square.vectors.size()));
    square.vectors.push_back({1, 0, 0});
    auto& instance = scene.place(square, {0.5f, 0.25f, -2});
    instance.materials = {scene.watcher().tag};
    scene.look();
    expectNear(scene.seen.motion, 1, 0, 0);
    // The ray meets its (-1/2, -1/4), which goes to (1/2, -1/4), turned (1/4, 1/2), lifted by 5.
    test::setMotion(instance, {0, 1, 0, 0, -1, 0, 0, 0, 0, 0, 1, 0, 0, 5, -2, 1});
    scene.look();
    expectNear(scene.seen.motion, 0.25, 5.5, 0);
    instance.record.gen_motion = host::stopsMotion;
    instance.hasMotion = false;
    scene.look();
    expectNear(scene.seen.motion, 0, 0, 0, 0);
}

TEST(Hit, WhatIsAtRestFarAwayHasNoMotionAtAll)
{
    Looking scene;
    auto& group = scene.session.database.make<host::Group>();
    scene.place(group, {1e7f / 3, -1e6f / 7, 0});
    auto& inner = scene.place(scene.square(1), {-1e7f / 3, 1e6f / 7, -2}, &group);
    test::setMotion(inner, {1, 0, 0, 0, 0, 1, 0, 0, 0, 0, 1, 0, -1e7f / 3, 1e6f / 7, -2, 1}); // as it is
    inner.materials = {scene.watcher().tag};
    scene.look();
    EXPECT_EQ(scene.calls, 1);
    expectNear(scene.seen.motion, 0, 0, 0, 0);
}

TEST(Hit, MaterialsOfPolygonsInstancesAndLabels)
{
    struct Row {
        const char* why;
        bool own, tagged, overrides;
        int label, inherited; ///< of so many inherited materials
        int expected;         ///< -1: the polygon's own; -2: none, the ray goes on
    };
    const Row rows[] = {{"its own", true, false, false, 0, 1, -1},
                        {"its own although one is inherited", true, false, false, 0, 2, -1},
                        {"the inherited one", false, false, false, 0, 1, 0},
                        {"the inherited one beats its own when it overrides", true, false, true, 0, 1, 0},
                        {"a label picks from the list", false, true, false, 1, 3, 1},
                        {"a label beyond the list picks the last", false, true, false, 9, 3, 2},
                        {"without tags the first", false, false, false, 2, 3, 0},
                        {"none", false, false, false, 0, 0, -2}};
    for (const Row& row : rows) {
        SCOPED_TRACE(row.why);
        Scene scene;
        auto& square = scene.square(1.0f);
        square.tagged = row.tagged;
        square.polygons.front().label = row.label;
        if (row.own)
            square.polygons.front().material = scene.plain({-1, 0, 0, 1}).tag;
        auto& instance = scene.place(square, {0, 0, -2});
        instance.record.mtl_override = row.overrides;
        for (int i = 0; i < row.inherited; ++i)
            instance.materials.push_back(scene.plain({float(i), 0, 0, 1}).tag);
        scene.place(scene.square(1.0f), {0, 0, -3}).materials = {scene.plain({-2, 0, 0, 1}).tag};
        EXPECT_EQ(scene.look().r, float(row.expected));
    }
}

TEST(Hit, AMaterialThatIsGoneIsAnErrorThatNamesItsUser)
{
    Scene scene;
    auto& square = scene.square(1.0f);
    square.name = "tile";
    square.polygons.front().material = 99999;
    scene.place(square, {0, 0, -2});
    EXPECT_EQ(test::errorOf([&] { scene.look(); }), "\"tile\" has a material that was deleted or is none");
}

TEST(Hit, FlagsDecideWhatEyeRaysSee)
{
    Scene scene;
    auto& square = scene.square(1.0f);
    auto& instance = scene.place(square, {0, 0, -2});
    instance.materials = {scene.plain({1, 0, 0, 1}).tag};
    EXPECT_EQ(scene.look().r, 1.0f);
    square.visible = false;
    EXPECT_EQ(scene.look().r, 0.0f);
    instance.record.visible = 2;
    EXPECT_EQ(scene.look().r, 1.0f);
    instance.record.off = miTRUE;
    EXPECT_EQ(scene.look().r, 0.0f);
}

TEST(Hit, FacesOfOptionsObjectAndInstance)
{
    // 'f' sees fronts only, 'b' backs only; an instance's face stands in for its object's, and the options'
    // counts besides.
    struct Row {
        char options, object, instance;
        bool front, back;
    };
    const Row rows[] = {
        {'a', 'a', 0, true, true},   {'f', 'a', 0, true, false},  {'b', 'a', 0, false, true},
        {'a', 'f', 0, true, false},  {'a', 'b', 0, false, true},  {'a', 'f', 'b', false, true},
        {'a', 'f', 'a', true, true}, {'f', 'b', 0, false, false}, {'a', 'a', 'f', true, false}};
    for (const Row& row : rows)
        for (const bool front : {true, false})
            for (const bool mirrored : {false, true}) {
                SCOPED_TRACE(std::string() + row.options + row.object + (row.instance ? row.instance : '0'));
                Scene scene;
                scene.options.record.face = row.options;
                auto& square = scene.square(1.0f);
                square.face = row.object;
                auto& instance = scene.place(square);
                instance.record.face = row.instance;
                const double x = mirrored ? -1 : 1, z = front ? 1 : -1;
                test::setMatrix(instance, {x, 0, 0, 0, 0, 1, 0, 0, 0, 0, z, 0, 0, 0, -2, 1});
                instance.materials = {scene.plain({1, 0, 0, 1}).tag};
                EXPECT_EQ(scene.look().r, (front ? row.front : row.back) ? 1.0f : 0.0f);
            }
}

TEST(Hit, ThroughAHoleOnlyWhatIsBehindIsSeen)
{
    Scene scene;
    auto& frame = scene.object({{-1, -1, 0},
                                {1, -1, 0},
                                {1, 1, 0},
                                {-1, 1, 0},
                                {-.3f, -.3f, 0},
                                {-.3f, .3f, 0},
                                {.3f, .3f, 0},
                                {.3f, -.3f, 0}},
                               {{0, 1, 2, 3}});
    frame.loops.push_back({std::uint32_t(frame.loopVertices.size()), 4});
    frame.loopVertices.insert(frame.loopVertices.end(), {4, 5, 6, 7});
    frame.polygons.front().loopCount = 2;
    scene.place(frame, {0, 0, -1}).materials = {scene.plain({1, 0, 0, 1}).tag};
    scene.place(scene.square(5), {0, 0, -2}).materials = {scene.plain({0, 1, 0, 1}).tag};
    const host::Picture picture = scene.render(); // pixel centres at ±1/8, ±3/8 ... of the frame's plane
    for (int y = 0; y < 8; ++y)
        for (int x = 0; x < 8; ++x) {
            const bool hole = x >= 3 && x <= 4 && y >= 3 && y <= 4;
            EXPECT_EQ(picture.color(x, y).g, hole ? 1.0f : 0.0f) << x << ' ' << y;
        }
}

TEST(Hit, AlphaAndBlackWhereNothingIsHit)
{
    Scene scene;
    const miColor nothing = scene.look();
    EXPECT_EQ(nothing.r, 0.0f);
    EXPECT_EQ(nothing.a, 0.0f);
}

TEST(Hit, ShaderListsRunInOrderOnTheSameResult)
{
    Scene scene;
    auto& material = scene.plain({0.5f, 0, 0, 1});
    material.shader.push_back(scene
                                  .shader([](miColor& result, miState&) {
                                      result.r *= 3.0f;
                                      return miFALSE;
                                  })
                                  .tag);
    scene.place(scene.square(1), {0, 0, -1}).materials = {material.tag};
    EXPECT_EQ(scene.look().r, 1.5f);
}

} // namespace
