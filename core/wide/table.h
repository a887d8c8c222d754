// SPDX-License-Identifier: BSD-3-Clause
// The table of the loops for vectors of VHL_BITS bits, named VHL_KERNELS.
#pragma once

#include "mappings.h"
#include "transforms.h"

namespace VHL::wide {

const Kernels VHL_KERNELS = {
    .clamp = channels<rules::Clamp>,
    .threshold = channels<rules::Threshold>,
    .invert = channels<rules::Invert>,
    .solarize = channels<rules::Solarize>,
    .inverseSolarize = channels<rules::InverseSolarize>,
    .add = channels<rules::Add>,
    .subtract = channels<rules::Subtract>,
    .multiply = channels<rules::Multiply>,
    .divide = channels<rules::Divide>,
    .expand = channels<rules::Expand>,
    .compress = channels<rules::Compress>,
    .multiplyByAlpha = byAlpha<false>,
    .divideByAlpha = byAlpha<true>,
    .arrange = arrange,
    .power = power,
    .toTextureCoordinates = {map<OfUnit<SphericalCoordinates>>, map<OfUnit<FisheyeCoordinates>>,
                             map<OfUnit<CubicCoordinates>>, map<OfUnit<BallCoordinates>>,
                             map<OfUnit<AngularCoordinates>>},
    .toDirection = {map<SphericalDirection>, map<CircularDirection<1, 2>>, map<CubicDirection>,
                    map<BallDirection>, map<CircularDirection<1, 1>>},
};

} // namespace VHL::wide
