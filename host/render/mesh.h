// SPDX-License-Identifier: BSD-3-Clause
// An object's surface as triangles, ready for intersection.
#pragma once

#include "host/render/triangulate.h"

namespace host {

/// What a place on a surface has, in the object's own space.
struct SurfacePoint {
    miVector point;
    miVector geometric; ///< unit normal of the triangle
    miVector normal;    ///< interpolated, unit; the geometric one on faceted surfaces
    miVector motion;    ///< null without motion vectors
};

using SurfaceDerivatives = std::array<miVector, std::tuple_size_v<Derivatives>>;

/// The triangles of one object. Safe from any thread.
class Mesh {
public:
    explicit Mesh(const Object& object);

    const Object& object() const { return object_; }
    const std::vector<Triangle>& triangles() const { return triangles_; }
    const Polygon& polygon(std::uint32_t triangle) const { return object_.polygons[polygonOf_[triangle]]; }

    /// Where a vertex is.
    miVector position(std::uint32_t vertex) const { return object_.vectors[object_.vertices[vertex].point]; }

    /// Where a vertex is when the shutter closes: its first motion vector away.
    miVector lastPosition(std::uint32_t vertex) const;

    /// The place with these weights of the triangle's second and third vertex; `time` runs from 0 to 1 over
    /// the shutter, 0 for what does not move.
    SurfacePoint at(std::uint32_t triangle, float u, float v, float time) const;

    /// The texture vectors of that place, space 0 first; as many spaces as all three vertices have.
    void textures(std::uint32_t triangle, float u, float v, std::vector<miVector>& result) const;

    /// The bump basis vectors of that place, one pair for each of these texture vectors: null where not all
    /// three vertices have one. Nothing at all when that is so of every space.
    void bumpBases(std::uint32_t triangle, float u, float v, std::vector<miVector>& x,
                   std::vector<miVector>& y) const;

    /// The derivatives of that place: two of first order, three of second; null where not all three vertices
    /// have them. False, with the result undefined, when that is so of all.
    bool derivatives(std::uint32_t triangle, float u, float v, SurfaceDerivatives& result) const;

    /// How the first texture vector changes along a vector in the triangle's plane; null without texture
    /// vectors, and on triangles without area.
    miVector textureChange(std::uint32_t triangle, const miVector& along) const;

private:
    miVector texture(const Vertex& vertex, std::uint32_t space) const
    {
        return object_.vectors[object_.textureIndices[vertex.firstTexture + space]];
    }

    /// Of three of the object's vectors; false, with the null vector, unless all three are there.
    bool interpolate(std::uint32_t a, std::uint32_t b, std::uint32_t c, float u, float v,
                     miVector& result) const;

    const Object& object_;
    std::vector<Triangle> triangles_;
    std::vector<std::uint32_t> polygonOf_;
};

} // namespace host
