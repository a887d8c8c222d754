// SPDX-License-Identifier: BSD-3-Clause
// Geometry shaders, before everything else.
#include "tests/host/render/scene.h"

#include "tests/harness/stage.h"

#include <geoshader.h>

#include <gtest/gtest.h>

namespace {

using namespace test;

TEST(Geometry, ItsResultIsTheInstancesItemWhileItIsRendered)
{
    Scene scene;
    miState seen{};
    int calls = 0;
    auto& instance = scene.session.database.make<host::Instance>("made");
    test::moveTo(instance, {0, 0, -3});
    instance.materials = {scene.plain({4, 0, 0, 1}).tag};
    instance.geometry = {scene
                             .geometry([&](miTag& result, miState& state) {
                                 EXPECT_EQ(result, 0u);
                                 ++calls;
                                 seen = state;
                                 result = scene.square(1).tag;
                                 return miTRUE;
                             })
                             .tag};
    scene.root.members.push_back(instance.tag);
    const miTag last = scene.session.database.last();
    EXPECT_EQ(scene.look().r, 4.0f);
    EXPECT_EQ(calls, 1);
    EXPECT_EQ(seen.version, MI_STATE_VERSION);
    EXPECT_EQ(seen.camera, &scene.camera.record);
    EXPECT_EQ(seen.options, &scene.options.record);
    EXPECT_EQ(instance.record.item, 0u);
    for (miTag tag = last + 1; tag <= scene.session.database.last(); ++tag)
        EXPECT_FALSE(scene.session.database.find(tag)) << "what the shader made was left behind";
    EXPECT_EQ(scene.look().r, 4.0f) << "the next frame makes it anew";
    EXPECT_EQ(calls, 2);
    scene.options.record.no_geometry = miTRUE;
    EXPECT_EQ(scene.look().r, 0.0f);
    EXPECT_EQ(calls, 2);
}

TEST(Geometry, SeveralResultsAreAllThereAndNoneIsAnEmptyInstance)
{
    Scene scene;
    auto& instance = scene.session.database.make<host::Instance>("made");
    instance.materials = {scene.plain({1, 0, 0, 1}).tag};
    const auto half = [&](float x) {
        return scene
            .geometry([&scene, x](miTag& result, miState&) {
                result =
                    scene.object({{x, -9, -3}, {x + 9, -9, -3}, {x + 9, 9, -3}, {x, 9, -3}}, {{0, 1, 2, 3}})
                        .tag;
                return miTRUE;
            })
            .tag;
    };
    instance.geometry = {half(-9), half(0)};
    scene.root.members.push_back(instance.tag);
    const host::Picture picture = scene.render();
    EXPECT_EQ(picture.color(0, 4).r, 1.0f);
    EXPECT_EQ(picture.color(7, 4).r, 1.0f);
    instance.geometry = {scene.geometry([](miTag&, miState&) { return miTRUE; }).tag};
    EXPECT_EQ(scene.look().r, 0.0f);
}

TEST(Geometry, ItMayChangeALightBeforeLightsAreGathered)
{
    Scene scene;
    auto& light = scene.pointLight({0, 0, 0}, [](miColor& result, miState&) {
        result = {1, 0, 0, 1};
        return miTRUE;
    });
    light.record.area = miLIGHT_USER; // refused unless it is changed in time
    const miTag lightInstance = scene.place(light).tag;
    auto& editor = scene.session.database.make<host::Instance>("editor");
    editor.geometry = {scene
                           .geometry([&](miTag&, miState&) {
                               auto* record = static_cast<miLight*>(mi_scene_edit(light.tag));
                               record->area = miLIGHT_NONE;
                               record->origin = {0, 0, 5};
                               mi_scene_edit_end(light.tag);
                               return miTRUE;
                           })
                           .tag};
    scene.root.members.push_back(editor.tag);
    scene.place(scene.square(1), {0, 0, -1}).materials = {
        scene
            .material([&](miColor& result, miState& state) {
                int samples = 0;
                miColor sample;
                while (mi_sample_light(&sample, nullptr, nullptr, &state, lightInstance, &samples))
                    result = sample;
                return miTRUE;
            })
            .tag};
    EXPECT_EQ(scene.look().r, 1.0f);
}

TEST(Geometry, RaysFromAGeometryShaderAreAnError)
{
    Scene scene;
    auto& instance = scene.session.database.make<host::Instance>("made");
    instance.geometry = {scene
                             .geometry([&](miTag&, miState& state) {
                                 miColor color;
                                 miVector direction = {0, 0, 1};
                                 return mi_trace_reflection(&color, &state, &direction);
                             })
                             .tag};
    scene.root.members.push_back(instance.tag);
    EXPECT_NE(errorOf([&] { scene.look(); }).find("before rendering began"), std::string::npos);
}

} // namespace
