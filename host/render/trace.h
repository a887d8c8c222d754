// SPDX-License-Identifier: BSD-3-Clause
// Following rays: the functions behind mi_trace_*, and the primary ray of a sample.
#pragma once

#include "host/render/film.h"
#include "host/render/thread.h"

#include <algorithm>

namespace host {

/// What a sample has seen.
struct SampleResult {
    miColor color;
    PixelFacts facts;
};

/// Takes one sample: through the camera's lenses, or straight from the camera. `time` runs from 0 to 1 over
/// the shutter.
SampleResult sample(RenderThread& thread, float rasterX, float rasterY, float time);

/// For lens shaders: the next lens, or the eye ray. Stores origin and direction in the state, and what was
/// hit. A direction that is zero or not finite sees the environment.
miBoolean traceEye(miColor& result, miState& state, const miVector& origin, const miVector& direction);

/// Casts a ray from the state's point: `type` is reflect, refract or transparent. Beyond the trace depth, and
/// where nothing is hit, reflected and refracted rays see the environment.
miBoolean traceSecondary(miColor& result, miState& state, const miVector& direction, miRay_type type);

/// Asks the state's environment.
miBoolean traceEnvironment(miColor& result, miState& state, const miVector& direction);

/// Looks for the nearest hit without calling a shader, and fills the state's child with it. Levels do not
/// count and do not limit it. Sees what any reflected, refracted or transparent ray would.
miBoolean traceProbe(miState& state, const miVector& direction, const miVector& origin);

/// For light shaders: multiplies the colour by what lets light through between the state's org and point.
/// False when nothing is left.
miBoolean traceShadow(miColor& result, miState& state);

/// The next sample of a light in the caller's loop, see mi_sample_light; `direction` and `cosine` may be
/// null.
miBoolean sampleLight(miColor& result, miVector* direction, float* cosine, miState& state, miTag light,
                      int& samples);

/// The leaf lights that the tags stand for, or all others; the list lives as long as the innermost ray.
const std::vector<miTag>& lightList(miState& state, const miTag* tags, int count, bool exclusive);

/// The leaf lights of the light list of the state's instance, all of the scene when it has none; the list
/// lives as long as the rendering.
const std::vector<miTag>& instanceLights(const miState& state);

/// The opacity of the state's sample: the last one set counts. Without a sample, in networks that run before
/// rendering, it has no meaning and is left out.
void setOpacity(miState& state, const miColor& opacity);

/// The opacity that has been set last; none before.
std::optional<miColor> opacityOf(const miState& state);

/// Fills the state's hit fields for what arrives at the hit in this direction. With `flip`, normals are
/// turned against it.
void setHit(Frame& frame, const miVector& direction, const Hit& hit, bool flip);

/// Notes in the hit's state what refracted and transparent rays run through, when its material has a volume:
/// that, or, out of it, the camera's again.
void setVolumeBehind(const RenderThread& thread, Frame& frame, const Surface& surface);

/// The state's time, from 0 when the shutter opens to 1 when it closes; 0 without motion blur.
inline float shutterFraction(const miState& state)
{
    const miOptions& options = *state.options;
    const float open = options.shutter - options.shutter_delay;
    if (!options.motion || !(open > 0.0f))
        return 0.0f;
    return std::clamp((state.time - options.shutter_delay) / open, 0.0f, 1.0f);
}

/// How far rays that start at a surface keep off it: a few roundings of its coordinates.
double startDistance(const miVector& point);

} // namespace host
