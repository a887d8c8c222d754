// SPDX-License-Identifier: BSD-3-Clause
#include "host/render/lights.h"

#include "host/render/samples.h"
#include "host/render/vector.h"
#include "host/report/message.h"

#include <algorithm>

namespace host {

namespace {

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

std::string called(const Light& light) { return "light " + inQuotes(light.name); }

/// Numbers that the scene language does not let in, but edits do.
void checkCounts(const Light& light)
{
    const miLight& r = light.record;
    const auto check = [&](int level, int u, int v) {
        if (u < 1 || v < 1)
            message(Level::warning, "RC",
                    called(light) + " is to take " + std::to_string(u) + " by " + std::to_string(v) +
                        " samples; less than 1 are taken as 1");
        const Strata counts = strata(r, level);
        if (std::int64_t(counts.u) * counts.v > mostLightSamples)
            throw Error(light.where, called(light) + ": an area light takes at most " +
                                         std::to_string(mostLightSamples) + " samples");
    };
    check(0, r.samples_u, r.samples_v);
    if (r.low_level > 0)
        check(r.low_level, r.low_samples_u, r.low_samples_v);
}

/// By which rays a light's shape is seen: by all, but for those that the instances above it switch off.
unsigned shownTo(const Light& light, const Instance& leaf)
{
    if (!light.record.visible)
        return 0;
    Object shown;
    shown.visible = true;
    shown.reflection = shown.refraction = shown.transparency = 3;
    return rayBits(shown, leaf.record);
}

/// A random number from 0 to below 1.
double fraction(std::uint32_t seed, std::uint32_t number, std::uint32_t dimension)
{
    return double(mixed(seed, number, dimension, 0)) * 0x1p-32;
}

} // namespace

int LeafLight::samples(int level) const
{
    if (user())
        return mostUserCalls;
    if (!shape)
        return 1;
    const Strata counts = strata(light->record, level);
    return counts.u * counts.v;
}

miVector LeafLight::point(int index, int level, std::uint32_t seed, float time) const
{
    if (!shape)
        return originAt(time);
    const Strata counts = strata(light->record, level);
    const auto number = std::uint32_t(index);
    return shape->at((index % counts.u + fraction(seed, number, 0)) / counts.u,
                     (index / counts.u + fraction(seed, number, 1)) / counts.v, time);
}

Lights::Lights(const Database& database, const Leaves& leaves, bool blurs)
    : database_(database), leaves_(leaves)
{
    for (const Instance* const leaf : leaves.lights()) {
        const auto& light = static_cast<const Light&>(*database.find(leaf->record.item));
        LeafLight& added = lights_.emplace_back();
        tags_.push_back(leaf->tag);
        added.leaf = leaf;
        added.light = &light;
        added.shader = functionsOf(database, light.shader, light);
        added.moves = blurs && leaf->hasMotion;
        const miMatrix& toWorld = leaf->record.tf.local_to_global;
        if (!added.directional() || light.hasOrigin) {
            added.origin = transformPoint(light.record.origin, toWorld);
            added.originDrift = transformPoint(light.record.origin, leaf->drift);
        }
        if (light.record.type != miLIGHT_ORIGIN) {
            added.direction = transformVector(light.record.direction, toWorld);
            added.directionDrift = transformVector(light.record.direction, leaf->drift);
            if (!added.moves)
                added.direction = normalised(added.direction);
        }
        if (!isFinite(added.origin) || !isFinite(added.direction) || !isFinite(added.originAt(1.0f)) ||
            !isFinite(added.directionAt(1.0f)))
            throw Error(light.where, called(light) + ": its position or direction is not finite");
        if (added.directional())
            continue;
        added.shape = makeShape(light, *leaf, database, leaves, blurs);
        if (!added.shape)
            continue;
        checkCounts(light);
        added.seenBy = shownTo(light, *leaf);
        if (added.seenBy)
            seen_.push_back(std::uint32_t(lights_.size() - 1));
    }
}

const std::vector<std::uint32_t>& Lights::behind(miTag tag) const
{
    const std::vector<std::uint32_t>& indices = leaves_.lightsBelow(tag);
    if (indices.empty())
        warnNoLight(tag);
    return indices;
}

const LeafLight* Lights::leaf(miTag tag) const
{
    const std::vector<std::uint32_t>& indices = leaves_.lightsBelow(tag);
    return indices.empty() || lights_[indices.front()].leaf->tag != tag ? nullptr : &lights_[indices.front()];
}

const LeafLight* Lights::nearest(const Ray& ray, ShapeHit& hit) const
{
    const LeafLight* found = nullptr;
    Ray rest = ray;
    for (const std::uint32_t index : seen_) {
        const LeafLight& light = lights_[index];
        ShapeHit met;
        if (!(light.seenBy & ray.seenBy) || !light.shape->meet(rest, met))
            continue;
        rest.far = met.distance;
        hit = met;
        found = &light;
    }
    return found;
}

void Lights::collect(std::vector<Function*>& functions) const
{
    for (const LeafLight& light : lights_)
        functions.insert(functions.end(), light.shader.begin(), light.shader.end());
}

bool Lights::firstWarning(miTag tag) const
{
    const std::lock_guard lock(warnedLock_);
    return warned_.insert(tag).second;
}

void Lights::warnNoLight(miTag tag) const
{
    const Element* const element = database_.find(tag);
    if (!element)
        return;
    if (element->kind == miSCENE_LIGHT) {
        if (firstWarning(tag))
            message(Level::warning, "RC",
                    "light " + inQuotes(element->name) +
                        " is sampled by itself and gives no light; name its instance instead");
        return;
    }
    // What is hidden, or an instance of an empty group, is none of the scene's lights for good reasons.
    const auto* const instance = dynamic_cast<const Instance*>(element);
    const Element* const item = instance ? database_.find(instance->record.item) : element;
    if (item && item->kind != miSCENE_LIGHT && item->kind != miSCENE_GROUP && firstWarning(tag))
        message(Level::warning, "RC",
                std::string(kindName(element->kind)) + ' ' + inQuotes(element->name) +
                    " is sampled as a light and gives none");
}

void Lights::warnEndless(const LeafLight& light) const
{
    if (firstWarning(light.leaf->tag))
        message(Level::warning, "RC",
                called(*light.light) + " has given one point " + std::to_string(mostUserCalls) +
                    " samples, and its shader has not ended them by returning 2; no more are taken");
}

} // namespace host
