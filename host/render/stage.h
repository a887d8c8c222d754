// SPDX-License-Identifier: BSD-3-Clause
// All that the threads of one rendering share.
#pragma once

#include "host/render/camera.h"
#include "host/render/lights.h"
#include "host/render/textures.h"
#include "host/render/world.h"
#include "host/session.h"

namespace host {

class Network;

/// Built before the first ray and then read-only, but for textures that are loaded at first use.
class Stage {
public:
    /// Camera and options are this rendering's own copies; they must outlive the stage. Throws Error for
    /// everything in the scene that cannot be rendered.
    Stage(Session& session, const RenderCommand& command, const Camera& camera, const Options& options);

    Database& database;
    const Options& options;
    const Camera& camera;
    Leaves leaves;
    Instance& cameraLeaf;
    CameraRays rays;
    Surfaces surfaces;
    World world;
    Lights lights;
    FunctionList lenses;
    FunctionList environment;
    FunctionList volume; ///< the camera's: of the space that no material encloses
    Textures textures;
    bool compositesOpacity; ///< eye rays go on behind surfaces that set an opacity below 1

    /// Puts the lens, environment and volume shaders of all phenomena that the scene uses behind the camera's
    /// own.
    void addPhenomena();

    /// A warning when volume shaders would see the segments of shadow rays, which there are none of.
    void warnOfSegments() const;

    /// Every shader that rays may call.
    std::vector<Function*> roots() const;

    /// Loads the textures that the network's shaders name. Throws Error for one that cannot be read.
    void loadTextures(const Network& network);
};

} // namespace host
