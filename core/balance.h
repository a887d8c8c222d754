// SPDX-License-Identifier: BSD-3-Clause
// What a dBalance adds to a channel, or multiplies it by.
#pragma once

#include "transforms.h"

#include <cmath>

namespace VHL::balance {

/// A unit in normalised 10-bit code values.
constexpr float codeValues(int unit)
{
    return unit == 1 ? 1 / 1023.0f : unit == 2 ? 11.25f / 1023 : unit == 3 ? 67.5f / 1023 : 0.0f;
}

/// A unit in powers of two. Deliberately these rounded numbers and not 1 / 67.5 and 1 / 6.
constexpr float stops(int unit)
{
    return unit == 1 ? 0.014814844f : unit == 2 ? 0.16667f : unit == 3 ? 1.0f : 0.0f;
}

inline float summand(const dBalance& balance, int channel)
{
    return balance.offset[channel] * codeValues(balance.unit);
}

inline float factor(const dBalance& balance, int channel)
{
    return float(std::exp2(double(balance.offset[channel] * stops(balance.unit))));
}

} // namespace VHL::balance
