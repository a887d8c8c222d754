// SPDX-License-Identifier: BSD-3-Clause
#include "host/images/image_file.h"

#include "host/report/error.h"

#include <array>
#include <cstdint>
#include <filesystem>
#include <fstream>
#include <string_view>
#include <vector>

namespace host {

namespace {

/// So many pixels, or numbers, may a file ask for without having them.
constexpr OIIO::imagesize_t most = 1u << 28;

/// What is read at once: a tile or a row.
OIIO::imagesize_t numbersAtOnce(const OIIO::ImageSpec& spec)
{
    return (spec.tile_width > 0 ? spec.tile_pixels() : OIIO::imagesize_t(spec.width)) *
           OIIO::imagesize_t(spec.nchannels);
}

/// The display window is filled when a pyramid is made, and costs a file nothing.
bool displayWindowIsFarTooLarge(const OIIO::ImageSpec& spec)
{
    const double pixels = double(spec.full_width) * double(spec.full_height);
    return pixels > double(most) && pixels > 16.0 * double(spec.image_pixels());
}

/// Deflate packs a thousandfold, and bits eight times more: a file with fewer bytes lies, or is of one
/// colour. For 4096 by 4096 pixels of that it may take the time.
bool claimsFarTooMuch(const OIIO::ImageSpec& spec, std::uintmax_t fileSize)
{
    const double numbers = double(spec.image_pixels()) * spec.nchannels;
    return numbers > double(1u << 26) && numbers > 16384.0 * double(fileSize);
}

/// Whether the last row or tile can be read. A reader may report success and leave no more than an error
/// text.
bool hasItsEnd(OIIO::ImageInput& input)
{
    const OIIO::ImageSpec& spec = input.spec();
    const bool tiled = spec.tile_width > 0;
    std::vector<float> pixels(numbersAtOnce(spec));
    const auto lastTile = [](int begin, int size, int tile) { return begin + (size - 1) / tile * tile; };
    const bool read =
        tiled ? input.read_tile(lastTile(spec.x, spec.width, spec.tile_width),
                                lastTile(spec.y, spec.height, spec.tile_height), spec.z,
                                OIIO::TypeDesc::FLOAT, pixels.data())
              : input.read_scanline(spec.y + spec.height - 1, spec.z, OIIO::TypeDesc::FLOAT, pixels.data());
    return read && !input.has_error();
}

/// Whether a PNG file has lost its end, which its reader tells on the error stream by itself. Its pieces have
/// their length in front; the last is IEND.
bool isCutOffPng(const std::string& file)
{
    constexpr std::string_view signature = "\x89PNG\r\n\x1a\n";
    std::ifstream bytes(file, std::ios::binary);
    std::array<char, 8> head;
    if (!bytes.read(head.data(), head.size()) || std::string_view(head.data(), head.size()) != signature)
        return false;
    while (bytes.read(head.data(), head.size())) {
        if (std::string_view(head.data() + 4, 4) == "IEND")
            return false;
        std::int64_t length = 4; // of the checksum behind
        for (std::size_t i = 0; i < 4; ++i)
            length += std::int64_t(static_cast<unsigned char>(head[i])) << (24 - 8 * i);
        bytes.seekg(length, std::ios::cur);
    }
    return true;
}

/// Whether an attribute of an OpenEXR file's header claims more bytes than follow it. Its reader takes as
/// much memory as is claimed before it looks. A header is a list of attributes, each a name, a type, a length
/// and a value, and ends with an empty name; in a file of many parts so does the list of headers.
bool isCutOffExr(const std::string& file, std::uintmax_t size)
{
    std::ifstream bytes(file, std::ios::binary);
    const auto word = [&bytes] {
        std::array<unsigned char, 4> b{};
        bytes.read(reinterpret_cast<char*>(b.data()), b.size());
        return std::uint32_t(b[0]) | std::uint32_t(b[1]) << 8 | std::uint32_t(b[2]) << 16 |
               std::uint32_t(b[3]) << 24;
    };
    constexpr std::uint32_t magic = 20000630, isMultiPart = 1u << 12;
    if (word() != magic)
        return false;
    const int endsDue = word() & isMultiPart ? 2 : 1;
    std::array<char, 256> text;
    for (int ends = 0; ends < endsDue;) {
        bytes.getline(text.data(), text.size(), '\0');
        if (!bytes)
            return true;
        if (text[0] == '\0') {
            ++ends;
            continue;
        }
        ends = 0;
        bytes.getline(text.data(), text.size(), '\0');
        const std::uint32_t length = word();
        if (!bytes || length > size - std::uintmax_t(bytes.tellg()))
            return true;
        bytes.seekg(length, std::ios::cur);
    }
    return false;
}

} // namespace

OIIO::ImageSpec checkImageFile(const std::string& file)
{
    const auto unreadable = [&](const std::string& reason) {
        return Error("cannot read \"" + file + "\": " + reason.substr(0, reason.find('\n')));
    };
    std::error_code ignored; // the size is the largest number then, and nothing is more
    const std::uintmax_t size = std::filesystem::file_size(file, ignored);
    if (isCutOffPng(file) || isCutOffExr(file, size))
        throw unreadable("its end is missing");
    const auto input = OIIO::ImageInput::open(file);
    if (!input)
        throw unreadable(OIIO::geterror());
    OIIO::ImageSpec spec = input->spec();
    if (spec.width <= 0 || spec.height <= 0 || spec.nchannels <= 0)
        throw unreadable("it is empty");
    if (displayWindowIsFarTooLarge(spec))
        throw unreadable("its display window, " + std::to_string(spec.full_width) + " by " +
                         std::to_string(spec.full_height) + ", is far larger than the picture");
    if (claimsFarTooMuch(spec, size))
        throw unreadable("it claims to have " + std::to_string(spec.width) + " by " +
                         std::to_string(spec.height) + " pixels, and has " + std::to_string(size) + " bytes");
    if (numbersAtOnce(spec) > most)
        throw unreadable("its tiles or rows are too large");
    if (!hasItsEnd(*input))
        throw unreadable(input->has_error() ? input->geterror() : "its end is missing");
    return spec;
}

} // namespace host
