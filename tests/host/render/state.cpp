// SPDX-License-Identifier: BSD-3-Clause
// What the library's state shaders see, by kind of ray: they are connected to a shader that stands for the
// material, the light, the environment and so on.
#include "host/report/message.h"
#include "tests/harness/values.h"
#include "tests/host/render/scene.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <cstring>
#include <map>
#include <memory>
#include <string>
#include <utility>
#include <vector>

namespace {

using host::operator-;
using host::Type;

/// A parameter of "stated", and the state shader that is connected to it.
struct Fact {
    const char* parameter;
    const char* shader;
    Type type;
    std::size_t offset; ///< in StateFacts
    std::size_t size;
};

#define FACT(member, shader, type)                                                                           \
    {                                                                                                        \
#member, "vhState" shader "_v1", Type::type, offsetof(StateFacts, member),                           \
            sizeof(StateFacts::member)                                                                       \
    }
constexpr Fact facts[] = {FACT(point, "Point", vector),
                          FACT(normal, "Normal", vector),
                          FACT(geometric, "GeometricNormal", vector),
                          FACT(org, "Org", vector),
                          FACT(dir, "Dir", vector),
                          FACT(motion, "Motion", vector),
                          FACT(rasterPos, "RasterPos", vector),
                          FACT(textureCoord, "TextureCoord", vector),
                          FACT(rasterX, "RasterX", scalar),
                          FACT(rasterY, "RasterY", scalar),
                          FACT(width, "RasterWidth", scalar),
                          FACT(height, "RasterHeight", scalar),
                          FACT(dist, "Dist", scalar),
                          FACT(time, "Time", scalar),
                          FACT(dotND, "DotND", scalar),
                          FACT(inverted, "InvNormal", boolean),
                          FACT(reflection, "ReflectionLevel", integer),
                          FACT(refraction, "RefractionLevel", integer),
                          FACT(label, "Label", integer),
                          FACT(instance, "Instance", integer),
                          FACT(rayType, "RayType", integer),
                          FACT(reflectionScalar, "ReflectionLevelScalar", scalar),
                          FACT(refractionScalar, "RefractionLevelScalar", scalar),
                          FACT(labelScalar, "LabelScalar", scalar),
                          FACT(instanceScalar, "InstanceScalar", scalar),
                          FACT(rayTypeScalar, "RayTypeScalar", scalar)};
#undef FACT

miVector unit(double x, double y, double z)
{
    const double norm = std::hypot(x, y, z);
    return {float(x / norm), float(y / norm), float(z / norm)};
}

/// One pixel, the one at (3, 1), of a picture of 4 by 2, 90 degrees wide: its ray has the direction
/// (3/4, 1/4, -1).
struct Stated : test::Scene {
    Stated()
    {
        session.libraries.link(TEST_LIBRARY, {}, {});
        std::vector<host::Field> parameters = {test::field(Type::integer, "number"),
                                               test::field(Type::colorTexture, "texture"),
                                               test::field(Type::color, "color")};
        for (const Fact& fact : facts) {
            parameters.push_back(test::field(fact.type, fact.parameter));
            session.declarations.add(test::declaration(fact.shader, test::field(fact.type, ""),
                                                       {test::field(Type::scalar, "unused")}, 1));
            auto shader = std::make_unique<host::Function>(*session.declarations.find(fact.shader),
                                                           std::vector<host::Argument>(), session.database,
                                                           host::Location());
            shader->name = fact.parameter;
            session.database.add(std::move(shader));
        }
        session.declarations.add(test::declaration("stated", test::field(Type::color, ""), parameters, 1));

        camera.record.x_resolution = 4;
        camera.record.y_resolution = 2;
        camera.record.aspect = 2.0f;
        camera.hasWindow = true;
        camera.record.window = {3, 1, 3, 1};
        options.record.reflection_depth = options.record.refraction_depth = options.record.trace_depth = 9;
        options.record.shutter_delay = 0.25f;
        options.record.shutter = 0.75f;
    }

