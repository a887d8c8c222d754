/* SPDX-License-Identifier: BSD-3-Clause
 *
 * An extension of this host: how a geometry shader hands over a polygon mesh. The renderer's own calls for
 * that follow the whole scene language; this one function is enough for shapes.
 */
#ifndef HOST_API_MESH_H
#define HOST_API_MESH_H

#include <shader.h>

#ifdef __cplusplus
extern "C" {
#endif

/* In place of an index: the vertex has no normal, or no texture coordinate. */
#define HOST_NO_INDEX 0xFFFFFFFFu

/* Indices into the mesh's lists. Vertices may share points and differ in the rest. */
typedef struct hostVertex {
    unsigned point;
    unsigned normal;
    unsigned texture;
} hostVertex;

/* The caller's own memory, read during the call. Polygons are counter-clockwise as seen from the front, of
 * three corners at least; `corners` holds vertices, polygon after polygon. */
typedef struct hostMesh {
    const miVector* points;
    const miVector* normals;
    const miVector* textures;
    const hostVertex* vertices;
    const unsigned* sizes; /* corners of each polygon */
    const unsigned* corners;
    unsigned point_count;
    unsigned normal_count;
    unsigned texture_count;
    unsigned vertex_count;
    unsigned polygon_count;
    unsigned corner_count;
} hostMesh;

/* Adds an anonymous object, visible to rays of every kind and casting shadows, whose polygons take the
 * inherited material. Its tag; or the null tag, after an error message, for an index beyond its list or sizes
 * that do not add up. Only in geometry shaders. */
__attribute__((visibility("default"))) miTag host_mesh_create(const hostMesh* mesh);

#ifdef __cplusplus
}
#endif

#endif
