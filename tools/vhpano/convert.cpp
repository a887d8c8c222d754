// SPDX-License-Identifier: BSD-3-Clause
#include "tools/vhpano/convert.h"

#include "host/images/image_file.h"
#include "host/report/error.h"
#include "host/system/safe_file.h"
#include "host/system/workers.h"

#include <OpenImageIO/texture.h>

#include <algorithm>
#include <array>
#include <cmath>
#include <filesystem>
#include <future>
#include <limits>
#include <memory>
#include <numbers>
#include <vector>

namespace vhpano {

namespace {

using host::Error;
using VHL::dVector;

/// Rows of the output that one thread converts at a time.
constexpr int chunkRows = 16;

/// A place in the input image, u from the left and v from the bottom; none where it shows nothing.
struct Place {
    float u = 0;
    float v = 0;
    bool exists = false;
    int part = 0; ///< which piece of the input, where it consists of several
};

/// Turns directions of the output's view into those of the input's.
class Turn {
public:
    explicit Turn(const Rotation& rotation)
    {
        const auto radians = [](double degrees) { return degrees * (std::numbers::pi / 180); };
        const double yaw = radians(rotation.yaw), pitch = radians(rotation.pitch),
                     roll = radians(rotation.roll);
        // The columns are where right, up and back (+z) of the output's view lie in the input's.
        const Matrix rolled = {
            {{std::cos(roll), std::sin(roll), 0}, {-std::sin(roll), std::cos(roll), 0}, {0, 0, 1}}};
        const Matrix pitched = {
            {{1, 0, 0}, {0, std::cos(pitch), -std::sin(pitch)}, {0, std::sin(pitch), std::cos(pitch)}}};
        const Matrix yawed = {
            {{std::cos(yaw), 0, -std::sin(yaw)}, {0, 1, 0}, {std::sin(yaw), 0, std::cos(yaw)}}};
        matrix_ = product(yawed, product(pitched, rolled));
    }

    dVector operator()(const dVector& d) const
    {
        const auto row = [&](int i) {
            const std::array<double, 3>& m = matrix_[static_cast<std::size_t>(i)];
            return static_cast<float>(m[0] * d.x() + m[1] * d.y() + m[2] * d.z());
        };
        return {row(0), row(1), row(2)};
    }

private:
    using Matrix = std::array<std::array<double, 3>, 3>;

    static Matrix product(const Matrix& a, const Matrix& b)
    {
        Matrix c{};
        for (std::size_t i = 0; i < 3; ++i)
            for (std::size_t j = 0; j < 3; ++j)
                for (std::size_t k = 0; k < 3; ++k)
                    c[i][j] += a[i][k] * b[k][j];
        return c;
    }

    Matrix matrix_{};
};

/// How fast a place moves from one output pixel to the next, in the input's coordinates.
struct Step {
    float u = 0;
    float v = 0;

    float length() const { return std::hypot(u, v); }
    Step operator*(float factor) const { return {u * factor, v * factor}; }
};

/// The shorter of the ways to the neighbours on either side: across a seam of the input the other one is
/// long.
Step shorterStep(const Place& before, const Place& here, const Place& after)
{
    const auto isNear = [&](const Place& other) { return other.exists && other.part == here.part; };
    const Step back = {here.u - before.u, here.v - before.v};
    const Step on = {after.u - here.u, after.v - here.v};
    if (!isNear(before) || !isNear(after))
        return isNear(before) ? back : isNear(after) ? on : Step{};
    return back.length() < on.length() ? back : on;
}

/// The face of a cube's column, from the bottom.
int faceAt(float v) { return static_cast<int>(std::clamp(std::floor(v * 6), 0.0f, 5.0f)); }

/// The input, looked up so that nothing from beyond its seams is mixed in.
class Source {
public:
    Source(const Conversion& conversion, const OIIO::ImageSpec& spec)
        : layout_(conversion.from), channels_(spec.nchannels), width_(spec.width), height_(spec.height),
          system_(OIIO::TextureSystem::create(true)) // the process's one, which nobody has to delete
    {
        const bool footprint = conversion.filter == Filter::footprint;
        system_->attribute("max_memory_MB", 1024.0f);
        system_->attribute("autotile", 64);
        system_->attribute("automip", footprint ? 1 : 0);
        handle_ = system_->get_texture_handle(OIIO::ustring(conversion.input));
        if (!handle_ || !system_->good(handle_))
            throw broken();
        using OIIO::TextureOpt;
        options_.swrap = layout_ == Layout::latlong ? TextureOpt::WrapPeriodic : TextureOpt::WrapClamp;
        options_.twrap = TextureOpt::WrapClamp;
        options_.mipmode = footprint ? TextureOpt::MipModeAniso : TextureOpt::MipModeNoMIP;
        options_.interpmode = conversion.filter == Filter::nearest    ? TextureOpt::InterpClosest
                              : conversion.filter == Filter::bilinear ? TextureOpt::InterpBilinear
                              : conversion.filter == Filter::bicubic  ? TextureOpt::InterpBicubic
                                                                      : TextureOpt::InterpSmartBicubic;
    }

