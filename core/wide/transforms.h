// SPDX-License-Identifier: BSD-3-Clause
// The transforms' loops for vectors of VHL_BITS bits. Every lane does what the single form does, rounding for
// rounding.
#pragma once

#include "kernels.h"
#include "power.h"
#include "rules.h"
#include "vectors.h"

namespace VHL::wide {
namespace {

/// Lanes that are alpha.
[[gnu::always_inline]] inline Ints alphaLanes()
{
    Ints lanes{};
    for (int i = 3; i < floats; i += 4)
        lanes[i] = -1;
    return lanes;
}

/// One colour's floats in every colour of a vector.
template <class V = Floats>
[[gnu::always_inline]] inline V forEachColor(const void* color)
{
    char bytes[sizeof(V)];
    for (unsigned i = 0; i < sizeof bytes; i += 16)
        __builtin_memcpy(bytes + i, color, 16);
    return load<V>(bytes);
}

/// Runs an operation on vectors over whole colours, the last ones in a vector that they do not fill.
template <class Operation>
[[gnu::always_inline]] inline void forColors(const float* in, float* out, std::size_t colors,
                                             const Operation& operation)
{
    const std::size_t count = 4 * colors;
    std::size_t i = 0;
    for (; i + floats <= count; i += floats)
        store(out + i, operation(load<Floats>(in + i)));
    if (i == count)
        return;
    float rest[floats] = {};
    const std::size_t size = (count - i) * sizeof(float);
    __builtin_memcpy(rest, in + i, size);
    store(rest, operation(load<Floats>(rest)));
    __builtin_memcpy(out + i, rest, size);
}

template <class Rule>
void channels(const float* in, float* out, std::size_t colors, const float (*settings)[4], bool keepAlpha)
{
    Floats constants[Rule::constants];
    for (int i = 0; i < Rule::constants; ++i)
        constants[i] = forEachColor(settings[i]);
    const Ints kept = keepAlpha ? alphaLanes() : Ints{};
    forColors(
        in, out, colors, [&](Floats v) __attribute__((always_inline)) {
            const Floats result = Rule::apply(v, constants);
            return kept ? v : result;
        });
}

/// Each channel's place in its colour's.
template <int channel>
[[gnu::always_inline]] inline Floats spread(Floats v)
{
#if VHL_BITS == 128
    return __builtin_shufflevector(v, v, channel, channel, channel, channel);
#elif VHL_BITS == 256
    return __builtin_shufflevector(v, v, channel, channel, channel, channel, channel + 4, channel + 4,
                                   channel + 4, channel + 4);
#else
    return __builtin_shufflevector(v, v, channel, channel, channel, channel, channel + 4, channel + 4,
                                   channel + 4, channel + 4, channel + 8, channel + 8, channel + 8,
                                   channel + 8, channel + 12, channel + 12, channel + 12, channel + 12);
#endif
}

template <bool divides>
void byAlpha(const float* in, float* out, std::size_t colors, bool checkAlpha)
{
    const Ints alphas = alphaLanes(), checked = checkAlpha ? ~Ints{} : Ints{};
    forColors(
        in, out, colors, [&](Floats v) __attribute__((always_inline)) {
            const Floats alpha = spread<3>(v);
            const Ints kept = alphas | (checked & (alpha <= 0));
            const Floats result = divides ? (alpha != 0 ? v / alpha : Floats{}) : v * alpha;
            return kept ? v : result;
        });
}

void arrange(const float* in, float* out, std::size_t colors, const unsigned (*masks)[4])
{
    const Ints from0 = forEachColor<Ints>(masks[0]), from1 = forEachColor<Ints>(masks[1]),
               from2 = forEachColor<Ints>(masks[2]), from3 = forEachColor<Ints>(masks[3]),
               constant = forEachColor<Ints>(masks[4]);
    forColors(
        in, out, colors, [&](Floats v) __attribute__((always_inline)) {
            return Floats((Ints(spread<0>(v)) & from0) | (Ints(spread<1>(v)) & from1) |
                          (Ints(spread<2>(v)) & from2) | (Ints(spread<3>(v)) & from3) | constant);
        });
}

} // namespace
} // namespace VHL::wide
