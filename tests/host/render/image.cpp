// SPDX-License-Identifier: BSD-3-Clause
// Picture files: values, formats, and what happens when they cannot be written.
#include "host/render/image.h"

#include "host/render/render.h"
#include "tests/harness/stage.h"
#include "tests/host/render/scene.h"

#include <OpenImageIO/imageio.h>
#include <gtest/gtest.h>

#include <cmath>
#include <filesystem>
#include <fstream>
#include <limits>
#include <unistd.h>

namespace {

using namespace test;
namespace fs = std::filesystem;

/// A folder of this test's own.
class Pictures : public testing::Test {
protected:
    fs::path folder =
        fs::temp_directory_path() / ("pictures_" + std::to_string(getpid()) + "_" +
                                     testing::UnitTest::GetInstance()->current_test_info()->name());
    host::Camera camera;
    host::Options options;

    Pictures() { fs::create_directories(folder); }
    ~Pictures() override { fs::remove_all(folder); }

    std::string path(const std::string& name) const { return (folder / name).string(); }
    void output(const std::string& type, const std::string& format, const std::string& file)
    {
        camera.outputs.push_back({type, format, path(file), {}, -1, {}});
    }
    void write(const host::Picture& picture)
    {
        host::ImageFiles files;
        files.prepare(camera, options);
        files.write(picture);
    }
    std::vector<std::string> left() const
    {
        std::vector<std::string> names;
        for (const auto& entry : fs::directory_iterator(folder))
            names.push_back(entry.path().filename().string());
        std::sort(names.begin(), names.end());
        return names;
    }
};

struct Read {
    OIIO::ImageSpec spec;
    std::vector<float> values;

