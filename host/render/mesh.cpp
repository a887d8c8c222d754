// SPDX-License-Identifier: BSD-3-Clause
#include "host/render/mesh.h"

#include "host/render/vector.h"

#include <algorithm>

namespace host {

namespace {

miVector weighted(miVector a, miVector b, miVector c, float u, float v)
{
    const double w = 1.0 - double(u) - double(v);
    return {float(w * a.x + double(u) * b.x + double(v) * c.x),
            float(w * a.y + double(u) * b.y + double(v) * c.y),
            float(w * a.z + double(u) * b.z + double(v) * c.z)};
}

} // namespace

Mesh::Mesh(const Object& object) : object_(object)
{
    for (std::uint32_t i = 0; i < object.polygons.size(); ++i) {
        triangulate(object, object.polygons[i], triangles_);
        polygonOf_.resize(triangles_.size(), i);
    }
}

miVector Mesh::lastPosition(std::uint32_t vertex) const
{
    const Vertex& v = object_.vertices[vertex];
    return v.motionCount ? position(vertex) + object_.vectors[object_.motionIndices[v.firstMotion]]
                         : position(vertex);
}

SurfacePoint Mesh::at(std::uint32_t triangle, float u, float v, float time) const
{
    const auto& [ia, ib, ic] = triangles_[triangle];
    const auto placed = [&](std::uint32_t vertex) {
        const miVector first = position(vertex);
        return time == 0.0f ? first : first + (lastPosition(vertex) - first) * time;
    };
    const miVector pa = placed(ia), pb = placed(ib), pc = placed(ic);
    SurfacePoint result;
    result.point = weighted(pa, pb, pc, u, v);
    result.geometric = crossDirection(pb - pa, pc - pa);
    result.normal = result.geometric;
    result.motion = {0.0f, 0.0f, 0.0f};
    const Vertex &a = object_.vertices[ia], &b = object_.vertices[ib], &c = object_.vertices[ic];
    const std::vector<miVector>& vectors = object_.vectors;
    miVector normal;
    if (interpolate(a.normal, b.normal, c.normal, u, v, normal) && !isNull(normal))
        result.normal = normalised(normal);
    if (a.motionCount && b.motionCount && c.motionCount) {
        const auto motion = [&](const Vertex& x) { return vectors[object_.motionIndices[x.firstMotion]]; };
        result.motion = weighted(motion(a), motion(b), motion(c), u, v);
    }
    return result;
}

void Mesh::textures(std::uint32_t triangle, float u, float v, std::vector<miVector>& result) const
{
    const auto& [ia, ib, ic] = triangles_[triangle];
    const Vertex &a = object_.vertices[ia], &b = object_.vertices[ib], &c = object_.vertices[ic];
    const std::uint32_t spaces = std::min({a.textureCount, b.textureCount, c.textureCount});
    result.clear();
    for (std::uint32_t space = 0; space < spaces; ++space)
        result.push_back(weighted(texture(a, space), texture(b, space), texture(c, space), u, v));
}

void Mesh::bumpBases(std::uint32_t triangle, float u, float v, std::vector<miVector>& x,
                     std::vector<miVector>& y) const
{
    x.clear();
    y.clear();
    if (object_.bumpBases.empty())
        return;
    const auto& [ia, ib, ic] = triangles_[triangle];
    const Vertex &a = object_.vertices[ia], &b = object_.vertices[ib], &c = object_.vertices[ic];
    const std::uint32_t spaces = std::min({a.textureCount, b.textureCount, c.textureCount});
    bool any = false;
    for (std::uint32_t space = 0; space < spaces; ++space) {
        const BumpBasis basisA = object_.bumpBasis(a, space), basisB = object_.bumpBasis(b, space),
                        basisC = object_.bumpBasis(c, space);
        any |= interpolate(basisA.x, basisB.x, basisC.x, u, v, x.emplace_back());
        interpolate(basisA.y, basisB.y, basisC.y, u, v, y.emplace_back());
    }
    if (!any) {
        x.clear();
        y.clear();
    }
}

bool Mesh::derivatives(std::uint32_t triangle, float u, float v, SurfaceDerivatives& result) const
{
    if (object_.derivatives.empty())
        return false;
    const auto& [ia, ib, ic] = triangles_[triangle];
    const Derivatives &a = object_.derivativesOf(ia), &b = object_.derivativesOf(ib),
                      &c = object_.derivativesOf(ic);
    bool any = false;
    for (std::size_t i = 0; i < result.size(); ++i)
        any |= interpolate(a[i], b[i], c[i], u, v, result[i]);
    return any;
}

bool Mesh::interpolate(std::uint32_t a, std::uint32_t b, std::uint32_t c, float u, float v,
                       miVector& result) const
{
    const bool all = a != Vertex::none && b != Vertex::none && c != Vertex::none;
    result = all ? weighted(object_.vectors[a], object_.vectors[b], object_.vectors[c], u, v)
                 : miVector{0.0f, 0.0f, 0.0f};
    return all;
}

miVector Mesh::textureChange(std::uint32_t triangle, const miVector& along) const
{
    const auto& [ia, ib, ic] = triangles_[triangle];
    const Vertex &a = object_.vertices[ia], &b = object_.vertices[ib], &c = object_.vertices[ic];
    // The weights of the edges ab and ac that make the vector.
    const miVector ab = position(ib) - position(ia), ac = position(ic) - position(ia);
    const double bb = dot(ab, ab), bc = dot(ab, ac), cc = dot(ac, ac);
    const double determinant = bb * cc - bc * bc;
    if (std::min({a.textureCount, b.textureCount, c.textureCount}) == 0 || !(determinant > 0.0))
        return {0.0f, 0.0f, 0.0f};
    const double toB = dot(ab, along), toC = dot(ac, along);
    const miVector origin = texture(a, 0);
    return (texture(b, 0) - origin) * float((cc * toB - bc * toC) / determinant) +
           (texture(c, 0) - origin) * float((bb * toC - bc * toB) / determinant);
}

} // namespace host
