// SPDX-License-Identifier: BSD-3-Clause
// Powers of colours for vectors of VHL_BITS bits. In the end each is what the C library gives in double
// precision, rounded to a float: what a table and a short series cannot tell for sure is left to it.
#pragma once

#include "kernels.h"
#include "vectors.h"

namespace VHL::wide {
namespace {

/// The power of each channel, in double precision and rounded once. Alpha that is kept needs no table.
template <bool keepAlpha>
class Power {
    using Four [[gnu::vector_size(16)]] = float;
    using FourBits [[gnu::vector_size(16)]] = int;
    using FourDoubles [[gnu::vector_size(32)]] = double;
    // What is finished at once.
    static constexpr int colorsAtOnce = VHL_BITS == 128 ? 1 : 2;
    using Several [[gnu::vector_size(16 * colorsAtOnce)]] = float;
    using SeveralBits [[gnu::vector_size(16 * colorsAtOnce)]] = int;

public:
    [[gnu::always_inline]] explicit Power(const PowerTable* const* channels)
    {
        for (int i = 0; i < 4; ++i) {
            const PowerTable& table = *channels[i];
            tables[i] = &table;
            exponent[i] = table.exponent;
            second[i] = table.second;
            third[i] = table.third;
            spread[i] = table.spread;
            for (int lane = i; lane < 4 * colorsAtOnce; lane += 4) {
                ofZero[lane] = table.ofZero;
                kept[lane] = keepAlpha && i == 3 ? -1 : 0;
            }
        }
    }

    [[gnu::always_inline]] void operator()(const float* in, float* out, std::size_t colors) const
    {
        // A loop for the tables and another for the series: in one, too few of the long chains of operations
        // fit into the processor's window at a time.
        constexpr std::size_t most = 64;
        Near near[most];
        while (colors >= colorsAtOnce) {
            const std::size_t count = colors < most ? colors - colors % colorsAtOnce : most;
            for (std::size_t i = 0; i < 4 * most; i += 16) { // the next round's lines
                __builtin_prefetch(in + 4 * most + i);
                __builtin_prefetch(out + 4 * most + i, 1);
            }
#pragma GCC unroll 2
            for (std::size_t i = 0; i < count; ++i)
                near[i] = look(in + 4 * i);
            for (std::size_t i = 0; i < count; i += colorsAtOnce)
                finish(in + 4 * i, near + i, out + 4 * i);
            in += 4 * count;
            out += 4 * count;
            colors -= count;
        }
        if (colors != 0) {
            float last[4 * colorsAtOnce] = {};
            __builtin_memcpy(last, in, 4 * sizeof(float));
            for (int i = 0; i < colorsAtOnce; ++i)
                near[i] = look(last + 4 * i);
            finish(last, near, last);
            __builtin_memcpy(out, last, 4 * sizeof(float));
        }
    }

private:
    /// The powers of numbers near a colour's channels, and by how much those are more, relative to the
    /// numbers.
    struct Near {
        FourDoubles power, rest;
    };

    [[gnu::always_inline]] Near look(const float* in) const
    {
        // Alpha that is kept has green's part, but a scale of 0: it comes out 0, and sure.
        const FourDoubles redAndBlue = part(in, 0, 2), greenAndAlpha = part(in, 1, keepAlpha ? 1 : 3);
        const FourDoubles inverse = __builtin_shufflevector(redAndBlue, greenAndAlpha, 0, 4, 2, 6),
                          power = __builtin_shufflevector(redAndBlue, greenAndAlpha, 1, 5, 3, 7),
                          scale = {scaleOf(in, 0), scaleOf(in, 1), scaleOf(in, 2),
                                   keepAlpha ? 0 : scaleOf(in, 3)};
        const FourDoubles mantissa = widen(Four((load<FourBits>(in) & 0x7fffff) | 0x3f800000));
        return {scale * power, plus(mantissa, inverse, constant(-1))};
    }

    [[gnu::always_inline]] static unsigned byte(const float* in, int channel, int number)
    {
        return reinterpret_cast<const unsigned char*>(in + channel)[number];
    }

