// SPDX-License-Identifier: BSD-3-Clause
// The particle light, called as a renderer does that goes through the samples of a user area light.
#include "arena.h"
#include "expect.h"
#include "tests/core/floats.h"

#include <gtest/gtest.h>

#include <array>
#include <climits>
#include <cmath>
#include <memory>

namespace {

// Where the parameters are, and where the tests have the arrays.
constexpr int lightCount = 0, positions = 4, colors = 24, falloff = 48, shadow = 52;
constexpr int firstPosition = 10, firstColor = 20;
constexpr int positionByte = positions + 8 + firstPosition * 12;
constexpr int colorByte = colors + 8 + firstColor * 16;

constexpr miColor white{1, 1, 1, 1};

/// A light that has its particles, and lights a point that faces +z from the origin.
class Light {
public:
    Light(const std::vector<miVector>& at, const std::vector<miColor>& of, int count) : arena(library, name)
    {
        arena.at<int>(lightCount) = count;
        arena.array(positions, firstPosition, at);
        arena.array(colors, firstColor, of);
        arena.at<float>(falloff) = 2;
        arena.state().type = miRAY_LIGHT;
        arena.state().normal = {0, 0, 1};
    }
    ~Light()
    {
        if (ready_)
            arena.exit();
    }

    Light& ready()
    {
        arena.init();
        arena.renderer.calls.clear();
        ready_ = true;
        return *this;
    }

    int sample(int count)
    {
        state().count = static_cast<miUshort>(count);
        return arena.execute(result);
    }

    miState& state() { return arena.state(); }

    static constexpr const char* name = "vhParticleLight_v1";
    Library library;
    Arena arena;
    miColor result{9, 8, 7, 6};

private:
    bool ready_ = false;
};

/// The rule, in plain words.
struct Lit {
    int returned;
    miVector org, dir;
    double dist;
    float dot_nd;
    miColor color;
};
Lit lit(const miVector& p, const miColor& given, const miVector& point, const miVector& normal,
        float exponent)
{
    Lit l{};
    l.org = p;
    miVector d = {point.x - p.x, point.y - p.y, point.z - p.z};
    const float squares = d.z * d.z + (d.x * d.x + d.y * d.y);
    const float length = static_cast<float>(std::sqrt(static_cast<double>(squares)));
    if (length != 0.0f) {
        const float scale = 1.0f / length;
        d = {d.x * scale, d.y * scale, d.z * scale};
    }
    l.dir = d;
    l.dist = std::sqrt(static_cast<double>(squares));
    l.dot_nd = -(d.x * normal.x + d.y * normal.y + d.z * normal.z);
    const float q = 1.0f + powf(static_cast<float>(l.dist), exponent);
    const bool lights = l.dot_nd >= 0.0f || (normal.x == 0 && normal.y == 0 && normal.z == 0);
    if (lights) {
        const float a = given.a;
        l.color = {given.r * a / q, given.g * a / q, given.b * a / q, 1};
        l.returned = 1;
    }
    return l;
}

void expectSame(const miVector& result, const miVector& expected)
{
    EXPECT_EQ(Exactly{result.x}, Exactly{expected.x});
    EXPECT_EQ(Exactly{result.y}, Exactly{expected.y});
    EXPECT_EQ(Exactly{result.z}, Exactly{expected.z});
}

void expectSame(const Lit& expected, int returned, const miColor& color, const miState& state)
{
    EXPECT_EQ(returned, expected.returned);
    expectSame(state.org, expected.org);
    expectSame(state.dir, expected.dir);
    EXPECT_TRUE(state.dist == expected.dist || (std::isnan(state.dist) && std::isnan(expected.dist)));
    EXPECT_EQ(Exactly{state.dot_nd}, Exactly{expected.dot_nd});
    EXPECT_EQ(Exactly{color.r}, Exactly{expected.color.r});
    EXPECT_EQ(Exactly{color.g}, Exactly{expected.color.g});
    EXPECT_EQ(Exactly{color.b}, Exactly{expected.color.b});
    EXPECT_EQ(color.a, expected.color.a);
}

} // namespace

