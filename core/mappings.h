// SPDX-License-Identifier: BSD-3-Clause
// Panoramic mappings: from viewing directions to places in a panoramic image, and back.
#pragma once

#include "api.h"
#include "vector.h"

#include <cstddef>

namespace VHL {

/// A layout of panoramic images.
///
/// A direction is a unit vector in camera space: -z is straight ahead, +y up and +x right. Texture
/// coordinates are u from left to right and v from bottom to top, both from 0 to 1, and w, which
/// toTextureCoordinates sets to 0.5 and toDirection does not read.
///
/// toDirection(toTextureCoordinates(d)) is within 1e-6 of every unit direction d that the layout shows,
/// however d is rounded to floats, but where a class says otherwise. Angles near a right one or a straight
/// one are taken from the legs and not from a sine or cosine, which has next to no digits there. Any floats
/// may be given: the null vector gives a place like any direction, a NaN gives NaNs or a place. All are free
/// of state, so that threads may share them. A call takes some 10 to 100 ns, most of it the C library's
/// functions of angles in double precision; for many there are the batch forms below.
class VHL_API dPanoramicConversion {
public:
    dPanoramicConversion() noexcept;
    dPanoramicConversion(const dPanoramicConversion&) noexcept = default;
    dPanoramicConversion& operator=(const dPanoramicConversion&) noexcept = default;
    virtual ~dPanoramicConversion();

    // The order of these is contract.
    virtual dVector toTextureCoordinates(dVector direction) const = 0;
    /// The null vector where the image shows no direction, outside of a circle.
    virtual dVector toDirection(dVector coordinates) const = 0;
};

/// Longitude and latitude: 360 by 180 degrees, straight ahead in the middle.
class VHL_API dSphericalMapping : public dPanoramicConversion {
public:
    dSphericalMapping() noexcept;
    ~dSphericalMapping() override;
    dVector toTextureCoordinates(dVector direction) const override;
    dVector toDirection(dVector coordinates) const override;
};

/// The half space ahead in a circle that touches the image's edges; the distance from the middle is the
/// angle. A direction behind the camera (z > 0) gives (0, 0, 0), w too.
class VHL_API dFisheyeMapping : public dPanoramicConversion {
public:
    dFisheyeMapping() noexcept;
    ~dFisheyeMapping() override;
    dVector toTextureCoordinates(dVector direction) const override;
    dVector toDirection(dVector coordinates) const override;
};

/// A column of six square faces. From the bottom: ahead, back, down, up, right and left. On the edge between
/// two faces a direction lies on either.
class VHL_API dCubicMapping : public dPanoramicConversion {
public:
    dCubicMapping() noexcept;
    ~dCubicMapping() override;
    dVector toTextureCoordinates(dVector direction) const override;
    /// Outside of 0 to 1 the bottom and the top face go on in their planes.
    dVector toDirection(dVector coordinates) const override;
};

/// A mirrored ball seen from afar: +z, towards who looks at it, in the middle, straight ahead all around the
/// rim.
///
/// In the outermost fiftieth of the radius the image spreads few directions over much of it, and floats
/// cannot tell them apart: there and back is within 4e-7 / s there, for a direction with a sine s to the
/// axis, and never off by more than 2e-3.
class VHL_API dBallMapping : public dPanoramicConversion {
public:
    dBallMapping() noexcept;
    ~dBallMapping() override;
    dVector toTextureCoordinates(dVector direction) const override;
    dVector toDirection(dVector coordinates) const override;
};

/// All directions in a circle that touches the image's edges: the distance from the middle is the angle, and
/// straight behind is all around the rim.
class VHL_API dAngularMapping : public dPanoramicConversion {
public:
    dAngularMapping() noexcept;
    ~dAngularMapping() override;
    dVector toTextureCoordinates(dVector direction) const override;
    dVector toDirection(dVector coordinates) const override;
};

/// mapping.toTextureCoordinates for every one of `count` directions, to within 1e-6; unit directions are
/// expected. May be done in place; arrays that overlap in another way are not allowed. The mappings above
/// take as many directions at a time as the processor's vectors hold, others are called for each.
VHL_API void toTextureCoordinates(const dPanoramicConversion& mapping, const dVector* directions,
                                  dVector* coordinates, std::size_t count);
/// mapping.toDirection in the same way.
VHL_API void toDirection(const dPanoramicConversion& mapping, const dVector* coordinates, dVector* directions,
                         std::size_t count);

} // namespace VHL
