// SPDX-License-Identifier: BSD-3-Clause
#include "tools/vhpano/convert.h"

#include "host/images/image_file.h"
#include "host/report/error.h"
#include "host/system/safe_file.h"
#include "host/system/workers.h"
#include "tools/vhpano/sampler.h"

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

/// The face of a cube's column, from the bottom.
int faceAt(float v) { return static_cast<int>(std::clamp(std::floor(v * 6), 0.0f, 5.0f)); }

/// Output pixels, a chunk of rows at a time.
class Converter {
public:
    Converter(const Conversion& conversion, const Sampler& sampler, int channels, Size size)
        : conversion_(conversion), sampler_(sampler), channels_(static_cast<std::size_t>(channels)),
          size_(size), turn_(conversion.rotation)
    {
    }

    int chunks() const { return (size_.height + chunkRows - 1) / chunkRows; }
    int rowsOf(int chunk) const { return std::min(chunkRows, size_.height - chunk * chunkRows); }

    /// The pixels of a chunk, its first row the topmost.
    std::vector<float> convert(int chunk) const
    {
        const int first = chunk * chunkRows;
        const int rows = rowsOf(chunk);
        std::vector<float> pixels(std::size_t(rows) * size_.width * channels_);
        const std::unique_ptr<Lookup> lookup = sampler_.begin();
        const bool neighbours = sampler_.needsNeighbours();
        Lookup::Places above, here = places(first), below;
        if (neighbours)
            above = places(first - 1);
        float* pixel = pixels.data();
        for (int row = first; row < first + rows; ++row) {
            if (neighbours || row + 1 < first + rows)
                below = places(row + 1);
            lookup->row(above, here, below, pixel);
            pixel += here.size() * channels_;
            above = std::exchange(here, std::exchange(below, {}));
        }
        return pixels;
    }

private:
    /// Where the pixels of a row, counted from the top, lie in the input. Nowhere for rows outside the image.
    Lookup::Places places(int row) const
    {
        Lookup::Places places(static_cast<std::size_t>(size_.width));
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
    const Sampler& sampler_;
    std::size_t channels_;
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
        if (!conversion.type.empty())
            refuseOtherType(spec);
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
    /// Opening a file tells what type it will have; some complain on the error stream of one that is left
    /// empty.
    void refuseOtherType(OIIO::ImageSpec spec) const
    {
        spec.width = spec.full_width = spec.height = spec.full_height = 1;
        const std::vector<float> pixel(static_cast<std::size_t>(spec.nchannels));
        host::MemoryFile trial;
        const auto writer = OIIO::ImageOutput::create(name_);
        if (!writer->open(trial.path(), spec) || !writer->write_image(OIIO::TypeDesc::FLOAT, pixel.data()))
            throw failed(writer->geterror());
        if (const OIIO::TypeDesc held = writer->spec().format; held != spec.format)
            throw failed(std::string("its format cannot hold ") + spec.format.c_str() + ", but " +
                         held.c_str());
        writer->close();
    }

    Error failed(const std::string& reason) const
    {
        return Error("cannot write \"" + name_ + "\": " + reason);
    }

    std::string name_;
    host::MemoryFile file_;
    std::unique_ptr<OIIO::ImageOutput> writer_;
};

} // namespace

void convert(const Conversion& conversion, const std::function<void(const std::string&)>& warn,
             const std::function<void(double)>& progress)
{
    const OIIO::ImageSpec spec = host::checkImageFile(conversion.input);
    if (const auto shape = shapeInstead(conversion.from, {spec.full_width, spec.full_height}))
        warn(host::inQuotes(conversion.input) + " has " + std::to_string(spec.full_width) + " by " +
             std::to_string(spec.full_height) + " pixels, but " + nameOf(conversion.from) + " is " + *shape +
             ": it is taken as stretched");
    const Size size =
        conversion.size.value_or(sizeFor(conversion.to, pixelsPerTurn(conversion.from, spec.full_width)));
    Target target(conversion, spec, size);
    const std::unique_ptr<Sampler> sampler = makeSampler(conversion, spec);
    const Converter converter(conversion, *sampler, spec.nchannels, size);

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
        writing =
            std::async(std::launch::async, [&target, &converter, &spec, first, done = std::move(chunks)] {
                for (std::size_t i = 0; i < done.size(); ++i) {
                    const int chunk = first + static_cast<int>(i);
                    target.write(chunk * chunkRows, converter.rowsOf(chunk), spec.nchannels, done[i].data());
                }
            });
        progress(double(first + count) / converter.chunks());
    }
    writing.get();
    target.finish();
}

} // namespace vhpano
