// SPDX-License-Identifier: BSD-3-Clause
#include "host/render/image.h"

#include "host/render/samples.h"
#include "host/report/guess.h"
#include "host/report/message.h"
#include "host/system/safe_file.h"

#include <OpenImageIO/imageio.h>

#include <algorithm>
#include <cmath>
#include <limits>
#include <map>
#include <optional>
#include <set>

namespace host {

namespace {

using Source = DataType::Source;
using Sample = DataType::Sample;

const std::map<std::string, DataType, std::less<>> dataTypes = {
    {"rgb", {Source::color, Sample::bits8, 3}},     {"rgba", {Source::color, Sample::bits8, 4}},
    {"rgb_16", {Source::color, Sample::bits16, 3}}, {"rgba_16", {Source::color, Sample::bits16, 4}},
    {"rgb_h", {Source::color, Sample::half, 3}},    {"rgba_h", {Source::color, Sample::half, 4}},
    {"rgb_fp", {Source::color, Sample::real, 3}},   {"rgba_fp", {Source::color, Sample::real, 4}},
    {"rgbe", {Source::color, Sample::real, 3}},     {"a", {Source::alpha, Sample::bits8, 1}},
    {"a_16", {Source::alpha, Sample::bits16, 1}},   {"a_fp", {Source::alpha, Sample::real, 1}},
    {"z", {Source::depth, Sample::real, 1}},        {"n", {Source::normal, Sample::real, 3}},
    {"m", {Source::motion, Sample::real, 3}},       {"tag", {Source::label, Sample::label, 1}}};

/// Format words that are not the image library's own.
const std::map<std::string, std::string, std::less<>> formatNames = {
    {"tif", "tiff"}, {"exr", "openexr"}, {"jpg", "jpeg"}, {"tga", "targa"}, {"ppm", "pnm"}};

OIIO::TypeDesc typeOf(Sample sample)
{
    switch (sample) {
    case Sample::bits8:
        return OIIO::TypeDesc::UINT8;
    case Sample::bits16:
        return OIIO::TypeDesc::UINT16;
    case Sample::half:
        return OIIO::TypeDesc::HALF;
    case Sample::real:
        return OIIO::TypeDesc::FLOAT;
    case Sample::label:
        break;
    }
    return OIIO::TypeDesc::UINT32;
}

/// The data type that a format has when the scene names none.
std::string naturalType(const std::string& writer)
{
    if (writer == "openexr")
        return "rgba_fp";
    if (writer == "hdr")
        return "rgb_fp";
    return "rgba";
}

/// Formats that the renderer has and the image library does not write: its own raw ones and a few old ones.
const std::set<std::string, std::less<>> unwritten = {"ct",  "mt",  "nt", "pic", "pict", "ps",
                                                      "psd", "rlb", "st", "tt",  "vt",   "zt"};

/// What is wrong with a format that has no writer.
std::string unknownFormat(const std::string& format)
{
    const std::string text = "no image format " + inQuotes(format) + " can be written";
    if (unwritten.count(format) != 0)
        return text + " by this host; another such as \"exr\" can";
    Guess guess(format);
    for (const auto& [word, writer] : formatNames)
        guess.offer(word);
    for (const std::string_view word : {"bmp", "hdr", "png"})
        guess.offer(word);
    return text + guess.text();
}

/// What is wrong with a data type that is not in the list.
std::string unknownType(const std::string& type)
{
    std::string text = "data type " + inQuotes(type) + " is not known; there are";
    for (const auto& [name, ignored] : dataTypes)
        text += (name == dataTypes.begin()->first ? " " : ", ") + name;
    return text;
}

std::string called(const Output& output) { return "output \"" + output.file + "\": "; }

OIIO::ImageSpec specOf(const DataType& type, int width, int height, const Output& output, bool premultiplied)
{
    OIIO::ImageSpec spec(width, height, type.channels, typeOf(type.sample));
    // Values are stored as they are; a format that can tell is told whether alpha is multiplied in.
    const bool associates = output.format == "tif" || output.format == "tiff" || output.format == "exr";
    if (!(premultiplied && associates))
        spec.attribute("oiio:UnassociatedAlpha", 1);
    if (output.quality >= 0)
        spec.attribute("CompressionQuality", output.quality);
    if (!output.compression.empty())
        spec.attribute("compression", output.compression);
    return spec;
}

miColor clipped(const miColor& c, float most)
{
    // The order of arguments turns a NaN into 0.
    const auto clip = [most](float v) { return std::min(std::max(0.0f, v), most); };
    return {clip(c.r), clip(c.g), clip(c.b), c.a};
}

/// The pixels of one file, top row first, as bytes of its sample type.
class Pixels {
public:
    Pixels(const Picture& picture, const DataType& type, const miOptions& options)
        : picture_(picture), type_(type), options_(options), quantiser_(options)
    {
    }

