// SPDX-License-Identifier: BSD-3-Clause
// Shadow rays of light shaders.
#include "tests/host/render/lit.h"

#include <gtest/gtest.h>

namespace {

using namespace test;

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

} // namespace
