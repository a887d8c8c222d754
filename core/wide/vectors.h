// SPDX-License-Identifier: BSD-3-Clause
// Vectors of VHL_BITS bits, and functions of vectors of doubles that are good to about 1e-10.
//
// What is included here is compiled for one kind of processor, and must not be linked into what runs on
// another: everything is in an unnamed namespace, and no header that defines functions comes along but the
// compiler's own.
#pragma once

#include <immintrin.h>

namespace VHL::wide {
namespace {

constexpr int floats = VHL_BITS / 32;  ///< in a vector
constexpr int doubles = VHL_BITS / 64; ///< in a vector

using Floats [[gnu::vector_size(VHL_BITS / 8)]] = float;
using Ints [[gnu::vector_size(VHL_BITS / 8)]] = int;
using Doubles [[gnu::vector_size(VHL_BITS / 8)]] = double;
using Longs [[gnu::vector_size(VHL_BITS / 8)]] = long long;

template <class V>
[[gnu::always_inline]] inline V load(const void* from)
{
    V v;
    __builtin_memcpy(&v, from, sizeof v);
    return v;
}

template <class V>
[[gnu::always_inline]] inline void store(void* to, V v)
{
    __builtin_memcpy(to, &v, sizeof v);
}

[[gnu::always_inline]] inline Doubles squareRoot(Doubles x)
{
#if VHL_BITS == 128
    return Doubles(_mm_sqrt_pd(x));
#elif VHL_BITS == 256
    return Doubles(_mm256_sqrt_pd(x));
#else
    return Doubles(_mm512_maskz_sqrt_pd(0xff, x)); // without a mask GCC 12 warns about its own header
#endif
}

constexpr long long signBit = static_cast<long long>(1ull << 63);

[[gnu::always_inline]] inline Doubles absolute(Doubles x) { return Doubles(Longs(x) & ~signBit); }
/// The first, with its sign changed where the second is negative, -0 too.
[[gnu::always_inline]] inline Doubles withSignOf(Doubles x, Doubles sign)
{
    return Doubles(Longs(x) ^ (Longs(sign) & signBit));
}

/// A polynomial, with the coefficient of the highest power last.
template <int count>
[[gnu::always_inline]] inline Doubles polynomial(Doubles x, const double (&c)[count])
{
    Doubles sum = x * 0.0 + c[count - 1];
    for (int i = count - 2; i >= 0; --i)
        sum = sum * x + c[i];
    return sum;
}

struct SineCosine {
    Doubles sine, cosine;
};

/// Of pi times the number, which must be less than 2^50.
///
/// The rest to the nearest half has polynomials through the values at Chebyshev's nodes of sin(pi sqrt(s)) /
/// sqrt(s) and cos(pi sqrt(s)) for s up to 1/16; relative errors 1.4e-11 and 4.8e-11.
[[gnu::always_inline]] inline SineCosine sineCosineOfPi(Doubles x)
{
    constexpr double toInteger = 0x1.8p52; // adding it leaves the nearest integer in the lowest bits
    const Doubles shifted = 2 * x + toInteger;
    const Longs halves = Longs(shifted);
    const Doubles rest = x - 0.5 * (shifted - toInteger), s = rest * rest;
    const Doubles sine = rest * polynomial(s, {3.1415926535761998, -5.1677127691743628, 2.5501626472201798,
                                               -0.59920208086095942, 0.081001627420916392});
    const Doubles cosine = polynomial(s, {0.99999999995248942, -4.9348021625326489, 4.0587072584818156,
                                          -1.3350444480169009, 0.23132878499334413});
    const Longs odd = -(halves & 1);
    const Longs sineSign = (halves & 2) << 62, cosineSign = ((halves + 1) & 2) << 62;
    return {Doubles(Longs(odd ? cosine : sine) ^ sineSign), Doubles(Longs(odd ? sine : cosine) ^ cosineSign)};
}

/// The angle of a point that is not (0, 0), divided by pi: from -1 to 1.
///
/// Turned back by an eighth of the circle if that is nearer to the axis; then a polynomial through the values
/// at Chebyshev's nodes of atan(sqrt(s)) / sqrt(s) for s up to tan(pi/8)^2, relative error 2.2e-11.
[[gnu::always_inline]] inline Doubles angleByPi(Doubles y, Doubles x)
{
    const Doubles across = absolute(y), along = absolute(x);
    const Longs steep = across > along;
    const Doubles shorter = steep ? along : across, longer = steep ? across : along;
    const Longs turned = shorter > longer * 0.41421356237309503;
    const Doubles t = (turned ? shorter - longer : shorter) / (turned ? shorter + longer : longer);
    constexpr double byPi = 0.31830988618379067;
    Doubles angle = t * polynomial(t * t, {0.99999999997839878 * byPi, -0.33333332097609386 * byPi,
                                           0.19999883856551303 * byPi, -0.14281588772654124 * byPi,
                                           0.1104048922721824 * byPi, -0.084561928869404954 * byPi,
                                           0.047073481419680189 * byPi});
    angle = turned ? 0.25 + angle : angle;
    angle = steep ? 0.5 - angle : angle;
    angle = Longs(x) < 0 ? 1 - angle : angle;
    return withSignOf(angle, y);
}

} // namespace
} // namespace VHL::wide
