// SPDX-License-Identifier: BSD-3-Clause
// Texture coordinates: projections of points, and the repetition of coordinates over a texture.
#pragma once

#include "host/base/vector.h"

#include <numbers>

namespace host::base {

/// Values of the parameter `project`.
enum class Projection { none = 0, front = 1, side = 2, top = 3, spherical = 4, cylindrical = 5 };

/// Turn around the y axis as 0 to 1: 0.5 on the +z side, growing towards +x.
inline float turn(const miVector& p)
{
    return 0.5f + std::atan2(p.x, p.z) / (2.0f * std::numbers::pi_v<float>);
}

/// The point seen as a texture coordinate. The plane projections take two axes as they are and put the third
/// in z; the spherical one spans 0 to 1 both ways, the cylindrical one around, with y as its height; both put
/// the distance from the centre or the axis in z. Unknown values project nothing.
inline miVector projected(const miVector& p, Projection projection)
{
    switch (projection) {
    case Projection::front:
        return p;
    case Projection::side:
        return {-p.z, p.y, p.x};
    case Projection::top:
        return {p.x, -p.z, p.y};
    case Projection::spherical: {
        const float flat = std::sqrt(p.x * p.x + p.z * p.z);
        return {turn(p), 0.5f + std::atan2(p.y, flat) / std::numbers::pi_v<float>, std::sqrt(dot(p, p))};
    }
    case Projection::cylindrical:
        return {turn(p), p.y, std::sqrt(p.x * p.x + p.z * p.z)};
    case Projection::none:
        break;
    }
    return p;
}

/// How one axis of a texture coordinate is laid over the texture.
struct AxisRemap {
    float repeat = 1.0f;    ///< copies in the unit range; 0 counts as 1
    bool alternate = false; ///< every second copy is mirrored; copies go on for ever
    bool torus = false;     ///< copies go on for ever
    float min = 0.0f;       ///< the part of the texture that one copy shows; min = max counts as 0 to 1
    float max = 1.0f;
};

/// Largest coordinate inside a texture, whose range is half-open.
inline constexpr float lastInside = 0x1.fffffep-1f;

/// Without alternate and torus a coordinate outside the unit range stays outside.
inline float remapped(float coordinate, const AxisRemap& axis)
{
    float c = axis.repeat != 0.0f ? coordinate * axis.repeat : coordinate;
    if (axis.alternate || axis.torus) {
        const float copy = std::floor(c);
        c = c - copy;
        if (axis.alternate && std::fmod(copy, 2.0f) != 0.0f)
            c = 1.0f - c;
        c = std::fmin(c, lastInside); // rounding, and the mirrored 0, would step over the edge
    }
    return axis.min == axis.max ? c : axis.min + c * (axis.max - axis.min);
}

} // namespace host::base