TEST(ParticleLight, LightsNothingButLightRays)
{
    Light light({{0, 0, 1}}, {white}, 1);
    light.ready();
    for (int type = 0; type < miRAY_NO_TYPES; ++type) {
        SCOPED_TRACE(type);
        light.result = {9, 8, 7, 6};
        light.state().type = static_cast<miRay_type>(type);
        const int returned = light.sample(0);
        EXPECT_EQ(returned, type == miRAY_LIGHT ? 1 : 0);
        if (type != miRAY_LIGHT)
            expectColor(light.result, {9, 8, 7, 6});
    }
    light.state().type = miRAY_EYE;
    EXPECT_EQ(light.sample(1), 0) << "where the loop would end";
    EXPECT_EQ(light.state().count, 1);
    EXPECT_EQ(light.sample(7), 0);
    EXPECT_EQ(light.state().count, 7);
}

TEST(ParticleLight, ThreeParticlesLightAndThenTheLoopIsOver)
{
    Light light({{0, 0, 1}, {0, 0, 2}, {0, 0, 3}}, {white, white, white}, 3);
    light.ready();
    for (const int count : {0, 1, 2}) {
        EXPECT_EQ(light.sample(count), 1);
        EXPECT_EQ(light.state().count, count) << "the renderer's to advance";
        EXPECT_EQ(light.state().org.z, static_cast<float>(count + 1));
    }
    light.result = {9, 8, 7, 6};
    const miVector org = light.state().org;
    EXPECT_EQ(light.sample(3), 2);
    EXPECT_EQ(light.state().count, 1) << "particles add up";
    expectColor(light.result, {9, 8, 7, 6});
    expectVector(light.state().org, org);
}

TEST(ParticleLight, WithoutParticlesTheFirstCallEndsTheLoop)
{
    Light light({{0, 0, 1}}, {white}, 0);
    light.ready();
    EXPECT_EQ(light.sample(0), 2);
    EXPECT_EQ(light.state().count, 1);
}

TEST(ParticleLight, ColorsAreMultipliedByTheirAlphaOnce)
{
    Light light({{0, 0, 3}}, {{1, 0.5f, 0, 0.5f}}, 1);
    light.ready();
    for (int again = 0; again < 2; ++again) {
        EXPECT_EQ(light.sample(0), 1);
        expectColor(light.result, {0.5f / 10, 0.25f / 10, 0, 1});
    }
}

TEST(ParticleLight, FallsOffAsOnePlusAPowerOfTheDistance)
{
    for (const float exponent : {0.0f, 0.5f, 1.0f, 2.0f, 3.0f, -1.0f})
        for (const float distance : {0.0f, 0.25f, 1.0f, 3.0f, 10.0f, 1000.0f}) {
            SCOPED_TRACE(testing::Message() << "distance " << distance << ", exponent " << exponent);
            Light light({{0, 0, distance}}, {{1, 2, 4, 1}}, 1);
            light.arena.at<float>(falloff) = exponent;
            light.ready();
            EXPECT_EQ(light.sample(0), 1);
            const double q = 1 + std::pow(static_cast<double>(distance), static_cast<double>(exponent));
            EXPECT_FLOAT_EQ(light.result.r, static_cast<float>(1 / q));
            EXPECT_FLOAT_EQ(light.result.g, static_cast<float>(2 / q));
            EXPECT_FLOAT_EQ(light.result.b, static_cast<float>(4 / q));
            EXPECT_EQ(light.result.a, 1);
        }
}

TEST(ParticleLight, FallsOffByTwoAtOneAndByTenAtThree)
{
    Light light({{0, 0, 1}, {0, 0, 3}}, {white, white}, 2);
    light.ready();
    light.sample(0);
    EXPECT_EQ(light.result.r, 1.0f / 2);
    light.sample(1);
    EXPECT_EQ(light.result.r, 1.0f / 10);
}

