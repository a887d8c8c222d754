// SPDX-License-Identifier: BSD-3-Clause
// vhpano as its users run it. Images show the direction as a colour, so that every pixel of every layout has
// one right answer.
#include "tests/harness/folder.h"
#include "tests/harness/program.h"

#include <OpenImageIO/imageio.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <cmath>
#include <filesystem>
#include <functional>
#include <limits>
#include <numbers>
#include <optional>
#include <random>
#include <sys/resource.h>

namespace {

using test::Folder;
using test::Outcome;

constexpr double pi = std::numbers::pi;

using Direction = std::array<double, 3>;

/// What layouts show at u and v, from 0 to 1 from the left and from the bottom; nothing outside of circles.
std::optional<Direction> latlong(double u, double v)
{
    const double longitude = (2 * u - 1) * pi, latitude = (2 * v - 1) * pi / 2;
    return Direction{std::cos(latitude) * std::sin(longitude), std::sin(latitude),
                     -std::cos(latitude) * std::cos(longitude)};
}

/// In a circle: at so many radians from the axis ahead, all around.
std::optional<Direction> inCircle(double u, double v, const std::function<double(double)>& angle)
{
    const double x = 2 * u - 1, y = 2 * v - 1, r = std::hypot(x, y);
    if (r > 1)
        return {};
    const double around = std::atan2(y, x), away = angle(r);
    return Direction{std::sin(away) * std::cos(around), std::sin(away) * std::sin(around), -std::cos(away)};
}
std::optional<Direction> angular(double u, double v)
{
    return inCircle(u, v, [](double r) { return r * pi; });
}
std::optional<Direction> fisheye(double u, double v)
{
    return inCircle(u, v, [](double r) { return r * pi / 2; });
}
/// The normal of a ball at r is asin(r) from what looks at it, and a mirror doubles that.
std::optional<Direction> ball(double u, double v)
{
    return inCircle(u, v, [](double r) { return pi - 2 * std::asin(r); });
}

std::optional<Direction> cube(double u, double v)
{
    const int face = std::min(5, int(v * 6));
    const double x = 2 * u - 1, y = 2 * (v * 6 - face) - 1;
    const Direction towards[] = {{x, y, -1}, {-x, y, 1}, {-x, -1, y}, {-x, 1, -y}, {1, y, x}, {-1, y, -x}};
    Direction d = towards[face];
    const double length = std::hypot(d[0], d[1], d[2]);
    for (double& component : d)
        component /= length;
    return d;
}

struct Layout {
    const char* name;
    std::optional<Direction> (*direction)(double u, double v);
    int width, height; ///< as much as a latlong of 512 by 256 shows
};
const Layout layouts[] = {{"latlong", latlong, 512, 256},
                          {"angular", angular, 512, 512},
                          {"ball", ball, 512, 512},
                          {"cube", cube, 128, 768},
                          {"fisheye", fisheye, 256, 256}};

std::ostream& operator<<(std::ostream& out, const Layout& layout) { return out << layout.name; }

/// Three floats a pixel, the first row at the top.
struct Image {
    int width = 0;
    int height = 0;
    std::vector<float> values;

