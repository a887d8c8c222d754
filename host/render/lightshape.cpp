// SPDX-License-Identifier: BSD-3-Clause
#include "host/render/lightshape.h"

#include "host/render/vector.h"

#include <algorithm>
#include <array>
#include <numbers>
#include <numeric>

namespace host {

namespace {

constexpr double turn = 2.0 * std::numbers::pi;

/// A point or direction in a unit shape's own space.
struct Local {
    double x, y, z;
};

double dot(const Local& a, const Local& b) { return a.x * b.x + a.y * b.y + a.z * b.z; }

struct LocalRay {
    Local origin, direction;
    double near, far;

    Local at(double t) const
    {
        return {origin.x + t * direction.x, origin.y + t * direction.y, origin.z + t * direction.z};
    }
    bool holds(double t) const { return t > near && t <= far; } // false for a NaN
};

/// Calls accept(t) for the places between the ray's ends where a t² + 2 b t + c is 0, nearest first, until it
/// returns true.
template <class Accept>
bool firstRoot(const LocalRay& ray, double a, double b, double c, Accept accept)
{
    const double root = std::sqrt(b * b - a * c);
    for (const double t : {(-b - root) / a, (-b + root) / a})
        if (ray.holds(t) && accept(t))
            return true;
    return false;
}

// The unit shapes: a place for each a and b, and the nearest place that a ray meets, with the normal there.
// Flat ones lie in x and y.

template <class Inside>
bool meetFlat(const LocalRay& ray, double& t, Local& normal, Inside inside)
{
    t = -ray.origin.z / ray.direction.z;
    normal = {0.0, 0.0, 1.0};
    return ray.holds(t) && inside(ray.at(t));
}

struct Square {
    static constexpr bool flat = true;
    static Local at(double a, double b) { return {2.0 * a - 1.0, 2.0 * b - 1.0, 0.0}; }
    static bool meet(const LocalRay& ray, double& t, Local& normal)
    {
        return meetFlat(ray, t, normal,
                        [](const Local& p) { return std::abs(p.x) <= 1.0 && std::abs(p.y) <= 1.0; });
    }
};

struct Disc {
    static constexpr bool flat = true;
    static Local at(double a, double b)
    {
        const double r = std::sqrt(a);
        return {r * std::cos(turn * b), r * std::sin(turn * b), 0.0};
    }
    static bool meet(const LocalRay& ray, double& t, Local& normal)
    {
        return meetFlat(ray, t, normal, [](const Local& p) { return p.x * p.x + p.y * p.y <= 1.0; });
    }
};

struct Sphere {
    static constexpr bool flat = false;
    static Local at(double a, double b)
    {
        const double z = 2.0 * a - 1.0;
        const double ring = std::sqrt(std::max(0.0, 1.0 - z * z));
        return {ring * std::cos(turn * b), ring * std::sin(turn * b), z};
    }
    static bool meet(const LocalRay& ray, double& t, Local& normal)
    {
        const auto& [o, d, near, far] = ray;
        return firstRoot(ray, dot(d, d), dot(o, d), dot(o, o) - 1.0, [&](double root) {
            t = root;
            normal = ray.at(root);
            return true;
        });
    }
};

/// Without its two ends.
struct Cylinder {
    static constexpr bool flat = false;
    static Local at(double a, double b) { return {std::cos(turn * b), std::sin(turn * b), 2.0 * a - 1.0}; }
    static bool meet(const LocalRay& ray, double& t, Local& normal)
    {
        const auto& [o, d, near, far] = ray;
        return firstRoot(ray, d.x * d.x + d.y * d.y, o.x * d.x + o.y * d.y, o.x * o.x + o.y * o.y - 1.0,
                         [&](double root) {
                             const Local p = ray.at(root);
                             t = root;
                             normal = {p.x, p.y, 0.0};
                             return std::abs(p.z) <= 1.0;
                         });
    }
};

/// Where a unit shape lies: the images of its origin and of its axes. Flat ones need no third.
struct Axes {
    miVector origin, x, y, z;
};

miVector between(const miVector& first, const miVector& last, float time)
{
    return first + (last - first) * time;
}

/// A unit shape in its place.
template <class Unit>
class Placed final : public LightShape {
public:
    explicit Placed(const Axes& axes) : axes_(axes)
    {
        if (Unit::flat) // any third axis will do
            axes_.z = crossDirection(axes.x, axes.y);
        const auto& [o, x, y, z] = axes_;
        const Local yz = cross(y, z), zx = cross(z, x), xy = cross(x, y);
        const double volume = dot(wide(x), yz);
        hasExtent_ = std::abs(volume) > 0.0;
        if (!hasExtent_)
            return;
        dualX_ = scaled(yz, 1.0 / volume);
        dualY_ = scaled(zx, 1.0 / volume);
        dualZ_ = scaled(xy, 1.0 / volume);
    }

