// SPDX-License-Identifier: BSD-3-Clause
// Lenses and the environment, seen by the least renderer: which rays they cast, what they look up, and every
// call on the way. What the layouts are is tested with the mappings.
#include "core/mappings.h"
#include "entry_points.h"
#include "expect.h"
#include "tests/core/bare_renderer.h"

#include <geoshader.h>
#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <optional>

namespace {

using Calls = std::vector<std::string>;
using VHL::dVector;

constexpr float infinity = std::numeric_limits<float>::infinity();

/// The layouts by their numbers.
const VHL::dPanoramicConversion& mapping(int number)
{
    static const VHL::dSphericalMapping spherical;
    static const VHL::dAngularMapping angular;
    static const VHL::dBallMapping ball;
    static const VHL::dCubicMapping cubic;
    static const VHL::dFisheyeMapping fisheye;
    switch (number) {
    case 1:
        return angular;
    case 2:
        return ball;
    case 3:
        return cubic;
    case 4:
        return fisheye;
    default:
        return spherical;
    }
}
constexpr int numbers[] = {0, 1, 2, 3, 4, 5, 7, -1, std::numeric_limits<int>::max()};

/// A shader with its parameters, from its init to its exit.
template <class Parameters>
class Running {
public:
    Running(const Library& library, const char* shader, const Parameters& parameters)
        : shader_(library, shader)
    {
        renderer.reset();
        block.params = parameters;
        block.camera.x_resolution = 200;
        block.camera.y_resolution = 100;
        block.state.camera_inst = cameraTag;
        renderer.access = [this](miTag) { return static_cast<void*>(&camera); };
    }
    ~Running() { shader_.exit(&block.state, &block.params); }

    void init()
    {
        miBoolean request = miFALSE;
        shader_.init(&block.state, &block.params, &request);
        renderer.calls.clear();
    }

    int execute(miColor& result) { return shader_.execute(&result, &block.state, &block.params); }

    BareRenderer& renderer = BareRenderer::get();
    Block<Parameters> block;
    miInstance camera{};

