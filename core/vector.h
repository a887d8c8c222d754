// SPDX-License-Identifier: BSD-3-Clause
// Three single-precision components.
#pragma once

#include "scalar.h"

#include <shader.h>

namespace VHL {

/// x, y and z, laid out as the renderer's vector. All operators work component by component.
class dVector {
public:
    constexpr dVector(float value) noexcept : v_{value, value, value} {}
    constexpr dVector(float x, float y, float z) noexcept : v_{x, y, z} {}
    constexpr dVector(miVector v) noexcept : v_{v.x, v.y, v.z} {}
    constexpr dVector(const dVector&) noexcept = default;
    constexpr dVector& operator=(const dVector&) noexcept = default;
    constexpr dVector& operator=(miVector v) noexcept { return *this = dVector(v); }

    constexpr operator miVector() const noexcept { return {v_[0], v_[1], v_[2]}; }

    constexpr float& x() noexcept { return v_[0]; }
    constexpr float& y() noexcept { return v_[1]; }
    constexpr float& z() noexcept { return v_[2]; }
    constexpr const float& x() const noexcept { return v_[0]; }
    constexpr const float& y() const noexcept { return v_[1]; }
    constexpr const float& z() const noexcept { return v_[2]; }

    /// Component 0, 1 or 2; any other index is undefined.
    constexpr float& operator[](int index) noexcept { return v_[index]; }
    constexpr const float& operator[](int index) const noexcept { return v_[index]; }

    constexpr dVector operator+(const dVector& b) const noexcept
    {
        return {v_[0] + b.v_[0], v_[1] + b.v_[1], v_[2] + b.v_[2]};
    }
    constexpr dVector operator-(const dVector& b) const noexcept
    {
        return {v_[0] - b.v_[0], v_[1] - b.v_[1], v_[2] - b.v_[2]};
    }
    constexpr dVector operator*(const dVector& b) const noexcept
    {
        return {v_[0] * b.v_[0], v_[1] * b.v_[1], v_[2] * b.v_[2]};
    }
    /// A component whose divisor is 0 comes out 0.
    constexpr dVector operator/(const dVector& b) const noexcept
    {
        return {dScalar(v_[0]) / b.v_[0], dScalar(v_[1]) / b.v_[1], dScalar(v_[2]) / b.v_[2]};
    }
    constexpr dVector& operator-=(const dVector& b) noexcept { return *this = *this - b; }

    /// Every component by dScalar::clamp.
    static constexpr dVector clamp(const dVector& value, const dVector& low, const dVector& high) noexcept
    {
        return {dScalar::clamp(value.v_[0], low.v_[0], high.v_[0]),
                dScalar::clamp(value.v_[1], low.v_[1], high.v_[1]),
                dScalar::clamp(value.v_[2], low.v_[2], high.v_[2])};
    }

private:
    float v_[3];
};

/// Every component times the scalar.
constexpr dVector operator*(const dVector& v, const dScalar& s) noexcept { return v * dVector(float(s)); }
/// A plain number could become a scalar or a vector; both mean the same.
constexpr dVector operator*(const dVector& v, Number auto s) noexcept { return v * dVector(float(s)); }

static_assert(sizeof(dVector) == sizeof(miVector) && std::is_trivially_copyable_v<dVector>);

} // namespace VHL
