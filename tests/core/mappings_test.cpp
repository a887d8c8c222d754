// SPDX-License-Identifier: BSD-3-Clause
#include "core/mappings.h"

#include "directions.h"
#include "floats.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstring>
#include <functional>
#include <numbers>
#include <vector>

using namespace VHL;

namespace {

constexpr double pi = std::numbers::pi;

const dSphericalMapping spherical;
const dFisheyeMapping fisheye;
const dCubicMapping cubic;
const dBallMapping ball;
const dAngularMapping angular;
const dPanoramicConversion* const mappings[] = {&spherical, &fisheye, &cubic, &ball, &angular};

void expectNear(const dVector& actual, const dVector& expected, double tolerance = 1e-6)
{
    EXPECT_LE(distance(actual, expected), tolerance)
        << "(" << actual.x() << ", " << actual.y() << ", " << actual.z() << ") instead of (" << expected.x()
        << ", " << expected.y() << ", " << expected.z() << ")";
}

void expectExactly(const dVector& actual, const dVector& expected)
{
    for (int i = 0; i < 3; ++i)
        EXPECT_EQ(actual[i], expected[i]) << "component " << i;
}

/// A place of the image in the range -1 to 1.
dVector place(double a, double b) { return {float((a + 1) / 2), float((b + 1) / 2), 0.5f}; }

// The rules of the image-to-direction side, in double precision but for the place in the range -1 to 1.
dVector sphericalDirection(float u, float v)
{
    const double longitude = pi * (2 * u - 1), latitude = pi / 2 * (2 * v - 1);
    return {float(std::sin(longitude) * std::cos(latitude)), float(std::sin(latitude)),
            float(-std::cos(latitude) * std::cos(longitude))};
}

/// Circular images: the angle to the axis by the radius, and which way the axis points.
dVector circularDirection(float u, float v, const std::function<double(double)>& angle, double axis)
{
    const float a = 2 * u - 1, b = 2 * v - 1;
    const double r = std::sqrt(double(a) * a + double(b) * b);
    if (r > 1)
        return {0, 0, 0};
    const double s = r == 0 ? 0 : std::sin(angle(r)) / r;
    return {float(s * a), float(s * b), float(axis * std::cos(angle(r)))};
}

} // namespace

TEST(Mappings, HaveTheirOperationsInOrder)
{
    const auto slot = [](auto member) {
        std::ptrdiff_t first = 0;
        std::memcpy(&first, &member, sizeof first);
        return (first - 1) / std::ptrdiff_t(sizeof(void*));
    };
    EXPECT_EQ(slot(&dPanoramicConversion::toTextureCoordinates), 2); // after the two destructors
    EXPECT_EQ(slot(&dPanoramicConversion::toDirection), 3);
    EXPECT_EQ(sizeof(dCubicMapping), sizeof(void*));
}

TEST(Mappings, DirectionsFollowTheRules)
{
    for (int i = 0; i <= 200; ++i)
        for (int j = 0; j <= 200; ++j) {
            // Not the rim itself: on which side of it a rounded place lies is the next test's.
            const float u = float(i) / 200, v = float(j) / 200;
            if (std::abs(std::hypot(2 * double(u) - 1, 2 * double(v) - 1) - 1) < 1e-6)
                continue;
            expectNear(spherical.toDirection({u, v, 7}), sphericalDirection(u, v));
            expectNear(fisheye.toDirection({u, v, 7}), circularDirection(
                                                           u, v, [](double r) { return pi / 2 * r; }, -1));
            expectNear(angular.toDirection({u, v, 7}), circularDirection(
                                                           u, v, [](double r) { return pi * r; }, -1));
            expectNear(ball.toDirection({u, v, 7}), circularDirection(
                                                        u, v, [](double r) { return 2 * std::asin(r); }, 1));
        }
}

TEST(Mappings, TheRimBelongsToTheCircle)
{
    for (const dPanoramicConversion* const mapping : {static_cast<const dPanoramicConversion*>(&fisheye),
                                                      static_cast<const dPanoramicConversion*>(&angular),
                                                      static_cast<const dPanoramicConversion*>(&ball)}) {
        for (const dVector& rim :
             {dVector(1, 0.5f, 0), dVector(0, 0.5f, 0), dVector(0.5f, 0, 0), dVector(0.5f, 1, 0)})
            EXPECT_NEAR(std::hypot(mapping->toDirection(rim).x(), mapping->toDirection(rim).y(),
                                   mapping->toDirection(rim).z()),
                        1, 1e-6);
        expectExactly(mapping->toDirection({std::nextafter(1.0f, 2.0f), 0.5f, 0}), dVector(0, 0, 0));
        expectExactly(mapping->toDirection({1, std::nextafter(0.5f, 1.0f) + 1e-4f, 0}), dVector(0, 0, 0));
        expectExactly(mapping->toDirection({1, 1, 0}), dVector(0, 0, 0));
    }
    expectExactly(fisheye.toDirection({1, 1, 0.5f}), dVector(0, 0, 0));
}

