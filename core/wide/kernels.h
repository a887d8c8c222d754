// SPDX-License-Identifier: BSD-3-Clause
// The loops behind the batch forms, compiled once for each kind of processor. They take plain arrays: four
// floats a colour, three a vector. What comes in may be what goes out; other overlaps are not allowed.
#pragma once

#include <cstddef>

namespace VHL::wide {

/// What a power takes from tables, for one exponent. A positive normal number is 4^k * n with n from 1 to 4;
/// its power is that of 4^k, times that of the middle of n's part, times a short binomial series for the
/// rest. There are 128 parts from 1 to 2 and as many from 2 to 4, so that a float's upper bytes are the
/// indices.
struct PowerTable {
    /// By sign and all but the last digit of the exponent: the power of 4^k. NaN where that is no such number
    /// or not for sure: for what is negative, infinite, none, zero, below 2^-125 or from 2^127 on.
    double scale[256];
    /// By the exponent's last digit and the first seven of the mantissa.
    struct {
        double inverse; ///< of about the middle of the mantissa's part
        double power;   ///< of the middle, less by the greatest error of all that
    } part[256];
    double exponent;
    double second, third; ///< binomial coefficients
    double spread;        ///< at most so many times what comes out is the power
    float ofZero;         ///< the power of +0
};

struct Kernels {
    /// A rule for each channel by itself. `settings`: the rule's constants, each for four channels.
    using Channels = void (*)(const float* in, float* out, std::size_t colors, const float (*settings)[4],
                              bool keepAlpha);
    Channels clamp, threshold, invert, solarize, inverseSolarize, add, subtract, multiply, divide, expand,
        compress;

    /// Multiplies or divides by alpha.
    using Matte = void (*)(const float* in, float* out, std::size_t colors, bool checkAlpha);
    Matte multiplyByAlpha, divideByAlpha;

    /// Each channel becomes the bits of in[0] & masks[0] | in[1] & masks[1] | ... | masks[4].
    void (*arrange)(const float* in, float* out, std::size_t colors, const unsigned (*masks)[4]);

    /// The power with each channel's table, rounded once.
    void (*power)(const float* in, float* out, std::size_t colors, const PowerTable* const* tables,
                  bool keepAlpha);

    /// Places or directions. What a loop had better leave to the single form, it hands to it.
    using Single = void (*)(const float* in, float* out);
    using Mapping = void (*)(const float* in, float* out, std::size_t count, Single single);
    struct Mappings {
        Mapping spherical, fisheye, cubic, ball, angular;
    };
    Mappings toTextureCoordinates, toDirection;
};

extern const Kernels plain, avx2, avx512;

} // namespace VHL::wide
