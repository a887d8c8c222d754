// SPDX-License-Identifier: BSD-3-Clause
// Noise at many points, a point per lane of the processor's vectors: 8 with AVX2, 16 with AVX-512, as the
// including source says and is compiled for. Nothing here may have a name outside of that source: a linker
// could take it for all.
#pragma once

#include "noise_batch.h"
#include "noise_tables.h"

#include <immintrin.h>

#include <cstring>
#include <utility>

#define VHL_INLINE [[gnu::always_inline]] inline

namespace VHLNoise {

namespace {

#if VHL_LANES == 16
constexpr int lanes = 16;
#define VHL_WIDE(name) _mm512_##name
using Register = __m512i;
#else
constexpr int lanes = 8;
#define VHL_WIDE(name) _mm256_##name
using Register = __m256i;
#endif

using Floats = float __attribute__((vector_size(4 * lanes)));
using Ints = std::int32_t __attribute__((vector_size(4 * lanes)));
using Words = std::uint32_t __attribute__((vector_size(4 * lanes)));

template <class Vector, class Number>
VHL_INLINE Vector load(const Number* from)
{
    Vector v;
    std::memcpy(&v, from, sizeof v);
    return v;
}

template <class Vector, class Number>
VHL_INLINE void store(Number* to, Vector v)
{
    std::memcpy(to, &v, sizeof v);
}

VHL_INLINE Floats smaller(Floats a, Floats b) { return VHL_WIDE(min_ps)(a, b); }
VHL_INLINE Floats root(Floats v) { return VHL_WIDE(sqrt_ps)(v); }
VHL_INLINE Floats magnitude(Floats v) { return Floats(Words(v) & 0x7fffffffu); }
VHL_INLINE Floats number(Words v) { return __builtin_convertvector(Ints(v), Floats); }

/// Of what is too large this makes -2^31, which is the same modulo 256: such floats are multiples of 256.
VHL_INLINE Words integer(Floats v) { return Words(VHL_WIDE(cvttps_epi32)(v)); }

VHL_INLINE Floats floor(Floats v)
{
#if VHL_LANES == 16
    return _mm512_roundscale_ps(v, _MM_FROUND_TO_NEG_INF | _MM_FROUND_NO_EXC);
#else
    return _mm256_floor_ps(v);
#endif
}

/// A bit for each lane.
VHL_INLINE unsigned mask(Ints condition)
{
#if VHL_LANES == 16
    return _mm512_movepi32_mask(Register(condition));
#else
    return unsigned(_mm256_movemask_ps(__m256(condition)));
#endif
}

VHL_INLINE Register everyQuarter(__m128i v)
{
#if VHL_LANES == 16
    return _mm512_broadcast_i32x4(v);
#else
    return _mm256_broadcastsi128_si256(v);
#endif
}

/// For each byte of `index`, all below 16, the byte in a table.
VHL_INLINE Words lookUp(const std::uint8_t (&table)[16], Words index)
{
    const __m128i entries = _mm_loadu_si128(reinterpret_cast<const __m128i*>(table));
    return Words(VHL_WIDE(shuffle_epi8)(everyQuarter(entries), Register(index)));
}

/// Twice a component of gradients, of which the code is in the lowest or, elsewhere, in the highest byte.
VHL_INLINE Floats component(const Component& table, Words code)
{
#if VHL_LANES == 16
    return _mm512_permutexvar_ps(Register(code), load<Floats>(table.twice));
#else
    return Floats(lookUp(table.highest, code));
#endif
}

/// The lowest byte of each word in both halves of the word.
VHL_INLINE Words doubled(Words w)
{
    const __m128i bytes = _mm_setr_epi8(0, -1, 0, -1, 4, -1, 4, -1, 8, -1, 8, -1, 12, -1, 12, -1);
    return Words(VHL_WIDE(shuffle_epi8)(Register(w), everyQuarter(bytes)));
}

/// For each lane, the one of a, and from `lanes` on of b, that `from` names for it.
template <auto from>
VHL_INLINE Floats shuffled(Floats a, Floats b)
{
    return [&]<int... lane>(std::integer_sequence<int, lane...>)
    {
        return __builtin_shufflevector(a, b, from(lane)...);
    }
    (std::make_integer_sequence<int, lanes>());
}

/// An axis of points in three dimensions is every third number, and these are in different lanes of a, b and
/// c.
template <int axis>
VHL_INLINE Floats everyThird(Floats a, Floats b, Floats c)
{
    constexpr auto ab = [](int lane) { return lane % 3 == axis ? lane : lane + lanes; };
    constexpr auto abc = [](int lane) {
        return lane % 3 == axis || (lane + lanes) % 3 == axis ? lane : lane + lanes;
    };
    constexpr auto inOrder = [](int lane) { return (3 * lane + axis) % lanes; };
    const Floats all = shuffled<abc>(shuffled<ab>(a, b), c);
    return shuffled<inOrder>(all, all);
}

/// The coordinates of as many points as there are lanes.
VHL_INLINE void coordinates(const float* points, Floats (&axis)[3])
{
    const Floats a = load<Floats>(points), b = load<Floats>(points + lanes),
                 c = load<Floats>(points + 2 * lanes);
    axis[0] = everyThird<0>(a, b, c);
    axis[1] = everyThird<1>(a, b, c);
    axis[2] = everyThird<2>(a, b, c);
}

VHL_INLINE void coordinates(const float* points, Floats (&axis)[4])
{
    const Floats a = load<Floats>(points), b = load<Floats>(points + lanes),
                 c = load<Floats>(points + 2 * lanes), d = load<Floats>(points + 3 * lanes);
    // Each quarter of a register has a point; transposed, a quarter has an axis of four points: of a, b, c
    // and d.
    constexpr auto low = [](int lane) { return lane / 4 * 4 + lane % 4 / 2 + lane % 2 * lanes; };
    constexpr auto high = [](int lane) { return lane / 4 * 4 + 2 + lane % 4 / 2 + lane % 2 * lanes; };
    constexpr auto first = [](int lane) { return lane / 4 * 4 + lane % 2 + lane % 4 / 2 * lanes; };
    constexpr auto second = [](int lane) { return lane / 4 * 4 + 2 + lane % 2 + lane % 4 / 2 * lanes; };
    constexpr auto inOrder = [](int lane) { return lane % (lanes / 4) * 4 + lane / (lanes / 4); };
    const Floats xy01 = shuffled<low>(a, b), xy23 = shuffled<low>(c, d);
    const Floats zw01 = shuffled<high>(a, b), zw23 = shuffled<high>(c, d);
    axis[0] = shuffled<first>(xy01, xy23);
    axis[1] = shuffled<second>(xy01, xy23);
    axis[2] = shuffled<first>(zw01, zw23);
    axis[3] = shuffled<second>(zw01, zw23);
    for (Floats& all : axis)
        all = shuffled<inOrder>(all, all);
}

VHL_INLINE Floats fade(Floats f)
{
    // Rounding takes it above 1, where lerp() does not follow.
    return smaller(f * f * f * (f * (6.0f * f - 15.0f) + 10.0f), Floats{} + 1.0f);
}

VHL_INLINE Floats mix(Floats a, Floats b, Floats t, Floats rest) { return t * b + rest * a; }

/// The hash of a number in the lower half, that of the next in the upper.
struct Pairs {
    std::uint32_t entry[sums];
};
constexpr Pairs pairTable = [] {
    Pairs table{};
    for (int i = 0; i < sums; ++i)
        table.entry[i] = permutation[i % 255] + 65536u * permutation[(i + 1) % 255];
    return table;
}();
constexpr const std::uint32_t (&pairs)[sums] = pairTable.entry;

VHL_INLINE std::uint32_t lower(std::uint32_t pair) { return pair & 0xffff; }
VHL_INLINE std::uint32_t upper(std::uint32_t pair) { return pair >> 16; }

/// Gradient noise: where the points are in their cells, and what their corners are.
template <int Axes>
struct alignas(64) Corners {
    Floats f[Axes];
    Floats u[Axes];
    std::uint32_t cell[Axes][lanes]; ///< in both halves of the word, but for x
    std::uint32_t codes[1 << (Axes - 1)][lanes];
};

template <int Axes>
VHL_INLINE void placeInCells(Corners<Axes>& c, const float* points)
{
    Floats axis[Axes];
    coordinates(points, axis);
    for (int k = 0; k < Axes; ++k) {
        const Floats below = floor(axis[k]);
        const Words whole = integer(below);
        c.f[k] = axis[k] - below;
        c.u[k] = fade(c.f[k]);
        store(c.cell[k], k == 0 ? whole & 255 : doubled(whole));
    }
}

/// Points whose noise may be another one by the rule: see noise_single.cpp. Here, products with twice the
/// gradients may be exact where the rule's are not, but nothing of this is left in a larger result.
template <int Axes>
VHL_INLINE unsigned doubtful(Floats result, const Floats (&f)[Axes])
{
    const Ints tiny = magnitude(result) < 0x1p-40f;
    if (mask(tiny) == 0) [[likely]]
        return 0;
    Ints certain = result == 0.0f;
    for (int k = 0; k < Axes; ++k)
        certain &= (f[k] == 0.0f) | ((f[k] >= 0.125f) & (f[k] <= 0.875f));
    return mask(tiny & ~certain);
}

#if VHL_LANES == 16

/// For each byte, the byte in a table of 256.
VHL_INLINE Register lookUp(const std::uint8_t (&table)[256], Register index)
{
    const auto entries = [&](int first) { return _mm512_loadu_si512(table + first); };
    const Register low = _mm512_permutex2var_epi8(entries(0), index, entries(64));
    const Register high = _mm512_permutex2var_epi8(entries(128), index, entries(192));
    return _mm512_mask_blend_epi8(_mm512_movepi8_mask(index), low, high);
}

/// Sums of bytes modulo 255, where 255 stands for 0 too.
VHL_INLINE Register sum255(Register a, Register b)
{
    const Register sum = _mm512_add_epi8(a, b);
    return _mm512_mask_sub_epi8(sum, _mm512_cmplt_epu8_mask(sum, a), sum, _mm512_set1_epi8(-1));
}

#endif

struct Noise3 {
    static constexpr int axes = 3;
    using Stage = Corners<3>;

#if VHL_LANES == 16

