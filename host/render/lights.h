// SPDX-License-Identifier: BSD-3-Clause
// The lights of one rendering.
#pragma once

#include "host/render/leaves.h"
#include "host/render/surface.h"

#include <mutex>
#include <set>
#include <vector>

namespace host {

/// A light seen through one leaf instance, in internal space.
struct LeafLight {
    const Instance* leaf = nullptr;
    const Light* light = nullptr;
    FunctionList shader;
    miVector origin = {0.0f, 0.0f, 0.0f};
    miVector direction = {0.0f, 0.0f, 0.0f}; ///< unit; null for point lights

    bool directional() const { return light->record.type == miLIGHT_DIRECTION; }
    bool area() const { return !directional() && light->record.area != miLIGHT_NONE; }

    /// How many samples a surface takes; `level` is the sum of the surface's ray levels.
    int samples(int level) const;

    /// The point that sample `index` lights from. Samples of area lights are stratified over the shape;
    /// `seed` moves them within their strata.
    miVector point(int index, int level, std::uint32_t seed) const;
};

/// Read-only, and safe from any thread.
class Lights {
public:
    /// Throws Error, with the light's place, for kinds that are not supported.
    Lights(const Database& database, const Leaves& leaves);

    const std::vector<LeafLight>& all() const { return lights_; }

    /// Indices in `all` of what a tag stands for: a leaf light, or all leaves at or below a scene instance. A
    /// tag of something else is none; a light's own tag, which is easily taken for its instance's, is worth a
    /// warning.
    const std::vector<std::uint32_t>& behind(miTag tag) const;

    /// The light of a leaf instance, or null.
    const LeafLight* leaf(miTag tag) const;

    /// Appends all light shaders.
    void collect(std::vector<Function*>& functions) const;

private:
    void warnOnce(miTag tag) const;

    const Database& database_;
    const Leaves& leaves_;
    std::vector<LeafLight> lights_;
    mutable std::mutex warnedLock_;
    mutable std::set<miTag> warned_;
};

} // namespace host
