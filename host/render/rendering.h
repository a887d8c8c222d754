// SPDX-License-Identifier: BSD-3-Clause
// One rendering, from the scene to a finished picture in memory.
#pragma once

#include "host/render/picture.h"

#include <optional>

namespace host {

/// Runs geometry shaders, flattens the scene, prepares its shaders and textures and samples the picture.
/// Shader exits have run and leaf instances are gone when it returns or throws. Camera and options are the
/// rendering's own copies. None when an inspection has ended it before sampling. To be called in a thread
/// with a large stack where networks may be deep.
std::optional<Picture> renderPicture(Session& session, const RenderCommand& command, const Camera& camera,
                                     const Options& options, const PictureSettings& settings);

} // namespace host
