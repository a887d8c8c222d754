// SPDX-License-Identifier: BSD-3-Clause
// Small scenes, rendered in this process with the built base library.
#pragma once

#include <shader.h>

#include <string>
#include <vector>

/// Colours as they were rendered, row 0 being the lowest.
struct Picture {
    int width = 0;
    int height = 0;
    std::vector<miColor> pixels;

    const miColor& at(int x, int y) const { return pixels.at(static_cast<std::size_t>(y * width + x)); }
};

/// The scene is `body`, which defines materials, lights and objects and their instances, in a frame that
/// loads the base library and looks down the z axis from z = 10: in parallel, 4 wide, on 41 × 41 pixels, so
/// that pixel (i, j) sees x = (i − 20) · 4/41 and y = (j − 20) · 4/41. `instances` are the names in the root
/// group. The camera's environment is "surroundings", and its volume "fog", when `body` defines such a
/// shader. `options` are further options.
Picture rendered(const std::string& body, const std::string& instances, const std::string& options = "");

/// Where a pixel of that frame lies.
inline float place(int pixel) { return static_cast<float>(pixel - 20) * 4.0f / 41.0f; }

/// An object "<name>" and its instance "<name>-i" of that material: the square from −5 to 5 at height z,
/// facing +z, with texture coordinates from 0 to 1. `flags` as in the scene language.
std::string square(const std::string& name, float z, const std::string& material,
                   const std::string& flags = "visible trace shadow");
