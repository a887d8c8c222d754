// SPDX-License-Identifier: BSD-3-Clause
// User area lights: the shader chooses the samples, and what they are divided by.
#include "tests/host/render/lit.h"

#include "host/report/message.h"
#include "tests/harness/messages.h"
#include "tests/harness/values.h"

#include <gtest/gtest.h>

#include <numeric>

namespace {

using namespace test;

/// Above the floor, with a shader that counts.
struct User : Lit {
    std::vector<int> counts;
    int lamps = 3;
    int left = -1; ///< what the shader leaves in the counter; below 0 it leaves it alone

    User()
    {
        record = &add({0, 4, 0}).record;
        record->area = miLIGHT_USER;
        shade = [this](miColor& result, miState& state) -> miBoolean {
            counts.push_back(state.count);
            if (state.count == lamps) {
                if (left >= 0)
                    state.count = miUshort(left);
                return 2;
            }
            result = {float(state.count + 1), 0, 0, 1};
            return miTRUE;
        };
    }
    float sum() const
    {
        return std::accumulate(delivered.begin(), delivered.end(), 0.0f,
                               [](float all, const Delivered& d) { return all + d.color.r; });
    }
    miLight* record = nullptr;
};

TEST(UserLight, IsAskedUntilItReturns2AndItsSamplesAreAveraged)
{
    User scene;
    scene.run();
    EXPECT_EQ(scene.counts, (std::vector<int>{0, 1, 2, 3}));
    EXPECT_EQ(scene.delivered.size(), 3u);
    EXPECT_EQ(scene.sum(), 6.0f);
    EXPECT_EQ(scene.samples, 3) << "the counter was left as it came";
}

TEST(UserLight, WhatItLeavesInTheCounterDividesTheSum)
{
    for (const int left : {1, 0, 2, 65535}) {
        User scene;
        scene.left = left;
        scene.run();
        EXPECT_EQ(scene.sum(), 6.0f);
        EXPECT_EQ(scene.samples, left);
    }
}

TEST(UserLight, NoneAtAll)
{
    User scene;
    scene.lamps = 0;
    scene.run();
    EXPECT_EQ(scene.samples, 0) << "nothing to divide by";
    scene.left = 1;
    scene.run();
    EXPECT_EQ(scene.samples, 1);
    EXPECT_TRUE(scene.delivered.empty());
}

TEST(UserLight, SamplesThatFailCountInTheAverage)
{
    User scene;
    scene.shade = [](miColor& result, miState& state) -> miBoolean {
        result = {1, 1, 1, 1};
        return state.count == 8 ? 2 : state.count % 4 == 0;
    };
    scene.run();
    EXPECT_EQ(scene.delivered.size(), 2u);
    EXPECT_EQ(scene.samples, 8);
}

TEST(UserLight, ItsSampleCountsAreNoLimit)
{
    User scene;
    scene.lamps = 200;
    scene.record->samples_u = scene.record->samples_v = 1;
    scene.run();
    EXPECT_EQ(scene.delivered.size(), 200u);
    // More than other lights may take, and less than nothing.
    scene.record->samples_u = scene.record->samples_v = 4464;
    scene.run();
    EXPECT_EQ(scene.delivered.size(), 200u);
    scene.record->samples_u = -7;
    const Messages messages;
    scene.run();
    EXPECT_EQ(scene.delivered.size(), 200u);
    EXPECT_TRUE(messages.lines().empty());
}

TEST(UserLight, OneThatNeverEndsIsStoppedWithOneWarning)
{
    User scene;
    scene.lamps = -1;
    scene.record->area = miLIGHT_USER;
    scene.rounds = 2;
    const Messages messages;
    scene.run();
    ASSERT_EQ(scene.counts.size(), 2u * 65536u);
    EXPECT_EQ(scene.counts[65534], 65534);
    EXPECT_EQ(scene.counts[65536], 0) << "the second loop";
    EXPECT_EQ(scene.delivered.size(), 2u * 65536u);
    EXPECT_EQ(scene.samples, 65536);
    ASSERT_EQ(messages.lines().size(), 1u);
    EXPECT_EQ(messages.count("light \"\" has given one point 65536 samples"), 1);
}

TEST(UserLight, ItsStateBeginsAsThatOfAPointLight)
{
    User scene;
    miState seen{};
    scene.lamps = 1;
    scene.shade = [&](miColor&, miState& state) -> miBoolean {
        seen = state;
        return state.count == 0 ? miTRUE : 2;
    };
    scene.run();
    EXPECT_EQ(seen.type, miRAY_LIGHT);
    EXPECT_NEAR(seen.org.y, 4, 1e-6);
    EXPECT_NEAR(seen.dir.y, -1, 1e-6);
    EXPECT_NEAR(seen.dist, 4, 1e-6);
    EXPECT_NEAR(seen.dot_nd, 1, 1e-6);
}

TEST(UserLight, FacingIsItsShadersBusiness)
{
    User scene;
    scene.record->origin = {0, -4, 0}; // below the floor
    scene.run();
    EXPECT_EQ(scene.delivered.size(), 3u);
    EXPECT_EQ(scene.delivered[0].cosine, 0.0f) << "never negative";
}

TEST(UserLight, DirectionAndCosineAreReadAfterTheCall)
{
    User scene;
    scene.lamps = 2;
    scene.shade = [](miColor&, miState& state) -> miBoolean {
        if (state.count == 2)
            return 2;
        state.dir = {float(state.count), -0.5f, 0};
        state.dot_nd = 0.25f * float(state.count + 1);
        return miTRUE;
    };
    scene.run();
    ASSERT_EQ(scene.delivered.size(), 2u);
    EXPECT_EQ(scene.delivered[1].direction.x, -1.0f);
    EXPECT_EQ(scene.delivered[1].direction.y, 0.5f);
    EXPECT_EQ(scene.delivered[0].cosine, 0.25f);
    EXPECT_EQ(scene.delivered[1].cosine, 0.5f);
}

TEST(UserLight, WhatItDoesToItsStateEndsWithTheSample)
{
    User scene;
    std::vector<float> heights;
    std::vector<miVector> origins;
    miState* lit = nullptr;
    scene.prepare = [&](miState& state) { lit = &state; };
    scene.shade = [&](miColor&, miState& state) -> miBoolean {
        heights.push_back(state.point.y);
        origins.push_back(state.org);
        EXPECT_EQ(lit->point.y, 0.0f) << "the surface's own state";
        EXPECT_EQ(lit->type, miRAY_EYE);
        if (state.count == 3)
            return 2;
        state.point.y = state.org.y = 77;
        state.normal = {0, 0, 0};
        return miTRUE;
    };
    scene.run();
    EXPECT_EQ(heights, (std::vector<float>(4, 0.0f)));
    for (const miVector& origin : origins)
        EXPECT_EQ(origin.y, 4.0f);
}

TEST(UserLight, EachLeafIsALightOfItsOwn)
{
    User scene;
    scene.left = 1;
    auto& group = scene.session.database.make<host::Group>();
    auto* const light = scene.session.database.findAs<host::Light>(
        scene.session.database.findAs<host::Instance>(scene.lightInstance)->record.item);
    scene.root.members.pop_back();
    scene.lightInstance = scene.place(*light, {0, 0, 0}, &group).tag;
    scene.place(group, {-1, 0, 0});
    scene.place(group, {1, 0, 0});
    scene.run();
    EXPECT_EQ(scene.counts, (std::vector<int>{0, 1, 2, 3, 0, 1, 2, 3}));
    EXPECT_EQ(scene.delivered.size(), 6u);
    EXPECT_EQ(scene.samples, 2) << "1 for each";
}

TEST(UserLight, LoopsOverTwoLightsMayRunSideBySide)
{
    User scene;
    const miTag first = scene.lightInstance;
    scene.pointLight({0, 0, 0}, [](miColor&, miState&) { return miTRUE; });
    auto& other = scene.pointLight({0, 4, 0}, [](miColor& result, miState& state) -> miBoolean {
        result = {10.0f * float(state.count + 1), 0, 0, 1};
        return state.count == 2 ? 2 : 1;
    });
    other.record.area = miLIGHT_USER;
    const miTag second = scene.place(other).tag;
    std::vector<float> seen;
    int samples[2] = {0, 0};
    scene.floor->materials = {
        scene
            .material([&](miColor&, miState& state) {
                miColor color;
                bool one = true, two = true;
                while (one || two) {
                    one = one && mi_sample_light(&color, nullptr, nullptr, &state, first, &samples[0]);
                    if (one)
                        seen.push_back(color.r);
                    two = two && mi_sample_light(&color, nullptr, nullptr, &state, second, &samples[1]);
                    if (two)
                        seen.push_back(color.r);
                }
                return miTRUE;
            })
            .tag};
    scene.run();
    EXPECT_EQ(seen, (std::vector<float>{1, 10, 2, 20, 3}));
    EXPECT_EQ(samples[0], 3);
    EXPECT_EQ(samples[1], 2);
}

TEST(UserLight, ALoopThatIsBrokenOffStartsAfresh)
{
    User scene;
    scene.floor->materials = {scene
                                  .material([&](miColor&, miState& state) {
                                      for (int round = 0; round < 2; ++round) {
                                          miColor color;
                                          int samples = 0;
                                          for (int i = 0; i < 2; ++i)
                                              mi_sample_light(&color, nullptr, nullptr, &state,
                                                              scene.lightInstance, &samples);
                                          EXPECT_EQ(samples, 2);
                                      }
                                      return miTRUE;
                                  })
                                  .tag};
    scene.run();
    EXPECT_EQ(scene.counts, (std::vector<int>{0, 1, 0, 1}));
}

TEST(UserLight, ShadowsReachToWhereTheShaderHasPutTheSample)
{
    User scene;
    auto& layer = scene.object({{-9, 0, 9}, {9, 0, 9}, {9, 0, -9}, {-9, 0, -9}}, {{0, 1, 2, 3}});
    layer.visible = false;
    scene.place(layer, {0, 2, 0}).materials = {scene.plain({1, 1, 1, 1}).tag};
    const auto heights = {1.0f, 3.0f, 1.5f, 9.0f};
    scene.lamps = 4;
    scene.shade = [&](miColor& result, miState& state) -> miBoolean {
        if (state.count == 4)
            return 2;
        state.org = {0, heights.begin()[state.count], 0};
        result = {1, 1, 1, 1};
        return mi_trace_shadow(&result, &state);
    };
    scene.run();
    EXPECT_EQ(scene.delivered.size(), 2u);
    EXPECT_EQ(scene.samples, 4);
    // Options without shadows, put into the lit surface's state for the time of the loop.
    miOptions swapped = scene.options.record;
    swapped.shadow = 0;
    scene.prepare = [&](miState& state) { state.options = &swapped; };
    scene.run();
    EXPECT_EQ(scene.delivered.size(), 4u);
    // Or by the light's own shader, for one sample.
    scene.prepare = {};
    scene.shade = [&](miColor& result, miState& state) -> miBoolean {
        if (state.count == 4)
            return 2;
        if (state.count == 1)
            state.options = &swapped;
        result = {1, 1, 1, 1};
        return mi_trace_shadow(&result, &state);
    };
    scene.run();
    EXPECT_EQ(scene.delivered.size(), 1u);
}

TEST(UserLight, PositionsThatAreNoNumbersPassWithoutShadow)
{
    User scene;
    scene.lamps = 1;
    scene.shade = [](miColor& result, miState& state) -> miBoolean {
        if (state.count == 1)
            return 2;
        state.org.x = std::numeric_limits<float>::quiet_NaN();
        result = {1, 1, 1, 1};
        return mi_trace_shadow(&result, &state);
    };
    scene.run();
    ASSERT_EQ(scene.delivered.size(), 1u);
    EXPECT_EQ(scene.delivered[0].color.r, 1.0f);
}

TEST(UserLight, OfADirectionalLightIsIgnored)
{
    User scene;
    scene.record->type = miLIGHT_DIRECTION;
    scene.record->direction = {0, -1, 0};
    scene.run();
    EXPECT_EQ(scene.counts, std::vector<int>{0});
    EXPECT_EQ(scene.samples, 1);
}

// ---- shaders in C, built without any of this project's flags

/// Scene elements of the shaders in clights.c.
struct InC : Scene {
    InC()
    {
        session.libraries.link(TEST_C_SHADERS, {}, {});
        session.declarations.add(
            declaration("row_light", field(host::Type::color, ""),
                        {field(host::Type::color, "color"), field(host::Type::integer, "lamps"),
                         field(host::Type::scalar, "gap"), field(host::Type::boolean, "average")},
                        1));
        session.declarations.add(
            declaration("row_lit", field(host::Type::color, ""), {field(host::Type::light, "light")}, 1));
        session.declarations.add(
            declaration("row_maker", field(host::Type::geometry, ""),
                        {field(host::Type::light, "light"), field(host::Type::boolean, "careless")}, 1));
    }
    host::Function& make(const std::string& type, const std::vector<host::Argument>& arguments)
    {
        auto made = std::make_unique<host::Function>(*session.declarations.find(type), arguments,
                                                     session.database, host::Location());
        host::Function& function = *made;
        session.database.add(std::move(made));
        return function;
    }
    host::Light& light(int lamps, bool average)
    {
        auto& light = session.database.make<host::Light>("row");
        light.record.area = miLIGHT_USER;
        light.record.origin = {0, 0, -1};
        light.hasOrigin = true;
        light.shader = {make("row_light", {argument("color", miColor{1, 2, 3, 1}), argument("lamps", lamps),
                                           argument("gap", 0.25f), argument("average", average)})
                            .tag};
        session.database.make<host::Instance>("row-i").record.item = light.tag;
        root.members.push_back(session.database.lookup("row-i"));
        auto& wall = place(square(9), {0, 0, -3});
        auto& material = session.database.make<host::Material>();
        material.shader = {make("row_lit", {argument("light", "row-i")}).tag};
        wall.materials = {material.tag};
        return light;
    }
};

/// The mean or the sum of cosines, from (0, 0, -3) to lamps at (gap k, 0, -1).
double expectedFrom(int lamps, bool average)
{
    double sum = 0;
    for (int k = 0; k < lamps; ++k)
        sum += 2 / std::hypot(0.25 * k, 2.0);
    return average ? sum / lamps : sum;
}

TEST(ShadersInC, AUserAreaLight)
{
    for (const bool average : {false, true}) {
        InC scene;
        scene.light(5, average);
        const miColor color = scene.look();
        EXPECT_NEAR(color.g, 2 * expectedFrom(5, average), 1e-5);
        EXPECT_NEAR(color.b, 3 * expectedFrom(5, average), 1e-5);
    }
}

TEST(ShadersInC, AUserPointerLivesFromInitToExit)
{
    InC scene;
    scene.light(5, false);
    const auto alive = [&] { return *static_cast<int*>(scene.session.libraries.symbol("row_tables")); };
    EXPECT_EQ(alive(), 0);
    scene.progress = [&](double) { EXPECT_EQ(alive(), 1) << "one light, one table"; };
    const Messages messages;
    scene.render(2);
    EXPECT_EQ(alive(), 0);
    EXPECT_TRUE(messages.lines().empty());
}

TEST(ShadersInC, AnInitOfAGeometryShaderMakesTheLightAUsers)
{
    for (const bool careless : {false, true}) {
        InC scene;
        host::Light& light = scene.light(5, false);
        light.record.area = miLIGHT_NONE;
        auto& maker = scene.session.database.make<host::Instance>("maker-i");
        maker.geometry = {
            scene.make("row_maker", {argument("light", "row-i"), argument("careless", careless)}).tag};
        scene.root.members.push_back(maker.tag);
        const Messages messages;
        EXPECT_NEAR(scene.look().g, 2 * expectedFrom(5, false), 1e-5);
        EXPECT_EQ(messages.lines().size(), careless ? 1u : 0u);
        EXPECT_EQ(messages.count("left 2 edits open, of instance \"row-i\" and light \"row\""), careless);
        EXPECT_EQ(scene.session.database.pins(light.tag), 0);
    }
}

TEST(ShadersInC, ThePictureDoesNotDependOnThreads)
{
    InC scene;
    scene.light(40, true);
    scene.camera.record.x_resolution = scene.camera.record.y_resolution = 96;
    const host::Picture one = scene.render(1), four = scene.render(4);
    for (int y = 0; y < 96; ++y)
        for (int x = 0; x < 96; ++x)
            ASSERT_EQ(one.color(x, y).r, four.color(x, y).r) << x << ' ' << y;
}

} // namespace
