// SPDX-License-Identifier: BSD-3-Clause
#include "mappings.h"

#include <cmath>
#include <numbers>

namespace VHL {

namespace {

constexpr double pi = std::numbers::pi;
constexpr double rightAngle = pi / 2;

/// Of floats, squared without a loss.
double hypotenuse(double a, double b) { return std::sqrt(a * a + b * b); }

/// Above this sine or cosine, angles of unit directions are taken from both legs: the function is too flat to
/// tell them. Others are taken as they are.
constexpr float flat = 0.9f;

bool isUnit(double x, double y, double z) { return std::abs(x * x + y * y + z * z - 1) < 1e-5; }

double angleToAxis(double cosine, double x, double y)
{
    return std::abs(cosine) > flat && isUnit(cosine, x, y) ? std::atan2(hypotenuse(x, y), cosine)
                                                           : std::acos(cosine);
}

double latitude(const dVector& d)
{
    return std::abs(d.y()) > flat && isUnit(d.x(), d.y(), d.z())
               ? std::atan2(double(d.y()), hypotenuse(double(d.x()), double(d.z())))
               : std::asin(double(d.y()));
}

/// From -1 to 1 in both directions to texture coordinates, and back.
dVector toUnit(double a, double b) { return {float((a + 1) / 2), float((b + 1) / 2), 0.5f}; }
dVector fromUnit(const dVector& coordinates) { return coordinates * dVector(2) - dVector(1); }

double radius(const dVector& p) { return hypotenuse(p.x(), p.y()); }

/// A place in a circular image. Roundings must not carry the rim outside, where there is no direction.
dVector toCircle(double angle, double r)
{
    const double a = r * std::cos(angle), b = r * std::sin(angle);
    dVector place = toUnit(a, b);
    for (double inside = 1; radius(fromUnit(place)) > 1; inside -= 0x1p-25)
        place = toUnit(inside * a, inside * b);
    return place;
}

/// The direction at an angle to the axis, given the angle's sine and cosine.
dVector aroundAxis(const dVector& p, double sine, double z)
{
    const double angle = std::atan2(double(p.y()), double(p.x()));
    return {float(sine * std::cos(angle)), float(sine * std::sin(angle)), float(z)};
}

} // namespace

dPanoramicConversion::dPanoramicConversion() noexcept = default;
dPanoramicConversion::~dPanoramicConversion() = default;

dSphericalMapping::dSphericalMapping() noexcept = default;
dSphericalMapping::~dSphericalMapping() = default;

dVector dSphericalMapping::toTextureCoordinates(dVector direction) const
{
    const double longitude = std::atan2(double(direction.x()), -double(direction.z()));
    return toUnit(longitude / pi, latitude(direction) / rightAngle);
}

dVector dSphericalMapping::toDirection(dVector coordinates) const
{
    const dVector p = fromUnit(coordinates);
    const double longitude = pi * p.x(), latitude = rightAngle * p.y();
    return {float(std::sin(longitude) * std::cos(latitude)), float(std::sin(latitude)),
            float(-std::cos(latitude) * std::cos(longitude))};
}

dFisheyeMapping::dFisheyeMapping() noexcept = default;
dFisheyeMapping::~dFisheyeMapping() = default;

dVector dFisheyeMapping::toTextureCoordinates(dVector direction) const
{
    if (direction.z() > 0)
        return {0, 0, 0};
    const double x = direction.x(), y = direction.y();
    return toCircle(std::atan2(y, x), 2 * angleToAxis(-double(direction.z()), x, y) / pi);
}

dVector dFisheyeMapping::toDirection(dVector coordinates) const
{
    const dVector p = fromUnit(coordinates);
    const double r = radius(p);
    if (r > 1)
        return {0, 0, 0};
    const double angle = rightAngle * r;
    return aroundAxis(p, std::sin(angle), -std::cos(angle));
}

dAngularMapping::dAngularMapping() noexcept = default;
dAngularMapping::~dAngularMapping() = default;

dVector dAngularMapping::toTextureCoordinates(dVector direction) const
{
    const double x = direction.x(), y = direction.y();
    return toCircle(std::atan2(y, x), angleToAxis(-double(direction.z()), x, y) / pi);
}

dVector dAngularMapping::toDirection(dVector coordinates) const
{
    const dVector p = fromUnit(coordinates);
    const double r = radius(p);
    if (r > 1)
        return {0, 0, 0};
    const double angle = pi * r;
    return aroundAxis(p, std::sin(angle), -std::cos(angle));
}

dBallMapping::dBallMapping() noexcept = default;
dBallMapping::~dBallMapping() = default;

dVector dBallMapping::toTextureCoordinates(dVector direction) const
{
    const double x = direction.x(), y = direction.y();
    return toCircle(std::atan2(y, x), std::sin(0.5 * angleToAxis(direction.z(), x, y)));
}

dVector dBallMapping::toDirection(dVector coordinates) const
{
    const dVector p = fromUnit(coordinates);
    const double r = radius(p);
    if (r > 1)
        return {0, 0, 0};
    const double angle = 2 * std::asin(r);
    return aroundAxis(p, std::sin(angle), std::cos(angle));
}

dCubicMapping::dCubicMapping() noexcept = default;
dCubicMapping::~dCubicMapping() = default;

namespace {

enum Face { ahead, back, down, up, right, left };

constexpr float sixth = 0.16666667f;
/// Half the angle that a face takes.
constexpr float eighth = 0.7853982f;

/// Where a face begins in v.
constexpr float bottom(int face) { return 1 + sixth * float(face - 6); }

int faceAt(float v)
{
    int face = left;
    while (face > ahead && !(v >= bottom(face)))
        --face;
    return face;
}

/// The point of a face's plane, from the middle of the cube.
dVector onFace(int face, float a, float b)
{
    switch (face) {
    case back:
        return {-a, b, 1};
    case down:
        return {-a, -1, b};
    case up:
        return {-a, 1, -b};
    case right:
        return {1, b, a};
    case left:
        return {-1, b, -a};
    default:
        return {a, b, -1};
    }
}

struct Projected {
    float a, b;
};

/// The projection from the middle of the cube onto the face in the middle of which both angles are 0.
Projected project(float longitude, float latitude)
{
    // A right angle as a float is a little more than one: the cosine, never negative here, comes out so.
    const double c = std::abs(std::cos(double(latitude)));
    const double x = c * std::sin(double(longitude)), y = std::sin(double(latitude)),
                 z = c * std::cos(double(longitude));
    return {float(x / z), float(y / z)};
}

/// The arc sine, also of what is rounded beyond 1. A NaN stays one.
float arcSine(float sine) { return float(std::asin(sine > 1 ? 1.0 : sine < -1 ? -1.0 : double(sine))); }

float arcTangent(float y, float x) { return float(std::atan2(double(y), double(x))); }

} // namespace

dVector dCubicMapping::toTextureCoordinates(dVector d) const
{
    const float longitude = arcTangent(d.x(), -d.z());
    Face face = ahead;
    int turns = 0; // of an eighth of the circle
    if (-eighth <= longitude && longitude < eighth) {
        face = ahead;
    } else if (eighth <= longitude && longitude < 3 * eighth) {
        face = right;
        turns = 2;
    } else if (-3 * eighth <= longitude && longitude < -eighth) {
        face = left;
        turns = -2;
    } else if (3 * eighth <= longitude) {
        face = back;
        turns = 4;
    } else if (longitude < -3 * eighth) {
        face = back;
        turns = -4;
    }

    Projected at = project(longitude - float(turns) * eighth, arcSine(d.y()));
    if (at.b <= -1) {
        face = down;
        at = project(arcTangent(d.x(), -d.y()), arcSine(d.z()));
        at.a = -at.a;
    } else if (at.b >= 1) {
        face = up;
        at = project(arcTangent(d.x(), d.y()), arcSine(-d.z()));
        at.a = -at.a;
    }

    // Roundings may carry an edge beyond the face, and its upper edge, which is the next face's lower one,
    // onto that.
    const dVector within =
        dVector::clamp(dVector(at.a, at.b, 0) / dVector(2) + dVector(0.5f), dVector(0), dVector(1));
    float v = (within.y() + float(face)) / 6;
    while (faceAt(v) > face)
        v = std::nextafter(v, 0.0f);
    return {within.x(), v, 0.5f};
}

dVector dCubicMapping::toDirection(dVector coordinates) const
{
    const int face = faceAt(coordinates.y());
    const dVector p = fromUnit({coordinates.x(), 6 * coordinates.y() - float(face), 0});
    const dVector d = onFace(face, p.x(), p.y());
    const double length = std::sqrt(double(d.x()) * d.x() + double(d.y()) * d.y() + double(d.z()) * d.z());
    return {float(d.x() / length), float(d.y() / length), float(d.z() / length)};
}

} // namespace VHL
