// SPDX-License-Identifier: BSD-3-Clause
#include "noise_rule.h"
#include "noise_tables.h"

#include <algorithm>
#include <array>
#include <bit>
#include <cmath>

namespace VHLNoise {

namespace {

using Vector = std::array<float, 3>;
using Vector4 = std::array<float, 4>;

// Zero until they are filled.
std::array<Vector, 16> g;
std::array<Vector4, 32> g4;
std::array<Vector, 27> neighbors;

// From one corner of a cell to the next in hash space.
constexpr float one = 1.0f / 255.0f;

// The entry of a table of `count` that a position in 0..1 stands for.
int entry(dScalar position, int count)
{
    const dScalar wrapped = dScalar::clamp(fmod(position, 1.0f), 0.0f, 0.99999f);
    return int(wrapped * count);
}

dVector vector(const Vector& v) { return {v[0], v[1], v[2]}; }

} // namespace

Tables tables;

void init_noise()
{
    init_g();
    init_g4();
    init_neighbor();
}

void init_g()
{
    g = {{{1, 1, 0},
          {-1, 1, 0},
          {1, -1, 0},
          {-1, -1, 0},
          {1, 0, 1},
          {-1, 0, 1},
          {1, 0, -1},
          {-1, 0, -1},
          {0, 1, 1},
          {0, -1, 1},
          {0, 1, -1},
          {0, -1, -1},
          {1, 1, 0},
          {0, -1, 1},
          {-1, 1, 0},
          {0, -1, -1}}};
    for (int i = 0; i < sums; ++i) {
        const Vector& v = g[gradient(hashed[i], 16)];
        for (int axis = 0; axis < 3; ++axis)
            tables.three[axis][i] = v[axis];
    }
    // Code 0 is no gradient.
    const auto code = [](int hash) {
        const Vector& v = g[gradient(hashed[hash % 255], 16)];
        return std::uint32_t(1 + std::find(g.begin(), g.end(), v) - g.begin());
    };
    for (int i = 0; i < sums; ++i)
        tables.codes3[i] = code(i) << 24 | code(i + 1) << 16;
    for (int i = 0; i < 256; ++i) {
        tables.bytes3[0][i] = std::uint8_t(code(i));
        tables.bytes3[1][i] = std::uint8_t(code(i + 1));
    }
    for (int row = 0; row < 12; ++row)
        for (int axis = 0; axis < 3; ++axis) {
            const float twice = 2 * g[row][axis];
            tables.components3[axis].twice[1 + row] = twice;
            tables.components3[axis].highest[1 + row] =
                std::uint8_t(std::bit_cast<std::uint32_t>(twice) >> 24);
        }
    // The middle is half a unit from every corner, and all weights are 1/2: eight times the noise is a whole
    // number.
    const auto corner = [](int hash, int x, int y, int z) {
        const Vector& v = g[gradient(hashed[(hash + 255) % 255], 16)];
        return (int(v[0]) * (1 - 2 * x) + int(v[1]) * (1 - 2 * y) + int(v[2]) * (1 - 2 * z)) / 2;
    };
    for (int edge = 0; edge < 4; ++edge)
        for (int i = 0; i < sums; ++i) {
            const auto cell = [&](int hash) {
                return corner(hash, edge / 2, edge % 2, 0) + corner(hash + 1, edge / 2, edge % 2, 1);
            };
            tables.cells[i][edge] = cell(i - 1) + 256 * cell(i) + 65536 * cell(i + 1);
        }
}

void init_g4()
{
    // The last eight are pairs, deliberately: the values of the noise depend on it.
    g4 = {{{0, -1, -1, -1}, {0, -1, -1, 1}, {0, -1, 1, -1},  {0, -1, 1, 1},  {0, 1, -1, -1},  {0, 1, -1, 1},
           {0, 1, 1, -1},   {0, 1, 1, 1},   {-1, -1, 0, -1}, {-1, 1, 0, -1}, {1, -1, 0, -1},  {1, 1, 0, -1},
           {-1, -1, 0, 1},  {-1, 1, 0, 1},  {1, -1, 0, 1},   {1, 1, 0, 1},   {-1, 0, -1, -1}, {1, 0, -1, -1},
           {-1, 0, -1, 1},  {1, 0, -1, 1},  {-1, 0, 1, -1},  {1, 0, 1, -1},  {-1, 0, 1, 1},   {1, 0, 1, 1},
           {0, -1, -1, 0},  {0, -1, -1, 0}, {0, -1, 1, 0},   {0, -1, 1, 0},  {0, 1, -1, 0},   {0, 1, -1, 0},
           {0, 1, 1, 0},    {0, 1, 1, 0}}};
    for (int i = 0; i < sums; ++i) {
        const Vector4& v = g4[gradient(hashed[i], 32)];
        for (int axis = 0; axis < 4; ++axis)
            tables.four[axis][i] = v[axis];
    }
    const auto code = [](int hash) {
        const auto& [x, y, z, w] = g4[gradient(hashed[hash % 255], 32)];
        const auto digit = [](float component) { return component < 0 ? 2u : component > 0 ? 1u : 0u; };
        return (digit(x) + 4 * digit(y)) << 8 | (digit(z) + 4 * digit(w));
    };
    for (int i = 0; i < sums; ++i)
        tables.codes4[i] = code(i) << 16 | code(i + 1);
}

void init_neighbor()
{
    auto next = neighbors.begin();
    for (int i = -1; i <= 1; ++i)
        for (int j = -1; j <= 1; ++j)
            for (int k = -1; k <= 1; ++k)
                *next++ = {float(i), float(j), float(k)};
    tables.neighbors = true;
}

dVector fade(dVector t) { return t * t * t * (t * (t * 6.0f - dVector(15.0f)) + dVector(10.0f)); }

dColor fade(dColor t) { return t * t * t * (t * (t * dColor(6.0f) + dColor(-15.0f)) + dColor(10.0f)); }

dScalar lerp(dScalar a, dScalar b, dScalar t)
{
    if (t <= 0.0f)
        return a;
    if (t >= 1.0f)
        return b;
    return t * b + (dScalar(1.0f) - t) * a;
}

dVector lerp(dVector a, dVector b, dScalar t)
{
    return {lerp(dScalar(a.x()), b.x(), t), lerp(dScalar(a.y()), b.y(), t), lerp(dScalar(a.z()), b.z(), t)};
}

dScalar dot(dVector a, dVector b) { return a.x() * b.x() + a.y() * b.y() + a.z() * b.z(); }

dScalar dot(dColor a, dColor b) { return a.x() * b.x() + a.y() * b.y() + a.z() * b.z() + a.w() * b.w(); }

dScalar length(dVector v) { return std::sqrt(float(dot(v, v))); }

dScalar distance(dVector a, dVector b) { return length(a - b); }

dScalar fmod(dScalar a, dScalar b) { return a - b * std::floor(float(a / b)); }

dVector fmod(dVector a, dVector b) { return a - b * vfloor(a / b); }

dColor fmod(dColor a, dColor b)
{
    a -= b * vfloor(a / b);
    return a;
}

dVector vfloor(dVector v) { return {std::floor(v.x()), std::floor(v.y()), std::floor(v.z())}; }

dColor vfloor(dColor v)
{
    return {std::floor(v.x()), std::floor(v.y()), std::floor(v.z()), std::floor(v.w())};
}

dScalar perm(dScalar x) { return float(permutation[entry(x, 256)]) / 255.0f; }

dScalar grad(dScalar h, dVector p) { return dot(vector(g[entry(h, 16)]), p); }

dScalar grad(dScalar h, dColor p)
{
    const Vector4& v = g4[entry(h, 32)];
    return dot(dColor(v[0], v[1], v[2], v[3]), p);
}

dScalar inoiseByRule(dVector p)
{
    const dVector cell = vfloor(p);
    const dVector P = fmod(cell, dVector(256.0f)) / dVector(255.0f);
    const dVector f = p - cell;
    const dVector u = fade(f);

    const dScalar A = perm(P.x()) + P.y();
    const dScalar AA = perm(A) + P.z();
    const dScalar AB = perm(A + one) + P.z();
    const dScalar B = perm(P.x() + one) + P.y();
    const dScalar BA = perm(B) + P.z();
    const dScalar BB = perm(B + one) + P.z();

    const auto corner = [&](dScalar hash, float x, float y, float z) {
        return grad(perm(hash), f + dVector(x, y, z));
    };
    // The four edges along x, then the two along y, then the one along z.
    const auto edges = [&](dScalar y0, dScalar y1) { return lerp(y0, y1, u.y()); };
    const dScalar z0 = edges(lerp(corner(AA, 0, 0, 0), corner(BA, -1, 0, 0), u.x()),
                             lerp(corner(AB, 0, -1, 0), corner(BB, -1, -1, 0), u.x()));
    const dScalar z1 = edges(lerp(corner(AA + one, 0, 0, -1), corner(BA + one, -1, 0, -1), u.x()),
                             lerp(corner(AB + one, 0, -1, -1), corner(BB + one, -1, -1, -1), u.x()));
    return lerp(z0, z1, u.z());
}

dScalar inoiseByRule(dColor p)
{
    const dColor cell = vfloor(p);
    const dColor P = fmod(cell, dColor(256.0f)) / dColor(255.0f);
    dColor f = p;
    f -= cell;
    const dColor u = fade(f);

    const dScalar A = perm(P.x()) + P.y();
    const dScalar AA = perm(A) + P.z();
    const dScalar AB = perm(A + one) + P.z();
    const dScalar B = perm(P.x() + one) + P.y();
    const dScalar BA = perm(B) + P.z();
    const dScalar BB = perm(B + one) + P.z();

    // One edge along x: its two hashes before w comes in, and the offset of its first end. `straight` is
    // false for the one edge whose first offset is deliberately that of another corner.
    const auto edge = [&](dScalar hash0, dScalar hash1, float w, float y, float z, bool straight) {
        const float step = w == 0.0f ? 0.0f : one;
        const dColor first = straight ? dColor(0.0f, y, z, w) : dColor(-1.0f, 0.0f, z, w);
        return lerp(grad(perm(perm(hash0) + P.w() + step), f + first),
                    grad(perm(perm(hash1) + P.w() + step), f + dColor(-1.0f, y, z, w)), u.x());
    };
    const auto half = [&](float w) {
        const dScalar z0 = lerp(edge(AA, BA, w, 0, 0, true), edge(AB, BB, w, -1, 0, w != 0.0f), u.y());
        const dScalar z1 =
            lerp(edge(AA + one, BA + one, w, 0, -1, true), edge(AB + one, BB + one, w, -1, -1, true), u.y());
        return lerp(z0, z1, u.z());
    };
    return lerp(half(0.0f), half(-1.0f), u.w());
}

dScalar cellnoiseByRule(dVector p) { return inoiseByRule(vfloor(p) + dVector(0.5f)); }

dVector cellularByRule(dVector p, dScalar jitter)
{
    const dVector middle = vfloor(p) + dVector(0.5f);
    // The second nearest point has no say in the result.
    dScalar nearest = 1000.0f;
    for (const Vector& neighbor : neighbors) {
        const dVector q = middle + vector(neighbor);
        const dScalar d = distance(p, q + dVector(float(cellnoiseByRule(q))) * jitter);
        if (d < nearest)
            nearest = d;
    }
    return float(nearest);
}

dScalar octaves(dVector p, int count, dScalar lacunarity, dScalar gain, dScalar frequency, dScalar amplitude)
{
    dScalar sum = 0.0f;
    for (int i = 0; i < count; ++i) {
        sum += inoise(p * frequency) * amplitude;
        frequency *= lacunarity;
        amplitude *= gain;
    }
    return sum;
}

dScalar octaves_abs(dVector p, int count, dScalar lacunarity, dScalar gain, dScalar frequency,
                    dScalar amplitude)
{
    dScalar sum = 0.0f;
    for (int i = 0; i < count; ++i) {
        sum += dScalar(std::fabs(float(inoise(p * frequency)))) * amplitude;
        frequency *= lacunarity;
        amplitude *= gain;
    }
    return sum;
}

} // namespace VHLNoise
