// SPDX-License-Identifier: BSD-3-Clause
// Area lights: samples over a shape, against closed forms.
#include "tests/host/render/lit.h"

#include "tests/harness/messages.h"
#include "tests/harness/stage.h"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <numbers>
#include <set>

namespace {

using namespace test;

/// Samples of area lights lie on the shape, one in each stratum of rows and columns.
TEST(AreaLight, SamplesLieOnTheShape)
{
    struct Row {
        miLight_area area;
        std::function<void(miLight&)> set;
        std::function<bool(miVector)> on;
    };
    const auto close = [](double a, double b) { return std::abs(a - b) < 1e-4; };
    const Row rows[] = {
        {miLIGHT_RECTANGLE,
         [](miLight& l) {
             l.primitive.rectangle = {{0.5f, 0, 0}, {0, 0, 0.25f}};
         },
         [&](miVector p) { return close(p.y, 5) && std::abs(p.x) <= 0.5f && std::abs(p.z) <= 0.25f; }},
        {miLIGHT_DISC,
         [](miLight& l) {
             l.primitive.disc = {{0, -2, 0}, 0.5f};
         },
         [&](miVector p) { return close(p.y, 5) && std::hypot(p.x, p.z) <= 0.5f + 1e-4f; }},
        {miLIGHT_SPHERE, [](miLight& l) { l.primitive.sphere = {0.5f}; },
         [&](miVector p) { return close(std::hypot(p.x, p.y - 5, p.z), 0.5); }},
        {miLIGHT_CYLINDER,
         [](miLight& l) {
             l.primitive.cylinder = {{0, 0, 2}, 0.5f};
         },
         [&](miVector p) { return close(std::hypot(p.x, p.y - 5), 0.5) && std::abs(p.z) <= 2; }}};
    for (const Row& row : rows) {
        SCOPED_TRACE(int(row.area));
        Lit scene;
        host::Light& light = scene.add({0, 5, 0});
        light.record.area = row.area;
        light.record.samples_u = 4;
        light.record.samples_v = 3;
        row.set(light.record);
        std::vector<miVector> points;
        scene.shade = [&](miColor& result, miState& state) {
            points.push_back(state.org);
            EXPECT_EQ(int(state.count), int(points.size()) - 1);
            result = {1, 1, 1, 1};
            return points.size() % 2 ? miTRUE : miFALSE;
        };
        scene.run();
        EXPECT_EQ(points.size(), 12u);
        EXPECT_EQ(scene.delivered.size(), 6u);
        EXPECT_EQ(scene.samples, 12);
        std::set<std::pair<int, int>> strata;
        for (const miVector& p : points) {
            EXPECT_TRUE(row.on(p)) << p.x << ' ' << p.y << ' ' << p.z;
            if (row.area == miLIGHT_RECTANGLE)
                strata.insert({int((p.x + 0.5f) * 4), int((p.z + 0.25f) / 0.5f * 3)});
        }
        EXPECT_EQ(strata.size(), row.area == miLIGHT_RECTANGLE ? 12u : 0u);
        // A return value of 2 ends the light without another sample.
        points.clear();
        scene.shade = [&](miColor&, miState& state) {
            points.push_back(state.org);
            return points.size() == 5 ? 2 : 1;
        };
        scene.run();
        EXPECT_EQ(scene.delivered.size(), 4u);
        EXPECT_EQ(scene.samples, 4);
    }
}

constexpr double pi = std::numbers::pi;

/// In double precision, as closed forms are.
struct Point {
    double x, y, z;
};
Point operator+(Point a, Point b) { return {a.x + b.x, a.y + b.y, a.z + b.z}; }
Point operator-(Point a, Point b) { return {a.x - b.x, a.y - b.y, a.z - b.z}; }
Point operator*(double s, Point a) { return {s * a.x, s * a.y, s * a.z}; }
double inner(Point a, Point b) { return a.x * b.x + a.y * b.y + a.z * b.z; }
Point outer(Point a, Point b)
{
    return {a.y * b.z - a.z * b.y, a.z * b.x - a.x * b.z, a.x * b.y - a.y * b.x};
}
double norm(Point a) { return std::sqrt(inner(a, a)); }
Point wide(const miVector& v) { return {v.x, v.y, v.z}; }

/// A light over the floor's point at the origin, whose normal is +y, seen by one pixel.
struct Area : Lit {
    host::Light* element = nullptr;

