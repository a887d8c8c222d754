// SPDX-License-Identifier: BSD-3-Clause
#include "host/render/textures.h"

#include "host/images/image_file.h"
#include "host/report/message.h"

#include <OpenImageIO/texture.h>

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

/// An image file, of which the texture system keeps the parts that are in use.
class FileImage final : public TextureImage {
public:
    FileImage(const Texture& texture, const std::string& file, OIIO::TextureSystem& system)
        : texture_(texture), file_(file), system_(system)
    {
        try {
            components_ = std::min(checkImageFile(file).nchannels, 4);
        } catch (const Error& error) {
            throw Error(texture.where, called(texture) + error.what());
        }
        handle_ = system.get_texture_handle(OIIO::ustring(file));
        if (!handle_ || !system.good(handle_))
            throw unreadable(system.geterror());
    }

    bool filters() const override { return texture_.filter; }

private:
    miColor at(float x, float y, const Footprint& f) const override
    {
        OIIO::TextureOpt options;
        options.swrap = options.twrap = OIIO::TextureOpt::WrapClamp;
        options.interpmode = OIIO::TextureOpt::InterpBilinear;
        options.mipmode = texture_.filter ? OIIO::TextureOpt::MipModeAniso : OIIO::TextureOpt::MipModeNoMIP;
        options.swidth = options.twidth = texture_.filterScale;
        float value[4];
        // Files count rows from the top.
        if (!system_.texture(handle_, system_.get_perthread_info(), options, x, 1.0f - y, f.sx, -f.tx, f.sy,
                             -f.ty, components_, value))
            throw unreadable(system_.geterror());
        return toColor(value, components_);
    }

    Error unreadable(const std::string& reason) const
    {
        return Error(texture_.where, called(texture_) + "cannot read \"" + file_ + "\": " + reason);
    }

    const Texture& texture_;
    std::string file_;
    OIIO::TextureSystem& system_;
    OIIO::TextureSystem::TextureHandle* handle_ = nullptr;
    int components_ = 0;
};

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

miColor mix(const miColor& a, const miColor& b, float t)
{
    return {a.r + t * (b.r - a.r), a.g + t * (b.g - a.g), a.b + t * (b.b - a.b), a.a + t * (b.a - a.a)};
}

/// Pixels given in the scene, lowest row first.
class BytesImage final : public TextureImage {
public:
    explicit BytesImage(const Texture& texture) : width_(texture.width), height_(texture.height)
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
        pixels_.resize(pixels);
        const unsigned char* next = texture.bytes.data();
        for (miColor& pixel : pixels_) {
            float values[4];
            for (std::size_t i = 0; i < components; ++i, next += texture.depth)
                values[i] = component(next, texture.depth);
            pixel = toColor(values, int(components));
        }
    }

private:
    miColor at(float x, float y, const Footprint&) const override
    {
        const double u = double(x) * width_ - 0.5, v = double(y) * height_ - 0.5;
        const int i = int(std::floor(u)), j = int(std::floor(v));
        const int i0 = std::max(i, 0), i1 = std::min(i + 1, width_ - 1);
        const int j0 = std::max(j, 0), j1 = std::min(j + 1, height_ - 1);
        const auto pixel = [&](int column, int row) { return pixels_[std::size_t(row) * width_ + column]; };
        const float s = float(u - i), t = float(v - j);
        return mix(mix(pixel(i0, j0), pixel(i1, j0), s), mix(pixel(i0, j1), pixel(i1, j1), s), t);
    }

    int width_;
    int height_;
    std::vector<miColor> pixels_;
};

} // namespace

bool TextureImage::lookup(float x, float y, miColor& result, const Footprint& footprint) const
{
    result = {0.0f, 0.0f, 0.0f, 0.0f};
    // Written so that a NaN is outside.
    if (!(x >= 0.0f && x < 1.0f && y >= 0.0f && y < 1.0f))
        return false;
    result = at(x, y, footprint);
    return true;
}

// The process's one: OpenImageIO deletes others as what they are not.
TextureFiles::TextureFiles() : system_(OIIO::TextureSystem::create(true))
{
    system_->invalidate_all(true); // files may be others by now
    system_->attribute("max_memory_MB", 1024.0f);
    system_->attribute("automip", 1);   // pyramids of files without one, made when they are asked for
    system_->attribute("autotile", 64); // of files without tiles, so that they too are kept in parts
    // The values as they are in the file: shaders decide what alpha does to colour.
    system_->attribute("unassociatedalpha", 1);
}

std::unique_ptr<TextureImage> TextureFiles::open(const Texture& texture, const SearchPaths& paths)
{
    if (!texture.bytes.empty())
        return std::make_unique<BytesImage>(texture);
    const std::string beside = texture.where.file ? *texture.where.file : std::string();
    const std::string file = findFile(texture.file, beside, paths.texture);
    if (file.empty())
        throw Error(texture.where, called(texture) + "no file \"" + texture.file + '"' +
                                       lookedIn(texture.file, beside, paths.texture));
    return std::make_unique<FileImage>(texture, file, *system_);
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
    if (!texture->procedural.empty()) {
        procedures_.try_emplace(tag, functionsOf(database_, texture->procedural, *texture, Gives::texture));
        return;
    }
    images_[tag] = loaded_.emplace_back(files_.open(*texture, paths_)).get();
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
    if (!texture ||
        !texture->procedural.empty()) // the shaders of one that nothing names are not in the network
        return nullptr;
    std::string failure;
    {
        const std::lock_guard lock(lock_);
        if (const TextureImage* const image = images_[tag].load(std::memory_order_relaxed))
            return image;
        if (failed_.contains(tag))
            return nullptr;
        try {
            const TextureImage* const image = loaded_.emplace_back(files_.open(*texture, paths_)).get();
            images_[tag].store(image, std::memory_order_release);
            return image;
        } catch (const Error& error) {
            failed_.insert(tag);
            failure = error.what();
        }
    }
    message(Level::error, "IMG", failure);
    return nullptr;
}

} // namespace host
