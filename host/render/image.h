// SPDX-License-Identifier: BSD-3-Clause
// Picture files.
#pragma once

#include "host/render/film.h"

#include <string>
#include <vector>

namespace host {

/// What an output's data type stores of each pixel.
struct DataType {
    enum class Source { color, alpha, depth, normal, motion, label };
    enum class Sample { bits8, bits16, half, real, label };

    Source source = Source::color;
    Sample sample = Sample::bits8;
    int channels = 4;
    bool negative = true; ///< false: the format holds no numbers below 0
};

/// Converts a finished colour to 8 or 16 bits: clipping, gamma and dithering as the options say, then
/// rounding to the nearest step. `x` and `y` choose the dither.
struct Quantiser {
    explicit Quantiser(const miOptions& options) : options(options) {}

    /// Clipped, and with gamma: what there is to round, each channel from 0 to 1.
    miColor prepare(miColor color) const;
    unsigned round(float value, unsigned most, int x, int y, int channel) const;

    const miOptions& options;
};

/// The picture files of one rendering.
class ImageFiles {
public:
    /// Checks every output of the camera before anything is rendered: format, data type, whether the two go
    /// together, and that the file's folder can be written to. Throws Error with the output's place.
    void prepare(const Camera& camera, const Options& options);

    /// True when a file needs more than colours.
    bool wantFacts() const;

    /// Writes all files. Each one appears complete under its name or not at all: what was there before stays
    /// until then. Throws Error, for a full disk for example.
    void write(const Picture& picture) const;

private:
    struct File {
        Output output;
        std::string writer; ///< the image library's name of the format
        DataType type;
    };

    const Options* options_ = nullptr;
    std::vector<File> files_;
};

} // namespace host
