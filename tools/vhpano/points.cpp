// SPDX-License-Identifier: BSD-3-Clause
// The input at single points, between its nearest texels. OpenImageIO's textures could do that too, but take
// several times as long as the rest of the conversion.
#include "host/report/error.h"
#include "tools/vhpano/sampler.h"

#include <OpenImageIO/imagecache.h>

#include <algorithm>
#include <array>
#include <bit>
#include <cstdint>
#include <limits>

namespace vhpano {

namespace {

/// The input's texels by tiles, which OpenImageIO reads when they are asked for first and may forget.
class Image {
public:
    explicit Image(const std::string& file) : cache_(OIIO::ImageCache::create(true)) // the process's one
    {
        cache_->attribute("max_memory_MB", 1024.0f);
        cache_->attribute("autotile", 64);
        handle_ = cache_->get_image_handle(OIIO::ustring(file));
        if (!handle_ || !cache_->get_imagespec(handle_, nullptr, spec_))
            throw broken();
        spec_.tile_width = std::max(spec_.tile_width, 1); // where it is not tiled after all
        spec_.tile_height = std::max(spec_.tile_height, 1);
        OIIO::ImageCache::Tile* const first = tile(0, 0);
        format_ = cache_->tile_format(first);
        cache_->release_tile(first);
    }

    using Tile = OIIO::ImageCache::Tile;

    /// The tile in a column and a row of them. It stays in memory until it is released.
    Tile* tile(int column, int row) const
    {
        Tile* const found =
            cache_->get_tile(handle_, cache_->get_perthread_info(), 0, 0, spec_.x + column * spec_.tile_width,
                             spec_.y + row * spec_.tile_height, spec_.z);
        if (!found)
            throw broken();
        return found;
    }
    void release(Tile* tile) const { cache_->release_tile(tile); }

    const void* texels(Tile* tile) const
    {
        OIIO::TypeDesc format;
        return cache_->tile_pixels(tile, format);
    }

    const OIIO::ImageSpec& spec() const { return spec_; }
    /// Of the texels in memory: uint8, uint16, half or float.
    OIIO::TypeDesc format() const { return format_; }

private:
    host::Error broken() const { return host::Error("cannot read the input: " + cache_->geterror()); }

    OIIO::ImageCache* cache_;
    OIIO::ImageCache::ImageHandle* handle_ = nullptr;
    OIIO::ImageSpec spec_;
    OIIO::TypeDesc format_;
};

/// A half as it is in memory, without a library for it.
struct Half {
    operator float() const
    {
        // As if it were a float whose exponents begin elsewhere; then infinities and NaN.
        const float scaled = std::bit_cast<float>((bits & 0x7fffu) << 13) * 0x1p112f;
        const unsigned magnitude =
            std::bit_cast<unsigned>(scaled) | ((bits & 0x7c00u) == 0x7c00u ? 0x7f800000u : 0u);
        return std::bit_cast<float>(magnitude | (bits & 0x8000u) << 16);
    }

    std::uint16_t bits;
};

/// One thread's view of the image's texels, from the top left.
template <class Texel>
class Texels {
public:
    explicit Texels(const Image& image)
        : image_(image), width_(unsigned(image.spec().tile_width)),
          height_(unsigned(image.spec().tile_height)), channels_(unsigned(image.spec().nchannels)),
          columns_((unsigned(image.spec().width) + width_ - 1) / width_),
          tiles_(std::size_t(columns_) * ((unsigned(image.spec().height) + height_ - 1) / height_)),
          mostHeld_(std::max<std::size_t>(1, mostBytes /
                                                 (std::size_t(width_) * height_ * channels_ * sizeof(Texel))))
    {
    }
    Texels(const Texels&) = delete;
    Texels& operator=(const Texels&) = delete;
    ~Texels() { release(); }

    /// The first channel of a texel in the image; good until the next call.
    const Texel* at(unsigned x, unsigned y)
    {
        const unsigned column = x / width_, row = y / height_;
        const std::size_t index = std::size_t(row) * columns_ + column;
        if (!tiles_[index]) [[unlikely]]
            fetch(index, int(column), int(row));
        return tiles_[index] + std::size_t(y % height_ * width_ + x % width_) * channels_;
    }

