// SPDX-License-Identifier: BSD-3-Clause
// Lights as surfaces see them: samples, shadows and lists.
#include "host/render/samples.h"
#include "host/render/trace.h"
#include "host/render/vector.h"

#include <algorithm>
#include <bit>
#include <limits>

namespace host {

namespace {

/// What a light shader's return value of 2 means: no colour, and no further sample of this light.
constexpr miBoolean noMore = 2;

/// The place of the loop that this state has begun, or of a new one. It is among the last: loops end in the
/// order in which they nest.
std::size_t loopOf(Frame& frame, const Lights& lights, const miState& state, miTag light, bool begins)
{
    std::vector<LightLoop>& loops = frame.loops;
    std::size_t place = loops.size();
    while (place > 0 && !(loops[place - 1].state == &state && loops[place - 1].light == light))
        --place;
    if (place > 0 && !begins)
        return place - 1;
    if (place == 0) {
        loops.emplace_back();
        place = loops.size();
    }
    loops[place - 1] = {&state, light, &lights.behind(light), 0, 0, 0};
    return place - 1;
}

/// A copy of the surface's state as the light's shader gets it, for one sample of the light.
void setLight(miState& child, miState& state, const LeafLight& light, int sample, int level)
{
    child = state;
    child.parent = &state;
    child.child = nullptr;
    child.type = miRAY_LIGHT;
    child.light_instance = light.leaf->tag;
    child.count = miUshort(sample);
    const float time = shutterFraction(state);
    child.org = light.originAt(time);
    if (light.shape) {
        const auto bits = [](float number) { return std::bit_cast<std::uint32_t>(number); };
        const std::uint32_t seed = mixed(bits(state.raster_x), bits(state.raster_y), std::uint32_t(level), 0);
        child.org = light.point(sample, level, seed, time);
    }
    if (light.directional()) {
        child.dir = light.directionAt(time);
        child.dist = 0.0;
    } else {
        const miVector way = state.point - child.org;
        child.dist = length(way);
        child.dir = normalised(way);
    }
    child.dot_nd = float(-dot(child.dir, state.normal));
}

/// Surfaces that face away from a light are not lit; what has no surface is lit from all sides.
bool facesAway(const miState& child) { return child.dot_nd < 0.0f && child.pri && !isNull(child.normal); }

/// Light shaders have no business with further lights; one that samples them, its own among them, would go on
/// without end.
class LightNesting {
public:
    LightNesting(RenderThread& thread, const LeafLight& light) : count_(thread.nestedLights)
    {
        if (count_ == mostNestedLights)
            throw Error(light.light->where, "light " + inQuotes(light.light->name) +
                                                " is sampled by shaders of lights that sample lights, " +
                                                std::to_string(mostNestedLights) + " deep");
        ++count_;
    }
    ~LightNesting() { --count_; }
    LightNesting(const LightNesting&) = delete;
    LightNesting& operator=(const LightNesting&) = delete;

private:
    static constexpr int mostNestedLights = 16;
    int& count_;
};

bool isBlack(const miColor& color) { return color.r == 0.0f && color.g == 0.0f && color.b == 0.0f; }

/// From the lit point towards the light.
Ray shadowRay(const miState& state, const LeafLight* light)
{
    Ray ray;
    ray.origin = state.point;
    ray.near = startDistance(state.point);
    ray.seenBy = castsShadow;
    ray.startInstance = state.instance;
    ray.startPolygon = state.pri;
    ray.light = state.light_instance;
    ray.time = shutterFraction(state);
    if (light && light->directional()) {
        ray.direction = -normalised(state.dir);
        ray.far = std::numeric_limits<double>::infinity();
    } else {
        const miVector way = state.org - state.point;
        ray.direction = normalised(way);
        ray.far = length(way) - startDistance(state.org);
    }
    return ray;
}

} // namespace

miBoolean sampleLight(miColor& result, miVector* direction, float* cosine, miState& state, miTag tag,
                      int& samples)
{
    RenderThread& thread = RenderThread::of(state);
    const Lights& lights = thread.stage.lights;
    Frame& frame = thread.top();
    const int level = state.reflection_level + state.refraction_level;
    const std::size_t place = loopOf(frame, lights, state, tag, samples == 0);
    result = {0.0f, 0.0f, 0.0f, 0.0f};
    // The shader that is called may begin loops of its own, and the list of loops move.
    while (frame.loops[place].leaf < frame.loops[place].leaves->size()) {
        LightLoop& loop = frame.loops[place];
        const LeafLight& light = lights.all()[(*loop.leaves)[loop.leaf]];
        if (loop.sample >= light.samples(level)) {
            if (light.user())
                lights.warnEndless(light);
            loop.endLeaf(loop.sample);
            continue;
        }
        const int number = loop.sample++;
        samples = loop.before + loop.sample;
        miState child;
        setLight(child, state, light, number, level);
        // Where a user light is, its shader alone knows.
        if (!light.user() && facesAway(child))
            continue;
        const LightNesting nesting(thread, light);
        const StateScope scope(child);
        miColor color = {0.0f, 0.0f, 0.0f, 0.0f};
        const miBoolean answer = callAll(light.shader, &color, child);
        if (answer == noMore) {
            // What a user light leaves in the counter is what its samples are divided by.
            frame.loops[place].endLeaf(light.user() ? child.count : number);
            samples = frame.loops[place].before;
            continue;
        }
        if (!answer)
            continue;
        result = color;
        if (direction)
            *direction = -child.dir;
        if (cosine)
            *cosine = std::max(child.dot_nd, 0.0f);
        return miTRUE;
    }
    if (place + 1 == frame.loops.size())
        frame.loops.pop_back();
    return miFALSE;
}

miBoolean traceShadow(miColor& result, miState& state)
{
    RenderThread& thread = RenderThread::of(state);
    if (state.type != miRAY_LIGHT || state.options->shadow == 0)
        return miTRUE;
    const World& world = thread.stage.world;
    const Body* const lit = world.body(state.instance);
    if (lit && !(lit->rays & receivesShadow))
        return miTRUE;
    const Ray ray = shadowRay(state, thread.stage.lights.leaf(state.light_instance));
    if (isNull(ray.direction) || !isFinite(ray.direction) || !isFinite(ray.origin) || !(ray.far > ray.near))
        return miTRUE;
    const Surroundings surroundings = thread.top().surroundings;
    const FrameScope frame(thread);
    if (!world.occluders(ray, frame->occluders)) {
        result = {0.0f, 0.0f, 0.0f, result.a};
        return miFALSE;
    }
    for (const Hit& hit : frame->occluders) {
        frame->state = state;
        frame->state.parent = &state;
        frame->state.type = miRAY_SHADOW;
        frame->surroundings = surroundings;
        setHit(*frame, -ray.direction, hit, false); // light comes from the ray's end
        setVolumeBehind(thread, *frame, *World::surface(hit));
        frame->state.dist = state.dist;
        const StateScope scope(frame->state);
        if (!callAll(World::surface(hit)->shadow, &result, frame->state) || isBlack(result))
            return miFALSE;
    }
    return miTRUE;
}

const std::vector<miTag>& lightList(miState& state, const miTag* tags, int count, bool exclusive)
{
    RenderThread& thread = RenderThread::of(state);
    Frame& frame = thread.top();
    if (frame.lightListsInUse == frame.lightLists.size())
        frame.lightLists.emplace_back();
    std::vector<miTag>& list = frame.lightLists[frame.lightListsInUse++];
    const Lights& lights = thread.stage.lights;
    std::vector<bool>& listed = thread.listedLights;
    listed.assign(lights.all().size(), false);
    for (int i = 0; i < count; ++i)
        for (const std::uint32_t index : lights.behind(tags[i]))
            listed[index] = true;
    list.clear();
    for (std::size_t i = 0; i < listed.size(); ++i)
        if (listed[i] != exclusive)
            list.push_back(lights.all()[i].leaf->tag);
    return list;
}

const std::vector<miTag>& instanceLights(const miState& state)
{
    const Stage& stage = RenderThread::of(state).stage;
    const Body* const body = stage.world.body(state.instance);
    return body && body->limitsLights ? body->lights : stage.lights.tags();
}

} // namespace host
