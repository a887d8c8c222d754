// SPDX-License-Identifier: BSD-3-Clause
// Which field of the state each state shader gives, and how it is converted.
#include "state_orders.h"
#include "tests/harness/call.h"

#include <gtest/gtest.h>

#include <array>
#include <atomic>
#include <bit>
#include <cmath>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <latch>
#include <limits>
#include <random>
#include <stdexcept>
#include <vector>

namespace {

using host::Type;
using test::Call;

constexpr float infinity = std::numeric_limits<float>::infinity();

/// A result by its words, so that signed zeros and NaNs compare too.
using Words = std::vector<std::uint32_t>;

Words words(float s) { return {std::bit_cast<std::uint32_t>(s)}; }
Words words(miVector v)
{
    const auto bits = std::bit_cast<std::array<std::uint32_t, 3>>(v);
    return {bits.begin(), bits.end()};
}

/// Runs a test::Call or a test::Sample of it.
template <class Runner>
Words run(Runner& runner, std::size_t size)
{
    if (size == sizeof(miVector))
        return words(runner.template run<miVector>());
    return {runner.template run<std::uint32_t>()};
}

/// Different values for all fields that the shaders read, and what they point to.
struct Facts {
    void giveTo(miState& state)
    {
        state.camera = &camera;
        state.raster_x = 11.25f;
        state.raster_y = 12.75f;
        state.type = miRAY_REFRACT;
        state.inv_normal = 1;
        state.reflection_level = 4;
        state.refraction_level = 5;
        state.org = {1, 2, 3};
        state.dir = {4, 5, 6};
        state.dist = 0.1; // no float
        state.time = 0.375f;
        state.label = 77;
        state.instance = 88;
        state.point = {7, 8, 9};
        state.normal = {10, 11, 12};
        state.normal_geom = {13, 14, 15};
        state.dot_nd = -0.625f;
        state.tex_list = textures.data();
        state.motion = {16, 17, 18};
        state.tex = {19, 20, 21}; // and one that none reads
    }

    miCamera camera = [] {
        miCamera made{};
        made.x_resolution = 640;
        made.y_resolution = 480;
        return made;
    }();
    std::array<miVector, 2> textures = {miVector{0.25f, 0.75f, 99}, miVector{22, 23, 24}};
};

/// What each shader gives for the Facts.
struct Row {
    const char* shader;
    Type type;
    Words result;
};

const std::vector<Row>& rows()
{
    static const std::vector<Row> all = {
        {"vhStatePoint_v1", Type::vector, words(miVector{7, 8, 9})},
        {"vhStateNormal_v1", Type::vector, words(miVector{10, 11, 12})},
        {"vhStateGeometricNormal_v1", Type::vector, words(miVector{13, 14, 15})},
        {"vhStateOrg_v1", Type::vector, words(miVector{1, 2, 3})},
        {"vhStateDir_v1", Type::vector, words(miVector{4, 5, 6})},
        {"vhStateMotion_v1", Type::vector, words(miVector{16, 17, 18})},
        {"vhStateRasterPos_v1", Type::vector, words(miVector{11.25f, 12.75f, 0})},
        {"vhStateTextureCoord_v1", Type::vector, words(miVector{0.25f, 0.75f, 0})},
        {"vhStateRasterX_v1", Type::scalar, words(11.25f)},
        {"vhStateRasterY_v1", Type::scalar, words(12.75f)},
        {"vhStateRasterWidth_v1", Type::scalar, words(640.0f)},
        {"vhStateRasterHeight_v1", Type::scalar, words(480.0f)},
        {"vhStateDist_v1", Type::scalar, words(0.1f)},
        {"vhStateTime_v1", Type::scalar, words(0.375f)},
        {"vhStateDotND_v1", Type::scalar, words(-0.625f)},
        {"vhStateInvNormal_v1", Type::boolean, {1}},
        {"vhStateReflectionLevel_v1", Type::integer, {4}},
        {"vhStateRefractionLevel_v1", Type::integer, {5}},
        {"vhStateLabel_v1", Type::integer, {77}},
        {"vhStateInstance_v1", Type::integer, {88}},
        {"vhStateRayType_v1", Type::integer, {3}},
        {"vhStateReflectionLevelScalar_v1", Type::scalar, words(4.0f)},
        {"vhStateRefractionLevelScalar_v1", Type::scalar, words(5.0f)},
        {"vhStateLabelScalar_v1", Type::scalar, words(77.0f)},
        {"vhStateInstanceScalar_v1", Type::scalar, words(88.0f)},
        {"vhStateRayTypeScalar_v1", Type::scalar, words(3.0f)},
    };
    return all;
}

/// A shader in a state with all facts, which a test changes before it runs.
struct Stated : Facts {
    explicit Stated(const char* shader) : call(shader) { giveTo(state); }

    template <class R>
    R run()
    {
        return call.run<R>();
    }

