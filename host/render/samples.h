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
};

/// Numbers that make up a sample's place are other ones for each grid, or refined pixels would repeat the
/// coarse ones' luck.
inline std::uint32_t sampleSeed(const PixelGrid& grid, int index)
{
    return std::uint32_t(grid.side) << 24 ^ std::uint32_t(index);
}

/// Sample `index` of a pixel: the centre of its cell, moved within it by up to half of it with jitter 1.
inline SamplePosition samplePosition(int x, int y, const PixelGrid& grid, int index, float jitter)
{
    const auto px = std::uint32_t(x), py = std::uint32_t(y);
    const std::uint32_t seed = sampleSeed(grid, index);
    const float dx = jitter * (unit(px, py, seed, 0) - 0.5f);
    const float dy = jitter * (unit(px, py, seed, 1) - 0.5f);
    const float cell = 1.0f / float(grid.side);
    return {float(x) + (float(index % grid.side) + 0.5f + dx) * cell,
            float(y) + (float(index / grid.side) + 0.5f + dy) * cell};
}

/// Where `i` goes when the numbers below `count`, a power of 2, are shuffled; each seed has its own order.
/// Kensler, "Correlated Multi-Jittered Sampling", Pixar Technical Memo 13-01, listing 3.
inline std::uint32_t shuffled(std::uint32_t i, std::uint32_t count, std::uint32_t seed)
{
    const std::uint32_t w = count - 1;
    i = (i ^ seed) * 0xE170893Du;
    i ^= seed >> 16;
    i ^= (i & w) >> 4;
    i = (i ^ seed >> 8) * 0x0929EB3Fu;
    i ^= seed >> 23;
    i ^= (i & w) >> 1;
    i *= (1u | seed >> 27) * 0x6935FA69u;
    i ^= (i & w) >> 11;
    i *= 0x74DCB303u;
    i ^= (i & w) >> 2;
    i *= 0x9E501CC3u;
    i ^= (i & w) >> 2;
    i = (i * 0xC860A3DFu) & w;
    i ^= i >> 5;
    return (i + seed) & w;
}

/// When sample `index` of a pixel is taken, 0 to 1 over the shutter. The shutter is cut into as many parts as
/// there are samples, and each takes one of them. Of as many longer parts as the grid has rows, every row
/// takes each once and so does every column, a Latin square: an edge that runs along with either is as smooth
/// as the samples allow.
inline float sampleTime(int x, int y, const PixelGrid& grid, int index)
{
    const auto px = std::uint32_t(x), py = std::uint32_t(y), side = std::uint32_t(grid.side);
    const std::uint32_t column = std::uint32_t(index) % side, row = std::uint32_t(index) / side;
    const std::uint32_t part =
        shuffled(column, side, mixed(px, py, side, 3)) ^ shuffled(row, side, mixed(px, py, side, 4));
    const std::uint32_t within = shuffled(column, side, mixed(px, py, side << 16 | part, 5));
    return (float(part * side + within) + unit(px, py, sampleSeed(grid, index), 2)) / float(grid.count());
}

} // namespace host
