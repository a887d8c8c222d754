// SPDX-License-Identifier: BSD-3-Clause
// Polygons, with holes or without, as triangles.
#pragma once

#include "host/scene/element.h"

#include <array>
#include <cstdint>
#include <vector>

namespace host {

/// Indices of three vertices of an object, in the order of the polygon they were cut from.
using Triangle = std::array<std::uint32_t, 3>;

/// Appends the triangles of one polygon of the object. A convex polygon becomes a fan; any other is cut ear
/// by ear in its plane, after its holes have been joined to the outline. Together the triangles cover exactly
/// the polygon's area, holes left out; pieces without area are dropped. A polygon that is none (crossing
/// edges, a hole outside) still ends, in some set of its vertices' triangles.
void triangulate(const Object& object, const Polygon& polygon, std::vector<Triangle>& triangles);

} // namespace host
