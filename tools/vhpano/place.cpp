// SPDX-License-Identifier: BSD-3-Clause
#include "tools/vhpano/place.h"

#include <algorithm>
#include <cmath>
#include <limits>

namespace vhpano {

float Ends::texelsTo(const Place& place) const
{
    if (layout_ == Layout::latlong)
        return std::numeric_limits<float>::infinity();
    if (layout_ == Layout::cube) {
        const float within = place.v * 6 - static_cast<float>(place.part);
        return std::min(within, 1 - within) * static_cast<float>(image_.height) / 6;
    }
    return (1 - std::hypot(2 * place.u - 1, 2 * place.v - 1)) *
           static_cast<float>(std::min(image_.width, image_.height)) / 2;
}

Place Ends::inset(Place place, float distance) const
{
    if (layout_ == Layout::latlong || texelsTo(place) >= distance)
        return place;
    if (layout_ == Layout::cube) {
        const auto face = static_cast<float>(place.part);
        const float margin = std::min(distance * 6 / static_cast<float>(image_.height), 0.5f);
        place.v = (face + std::clamp(place.v * 6 - face, margin, 1 - margin)) / 6;
        return place;
    }
    const float x = 2 * place.u - 1, y = 2 * place.v - 1;
    const float margin =
        std::min(2 * distance / static_cast<float>(std::min(image_.width, image_.height)), 1.0f);
    const float radius = std::hypot(x, y);
    if (radius <= 1 - margin || radius == 0)
        return place; // in an image of a few texels the middle is as far away as can be
    const float scale = (1 - margin) / radius;
    place.u = (x * scale + 1) / 2;
    place.v = (y * scale + 1) / 2;
    return place;
}

} // namespace vhpano
