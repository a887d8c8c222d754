// SPDX-License-Identifier: BSD-3-Clause
#include "host/render/textures.h"

#include "host/render/footprint.h"
#include "host/report/message.h"
#include "tests/harness/folder.h"
#include "tests/harness/stage.h"
#include "tests/host/render/scene.h"

#include <OpenImageIO/imageio.h>
#include <gtest/gtest.h>

#include <sys/resource.h>
#include <unistd.h>

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <limits>
#include <random>

namespace {

using namespace test;

void expectColor(const miColor& c, float r, float g, float b, float a)
{
    EXPECT_NEAR(c.r, r, 1e-6);
    EXPECT_NEAR(c.g, g, 1e-6);
    EXPECT_NEAR(c.b, b, 1e-6);
    EXPECT_NEAR(c.a, a, 1e-6);
}

/// A texture given in the scene, lowest row first.
class Bytes {
public:
    Bytes(int width, int height, int depth, std::vector<unsigned char> values)
    {
        host::Texture texture;
        texture.width = width;
        texture.height = height;
        texture.depth = depth;
        texture.bytes = std::move(values);
        image_ = files_.open(texture, {});
    }
    const host::TextureImage* operator->() const { return image_.get(); }
    miColor at(float x, float y) const
    {
        miColor color{};
        EXPECT_TRUE(image_->lookup(x, y, color));
        return color;
    }

private:
    host::TextureFiles files_;
    std::unique_ptr<host::TextureImage> image_;
};

/// Writes values of 8 bits, the first row at the top, with alpha as it is.
void write(const std::string& file, int width, int height, int channels,
           const std::vector<unsigned char>& values)
{
    OIIO::ImageSpec spec(width, height, channels, OIIO::TypeDesc::UINT8);
    spec.attribute("oiio:UnassociatedAlpha", 1);
    const auto output = OIIO::ImageOutput::create(file);
    ASSERT_TRUE(output->open(file, spec));
    ASSERT_TRUE(output->write_image(OIIO::TypeDesc::UINT8, values.data()));
    ASSERT_TRUE(output->close());
}

/// 0 51
/// 102 153   as an image looks.
struct Row {
    float x, y, value;
};
constexpr Row between[] = {{0.25f, 0.25f, 102},   {0.75f, 0.25f, 153},      {0.25f, 0.75f, 0},
                           {0.75f, 0.75f, 51},    {0.5f, 0.5f, 76.5f},      {0.5f, 0.25f, 127.5f},
                           {0.25f, 0.5f, 51},     {0.375f, 0.25f, 114.75f}, {0, 0, 102},
                           {0.99999994f, 0, 153}, {0, 0.99999994f, 0},      {0.1f, 0.2f, 102}};

void expectRows(const host::TextureImage& image)
{
    for (const Row& row : between) {
        SCOPED_TRACE(testing::Message() << row.x << ' ' << row.y);
        miColor c{};
        EXPECT_TRUE(image.lookup(row.x, row.y, c));
        const float grey = row.value / 255;
        expectColor(c, grey, grey, grey, 1);
    }
}

TEST(Texture, BilinearBetweenTexelCentresAndClampedAtTheBorder)
{
    expectRows(*Bytes(2, 2, 1, {102, 153, 0, 51}).operator->());
    const Folder folder;
    host::Texture texture;
    host::TextureFiles files;
    for (const char* const name : {"t.png", "t.tif"}) {
        SCOPED_TRACE(name);
        texture.file = folder.path(name);
        write(texture.file, 2, 2, 1, {0, 51, 102, 153});
        expectRows(*files.open(texture, {}));
    }
}

TEST(Texture, OutsideTheHalfOpenRangeThereIsNothing)
{
    const Bytes image(1, 1, 1, {51});
    const float nan = std::numeric_limits<float>::quiet_NaN(), inf = std::numeric_limits<float>::infinity();
    for (const float odd : {1.0f, -1e-30f, 2.0f, -inf, inf, nan}) {
        miColor c = {9, 9, 9, 9};
        EXPECT_FALSE(image->lookup(odd, 0.5f, c));
        expectColor(c, 0, 0, 0, 0);
        c = {9, 9, 9, 9};
        EXPECT_FALSE(image->lookup(0.5f, odd, c));
        expectColor(c, 0, 0, 0, 0);
    }
}

TEST(Texture, BytesInTheScene)
{
    const auto only = [](int depth, const std::vector<unsigned char>& values) {
        return Bytes(1, 1, depth, values).at(0.5f, 0.5f);
    };
    expectColor(only(1, {51}), 0.2f, 0.2f, 0.2f, 1);
    expectColor(only(1, {255, 51}), 1, 1, 1, 0.2f);
    expectColor(only(1, {255, 0, 51}), 1, 0, 0.2f, 1);
    expectColor(only(1, {255, 0, 51, 102}), 1, 0, 0.2f, 0.4f);
    expectColor(only(2, {0x33, 0x33}), 0.2f, 0.2f, 0.2f, 1);
    expectColor(only(4, {0x3F, 0xC0, 0, 0}), 1.5f, 1.5f, 1.5f, 1);
    const Bytes two(1, 2, 1, {0, 0, 0, 255, 255, 255});
    expectColor(two.at(0.5f, 0.25f), 0, 0, 0, 1); // the lowest row first
    EXPECT_EQ(errorOf([] {
                  Bytes(2, 2, 1, {1, 2, 3});
              }),
              "texture \"\": 3 bytes do not make 2 by 2 pixels of 1 to 4 components");
    EXPECT_NE(errorOf([] { Bytes(0, 2, 1, {1}); }), "nothing was thrown");
    EXPECT_NE(errorOf([] { Bytes(1, 1, 3, {1, 2, 3}); }), "nothing was thrown");
}

/// Files of one to four channels: values are value / 255, whatever alpha is.
TEST(Texture, Files)
{
    const Folder folder;
    for (int channels = 1; channels <= 4; ++channels)
        for (const std::string format : {"png", "tif"}) {
            SCOPED_TRACE(format + std::to_string(channels));
            const std::string file = folder.path("t." + format);
            std::vector<unsigned char> values;
            for (int i = 0; i < 4 * channels; ++i)
                values.push_back(static_cast<unsigned char>(20 + 10 * i));
            write(file, 2, 2, channels, values);

            host::Texture texture;
            texture.file = "t." + format;
            host::SearchPaths paths;
            paths.texture = {"/nowhere", folder.path()};
            host::TextureFiles files;
            const auto image = files.open(texture, paths);
            // Files count rows from the top: pixel (1, 0) of ours is the last of the file.
            const auto v = [&](int c) { return float(20 + 10 * (3 * channels + c)) / 255.0f; };
            miColor last{};
            EXPECT_TRUE(image->lookup(0.75f, 0.25f, last));
            if (channels == 1)
                expectColor(last, v(0), v(0), v(0), 1);
            else if (channels == 2)
                expectColor(last, v(0), v(0), v(0), v(1));
            else
                expectColor(last, v(0), v(1), v(2), channels == 4 ? v(3) : 1.0f);
        }
}

TEST(Texture, ADisplayWindowFarLargerThanThePictureIsRefused)
{
    // Its pyramid would be made of all the window, which takes minutes, and a file of a few bytes.
    const Folder folder;
    host::TextureFiles files;
    host::Texture texture;
    texture.name = "wood";
    const auto openWithWindow = [&](int height) {
        texture.file = folder.path("t" + std::to_string(height) + ".exr");
        OIIO::ImageSpec spec(4, 2, 3, OIIO::TypeDesc::HALF);
        spec.full_width = 4;
        spec.full_height = height;
        const auto output = OIIO::ImageOutput::create(texture.file);
        const std::vector<float> pixels(4 * 2 * 3, 0.5f);
        EXPECT_TRUE(output->open(texture.file, spec) &&
                    output->write_image(OIIO::TypeDesc::FLOAT, pixels.data()) && output->close());
        return errorOf([&] { files.open(texture, {}); });
    };
    const std::string error = openWithWindow(600'000'000);
    EXPECT_EQ(error, "texture \"wood\": cannot read \"" + texture.file +
                         "\": its display window, 4 by 600000000, is far larger than the picture");
    EXPECT_EQ(openWithWindow(6000), "nothing was thrown");
}

TEST(Texture, MorePixelsThanAFileCanHoldAreRefused)
{
    const Folder folder;
    host::TextureFiles files;
    host::Texture texture;
    texture.name = "wood";
    // 65535 by 32767 pixels of three bytes, packed by their runs; nothing follows the header.
    using namespace std::string_literals;
    folder.write("t.tga", "\0\0\x0A\0\0\0\0\0\0\0\0\0\xFF\xFF\xFF\x7F\x18\0"s + std::string(100, '\xFF'));
    texture.file = folder.path("t.tga");
    EXPECT_EQ(errorOf([&] { files.open(texture, {}); }),
              "texture \"wood\": cannot read \"" + texture.file +
                  "\": it claims to have 65535 by 32767 pixels, and has 118 bytes");
}

TEST(Texture, AnAttributeLongerThanItsFileIsRefusedUnread)
{
    const Folder folder;
    host::TextureFiles files;
    host::Texture texture;
    texture.file = folder.path("t.exr");
    const auto output = OIIO::ImageOutput::create(texture.file);
    const std::vector<float> pixels(4 * 2 * 3, 0.5f);
    const OIIO::ImageSpec spec(4, 2, 3, OIIO::TypeDesc::HALF);
    ASSERT_TRUE(output->open(texture.file, spec) &&
                output->write_image(OIIO::TypeDesc::FLOAT, pixels.data()) && output->close());
    EXPECT_EQ(errorOf([&] { files.open(texture, {}); }), "nothing was thrown");
    // Its length follows an attribute's name and type.
    std::ifstream in(texture.file, std::ios::binary);
    std::string bytes{std::istreambuf_iterator<char>(in), {}};
    const std::string_view head("displayWindow\0box2i", 20);
    const std::size_t length = bytes.find(head) + head.size();
    ASSERT_LT(length, bytes.size());
    ASSERT_EQ(bytes.substr(length, 4), std::string("\x10\0\0\0", 4));
    bytes[length + 3] = 0x15;
    folder.write("longer.exr", bytes);
    texture.file = folder.path("longer.exr");
    EXPECT_EQ(errorOf([&] { files.open(texture, {}); }),
              "texture \"\": cannot read \"" + texture.file + "\": its end is missing");
}

TEST(Texture, MissingAndUnreadableFilesNameTheTexture)
{
    const Folder folder;
    host::Texture texture;
    texture.name = "wood";
    texture.where = {host::fileName(folder.path("scene.mi")), 12, 3};
    texture.file = "absent.png";
    host::TextureFiles files;
    EXPECT_EQ(errorOf([&] { files.open(texture, {}); }),
              folder.path("scene.mi") +
                  ":12:3: texture \"wood\": no file \"absent.png\"; looked in \".\", \"" + folder.path() +
                  '"');
    folder.write("text.png", "this is no picture");
    texture.file = "text.png"; // found beside the scene
    EXPECT_NE(errorOf([&] { files.open(texture, {}); }).find("texture \"wood\": cannot read"),
              std::string::npos);
}

TEST(Texture, FilesThatEndTooEarlyAreRefused)
{
    const Folder folder;
    for (const std::string format : {"exr", "tif"}) { // PNG too, whose reader leaks its message then
        SCOPED_TRACE(format);
        host::Texture texture;
        texture.name = "wood";
        texture.file = folder.path("t." + format);
        std::vector<unsigned char> noise;
        std::mt19937 source(3);
        std::generate_n(std::back_inserter(noise), 256 * 256 * 3,
                        [&] { return static_cast<unsigned char>(source()); });
        write(texture.file, 256, 256, 3, noise);
        std::filesystem::resize_file(texture.file, std::filesystem::file_size(texture.file) / 2);
        host::TextureFiles files;
        const std::string error = errorOf([&] { files.open(texture, {}); });
        EXPECT_TRUE(error.starts_with("texture \"wood\": cannot read \"" + texture.file + "\": ")) << error;
    }
}

/// Nearly 1 GB of pixels if they were all kept as floats, but 64 by 64 of them in use.
TEST(Texture, OfAWideFileOnlyPartsAreRead)
{
    const Folder folder;
    host::Texture texture;
    texture.file = folder.path("wide.tif");
    constexpr int width = 30000, height = 2000;
    OIIO::ImageSpec spec(width, height, 3, OIIO::TypeDesc::UINT8);
    spec.tile_width = spec.tile_height = 64;
    spec.attribute("compression", "zip");
    const auto output = OIIO::ImageOutput::create(texture.file);
    ASSERT_TRUE(output->open(texture.file, spec));
    std::vector<unsigned char> row(std::size_t(width) * 64 * 3, 51);
    for (int y = 0; y < height; y += 64)
        ASSERT_TRUE(output->write_tiles(0, width, y, std::min(y + 64, height), 0, 1, OIIO::TypeDesc::UINT8,
                                        row.data()));
    ASSERT_TRUE(output->close());

    rusage before{}, after{};
    getrusage(RUSAGE_SELF, &before);
    host::TextureFiles files;
    const auto image = files.open(texture, {});
    miColor color{};
    EXPECT_TRUE(image->lookup(0.999f, 0.5f, color));
    expectColor(color, 0.2f, 0.2f, 0.2f, 1);
    getrusage(RUSAGE_SELF, &after);
    EXPECT_LT(after.ru_maxrss - before.ru_maxrss, 100'000) << "KiB";
}

TEST(Texture, ShadersLookItUpAndTheRenderingChecksItFirst)
{
    Scene scene;
    auto& texture = scene.session.database.make<host::Texture>("tex");
    texture.width = texture.height = 1;
    texture.bytes = {51, 102, 153};
    auto& material = scene.session.database.make<host::Material>();
    int calls = 0;
    material.shader = {scene
                           .shader(
                               [&](miColor& result, miState& state) {
                                   ++calls;
                                   miVector coord = {0.5f, 0.5f, 99.0f};
                                   EXPECT_TRUE(mi_lookup_color_texture(&result, &state, texture.tag, &coord));
                                   miColor none = {1, 1, 1, 1};
                                   EXPECT_FALSE(mi_lookup_color_texture(&none, &state, 0, &coord));
                                   EXPECT_EQ(none.a, 0.0f);
                                   EXPECT_FALSE(mi_lookup_color_texture(&none, &state, material.tag, &coord));
                                   EXPECT_FALSE(mi_lookup_color_texture(&none, &state, 999999, &coord));
                                   return miTRUE;
                               },
                               "tex")
                           .tag};
    scene.place(scene.square(1), {0, 0, -1}).materials = {material.tag};
    const miColor c = scene.look();
    expectColor(c, 0.2f, 0.4f, 0.6f, 1);
    EXPECT_EQ(calls, 1);
    texture.bytes.clear();
    texture.file = "absent.png";
    EXPECT_EQ(errorOf([&] { scene.look(); }), "texture \"tex\": no file \"absent.png\"; looked in \".\"");
    EXPECT_EQ(calls, 1) << "rendering had begun";
}

extern "C" miBoolean mi_call_shader(miColor*, int, miState*, miTag);
extern "C" miBoolean mi_call_shader_x(miColor*, int, miState*, miTag, void*);

/// A procedural texture "tex" whose shader shows the coordinate.
host::Function& makeProcedural(Scene& scene)
{
    host::Declaration declaration;
    declaration.name = "argued";
    declaration.version = 1;
    auto function = std::make_unique<host::Function>(scene.session.declarations.add(std::move(declaration)),
                                                     std::vector<host::Argument>(), scene.session.database,
                                                     host::Location());
    host::Function& made = *function;
    scene.session.database.add(std::move(function));
    scene.session.database.make<host::Texture>("tex").procedural = {made.tag};
    return made;
}

TEST(Texture, AProceduralOneIsItsShaderCalledWithTheCoordinate)
{
    Scene scene;
    const miTag function = makeProcedural(scene).tag;
    const miTag texture = scene.session.database.lookup("tex");
    auto& material = scene.session.database.make<host::Material>();
    int calls = 0;
    material.shader = {scene
                           .shader(
                               [&](miColor& result, miState& state) {
                                   ++calls;
                                   miVector left = {0.25f, 7, -1}, right = {0.75f, 0, 0};
                                   EXPECT_TRUE(mi_lookup_color_texture(&result, &state, texture, &left));
                                   expectColor(result, 0.25f, 7, -1, 1);
                                   EXPECT_FALSE(mi_lookup_color_texture(&result, &state, texture, &right))
                                       << "the shader's own value";
                                   EXPECT_TRUE(mi_call_shader_x(&result, 6, &state, function, &left));
                                   expectColor(result, 0.25f, 7, -1, 1);
                                   result = {1, 2, 3, 4};
                                   EXPECT_FALSE(mi_call_shader(&result, 6, &state, 0));
                                   EXPECT_FALSE(mi_call_shader(&result, 6, &state, material.tag));
                                   expectColor(result, 1, 2, 3, 4);
                                   return miTRUE;
                               },
                               "tex")
                           .tag};
    scene.place(scene.square(1), {0, 0, -1}).materials = {material.tag};
    expectColor(scene.look(), 1, 2, 3, 4);
    EXPECT_EQ(calls, 1);
}

TEST(Texture, AProceduralOneFindsTheCoordinateInItsState)
{
    Scene scene;
    auto& texture = scene.session.database.make<host::Texture>("tex");
    texture.procedural = {scene
                              .shader([](miColor& result, miState& state) {
                                  result = {state.tex.x, state.tex.y, state.tex.z, 1};
                                  return miTRUE;
                              })
                              .tag};
    auto& material = scene.session.database.make<host::Material>();
    material.shader = {scene
                           .shader(
                               [&](miColor& result, miState& state) {
                                   state.tex = {5, 6, 7};
                                   miVector coord = {0.25f, 0.5f, -1};
                                   EXPECT_TRUE(mi_lookup_color_texture(&result, &state, texture.tag, &coord));
                                   EXPECT_EQ(state.tex.x, 5) << "as it was";
                                   EXPECT_EQ(state.tex.z, 7);
                                   return miTRUE;
                               },
                               "tex")
                           .tag};
    scene.place(scene.square(1), {0, 0, -1}).materials = {material.tag};
    expectColor(scene.look(), 0.25f, 0.5f, -1, 1);
}

TEST(Texture, AProceduralOneThatNoParameterNamesIsNone)
{
    Scene scene;
    makeProcedural(scene);
    const miTag texture = scene.session.database.lookup("tex");
    scene.place(scene.square(1), {0, 0, -1}).materials = {
        scene
            .material([&](miColor& result, miState& state) {
                miVector coord = {0.25f, 0, 0};
                EXPECT_FALSE(mi_lookup_color_texture(&result, &state, texture, &coord));
                return miTRUE;
            })
            .tag};
    expectColor(scene.look(), 0, 0, 0, 0);
}

TEST(Texture, AShaderThatLooksItselfUpIsStopped)
{
    Scene scene;
    auto& texture = scene.session.database.make<host::Texture>("tex");
    host::Function& shader = scene.shader(
        [&](miColor& result, miState& state) {
            miVector coord = {0, 0, 0};
            return mi_lookup_color_texture(&result, &state, texture.tag, &coord);
        },
        "tex");
    texture.procedural = {shader.tag};
    auto& material = scene.session.database.make<host::Material>();
    material.shader = {shader.tag};
    scene.place(scene.square(1), {0, 0, -1}).materials = {material.tag};
    EXPECT_NE(errorOf([&] { scene.look(); }).find("shaders call one another more than 1024 deep"),
              std::string::npos);
}

TEST(Texture, OneThatNoParameterNamesIsLoadedWhenItIsUsed)
{
    Scene scene;
    auto& texture = scene.session.database.make<host::Texture>("late");
    texture.file = "absent.png";
    scene.place(scene.square(100), {0, 0, -1}).materials = {
        scene
            .material([&](miColor& result, miState& state) {
                miVector coord = {0.5f, 0.5f, 0};
                const miBoolean found = mi_lookup_color_texture(&result, &state, texture.tag, &coord);
                EXPECT_FALSE(found);
                return miTRUE;
            })
            .tag};
    std::vector<std::string> lines;
    host::setMessageSink([&](host::Level, std::string_view line) { lines.emplace_back(line); });
    scene.render(2);
    host::setMessageSink({});
    EXPECT_EQ(lines.size(), 1u) << "one message for 64 pixels";
}

} // namespace

/// A square with texture coordinates from 0 to 1, what its material does, and the camera at the origin.
struct Papered : Scene {
    host::Instance* wall = nullptr;

