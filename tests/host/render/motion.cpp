// SPDX-License-Identifier: BSD-3-Clause
// Motion blur against closed forms: what moves evenly covers a pixel for the share of time that it takes.
#include "tests/harness/messages.h"
#include "tests/host/render/scene.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <cstring>
#include <numbers>
#include <set>

namespace {

using namespace test;

constexpr host::Matrix moved(double x, double y, double z)
{
    return {1, 0, 0, 0, 0, 1, 0, 0, 0, 0, 1, 0, x, y, z, 1};
}

/// A camera that looks along -z in parallel, 8 wide on 8 by 1 pixels: pixel i sees x from i - 4 to i - 3. The
/// shutter is open from 1/4 to 3/4.
struct Moving : Scene {
    Moving()
    {
        camera.record.orthographic = miTRUE;
        camera.record.aperture = 8;
        camera.record.aspect = 8;
        camera.record.y_resolution = 1;
        options.record.min_samples = options.record.max_samples = 4;
        options.record.motion = 1;
        options.record.shutter_delay = 0.25f;
        options.record.shutter = 0.75f;
        options.record.jitter = 1.0f;
    }

    host::Material& white = plain({1, 1, 1, 1});

    /// A sheet whose right edge is at x = 0, seen whole but for that edge.
    host::Object& sheet()
    {
        host::Object& made = object({{-90, -9, 0}, {0, -9, 0}, {0, 9, 0}, {-90, 9, 0}}, {{0, 1, 2, 3}});
        return made;
    }

    host::Instance& placed(host::Object& element, const miVector& at = {0, 0, -2})
    {
        host::Instance& instance = place(element, at);
        instance.materials = {white.tag};
        return instance;
    }

    static void moveVertices(host::Object& object, const miVector& by)
    {
        object.motionIndices.push_back(std::uint32_t(object.vectors.size()));
        object.vectors.push_back(by);
        for (host::Vertex& vertex : object.vertices)
            vertex.motionCount = 1; // the first of the list, for all
    }

    /// The edge runs from x = 0 to x = 3 while the shutter is open: a pixel whose left side is x0 is covered
    /// for the mean of clamp((3 t - x0), 0, 1) over t from 0 to 1.
    static double covered(int pixel)
    {
        double sum = 0.0;
        constexpr int steps = 3000;
        for (int k = 0; k < steps; ++k)
            sum += std::clamp(3.0 * (k + 0.5) / steps - double(pixel - 4), 0.0, 1.0);
        return sum / steps;
    }
};

void expectBlurred(const host::Picture& picture)
{
    for (int x = 0; x < 8; ++x)
        EXPECT_NEAR(picture.color(x, 0).r, Moving::covered(x), 0.02) << x;
}

} // namespace

TEST(Motion, AMovingInstanceLeavesARamp)
{
    Moving scene;
    host::Instance& instance = scene.placed(scene.sheet());
    setMotion(instance, moved(3, 0, -2));
    expectBlurred(scene.render());
}

TEST(Motion, SoDoMovingVertices)
{
    Moving scene;
    host::Object& sheet = scene.sheet();
    Moving::moveVertices(sheet, {3, 0, 0});
    scene.placed(sheet);
    expectBlurred(scene.render());
}

TEST(Motion, BothAddUp)
{
    Moving scene;
    host::Object& sheet = scene.sheet();
    Moving::moveVertices(sheet, {1, 0, 0});
    setMotion(scene.placed(sheet), moved(2, 0, -2));
    expectBlurred(scene.render());
}

TEST(Motion, OneObjectMayMoveInOnePlaceAndRestInAnother)
{
    Moving scene;
    host::Object& sheet = scene.sheet();
    Moving::moveVertices(sheet, {3, 0, 0});
    host::Instance& resting = scene.placed(sheet);
    resting.record.gen_motion = host::stopsMotion;
    host::Picture picture = scene.render();
    for (int x = 0; x < 8; ++x)
        EXPECT_EQ(picture.color(x, 0).r, x < 4 ? 1.0f : 0.0f) << x;
    scene.placed(sheet, {0, 0, -3}); // behind the one at rest
    expectBlurred(scene.render());
}

