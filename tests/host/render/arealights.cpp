// SPDX-License-Identifier: BSD-3-Clause
// Area lights: samples over a shape, against closed forms.
#include "tests/host/render/lit.h"

#include "tests/harness/stage.h"

#include <gtest/gtest.h>

#include <cmath>
#include <set>

namespace {

using namespace test;

/// Samples of area lights lie on the shape, one in each stratum of rows and columns.
TEST(Light, AreaLightsAreSampledOverTheirShape)
{
    struct Row {
        miLight_area area;
        std::function<void(miLight&)> set;
        std::function<bool(miVector)> on;
    };
    const auto close = [](double a, double b) { return std::abs(a - b) < 1e-4; };
    const Row rows[] = {
        {miLIGHT_RECTANGLE,
         [](miLight& l) {
             l.primitive.rectangle = {{0.5f, 0, 0}, {0, 0, 0.25f}};
         },
         [&](miVector p) { return close(p.y, 5) && std::abs(p.x) <= 0.5f && std::abs(p.z) <= 0.25f; }},
        {miLIGHT_DISC,
         [](miLight& l) {
             l.primitive.disc = {{0, -2, 0}, 0.5f};
         },
         [&](miVector p) { return close(p.y, 5) && std::hypot(p.x, p.z) <= 0.5f + 1e-4f; }},
        {miLIGHT_SPHERE, [](miLight& l) { l.primitive.sphere = {0.5f}; },
         [&](miVector p) { return close(std::hypot(p.x, p.y - 5, p.z), 0.5); }},
        {miLIGHT_CYLINDER,
         [](miLight& l) {
             l.primitive.cylinder = {{0, 0, 2}, 0.5f};
         },
         [&](miVector p) { return close(std::hypot(p.x, p.y - 5), 0.5) && std::abs(p.z) <= 2; }}};
    for (const Row& row : rows) {
        SCOPED_TRACE(int(row.area));
        Lit scene;
        host::Light& light = scene.add({0, 5, 0});
        light.record.area = row.area;
        light.record.samples_u = 4;
        light.record.samples_v = 3;
        row.set(light.record);
        std::vector<miVector> points;
        scene.shade = [&](miColor& result, miState& state) {
            points.push_back(state.org);
            EXPECT_EQ(int(state.count), int(points.size()) - 1);
            result = {1, 1, 1, 1};
            return points.size() % 2 ? miTRUE : miFALSE;
        };
        scene.run();
        EXPECT_EQ(points.size(), 12u);
        EXPECT_EQ(scene.delivered.size(), 6u);
        EXPECT_EQ(scene.samples, 12);
        std::set<std::pair<int, int>> strata;
        for (const miVector& p : points) {
            EXPECT_TRUE(row.on(p)) << p.x << ' ' << p.y << ' ' << p.z;
            if (row.area == miLIGHT_RECTANGLE)
                strata.insert({int((p.x + 0.5f) * 4), int((p.z + 0.25f) / 0.5f * 3)});
        }
        EXPECT_EQ(strata.size(), row.area == miLIGHT_RECTANGLE ? 12u : 0u);
        // A return value of 2 ends the light without another sample.
        points.clear();
        scene.shade = [&](miColor&, miState& state) {
            points.push_back(state.org);
            return points.size() == 5 ? 2 : 1;
        };
        scene.run();
        EXPECT_EQ(scene.delivered.size(), 4u);
        EXPECT_EQ(scene.samples, 4);
    }
}

} // namespace
