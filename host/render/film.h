// SPDX-License-Identifier: BSD-3-Clause
// The picture while it is sampled, and when it is finished.
#pragma once

#include "host/render/reconstruct.h"

#include <cstdint>
#include <vector>

namespace host {

/// Half-open, in pixels; (0, 0) is the lower left pixel of the picture.
struct Rectangle {
    int xl = 0, yl = 0, xh = 0, yh = 0;

    int width() const { return xh - xl; }
    int height() const { return yh - yl; }
    bool empty() const { return xl >= xh || yl >= yh; }
    bool contains(int x, int y) const { return x >= xl && x < xh && y >= yl && y < yh; }
    Rectangle grown(int x, int y) const { return {xl - x, yl - y, xh + x, yh + y}; }
    Rectangle within(const Rectangle& other) const;
};

/// What one pixel saw besides its colour, of the sample nearest to its centre.
struct PixelFacts {
    float depth = 0.0f;                   ///< along the viewing axis; 0 where nothing was hit
    miVector normal = {0.0f, 0.0f, 0.0f}; ///< in camera space
    miVector motion = {0.0f, 0.0f, 0.0f}; ///< in camera space
    std::uint32_t label = 0;
};

/// A finished picture, lowest row first. Pixels outside the window are zero.
struct Picture {
    int width = 0;
    int height = 0;
    std::vector<miColor> colors;
    std::vector<PixelFacts> facts; ///< empty unless asked for

    const miColor& color(int x, int y) const { return colors[std::size_t(y) * width + x]; }
};

/// Gathers samples into pixels. Threads may add at the same time as long as no two of them reach the same
/// pixel.
class Film {
public:
    Film(const Rectangle& window, const Reconstruction& filter);

    /// Adds one of `count` samples of its pixel, at a raster position. A pixel's samples together weigh as
    /// much as those of any other, however many they are.
    void add(float x, float y, const miColor& color, int count);

    miColor color(int x, int y) const;

private:
    struct Sum {
        miColor color{0, 0, 0, 0};
        float weight = 0.0f;
    };
    Rectangle window_;
    Reconstruction filter_;
    std::vector<Sum> sums_;
};

} // namespace host
