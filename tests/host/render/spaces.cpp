// SPDX-License-Identifier: BSD-3-Clause
// The spaces that shaders ask for, and the lock that they share.
#include "host/api/further.h"
#include "tests/host/render/scene.h"

#include <gtest/gtest.h>

#include <cmath>

namespace {

using test::Scene;
using Convert = void (*)(const miState*, miVector*, const miVector*);

/// What the function makes of the vector in this state.
miVector of(Convert convert, const miState& state, miVector v)
{
    convert(&state, &v, &v); // the two may be the same
    return v;
}

void expectNear(const miVector& a, const miVector& b)
{
    EXPECT_NEAR(a.x, b.x, 1e-5f);
    EXPECT_NEAR(a.y, b.y, 1e-5f);
    EXPECT_NEAR(a.z, b.z, 1e-5f);
}

/// To and from one space: what a point, a vector and a normal of internal space become there, and back again.
struct Family {
    Convert pointTo, pointFrom, vectorTo, vectorFrom, normalTo, normalFrom;

    void expect(const miState& state, const miVector& given, const miVector& point, const miVector& vector,
                const miVector& normal) const
    {
        expectNear(of(pointTo, state, given), point);
        expectNear(of(vectorTo, state, given), vector);
        expectNear(of(normalTo, state, given), normal);
        expectNear(of(pointFrom, state, of(pointTo, state, given)), given);
        expectNear(of(vectorFrom, state, of(vectorTo, state, given)), given);
        expectNear(of(normalFrom, state, of(normalTo, state, given)), host::normalised(given));
    }
};

#define FAMILY(space)                                                                                        \
    Family                                                                                                   \
    {                                                                                                        \
        mi_point_to_##space, mi_point_from_##space, mi_vector_to_##space, mi_vector_from_##space,            \
            mi_normal_to_##space, mi_normal_from_##space                                                     \
    }

TEST(Spaces, PointsVectorsAndNormalsOfEach)
{
    Scene scene;
    int calls = 0;
    const miVector v = {4, 2, 4};
    // Twice, four times and once as large, then moved: matrices of the object (1, 2, -3), of the light by the
    // other order.
    auto& light = scene.pointLight({0, 0, 0}, [&](miColor& result, miState& state) {
        FAMILY(light).expect(state, v, {1, 0.5f, 1.25f}, {1, 1, 1}, host::normalised({16, 4, 16}));
        ++calls;
        result = {1, 1, 1, 1};
        return miTRUE;
    });
    auto& lightInstance = scene.place(light);
    test::setMatrix(lightInstance, {4, 0, 0, 0, 0, 2, 0, 0, 0, 0, 4, 0, 0, 1, -1, 1});
    const auto shade = [&](miColor&, miState& state) {
        FAMILY(world).expect(state, v, v, v, host::normalised(v));
        FAMILY(camera).expect(state, v, {3, 2, 4}, v, host::normalised(v));
        FAMILY(object).expect(state, v, {1.5f, 0, 7}, {2, 0.5f, 4}, host::normalised({8, 8, 4}));
        FAMILY(light).expect(state, v, v, v, host::normalised(v)); // it has none
        miColor color;
        int samples = 0;
        mi_sample_light(&color, nullptr, nullptr, &state, lightInstance.tag, &samples);
        ++calls;
        return miTRUE;
    };
    auto& wall = scene.place(scene.square(30));
    test::setMatrix(wall, {2, 0, 0, 0, 0, 4, 0, 0, 0, 0, 1, 0, 1, 2, -3, 1});
    wall.materials = {scene.material(shade).tag};
    test::moveTo(scene.cameraInstance, {1, 0, 0});
    scene.look();
    EXPECT_EQ(calls, 2);
    // Of what has no instance nothing is known.
    miState nowhere{};
    nowhere.options = &scene.options.record;
    for (const Family& family : {FAMILY(world), FAMILY(camera), FAMILY(object), FAMILY(light)})
        family.expect(nowhere, v, v, v, host::normalised(v));
}

TEST(Spaces, AnObjectThatMovesIsWhereItIsAtTheStatesTime)
{
    // Its middle is at x = 6 t, and it grows along y to thrice its height; the camera's space stays that of
    // the shutter's opening.
    Scene scene;
    scene.options.record.motion = miTRUE;
    scene.options.record.shutter_delay = 0.25f;
    scene.options.record.shutter = 0.75f;
    scene.options.record.min_samples = scene.options.record.max_samples = 1;
    int calls = 0;
    auto& wall = scene.place(scene.square(30));
    wall.materials = {
        scene
            .material([&](miColor&, miState& state) {
                const float t = (state.time - 0.25f) / 0.5f;
                const miVector v = {1, 2, 3};
                const float height = 1 + 2 * t;
                const miVector place = of(mi_point_to_object, state, v);
                expectNear(place, {1 - 6 * t, 2 / height, 5});
                expectNear(of(mi_point_from_object, state, place), v);
                expectNear(of(mi_vector_to_object, state, v), {1, 2 / height, 3});
                expectNear(of(mi_normal_to_object, state, v), host::normalised({1, 2 * height, 3}));
                const miVector seen = of(mi_point_to_camera, state, v);
                expectNear(seen, v);
                ++calls;
                return miTRUE;
            })
            .tag};
    test::setMatrix(wall, {1, 0, 0, 0, 0, 1, 0, 0, 0, 0, 1, 0, 0, 0, -2, 1});
    test::setMotion(wall, {1, 0, 0, 0, 0, 3, 0, 0, 0, 0, 1, 0, 6, 0, -2, 1});
    test::setMotion(scene.cameraInstance, {1, 0, 0, 0, 0, 1, 0, 0, 0, 0, 1, 0, 0, 0.5, 0, 1});
    scene.render();
    EXPECT_GE(calls, 64);
}

TEST(Locks, TheGlobalOneIsEveryStatesOwn)
{
    Scene scene;
    int count = 0;
    miLock first{};
    scene.options.record.min_samples = scene.options.record.max_samples = 2;
    auto& wall = scene.place(scene.square(30), {0, 0, -1});
    wall.materials = {scene
                          .material([&](miColor&, miState& state) {
                              mi_lock(state.global_lock);
                              first = state.global_lock;
                              ++count;
                              mi_unlock(state.global_lock);
                              return miTRUE;
                          })
                          .tag};
    scene.render(4);
    EXPECT_EQ(count, 8 * 8 * 16);
    EXPECT_NE(first.lock, nullptr);
}

} // namespace
