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
    CameraRays(const miCamera& camera, const miInstance& leaf);

    /// The ray through a raster position: (0, 0) is the lower left corner of the picture's lower left pixel.
    PrimaryRay at(double rasterX, double rasterY) const;

    /// How wide a pixel is in internal space after so long a way, in the middle of the picture.
    double pixelWidth(double distance) const;

    /// How far a point is in front of the camera, along its viewing axis.
    float depth(miVector point) const;

    /// A direction of internal space in camera space.
    miVector toCamera(miVector direction) const;

private:
    const miCamera& camera_;
    const miTransform& transform_;
};

} // namespace host
