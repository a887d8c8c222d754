// SPDX-License-Identifier: BSD-3-Clause
// Coordinates to evaluate noise at.
#pragma once

#include "floats.h"

#include <array>
#include <cmath>
#include <random>
#include <string>

/// Coordinates as they come: near, far, on a cell's edge or a hair beside it, and any bit pattern. Most are
/// common, as a point with one odd coordinate tells little.
class Coordinate {
public:
    explicit Coordinate(unsigned seed) : engine_(seed), any_(seed) {}

    float operator()()
    {
        const unsigned sort = engine_() % 16;
        const float near = std::uniform_real_distribution<float>(-600.0f, 600.0f)(engine_);
        switch (sort) {
        case 0:
            return std::floor(near);
        case 1:
            return std::floor(near) + 0.5f;
        case 2:
            return std::nextafter(std::floor(near), engine_() % 2 ? infinity : -infinity);
        case 3:
            return near * 1e5f; // whole numbers from 2^23 on
        case 4:
            return near * 1e-6f;
        case 5:
            return engine_() % 4 ? near * 1e-42f : any_();
        default:
            return near;
        }
    }

    template <std::size_t Count>
    std::array<float, Count> point()
    {
        std::array<float, Count> p;
        for (float& x : p)
            x = (*this)();
        return p;
    }

private:
    std::mt19937 engine_;
    AnyFloat any_;
};

/// Coordinates within a hair of a corner, or on it: where products underflow and zeros have signs.
class NearCorner {
public:
    explicit NearCorner(unsigned seed) : engine_(seed) {}

    float operator()()
    {
        constexpr float hairs[] = {0.0f,    -0.0f,  1e-45f,  -1e-45f, 3e-42f,  -3e-42f, 1e-38f,
                                   -1e-38f, 1e-20f, -1e-20f, 1e-15f,  -1e-15f, 1e-9f,   -1e-9f,
                                   1e-7f,   -1e-7f, 1e-5f,   -1e-5f,  0.5f,    0.25f};
        const float hair = hairs[engine_() % std::size(hairs)];
        return engine_() % 4 ? hair : float(int(engine_() % 6) - 3) + hair;
    }

private:
    std::mt19937 engine_;
};

template <std::size_t Count>
std::string text(const std::array<float, Count>& p)
{
    std::string result;
    for (const float x : p)
        result += std::to_string(x) + ' ';
    return result;
}