    /// A shader that notes under a name what the state shaders connected to it give, and goes on.
    miTag observer(const std::string& name, test::Shade goOn = {})
    {
        return connected(number([this, name, goOn](void* result, miState& state, HookParameters& parameters) {
            seen[name] = observed(state, parameters);
            auto& color = *static_cast<miColor*>(result);
            return goOn ? goOn(color, state) : miTRUE;
        }));
    }

    /// A shader with all state shaders connected to it.
    miTag connected(int its)
    {
        std::vector<host::Argument> arguments = {test::argument("number", its)};
        for (const Fact& fact : facts)
            arguments.push_back(test::argument(fact.parameter, test::connection(fact.parameter)));
        auto made = std::make_unique<host::Function>(*session.declarations.find("stated"), arguments,
                                                     session.database, host::Location());
        return session.database.add(std::move(made));
    }

    /// What the state shaders give now. The instance is replaced by the scene instance that it stems from.
    StateFacts observed(miState& state, HookParameters& parameters)
    {
        StateFacts result;
        auto* const block = reinterpret_cast<char*>(&parameters) + offsetof(StatedParameters, facts);
        for (const Fact& fact : facts)
            std::memcpy(reinterpret_cast<char*>(&result) + fact.offset, mi_eval(&state, block + fact.offset),
                        fact.size);
        EXPECT_EQ(result.reflectionScalar, float(result.reflection));
        EXPECT_EQ(result.refractionScalar, float(result.refraction));
        EXPECT_EQ(result.labelScalar, float(miUint(result.label)));
        EXPECT_EQ(result.instanceScalar, float(miUint(result.instance)));
        EXPECT_EQ(result.rayTypeScalar, float(result.rayType));
        if (const auto* const leaf = session.database.findAs<host::Instance>(miTag(result.instance)))
            result.instance = miInteger(leaf->record.parent);
        return result;
    }

    /// A material whose shader is such an observer.
    host::Material& observing(const std::string& name, test::Shade goOn = {})
    {
        auto& made = session.database.make<host::Material>();
        made.shader = {observer(name, std::move(goOn))};
        made.record.shader = made.shader.front();
        return made;
    }

    /// A square from -2 to 2 with texture coordinates from 0 to 1 (and 7), normals that spread like
    /// (x/10, y/5, 1), and the motion (3/10, x/10, 0).
    host::Object& panel(miUint label)
    {
        auto& made = square(2);
        made.label = label;
        for (host::Vertex& vertex : made.vertices) {
            const miVector at = made.vectors[vertex.point];
            const auto add = [&made](const miVector& v) {
                made.vectors.push_back(v);
                return std::uint32_t(made.vectors.size() - 1);
            };
            vertex.normal = add({0.1f * at.x, 0.2f * at.y, 1});
            vertex.firstTexture = std::uint32_t(made.textureIndices.size());
            vertex.textureCount = 1;
            made.textureIndices.push_back(add({0.25f * at.x + 0.5f, 0.25f * at.y + 0.5f, 7}));
            vertex.firstMotion = std::uint32_t(made.motionIndices.size());
            vertex.motionCount = 1;
            made.motionIndices.push_back(add({0.3f, 0.1f * at.x, 0}));
        }
        return made;
    }

