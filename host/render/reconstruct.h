// SPDX-License-Identifier: BSD-3-Clause
// Reconstruction filters: how much a sample counts for a pixel.
#pragma once

#include "host/scene/element.h"

namespace host {

/// The options' filter. Widths are full widths in pixels; 0 stands for the filter's own: box 1, triangle 2,
/// gauss 3, mitchell and lanczos 4. Others are taken as 1 at least and 32 at most.
class Reconstruction {
public:
    explicit Reconstruction(const miOptions& options);

    /// The weight of a sample at this distance from the pixel's centre; negative in the lobes of mitchell and
    /// lanczos. Not normalised.
    float weight(float dx, float dy) const;

    /// How many pixels beyond its own a sample may count for.
    int marginX() const;
    int marginY() const;

    /// True when results below 0 are cut off, as the clipped forms promise.
    bool clips() const { return filter_ == Filter::clippedMitchell || filter_ == Filter::clippedLanczos; }

private:
    Filter filter_;
    float halfX_;
    float halfY_;
};

} // namespace host
