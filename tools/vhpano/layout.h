// SPDX-License-Identifier: BSD-3-Clause
// Panoramic layouts as vhpano's users name them.
#pragma once

#include "core/mappings.h"

#include <optional>
#include <string>
#include <vector>

namespace vhpano {

/// In the order of the shaders' `mapping` numbers.
enum class Layout { latlong, angular, ball, cube, fisheye };

std::vector<std::string> layoutNames();

std::optional<Layout> layoutOf(const std::string& name);
const char* nameOf(Layout layout);

const VHL::dPanoramicConversion& mappingOf(Layout layout);

struct Size {
    int width;
    int height;
};

/// Pixels along a whole turn of the view in an image of this width, where the layout is neither stretched nor
/// squeezed: what images of two layouts have in common when they show as much.
double pixelsPerTurn(Layout layout, int width);

/// Nothing when an image of this size has the layout's shape, a pixel or 2 % aside; else that shape: "2:1".
std::optional<std::string> shapeInstead(Layout layout, const Size& size);

/// The size of an image with so many pixels per turn; at least 1 by 1.
Size sizeFor(Layout layout, double pixelsPerTurn);

} // namespace vhpano
