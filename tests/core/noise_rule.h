// SPDX-License-Identifier: BSD-3-Clause
// The noise functions once more, as plainly as they can be said: every operation on floats in its order,
// nothing shared with the library.
#pragma once

#include <array>
#include <cmath>

namespace rule {

using Vector = std::array<float, 3>;
using Vector4 = std::array<float, 4>;

// Ken Perlin's permutation.
inline constexpr int table[256] = {
    151, 160, 137, 91,  90,  15,  131, 13,  201, 95,  96,  53,  194, 233, 7,   225, 140, 36,  103, 30,
    69,  142, 8,   99,  37,  240, 21,  10,  23,  190, 6,   148, 247, 120, 234, 75,  0,   26,  197, 62,
    94,  252, 219, 203, 117, 35,  11,  32,  57,  177, 33,  88,  237, 149, 56,  87,  174, 20,  125, 136,
    171, 168, 68,  175, 74,  165, 71,  134, 139, 48,  27,  166, 77,  146, 158, 231, 83,  111, 229, 122,
    60,  211, 133, 230, 220, 105, 92,  41,  55,  46,  245, 40,  244, 102, 143, 54,  65,  25,  63,  161,
    1,   216, 80,  73,  209, 76,  132, 187, 208, 89,  18,  169, 200, 196, 135, 130, 116, 188, 159, 86,
    164, 100, 109, 198, 173, 186, 3,   64,  52,  217, 226, 250, 124, 123, 5,   202, 38,  147, 118, 126,
    255, 82,  85,  212, 207, 206, 59,  227, 47,  16,  58,  17,  182, 189, 28,  42,  223, 183, 170, 213,
    119, 248, 152, 2,   44,  154, 163, 70,  221, 153, 101, 155, 167, 43,  172, 9,   129, 22,  39,  253,
    19,  98,  108, 110, 79,  113, 224, 232, 178, 185, 112, 104, 218, 246, 97,  228, 251, 34,  242, 193,
    238, 210, 144, 12,  191, 179, 162, 241, 81,  51,  145, 235, 249, 14,  239, 107, 49,  192, 214, 31,
    181, 199, 106, 157, 184, 84,  204, 176, 115, 121, 50,  45,  127, 4,   150, 254, 138, 236, 205, 93,
    222, 114, 67,  29,  24,  72,  243, 141, 128, 195, 78,  66,  215, 61,  156, 180};

inline constexpr float g[16][3] = {{1, 1, 0},  {-1, 1, 0},  {1, -1, 0}, {-1, -1, 0}, {1, 0, 1},  {-1, 0, 1},
                                   {1, 0, -1}, {-1, 0, -1}, {0, 1, 1},  {0, -1, 1},  {0, 1, -1}, {0, -1, -1},
                                   {1, 1, 0},  {0, -1, 1},  {-1, 1, 0}, {0, -1, -1}};

inline constexpr float g4[32][4] = {
    {0, -1, -1, -1}, {0, -1, -1, 1}, {0, -1, 1, -1}, {0, -1, 1, 1}, // first 0, the others counting up
    {0, 1, -1, -1},  {0, 1, -1, 1},  {0, 1, 1, -1},  {0, 1, 1, 1},  //
    {-1, -1, 0, -1}, {-1, 1, 0, -1}, {1, -1, 0, -1}, {1, 1, 0, -1}, // third 0
    {-1, -1, 0, 1},  {-1, 1, 0, 1},  {1, -1, 0, 1},  {1, 1, 0, 1},  //
    {-1, 0, -1, -1}, {1, 0, -1, -1}, {-1, 0, -1, 1}, {1, 0, -1, 1}, // second 0
    {-1, 0, 1, -1},  {1, 0, 1, -1},  {-1, 0, 1, 1},  {1, 0, 1, 1},  //
    {0, -1, -1, 0},  {0, -1, -1, 0}, {0, -1, 1, 0},  {0, -1, 1, 0}, // pairs
    {0, 1, -1, 0},   {0, 1, -1, 0},  {0, 1, 1, 0},   {0, 1, 1, 0}};

inline constexpr float one = 0.003921568859f; // 1/255

inline float fmod(float a, float b) { return a - b * std::floor(a / b); }

/// The entry out of `count` that a repeating position in 0..1 stands for. A NaN stands for the last.
inline int entry(float x, float count)
{
    float position = fmod(x, 1.0f);
    if (!(position <= 0.99999f))
        position = 0.99999f;
    if (position < 0.0f)
        position = 0.0f;
    return static_cast<int>(position * count);
}

inline float perm(float x) { return static_cast<float>(table[entry(x, 256)]) / 255.0f; }

inline float fade(float t) { return t * t * t * (t * (6.0f * t - 15.0f) + 10.0f); }

inline float lerp(float a, float b, float t)
{
    if (t <= 0.0f)
        return a;
    if (t >= 1.0f)
        return b;
    return t * b + (1.0f - t) * a;
}

inline float grad(float h, Vector p)
{
    const float* const v = g[entry(h, 16)];
    return v[0] * p[0] + v[1] * p[1] + v[2] * p[2];
}

inline float grad(float h, Vector4 p)
{
    const float* const v = g4[entry(h, 32)];
    return v[0] * p[0] + v[1] * p[1] + v[2] * p[2] + v[3] * p[3];
}

inline float inoise(Vector p)
{
    Vector P{}, f{}, u{};
    for (int i = 0; i < 3; ++i) {
        P[i] = fmod(std::floor(p[i]), 256.0f) / 255.0f;
        f[i] = p[i] - std::floor(p[i]);
        u[i] = fade(f[i]);
    }
    const float A = perm(P[0]) + P[1];
    const float AA = perm(A) + P[2];
    const float AB = perm(A + one) + P[2];
    const float B = perm(P[0] + one) + P[1];
    const float BA = perm(B) + P[2];
    const float BB = perm(B + one) + P[2];

    const auto corner = [&](float hash, float x, float y, float z) {
        return grad(perm(hash), Vector{f[0] + x, f[1] + y, f[2] + z});
    };
    const float g000 = corner(AA, 0, 0, 0), g100 = corner(BA, -1, 0, 0);
    const float g010 = corner(AB, 0, -1, 0), g110 = corner(BB, -1, -1, 0);
    const float g001 = corner(AA + one, 0, 0, -1), g101 = corner(BA + one, -1, 0, -1);
    const float g011 = corner(AB + one, 0, -1, -1), g111 = corner(BB + one, -1, -1, -1);
    return lerp(lerp(lerp(g000, g100, u[0]), lerp(g010, g110, u[0]), u[1]),
                lerp(lerp(g001, g101, u[0]), lerp(g011, g111, u[0]), u[1]), u[2]);
}

inline float inoise(Vector4 p)
{
    Vector4 P{}, f{}, u{};
    for (int i = 0; i < 4; ++i) {
        P[i] = fmod(std::floor(p[i]), 256.0f) / 255.0f;
        f[i] = p[i] - std::floor(p[i]);
        u[i] = fade(f[i]);
    }
    const float A = perm(P[0]) + P[1];
    const float AA = perm(A) + P[2];
    const float AB = perm(A + one) + P[2];
    const float B = perm(P[0] + one) + P[1];
    const float BA = perm(B) + P[2];
    const float BB = perm(B + one) + P[2];

    // The hash of each corner of the cube x, y, z, before w comes in; x varies fastest.
    const float cube[8] = {perm(AA) + P[3],       perm(BA) + P[3],       perm(AB) + P[3],
                           perm(BB) + P[3],       perm(AA + one) + P[3], perm(BA + one) + P[3],
                           perm(AB + one) + P[3], perm(BB + one) + P[3]};
    // The third is the second once more.
    constexpr float offset[16][4] = {{0, 0, 0, 0},   {-1, 0, 0, 0},   {-1, 0, 0, 0},   {-1, -1, 0, 0},
                                     {0, 0, -1, 0},  {-1, 0, -1, 0},  {0, -1, -1, 0},  {-1, -1, -1, 0},
                                     {0, 0, 0, -1},  {-1, 0, 0, -1},  {0, -1, 0, -1},  {-1, -1, 0, -1},
                                     {0, 0, -1, -1}, {-1, 0, -1, -1}, {0, -1, -1, -1}, {-1, -1, -1, -1}};
    float value[16];
    for (int i = 0; i < 16; ++i) {
        const float hash = i < 8 ? cube[i] : cube[i - 8] + one;
        value[i] = grad(perm(hash), Vector4{f[0] + offset[i][0], f[1] + offset[i][1], f[2] + offset[i][2],
                                            f[3] + offset[i][3]});
    }
    for (int axis = 0, count = 8; axis < 4; ++axis, count /= 2)
        for (int i = 0; i < count; ++i)
            value[i] = lerp(value[2 * i], value[2 * i + 1], u[axis]);
    return value[0];
}

inline float cellnoise(Vector p)
{
    return inoise(Vector{std::floor(p[0]) + 0.5f, std::floor(p[1]) + 0.5f, std::floor(p[2]) + 0.5f});
}

inline float cellular(Vector p, float jitter)
{
    const Vector c = {std::floor(p[0]) + 0.5f, std::floor(p[1]) + 0.5f, std::floor(p[2]) + 0.5f};
    float nearest = 1000.0f;
    for (int i = -1; i <= 1; ++i)
        for (int j = -1; j <= 1; ++j)
            for (int k = -1; k <= 1; ++k) {
                const Vector q = {c[0] + float(i), c[1] + float(j), c[2] + float(k)};
                const float moved = cellnoise(q) * jitter;
                const Vector d = {p[0] - (q[0] + moved), p[1] - (q[1] + moved), p[2] - (q[2] + moved)};
                const float distance = std::sqrt(d[0] * d[0] + d[1] * d[1] + d[2] * d[2]);
                if (distance < nearest)
                    nearest = distance;
            }
    return nearest;
}

inline float octaves(Vector p, int count, float lacunarity, float gain, float frequency, float amplitude,
                     bool absolute)
{
    float sum = 0.0f;
    for (int i = 0; i < count; ++i) {
        const float noise = inoise(Vector{p[0] * frequency, p[1] * frequency, p[2] * frequency});
        sum += (absolute ? std::fabs(noise) : noise) * amplitude;
        frequency *= lacunarity;
        amplitude *= gain;
    }
    return sum;
}

} // namespace rule
