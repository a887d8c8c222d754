// SPDX-License-Identifier: BSD-3-Clause
// The scene graph, flattened for one rendering.
#pragma once

#include "host/scene/database.h"

#include <cstdint>
#include <unordered_map>
#include <vector>

namespace host {

/// Deepest nesting of groups, and most instances visited on all paths together: a graph of a few lines can
/// unfold without end.
inline constexpr std::size_t maximumGroupDepth = 1000;
inline constexpr std::size_t maximumPathSteps = 4'000'000;

/// Kinds of rays that a surface is seen by, casts and receives, as bits.
enum RayBit : unsigned {
    seenByEye = 1,
    seenByReflection = 2,
    seenByRefraction = 4,
    seenByTransparency = 8,
    castsShadow = 16,
    castsReflection = 32,
    castsRefraction = 64,
    castsTransparency = 128,
    receivesShadow = 256
};

/// The rays that concern an object seen through a leaf: what the instances on the path force, or else what
/// the object says.
unsigned rayBits(const Object& object, const miInstance& leaf);

/// The leaf instances of a scene graph: one for each path from the root group to an object, light or camera.
/// They are elements of the database, with tags of their own, for as long as this lives.
class Leaves {
public:
    /// Throws Error for a group that contains itself, for a graph beyond the limits, and for an instance of
    /// something that cannot be instanced.
    Leaves(Database& database, miTag root);
    ~Leaves();
    Leaves(const Leaves&) = delete;
    Leaves& operator=(const Leaves&) = delete;

    /// In the order of the scene.
    const std::vector<Instance*>& objects() const { return objects_; }
    const std::vector<Instance*>& lights() const { return lights_; }
    const std::vector<Instance*>& cameras() const { return cameras_; }

    /// Indices in `lights` of the leaf lights at or below a scene instance, or of a leaf itself; in order.
    const std::vector<std::uint32_t>& lightsBelow(miTag instance) const;

    /// The leaf of a scene instance that is in the root group, or null.
    Instance* camera(miTag sceneInstance) const;

private:
    class Walk;

    void remove();

    Database& database_;
    std::vector<Instance*> objects_, lights_, cameras_;
    std::unordered_map<miTag, std::vector<std::uint32_t>> lightsBelow_;
};

} // namespace host
