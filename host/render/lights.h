// SPDX-License-Identifier: BSD-3-Clause
// The lights of one rendering.
#pragma once

#include "host/render/leaves.h"
#include "host/render/lightshape.h"
#include "host/render/surface.h"
#include "host/render/vector.h"

#include <memory>
#include <mutex>
#include <set>
#include <vector>

namespace host {

/// What the counter that light shaders see can hold: no light takes more samples.
inline constexpr int mostLightSamples = 65535;

/// How often a user light's shader is called at one point: until its counter, which has 16 bits, would begin
/// anew.
inline constexpr int mostUserCalls = 65536;

/// A light seen through one leaf instance, in internal space. What moves does so along straight lines, with
/// time from 0 to 1 over the shutter.
struct LeafLight {
    const Instance* leaf = nullptr;
    const Light* light = nullptr;
    FunctionList shader;
    bool moves = false;
    // When the shutter opens, and what they gain while it is open. The direction of what moves is not of unit
    // length.
    miVector origin = {0.0f, 0.0f, 0.0f}, originDrift = {0.0f, 0.0f, 0.0f};
    miVector direction = {0.0f, 0.0f, 0.0f}, directionDrift = {0.0f, 0.0f, 0.0f};
    std::unique_ptr<LightShape> shape; ///< null unless samples are taken over one
    unsigned seenBy = 0;               ///< RayBit: by which rays the shape is seen

    bool directional() const { return light->record.type == miLIGHT_DIRECTION; }

    /// The shader chooses where samples lie, and how many there are.
    bool user() const { return !directional() && areaOf(light->record) == miLIGHT_USER; }

    miVector originAt(float time) const { return moves ? origin + originDrift * time : origin; }

    /// Unit; null for point lights.
    miVector directionAt(float time) const
    {
        return moves ? normalised(direction + directionDrift * time) : direction;
    }

    /// How many samples a surface takes at most; `level` is the sum of the surface's ray levels.
    int samples(int level) const;

    /// The point that sample `index` lights from. Samples of area lights are stratified over the shape;
    /// `seed` moves them within their strata.
    miVector point(int index, int level, std::uint32_t seed, float time) const;
};

/// Read-only, and safe from any thread.
class Lights {
public:
    /// `blurs`: what moves is where it is at a sample's time; otherwise where it is when the shutter opens.
    /// Throws Error, with the light's place, for what cannot be rendered.
    Lights(const Database& database, const Leaves& leaves, bool blurs);

    const std::vector<LeafLight>& all() const { return lights_; }

    /// Tags of all leaf lights, in the order of the scene.
    const std::vector<miTag>& tags() const { return tags_; }

    /// Indices in `all` of what a tag stands for: a leaf light, or all leaves at or below a scene instance. A
    /// tag of something else is none, and worth a warning: a light's own is easily taken for its instance's.
    const std::vector<std::uint32_t>& behind(miTag tag) const;

    /// The light of a leaf instance, or null.
    const LeafLight* leaf(miTag tag) const;

    /// True when some light's shape is seen by rays.
    bool seen() const { return !seen_.empty(); }

    /// The light whose shape a ray meets first between its ends, or null.
    const LeafLight* nearest(const Ray& ray, ShapeHit& hit) const;

    /// Tells, once for each light, that its shader has not ended the samples of a point.
    void warnEndless(const LeafLight& light) const;

    /// Appends all light shaders.
    void collect(std::vector<Function*>& functions) const;

private:
    void warnNoLight(miTag tag) const;
    bool firstWarning(miTag tag) const;

    const Database& database_;
    const Leaves& leaves_;
    std::vector<LeafLight> lights_;
    std::vector<miTag> tags_;
    std::vector<std::uint32_t> seen_; ///< indices in `lights_`
    mutable std::mutex warnedLock_;
    mutable std::set<miTag> warned_;
};

} // namespace host
