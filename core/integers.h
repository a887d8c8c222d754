// SPDX-License-Identifier: BSD-3-Clause
// Integer channels and the floats that they stand for.
#pragma once

namespace VHL {

template <class Integer>
constexpr float most = Integer(-1);

template <class Integer>
float toFloat(Integer value)
{
    return float(value) / most<Integer>;
}

/// Held in its range and rounded; halves go down, and a NaN is 0. The rest beyond a half is looked at before
/// anything is added, as adding could round. Without branches, so that loops of it become vectors.
template <class Integer>
Integer toInteger(float value)
{
    float x = value * most<Integer>;
    x = x >= 0 ? x : 0;
    x = x > most<Integer> ? most<Integer> : x;
    const int whole = int(x);
    return Integer(whole + (x - float(whole) > 0.5f));
}

} // namespace VHL