TEST(ParticleLight, APointThatFacesAwayIsDarkAndOneWithoutANormalIsLit)
{
    Light light({{0, 0, -1}}, {white}, 1);
    light.arena.at<int>(shadow) = 1;
    light.ready();
    EXPECT_EQ(light.sample(0), 0);
    expectColor(light.result, {0, 0, 0, 0});
    EXPECT_EQ(light.state().dot_nd, -1) << "described all the same";
    EXPECT_EQ(light.state().dist, 1);
    EXPECT_EQ(calls(light.arena.renderer), Strings()) << "no shadow to ask for";

    for (const float zero : {0.0f, -0.0f}) {
        light.state().normal = {zero, zero, zero};
        EXPECT_EQ(light.sample(0), 1);
        expectColor(light.result, {0.5f, 0.5f, 0.5f, 1});
    }
    light.state().normal = {1, 0, 0};
    EXPECT_EQ(light.sample(0), 1) << "at a right angle";
    light.state().normal = {0, 0, 1e-45f};
    EXPECT_EQ(light.sample(0), 0) << "not exactly zero";
}

TEST(ParticleLight, APointAtTheParticleHasNoDirection)
{
    for (const auto& [exponent, q] : {std::pair{2.0f, 1.0f}, {0.0f, 2.0f}}) {
        Light light({{4, 5, 6}}, {white}, 1);
        light.arena.at<float>(falloff) = exponent;
        light.ready();
        light.state().point = {4, 5, 6};
        EXPECT_EQ(light.sample(0), 1);
        expectVector(light.state().dir, {0, 0, 0});
        EXPECT_EQ(light.state().dist, 0);
        expectColor(light.result, {1 / q, 1 / q, 1 / q, 1});
    }
}

TEST(ParticleLight, NoNumberForAPositionFacesAwayAndLightsVolumesWithNoNumber)
{
    Light light({{0, 0, NaN}}, {white}, 1);
    light.ready();
    EXPECT_EQ(light.sample(0), 0);
    expectColor(light.result, {0, 0, 0, 0});
    EXPECT_TRUE(std::isnan(light.state().dist));
    EXPECT_TRUE(std::isnan(light.state().dir.x)) << "multiplied by 1 / NaN";
    EXPECT_TRUE(std::isnan(light.state().dot_nd));
    light.state().normal = {0, 0, 0};
    EXPECT_EQ(light.sample(0), 1);
    EXPECT_TRUE(std::isnan(light.result.r));
    EXPECT_EQ(light.result.a, 1);
}

TEST(ParticleLight, TheShorterListEndsTheLoop)
{
    const std::vector<miVector> two{{0, 0, 1}, {0, 0, 2}};
    const std::vector<miColor> three{white, white, white};
    struct Row {
        std::size_t positions, colors;
        int count, lit;
    };
    for (const Row& row : {Row{2, 3, 3, 2},
                           {2, 1, 3, 1},
                           {2, 3, 2, 2},
                           {2, 3, 1, 1},
                           {0, 3, 3, 0},
                           {2, 0, 3, 0},
                           {0, 0, 1, 0},
                           {2, 3, INT_MAX, 2},
                           {2, 3, -1, 2},
                           {1, 3, INT_MIN, 1}}) {
        SCOPED_TRACE(testing::Message() << row.positions << ' ' << row.colors << ' ' << row.count);
        Light light({two.begin(), two.begin() + static_cast<std::ptrdiff_t>(row.positions)},
                    {three.begin(), three.begin() + static_cast<std::ptrdiff_t>(row.colors)}, row.count);
        light.ready();
        for (int k = 0; k < row.lit; ++k)
            EXPECT_EQ(light.sample(k), 1) << k;
        for (const int beyond : {row.lit, 1000, 65535})
            if (beyond >= row.lit && (beyond == row.lit || row.count < 0 || row.count > 2)) {
                light.result = {9, 8, 7, 6};
                EXPECT_EQ(light.sample(beyond), 2) << beyond;
                EXPECT_EQ(light.state().count, 1);
                expectColor(light.result, {9, 8, 7, 6});
            }
    }
}

TEST(ParticleLight, CountsBelowZeroAreEmptyLists)
{
    for (const int array : {positions, colors}) {
        Light light({{0, 0, 1}}, {white}, 1);
        light.arena.at<int>(array + 4) = -1;
        light.ready();
        EXPECT_EQ(light.sample(0), 2);
    }
}