    std::vector<unsigned char> convert()
    {
        const std::size_t count = std::size_t(picture_.width) * picture_.height * type_.channels;
        switch (type_.sample) {
        case Sample::bits8:
            return fill<unsigned char>(count, 255u);
        case Sample::bits16:
            return fill<unsigned short>(count, 65535u);
        case Sample::label:
            return fill<std::uint32_t>(count, 0u);
        default:
            return fill<float>(count, 0u);
        }
    }

private:
    template <class T>
    std::vector<unsigned char> fill(std::size_t count, unsigned most)
    {
        std::vector<unsigned char> bytes(count * sizeof(T));
        T* next = reinterpret_cast<T*>(bytes.data());
        for (int y = picture_.height - 1; y >= 0; --y)
            for (int x = 0; x < picture_.width; ++x)
                if constexpr (std::is_same_v<T, std::uint32_t>) {
                    *next++ = facts(x, y).label;
                } else {
                    float values[4];
                    read(x, y, most != 0, values);
                    for (int c = 0; c < type_.channels; ++c)
                        *next++ = most ? T(quantiser_.round(values[c], most, x, y, c)) : T(values[c]);
                }
        return bytes;
    }

    const PixelFacts& facts(int x, int y) const
    {
        return picture_.facts[std::size_t(y) * picture_.width + x];
    }

    void read(int x, int y, bool quantised, float* values) const
    {
        const auto put = [values](float a, float b, float c, float d) {
            values[0] = a;
            values[1] = b;
            values[2] = c;
            values[3] = d;
        };
        switch (type_.source) {
        case Source::depth:
            return put(facts(x, y).depth, 0, 0, 0);
        case Source::normal:
            return put(facts(x, y).normal.x, facts(x, y).normal.y, facts(x, y).normal.z, 0);
        case Source::motion:
            return put(facts(x, y).motion.x, facts(x, y).motion.y, facts(x, y).motion.z, 0);
        default:
            break;
        }
        miColor color = picture_.color(x, y);
        if (options_.nopremult && color.a != 0.0f)
            color = {color.r / color.a, color.g / color.a, color.b / color.a, color.a};
        if (quantised)
            color = quantiser_.prepare(color);
        if (type_.source == Source::alpha)
            return put(color.a, 0, 0, 0);
        if (!type_.negative)
            color = clipped(color, std::numeric_limits<float>::max());
        put(color.r, color.g, color.b, color.a);
    }

