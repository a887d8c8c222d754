// SPDX-License-Identifier: BSD-3-Clause
// Geometry shaders, before everything else.
#include "tests/host/render/scene.h"

#include "tests/harness/messages.h"
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
    light.record.area = miLIGHT_OBJECT; // of nothing: refused unless it is changed in time
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

/// An instance with that geometry shader, in the root group.
host::Function& addEditor(Scene& scene, std::function<void()> edit)
{
    auto& function = scene.geometry([edit](miTag&, miState&) {
        edit();
        return miTRUE;
    });
    function.name = "editor";
    auto& instance = scene.session.database.make<host::Instance>();
    instance.geometry = {function.tag};
    scene.root.members.push_back(instance.tag);
    return function;
}

TEST(Geometry, ItMayGiveALightTheShapeOfAnObject)
{
    // The light's own instance would take it elsewhere; both its matrices are made identities.
    Scene scene;
    auto& light = scene.pointLight({0, 0, 0}, [](miColor& result, miState&) {
        result = {1, 0, 0, 1};
        return miTRUE;
    });
    auto& lightInstance = scene.place(light, {50, 0, 0});
    auto& shape = scene.place(scene.object({{0, 0, 0}, {1, 0, 0}, {0, 0, 1}}, {{0, 1, 2}}), {0, 5, 0});
    shape.materials = {scene.plain({0, 0, 0, 1}).tag};
    addEditor(scene, [&] {
        auto* const instance = static_cast<miInstance*>(mi_scene_edit(lightInstance.tag));
        EXPECT_EQ(instance->item, light.tag);
        auto* const record = static_cast<miLight*>(mi_scene_edit(instance->item));
        record->area = miLIGHT_OBJECT;
        record->primitive.object.object = shape.tag;
        record->samples_u = short(65536 + 4); // what is left of a large number
        record->samples_v = 2;
        mi_matrix_ident(instance->tf.global_to_local);
        mi_matrix_ident(instance->tf.local_to_global);
        mi_scene_edit_end(light.tag);
        mi_scene_edit_end(lightInstance.tag);
    });
    int samples = 0;
    scene.place(scene.square(1), {0, 0, -1}).materials = {
        scene
            .material([&](miColor& result, miState& state) {
                state.normal = {0, 1, 0};
                miVector direction;
                while (mi_sample_light(&result, &direction, nullptr, &state, lightInstance.tag, &samples)) {
                    const float way = (5 - state.point.y) / direction.y;
                    EXPECT_GE(state.point.x + way * direction.x, -1e-5f);
                    EXPECT_LE(state.point.x + way * direction.x, 1.0f + 1e-5f);
                }
                return miTRUE;
            })
            .tag};
    const Messages messages;
    scene.look();
    EXPECT_EQ(samples, 8);
    EXPECT_TRUE(messages.lines().empty());
}

TEST(Geometry, EditsLeftOpenAreClosedWithOneMessage)
{
    Scene scene;
    auto& light = scene.session.database.make<host::Light>("key");
    auto& instance = scene.session.database.make<host::Instance>("key-i");
    addEditor(scene, [&] {
        mi_scene_edit(instance.tag);
        static_cast<miLight*>(mi_scene_edit(light.tag))->samples_u = 9;
    });
    addEditor(scene, [&] {
        mi_scene_edit(light.tag);
        mi_scene_edit(light.tag);
        mi_scene_edit_end(light.tag);
    });
    const Messages messages;
    scene.look();
    EXPECT_EQ(
        messages.lines(),
        (std::vector<std::string>{"RC   0.0  error: shader \"editor\" (geometry_hook): left 2 edits open, of instance "
                                  "\"key-i\" and light \"key\"; they are closed",
                                  "RC   0.0  error: shader \"editor\" (geometry_hook): left an edit open, of light "
                                  "\"key\"; it is closed"}));
    EXPECT_EQ(light.record.samples_u, 9) << "what was changed stays";
    EXPECT_EQ(scene.session.database.pins(light.tag), 0);
    EXPECT_EQ(scene.session.database.pins(instance.tag), 0);
}

TEST(Geometry, EditsLeftOpenByOneThatFailsAreClosedToo)
{
    Scene scene;
    auto& light = scene.session.database.make<host::Light>("key");
    addEditor(scene, [&] {
        mi_scene_edit(light.tag);
        throw std::runtime_error("no");
    });
    const Messages messages;
    EXPECT_NE(errorOf([&] { scene.look(); }).find("execute failed: no"), std::string::npos);
    EXPECT_EQ(messages.count("left an edit open"), 1);
    EXPECT_EQ(scene.session.database.pins(light.tag), 0);
}

TEST(Geometry, WhatIsNotOpenCannotBeEnded)
{
    Scene scene;
    auto& light = scene.session.database.make<host::Light>("key");
    addEditor(scene, [&] {
        mi_db_access(light.tag);
        mi_scene_edit_end(light.tag); // no edit, and the pin is left alone
        mi_db_unpin(light.tag);
        mi_scene_edit(miNULLTAG);
        mi_scene_edit_end(miNULLTAG);
    });
    const Messages messages;
    scene.look();
    EXPECT_EQ(messages.lines(),
              (std::vector<std::string>{"RC   0.0  error: shader \"editor\" (geometry_hook): ended an edit of tag " +
                                            std::to_string(light.tag) + ", which is not open",
                                        "RC   0.0  error: shader \"editor\" (geometry_hook): accessed the null tag"}));
}

TEST(Geometry, EditsWhileRenderingAreAnError)
{
    Scene scene;
    auto& material = scene.material([&](miColor&, miState&) {
        mi_scene_edit(scene.root.tag);
        return miTRUE;
    });
    scene.session.database.findAs<host::Function>(material.shader.front())->name = "late";
    scene.place(scene.square(1), {0, 0, -1}).materials = {material.tag};
    EXPECT_EQ(errorOf([&] { scene.look(); }),
              "shader \"late\" (hook): edits the scene while it is rendered; only geometry shaders can");
    EXPECT_EQ(scene.session.database.pins(scene.root.tag), 0);
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