    std::map<std::string, StateFacts> seen;
};

void expectNear(const char* what, const miVector& v, const miVector& expected)
{
    const double tolerance = 2e-6 * std::max(1.0, host::length(expected));
    EXPECT_NEAR(v.x, expected.x, tolerance) << what;
    EXPECT_NEAR(v.y, expected.y, tolerance) << what;
    EXPECT_NEAR(v.z, expected.z, tolerance) << what;
}

void expectSame(const StateFacts& facts, const StateFacts& expected)
{
    expectNear("point", facts.point, expected.point);
    expectNear("normal", facts.normal, expected.normal);
    expectNear("geometric normal", facts.geometric, expected.geometric);
    expectNear("org", facts.org, expected.org);
    expectNear("dir", facts.dir, expected.dir);
    expectNear("motion", facts.motion, expected.motion);
    expectNear("texture coordinate", facts.textureCoord, expected.textureCoord);
    EXPECT_NEAR(facts.dist, expected.dist, 2e-6 * std::max(1.0f, expected.dist));
    EXPECT_NEAR(facts.dotND, expected.dotND, 2e-6);
    EXPECT_EQ(facts.inverted, expected.inverted);
    EXPECT_EQ(facts.reflection, expected.reflection);
    EXPECT_EQ(facts.refraction, expected.refraction);
    EXPECT_EQ(facts.label, expected.label);
    EXPECT_EQ(facts.instance, expected.instance);
    EXPECT_EQ(facts.rayType, expected.rayType);
}

/// What every ray of a sample has alike.
void expectSamplesOwn(const StateFacts& facts, float time)
{
    expectNear("raster position", facts.rasterPos, {3.5f, 1.5f, 0});
    EXPECT_EQ(facts.rasterX, 3.5f);
    EXPECT_EQ(facts.rasterY, 1.5f);
    EXPECT_EQ(facts.width, 4.0f);
    EXPECT_EQ(facts.height, 2.0f);
    EXPECT_GE(facts.time, 0.25f);
    EXPECT_LE(facts.time, 0.75f);
    EXPECT_EQ(facts.time, time);
}

const miVector viewing = unit(3, 1, -4);

/// The surface that the eye ray meets: at (3, 1, -4), where x is (3 - 1/2) / (3/2) = 5/3 and y (1 + 1/4) / 2
/// = 5/8 of its own.
struct FirstSurface : Stated {
    host::Instance& first(host::Material& material)
    {
        auto& instance = place(panel(11));
        test::setMatrix(instance, {1.5, 0, 0, 0, 0, 2, 0, 0, 0, 0, 1, 0, 0.5, -0.25, -4, 1});
        instance.materials = {material.tag};
        tag = miInteger(instance.tag);
        return instance;
    }

    StateFacts expected() const
    {
        StateFacts e{};
        e.point = {3, 1, -4};
        e.normal = unit(5.0 / 30 / 1.5, 0.125 / 2, 1);
        e.geometric = {0, 0, 1};
        e.dir = viewing;
        e.motion = {0.45f, 1.0f / 3, 0};
        e.textureCoord = {11.0f / 12, 21.0f / 32, 0};
        e.dist = std::sqrt(26.0f);
        e.dotND = float(host::dot(e.normal, e.dir));
        e.label = 11;
        e.instance = tag;
        e.rayType = miRAY_EYE;
        return e;
    }

