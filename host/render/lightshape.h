// SPDX-License-Identifier: BSD-3-Clause
// The shapes of area lights: where samples lie on them, and where rays meet them.
#pragma once

#include "host/render/world.h"

#include <cstring>
#include <memory>

namespace host {

/// A light's kind of area. Copied as bytes, as edits may leave a number that the enumeration does not name.
inline int areaOf(const miLight& light)
{
    int code;
    static_assert(sizeof code == sizeof light.area);
    std::memcpy(&code, &light.area, sizeof code);
    return code;
}

/// Where a ray met a light's shape.
struct ShapeHit {
    double distance = 0.0;
    miVector normal = {0.0f, 0.0f, 0.0f}; ///< unit, on whichever side
};

/// A shape in internal space, seen through one leaf instance. What moves does so along straight lines, with
/// time from 0 to 1 over the shutter. Read-only, and safe from any thread.
class LightShape {
public:
    virtual ~LightShape() = default;

    /// A place on the shape. `a` and `b` run from 0 to below 1 and cover it evenly: equal parts of the square
    /// are equal areas, of spheres and cylinders as long as their instance does not stretch them, of objects
    /// when the shutter opens.
    virtual miVector at(double a, double b, float time) const = 0;

    /// The nearest place that a ray meets between its ends at its time, from either side.
    virtual bool meet(const Ray& ray, ShapeHit& hit) const = 0;
};

/// The shape of a light; null when it has none, because it is no area light or because its shader chooses the
/// samples. `blurs`: what moves is met where it is at a ray's time. Throws Error, with the light's place, for
/// one that cannot be: of something that is no object, of an empty one, or with numbers that are none.
std::unique_ptr<LightShape> makeShape(const Light& light, const Instance& leaf, const Database& database,
                                      const Leaves& leaves, bool blurs);

} // namespace host
