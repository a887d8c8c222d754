// SPDX-License-Identifier: BSD-3-Clause
// The little vector and matrix arithmetic that rendering needs. Matrices are row-major, points are row
// vectors on the left of them; sums run in double precision, so that deep instance trees keep their accuracy.
#pragma once

#include <shader.h>

#include <array>
#include <cmath>

namespace host {

inline miVector operator+(miVector a, miVector b) { return {a.x + b.x, a.y + b.y, a.z + b.z}; }
inline miVector operator-(miVector a, miVector b) { return {a.x - b.x, a.y - b.y, a.z - b.z}; }
inline miVector operator-(miVector a) { return {-a.x, -a.y, -a.z}; }
inline miVector operator*(miVector a, float s) { return {a.x * s, a.y * s, a.z * s}; }
inline bool isNull(miVector a) { return a.x == 0.0f && a.y == 0.0f && a.z == 0.0f; }
inline bool isFinite(miVector a) { return std::isfinite(a.x) && std::isfinite(a.y) && std::isfinite(a.z); }

inline double dot(miVector a, miVector b)
{
    return double(a.x) * b.x + double(a.y) * b.y + double(a.z) * b.z;
}

inline double length(miVector a) { return std::sqrt(dot(a, a)); }

/// Unit length, or the vector itself when it has no direction.
inline miVector normalised(miVector a)
{
    const double norm = length(a);
    if (!(norm > 0.0))
        return a;
    return {float(a.x / norm), float(a.y / norm), float(a.z / norm)};
}

/// Unit vector along the cross product; null when the two are parallel.
inline miVector crossDirection(miVector a, miVector b)
{
    const double x = double(a.y) * b.z - double(a.z) * b.y;
    const double y = double(a.z) * b.x - double(a.x) * b.z;
    const double z = double(a.x) * b.y - double(a.y) * b.x;
    const double norm = std::sqrt(x * x + y * y + z * z);
    if (!(norm > 0.0))
        return {0.0f, 0.0f, 0.0f};
    return {float(x / norm), float(y / norm), float(z / norm)};
}

inline miVector transformPoint(miVector p, const miMatrix m)
{
    const double x = p.x, y = p.y, z = p.z;
    return {float(x * m[0] + y * m[4] + z * m[8] + m[12]), float(x * m[1] + y * m[5] + z * m[9] + m[13]),
            float(x * m[2] + y * m[6] + z * m[10] + m[14])};
}

inline miVector transformVector(miVector v, const miMatrix m)
{
    const double x = v.x, y = v.y, z = v.z;
    return {float(x * m[0] + y * m[4] + z * m[8]), float(x * m[1] + y * m[5] + z * m[9]),
            float(x * m[2] + y * m[6] + z * m[10])};
}

/// A normal taken along with points; `inverse` is the inverse of the points' matrix. Not normalised.
inline miVector transformNormal(miVector n, const miMatrix inverse)
{
    const double x = n.x, y = n.y, z = n.z;
    return {float(x * inverse[0] + y * inverse[1] + z * inverse[2]),
            float(x * inverse[4] + y * inverse[5] + z * inverse[6]),
            float(x * inverse[8] + y * inverse[9] + z * inverse[10])};
}

/// A matrix while it is being composed along an instance path.
using Matrix = std::array<double, 16>;

/// A normal taken along with points by their own matrix, which need not be invertible. Not normalised.
inline miVector turnNormal(miVector n, const Matrix& m)
{
    // Cofactors are the transposed inverse but for the determinant, of which the sign matters.
    const auto cofactor = [&](int row, int column) {
        const int r1 = (row + 1) % 3 * 4, r2 = (row + 2) % 3 * 4, c1 = (column + 1) % 3,
                  c2 = (column + 2) % 3;
        return m[r1 + c1] * m[r2 + c2] - m[r1 + c2] * m[r2 + c1];
    };
    const double determinant = m[0] * cofactor(0, 0) + m[1] * cofactor(0, 1) + m[2] * cofactor(0, 2);
    const double sign = determinant < 0.0 ? -1.0 : 1.0;
    const auto component = [&](int column) {
        return float(sign *
                     (n.x * cofactor(0, column) + n.y * cofactor(1, column) + n.z * cofactor(2, column)));
    };
    return {component(0), component(1), component(2)};
}

inline constexpr Matrix identityMatrix = {1, 0, 0, 0, 0, 1, 0, 0, 0, 0, 1, 0, 0, 0, 0, 1};

/// First `a`, then `b`.
inline Matrix product(const Matrix& a, const Matrix& b)
{
    Matrix result;
    for (int row = 0; row < 4; ++row)
        for (int column = 0; column < 4; ++column) {
            double sum = 0.0;
            for (int k = 0; k < 4; ++k)
                sum += a[row * 4 + k] * b[k * 4 + column];
            result[row * 4 + column] = sum;
        }
    return result;
}

inline Matrix difference(const Matrix& a, const Matrix& b)
{
    Matrix result;
    for (int i = 0; i < 16; ++i)
        result[i] = a[i] - b[i];
    return result;
}

inline Matrix widened(const miMatrix m)
{
    Matrix result;
    for (int i = 0; i < 16; ++i)
        result[i] = m[i];
    return result;
}

inline void narrow(const Matrix& m, miMatrix result)
{
    for (int i = 0; i < 16; ++i)
        result[i] = float(m[i]);
}

} // namespace host
