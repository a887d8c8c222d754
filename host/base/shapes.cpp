// SPDX-License-Identifier: BSD-3-Clause
#include "host/base/shapes.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <map>
#include <numbers>

namespace host::base {

namespace {

constexpr float pi = std::numbers::pi_v<float>;

int divisions(int count, int least) { return std::clamp(count, least, mostDivisions); }

float fraction(int i, int count) { return static_cast<float>(i) / static_cast<float>(count); }

template <class T>
unsigned append(std::vector<T>& list, const T& element)
{
    list.push_back(element);
    return static_cast<unsigned>(list.size() - 1);
}

/// Two neighbouring rows or rings of vertices become quads, or triangles where an edge has shrunk to a point.
void fill(Mesh& mesh, const std::vector<unsigned>& lower, const std::vector<unsigned>& upper)
{
    const auto samePoint = [&](unsigned a, unsigned b) {
        return mesh.vertices[a].point == mesh.vertices[b].point;
    };
    for (std::size_t i = 0; i + 1 < lower.size(); ++i) {
        const bool low = !samePoint(lower[i], lower[i + 1]);
        const bool high = !samePoint(upper[i], upper[i + 1]);
        mesh.corners.push_back(lower[i]);
        if (low)
            mesh.corners.push_back(lower[i + 1]);
        if (high)
            mesh.corners.push_back(upper[i + 1]);
        mesh.corners.push_back(upper[i]);
        mesh.sizes.push_back(2u + low + high);
    }
}

// ---- surfaces of revolution ------------------------------------------------------------------------------

/// A place on the outline that turns around the y axis: where it is, where its normal points and its texture
/// v.
struct Outline {
    float radius, y;
    float normalRadius, normalY;
    float v;
};

/// Turns an outline that runs counter-clockwise around the material, up on the outside, around the y axis.
/// Segments follow each other without gaps but with normals and texture coordinates of their own, so that
/// there is an edge between them.
class Lathe {
public:
    explicit Lathe(int u) : u_(divisions(u, 3)) {}

    void segment(const std::vector<Outline>& outline)
    {
        for (std::size_t i = 0; i < outline.size(); ++i) {
            if (i > 0 || points_.empty())
                points_ = pointRing(outline[i]);
            std::vector<unsigned> next = vertexRing(outline[i]);
            if (i > 0)
                fill(mesh_, ring_, next);
            ring_ = std::move(next);
        }
    }

    /// Instead of a last `segment`: this one ends where the first began.
    void closingSegment(std::vector<Outline> outline)
    {
        const Outline last = outline.back();
        outline.pop_back();
        const auto first = static_cast<unsigned>(mesh_.points.size());
        segment(outline);
        for (int i = 0; i < u_; ++i)
            points_[i] = first + static_cast<unsigned>(i);
        fill(mesh_, ring_, vertexRing(last));
    }

    Mesh take() { return std::move(mesh_); }

private:
    struct Direction {
        float x, z;
    };

    Direction direction(int i) const
    {
        const float angle = 2.0f * pi * fraction(i, u_);
        return {std::sin(angle), std::cos(angle)};
    }

    std::vector<unsigned> pointRing(const Outline& o)
    {
        std::vector<unsigned> ring(u_);
        for (int i = 0; i < u_; ++i) {
            const auto [x, z] = direction(i);
            const bool isPole = o.radius == 0.0f && i > 0;
            ring[i] = isPole ? ring[0] : append(mesh_.points, miVector{o.radius * x, o.y, o.radius * z});
        }
        return ring;
    }

    /// One vertex more than points: the texture has two sides at the seam. At a pole each triangle's texture
    /// coordinate stands in the middle of its edge.
    std::vector<unsigned> vertexRing(const Outline& o)
    {
        std::vector<unsigned> ring(u_ + 1);
        const float shift = o.radius == 0.0f ? 0.5f / static_cast<float>(u_) : 0.0f;
        const auto normals = static_cast<unsigned>(mesh_.normals.size());
        for (int i = 0; i <= u_; ++i) {
            const int around = i % u_;
            if (i < u_) {
                const auto [x, z] = direction(i);
                mesh_.normals.push_back({o.normalRadius * x, o.normalY, o.normalRadius * z});
            }
            const unsigned texture = append(mesh_.textures, miVector{fraction(i, u_) + shift, o.v, 0.0f});
            ring[i] = append(mesh_.vertices,
                             hostVertex{points_[around], normals + static_cast<unsigned>(around), texture});
        }
        return ring;
    }

