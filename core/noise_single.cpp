// SPDX-License-Identifier: BSD-3-Clause
// Noise at one point: the corners of its cell are the lanes of the processor's smallest vectors.
#include "noise_rule.h"
#include "noise_tables.h"

#include <bit>
#include <cmath>
#include <cstring>
#include <limits>

namespace VHLNoise {

namespace {

using Floats = float __attribute__((vector_size(16)));
using Ints = std::int32_t __attribute__((vector_size(16)));
using Words = std::uint32_t __attribute__((vector_size(16)));
using Longs = std::uint64_t __attribute__((vector_size(16)));
using Pairs = double __attribute__((vector_size(16)));

template <int A, int B, int C, int D>
Floats shuffled(Floats v, Floats w)
{
    return __builtin_shufflevector(v, w, A, B, C, D);
}

template <int A, int B, int C, int D>
Floats shuffled(Floats v)
{
#ifdef __SSE2__
    return Floats(__builtin_ia32_pshufd(Ints(v), A + 4 * B + 16 * C + 64 * D)); // copies as it shuffles
#else
    return shuffled<A, B, C, D>(v, v);
#endif
}

template <int Lane>
Floats splat(Floats v)
{
    return shuffled<Lane, Lane, Lane, Lane>(v);
}

bool everywhere(Ints condition)
{
#ifdef __SSE2__
    return __builtin_ia32_movmskps(Floats(condition)) == 15;
#else
    return condition[0] && condition[1] && condition[2] && condition[3];
#endif
}

Floats smaller(Floats a, Floats b)
{
#ifdef __SSE2__
    return __builtin_ia32_minps(a, b);
#else
    return a < b ? a : b;
#endif
}

// Points arrive in registers. Put to memory as they come and fetched as four numbers, which compilers like to
// do, they would wait for the writes to finish.
template <class Number>
void stayInRegister([[maybe_unused]] Number& number)
{
#ifdef __SSE2__
    asm("" : "+x"(number));
#endif
}

/// The last lane is z once more.
Floats coordinates(const dVector& p)
{
    std::uint64_t xy = 0;
    std::memcpy(&xy, &p, sizeof xy);
    std::uint32_t z = std::bit_cast<std::uint32_t>(p.z());
    stayInRegister(xy);
    stayInRegister(z);
    return shuffled<0, 1, 4, 4>(Floats(Longs{xy, xy}), Floats(Words{z, z, z, z}));
}

Floats coordinates(const dColor& p)
{
    std::uint64_t xy = 0;
    std::uint64_t zw = 0;
    std::memcpy(&xy, &p.x(), sizeof xy);
    std::memcpy(&zw, &p.z(), sizeof zw);
    stayInRegister(xy);
    stayInRegister(zw);
    return Floats(Longs{xy, zw});
}

/// Four times each, as compilers would rather fetch a number and then copy it.
struct Constants {
    Floats one, six, ten, fifteen;
    Ints byte;
};
alignas(64) constexpr Constants constantTable = {
    {1, 1, 1, 1}, {6, 6, 6, 6}, {10, 10, 10, 10}, {15, 15, 15, 15}, Ints{} + 255};

const Constants& constants()
{
    const Constants* table = &constantTable;
    asm("" : "+r"(table));
    return *table;
}

/// Whether a coordinate is not between -limit and limit, or no number at all.
bool exceeds(Floats p, float limit)
{
    const Words magnitude = Words(p) & (Words{} + 0x7fffffffu);
    return !everywhere(Floats(magnitude) < Floats{} + limit);
}

// From here on there are no integers for coordinates.
constexpr float noInteger = 0x1p31f;

Ints integersBelow(Floats p)
{
    const Ints truncated = __builtin_convertvector(p, Ints);
    return truncated + (__builtin_convertvector(truncated, Floats) > p); // a true condition is -1
}

/// Where a point is: its cell modulo 256, the position in the cell, and the weights of the cell's far sides.
struct Place {
    Words cell;
    Floats f;
    Floats u;
};

Place placeIn(Ints cell, Floats f)
{
    const Constants& k = constants();
    // Rounding takes it above 1, where lerp() does not follow.
    const Floats faded = f * f * f * (f * (k.six * f - k.fifteen) + k.ten);
    return {Words(cell & k.byte), f, smaller(faded, k.one)};
}

/// A component of the gradients of four corners: those at two hashes and their neighbours.
Floats pairs(const float* table, std::size_t first, std::size_t second)
{
    double low = 0;
    double high = 0;
    std::memcpy(&low, table + first, sizeof low);
    std::memcpy(&high, table + second, sizeof high);
    return Floats(Pairs{low, high});
}

/// Whether a result of 0 might be -0 by the rule, which selects at the ends what is weighed with 1 and 0
/// here. It is not where all positions are 0 or well inside: the corner at 0 is never -0, as each gradient
/// has a component that is 0, and has a part in the result, as no product underflows. A position that is -0
/// here, in the cell of -0, is not by the rule.
bool doubtful(Floats f) { return !everywhere((Ints(f) == 0) | ((f >= 0.125f) & (f <= 0.875f))); }

[[gnu::always_inline]] inline float noise3(const Place& at)
{
    const auto& [cell, f, u] = at;
    const std::uint8_t* const addY = hashed + cell[1];
    const std::size_t X = cell[0];
    const std::size_t A = hashed[X], B = hashed[X + 1];
    const std::size_t AA = addY[A], AB = addY[A + 1], BA = addY[B], BB = addY[B + 1];

    // Lanes: y and z are 00, 01, 10 and 11.
    const Constants& k = constants();
    const Floats g = f - k.one;
    const Floats v = k.one - u;
    const Floats y = shuffled<1, 1, 5, 5>(f, g);
    const Floats z = shuffled<2, 6, 2, 6>(f, g);
    const auto edges = [&](std::size_t y0, std::size_t y1, Floats x) {
        const auto& [gx, gy, gz] = tables.three;
        return pairs(gx, y0, y1) * x + pairs(gy, y0, y1) * y + pairs(gz, y0, y1) * z;
    };
    const std::size_t Z = cell[2];
    const Floats x0 = edges(AA + Z, AB + Z, splat<0>(f));
    const Floats x1 = edges(BA + Z, BB + Z, splat<0>(g));
    const Floats yz = splat<0>(u) * x1 + splat<0>(v) * x0;
    const Floats weighedY = shuffled<1, 1, 5, 5>(v, u) * yz;
    const Floats zs = shuffled<2, 3, 2, 3>(weighedY) + weighedY;
    const Floats weighedZ = shuffled<2, 6, 3, 7>(v, u) * zs;
    return weighedZ[1] + weighedZ[0];
}

[[gnu::always_inline]] inline float noise4(const Place& at)
{
    const auto& [cell, f, u] = at;
    const std::uint8_t* const addY = hashed + cell[1];
    const std::uint8_t* const addZ = hashed + cell[2];
    const std::size_t X = cell[0], W = cell[3];
    const std::size_t A = hashed[X], B = hashed[X + 1];

    // Lanes: z and w are 00, 01, 10 and 11.
    const Constants& k = constants();
    const Floats g = f - k.one;
    const Floats v = k.one - u;
    const Floats z = shuffled<2, 2, 6, 6>(f, g);
    const Floats w = shuffled<3, 7, 3, 7>(f, g);
    const auto edge = [&](std::size_t hash, Floats x, Floats y) {
        const std::size_t z0 = addZ[addY[hash]] + W;
        const std::size_t z1 = addZ[addY[hash] + 1] + W;
        const auto& [gx, gy, gz, gw] = tables.four;
        return pairs(gx, z0, z1) * x + pairs(gy, z0, z1) * y + pairs(gz, z0, z1) * z + pairs(gw, z0, z1) * w;
    };
    // The corner at x = 0, y = 1, z = 0, w = 0 deliberately takes the offset to x = 1, y = 0.
    const Floats y0 =
        splat<0>(u) * edge(B, splat<0>(g), splat<1>(f)) + splat<0>(v) * edge(A, splat<0>(f), splat<1>(f));
    const Floats oddX = shuffled<4, 1, 2, 3>(splat<0>(f), splat<0>(g));
    const Floats oddY = shuffled<4, 1, 2, 3>(splat<1>(g), splat<1>(f));
    const Floats y1 =
        splat<0>(u) * edge(B + 1, splat<0>(g), splat<1>(g)) + splat<0>(v) * edge(A + 1, oddX, oddY);
    const Floats zw = splat<1>(u) * y1 + splat<1>(v) * y0;
    const Floats weighedZ = shuffled<2, 2, 6, 6>(v, u) * zw;
    const Floats ws = shuffled<2, 3, 2, 3>(weighedZ) + weighedZ;
    const Floats weighedW = shuffled<3, 7, 3, 7>(v, u) * ws;
    return weighedW[1] + weighedW[0];
}

[[gnu::noinline]] float rule3(Floats q) { return inoiseByRule(dVector(q[0], q[1], q[2])); }
[[gnu::noinline]] float rule4(Floats q) { return inoiseByRule(dColor(q[0], q[1], q[2], q[3])); }

using Noise = float (&)(const Place&);
using Rule = float (&)(Floats);

template <Noise noise, Rule rule>
[[gnu::always_inline]] inline float noiseIn(Ints cell, Floats f, Floats q)
{
    const float result = noise(placeIn(cell, f));
    if (std::bit_cast<std::uint32_t>(result) << 1 == 0 && doubtful(f)) [[unlikely]]
        return rule(q);
    return result;
}

template <Noise noise, Rule rule>
[[gnu::noinline]] float noiseCarefully(Floats q)
{
    if (exceeds(q, noInteger))
        return rule(q);
    const Ints cell = integersBelow(q);
    return noiseIn<noise, rule>(cell, q - __builtin_convertvector(cell, Floats), q);
}

template <Noise noise, Rule rule>
[[gnu::always_inline]] inline float noiseAt(Floats q)
{
    const Ints sign = Ints(q) >> 31;
    // A quick way below for negative numbers, if they are no integers; else the position is 1.
    const Ints cell = Ints(Words(__builtin_convertvector(q, Ints)) + Words(sign));
    const Floats f = q - __builtin_convertvector(cell, Floats);
    // Only between -2^24 and 2^24 is the cell to be trusted.
    if (!everywhere((cell >> 24 == sign) & (f != constants().one))) [[unlikely]]
        return noiseCarefully<noise, rule>(q);
    return noiseIn<noise, rule>(cell, f, q);
}

} // namespace

dScalar inoise(dVector p) { return noiseAt<noise3, rule3>(coordinates(p)); }
dScalar inoise(dColor p) { return noiseAt<noise4, rule4>(coordinates(p)); }

dScalar cellnoise(dVector p)
{
    const Floats q = coordinates(p);
    if (exceeds(q, noMiddle)) [[unlikely]]
        return cellnoiseByRule(p);
    const Words cell = Words(integersBelow(q)) & 255;
    const std::size_t X = cell[0], Y = cell[1], Z = cell[2];
    const int eightfold = int(cells(hashed[X] + Y, hashed[X + 1] + Y, Z) >> 8 & 255) - 8;
    return 0.125f * float(eightfold);
}

dVector cellular(dVector p, dScalar jitter)
{
    const Floats q = coordinates(p);
    // An eighth of the jitter spares a multiplication for every neighbour, if nothing of it is lost.
    const float eighth = 0.125f * float(jitter);
    if (exceeds(q, noMiddle) || !(8.0f * eighth == float(jitter)) || !tables.neighbors) [[unlikely]]
        return cellularByRule(p, jitter);
    const Ints below = integersBelow(q);
    const Floats middle = __builtin_convertvector(below, Floats) + 0.5f;
    const Words cell = Words(below) & 255;
    const std::size_t X = cell[0], Y = cell[1], Z = cell[2];

    // Lanes: the cells before, at and after the point's in z; the last lane is out of reach.
    const Floats z = splat<2>(middle) + Floats{-1, 0, 1, std::numeric_limits<float>::infinity()};
    Floats nearest = Floats{} + std::numeric_limits<float>::infinity();
    columns(X, Y, Z, [&](int column, std::uint32_t three) {
        const Ints eightfold = Ints{int(three & 255), int(three >> 8 & 255), int(three >> 16), 0} - 8;
        const Floats moved = __builtin_convertvector(eightfold, Floats) * eighth;
        const Floats dx = splat<0>(q) - (splat<0>(middle) + float(column / 3 - 1) + moved);
        const Floats dy = splat<1>(q) - (splat<1>(middle) + float(column % 3 - 1) + moved);
        const Floats dz = splat<2>(q) - (z + moved);
        // What is not a number is not nearer.
        nearest = smaller(dx * dx + dy * dy + dz * dz, nearest);
    });
    // The root of the least is the least root.
    const Floats two = smaller(nearest, shuffled<2, 3, 2, 3>(nearest, nearest));
    const float distance = std::sqrt(two[0] < two[1] ? two[0] : two[1]);
    return distance < 1000.0f ? distance : 1000.0f;
}

} // namespace VHLNoise