    const float* at(int x, int y) const { return &values[(std::size_t(y) * width + x) * 3]; }
};

/// Directions as colours from 0 to 1; black where there is none.
Image painted(const Layout& layout, int width, int height)
{
    Image image{width, height, std::vector<float>(std::size_t(width) * height * 3)};
    float* value = image.values.data();
    for (int y = 0; y < height; ++y)
        for (int x = 0; x < width; ++x, value += 3)
            if (const auto d = layout.direction((x + 0.5) / width, (height - y - 0.5) / height))
                for (std::size_t i = 0; i < 3; ++i)
                    value[i] = float(((*d)[i] + 1) / 2);
    return image;
}

void write(const std::string& file, const Image& image, OIIO::TypeDesc type = OIIO::TypeDesc::FLOAT)
{
    const auto output = OIIO::ImageOutput::create(file);
    ASSERT_TRUE(output && output->open(file, OIIO::ImageSpec(image.width, image.height, 3, type)));
    ASSERT_TRUE(output->write_image(OIIO::TypeDesc::FLOAT, image.values.data()));
    ASSERT_TRUE(output->close());
}

Image read(const std::string& file)
{
    const auto input = OIIO::ImageInput::open(file);
    if (!input)
        return {};
    Image image{input->spec().width, input->spec().height, {}};
    image.values.resize(std::size_t(image.width) * image.height * 3);
    EXPECT_TRUE(input->read_image(0, 0, 0, 3, OIIO::TypeDesc::FLOAT, image.values.data()));
    return image;
}

/// Whether a place is so near to where the layout ends that filters may reach beyond.
bool isNearTheEnd(const Layout& layout, double u, double v)
{
    const double pixel = 2.0 / layout.width;
    return layout.direction != latlong && layout.direction != cube &&
           std::hypot(2 * u - 1, 2 * v - 1) > 1 - 2 * pixel;
}

class Vhpano : public testing::Test {
protected:
    Outcome run(std::vector<std::string> arguments)
    {
        return test::run(VHPANO, {folder.path(), std::move(arguments), {}, -1});
    }

    /// Runs it with success and silence, and gives the output.
    Image converted(std::vector<std::string> arguments)
    {
        arguments.insert(arguments.begin(), {"in.exr", "out.exr"});
        const Outcome outcome = run(std::move(arguments));
        EXPECT_EQ(outcome.status, 0);
        EXPECT_EQ(outcome.output + outcome.messages, "");
        return read(folder.path("out.exr"));
    }

    void expectError(const std::vector<std::string>& arguments, int status, const std::string& text)
    {
        const Outcome outcome = run(arguments);
        EXPECT_EQ(outcome.status, status);
        EXPECT_EQ(outcome.output, "");
        EXPECT_NE(outcome.messages.find(text), std::string::npos) << outcome.messages;
        EXPECT_EQ(std::ranges::count(outcome.messages, '\n'), 1) << outcome.messages;
    }