    static constexpr miTag cameraTag = 17;

private:
    EntryPoints shader_;
};

// ---- the panoramic lens

TEST(PanoramicLens, CastsTheDirectionOfItsLayoutTurnedWithTheCamera)
{
    const Library library;
    for (const int number : numbers) {
        Running<int> lens(library, "vhLensPanoramic_v1", number);
        // Camera to world: x to y, y to z, z to x, with a translation that directions do not see.
        const miMatrix turned = {0, 1, 0, 0, 0, 0, 1, 0, 1, 0, 0, 0, 5, 6, 7, 1};
        std::copy(std::begin(turned), std::end(turned), lens.camera.tf.local_to_global);
        lens.init();
        lens.block.params = 0; // read no more
        lens.block.state.org = {3, 4, 5};
        std::optional<miVector> origin, direction;
        lens.renderer.traceEye = [&](miColor* result, const miVector& from, const miVector& towards) {
            origin = from;
            direction = towards;
            *result = {1, 2, 3, 4};
            return miFALSE;
        };
        for (const auto& [x, y] :
             {std::pair{100.0f, 50.0f}, {0.0f, 0.0f}, {150.5f, 20.25f}, {200.0f, 100.0f}}) {
            SCOPED_TRACE(testing::Message() << "layout " << number << " at " << x << ' ' << y);
            lens.block.state.raster_x = x;
            lens.block.state.raster_y = y;
            lens.renderer.calls.clear();
            miColor result{};
            EXPECT_EQ(lens.execute(result), 1) << "whatever the ray has found";
            expectColor(result, {1, 2, 3, 4});
            EXPECT_EQ(lens.renderer.calls, (Calls{"mi_query", "mi_db_access", "mi_vector_transform",
                                                  "mi_db_unpin", "mi_trace_eye"}));
            EXPECT_EQ(lens.renderer.pins, (std::map<miTag, int>{{lens.cameraTag, 0}}));
            const dVector d = mapping(number).toDirection({x / 200, y / 100, 0});
            ASSERT_TRUE(direction);
            expectVector(*direction, {d.z(), d.x(), d.y()});
            expectVector(*origin, {3, 4, 5});
            expectVector(lens.block.state.dir, *direction);
        }
    }
}

TEST(PanoramicLens, OutsideTheCircleTheZeroDirectionIsCast)
{
    const Library library;
    Running<int> lens(library, "vhLensPanoramic_v1", 4);
    const miMatrix identity = {1, 0, 0, 0, 0, 1, 0, 0, 0, 0, 1, 0, 0, 0, 0, 1};
    std::copy(std::begin(identity), std::end(identity), lens.camera.tf.local_to_global);
    lens.init();
    lens.block.state.raster_x = 200;
    lens.block.state.raster_y = 100;
    std::optional<miVector> direction;
    lens.renderer.traceEye = [&](miColor*, const miVector&, const miVector& towards) {
        direction = towards;
        return miTRUE;
    };
    miColor result{};
    lens.execute(result);
    ASSERT_TRUE(direction);
    expectVector(*direction, {0, 0, 0});
}

// ---- lenses that change colours

/// What a lens makes of a colour, and of whether anything was there.
miColor changed(const char* shader, float setting, const miColor& seen, miBoolean found = miTRUE)
{
    const Library library;
    Running<float> lens(library, shader, setting);
    lens.init();
    lens.block.params = 100; // read no more
    lens.block.state.org = {1, 2, 3};
    lens.block.state.dir = {0, 0, -1};
    lens.renderer.traceEye = [&](miColor* result, const miVector& origin, const miVector& direction) {
        expectVector(origin, {1, 2, 3});
        expectVector(direction, {0, 0, -1});
        *result = seen;
        return found;
    };
    miColor result{9, 9, 9, 9};
    EXPECT_EQ(lens.execute(result), 1);
    EXPECT_EQ(lens.renderer.calls, (Calls{"mi_query", "mi_trace_eye"}));
    return result;
}

TEST(GammaLens, RaisesToOneOverGammaAndKeepsAlpha)
{
    expectColor(changed("vhLensGamma_v1", 2, {0.25f, 4, 0, 0.5f}), {0.5f, 2, 0, 0.5f});
    expectColor(changed("vhLensGamma_v1", 0.5f, {0.25f, 4, 1, 0.5f}, miFALSE), {0.0625f, 16, 1, 0.5f});
}

TEST(GammaLens, OfOneChangesNothing)
{
    expectColor(changed("vhLensGamma_v1", 1, {0.3f, 0.7f, 123, 0.1f}), {0.3f, 0.7f, 123, 0.1f});
}

TEST(GammaLens, OfNothingIsNothingOrInfinite)
{
    expectColor(changed("vhLensGamma_v1", 0, {0.5f, 2, 1, 0.25f}), {0, infinity, 1, 0.25f});
}

TEST(GammaLens, OfANegativeColourIsNoNumber)
{
    EXPECT_TRUE(std::isnan(changed("vhLensGamma_v1", 2.2f, {-1, 0, 0, 1}).r));
}

TEST(BrightnessLens, MultipliesAndKeepsAlpha)
{
    expectColor(changed("vhLensBrightness_v1", 3, {0.5f, 2, -1, 0.5f}), {1.5f, 6, -3, 0.5f});
    expectColor(changed("vhLensBrightness_v1", 0, {0.5f, 2, 1, 0.25f}, miFALSE), {0, 0, 0, 0.25f});
}

// ---- the environment

struct EnvironmentParameters {
    int mapping;
    miTag texture;
};

TEST(PanoramicEnvironment, LooksUpWhereTheRayPointsInTheWorld)
{
    const Library library;
    for (const int number : numbers)
        for (const miBoolean found : {miTRUE, miFALSE}) {
            SCOPED_TRACE(number);
            Running<EnvironmentParameters> environment(library, "vhEnvironmentPanoramic_v1", {number, 12});
            environment.init();
            environment.block.params.mapping = 0; // read no more
            const float turned[] = {0, 1, 0, 0, 0, 1, 1, 0, 0};
            std::copy(std::begin(turned), std::end(turned), environment.renderer.toWorld);
            std::optional<miVector> coordinates;
            environment.renderer.lookUpTexture = [&](miColor* result, miTag texture, const miVector& at) {
                EXPECT_EQ(texture, 12u);
                coordinates = at;
                *result = {1, 2, 3, 4};
                return found;
            };
            environment.block.state.dir = {0.48f, -0.64f, 0.6f};
            miColor result{9, 9, 9, 9};
            EXPECT_EQ(environment.execute(result), found);
            expectColor(result, {1, 2, 3, 4});
            EXPECT_EQ(environment.renderer.calls,
                      (Calls{"mi_query", "mi_vector_to_world", "mi_lookup_color_texture"}));
            ASSERT_TRUE(coordinates);
            expectVector(*coordinates, mapping(number).toTextureCoordinates({0.6f, 0.48f, -0.64f}));
        }
}

TEST(PanoramicEnvironment, WithoutATextureThereIsNothing)
{
    const Library library;
    Running<EnvironmentParameters> environment(library, "vhEnvironmentPanoramic_v1", {0, 0});
    environment.init();
    environment.block.state.dir = {0, 0, -1};
    miColor result{9, 9, 9, 9};
    EXPECT_EQ(environment.execute(result), 0);
    expectColor(result, {0, 0, 0, 0});
    EXPECT_EQ(environment.renderer.calls, (Calls{"mi_query"}));
}

TEST(PanoramicEnvironment, TheZeroDirectionSeesNothing)
{
    const Library library;
    Running<EnvironmentParameters> environment(library, "vhEnvironmentPanoramic_v1", {0, 12});
    environment.init();
    environment.block.state.dir = {0, -0.0f, 0};
    miColor result{9, 9, 9, 9};
    EXPECT_EQ(environment.execute(result), 0);
    expectColor(result, {0, 0, 0, 0});
    EXPECT_EQ(environment.renderer.calls, (Calls{"mi_query", "mi_vector_to_world"}));
    environment.block.state.dir = {1e-40f, 0, 0};
    environment.renderer.lookUpTexture = [](miColor*, miTag, const miVector&) { return miTRUE; };
    EXPECT_EQ(environment.execute(result), 1) << "short, but not zero";
}

TEST(PanoramicEnvironment, TheTextureMayBeAnotherOneAtEachSample)
{
    const Library library;
    Running<EnvironmentParameters> environment(library, "vhEnvironmentPanoramic_v1", {0, 12});
    environment.block.connect(environment.block.params.texture);
    miTag wired = 20;
    int evaluations = 0;
    environment.renderer.evaluate = [&](void*) {
        ++evaluations;
        ++wired;
        return static_cast<void*>(&wired);
    };
    environment.init();
    EXPECT_EQ(evaluations, 0) << "not in init";
    std::vector<miTag> textures;
    environment.renderer.lookUpTexture = [&](miColor*, miTag texture, const miVector&) {
        textures.push_back(texture);
        return miTRUE;
    };
    environment.block.state.dir = {0, 0, -1};
    miColor result{};
    environment.execute(result);
    environment.execute(result);
    EXPECT_EQ(textures, (std::vector<miTag>{21, 22}));
    EXPECT_EQ(evaluations, 2);
}

TEST(PanoramicEnvironment, OddDirectionsDoNoHarm)
{
    const Library library;
    const float nan = std::nanf("");
    for (const int number : numbers) {
        Running<EnvironmentParameters> environment(library, "vhEnvironmentPanoramic_v1", {number, 12});
        environment.init();
        int lookUps = 0;
        environment.renderer.lookUpTexture = [&](miColor*, miTag, const miVector&) {
            return ++lookUps, miTRUE;
        };
        for (const miVector& direction : {miVector{nan, nan, nan},
                                          {nan, 0, 1},
                                          {infinity, 0, 0},
                                          {-infinity, infinity, nan},
                                          {1e30f, 1e30f, 0}}) {
            environment.block.state.dir = direction;
            miColor result{};
            EXPECT_EQ(environment.execute(result), 1);
        }
        EXPECT_EQ(lookUps, 5);
    }
}

} // namespace
