// SPDX-License-Identifier: BSD-3-Clause
// Light samples: which there are, and what is delivered.
#include "tests/host/render/lit.h"

#include "host/report/message.h"
#include "tests/harness/messages.h"

#include <gtest/gtest.h>

#include <cmath>

namespace {

using namespace test;

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

TEST(Light, WhatIsNoLightGivesNothingAndOneWarning)
{
    Lit scene;
    scene.add({0, 3, 0});
    const miTag lamp = scene.lightInstance;
    scene.cameraInstance.name = "cam-i";
    scene.rounds = 2;
    const Messages messages;
    for (const miTag tag : {scene.cameraInstance.tag, scene.camera.tag, miTag(4711), miNULLTAG}) {
        scene.lightInstance = tag;
        scene.run();
        EXPECT_TRUE(scene.delivered.empty());
        EXPECT_EQ(scene.samples, 0);
    }
    EXPECT_EQ(
        messages.lines(),
        (std::vector<std::string>{"RC   0.1  warn : instance \"cam-i\" is sampled as a light and gives none",
                                  "RC   0.1  warn : camera \"cam\" is sampled as a light and gives none"}));
    // A hidden light is silent.
    scene.session.database.findAs<host::Instance>(lamp)->record.off = miTRUE;
    scene.lightInstance = lamp;
    scene.run();
    EXPECT_EQ(scene.samples, 0);
    EXPECT_EQ(messages.lines().size(), 2u);
}

} // namespace
