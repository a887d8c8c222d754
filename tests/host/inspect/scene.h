// SPDX-License-Identifier: BSD-3-Clause
// Small scenes for looking into.
#pragma once

#include "host/render/inspection.h"

#include <string>

namespace test {

/// Reads and renders a scene with the inspection: `shaders`, in which "surface" is the shader of a square
/// that fills a picture of 4 by 4 pixels, and what a test adds. The camera looks down the z axis; there is no
/// picture file. False when the inspection has ended the rendering before sampling.
bool look(host::Inspection& inspection, const std::string& shaders, int threads = 1,
          const std::string& elements = {}, const std::string& members = {});

/// The first line of `shaders` in the scene's text, for places in messages.
inline constexpr int firstLine = 11;

} // namespace test
