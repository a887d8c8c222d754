// SPDX-License-Identifier: BSD-3-Clause
// A single-precision number whose division by zero gives 0.
#pragma once

#if defined(__FAST_MATH__) || (defined(__FINITE_MATH_ONLY__) && __FINITE_MATH_ONLY__)
#error "What NaNs, infinities and ties give is contract: compile without fast or finite-only math."
#endif

#include <algorithm>
#include <type_traits>

namespace VHL {

/// A plain number beside a value type. dScalar converts from and to float, so without an overload for numbers
/// `scalar * 2.0f` could mean either type's operator and would not compile.
template <class T>
concept Number = std::is_arithmetic_v<T>;

/// One float. Arithmetic is IEEE single precision but for division by zero, which gives 0. A plain number on
/// the left makes it the built-in operation: 1.0f / dScalar(0) is an infinity.
class dScalar {
public:
    constexpr dScalar(float value) noexcept : value_(value) {}
    constexpr dScalar(const dScalar&) noexcept = default;
    constexpr dScalar& operator=(const dScalar&) noexcept = default;
    constexpr dScalar& operator=(const float& value) noexcept
    {
        value_ = value;
        return *this;
    }

    constexpr operator float() const noexcept { return value_; }

    constexpr dScalar operator+(const dScalar& b) const noexcept { return value_ + b.value_; }
    constexpr dScalar operator-(const dScalar& b) const noexcept { return value_ - b.value_; }
    constexpr dScalar operator*(const dScalar& b) const noexcept { return value_ * b.value_; }
    /// 0 for a divisor of 0 or -0; a NaN divisor divides.
    constexpr dScalar operator/(const dScalar& b) const noexcept
    {
        return b.value_ != 0.0f ? value_ / b.value_ : 0.0f;
    }

    constexpr dScalar& operator+=(const dScalar& b) noexcept { return *this = *this + b; }
    constexpr dScalar& operator*=(const dScalar& b) noexcept { return *this = *this * b; }

    constexpr bool operator<(const dScalar& b) const noexcept { return value_ < b.value_; }
    constexpr bool operator<=(const dScalar& b) const noexcept { return value_ <= b.value_; }
    constexpr bool operator>=(const dScalar& b) const noexcept { return value_ >= b.value_; }

    // The same with a plain number on the right, which is rounded to float first, a double too.
    constexpr dScalar operator+(Number auto b) const noexcept { return *this + dScalar(float(b)); }
    constexpr dScalar operator-(Number auto b) const noexcept { return *this - dScalar(float(b)); }
    constexpr dScalar operator*(Number auto b) const noexcept { return *this * dScalar(float(b)); }
    constexpr dScalar operator/(Number auto b) const noexcept { return *this / dScalar(float(b)); }
    constexpr bool operator<(Number auto b) const noexcept { return *this < dScalar(float(b)); }
    constexpr bool operator<=(Number auto b) const noexcept { return *this <= dScalar(float(b)); }
    constexpr bool operator>=(Number auto b) const noexcept { return *this >= dScalar(float(b)); }

    /// The value held between the bounds. The low bound wins over a high one below it; a NaN becomes high.
    static constexpr dScalar clamp(const dScalar& value, const dScalar& low, const dScalar& high) noexcept
    {
        return std::max(low.value_, std::min(high.value_, value.value_));
    }

private:
    float value_;
};

static_assert(sizeof(dScalar) == sizeof(float) && std::is_trivially_copyable_v<dScalar>);

} // namespace VHL
