// SPDX-License-Identifier: BSD-3-Clause
// Motion blur against closed forms: what moves evenly covers a pixel for the share of time that it takes.
#include "host/api/further.h"
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
using host::operator-;

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

namespace {

/// A floor one below the origin, seen by a narrow camera at (0, 0) that no light reaches otherwise than
/// `shade` says; `cosine` multiplies it.
struct Floor : Moving {
    Floor()
    {
        camera.record.aperture = 0.008f;
        place(square(90), {0, 0, -1}).materials = {
            material([this](miColor& result, miState& state) {
                miColor light;
                float cosine = 0;
                int samples = 0;
                result = {0, 0, 0, 1};
                while (mi_sample_light(&light, nullptr, &cosine, &state, lamp, &samples))
                    result.r += light.r * cosine;
                if (samples)
                    result.r /= float(samples);
                return miTRUE;
            }).tag};
    }

    host::Light& light(Shade shade)
    {
        host::Light& made = pointLight({0, 0, 0}, std::move(shade));
        instance = &place(made, {0, 0, 0});
        lamp = instance->tag;
        return made;
    }

    /// The mean of the picture, whose pixels all see the same.
    double mean()
    {
        const host::Picture picture = render();
        double sum = 0.0;
        for (int x = 0; x < 8; ++x)
            sum += picture.color(x, 0).r / 8.0;
        return sum;
    }

    host::Instance* instance = nullptr;
    miTag lamp = 0;
};

/// Falls off with the square of the distance.
miBoolean inverseSquare(miColor& result, miState& state)
{
    const float dist = float(state.dist);
    result = {1 / (dist * dist), 0, 0, 1};
    return miTRUE;
}

} // namespace

TEST(Motion, APointLightThatPassesLightsByItsMean)
{
    // From x = a to x = b at the height h above a point the mean of h / (x² + h²)^(3/2) is the difference of
    // x / (h sqrt(x² + h²)), divided by b - a.
    const struct {
        double a, b, h;
    } rows[] = {{-3, 3, 1}, {0, 2, 0.5}, {1, 5, 2}};
    for (const auto& [a, b, h] : rows)
        for (const bool byGroup : {false, true}) {
            const auto integral = [h = h](double x) { return x / (h * std::hypot(x, h)); };
            Floor scene;
            scene.light(inverseSquare);
            moveTo(*scene.instance, {float(a), 0, float(h - 1)});
            if (byGroup) {
                std::erase(scene.root.members, scene.lamp);
                auto& cart = scene.session.database.make<host::Group>();
                cart.members.push_back(scene.lamp);
                setMotion(scene.place(cart), moved(b - a, 0, 0));
            } else {
                setMotion(*scene.instance, moved(b, 0, h - 1));
            }
            const Messages messages;
            const double expected = (integral(b) - integral(a)) / (b - a);
            EXPECT_NEAR(scene.mean(), expected, 2e-3 * expected) << a << ' ' << b << byGroup;
            EXPECT_TRUE(messages.lines().empty());
        }
}

TEST(Motion, ALightStandsWithoutTheOptionAndWithItsOwnMotionOff)
{
    for (const bool off : {false, true}) {
        Floor scene;
        scene.light(inverseSquare).record.origin = {3, 0, 0};
        setMotion(*scene.instance, moved(-3, 0, 0));
        if (off) {
            scene.instance->hasMotion = false;
            scene.instance->record.gen_motion = host::stopsMotion;
        } else {
            scene.options.record.motion = 0;
        }
        // Three aside and one above.
        EXPECT_NEAR(scene.mean(), 1 / std::pow(10, 1.5), 1e-4);
    }
}

TEST(Motion, ADirectionalLightTurns)
{
    // Its matrix runs straight from the identity to a quarter turn about y: the direction is (-t, 0, -(1 -
    // t)), its cosine to the floor's normal (1 - t) / sqrt(t² + (1 - t)²). With s = 1 - 2 t that is (1 + s) /
    // sqrt(2 + 2 s²), whose mean over s from -1 to 1 is asinh(1) / sqrt 2.
    Floor scene;
    host::Light& sun = scene.light([](miColor& result, miState& state) {
        const double t = (double(state.time) - 0.25) / 0.5, norm = std::hypot(t, 1 - t);
        EXPECT_NEAR(state.dir.x, -t / norm, 1e-5);
        EXPECT_NEAR(state.dir.y, 0, 1e-6);
        EXPECT_NEAR(state.dir.z, -(1 - t) / norm, 1e-5);
        result = {1, 0, 0, 1};
        return miTRUE;
    });
    sun.record.type = miLIGHT_DIRECTION;
    sun.record.direction = {0, 0, -1};
    sun.hasOrigin = false;
    setMotion(*scene.instance, {0, 0, -1, 0, 0, 1, 0, 0, 1, 0, 0, 0, 0, 0, 0, 1});
    EXPECT_NEAR(scene.mean(), std::asinh(1.0) / std::sqrt(2.0), 2e-3);
}