    Folder folder;
};

class EveryPair : public Vhpano, public testing::WithParamInterface<std::tuple<Layout, Layout>> {};

TEST_P(EveryPair, ShowsEveryDirectionWhereItBelongs)
{
    const auto& [from, to] = GetParam();
    write(folder.path("in.exr"), painted(from, from.width, from.height));
    const Image result = converted({"--from", from.name, "--to", to.name});
    ASSERT_EQ(result.width, to.width);
    ASSERT_EQ(result.height, to.height);
    const bool halfOnly = from.direction == fisheye;
    for (int y = 0; y < result.height; ++y)
        for (int x = 0; x < result.width; ++x) {
            const double u = (x + 0.5) / result.width, v = (result.height - y - 0.5) / result.height;
            const auto d = to.direction(u, v);
            const float* const pixel = result.at(x, y);
            if (isNearTheEnd(to, u, v) || (halfOnly && d && std::abs((*d)[2]) < 0.03))
                continue;
            const bool shown = d && !(halfOnly && (*d)[2] > 0);
            // A ball's rim has next to no pixels for what lies ahead; averages end at rims and at a cube's
            // edges. faces.
            if (from.direction == ball && shown && (*d)[2] < -0.9)
                continue;
            const double tolerance = from.direction == latlong ? 0.01 : 0.03;
            for (std::size_t i = 0; i < 3; ++i)
                ASSERT_NEAR(pixel[i], shown ? ((*d)[i] + 1) / 2 : 0, tolerance)
                    << "channel " << i << " at " << x << ' ' << y;
        }
}

INSTANTIATE_TEST_SUITE_P(Of, EveryPair,
                         testing::Combine(testing::ValuesIn(layouts), testing::ValuesIn(layouts)),
                         [](const auto& pair) {
                             return std::string(std::get<0>(pair.param).name) + "_" +
                                    std::get<1>(pair.param).name;
                         });

TEST_F(Vhpano, ThereAndBackItIsTheSamePicture)
{
    const Image original = painted(layouts[0], 512, 256);
    write(folder.path("in.exr"), original);
    converted({"--from", "latlong", "--to", "cube"});
    std::filesystem::rename(folder.path("out.exr"), folder.path("in.exr"));
    const Image back = converted({"--from", "cube", "--to", "latlong"});
    ASSERT_EQ(back.values.size(), original.values.size());
    for (std::size_t i = 0; i < back.values.size(); ++i)
        ASSERT_NEAR(back.values[i], original.values[i], 0.01) << i;
}

TEST_F(Vhpano, TheViewTurnsRightThenUpThenTiltsClockwise)
{
    write(folder.path("in.exr"), painted(layouts[0], 512, 256));
    // What is seen ahead, a little above that, and a little to the right.
    struct Row {
        std::vector<std::string> degrees;
        Direction ahead, above;
    };
    const Row rows[] = {
        {{"0", "0", "0"}, {0, 0, -1}, {0, 1, 0}},    {{"90", "0", "0"}, {1, 0, 0}, {0, 1, 0}},
        {{"0", "90", "0"}, {0, 1, 0}, {0, 0, 1}},    {{"0", "0", "90"}, {0, 0, -1}, {1, 0, 0}},
        {{"90", "90", "0"}, {0, 1, 0}, {-1, 0, 0}},  {{"-90", "0", "90"}, {-1, 0, 0}, {0, 0, -1}},
        {{"180", "-90", "0"}, {0, -1, 0}, {0, 0, 1}}};
    for (const Row& row : rows) {
        SCOPED_TRACE(row.degrees[0] + ' ' + row.degrees[1] + ' ' + row.degrees[2]);
        const Image result = converted({"--from", "latlong", "--to", "fisheye", "--size", "201", "201",
                                        "--rotate", row.degrees[0], row.degrees[1], row.degrees[2]});
        const auto expect = [&](int x, int y, const Direction& d) {
            for (std::size_t i = 0; i < 3; ++i)
                EXPECT_NEAR(result.at(x, y)[i], (d[i] + 1) / 2, 0.01)
                    << "channel " << i << " at " << x << ' ' << y;
        };
        expect(100, 100, row.ahead);
        Direction between; // 45 degrees up
        for (std::size_t i = 0; i < 3; ++i)
            between[i] = (row.ahead[i] + row.above[i]) / std::numbers::sqrt2;
        expect(100, 50, between);
    }
}

TEST_F(Vhpano, LeavesAPictureAloneThatStaysWhereItIs)
{
    const Image original = painted(layouts[0], 128, 64);
    write(folder.path("in.exr"), original);
    for (const char* const filter : {"nearest", "bilinear", "bicubic"}) {
        SCOPED_TRACE(filter);
        const Image same = converted({"--from", "latlong", "--to", "latlong", "--filter", filter});
        ASSERT_EQ(same.values.size(), original.values.size());
        for (std::size_t i = 0; i < same.values.size(); ++i)
            ASSERT_NEAR(same.values[i], original.values[i], 1e-4) << i;
        // Half a turn is half the width, across the seam.
        const Image turned = converted(
            {"--from", "latlong", "--to", "latlong", "--filter", filter, "--rotate", "180", "0", "0"});
        for (int y = 0; y < 64; ++y)
            for (int x = 0; x < 128; ++x)
                for (int i = 0; i < 3; ++i)
                    ASSERT_NEAR(turned.at(x, y)[i], original.at((x + 64) % 128, y)[i], 2e-3) << x << ' ' << y;
    }
}

/// What a filter makes a texel weigh at a distance from its middle, along a line.
double weight(const std::string& filter, double distance)
{
    const double d = std::abs(distance);
    if (filter == "nearest")
        return d < 0.5;
    if (filter == "bilinear")
        return std::max(0.0, 1 - d);
    return d < 1 ? (1.5 * d - 2.5) * d * d + 1 : d < 2 ? ((-0.5 * d + 2.5) * d - 4) * d + 2 : 0;
}

/// A texel's column or row, and how much of it a pixel gets.
struct Share {
    int texel;
    double weight;
};

/// The texels that a pixel of a picture `factor` times as large is made of, along one axis.
std::vector<Share> shares(const std::string& filter, int pixel, int factor)
{
    const double at = (pixel + 0.5) / factor - 0.5;
    std::vector<Share> result;
    for (int texel = int(at) - 3; texel <= int(at) + 3; ++texel)
        if (const double share = weight(filter, at - texel); share != 0)
            result.push_back({texel, share});
    return result;
}

TEST_F(Vhpano, FiltersWeighTexelsOfEveryTypeAndNumberOfChannels)
{
    // Larger than the tiles that images are read by, and no multiple of theirs.
    constexpr int width = 150, height = 70, factor = 2;
    std::mt19937 engine(3);
    std::uniform_real_distribution<float> value(0, 1);
    using OIIO::TypeDesc;
    const std::pair<TypeDesc, int> kinds[] = {
        {TypeDesc::UINT8, 3}, {TypeDesc::UINT16, 3}, {TypeDesc::HALF, 3},  {TypeDesc::FLOAT, 1},
        {TypeDesc::FLOAT, 2}, {TypeDesc::FLOAT, 3},  {TypeDesc::UINT8, 4}, {TypeDesc::HALF, 5}};
    for (const auto& [type, channels] : kinds) {
        const std::string in = type == TypeDesc::HALF ? "in.exr" : "in.tif";
        std::vector<float> texels(std::size_t(width) * height * channels);
        std::ranges::generate(texels, [&] { return value(engine); });
        const auto output = OIIO::ImageOutput::create(folder.path(in));
        ASSERT_TRUE(output->open(folder.path(in), OIIO::ImageSpec(width, height, channels, type)));
        ASSERT_TRUE(output->write_image(TypeDesc::FLOAT, texels.data()));
        ASSERT_TRUE(output->close());
        const auto read = [&, count = channels](const std::string& file, std::vector<float>& values) {
            const auto input = OIIO::ImageInput::open(folder.path(file));
            ASSERT_TRUE(input);
            ASSERT_EQ(input->spec().nchannels, count);
            values.resize(std::size_t(input->spec().width) * input->spec().height * count);
            ASSERT_TRUE(input->read_image(0, 0, 0, count, TypeDesc::FLOAT, values.data()));
        };
        read(in, texels); // as they have been rounded
        for (const std::string filter : {"nearest", "bilinear", "bicubic"}) {
            SCOPED_TRACE(filter + ' ' + type.c_str() + ' ' + std::to_string(channels));
            const Outcome outcome =
                run({in, "out.exr", "--from", "latlong", "--to", "latlong", "--filter", filter, "--type",
                     "float", "--size", std::to_string(width * factor), std::to_string(height * factor)});
            ASSERT_EQ(outcome.status, 0) << outcome.messages;
            std::vector<float> result;
            read("out.exr", result);
            for (int y = 0; y < height * factor; ++y)
                for (int x = 0; x < width * factor; ++x) {
                    const auto rows = shares(filter, y, factor), columns = shares(filter, x, factor);
                    for (int channel = 0; channel < channels; ++channel) {
                        double expected = 0;
                        for (const auto& [j, rowShare] : rows)
                            for (const auto& [i, columnShare] : columns) {
                                // Around the turn, and held at the poles.
                                const int column = (i + width) % width, row = std::clamp(j, 0, height - 1);
                                expected += rowShare * columnShare *
                                            texels[std::size_t((row * width + column) * channels + channel)];
                            }
                        ASSERT_NEAR(result[std::size_t((y * width * factor + x) * channels + channel)],
                                    expected, 2e-3)
                            << x << ' ' << y << " channel " << channel;
                    }
                }
        }
    }
}

TEST_F(Vhpano, PassesNumbersThatAreNone)
{
    // As halves, which are unpacked by hand.
    constexpr float infinity = std::numeric_limits<float>::infinity();
    Image image{128, 64, std::vector<float>(128 * 64 * 3, 1)};
    const float odd[] = {infinity, -infinity, 0x1p-24f, -0x1p-15f, 65504, -65504, 0, -1};
    for (int i = 0; i < 8; ++i)
        image.values[std::size_t(32 * 128 + 10 * i) * 3] = odd[i];
    image.values[std::size_t(32 * 128 + 100) * 3] = std::numeric_limits<float>::quiet_NaN();
    write(folder.path("in.exr"), image, OIIO::TypeDesc::HALF);
    const Image same =
        converted({"--from", "latlong", "--to", "latlong", "--filter", "nearest", "--type", "float"});
    ASSERT_EQ(same.width, 128);
    for (int i = 0; i < 8; ++i)
        EXPECT_EQ(*same.at(10 * i, 32), odd[i]);
    EXPECT_TRUE(std::isnan(*same.at(100, 32)));
}

TEST_F(Vhpano, TakesThePartOfAPictureThatAFileHasForAPart)
{
    const Image whole = painted(layouts[0], 128, 64);
    // Columns 32 to 95 and rows 16 to 47 of it.
    Image part{64, 32, {}};
    for (int y = 16; y < 48; ++y)
        part.values.insert(part.values.end(), whole.at(32, y), whole.at(95, y) + 3);
    OIIO::ImageSpec spec(64, 32, 3, OIIO::TypeDesc::FLOAT);
    spec.x = 32;
    spec.y = 16;
    spec.full_width = 128;
    spec.full_height = 64;
    const auto output = OIIO::ImageOutput::create(folder.path("in.exr"));
    ASSERT_TRUE(output && output->open(folder.path("in.exr"), spec));
    ASSERT_TRUE(output->write_image(OIIO::TypeDesc::FLOAT, part.values.data()));
    ASSERT_TRUE(output->close());
    for (const char* const filter : {"nearest", "bilinear", "bicubic"}) {
        SCOPED_TRACE(filter);
        const Image result = converted({"--from", "latlong", "--to", "latlong", "--filter", filter});
        ASSERT_EQ(result.width, 128);
        ASSERT_EQ(result.height, 64);
        for (int y = 0; y < 64; ++y)
            for (int x = 0; x < 128; ++x) {
                const int toEdge = std::min(std::min(x - 32, 95 - x), std::min(y - 16, 47 - y));
                if (toEdge >= 3 || toEdge <= -3) {
                    for (int i = 0; i < 3; ++i)
                        ASSERT_NEAR(result.at(x, y)[i], toEdge > 0 ? whole.at(x, y)[i] : 0, 2e-3)
                            << x << ' ' << y;
                }
            }
    }
}

TEST_F(Vhpano, AveragesWhatAPixelCovers)
{
    // Stripes of one pixel, black and white: in a picture an eighth of the size they are grey.
    Image stripes{1024, 512, {}};
    for (int i = 0; i < 1024 * 512; ++i)
        stripes.values.insert(stripes.values.end(), 3, float(i % 2));
    write(folder.path("in.exr"), stripes);
    const Image small = converted({"--from", "latlong", "--to", "latlong", "--size", "128", "64"});
    const Image sharp =
        converted({"--from", "latlong", "--to", "latlong", "--size", "128", "64", "--filter", "nearest"});
    for (int y = 0; y < 64; ++y)
        for (int x = 0; x < 128; ++x) {
            EXPECT_NEAR(*small.at(x, y), 0.5, 0.1) << x << ' ' << y;
            EXPECT_TRUE(*sharp.at(x, y) == 0 || *sharp.at(x, y) == 1);
        }
}

TEST_F(Vhpano, TheNumberOfThreadsMakesNoDifference)
{
    write(folder.path("in.exr"), painted(layouts[0], 256, 128));
    const Image one = converted({"--from", "latlong", "--to", "angular", "--threads", "1"});
    const Image several = converted({"--from", "latlong", "--to", "angular", "--threads", "5"});
    EXPECT_EQ(one.values, several.values);
}

TEST_F(Vhpano, ReadsAndWritesTheUsualFormats)
{
    const Image original = painted(layouts[0], 128, 64);
    struct Row {
        const char *in, *out;
        double tolerance;
    };
    for (const Row& row : {Row{"in.png", "out.png", 0.01},
                           {"in.tif", "out.exr", 0.01},
                           {"in.exr", "out.hdr", 0.02},
                           {"in.hdr", "out.tif", 0.02},
                           {"in.exr", "out.png", 0.01}}) {
        SCOPED_TRACE(std::string(row.in) + ' ' + row.out);
        const bool bytes = std::string(row.in) == "in.png";
        write(folder.path(row.in), original, bytes ? OIIO::TypeDesc::UINT8 : OIIO::TypeDesc::FLOAT);
        const Outcome outcome = run({row.in, row.out, "--from", "latlong", "--to", "latlong"});
        EXPECT_EQ(outcome.status, 0) << outcome.messages;
        const Image result = read(folder.path(row.out));
        ASSERT_EQ(result.values.size(), original.values.size());
        for (std::size_t i = 0; i < result.values.size(); ++i)
            ASSERT_NEAR(result.values[i], original.values[i], row.tolerance) << i;
    }
    const Outcome outcome =
        run({"in.exr", "half.exr", "--from", "latlong", "--to", "latlong", "--type", "half"});
    EXPECT_EQ(outcome.status, 0) << outcome.messages;
    EXPECT_EQ(OIIO::ImageInput::open(folder.path("half.exr"))->spec().format, OIIO::TypeDesc::HALF);
}

TEST_F(Vhpano, ImagesOfAnyShape)
{
    for (const auto& [width, height] : {std::pair{1, 1}, {3, 3}, {4, 4}, {5, 7}}) {
        write(folder.path("in.exr"), painted(layouts[0], width, height));
        for (std::size_t i = 0; i < std::size(layouts); ++i) {
            const Layout &from = layouts[i], &to = layouts[(i + 1) % std::size(layouts)];
            SCOPED_TRACE(testing::Message()
                         << width << " by " << height << ' ' << from.name << ' ' << to.name);
            const Outcome outcome =
                run({"in.exr", "out.exr", "--from", from.name, "--to", to.name, "--size", "5", "5"});
            EXPECT_EQ(outcome.status, 0);
            const Image result = read(folder.path("out.exr"));
            EXPECT_EQ(result.width, 5);
            EXPECT_EQ(result.height, 5);
            // No NaN among them; bicubic filters overshoot, but not by more than this.
            for (const float value : result.values)
                EXPECT_TRUE(value > -0.3f && value < 1.3f) << value;
        }
    }
}

TEST_F(Vhpano, WrongUseIsTold)
{
    expectError({}, 2, "vhpano: in is required");
    expectError({"a", "b", "--from", "latlong"}, 2, "--to is required");
    expectError({"a", "b", "--from", "mercator", "--to", "cube"}, 2,
                "vhpano: --from: 'mercator' is none of latlong, angular, ball, cube, fisheye\n");
    expectError(
        {"a", "b", "--from", "cube", "--to", "latlogn"}, 2,
        "--to: 'latlogn' is none of latlong, angular, ball, cube, fisheye; did you mean \"latlong\"?\n");
    expectError({"a", "b", "--from", "cube", "--to", "cube", "--type", "haf"}, 2,
                "--type: 'haf' is none of uint8, uint16, half, float; did you mean \"half\"?\n");
    expectError({"a", "b", "--from", "cube", "--to", "cube", "--threads", "2x"}, 2,
                "--threads: '2x' is no whole number from 1 to 1024\n");
    expectError({"a", "b", "--form", "cube", "--to", "cube"}, 2,
                "'--form' is no option; did you mean \"--from\"?\n");
    expectError({"a", "b", "c", "--from", "cube", "--to", "cube"}, 2, "'c' is one file too many\n");
    expectError({"a", "b", "--from", "cube", "--to", "cube", "--size", "0", "5"}, 2, "--size");
    expectError({"a", "b", "--from", "cube", "--to", "cube", "--rotate", "5"}, 2, "--rotate");
    for (const char* const odd : {"nan", "inf", "1e300"})
        expectError({"a", "b", "--from", "cube", "--to", "cube", "--rotate", odd, "0", "0"}, 2, "--rotate");
    expectError({"a", "b", "--from", "cube", "--to", "cube", "--filter", "mushy"}, 2, "--filter");
    EXPECT_EQ(run({"--help"}).status, 0);
    EXPECT_EQ(run({"--version"}).output.substr(0, 7), "vhpano ");
}

TEST_F(Vhpano, BadFilesAreToldAndNothingIsWritten)
{
    const std::vector<std::string> layout = {"--from", "latlong", "--to", "cube"};
    const auto with = [&](const std::string& in, const std::string& out) {
        std::vector<std::string> arguments = {in, out};
        arguments.insert(arguments.end(), layout.begin(), layout.end());
        return arguments;
    };
    folder.write("out.exr", "here before");
    expectError(with("absent.exr", "out.exr"), 1, "cannot read \"absent.exr\"");
    folder.write("text.png", "this is no picture");
    expectError(with("text.png", "out.exr"), 1, "cannot read \"text.png\"");
    folder.write("empty.exr", "");
    expectError(with("empty.exr", "out.exr"), 1, "cannot read \"empty.exr\"");
    write(folder.path("in.exr"), painted(layouts[0], 512, 256));
    std::filesystem::copy_file(folder.path("in.exr"), folder.path("short.exr"));
    std::filesystem::resize_file(folder.path("short.exr"),
                                 std::filesystem::file_size(folder.path("in.exr")) / 2);
    expectError(with("short.exr", "out.exr"), 1, "cannot read \"short.exr\"");
    EXPECT_EQ(folder.read("out.exr"), "here before");
    expectError(with("in.exr", "out.nonsense"), 1, "cannot write \"out.nonsense\"");
    expectError(with("in.exr", "nowhere/out.exr"), 1, "cannot write \"nowhere/out.exr\"");
    EXPECT_EQ(folder.names(),
              (std::vector<std::string>{"empty.exr", "in.exr", "out.exr", "short.exr", "text.png"}));
}

TEST_F(Vhpano, AnInputOfAnotherShapeIsAWarning)
{
    struct Row {
        const char* from;
        int width, height;
        const char* shape; // null: it fits
    };
    for (const Row& row :
         {Row{"latlong", 64, 32, nullptr}, Row{"latlong", 63, 32, nullptr}, Row{"latlong", 64, 64, "2:1"},
          Row{"latlong", 64, 30, "2:1"}, Row{"angular", 64, 64, nullptr}, Row{"ball", 64, 32, "1:1"},
          Row{"cube", 8, 48, nullptr}, Row{"cube", 64, 48, "1:6"}, Row{"fisheye", 64, 60, "1:1"},
          Row{"fisheye", 200, 197, nullptr}}) {
        write(folder.path("in.exr"), painted(layouts[0], row.width, row.height));
        const Outcome outcome =
            run({"in.exr", "out.exr", "--from", row.from, "--to", "latlong", "--size", "8", "4"});
        EXPECT_EQ(outcome.status, 0);
        const std::string warning = "vhpano: warning: \"in.exr\" has " + std::to_string(row.width) + " by " +
                                    std::to_string(row.height) + " pixels, but " + row.from + " is ";
        EXPECT_EQ(outcome.messages, row.shape ? warning + row.shape + ": it is taken as stretched\n" : "");
    }
}

TEST_F(Vhpano, ATypeThatTheFormatCannotHoldIsRefused)
{
    write(folder.path("in.exr"), painted(layouts[0], 64, 32));
    const auto with = [](const char* out, const char* type) {
        return std::vector<std::string>{"in.exr", out, "--from", "latlong", "--to", "cube", "--type", type};
    };
    expectError(with("out.jpg", "half"), 1,
                "cannot write \"out.jpg\": its format cannot hold half, but uint8\n");
    expectError(with("out.png", "float"), 1, "cannot write \"out.png\": its format cannot hold float, but ");
    EXPECT_EQ(folder.names(), std::vector<std::string>{"in.exr"});
    EXPECT_EQ(run(with("out.jpg", "uint8")).messages, "");
    EXPECT_EQ(run({"in.exr", "plain.jpg", "--from", "latlong", "--to", "cube"}).messages, "")
        << "none is asked for";
}

TEST_F(Vhpano, ACutOffPngIsToldInOneLine)
{
    write(folder.path("in.png"), painted(layouts[0], 512, 256), OIIO::TypeDesc::UINT8);
    const auto size = std::filesystem::file_size(folder.path("in.png"));
    for (const std::uintmax_t bytes : {size - 12, size / 2, std::uintmax_t{100}, std::uintmax_t{20}}) {
        std::filesystem::resize_file(folder.path("in.png"), bytes);
        expectError({"in.png", "out.png", "--from", "latlong", "--to", "cube"}, 1,
                    "cannot read \"in.png\": its end is missing\n");
    }
}

TEST_F(Vhpano, WidePicturesTakeAsMuchMemoryAsIsStated)
{
    const OIIO::ImageSpec spec(30000, 40, 4, OIIO::TypeDesc::HALF);
    std::vector<float> row(std::size_t(spec.width) * 4);
    for (std::size_t i = 0; i < row.size(); ++i)
        row[i] = float(i % 977) / 977;
    const auto output = OIIO::ImageOutput::create(folder.path("in.exr"));
    ASSERT_TRUE(output && output->open(folder.path("in.exr"), spec));
    for (int y = 0; y < spec.height; ++y)
        ASSERT_TRUE(output->write_scanline(y, 0, OIIO::TypeDesc::FLOAT, row.data()));
    ASSERT_TRUE(output->close());
    for (const char* const filter : {"footprint", "bicubic"}) {
        const Outcome outcome = run({"in.exr", "out.exr", "--from", "latlong", "--to", "latlong", "--size",
                                     "30000", "130", "--filter", filter, "--threads", "2"});
        ASSERT_EQ(outcome.status, 0) << outcome.messages;
        EXPECT_EQ(read(folder.path("out.exr")).width, 30000);
        // The most of all programs that this one has run, in kilobytes: 120 MB of rows, 24 MB of the input
        // and averages of it, 31 MB of output, and some 130 MB of libraries with what they keep.
        rusage used{};
        ASSERT_EQ(getrusage(RUSAGE_CHILDREN, &used), 0);
#if !defined(__SANITIZE_ADDRESS__) && !defined(__SANITIZE_THREAD__) // they take their own
        EXPECT_LT(used.ru_maxrss, 500'000) << filter;
#endif
    }
}

TEST_F(Vhpano, MayReplaceItsInput)
{
    write(folder.path("in.exr"), painted(layouts[0], 64, 32));
    EXPECT_EQ(run({"in.exr", "in.exr", "--from", "latlong", "--to", "cube"}).status, 0);
    EXPECT_EQ(read(folder.path("in.exr")).height, 96);
}

} // namespace
