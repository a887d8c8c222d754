// SPDX-License-Identifier: BSD-3-Clause
#include "host/render/picture.h"

#include "host/render/inspection.h"
#include "host/render/samples.h"
#include "host/render/trace.h"
#include "host/report/message.h"
#include "host/system/workers.h"

#include <algorithm>
#include <atomic>
#include <limits>
#include <mutex>

namespace host {

namespace {

/// Least and greatest value of each channel.
struct Range {
    miColor low{std::numeric_limits<float>::infinity(), std::numeric_limits<float>::infinity(),
                std::numeric_limits<float>::infinity(), std::numeric_limits<float>::infinity()};
    miColor high{-low.r, -low.g, -low.b, -low.a};

    void include(const miColor& c)
    {
        low = {std::min(low.r, c.r), std::min(low.g, c.g), std::min(low.b, c.b), std::min(low.a, c.a)};
        high = {std::max(high.r, c.r), std::max(high.g, c.g), std::max(high.b, c.b), std::max(high.a, c.a)};
    }

    bool exceeds(const miColor& contrast) const
    {
        return high.r - low.r > contrast.r || high.g - low.g > contrast.g || high.b - low.b > contrast.b ||
               high.a - low.a > contrast.a;
    }
};

int floorDiv(int a, int b) { return a >= 0 ? a / b : -((b - 1 - a) / b); }

/// One picture on its way.
class Sampling {
public:
    Sampling(const Stage& stage, Network& network, const PictureSettings& settings)
        : stage_(stage), options_(stage.options.record), settings_(settings), filter_(options_),
          least_(std::max<int>(0, std::min<int>(options_.min_samples, options_.max_samples))),
          most_(std::max(least_, std::max(0, options_.max_samples))), window_(pictureWindow(stage.camera)),
          film_(window_, filter_)
    {
        const Rectangle whole = {0, 0, stage.camera.record.x_resolution, stage.camera.record.y_resolution};
        // Pixels around the window count for those at its border: a picture made of windows has no seams.
        sampled_ = window_.grown(filter_.marginX(), filter_.marginY()).within(whole);
        compared_ = sampled_.grown(1, 1).within(whole);
        const int reach = std::max(filter_.marginX(), filter_.marginY());
        // Twice the filter's reach at least: see forEachTile.
        tile_ = std::max(32, 2 * reach);
        spreads_ = reach > 0;
        picture_.width = whole.xh;
        picture_.height = whole.yh;
        if (settings.facts)
            picture_.facts.resize(std::size_t(whole.xh) * whole.yh);
        for (int i = 0; i < threadCount(settings.threads); ++i)
            threads_.push_back(std::make_unique<RenderThread>(stage, network, i + 1));
        for (Inspection* const inspection : settings.inspections)
            for (std::size_t i = 0; i < threads_.size(); ++i)
                if (Observer* const observer = inspection->observer(int(i)))
                    threads_[i]->ts.observer = observer;
    }

    Picture run()
    {
        adaptive() ? takeTwice() : takeOnce();
        setMessageThread(0);
        finish();
        return std::move(picture_);
    }

private:
    bool adaptive() const { return least_ < most_; }

    void takeOnce()
    {
        total_ = std::size_t(sampled_.width()) * sampled_.height();
        forEachTile(sampled_, spreads_, [&](RenderThread& thread, const Rectangle& tile) {
            forEachPixel(tile, [&](int x, int y) { addSampled(thread, x, y, most_); });
        });
    }

    void takeTwice()
    {
        total_ = std::size_t(compared_.width()) * compared_.height() +
                 std::size_t(sampled_.width()) * sampled_.height();
        const PixelGrid coarse(least_);
        first_.resize(std::size_t(compared_.width()) * compared_.height() * coarse.count());
        forEachTile(compared_, false, [&](RenderThread& thread, const Rectangle& tile) {
            forEachPixel(tile, [&](int x, int y) {
                takeSamples(thread, x, y, coarse, [&](int i, const SamplePosition&, const miColor& color) {
                    first(x, y)[i] = color;
                });
            });
        });
        forEachTile(sampled_, spreads_, [&](RenderThread& thread, const Rectangle& tile) {
            forEachPixel(tile, [&](int x, int y) {
                if (differs(x, y))
                    addSampled(thread, x, y, most_);
                else
                    addFirst(x, y, coarse);
            });
        });
    }

    /// Calls work(thread, tile) for the tiles of a grid that hangs on the picture's origin. With `spread`, a
    /// tile's samples count for pixels of its neighbours: then of two tiles that touch, one is done before
    /// the other begins, in an order that depends on their places only.
    template <class Work>
    void forEachTile(const Rectangle& area, bool spread, const Work& work)
    {
        const Rectangle tiles = {floorDiv(area.xl, tile_), floorDiv(area.yl, tile_),
                                 floorDiv(area.xh - 1, tile_) + 1, floorDiv(area.yh - 1, tile_) + 1};
        for (int phase = 0; phase < (spread ? 4 : 1); ++phase) {
            std::vector<Rectangle> due;
            for (int y = tiles.yl; y < tiles.yh; ++y)
                for (int x = tiles.xl; x < tiles.xh; ++x)
                    if (!spread || ((x & 1) == (phase & 1) && (y & 1) == phase >> 1))
                        due.push_back(
                            Rectangle{x * tile_, y * tile_, (x + 1) * tile_, (y + 1) * tile_}.within(area));
            forEachItem(int(threads_.size()), due.size(), [&](int number, std::size_t i) {
                RenderThread& thread = *threads_[std::size_t(number)];
                setMessageThread(thread.ts.number);
                work(thread, due[i]);
                report(due[i]);
            });
        }
    }

