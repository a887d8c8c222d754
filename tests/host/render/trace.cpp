// SPDX-License-Identifier: BSD-3-Clause
// Rays that shaders cast: levels, environments, lenses, what is copied back.
#include "host/api/further.h"
#include "tests/host/render/scene.h"

#include <gtest/gtest.h>

#include <cmath>
#include <cstring>
#include <limits>

namespace {

using test::Scene;

/// Two facing mirrors or windows, and an environment that is 100.
struct Hall : Scene {
    int hits = 0;
    int reflections = 0, refractions = 0;

    explicit Hall(miRay_type type)
    {
        camera.environment = {shader([](miColor& result, miState&) {
                                  result = {100, 0, 0, 1};
                                  return miTRUE;
                              }).tag};
        auto& surface = material([this, type](miColor& result, miState& state) {
            ++hits;
            reflections = state.reflection_level;
            refractions = state.refraction_level;
            miVector back = {0, 0, -state.dir.z};
            miColor behind{};
            miBoolean found = miFALSE;
            if (type == miRAY_REFLECT)
                found = mi_trace_reflection(&behind, &state, &back);
            else if (type == miRAY_REFRACT)
                found = mi_trace_refraction(&behind, &state, &state.dir);
            else
                found = mi_trace_transparent(&behind, &state);
            result = {behind.r + 1.0f, 0, found ? 1.0f : 0.0f, 1};
            return miTRUE;
        });
        if (type == miRAY_REFLECT) {
            place(square(1), {0, 0, -2}).materials = {surface.tag};
            place(square(1), {0, 0, 1}).materials = {surface.tag};
        } else {
            for (int i = 1; i <= 20; ++i)
                place(square(30), {0, 0, float(-i)}).materials = {surface.tag};
        }
    }
};

TEST(Trace, DepthsLimitEachKindOfRayAndTheirSum)
{
    struct Row {
        miRay_type type;
        int reflection, refraction, sum;
        int hits;
    };
    // One hit by the eye ray, and one more for each level.
    const Row rows[] = {{miRAY_REFLECT, 0, 9, 9, 1},     {miRAY_REFLECT, 3, 9, 9, 4},
                        {miRAY_REFLECT, 9, 9, 5, 6},     {miRAY_REFRACT, 9, 0, 9, 1},
                        {miRAY_REFRACT, 9, 4, 9, 5},     {miRAY_REFRACT, 9, 9, 2, 3},
                        {miRAY_TRANSPARENT, 9, 4, 9, 5}, {miRAY_TRANSPARENT, 9, 9, 0, 1}};
    for (const Row& row : rows) {
        SCOPED_TRACE(int(row.type) * 1000 + row.reflection * 100 + row.refraction * 10 + row.sum);
        Hall hall(row.type);
        hall.options.record.reflection_depth = row.reflection;
        hall.options.record.refraction_depth = row.refraction;
        hall.options.record.trace_depth = row.sum;
        const miColor color = hall.look();
        EXPECT_EQ(hall.hits, row.hits);
        EXPECT_EQ(hall.reflections, row.type == miRAY_REFLECT ? row.hits - 1 : 0);
        EXPECT_EQ(hall.refractions, row.type == miRAY_REFLECT ? 0 : row.hits - 1);
        // Beyond the limit reflected and refracted rays see the environment, transparent ones nothing.
        EXPECT_EQ(color.r, float(row.hits) + (row.type == miRAY_TRANSPARENT ? 0.0f : 100.0f));
    }
}

TEST(Trace, ARayThatLeavesTheSceneSeesTheEnvironment)
{
    Hall hall(miRAY_REFRACT);
    hall.options.record.refraction_depth = hall.options.record.trace_depth = 100;
    EXPECT_EQ(hall.look().r, 120.0f);
    EXPECT_EQ(hall.hits, 20);
}

TEST(Trace, TraceOffAndSurfacesThatCastNoSuchRays)
{
    Hall hall(miRAY_REFLECT);
    hall.options.record.reflection_depth = hall.options.record.trace_depth = 5;
    hall.options.record.trace = miFALSE;
    EXPECT_EQ(hall.look().r, 101.0f);
    EXPECT_EQ(hall.hits, 1);

    Hall still(miRAY_REFLECT);
    still.options.record.reflection_depth = still.options.record.trace_depth = 5;
    still.session.database.findAs<host::Instance>(still.root.members[1])->record.reflection = 8;
    EXPECT_EQ(still.look().r, 101.0f);
}

TEST(Trace, SurfacesThatAreNotSeenByAKindOfRayAreMissed)
{
    for (const miRay_type type : {miRAY_REFLECT, miRAY_REFRACT, miRAY_TRANSPARENT}) {
        Scene scene;
        scene.options.record.reflection_depth = scene.options.record.refraction_depth = 9;
        scene.options.record.trace_depth = 9;
        auto& glass = scene.material([&](miColor& result, miState& state) {
            miVector forward = state.dir;
            if (type == miRAY_REFLECT)
                mi_trace_reflection(&result, &state, &forward);
            else if (type == miRAY_REFRACT)
                mi_trace_refraction(&result, &state, &forward);
            else
                mi_trace_transparent(&result, &state);
            return miTRUE;
        });
        scene.place(scene.square(1), {0, 0, -1}).materials = {glass.tag};
        auto& hidden = scene.place(scene.square(1), {0, 0, -2});
        hidden.materials = {scene.plain({1, 0, 0, 1}).tag};
        scene.place(scene.square(1), {0, 0, -3}).materials = {scene.plain({2, 0, 0, 1}).tag};
        EXPECT_EQ(scene.look().r, 1.0f);
        (type == miRAY_REFLECT   ? hidden.record.reflection
         : type == miRAY_REFRACT ? hidden.record.refraction
                                 : hidden.record.transparency) = 4;
        EXPECT_EQ(scene.look().r, 2.0f);
        hidden.record.visible = 1; // only eye rays ask for this
        EXPECT_EQ(scene.look().r, 2.0f);
    }
}

TEST(Trace, TheChildIsACopyAndTheCastingStateStaysAsItIs)
{
    Scene scene;
    scene.options.record.refraction_depth = scene.options.record.trace_depth = 2;
    int user = 0;
    miState before{}, after{}, child{};
    const miState* parentOfChild = nullptr;
    const miState* caster = nullptr;
    const miState* remembered = nullptr;
    miTag wanted = 0;
    scene.place(scene.square(1), {0, 0, -1}).materials = {
        scene
            .material([&](miColor& result, miState& state) {
                state.user = &user;
                state.user_size = 4;
                state.ior = 1.5f;
                caster = &state;
                before = state;
                miVector direction = {0, 0, -2}; // not of unit length
                mi_trace_refraction(&result, &state, &direction);
                after = state;
                remembered = state.child;
                wanted = state.child->instance;
                return miTRUE;
            })
            .tag};
    scene.place(scene.square(1), {0, 0, -4}).materials = {scene
                                                              .material([&](miColor&, miState& state) {
                                                                  child = state;
                                                                  parentOfChild = state.parent;
                                                                  return miTRUE;
                                                              })
                                                              .tag};
    scene.look();
    EXPECT_EQ(parentOfChild, caster);
    EXPECT_EQ(child.type, miRAY_REFRACT);
    EXPECT_EQ(child.refraction_level, 1);
    EXPECT_EQ(child.user, &user);
    EXPECT_EQ(child.ior, 1.5f);
    EXPECT_FLOAT_EQ(child.org.z, -1.0f);
    EXPECT_FLOAT_EQ(child.dir.z, -1.0f);
    EXPECT_NEAR(child.dist, 3.0, 1e-5);
    EXPECT_EQ(child.raster_x, before.raster_x);
    EXPECT_EQ(wanted, child.instance) << "the last child can be looked at";
    EXPECT_NE(remembered, nullptr);
    EXPECT_EQ(after.point.z, before.point.z);
    EXPECT_EQ(after.normal.z, before.normal.z);
    EXPECT_EQ(after.dist, before.dist);
    EXPECT_EQ(after.instance, before.instance);
    EXPECT_EQ(after.tex_list, before.tex_list);
}

TEST(Trace, UserDataIsForWhatAShaderCallsAndGoneWhenItReturns)
{
    Scene scene;
    scene.options.record.refraction_depth = scene.options.record.trace_depth = 1;
    int data = 0;
    std::vector<std::pair<void*, int>> seen;
    const auto look = [&](miState& state) { seen.emplace_back(state.user, state.user_size); };
    const auto looking = [&](miColor&, miState& state) {
        look(state);
        return miTRUE;
    };
    scene.camera.environment = {scene.shader(looking).tag};
    auto& first = scene.material([&](miColor& result, miState& state) {
        look(state);
        state.user = &data;
        state.user_size = sizeof data;
        mi_trace_refraction(&result, &state, &state.dir);
        return miTRUE;
    });
    first.shader.push_back(scene.shader(looking).tag);
    scene.place(scene.square(1), {0, 0, -1}).materials = {first.tag};
    scene.look();
    const std::vector<std::pair<void*, int>> expected = {{nullptr, 0}, {&data, 4}, {nullptr, 0}};
    EXPECT_EQ(seen, expected) << "the shader, the environment of its ray, the next shader of the list";
}

TEST(Trace, SegmentsOfShadowsPassAsTheyAre)
{
    const miColor before = {0.25f, 0.5f, 0.75f, 1};
    miColor color = before;
    miState state{};
    EXPECT_TRUE(mi_trace_shadow_seg(&color, &state));
    EXPECT_EQ(std::memcmp(&color, &before, sizeof color), 0);
}

TEST(Trace, RaysDoNotMeetTheSurfaceThatTheyStartFrom)
{
    // A warped and tilted mesh far from the origin: every ray starts on it, and all others are misses.
    Scene scene;
    scene.options.record.refraction_depth = scene.options.record.trace_depth = 8;
    std::vector<miVector> points;
    std::vector<std::vector<std::uint32_t>> quads;
    const std::uint32_t n = 24;
    for (std::uint32_t j = 0; j <= n; ++j)
        for (std::uint32_t i = 0; i <= n; ++i) {
            const float x = 2.0f * float(i) / n - 1.0f, y = 2.0f * float(j) / n - 1.0f;
            points.push_back({x, y, 0.2f * (x * x + y * y)});
        }
    for (std::uint32_t j = 0; j < n; ++j)
        for (std::uint32_t i = 0; i < n; ++i) {
            const std::uint32_t a = j * (n + 1) + i;
            quads.push_back({a, a + 1, a + n + 2});
            quads.push_back({a, a + n + 2, a + n + 1});
        }
    int again = 0, first = 0;
    auto& bowl = scene.object(points, quads);
    scene.place(bowl, {1000, -2000, 497}).materials = {scene
                                                           .material([&](miColor& result, miState& state) {
                                                               ++(state.type == miRAY_EYE ? first : again);
                                                               if (state.type == miRAY_EYE) {
                                                                   mi_trace_transparent(&result, &state);
                                                                   mi_trace_refraction(&result, &state,
                                                                                       &state.normal);
                                                               }
                                                               return miTRUE;
                                                           })
                                                           .tag};
    test::moveTo(scene.cameraInstance, {1000, -2000, 500});
    scene.camera.record.x_resolution = scene.camera.record.y_resolution = 64;
    scene.camera.record.focal = 3.5f;
    scene.render();
    EXPECT_GT(first, 3000);
    EXPECT_EQ(again, 0);
}

TEST(Trace, AMaterialsEnvironmentIsForTheRaysThatItCasts)
{
    Scene scene;
    scene.options.record.reflection_depth = scene.options.record.trace_depth = 3;
    const auto constant = [&](float value) {
        return scene
            .shader([value](miColor& result, miState& state) {
                result = {value, float(state.type), float(state.dist), 1};
                return miTRUE;
            })
            .tag;
    };
    scene.camera.environment = {constant(5)};
    miColor direct{};
    auto& mirror = scene.material([&](miColor& result, miState& state) {
        miVector up = {0, 1, 0};
        mi_trace_environment(&direct, &state, &up);
        return mi_trace_reflection(&result, &state, &up);
    });
    auto& instance = scene.place(scene.square(1), {0, 0, -1});
    instance.materials = {mirror.tag};
    EXPECT_EQ(scene.look().r, 5.0f);
    EXPECT_EQ(direct.r, 5.0f);
    EXPECT_EQ(direct.g, float(miRAY_ENVIRONMENT));
    EXPECT_EQ(direct.b, 0.0f);
    mirror.environment = {constant(6)};
    const miColor own = scene.look();
    EXPECT_EQ(own.r, 6.0f);
    EXPECT_EQ(own.g, float(miRAY_REFLECT)); // of the ray that missed
    EXPECT_EQ(direct.r, 6.0f);
    scene.root.members.pop_back();
    const miColor primary = scene.look();
    EXPECT_EQ(primary.r, 5.0f);
    EXPECT_EQ(primary.g, float(miRAY_EYE));
}

TEST(Trace, EnvironmentsSeeNothingOfTheSurfaceThatAsks)
{
    Scene scene;
    scene.options.record.reflection_depth = scene.options.record.trace_depth = 3;
    const miState* asking = nullptr;
    miTag asked = miNULLTAG;
    int calls = 0;
    const miTag sky = scene
                          .shader([&](miColor&, miState& state) {
                              ++calls;
                              EXPECT_EQ(state.parent, asking);
                              EXPECT_EQ(state.environment, asked);
                              EXPECT_EQ(state.camera, &scene.camera.record);
                              EXPECT_EQ(state.pri, nullptr);
                              EXPECT_EQ(state.instance, miNULLTAG);
                              EXPECT_EQ(state.material, miNULLTAG);
                              EXPECT_EQ(state.tex_list, nullptr);
                              EXPECT_EQ(state.label, 0u);
                              EXPECT_EQ(state.face, '\0');
                              EXPECT_EQ(state.shadow_tol, 0.0);
                              EXPECT_EQ(state.bary[0], 0.0f);
                              EXPECT_FALSE(state.inv_normal);
                              return miTRUE;
                          })
                          .tag;
    scene.camera.environment = {asked = sky};
    // Its back is seen, so that there is something to be cleared.
    auto& square = scene.square(1);
    square.label = 5;
    auto& instance = scene.place(square, {0, 0, -4});
    test::setMatrix(instance, {-1, 0, 0, 0, 0, 1, 0, 0, 0, 0, -1, 0, 0, 0, -4, 1});
    instance.materials = {scene
                              .material([&](miColor& result, miState& state) {
                                  EXPECT_TRUE(state.inv_normal);
                                  EXPECT_EQ(state.face, 'b');
                                  EXPECT_GT(state.shadow_tol, 0.0);
                                  asking = &state;
                                  miVector up = {0, 1, 0};
                                  mi_trace_environment(&result, &state, &up);
                                  return mi_trace_reflection(&result, &state, &up);
                              })
                              .tag};
    scene.look();
    EXPECT_EQ(calls, 2);
}

TEST(Trace, NoEnvironmentIsFalseAndBlack)
{
    Scene scene;
    miBoolean found = miTRUE;
    miColor color = {9, 9, 9, 9};
    scene.place(scene.square(1), {0, 0, -1}).materials = {scene
                                                              .material([&](miColor&, miState& state) {
                                                                  found = mi_trace_environment(&color, &state,
                                                                                               &state.dir);
                                                                  return miTRUE;
                                                              })
                                                              .tag};
    scene.look();
    EXPECT_FALSE(found);
    EXPECT_EQ(color.r, 0.0f);
    EXPECT_EQ(color.a, 0.0f);
}

TEST(Trace, LensesChainAndSeeWhatWasHit)
{
    Scene scene;
    std::vector<std::string> order;
    auto& square = scene.square(1);
    square.label = 9;
    scene.place(square, {0, 0, -4}).materials = {scene
                                                     .material([&](miColor& result, miState& state) {
                                                         order.push_back("material");
                                                         EXPECT_NE(state.parent, nullptr);
                                                         EXPECT_EQ(state.type, miRAY_EYE);
                                                         result = {1, 0, 0, 1};
                                                         return miTRUE;
                                                     })
                                                     .tag};
    const auto lens = [&](const std::string& name, miVector origin) {
        return scene
            .shader([&, name, origin](miColor& result, miState& state) {
                order.push_back(name);
                miVector from = origin, to = {0, 0, -1};
                const miBoolean found = mi_trace_eye(&result, &state, &from, &to);
                EXPECT_TRUE(found);
                EXPECT_EQ(state.org.z, origin.z);
                EXPECT_EQ(state.label, 9u);
                EXPECT_FLOAT_EQ(state.point.z, -4.0f);
                EXPECT_FLOAT_EQ(state.normal.z, 1.0f);
                result.r *= 2;
                order.push_back("end " + name);
                return miTRUE;
            })
            .tag;
    };
    scene.camera.lens = {lens("first", {0, 0, 5}), lens("second", {0, 0, 1})};
    EXPECT_EQ(scene.look().r, 4.0f);
    EXPECT_EQ(order, (std::vector<std::string>{"first", "second", "material", "end second", "end first"}));
    scene.options.record.no_lens = miTRUE;
    scene.place(scene.square(1), {0, 0, -3}).materials = {scene.plain({7, 0, 0, 1}).tag};
    EXPECT_EQ(scene.look().r, 7.0f);
}

TEST(Trace, ALensMayTraceOftenOrNotAtAll)
{
    Scene scene;
    scene.place(scene.square(1), {0, 0, -1}).materials = {scene.plain({1, 0, 0, 1}).tag};
    int count = 3;
    scene.camera.lens = {scene
                             .shader([&](miColor& result, miState& state) {
                                 for (int i = 0; i < count; ++i) {
                                     miColor one{};
                                     miVector from = {0, 0, 0}, to = {0, 0, -1};
                                     mi_trace_eye(&one, &state, &from, &to);
                                     result.r += one.r;
                                 }
                                 return miTRUE;
                             })
                             .tag};
    EXPECT_EQ(scene.look().r, 3.0f);
    count = 0;
    EXPECT_EQ(scene.look().r, 0.0f);
}

TEST(Trace, OddDirectionsOfLensesSeeTheEnvironmentWithThatDirection)
{
    const float nan = std::numeric_limits<float>::quiet_NaN(), inf = std::numeric_limits<float>::infinity();
    for (const miVector& odd : {miVector{0, 0, 0}, miVector{nan, 0, 0}, miVector{0, inf, 0}}) {
        Scene scene;
        scene.place(scene.square(1), {0, 0, -1}).materials = {scene.plain({1, 0, 0, 1}).tag};
        miVector asked{};
        double distance = -1;
        scene.camera.environment = {scene
                                        .shader([&](miColor& result, miState& state) {
                                            asked = state.dir;
                                            result = {5, 0, 0, 1};
                                            return miTRUE;
                                        })
                                        .tag};
        scene.camera.lens = {scene
                                 .shader([&](miColor& result, miState& state) {
                                     miVector to = odd;
                                     mi_trace_eye(&result, &state, &state.org, &to);
                                     distance = state.dist;
                                     return miTRUE;
                                 })
                                 .tag};
        EXPECT_EQ(scene.look().r, 5.0f);
        EXPECT_EQ(std::memcmp(&asked, &odd, sizeof odd), 0);
        EXPECT_EQ(distance, 0.0);
    }
}

TEST(Trace, ALensThatChangesNothingKeepsTheCamerasClipping)
{
    Scene scene;
    scene.place(scene.square(1), {0, 0, -3}).materials = {scene.plain({1, 0, 0, 1}).tag};
    scene.camera.record.clip = {4, 10};
    EXPECT_EQ(scene.look().r, 0.0f);
    float aside = 0;
    scene.camera.lens = {scene
                             .shader([&](miColor& result, miState& state) {
                                 miVector from = state.org;
                                 from.x += aside;
                                 mi_trace_eye(&result, &state, &from, &state.dir);
                                 return miTRUE;
                             })
                             .tag};
    EXPECT_EQ(scene.look().r, 0.0f);
    aside = 0.125f;
    EXPECT_EQ(scene.look().r, 1.0f) << "a ray of the lens's own";
}

TEST(Trace, ALongDirectionIsNormalisedAndDistancesAreOfTheWorld)
{
    Scene scene;
    double distance = 0;
    scene.place(scene.square(1), {0, 0, -4}).materials = {scene.plain({1, 0, 0, 1}).tag};
    scene.camera.lens = {scene
                             .shader([&](miColor& result, miState& state) {
                                 miVector to = {0, 0, -100};
                                 mi_trace_eye(&result, &state, &state.org, &to);
                                 distance = state.dist;
                                 return miTRUE;
                             })
                             .tag};
    EXPECT_EQ(scene.look().r, 1.0f);
    EXPECT_NEAR(distance, 4.0, 1e-5);
}

TEST(Trace, OpacityBelowOneLetsEyeRaysGoOn)
{
    Scene scene;
    scene.options.strings["composite opacity"] = true;
    const auto veil = [&](float value, const miColor& opacity) {
        return scene
            .material([value, opacity](miColor& result, miState& state) {
                result = {value, value, value, 0.5f};
                const miColor first = {0.1f, 0.1f, 0.1f, 0.1f};
                mi_opacity_set(&state, &first);
                mi_opacity_set(&state, &opacity); // the last one counts
                return miTRUE;
            })
            .tag;
    };
    scene.place(scene.square(1), {0, 0, -1}).materials = {veil(1.0f, {0.25f, 0.5f, 1.0f, 0.5f})};
    scene.place(scene.square(1), {0, 0, -2}).materials = {veil(10.0f, {0.5f, 0.5f, 0.5f, 0.5f})};
    scene.place(scene.square(1), {0, 0, -3}).materials = {scene.plain({100, 100, 100, 1}).tag};
    scene.place(scene.square(1), {0, 0, -4}).materials = {scene.plain({1e6f, 1e6f, 1e6f, 1}).tag};
    const miColor c = scene.look();
    // front + (1 - opacity) * behind, channel by channel; a surface that sets none ends the ray.
    EXPECT_FLOAT_EQ(c.r, 1.0f + 0.75f * (10.0f + 0.5f * 100.0f));
    EXPECT_FLOAT_EQ(c.g, 1.0f + 0.5f * (10.0f + 0.5f * 100.0f));
    EXPECT_FLOAT_EQ(c.b, 1.0f);
    EXPECT_FLOAT_EQ(c.a, 0.5f + 0.5f * (0.5f + 0.5f * 1.0f));
    scene.options.strings["composite opacity"] = false;
    EXPECT_EQ(scene.look().r, 1.0f);
}

TEST(Trace, TheOpacityThatWasSetLastCanBeRead)
{
    Scene scene;
    scene.options.strings["composite opacity"] = false;
    int calls = 0;
    auto& glass = scene.material([&](miColor& result, miState& state) {
        ++calls;
        miColor opacity = {9, 9, 9, 9};
        EXPECT_FALSE(mi_opacity_get(&state, &opacity));
        EXPECT_EQ(opacity.r, 9.0f); // left alone
        const miColor first = {0.1f, 0.2f, 0.3f, 0.4f}, last = {0.5f, 0.6f, 0.7f, 0.8f};
        mi_opacity_set(&state, &first);
        mi_opacity_set(&state, &last);
        EXPECT_TRUE(mi_opacity_get(&state, &opacity));
        EXPECT_EQ(std::memcmp(&opacity, &last, sizeof last), 0);
        // A ray of its own has one of its own.
        if (calls == 1)
            mi_trace_transparent(&result, &state);
        EXPECT_TRUE(mi_opacity_get(&state, &opacity));
        EXPECT_EQ(opacity.r, 0.5f);
        return miTRUE;
    });
    scene.options.record.refraction_depth = scene.options.record.trace_depth = 2;
    scene.place(scene.square(1), {0, 0, -1}).materials = {glass.tag};
    scene.place(scene.square(1), {0, 0, -2}).materials = {glass.tag};
    scene.look();
    EXPECT_EQ(calls, 2);
    miState none{};
    miColor opacity{};
    EXPECT_FALSE(mi_opacity_get(&none, &opacity));
}

TEST(Trace, ProbesFindHitsAndCallNoShader)
{
    Scene scene;
    int environments = 0;
    scene.camera.environment = {scene
                                    .shader([&](miColor&, miState&) {
                                        ++environments;
                                        return miTRUE;
                                    })
                                    .tag};
    scene.options.record.trace_depth = 0; // which does not limit probes
    int shaded = 0;
    auto& wall = scene.material([&](miColor&, miState&) {
        ADD_FAILURE() << "a probe has called it";
        return miTRUE;
    });
    scene.place(scene.square(1), {0, 0, -5}).materials = {wall.tag};
    auto& front = scene.material([&](miColor&, miState& state) {
        ++shaded;
        const miVector point = state.point;
        miVector ahead = {0, 0, -2}; // of any length
        EXPECT_TRUE(mi_trace_probe(&state, &ahead, &state.point));
        EXPECT_EQ(state.child->type, miRAY_PROBE);
        EXPECT_NE(state.child->instance, miNULLTAG);
        EXPECT_NE(state.child->instance, state.instance);
        EXPECT_EQ(state.child->material, wall.tag);
        EXPECT_FLOAT_EQ(state.child->point.z, -5.0f);
        EXPECT_NEAR(state.child->dist, 3.0, 1e-5);
        EXPECT_FLOAT_EQ(state.child->normal.z, 1.0f);
        EXPECT_FLOAT_EQ(state.child->dir.z, -1.0f);
        // The state itself stays.
        EXPECT_EQ(std::memcmp(&state.point, &point, sizeof point), 0);
        EXPECT_NEAR(state.dist, 2.0, 1e-5);
        // From elsewhere, and from behind.
        miVector origin = {0.5f, 0.5f, -9}, back = {0, 0, 1};
        EXPECT_TRUE(mi_trace_probe(&state, &back, &origin));
        EXPECT_NEAR(state.child->dist, 4.0, 1e-5);
        EXPECT_FLOAT_EQ(state.child->normal.z, -1.0f);
        EXPECT_TRUE(state.child->inv_normal);
        // Nothing there, or no direction.
        miVector up = {0, 1, 0}, none = {0, 0, 0}, endless = {NAN, 0, 0};
        EXPECT_FALSE(mi_trace_probe(&state, &up, &state.point));
        EXPECT_EQ(state.child->instance, miNULLTAG);
        EXPECT_FALSE(mi_trace_probe(&state, &none, &state.point));
        EXPECT_FALSE(mi_trace_probe(&state, &endless, &state.point));
        return miTRUE;
    });
    scene.place(scene.square(1), {0, 0, -2}).materials = {front.tag};
    scene.look();
    EXPECT_EQ(shaded, 1);
    EXPECT_EQ(environments, 0);
}

TEST(Trace, MirrorsFacingEachOtherMayGoDeep)
{
    Hall hall(miRAY_REFLECT);
    hall.options.record.reflection_depth = hall.options.record.trace_depth = 400;
    EXPECT_EQ(hall.look().r, 501.0f);
}

} // namespace
