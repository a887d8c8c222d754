// SPDX-License-Identifier: BSD-3-Clause
// Any bytes at all as an image file: they are looked up in as a texture, or refused with an Error, and
// nothing else happens.
#include "host/render/textures.h"
#include "host/report/message.h"

#include <cstddef>
#include <cstdint>
#include <filesystem>
#include <fstream>
#include <string>
#include <string_view>

#include <unistd.h>

namespace {

/// The format that the first bytes promise, as files are known by their extensions first.
std::string extension(std::string_view bytes)
{
    if (bytes.starts_with("\x76\x2f\x31\x01"))
        return ".exr";
    if (bytes.starts_with("\x89PNG"))
        return ".png";
    if (bytes.starts_with("II*") || bytes.starts_with("MM"))
        return ".tif";
    if (bytes.starts_with("#?"))
        return ".hdr";
    if (bytes.starts_with("\xff\xd8"))
        return ".jpg";
    return ".tga";
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* bytes, std::size_t size)
{
    host::setVerbosity(0);
    const std::string_view text(reinterpret_cast<const char*>(bytes), size);
    host::Texture texture;
    texture.file =
        std::filesystem::temp_directory_path() / ("image" + std::to_string(::getpid()) + extension(text));
    texture.filter = size % 2 != 0;
    std::ofstream(texture.file, std::ios::binary) << text;
    try {
        host::TextureFiles files;
        const auto image = files.open(texture, {});
        miColor color;
        for (const float at : {0.0f, 0.4f, 0.99f})
            image->lookup(at, at, color, {0.3f, 0.0f, 0.0f, 0.2f});
    } catch (const host::Error&) {
        // Refused, as is right for most bytes.
    }
    std::filesystem::remove(texture.file);
    return 0;
}
