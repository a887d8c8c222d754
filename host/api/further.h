/* SPDX-License-Identifier: BSD-3-Clause
 *
 * Functions of the renderer's interface that the library's shaders do not call, for those of others.
 */
#ifndef HOST_API_FURTHER_H
#define HOST_API_FURTHER_H

#include <shader.h>

#ifdef __cplusplus
extern "C" {
#endif

/* The nearest hit of a ray, without any shader: false when there is none, else its fields are in the state's
 * child until the next ray. */
miBoolean mi_trace_probe(miState* state, miVector* direction, miVector* origin);

/* What mi_opacity_set has stored last for the state's ray; false, with the colour left alone, when nothing.
 */
miBoolean mi_opacity_get(miState* state, miColor* opacity);

/* Light passes surfaces one by one in every shadow mode: true, with the colour left alone. */
miBoolean mi_trace_shadow_seg(miColor* result, miState* state);

/* Between internal space and another: that of the world, of the camera as it stands when the shutter opens,
 * of the state's object or light as it stands at the state's time. Without an instance of that kind the
 * result is the argument. Normals have unit length afterwards. Results may be the arguments.
 * mi_vector_to_world is in shader.h. */
void mi_point_to_world(const miState* state, miVector* result, const miVector* v);
void mi_point_from_world(const miState* state, miVector* result, const miVector* v);
void mi_vector_from_world(const miState* state, miVector* result, const miVector* v);
void mi_normal_to_world(const miState* state, miVector* result, const miVector* v);
void mi_normal_from_world(const miState* state, miVector* result, const miVector* v);
void mi_point_to_camera(const miState* state, miVector* result, const miVector* v);
void mi_point_from_camera(const miState* state, miVector* result, const miVector* v);
void mi_vector_to_camera(const miState* state, miVector* result, const miVector* v);
void mi_vector_from_camera(const miState* state, miVector* result, const miVector* v);
void mi_normal_to_camera(const miState* state, miVector* result, const miVector* v);
void mi_normal_from_camera(const miState* state, miVector* result, const miVector* v);
void mi_point_to_object(const miState* state, miVector* result, const miVector* v);
void mi_point_from_object(const miState* state, miVector* result, const miVector* v);
void mi_vector_to_object(const miState* state, miVector* result, const miVector* v);
void mi_vector_from_object(const miState* state, miVector* result, const miVector* v);
void mi_normal_to_object(const miState* state, miVector* result, const miVector* v);
void mi_normal_from_object(const miState* state, miVector* result, const miVector* v);
void mi_point_to_light(const miState* state, miVector* result, const miVector* v);
void mi_point_from_light(const miState* state, miVector* result, const miVector* v);
void mi_vector_to_light(const miState* state, miVector* result, const miVector* v);
void mi_vector_from_light(const miState* state, miVector* result, const miVector* v);
void mi_normal_to_light(const miState* state, miVector* result, const miVector* v);
void mi_normal_from_light(const miState* state, miVector* result, const miVector* v);

/* Locks: the state's global_lock, those that mi_query gives for a shader and for an instance, and a shader's
 * own. Who holds one may take it again, and gives it back as often. */
void mi_init_lock(miLock* lock);
void mi_delete_lock(miLock* lock);
void mi_lock(const miLock lock);
void mi_unlock(const miLock lock);

/* Results may be the arguments. A null matrix is the identity. */
void mi_point_transform(miVector* result, miVector const* v, miMatrix const m);
void mi_vector_normalize(miVector* v);

/* False, with the result left alone, for a matrix that has no inverse. */
miBoolean mi_matrix_invert(miMatrix result, miMatrix const m);
/* First a, then b. */
void mi_matrix_prod(miMatrix result, miMatrix const a, miMatrix const b);
void mi_matrix_copy(miMatrix result, miMatrix const m);
/* All elements 0. */
void mi_matrix_null(miMatrix m);

#ifdef __cplusplus
}
#endif

#endif
