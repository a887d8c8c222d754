// SPDX-License-Identifier: BSD-3-Clause
// Primary rays: from raster positions into the world.
#pragma once

#include "host/scene/element.h"

namespace host {

/// A primary ray in internal space and the part of it that lies between the clipping planes.
struct PrimaryRay {
    miVector origin;
    miVector direction; ///< unit length
    double near;
    double far;
};

/// The camera of one rendering, placed in the world. Safe from any thread.
class CameraRays {
public:
    /// `leaf` is the camera's leaf instance.
    CameraRays(const miCamera& camera, const Instance& leaf);

    /// The ray through a raster position: (0, 0) is the lower left corner of the picture's lower left pixel. `time` runs
    /// from 0 to 1 over the shutter; a camera that moves does so along straight lines.
    PrimaryRay at(double rasterX, double rasterY, float time) const;

    /// How wide a pixel is in internal space after so long a way, in the middle of the picture.
    double pixelWidth(double distance) const;

    /// How far a point is in front of the camera as the shutter opens, along its viewing axis.
    float depth(miVector point) const;

    /// A direction of internal space in camera space.
    miVector toCamera(miVector direction) const;

private:
    const miCamera& camera_;
    const miTransform& transform_;
    const miMatrix& drift_; ///< what its matrix to the world gains while the shutter is open
};

} // namespace host
