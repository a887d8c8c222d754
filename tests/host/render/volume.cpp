// SPDX-License-Identifier: BSD-3-Clause
// Volume shaders: what lies between a ray's ends, against the law of absorption.
#include "tests/harness/messages.h"
#include "tests/host/render/scene.h"

#include <gtest/gtest.h>

#include <cmath>

namespace {

using namespace test;

/// Lets through exp(-density · distance) of what a ray has seen.
Shade absorbing(float density)
{
    return [density](miColor& result, miState& state) {
        const float share = float(std::exp(-density * state.dist));
        result = {result.r * share, result.g * share, result.b * share, result.a};
        return miTRUE;
    };
}

struct Filled : Scene {
    host::Instance& wall(float z, host::Material& material, float half = 50)
    {
        host::Instance& made = place(square(half), {0, 0, z});
        made.materials = {material.tag};
        return made;
    }
    void fill(Shade shade) { camera.volume.push_back(shader(std::move(shade)).tag); }
};

host::Material& see(Filled& scene, miRay_type type, Shade volume)
{
    host::Material& made = scene.material([type](miColor& result, miState& state) {
        return type == miRAY_REFLECT ? mi_trace_reflection(&result, &state, &state.normal)
                                     : mi_trace_transparent(&result, &state);
    });
    if (volume)
        made.volume = {scene.shader(std::move(volume)).tag};
    return made;
}

} // namespace

TEST(Volume, TheCamerasFillsEyeRays)
{
    Filled scene;
    scene.wall(-3, scene.plain({1, 1, 1, 1}));
    scene.fill(absorbing(0.5f));
    EXPECT_NEAR(scene.look().r, std::exp(-1.5), 1e-6);
}

TEST(Volume, LightThatShallPassThemInSegmentsIsAWarning)
{
    const std::string text = "shadow segments are taken as sort: volume shaders are not called for light";
    for (const char mode : {'\1', 'l', 's'})
        for (const bool ofCamera : {false, true}) {
            Filled scene;
            scene.options.record.shadow = mode;
            host::Material& material = scene.plain({1, 1, 1, 1});
            scene.wall(-3, material);
            {
                const Messages messages;
                scene.look();
                EXPECT_EQ(messages.count(text), 0) << "without volumes";
            }
            if (ofCamera)
                scene.fill(absorbing(0.5f));
            else
                material.volume = {scene.shader(absorbing(0.5f)).tag};
            const Messages messages;
            scene.look();
            EXPECT_EQ(messages.count(text), mode == 's') << mode;
        }
}

TEST(Volume, AListIsCalledInOrderOnTheSameColour)
{
    Filled scene;
    scene.wall(-3, scene.plain({1, 1, 1, 1}));
    scene.fill([](miColor& result, miState&) {
        result.r += 1;
        return miFALSE;
    });
    scene.fill([](miColor& result, miState&) {
        result.r *= 10;
        return miTRUE;
    });
    EXPECT_EQ(scene.look().r, 20.0f);
}

TEST(Volume, ARayThatMeetsNothingHasNoLength)
{
    Filled scene;
    scene.camera.environment = {scene
                                    .shader([](miColor& result, miState&) {
                                        result = {1, 1, 1, 1};
                                        return miTRUE;
                                    })
                                    .tag};
    double dist = -1;
    miRay_type type = miRAY_NONE;
    scene.fill([&](miColor& result, miState& state) {
        dist = state.dist;
        type = state.type;
        EXPECT_EQ(state.pri, nullptr);
        result.g = 0.25f;
        return miTRUE;
    });
    const miColor color = scene.look();
    EXPECT_EQ(color.r, 1.0f);
    EXPECT_EQ(color.g, 0.25f);
    EXPECT_EQ(dist, 0.0);
    EXPECT_EQ(type, miRAY_EYE);
}

TEST(Volume, EverySectionOfAPathIsCrossedOnce)
{
    // To a mirror at 2, and back past the camera to a wall at 3 behind it: 2 + 5.
    Filled scene;
    scene.options.record.reflection_depth = scene.options.record.trace_depth = 2;
    scene.wall(-2, see(scene, miRAY_REFLECT, {}), 0.1f);
    scene.wall(3, scene.plain({1, 1, 1, 1}));
    scene.fill(absorbing(0.25f));
    EXPECT_NEAR(scene.look().r, std::exp(-0.25 * 7), 1e-6);
}

TEST(Volume, AMaterialsFillsTheSpaceBehindIt)
{
    // A slab from 2 to 5 with its own volume, a wall at 9: 2 and 4 in the camera's, 3 in the slab's. Once
    // more with the slab's back facing the camera: then rays leave it where they meet it, and enter at 5.
    for (const bool turned : {false, true}) {
        Filled scene;
        scene.options.record.refraction_depth = scene.options.record.trace_depth = 4;
        host::Material& glass = see(scene, miRAY_TRANSPARENT, absorbing(0.5f));
        host::Instance& front = scene.wall(-2, glass);
        host::Instance& back = scene.wall(-5, glass);
        setMatrix(turned ? front : back,
                  {-1, 0, 0, 0, 0, 1, 0, 0, 0, 0, -1, 0, 0, 0, turned ? -2.0 : -5.0, 1});
        scene.wall(-9, scene.plain({1, 1, 1, 1}));
        scene.fill(absorbing(0.1f));
        const double absorbed = turned ? 0.1 * (2 + 3) + 0.5 * 4 : 0.1 * (2 + 4) + 0.5 * 3;
        EXPECT_NEAR(scene.look().r, std::exp(-absorbed), 1e-6) << turned;
    }
}

