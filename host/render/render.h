// SPDX-License-Identifier: BSD-3-Clause
// Rendering: from a render command to finished picture files.
#pragma once

#include "host/session.h"

#include <functional>
#include <string>
#include <vector>

namespace host {

class Inspection;

/// What the command line adds to a scene's render command.
struct RenderSettings {
    int threads = 0; ///< 0: as many as the machine has
    bool write = true;

    /// Applied to private copies of the scene's options and camera before rendering: command-line overrides.
    std::function<void(Options&)> adjustOptions;
    std::function<void(Camera&)> adjustCamera;

    /// Called now and then from one thread at a time with the finished fraction, 0 to 1.
    std::function<void(double)> progress;

    /// Asked in this order when the scene is ready. At most one of them watches calls.
    std::vector<Inspection*> inspections;
};

/// Renders and writes the camera's outputs, unless an inspection ends it before sampling: then false. Throws
/// Error, with the element's place where there is one, before any picture is touched; pictures are written to
/// a temporary file beside the target and renamed. Shader exits have run and leaf instances are gone when it
/// returns or throws.
bool render(Session& session, const RenderCommand& command, const RenderSettings& settings);

} // namespace host
