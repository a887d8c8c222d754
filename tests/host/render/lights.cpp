// SPDX-License-Identifier: BSD-3-Clause
// Light samples, shadows and light lists.
#include "tests/host/render/scene.h"

#include "host/report/message.h"
#include "tests/harness/stage.h"

#include <gtest/gtest.h>

#include <cmath>
#include <set>

namespace {

using namespace test;

struct Delivered {
    miColor color;
    miVector direction;
    float cosine;
};

/// A floor that a camera looks down on from (0, 10, 0), and what its material got from a light.
struct Lit : Scene {
    std::vector<Delivered> delivered;
    int samples = -1;
    int rounds = 1;
    miState light{};
    miVector normal = {0, 1, 0};
    std::function<void(miState&)> prepare;
    std::function<miBoolean(miColor&, miState&)> shade = [](miColor& result, miState&) {
        result = {1, 2, 3, 1};
        return miTRUE;
    };
    miTag lightInstance = 0;
    host::Instance* floor = nullptr;

    Lit()
    {
        test::setMatrix(cameraInstance, {1, 0, 0, 0, 0, 0, -1, 0, 0, 1, 0, 0, 0, 10, 0, 1});
        auto& ground = object({{-9, 0, 9}, {9, 0, 9}, {9, 0, -9}, {-9, 0, -9}}, {{0, 1, 2, 3}});
        floor = &place(ground);
        floor->materials = {material([this](miColor& result, miState& state) {
                                for (int i = 0; i < rounds; ++i) {
                                    samples = 0;
                                    Delivered d{};
                                    if (prepare)
                                        prepare(state);
                                    while (mi_sample_light(&d.color, &d.direction, &d.cosine, &state,
                                                           lightInstance, &samples))
                                        delivered.push_back(d);
                                }
                                result = {0, 0, 0, 1};
                                return miTRUE;
                            }).tag};
    }