    miVector at(double a, double b, float /*time*/) const override
    {
        const auto& [o, x, y, z] = axes_;
        const Local p = Unit::at(a, b);
        return {float(o.x + p.x * x.x + p.y * y.x + p.z * z.x),
                float(o.y + p.x * x.y + p.y * y.y + p.z * z.y),
                float(o.z + p.x * x.z + p.y * y.z + p.z * z.z)};
    }

    bool meet(const Ray& ray, ShapeHit& hit) const override
    {
        Local normal;
        if (!hasExtent_ ||
            !Unit::meet({toLocal(ray.origin - axes_.origin), toLocal(ray.direction), ray.near, ray.far},
                        hit.distance, normal))
            return false;
        const Local n = {normal.x * dualX_.x + normal.y * dualY_.x + normal.z * dualZ_.x,
                         normal.x * dualX_.y + normal.y * dualY_.y + normal.z * dualZ_.y,
                         normal.x * dualX_.z + normal.y * dualY_.z + normal.z * dualZ_.z};
        const double norm = std::sqrt(dot(n, n));
        hit.normal = {float(n.x / norm), float(n.y / norm), float(n.z / norm)};
        return true;
    }

private:
    static Local cross(const miVector& a, const miVector& b)
    {
        return {double(a.y) * b.z - double(a.z) * b.y, double(a.z) * b.x - double(a.x) * b.z,
                double(a.x) * b.y - double(a.y) * b.x};
    }
    static Local wide(const miVector& v) { return {v.x, v.y, v.z}; }
    static Local scaled(const Local& v, double s) { return {v.x * s, v.y * s, v.z * s}; }
    Local toLocal(const miVector& v) const
    {
        const Local w = wide(v);
        return {dot(w, dualX_), dot(w, dualY_), dot(w, dualZ_)};
    }

    Axes axes_;
    bool hasExtent_; ///< false for what has shrunk to a line or a point, which no ray meets
    Local dualX_{}, dualY_{},
        dualZ_{}; ///< one over the axes: rows of the inverse, and what normals are made of
};

/// A unit shape that moves from one place to another.
template <class Unit>
class Moving final : public LightShape {
public:
    Moving(const Axes& first, const Axes& last) : first_(first), last_(last) {}

    miVector at(double a, double b, float time) const override { return now(time).at(a, b, time); }
    bool meet(const Ray& ray, ShapeHit& hit) const override { return now(ray.time).meet(ray, hit); }

private:
    Placed<Unit> now(float time) const
    {
        return Placed<Unit>({between(first_.origin, last_.origin, time), between(first_.x, last_.x, time),
                             between(first_.y, last_.y, time), between(first_.z, last_.z, time)});
    }

    Axes first_, last_;
};

/// What takes an element from its own space to the world, or to that of its parent, when the shutter closes.
const miMatrix& lastMatrix(const Instance& instance)
{
    return instance.hasMotion ? instance.motionInverse : instance.record.tf.local_to_global;
}

/// The surface of an object.
class ObjectSurface final : public LightShape {
public:
    explicit ObjectSurface(bool moves) : moves_(moves) {}
    ~ObjectSurface() override
    {
        if (scene_)
            rtcReleaseScene(scene_);
        if (device_)
            rtcReleaseDevice(device_);
    }

    /// Adds an object's triangles, taken along by its own instance and then by the light's.
    void add(const Object& object, const Instance& own, const Instance& light)
    {
        const Mesh mesh(object);
        const bool bends = moves_ && own.record.gen_motion != stopsMotion;
        const auto first = [&](std::uint32_t vertex) {
            return transformPoint(transformPoint(mesh.position(vertex), own.record.tf.local_to_global),
                                  light.record.tf.local_to_global);
        };
        const auto last = [&](std::uint32_t vertex) {
            const miVector position = bends ? mesh.lastPosition(vertex) : mesh.position(vertex);
            return transformPoint(transformPoint(position, lastMatrix(own)), lastMatrix(light));
        };
        for (const auto& [a, b, c] : mesh.triangles()) {
            const Corners corners = {first(a), first(b), first(c)};
            const double area = areaOf(corners);
            if (area == 0.0)
                continue;
            area_ += area;
            pieces_.push_back({corners, area_});
            if (!moves_)
                continue;
            lastCorners_.push_back({last(a), last(b), last(c)});
            lastArea_ += areaOf(lastCorners_.back());
        }
    }