    Mesh mesh_;
    int u_;
    std::vector<unsigned> points_; ///< of the latest ring
    std::vector<unsigned> ring_;   ///< its vertices
};

Outline between(const Outline& a, const Outline& b, float t)
{
    const auto mix = [t](float from, float to) { return t == 1.0f ? to : from + t * (to - from); };
    return {mix(a.radius, b.radius), mix(a.y, b.y), a.normalRadius, a.normalY, mix(a.v, b.v)};
}

/// A straight piece in `count` steps.
std::vector<Outline> straight(const Outline& from, const Outline& to, int count)
{
    std::vector<Outline> outline;
    for (int i = 0; i <= count; ++i)
        outline.push_back(between(from, to, fraction(i, count)));
    return outline;
}

/// A disc at height y. Seen as part of the outline it runs outwards when it faces down and inwards facing up.
std::vector<Outline> disc(float radius, float y, bool facesUp)
{
    if (facesUp)
        return {{radius, y, 0.0f, 1.0f, 0.0f}, {0.0f, y, 0.0f, 1.0f, 1.0f}};
    return {{0.0f, y, 0.0f, -1.0f, 0.0f}, {radius, y, 0.0f, -1.0f, 1.0f}};
}

// ---- boxes
// -------------------------------------------------------------------------------------------------

/// A face of the unit cube: the axes that run to the right and up as seen from outside, with their signs, and
/// the axis that points outside.
struct Face {
    int right;
    float rightSign;
    int up;
    float upSign;
    int out;
    float outSign;
};

constexpr std::array<Face, 6> faces = {{{0, 1, 1, 1, 2, 1},
                                        {2, -1, 1, 1, 0, 1},
                                        {0, -1, 1, 1, 2, -1},
                                        {2, 1, 1, 1, 0, -1},
                                        {0, 1, 2, -1, 1, 1},
                                        {0, 1, 2, 1, 1, -1}}};

using Triple = std::array<float, 3>;

miVector vector(const Triple& t) { return {t[0], t[1], t[2]}; }

/// A grid in the plane of a face, `points` telling the point that belongs to a place -1...1 on the unit cube.
template <class Points>
void grid(Mesh& mesh, const Face& face, int columns, int rows, Points points)
{
    Triple out = {};
    out[face.out] = face.outSign;
    const unsigned normal = append(mesh.normals, vector(out));
    std::vector<unsigned> below;
    for (int j = 0; j <= rows; ++j) {
        std::vector<unsigned> row;
        for (int i = 0; i <= columns; ++i) {
            const float s = fraction(i, columns);
            const float t = fraction(j, rows);
            Triple place = out;
            place[face.right] = face.rightSign * (2.0f * s - 1.0f);
            place[face.up] = face.upSign * (2.0f * t - 1.0f);
            const unsigned texture = append(mesh.textures, miVector{s, t, 0.0f});
            row.push_back(append(mesh.vertices, hostVertex{points(place), normal, texture}));
        }
        if (j > 0)
            fill(mesh, below, row);
        below = std::move(row);
    }
}

} // namespace

hostMesh Mesh::view() const
{
    return {points.data(),
            normals.data(),
            textures.data(),
            vertices.data(),
            sizes.data(),
            corners.data(),
            static_cast<unsigned>(points.size()),
            static_cast<unsigned>(normals.size()),
            static_cast<unsigned>(textures.size()),
            static_cast<unsigned>(vertices.size()),
            static_cast<unsigned>(sizes.size()),
            static_cast<unsigned>(corners.size())};
}

Mesh sphere(int u, int v, float radius)
{
    v = divisions(v, 2);
    std::vector<Outline> outline;
    for (int i = 0; i <= v; ++i) {
        const float t = fraction(i, v);
        const bool isPole = i == 0 || i == v;
        const float across = isPole ? 0.0f : std::sin(pi * t);
        const float along = -std::cos(pi * t);
        outline.push_back({radius * across, radius * along, across, along, t});
    }
    Lathe lathe(u);
    lathe.segment(outline);
    return lathe.take();
}

Mesh cone(int u, int v, float radius, float height)
{
    const float slant = std::hypot(radius, height);
    const float across = slant > 0.0f ? height / slant : 0.0f;
    const float along = slant > 0.0f ? radius / slant : 1.0f;
    Lathe lathe(u);
    lathe.segment(disc(radius, -0.5f * height, false));
    lathe.segment(straight({radius, -0.5f * height, across, along, 0.0f},
                           {0.0f, 0.5f * height, across, along, 1.0f}, divisions(v, 1)));
    return lathe.take();
}

Mesh cylinder(int u, int v, float radius, float height)
{
    const float top = 0.5f * height;
    Lathe lathe(u);
    lathe.segment(disc(radius, -top, false));
    lathe.segment(
        straight({radius, -top, 1.0f, 0.0f, 0.0f}, {radius, top, 1.0f, 0.0f, 1.0f}, divisions(v, 1)));
    lathe.segment(disc(radius, top, true));
    return lathe.take();
}

Mesh torus(int u, int v, float radius, float tube)
{
    v = divisions(v, 3);
    std::vector<Outline> outline;
    for (int i = 0; i <= v; ++i) {
        const float t = fraction(i, v);
        const float across = std::cos(2.0f * pi * t);
        const float along = std::sin(2.0f * pi * t);
        outline.push_back({radius + tube * across, tube * along, across, along, t});
    }
    Lathe lathe(u);
    lathe.closingSegment(outline);
    return lathe.take();
}

Mesh cube(int u, int v, int w, const miVector& size)
{
    const std::array<int, 3> counts = {divisions(u, 1), divisions(v, 1), divisions(w, 1)};
    Mesh mesh;
    std::map<Triple, unsigned> known;
    const auto point = [&](const Triple& place) {
        // On the lattice of the divisions the same place is the same on every face, whichever way it was
        // reached.
        Triple lattice;
        for (int axis = 0; axis < 3; ++axis)
            lattice[axis] = std::round((place[axis] + 1.0f) * 0.5f * static_cast<float>(counts[axis]));
        const auto [found, isNew] = known.try_emplace(lattice, static_cast<unsigned>(mesh.points.size()));
        if (isNew)
            mesh.points.push_back(
                {0.5f * size.x * place[0], 0.5f * size.y * place[1], 0.5f * size.z * place[2]});
        return found->second;
    };
    for (const Face& face : faces)
        grid(mesh, face, counts[face.right], counts[face.up], point);
    return mesh;
}

Mesh square(int u, int v, float width, float height)
{
    Mesh mesh;
    grid(mesh, faces[0], divisions(u, 1), divisions(v, 1), [&](const Triple& place) {
        return append(mesh.points, miVector{0.5f * width * place[0], 0.5f * height * place[1], 0.0f});
    });
    return mesh;
}

} // namespace host::base