    host::Light& add(const miVector& origin)
    {
        auto& made = pointLight(origin, [this](miColor& result, miState& state) {
            light = state;
            return shade(result, state);
        });
        lightInstance = place(made).tag;
        return made;
    }
    void run()
    {
        delivered.clear();
        look();
    }
};

TEST(Light, PointLightInClosedForm)
{
    Lit scene;
    scene.add({3, 4, 0});
    const miState* parent = nullptr;
    miState surface{};
    scene.prepare = [&](miState& state) {
        parent = &state;
        surface = state;
    };
    scene.run();
    ASSERT_EQ(scene.delivered.size(), 1u);
    EXPECT_EQ(scene.samples, 1);
    const Delivered& d = scene.delivered[0];
    EXPECT_EQ(d.color.g, 2.0f);
    EXPECT_NEAR(d.direction.x, 0.6, 1e-6);
    EXPECT_NEAR(d.direction.y, 0.8, 1e-6);
    EXPECT_NEAR(d.cosine, 0.8, 1e-6);
    const miState& s = scene.light;
    EXPECT_EQ(s.type, miRAY_LIGHT);
    EXPECT_EQ(s.parent, parent);
    EXPECT_NEAR(s.org.x, 3, 1e-6);
    EXPECT_NEAR(s.dir.x, -0.6, 1e-6);
    EXPECT_NEAR(s.dir.y, -0.8, 1e-6);
    EXPECT_NEAR(s.dist, 5, 1e-6);
    EXPECT_NEAR(s.dot_nd, 0.8, 1e-6);
    EXPECT_EQ(s.point.y, surface.point.y);
    EXPECT_EQ(s.instance, surface.instance);
    EXPECT_EQ(s.raster_x, surface.raster_x);
    EXPECT_NE(s.light_instance, scene.lightInstance) << "shaders see the leaf";
}

TEST(Light, TheInstancePlacesIt)
{
    Lit scene;
    scene.add({1, 0, 0});
    auto& instance = *scene.session.database.findAs<host::Instance>(scene.lightInstance);
    test::setMatrix(instance, {0, 2, 0, 0, -1, 0, 0, 0, 0, 0, 1, 0, 0, 0, 0, 1}); // x becomes 2 y
    scene.run();
    EXPECT_NEAR(scene.light.org.y, 2.0, 1e-6);
    EXPECT_NEAR(scene.light.dist, 2.0, 1e-6);
}

TEST(Light, DirectionalLightHasNoDistance)
{
    Lit scene;
    host::Light& light = scene.add({0, 0, 0});
    light.record.type = miLIGHT_DIRECTION;
    light.record.direction = {-0.6f, -0.8f, 0};
    light.hasOrigin = false;
    light.hasDirection = true;
    scene.run();
    ASSERT_EQ(scene.delivered.size(), 1u);
    EXPECT_NEAR(scene.delivered[0].direction.x, 0.6, 1e-6);
    EXPECT_NEAR(scene.delivered[0].cosine, 0.8, 1e-6);
    EXPECT_EQ(scene.light.dist, 0.0);
    EXPECT_EQ(scene.light.org.x, 0.0f);
}

TEST(Light, TheConeOfASpotIsItsShadersBusiness)
{
    Lit scene;
    host::Light& light = scene.add({0, 5, 0});
    light.record.type = miLIGHT_SPOT;
    light.record.direction = {1, 0, 0}; // shines past the floor
    light.record.spread = 0.99f;
    light.hasDirection = light.hasSpread = true;
    scene.run();
    EXPECT_EQ(scene.delivered.size(), 1u);
    EXPECT_NEAR(scene.light.dir.y, -1.0, 1e-6);
}

TEST(Light, BehindTheSurfaceTheShaderIsNotCalledButTheSampleCounts)
{
    Lit scene;
    scene.add({0, -3, 0});
    scene.run();
    EXPECT_TRUE(scene.delivered.empty());
    EXPECT_EQ(scene.samples, 1);
    EXPECT_EQ(scene.light.version, 0) << "the light's shader was called";
    // Without a surface, light comes from all sides; the cosine is never negative.
    scene.prepare = [](miState& state) { state.pri = nullptr; };
    scene.run();
    ASSERT_EQ(scene.delivered.size(), 1u);
    EXPECT_EQ(scene.delivered[0].cosine, 0.0f);
}

TEST(Light, WhatTheShaderLeavesIsDelivered)
{
    Lit scene;
    scene.add({0, 3, 0});
    scene.shade = [](miColor& result, miState& state) {
        result = {1, 0, 0, 1};
        state.dir = {1, 0, 0};
        state.dot_nd = 0.25f;
        return miTRUE;
    };
    scene.run();
    ASSERT_EQ(scene.delivered.size(), 1u);
    EXPECT_EQ(scene.delivered[0].direction.x, -1.0f);
    EXPECT_EQ(scene.delivered[0].cosine, 0.25f);
}

TEST(Light, AFalseSampleCountsAndGivesNothing)
{
    Lit scene;
    scene.add({0, 3, 0});
    scene.shade = [](miColor&, miState&) { return miFALSE; };
    scene.run();
    EXPECT_TRUE(scene.delivered.empty());
    EXPECT_EQ(scene.samples, 1);
}

TEST(Light, EveryLoopStartsAfresh)
{
    Lit scene;
    scene.add({0, 3, 0});
    scene.rounds = 3;
    scene.run();
    EXPECT_EQ(scene.delivered.size(), 3u);
    EXPECT_EQ(scene.samples, 1);
}

TEST(Light, ASceneInstanceWithSeveralLeavesGivesAllOfThem)
{
    Lit scene;
    auto& group = scene.session.database.make<host::Group>();
    host::Light& light = scene.add({0, 3, 0});
    scene.root.members.pop_back(); // the light's own place
    const miTag low = scene.place(light, {0, 0, 0}, &group).tag;
    const miTag left = scene.place(group, {-1, 0, 0}).tag;
    scene.place(group, {1, 0, 0});
    scene.lightInstance = low;
    scene.run();
    ASSERT_EQ(scene.delivered.size(), 2u);
    EXPECT_LT(scene.delivered[0].direction.x, 0.0f);
    EXPECT_GT(scene.delivered[1].direction.x, 0.0f);
    EXPECT_EQ(scene.samples, 2);
    scene.lightInstance = left; // an instance of a group stands for the lights below it
    scene.run();
    EXPECT_EQ(scene.delivered.size(), 1u);
}

TEST(Light, NamedByItselfItGivesNothingAndOneWarning)
{
    Lit scene;
    host::Light& light = scene.add({0, 3, 0});
    light.name = "key";
    scene.lightInstance = light.tag;
    scene.rounds = 3;
    std::vector<std::string> lines;
    host::setMessageSink([&](host::Level, std::string_view line) { lines.emplace_back(line); });
    scene.run();
    host::setMessageSink({});
    EXPECT_TRUE(scene.delivered.empty());
    EXPECT_EQ(scene.samples, 0);
    ASSERT_EQ(lines.size(), 1u);
    EXPECT_NE(lines[0].find("light \"key\" is sampled by itself"), std::string::npos) << lines[0];
    scene.lightInstance = 0;
    scene.run();
    EXPECT_EQ(scene.samples, 0);
}

/// Samples of area lights lie on the shape, one in each stratum of rows and columns.
TEST(Light, AreaLightsAreSampledOverTheirShape)
{
    struct Row {
        miLight_area area;
        std::function<void(miLight&)> set;
        std::function<bool(miVector)> on;
    };
    const auto close = [](double a, double b) { return std::abs(a - b) < 1e-4; };
    const Row rows[] = {
        {miLIGHT_RECTANGLE,
         [](miLight& l) {
             l.primitive.rectangle = {{0.5f, 0, 0}, {0, 0, 0.25f}};
         },
         [&](miVector p) { return close(p.y, 5) && std::abs(p.x) <= 0.5f && std::abs(p.z) <= 0.25f; }},
        {miLIGHT_DISC,
         [](miLight& l) {
             l.primitive.disc = {{0, -2, 0}, 0.5f};
         },
         [&](miVector p) { return close(p.y, 5) && std::hypot(p.x, p.z) <= 0.5f + 1e-4f; }},
        {miLIGHT_SPHERE, [](miLight& l) { l.primitive.sphere = {0.5f}; },
         [&](miVector p) { return close(std::hypot(p.x, p.y - 5, p.z), 0.5); }},
        {miLIGHT_CYLINDER,
         [](miLight& l) {
             l.primitive.cylinder = {{0, 0, 2}, 0.5f};
         },
         [&](miVector p) { return close(std::hypot(p.x, p.y - 5), 0.5) && std::abs(p.z) <= 2; }}};
    for (const Row& row : rows) {
        SCOPED_TRACE(int(row.area));
        Lit scene;
        host::Light& light = scene.add({0, 5, 0});
        light.record.area = row.area;
        light.record.samples_u = 4;
        light.record.samples_v = 3;
        row.set(light.record);
        std::vector<miVector> points;
        scene.shade = [&](miColor& result, miState& state) {
            points.push_back(state.org);
            EXPECT_EQ(int(state.count), int(points.size()) - 1);
            result = {1, 1, 1, 1};
            return points.size() % 2 ? miTRUE : miFALSE;
        };
        scene.run();
        EXPECT_EQ(points.size(), 12u);
        EXPECT_EQ(scene.delivered.size(), 6u);
        EXPECT_EQ(scene.samples, 12);
        std::set<std::pair<int, int>> strata;
        for (const miVector& p : points) {
            EXPECT_TRUE(row.on(p)) << p.x << ' ' << p.y << ' ' << p.z;
            if (row.area == miLIGHT_RECTANGLE)
                strata.insert({int((p.x + 0.5f) * 4), int((p.z + 0.25f) / 0.5f * 3)});
        }
        EXPECT_EQ(strata.size(), row.area == miLIGHT_RECTANGLE ? 12u : 0u);
        // A return value of 2 ends the light without another sample.
        points.clear();
        scene.shade = [&](miColor&, miState& state) {
            points.push_back(state.org);
            return points.size() == 5 ? 2 : 1;
        };
        scene.run();
        EXPECT_EQ(scene.delivered.size(), 4u);
        EXPECT_EQ(scene.samples, 4);
    }
}

TEST(Light, KindsThatAreNotSupportedAreErrorsBeforeRendering)
{
    const std::pair<miLight_area, std::string> kinds[] = {
        {miLIGHT_USER, "light \"lamp\": user area lights are not supported"},
        {miLIGHT_OBJECT, "light \"lamp\": area lights in the shape of an object are not supported"}};
    for (const auto& [area, text] : kinds) {
        Lit scene;
        host::Light& light = scene.add({0, 5, 0});
        light.name = "lamp";
        light.record.area = area;
        EXPECT_EQ(errorOf([&] { scene.run(); }), text);
        EXPECT_EQ(scene.samples, -1);
    }
}

/// A scene with a light above the floor and something between, whose light shader asks for shadows.
struct Shaded : Lit {
    miBoolean passed = -1;
    miColor filtered{};
    std::function<void(miState&)> change;
    host::Instance* blocker = nullptr;
    host::Material* blocking = nullptr;