    int channels() const { return channels_; }

    /// Safe from any thread.
    void look(const Place& place, Step right, Step up, float* result) const
    {
        OIIO::TextureOpt options = options_;
        float covered = std::max(texels(right), texels(up));
        // Near where the piece ends, a wide average would take in what lies beyond.
        if (covered > 2 && texelsToEnd(place) < covered + 0.5f) {
            right = right * (2 / covered);
            up = up * (2 / covered);
            covered = 2;
        }
        if (covered <= 1)
            options.mipmode = OIIO::TextureOpt::MipModeNoMIP; // which is all that would come out of it
        // Bicubic filters reach two texels far, bilinear ones half a texel, and averages of averages twice
        // theirs.
        if (options.interpmode != OIIO::TextureOpt::InterpClosest && texelsToEnd(place) < 2)
            options.interpmode = OIIO::TextureOpt::InterpBilinear;
        const Place inside = inset(place, covered <= 1 ? 0.5f : covered + 0.5f);
        if (!system_->texture(handle_, system_->get_perthread_info(), options, inside.u, 1 - inside.v,
                              right.u, -right.v, up.u, -up.v, channels_, result))
            throw broken();
    }

private:
    Error broken() const { return Error("cannot read the input: " + system_->geterror()); }

    float texels(const Step& step) const
    {
        return std::hypot(step.u * static_cast<float>(width_), step.v * static_cast<float>(height_));
    }

    /// How far it is to where another face, or nothing, begins above, below or around a place.
    float texelsToEnd(const Place& place) const
    {
        if (layout_ == Layout::latlong)
            return std::numeric_limits<float>::infinity();
        if (layout_ == Layout::cube) {
            const float within = place.v * 6 - static_cast<float>(place.part);
            return std::min(within, 1 - within) * static_cast<float>(height_) / 6;
        }
        return (1 - std::hypot(2 * place.u - 1, 2 * place.v - 1)) *
               static_cast<float>(std::min(width_, height_)) / 2;
    }

    /// The place, or the nearest one that is so many texels away from that end.
    Place inset(Place place, float distance) const
    {
        if (layout_ == Layout::latlong || texelsToEnd(place) >= distance)
            return place;
        if (layout_ == Layout::cube) {
            const auto face = static_cast<float>(place.part);
            const float margin = std::min(distance * 6 / static_cast<float>(height_), 0.5f);
            place.v = (face + std::clamp(place.v * 6 - face, margin, 1 - margin)) / 6;
            return place;
        }
        const float x = 2 * place.u - 1, y = 2 * place.v - 1;
        const float margin = std::min(2 * distance / static_cast<float>(std::min(width_, height_)), 1.0f);
        const float radius = std::hypot(x, y);
        if (radius <= 1 - margin || radius == 0)
            return place; // in an image of a few texels the middle is as far away as can be
        const float scale = (1 - margin) / radius;
        place.u = (x * scale + 1) / 2;
        place.v = (y * scale + 1) / 2;
        return place;
    }

    Layout layout_;
    int channels_;
    int width_;
    int height_;
    OIIO::TextureSystem* system_;
    OIIO::TextureSystem::TextureHandle* handle_ = nullptr;
    OIIO::TextureOpt options_;
};

/// Output pixels, a chunk of rows at a time.
class Converter {
public:
    Converter(const Conversion& conversion, const Source& source, Size size)
        : conversion_(conversion), source_(source), size_(size), turn_(conversion.rotation)
    {
    }

    int chunks() const { return (size_.height + chunkRows - 1) / chunkRows; }
    int rowsOf(int chunk) const { return std::min(chunkRows, size_.height - chunk * chunkRows); }

