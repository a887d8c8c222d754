// SPDX-License-Identifier: BSD-3-Clause
// Floats for tests: all bit patterns, and comparisons that see the sign of zero.
#pragma once

#include <array>
#include <bit>
#include <cmath>
#include <cstdint>
#include <limits>
#include <ostream>
#include <random>

inline constexpr float NaN = std::numeric_limits<float>::quiet_NaN();
inline constexpr float infinity = std::numeric_limits<float>::infinity();

/// A float that equals another with the same bits, or any NaN when it is one: which NaN an operation on two
/// gives is the processor's choice.
struct Exactly {
    float value;

    bool operator==(const Exactly& other) const
    {
        if (std::isnan(value) || std::isnan(other.value))
            return std::isnan(value) && std::isnan(other.value);
        return std::bit_cast<std::uint32_t>(value) == std::bit_cast<std::uint32_t>(other.value);
    }
    friend std::ostream& operator<<(std::ostream& stream, const Exactly& x)
    {
        return stream << x.value << " (" << std::hex << std::bit_cast<std::uint32_t>(x.value) << std::dec
                      << ')';
    }
};

/// The floats at which rules differ from their neighbours.
inline constexpr std::array oddFloats{0.0f,   -0.0f,   1.0f,   -1.0f,    0.5f,     -0.5f,
                                      1.5f,   100.0f,  150.0f, -20.0f,   3e38f,    -3e38f,
                                      1e-45f, -1e-45f, NaN,    infinity, -infinity};

/// A repeatable stream of floats: any bit pattern, with the odd ones often enough to meet each other.
class AnyFloat {
public:
    explicit AnyFloat(unsigned seed) : engine_(seed) {}

    float operator()()
    {
        const std::uint32_t bits = engine_();
        return engine_() % 4 == 0 ? oddFloats[bits % oddFloats.size()] : std::bit_cast<float>(bits);
    }

private:
    std::mt19937 engine_;
};

inline constexpr int rounds = 200'000;
