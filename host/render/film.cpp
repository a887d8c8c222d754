// SPDX-License-Identifier: BSD-3-Clause
#include "host/render/film.h"

#include <algorithm>
#include <cmath>

namespace host {

Rectangle Rectangle::within(const Rectangle& other) const
{
    return {std::max(xl, other.xl), std::max(yl, other.yl), std::min(xh, other.xh), std::min(yh, other.yh)};
}

Film::Film(const Rectangle& window, const Reconstruction& filter)
    : window_(window), filter_(filter), sums_(std::size_t(window.width()) * window.height())
{
}

void Film::add(float x, float y, const miColor& color, int count)
{
    const int px = int(std::floor(x));
    const int py = int(std::floor(y));
    const Rectangle reach =
        Rectangle{px, py, px + 1, py + 1}.grown(filter_.marginX(), filter_.marginY()).within(window_);
    const float share = 1.0f / float(count);
    for (int j = reach.yl; j < reach.yh; ++j)
        for (int i = reach.xl; i < reach.xh; ++i) {
            const float weight = share * filter_.weight(x - (i + 0.5f), y - (j + 0.5f));
            if (weight == 0.0f)
                continue;
            Sum& sum = sums_[std::size_t(j - window_.yl) * window_.width() + (i - window_.xl)];
            sum.color.r += weight * color.r;
            sum.color.g += weight * color.g;
            sum.color.b += weight * color.b;
            sum.color.a += weight * color.a;
            sum.weight += weight;
        }
}

miColor Film::color(int x, int y) const
{
    const Sum& sum = sums_[std::size_t(y - window_.yl) * window_.width() + (x - window_.xl)];
    if (sum.weight == 0.0f)
        return {0.0f, 0.0f, 0.0f, 0.0f};
    const float scale = 1.0f / sum.weight;
    miColor result = {sum.color.r * scale, sum.color.g * scale, sum.color.b * scale, sum.color.a * scale};
    if (filter_.clips())
        result = {std::max(result.r, 0.0f), std::max(result.g, 0.0f), std::max(result.b, 0.0f),
                  std::max(result.a, 0.0f)};
    return result;
}

} // namespace host