    template <class Visit>
    void forEachPixel(const Rectangle& tile, const Visit& visit)
    {
        for (int y = tile.yl; y < tile.yh; ++y)
            for (int x = tile.xl; x < tile.xh; ++x) {
                if (stopped_.load(std::memory_order_relaxed))
                    return;
                visit(x, y);
            }
    }

    /// Takes all samples of a pixel and hands each to visit(number, position, colour).
    template <class Visit>
    void takeSamples(RenderThread& thread, int x, int y, const PixelGrid& grid, const Visit& visit)
    try {
        // One of those nearest to the pixel's centre tells what the pixel saw.
        const int central = grid.side / 2 * grid.side + grid.side / 2;
        for (int i = 0; i < grid.count(); ++i) {
            const SamplePosition at = samplePosition(x, y, grid, i, options_.jitter);
            const float time = options_.shutter > 0.0f ? sampleTime(x, y, grid, i) : 0.0f;
            const SampleResult seen = sample(thread, at.x, at.y, time);
            if (i == central && settings_.facts)
                picture_.facts[std::size_t(y) * picture_.width + x] = seen.facts;
            visit(i, at, seen.color);
        }
    } catch (...) {
        stopped_.store(true, std::memory_order_relaxed);
        throw;
    }

    void addSampled(RenderThread& thread, int x, int y, int level)
    {
        const PixelGrid grid(level);
        takeSamples(thread, x, y, grid, [&](int, const SamplePosition& at, const miColor& color) {
            film_.add(at.x, at.y, color, grid.count());
        });
    }

    void addFirst(int x, int y, const PixelGrid& grid)
    {
        for (int i = 0; i < grid.count(); ++i) {
            const SamplePosition at = samplePosition(x, y, grid, i, options_.jitter);
            film_.add(at.x, at.y, first(x, y)[i], grid.count());
        }
    }

    bool differs(int x, int y)
    {
        Range range;
        const Rectangle around = Rectangle{x, y, x + 1, y + 1}.grown(1, 1).within(compared_);
        const int count = PixelGrid(least_).count();
        for (int j = around.yl; j < around.yh; ++j)
            for (int i = around.xl; i < around.xh; ++i)
                for (int k = 0; k < count; ++k)
                    range.include(first(i, j)[k]);
        return range.exceeds(options_.contrast);
    }

    miColor* first(int x, int y)
    {
        const std::size_t pixel = std::size_t(y - compared_.yl) * compared_.width() + (x - compared_.xl);
        return &first_[pixel * PixelGrid(least_).count()];
    }

    void report(const Rectangle& tile)
    {
        if (!settings_.progress)
            return;
        const std::lock_guard lock(progressLock_);
        done_ += std::size_t(tile.width()) * tile.height();
        settings_.progress(double(done_) / double(total_));
    }

    void finish()
    {
        picture_.colors.resize(std::size_t(picture_.width) * picture_.height, {0, 0, 0, 0});
        for (int y = window_.yl; y < window_.yh; ++y)
            for (int x = window_.xl; x < window_.xh; ++x)
                picture_.colors[std::size_t(y) * picture_.width + x] = film_.color(x, y);
        for (int y = 0; settings_.facts && y < picture_.height; ++y)
            for (int x = 0; x < picture_.width; ++x)
                if (!window_.contains(x, y))
                    picture_.facts[std::size_t(y) * picture_.width + x] = {};
    }

    const Stage& stage_;
    const miOptions& options_;
    const PictureSettings& settings_;
    Reconstruction filter_;
    int least_, most_; ///< levels of sampling
    Rectangle window_;
    Rectangle sampled_;  ///< pixels whose samples count
    Rectangle compared_; ///< pixels that those are compared with
    Film film_;
    int tile_ = 0;
    bool spreads_ = false;
    Picture picture_;
    std::vector<miColor> first_; ///< samples of the lower level, by pixel of `compared_`
    std::vector<std::unique_ptr<RenderThread>> threads_;
    std::atomic<bool> stopped_{false};
    std::mutex progressLock_;
    std::size_t done_ = 0, total_ = 0;
};

} // namespace

Rectangle pictureWindow(const Camera& camera)
{
    const miCamera& c = camera.record;
    const std::string called = "camera \"" + camera.name + "\": ";
    if (c.x_resolution <= 0 || c.y_resolution <= 0)
        throw Error(camera.where, called + "a picture of " + std::to_string(c.x_resolution) + " by " +
                                      std::to_string(c.y_resolution) + " pixels has none");
    const Rectangle whole = {0, 0, c.x_resolution, c.y_resolution};
    if (!camera.hasWindow)
        return whole;
    const Rectangle window =
        Rectangle{c.window.xl, c.window.yl, c.window.xh + 1, c.window.yh + 1}.within(whole);
    if (window.empty())
        throw Error(camera.where, called + "the window leaves no pixel of the picture");
    return window;
}

Picture takePicture(const Stage& stage, Network& network, const PictureSettings& settings)
{
    return Sampling(stage, network, settings).run();
}

} // namespace host