TEST(Motion, ShadersFollowALightsTurnByItsOwnSpace)
{
    // At t its matrix takes z to (-3 t, 0, 2): turned, and longer. The way down to the floor has there
    // the components (x, y, z) with z = -1/2 and x = -3 t / 2.
    Floor scene;
    int calls = 0;
    scene.light([&](miColor& result, miState& state) {
        const double t = (double(state.time) - 0.25) / 0.5;
        miVector local, none = {1, 2, 3};
        mi_vector_to_light(&state, &local, &state.dir);
        EXPECT_NEAR(local.x, -1.5 * t, 1e-2); // the camera is not quite a line
        EXPECT_NEAR(local.z, -0.5, 1e-4);
        mi_vector_to_light(state.parent, &none, &none);
        EXPECT_EQ(none.y, 2); // no light in a material's state
        ++calls;
        result = {1, 0, 0, 1};
        return miTRUE;
    });
    setMatrix(*scene.instance, {1, 0, 0, 0, 0, 1, 0, 0, 0, 0, 2, 0, 0, 0, 0, 1});
    setMotion(*scene.instance, {1, 0, 0, 0, 0, 1, 0, 0, -3, 0, 2, 0, 0, 0, 0, 1});
    scene.mean();
    EXPECT_GT(calls, 1000);
}

TEST(Motion, TheSamplesOfAnAreaLightLieOnItsShapeAtTheirTime)
{
    // A rectangle of 2 by 4 that goes by (6, 0, 2) and grows to thrice its width.
    Floor scene;
    int calls = 0;
    float least = 1, most = -1;
    host::Light& panel = scene.light([&](miColor& result, miState& state) {
        const double t = (double(state.time) - 0.25) / 0.5;
        const double x = (state.org.x - 6 * t) / (1 + 2 * t);
        EXPECT_LE(std::abs(x), 1 + 1e-5);
        EXPECT_LE(std::abs(state.org.y), 2);
        EXPECT_NEAR(state.org.z, 2 * t, 1e-5);
        EXPECT_NEAR(state.dist, host::length(state.point - state.org), 1e-5);
        least = std::min(least, float(x));
        most = std::max(most, float(x));
        ++calls;
        result = {1, 0, 0, 1};
        return miTRUE;
    });
    panel.record.area = miLIGHT_RECTANGLE;
    panel.record.primitive.rectangle = {{1, 0, 0}, {0, 2, 0}};
    panel.record.samples_u = panel.record.samples_v = 2;
    setMotion(*scene.instance, {3, 0, 0, 0, 0, 1, 0, 0, 0, 0, 1, 0, 6, 0, 2, 1});
    scene.mean();
    EXPECT_GT(calls, 1000);
    EXPECT_LT(least, -0.99f);
    EXPECT_GT(most, 0.99f);
}

TEST(Motion, VisibleLightsLeaveARamp)
{
    enum { rectangle, disc, cylinder, sphere, object, itsVertices, itsInstance, kinds };
    for (int kind = 0; kind < kinds; ++kind) {
        Moving scene;
        host::Light& light = scene.pointLight({-5000, 0, 0}, [](miColor& result, miState&) {
            result = {1, 1, 1, 1};
            return miTRUE;
        });
        light.record.visible = miTRUE;
        host::Instance& instance = scene.place(light, {0, 0, -6000});
        auto& shape = light.record.primitive;
        // Each has its right edge at x = 0, straight within the picture to 1e-4.
        switch (kind) {
        case rectangle:
            light.record.area = miLIGHT_RECTANGLE;
            shape.rectangle = {{5000, 0, 0}, {0, 9, 0}};
            break;
        case disc:
            light.record.area = miLIGHT_DISC;
            shape.disc = {{0, 0, 1}, 5000};
            break;
        case cylinder:
            light.record.area = miLIGHT_CYLINDER;
            shape.cylinder = {{0, 9, 0}, 5000};
            break;
        case sphere:
            light.record.area = miLIGHT_SPHERE;
            shape.sphere = {5000};
            break;
        default: {
            host::Object& sheet = scene.sheet();
            light.record.area = miLIGHT_OBJECT;
            light.record.primitive.object.object = sheet.tag;
            if (kind == itsVertices)
                Moving::moveVertices(sheet, {3, 0, 0});
            if (kind == itsInstance) {
                sheet.visible = false;
                host::Instance& own = scene.placed(sheet, {0, 0, 0});
                setMotion(own, moved(3, 0, 0));
                light.record.primitive.object.object = own.tag;
            }
        }
        }
        if (kind != itsVertices && kind != itsInstance)
            setMotion(instance, moved(3, 0, -6000));
        SCOPED_TRACE(kind);
        expectBlurred(scene.render());
    }
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
