// SPDX-License-Identifier: BSD-3-Clause
// Where something lies in the input image.
#pragma once

#include "tools/vhpano/layout.h"

namespace vhpano {

/// A place in the input image, u from the left and v from the bottom; none where it shows nothing.
struct Place {
    float u = 0;
    float v = 0;
    bool exists = false;
    int part = 0; ///< which piece of the input, where it consists of several
};

/// How far it is to where another face, or nothing, begins above, below or around a place of an image.
class Ends {
public:
    Ends(Layout layout, Size image) : layout_(layout), image_(image) {}

    float texelsTo(const Place& place) const;

    /// The place, or the nearest one that is so many texels away from that end.
    Place inset(Place place, float distance) const;

private:
    Layout layout_;
    Size image_;
};

} // namespace vhpano
