// SPDX-License-Identifier: BSD-3-Clause
#include "host/render/textures.h"

#include "host/report/message.h"
#include "tests/harness/stage.h"
#include "tests/host/render/scene.h"

#include <OpenImageIO/imageio.h>
#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <limits>

namespace {

using namespace test;

void expectColor(const miColor& c, float r, float g, float b, float a)
{
    EXPECT_NEAR(c.r, r, 1e-6);
    EXPECT_NEAR(c.g, g, 1e-6);
    EXPECT_NEAR(c.b, b, 1e-6);
    EXPECT_NEAR(c.a, a, 1e-6);
}

/// A folder that goes away.
struct Folder {
    std::filesystem::path path =
        std::filesystem::temp_directory_path() / ("render_textures_" + std::to_string(getpid()));
    Folder() { std::filesystem::create_directories(path); }
    ~Folder() { std::filesystem::remove_all(path); }
};

host::TextureImage bytes(int width, int height, int depth, std::vector<unsigned char> values)
{
    host::Texture texture;
    texture.width = width;
    texture.height = height;
    texture.depth = depth;
    texture.bytes = std::move(values);
    return host::readTexture(texture, {});
}

TEST(Texture, BilinearBetweenTexelCentresAndClampedAtTheBorder)
{
    // 0 1
    // 2 3   with the lowest row first.
    const host::TextureImage image = {2, 2, {{2, 0, 0, 1}, {3, 0, 0, 1}, {0, 0, 0, 1}, {1, 0, 0, 1}}};
    struct Row {
        float x, y, value;
    };
    const Row rows[] = {{0.25f, 0.25f, 2},  {0.75f, 0.25f, 3},   {0.25f, 0.75f, 0},   {0.75f, 0.75f, 1},
                        {0.5f, 0.5f, 1.5f}, {0.5f, 0.25f, 2.5f}, {0.25f, 0.5f, 1},    {0.375f, 0.25f, 2.25f},
                        {0, 0, 2},          {0.99999994f, 0, 3}, {0, 0.99999994f, 0}, {0.1f, 0.2f, 2}};
    for (const Row& row : rows) {
        miColor c{};
        EXPECT_TRUE(image.lookup(row.x, row.y, c));
        expectColor(c, row.value, 0, 0, 1);
    }
}

TEST(Texture, OutsideTheHalfOpenRangeThereIsNothing)
{
    const host::TextureImage image = {1, 1, {{5, 5, 5, 1}}};
    const float nan = std::numeric_limits<float>::quiet_NaN(), inf = std::numeric_limits<float>::infinity();
    for (const float odd : {1.0f, -1e-30f, 2.0f, -inf, inf, nan}) {
        miColor c = {9, 9, 9, 9};
        EXPECT_FALSE(image.lookup(odd, 0.5f, c));
        expectColor(c, 0, 0, 0, 0);
        c = {9, 9, 9, 9};
        EXPECT_FALSE(image.lookup(0.5f, odd, c));
        expectColor(c, 0, 0, 0, 0);
    }
}

TEST(Texture, BytesInTheScene)
{
    expectColor(bytes(1, 1, 1, {51}).pixels[0], 0.2f, 0.2f, 0.2f, 1);
    expectColor(bytes(1, 1, 1, {255, 51}).pixels[0], 1, 1, 1, 0.2f);
    expectColor(bytes(1, 1, 1, {255, 0, 51}).pixels[0], 1, 0, 0.2f, 1);
    expectColor(bytes(1, 1, 1, {255, 0, 51, 102}).pixels[0], 1, 0, 0.2f, 0.4f);
    expectColor(bytes(1, 1, 2, {0x33, 0x33}).pixels[0], 0.2f, 0.2f, 0.2f, 1);
    expectColor(bytes(1, 1, 4, {0x3F, 0xC0, 0, 0}).pixels[0], 1.5f, 1.5f, 1.5f, 1);
    const host::TextureImage two = bytes(1, 2, 1, {0, 0, 0, 255, 255, 255});
    expectColor(two.pixels[0], 0, 0, 0, 1); // the lowest row first
    EXPECT_EQ(errorOf([] {
                  bytes(2, 2, 1, {1, 2, 3});
              }),
              "texture \"\": 3 bytes do not make 2 by 2 pixels of 1 to 4 components");
    EXPECT_NE(errorOf([] { bytes(0, 2, 1, {1}); }), "nothing was thrown");
    EXPECT_NE(errorOf([] { bytes(1, 1, 3, {1, 2, 3}); }), "nothing was thrown");
}

/// Files of one to four channels: values are value / 255, whatever alpha is.
TEST(Texture, Files)
{
    const Folder folder;
    for (int channels = 1; channels <= 4; ++channels)
        for (const std::string format : {"png", "tif"}) {
            SCOPED_TRACE(format + std::to_string(channels));
            const std::string file = (folder.path / ("t." + format)).string();
            OIIO::ImageSpec spec(2, 2, channels, OIIO::TypeDesc::UINT8);
            spec.attribute("oiio:UnassociatedAlpha", 1);
            std::vector<unsigned char> values;
            for (int i = 0; i < 4 * channels; ++i)
                values.push_back(static_cast<unsigned char>(20 + 10 * i));
            auto output = OIIO::ImageOutput::create(file);
            ASSERT_TRUE(output->open(file, spec));
            ASSERT_TRUE(output->write_image(OIIO::TypeDesc::UINT8, values.data()));
            output->close();

            host::Texture texture;
            texture.file = "t." + format;
            host::SearchPaths paths;
            paths.texture = {"/nowhere", folder.path.string()};
            const host::TextureImage image = host::readTexture(texture, paths);
            // Files count rows from the top: pixel (1, 0) of ours is the last of the file.
            const auto v = [&](int c) { return float(20 + 10 * (3 * channels + c)) / 255.0f; };
            const miColor& last = image.pixels[1];
            if (channels == 1)
                expectColor(last, v(0), v(0), v(0), 1);
            else if (channels == 2)
                expectColor(last, v(0), v(0), v(0), v(1));
            else
                expectColor(last, v(0), v(1), v(2), channels == 4 ? v(3) : 1.0f);
        }
}

TEST(Texture, MissingAndUnreadableFilesNameTheTexture)
{
    const Folder folder;
    host::Texture texture;
    texture.name = "wood";
    texture.where = {host::fileName((folder.path / "scene.mi").string()), 12, 3};
    texture.file = "absent.png";
    EXPECT_EQ(errorOf([&] { host::readTexture(texture, {}); }),
              (folder.path / "scene.mi").string() + ":12:3: texture \"wood\": no file \"absent.png\"");
    std::ofstream(folder.path / "text.png") << "this is no picture";
    texture.file = "text.png"; // found beside the scene
    EXPECT_NE(errorOf([&] { host::readTexture(texture, {}); }).find("texture \"wood\": cannot read"),
              std::string::npos);
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
    EXPECT_EQ(errorOf([&] { scene.look(); }), "texture \"tex\": no file \"absent.png\"");
    EXPECT_EQ(calls, 1) << "rendering had begun";
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
