// SPDX-License-Identifier: BSD-3-Clause
// The length of a vector, as all shaders that ask for one have it.
#pragma once

#include "core/vector.h"

#include <cmath>

namespace VHL {

/// The squares are summed in single precision, x first; only the root is taken in double.
inline double lengthInDouble(const dVector& v)
{
    const float sum = v.x() * v.x() + v.y() * v.y() + v.z() * v.z();
    return std::sqrt(static_cast<double>(sum));
}

inline float length(const dVector& v) { return static_cast<float>(lengthInDouble(v)); }

} // namespace VHL