    /// The codes of the gradients, all four columns in the bytes of a word: here, a table is a few registers.
    VHL_INLINE void place(Stage& c, const float* points) const
    {
        placeInCells(c, points);
        const auto cell = [&](int axis) { return load<Words>(c.cell[axis]); };
        const auto next = [](Words w) { return (w + 1 + ((w + 1) >> 8)) & 255; };
        const Words X = cell(0), Y = cell(1) & 255;
        const Register x = lookUp(hashed255, Register((X | X << 8) | (next(X) | next(X) << 8) << 16));
        const Register y = lookUp(hashed255, sum255(x, Register((Y | next(Y) << 8) * 0x10001)));
        const Register z = sum255(y, Register(cell(2) | cell(2) << 8));
        store(c.codes[0], lookUp(tables.bytes3[0], z));
        store(c.codes[1], lookUp(tables.bytes3[1], z));
    }

    VHL_INLINE void hash(Stage&, int) const {}

#else

    VHL_INLINE void place(Stage& c, const float* points) const { placeInCells(c, points); }

    /// The codes of the gradients at z = 0 and 1, for x and y 00, 01, 10 and 11.
    VHL_INLINE void hash(Stage& c, int i) const
    {
        const auto& [X, Y, Z] = c.cell;
        const std::uint32_t x = pairs[X[i]] + Y[i];
        const std::uint32_t y0 = pairs[lower(x)] + Z[i];
        const std::uint32_t y1 = pairs[upper(x)] + Z[i];
        c.codes[0][i] = tables.codes3[lower(y0)];
        c.codes[1][i] = tables.codes3[upper(y0)];
        c.codes[2][i] = tables.codes3[lower(y1)];
        c.codes[3][i] = tables.codes3[upper(y1)];
    }

#endif

