// SPDX-License-Identifier: BSD-3-Clause
#include "host/render/rendering.h"

#include "host/render/geometry.h"
#include "host/render/inspection.h"
#include "host/shading/network.h"
#include "host/system/scheduler.h"
#include "host/system/workers.h"

namespace host {

std::optional<Picture> renderPicture(Session& session, const RenderCommand& command, const Camera& camera,
                                     const Options& options, const PictureSettings& settings)
{
    pictureWindow(camera);
    // The index for intersection is built by threads that later run shaders.
    const SchedulerLimits limits(threadCount(settings.threads));
    const GeometryRun geometry(session, command, camera, options);
    Stage stage(session, command, camera, options);
    stage.addPhenomena();
    stage.warnOfSegments();
    Network network(stage.roots(), session.libraries);
    stage.loadTextures(network);
    miState exitState{};
    exitState.version = MI_STATE_VERSION;
    exitState.camera = &camera.record;
    exitState.camera_inst = stage.cameraLeaf.tag;
    exitState.options = &options.record;
    network.setExitState(exitState);
    bool goesOn = true;
    for (Inspection* const inspection : settings.inspections)
        goesOn = inspection->ready(stage, network) && goesOn;
    if (!goesOn)
        return std::nullopt;
    return takePicture(stage, network, settings);
}

} // namespace host