TEST(Motion, SwitchedOffNothingMoves)
{
    for (const bool byShutter : {false, true}) {
        Moving scene;
        (byShutter ? scene.options.record.shutter : scene.options.record.shutter_delay) = 0;
        scene.options.record.motion = byShutter;
        setMotion(scene.placed(scene.sheet()), moved(3, 0, -2));
        const host::Picture picture = scene.render();
        for (int x = 0; x < 8; ++x)
            EXPECT_EQ(picture.color(x, 0).r, x < 4 ? 1.0f : 0.0f) << x;
    }
}

TEST(Motion, ShadersSeeTheSurfaceAtTheirTime)
{
    // A square that turns by a quarter about y, mirrored as well, and whose vertices lift it by 2: its matrix
    // runs straight from one end to the other, and so do places; the normal stays square to it.
    for (const double mirror : {1.0, -1.0}) {
        Moving scene;
        host::Object& square = scene.square(30);
        Moving::moveVertices(square, {0, 0, 2});
        int seen = 0;
        scene.white.shader = {scene
                                  .shader([&](miColor&, miState& state) {
                                      const double t = (double(state.time) - 0.25) / 0.5;
                                      // At t the axes of the square: x to (1-t, 0, -t), z to (t, 0, 1-t).
                                      const double lift = 2.0 * t;
                                      const miVector& p = state.point;
                                      const double nx = t, nz = 1.0 - t, norm = std::hypot(nx, nz);
                                      // The plane through its lifted middle.
                                      const double off =
                                          (p.x - lift * t) * nx + (p.z + 40 - lift * (1 - t)) * nz;
                                      EXPECT_NEAR(off / norm, 0, 2e-4) << t;
                                      const double side = state.normal.z < 0 ? -1 : 1;
                                      EXPECT_NEAR(state.normal.x, side * nx / norm, 1e-5) << t;
                                      EXPECT_NEAR(state.normal.z, side * nz / norm, 1e-5) << t;
                                      EXPECT_NEAR(p.x, state.raster_x - 4, 1e-4);
                                      EXPECT_LE(state.dot_nd, 0);
                                      ++seen;
                                      return miTRUE;
                                  })
                                  .tag};
        host::Instance& instance = scene.placed(square, {0, 0, -40});
        setMatrix(instance, {1, 0, 0, 0, 0, mirror, 0, 0, 0, 0, 1, 0, 0, 0, -40, 1});
        setMotion(instance, {0, 0, -1, 0, 0, mirror, 0, 0, 1, 0, 0, 0, 0, 0, -40, 1});
        scene.options.record.min_samples = scene.options.record.max_samples = 2;
        scene.render();
        EXPECT_GT(seen, 60);
    }
}

TEST(Motion, ShadowsAndReflectionsAreOfTheSameMoment)
{
    // A floor at z = -2 that is lit from above through a moving sheet at z = 2, behind the camera; and a
    // mirror that shows it.
    for (const bool mirrored : {false, true}) {
        Moving scene;
        host::Light& sun = scene.pointLight({0, 0, 0}, [](miColor& result, miState& state) {
            result = {1, 1, 1, 1};
            return mi_trace_shadow(&result, &state);
        });
        sun.record.type = miLIGHT_DIRECTION;
        sun.record.direction = {0, 0, -1};
        sun.hasOrigin = false;
        const miTag lamp = scene.place(sun).tag;
        host::Instance& floor = scene.place(scene.square(90), {0, 0, -2});
        floor.materials = {scene
                               .material([&](miColor& result, miState& state) {
                                   if (mirrored)
                                       return mi_trace_reflection(&result, &state, &state.normal);
                                   int samples = 0;
                                   return mi_sample_light(&result, nullptr, nullptr, &state, lamp, &samples);
                               })
                               .tag};
        host::Object& sheet = scene.sheet();
        host::Instance& moving = scene.place(sheet, {0, 0, 2});
        moving.materials = {scene.plain({0, 0, 0, 0}).tag};
        setMotion(moving, moved(3, 0, 2));
        host::Instance& back = scene.place(scene.square(90), {0, 0, 5});
        back.materials = {scene.white.tag};
        back.record.shadow = 6; // for mirrors only
        const host::Picture picture = scene.render();
        for (int x = 0; x < 8; ++x)
            EXPECT_NEAR(picture.color(x, 0).r, 1.0 - Moving::covered(x), 0.02) << x << mirrored;
    }
}

