// SPDX-License-Identifier: BSD-3-Clause
// Directions of mirrored and refracted rays.
#pragma once

#include "host/base/vector.h"

#include <optional>

namespace host::base {

/// `direction` mirrored at a surface with that unit normal, from either side.
constexpr miVector mirrored(const miVector& direction, const miVector& normal)
{
    return direction + normal * (-2.0f * dot(direction, normal));
}

/// The mirrored view at a smooth surface. Its normal may lean so far that the mirrored ray would run into the
/// surface itself; such a ray is turned up at the true plane.
constexpr miVector reflection(const miState& state)
{
    const miVector mirror = mirrored(state.dir, state.normal);
    const bool below = dot(mirror, state.normal_geom) * dot(state.dir, state.normal_geom) > 0.0f;
    return below ? mirrored(mirror, state.normal_geom) : mirror;
}

/// Snell's law: the unit `direction` after it has passed from index `from` to index `to` at a surface whose
/// unit normal faces it. Nothing for total reflection.
inline std::optional<miVector> refracted(const miVector& direction, const miVector& normal, float from,
                                         float to)
{
    const float ratio = from / to;
    const float cosine = -dot(direction, normal);
    const float squared = 1.0f - ratio * ratio * (1.0f - cosine * cosine);
    if (squared < 0.0f)
        return std::nullopt;
    return normalised(direction * ratio + normal * (ratio * cosine - std::sqrt(squared)));
}

} // namespace host::base
