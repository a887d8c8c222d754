// SPDX-License-Identifier: BSD-3-Clause
#include "host/api/mesh.h"

#include "host/report/message.h"
#include "host/session.h"

#include <cstdint>
#include <span>

namespace host {

namespace {

/// The first thing that is wrong with the mesh, or null.
const char* fault(const hostMesh& mesh)
{
    for (const hostVertex& vertex : std::span(mesh.vertices, mesh.vertex_count)) {
        if (vertex.point >= mesh.point_count)
            return "a point index is beyond the list";
        if (vertex.normal != HOST_NO_INDEX && vertex.normal >= mesh.normal_count)
            return "a normal index is beyond the list";
        if (vertex.texture != HOST_NO_INDEX && vertex.texture >= mesh.texture_count)
            return "a texture index is beyond the list";
    }
    for (const unsigned corner : std::span(mesh.corners, mesh.corner_count))
        if (corner >= mesh.vertex_count)
            return "a corner names no vertex";
    std::uint64_t corners = 0;
    for (const unsigned size : std::span(mesh.sizes, mesh.polygon_count)) {
        if (size < 3)
            return "a polygon has less than three corners";
        corners += size;
    }
    return corners == mesh.corner_count ? nullptr
                                        : "the polygons' sizes do not add up to the number of corners";
}

void show(Object& object)
{
    object.visible = true;
    object.shadow = object.reflection = object.refraction = object.transparency = object.finalgather = 3;
}

/// All three lists end up in one, as in scene text.
void addVertices(Object& object, const hostMesh& mesh)
{
    auto& vectors = object.vectors;
    vectors.insert(vectors.end(), mesh.points, mesh.points + mesh.point_count);
    vectors.insert(vectors.end(), mesh.normals, mesh.normals + mesh.normal_count);
    vectors.insert(vectors.end(), mesh.textures, mesh.textures + mesh.texture_count);
    const std::uint32_t normals = mesh.point_count;
    const std::uint32_t textures = normals + mesh.normal_count;
    for (const hostVertex& given : std::span(mesh.vertices, mesh.vertex_count)) {
        Vertex vertex;
        vertex.point = given.point;
        if (given.normal != HOST_NO_INDEX)
            vertex.normal = normals + given.normal;
        if (given.texture != HOST_NO_INDEX) {
            vertex.firstTexture = static_cast<std::uint32_t>(object.textureIndices.size());
            vertex.textureCount = 1;
            object.textureIndices.push_back(textures + given.texture);
        }
        object.vertices.push_back(vertex);
    }
}

void addPolygons(Object& object, const hostMesh& mesh)
{
    object.loopVertices.assign(mesh.corners, mesh.corners + mesh.corner_count);
    std::uint32_t first = 0;
    for (const unsigned size : std::span(mesh.sizes, mesh.polygon_count)) {
        Polygon polygon;
        polygon.firstLoop = static_cast<std::uint32_t>(object.loops.size());
        polygon.loopCount = 1;
        object.polygons.push_back(polygon);
        object.loops.push_back({first, size});
        first += size;
    }
}

} // namespace

} // namespace host

miTag host_mesh_create(const hostMesh* mesh)
{
    if (const char* const wrong = host::fault(*mesh)) {
        host::message(host::Level::error, "API", std::string("a shader's mesh is refused: ") + wrong);
        return miNULLTAG;
    }
    host::Object& object = host::Session::current()->database.make<host::Object>();
    host::show(object);
    host::addVertices(object, *mesh);
    host::addPolygons(object, *mesh);
    return object.tag;
}
