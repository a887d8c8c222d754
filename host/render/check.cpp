// SPDX-License-Identifier: BSD-3-Clause
#include "host/render/check.h"

#include <cmath>
#include <cstdio>

namespace host {

namespace {

std::string text(double value)
{
    char digits[32];
    std::snprintf(digits, sizeof digits, "%g", value);
    return digits;
}

/// Throws unless the condition, which is false for a NaN, holds.
void require(bool holds, const Element& element, const char* kind, const std::string& what)
{
    if (!holds)
        throw Error(element.where, kind + (' ' + inQuotes(element.name)) + ": " + what);
}

} // namespace

void check(const Camera& camera)
{
    const miCamera& c = camera.record;
    const auto positive = [&](float value, const char* name) {
        require(value > 0.0f && std::isfinite(value), camera, "camera",
                std::string(name) + " must be a number above 0, it is " + text(value));
    };
    positive(c.focal, "the focal distance");
    positive(c.aperture, "the aperture");
    positive(c.aspect, "the aspect");
    require(c.clip.min >= 0.0f && c.clip.min < c.clip.max, camera, "camera",
            "the clipping distances must rise from 0 or above, they are " + text(c.clip.min) + " and " +
                text(c.clip.max));
    require(std::isfinite(c.x_offset) && std::isfinite(c.y_offset), camera, "camera",
            "the offset must be two numbers, it is " + text(c.x_offset) + " and " + text(c.y_offset));
}

void check(const Options& options)
{
    const miOptions& o = options.record;
    require(o.max_samples <= mostSamplesLevel && o.min_samples <= o.max_samples, options, "options",
            "the sampling levels must rise to " + std::to_string(mostSamplesLevel) + " at most, they are " +
                std::to_string(o.min_samples) + " and " + std::to_string(o.max_samples));
    require(o.jitter >= 0.0f && o.jitter <= 1.0f, options, "options",
            "the jitter must be from 0 to 1, it is " + text(o.jitter));
    require(o.filter_size_x >= 0.0f && o.filter_size_y >= 0.0f && o.filter_size_x <= 64.0f &&
                o.filter_size_y <= 64.0f,
            options, "options",
            "the filter's size must be from 0 to 64 pixels, it is " + text(o.filter_size_x) + " and " +
                text(o.filter_size_y));
    require(o.gamma > 0.0f && std::isfinite(o.gamma), options, "options",
            "the gamma must be a number above 0, it is " + text(o.gamma));
    require(o.shutter >= 0.0f && o.shutter_delay >= 0.0f && std::isfinite(o.shutter) &&
                std::isfinite(o.shutter_delay),
            options, "options",
            "the shutter's times must be 0 or above, they are " + text(o.shutter_delay) + " and " +
                text(o.shutter));
    require(o.reflection_depth >= 0 && o.refraction_depth >= 0 && o.trace_depth >= 0, options, "options",
            "the trace depths must be 0 or above");
}

} // namespace host
