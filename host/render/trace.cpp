// SPDX-License-Identifier: BSD-3-Clause
#include "host/render/trace.h"

#include "host/render/vector.h"
#include "host/shading/network.h"

#include <algorithm>
#include <cmath>
#include <limits>

namespace host {

namespace {

constexpr double infinity = std::numeric_limits<double>::infinity();
constexpr miColor black = {0.0f, 0.0f, 0.0f, 0.0f};

/// Surfaces that an eye ray may shine through before it ends.
constexpr int mostLayers = 64;

void clearHit(Frame& frame)
{
    frame.hit = {};
    miState& state = frame.state;
    state.dist = 0.0;
    state.pri = nullptr;
    state.instance = miNULLTAG;
    state.material = miNULLTAG;
    state.refraction_volume = miNULLTAG;
    state.label = 0;
    state.inv_normal = miFALSE;
    state.face = '\0';
    state.shadow_tol = 0.0;
    state.tex_list = state.bump_x_list = state.bump_y_list = state.derivs = nullptr;
    state.point = state.normal = state.normal_geom = state.motion = state.tex = {0.0f, 0.0f, 0.0f};
    state.dot_nd = 0.0f;
    std::fill(std::begin(state.bary), std::end(state.bary), 0.0f);
}

/// A child of the outer frame's state in the frame: a copy, but for what every new ray sets.
void beginChild(Frame& frame, miState& parent, const Frame& outer, miRay_type type)
{
    frame.state = parent;
    frame.state.parent = &parent;
    frame.state.child = nullptr;
    frame.state.type = type;
    frame.surroundings = outer.surroundings;
    parent.child = &frame.state;
}

/// Calls what a tag of the frame's state stands for: the list that begins with it, or a single shader that
/// another one has put there.
miBoolean callSurrounding(RenderThread& thread, Frame& frame, miTag tag, const FunctionList* list,
                          miColor& result)
{
    if (tag == miNULLTAG)
        return miFALSE;
    const StateScope scope(frame.state);
    if (list && !list->empty() && list->front()->tag == tag)
        return callAll(*list, &result, frame.state);
    auto* const other = thread.stage.database.findAs<Function>(tag);
    return other ? call(*other, &result, frame.state) : miFALSE;
}

miBoolean callEnvironment(RenderThread& thread, Frame& frame, miColor& result)
{
    clearHit(frame);
    return callSurrounding(thread, frame, frame.state.environment, frame.surroundings.environment, result);
}

/// What stands for a list in a state.
miTag tagOf(const FunctionList& list) { return list.empty() ? miNULLTAG : list.front()->tag; }

/// A light's shape as it is seen: its shader is called for a ray of that type.
miBoolean shadeLight(Frame& frame, const LeafLight& light, const ShapeHit& hit, miColor& result)
{
    miState& state = frame.state;
    clearHit(frame);
    state.instance = state.light_instance = light.leaf->tag;
    state.label = light.light->record.label;
    state.dist = hit.distance;
    state.point = state.org + state.dir * float(hit.distance);
    const double cosine = dot(hit.normal, state.dir);
    state.inv_normal = cosine > 0.0;
    state.face = state.inv_normal ? 'b' : 'f';
    state.normal = state.normal_geom = state.inv_normal ? -hit.normal : hit.normal;
    state.dot_nd = float(-std::abs(cosine));
    state.shadow_tol = startDistance(state.point);
    const StateScope scope(state);
    return callAll(light.shader, &result, state);
}

/// The light whose shape hides what a ray meets otherwise; a shape that lies on a surface is before it.
const LeafLight* lightBefore(const Lights& lights, Ray ray, const Hit* hit, ShapeHit& shape)
{
    if (!lights.seen())
        return nullptr;
    if (hit)
        ray.far = hit->distance + startDistance(ray.origin + ray.direction * hit->distance);
    return lights.nearest(ray, shape);
}

/// Looks for the nearest hit of the frame's ray and lets its material or light shade it; a miss is the
/// environment's.
miBoolean shadeHit(RenderThread& thread, Frame& frame, const Ray& ray, miColor& result)
{
    result = black;
    if (isNull(ray.direction) || !isFinite(ray.direction) || !isFinite(ray.origin))
        return callEnvironment(thread, frame, result);
    Hit hit;
    const bool met = thread.stage.world.nearest(ray, hit);
    ShapeHit shape;
    if (const LeafLight* const light = lightBefore(thread.stage.lights, ray, met ? &hit : nullptr, shape))
        return shadeLight(frame, *light, shape, result);
    if (!met)
        return callEnvironment(thread, frame, result);
    setHit(frame, ray.direction, hit, true);
    const Surface& surface = *World::surface(hit);
    setVolumeBehind(thread, frame, surface);
    if (!surface.environment.empty()) {
        frame.state.environment = tagOf(surface.environment);
        frame.surroundings.environment = &surface.environment;
    }
    const StateScope scope(frame.state);
    return callAll(surface.shader, &result, frame.state);
}

/// The same, seen through the volume that the ray has crossed.
miBoolean shade(RenderThread& thread, Frame& frame, const Ray& ray, miColor& result)
{
    const miTag volume = frame.state.volume;
    const FunctionList* const list = frame.surroundings.volume;
    const miBoolean found = shadeHit(thread, frame, ray, result);
    const miBoolean seen = callSurrounding(thread, frame, volume, list, result);
    return found ? found : seen;
}

/// True when something behind would be seen through this opacity.
bool seesThrough(const std::optional<miColor>& opacity)
{
    return opacity && (opacity->r < 1.0f || opacity->g < 1.0f || opacity->b < 1.0f || opacity->a < 1.0f);
}

void add(miColor& sum, const miColor& color, const miColor& share)
{
    sum.r += share.r * color.r;
    sum.g += share.g * color.g;
    sum.b += share.b * color.b;
    sum.a += share.a * color.a;
}

void fade(miColor& share, const miColor& opacity)
{
    share.r *= 1.0f - opacity.r;
    share.g *= 1.0f - opacity.g;
    share.b *= 1.0f - opacity.b;
    share.a *= 1.0f - opacity.a;
}

/// An eye ray, and what lies behind the surfaces that let themselves be seen through.
miBoolean shadeEye(RenderThread& thread, Frame& frame, Ray ray, miColor& result)
{
    if (!thread.stage.compositesOpacity)
        return shade(thread, frame, ray, result);
    const miState start = frame.state;
    const Surroundings surroundings = frame.surroundings;
    const miBoolean found = shade(thread, frame, ray, result);
    if (!seesThrough(frame.opacity))
        return found;
    miColor share = {1.0f, 1.0f, 1.0f, 1.0f};
    fade(share, *frame.opacity);
    const FrameScope behind(thread);
    behind->state = frame.state; // where the search goes on from
    for (int layer = 1; layer < mostLayers && behind->state.dist > 0.0; ++layer) {
        ray.near = behind->state.dist + startDistance(behind->state.point);
        ray.startInstance = behind->state.instance;
        ray.startPolygon = behind->state.pri;
        behind->state = start;
        behind->surroundings = surroundings;
        behind->opacity.reset();
        miColor color;
        shade(thread, *behind, ray, color);
        add(result, color, share);
        if (!seesThrough(behind->opacity))
            break;
        fade(share, *behind->opacity);
    }
    return found;
}

bool isSame(const miVector& a, const miVector& b) { return a.x == b.x && a.y == b.y && a.z == b.z; }

Ray eyeRay(const miState& state)
{
    Ray ray;
    ray.origin = state.org;
    ray.direction = state.dir;
    ray.far = infinity;
    ray.seenBy = seenByEye;
    ray.face = state.options->face ? state.options->face : 'a';
    ray.faceMatters = true;
    ray.time = shutterFraction(state);
    return ray;
}

miBoolean enterLens(RenderThread& thread, Frame& frame, miColor& result)
{
    const StateScope scope(frame.state);
    result = black;
    return call(*thread.stage.lenses[thread.lens++], &result, frame.state);
}

PixelFacts facts(const CameraRays& rays, const miState& state)
{
    PixelFacts result;
    if (!(state.dist > 0.0))
        return result;
    result.depth = rays.depth(state.point);
    result.normal = rays.toCamera(state.normal);
    result.motion = rays.toCamera(state.motion);
    result.label = state.label;
    return result;
}

/// How far a place on a surface moves while the shutter is open: with the object's motion vectors, and with
/// the instances above it.
miVector motionOf(const Body& body, const SurfacePoint& place, float time)
{
    const Instance& leaf = *body.leaf;
    if (leaf.record.gen_motion == stopsMotion)
        return {0.0f, 0.0f, 0.0f};
    const miVector first = body.model->moves ? place.point - place.motion * time : place.point;
    return transformVector(place.motion, leaf.record.tf.local_to_global) +
           transformPoint(first + place.motion, leaf.drift);
}

/// What the state says of a list: where it begins, or null.
miVector* pointerTo(std::vector<miVector>& list) { return list.empty() ? nullptr : list.data(); }

/// True when the state's surface may cast such rays, and its levels allow one more.
bool mayCast(const RenderThread& thread, const miState& state, miRay_type type)
{
    const miOptions& options = *state.options;
    const int reflections = state.reflection_level + (type == miRAY_REFLECT);
    const int refractions = state.refraction_level + (type != miRAY_REFLECT);
    if (!options.trace || reflections + refractions > options.trace_depth ||
        (type == miRAY_REFLECT ? reflections > options.reflection_depth
                               : refractions > options.refraction_depth))
        return false;
    const Body* const body = thread.stage.world.body(state.instance);
    const unsigned bit = type == miRAY_REFLECT   ? castsReflection
                         : type == miRAY_REFRACT ? castsRefraction
                                                 : castsTransparency;
    return !body || (body->rays & bit);
}

} // namespace

void setVolumeBehind(const RenderThread& thread, Frame& frame, const Surface& surface)
{
    miState& state = frame.state;
    Surroundings& around = frame.surroundings;
    state.refraction_volume = miNULLTAG;
    around.refractionVolume = nullptr;
    if (surface.volume.empty() || state.options->no_volume)
        return;
    around.refractionVolume = state.inv_normal ? &thread.stage.volume : &surface.volume;
    state.refraction_volume = tagOf(*around.refractionVolume);
}

double startDistance(const miVector& point)
{
    constexpr double roundings = 32.0 * std::numeric_limits<float>::epsilon();
    return roundings * std::max({std::abs(point.x), std::abs(point.y), std::abs(point.z)});
}

void setHit(Frame& frame, const miVector& direction, const Hit& hit, bool flip)
{
    frame.hit = hit;
    miState& state = frame.state;
    const Body& body = *hit.body;
    const Mesh& mesh = body.model->mesh;
    const SurfacePoint place = body.at(hit.triangle, hit.u, hit.v, hit.time);
    state.point = body.pointToWorld(place.point, hit.time);
    state.normal = normalised(body.normalToWorld(place.normal, hit.time));
    state.normal_geom = normalised(body.normalToWorld(place.geometric, hit.time));
    state.motion = motionOf(body, place, hit.time);
    const bool back = dot(state.normal_geom, direction) > 0.0;
    state.inv_normal = flip && back;
    if (state.inv_normal) {
        state.normal = -state.normal;
        state.normal_geom = -state.normal_geom;
    }
    state.face = back ? 'b' : 'f';
    state.dot_nd = float(dot(state.normal, direction));
    state.dist = hit.distance;
    const float weights[] = {1.0f - hit.u - hit.v, hit.u, hit.v, 0.0f};
    std::copy(std::begin(weights), std::end(weights), state.bary);
    state.pri = const_cast<Polygon*>(&hit.polygon());
    state.instance = body.tag();
    state.label = mesh.object().label;
    const Surface* const surface = World::surface(hit);
    state.material = surface ? surface->tag : miNULLTAG;
    state.shadow_tol = startDistance(state.point);
    mesh.textures(hit.triangle, hit.u, hit.v, frame.textures);
    state.tex_list = pointerTo(frame.textures);
    state.tex = frame.textures.empty() ? miVector{0.0f, 0.0f, 0.0f} : frame.textures.front();
    // Shaders get bump bases as they are modelled, derivatives in internal space.
    mesh.bumpBases(hit.triangle, hit.u, hit.v, frame.bumpX, frame.bumpY);
    state.bump_x_list = pointerTo(frame.bumpX);
    state.bump_y_list = pointerTo(frame.bumpY);
    const bool derived = mesh.derivatives(hit.triangle, hit.u, hit.v, frame.derivatives);
    if (derived)
        for (miVector& derivative : frame.derivatives)
            derivative = body.vectorToWorld(derivative, hit.time);
    state.derivs = derived ? frame.derivatives.data() : nullptr;
}

SampleResult sample(RenderThread& thread, float rasterX, float rasterY, float time)
{
    const Stage& stage = thread.stage;
    const miOptions& options = stage.options.record;
    const FrameScope frame(thread);
    miState& state = frame->state;
    state = miState{};
    state.version = MI_STATE_VERSION;
    state.camera_inst = stage.cameraLeaf.tag;
    state.camera = &stage.camera.record;
    state.options = &options;
    state.global_lock = thread.ts.network.globalLock();
    state.ts = &thread.ts;
    state.thread = short(thread.ts.number);
    state.raster_x = rasterX;
    state.raster_y = rasterY;
    state.type = miRAY_EYE;
    state.ior = state.ior_in = 1.0f;
    state.importance = 1.0f;
    if (options.shutter > 0.0f)
        state.time = options.shutter_delay + time * (options.shutter - options.shutter_delay);
    frame->surroundings = {&stage.environment, &stage.volume, nullptr};
    state.environment = tagOf(stage.environment);
    state.volume = tagOf(stage.volume);
    const PrimaryRay primary = stage.rays.at(rasterX, rasterY, shutterFraction(state));
    state.org = primary.origin;
    state.dir = primary.direction;

    SampleResult result;
    thread.lens = 0;
    if (stage.lenses.empty()) {
        Ray ray = eyeRay(state);
        ray.near = primary.near;
        ray.far = primary.far;
        shadeEye(thread, *frame, ray, result.color);
    } else {
        enterLens(thread, *frame, result.color);
    }
    result.facts = facts(stage.rays, state);
    return result;
}

miBoolean traceEye(miColor& result, miState& state, const miVector& origin, const miVector& direction)
{
    RenderThread& thread = RenderThread::of(state);
    const Frame& outer = thread.top();
    const FrameScope frame(thread);
    state.org = origin;
    state.dir = direction;
    beginChild(*frame, state, outer, miRAY_EYE);
    clearHit(*frame);
    const std::size_t lens = thread.lens;
    miBoolean found;
    if (lens < thread.stage.lenses.size()) {
        found = enterLens(thread, *frame, result);
    } else {
        if (isFinite(direction))
            frame->state.dir = normalised(direction);
        Ray ray = eyeRay(frame->state);
        // Lenses that leave the camera's ray as it is leave its clipping too.
        const PrimaryRay primary =
            thread.stage.rays.at(state.raster_x, state.raster_y, shutterFraction(state));
        if (isSame(origin, primary.origin) && isSame(direction, primary.direction)) {
            ray.near = primary.near;
            ray.far = primary.far;
        }
        found = shadeEye(thread, *frame, ray, result);
    }
    thread.lens = lens;
    // A lens shader sees in its own state what was hit.
    state.label = frame->state.label;
    state.point = frame->state.point;
    state.normal = frame->state.normal;
    state.dist = frame->state.dist;
    state.motion = frame->state.motion;
    return found;
}

miBoolean traceSecondary(miColor& result, miState& state, const miVector& direction, miRay_type type)
{
    RenderThread& thread = RenderThread::of(state);
    const bool allowed = mayCast(thread, state, type);
    result = black;
    if (!allowed && type == miRAY_TRANSPARENT)
        return miFALSE;
    const Frame& outer = thread.top();
    const FrameScope frame(thread);
    beginChild(*frame, state, outer, type);
    miState& child = frame->state;
    child.org = state.point;
    child.dir = isFinite(direction) ? normalised(direction) : direction;
    (type == miRAY_REFLECT ? child.reflection_level : child.refraction_level) += 1;
    if (!allowed)
        return callEnvironment(thread, *frame, result);
    Ray ray;
    ray.origin = child.org;
    ray.direction = child.dir;
    ray.near = startDistance(child.org);
    ray.far = infinity;
    ray.seenBy = type == miRAY_REFLECT   ? seenByReflection
                 : type == miRAY_REFRACT ? seenByRefraction
                                         : seenByTransparency;
    ray.startInstance = state.instance;
    ray.startPolygon = state.pri;
    ray.time = shutterFraction(state);
    clearHit(*frame);
    // The list may be empty: then there is nothing behind.
    if (type != miRAY_REFLECT && (outer.surroundings.refractionVolume || state.refraction_volume)) {
        child.volume = state.refraction_volume;
        frame->surroundings.volume = outer.surroundings.refractionVolume;
    }
    return shade(thread, *frame, ray, result);
}

miBoolean traceProbe(miState& state, const miVector& direction, const miVector& origin)
{
    RenderThread& thread = RenderThread::of(state);
    const Frame& outer = thread.top();
    const FrameScope frame(thread);
    beginChild(*frame, state, outer, miRAY_PROBE);
    miState& child = frame->state;
    clearHit(*frame);
    child.org = origin;
    child.dir = isFinite(direction) ? normalised(direction) : direction;
    if (isNull(direction) || !isFinite(direction) || !isFinite(origin))
        return miFALSE;
    Ray ray;
    ray.origin = child.org;
    ray.direction = child.dir;
    ray.near = startDistance(child.org);
    ray.far = infinity;
    ray.seenBy = seenByReflection | seenByRefraction | seenByTransparency;
    ray.time = shutterFraction(state);
    if (isSame(origin, state.point)) {
        ray.startInstance = state.instance;
        ray.startPolygon = state.pri;
    }
    Hit hit;
    if (!thread.stage.world.nearest(ray, hit))
        return miFALSE;
    setHit(*frame, ray.direction, hit, true);
    return miTRUE;
}

miBoolean traceEnvironment(miColor& result, miState& state, const miVector& direction)
{
    RenderThread& thread = RenderThread::of(state);
    const Frame& outer = thread.top();
    const FrameScope frame(thread);
    beginChild(*frame, state, outer, miRAY_ENVIRONMENT);
    if (state.pri)
        frame->state.org = state.point;
    frame->state.dir = direction;
    result = black;
    return callEnvironment(thread, *frame, result);
}

void setOpacity(miState& state, const miColor& opacity)
{
    RenderThread* const thread = RenderThread::find(state);
    if (thread && state.type != miRAY_LIGHT && state.type != miRAY_SHADOW && state.type != miRAY_ENVIRONMENT)
        thread->top().opacity = opacity;
}

std::optional<miColor> opacityOf(const miState& state)
{
    RenderThread* const thread = RenderThread::find(state);
    return thread ? thread->top().opacity : std::nullopt;
}

} // namespace host
