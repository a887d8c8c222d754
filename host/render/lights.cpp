// SPDX-License-Identifier: BSD-3-Clause
#include "host/render/lights.h"

#include "host/render/samples.h"
#include "host/render/vector.h"
#include "host/report/message.h"

#include <algorithm>
#include <numbers>

namespace host {

namespace {

/// What the counter that shaders see can hold.
constexpr int mostLightSamples = 65535;

struct Strata {
    int u, v;
};

/// A light's sample counts in two directions, the lower ones for rays far from the eye.
Strata strata(const miLight& light, int level)
{
    const bool low = light.low_level > 0 && level >= light.low_level;
    return {std::max(1, int(low ? light.low_samples_u : light.samples_u)),
            std::max(1, int(low ? light.low_samples_v : light.samples_v))};
}

/// Two unit vectors that are perpendicular to the given one and to each other.
void basis(miVector axis, miVector& u, miVector& v)
{
    const miVector other = std::abs(axis.x) > 0.5f ? miVector{0, 1, 0} : miVector{1, 0, 0};
    u = crossDirection(axis, other);
    v = crossDirection(axis, u);
}

/// Where on an area light's shape, relative to its origin; a and b run from 0 to 1 and cover it evenly.
miVector onShape(const miLight& light, float a, float b)
{
    constexpr float turn = 2.0f * std::numbers::pi_v<float>;
    switch (light.area) {
    case miLIGHT_RECTANGLE: {
        const auto& [u, v] = light.primitive.rectangle;
        return u * (2.0f * a - 1.0f) + v * (2.0f * b - 1.0f);
    }
    case miLIGHT_DISC: {
        miVector u, v;
        basis(normalised(light.primitive.disc.normal), u, v);
        const float r = light.primitive.disc.radius * std::sqrt(a);
        return u * (r * std::cos(turn * b)) + v * (r * std::sin(turn * b));
    }
    case miLIGHT_SPHERE: {
        const float z = 2.0f * a - 1.0f;
        const float ring = std::sqrt(std::max(0.0f, 1.0f - z * z));
        return miVector{ring * std::cos(turn * b), ring * std::sin(turn * b), z} *
               light.primitive.sphere.radius;
    }
    case miLIGHT_CYLINDER: {
        const auto& [axis, radius] = light.primitive.cylinder;
        miVector u, v;
        basis(normalised(axis), u, v);
        return axis * (2.0f * a - 1.0f) + u * (radius * std::cos(turn * b)) +
               v * (radius * std::sin(turn * b));
    }
    default:
        return {0.0f, 0.0f, 0.0f};
    }
}

void check(const Light& light)
{
    const auto refuse = [&](const std::string& what) {
        throw Error(light.where, "light \"" + light.name + "\": " + what);
    };
    if (light.record.type == miLIGHT_DIRECTION || light.record.area == miLIGHT_NONE)
        return;
    const auto tooMany = [](int u, int v) { return std::int64_t(u) * v > mostLightSamples; };
    if (tooMany(light.record.samples_u, light.record.samples_v) ||
        tooMany(light.record.low_samples_u, light.record.low_samples_v))
        refuse("an area light takes at most " + std::to_string(mostLightSamples) + " samples");
    if (light.record.area == miLIGHT_OBJECT)
        refuse("area lights in the shape of an object are not supported");
    if (light.record.area == miLIGHT_USER)
        refuse("user area lights are not supported");
    if (light.record.visible)
        refuse("visible area lights are not supported");
}

} // namespace

int LeafLight::samples(int level) const
{
    if (!area())
        return 1;
    const Strata counts = strata(light->record, level);
    return counts.u * counts.v;
}

miVector LeafLight::point(int index, int level, std::uint32_t seed) const
{
    if (!area())
        return origin;
    const Strata counts = strata(light->record, level);
    const auto number = std::uint32_t(index);
    const float a = (float(index % counts.u) + unit(seed, number, 0, 0)) / float(counts.u);
    const float b = (float(index / counts.u) + unit(seed, number, 1, 0)) / float(counts.v);
    return transformPoint(light->record.origin + onShape(light->record, a, b),
                          leaf->record.tf.local_to_global);
}

Lights::Lights(const Database& database, const Leaves& leaves) : database_(database), leaves_(leaves)
{
    for (const Instance* const leaf : leaves.lights()) {
        const auto& light = static_cast<const Light&>(*database.find(leaf->record.item));
        check(light);
        LeafLight& added = lights_.emplace_back();
        added.leaf = leaf;
        added.light = &light;
        added.shader = functionsOf(database, light.shader, light);
        const miMatrix& toWorld = leaf->record.tf.local_to_global;
        if (!added.directional() || light.hasOrigin)
            added.origin = transformPoint(light.record.origin, toWorld);
        if (light.record.type != miLIGHT_ORIGIN)
            added.direction = normalised(transformVector(light.record.direction, toWorld));
    }
}

const std::vector<std::uint32_t>& Lights::behind(miTag tag) const
{
    const std::vector<std::uint32_t>& indices = leaves_.lightsBelow(tag);
    if (indices.empty())
        warnOnce(tag);
    return indices;
}

const LeafLight* Lights::leaf(miTag tag) const
{
    const std::vector<std::uint32_t>& indices = leaves_.lightsBelow(tag);
    return indices.empty() || lights_[indices.front()].leaf->tag != tag ? nullptr : &lights_[indices.front()];
}

void Lights::collect(std::vector<Function*>& functions) const
{
    for (const LeafLight& light : lights_)
        functions.insert(functions.end(), light.shader.begin(), light.shader.end());
}

void Lights::warnOnce(miTag tag) const
{
    const auto* const light = database_.findAs<Light>(tag);
    if (!light)
        return;
    {
        const std::lock_guard lock(warnedLock_);
        if (!warned_.insert(tag).second)
            return;
    }
    message(Level::warning, "RC",
            "light \"" + light->name +
                "\" is sampled by itself and gives no light; name its instance instead");
}

} // namespace host