    /// Row 0 is the lowest.
    float at(int x, int y, int channel) const
    {
        return values[std::size_t(((spec.height - 1 - y) * spec.width + x) * spec.nchannels + channel)];
    }
};

Read readBack(const std::string& file)
{
    OIIO::ImageSpec wanted;
    wanted.attribute("oiio:UnassociatedAlpha", 1); // the file's own numbers
    Read read;
    const auto input = OIIO::ImageInput::open(file, &wanted);
    if (!input) {
        ADD_FAILURE() << OIIO::geterror();
        return read;
    }
    read.spec = input->spec();
    read.values.resize(std::size_t(read.spec.width) * read.spec.height * read.spec.nchannels);
    EXPECT_TRUE(input->read_image(0, 0, 0, -1, OIIO::TypeDesc::FLOAT, read.values.data()));
    return read;
}

/// Three by two pixels with values in and out of range, and all facts.
host::Picture sampler()
{
    host::Picture picture;
    picture.width = 3;
    picture.height = 2;
    picture.colors = {{0.0f, 0.25f, 0.5f, 1.0f}, {1.0f, 0.75f, 0.125f, 0.5f}, {0.1f, 0.2f, 0.3f, 0.4f},
                      {2.0f, -1.0f, 0.5f, 1.0f}, {0.0f, 0.0f, 0.0f, 0.0f},    {1.0f, 1.0f, 1.0f, 1.0f}};
    picture.facts.resize(6);
    for (int i = 0; i < 6; ++i) {
        const float f = float(i);
        picture.facts[std::size_t(i)] = {1.5f * f, {f, -f, 0.5f}, {0.25f, f, f}, 70000u * unsigned(i)};
    }
    return picture;
}

TEST_F(Pictures, EveryDataTypeReadsBackAsItWasWritten)
{
    struct Row {
        const char *type, *format;
        int channels;
        OIIO::TypeDesc::BASETYPE stored;
        float step; ///< of the stored numbers
        bool clips;
    };
    const float half = 1.0f / 1024.0f;
    const Row rows[] = {
        {"rgb", "tif", 3, OIIO::TypeDesc::UINT8, 1 / 255.0f, true},
        {"rgba", "tif", 4, OIIO::TypeDesc::UINT8, 1 / 255.0f, true},
        {"rgb", "png", 3, OIIO::TypeDesc::UINT8, 1 / 255.0f, true},
        {"rgba", "png", 4, OIIO::TypeDesc::UINT8, 1 / 255.0f, true},
        {"+rgba_16", "png", 4, OIIO::TypeDesc::UINT16, 1 / 65535.0f, true},
        {"rgb_16", "tif", 3, OIIO::TypeDesc::UINT16, 1 / 65535.0f, true},
        {"rgba_16", "tif", 4, OIIO::TypeDesc::UINT16, 1 / 65535.0f, true},
        {"rgba_fp", "tif", 4, OIIO::TypeDesc::FLOAT, 0, false},
        {"rgb_fp", "exr", 3, OIIO::TypeDesc::FLOAT, 0, false},
        {"rgba_fp", "exr", 4, OIIO::TypeDesc::FLOAT, 0, false},
        {"rgb_h", "exr", 3, OIIO::TypeDesc::HALF, half, false},
        {"rgba_h", "exr", 4, OIIO::TypeDesc::HALF, half, false},
        {"rgba", "tga", 4, OIIO::TypeDesc::UINT8, 1 / 255.0f, true},
        {"rgba", "iff", 4, OIIO::TypeDesc::UINT8, 1 / 255.0f, true},
        {"rgb", "bmp", 3, OIIO::TypeDesc::UINT8, 1 / 255.0f, true},
        {"rgb", "ppm", 3, OIIO::TypeDesc::UINT8, 1 / 255.0f, true},
        {"rgb_fp", "hdr", 3, OIIO::TypeDesc::FLOAT, 2 / 128.0f, true}, // a common exponent, no signs
        {"", "png", 4, OIIO::TypeDesc::UINT8, 1 / 255.0f, true},
        {"", "exr", 4, OIIO::TypeDesc::FLOAT, 0, false},
    };
    const host::Picture picture = sampler();
    for (const Row& row : rows) {
        const std::string file = std::string("p_") + row.type + "." + row.format;
        SCOPED_TRACE(file);
        camera.outputs.clear();
        output(row.type, row.format, file);
        write(picture);
        const Read read = readBack(path(file));
        ASSERT_EQ(read.spec.width, 3);
        ASSERT_EQ(read.spec.height, 2);
        ASSERT_EQ(read.spec.nchannels, row.channels);
        EXPECT_EQ(read.spec.format.basetype, row.stored);
        for (int y = 0; y < 2; ++y)
            for (int x = 0; x < 3; ++x)
                for (int c = 0; c < row.channels; ++c) {
                    float expected = (&picture.color(x, y).r)[c];
                    if (row.clips)
                        expected = std::max(expected, 0.0f);
                    if (row.clips && row.step < 1 / 200.0f)
                        expected = std::min(expected, 1.0f);
                    EXPECT_NEAR(read.at(x, y, c), expected, 0.51f * row.step * std::max(1.0f, expected))
                        << x << ' ' << y << ' ' << c;
                }
    }
}

TEST_F(Pictures, AFormatWithoutAlphaStoresTheRest)
{
    host::Picture picture;
    picture.width = picture.height = 16;
    picture.colors.assign(256, {0.2f, 0.4f, 0.6f, 0.5f});
    camera.outputs = {{"rgba", "jpg", path("p.jpg"), {}, 100, {}}};
    write(picture);
    const Read read = readBack(path("p.jpg"));
    ASSERT_EQ(read.spec.nchannels, 3);
    EXPECT_NEAR(read.at(5, 5, 0), 0.2f, 0.01f);
    EXPECT_NEAR(read.at(5, 5, 1), 0.4f, 0.01f);
    EXPECT_NEAR(read.at(5, 5, 2), 0.6f, 0.01f);
}

TEST_F(Pictures, DepthNormalsMotionAndLabels)
{
    output("z", "exr", "z.exr");
    output("n", "exr", "n.exr");
    output("m", "tif", "m.tif");
    output("tag", "exr", "tag.exr");
    output("a", "tif", "a.tif");
    const host::Picture picture = sampler();
    write(picture);
    const Read z = readBack(path("z.exr")), n = readBack(path("n.exr")), m = readBack(path("m.tif")),
               tag = readBack(path("tag.exr")), a = readBack(path("a.tif"));
    EXPECT_EQ(z.spec.nchannels, 1);
    EXPECT_EQ(z.at(2, 1, 0), 7.5f);
    EXPECT_EQ(n.spec.nchannels, 3);
    EXPECT_EQ(n.at(1, 1, 0), 4.0f);
    EXPECT_EQ(n.at(1, 1, 1), -4.0f);
    EXPECT_EQ(m.at(0, 1, 0), 0.25f);
    EXPECT_EQ(m.at(0, 1, 2), 3.0f);
    EXPECT_EQ(tag.spec.format.basetype, OIIO::TypeDesc::UINT32);
    EXPECT_NEAR(double(tag.at(2, 0, 0)) * 4294967295.0, 140000.0, 1.0);
    EXPECT_NEAR(a.at(2, 0, 0), 0.4f, 0.002f);
    host::ImageFiles files;
    files.prepare(camera, options);
    EXPECT_TRUE(files.wantFacts());
}

TEST_F(Pictures, WithoutPremultiplicationColoursAreDividedByAlpha)
{
    options.record.nopremult = miTRUE;
    output("rgba_fp", "exr", "p.exr");
    write(sampler());
    const Read read = readBack(path("p.exr"));
    EXPECT_FLOAT_EQ(read.at(1, 0, 0), 2.0f);
    EXPECT_FLOAT_EQ(read.at(1, 0, 3), 0.5f);
    EXPECT_EQ(read.at(1, 1, 0), 0.0f); // where alpha is 0 there is nothing to divide
}

TEST(Quantise, ClippingInThreeWays)
{
    const float nan = std::numeric_limits<float>::quiet_NaN(), inf = std::numeric_limits<float>::infinity();
    struct Row {
        host::ColorClip clip;
        miColor in, out;
    };
    const Row rows[] = {{host::ColorClip::raw, {2, -1, 0.5f, 3}, {1, 0, 0.5f, 1}},
                        {host::ColorClip::raw, {0.5f, 0.2f, 0.1f, 0.1f}, {0.5f, 0.2f, 0.1f, 0.1f}},
                        {host::ColorClip::rgb, {2, -1, 0.5f, 0.2f}, {1, 0, 0.5f, 1}},
                        {host::ColorClip::rgb, {0.5f, 0.2f, 0.1f, 0.7f}, {0.5f, 0.2f, 0.1f, 0.7f}},
                        {host::ColorClip::alpha, {2, 0.3f, 0.5f, 0.4f}, {0.4f, 0.3f, 0.4f, 0.4f}},
                        {host::ColorClip::alpha, {2, -1, 0.5f, 9}, {1, 0, 0.5f, 1}},
                        {host::ColorClip::raw, {nan, inf, -inf, nan}, {0, 1, 0, 0}}};
    for (const Row& row : rows) {
        host::Options options;
        options.record.colorclip = int(row.clip);
        const miColor c = host::Quantiser(options.record).prepare(row.in);
        EXPECT_EQ(c.r, row.out.r);
        EXPECT_EQ(c.g, row.out.g);
        EXPECT_EQ(c.b, row.out.b);
        EXPECT_EQ(c.a, row.out.a);
    }
}

TEST(Quantise, GammaDesaturationAndRounding)
{
    host::Options options;
    const host::Quantiser quantiser(options.record);
    EXPECT_EQ(quantiser.round(0.5f, 255, 0, 0, 0), 128u); // 127.5 goes up
    EXPECT_EQ(quantiser.round(0.4999f, 255, 0, 0, 0), 127u);
    EXPECT_EQ(quantiser.round(1.0f, 65535, 0, 0, 0), 65535u);
    options.record.gamma = 2.0f;
    const miColor c = quantiser.prepare({0.25f, 0.81f, 1.0f, 0.25f});
    EXPECT_FLOAT_EQ(c.r, 0.5f);
    EXPECT_FLOAT_EQ(c.g, 0.9f);
    EXPECT_EQ(c.a, 0.25f); // alpha is no brightness
    options.record.gamma = 1.0f;
    options.record.desaturate = miTRUE;
    const miColor d = quantiser.prepare({1.5f, 0.3f, 0.3f, 1.0f}); // mean 0.7, excess 0.8: t = 0.375
    EXPECT_FLOAT_EQ(d.r, 1.0f);
    EXPECT_FLOAT_EQ(d.g, 0.7f + 0.375f * -0.4f);
    EXPECT_FLOAT_EQ(quantiser.prepare({5, 5, 0, 1}).b, 1.0f);
    options.record.dither = miTRUE;
    unsigned sum = 0;
    for (int x = 0; x < 1000; ++x) {
        const unsigned v = quantiser.round(100.25f / 255.0f, 255, x, 0, 0);
        EXPECT_TRUE(v == 100 || v == 101);
        sum += v - 100;
    }
    EXPECT_NEAR(sum, 250.0, 70.0); // five standard deviations
}

TEST_F(Pictures, WhatCannotBeWrittenIsRefusedBeforeRendering)
{
    const auto refused = [&](const std::string& type, const std::string& format) {
        camera.outputs = {{type, format, path("p"), {}, -1, {host::fileName("s.mi"), 4, 5}}};
        host::ImageFiles files;
        return errorOf([&] { files.prepare(camera, options); });
    };
    const std::string start = "s.mi:4:5: output \"" + path("p") + "\": ";
    EXPECT_EQ(refused("rgba", "xyz"), start + "no image format \"xyz\" can be written");
    EXPECT_EQ(refused("rgba", "tig"),
              start + "no image format \"tig\" can be written; did you mean \"tif\"?");
    EXPECT_EQ(refused("rgba", "pngg"),
              start + "no image format \"pngg\" can be written; did you mean \"png\"?");
    for (const std::string own : {"pic", "zt", "ct"})
        EXPECT_EQ(refused("rgba", own), start + "no image format \"" + own +
                                            "\" can be written by this host; another such as \"exr\" can");
    EXPECT_EQ(refused("rgbx", "tif"),
              start + "data type \"rgbx\" is not known; there are a, a_16, a_fp, m, n, rgb, rgb_16, rgb_fp, "
                      "rgb_h, rgba, rgba_16, rgba_fp, rgba_h, rgbe, tag, z");
    EXPECT_EQ(refused("rgba_fp", "png"), start + "format \"png\" cannot hold data type \"rgba_fp\"");
    EXPECT_EQ(refused("rgb_16", "jpg"), start + "format \"jpg\" cannot hold data type \"rgb_16\"");
    camera.outputs.clear();
    camera.name = "cam";
    host::ImageFiles files;
    EXPECT_EQ(errorOf([&] { files.prepare(camera, options); }), "camera \"cam\" names no output file");
    EXPECT_TRUE(left().empty());
}

/// A scene that writes a picture, and counts what it renders.
struct Rendered : Scene {
    int calls = 0;
    Rendered(const std::string& file)
    {
        camera.environment = {shader([this](miColor& result, miState&) -> miBoolean {
                                  ++calls;
                                  if (fails)
                                      throw host::Error("no colour");
                                  result = {0.2f, 0.4f, 0.6f, 1};
                                  return miTRUE;
                              }).tag};
        camera.outputs = {{"rgba", "png", file, {}, -1, {host::fileName("s.mi"), 4, 5}}};
    }
    std::string run()
    {
        host::RenderSettings settings;
        settings.threads = 2;
        return errorOf([&] {
            host::render(session, {root.tag, cameraInstance.tag, options.tag, {}}, settings);
        });
    }
    bool fails = false;
};

TEST_F(Pictures, AFolderThatIsMissingIsNoticedBeforeRendering)
{
    Rendered scene(path("absent/p.png"));
    EXPECT_EQ(scene.run(),
              "s.mi:4:5: cannot write \"" + path("absent/p.png") + "\": No such file or directory");
    EXPECT_EQ(scene.calls, 0);
    Rendered directory(folder.string());
    EXPECT_EQ(directory.run(), "s.mi:4:5: cannot write \"" + folder.string() + "\": Is a directory");
    Rendered file(path("plain"));
    std::ofstream(path("plain")) << "old";
    Rendered below(path("plain/p.png"));
    EXPECT_EQ(below.run(), "s.mi:4:5: cannot write \"" + path("plain/p.png") + "\": Not a directory");
}

TEST_F(Pictures, AFullDeviceIsReported)
{
    fs::create_symlink("/dev/full", path("p.png"));
    Rendered scene(path("p.png"));
    EXPECT_EQ(scene.run(), "cannot write \"" + path("p.png") + "\": No space left on device");
    EXPECT_EQ(left(), std::vector<std::string>{"p.png"});
}

TEST_F(Pictures, AnErrorLeavesTheOldPictureAlone)
{
    std::ofstream(path("p.png")) << "old";
    Rendered scene(path("p.png"));
    scene.fails = true;
    EXPECT_NE(scene.run().find("no colour"), std::string::npos);
    std::string text;
    std::ifstream(path("p.png")) >> text;
    EXPECT_EQ(text, "old");
    EXPECT_EQ(left(), std::vector<std::string>{"p.png"});
}

TEST_F(Pictures, TheNewPictureTakesTheOldOnesPlaceBehindALinkToo)
{
    std::ofstream(path("real.png")) << "old";
    fs::create_symlink("real.png", path("link.png"));
    Rendered scene(path("link.png"));
    EXPECT_EQ(scene.run(), "nothing was thrown");
    EXPECT_TRUE(fs::is_symlink(path("link.png")));
    const Read read = readBack(path("real.png"));
    EXPECT_NEAR(read.at(0, 0, 1), 0.4f, 1e-6);
    EXPECT_EQ(left(), (std::vector<std::string>{"link.png", "real.png"}));
}

TEST_F(Pictures, OverridesApplyToCopies)
{
    Rendered scene(path("p.png"));
    host::RenderSettings settings;
    settings.adjustCamera = [](host::Camera& camera) { camera.record.x_resolution = 3; };
    settings.adjustOptions = [](host::Options& options) { options.record.max_samples = 1; };
    host::render(scene.session, {scene.root.tag, scene.cameraInstance.tag, scene.options.tag, {}}, settings);
    EXPECT_EQ(readBack(path("p.png")).spec.width, 3);
    EXPECT_EQ(scene.camera.record.x_resolution, 8);
    EXPECT_EQ(scene.options.record.max_samples, 0);
    EXPECT_EQ(scene.calls, 3 * 8); // no contrast, no refinement
    settings.write = false;
    fs::remove(path("p.png"));
    host::render(scene.session, {scene.root.tag, scene.cameraInstance.tag, scene.options.tag, {}}, settings);
    EXPECT_TRUE(left().empty());
}

} // namespace
