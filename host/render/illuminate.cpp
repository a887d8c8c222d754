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

/// The loop that this state has begun, or a new one.
LightLoop& loopOf(Frame& frame, const miState& state, miTag light, bool begins)
{
    const auto mine = [&](const LightLoop& loop) { return loop.state == &state && loop.light == light; };
    const auto found = std::find_if(frame.loops.begin(), frame.loops.end(), mine);
    LightLoop& loop = found != frame.loops.end() ? *found : frame.loops.emplace_back();
    if (begins || found == frame.loops.end())
        loop = {&state, light, 0, 0};
    return loop;
}

/// A copy of the surface's state as the light's shader gets it, for one sample of the light.
void setLight(miState& child, miState& state, const LeafLight& light, int sample)
{
    const int level = state.reflection_level + state.refraction_level;
    const std::uint32_t seed = mixed(std::bit_cast<std::uint32_t>(state.raster_x),
                                     std::bit_cast<std::uint32_t>(state.raster_y), std::uint32_t(level), 0);
    child = state;
    child.parent = &state;
    child.child = nullptr;
    child.type = miRAY_LIGHT;
    child.light_instance = light.leaf->tag;
    child.count = miUshort(sample);
    child.org = light.point(sample, level, seed);
    if (light.directional()) {
        child.dir = light.direction;
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
    const std::vector<std::uint32_t>& leaves = lights.behind(tag);
    Frame& frame = thread.top();
    const std::size_t place = std::size_t(&loopOf(frame, state, tag, samples == 0) - frame.loops.data());
    result = {0.0f, 0.0f, 0.0f, 0.0f};
    // The shader that is called may begin loops of its own, and the list of loops move.
    while (frame.loops[place].leaf < leaves.size()) {
        LightLoop& loop = frame.loops[place];
        const LeafLight& light = lights.all()[leaves[loop.leaf]];
        if (loop.sample >= light.samples(state.reflection_level + state.refraction_level)) {
            ++loop.leaf;
            loop.sample = 0;
            continue;
        }
        miState child;
        setLight(child, state, light, loop.sample++);
        miBoolean lit = miFALSE;
        if (!facesAway(child)) {
            const StateScope scope(child);
            miColor color = {0.0f, 0.0f, 0.0f, 0.0f};
            lit = callAll(light.shader, &color, child);
            if (lit == noMore) {
                ++frame.loops[place].leaf;
                frame.loops[place].sample = 0;
                continue;
            }
            if (lit)
                result = color;
        }
        ++samples;
        if (!lit)
            continue;
        if (direction)
            *direction = -child.dir;
        if (cosine)
            *cosine = std::max(child.dot_nd, 0.0f);
        return miTRUE;
    }
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
    const FunctionList* const environment = thread.top().environment;
    const FrameScope frame(thread);
    if (!world.occluders(ray, frame->occluders)) {
        result = {0.0f, 0.0f, 0.0f, result.a};
        return miFALSE;
    }
    for (const Hit& hit : frame->occluders) {
        frame->state = state;
        frame->state.parent = &state;
        frame->state.type = miRAY_SHADOW;
        frame->environment = environment;
        setHit(*frame, -ray.direction, hit, false); // light comes from the ray's end
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

} // namespace host