    miInteger tag = 0;
};

TEST(StateShaders, OfAnEyeRay)
{
    FirstSurface scene;
    scene.first(scene.observing("eye"));
    scene.render();
    ASSERT_EQ(scene.seen.size(), 1u);
    expectSame(scene.seen["eye"], scene.expected());
    expectSamplesOwn(scene.seen["eye"], scene.seen["eye"].time);
}

TEST(StateShaders, OfASurfaceSeenFromBehind)
{
    FirstSurface scene;
    auto& instance = scene.first(scene.observing("eye"));
    // Half a turn about y: its own x is now -5/3, and its normals face away until they are turned.
    test::setMatrix(instance, {-1.5, 0, 0, 0, 0, 2, 0, 0, 0, 0, -1, 0, 0.5, -0.25, -4, 1});
    scene.render();
    StateFacts expected = scene.expected();
    expected.normal = unit(-5.0 / 30 / 1.5, -0.125 / 2, 1);
    expected.motion = {-0.45f, -1.0f / 3, 0};
    expected.textureCoord.x = 1.0f / 12;
    expected.dotND = float(host::dot(expected.normal, expected.dir));
    expected.inverted = 1;
    expectSame(scene.seen["eye"], expected);
}

/// What of a path shows its back: half a turn about its y axis.
enum class Turned { nothing, second, veil };

/// From the first surface a ray goes on to a second one, (9, 3, -12), which is lit past a veil and casts rays
/// that leave the scene.
struct Path : FirstSurface {
    explicit Path(miRay_type theType, Turned theTurned = Turned::nothing) : type(theType), turned(theTurned)
    {
        camera.environment = {observer("missed")};
        first(material([this](miColor& result, miState& state) {
            if (type == miRAY_REFLECT)
                return mi_trace_reflection(&result, &state, &state.dir);
            if (type == miRAY_REFRACT)
                return mi_trace_refraction(&result, &state, &state.dir);
            return mi_trace_transparent(&result, &state);
        }));
        // Its x goes along the world's z, and its front faces -x: (9 - z, 2 + y, -10 + 2 x).
        auto& second = place(panel(0xFFFFFFFF));
        const double along = turned == Turned::second ? -1 : 1;
        test::setMatrix(second, {0, 0, 2 * along, 0, 0, 1, 0, 0, -along, 0, 0, 0, 9, 2, -10, 1});
        second.materials = {observing("second", [this](miColor& result, miState& state) {
                                miColor light{};
                                int samples = 0;
                                while (mi_sample_light(&light, nullptr, nullptr, &state, lamp, &samples)) {
                                }
                                miVector up = {0, 1, 0}, asked = {1, 2, -2};
                                mi_trace_reflection(&result, &state, &up);
                                missed = seen["missed"];
                                mi_trace_refraction(&result, &state, &up);
                                missedRefracted = seen["missed"];
                                mi_trace_environment(&result, &state, &asked);
                                return miTRUE;
                            }).tag};
        secondTag = miInteger(second.tag);

        auto& light = pointLight({0, 0, 0}, {});
        light.shader = {observer("light", [](miColor& result, miState& state) {
            result = {1, 1, 1, 1};
            return mi_trace_shadow(&result, &state);
        })};
        lamp = place(light, {5, 5, -9}).tag;

        // Half way to the light, and nothing to other rays.
        auto& veil = panel(33);
        veil.visible = false;
        veil.reflection = veil.refraction = veil.transparency = 0;
        auto& veilInstance = place(veil);
        const double side = turned == Turned::veil ? -1 : 1;
        test::setMatrix(veilInstance, {side, 0, 0, 0, 0, 1, 0, 0, 0, 0, side, 0, 7.5, 3, -10.5, 1});
        auto& cloth = plain({0, 0, 0, 1});
        cloth.shadow = {observer("shadow")};
        veilInstance.materials = {cloth.tag};
        veilTag = miInteger(veilInstance.tag);
        render();
    }

    /// Turned, it is met at its own (1, 1) in place of (-1, 1), and its normal (1/10, 1/5, 1) is turned back.
    StateFacts expectedSecond() const
    {
        const bool isBack = turned == Turned::second;
        StateFacts e{};
        e.point = {9, 3, -12};
        e.normal = isBack ? unit(-1, -0.2, 0.05) : unit(-1, 0.2, -0.05);
        e.geometric = {-1, 0, 0};
        e.org = {3, 1, -4};
        e.dir = viewing;
        e.motion = isBack ? miVector{0, 0.1f, -0.6f} : miVector{0, -0.1f, 0.6f};
        e.textureCoord = {isBack ? 0.75f : 0.25f, 0.75f, 0};
        e.dist = std::sqrt(104.0f);
        e.dotND = float(host::dot(e.normal, e.dir));
        e.inverted = isBack;
        e.reflection = type == miRAY_REFLECT;
        e.refraction = type != miRAY_REFLECT;
        e.label = -1;
        e.instance = secondTag;
        e.rayType = type;
        return e;
    }