    const Picture& picture_;
    const DataType& type_;
    const miOptions& options_;
    Quantiser quantiser_;
};

/// Moves a colour that is brighter than white towards grey of the same mean, until it fits.
miColor desaturated(const miColor& c)
{
    const float most = std::max({c.r, c.g, c.b});
    if (!(most > 1.0f))
        return c;
    const float mean = (c.r + c.g + c.b) / 3.0f;
    if (mean >= 1.0f)
        return {1.0f, 1.0f, 1.0f, c.a};
    const float t = (1.0f - mean) / (most - mean);
    return {mean + t * (c.r - mean), mean + t * (c.g - mean), mean + t * (c.b - mean), c.a};
}

/// Encodes an image in memory, so that the disk is only ever given finished files.
MemoryFile encode(const std::string& writer, const OIIO::ImageSpec& spec, OIIO::TypeDesc given,
                  const void* pixels, const std::string& called)
{
    MemoryFile file;
    const auto output = OIIO::ImageOutput::create(writer);
    if (!output || !output->open(file.path(), spec))
        throw Error(called + (output ? output->geterror() : OIIO::geterror()));
    if (!output->write_image(given, pixels) || !output->close())
        throw Error(called + output->geterror());
    return file;
}

} // namespace

miColor Quantiser::prepare(miColor color) const
{
    if (options.desaturate)
        color = desaturated(color);
    const float alpha = std::min(std::max(0.0f, color.a), 1.0f);
    switch (ColorClip(options.colorclip)) {
    case ColorClip::rgb:
        color = clipped(color, 1.0f);
        color.a = std::max({alpha, color.r, color.g, color.b});
        break;
    case ColorClip::alpha:
        color = clipped(color, alpha);
        color.a = alpha;
        break;
    default:
        color = clipped(color, 1.0f);
        color.a = alpha;
    }
    if (options.gamma > 0.0f && options.gamma != 1.0f) {
        const float power = 1.0f / options.gamma;
        color = {std::pow(color.r, power), std::pow(color.g, power), std::pow(color.b, power), color.a};
    }
    return color;
}

unsigned Quantiser::round(float value, unsigned most, int x, int y, int channel) const
{
    float step = value * float(most) + 0.5f;
    if (options.dither && most == 255u)
        step += unit(std::uint32_t(x), std::uint32_t(y), std::uint32_t(channel), 3) - 0.5f;
    return unsigned(std::clamp(step, 0.0f, float(most)));
}

void ImageFiles::prepare(const Camera& camera, const Options& options)
{
    options_ = &options;
    files_.clear();
    if (camera.outputs.empty())
        throw Error(camera.where, "camera \"" + camera.name + "\" names no output file");
    for (const Output& output : camera.outputs) {
        const auto refuse = [&](const std::string& what) {
            throw Error(output.where, called(output) + what);
        };
        const auto known = formatNames.find(output.format);
        File file{output, known != formatNames.end() ? known->second : output.format, {}};
        const auto writer = OIIO::ImageOutput::create(file.writer);
        if (!writer)
            refuse(unknownFormat(output.format));
        std::string type = output.dataType.empty() ? naturalType(file.writer) : output.dataType;
        if (type[0] == '+' || type[0] == '-')
            type.erase(0, 1);
        const auto found = dataTypes.find(type);
        if (found == dataTypes.end())
            refuse(unknownType(type));
        file.type = found->second;
        if (file.type.channels == 4 && !writer->supports("alpha"))
            file.type.channels = 3;
        file.type.negative = file.writer != "hdr";
        // Writing a small one tells whether format and data type go together.
        MemoryFile trial;
        const OIIO::ImageSpec spec = specOf(file.type, 1, 1, output, !options.record.nopremult);
        if (!writer->open(trial.path(), spec))
            refuse(writer->geterror());
        const bool fits = writer->spec().format == spec.format && writer->spec().nchannels == spec.nchannels;
        const float nothing[4] = {};
        if (!writer->write_image(OIIO::TypeDesc::FLOAT, nothing) || !writer->close())
            refuse(writer->geterror());
        if (!fits)
            refuse("format \"" + output.format + "\" cannot hold data type \"" + type + "\"");
        checkWritable(output.file, output.where);
        files_.push_back(std::move(file));
    }
}

bool ImageFiles::wantFacts() const
{
    return std::any_of(files_.begin(), files_.end(), [](const File& file) {
        return file.type.source != Source::color && file.type.source != Source::alpha;
    });
}

void ImageFiles::write(const Picture& picture) const
{
    for (const File& file : files_) {
        const miOptions& options = options_->record;
        const auto pixels = Pixels(picture, file.type, options).convert();
        const OIIO::TypeDesc given =
            file.type.sample == Sample::half ? OIIO::TypeDesc::FLOAT : typeOf(file.type.sample);
        const OIIO::ImageSpec spec =
            specOf(file.type, picture.width, picture.height, file.output, !options.nopremult);
        replaceFile(file.output.file, encode(file.writer, spec, given, pixels.data(), called(file.output)));
        message(Level::info, "IMG", "wrote " + file.output.file);
    }
}

} // namespace host