    template <class Next>
    VHL_INLINE unsigned finish(const Stage& c, float* results, Next next) const
    {
        const Floats x = c.f[0], y = c.f[1], z = c.f[2];
        const Floats farX = x - 1.0f, farY = y - 1.0f, farZ = z - 1.0f;
        const Floats restX = 1.0f - c.u[0], restY = 1.0f - c.u[1], restZ = 1.0f - c.u[2];
        const auto corner = [](Words code, Floats cx, Floats cy, Floats cz) {
            const auto& [gx, gy, gz] = tables.components3;
            return component(gx, code) * cx + component(gy, code) * cy + component(gz, code) * cz;
        };
        const auto plane = [&](auto code, Floats cz, int i) {
            const Floats y0 = mix(corner(code(0), x, y, cz), corner(code(2), farX, y, cz), c.u[0], restX);
            next(i, i + lanes / 4);
            const Floats y1 =
                mix(corner(code(1), x, farY, cz), corner(code(3), farX, farY, cz), c.u[0], restX);
            next(i + lanes / 4, i + lanes / 2);
            return mix(y0, y1, c.u[1], restY);
        };
#if VHL_LANES == 16
        const auto near = [&](int column) { return load<Words>(c.codes[0]) >> (8 * column); };
        const auto far = [&](int column) { return load<Words>(c.codes[1]) >> (8 * column); };
#else
        const auto near = [&](int column) { return load<Words>(c.codes[column]) & 0xff000000u; };
        const auto far = [&](int column) { return load<Words>(c.codes[column]) << 8; };
#endif
        const Floats z0 = plane(near, z, 0);
        const Floats z1 = plane(far, farZ, lanes / 2);
        // Twice the gradients give twice the noise.
        const Floats result = 0.5f * mix(z0, z1, c.u[2], restZ);
        store(results, result);
        return doubtful(result, c.f);
    }

