// SPDX-License-Identifier: BSD-3-Clause
// The mappings' loops for vectors of VHL_BITS bits, in double precision.
//
// Vectors have shorter ways to a result than the single form. Where the two could part, on seams and rims, at
// an axis and where there is no number, the single form decides.
#pragma once

#include "kernels.h"
#include "vectors.h"

namespace VHL::wide {
namespace {

struct Vectors {
    Doubles x, y, z;
};

/// Vectors, and the lanes of them that are as good as the single form's. A comparison with NaN is no.
struct Mapped {
    Vectors vectors;
    Longs sure;
};

[[gnu::always_inline]] inline Vectors loadVectors(const float* in)
{
    Vectors v;
    for (int i = 0; i < doubles; ++i) {
        v.x[i] = in[3 * i];
        v.y[i] = in[3 * i + 1];
        v.z[i] = in[3 * i + 2];
    }
    return v;
}

[[gnu::always_inline]] inline void storeVectors(float* out, const Vectors& v)
{
    for (int i = 0; i < doubles; ++i) {
        out[3 * i] = float(v.x[i]);
        out[3 * i + 1] = float(v.y[i]);
        out[3 * i + 2] = float(v.z[i]);
    }
}

[[gnu::always_inline]] inline bool all(Longs lanes)
{
    long long every = lanes[0];
    for (int i = 1; i < doubles; ++i)
        every &= lanes[i];
    return every != 0;
}

template <class Rule>
void map(const float* in, float* out, std::size_t count, Kernels::Single single)
{
    std::size_t i = 0;
    for (; i + doubles <= count; i += doubles, in += 3 * doubles, out += 3 * doubles) {
        float before[3 * doubles];
        __builtin_memcpy(before, in, sizeof before);
        const Mapped mapped = Rule::apply(loadVectors(before));
        storeVectors(out, mapped.vectors);
        if (!all(mapped.sure)) [[unlikely]]
            for (int lane = 0; lane < doubles; ++lane)
                if (!mapped.sure[lane])
                    single(before + 3 * lane, out + 3 * lane);
    }
    for (; i < count; ++i, in += 3, out += 3)
        single(in, out);
}

/// Above this sine or cosine the single form takes angles from both legs.
constexpr double flat = 0.9f;
/// How near to a seam or rim the single form decides.
constexpr double margin = 1e-5;

/// A rule for directions, which it takes to be of length 1; the single form decides on others.
template <class Rule>
struct OfUnit {
    [[gnu::always_inline]] static Mapped apply(const Vectors& d)
    {
        Mapped mapped = Rule::apply(d);
        mapped.sure &= absolute(d.x * d.x + d.y * d.y + d.z * d.z - 1) < margin;
        return mapped;
    }
};

[[gnu::always_inline]] inline Vectors toUnit(Doubles a, Doubles b)
{
    return {0.5 * a + 0.5, 0.5 * b + 0.5, Doubles{} + 0.5};
}

/// From 0 to 1 to -1 to 1, rounded to floats as in the single form.
[[gnu::always_inline]] inline Doubles fromUnit(Doubles t)
{
    using Rounded [[gnu::vector_size(VHL_BITS / 16)]] = float;
    return __builtin_convertvector(__builtin_convertvector(2 * t - 1, Rounded), Doubles);
}

/// The other leg of a right-angled triangle, given one from 0 to 1 and a longest side of 1.
[[gnu::always_inline]] inline Doubles squaredLeg(Doubles leg) { return (1 - leg) * (1 + leg); }

struct SphericalCoordinates {
    [[gnu::always_inline]] static Mapped apply(const Vectors& d)
    {
        const Doubles squared = d.x * d.x + d.z * d.z;
        const Doubles across = squareRoot(absolute(d.y) > flat ? squared : squaredLeg(d.y));
        const Doubles longitude = angleByPi(d.x, -d.z), latitude = angleByPi(d.y, across);
        return {toUnit(longitude, 2 * latitude),
                (squared > 0) & (longitude == longitude) & (latitude == latitude)};
    }
};

struct SphericalDirection {
    [[gnu::always_inline]] static Mapped apply(const Vectors& t)
    {
        const Doubles a = fromUnit(t.x), b = fromUnit(t.y);
        const SineCosine longitude = sineCosineOfPi(a), latitude = sineCosineOfPi(0.5 * b);
        return {{longitude.sine * latitude.cosine, latitude.sine, -latitude.cosine * longitude.cosine},
                (absolute(a) < 4) & (absolute(b) < 4)};
    }
};

/// A place in a circular image, in the direction of (x, y).
[[gnu::always_inline]] inline Mapped toCircle(Doubles x, Doubles y, Doubles r)
{
    const Doubles squared = x * x + y * y, scale = r / squareRoot(squared);
    return {toUnit(scale * x, scale * y), (squared > 0) & (squared < __builtin_inf()) & (r < 1 - margin)};
}

/// By pi, the angle to the axis on which the cosine is 1.
[[gnu::always_inline]] inline Doubles angleToAxisByPi(Doubles cosine, Doubles x, Doubles y)
{
    const Doubles sine = squareRoot(absolute(cosine) > flat ? x * x + y * y : squaredLeg(cosine));
    return angleByPi(sine, cosine);
}

struct FisheyeCoordinates {
    [[gnu::always_inline]] static Mapped apply(const Vectors& d)
    {
        const Mapped ahead = toCircle(d.x, d.y, 2 * angleToAxisByPi(-d.z, d.x, d.y));
        const Longs behind = d.z > 0;
        const Vectors& t = ahead.vectors;
        return {{behind ? Doubles{} : t.x, behind ? Doubles{} : t.y, behind ? Doubles{} : t.z},
                ahead.sure | behind};
    }
};

struct AngularCoordinates {
    [[gnu::always_inline]] static Mapped apply(const Vectors& d)
    {
        return toCircle(d.x, d.y, angleToAxisByPi(-d.z, d.x, d.y));
    }
};

struct BallCoordinates {
    /// The sine of half the angle to +z, by its square, (1 - cos) / 2. Where the cosine is near 1, 1 - cos is
    /// sin^2 / (1 + cos).
    [[gnu::always_inline]] static Mapped apply(const Vectors& d)
    {
        const Doubles squared = d.x * d.x + d.y * d.y;
        const Longs legs = absolute(d.z) > flat;
        const Doubles length = legs ? squareRoot(squared + d.z * d.z) : Doubles{} + 1;
        const Doubles rest = (legs & (d.z > 0)) ? squared / (length + d.z) : length - d.z;
        return toCircle(d.x, d.y, squareRoot(0.5 * rest / length));
    }
};

/// A point of a circular image.
struct Point {
    Doubles a, b, squared;
    [[gnu::always_inline]] explicit Point(const Vectors& t)
        : a(fromUnit(t.x)), b(fromUnit(t.y)), squared(a * a + b * b)
    {
    }
    /// The direction, given the sine of its angle to the axis by the radius.
    [[gnu::always_inline]] Mapped direction(Doubles sineByRadius, Doubles z) const
    {
        const Longs outside = squared > 1 + margin;
        return {{outside ? Doubles{} : sineByRadius * a, outside ? Doubles{} : sineByRadius * b,
                 outside ? Doubles{} : z},
                outside | ((squared > 0) & (squared < 1 - margin))};
    }
};

/// With the angle, by pi, that the radius of 1 is.
template <int numerator, int denominator>
struct CircularDirection {
    [[gnu::always_inline]] static Mapped apply(const Vectors& t)
    {
        const Point point(t);
        const Doubles r = squareRoot(point.squared);
        const SineCosine angle = sineCosineOfPi(r * numerator / denominator);
        return point.direction(angle.sine / r, -angle.cosine);
    }
};

struct BallDirection {
    /// By the formulas for twice an angle.
    [[gnu::always_inline]] static Mapped apply(const Vectors& t)
    {
        const Point point(t);
        return point.direction(2 * squareRoot(1 - point.squared), 1 - 2 * point.squared);
    }
};

struct CubicCoordinates {
    /// The single form's steps without angles: tan(longitude) is the quotient of the legs, and the slope is
    /// the tangent of the latitude by the cosine of the longitude.
    [[gnu::always_inline]] static Mapped apply(const Vectors& d)
    {
        const Doubles x = absolute(d.x), y = absolute(d.y), z = absolute(d.z);
        const Doubles level = d.x * d.x + d.z * d.z;
        const Longs sideways = x > z;
        const Doubles depth = sideways ? x : z;
        const Longs vertical = d.y * d.y * level >= squaredLeg(d.y) * depth * depth;

        const Longs upwards = d.y > 0;
        const Doubles toTheSide = vertical ? -d.x : sideways ? withSignOf(d.z, d.x) : withSignOf(d.x, -d.z);
        const Doubles height = vertical ? (upwards ? -d.z : d.z) : d.y;
        const Doubles squared = vertical ? d.x * d.x + d.y * d.y : level;
        const Doubles distance = vertical ? y : depth;
        const Doubles a = toTheSide / distance,
                      b = height * squareRoot(squared / squaredLeg(height)) / distance;
        const Doubles face = vertical   ? (upwards ? Doubles{} + 3 : Doubles{} + 2)
                             : sideways ? (d.x > 0 ? Doubles{} + 4 : Doubles{} + 5)
                                        : (d.z > 0 ? Doubles{} + 1 : Doubles{});
        return {{0.5 * a + 0.5, (0.5 * b + 0.5 + face) * (1.0 / 6), Doubles{} + 0.5},
                (level > 0) & (absolute(a) < 1 - margin) & (absolute(b) < 1 - margin)};
    }
};

struct CubicDirection {
    [[gnu::always_inline]] static Mapped apply(const Vectors& t)
    {
        Longs face{};
        for (int k = 1; k <= 5; ++k)
            face -= Longs(t.y >= double(1 + 0.16666667f * float(k - 6)));
        // The single form's roundings to floats are those of two exact operations.
        using Rounded [[gnu::vector_size(VHL_BITS / 16)]] = float;
        const Doubles sixfold = __builtin_convertvector(__builtin_convertvector(6 * t.y, Rounded), Doubles);
        const Doubles whole = __builtin_convertvector(face, Doubles);
        const Doubles local =
            __builtin_convertvector(__builtin_convertvector(sixfold - whole, Rounded), Doubles);
        const Doubles a = fromUnit(t.x), b = fromUnit(local);
        const Doubles one = Doubles{} + 1;
        const Longs sideways = face >= 4, vertical = (face & 6) == 2;
        const Doubles x = sideways ? (face == 4 ? one : -one) : face == 0 ? a : -a;
        const Doubles y = vertical ? (face == 3 ? one : -one) : b;
        const Doubles z = sideways    ? (face == 4 ? a : -a)
                          : vertical  ? (face == 3 ? -b : b)
                          : face == 0 ? -one
                                      : one;
        const Doubles length = squareRoot(x * x + y * y + z * z);
        return {{x / length, y / length, z / length}, length < 1e30};
    }
};

} // namespace
} // namespace VHL::wide
