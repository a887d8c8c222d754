// SPDX-License-Identifier: BSD-3-Clause
// Samples, threads, windows, adaptive refinement.
#include "tests/host/render/scene.h"

#include "host/system/large_stack.h"
#include "tests/harness/stage.h"

#include <gtest/gtest.h>

#include <atomic>
#include <cmath>
#include <cstring>
#include <limits>
#include <map>
#include <mutex>

namespace {

using namespace test;

bool identical(const host::Picture& a, const host::Picture& b)
{
    return a.width == b.width && a.height == b.height &&
           std::memcmp(a.colors.data(), b.colors.data(), a.colors.size() * sizeof(miColor)) == 0;
}

/// A picture whose every sample differs from its neighbours.
void fillWithDetail(Scene& scene)
{
    scene.camera.record.x_resolution = 150;
    scene.camera.record.y_resolution = 97;
    scene.camera.environment = {scene
                                    .shader([](miColor& result, miState& state) {
                                        result.r =
                                            std::sin(40.0f * state.dir.x) * std::sin(37.0f * state.dir.y);
                                        result.g = std::sin(900.0f * state.dir.x * state.dir.y);
                                        result.b = state.time;
                                        result.a = 1.0f;
                                        return miTRUE;
                                    })
                                    .tag};
}

TEST(Sampling, ThreadsDoNotChangeThePicture)
{
    for (const host::Filter filter : {host::Filter::box, host::Filter::gauss, host::Filter::lanczos})
        for (const int least : {0, 1}) {
            SCOPED_TRACE(std::string(1, char(filter)) + std::to_string(least));
            Scene scene;
            fillWithDetail(scene);
            miOptions& o = scene.options.record;
            o.filter = char(filter);
            o.jitter = 1.0f;
            o.shutter = 1.0f;
            o.min_samples = least;
            o.max_samples = 1;
            o.contrast = {0.4f, 0.4f, 2, 2};
            EXPECT_TRUE(identical(scene.render(1), scene.render(7)));
        }
}

TEST(Sampling, WindowsJoinWithoutSeams)
{
    Scene scene;
    fillWithDetail(scene);
    miOptions& o = scene.options.record;
    o.filter = char(host::Filter::mitchell);
    o.jitter = 1.0f;
    o.max_samples = 1;
    o.contrast = {0.4f, 0.4f, 2, 2};
    const host::Picture whole = scene.render(2);
    host::Picture joined = whole;
    std::fill(joined.colors.begin(), joined.colors.end(), miColor{7, 7, 7, 7});
    const int xs[] = {0, 33, 150}, ys[] = {0, 50, 97};
    for (int i = 0; i < 2; ++i)
        for (int j = 0; j < 2; ++j) {
            scene.camera.hasWindow = true;
            scene.camera.record.window = {xs[i], ys[j], xs[i + 1] - 1, ys[j + 1] - 1};
            const host::Picture part = scene.render(2);
            for (int y = ys[j]; y < ys[j + 1]; ++y)
                for (int x = xs[i]; x < xs[i + 1]; ++x)
                    joined.colors[std::size_t(y) * 150 + std::size_t(x)] = part.color(x, y);
        }
    EXPECT_TRUE(identical(whole, joined));
}

/// How many samples each pixel took.
std::map<std::pair<int, int>, int> samplesOf(Scene& scene)
{
    std::map<std::pair<int, int>, int> taken;
    std::mutex lock;
    const float edge = 10.3f;
    scene.camera.record.x_resolution = scene.camera.record.y_resolution = 20;
    scene.camera.environment = {scene
                                    .shader([&](miColor& result, miState& state) {
                                        const std::lock_guard guard(lock);
                                        ++taken[{int(state.raster_x), int(state.raster_y)}];
                                        result.r = state.raster_x < edge ? 0.0f : 0.3f;
                                        return miTRUE;
                                    })
                                    .tag};
    scene.render(2);
    return taken;
}

TEST(Sampling, LevelsAreSquaresOfSamples)
{
    const std::pair<int, int> levels[] = {{-3, 1}, {0, 1}, {1, 4}, {2, 16}};
    for (const auto& [level, count] : levels) {
        Scene scene;
        scene.options.record.min_samples = scene.options.record.max_samples = level;
        for (const auto& [pixel, taken] : samplesOf(scene))
            EXPECT_EQ(taken, count);
    }
}

TEST(Sampling, OnlyPixelsThatDifferFromNeighboursAreRefined)
{
    Scene scene;
    scene.options.record.min_samples = -1;
    scene.options.record.max_samples = 2;
    const auto taken = samplesOf(scene);
    EXPECT_EQ(taken.size(), 400u);
    for (const auto& [pixel, count] : taken)
        // Sample positions 9.5 and 10.5 lie on either side of the edge: pixels 9 and 10 see it.
        EXPECT_EQ(count, pixel.first == 9 || pixel.first == 10 ? 17 : 1)
            << pixel.first << ' ' << pixel.second;
    Scene tolerant;
    tolerant.options.record.min_samples = 0;
    tolerant.options.record.max_samples = 2;
    tolerant.options.record.contrast.r = 0.31f;
    for (const auto& [pixel, count] : samplesOf(tolerant))
        EXPECT_EQ(count, 1);
}

TEST(Sampling, AnEdgeIsAsGrayAsItCoversThePixel)
{
    Scene scene;
    scene.options.record.min_samples = scene.options.record.max_samples = 3;
    scene.camera.environment = {scene
                                    .shader([](miColor& result, miState& state) {
                                        result.r = state.raster_x < 4.375f ? 0.0f : 1.0f;
                                        return miTRUE;
                                    })
                                    .tag};
    EXPECT_EQ(scene.render().color(4, 4).r, 0.625f); // three of eight columns of samples are dark
}

TEST(Sampling, TimeRunsOverTheShutter)
{
    Scene scene;
    float least = 10.0f, most = -10.0f;
    scene.camera.record.x_resolution = scene.camera.record.y_resolution = 64;
    scene.camera.environment = {scene
                                    .shader([&](miColor&, miState& state) {
                                        least = std::min(least, state.time);
                                        most = std::max(most, state.time);
                                        return miTRUE;
                                    })
                                    .tag};
    scene.render();
    EXPECT_EQ(least, 0.0f);
    EXPECT_EQ(most, 0.0f);
    scene.options.record.shutter_delay = 0.25f;
    scene.options.record.shutter = 0.75f;
    least = 10.0f;
    scene.render();
    EXPECT_NEAR(least, 0.25f, 0.01f);
    EXPECT_NEAR(most, 0.75f, 0.01f);
}

TEST(Sampling, RenderingThreadsKeepDenormalNumbers)
{
    // Intersection libraries like to switch them off; shaders' arithmetic is plain.
    Scene scene;
    std::atomic<int> lost{0};
    auto& m = scene.material([&](miColor&, miState&) {
        volatile float small = std::numeric_limits<float>::denorm_min();
        if (small * 1.0f == 0.0f || small / 2.0f != 0.0f || small + small == 0.0f)
            ++lost;
        return miTRUE;
    });
    scene.place(scene.square(10), {0, 0, -1}).materials = {m.tag};
    scene.camera.record.x_resolution = scene.camera.record.y_resolution = 100;
    scene.render(4);
    EXPECT_EQ(lost, 0);
}

TEST(Sampling, ProgressRisesToOne)
{
    Scene scene;
    fillWithDetail(scene);
    for (const int least : {0, 1}) {
        scene.options.record.min_samples = least;
        scene.options.record.max_samples = 1;
        std::vector<double> seen;
        scene.progress = [&](double fraction) { seen.push_back(fraction); };
        scene.render(3);
        EXPECT_TRUE(std::is_sorted(seen.begin(), seen.end()));
        ASSERT_FALSE(seen.empty());
        EXPECT_GT(seen.front(), 0.0);
        EXPECT_EQ(seen.back(), 1.0);
    }
}

TEST(Sampling, PicturesWithoutPixelsAreErrors)
{
    Scene scene;
    scene.camera.name = "cam";
    scene.camera.record.x_resolution = 0;
    EXPECT_EQ(errorOf([&] { scene.render(); }), "camera \"cam\": a picture of 0 by 8 pixels has none");
    scene.camera.record.x_resolution = 8;
    scene.camera.record.y_resolution = -1;
    EXPECT_EQ(errorOf([&] { scene.render(); }), "camera \"cam\": a picture of 8 by -1 pixels has none");
    scene.camera.record.y_resolution = 8;
    scene.camera.hasWindow = true;
    scene.camera.record.window = {5, 0, 4, 7};
    EXPECT_EQ(errorOf([&] { scene.render(); }), "camera \"cam\": the window leaves no pixel of the picture");
    scene.camera.record.window = {8, 0, 20, 7};
    EXPECT_NE(errorOf([&] { scene.render(); }), "nothing was thrown");
}

TEST(Sampling, AShadersErrorEndsTheRenderingAndIsPassedOn)
{
    Scene scene;
    std::atomic<int> calls{0};
    auto& m = scene.material([&](miColor&, miState& state) -> miBoolean {
        ++calls;
        if (state.raster_x > 250.0f)
            throw host::Error("the shader gave up");
        return miTRUE;
    });
    scene.place(scene.square(10), {0, 0, -1}).materials = {m.tag};
    scene.camera.record.x_resolution = scene.camera.record.y_resolution = 500;
    const miTag last = scene.session.database.last();
    const std::string text = errorOf([&] { scene.render(4); });
    EXPECT_NE(text.find("the shader gave up"), std::string::npos) << text;
    EXPECT_LT(calls, 200000) << "the other tiles went on";
    for (miTag tag = last + 1; tag <= scene.session.database.last(); ++tag)
        EXPECT_FALSE(scene.session.database.find(tag)) << "a leaf was left behind";
    // And the scene can be rendered again.
    EXPECT_EQ(scene.look().a, 0.0f);
}

TEST(Sampling, ACameraOutsideTheSceneIsAnError)
{
    Scene scene;
    scene.root.members.clear();
    EXPECT_EQ(errorOf([&] { scene.render(); }),
              "the camera instance is not in the scene that is to be rendered");
}

int nested(int depth)
{
    volatile char frame[4096];
    frame[0] = char(depth);
    return depth == 0 ? frame[0] : nested(depth - 1) + frame[0] * 0;
}

TEST(LargeStack, HoldsDeepCallsAndPassesErrorsOn)
{
    int reached = -1;
    host::onLargeStack([&] { reached = nested(10000); }); // 40 MiB
    EXPECT_EQ(reached, 0);
    EXPECT_EQ(errorOf([] { host::onLargeStack([] { throw host::Error("from below"); }); }), "from below");
}

TEST(Sampling, WorkersHaveLargeStacksToo)
{
    host::onLargeStack([] {
        Scene scene;
        std::atomic<int> wrong{0};
        // Enough geometry that building its index is parallel work, too.
        std::vector<miVector> points;
        std::vector<std::vector<std::uint32_t>> triangles;
        for (std::uint32_t i = 0; i < 60000; i += 3) {
            const float x = float(i);
            points.insert(points.end(), {{x, 0, 5}, {x + 1, 0, 5}, {x, 1, 5}});
            triangles.push_back({i, i + 1, i + 2});
        }
        scene.place(scene.object(points, triangles)).materials = {scene.plain({0, 0, 0, 0}).tag};
        scene.camera.environment = {scene
                                        .shader([&](miColor&, miState& state) {
                                            if (int(state.raster_x) % 20 == 0 && nested(10000) != 0)
                                                ++wrong;
                                            return miTRUE;
                                        })
                                        .tag};
        scene.camera.record.x_resolution = scene.camera.record.y_resolution = 100;
        scene.render(3);
        EXPECT_EQ(wrong, 0);
    });
}

} // namespace
