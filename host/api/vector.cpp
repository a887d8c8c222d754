// SPDX-License-Identifier: BSD-3-Clause
// Matrices and vectors. Internal space is world space.
#include "host/api/further.h"

#include "host/render/vector.h"

#include <algorithm>
#include <cmath>
#include <optional>
#include <utility>

namespace {

using host::Matrix;

/// By elimination, each time with the greatest element that is left in the column. None for a matrix that is
/// singular or has elements that are no numbers.
std::optional<Matrix> inverse(Matrix m)
{
    Matrix result = host::identityMatrix;
    for (std::size_t column = 0; column < 4; ++column) {
        std::size_t pivot = column;
        for (std::size_t row = column + 1; row < 4; ++row)
            if (std::abs(m[4 * row + column]) > std::abs(m[4 * pivot + column]))
                pivot = row;
        const double greatest = m[4 * pivot + column];
        if (!std::isfinite(greatest) || greatest == 0.0)
            return {};
        for (std::size_t k = 0; k < 4; ++k) {
            std::swap(m[4 * pivot + k], m[4 * column + k]);
            std::swap(result[4 * pivot + k], result[4 * column + k]);
            m[4 * column + k] /= greatest;
            result[4 * column + k] /= greatest;
        }
        for (std::size_t row = 0; row < 4; ++row) {
            const double factor = m[4 * row + column];
            if (row == column || factor == 0.0)
                continue;
            for (std::size_t k = 0; k < 4; ++k) {
                m[4 * row + k] -= factor * m[4 * column + k];
                result[4 * row + k] -= factor * result[4 * column + k];
            }
        }
    }
    if (!std::ranges::all_of(result, [](double each) { return std::isfinite(each); }))
        return {};
    return result;
}

} // namespace

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

void mi_vector_to_world(const miState*, miVector* result, const miVector* v) { *result = *v; }

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
    const std::optional<Matrix> found = inverse(m ? host::widened(m) : host::identityMatrix);
    if (!found)
        return miFALSE;
    host::narrow(*found, result);
    return miTRUE;
}

void mi_matrix_prod(miMatrix result, miMatrix const a, miMatrix const b)
{
    const auto matrix = [](const miScalar* m) { return m ? host::widened(m) : host::identityMatrix; };
    host::narrow(host::product(matrix(a), matrix(b)), result);
}