    [[gnu::always_inline]] double scaleOf(const float* in, int channel) const
    {
        return tables[channel]->scale[byte(in, channel, 3)];
    }

    /// What two channels' tables say of their parts: inverse and power, and again.
    [[gnu::always_inline]] FourDoubles part(const float* in, int one, int other) const
    {
        using Two [[gnu::vector_size(16)]] = double;
        const auto entry = [&](int channel) __attribute__((always_inline))
        {
            return &tables[channel]->part[byte(in, channel, 2)];
        };
#if VHL_BITS > 128
        if (one == other) // the load does it, which the compiler does not see
            return FourDoubles(_mm256_broadcast_pd(reinterpret_cast<const __m128d*>(entry(one))));
#endif
        return __builtin_shufflevector(load<Two>(entry(one)), load<Two>(entry(other)), 0, 1, 2, 3);
    }

    [[gnu::always_inline]] static FourDoubles widen(Four v)
    {
#if VHL_BITS > 128
        return FourDoubles(_mm256_cvtps_pd(v));
#else
        return __builtin_convertvector(v, FourDoubles);
#endif
    }

    [[gnu::always_inline]] static FourDoubles constant(double all) { return FourDoubles{} + all; }

    /// a * b + c, however it is rounded: that is within the error.
    [[gnu::always_inline]] static FourDoubles plus(FourDoubles a, FourDoubles b, FourDoubles c)
    {
#if VHL_BITS > 128
        return FourDoubles(_mm256_fmadd_pd(a, b, c));
#else
        return a * b + c;
#endif
    }

    /// Less than the power by no more than the spread.
    [[gnu::always_inline]] FourDoubles powerOf(const Near& near) const
    {
        const FourDoubles r = near.rest;
        return plus(near.power * r, plus(plus(third, r, second), r, exponent), near.power);
    }

    [[gnu::always_inline]] void finish(const float* in, const Near* near, float* out) const
    {
        // What rounds to the same float from both ends of the error is the float nearest to the exact power.
        const Several v = load<Several>(in);
#if VHL_BITS == 128
        const FourDoubles power = powerOf(*near);
        const Several low = __builtin_convertvector(power, Four),
                      high = __builtin_convertvector(power * spread, Four);
#else
        const FourDoubles power = powerOf(near[0]), next = powerOf(near[1]);
        const Several low = rounded(power, next), high = rounded(power * spread, next * spread);
#endif
        const SeveralBits zero = SeveralBits(v) == 0, sure = (low == high) | zero;
        const Several results = kept ? v : zero ? ofZero : high;
        if (!all(Several(sure))) [[unlikely]] {
            const Unsure unsure = {v, results, sure, exponent};
            unsure.decide(out);
        } else {
            store(out, results);
        }
    }

#if VHL_BITS == 128
    [[gnu::always_inline]] static bool all(Several lanes) { return _mm_movemask_ps(lanes) == 0xf; }
#else
    [[gnu::always_inline]] static bool all(Several lanes) { return _mm256_movemask_ps(lanes) == 0xff; }

    [[gnu::always_inline]] static Several rounded(FourDoubles one, FourDoubles next)
    {
        return Several(
            _mm256_insertf128_ps(_mm256_castps128_ps256(_mm256_cvtpd_ps(one)), _mm256_cvtpd_ps(next), 1));
    }
#endif

    /// Colours of which some channels are to have their powers taken one by one.
    struct Unsure {
        Several v, results;
        SeveralBits sure;
        FourDoubles exponent;

        [[gnu::noinline, gnu::cold]] void decide(float* out) const
        {
            for (int i = 0; i < 4 * colorsAtOnce; ++i)
                out[i] = sure[i] ? results[i] : float(__builtin_pow(double(v[i]), exponent[i % 4]));
        }
    };

    const PowerTable* tables[4];
    FourDoubles exponent, second, third, spread;
    Several ofZero;
    SeveralBits kept;
};

void power(const float* in, float* out, std::size_t colors, const PowerTable* const* tables, bool keepAlpha)
{
    if (keepAlpha)
        Power<true>{tables}(in, out, colors);
    else
        Power<false>{tables}(in, out, colors);
}

} // namespace
} // namespace VHL::wide
