// SPDX-License-Identifier: BSD-3-Clause
// Area lights whose shapes are seen.
#include "tests/host/render/scene.h"

#include <gtest/gtest.h>

#include <cmath>

namespace {

using namespace test;

/// A light at (0, 0, -3) that a parallel camera 4 units wide sees on 40 by 40 pixels.
struct Shown : Scene {
    host::Light* light;
    host::Instance* instance;
    miState seen{};
    int calls = 0;
    std::function<miBoolean(miColor&, miState&)> shade = [](miColor& result, miState&) {
        result = {1, 2, 3, 0.5f};
        return miTRUE;
    };

    Shown()
    {
        camera.record.orthographic = miTRUE;
        camera.record.aperture = 4;
        camera.record.x_resolution = camera.record.y_resolution = 40;
        light = &pointLight({0, 0, 0}, [this](miColor& result, miState& state) {
            seen = state;
            ++calls;
            return shade(result, state);
        });
        light->record.visible = miTRUE;
        sphere(1);
        instance = &place(*light, {0, 0, -3});
    }
    void sphere(float radius)
    {
        light->record.area = miLIGHT_SPHERE;
        light->record.primitive.sphere = {radius};
    }
    miColor middle() { return render().color(20, 20); }
};

/// Where the middle of a pixel lies.
double at(int pixel) { return (pixel + 0.5) / 10 - 2; }

void expectSilhouette(Scene& scene, const std::function<bool(double, double)>& inside)
{
    const host::Picture picture = scene.render();
    int shown = 0;
    for (int j = 0; j < 40; ++j)
        for (int i = 0; i < 40; ++i) {
            const miColor color = picture.color(i, j);
            ASSERT_EQ(color.g, inside(at(i), at(j)) ? 2.0f : 0.0f) << at(i) << ' ' << at(j);
            shown += color.g > 0;
        }
    EXPECT_GT(shown, 50);
}

TEST(VisibleLight, EachShapeIsSeenAsItIs)
{
    Shown scene;
    expectSilhouette(scene, [](double x, double y) { return x * x + y * y <= 1; });

    miLight& light = scene.light->record;
    light.area = miLIGHT_RECTANGLE;
    light.primitive.rectangle = {{1.22f, 0, 0.5f}, {0, 0.48f, 0}};
    expectSilhouette(scene, [](double x, double y) { return std::abs(x) <= 1.22 && std::abs(y) <= 0.48; });

    light.area = miLIGHT_DISC; // an ellipse, as it leans back by the angle whose cosine is 0.6
    light.primitive.disc = {{0, 0.8f, 0.6f}, 1.5f};
    expectSilhouette(scene, [](double x, double y) { return std::hypot(x, y / 0.6) <= 1.5; });

    light.area = miLIGHT_CYLINDER;
    light.primitive.cylinder = {{1.22f, 0, 0}, 0.48f};
    expectSilhouette(scene, [](double x, double y) { return std::abs(x) <= 1.22 && std::abs(y) <= 0.48; });
    light.primitive.cylinder = {{0, 0, 1}, 1.22f}; // along the view, through its open ends
    light.visible = miTRUE;
    EXPECT_EQ(scene.middle().g, 0.0f);

    auto& source =
        scene.place(scene.object({{-1.02f, -1.03f, 0}, {1.01f, -1.03f, 0}, {-1.02f, 1, 0}}, {{0, 1, 2}}));
    source.materials = {scene.plain({9, 9, 9, 1}).tag};
    source.record.visible = 1; // itself it is not seen
    light.area = miLIGHT_OBJECT;
    light.primitive = {};
    light.primitive.object.object = source.tag;
    expectSilhouette(scene, [](double x, double y) {
        return x >= -1.02 && y >= -1.03 && (x + 1.02) / 2.03 + (y + 1.03) / 2.03 <= 1;
    });
}

TEST(VisibleLight, TheInstanceTurnsMovesAndStretchesIt)
{
    Shown scene;
    setMatrix(*scene.instance, {1.5, 0, 0, 0, 0, 0.5, 0, 0, 0, 0, 1, 0, 0.33, -0.22, -5, 1});
    expectSilhouette(scene,
                     [](double x, double y) { return std::hypot((x - 0.33) / 1.5, (y + 0.22) / 0.5) <= 1; });
}

TEST(VisibleLight, ItsShaderGetsTheRayThatSeesIt)
{
    Shown scene;
    EXPECT_EQ(scene.middle().b, 3.0f);
    EXPECT_EQ(scene.middle().a, 0.5f) << "alpha is the shader's";
    const miState& s = scene.seen;
    EXPECT_EQ(s.type, miRAY_EYE);
    EXPECT_EQ(s.light_instance, s.instance);
    EXPECT_EQ(s.pri, nullptr);
    EXPECT_EQ(s.material, 0u);
    scene.camera.record.x_resolution = scene.camera.record.y_resolution = 1;
    scene.light->record.label = 7;
    const miTag item = scene.instance->record.item;
    scene.shade = [&](miColor&, miState& state) {
        const auto* leaf = scene.session.database.findAs<host::Instance>(state.light_instance);
        EXPECT_EQ(leaf->record.parent, scene.instance->tag);
        EXPECT_EQ(leaf->record.item, item);
        return miTRUE;
    };
    scene.render();
    EXPECT_NEAR(s.dist, 2, 1e-6);
    EXPECT_NEAR(s.point.z, -2, 1e-6);
    EXPECT_NEAR(s.normal.z, 1, 1e-6);
    EXPECT_NEAR(s.dot_nd, -1, 1e-6);
    EXPECT_FALSE(s.inv_normal);
    EXPECT_EQ(s.label, 7u);
}

TEST(VisibleLight, FromWithinTheNormalIsTurned)
{
    Shown scene;
    scene.sphere(7);
    EXPECT_EQ(scene.middle().g, 2.0f);
    EXPECT_TRUE(scene.seen.inv_normal);
    EXPECT_GT(scene.seen.normal.z, 0.0f);
    EXPECT_LT(scene.seen.dot_nd, 0.0f);
}

TEST(VisibleLight, OnlyWhenItIsOn)
{
    Shown scene;
    scene.light->record.visible = miFALSE;
    EXPECT_EQ(scene.middle().g, 0.0f);
    EXPECT_EQ(scene.calls, 0);
    scene.light->record.visible = miTRUE;
    scene.instance->record.visible = 1; // off
    EXPECT_EQ(scene.middle().g, 0.0f);
    // What has no shape is not seen.
    scene.instance->record.visible = 0;
    for (const miLight_area area : {miLIGHT_NONE, miLIGHT_USER}) {
        scene.light->record.area = area;
        EXPECT_EQ(scene.middle().g, 0.0f);
    }
    scene.sphere(0);
    EXPECT_EQ(scene.middle().g, 0.0f);
}

TEST(VisibleLight, TheNearestIsSeen)
{
    Shown scene;
    auto& wall = scene.place(scene.square(9), {0, 0, -1});
    wall.materials = {scene.plain({7, 7, 7, 1}).tag};
    EXPECT_EQ(scene.middle().g, 7.0f) << "the wall is before the light";
    moveTo(wall, {0, 0, -6});
    EXPECT_EQ(scene.middle().g, 2.0f);
    // A shape that lies on a surface hides it.
    scene.light->record.area = miLIGHT_RECTANGLE;
    scene.light->record.primitive.rectangle = {{1.22f, 0, 0}, {0, 1.22f, 0}};
    moveTo(wall, {0, 0, -3});
    const host::Picture picture = scene.render();
    for (int j = 0; j < 40; ++j)
        for (int i = 0; i < 40; ++i)
            EXPECT_EQ(picture.color(i, j).g, std::max(std::abs(at(i)), std::abs(at(j))) < 1.22 ? 2.0f : 7.0f);
    // Of two lights too.
    auto& other = scene.pointLight({0, 0, 0}, [](miColor& result, miState&) {
        result = {0, 5, 0, 1};
        return miTRUE;
    });
    other.record.visible = miTRUE;
    other.record.area = miLIGHT_SPHERE;
    other.record.primitive.sphere = {0.5f};
    auto& place = scene.place(other, {0, 0, -2});
    EXPECT_EQ(scene.middle().g, 5.0f);
    moveTo(place, {0, 0, -5});
    EXPECT_EQ(scene.middle().g, 2.0f);
}

TEST(VisibleLight, SecondaryRaysSeeItAndShadowRaysDoNot)
{
    const auto mirrored = [](miUint1 reflection, miRay_type type) {
        Shown scene;
        moveTo(*scene.instance, {0, 0, 3}); // behind the camera, which looks at a mirror
        scene.instance->record.reflection = scene.instance->record.refraction = reflection;
        scene.options.record.trace_depth = scene.options.record.reflection_depth = 2;
        scene.options.record.refraction_depth = 2;
        auto& other = scene.pointLight({0, 0, 50}, [](miColor& result, miState& state) {
            result = {1, 1, 1, 1};
            return mi_trace_shadow(&result, &state);
        });
        const miTag lamp = scene.place(other).tag;
        scene.place(scene.square(9), {0, 0, -1}).materials = {
            scene
                .material([lamp, type](miColor& result, miState& state) {
                    miVector back = {0, 0, 1};
                    const miBoolean found = type == miRAY_REFLECT
                                                ? mi_trace_reflection(&result, &state, &back)
                                                : mi_trace_refraction(&result, &state, &back);
                    int samples = 0;
                    miColor light;
                    while (mi_sample_light(&light, nullptr, nullptr, &state, lamp, &samples))
                        result.r += 100 * light.r;
                    return found;
                })
                .tag};
        const miColor color = scene.middle();
        EXPECT_EQ(color.r, 100 + color.g / 2) << "it casts no shadow";
        EXPECT_EQ(scene.calls > 0, color.g != 0.0f);
        EXPECT_EQ(scene.seen.type, color.g == 0.0f ? miRAY_EYE : type);
        return color.g;
    };
    EXPECT_EQ(mirrored(0, miRAY_REFLECT), 2.0f);
    EXPECT_EQ(mirrored(0, miRAY_REFRACT), 2.0f);
    EXPECT_EQ(mirrored(4, miRAY_REFLECT), 0.0f) << "the instance takes it out of reflections";
}

} // namespace