    Papered(float half, Shade shade)
    {
        host::Object& object = square(half);
        for (const miVector& t : {miVector{0, 0, 0}, {1, 0, 0}, {1, 1, 0}, {0, 1, 0}}) {
            object.vertices[object.textureIndices.size()].firstTexture =
                std::uint32_t(object.textureIndices.size());
            object.vertices[object.textureIndices.size()].textureCount = 1;
            object.textureIndices.push_back(std::uint32_t(object.vectors.size()));
            object.vectors.push_back(t);
        }
        wall = &place(object, {0, 0, -10});
        wall->materials = {material(std::move(shade)).tag};
    }

    /// What a pixel measures at distance 1.
    float pixel() const
    {
        return camera.record.aperture / camera.record.focal / float(camera.record.x_resolution);
    }
};

TEST(Footprint, IsThePixelsAreaOnTheSurface)
{
    // A wall 8 wide, 10 away, turned about x by 60 degrees: twice as long upwards.
    host::Footprint seen;
    Papered scene(4, [&](miColor&, miState& state) {
        seen = host::footprintOf(host::RenderThread::of(state), state);
        return miTRUE;
    });
    scene.look();
    const float width = scene.pixel() * 10 / 8;
    EXPECT_NEAR(std::hypot(seen.sx, seen.tx), width, 1e-5f * width);
    EXPECT_NEAR(std::hypot(seen.sy, seen.ty), width, 1e-5f * width);
    EXPECT_NEAR(seen.sx * seen.sy + seen.tx * seen.ty, 0, 1e-5f * width * width);

    const double c = 0.5, s = std::sqrt(0.75);
    test::setMatrix(*scene.wall, {1, 0, 0, 0, 0, c, s, 0, 0, -s, c, 0, 0, 0, -10, 1});
    scene.look();
    EXPECT_NEAR(std::abs(seen.sx), width, 1e-5f * width);
    EXPECT_NEAR(seen.tx, 0, 1e-5f * width);
    EXPECT_NEAR(seen.sy, 0, 1e-5f * width);
    EXPECT_NEAR(std::abs(seen.ty), 2 * width, 2e-5f * width);
    // Twice as large by its instance: half of it is seen.
    test::setMatrix(*scene.wall, {2, 0, 0, 0, 0, 2, 0, 0, 0, 0, 2, 0, 0, 0, -10, 1});
    scene.look();
    EXPECT_NEAR(std::hypot(seen.sx, seen.tx), width / 2, 1e-5f * width);
    scene.camera.record.orthographic = miTRUE;
    scene.look();
    EXPECT_NEAR(std::hypot(seen.sx, seen.tx),
                scene.camera.record.aperture / scene.camera.record.x_resolution / 16, 1e-5f);
}

TEST(Footprint, GrowsWithTheWholePath)
{
    host::Footprint seen;
    Papered scene(4, [&](miColor& result, miState& state) {
        if (state.type == miRAY_EYE) // through the wall to the one behind it
            return mi_trace_transparent(&result, &state);
        seen = host::footprintOf(host::RenderThread::of(state), state);
        return miTRUE;
    });
    host::Instance& second = scene.place(*scene.session.database.find(scene.wall->record.item), {0, 0, -25});
    second.materials = scene.wall->materials;
    scene.look();
    const float width = scene.pixel() * 25 / 8;
    EXPECT_NEAR(std::hypot(seen.sx, seen.tx), width, 1e-5f * width);
}

TEST(Footprint, OfRaysToLightsIsAPoint)
{
    bool asked = false;
    miTag lamp = 0;
    Papered scene(4, [&](miColor& result, miState& state) {
        int samples = 0;
        return mi_sample_light(&result, nullptr, nullptr, &state, lamp, &samples);
    });
    lamp = scene
               .place(scene.pointLight({0, 0, 0},
                                       [&](miColor&, miState& state) {
                                           const host::Footprint f =
                                               host::footprintOf(host::RenderThread::of(state), state);
                                           EXPECT_EQ(f.sx, 0.0f);
                                           EXPECT_EQ(f.ty, 0.0f);
                                           asked = true;
                                           return miTRUE;
                                       }))
               .tag;
    scene.look();
    EXPECT_TRUE(asked);
}

TEST(Footprint, FilterTexturesAreTheMeanOfIt)
{
    // Stripes one texel wide, and a ramp, 256 texels across.
    const Folder folder;
    std::vector<unsigned char> stripes, ramp;
    for (int y = 0; y < 256; ++y)
        for (int x = 0; x < 256; ++x) {
            stripes.push_back(x % 2 ? 255 : 0);
            ramp.push_back(static_cast<unsigned char>(x));
        }
    write(folder.path("stripes.png"), 256, 256, 1, stripes);
    write(folder.path("ramp.png"), 256, 256, 1, ramp);
    host::Texture texture;
    host::TextureFiles files;
    const auto look = [&](const char* name, bool filter, float scale, float x, float texels) {
        texture.file = folder.path(name);
        texture.filter = filter;
        texture.filterScale = scale;
        const float size = texels / 256;
        miColor color{};
        const auto image = files.open(texture, {});
        EXPECT_EQ(image->filters(), filter);
        EXPECT_TRUE(image->lookup(x, 0.5f, color, {size, 0, 0, size}));
        return color.r;
    };
    const float white = (101 + 0.5f) / 256, black = (100 + 0.5f) / 256;
    for (const float texels : {0.0f, 8.0f, 200.0f}) {
        EXPECT_EQ(look("stripes.png", false, 1, white, texels), 1.0f);
        EXPECT_EQ(look("stripes.png", false, 1, black, texels), 0.0f);
    }
    EXPECT_NEAR(look("stripes.png", true, 1, white, 0.01f), 1.0f, 1e-3);
    EXPECT_NEAR(look("stripes.png", true, 1, black, 0.01f), 0.0f, 1e-3);
    for (const float texels : {4.0f, 8.0f, 50.0f}) {
        EXPECT_NEAR(look("stripes.png", true, 1, white, texels), 0.5f, 0.01f) << texels;
        EXPECT_NEAR(look("stripes.png", true, texels, white, 1), 0.5f, 0.01f) << texels; // by the scale
        EXPECT_NEAR(look("ramp.png", true, 1, 0.5f, texels), 127.5f / 255, 0.005f) << texels;
    }
}

TEST(Footprint, AShaderLooksUpWhatThePixelSees)
{
    const Folder folder;
    std::vector<unsigned char> stripes;
    for (int i = 0; i < 256 * 256; ++i)
        stripes.push_back(i % 2 ? 255 : 0);
    write(folder.path("stripes.png"), 256, 256, 1, stripes);
    miTag picture = 0;
    Papered scene(4, [&](miColor& result, miState& state) {
        miVector coord = {(101 + 0.5f) / 256, 0.5f, 0};
        return mi_lookup_color_texture(&result, &state, picture, &coord);
    });
    auto& texture = scene.session.database.make<host::Texture>("stripes");
    texture.file = folder.path("stripes.png");
    picture = texture.tag;
    scene.camera.record.aperture = scene.camera.record.focal * 0.4f; // 4 of the wall's 8: 128 texels
    EXPECT_EQ(scene.look().r, 1.0f);
    texture.filter = true;
    EXPECT_NEAR(scene.look().r, 0.5f, 0.01f);
    scene.camera.record.aperture /= 1e5f;
    EXPECT_NEAR(scene.look().r, 1.0f, 1e-3f);
}
