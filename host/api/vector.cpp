// SPDX-License-Identifier: BSD-3-Clause
// Matrices and vectors. Internal space is world space.
#include <shader.h>

void mi_vector_transform(miVector* const result, miVector const* const v, miMatrix const m)
{
    // Result and argument may be the same.
    const miVector row = *v;
    result->x = row.x * m[0] + row.y * m[4] + row.z * m[8];
    result->y = row.x * m[1] + row.y * m[5] + row.z * m[9];
    result->z = row.x * m[2] + row.y * m[6] + row.z * m[10];
}

void mi_vector_to_world(const miState*, miVector* result, const miVector* v) { *result = *v; }

void mi_matrix_ident(miMatrix m)
{
    for (int i = 0; i < 16; ++i)
        m[i] = i % 5 == 0 ? 1.0f : 0.0f;
}
