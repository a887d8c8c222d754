// SPDX-License-Identifier: BSD-3-Clause
#include "host/render/world.h"

#include "host/render/vector.h"
#include "host/report/message.h"

#include <algorithm>
#include <tuple>

namespace host {

/// What the filters need to know about the ray that is being followed. Embree hands its context on to them.
struct World::Query {
    RTCIntersectContext context;
    const World* world;
    const Ray* ray;
    std::vector<Hit>* occluders;
};

namespace {

/// The leaf lights that a list of instances stands for, or all others; in the order of the scene.
std::vector<miTag> listed(const std::vector<miTag>& instances, bool exclusive, const Leaves& leaves)
{
    std::vector<bool> named(leaves.lights().size(), false);
    for (const miTag instance : instances)
        for (const std::uint32_t index : leaves.lightsBelow(instance))
            named[index] = true;
    std::vector<miTag> result;
    for (std::size_t i = 0; i < named.size(); ++i)
        if (named[i] != exclusive)
            result.push_back(leaves.lights()[i]->tag);
    return result;
}

/// A side of a surface that nobody excludes.
bool sideSeen(char face, bool front) { return face == 'f' ? front : face == 'b' ? !front : true; }

} // namespace

RTCRay toEmbree(const Ray& ray)
{
    RTCRay r{};
    r.org_x = ray.origin.x;
    r.org_y = ray.origin.y;
    r.org_z = ray.origin.z;
    r.dir_x = ray.direction.x;
    r.dir_y = ray.direction.y;
    r.dir_z = ray.direction.z;
    r.tnear = float(ray.near);
    r.tfar = float(ray.far);
    r.time = ray.time;
    r.mask = ~0u;
    return r;
}

miVector Body::pointToWorld(const miVector& point, float time) const
{
    const miVector first = transformPoint(point, leaf->record.tf.local_to_global);
    return moves ? first + transformPoint(point, leaf->drift) * time : first;
}

miVector Body::vectorToWorld(const miVector& vector, float time) const
{
    const miVector first = transformVector(vector, leaf->record.tf.local_to_global);
    return moves ? first + transformVector(vector, leaf->drift) * time : first;
}

miVector Body::normalToWorld(const miVector& normal, float time) const
{
    if (!moves)
        return transformNormal(normal, leaf->record.tf.global_to_local);
    Matrix now = widened(leaf->record.tf.local_to_global);
    for (std::size_t i = 0; i < now.size(); ++i)
        now[i] += double(leaf->drift[i]) * time;
    return turnNormal(normal, now);
}

World::World(const Database& database, const Leaves& leaves, Surfaces& surfaces, bool blurs)
    : device_(rtcNewDevice(nullptr)), blurs_(blurs)
{
    try {
        check();
        scene_ = rtcNewScene(device_);
        rtcSetSceneFlags(scene_, RTC_SCENE_FLAG_ROBUST);
        bodies_.reserve(leaves.objects().size());
        for (const Instance* const leaf : leaves.objects())
            add(*leaf, database, leaves, surfaces);
        rtcCommitScene(scene_);
        check();
    } catch (...) {
        release();
        throw;
    }
}

World::~World() { release(); }

void World::release()
{
    for (const auto& [key, model] : models_)
        if (model->scene)
            rtcReleaseScene(model->scene);
    if (scene_)
        rtcReleaseScene(scene_);
    if (device_)
        rtcReleaseDevice(device_);
}

void World::check() const
{
    switch (rtcGetDeviceError(device_)) {
    case RTC_ERROR_NONE:
        return;
    case RTC_ERROR_OUT_OF_MEMORY:
        throw Error("not enough memory for the scene's geometry");
    case RTC_ERROR_UNSUPPORTED_CPU:
        throw Error("this processor is too old: intersection needs SSE2");
    default:
        throw Error("the intersection library failed while it built the scene's geometry");
    }
}

void World::add(const Instance& leaf, const Database& database, const Leaves& leaves, Surfaces& surfaces)
{
    const auto& object = static_cast<const Object&>(*database.find(leaf.record.item));
    const bool vertices = blurs_ && leaf.record.gen_motion != stopsMotion && !object.motionIndices.empty();
    const Model& shared = model(object, surfaces, vertices);
    Body& body = bodies_.emplace_back();
    byTag_[leaf.tag] = &body;
    body.leaf = &leaf;
    body.model = &shared;
    body.rays = rayBits(object, leaf.record);
    body.overrides = leaf.record.mtl_override;
    body.face = leaf.record.face ? leaf.record.face : object.face;
    body.moves = blurs_ && leaf.hasMotion;
    for (const miTag material : leaf.materials)
        body.materials.push_back(surfaces.add(material, *database.find(leaf.record.parent)));
    body.limitsLights = leaf.hasLights;
    if (leaf.hasLights)
        body.lights = listed(leaf.lights, leaf.record.exclusive, leaves);
    body.limitsShadows = leaf.hasShadowLights;
    if (leaf.hasShadowLights) {
        body.shadowLights = listed(leaf.shadowLights, leaf.record.shadow_excl, leaves);
        std::sort(body.shadowLights.begin(), body.shadowLights.end());
    }
    if (body.materials.empty() && std::count(shared.own.begin(), shared.own.end(), nullptr) != 0)
        message(Level::warning, "RC",
                "instance " + inQuotes(database.find(leaf.record.parent)->name) +
                    (object.name.empty() ? "" : " of object " + inQuotes(object.name)) +
                    " has polygons without a material; they are not seen, but cast shadows");
    if (!shared.scene)
        return;
    const RTCGeometry geometry = rtcNewGeometry(device_, RTC_GEOMETRY_TYPE_INSTANCE);
    rtcSetGeometryInstancedScene(geometry, shared.scene);
    // Row vectors times a row-major matrix are column vectors times a column-major one: the same sixteen
    // numbers.
    if (body.moves) {
        miMatrix last;
        for (int i = 0; i < 16; ++i)
            last[i] = leaf.record.tf.local_to_global[i] + leaf.drift[i];
        rtcSetGeometryTimeStepCount(geometry, 2);
        rtcSetGeometryTransform(geometry, 1, RTC_FORMAT_FLOAT4X4_COLUMN_MAJOR, last);
    }
    rtcSetGeometryTransform(geometry, 0, RTC_FORMAT_FLOAT4X4_COLUMN_MAJOR, leaf.record.tf.local_to_global);
    rtcCommitGeometry(geometry);
    rtcAttachGeometryByID(scene_, geometry, unsigned(bodies_.size() - 1));
    rtcReleaseGeometry(geometry);
}

const Model& World::model(const Object& object, Surfaces& surfaces, bool moves)
{
    std::unique_ptr<Model>& model = models_[{object.tag, moves}];
    if (model)
        return *model;
    model = std::make_unique<Model>(object);
    model->moves = moves;
    for (const Polygon& polygon : object.polygons)
        model->own.push_back(surfaces.add(polygon.material, object));
    const std::vector<Triangle>& triangles = model->mesh.triangles();
    if (triangles.empty())
        return *model;

    const RTCGeometry geometry = rtcNewGeometry(device_, RTC_GEOMETRY_TYPE_TRIANGLE);
    rtcSetGeometryTimeStepCount(geometry, moves ? 2 : 1);
    const auto vertices = [&](unsigned step) {
        return static_cast<miVector*>(rtcSetNewGeometryBuffer(geometry, RTC_BUFFER_TYPE_VERTEX, step,
                                                              RTC_FORMAT_FLOAT3, sizeof(miVector),
                                                              object.vertices.size()));
    };
    miVector* const first = vertices(0);
    miVector* const last = moves ? vertices(1) : nullptr;
    void* const indices = rtcSetNewGeometryBuffer(geometry, RTC_BUFFER_TYPE_INDEX, 0, RTC_FORMAT_UINT3,
                                                  sizeof(Triangle), triangles.size());
    check();
    for (std::uint32_t i = 0; i < object.vertices.size(); ++i)
        first[i] = model->mesh.position(i);
    for (std::uint32_t i = 0; moves && i < object.vertices.size(); ++i)
        last[i] = model->mesh.lastPosition(i);
    std::copy(triangles.begin(), triangles.end(), static_cast<Triangle*>(indices));
    rtcSetGeometryIntersectFilterFunction(geometry, filterNearest);
    rtcSetGeometryOccludedFilterFunction(geometry, filterOccluders);
    rtcCommitGeometry(geometry);
    model->scene = rtcNewScene(device_);
    rtcSetSceneFlags(model->scene, RTC_SCENE_FLAG_ROBUST);
    rtcAttachGeometry(model->scene, geometry);
    rtcReleaseGeometry(geometry);
    rtcCommitScene(model->scene);
    check();
    return *model;
}

bool World::candidate(const RTCFilterFunctionNArguments& arguments, const Query& query, Hit& hit)
{
    const Ray& ray = *query.ray;
    hit.body = &query.world->bodies_[RTCHitN_instID(arguments.hit, 1, 0, 0)];
    hit.triangle = RTCHitN_primID(arguments.hit, 1, 0);
    hit.u = RTCHitN_u(arguments.hit, 1, 0);
    hit.v = RTCHitN_v(arguments.hit, 1, 0);
    hit.distance = RTCRayN_tfar(arguments.ray, 1, 0);
    hit.time = ray.time;
    if (!(hit.body->rays & ray.seenBy))
        return false;
    if (ray.startPolygon == &hit.polygon() && ray.startInstance == hit.body->tag())
        return false;
    const char bodyFace = ray.faceMatters ? hit.body->face : 'a';
    if (ray.face != 'a' || bodyFace != 'a') {
        const miVector normal = hit.body->at(hit.triangle, hit.u, hit.v, hit.time).geometric;
        const bool front = dot(hit.body->normalToWorld(normal, hit.time), ray.direction) < 0.0;
        return sideSeen(ray.face, front) && sideSeen(bodyFace, front);
    }
    return true;
}

void World::filterNearest(const RTCFilterFunctionNArguments* arguments)
{
    const Query& query = *reinterpret_cast<const Query*>(arguments->context);
    Hit hit;
    const bool seen = candidate(*arguments, query, hit);
    // A surface without a material shader is no obstacle to anything but light.
    const Surface* const surface = seen ? World::surface(hit) : nullptr;
    if (!surface || surface->shader.empty())
        arguments->valid[0] = 0;
}

void World::filterOccluders(const RTCFilterFunctionNArguments* arguments)
{
    const Query& query = *reinterpret_cast<const Query*>(arguments->context);
    Hit hit;
    if (!candidate(*arguments, query, hit)) {
        arguments->valid[0] = 0;
        return;
    }
    if (hit.body->limitsShadows &&
        !std::binary_search(hit.body->shadowLights.begin(), hit.body->shadowLights.end(), query.ray->light)) {
        arguments->valid[0] = 0;
        return;
    }
    const Surface* const surface = World::surface(hit);
    if (!surface || surface->opaque || surface->shadow.empty())
        return; // accepted: nothing passes
    query.occluders->push_back(hit);
    arguments->valid[0] = 0;
}

bool World::nearest(const Ray& ray, Hit& hit) const
{
    Query query{{}, this, &ray, nullptr};
    rtcInitIntersectContext(&query.context);
    RTCRayHit found{};
    found.ray = toEmbree(ray);
    found.hit.geomID = RTC_INVALID_GEOMETRY_ID;
    found.hit.instID[0] = RTC_INVALID_GEOMETRY_ID;
    rtcIntersect1(scene_, &query.context, &found);
    if (found.hit.geomID == RTC_INVALID_GEOMETRY_ID)
        return false;
    hit = {
        &bodies_[found.hit.instID[0]], found.hit.primID, found.hit.u, found.hit.v, found.ray.tfar, ray.time};
    return true;
}

bool World::occluders(const Ray& ray, std::vector<Hit>& hits) const
{
    hits.clear();
    Query query{{}, this, &ray, &hits};
    rtcInitIntersectContext(&query.context);
    RTCRay r = toEmbree(ray);
    rtcOccluded1(scene_, &query.context, &r);
    if (r.tfar < 0.0f)
        return false;
    // A ray through the edge between two triangles of a polygon meets both of them, but the polygon once.
    std::sort(hits.begin(), hits.end(), [](const Hit& a, const Hit& b) {
        return std::make_tuple(a.body, &a.polygon(), a.triangle) <
               std::make_tuple(b.body, &b.polygon(), b.triangle);
    });
    hits.erase(std::unique(hits.begin(), hits.end(),
                           [](const Hit& a, const Hit& b) {
                               return a.body == b.body && &a.polygon() == &b.polygon();
                           }),
               hits.end());
    std::stable_sort(hits.begin(), hits.end(),
                     [](const Hit& a, const Hit& b) { return a.distance > b.distance; });
    return true;
}

const Body* World::body(miTag leaf) const
{
    const auto found = byTag_.find(leaf);
    return found == byTag_.end() ? nullptr : found->second;
}

const Surface* World::surface(const Hit& hit)
{
    const Body& body = *hit.body;
    const Polygon& polygon = hit.polygon();
    const Object& object = body.model->mesh.object();
    if (!body.overrides)
        if (const Surface* const own = body.model->own[std::size_t(&polygon - object.polygons.data())])
            return own;
    if (body.materials.empty())
        return nullptr;
    const int last = int(body.materials.size()) - 1;
    return body.materials[object.tagged ? std::size_t(std::clamp(polygon.label, 0, last)) : 0u];
}

} // namespace host