    /// Whether so many texels from this one to the right, and down, lie in one tile.
    bool areTogether(unsigned x, unsigned y, unsigned count) const
    {
        return x % width_ + count <= width_ && y % height_ + count <= height_;
    }

    std::size_t channels() const { return channels_; }
    /// From a texel to the one below, in the same tile.
    std::size_t rowStride() const { return std::size_t(width_) * channels_; }

private:
    static constexpr std::size_t mostBytes = 16 << 20;

    void fetch(std::size_t index, int column, int row)
    {
        if (held_.size() == mostHeld_)
            release();
        held_.reserve(held_.size() + 1);
        Image::Tile* const tile = image_.tile(column, row);
        held_.push_back({tile, index});
        tiles_[index] = static_cast<const Texel*>(image_.texels(tile));
    }

    void release()
    {
        for (const Held& each : held_) {
            tiles_[each.index] = nullptr;
            image_.release(each.tile);
        }
        held_.clear();
    }

    struct Held {
        Image::Tile* tile;
        std::size_t index;
    };

    const Image& image_;
    unsigned width_, height_, channels_; ///< of a tile
    unsigned columns_;
    std::vector<const Texel*> tiles_; ///< those held, by row and column
    std::vector<Held> held_;
    std::size_t mostHeld_;
};

/// The greatest integer that is not greater. Not the C library's, which is a call on most x86-64.
int floorOf(float x)
{
    const int toZero = int(x);
    return toZero - (x < float(toZero));
}

/// What texels along a line weigh at the fraction of the way from the middle one (from the one left of the
/// middle) to the next.
template <int count>
std::array<float, count> weights(float t)
{
    if constexpr (count == 1)
        return {1};
    else if constexpr (count == 2)
        return {1 - t, t};
    else // Catmull and Rom's: through the texels, with slopes from their neighbours
        return {t * (-0.5f + t * (1 - 0.5f * t)), 1 + t * t * (-2.5f + 1.5f * t),
                t * (0.5f + t * (2 - 1.5f * t)), t * t * (-0.5f + 0.5f * t)};
}

/// Where texels begin that matter to a coordinate, and what they weigh.
template <int count>
struct Taps {
    explicit Taps(float coordinate)
    {
        const float from = count == 1 ? coordinate : coordinate - 0.5f; // of a texel's middle
        const int whole = floorOf(from);
        first = whole - (count - 1) / 2;
        weight = weights<count>(from - float(whole));
    }

    int first;
    std::array<float, count> weight;
};

template <class Texel>
class PointLookup final : public Lookup {
public:
    PointLookup(const Image& image, const Ends& ends, Filter filter, bool turns)
        : ends_(ends), filter_(filter),
          turns_(turns), window_{image.spec().full_width, image.spec().full_height},
          left_(image.spec().x - image.spec().full_x), top_(image.spec().y - image.spec().full_y),
          width_(image.spec().width), height_(image.spec().height), texels_(image)
    {
    }

    void row(const Places&, const Places& here, const Places&, float* pixels) override
    {
        switch (texels_.channels()) {
        case 3:
            return row<3>(here, pixels);
        case 4:
            return row<4>(here, pixels);
        default:
            return row<1>(here, pixels);
        }
    }

private:
    /// With so many channels at a time.
    template <int group>
    void row(const Places& here, float* pixel)
    {
        for (const Place& place : here) {
            if (place.exists) {
                const Place inside = ends_.inset(place, 0.5f);
                if (filter_ == Filter::nearest)
                    look<group, 1>(inside, pixel);
                // A cubic filter reaches two texels far, a linear one half a texel.
                else if (filter_ == Filter::bilinear || ends_.texelsTo(place) < 2)
                    look<group, 2>(inside, pixel);
                else
                    look<group, 4>(inside, pixel);
            }
            pixel += texels_.channels();
        }
    }