    static float one(const float* point) { return one3(point); }
};

struct Noise4 {
    static constexpr int axes = 4;
    using Stage = Corners<4>;

    VHL_INLINE void place(Stage& c, const float* points) const { placeInCells(c, points); }

    /// The codes of the gradients at w = 0 and 1, for x, y and z 000 to 111.
    VHL_INLINE void hash(Stage& c, int i) const
    {
        const std::uint32_t x = pairs[c.cell[0][i]] + c.cell[1][i];
        const std::uint32_t Z = c.cell[2][i], W = c.cell[3][i];
        const auto half = [&](std::uint32_t hash, int at) {
            const std::uint32_t y = pairs[hash] + Z;
            const std::uint32_t z0 = pairs[lower(y)] + W;
            const std::uint32_t z1 = pairs[upper(y)] + W;
            c.codes[at][i] = tables.codes4[lower(z0)];
            c.codes[at + 1][i] = tables.codes4[upper(z0)];
            c.codes[at + 2][i] = tables.codes4[lower(z1)];
            c.codes[at + 3][i] = tables.codes4[upper(z1)];
        };
        half(lower(x), 0);
        half(upper(x), 4);
    }

    template <class Next>
    VHL_INLINE unsigned finish(const Stage& c, float* results, Next next) const
    {
        const Floats x = c.f[0], y = c.f[1], z = c.f[2], w = c.f[3];
        const Floats farX = x - 1.0f, farY = y - 1.0f, farZ = z - 1.0f, farW = w - 1.0f;
        const Floats restX = 1.0f - c.u[0], restY = 1.0f - c.u[1], restZ = 1.0f - c.u[2],
                     restW = 1.0f - c.u[3];
        const auto half = [&](int side, Floats cw) {
            const auto corner = [&](int at, Floats cx, Floats cy, Floats cz) {
                const Words code = load<Words>(c.codes[at]);
                const Words xy = (side ? code << 16 : code) & 0xff000000u;
                const Words zw = side ? code << 24 : code << 8 & 0xff000000u;
                return Floats(lookUp(firstOfTwo, xy)) * cx + Floats(lookUp(secondOfTwo, xy)) * cy +
                       Floats(lookUp(firstOfTwo, zw)) * cz + Floats(lookUp(secondOfTwo, zw)) * cw;
            };
            const auto plane = [&](int at, Floats cz) {
                // The corner at x = 0, y = 1, z = 0, w = 0 deliberately takes the offset to x = 1, y = 0.
                const bool straight = at != 0 || side != 0;
                const Floats y0 = mix(corner(at, x, y, cz), corner(at + 4, farX, y, cz), c.u[0], restX);
                const Floats y1 = mix(corner(at + 2, straight ? x : farX, straight ? farY : y, cz),
                                      corner(at + 6, farX, farY, cz), c.u[0], restX);
                next((2 * side + at) * lanes / 4, (2 * side + at + 1) * lanes / 4);
                return mix(y0, y1, c.u[1], restY);
            };
            const Floats z0 = plane(0, z);
            return mix(z0, plane(1, farZ), c.u[2], restZ);
        };
        const Floats w0 = half(0, w);
        const Floats result = 0.5f * mix(w0, half(1, farW), c.u[3], restW);
        store(results, result);
        return doubtful(result, c.f);
    }

