// SPDX-License-Identifier: BSD-3-Clause
#include "host/base/shapes.h"

#include "host/base/vector.h"

#include <gtest/gtest.h>

#include <map>
#include <set>
#include <utility>

using namespace host::base;

namespace {

struct Shape {
    const char* name;
    Mesh mesh;
    int euler; ///< points − edges + polygons: 2 for a ball, 0 for a ring
    float volume;
};

constexpr float pi = 3.14159265f;

std::vector<Shape> solids()
{
    return {{"sphere", sphere(96, 64, 2.0f), 2, 4.0f / 3.0f * pi * 8.0f},
            {"coarsest sphere", sphere(0, 0, 1.0f), 2, 0.0f},
            {"cube", cube(2, 3, 4, {1.0f, 2.0f, 3.0f}), 2, 6.0f},
            {"cone", cone(128, 3, 2.0f, 3.0f), 2, pi * 4.0f * 3.0f / 3.0f},
            {"cylinder", cylinder(128, 2, 2.0f, 3.0f), 2, pi * 4.0f * 3.0f},
            {"torus", torus(128, 64, 2.0f, 0.5f), 0, 2.0f * pi * pi * 2.0f * 0.25f}};
}

/// Calls visit(polygon's vertices) for each.
template <class Visit>
void forEachPolygon(const Mesh& mesh, Visit visit)
{
    std::size_t first = 0;
    for (const unsigned size : mesh.sizes) {
        std::vector<hostVertex> polygon;
        for (unsigned i = 0; i < size; ++i)
            polygon.push_back(mesh.vertices.at(mesh.corners.at(first + i)));
        visit(polygon);
        first += size;
    }
    EXPECT_EQ(first, mesh.corners.size());
}

miVector cross(const miVector& a, const miVector& b)
{
    return {a.y * b.z - a.z * b.y, a.z * b.x - a.x * b.z, a.x * b.y - a.y * b.x};
}

/// Twice the area along the normal; exact for triangles, the mean for quads.
miVector area(const Mesh& mesh, const std::vector<hostVertex>& polygon)
{
    miVector sum = {};
    for (std::size_t i = 0; i < polygon.size(); ++i)
        sum =
            sum + cross(mesh.points[polygon[i].point], mesh.points[polygon[(i + 1) % polygon.size()].point]);
    return sum;
}

} // namespace

TEST(Shapes, AreClosed)
{
    for (const Shape& shape : solids()) {
        std::map<std::pair<unsigned, unsigned>, int> edges;
        forEachPolygon(shape.mesh, [&](const auto& polygon) {
            ASSERT_GE(polygon.size(), 3u);
            for (std::size_t i = 0; i < polygon.size(); ++i)
                ++edges[{polygon[i].point, polygon[(i + 1) % polygon.size()].point}];
        });
        for (const auto& [edge, count] : edges) {
            EXPECT_EQ(count, 1) << shape.name << ": every edge is run through once";
            EXPECT_TRUE(edges.contains({edge.second, edge.first}))
                << shape.name << ": and once the other way";
        }
    }
}

TEST(Shapes, HaveTheRightEulerCharacteristic)
{
    for (const Shape& shape : solids()) {
        std::set<std::pair<unsigned, unsigned>> edges;
        std::set<unsigned> used;
        forEachPolygon(shape.mesh, [&](const auto& polygon) {
            for (std::size_t i = 0; i < polygon.size(); ++i) {
                const unsigned a = polygon[i].point;
                const unsigned b = polygon[(i + 1) % polygon.size()].point;
                edges.insert(std::minmax(a, b));
                used.insert(a);
            }
        });
        EXPECT_EQ(used.size(), shape.mesh.points.size()) << shape.name << ": no point is left over";
        const auto euler = static_cast<long>(used.size()) - static_cast<long>(edges.size()) +
                           static_cast<long>(shape.mesh.sizes.size());
        EXPECT_EQ(euler, shape.euler) << shape.name;
    }
}

TEST(Shapes, EncloseTheirVolumeFromOutside)
{
    for (const Shape& shape : solids()) {
        if (shape.volume == 0.0f)
            continue;
        // By the divergence theorem, with each polygon fanned out from its first corner.
        double volume = 0.0;
        forEachPolygon(shape.mesh, [&](const auto& polygon) {
            const auto& points = shape.mesh.points;
            for (std::size_t i = 1; i + 1 < polygon.size(); ++i)
                volume += dot(points[polygon[0].point],
                              cross(points[polygon[i].point], points[polygon[i + 1].point])) /
                          6.0;
        });
        EXPECT_NEAR(volume / shape.volume, 1.0, 0.005) << shape.name;
    }
}

TEST(Shapes, HaveUnitNormalsThatAgreeWithTheirPolygons)
{
    auto shapes = solids();
    shapes.push_back({"square", square(2, 3, 4.0f, 1.0f), 1, 0.0f});
    for (const Shape& shape : shapes) {
        for (const miVector& normal : shape.mesh.normals)
            ASSERT_NEAR(dot(normal, normal), 1.0f, 1e-5f) << shape.name;
        forEachPolygon(shape.mesh, [&](const auto& polygon) {
            const miVector facing = area(shape.mesh, polygon);
            for (const hostVertex& corner : polygon)
                EXPECT_GT(dot(facing, shape.mesh.normals.at(corner.normal)), 0.0f) << shape.name;
        });
    }
}

TEST(Shapes, HaveTextureCoordinatesThatGrowToTheRightAndUp)
{
    // Seen from outside the texture is not mirrored: its area, as the polygon's, is counter-clockwise.
    auto shapes = solids();
    shapes.push_back({"square", square(2, 3, 4.0f, 1.0f), 1, 0.0f});
    for (const Shape& shape : shapes)
        forEachPolygon(shape.mesh, [&](const auto& polygon) {
            float sum = 0.0f;
            for (std::size_t i = 0; i < polygon.size(); ++i) {
                const miVector& a = shape.mesh.textures.at(polygon[i].texture);
                const miVector& b = shape.mesh.textures.at(polygon[(i + 1) % polygon.size()].texture);
                sum += a.x * b.y - a.y * b.x;
                EXPECT_TRUE(a.x >= 0.0f && a.y >= 0.0f && a.y <= 1.0f) << shape.name;
            }
            EXPECT_GT(sum, 0.0f) << shape.name;
        });
}

TEST(Shapes, SpheresPointsLieOnTheSphere)
{
    for (const miVector& point : sphere(17, 9, 3.0f).points)
        EXPECT_NEAR(std::sqrt(dot(point, point)), 3.0f, 1e-5f);
}

TEST(Shapes, CountsAreKeptInTheirRange)
{
    EXPECT_EQ(sphere(-5, 0, 1.0f).points.size(), 2u + 3u) << "poles and one ring of three";
    EXPECT_EQ(sphere(1 << 30, 2, 1.0f).points.size(), 2u + mostDivisions);
    EXPECT_EQ(cube(0, 0, 0, {1.0f, 1.0f, 1.0f}).points.size(), 8u);
    EXPECT_EQ(square(1, 1, 1.0f, 1.0f).sizes.size(), 1u);
}