    Shaded()
    {
        add({0, 4, 0});
        shade = [this](miColor& result, miState& state) {
            if (change)
                change(state);
            filtered = {1, 1, 1, 0.5f};
            passed = mi_trace_shadow(&filtered, &state);
            result = filtered;
            return miTRUE;
        };
        blocking = &plain({1, 1, 1, 1});
        blocker = &addLayer(2);
        blocker->materials = {blocking->tag};
    }
    host::Instance& addLayer(float height)
    {
        auto& layer = object({{-1, 0, 1}, {1, 0, 1}, {1, 0, -1}, {-1, 0, -1}}, {{0, 1, 2, 3}});
        layer.visible = false; // the camera looks through it
        auto& instance = place(layer, {0, height, 0});
        return instance;
    }
    void through(host::Material& m, const miColor& filter, miBoolean answer = miTRUE)
    {
        m.shadow = {shader([filter, answer](miColor& result, miState& state) {
                        EXPECT_EQ(state.type, miRAY_SHADOW);
                        result.r *= filter.r;
                        result.g *= filter.g;
                        result.b *= filter.b;
                        return answer;
                    }).tag};
    }
};

TEST(Shadow, AnOccluderWithoutAShadowShaderBlocks)
{
    Shaded scene;
    scene.run();
    EXPECT_EQ(scene.passed, miFALSE);
    EXPECT_EQ(scene.filtered.r, 0.0f);
    EXPECT_EQ(scene.filtered.a, 0.5f) << "alpha is kept";
}

TEST(Shadow, NothingBetweenAndNothingBeyondTheLight)
{
    Shaded scene;
    test::moveTo(*scene.blocker, {5, 2, 0});
    auto& beyond = scene.addLayer(4.001f);
    beyond.materials = {scene.blocking->tag};
    scene.run();
    EXPECT_EQ(scene.passed, miTRUE);
    EXPECT_EQ(scene.filtered.r, 1.0f);
}

TEST(Shadow, ShadowShadersMultiplyFromTheLightToThePoint)
{
    Shaded scene;
    scene.through(*scene.blocking, {0.5f, 1, 1, 1});
    host::Material& second = scene.plain({1, 1, 1, 1});
    std::vector<float> heights;
    miState occluder{};
    miRay_type parentType = miRAY_NONE;
    second.shadow = {scene
                         .shader([&](miColor& result, miState& state) {
                             heights.push_back(state.point.y);
                             occluder = state;
                             parentType = state.parent->type; // its state ends with the rendering
                             result.g *= 0.25f;
                             return miTRUE;
                         })
                         .tag};
    scene.addLayer(3).materials = {second.tag};
    scene.addLayer(1).materials = {second.tag};
    scene.run();
    EXPECT_EQ(scene.passed, miTRUE);
    EXPECT_FLOAT_EQ(scene.filtered.r, 0.5f);
    EXPECT_FLOAT_EQ(scene.filtered.g, 0.0625f);
    EXPECT_EQ(heights, (std::vector<float>{3, 1}));
    // The light's ray, and the occluder's surface, whose normals are not turned.
    EXPECT_NEAR(occluder.org.y, 4, 1e-6);
    EXPECT_NEAR(occluder.dir.y, -1, 1e-6);
    EXPECT_NEAR(occluder.dist, 4, 1e-6);
    EXPECT_FALSE(occluder.inv_normal);
    EXPECT_EQ(occluder.normal.y, 1.0f);
    EXPECT_EQ(occluder.material, second.tag);
    EXPECT_EQ(parentType, miRAY_LIGHT);
}

TEST(Shadow, ABlackFilterAFalseOneAndAnOpaqueMaterialEndIt)
{
    Shaded black;
    black.through(*black.blocking, {0, 0, 0, 1});
    black.run();
    EXPECT_EQ(black.passed, miFALSE);

    Shaded refusing;
    refusing.through(*refusing.blocking, {0.5f, 0.5f, 0.5f, 1}, miFALSE);
    refusing.run();
    EXPECT_EQ(refusing.passed, miFALSE);
    EXPECT_EQ(refusing.filtered.r, 0.5f);

    Shaded opaque;
    opaque.through(*opaque.blocking, {1, 1, 1, 1});
    opaque.blocking->record.opaque = miTRUE;
    opaque.run();
    EXPECT_EQ(opaque.passed, miFALSE);
    EXPECT_EQ(opaque.filtered.r, 0.0f);
}

TEST(Shadow, APolygonOfSeveralTrianglesFiltersOnce)
{
    // The light's ray runs exactly through the diagonal of the square.
    Shaded scene;
    scene.through(*scene.blocking, {0.5f, 0.5f, 0.5f, 1});
    scene.run();
    EXPECT_EQ(scene.filtered.r, 0.5f);
}

TEST(Shadow, WhoCastsAndWhoReceives)
{
    Shaded off;
    off.options.record.shadow = 0;
    off.run();
    EXPECT_EQ(off.passed, miTRUE);

    Shaded noCaster;
    noCaster.blocker->record.shadow = 4;
    noCaster.run();
    EXPECT_EQ(noCaster.passed, miTRUE);

    Shaded noReceiver;
    noReceiver.floor->record.shadow = 8;
    noReceiver.run();
    EXPECT_EQ(noReceiver.passed, miTRUE);
    EXPECT_EQ(noReceiver.filtered.r, 1.0f);

    for (const char mode : {'l', 's'}) {
        Shaded sorted;
        sorted.options.record.shadow = mode;
        sorted.run();
        EXPECT_EQ(sorted.passed, miFALSE);
    }
}

TEST(Shadow, TheOptionsOfTheMomentCount)
{
    Shaded scene;
    miOptions swapped = scene.options.record;
    swapped.shadow = 0;
    scene.prepare = [&](miState& state) { state.options = &swapped; };
    scene.run();
    EXPECT_EQ(scene.passed, miTRUE);
}

TEST(Shadow, TheSegmentIsAsTheLightHasLeftIt)
{
    Shaded scene;
    scene.change = [](miState& state) { state.org.y = 1.5f; }; // below the occluder
    scene.run();
    EXPECT_EQ(scene.passed, miTRUE);
    scene.change = [](miState& state) { state.type = miRAY_EYE; };
    scene.run();
    EXPECT_EQ(scene.passed, miTRUE) << "only light rays cast shadows";
}

TEST(Shadow, DirectionalLightsReachForEver)
{
    Shaded scene;
    auto& light = *scene.session.database.findAs<host::Light>(
        scene.session.database.findAs<host::Instance>(scene.lightInstance)->record.item);
    light.record.type = miLIGHT_DIRECTION;
    light.record.direction = {0, -1, 0};
    light.hasDirection = true;
    test::moveTo(*scene.blocker, {0, 5000, 0});
    scene.run();
    EXPECT_EQ(scene.passed, miFALSE);
    test::moveTo(*scene.blocker, {5, 5000, 0});
    scene.run();
    EXPECT_EQ(scene.passed, miTRUE);
}

TEST(Shadow, AnInstancesShadowListNamesTheLightsWhoseShadowsItCasts)
{
    Shaded scene;
    auto& other = scene.pointLight({0, 0, 0}, [](miColor&, miState&) { return miTRUE; });
    const miTag otherInstance = scene.place(other).tag;
    scene.blocker->hasShadowLights = true;
    scene.blocker->shadowLights = {otherInstance};
    scene.run();
    EXPECT_EQ(scene.passed, miTRUE);
    scene.blocker->shadowLights = {scene.lightInstance};
    scene.run();
    EXPECT_EQ(scene.passed, miFALSE);
    scene.blocker->record.shadow_excl = miTRUE;
    scene.run();
    EXPECT_EQ(scene.passed, miTRUE);
}

TEST(LightList, InclusiveAndExclusive)
{
    Scene scene;
    const auto light = [&](miVector at, host::Group* in) -> host::Instance& {
        return scene.place(scene.pointLight({0, 0, 0}, [](miColor&, miState&) { return miTRUE; }), at, in);
    };
    auto& group = scene.session.database.make<host::Group>();
    const miTag a = light({0, 0, 0}, nullptr).tag;
    light({1, 0, 0}, &group);
    light({2, 0, 0}, &group);
    const miTag both = scene.place(group).tag;
    const miTag d = light({3, 0, 0}, nullptr).tag;
    std::vector<float> found;
    const auto list = [&](std::vector<miTag> tags, bool exclusive) {
        found.clear();
        scene.place(scene.square(1), {0, 0, -1}).materials = {
            scene
                .material([&, tags, exclusive](miColor&, miState& state) {
                    const std::vector<miTag> mine = tags;
                    int n = int(mine.size());
                    miTag* array = const_cast<miTag*>(mine.data());
                    EXPECT_TRUE(
                        (exclusive ? mi_exclusive_lightlist : mi_inclusive_lightlist)(&n, &array, &state));
                    for (int i = 0; i < n; ++i) {
                        const auto* leaf = scene.session.database.findAs<host::Instance>(array[i]);
                        found.push_back(leaf->record.tf.local_to_global[12]);
                    }
                    EXPECT_EQ(mine, tags) << "the caller's array was changed";
                    return miTRUE;
                })
                .tag};
        scene.look();
        scene.root.members.pop_back();
        return found;
    };
    using List = std::vector<float>;
    EXPECT_EQ(list({d, a}, false), (List{0, 3})); // in the order of the scene
    EXPECT_EQ(list({both, both, a}, false), (List{0, 1, 2}));
    EXPECT_EQ(list({both}, true), (List{0, 3}));
    EXPECT_EQ(list({}, false), List{});
    EXPECT_EQ(list({}, true), (List{0, 1, 2, 3}));
    EXPECT_EQ(list({12345, 0}, false), List{});
}

TEST(LightList, TwoListsOfOneShaderLiveSideBySide)
{
    Scene scene;
    std::vector<miTag> lights;
    for (int i = 0; i < 3; ++i)
        lights.push_back(
            scene.place(scene.pointLight({0, 0, 0}, [](miColor&, miState&) { return miTRUE; })).tag);
    scene.place(scene.square(1), {0, 0, -1}).materials = {scene
                                                              .material([&](miColor&, miState& state) {
                                                                  miTag *one = lights.data(),
                                                                        *rest = lights.data();
                                                                  int n = 1, m = 1;
                                                                  mi_inclusive_lightlist(&n, &one, &state);
                                                                  const miTag before = one[0];
                                                                  mi_exclusive_lightlist(&m, &rest, &state);
                                                                  EXPECT_EQ(n, 1);
                                                                  EXPECT_EQ(m, 2);
                                                                  EXPECT_EQ(one[0], before);
                                                                  EXPECT_NE(rest[0], before);
                                                                  EXPECT_NE(rest[1], before);
                                                                  return miTRUE;
                                                              })
                                                              .tag};
    scene.look();
}

} // namespace
