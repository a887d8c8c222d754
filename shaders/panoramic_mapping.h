// SPDX-License-Identifier: BSD-3-Clause
// The layout of a panoramic image, chosen by a number.
#pragma once

#include "core/evaluate.h"
#include "core/export.h"
#include "core/mappings.h"

namespace VHL {

/// What users have to know of the number, wherever a shader asks for it.
inline constexpr std::string_view mappingMeaning =
    "Layout of the image: 1 angular map, 2 mirror ball, 3 cube strip (from the top left, right, up, down, "
    "back, ahead), 4 fisheye; 0 and any other number latitude-longitude. Read once, when the shader is made "
    "ready.";

/// An instance's layout, from its init on.
class PanoramicMapping {
public:
    PanoramicMapping() = default;
    PanoramicMapping(const PanoramicMapping&) = delete; // it points into itself
    PanoramicMapping& operator=(const PanoramicMapping&) = delete;

    void select(int number)
    {
        switch (number) {
        case 1:
            selected_ = &angular_;
            break;
        case 2:
            selected_ = &ball_;
            break;
        case 3:
            selected_ = &cubic_;
            break;
        case 4:
            selected_ = &fisheye_;
            break;
        default:
            selected_ = &spherical_;
        }
    }

    const dPanoramicConversion* operator->() const { return selected_; }

private:
    dSphericalMapping spherical_;
    dAngularMapping angular_;
    dBallMapping ball_;
    dCubicMapping cubic_;
    dFisheyeMapping fisheye_;
    const dPanoramicConversion* selected_ = &spherical_;
};

} // namespace VHL
