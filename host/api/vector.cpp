// SPDX-License-Identifier: BSD-3-Clause
// Matrices and vectors.
#include "host/api/further.h"

#include "host/render/vector.h"
#include "host/scene/matrix.h"

#include <algorithm>

void mi_vector_transform(miVector* const result, miVector const* const v, miMatrix const m)
{
    // Result and argument may be the same.
    const miVector row = *v;
    if (!m) {
        *result = row;
        return;
    }
    result->x = row.x * m[0] + row.y * m[4] + row.z * m[8];
    result->y = row.x * m[1] + row.y * m[5] + row.z * m[9];
    result->z = row.x * m[2] + row.y * m[6] + row.z * m[10];
}

void mi_point_transform(miVector* const result, miVector const* const v, miMatrix const m)
{
    const miVector row = *v;
    mi_vector_transform(result, v, m);
    if (!m)
        return;
    result->x += m[12];
    result->y += m[13];
    result->z += m[14];
    const float w = row.x * m[3] + row.y * m[7] + row.z * m[11] + m[15];
    if (w != 0.0f && w != 1.0f)
        *result = {result->x / w, result->y / w, result->z / w};
}

void mi_vector_normalize(miVector* v) { *v = host::normalised(*v); }

void mi_matrix_null(miMatrix m) { std::fill_n(m, 16, 0.0f); }

void mi_matrix_ident(miMatrix m)
{
    for (int i = 0; i < 16; ++i)
        m[i] = i % 5 == 0 ? 1.0f : 0.0f;
}

void mi_matrix_copy(miMatrix result, miMatrix const m)
{
    if (m)
        std::copy_n(m, 16, result);
    else
        mi_matrix_ident(result);
}

miBoolean mi_matrix_invert(miMatrix result, miMatrix const m)
{
    if (!m) {
        mi_matrix_ident(result);
        return miTRUE;
    }
    return miBoolean(host::invert(m, result));
}

void mi_matrix_prod(miMatrix result, miMatrix const a, miMatrix const b)
{
    const auto matrix = [](const miScalar* m) { return m ? host::widened(m) : host::identityMatrix; };
    host::narrow(host::product(matrix(a), matrix(b)), result);
}