    Area(const miVector& origin, int u, int v)
    {
        element = &add(origin);
        element->name = "lamp";
        record().samples_u = short(u);
        record().samples_v = short(v);
    }
    miLight& record() { return element->record; }

    /// What a matt white surface makes of the samples: their mean with the cosine.
    double mean()
    {
        run();
        double sum = 0;
        for (const Delivered& d : delivered)
            sum += double(d.color.r) * d.cosine;
        return sum / samples;
    }

    /// The shape radiates evenly, by the cosine law, from its front alone: what a light shader makes of the
    /// sample's place. `normal` is the shape's at a place.
    void emit(const std::function<Point(Point)>& normal, double area)
    {
        shade = [normal, area](miColor& result, miState& state) {
            const double cosine = inner(normal(wide(state.org)), wide(state.dir));
            const auto light = float(std::max(cosine, 0.0) * area / (state.dist * state.dist));
            result = {light, light, light, 1};
            return miTRUE;
        };
    }
    void even()
    {
        shade = [](miColor& result, miState&) {
            result = {1, 1, 1, 1};
            return miTRUE;
        };
    }
};

/// Light that falls from a polygon of radiance 1 on the origin with the normal +y: Lambert's sum over the
/// polygon's edges. Of a polygon above the horizon.
double irradiance(const std::vector<Point>& corners)
{
    double sum = 0;
    for (std::size_t i = 0; i < corners.size(); ++i) {
        const Point a = corners[i], b = corners[(i + 1) % corners.size()];
        const Point edge = outer(a, b);
        sum += std::atan2(norm(edge), inner(a, b)) * edge.y / norm(edge);
    }
    return std::abs(sum) / 2;
}

/// The mean of the cosine at the origin over a shape that place(a, b) covers evenly, 0 below the horizon.
template <class Place>
double meanCosine(Place place)
{
    constexpr int steps = 2000;
    double sum = 0;
    for (int i = 0; i < steps; ++i)
        for (int j = 0; j < steps; ++j) {
            const Point p = place((i + 0.5) / steps, (j + 0.5) / steps);
            sum += std::max(0.0, p.y / norm(p));
        }
    return sum / steps / steps;
}

// A light shader that gives one colour makes a shape as bright as a point: samples are averaged, and neither
// the shape's size nor its own cosine count.
TEST(AreaLight, TheMeanOverTheShapeCountsNotItsSize)
{
    const double y = 2;
    {
        Area scene({0.5f, 2, 0}, 100, 100);
        scene.even();
        scene.record().area = miLIGHT_RECTANGLE;
        scene.record().primitive.rectangle = {{3, 0, 0}, {0, 1, 2}};
        EXPECT_NEAR(scene.mean(), meanCosine([&](double a, double b) {
                        return Point{0.5 + 3 * (2 * a - 1), y + 2 * b - 1, 2 * (2 * b - 1)};
                    }),
                    2e-4);
    }
    {
        Area scene({0.5f, 2, 0}, 100, 100);
        scene.even();
        scene.record().area = miLIGHT_DISC;
        scene.record().primitive.disc = {{0, -1, 0}, 3};
        EXPECT_NEAR(scene.mean(), meanCosine([&](double a, double b) {
                        const double r = 3 * std::sqrt(a);
                        return Point{0.5 + r * std::cos(2 * pi * b), y, r * std::sin(2 * pi * b)};
                    }),
                    2e-4);
    }
    {
        Area scene({0.5f, 2, 0}, 100, 100); // reaches below the floor
        scene.even();
        scene.record().area = miLIGHT_SPHERE;
        scene.record().primitive.sphere = {3};
        EXPECT_NEAR(
            scene.mean(), meanCosine([&](double a, double b) {
                const double h = 2 * a - 1, r = std::sqrt(1 - h * h);
                return Point{0.5 + 3 * r * std::cos(2 * pi * b), y + 3 * h, 3 * r * std::sin(2 * pi * b)};
            }),
            1e-3);
    }
    {
        Area scene({0.5f, 2, 0}, 100, 100);
        scene.even();
        scene.record().area = miLIGHT_CYLINDER;
        scene.record().primitive.cylinder = {{0, 0, 4}, 1.5f};
        EXPECT_NEAR(scene.mean(), meanCosine([&](double a, double b) {
                        return Point{0.5 + 1.5 * std::cos(2 * pi * b), y + 1.5 * std::sin(2 * pi * b),
                                     4 * (2 * a - 1)};
                    }),
                    2e-4);
    }
}

// With the cosine law and the area in its shader, each shape lights as it does in nature.
TEST(AreaLight, ARectangleThatLeansInClosedForm)
{
    Area scene({0.5f, 2, -0.25f}, 100, 100);
    const Point o = {0.5, 2, -0.25}, u = {1, 0.25, 0}, v = {0, 0.5, 1.5};
    const Point n = outer(u, v);
    scene.record().area = miLIGHT_RECTANGLE;
    scene.record().primitive.rectangle = {{1, 0.25f, 0}, {0, 0.5f, 1.5f}};
    const Point unit = (1 / norm(n)) * n;
    ASSERT_GT(inner(unit, Point{0, 0, 0} - o), 0) << "the front looks at the floor";
    scene.emit([&](Point) { return unit; }, 4 * norm(n));
    EXPECT_NEAR(scene.mean() / irradiance({o - u - v, o + u - v, o + u + v, o - u + v}), 1, 5e-4);
}

TEST(AreaLight, ADiscInClosedForm)
{
    Area scene({0, 2, 0}, 100, 100);
    scene.record().area = miLIGHT_DISC;
    scene.record().primitive.disc = {{0, -3, 0}, 1.5f};
    scene.emit([](Point) { return Point{0, -1, 0}; }, pi * 1.5 * 1.5);
    EXPECT_NEAR(scene.mean() / (pi * 1.5 * 1.5 / (1.5 * 1.5 + 2 * 2)), 1, 5e-4);
}

TEST(AreaLight, ASphereInClosedForm)
{
    Area scene({3, 4, 0}, 200, 200);
    scene.record().area = miLIGHT_SPHERE;
    scene.record().primitive.sphere = {2};
    scene.emit([](Point p) { return 0.5 * (p - Point{3, 4, 0}); }, 4 * pi * 2 * 2);
    EXPECT_NEAR(scene.mean() / (pi * (2.0 * 2.0) / (5.0 * 5.0) * 0.8), 1, 2e-3);
}

TEST(AreaLight, ALongCylinderInClosedForm)
{
    // An endless one at height h and with radius r is seen under the same angle all along: pi r / h.
    Area scene({0, 3, 0}, 254, 254);
    scene.record().area = miLIGHT_CYLINDER;
    scene.record().primitive.cylinder = {{0, 0, 30}, 1};
    scene.emit([](Point p) { return Point{p.x, p.y - 3, 0}; }, 2 * pi * 1 * 60);
    EXPECT_NEAR(scene.mean() / (pi / 3), 1, 0.004) << "that it ends at 30 takes less than a thousandth";
}

TEST(AreaLight, TheInstanceStretchesAFlatShapeEvenly)
{
    Area scene({0, 0, 0}, 100, 100);
    scene.record().area = miLIGHT_RECTANGLE;
    scene.record().primitive.rectangle = {{1, 0, 0}, {0, 0, 1}};
    auto& instance = *scene.session.database.findAs<host::Instance>(scene.lightInstance);
    setMatrix(instance, {3, 0, 0, 0, 0, 1, 0, 0, 0, 0, 0.5, 0, 1, 2, 0, 1});
    scene.emit([](Point) { return Point{0, -1, 0}; }, 4 * 3 * 0.5);
    EXPECT_NEAR(scene.mean() / irradiance({{-2, 2, -0.5}, {4, 2, -0.5}, {4, 2, 0.5}, {-2, 2, 0.5}}), 1, 5e-4);
}

// ---- the surface of an object

/// A light in the shape of an object that is placed by an instance.
struct Shaped : Area {
    host::Object* shape;
    host::Instance* source;