    template <int group, int count>
    void look(const Place& place, float* result)
    {
        const Taps<count> across(place.u * float(window_.width)), down((1 - place.v) * float(window_.height));
        const int x = across.first - left_, y = down.first - top_;
        if (x >= 0 && y >= 0 && x + count <= width_ && y + count <= height_ &&
            texels_.areTogether(unsigned(x), unsigned(y), count)) [[likely]] {
            const Texel* const first = texels_.at(unsigned(x), unsigned(y));
            for (std::size_t channel = 0; channel < texels_.channels(); channel += group)
                sum<group>(across, down, first + channel, texels_.channels(), texels_.rowStride(),
                           result + channel);
        } else {
            apart<group>(across, down, result);
        }
    }

    /// Of texels from several tiles, or from beyond the image's edges.
    template <int group, int count>
    [[gnu::noinline]] void apart(const Taps<count>& across, const Taps<count>& down, float* result)
    {
        for (std::size_t channel = 0; channel < texels_.channels(); channel += group) {
            Texel texels[count * count * group];
            Texel* to = texels;
            for (int j = 0; j < count; ++j)
                for (int i = 0; i < count; ++i, to += group)
                    fetch(across.first + i, down.first + j, channel, group, to);
            sum<group>(across, down, texels, group, group * count, result + channel);
        }
    }

    /// Some channels of a texel of the whole picture, of which the file may hold only a part; 0 around that.
    void fetch(int x, int y, std::size_t channel, std::size_t count, Texel* to)
    {
        x = turns_ ? (x % window_.width + window_.width) % window_.width
                   : std::clamp(x, 0, window_.width - 1);
        y = std::clamp(y, 0, window_.height - 1);
        x -= left_;
        y -= top_;
        if (x < 0 || y < 0 || x >= width_ || y >= height_)
            std::fill_n(to, count, Texel{});
        else
            std::copy_n(texels_.at(unsigned(x), unsigned(y)) + channel, count, to);
    }

    template <int group, int count>
    static void sum(const Taps<count>& across, const Taps<count>& down, const Texel* texel,
                    std::size_t stride, std::size_t rowStride, float* result)
    {
        float total[group] = {};
        for (int j = 0; j < count; ++j, texel += rowStride) {
            float ofRow[group] = {};
            for (int i = 0; i < count; ++i)
                for (int k = 0; k < group; ++k)
                    ofRow[k] += across.weight[std::size_t(i)] * float(texel[i * stride + std::size_t(k)]);
            for (int k = 0; k < group; ++k)
                total[k] += down.weight[std::size_t(j)] * ofRow[k];
        }
        constexpr float one =
            std::numeric_limits<Texel>::is_integer ? float(std::numeric_limits<Texel>::max()) : 1;
        for (int k = 0; k < group; ++k)
            result[k] = total[k] * (1 / one);
    }

    const Ends& ends_;
    Filter filter_;
    bool turns_;
    Size window_;        ///< of the whole picture
    int left_, top_;     ///< where in it the file's texels begin
    int width_, height_; ///< of these
    Texels<Texel> texels_;
};

class PointSampler final : public Sampler {
public:
    PointSampler(const Conversion& conversion, const OIIO::ImageSpec& spec)
        : image_(conversion.input), ends_(conversion.from, {spec.full_width, spec.full_height}),
          filter_(conversion.filter), turns_(conversion.from == Layout::latlong)
    {
    }

    bool needsNeighbours() const override { return false; }

    std::unique_ptr<Lookup> begin() const override
    {
        switch (image_.format().basetype) {
        case OIIO::TypeDesc::UINT8:
            return lookup<unsigned char>();
        case OIIO::TypeDesc::UINT16:
            return lookup<unsigned short>();
        case OIIO::TypeDesc::HALF:
            return lookup<Half>();
        default:
            return lookup<float>();
        }
    }

private:
    template <class Texel>
    std::unique_ptr<Lookup> lookup() const
    {
        return std::make_unique<PointLookup<Texel>>(image_, ends_, filter_, turns_);
    }

    Image image_;
    Ends ends_;
    Filter filter_;
    bool turns_;
};

} // namespace

std::unique_ptr<Sampler> makePointSampler(const Conversion& conversion, const OIIO::ImageSpec& spec)
{
    return std::make_unique<PointSampler>(conversion, spec);
}

} // namespace vhpano