TEST(Mappings, TextureCoordinatesFollowTheRules)
{
    // Off the axes, where a sine or cosine still tells the angle; the way there and back covers the rest.
    int tested = 0;
    forDirections([&](const dVector& d) {
        const double x = d.x(), y = d.y(), z = d.z(), phi = std::atan2(y, x);
        if (std::abs(y) < 0.99) {
            expectNear(spherical.toTextureCoordinates(d),
                       place(std::atan2(x, -z) / pi, std::asin(y) / (pi / 2)));
            ++tested;
        }
        if (std::abs(z) > 0.99)
            return;
        const double theta = std::acos(-z), alpha = 0.5 * std::acos(z);
        expectNear(fisheye.toTextureCoordinates(d),
                   z > 0 ? dVector(0, 0, 0)
                         : place(2 * std::cos(phi) * theta / pi, 2 * std::sin(phi) * theta / pi));
        expectNear(angular.toTextureCoordinates(d),
                   place(std::cos(phi) * theta / pi, std::sin(phi) * theta / pi));
        expectNear(ball.toTextureCoordinates(d),
                   place(std::sin(alpha) * std::cos(phi), std::sin(alpha) * std::sin(phi)));
    });
    EXPECT_GT(tested, 100'000);
}

TEST(Mappings, ThereAndBackIsTheSameDirection)
{
    double worst[5] = {};
    forDirections([&](const dVector& d) {
        for (int i = 0; i < 5; ++i) {
            if (mappings[i] == &fisheye && d.z() > 0)
                continue;
            const double error = distance(mappings[i]->toDirection(mappings[i]->toTextureCoordinates(d)), d);
            // The ball's rim: see its description.
            const double sine = std::hypot(d.x(), d.y());
            const double allowed =
                mappings[i] == &ball && d.z() < 0 ? std::max(1e-6, std::min(4e-7 / sine, 2e-3)) : 1e-6;
            ASSERT_LE(error, allowed)
                << "mapping " << i << ", (" << d.x() << ", " << d.y() << ", " << d.z() << ")";
            if (allowed == 1e-6)
                worst[i] = std::max(worst[i], error);
        }
    });
    for (const double error : worst)
        EXPECT_GT(error, 0) << "nothing was tested";
}

TEST(Mappings, PlacesComeBack)
{
    for (int i = 1; i < 200; ++i)
        for (int j = 1; j < 1200; j += j % 200 == 199 ? 2 : 1) { // between the faces, not on the seams
            const dVector t(float(i) / 200, float(j) / 1200, 0.5f);
            expectNear(cubic.toTextureCoordinates(cubic.toDirection(t)), t);
            if (j >= 12 && j <= 1188) // farther from the poles than roundings of directions reach
                expectNear(spherical.toTextureCoordinates(spherical.toDirection(t)), t, 5e-6);
            const double r = std::hypot(2.0 * t.x() - 1, 2.0 * t.y() - 1);
            if (r > 0.95)
                continue;
            expectNear(angular.toTextureCoordinates(angular.toDirection(t)), t);
            expectNear(ball.toTextureCoordinates(ball.toDirection(t)), t);
            expectNear(fisheye.toTextureCoordinates(fisheye.toDirection(t)), t);
        }
}

TEST(Mappings, PlacesFarOutsideAreNoDirectionOrSome)
{
    for (const float u : oddFloats)
        for (const float v : oddFloats) {
            for (const dPanoramicConversion* const mapping : mappings)
                (void)mapping->toDirection({u, v, 0});
            if (u * u + v * v > 3) {
                expectExactly(ball.toDirection({u, v, NaN}), dVector(0, 0, 0));
                expectExactly(fisheye.toDirection({u, v, NaN}), dVector(0, 0, 0));
                expectExactly(angular.toDirection({u, v, NaN}), dVector(0, 0, 0));
            }
        }
}

TEST(Mappings, AnyFloatsGivePlacesInTheImageOrNaN)
{
    for (const float x : oddFloats)
        for (const float y : oddFloats)
            for (const float z : oddFloats)
                for (const dPanoramicConversion* const mapping : mappings) {
                    const dVector t = mapping->toTextureCoordinates({x, y, z});
                    for (int i = 0; i < 2; ++i)
                        EXPECT_TRUE(std::isnan(t[i]) || (t[i] >= 0 && t[i] <= 1))
                            << x << ' ' << y << ' ' << z;
                }
}

TEST(Mappings, TheNullVectorHasAPlace)
{
    for (const dPanoramicConversion* const mapping : mappings) {
        const dVector t = mapping->toTextureCoordinates({0, 0, 0});
        EXPECT_TRUE(t.x() >= 0 && t.x() <= 1 && t.y() >= 0 && t.y() <= 1);
    }
}

TEST(SphericalMapping, AheadAndUp)
{
    expectExactly(spherical.toTextureCoordinates({0, 0, -1}), {0.5f, 0.5f, 0.5f});
    EXPECT_EQ(spherical.toTextureCoordinates({0, 1, 0}).y(), 1.0f);
    EXPECT_EQ(spherical.toTextureCoordinates({0, -1, 0}).y(), 0.0f);
    expectExactly(spherical.toTextureCoordinates({1, 0, 0}), {0.75f, 0.5f, 0.5f});
    expectExactly(spherical.toTextureCoordinates({-1, 0, 0}), {0.25f, 0.5f, 0.5f});
    // A rounding beyond the pole is the pole.
    EXPECT_EQ(spherical.toTextureCoordinates({0, std::nextafter(1.0f, 2.0f), 0}).y(), 1.0f);
}

TEST(FisheyeMapping, HasNoPlaceBehindTheCamera)
{
    expectExactly(fisheye.toTextureCoordinates({0, 0, 1}), {0, 0, 0});
    expectExactly(fisheye.toTextureCoordinates({1, 0, 1e-45f}), {0, 0, 0});
    expectExactly(fisheye.toTextureCoordinates({1, 0, 0}), {1, 0.5f, 0.5f});
    expectExactly(fisheye.toTextureCoordinates({0, 0, -1}), {0.5f, 0.5f, 0.5f});
}

TEST(FisheyeMapping, DirectionsAtRightAnglesComeBack)
{
    for (int i = 0; i < 100'000; ++i) {
        const double angle = 2 * pi * i / 100'000;
        const dVector d(float(std::cos(angle)), float(std::sin(angle)), -0.0f);
        ASSERT_LE(distance(fisheye.toDirection(fisheye.toTextureCoordinates(d)), d), 1e-6) << angle;
    }
}

TEST(AngularMapping, BehindIsOnTheRim)
{
    const dVector t = angular.toTextureCoordinates({0, 0, 1});
    EXPECT_NEAR(std::hypot(2 * t.x() - 1, 2 * t.y() - 1), 1, 1e-6);
    expectNear(angular.toDirection(t), {0, 0, 1});
    expectExactly(angular.toTextureCoordinates({0, 0, -1}), {0.5f, 0.5f, 0.5f});
}

TEST(BallMapping, TheMiddleLooksAtWhoLooks)
{
    expectExactly(ball.toDirection({0.5f, 0.5f, 0.5f}), {0, 0, 1});
    expectExactly(ball.toTextureCoordinates({0, 0, 1}), {0.5f, 0.5f, 0.5f});
    const dVector t = ball.toTextureCoordinates({0, 0, -1});
    EXPECT_NEAR(std::hypot(2 * t.x() - 1, 2 * t.y() - 1), 1, 1e-6);
    expectNear(ball.toDirection(t), {0, 0, -1});
}

TEST(CubicMapping, AxesAreTheMiddlesOfTheFaces)
{
    const dVector axes[] = {{0, 0, -1}, {0, 0, 1}, {0, -1, 0}, {0, 1, 0}, {1, 0, 0}, {-1, 0, 0}};
    for (int face = 0; face < 6; ++face) {
        const float v = float(2 * face + 1) / 12;
        expectExactly(cubic.toTextureCoordinates(axes[face]), {0.5f, v, 0.5f});
        expectNear(cubic.toDirection({0.5f, v, 0.5f}), axes[face]);
        // Zeros of either sign mean the same, and so does next to nothing.
        for (int which = 0; which < 27; ++which)
            expectNear(cubic.toTextureCoordinates(neighbour(axes[face], which)), {0.5f, v, 0.5f});
        dVector negative = axes[face];
        for (int i = 0; i < 3; ++i)
            if (negative[i] == 0)
                negative[i] = -0.0f;
        expectNear(cubic.toTextureCoordinates(negative), {0.5f, v, 0.5f});
    }
}

TEST(CubicMapping, FacesLieAsListed)
{
    for (int i = 0; i <= 20; ++i)
        for (int j = 0; j < 20; ++j) {
            const double a = i / 10.0 - 1, b = j / 10.0 - 1 + 0.05;
            const dVector faces[] = {unit(a, b, -1),  unit(-a, b, 1), unit(-a, -1, b),
                                     unit(-a, 1, -b), unit(1, b, a),  unit(-1, b, -a)};
            for (int face = 0; face < 6; ++face)
                expectNear(cubic.toDirection({float((a + 1) / 2), float((face + (b + 1) / 2) / 6), 0.5f}),
                           faces[face]);
        }
}

TEST(CubicMapping, FacesBeginAtTheirThresholds)
{
    expectNear(cubic.toDirection({0.5f, 1, 0}), unit(-1, 1, 0));
    // Just below a face the one before goes on.
    const float threshold = 1 + 0.16666667f * -1;
    EXPECT_EQ(threshold, float(5.0 / 6));
    expectNear(cubic.toDirection({0.5f, threshold, 0}), unit(-1, -1, 0));
    expectNear(cubic.toDirection({0.5f, std::nextafter(threshold, 0.0f), 0}), unit(1, 1, 0));
    // No face of its own below 0 and above 1: the plane goes on.
    expectNear(cubic.toDirection({0.5f, -0.5f, 0}), unit(0, -7, -1));
    expectNear(cubic.toDirection({2, 1.5f, 0}), unit(-1, 7, -3));
}

TEST(CubicMapping, KeepsTheStepsWhereTheyComeBack)
{
    // The steps as they are laid down, roundings and all.
    const auto steps = [](const dVector& d) -> dVector {
        const auto project = [](float longitude, float latitude) {
            const double c = std::cos(double(latitude));
            return std::pair(float(c * std::sin(double(longitude)) / (c * std::cos(double(longitude)))),
                             float(std::sin(double(latitude)) / (c * std::cos(double(longitude)))));
        };
        const auto atan2 = [](float y, float x) { return float(std::atan2(double(y), double(x))); };
        const auto asin = [](float x) { return float(std::asin(double(x))); };
        const float longitude = atan2(d.x(), -d.z()), q = 0.7853982f, q3 = 2.3561945f, q5 = 3.926991f;
        int face = 0, k = 0;
        if (-q <= longitude && longitude < q) {
        } else if (q <= longitude && longitude < q3) {
            face = 4, k = 2;
        } else if (q3 <= longitude && longitude < q5) {
            face = 1, k = 4;
        } else if (-q5 <= longitude && longitude < -q3) {
            face = 1, k = -4;
        } else if (-q3 <= longitude && longitude < -q) {
            face = 5, k = -2;
        }
        auto [a, b] = project(longitude - float(k) * q, asin(d.y()));
        if (a < -1 || a > 1)
            return {0.5f, 0.5f, 0};
        float m = 1;
        if (b <= -1) {
            std::tie(a, b) = project(atan2(d.x(), -d.y()), asin(d.z()));
            m = -1, face = 2;
        }
        if (b >= 1) {
            std::tie(a, b) = project(atan2(d.x(), d.y()), asin(-d.z()));
            m = -1, face = 3;
        }
        a *= m;
        return {std::clamp(a / 2 + 0.5f, 0.0f, 1.0f),
                (std::clamp(b / 2 + 0.5f, 0.0f, 1.0f) + float(face)) / 6, 0.5f};
    };
    int kept = 0, mended = 0;
    forDirections([&](const dVector& d) {
        const dVector literal = steps(d);
        if (distance(cubic.toDirection(literal), d) > 1e-6) {
            ++mended;
            return;
        }
        ++kept;
        const dVector ours = cubic.toTextureCoordinates(d);
        for (int i = 0; i < 3; ++i)
            ASSERT_EQ(ours[i], literal[i]) << "(" << d.x() << ", " << d.y() << ", " << d.z() << ")";
    });
    EXPECT_GT(kept, 100'000);
    EXPECT_GT(mended, 0);
}

// Nothing is normalised: of what is no unit direction the sine alone counts, on either side of every
// threshold.
TEST(Mappings, TakeOtherDirectionsAsTheyAre)
{
    for (const float y : {-0.95f, 0.3f, 0.9f, std::nextafter(0.9f, 1.0f), 0.95f, 1.0f}) {
        const dVector d(1, y, 1);
        EXPECT_NEAR(spherical.toTextureCoordinates(d).y(), (std::asin(double(y)) / (pi / 2) + 1) / 2, 1e-6)
            << y;
        // The view's axis is -z; 45 degrees up and right around it.
        const dVector away(1, 1, -y);
        const double r = std::acos(double(y)) / pi;
        EXPECT_NEAR(angular.toTextureCoordinates(away).x(), (std::min(r, 1.0) * std::sqrt(0.5) + 1) / 2, 1e-6)
            << y;
    }
}
