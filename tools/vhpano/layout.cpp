// SPDX-License-Identifier: BSD-3-Clause
#include "tools/vhpano/layout.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <limits>

namespace vhpano {

namespace {

const VHL::dSphericalMapping spherical;
const VHL::dAngularMapping angular;
const VHL::dBallMapping ball;
const VHL::dCubicMapping cubic;
const VHL::dFisheyeMapping fisheye;

struct Entry {
    const char* name;
    const VHL::dPanoramicConversion& mapping;
    double turns;  ///< of the view along the image's width
    double aspect; ///< height over width
};

const std::array<Entry, 5> entries = {{{"latlong", spherical, 1, 0.5},
                                       {"angular", angular, 1, 1},
                                       {"ball", ball, 1, 1},
                                       {"cube", cubic, 0.25, 6},
                                       {"fisheye", fisheye, 0.5, 1}}};

const Entry& entry(Layout layout) { return entries[static_cast<std::size_t>(layout)]; }

} // namespace

std::vector<std::string> layoutNames()
{
    std::vector<std::string> names;
    for (const Entry& each : entries)
        names.emplace_back(each.name);
    return names;
}

std::optional<Layout> layoutOf(const std::string& name)
{
    for (std::size_t i = 0; i < entries.size(); ++i)
        if (name == entries[i].name)
            return static_cast<Layout>(i);
    return {};
}

const char* nameOf(Layout layout) { return entry(layout).name; }

const VHL::dPanoramicConversion& mappingOf(Layout layout) { return entry(layout).mapping; }

double pixelsPerTurn(Layout layout, int width) { return width / entry(layout).turns; }

std::optional<std::string> shapeInstead(Layout layout, const Size& size)
{
    const double aspect = entry(layout).aspect;
    const double off = std::abs(size.height - size.width * aspect);
    if (off <= std::max({1.0, aspect, 0.02 * size.height}))
        return {};
    const auto whole = [](double number) { return std::to_string(std::lround(std::max(1.0, number))); };
    return whole(1 / aspect) + ':' + whole(aspect);
}

Size sizeFor(Layout layout, double pixelsPerTurn)
{
    const auto pixels = [](double exact) {
        return static_cast<int>(std::clamp(std::round(exact), 1.0, double(std::numeric_limits<int>::max())));
    };
    const int width = pixels(pixelsPerTurn * entry(layout).turns);
    return {width, pixels(width * entry(layout).aspect)};
}

} // namespace vhpano
