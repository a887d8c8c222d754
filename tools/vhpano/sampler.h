// SPDX-License-Identifier: BSD-3-Clause
// Looking pixels up in the input, so that nothing from beyond its seams is mixed in.
#pragma once

#include "tools/vhpano/convert.h"
#include "tools/vhpano/place.h"

#include <OpenImageIO/imageio.h>

#include <memory>
#include <vector>

namespace vhpano {

/// For a few dozen rows of the output, and for one thread.
class Lookup {
public:
    virtual ~Lookup() = default;

    using Places = std::vector<Place>;
    /// Pixels of a row of the output from where they and those of the rows next to it lie in the input;
    /// pixels that are nowhere stay as they are. Throws host::Error.
    virtual void row(const Places& above, const Places& here, const Places& below, float* pixels) = 0;
};

class Sampler {
public:
    virtual ~Sampler() = default;

    /// Safe from any thread.
    virtual std::unique_ptr<Lookup> begin() const = 0;
    /// Whether it wants to know of the rows above and below.
    virtual bool needsNeighbours() const = 0;
};

/// Of an input that `spec` describes. Holds at most 1 GiB of it in memory. Throws host::Error.
std::unique_ptr<Sampler> makeSampler(const Conversion& conversion, const OIIO::ImageSpec& spec);

// For makeSampler.
std::unique_ptr<Sampler> makeFootprintSampler(const Conversion& conversion, const OIIO::ImageSpec& spec);
std::unique_ptr<Sampler> makePointSampler(const Conversion& conversion, const OIIO::ImageSpec& spec);

} // namespace vhpano
