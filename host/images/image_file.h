// SPDX-License-Identifier: BSD-3-Clause
// Image files that others have made.
#pragma once

#include <OpenImageIO/imageio.h>

#include <string>

namespace host {

/// What an image file says of itself, after a look at its end: files are cut off more often than broken
/// otherwise, and some readers give black for what is missing. Throws Error, `cannot read "<file>":
/// <reason>`, when it is no image, has no pixels or no end, or would take time and memory that its pixels,
/// or its bytes, do not explain.
OIIO::ImageSpec checkImageFile(const std::string& file);

} // namespace host
