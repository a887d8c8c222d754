// SPDX-License-Identifier: BSD-3-Clause
// Inverting the renderer's matrices.
#pragma once

#include <shader.h>

namespace host {

/// The inverse, computed in double precision so that scaled-down scenes stay invertible. The two may be the
/// same. False, with the result left alone, for a matrix that is singular, has elements that are no finite
/// numbers, or an inverse beyond a float's range.
bool invert(const miMatrix matrix, miMatrix result);

} // namespace host
