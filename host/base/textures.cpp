// SPDX-License-Identifier: BSD-3-Clause
// Texture coordinates and image look-ups.

#include "host/api/further.h"
#include "host/api/texture_spaces.h"
#include "host/base/coordinates.h"
#include "host/base/shader.h"

#include <algorithm>

namespace host::base {

namespace {

struct TextureVector {
    miInteger select;
    miInteger selspace;
    miInteger vertex;
    miInteger project;
};

struct TextureRemap {
    miVector input;
    miMatrix transform;
    miVector repeat;
    miBoolean alternate[3];
    miBoolean torus[3];
    miVector min;
    miVector max;
};

struct TextureLookup {
    miTag tex;
    miVector coord;
};

/// What `select` names when it is not the number of a texture space.
enum class Select { point = -1, normal = -2, motion = -3, direction = -4, geometricNormal = -5, raster = -6 };

miVector selected(const miState* state, int select)
{
    if (select >= 0)
        return select < host_texture_spaces(state) ? state->tex_list[select] : miVector{};
    switch (static_cast<Select>(select)) {
    case Select::point:
        return state->point;
    case Select::normal:
        return state->normal;
    case Select::motion:
        return state->motion;
    case Select::direction:
        return state->dir;
    case Select::geometricNormal:
        return state->normal_geom;
    case Select::raster:
        return {state->raster_x / static_cast<float>(state->camera->x_resolution),
                state->raster_y / static_cast<float>(state->camera->y_resolution), 0.0f};
    }
    return {};
}

/// Values of `selspace`.
enum class Space { internal = 0, world = 1, camera = 2, object = 3 };

/// From internal space, in which the state has it. Only what lies in space has one: texture coordinates and
/// raster positions stay as they are.
miVector inSpace(const miVector& v, const miState* state, Select select, Space space)
{
    // In the order of Space.
    constexpr decltype(&mi_point_to_world) points[] = {mi_point_to_world, mi_point_to_camera,
                                                       mi_point_to_object};
    constexpr decltype(&mi_vector_to_world) vectors[] = {mi_vector_to_world, mi_vector_to_camera,
                                                         mi_vector_to_object};
    constexpr decltype(&mi_normal_to_world) normals[] = {mi_normal_to_world, mi_normal_to_camera,
                                                         mi_normal_to_object};
    if (space < Space::world || space > Space::object)
        return v;
    const int number = static_cast<int>(space) - static_cast<int>(Space::world);
    miVector result = v;
    switch (select) {
    case Select::point:
        points[number](state, &result, &v);
        break;
    case Select::motion:
    case Select::direction:
        vectors[number](state, &result, &v);
        break;
    case Select::normal:
    case Select::geometricNormal:
        normals[number](state, &result, &v);
        break;
    default:
        break;
    }
    return result;
}

bool isNull(const miScalar* matrix)
{
    return std::all_of(matrix, matrix + 16, [](miScalar element) { return element == 0.0f; });
}

} // namespace

BASE_VERSION(mib_texture_vector, 1)
BASE_ENTRY miBoolean mib_texture_vector(miVector* result, miState* state, TextureVector* p)
{
    const int select = read(state, p->select);
    const auto space = static_cast<Space>(read(state, p->selspace));
    const auto projection = static_cast<Projection>(read(state, p->project));
    const miVector v = inSpace(selected(state, select), state, static_cast<Select>(select), space);
    *result = projected(v, projection);
    return miTRUE;
}

BASE_VERSION(mib_texture_remap, 1)
BASE_ENTRY miBoolean mib_texture_remap(miVector* result, miState* state, TextureRemap* p)
{
    miVector v = read(state, p->input);
    const auto* const transform = static_cast<const miScalar*>(mi_eval(state, &p->transform));
    if (!isNull(transform))
        v = transformedPoint(v, transform);
    const miVector repeat = read(state, p->repeat);
    const miVector min = read(state, p->min);
    const miVector max = read(state, p->max);
    const auto axis = [&](int i, float copies, float low, float high) -> AxisRemap {
        const bool alternate = read(state, p->alternate[i]);
        const bool torus = read(state, p->torus[i]);
        return {copies, alternate, torus, low, high};
    };
    result->x = remapped(v.x, axis(0, repeat.x, min.x, max.x));
    result->y = remapped(v.y, axis(1, repeat.y, min.y, max.y));
    result->z = remapped(v.z, axis(2, repeat.z, min.z, max.z));
    return miTRUE;
}

BASE_VERSION(mib_texture_lookup, 1)
BASE_ENTRY miBoolean mib_texture_lookup(miColor* result, miState* state, TextureLookup* p)
{
    const miTag texture = read(state, p->tex);
    miVector coord = read(state, p->coord);
    return mi_lookup_color_texture(result, state, texture, &coord);
}

} // namespace host::base
