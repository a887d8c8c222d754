// SPDX-License-Identifier: BSD-3-Clause
// What each colour transform does, written once: for one channel as a float, and for vectors of channels in
// the batch forms. The constants are the settings of the same channels. A comparison of vectors is a mask of
// lanes, so that choices are written with ?: and |, and both sides are computed.
//
// In an unnamed namespace and always inlined: the batch forms are compiled for several processors, and what
// is compiled for one must never be linked into what runs on another. No header that defines functions may be
// included here.
#pragma once

namespace VHL {
namespace {
namespace rules {

struct Clamp {
    static constexpr int constants = 2;
    template <class V>
    [[gnu::always_inline]] static V apply(V v, const V* k)
    {
        const V low = k[0], high = k[1];
        return ((low > high) | (low > v)) ? low : v > high ? high : v;
    }
};

struct Threshold {
    static constexpr int constants = 1;
    template <class V>
    [[gnu::always_inline]] static V apply(V v, const V* k)
    {
        return k[0] > v ? V{} : v;
    }
};

struct Invert {
    static constexpr int constants = 1;
    template <class V>
    [[gnu::always_inline]] static V apply(V v, const V* k)
    {
        return k[0] - v;
    }
};

/// low, mid, high, and two flags, set where they are not 0.
struct Solarize {
    static constexpr int constants = 5;
    template <class V>
    [[gnu::always_inline]] static V apply(V v, const V* k)
    {
        const V low = k[0], mid = k[1], high = k[2], keepBelow = k[3], keepAbove = k[4];
        const V below = keepBelow != V{} ? v : V{};
        const V above = keepAbove != V{} ? v : V{};
        return low > v    ? below
               : mid > v  ? (v - low) / (mid - low)
               : high > v ? (high - v) / (high - mid)
                          : above;
    }
};

struct InverseSolarize {
    static constexpr int constants = 3;
    template <class V>
    [[gnu::always_inline]] static V apply(V v, const V* k)
    {
        const V low = k[0], mid = k[1], high = k[2];
        return mid > v ? low + (mid - low) * v : high - v * (high - mid);
    }
};

struct Add {
    static constexpr int constants = 1;
    template <class V>
    [[gnu::always_inline]] static V apply(V v, const V* k)
    {
        return v + k[0];
    }
};

struct Subtract {
    static constexpr int constants = 1;
    template <class V>
    [[gnu::always_inline]] static V apply(V v, const V* k)
    {
        return v - k[0];
    }
};

struct Multiply {
    static constexpr int constants = 1;
    template <class V>
    [[gnu::always_inline]] static V apply(V v, const V* k)
    {
        return v * k[0];
    }
};

struct Divide {
    static constexpr int constants = 1;
    template <class V>
    [[gnu::always_inline]] static V apply(V v, const V* k)
    {
        return v / k[0];
    }
};

/// (v - low) / (high - low)
struct Expand {
    static constexpr int constants = 2;
    template <class V>
    [[gnu::always_inline]] static V apply(V v, const V* k)
    {
        return (v - k[0]) / (k[1] - k[0]);
    }
};

/// low + v * (high - low)
struct Compress {
    static constexpr int constants = 2;
    template <class V>
    [[gnu::always_inline]] static V apply(V v, const V* k)
    {
        return k[0] + v * (k[1] - k[0]);
    }
};

} // namespace rules
} // namespace
} // namespace VHL
