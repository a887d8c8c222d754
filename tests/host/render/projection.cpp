// SPDX-License-Identifier: BSD-3-Clause
// Which pixel a known point hits, and what is seen through it.
#include "tests/host/render/scene.h"

#include "host/render/camera.h"

#include <gtest/gtest.h>

#include <cmath>

namespace {

using test::Scene;
using Pixels = std::vector<std::pair<int, int>>;

constexpr miColor white = {1, 1, 1, 1};

/// Pixels that are not black.
Pixels litPixels(const host::Picture& picture)
{
    Pixels lit;
    for (int y = 0; y < picture.height; ++y)
        for (int x = 0; x < picture.width; ++x)
            if (picture.color(x, y).r != 0.0f)
                lit.emplace_back(x, y);
    return lit;
}

/// A camera with uneven numbers.
void setCamera(Scene& scene)
{
    miCamera& c = scene.camera.record;
    c.focal = 3.0f;
    c.aperture = 1.5f;
    c.aspect = 2.0f;
    c.x_resolution = 40;
    c.y_resolution = 20;
}

/// Where the camera of setCamera sees raster position (x, y) at a distance of 4, by the projection's inverse.
miVector seenAt(double x, double y)
{
    return {float((x / 40 - 0.5) * 1.5 * 4 / 3), float((y / 20 - 0.5) * 1.5 / 2 * 4 / 3), -4.0f};
}

TEST(Projection, ASmallSquareIsSeenInThePixelThatTheFormulaNames)
{
    for (const auto& [x, y] : Pixels{{0, 0}, {39, 0}, {0, 19}, {30, 4}, {11, 13}}) {
        Scene scene;
        setCamera(scene);
        // 40 * 3 / 4 / 1.5 * 0.004 = 0.08 pixels wide: it is missed unless it lies around the pixel's centre.
        scene.place(scene.square(0.002f), seenAt(x + 0.5, y + 0.5)).materials = {scene.plain(white).tag};
        EXPECT_EQ(litPixels(scene.render()), (Pixels{{x, y}}));
    }
}

TEST(Projection, APositiveOffsetMovesThePictureRightAndUp)
{
    Scene scene;
    setCamera(scene);
    scene.camera.record.x_offset = 5.0f;
    scene.camera.record.y_offset = 2.0f;
    scene.place(scene.square(0.002f), seenAt(10.5, 10.5)).materials = {scene.plain(white).tag};
    EXPECT_EQ(litPixels(scene.render()), (Pixels{{15, 12}}));
}

TEST(Projection, OrthographicRaysAreParallel)
{
    Scene scene;
    scene.camera.record.orthographic = miTRUE;
    scene.camera.record.aperture = 8.0f; // one unit per pixel
    auto& white1 = scene.plain(white);
    scene.place(scene.square(0.1f), {-3.5f, -3.5f, -1.0f}).materials = {white1.tag};
    scene.place(scene.square(0.1f), {2.5f, 1.5f, -500.0f}).materials = {white1.tag};
    EXPECT_EQ(litPixels(scene.render()), (Pixels{{0, 0}, {6, 5}}));
}

TEST(Projection, TheCameraInstanceMapsWorldToCamera)
{
    Scene scene;
    // Standing at (10, 0, 0), turned by 90 degrees to look along +x: camera -z is world +x, camera x is world
    // z.
    test::setMatrix(scene.cameraInstance, {0, 0, 1, 0, 0, 1, 0, 0, -1, 0, 0, 0, 10, 0, 0, 1});
    auto& object = scene.object({{20, -20, -20}, {20, -20, 0}, {20, 20, 0}, {20, 20, -20}}, {{0, 1, 2, 3}});
    scene.place(object).materials = {scene.plain(white).tag};
    const host::Picture picture = scene.render();
    // World z < 0 is the left half of the picture.
    EXPECT_EQ(picture.color(3, 4).r, 1.0f);
    EXPECT_EQ(picture.color(4, 4).r, 0.0f);
}

TEST(Projection, OnlyTheWindowIsRenderedAndThePictureKeepsItsSize)
{
    Scene scene;
    scene.place(scene.square(100.0f), {0, 0, -1}).materials = {scene.plain(white).tag};
    scene.camera.hasWindow = true;
    scene.camera.record.window = {2, 1, 3, 90}; // inclusive; what lies beyond the picture is cut off
    const host::Picture picture = scene.render();
    EXPECT_EQ(picture.width, 8);
    EXPECT_EQ(picture.height, 8);
    Pixels expected;
    for (int y = 1; y < 8; ++y)
        for (int x = 2; x <= 3; ++x)
            expected.emplace_back(x, y);
    EXPECT_EQ(litPixels(picture), expected);
}

TEST(Projection, ClippingPlanesCutAlongTheViewingAxis)
{
    Scene scene;
    auto& m = scene.plain(white);
    scene.place(scene.square(100.0f), {0, 0, -3}).materials = {m.tag};
    scene.camera.record.clip = {3.001f, 10.0f};
    EXPECT_TRUE(litPixels(scene.render()).empty());
    scene.camera.record.clip = {1.0f, 2.999f};
    EXPECT_TRUE(litPixels(scene.render()).empty());
    scene.camera.record.clip = {2.999f, 3.001f};
    EXPECT_EQ(litPixels(scene.render()).size(), 64u); // in the corners too, where rays are longest
}

TEST(Projection, DepthIsAlongTheViewingAxis)
{
    Scene scene;
    scene.place(scene.square(1.5f), {0, 0, -3}).materials = {scene.plain(white).tag};
    const host::Picture picture = scene.render(1, true);
    EXPECT_FLOAT_EQ(picture.facts[3 * 8 + 3].depth, 3.0f);
    EXPECT_FLOAT_EQ(picture.facts[2 * 8 + 5].depth, 3.0f);
    EXPECT_EQ(picture.facts[0].depth, 0.0f);
    EXPECT_FLOAT_EQ(picture.facts[3 * 8 + 3].normal.z, 1.0f);
}

TEST(Projection, FarFromTheOriginDirectionsStayExact)
{
    host::Camera camera;
    camera.record.focal = 1.0f;
    camera.record.aperture = 2.0f;
    camera.record.aspect = 1.0f;
    camera.record.x_resolution = camera.record.y_resolution = 4;
    host::Instance leaf;
    test::moveTo(leaf, {1e6f, 0, 0});
    const host::CameraRays rays(camera.record, leaf);
    const host::PrimaryRay ray = rays.at(1.0, 3.0, 0.0f);
    EXPECT_EQ(ray.origin.x, 1e6f);
    const double norm = std::sqrt(0.25 + 0.25 + 1.0);
    EXPECT_NEAR(ray.direction.x, -0.5 / norm, 1e-7);
    EXPECT_NEAR(ray.direction.y, 0.5 / norm, 1e-7);
    EXPECT_NEAR(ray.direction.z, -1.0 / norm, 1e-7);
}

} // namespace