    static float one(const float* point) { return one4(point); }

private:
    // Twice the components that a code's digits of two bits stand for: 0, 1 and -1.
    static constexpr std::uint8_t firstOfTwo[16] = {0, 0x40, 0xc0, 0, 0, 0x40, 0xc0, 0, 0, 0x40, 0xc0, 0};
    static constexpr std::uint8_t secondOfTwo[16] = {0, 0, 0, 0, 0x40, 0x40, 0x40, 0, 0xc0, 0xc0, 0xc0, 0};
};

/// What depends on the cell: where the points and their cells are.
struct alignas(64) Cells {
    Floats p[3];
    Floats middle[3];
    std::uint32_t cell[3][lanes];
    std::uint32_t column[9][lanes]; ///< what cells() gives
    unsigned odd;

    VHL_INLINE void place(const float* points)
    {
        coordinates(points, p);
        Ints odd = {};
        for (int k = 0; k < 3; ++k) {
            const Floats below = floor(p[k]);
            odd |= ~(magnitude(p[k]) < noMiddle);
            middle[k] = below + 0.5f;
            store(cell[k], integer(below) & 255);
        }
        this->odd = mask(odd);
    }
};

struct CellNoise {
    static constexpr int axes = 3;
    using Stage = Cells;

    VHL_INLINE void place(Stage& c, const float* points) const { c.place(points); }

    VHL_INLINE void hash(Stage& c, int i) const
    {
        const auto& [X, Y, Z] = c.cell;
        c.column[0][i] = cells(hashed[X[i]] + Y[i], hashed[X[i] + 1] + Y[i], Z[i]);
    }

    template <class Next>
    VHL_INLINE unsigned finish(const Stage& c, float* results, Next next) const
    {
        next(0, lanes);
        store(results, 0.125f * number((load<Words>(c.column[0]) >> 8 & 255) - 8));
        return c.odd;
    }

    static float one(const float* point) { return oneCell(point); }
};

struct Cellular {
    static constexpr int axes = 3;
    using Stage = Cells;

    float jitter;
    float eighth; ///< of the jitter

    VHL_INLINE void place(Stage& c, const float* points) const { c.place(points); }

