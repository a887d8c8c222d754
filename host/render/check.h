// SPDX-License-Identifier: BSD-3-Clause
// Numbers that cannot be rendered with, wherever they came from.
#pragma once

#include "host/scene/element.h"

namespace host {

/// Highest sampling level: 4 to its power samples per pixel.
inline constexpr int mostSamplesLevel = 8;

/// Throw Error, with the element's place, for a number that is not finite or out of its range. What a
/// picture's size and window must be is pictureWindow's business.
void check(const Camera& camera);
void check(const Options& options);

} // namespace host
