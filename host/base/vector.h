// SPDX-License-Identifier: BSD-3-Clause
// Arithmetic on the renderer's vectors and colours, as far as the base library needs it.
#pragma once

#include <shader.h>

#include <cmath>

namespace host::base {

constexpr miVector operator+(const miVector& a, const miVector& b)
{
    return {a.x + b.x, a.y + b.y, a.z + b.z};
}
constexpr miVector operator*(const miVector& v, float s) { return {v.x * s, v.y * s, v.z * s}; }
constexpr float dot(const miVector& a, const miVector& b) { return a.x * b.x + a.y * b.y + a.z * b.z; }

/// Of length 1; a null vector stays as it is.
inline miVector normalised(const miVector& v)
{
    const float length = std::sqrt(dot(v, v));
    return length > 0.0f ? v * (1.0f / length) : v;
}

/// The point through all of the matrix, translation included.
constexpr miVector transformedPoint(const miVector& p, const miScalar* m)
{
    return {p.x * m[0] + p.y * m[4] + p.z * m[8] + m[12], p.x * m[1] + p.y * m[5] + p.z * m[9] + m[13],
            p.x * m[2] + p.y * m[6] + p.z * m[10] + m[14]};
}

// Colours work on red, green and blue. What becomes of alpha is each shader's own decision, so these leave it
// as it is in the first operand.

constexpr miColor operator+(const miColor& a, const miColor& b)
{
    return {a.r + b.r, a.g + b.g, a.b + b.b, a.a};
}
constexpr miColor operator*(const miColor& a, const miColor& b)
{
    return {a.r * b.r, a.g * b.g, a.b * b.b, a.a};
}
constexpr miColor operator*(const miColor& c, float s) { return {c.r * s, c.g * s, c.b * s, c.a}; }

constexpr miColor complement(const miColor& c) { return {1.0f - c.r, 1.0f - c.g, 1.0f - c.b, c.a}; }
constexpr float mean(const miColor& c) { return (c.r + c.g + c.b) / 3.0f; }
constexpr bool isBlack(const miColor& c) { return c.r == 0.0f && c.g == 0.0f && c.b == 0.0f; }

} // namespace host::base