    /// The pixels of a chunk, its first row the topmost.
    std::vector<float> convert(int chunk) const
    {
        const int first = chunk * chunkRows;
        const int rows = rowsOf(chunk);
        const auto channels = static_cast<std::size_t>(source_.channels());
        std::vector<float> pixels(std::size_t(rows) * size_.width * channels);
        const bool steps = conversion_.filter == Filter::footprint;
        // With a row above and one below, for the steps.
        std::vector<Place> above, here = places(first), below;
        if (steps)
            above = places(first - 1);
        float* pixel = pixels.data();
        for (int row = first; row < first + rows; ++row) {
            if (steps || row + 1 < first + rows)
                below = places(row + 1);
            for (int x = 0; x < size_.width; ++x, pixel += channels) {
                const auto i = static_cast<std::size_t>(x);
                if (!here[i].exists)
                    continue;
                Step right, up;
                if (steps) {
                    right = shorterStep(x > 0 ? here[i - 1] : Place(), here[i],
                                        x + 1 < size_.width ? here[i + 1] : Place());
                    up = shorterStep(below[i], here[i], above[i]);
                }
                source_.look(here[i], right, up, pixel);
            }
            above = std::exchange(here, std::exchange(below, {}));
        }
        return pixels;
    }

private:
    /// Where the pixels of a row, counted from the top, lie in the input. Nowhere for rows outside the image.
    std::vector<Place> places(int row) const
    {
        std::vector<Place> places(static_cast<std::size_t>(size_.width));
        if (row < 0 || row >= size_.height)
            return places;
        const auto v = static_cast<float>((size_.height - row - 0.5) / size_.height);
        std::vector<dVector> vectors;
        vectors.reserve(places.size());
        for (int x = 0; x < size_.width; ++x)
            vectors.emplace_back(static_cast<float>((x + 0.5) / size_.width), v, 0.0f);
        VHL::toDirection(mappingOf(conversion_.to), vectors.data(), vectors.data(), vectors.size());
        for (std::size_t i = 0; i < places.size(); ++i) {
            dVector& direction = vectors[i];
            places[i].exists = direction.x() != 0 || direction.y() != 0 || direction.z() != 0;
            direction = turn_(direction);
        }
        VHL::toTextureCoordinates(mappingOf(conversion_.from), vectors.data(), vectors.data(),
                                  vectors.size());
        for (std::size_t i = 0; i < places.size(); ++i) {
            Place& place = places[i];
            place.u = vectors[i].x();
            place.v = vectors[i].y();
            // A layout that does not show a direction says so by a third coordinate of 0.
            place.exists = place.exists && vectors[i].z() != 0;
            if (conversion_.from == Layout::cube)
                place.part = faceAt(place.v);
        }
        return places;
    }

    const Conversion& conversion_;
    const Source& source_;
    Size size_;
    Turn turn_;
};

/// The output file, written row by row into memory.
class Target {
public:
    Target(const Conversion& conversion, OIIO::ImageSpec spec, Size size) : name_(conversion.output)
    {
        writer_ = OIIO::ImageOutput::create(name_);
        if (!writer_)
            throw failed(OIIO::geterror());
        host::checkWritable(name_, {});
        spec.width = spec.full_width = size.width;
        spec.height = spec.full_height = size.height;
        spec.x = spec.y = spec.full_x = spec.full_y = 0;
        spec.tile_width = spec.tile_height = spec.tile_depth = 0;
        spec.channelformats.clear();
        if (!conversion.type.empty())
            spec.set_format(OIIO::TypeDesc(conversion.type));
        for (const char* const attribute : {"Orientation", "textureformat", "wrapmodes", "openexr:levelmode",
                                            "oiio:SHA-1", "oiio:subimages", "oiio:AverageColor"})
            spec.erase_attribute(attribute);
        if (spec.nchannels == 4 && !writer_->supports("alpha")) {
            spec.nchannels = 3;
            spec.alpha_channel = -1;
            spec.channelnames.resize(3);
        }
        if (!writer_->open(file_.path(), spec))
            throw failed(writer_->geterror());
    }

    /// Rows from the top, with `channels` numbers to the pixel.
    void write(int row, int rows, int channels, const float* pixels)
    {
        const auto size = static_cast<OIIO::stride_t>(sizeof(float));
        const OIIO::stride_t pixel = channels * size;
        if (!writer_->write_scanlines(row, row + rows, 0, OIIO::TypeDesc::FLOAT, pixels, pixel,
                                      pixel * writer_->spec().width))
            throw failed(writer_->geterror());
    }

    void finish()
    {
        if (!writer_->close())
            throw failed(writer_->geterror());
        host::replaceFile(name_, file_);
    }

private:
    Error failed(const std::string& reason) const
    {
        return Error("cannot write \"" + name_ + "\": " + reason);
    }

    std::string name_;
    host::MemoryFile file_;
    std::unique_ptr<OIIO::ImageOutput> writer_;
};

} // namespace

void convert(const Conversion& conversion, const std::function<void(double)>& progress)
{
    const OIIO::ImageSpec spec = host::checkImageFile(conversion.input);
    const Size size =
        conversion.size.value_or(sizeFor(conversion.to, pixelsPerTurn(conversion.from, spec.width)));
    Target target(conversion, spec, size);
    const Source source(conversion, spec);
    const Converter converter(conversion, source, size);

    // While some chunks are written the next ones are converted.
    const int threads = host::threadCount(conversion.threads);
    const int together = 4 * threads;
    std::future<void> writing;
    for (int first = 0; first < converter.chunks(); first += together) {
        const int count = std::min(together, converter.chunks() - first);
        std::vector<std::vector<float>> chunks(static_cast<std::size_t>(count));
        host::forEachItem(threads, chunks.size(), [&](int, std::size_t i) {
            chunks[i] = converter.convert(first + static_cast<int>(i));
        });
        if (writing.valid())
            writing.get();
        writing = std::async(std::launch::async, [&target, &converter, &source, first,
                                                  done = std::move(chunks)] {
            for (std::size_t i = 0; i < done.size(); ++i) {
                const int chunk = first + static_cast<int>(i);
                target.write(chunk * chunkRows, converter.rowsOf(chunk), source.channels(), done[i].data());
            }
        });
        progress(double(first + count) / converter.chunks());
    }
    writing.get();
    target.finish();
}

} // namespace vhpano
