// SPDX-License-Identifier: BSD-3-Clause
// How light falls off with distance, and across the edge of a spot's cone.
#pragma once

namespace host::base {

/// 1 up to `start`, 0 from `stop` on, linear between. With `stop` at or before `start` the edge at `stop` is
/// hard.
constexpr float attenuation(float distance, float start, float stop)
{
    if (distance >= stop)
        return 0.0f;
    if (distance <= start)
        return 1.0f;
    return (stop - distance) / (stop - start);
}

/// By cosines of the angle to the axis: 1 inside `cone`, 0 from `spread` on, linear in the cosine between.
/// With `cone` at or outside `spread` the edge at `spread` is hard.
constexpr float coneFalloff(float cosine, float cone, float spread)
{
    if (cosine <= spread)
        return 0.0f;
    if (cosine >= cone)
        return 1.0f;
    return (cosine - spread) / (cone - spread);
}

/// What a light lets through where the shadow transmits `shadow`: a shadow that is softened by `factor`.
constexpr float softened(float shadow, float factor) { return factor + (1.0f - factor) * shadow; }

} // namespace host::base