// The counter of samples has 16 bits: a loop over more than it can count would never end.
TEST(ParticleLight, TheLoopEndsWhereTheCounterDoes)
{
    constexpr int many = 70'000;
    struct Parameters {
        int lightCount, firstPosition, positionCount;
        miVector position;
        int firstColor, colorCount;
        miColor color;
        float falloff;
        int shadow;
        int gap; // gaps, so that the arrays are whole elements away
        miVector positions[many];
        int secondGap;
        miColor colors[many];
    };
    constexpr std::size_t toPositions = offsetof(Parameters, positions) - offsetof(Parameters, position);
    constexpr std::size_t toColors = offsetof(Parameters, colors) - offsetof(Parameters, color);
    static_assert(toPositions % sizeof(miVector) == 0 && toColors % sizeof(miColor) == 0);

    const Library library;
    const EntryPoints shader(library, Light::name);
    BareRenderer& renderer = BareRenderer::get();
    renderer.reset();
    const auto block = std::make_unique<Block<Parameters>>();
    Parameters& p = block->params;
    p.lightCount = p.positionCount = p.colorCount = many;
    p.firstPosition = toPositions / sizeof(miVector);
    p.firstColor = toColors / sizeof(miColor);
    std::fill(std::begin(p.colors), std::end(p.colors), white);
    block->state.type = miRAY_LIGHT;
    miBoolean request = miFALSE;
    shader.init(&block->state, &p, &request);
    EXPECT_EQ(renderer.messages.size(), 3u + 2 * many) << "all are listed";
    miColor result{};
    block->state.count = 65534;
    EXPECT_EQ(shader.execute(&result, &block->state, &p), 1);
    block->state.count = 65535;
    EXPECT_EQ(shader.execute(&result, &block->state, &p), 2);
    EXPECT_EQ(block->state.count, 1);
    shader.exit(&block->state, &p);
}

TEST(ParticleLight, AsksForTheShadowOfTheLightAndReturnsWhatItGets)
{
    for (const int on : {1, 2, -1}) { // any word but 0
        Light light({{0, 3, 4}}, {white}, 1);
        light.arena.at<int>(shadow) = on;
        light.ready();
        light.state().point = {0, 0, 0};
        for (const int answer : {miTRUE, miFALSE}) {
            miColor before{};
            light.arena.renderer.traceShadow = [&](miColor* color, miState* state) {
                before = *color;
                EXPECT_EQ(state, &light.state());
                expectVector(state->org, {0, 3, 4});
                expectSame(state->dir, {0, -3 * (1.0f / 5), -4 * (1.0f / 5)});
                EXPECT_EQ(state->dist, 5);
                *color = {0.25f, 0.5f, 0.75f, 0.125f};
                return answer;
            };
            EXPECT_EQ(light.sample(0), answer);
            expectColor(before, {1 / 26.0f, 1 / 26.0f, 1 / 26.0f, 1});
            expectColor(light.result, {0.25f, 0.5f, 0.75f, 0.125f});
        }
        EXPECT_EQ(calls(light.arena.renderer), (Strings{"mi_trace_shadow", "mi_trace_shadow"}));
    }
    Light light({{0, 3, 4}}, {white}, 1);
    light.ready();
    EXPECT_EQ(light.sample(0), 1);
    EXPECT_EQ(calls(light.arena.renderer), Strings()) << "off";
}

TEST(ParticleLight, EveryBitIsTheRules)
{
    const Library loaded; // for all rounds, as loading takes longest
    AnyFloat any(8101);
    std::mt19937 engine(8102);
    std::uniform_real_distribution<float> near(-10, 10);
    for (int round = 0; round < 2'000; ++round) {
        // Half of the lights are anywhere in the range of floats, half are where pictures have them.
        const auto number = [&] { return round % 2 == 0 ? any() : near(engine); };
        const auto vector = [&] { return miVector{number(), number(), number()}; };
        std::vector<miVector> at(8);
        std::vector<miColor> of(8);
        for (std::size_t k = 0; k < at.size(); ++k) {
            at[k] = vector();
            of[k] = {number(), number(), number(), number()};
        }
        const float exponent = number();
        Light light(at, of, 8);
        light.arena.at<float>(falloff) = exponent;
        light.ready();
        for (int k = 0; k < 8; ++k)
            for (int point = 0; point < 4; ++point) {
                light.state().point = vector();
                light.state().normal = point == 0 ? miVector{0, 0, 0} : vector();
                const int returned = light.sample(k);
                const auto index = static_cast<std::size_t>(k);
                expectSame(lit(at[index], of[index], light.state().point, light.state().normal, exponent),
                           returned, light.result, light.state());
                if (HasFailure())
                    return;
            }
    }
}