    miRay_type type;
    Turned turned;
    miTag lamp = 0;
    miInteger secondTag = 0, veilTag = 0;
    StateFacts missed{}, missedRefracted{};
};

constexpr miRay_type secondaries[] = {miRAY_REFLECT, miRAY_REFRACT, miRAY_TRANSPARENT};

TEST(StateShaders, OfSecondaryRays)
{
    for (const Turned turned : {Turned::nothing, Turned::second})
        for (const miRay_type type : secondaries) {
            SCOPED_TRACE(int(type));
            Path path(type, turned);
            ASSERT_TRUE(path.seen.contains("second"));
            expectSame(path.seen["second"], path.expectedSecond());
            EXPECT_EQ(path.seen["second"].labelScalar, 4294967296.0f);
        }
}

TEST(StateShaders, OfALightRay)
{
    for (const Turned turned : {Turned::nothing, Turned::second})
        for (const miRay_type type : secondaries) {
            SCOPED_TRACE(int(type));
            Path path(type, turned);
            ASSERT_TRUE(path.seen.contains("light"));
            StateFacts expected = path.expectedSecond(); // the lit surface's, but for the ray
            expected.org = {5, 5, -9};
            expected.dir = unit(4, -2, -3);
            expected.dist = std::sqrt(29.0f);
            expected.dotND = float(-host::dot(expected.normal, expected.dir));
            ASSERT_GT(expected.dotND, 0.0f) << "it is lit";
            expected.rayType = miRAY_LIGHT;
            expectSame(path.seen["light"], expected);
        }
}

TEST(StateShaders, OfAShadowRay)
{
    // The veil's place is its own (-1/2, 1), or (1/2, 1) when it is turned; its normals never are.
    for (const Turned turned : {Turned::nothing, Turned::veil})
        for (const miRay_type type : secondaries) {
            SCOPED_TRACE(int(type));
            const bool isTurned = turned == Turned::veil;
            Path path(type, turned);
            ASSERT_TRUE(path.seen.contains("shadow"));
            StateFacts expected{};
            expected.point = {7, 4, -10.5f};
            expected.normal = isTurned ? unit(-0.05, 0.2, -1) : unit(-0.05, 0.2, 1);
            expected.geometric = {0, 0, isTurned ? -1.0f : 1.0f};
            expected.org = {5, 5, -9};
            expected.dir = unit(4, -2, -3);
            expected.motion = isTurned ? miVector{-0.3f, 0.05f, 0} : miVector{0.3f, -0.05f, 0};
            expected.textureCoord = {isTurned ? 0.625f : 0.375f, 0.75f, 0};
            expected.dist = std::sqrt(29.0f);
            expected.dotND = float(host::dot(expected.normal, expected.dir));
            expected.reflection = type == miRAY_REFLECT;
            expected.refraction = type != miRAY_REFLECT;
            expected.label = 33;
            expected.instance = path.veilTag;
            expected.rayType = miRAY_SHADOW;
            expectSame(path.seen["shadow"], expected);
        }
}

TEST(StateShaders, OfTheEnvironment)
{
    for (const miRay_type type : secondaries) {
        SCOPED_TRACE(int(type));
        Path path(type);
        StateFacts expected{}; // nothing of any surface
        expected.org = {9, 3, -12};
        expected.reflection = type == miRAY_REFLECT;
        expected.refraction = type != miRAY_REFLECT;

        StateFacts missed = expected;
        missed.dir = {0, 1, 0};
        missed.reflection += 1;
        missed.rayType = miRAY_REFLECT;
        expectSame(path.missed, missed);

        missed.reflection -= 1;
        missed.refraction += 1;
        missed.rayType = miRAY_REFRACT;
        expectSame(path.missedRefracted, missed);

        expected.dir = {1, 2, -2}; // as it was asked for
        expected.rayType = miRAY_ENVIRONMENT;
        expectSame(path.seen["missed"], expected);
    }
}

TEST(StateShaders, OfAnEyeRayThatMisses)
{
    Stated scene;
    scene.camera.environment = {scene.observer("missed")};
    scene.render();
    StateFacts expected{};
    expected.dir = viewing;
    expected.rayType = miRAY_EYE;
    expectSame(scene.seen["missed"], expected);
    expectSamplesOwn(scene.seen["missed"], scene.seen["missed"].time);
}

TEST(StateShaders, OfAnEnvironmentInPlaceOfARayThatIsTooDeep)
{
    for (const miRay_type type : {miRAY_REFLECT, miRAY_REFRACT}) {
        FirstSurface scene;
        scene.options.record.trace_depth = 0;
        scene.camera.environment = {scene.observer("instead")};
        scene.first(scene.material([type](miColor& result, miState& state) {
            miVector up = {0, 3, 4};
            return type == miRAY_REFLECT ? mi_trace_reflection(&result, &state, &up)
                                         : mi_trace_refraction(&result, &state, &up);
        }));
        scene.render();
        StateFacts expected{};
        expected.org = {3, 1, -4};
        expected.dir = {0, 0.6f, 0.8f};
        expected.reflection = type == miRAY_REFLECT;
        expected.refraction = type == miRAY_REFRACT;
        expected.rayType = type;
        expectSame(scene.seen["instead"], expected);
    }
}

TEST(StateShaders, OfEveryRayTheSamplesPlaceAndTime)
{
    Path path(miRAY_REFLECT);
    EXPECT_EQ(path.seen.size(), 4u);
    for (const auto& [name, facts] : path.seen) {
        SCOPED_TRACE(name);
        expectSamplesOwn(facts, path.seen["second"].time);
    }
}

TEST(StateShaders, OfALensBeforeAndAfterItsRay)
{
    FirstSurface scene;
    scene.first(scene.plain({1, 1, 1, 1}));
    const int its = scene.number([&scene](void* result, miState& state, HookParameters& parameters) {
        scene.seen["before"] = scene.observed(state, parameters);
        miVector from = {0, 0, 0};
        mi_trace_eye(static_cast<miColor*>(result), &state, &from, &state.dir);
        mi_flush_cache(&state); // the state shaders have run in it
        scene.seen["after"] = scene.observed(state, parameters);
        return miTRUE;
    });
    scene.camera.lens = {scene.connected(its)};
    scene.render();
    StateFacts expected{};
    expected.dir = viewing;
    expected.rayType = miRAY_EYE;
    expectSame(scene.seen["before"], expected);
    // What the ray has met, as far as it is handed back.
    const StateFacts hit = scene.expected();
    expected.point = hit.point;
    expected.normal = hit.normal;
    expected.dist = hit.dist;
    expected.motion = hit.motion;
    expected.label = hit.label;
    expectSame(scene.seen["after"], expected);
}

TEST(StateShaders, OfADirectionalLightAndAnAreaLight)
{
    FirstSurface scene;
    auto& sun = scene.pointLight({0, 0, 0}, {});
    sun.shader = {scene.observer("sun")};
    sun.record.type = miLIGHT_DIRECTION;
    sun.record.direction = unit(-1, -2, -2);
    sun.hasOrigin = false;
    sun.hasDirection = true;
    auto& lamp = scene.pointLight({0, 0, 0}, {});
    lamp.shader = {scene.observer("lamp")};
    lamp.record.area = miLIGHT_SPHERE;
    lamp.record.primitive.sphere.radius = 0.5f;
    lamp.record.samples_u = lamp.record.samples_v = 1;
    const miTag lights[] = {scene.place(sun).tag, scene.place(lamp, {5, 3, 0}).tag};
    scene.first(scene.material([&lights](miColor& result, miState& state) {
        for (const miTag light : lights) {
            int samples = 0;
            while (mi_sample_light(&result, nullptr, nullptr, &state, light, &samples)) {
            }
        }
        return miTRUE;
    }));
    scene.render();

    StateFacts expected = scene.expected();
    expected.rayType = miRAY_LIGHT;
    expected.org = {0, 0, 0};
    expected.dir = unit(-1, -2, -2);
    expected.dist = 0; // it has none
    expected.dotND = float(-host::dot(expected.normal, expected.dir));
    expectSame(scene.seen["sun"], expected);

    // Somewhere on the sphere; the rest follows from where.
    const miVector from = scene.seen["lamp"].org, way = expected.point - from;
    EXPECT_NEAR(host::length(from - miVector{5, 3, 0}), 0.5, 1e-6);
    expected.org = from;
    expected.dir = unit(way.x, way.y, way.z);
    expected.dist = float(host::length(way));
    expected.dotND = float(-host::dot(expected.normal, expected.dir));
    expectSame(scene.seen["lamp"], expected);
}

} // namespace