    /// 0 for a surface without triangles.
    double area() const { return area_; }

    /// False for one with corners that are not.
    bool isFinite() const { return std::isfinite(area_) && std::isfinite(lastArea_); }

    /// Makes it known to rays. Throws Error when there is no memory for that.
    void index()
    {
        device_ = rtcNewDevice(nullptr);
        const RTCGeometry geometry = rtcNewGeometry(device_, RTC_GEOMETRY_TYPE_TRIANGLE);
        rtcSetGeometryTimeStepCount(geometry, moves_ ? 2 : 1);
        const std::size_t count = pieces_.size();
        const auto corners = [&](unsigned step) {
            return static_cast<Corners*>(rtcSetNewGeometryBuffer(
                geometry, RTC_BUFFER_TYPE_VERTEX, step, RTC_FORMAT_FLOAT3, sizeof(miVector), 3 * count));
        };
        auto* const first = corners(0);
        auto* const last = moves_ ? corners(1) : nullptr;
        auto* const indices = static_cast<std::uint32_t*>(rtcSetNewGeometryBuffer(
            geometry, RTC_BUFFER_TYPE_INDEX, 0, RTC_FORMAT_UINT3, 3 * sizeof(std::uint32_t), count));
        if (first && indices && (last || !moves_)) {
            std::transform(pieces_.begin(), pieces_.end(), first,
                           [](const Piece& piece) { return piece.corners; });
            std::copy(lastCorners_.begin(), lastCorners_.end(), last);
            std::iota(indices, indices + 3 * count, 0u);
        }
        rtcCommitGeometry(geometry);
        scene_ = rtcNewScene(device_);
        rtcSetSceneFlags(scene_, RTC_SCENE_FLAG_ROBUST);
        rtcAttachGeometry(scene_, geometry);
        rtcReleaseGeometry(geometry);
        rtcCommitScene(scene_);
        if (rtcGetDeviceError(device_) != RTC_ERROR_NONE)
            throw Error("not enough memory for the shapes of lights");
    }

    miVector at(double a, double b, float time) const override
    {
        // `a` chooses the triangle by its area, and what it is beyond the ones before is used once more.
        const double share = a * area_;
        const auto after = [](double value, const Piece& piece) { return value < piece.upTo; };
        auto piece = std::upper_bound(pieces_.begin(), pieces_.end(), share, after);
        if (piece == pieces_.end())
            --piece;
        const double before = piece == pieces_.begin() ? 0.0 : std::prev(piece)->upTo;
        const double root = std::sqrt(std::clamp((share - before) / (piece->upTo - before), 0.0, 1.0));
        const double weightA = 1.0 - root, weightB = root * (1.0 - b), weightC = root * b;
        const auto mixed = [&](float x, float y, float z) {
            return float(weightA * x + weightB * y + weightC * z);
        };
        const auto placed = [&](const Corners& on) {
            return miVector{mixed(on[0].x, on[1].x, on[2].x), mixed(on[0].y, on[1].y, on[2].y),
                            mixed(on[0].z, on[1].z, on[2].z)};
        };
        const miVector first = placed(piece->corners);
        return moves_ ? between(first, placed(lastCorners_[std::size_t(piece - pieces_.begin())]), time)
                      : first;
    }

    bool meet(const Ray& ray, ShapeHit& hit) const override
    {
        RTCIntersectContext context;
        rtcInitIntersectContext(&context);
        RTCRayHit found{};
        found.ray = toEmbree(ray);
        found.hit.geomID = RTC_INVALID_GEOMETRY_ID;
        rtcIntersect1(scene_, &context, &found);
        if (found.hit.geomID == RTC_INVALID_GEOMETRY_ID)
            return false;
        hit.distance = found.ray.tfar;
        hit.normal = normalised({found.hit.Ng_x, found.hit.Ng_y, found.hit.Ng_z});
        return true;
    }

private:
    using Corners = std::array<miVector, 3>;

    struct Piece {
        Corners corners;
        double upTo; ///< area of all pieces up to this one
    };

    static double areaOf(const Corners& corners)
    {
        const miVector u = corners[1] - corners[0], v = corners[2] - corners[0];
        const double x = double(u.y) * v.z - double(u.z) * v.y;
        const double y = double(u.z) * v.x - double(u.x) * v.z;
        const double z = double(u.x) * v.y - double(u.y) * v.x;
        return std::sqrt(x * x + y * y + z * z) / 2.0;
    }

