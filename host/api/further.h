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

/* A vector of internal space in the space of the light whose ray the state is of, where that is at the
 * state's time. */
void mi_vector_to_light(const miState* state, miVector* result, const miVector* v);

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
