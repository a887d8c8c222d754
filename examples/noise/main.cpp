// SPDX-License-Identifier: BSD-3-Clause
// Draws each noise function, as a graph or as a plane of values: noise_pictures <directory> writes them
// there.
#include <vhl/noise.h>

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <cstdio>
#include <fstream>
#include <string>
#include <vector>

using namespace VHLNoise;

namespace {

constexpr int size = 200; // of the pictures, in pixels

/// Shades of grey, 0 is black and 1 white; the first row is the upper one.
class Picture {
public:
    explicit Picture(float shade) : shades_(size * size, shade) {}

    float& at(int x, int y) { return shades_[std::size_t(y * size + x)]; }

    bool write(const std::string& path) const
    {
        std::ofstream file(path, std::ios::binary);
        file << "P5\n" << size << ' ' << size << "\n255\n";
        for (const float shade : shades_)
            file.put(char(std::lround(std::clamp(shade, 0.0f, 1.0f) * 255.0f)));
        file.close();
        return !file.fail();
    }

private:
    std::vector<float> shades_;
};

/// Where a pixel's middle is, with so many units from edge to edge.
float coordinate(int pixel, float units) { return (float(pixel) + 0.5f) * units / size; }

/// A plane of values from -1 to 1 or from 0 to 1: `values(points, results)` computes a whole row at once. The
/// picture begins at `corner` and goes so many units in x and y.
template <class Point, class Values>
Picture plane(const Point& corner, float units, float low, float high, const Values& values)
{
    Picture picture(0.0f);
    std::vector<Point> points(size, corner);
    std::vector<dScalar> results(size, 0.0f);
    for (int y = 0; y < size; ++y) {
        for (int x = 0; x < size; ++x) {
            points[std::size_t(x)].x() = corner.x() + coordinate(x, units);
            points[std::size_t(x)].y() = corner.y() + coordinate(y, units);
        }
        values(points.data(), results.data());
        for (int x = 0; x < size; ++x)
            picture.at(x, y) = (results[std::size_t(x)] - low) / (high - low);
    }
    return picture;
}

/// The graph of a function of 0..1, or wherever it is drawn from, with the axes in grey.
template <class Function>
Picture graph(float left, float right, float bottom, float top, const Function& function)
{
    Picture picture(1.0f);
    const auto row = [&](float y) { return std::lround((top - y) / (top - bottom) * float(size - 1)); };
    const auto inside = [](long y) { return y >= 0 && y < size; };
    for (int x = 0; x < size; ++x)
        for (const float level : {0.0f, 1.0f})
            if (inside(row(level)))
                picture.at(x, int(row(level))) = 0.8f;
    for (int x = 0; x < size; ++x) {
        const float step = (right - left) / size;
        const float t = left + step * (float(x) + 0.5f);
        for (const float whole : {0.0f, 1.0f})
            if (std::fabs(t - whole) <= 0.5f * step)
                for (int y = 0; y < size; ++y)
                    picture.at(x, y) = 0.8f;
        const long y = row(function(t));
        for (long thick = y - 1; thick <= y + 1; ++thick)
            if (inside(thick))
                picture.at(x, int(thick)) = 0.0f;
    }
    return picture;
}

} // namespace

int main(int count, char** arguments)
{
    const std::string directory = count > 1 ? arguments[1] : ".";
    init_noise();

    bool written = true;
    const auto write = [&](const std::string& name, const Picture& picture) {
        written = picture.write(directory + '/' + name + ".pgm") && written;
    };

    write("fade", graph(-0.1f, 1.1f, -0.1f, 1.1f, [](float t) { return float(fade(dVector(t)).x()); }));
    write("lerp", graph(-0.5f, 1.5f, -0.1f, 1.1f,
                        [](float t) { return float(lerp(dScalar(0.2f), dScalar(0.8f), dScalar(t))); }));
    write("fmod",
          graph(-2.5f, 2.5f, -0.1f, 1.1f, [](float x) { return float(fmod(dScalar(x), dScalar(1.0f))); }));
    write("perm", graph(-0.25f, 1.25f, -0.1f, 1.1f, [](float x) { return float(perm(x)); }));

    // One gradient in each of 16 tiles: its product with the way from the tile's middle, half a unit up in z.
    write("grad", plane(dVector(0.0f, 0.0f, 0.5f), 4.0f, -2.0f, 2.0f, [](const dVector* p, dScalar* results) {
              for (int i = 0; i < size; ++i) {
                  const dVector tile = vfloor(p[i]);
                  const float h = (tile.y() * 4.0f + tile.x() + 0.5f) / 16.0f;
                  const dVector inside = p[i] - tile;
                  results[i] = grad(h, inside * 2.0f - dVector(1.0f, 1.0f, 0.5f));
                  if (inside.x() < 0.04f || inside.y() < 0.04f)
                      results[i] = -2.0f;
              }
          }));

    const auto noise = [](const auto* p, dScalar* results) { inoise(p, results, size); };
    write("inoise3", plane(dVector(0.0f, 0.0f, 0.5f), 8.0f, -1.0f, 1.0f, noise));
    write("inoise3_wrap", plane(dVector(252.0f, 100.0f, 0.5f), 8.0f, -1.0f, 1.0f, noise));
    write("inoise4", plane(dColor(0.0f, 0.0f, 0.2f, 0.2f), 8.0f, -1.0f, 1.0f, noise));
    write("cellnoise", plane(dVector(0.0f), 16.0f, -1.0f, 1.0f,
                             [](const dVector* p, dScalar* results) { cellnoise(p, results, size); }));
    write("cellular", plane(dVector(10.0f, 10.0f, 0.5f), 8.0f, 0.0f, 1.2f,
                            [](const dVector* p, dScalar* results) { cellular(p, 1.0f, results, size); }));
    write("octaves",
          plane(dVector(0.0f, 0.0f, 0.5f), 8.0f, -1.0f, 1.0f, [](const dVector* p, dScalar* results) {
              octaves(p, 6, 2.0f, 0.5f, 0.5f, 1.0f, results, size);
          }));
    write("octaves_abs",
          plane(dVector(0.0f, 0.0f, 0.5f), 8.0f, 0.0f, 1.2f, [](const dVector* p, dScalar* results) {
              octaves_abs(p, 6, 2.0f, 0.5f, 0.5f, 1.0f, results, size);
          }));

    if (!written)
        std::fprintf(stderr, "noise_pictures: cannot write to %s\n", directory.c_str());
    return written ? 0 : 1;
}
