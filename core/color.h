// SPDX-License-Identifier: BSD-3-Clause
// Four single-precision channels.
#pragma once

#include "scalar.h"

#include <shader.h>

namespace VHL {

/// r, g, b and a, laid out as the renderer's colour. Alpha is a channel like the others: every operator,
/// fill, comparison and range function works on all four.
class dColor {
public:
    constexpr dColor(float value) noexcept : v_{value, value, value, value} {}
    constexpr dColor(float r, float g, float b, float a) noexcept : v_{r, g, b, a} {}
    constexpr dColor(miColor c) noexcept : v_{c.r, c.g, c.b, c.a} {}
    constexpr dColor(const dColor&) noexcept = default;
    constexpr dColor& operator=(const dColor&) noexcept = default;
    constexpr dColor& operator=(miColor c) noexcept { return *this = dColor(c); }
    constexpr dColor& operator=(const float& value) noexcept { return *this = dColor(value); }

    constexpr operator miColor() const noexcept { return {v_[0], v_[1], v_[2], v_[3]}; }

    constexpr float& r() noexcept { return v_[0]; }
    constexpr float& g() noexcept { return v_[1]; }
    constexpr float& b() noexcept { return v_[2]; }
    constexpr float& a() noexcept { return v_[3]; }
    constexpr const float& r() const noexcept { return v_[0]; }
    constexpr const float& g() const noexcept { return v_[1]; }
    constexpr const float& b() const noexcept { return v_[2]; }
    constexpr const float& a() const noexcept { return v_[3]; }

    // The same channels, read as coordinates.
    constexpr float& x() noexcept { return v_[0]; }
    constexpr float& y() noexcept { return v_[1]; }
    constexpr float& z() noexcept { return v_[2]; }
    constexpr float& w() noexcept { return v_[3]; }
    constexpr const float& x() const noexcept { return v_[0]; }
    constexpr const float& y() const noexcept { return v_[1]; }
    constexpr const float& z() const noexcept { return v_[2]; }
    constexpr const float& w() const noexcept { return v_[3]; }

    /// Channel 0 to 3; any other index is undefined.
    constexpr float& operator[](int index) noexcept { return v_[index]; }
    constexpr const float& operator[](int index) const noexcept { return v_[index]; }

    constexpr dColor operator+(const dColor& b) const noexcept
    {
        return {v_[0] + b.v_[0], v_[1] + b.v_[1], v_[2] + b.v_[2], v_[3] + b.v_[3]};
    }
    constexpr dColor operator*(const dColor& b) const noexcept
    {
        return {v_[0] * b.v_[0], v_[1] * b.v_[1], v_[2] * b.v_[2], v_[3] * b.v_[3]};
    }
    /// A channel whose divisor is 0 comes out 0.
    constexpr dColor operator/(const dColor& b) const noexcept
    {
        return {dScalar(v_[0]) / b.v_[0], dScalar(v_[1]) / b.v_[1], dScalar(v_[2]) / b.v_[2],
                dScalar(v_[3]) / b.v_[3]};
    }

    constexpr dColor& operator+=(const dColor& b) noexcept { return *this = *this + b; }
    constexpr dColor& operator-=(const dColor& b) noexcept { return *this = minus(*this, b); }
    constexpr dColor& operator*=(const dColor& b) noexcept { return *this = *this * b; }

    /// True when any channel differs; a NaN differs from everything, itself included.
    constexpr bool operator!=(const dColor& b) const noexcept
    {
        return v_[0] != b.v_[0] || v_[1] != b.v_[1] || v_[2] != b.v_[2] || v_[3] != b.v_[3];
    }

    /// Maps 0 to low and 1 to high: low + value * (high - low).
    static constexpr dColor compress(const dColor& value, const dColor& low, const dColor& high) noexcept
    {
        return low + value * minus(high, low);
    }

    /// Maps low to 0 and high to 1: (value - low) / (high - low). Deliberately without the division
    /// operator's guard: equal bounds give an infinity or NaN.
    static constexpr dColor expand(const dColor& value, const dColor& low, const dColor& high) noexcept
    {
        const dColor above = minus(value, low);
        const dColor range = minus(high, low);
        return {above.v_[0] / range.v_[0], above.v_[1] / range.v_[1], above.v_[2] / range.v_[2],
                above.v_[3] / range.v_[3]};
    }

private:
    static constexpr dColor minus(const dColor& a, const dColor& b) noexcept
    {
        return {a.v_[0] - b.v_[0], a.v_[1] - b.v_[1], a.v_[2] - b.v_[2], a.v_[3] - b.v_[3]};
    }

    float v_[4];
};

static_assert(sizeof(dColor) == sizeof(miColor) && std::is_trivially_copyable_v<dColor>);

} // namespace VHL
