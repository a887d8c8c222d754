// SPDX-License-Identifier: BSD-3-Clause
// Sampling the whole picture.
#pragma once

#include "host/render/film.h"
#include "host/render/stage.h"

#include <functional>
#include <vector>

namespace host {

class Inspection;
class Network;

/// The pixels that the camera's window leaves. Throws Error for a picture or a window without pixels.
Rectangle pictureWindow(const Camera& camera);

struct PictureSettings {
    int threads = 0; ///< 0: as many as the machine has
    bool facts = false;
    std::function<void(double)> progress;   ///< see RenderSettings
    std::vector<Inspection*> inspections{}; ///< see RenderSettings
};

/// Samples the camera's window in square tiles, several at a time. The result depends neither on the number
/// of threads nor on the window that a pixel is seen through. The first Error of a shader ends all tiles and
/// is thrown.
///
/// With samples between two levels, all pixels get the lower level first; those that differ from a neighbour
/// by more than the contrast, in any channel, are then sampled again at the higher.
Picture takePicture(const Stage& stage, Network& network, const PictureSettings& settings);

} // namespace host