TEST(Volume, AShaderMayChooseWhatItsRaysRunThrough)
{
    // Behind the pane, two units from the wall: what the material says, unless its shader says otherwise.
    Filled scene;
    scene.options.record.refraction_depth = scene.options.record.trace_depth = 4;
    const miTag thick = scene.shader(absorbing(2.0f)).tag;
    miTag noted = 0;
    bool changes = false;
    host::Material& pane = scene.material([&](miColor& result, miState& state) {
        noted = state.refraction_volume;
        if (changes)
            state.refraction_volume = thick;
        return mi_trace_transparent(&result, &state);
    });
    const miTag thin = scene.shader(absorbing(0.5f)).tag;
    pane.volume = {thin};
    // Behind the camera; what nothing in the scene leads to could not be called.
    host::Material& unseen = scene.plain({0, 0, 0, 1});
    unseen.volume = {thick};
    scene.wall(20, unseen);
    scene.wall(-1, pane);
    scene.wall(-3, scene.plain({1, 1, 1, 1}));
    EXPECT_NEAR(scene.look().r, std::exp(-1.0), 1e-6);
    EXPECT_EQ(noted, thin);
    changes = true;
    EXPECT_NEAR(scene.look().r, std::exp(-4.0), 1e-6);
    pane.volume.clear();
    EXPECT_NEAR(scene.look().r, std::exp(-4.0), 1e-6);
    EXPECT_EQ(noted, miNULLTAG);
}

TEST(Volume, SwitchedOffSpaceIsEmpty)
{
    Filled scene;
    scene.options.record.no_volume = miTRUE;
    scene.options.record.refraction_depth = scene.options.record.trace_depth = 4;
    scene.wall(-2, see(scene, miRAY_TRANSPARENT, absorbing(0.5f)));
    scene.wall(-9, scene.plain({1, 1, 1, 1}));
    scene.fill(absorbing(0.1f));
    EXPECT_EQ(scene.look().r, 1.0f);
}

TEST(Volume, LightAndShadowsPassItAsTheyAre)
{
    Filled scene;
    host::Light& light = scene.pointLight({0, 0, 0}, [](miColor& result, miState& state) {
        result = {1, 1, 1, 1};
        return mi_trace_shadow(&result, &state);
    });
    const miTag lamp = scene.place(light, {0, 4, -3}).tag;
    scene.wall(-3, scene.material([&](miColor& result, miState& state) {
        int samples = 0;
        return mi_sample_light(&result, nullptr, nullptr, &state, lamp, &samples);
    }));
    moveTo(*scene.session.database.findAs<host::Instance>(lamp), {0, 4, 0});
    int calls = 0;
    scene.fill([&](miColor&, miState& state) {
        EXPECT_EQ(state.type, miRAY_EYE);
        ++calls;
        return miTRUE;
    });
    EXPECT_EQ(scene.look().r, 1.0f);
    EXPECT_EQ(calls, 1);
}

TEST(Volume, RaysThatAShadowShaderCastsCrossItAll)
{
    Filled scene;
    const miTag lamp = scene
                           .place(scene.pointLight({0, 4, -1},
                                                   [](miColor& result, miState& state) {
                                                       result = {1, 1, 1, 1};
                                                       return mi_trace_shadow(&result, &state);
                                                   }))
                           .tag;
    scene.wall(-3, scene.material([lamp](miColor& result, miState& state) {
        result = {1, 1, 1, 1};
        int samples = 0;
        return state.type == miRAY_REFLECT
                   ? miBoolean(miTRUE)
                   : mi_sample_light(&result, nullptr, nullptr, &state, lamp, &samples);
    }));
    // On the way from the lamp to what the camera looks at, and beside the camera's own ray.
    host::Material& pane = scene.plain({0, 0, 0, 1});
    pane.shadow = {scene
                       .shader([](miColor& result, miState& state) {
                           miVector back = {0, 0, -1};
                           return mi_trace_reflection(&result, &state, &back);
                       })
                       .tag};
    scene.place(scene.square(1), {0, 2, -2}).materials = {pane.tag};
    int first = 0;
    scene.fill([&](miColor&, miState& state) {
        first += state.type == miRAY_REFLECT;
        return miTRUE;
    });
    scene.fill(absorbing(0.5f));
    // One unit behind the pane, then three to the camera.
    EXPECT_NEAR(scene.look().r, std::exp(-0.5) * std::exp(-1.5), 1e-6);
    EXPECT_EQ(first, 1);
}

TEST(Volume, SeesTheStateOfTheSurface)
{
    Filled scene;
    const miState* surface = nullptr;
    scene.wall(-3, scene.material([&](miColor&, miState& state) {
        surface = &state;
        return miTRUE;
    }));
    int calls = 0;
    scene.fill([&](miColor&, miState& state) {
        EXPECT_EQ(&state, surface);
        EXPECT_NE(state.pri, nullptr);
        EXPECT_NEAR(state.dist, 3.0, 1e-6);
        ++calls;
        return miTRUE;
    });
    scene.look();
    EXPECT_EQ(calls, 1);
}