TEST(ParticleLight, EverythingIsReadInInitInOrderAndOnce)
{
    Light light({{0, 0, 1}, {0, 0, 2}}, {white, white}, 2);
    const std::vector<int> order = {lightCount,        positions, positions + 4, positionByte,
                                    positionByte + 12, colors,    colors + 4,    colorByte,
                                    colorByte + 16,    shadow,    falloff};
    light.arena.watch(order);
    light.ready();
    EXPECT_EQ(light.arena.evaluated, order);
    light.arena.evaluated.clear();
    for (int k = 0; k <= 2; ++k)
        light.sample(k);
    EXPECT_EQ(light.arena.evaluated, std::vector<int>());
    EXPECT_EQ(calls(light.arena.renderer), Strings());
}

TEST(ParticleLight, ParticlesMayComeFromShaders)
{
    Light light({{0, 0, 1}, {0, 0, 2}}, {white, white}, 2);
    miVector position{0, 0, 3};
    miColor color{2, 4, 6, 0.5f};
    light.arena.connect(positionByte + 12);
    light.arena.connect(colorByte + 16);
    light.arena.renderer.evaluate = [&](void* parameter) {
        return parameter == &light.arena.at<char>(colorByte + 16) ? static_cast<void*>(&color) : &position;
    };
    light.ready();
    light.sample(0);
    EXPECT_EQ(light.result.r, 0.5f);
    light.sample(1);
    EXPECT_EQ(light.state().org.z, 3);
    expectColor(light.result, {1.0f / 10, 2.0f / 10, 3.0f / 10, 1});
}

TEST(ParticleLight, ListsItsParticles)
{
    Light light({{1, -2.5f, 1234.5678f}, {0, 0, 2}, {7, 7, 7}}, {{1, 0.5f, 0, 0.5f}, {2, NaN, -1, 1}}, 5);
    light.ready();
    EXPECT_EQ(
        light.arena.renderer.messages,
        (Strings{"vhParticleLight - init data begin\n", "vhParticleLight - lights :   5\n",
                 "vhParticleLight - light   0 : ", "pos 1.000 -2.500 1234.568 : color 0.500 0.250 0.000\n",
                 "vhParticleLight - light   1 : ", "pos 0.000 0.000 2.000 : color 2.000 nan -1.000\n",
                 "vhParticleLight - init data end\n"}));
    light.arena.renderer.messages.clear();
    light.sample(0);
    light.sample(5);
    EXPECT_EQ(light.arena.renderer.messages, Strings());
}

TEST(ParticleLight, InstancesHaveParticlesOfTheirOwn)
{
    const Library library;
    Arena one(library, Light::name), two(library, Light::name);
    for (Arena* const arena : {&one, &two}) {
        const float z = arena == &one ? 1.0f : 3.0f;
        arena->at<int>(lightCount) = arena == &one ? 1 : 2;
        arena->array(positions, firstPosition, std::vector<miVector>{{0, 0, z}, {0, 0, z}});
        arena->array(colors, firstColor, std::vector<miColor>{white, white});
        arena->at<float>(falloff) = 2;
        arena->state().type = miRAY_LIGHT;
        arena->init();
    }
    miColor result{};
    EXPECT_EQ(one.execute(result), 1);
    EXPECT_EQ(result.r, 1.0f / 2);
    EXPECT_EQ(two.execute(result), 1);
    EXPECT_EQ(result.r, 1.0f / 10);
    one.exit();
    two.state().count = 1;
    EXPECT_EQ(two.execute(result), 1);
    EXPECT_EQ(result.r, 1.0f / 10);
    two.exit();
    EXPECT_TRUE(one.renderer.hasAllBlocks());
}
