// SPDX-License-Identifier: BSD-3-Clause
// Converting a panoramic image from one layout to another.
#pragma once

#include "tools/vhpano/layout.h"

#include <functional>
#include <optional>
#include <string>

namespace vhpano {

enum class Filter {
    footprint, ///< what an output pixel covers of the input, averaged; bicubic where that is less than a
               ///< pixel
    nearest,
    bilinear,
    bicubic ///< Catmull and Rom's
};

/// Degrees by which the view turns to the right, then up, then tilts clockwise.
struct Rotation {
    double yaw = 0;
    double pitch = 0;
    double roll = 0;
};

struct Conversion {
    std::string input;
    std::string output; ///< its extension chooses the format
    Layout from{};
    Layout to{};
    std::optional<Size> size; ///< as much as the input shows when left out
    Filter filter = Filter::footprint;
    Rotation rotation;
    std::string type; ///< uint8, uint16, half or float; the input's when empty
    int threads = 0;  ///< 0: as many as the machine has
};

/// Reads, converts and writes. Where the output's layout shows no direction, or the input none for it, pixels
/// are 0 in all channels. `warn` is told of an input that has not its layout's shape. `progress` is called
/// with fractions from 0 to 1 by the calling thread.
///
/// Memory: at most 1 GiB of the input, the finished file, and a few dozen rows of the output for each thread.
/// The output is written when it is complete; its file is left as it was when anything fails. Throws
/// host::Error.
void convert(const Conversion& conversion, const std::function<void(const std::string&)>& warn,
             const std::function<void(double)>& progress);

} // namespace vhpano