    Call call;
    miState& state = call.state();
};

TEST(State, EveryShaderGivesItsField)
{
    Facts facts;
    for (const Row& row : rows()) {
        SCOPED_TRACE(row.shader);
        Call call(row.shader);
        EXPECT_EQ(call.declaration().result.type, row.type);
        facts.giveTo(call.state());
        EXPECT_EQ(run(call, call.declaration().result.size), row.result);
        EXPECT_EQ(call.returned(), 1);
    }
}

TEST(State, TheTablesNameTheSameShaders)
{
    const std::vector<Orders> orders = stateOrders();
    ASSERT_EQ(orders.size(), rows().size());
    for (std::size_t i = 0; i < orders.size(); ++i)
        EXPECT_EQ(orders[i].shader, rows()[i].shader);
}

TEST(State, TheStateStaysAsItIs)
{
    Facts facts;
    for (const Row& row : rows()) {
        SCOPED_TRACE(row.shader);
        Call call(row.shader);
        miState& state = call.state();
        facts.giveTo(state);
        run(call, call.declaration().result.size); // the host has filled in its part
        const miState before = state;
        run(call, call.declaration().result.size);
        EXPECT_EQ(std::memcmp(&state, &before, sizeof state), 0);
    }
}

TEST(State, VectorsKeepTheirLengthAndEveryBit)
{
    // No transformation and no normalisation: random words come through, NaNs and denormals among them.
    struct Field {
        const char* shader;
        miVector miState::*member;
    };
    const Field fields[] = {
        {"vhStatePoint_v1", &miState::point},   {"vhStateNormal_v1", &miState::normal},
        {"vhStateOrg_v1", &miState::org},       {"vhStateDir_v1", &miState::dir},
        {"vhStateMotion_v1", &miState::motion}, {"vhStateGeometricNormal_v1", &miState::normal_geom}};
    std::mt19937 random(1);
    for (const Field& field : fields) {
        SCOPED_TRACE(field.shader);
        Stated shader(field.shader);
        for (int i = 0; i < 1000; ++i) {
            const std::array<std::uint32_t, 3> bits = {std::uint32_t(random()), std::uint32_t(random()),
                                                       std::uint32_t(random())};
            std::memcpy(&(shader.state.*field.member), bits.data(), sizeof bits);
            EXPECT_EQ(words(shader.run<miVector>()), Words(bits.begin(), bits.end()));
        }
    }
}

TEST(State, ScalarsKeepEveryBit)
{
    struct Field {
        const char* shader;
        float miState::*member;
    };
    const Field fields[] = {{"vhStateRasterX_v1", &miState::raster_x},
                            {"vhStateRasterY_v1", &miState::raster_y},
                            {"vhStateTime_v1", &miState::time},
                            {"vhStateDotND_v1", &miState::dot_nd}};
    std::mt19937 random(2);
    for (const Field& field : fields) {
        SCOPED_TRACE(field.shader);
        Stated shader(field.shader);
        for (int i = 0; i < 1000; ++i) {
            const std::uint32_t bits = random();
            std::memcpy(&(shader.state.*field.member), &bits, sizeof bits);
            EXPECT_EQ(shader.run<std::uint32_t>(), bits);
        }
    }
}

TEST(State, RasterPosHasNoThirdComponent)
{
    Stated shader("vhStateRasterPos_v1");
    for (const float position : {-3.5f, 0.0f, 0.5f, 16383.75f, infinity}) {
        shader.state.raster_x = position;
        shader.state.raster_y = -position;
        EXPECT_EQ(words(shader.run<miVector>()), words(miVector{position, -position, 0.0f}));
    }
}

TEST(State, TextureCoordDropsTheThirdComponent)
{
    Stated shader("vhStateTextureCoord_v1");
    for (const float third : {-0.0f, 1.0f, -1e30f, infinity, std::nanf("")}) {
        shader.textures[0] = {-0.5f, 1.5f, third};
        EXPECT_EQ(words(shader.run<miVector>()), words(miVector{-0.5f, 1.5f, 0.0f}));
    }
}

TEST(State, TextureCoordWithoutCoordinatesIsZero)
{
    Stated shader("vhStateTextureCoord_v1");
    shader.state.tex_list = nullptr;
    EXPECT_EQ(words(shader.run<miVector>()), words(miVector{0, 0, 0}));
}

TEST(State, InvNormalIsExactlyOneOrZero)
{
    Stated shader("vhStateInvNormal_v1");
    for (int flag = 0; flag < 256; ++flag) {
        shader.state.inv_normal = static_cast<miCBoolean>(flag);
        EXPECT_EQ(shader.run<int>(), flag == 0 ? 0 : 1) << flag;
    }
}

TEST(State, RasterWidthAndHeightAreWhatTheCameraSays)
{
    Stated width("vhStateRasterWidth_v1"), height("vhStateRasterHeight_v1");
    EXPECT_EQ(width.run<float>(), 640.0f);
    EXPECT_EQ(height.run<float>(), 480.0f);
    // Signed, and rounded to the nearest float: 2^24 + 1 lies between two and goes to the even one.
    struct Row {
        int pixels;
        float expected;
    };
    for (const Row& row :
         {Row{1, 1}, Row{16777217, 16777216}, Row{16777219, 16777220}, Row{0, 0}, Row{-2, -2}}) {
        width.camera.x_resolution = height.camera.y_resolution = row.pixels;
        EXPECT_EQ(width.run<float>(), row.expected);
        EXPECT_EQ(height.run<float>(), row.expected);
    }
}

TEST(State, DistIsRoundedToTheNearestFloat)
{
    struct Row {
        const char* why;
        double held;
        float expected;
    };
    const Row table[] = {
        {"between two floats, to the nearer", 0.1, 0.1f},
        {"half way, to the even one below", 1.0 + 0x1p-24, 1.0f},
        {"half way, to the even one above", 1.0 + 3 * 0x1p-24, 1.0f + 0x1p-22f},
        {"beyond the largest float", 1e300, infinity},
        {"below the smallest", 1e-300, 0.0f},
        {"a denormal", 0x1p-149, 0x1p-149f},
        {"a directional light's", 0.0, 0.0f},
        {"infinite", std::numeric_limits<double>::infinity(), infinity},
    };
    Stated shader("vhStateDist_v1");
    for (const Row& row : table) {
        shader.state.dist = row.held;
        EXPECT_EQ(words(shader.run<float>()), words(row.expected)) << row.why;
    }
    shader.state.dist = std::nan("");
    EXPECT_TRUE(std::isnan(shader.run<float>()));
}

TEST(State, LevelsAreSigned)
{
    struct Level {
        const char* integer;
        const char* scalar;
        int miState::*member;
    };
    const Level levels[] = {
        {"vhStateReflectionLevel_v1", "vhStateReflectionLevelScalar_v1", &miState::reflection_level},
        {"vhStateRefractionLevel_v1", "vhStateRefractionLevelScalar_v1", &miState::refraction_level}};
    struct Row {
        int held;
        float expected;
    };
    const Row table[] = {
        {0, 0}, {1, 1}, {-1, -1}, {2147483647, 2147483648.0f}, {-2147483647 - 1, -2147483648.0f}};
    for (const Level& level : levels) {
        SCOPED_TRACE(level.integer);
        Stated integer(level.integer), scalar(level.scalar);
        for (const Row& row : table) {
            integer.state.*level.member = scalar.state.*level.member = row.held;
            EXPECT_EQ(integer.run<int>(), row.held);
            EXPECT_EQ(scalar.run<float>(), row.expected);
        }
    }
}

TEST(State, LabelsTagsAndRayTypesAreUnsigned)
{
    struct Number {
        const char* integer;
        const char* scalar;
        std::size_t offset;
    };
    const Number numbers[] = {{"vhStateLabel_v1", "vhStateLabelScalar_v1", offsetof(miState, label)},
                              {"vhStateInstance_v1", "vhStateInstanceScalar_v1", offsetof(miState, instance)},
                              {"vhStateRayType_v1", "vhStateRayTypeScalar_v1", offsetof(miState, type)}};
    struct Row {
        std::uint32_t held;
        float expected;
    };
    const Row table[] = {{0, 0},
                         {16777217, 16777216},
                         {2147483647, 2147483648.0f},
                         {2147483648, 2147483648.0f},
                         {0xC0000000, 3221225472.0f},
                         {0xFFFFFFFF, 4294967296.0f}};
    for (const Number& number : numbers) {
        SCOPED_TRACE(number.integer);
        Call integer(number.integer), scalar(number.scalar);
        for (const Row& row : table) {
            for (Call* const call : {&integer, &scalar})
                std::memcpy(reinterpret_cast<char*>(&call->state()) + number.offset, &row.held,
                            sizeof row.held);
            EXPECT_EQ(integer.run<std::uint32_t>(), row.held) << "bit for bit";
            EXPECT_EQ(scalar.run<float>(), row.expected) << row.held;
        }
    }
}

TEST(State, RayTypesAreTheRenderersCodes)
{
    Stated integer("vhStateRayType_v1"), scalar("vhStateRayTypeScalar_v1");
    for (int code = miRAY_EYE; code <= miRAY_NO_TYPES; ++code) {
        integer.state.type = scalar.state.type = static_cast<miRay_type>(code);
        EXPECT_EQ(integer.run<int>(), code);
        EXPECT_EQ(scalar.run<float>(), float(code));
    }
}

TEST(State, ThreadsSeeTheirOwnStates)
{
    constexpr int threadCount = 4, runs = 1000;
    for (const Row& row : rows()) {
        SCOPED_TRACE(row.shader);
        Call call(row.shader);
        const std::size_t size = call.declaration().result.size;
        std::latch start(threadCount);
        std::atomic<int> threads = 0;
        call.onThreads(threadCount, [&](test::Sample& sample) {
            // Half of them with all facts, the others with one that is all zeros.
            const bool isFull = threads++ % 2 == 0;
            Facts facts;
            const miCamera none{};
            sample.state = {};
            sample.state.camera = &none;
            if (isFull)
                facts.giveTo(sample.state);
            const Words expected = isFull ? row.result : Words(row.result.size(), 0);
            start.arrive_and_wait();
            for (int round = 0; round < runs; ++round)
                if (run(sample, size) != expected)
                    throw std::logic_error("another thread's state");
        });
    }
}

} // namespace
