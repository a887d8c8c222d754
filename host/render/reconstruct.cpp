// SPDX-License-Identifier: BSD-3-Clause
#include "host/render/reconstruct.h"

#include <algorithm>
#include <cmath>
#include <numbers>

namespace host {

namespace {

/// A narrower filter would leave pixels without samples; wider ones cost more than they can show.
constexpr float narrowest = 1.0f;
constexpr float widest = 32.0f;

float ownWidth(Filter filter)
{
    switch (filter) {
    case Filter::box:
        return 1.0f;
    case Filter::triangle:
        return 2.0f;
    case Filter::gauss:
        return 3.0f;
    default:
        return 4.0f;
    }
}

float halfWidth(float given, Filter filter)
{
    return 0.5f * (given > 0.0f ? std::clamp(given, narrowest, widest) : ownWidth(filter));
}

float sinc(float x)
{
    const float t = std::numbers::pi_v<float> * x;
    return std::abs(t) < 1e-4f ? 1.0f : std::sin(t) / t;
}

/// The filter along one axis; x runs from -1 to 1 over its width.
float profile(Filter filter, float x)
{
    x = std::abs(x);
    if (x > 1.0f)
        return 0.0f;
    switch (filter) {
    case Filter::box:
        return 1.0f;
    case Filter::triangle:
        return 1.0f - x;
    case Filter::gauss:
        // Three standard deviations on each side, lowered so that it ends at 0.
        return std::max(0.0f, std::exp(-4.5f * x * x) - std::exp(-4.5f));
    case Filter::mitchell:
    case Filter::clippedMitchell: {
        // Mitchell and Netravali 1988 with B = C = 1/3, which spans two units on each side.
        const float t = 2.0f * x;
        return t < 1.0f ? (7.0f * t * t * t - 12.0f * t * t + 16.0f / 3.0f) / 6.0f
                        : (-7.0f / 3.0f * t * t * t + 12.0f * t * t - 20.0f * t + 32.0f / 3.0f) / 6.0f;
    }
    case Filter::lanczos:
    case Filter::clippedLanczos:
        return sinc(2.0f * x) * sinc(x);
    }
    return 0.0f;
}

/// A sample at half a pixel from its own centre reaches this many further centres.
int margin(float half) { return std::max(0, int(std::ceil(half - 0.5f))); }

} // namespace

Reconstruction::Reconstruction(const miOptions& options)
    : filter_(static_cast<Filter>(options.filter)), halfX_(halfWidth(options.filter_size_x, filter_)),
      halfY_(halfWidth(options.filter_size_y > 0.0f ? options.filter_size_y : options.filter_size_x, filter_))
{
}

float Reconstruction::weight(float dx, float dy) const
{
    return profile(filter_, dx / halfX_) * profile(filter_, dy / halfY_);
}

int Reconstruction::marginX() const { return margin(halfX_); }
int Reconstruction::marginY() const { return margin(halfY_); }

} // namespace host
