// SPDX-License-Identifier: BSD-3-Clause
#include "host/images/image_file.h"

#include "host/report/error.h"

#include <vector>

namespace host {

namespace {

/// Whether the last row or tile can be read. A reader may report success and leave no more than an error
/// text.
bool hasItsEnd(OIIO::ImageInput& input)
{
    const OIIO::ImageSpec& spec = input.spec();
    const bool tiled = spec.tile_width > 0;
    std::vector<float> pixels((tiled ? spec.tile_pixels() : std::size_t(spec.width)) *
                              std::size_t(spec.nchannels));
    const auto lastTile = [](int begin, int size, int tile) { return begin + (size - 1) / tile * tile; };
    const bool read =
        tiled ? input.read_tile(lastTile(spec.x, spec.width, spec.tile_width),
                                lastTile(spec.y, spec.height, spec.tile_height), spec.z,
                                OIIO::TypeDesc::FLOAT, pixels.data())
              : input.read_scanline(spec.y + spec.height - 1, spec.z, OIIO::TypeDesc::FLOAT, pixels.data());
    return read && !input.has_error();
}

} // namespace

OIIO::ImageSpec checkImageFile(const std::string& file)
{
    const auto unreadable = [&](const std::string& reason) {
        return Error("cannot read \"" + file + "\": " + reason);
    };
    const auto input = OIIO::ImageInput::open(file);
    if (!input)
        throw unreadable(OIIO::geterror());
    OIIO::ImageSpec spec = input->spec();
    if (spec.width <= 0 || spec.height <= 0 || spec.nchannels <= 0)
        throw unreadable("it is empty");
    if (!hasItsEnd(*input))
        throw unreadable(input->has_error() ? input->geterror() : "its end is missing");
    return spec;
}

} // namespace host
