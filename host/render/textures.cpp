// SPDX-License-Identifier: BSD-3-Clause
#include "host/render/textures.h"

#include "host/report/message.h"

#include <OpenImageIO/imageio.h>

#include <algorithm>
#include <bit>
#include <cmath>
#include <cstring>

namespace host {

namespace {

/// One to four components as a colour: grey, grey and alpha, rgb, rgba.
miColor toColor(const float* value, int components)
{
    switch (components) {
    case 1:
        return {value[0], value[0], value[0], 1.0f};
    case 2:
        return {value[0], value[0], value[0], value[1]};
    case 3:
        return {value[0], value[1], value[2], 1.0f};
    default:
        return {value[0], value[1], value[2], value[3]};
    }
}

std::string called(const Texture& texture) { return "texture \"" + texture.name + "\": "; }

TextureImage readFile(const Texture& texture, const SearchPaths& paths)
{
    const std::string beside = texture.where.file ? *texture.where.file : std::string();
    const std::string file = findFile(texture.file, beside, paths.texture);
    if (file.empty())
        throw Error(texture.where, called(texture) + "no file \"" + texture.file + "\"");
    const auto unreadable = [&](const std::string& reason) {
        return Error(texture.where, called(texture) + "cannot read \"" + file + "\": " + reason);
    };
    // The values as they are in the file: shaders decide what alpha does to colour.
    OIIO::ImageSpec wanted;
    wanted.attribute("oiio:UnassociatedAlpha", 1);
    const auto input = OIIO::ImageInput::open(file, &wanted);
    if (!input)
        throw unreadable(OIIO::geterror());
    const OIIO::ImageSpec& spec = input->spec();
    const int components = std::min(spec.nchannels, 4);
    if (spec.width <= 0 || spec.height <= 0 || components <= 0)
        throw unreadable("it is empty");
    TextureImage image{spec.width, spec.height, {}};
    std::vector<float> values(std::size_t(spec.width) * spec.height * components);
    if (!input->read_image(0, 0, 0, components, OIIO::TypeDesc::FLOAT, values.data()))
        throw unreadable(input->geterror());
    image.pixels.resize(std::size_t(image.width) * image.height);
    for (int y = 0; y < image.height; ++y)
        for (int x = 0; x < image.width; ++x) {
            const std::size_t from = std::size_t(image.height - 1 - y) * image.width + x;
            image.pixels[std::size_t(y) * image.width + x] = toColor(&values[from * components], components);
        }
    return image;
}

/// One component of 1, 2 or 4 bytes, the high byte first: a fraction of the largest number, or a float.
float component(const unsigned char* bytes, int depth)
{
    if (depth == 1)
        return float(bytes[0]) / 255.0f;
    if (depth == 2)
        return float(bytes[0] << 8 | bytes[1]) / 65535.0f;
    return std::bit_cast<float>(std::uint32_t(bytes[0]) << 24 | std::uint32_t(bytes[1]) << 16 |
                                std::uint32_t(bytes[2]) << 8 | bytes[3]);
}

TextureImage readBytes(const Texture& texture)
{
    if (texture.width <= 0 || texture.height <= 0 ||
        (texture.depth != 1 && texture.depth != 2 && texture.depth != 4))
        throw Error(texture.where,
                    called(texture) + "sizes must be positive, and a component 1, 2 or 4 bytes");
    const std::size_t pixels = std::size_t(texture.width) * std::size_t(texture.height);
    const std::size_t size = pixels * std::size_t(texture.depth);
    const std::size_t components = texture.bytes.size() / size;
    if (components < 1 || components > 4 || texture.bytes.size() % size != 0)
        throw Error(texture.where, called(texture) + std::to_string(texture.bytes.size()) +
                                       " bytes do not make " + std::to_string(texture.width) + " by " +
                                       std::to_string(texture.height) + " pixels of 1 to 4 components");
    TextureImage image{texture.width, texture.height, std::vector<miColor>(pixels)};
    const unsigned char* next = texture.bytes.data();
    for (miColor& pixel : image.pixels) {
        float values[4];
        for (std::size_t i = 0; i < components; ++i, next += texture.depth)
            values[i] = component(next, texture.depth);
        pixel = toColor(values, int(components));
    }
    return image;
}

miColor mix(const miColor& a, const miColor& b, float t)
{
    return {a.r + t * (b.r - a.r), a.g + t * (b.g - a.g), a.b + t * (b.b - a.b), a.a + t * (b.a - a.a)};
}

} // namespace

bool TextureImage::lookup(float x, float y, miColor& result) const
{
    result = {0.0f, 0.0f, 0.0f, 0.0f};
    // Written so that a NaN is outside.
    if (!(x >= 0.0f && x < 1.0f && y >= 0.0f && y < 1.0f))
        return false;
    const double u = double(x) * width - 0.5, v = double(y) * height - 0.5;
    const int i = int(std::floor(u)), j = int(std::floor(v));
    const int i0 = std::max(i, 0), i1 = std::min(i + 1, width - 1);
    const int j0 = std::max(j, 0), j1 = std::min(j + 1, height - 1);
    const auto pixel = [&](int column, int row) { return pixels[std::size_t(row) * width + column]; };
    const float s = float(u - i), t = float(v - j);
    result = mix(mix(pixel(i0, j0), pixel(i1, j0), s), mix(pixel(i0, j1), pixel(i1, j1), s), t);
    return true;
}

TextureImage readTexture(const Texture& texture, const SearchPaths& paths)
{
    if (!texture.procedural.empty())
        throw Error(texture.where, called(texture) + "procedural textures are not supported");
    return texture.bytes.empty() ? readFile(texture, paths) : readBytes(texture);
}

Textures::Textures(const Database& database, const SearchPaths& paths)
    : database_(database), paths_(paths), images_(std::size_t(database.last()) + 1)
{
}

void Textures::load(miTag tag)
{
    const auto* const texture = database_.findAs<Texture>(tag);
    if (!texture || images_[tag])
        return;
    images_[tag] = &loaded_.emplace_back(readTexture(*texture, paths_));
}

const TextureImage* Textures::image(miTag tag) const
{
    if (tag >= images_.size())
        return nullptr;
    const TextureImage* const image = images_[tag].load(std::memory_order_acquire);
    return image ? image : loadNow(tag);
}

const TextureImage* Textures::loadNow(miTag tag) const
{
    const auto* const texture = database_.findAs<Texture>(tag);
    if (!texture)
        return nullptr;
    const std::lock_guard lock(lock_);
    if (failed_.contains(tag))
        return nullptr;
    if (const TextureImage* const image = images_[tag].load(std::memory_order_relaxed))
        return image;
    try {
        const TextureImage& image = loaded_.emplace_back(readTexture(*texture, paths_));
        images_[tag].store(&image, std::memory_order_release);
        return &image;
    } catch (const Error& error) {
        failed_.insert(tag);
        message(Level::error, "IMG", error.what());
        return nullptr;
    }
}

} // namespace host
