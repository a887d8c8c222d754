// SPDX-License-Identifier: BSD-3-Clause
// Scenes for tests of lights: a floor that is lit, and something in the light's way.
#pragma once

#include "tests/host/render/scene.h"

#include <gtest/gtest.h>

namespace test {

struct Delivered {
    miColor color;
    miVector direction;
    float cosine;
};

/// A floor that a camera looks down on from (0, 10, 0), and what its material got from a light.
struct Lit : Scene {
    std::vector<Delivered> delivered;
    int samples = -1;
    int rounds = 1;
    miState light{};
    miVector normal = {0, 1, 0};
    std::function<void(miState&)> prepare;
    std::function<miBoolean(miColor&, miState&)> shade = [](miColor& result, miState&) {
        result = {1, 2, 3, 1};
        return miTRUE;
    };
    bool keepsState = true; ///< off where several threads render
    miTag lightInstance = 0;
    host::Instance* floor = nullptr;

    Lit()
    {
        test::setMatrix(cameraInstance, {1, 0, 0, 0, 0, 0, -1, 0, 0, 1, 0, 0, 0, 10, 0, 1});
        auto& ground = object({{-9, 0, 9}, {9, 0, 9}, {9, 0, -9}, {-9, 0, -9}}, {{0, 1, 2, 3}});
        floor = &place(ground);
        floor->materials = {material([this](miColor& result, miState& state) {
                                for (int i = 0; i < rounds; ++i) {
                                    samples = 0;
                                    Delivered d{};
                                    if (prepare)
                                        prepare(state);
                                    while (mi_sample_light(&d.color, &d.direction, &d.cosine, &state,
                                                           lightInstance, &samples))
                                        delivered.push_back(d);
                                }
                                result = {0, 0, 0, 1};
                                return miTRUE;
                            }).tag};
    }

    host::Light& add(const miVector& origin)
    {
        auto& made = pointLight(origin, [this](miColor& result, miState& state) {
            if (keepsState)
                light = state;
            return shade(result, state);
        });
        lightInstance = place(made).tag;
        return made;
    }
    void run()
    {
        delivered.clear();
        look();
    }
};

/// A scene with a light above the floor and something between, whose light shader asks for shadows.
struct Shaded : Lit {
    miBoolean passed = -1;
    miColor filtered{};
    std::function<void(miState&)> change;
    host::Instance* blocker = nullptr;
    host::Material* blocking = nullptr;

    Shaded()
    {
        add({0, 4, 0});
        shade = [this](miColor& result, miState& state) {
            if (change)
                change(state);
            filtered = {1, 1, 1, 0.5f};
            passed = mi_trace_shadow(&filtered, &state);
            result = filtered;
            return miTRUE;
        };
        blocking = &plain({1, 1, 1, 1});
        blocker = &addLayer(2);
        blocker->materials = {blocking->tag};
    }
    host::Instance& addLayer(float height)
    {
        auto& layer = object({{-1, 0, 1}, {1, 0, 1}, {1, 0, -1}, {-1, 0, -1}}, {{0, 1, 2, 3}});
        layer.visible = false; // the camera looks through it
        auto& instance = place(layer, {0, height, 0});
        return instance;
    }
    void through(host::Material& m, const miColor& filter, miBoolean answer = miTRUE)
    {
        m.shadow = {shader([filter, answer](miColor& result, miState& state) {
                        EXPECT_EQ(state.type, miRAY_SHADOW);
                        result.r *= filter.r;
                        result.g *= filter.g;
                        result.b *= filter.b;
                        return answer;
                    }).tag};
    }
};

} // namespace test
