// SPDX-License-Identifier: BSD-3-Clause
#include "host/render/film.h"
#include "host/render/samples.h"

#include <gtest/gtest.h>

#include <cmath>
#include <numbers>
#include <set>
#include <vector>

namespace {

using host::Filter;

miOptions filterOptions(Filter filter, float x = 0.0f, float y = 0.0f)
{
    miOptions options = host::Options().record;
    options.filter = static_cast<char>(filter);
    options.filter_size_x = x;
    options.filter_size_y = y;
    return options;
}

TEST(Reconstruct, OwnWidths)
{
    const std::pair<Filter, float> widths[] = {{Filter::box, 1.0f},           {Filter::triangle, 2.0f},
                                               {Filter::gauss, 3.0f},         {Filter::mitchell, 4.0f},
                                               {Filter::lanczos, 4.0f},       {Filter::clippedMitchell, 4.0f},
                                               {Filter::clippedLanczos, 4.0f}};
    for (const auto& [filter, width] : widths) {
        SCOPED_TRACE(char(filter));
        const host::Reconstruction own(filterOptions(filter));
        EXPECT_NE(own.weight(0.49f * width, 0.0f), 0.0f);
        EXPECT_EQ(own.weight(0.51f * width, 0.0f), 0.0f);
        EXPECT_NE(own.weight(0.0f, -0.49f * width), 0.0f);
        EXPECT_EQ(own.weight(0.0f, -0.51f * width), 0.0f);
        // A sample lies up to half a pixel from its own pixel's centre.
        EXPECT_EQ(own.marginX(), int(std::ceil(0.5f * width - 0.5f)));
    }
}

TEST(Reconstruct, AGivenWidthStretchesTheFilterAndOneNumberServesBothAxes)
{
    const host::Reconstruction wide(filterOptions(Filter::triangle, 4.0f));
    EXPECT_FLOAT_EQ(wide.weight(1.0f, 0.0f), 0.5f);
    EXPECT_FLOAT_EQ(wide.weight(0.0f, 1.5f), 0.25f);
    const host::Reconstruction flat(filterOptions(Filter::triangle, 4.0f, 2.0f));
    EXPECT_FLOAT_EQ(flat.weight(1.0f, 0.5f), 0.25f);
    EXPECT_EQ(flat.marginX(), 2);
    EXPECT_EQ(flat.marginY(), 1);
}

TEST(Reconstruct, ClosedForms)
{
    const auto at = [](Filter filter, float x) {
        return host::Reconstruction(filterOptions(filter)).weight(x, 0);
    };
    EXPECT_FLOAT_EQ(at(Filter::triangle, 0.25f) / at(Filter::triangle, 0.0f), 0.75f);
    // Mitchell and Netravali's cubic with B = C = 1/3: 8/9 in the middle, 1/18 at one, 0 at two.
    EXPECT_NEAR(at(Filter::mitchell, 0.0f) / at(Filter::mitchell, 1.0f), 16.0, 1e-4);
    EXPECT_LT(at(Filter::mitchell, 1.5f), 0.0f);
    EXPECT_NEAR(at(Filter::mitchell, 2.0f), 0.0f, 1e-6);
    // Lanczos with two lobes: sinc(x) sinc(x / 2).
    const auto sinc = [](double x) { return std::sin(std::numbers::pi * x) / (std::numbers::pi * x); };
    EXPECT_NEAR(at(Filter::lanczos, 1.3f) / at(Filter::lanczos, 0.0f), sinc(1.3) * sinc(0.65), 1e-5);
}

TEST(Reconstruct, WhateverTheFilterAConstantStaysConstant)
{
    for (const Filter filter : {Filter::box, Filter::triangle, Filter::gauss, Filter::mitchell,
                                Filter::lanczos, Filter::clippedMitchell, Filter::clippedLanczos})
        for (const float size : {0.0f, 0.2f, 1.5f, 5.0f}) {
            SCOPED_TRACE(char(filter));
            const host::Reconstruction reconstruction(filterOptions(filter, size));
            host::Film film({0, 0, 9, 9}, reconstruction);
            for (int y = 0; y < 9; ++y)
                for (int x = 0; x < 9; ++x) {
                    // Pixels with many samples weigh as much as those with one.
                    const host::PixelGrid grid(x % 3);
                    for (int i = 0; i < grid.count(); ++i) {
                        const auto at = host::samplePosition(x, y, grid, i, 0.8f);
                        film.add(at.x, at.y, {0.25f, -2.0f, 100.0f, 1.0f}, grid.count());
                    }
                }
            for (int y = 0; y < 9; ++y)
                for (int x = 0; x < 9; ++x) {
                    const miColor c = film.color(x, y);
                    EXPECT_NEAR(c.r, 0.25f, 1e-4f);
                    EXPECT_NEAR(c.g, reconstruction.clips() ? 0.0f : -2.0f, 1e-3f);
                    EXPECT_NEAR(c.b, 100.0f, 2e-2f);
                    EXPECT_NEAR(c.a, 1.0f, 1e-4f);
                }
        }
}

TEST(Reconstruct, ABoxOfOnePixelTakesThePixelsOwnSamples)
{
    host::Film film({0, 0, 3, 1}, host::Reconstruction(filterOptions(Filter::box)));
    film.add(1.01f, 0.5f, {1, 0, 0, 1}, 2);
    film.add(1.99f, 0.5f, {0, 1, 0, 1}, 2);
    film.add(2.0f, 0.5f, {0, 0, 1, 1}, 1);
    EXPECT_FLOAT_EQ(film.color(1, 0).r, 0.5f);
    EXPECT_FLOAT_EQ(film.color(1, 0).g, 0.5f);
    EXPECT_FLOAT_EQ(film.color(1, 0).b, 0.0f);
    EXPECT_FLOAT_EQ(film.color(2, 0).b, 1.0f);
    EXPECT_FLOAT_EQ(film.color(0, 0).a, 0.0f);
}

TEST(Samples, StratifiedWithoutJitterAndWithinTheirCellsWithIt)
{
    for (int level = -2; level <= 3; ++level) {
        const host::PixelGrid grid(level);
        EXPECT_EQ(grid.side, level < 0 ? 1 : 1 << level);
        for (int i = 0; i < grid.count(); ++i) {
            const auto still = host::samplePosition(7, 3, grid, i, 0.0f);
            EXPECT_FLOAT_EQ(still.x, 7.0f + (float(i % grid.side) + 0.5f) / float(grid.side));
            EXPECT_FLOAT_EQ(still.y, 3.0f + (float(i / grid.side) + 0.5f) / float(grid.side));
            const auto moved = host::samplePosition(7, 3, grid, i, 1.0f);
            EXPECT_LE(std::abs(moved.x - still.x), 0.5f / float(grid.side) + 1e-6f);
            EXPECT_LE(std::abs(moved.y - still.y), 0.5f / float(grid.side) + 1e-6f);
        }
    }
}

TEST(Samples, EveryRowAndColumnSeesAllOfTheShutter)
{
    for (int level = 0; level <= 5; ++level)
        for (int pixel = 0; pixel < 20; ++pixel) {
            const host::PixelGrid grid(level);
            const auto side = std::size_t(grid.side);
            std::vector<int> parts(side * side);
            std::vector<std::vector<int>> inRow(side, std::vector<int>(side)), inColumn = inRow;
            for (int i = 0; i < grid.count(); ++i) {
                const float time = host::sampleTime(pixel, 3 * pixel, grid, i);
                ASSERT_GE(time, 0.0f);
                ASSERT_LT(time, 1.0f);
                ++parts[std::size_t(time * float(grid.count()))];
                const auto longer = std::size_t(time * float(grid.side));
                ++inRow[std::size_t(i) / side][longer];
                ++inColumn[std::size_t(i) % side][longer];
            }
            EXPECT_EQ(parts, std::vector<int>(side * side, 1));
            EXPECT_EQ(inRow, (std::vector<std::vector<int>>(side, std::vector<int>(side, 1))));
            EXPECT_EQ(inColumn, inRow);
        }
}

TEST(Samples, WhereverAnEdgeMovesNoPixelMissesItsShareByMuch)
{
    // An edge that crosses the pixel's centre in the middle of the shutter, and moves by two pixels: for
    // reasons of symmetry the pixel is covered for half of the time.
    const host::PixelGrid grid(3);
    for (int degrees = 0; degrees < 180; degrees += 15) {
        const double angle = degrees * std::numbers::pi / 180.0;
        for (int y = 0; y < 40; ++y)
            for (int x = 0; x < 40; ++x) {
                int covered = 0;
                for (int i = 0; i < grid.count(); ++i) {
                    const auto at = host::samplePosition(x, y, grid, i, 1.0f);
                    const double along =
                        (at.x - x - 0.5) * std::cos(angle) + (at.y - y - 0.5) * std::sin(angle);
                    covered += along < 2.0 * host::sampleTime(x, y, grid, i) - 1.0;
                }
                EXPECT_NEAR(covered, 32, 8) << degrees << " degrees, pixel " << x << ", " << y;
            }
    }
}

TEST(Samples, ShufflingTakesEveryNumberToEveryPlaceEquallyOften)
{
    constexpr std::uint32_t count = 8, seeds = 8000;
    int times[count][count] = {};
    for (std::uint32_t seed = 0; seed < seeds; ++seed) {
        std::set<std::uint32_t> places;
        for (std::uint32_t i = 0; i < count; ++i) {
            const std::uint32_t place = host::shuffled(i, count, host::mixed(seed, 0, 0, 0));
            places.insert(place);
            ++times[i][place];
        }
        ASSERT_EQ(places.size(), count);
        ASSERT_LT(*places.rbegin(), count);
    }
    // 1000 each; five standard deviations are 148.
    for (const auto& row : times)
        for (const int time : row)
            EXPECT_NEAR(time, 1000, 148);
}

TEST(Samples, TheHashIsEven)
{
    int buckets[10] = {};
    for (std::uint32_t x = 0; x < 100; ++x)
        for (std::uint32_t y = 0; y < 100; ++y)
            ++buckets[int(host::unit(x, y, 1, 0) * 10.0f)];
    // 1000 each; five standard deviations are 150.
    for (const int count : buckets)
        EXPECT_NEAR(count, 1000, 150);
}

} // namespace