TEST(Motion, TheTimesOfAPixelsSamplesShareTheShutterOut)
{
    Moving scene;
    std::set<int> parts;
    scene.camera.record.x_resolution = 1;
    scene.camera.environment = {scene
                                    .shader([&](miColor&, miState& state) {
                                        parts.insert(int((state.time - 0.25f) / 0.5f * 256.0f));
                                        return miTRUE;
                                    })
                                    .tag};
    scene.render();
    EXPECT_EQ(parts.size(), 256u); // one in each 256th
    EXPECT_EQ(*parts.begin(), 0);
    EXPECT_EQ(*parts.rbegin(), 255);
}

TEST(Motion, AMovingCameraBlursWhatStands)
{
    // Three to the left: as if the sheet went to the right.
    Moving scene;
    scene.placed(scene.sheet());
    setMotion(scene.cameraInstance, moved(-3, 0, 0));
    expectBlurred(scene.render());
}

TEST(Motion, ACameraMovesWithWhatItStandsIn)
{
    Moving scene;
    scene.placed(scene.sheet());
    auto& cart = scene.session.database.make<host::Group>("cart");
    cart.members.push_back(scene.cameraInstance.tag);
    std::erase(scene.root.members, scene.cameraInstance.tag);
    setMotion(scene.place(cart), moved(-3, 0, 0));
    expectBlurred(scene.render());
}

TEST(Motion, WhatMovesWithTheCameraIsSharp)
{
    Moving scene;
    setMotion(scene.placed(scene.sheet()), moved(3, 1, -2));
    setMotion(scene.cameraInstance, moved(3, 1, 0));
    const host::Picture picture = scene.render();
    for (int x = 0; x < 8; ++x)
        EXPECT_EQ(picture.color(x, 0).r, x < 4 ? 1.0f : 0.0f) << x;
}

TEST(Motion, ACameraThatTurnsSweepsItsDirections)
{
    // From looking along (0, 0, -1) to (1, 0, -1), straight: at t the middle of the picture sees x = t in the
    // plane z = -1.
    Moving scene;
    scene.camera.record.orthographic = miFALSE;
    scene.camera.record.aperture = 0.002f;
    scene.camera.record.focal = 1;
    scene.placed(scene.sheet(), {0.5f, 0, -1}); // its edge half way
    setMotion(scene.cameraInstance, {1, 0, 0, 0, 0, 1, 0, 0, -1, 0, 1, 0, 0, 0, 0, 1});
    const host::Picture picture = scene.render();
    for (int x = 0; x < 8; ++x)
        EXPECT_NEAR(picture.color(x, 0).r, 0.5, 0.07) << x;
}

TEST(Motion, OfLightsIsToldToBeMissing)
{
    Moving scene;
    scene.place(scene.pointLight({0, 0, 0}, [](miColor&, miState&) { return miTRUE; }));
    const Messages messages;
    scene.render();
    EXPECT_TRUE(messages.lines().empty());
    setMotion(scene.place(scene.pointLight({0, 0, 0}, [](miColor&, miState&) { return miTRUE; })),
              moved(1, 0, 0));
    scene.render();
    ASSERT_EQ(messages.lines().size(), 1u);
    EXPECT_EQ(messages.count("lights with a motion transform stay where they are as the shutter opens"), 1);
    scene.options.record.motion = 0;
    scene.render();
    EXPECT_EQ(messages.lines().size(), 1u);
}

TEST(Motion, ThreadsDoNotChangeThePicture)
{
    Moving scene;
    scene.camera.record.x_resolution = 50;
    scene.camera.record.y_resolution = 50;
    setMotion(scene.placed(scene.sheet()), moved(3, 1, -2));
    const host::Picture one = scene.render(1), many = scene.render(5);
    EXPECT_EQ(0, std::memcmp(one.colors.data(), many.colors.data(), one.colors.size() * sizeof(miColor)));
}
