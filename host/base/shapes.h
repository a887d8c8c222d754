// SPDX-License-Identifier: BSD-3-Clause
// Polygon meshes of simple shapes around the origin, y being up.
#pragma once

#include "host/api/mesh.h"

#include <vector>

namespace host::base {

/// A mesh in the form that the host takes. Neighbouring polygons share points, also where normals or texture
/// coordinates break, so that a solid shape is closed. Polygons are counter-clockwise from outside, normals
/// point outside, texture coordinates grow to the right and up as seen from outside.
struct Mesh {
    std::vector<miVector> points;
    std::vector<miVector> normals;
    std::vector<miVector> textures;
    std::vector<hostVertex> vertices;
    std::vector<unsigned> sizes;   ///< corners of each polygon
    std::vector<unsigned> corners; ///< vertices, polygon after polygon

    /// Valid as long as the mesh is not changed.
    hostMesh view() const;
};

/// Subdivision counts are brought into this range; around an axis at least 3.
inline constexpr int mostDivisions = 1024;

/// Around the axis `u`, from pole to pole `v`, at least 2.
Mesh sphere(int u, int v, float radius);

/// Divided along x, y and z; texture coordinates run from 0 to 1 on each face.
Mesh cube(int u, int v, int w, const miVector& size);

/// In the plane z = 0, facing +z.
Mesh square(int u, int v, float width, float height);

/// Closed by a disc at the bottom, the tip at the top: y from -height/2 to height/2.
Mesh cone(int u, int v, float radius, float height);

/// Closed by discs: y from -height/2 to height/2.
Mesh cylinder(int u, int v, float radius, float height);

/// Around the y axis; `radius` is the distance of the tube's middle from it, `tube` the tube's own radius.
Mesh torus(int u, int v, float radius, float tube);

} // namespace host::base