    const bool moves_;
    std::vector<Piece> pieces_;
    std::vector<Corners> lastCorners_; ///< of what moves: where the pieces are when the shutter closes
    double area_ = 0.0, lastArea_ = 0.0;
    RTCDevice device_ = nullptr;
    RTCScene scene_ = nullptr;
};

[[noreturn]] void refuse(const Light& light, const std::string& what)
{
    throw Error(light.where, "light " + inQuotes(light.name) + ": " + what);
}

template <class Unit>
std::unique_ptr<LightShape> placed(const Light& light, const Instance& leaf, bool moves, const miVector& x,
                                   const miVector& y, const miVector& z = {0.0f, 0.0f, 0.0f})
{
    const auto axes = [&](const miMatrix& toWorld) {
        const Axes result = {transformPoint(light.record.origin, toWorld), transformVector(x, toWorld),
                             transformVector(y, toWorld), transformVector(z, toWorld)};
        if (!isFinite(result.origin) || !isFinite(result.x) || !isFinite(result.y) || !isFinite(result.z))
            refuse(light, "the size of its shape is not finite");
        return result;
    };
    const Axes first = axes(leaf.record.tf.local_to_global);
    if (moves)
        return std::make_unique<Moving<Unit>>(first, axes(lastMatrix(leaf)));
    return std::make_unique<Placed<Unit>>(first);
}

/// Two vectors of that length that are perpendicular to the given one and to each other; null when it is.
struct Ring {
    Ring(const miVector& axis, float length)
    {
        const miVector along = normalised(axis);
        const miVector other = std::abs(along.x) > 0.5f ? miVector{0, 1, 0} : miVector{1, 0, 0};
        u = crossDirection(along, other);
        v = crossDirection(along, u) * length;
        u = u * length;
    }
    miVector u, v;
};

std::unique_ptr<LightShape> surfaceOf(const Light& light, const Instance& leaf, const Database& database,
                                      const Leaves& leaves, bool blurs)
{
    const Element* const source = database.find(light.record.primitive.object.object);
    if (!source)
        refuse(light, "the object that is its shape is not there");
    const auto* const instance = dynamic_cast<const Instance*>(source);
    const Element* const item = instance ? database.find(instance->record.item) : source;
    const auto* const object = dynamic_cast<const Object*>(item);
    if (!object)
        refuse(light, "its shape must be an object or an instance of one, and " +
                          std::string(kindName(source->kind)) + ' ' + inQuotes(source->name) + " is neither");
    std::vector<const Instance*> places;
    for (const Instance* const placed : leaves.objects())
        if (instance && placed->record.parent == instance->tag)
            places.push_back(placed);
    const Instance unmoved;
    if (places.empty())
        places.push_back(instance ? instance : &unmoved);
    const bool moves =
        blurs && (leaf.hasMotion || !object->motionIndices.empty() ||
                  std::ranges::any_of(places, [](const Instance* own) { return own->hasMotion; }));
    auto shape = std::make_unique<ObjectSurface>(moves);
    for (const Instance* const own : places)
        shape->add(*object, *own, leaf);
    if (!shape->isFinite())
        refuse(light, "the size of its shape is not finite");
    if (shape->area() == 0.0)
        refuse(light, "its shape, object " + inQuotes(object->name) + ", has no surface");
    if (light.record.visible)
        shape->index();
    return shape;
}

} // namespace

std::unique_ptr<LightShape> makeShape(const Light& light, const Instance& leaf, const Database& database,
                                      const Leaves& leaves, bool blurs)
{
    const auto& primitive = light.record.primitive;
    const bool moves = blurs && leaf.hasMotion;
    switch (areaOf(light.record)) {
    case miLIGHT_NONE:
    case miLIGHT_USER:
        return nullptr;
    case miLIGHT_RECTANGLE:
        return placed<Square>(light, leaf, moves, primitive.rectangle.edge_u, primitive.rectangle.edge_v);
    case miLIGHT_DISC: {
        const Ring ring(primitive.disc.normal, primitive.disc.radius);
        return placed<Disc>(light, leaf, moves, ring.u, ring.v);
    }
    case miLIGHT_SPHERE: {
        const float r = primitive.sphere.radius;
        return placed<Sphere>(light, leaf, moves, {r, 0.0f, 0.0f}, {0.0f, r, 0.0f}, {0.0f, 0.0f, r});
    }
    case miLIGHT_CYLINDER: {
        const Ring ring(primitive.cylinder.axis, primitive.cylinder.radius);
        return placed<Cylinder>(light, leaf, moves, ring.u, ring.v, primitive.cylinder.axis);
    }
    case miLIGHT_OBJECT:
        return surfaceOf(light, leaf, database, leaves, blurs);
    }
    refuse(light, "there are no area lights of type " + std::to_string(areaOf(light.record)));
}

} // namespace host