    VHL_INLINE void hash(Stage& c, int i) const
    {
        const auto& [X, Y, Z] = c.cell;
        columns(X[i], Y[i], Z[i], [&](int column, std::uint32_t three) { c.column[column][i] = three; });
    }

    template <class Next>
    VHL_INLINE unsigned finish(const Stage& c, float* results, Next next) const
    {
        Floats nearest = Floats{} + __builtin_inff();
        for (int column = 0; column < 9; ++column) {
            const Floats x = c.middle[0] + float(column / 3 - 1);
            const Floats y = c.middle[1] + float(column % 3 - 1);
            const Words three = load<Words>(c.column[column]);
            for (int k = -1; k <= 1; ++k) {
                const Words eightfold = (three >> (8 * (k + 1)) & 255) - 8;
                const Floats moved = number(eightfold) * eighth;
                const Floats dx = c.p[0] - (x + moved);
                const Floats dy = c.p[1] - (y + moved);
                const Floats dz = c.p[2] - (c.middle[2] + float(k) + moved);
                // What is not a number is not nearer.
                nearest = smaller(dx * dx + dy * dy + dz * dz, nearest);
            }
            next(column * lanes / 9, (column + 1) * lanes / 9);
        }
        // The root of the least is the least root.
        store(results, smaller(root(nearest), Floats{} + 1000.0f));
        return c.odd;
    }

    float one(const float* point) const { return oneCellular(point, jitter); }
};

/// Points come in as vectors, and go through three steps: while the numbers of one vector are computed, the
/// hashes of the next are looked up, which other parts of the processor do.
template <class Kernel>
VHL_INLINE void run(const Kernel& kernel, const float* points, float* results, std::size_t count)
{
    constexpr int stride = Kernel::axes * lanes;
    if (count < lanes) { // quicker one by one
        for (std::size_t i = 0; i < count; ++i)
            results[i] = kernel.one(points + Kernel::axes * i);
        return;
    }
    const std::size_t full = count / lanes;
    const std::size_t rest = count % lanes;
    float last[stride] = {};
    std::memcpy(last, points + stride * full, Kernel::axes * rest * sizeof(float));
    const auto from = [&](std::size_t k) { return k < full ? points + stride * k : last; };

    typename Kernel::Stage stages[3];
    kernel.place(stages[0], from(0));
    kernel.place(stages[1], from(1));
    for (int i = 0; i < lanes; ++i)
        kernel.hash(stages[0], i);
    auto *now = &stages[0], *next = &stages[1], *afterNext = &stages[2];
    for (std::size_t k = 0; k < full + (rest != 0); ++k) {
        kernel.place(*afterNext, from(k + 2));
        float computed[lanes];
        unsigned odd =
            kernel.finish(*now, k < full ? results + lanes * k : computed, [&](int first, int end) {
                for (int i = first; i < end; ++i)
                    kernel.hash(*next, i);
            });
        if (k == full) {
            std::memcpy(results + lanes * k, computed, rest * sizeof(float));
            odd &= (1u << rest) - 1;
        }
        for (; odd != 0; odd &= odd - 1) {
            const std::size_t i = lanes * k + std::size_t(__builtin_ctz(odd));
            results[i] = kernel.one(points + Kernel::axes * i);
        }
        auto* const done = now;
        now = next;
        next = afterNext;
        afterNext = done;
    }
}

[[gnu::flatten]] void inoise3(const float* points, float* results, std::size_t count)
{
    run(Noise3{}, points, results, count);
}
[[gnu::flatten]] void inoise4(const float* points, float* results, std::size_t count)
{
    run(Noise4{}, points, results, count);
}

[[gnu::flatten]] void cellnoise(const float* points, float* results, std::size_t count)
{
    run(CellNoise{}, points, results, count);
}

[[gnu::flatten]] void cellular(const float* points, float jitter, float* results, std::size_t count)
{
    run(Cellular{jitter, 0.125f * jitter}, points, results, count);
}

} // namespace

} // namespace VHLNoise
