// SPDX-License-Identifier: BSD-3-Clause
// How much of a texture one pixel sees.
#pragma once

#include "host/render/thread.h"

namespace host {

/// A pixel's area on the surface that the thread's innermost ray has met, in coordinates of the first texture
/// space: an ellipse of two axes. Null where there is no surface with texture vectors, and for rays that
/// nobody looks along (light and shadow). The pixel grows with the whole path from the camera, as through a
/// camera without lens shaders; curved mirrors do not widen it.
Footprint footprintOf(RenderThread& thread, const miState& state);

} // namespace host
