// SPDX-License-Identifier: BSD-3-Clause
// Geometry shaders: the scene language has no primitives, so these make the simple shapes.

#include "host/base/shader.h"
#include "host/base/shapes.h"

namespace host::base {

namespace {

struct Divisions {
    miInteger u;
    miInteger v;
};

struct Sphere {
    Divisions divisions;
    miScalar radius;
};

struct Cube {
    Divisions divisions;
    miInteger w;
    miVector size;
};

struct Square {
    Divisions divisions;
    miScalar width;
    miScalar height;
};

struct Upright {
    Divisions divisions;
    miScalar radius;
    miScalar height;
};

struct Torus {
    Divisions divisions;
    miScalar radius;
    miScalar tube;
};

miBoolean deliver(miTag* result, const Mesh& mesh)
{
    const hostMesh view = mesh.view();
    *result = host_mesh_create(&view);
    return *result != miNULLTAG;
}

} // namespace

BASE_VERSION(mib_geo_sphere, 1)
BASE_ENTRY miBoolean mib_geo_sphere(miTag* result, miState* state, Sphere* p)
{
    const int u = read(state, p->divisions.u);
    const int v = read(state, p->divisions.v);
    const float radius = read(state, p->radius);
    return deliver(result, sphere(u, v, radius));
}

BASE_VERSION(mib_geo_cube, 1)
BASE_ENTRY miBoolean mib_geo_cube(miTag* result, miState* state, Cube* p)
{
    const int u = read(state, p->divisions.u);
    const int v = read(state, p->divisions.v);
    const int w = read(state, p->w);
    const miVector size = read(state, p->size);
    return deliver(result, cube(u, v, w, size));
}

BASE_VERSION(mib_geo_square, 1)
BASE_ENTRY miBoolean mib_geo_square(miTag* result, miState* state, Square* p)
{
    const int u = read(state, p->divisions.u);
    const int v = read(state, p->divisions.v);
    const float width = read(state, p->width);
    const float height = read(state, p->height);
    return deliver(result, square(u, v, width, height));
}

BASE_VERSION(mib_geo_cone, 1)
BASE_ENTRY miBoolean mib_geo_cone(miTag* result, miState* state, Upright* p)
{
    const int u = read(state, p->divisions.u);
    const int v = read(state, p->divisions.v);
    const float radius = read(state, p->radius);
    const float height = read(state, p->height);
    return deliver(result, cone(u, v, radius, height));
}

BASE_VERSION(mib_geo_cylinder, 1)
BASE_ENTRY miBoolean mib_geo_cylinder(miTag* result, miState* state, Upright* p)
{
    const int u = read(state, p->divisions.u);
    const int v = read(state, p->divisions.v);
    const float radius = read(state, p->radius);
    const float height = read(state, p->height);
    return deliver(result, cylinder(u, v, radius, height));
}

BASE_VERSION(mib_geo_torus, 1)
BASE_ENTRY miBoolean mib_geo_torus(miTag* result, miState* state, Torus* p)
{
    const int u = read(state, p->divisions.u);
    const int v = read(state, p->divisions.v);
    const float radius = read(state, p->radius);
    const float tube = read(state, p->tube);
    return deliver(result, torus(u, v, radius, tube));
}

} // namespace host::base