    /// A square at height 2, of one small and three large triangles, and far off to the side, another one.
    Shaped(int u = 200, int v = 200) : Area({77, 77, 77}, u, v)
    {
        shape = &object({{-1, 0, -1},
                         {1, 0, -1},
                         {1, 0, 1},
                         {-1, 0, 1},
                         {0.9f, 0, 0.8f},
                         {5, 1, -1},
                         {7, 1, -1},
                         {7, 1, 3},
                         {5, 1, 3}},
                        {{0, 1, 4}, {1, 2, 4}, {2, 3, 4}, {3, 0, 4}, {5, 6, 7, 8}});
        shape->name = "panel";
        shape->visible = false;
        shape->shadow = 0;
        source = &place(*shape, {0, 2, 0});
        source->name = "panel-i";
        source->materials = {plain({0, 0, 0, 1}).tag};
        record().area = miLIGHT_OBJECT;
        record().primitive.object.object = source->tag;
        emit([](Point) { return Point{0, -1, 0}; }, 4 + 8);
    }
    /// The light of both parts when they are moved by so much from there.
    double expected(Point by = {0, 0, 0}) const
    {
        const auto moved = [&](std::vector<Point> corners) {
            for (Point& corner : corners)
                corner = corner + by;
            return irradiance(corners);
        };
        return moved({{-1, 2, -1}, {1, 2, -1}, {1, 2, 1}, {-1, 2, 1}}) +
               moved({{5, 3, -1}, {7, 3, -1}, {7, 3, 3}, {5, 3, 3}});
    }
};

TEST(ObjectLight, IsSampledByAreaWhereItsInstanceIs)
{
    Shaped scene;
    EXPECT_NEAR(scene.mean() / scene.expected(), 1, 1e-3);
    // Two of the six triangles make two thirds of the area.
    int small = 0;
    scene.shade = [&](miColor&, miState& state) {
        EXPECT_NEAR(state.org.y, state.org.x < 3 ? 2 : 3, 1e-5);
        small += state.org.x < 3;
        return miTRUE;
    };
    scene.run();
    EXPECT_NEAR(small, 40000.0 * 4 / 12, 200);
}

TEST(ObjectLight, TheLightsInstanceMovesItFurther)
{
    Shaped scene;
    auto& instance = *scene.session.database.findAs<host::Instance>(scene.lightInstance);
    moveTo(instance, {1, 0.5, 0.25});
    EXPECT_NEAR(scene.mean() / scene.expected({1, 0.5, 0.25}), 1, 1e-3);
}

TEST(ObjectLight, TheSourceMayBeDeepInTheSceneOrOutsideOrABareObject)
{
    {
        Shaped scene;
        scene.root.members.pop_back();
        auto& group = scene.session.database.make<host::Group>();
        group.members.push_back(scene.source->tag);
        scene.place(group, {0, 1, 0});
        EXPECT_NEAR(scene.mean() / scene.expected({0, 1, 0}), 1, 1e-3);
        // Twice in the scene: both are the shape.
        scene.place(group, {-9, 1, 0});
        scene.emit([](Point) { return Point{0, -1, 0}; }, 2 * (4 + 8));
        EXPECT_NEAR(scene.mean() / (scene.expected({0, 1, 0}) + scene.expected({-9, 1, 0})), 1, 2e-3);
    }
    Shaped scene;
    scene.source->record.off = miTRUE;
    EXPECT_NEAR(scene.mean() / scene.expected(), 1, 1e-3) << "hidden: its own matrix counts";
    scene.root.members.pop_back();
    EXPECT_NEAR(scene.mean() / scene.expected(), 1, 1e-3);
    scene.record().primitive.object.object = scene.shape->tag;
    auto& instance = *scene.session.database.findAs<host::Instance>(scene.lightInstance);
    moveTo(instance, {0, 2, 0});
    EXPECT_NEAR(scene.mean() / scene.expected(), 1, 1e-3);
}

TEST(ObjectLight, WhatCannotBeAShapeIsAnErrorOfTheLight)
{
    static const std::string file = "scene.mi";
    const auto refused = [](const std::function<miTag(Shaped&)>& shape) {
        Shaped scene;
        scene.element->where = {&file, 12, 3};
        scene.record().primitive.object.object = shape(scene);
        return errorOf([&] { scene.run(); });
    };
    const std::string begin = "scene.mi:12:3: light \"lamp\": ";
    EXPECT_EQ(refused([](Shaped&) { return miNULLTAG; }),
              begin + "the object that is its shape is not there");
    EXPECT_EQ(refused([](Shaped& s) { return s.session.database.last() + 1000; }),
              begin + "the object that is its shape is not there");
    EXPECT_EQ(refused([](Shaped& s) { return s.camera.tag; }),
              begin + "its shape must be an object or an instance of one, and camera \"cam\" is neither");
    EXPECT_EQ(refused([](Shaped& s) { return s.cameraInstance.tag; }),
              begin + "its shape must be an object or an instance of one, and instance \"cam-i\" is neither");
    EXPECT_EQ(refused([](Shaped& s) {
                  s.source->record.item = s.root.tag;
                  s.root.members.pop_back();
                  return s.source->tag;
              }),
              begin +
                  "its shape must be an object or an instance of one, and instance \"panel-i\" is neither");
    const std::string empty = begin + "its shape, object \"panel\", has no surface";
    EXPECT_EQ(refused([](Shaped& s) {
                  s.shape->polygons.clear();
                  return s.source->tag;
              }),
              empty);
    EXPECT_EQ(refused([](Shaped& s) {
                  for (miVector& p : s.shape->vectors)
                      p = {1, 1, 1};
                  return s.source->tag;
              }),
              empty);
    EXPECT_EQ(refused([](Shaped& s) {
                  s.shape->vectors[4].x = std::numeric_limits<float>::quiet_NaN();
                  s.root.members.pop_back();
                  return s.source->tag;
              }),
              begin + "the size of its shape is not finite");
}

// ---- how many samples

TEST(AreaLight, LowCountsBeginAtTheirRayLevel)
{
    const auto samples = [](int level, bool refracted, int low) {
        Area scene({0, 5, 0}, 5, 3);
        scene.record().area = miLIGHT_DISC;
        scene.record().primitive.disc = {{0, 1, 0}, 1};
        scene.record().low_level = short(low);
        scene.record().low_samples_u = 2;
        scene.record().low_samples_v = 1;
        scene.prepare = [&](miState& state) {
            state.reflection_level = refracted ? level / 2 : level;
            state.refraction_level = refracted ? level - level / 2 : 0;
        };
        scene.run();
        return scene.samples;
    };
    EXPECT_EQ(samples(0, false, 2), 15);
    EXPECT_EQ(samples(1, false, 2), 15);
    EXPECT_EQ(samples(2, false, 2), 2);
    EXPECT_EQ(samples(2, true, 2), 2) << "reflections and refractions count together";
    EXPECT_EQ(samples(9, true, 2), 2);
    EXPECT_EQ(samples(9, true, 0), 15) << "level 0 is never";
}

TEST(AreaLight, CountsThatEditsMakeImpossible)
{
    const auto counts = [](int u, int v, const std::function<void(miLight&)>& change = {}) {
        auto scene = std::make_unique<Area>(miVector{0, 5, 0}, u, v);
        scene->record().area = miLIGHT_SPHERE;
        scene->record().primitive.sphere = {1};
        if (change)
            change(scene->record());
        return scene;
    };
    for (const int u : {0, -4, -32768}) {
        const Messages messages;
        const auto scene = counts(u, 3);
        scene->run();
        EXPECT_EQ(scene->samples, 3);
        ASSERT_EQ(messages.lines().size(), 1u);
        EXPECT_EQ(messages.count("light \"lamp\" is to take " + std::to_string(u) + " by 3 samples"), 1);
    }
    const std::string tooMany = "light \"lamp\": an area light takes at most 65535 samples";
    EXPECT_EQ(errorOf([&] { counts(256, 256)->run(); }), tooMany);
    EXPECT_EQ(errorOf([&] { counts(32767, 32767)->run(); }), tooMany) << "as large as both may be";
    EXPECT_EQ(
        errorOf([&] { counts(2, 2, [](miLight& l) { l.low_samples_u = l.low_samples_v = 999; })->run(); }),
        "nothing was thrown")
        << "they never come into force";
    EXPECT_EQ(errorOf([&] {
                  counts(2, 2, [](miLight& l) {
                      l.low_level = 1;
                      l.low_samples_u = l.low_samples_v = 999;
                  })->run();
              }),
              tooMany);
    const auto most = counts(255, 257);
    most->run();
    EXPECT_EQ(most->samples, 65535);
}

TEST(AreaLight, NumbersThatAreNoneAreErrors)
{
    const float nan = std::numeric_limits<float>::quiet_NaN(), inf = std::numeric_limits<float>::infinity();
    const auto refused = [](const std::function<void(miLight&)>& change) {
        Area scene({0, 5, 0}, 2, 2);
        change(scene.record());
        return errorOf([&] { scene.run(); });
    };
    const std::string position = "light \"lamp\": its position or direction is not finite";
    const std::string size = "light \"lamp\": the size of its shape is not finite";
    EXPECT_EQ(refused([&](miLight& l) { l.origin.y = nan; }), position);
    EXPECT_EQ(refused([&](miLight& l) { l.origin.x = -inf; }), position);
    EXPECT_EQ(refused([&](miLight& l) {
                  l.type = miLIGHT_SPOT;
                  l.direction = {nan, 0, 0};
              }),
              position);
    EXPECT_EQ(refused([&](miLight& l) {
                  l.area = miLIGHT_SPHERE;
                  l.primitive.sphere = {inf};
              }),
              size);
    EXPECT_EQ(refused([&](miLight& l) {
                  l.area = miLIGHT_RECTANGLE;
                  l.primitive.rectangle = {{1, 0, 0}, {0, nan, 0}};
              }),
              size);
    EXPECT_EQ(refused([&](miLight& l) {
                  l.area = miLIGHT_DISC;
                  l.primitive.disc = {{0, 1, 0}, nan};
              }),
              size);
    EXPECT_EQ(refused([&](miLight& l) {
                  l.area = miLIGHT_CYLINDER;
                  l.primitive.cylinder = {{0, nan, 0}, 1};
              }),
              size);
    EXPECT_EQ(refused([&](miLight& l) { l.area = static_cast<miLight_area>(9); }),
              "light \"lamp\": there are no area lights of type 9");
}

TEST(AreaLight, AShapeWithoutExtentIsAPoint)
{
    for (const miLight_area area : {miLIGHT_RECTANGLE, miLIGHT_DISC, miLIGHT_SPHERE, miLIGHT_CYLINDER}) {
        Area scene({3, 4, 0}, 2, 2);
        scene.record().area = area;
        scene.record().primitive = {};
        scene.record().visible = miTRUE;
        scene.even();
        EXPECT_NEAR(scene.mean(), 0.8, 1e-6);
        EXPECT_EQ(scene.samples, 4);
    }
}

// ---- shadows

TEST(AreaLight, HalfHiddenItGivesHalf)
{
    // Seen from the floor's middle, the light's part beyond x = 0 is behind the layer; each half of it holds
    // half of the samples, which are stratified.
    Area scene({0, 4, 0}, 4, 2);
    scene.record().area = miLIGHT_RECTANGLE;
    scene.record().primitive.rectangle = {{1, 0, 0}, {0, 0, 0.001f}};
    auto& layer = scene.object({{0, 2, 9}, {9, 2, 9}, {9, 2, -9}, {0, 2, -9}}, {{0, 1, 2, 3}});
    layer.visible = false;
    scene.place(layer).materials = {scene.plain({1, 1, 1, 1}).tag};
    scene.shade = [](miColor& result, miState& state) {
        result = {1, 1, 1, 1};
        return mi_trace_shadow(&result, &state);
    };
    scene.run();
    EXPECT_EQ(scene.delivered.size(), 4u);
    EXPECT_EQ(scene.samples, 8);
    for (const Delivered& d : scene.delivered)
        EXPECT_LT(d.direction.x, 0.0f);
}

TEST(AreaLight, ThePictureDoesNotDependOnThreads)
{
    Shaped scene(3, 3);
    scene.keepsState = false;
    const miTag panel = scene.lightInstance;
    auto& ball = scene.add({0, 3, 1});
    ball.record.area = miLIGHT_SPHERE;
    ball.record.primitive.sphere = {1};
    ball.record.visible = miTRUE;
    scene.shade = [](miColor& result, miState& state) {
        result = {1, 1, 1, 1};
        return state.type == miRAY_LIGHT ? mi_trace_shadow(&result, &state) : miTRUE;
    };
    const miTag lights[] = {panel, scene.lightInstance};
    scene.floor->materials = {
        scene
            .material([lights](miColor& result, miState& state) {
                for (const miTag light : lights) {
                    miColor color;
                    float cosine;
                    int samples = 0;
                    while (mi_sample_light(&color, nullptr, &cosine, &state, light, &samples))
                        result.r += color.r * cosine;
                }
                return miTRUE;
            })
            .tag};
    scene.camera.record.x_resolution = scene.camera.record.y_resolution = 70;
    const host::Picture one = scene.render(1), three = scene.render(3);
    double sum = 0;
    for (int y = 0; y < 70; ++y)
        for (int x = 0; x < 70; ++x) {
            ASSERT_EQ(one.color(x, y).r, three.color(x, y).r) << x << ' ' << y;
            sum += one.color(x, y).r;
        }
    EXPECT_GT(sum, 0);
}

} // namespace
