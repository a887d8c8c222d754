// SPDX-License-Identifier: BSD-3-Clause
// Everything that rays can meet.
#pragma once

#include "host/render/leaves.h"
#include "host/render/mesh.h"
#include "host/render/surface.h"

#include <embree3/rtcore.h>

#include <map>
#include <memory>
#include <unordered_map>
#include <utility>
#include <vector>

namespace host {

/// An object's triangles with the materials that its polygons name, shared by all its instances.
struct Model {
    explicit Model(const Object& object) : mesh(object) {}

    Mesh mesh;
    std::vector<const Surface*> own; ///< by polygon; null where none is named
    RTCScene scene = nullptr;
    bool moves = false; ///< with its vertices' motion vectors, while the shutter is open
};

/// An object seen through one leaf instance.
struct Body {
    const Instance* leaf = nullptr;
    const Model* model = nullptr;
    unsigned rays = 0; ///< RayBit
    bool overrides = false;
    bool limitsLights = false;             ///< has a light list: `lights`
    bool limitsShadows = false;            ///< casts shadows only in `shadowLights`
    std::vector<const Surface*> materials; ///< inherited
    std::vector<miTag> lights;             ///< leaf lights, in the order of the scene
    std::vector<miTag> shadowLights;       ///< leaf lights, sorted
    char face = 'a';                       ///< 'f', 'b' or 'a'
    bool moves = false;                    ///< its instances do, while the shutter is open

    miTag tag() const { return leaf->tag; }

    /// Of a place on the body, in its own space, for a time from 0 to 1 over the shutter.
    SurfacePoint at(std::uint32_t triangle, float u, float v, float time) const
    {
        return model->mesh.at(triangle, u, v, model->moves ? time : 0.0f);
    }
    /// From the body's own space to the world. Normals are not unit length afterwards.
    miVector pointToWorld(const miVector& point, float time) const;
    miVector vectorToWorld(const miVector& vector, float time) const;
    miVector normalToWorld(const miVector& normal, float time) const;
};

/// Where a ray met a body.
struct Hit {
    const Body* body = nullptr;
    std::uint32_t triangle = 0;
    float u = 0.0f, v = 0.0f;
    float distance = 0.0f;
    float time = 0.0f; ///< the ray's

    const Polygon& polygon() const { return body->model->mesh.polygon(triangle); }
};

/// A ray and what it is to ignore.
struct Ray {
    miVector origin;
    miVector direction; ///< unit length
    double near = 0.0;
    double far = 0.0;         ///< may be infinite
    unsigned seenBy = 0;      ///< the RayBit that a body must have
    char face = 'a';          ///< which side of surfaces is seen
    bool faceMatters = false; ///< bodies' own faces count too: eye rays
    miTag startInstance = 0;  ///< with `startPolygon`: where the ray starts, not to be met again
    const void* startPolygon = nullptr;
    miTag light = 0;   ///< for shadow rays: the leaf light
    float time = 0.0f; ///< from 0 to 1 over the shutter
};

/// The ray for the index.
RTCRay toEmbree(const Ray& ray);

/// The bodies of one rendering, behind an index for intersection. Safe from any thread once it is built.
class World {
public:
    /// `blurs`: what moves while the shutter is open is met where it is at a ray's time; otherwise where it
    /// is when the shutter opens.
    World(const Database& database, const Leaves& leaves, Surfaces& surfaces, bool blurs);
    ~World();
    World(const World&) = delete;
    World& operator=(const World&) = delete;

    /// The nearest hit; false when there is none.
    bool nearest(const Ray& ray, Hit& hit) const;

    /// Gathers every occluder with a shadow shader between the ray's ends, farthest from its origin first,
    /// each polygon once. False, with the list unfinished, when something lets no light through at all.
    bool occluders(const Ray& ray, std::vector<Hit>& hits) const;

    /// The body of a leaf instance, or null.
    const Body* body(miTag leaf) const;

    /// The material at a hit: null when there is none.
    static const Surface* surface(const Hit& hit);

private:
    struct Query;

    static void filterNearest(const RTCFilterFunctionNArguments* arguments);
    static void filterOccluders(const RTCFilterFunctionNArguments* arguments);
    static bool candidate(const RTCFilterFunctionNArguments& arguments, const Query& query, Hit& hit);

    const Model& model(const Object& object, Surfaces& surfaces, bool moves);
    void add(const Instance& leaf, const Database& database, const Leaves& leaves, Surfaces& surfaces);
    void check() const;
    void release();

    RTCDevice device_ = nullptr;
    RTCScene scene_ = nullptr;
    const bool blurs_;
    std::map<std::pair<miTag, bool>, std::unique_ptr<Model>> models_; ///< by object, and whether they move
    std::vector<Body> bodies_;                                        ///< by the instance number in `scene_`
    std::unordered_map<miTag, const Body*> byTag_;
};

} // namespace host
