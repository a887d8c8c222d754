// SPDX-License-Identifier: BSD-3-Clause
// Where in a pixel, and when, samples are taken. Everything depends on the pixel and the sample's number
// only.
#pragma once

#include <shader.h>

#include <cstdint>
#include <initializer_list>

namespace host {

/// A hash of four numbers whose bits are all equally good.
inline std::uint32_t mixed(std::uint32_t a, std::uint32_t b, std::uint32_t c, std::uint32_t d)
{
    // The finaliser of a 64-bit multiplicative hash, over the four words in turn.
    std::uint64_t h = 0x9E3779B97F4A7C15ull;
    for (const std::uint32_t word : {a, b, c, d}) {
        h = (h ^ word) * 0xFF51AFD7ED558CCDull;
        h ^= h >> 32;
    }
    return std::uint32_t(h);
}

/// The same as a number from 0 to below 1.
inline float unit(std::uint32_t a, std::uint32_t b, std::uint32_t c, std::uint32_t d)
{
    return float(mixed(a, b, c, d) >> 8) * 0x1p-24f;
}

/// The samples of a pixel at one level of sampling: a square of 2^level by 2^level cells with one sample
/// each.
struct PixelGrid {
    explicit PixelGrid(int level) : side(level > 0 ? 1 << level : 1) {}
    int side;
    int count() const { return side * side; }
};

struct SamplePosition {
    float x, y; ///< raster
    float time; ///< 0 to 1 over the shutter
};

/// Sample `index` of a pixel: the centre of its cell, moved within it by up to half of it with jitter 1. The
/// shutter's time is cut into as many parts as there are samples, and each takes one of them.
inline SamplePosition samplePosition(int x, int y, const PixelGrid& grid, int index, float jitter)
{
    const auto px = std::uint32_t(x), py = std::uint32_t(y);
    // Other numbers for each grid, or refined pixels would repeat the coarse ones' luck.
    const std::uint32_t seed = std::uint32_t(grid.side) << 24 ^ std::uint32_t(index);
    const float dx = jitter * (unit(px, py, seed, 0) - 0.5f);
    const float dy = jitter * (unit(px, py, seed, 1) - 0.5f);
    const float cell = 1.0f / float(grid.side);
    // An odd factor permutes the parts, whose number is a power of 2: otherwise time would run with the
    // place.
    const std::uint32_t factor = mixed(px, py, std::uint32_t(grid.side), 3) | 1u;
    const std::uint32_t first = mixed(px, py, std::uint32_t(grid.side), 4);
    const std::uint32_t part = (factor * std::uint32_t(index) + first) & std::uint32_t(grid.count() - 1);
    const float time = (float(part) + unit(px, py, seed, 2)) / float(grid.count());
    return {float(x) + (float(index % grid.side) + 0.5f + dx) * cell,
            float(y) + (float(index / grid.side) + 0.5f + dy) * cell, time};
}

} // namespace host
