// SPDX-License-Identifier: BSD-3-Clause
#include "host/render/triangulate.h"

#include "host/render/vector.h"

#include <gtest/gtest.h>

#include <numbers>
#include <random>
#include <set>

namespace {

using host::Triangle;
using host::operator+, host::operator-, host::operator*;

struct Point2 {
    float x, y;
};
using Ring = std::vector<Point2>;

double shoelace(const Ring& ring)
{
    double doubled = 0.0;
    for (std::size_t i = 0; i < ring.size(); ++i) {
        const Point2 a = ring[i], b = ring[(i + 1) % ring.size()];
        doubled += double(a.x) * b.y - double(b.x) * a.y;
    }
    return 0.5 * doubled;
}

/// One polygon with holes, lifted from the plane by `lift`.
template <class Lift>
void fill(host::Object& object, const std::vector<Ring>& rings, Lift lift)
{
    host::Polygon polygon;
    for (const Ring& ring : rings) {
        object.loops.push_back({std::uint32_t(object.loopVertices.size()), std::uint32_t(ring.size())});
        for (const Point2 p : ring) {
            object.loopVertices.push_back(std::uint32_t(object.vertices.size()));
            object.vertices.push_back({std::uint32_t(object.vectors.size())});
            object.vectors.push_back(lift(p));
        }
    }
    polygon.loopCount = std::uint32_t(rings.size());
    object.polygons.push_back(polygon);
}

miVector flat(Point2 p) { return {p.x, p.y, 0.0f}; }

std::vector<Triangle> cut(const host::Object& object)
{
    std::vector<Triangle> triangles;
    host::triangulate(object, object.polygons.front(), triangles);
    return triangles;
}

/// The area of a triangle along the plane's normal: negative when it is turned over.
double signedArea(const host::Object& object, const Triangle& t, miVector normal)
{
    const auto at = [&](int i) { return object.vectors[object.vertices[t[std::size_t(i)]].point]; };
    const miVector u = at(1) - at(0), v = at(2) - at(0);
    return 0.5 * ((double(u.y) * v.z - double(u.z) * v.y) * normal.x +
                  (double(u.z) * v.x - double(u.x) * v.z) * normal.y +
                  (double(u.x) * v.y - double(u.y) * v.x) * normal.z);
}

/// Every triangle is the right way round, and together they have the polygon's area. What rounding of the
/// points makes of a triangle without area may be `least` in the other direction.
void expectCovers(const host::Object& object, double area, miVector normal, double least = 0.0)
{
    double sum = 0.0;
    for (const Triangle& t : cut(object)) {
        const double one = signedArea(object, t, normal);
        EXPECT_GT(one, -least);
        sum += one;
    }
    EXPECT_NEAR(sum, area, 1e-5 * area);
}

Ring star(std::mt19937& random, Point2 centre, float inner, float outer, int corners)
{
    std::uniform_real_distribution<float> radius(inner, outer);
    Ring ring;
    for (int i = 0; i < corners; ++i) {
        const float angle = 2.0f * std::numbers::pi_v<float> * float(i) / float(corners);
        const float r = radius(random);
        ring.push_back({centre.x + r * std::cos(angle), centre.y + r * std::sin(angle)});
    }
    return ring;
}

TEST(Triangulate, AConvexPolygonIsAFan)
{
    host::Object object;
    fill(object, {{{0, 0}, {2, 0}, {3, 1}, {1, 3}, {-1, 1}}}, flat);
    object.polygons.front().convex = true;
    EXPECT_EQ(cut(object), (std::vector<Triangle>{{0, 1, 2}, {0, 2, 3}, {0, 3, 4}}));
}

TEST(Triangulate, RandomStarsWithHolesKeepTheirArea)
{
    std::mt19937 random(1);
    for (int round = 0; round < 300; ++round) {
        SCOPED_TRACE(round);
        const int corners = 3 + int(random() % 60);
        // With three corners the inner radius keeps the holes' circle inside.
        std::vector<Ring> rings = {star(random, {0, 0}, corners < 8 ? 6.0f : 2.0f, 7.0f, corners)};
        double area = shoelace(rings[0]);
        for (int hole = 0; hole < round % 5; ++hole) {
            const Point2 centre = {0.9f * std::cos(1.3f * float(hole)), 0.9f * std::sin(1.3f * float(hole))};
            Ring ring = star(random, centre, 0.1f, 0.35f, 3 + int(random() % 9));
            area -= shoelace(ring);
            if (random() % 2)
                std::reverse(ring.begin(), ring.end()); // scenes write holes either way round
            rings.push_back(ring);
        }
        host::Object object;
        fill(object, rings, flat);
        expectCovers(object, area, {0, 0, 1});
    }
}

TEST(Triangulate, AnyPlaneWillDoAndTheFrontStaysInFront)
{
    std::mt19937 random(2);
    const std::vector<std::pair<miVector, miVector>> planes = {
        {{0, 1, 0}, {0, 0, 1}}, {{0, 0, 1}, {1, 0, 0}}, {{1, 0, 0}, {0, 1, 0}},       {{0, 0, 1}, {0, 1, 0}},
        {{1, 0, 0}, {0, 0, 1}}, {{0, 1, 0}, {1, 0, 0}}, {{0.6f, 0, 0.8f}, {0, 1, 0}},
    };
    for (const auto& [u, v] : planes) {
        const Ring outline = star(random, {0, 0}, 2.0f, 6.0f, 17), hole = star(random, {0, 0}, 0.3f, 1.0f, 9);
        host::Object object;
        fill(object, {outline, hole}, [&u = u, &v = v](Point2 p) {
            return u * p.x + v * p.y + miVector{100.0f, -50.0f, 20.0f};
        });
        const miVector normal = {u.y * v.z - u.z * v.y, u.z * v.x - u.x * v.z, u.x * v.y - u.y * v.x};
        expectCovers(object, shoelace(outline) - shoelace(hole), normal);
    }
}

TEST(Triangulate, AComb)
{
    // Long teeth: every corner at their feet is reflex, and most candidates are no ears.
    Ring ring = {{0, -1}, {40, -1}};
    for (int i = 40; i >= 0; --i)
        ring.push_back({float(i), i % 2 ? 30.0f : 0.0f});
    host::Object object;
    fill(object, {ring}, flat);
    expectCovers(object, shoelace(ring), {0, 0, 1});
}

TEST(Triangulate, CornersOnAStraightLineAndDoubledOnesDoNoHarm)
{
    const Ring ring = {{0, 0}, {1, 0}, {2, 0}, {2, 0}, {2, 1}, {2, 2}, {1, 2}, {0, 2}, {0, 2}, {0, 1}};
    host::Object object;
    fill(object, {ring}, flat);
    expectCovers(object, 4.0, {0, 0, 1});
}

TEST(Triangulate, AHoleThatTouchesTheOutlineAndOneBehindAnother)
{
    const Ring outline = {{0, 0}, {10, 0}, {10, 10}, {0, 10}};
    const Ring left = {{1, 4}, {3, 4}, {3, 6}, {1, 6}}, right = {{5, 4}, {10, 5}, {5, 6}};
    host::Object object;
    fill(object, {outline, left, right}, flat);
    expectCovers(object, 100.0 - 4.0 - 5.0, {0, 0, 1});
}

TEST(Triangulate, HolesThatShareEdgesWithTheOutlineOrOneAnother)
{
    const Ring outline = {{0, 0}, {10, 0}, {10, 10}, {0, 10}};
    const auto box = [](float x, float y, float X, float Y) { return Ring{{x, y}, {X, y}, {X, Y}, {x, Y}}; };
    struct Row {
        const char* what;
        std::vector<Ring> holes;
        double area;
    };
    for (const Row& row : {
             Row{"an edge on the right", {box(4, 4, 10, 6)}, 88},
             Row{"an edge on the left", {box(0, 4, 6, 6)}, 88},
             Row{"a corner", {box(6, 0, 10, 4)}, 84},
             Row{"a whole edge", {box(7, 0, 10, 10)}, 70},
             Row{"from side to side", {box(0, 4, 10, 6)}, 80},
             Row{"a cross from side to side", {box(0, 4, 10, 6), box(4, 0, 6, 4), box(4, 6, 6, 10)}, 64},
             Row{"two that share an edge", {box(2, 2, 4, 4), box(4, 2, 6, 4)}, 92},
             Row{"two that share part of one", {box(2, 2, 4, 6), box(4, 4, 6, 8)}, 84},
             Row{"two that share a corner", {box(2, 2, 4, 4), box(4, 4, 6, 6)}, 92},
             Row{"a ring of four around an island",
                 {box(2, 2, 6, 3), box(5, 3, 6, 6), box(2, 5, 5, 6), box(2, 3, 3, 5)},
                 88},
             Row{"a corner on an edge", {Ring{{5, 5}, {10, 3}, {10, 7}}}, 90},
             Row{"everything", {box(0, 0, 10, 10)}, 0},
         })
        for (const bool turned : {false, true}) {
            SCOPED_TRACE(row.what);
            std::vector<Ring> rings = {outline};
            rings.insert(rings.end(), row.holes.begin(), row.holes.end());
            if (turned)
                for (Ring& ring : rings)
                    std::reverse(ring.begin(), ring.end());
            host::Object object;
            fill(object, rings, flat);
            expectCovers(object, row.area, {0, 0, turned ? -1.0f : 1.0f});
        }
}

TEST(Triangulate, RandomHolesOnALattice)
{
    // Squares of a lattice that share edges and corners in every way, in planes where coordinates are
    // rounded.
    std::mt19937 random(3);
    const miVector u = {0.6f, 0, 0.8f}, v = {-0.8f * 0.6f, 0.8f, 0.6f * 0.6f};
    const miVector normal = {u.y * v.z - u.z * v.y, u.z * v.x - u.x * v.z, u.x * v.y - u.y * v.x};
    for (int round = 0; round < 400; ++round) {
        SCOPED_TRACE(round);
        constexpr int n = 5;
        std::vector<Ring> rings = {{{0, 0}, {n, 0}, {n, n}, {0, n}}};
        double area = n * n;
        for (int y = 0; y < n; ++y)
            for (int x = 0; x < n; ++x)
                if (random() % 3 == 0) {
                    const float a = float(x), b = float(y);
                    rings.push_back({{a, b}, {a + 1, b}, {a + 1, b + 1}, {a, b + 1}});
                    area -= 1.0;
                }
        host::Object object;
        if (round % 2 == 0)
            fill(object, rings, flat);
        else
            fill(object, rings, [&](Point2 p) { return u * p.x + v * p.y + miVector{3.0f, -5.0f, 2.0f}; });
        if (round % 2 == 0)
            expectCovers(object, area, {0, 0, 1});
        else
            expectCovers(object, area, normal, 1e-6);
    }
}

TEST(Triangulate, ManyHolesInAGrid)
{
    std::vector<Ring> rings = {{{0, 0}, {20, 0}, {20, 20}, {0, 20}}};
    for (int y = 0; y < 10; ++y)
        for (int x = 0; x < 10; ++x) {
            const float a = float(2 * x) + 0.5f, b = float(2 * y) + 0.5f;
            rings.push_back({{a, b}, {a + 1, b}, {a + 1, b + 1}, {a, b + 1}});
        }
    host::Object object;
    fill(object, rings, flat);
    expectCovers(object, 400.0 - 100.0, {0, 0, 1});
}

TEST(Triangulate, WhatHasNoAreaGivesNoTriangles)
{
    for (const Ring& ring :
         {Ring{{0, 0}, {1, 0}}, Ring{{0, 0}, {1, 1}, {2, 2}, {3, 3}}, Ring{{5, 5}, {5, 5}, {5, 5}, {5, 5}}}) {
        host::Object object;
        fill(object, {ring}, flat);
        EXPECT_TRUE(cut(object).empty());
    }
}

TEST(Triangulate, CrossingEdgesEnd)
{
    host::Object object;
    fill(object, {{{0, 0}, {2, 2}, {2, 0}, {0, 2}, {1, 3}, {1, -1}}, {{10, 10}, {11, 10}, {11, 11}}}, flat);
    for (const Triangle& t : cut(object))
        EXPECT_EQ((std::set<std::uint32_t>(t.begin(), t.end()).size()), 3u);
}

} // namespace
