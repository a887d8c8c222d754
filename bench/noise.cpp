// SPDX-License-Identifier: BSD-3-Clause
// What does a noise value cost, at one point and at many, to others' noise? See bench/README.md.
#include "core/noise.h"
#include "core/noise_batch.h"
#include "tests/core/noise_rule.h"

#ifdef VHL_BENCH_LIBNOISE
#include <libnoise/noise.h>
#endif
#ifdef VHL_BENCH_STB
#include <stb/stb_perlin.h>
#endif

#include <algorithm>
#include <array>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <functional>
#include <limits>
#include <map>
#include <random>
#include <string>
#include <vector>

namespace {

using VHL::dColor;
using VHL::dScalar;
using VHL::dVector;

constexpr std::size_t pointsTimed = 1000; // short, to fall between what else the machine does

/// The yardstick: improved noise as in the paper, in single precision, with modulo 256.
class Classic {
public:
    Classic()
    {
        for (int i = 0; i < 512; ++i)
            p_[i] = rule::table[i % 256];
    }

    [[gnu::noinline]] float operator()(float x, float y, float z) const
    {
        const float belowX = std::floor(x), belowY = std::floor(y), belowZ = std::floor(z);
        const int X = int(belowX) & 255, Y = int(belowY) & 255, Z = int(belowZ) & 255;
        x -= belowX;
        y -= belowY;
        z -= belowZ;
        const float u = fade(x), v = fade(y), w = fade(z);
        const int A = p_[X] + Y, AA = p_[A] + Z, AB = p_[A + 1] + Z;
        const int B = p_[X + 1] + Y, BA = p_[B] + Z, BB = p_[B + 1] + Z;
        const float z0 = lerp(v, lerp(u, grad(p_[AA], x, y, z), grad(p_[BA], x - 1, y, z)),
                              lerp(u, grad(p_[AB], x, y - 1, z), grad(p_[BB], x - 1, y - 1, z)));
        const float z1 =
            lerp(v, lerp(u, grad(p_[AA + 1], x, y, z - 1), grad(p_[BA + 1], x - 1, y, z - 1)),
                 lerp(u, grad(p_[AB + 1], x, y - 1, z - 1), grad(p_[BB + 1], x - 1, y - 1, z - 1)));
        return lerp(w, z0, z1);
    }

private:
    static float fade(float t) { return t * t * t * (t * (t * 6 - 15) + 10); }
    static float lerp(float t, float a, float b) { return a + t * (b - a); }
    static float grad(int hash, float x, float y, float z)
    {
        const int h = hash & 15;
        const float u = h < 8 ? x : y;
        const float v = h < 4 ? y : h == 12 || h == 14 ? x : z;
        return ((h & 1) == 0 ? u : -u) + ((h & 2) == 0 ? v : -v);
    }

    int p_[512];
};

/// Points to time with, others in each round: processors learn a thousand branches by heart.
struct Points {
    /// Neighbours are `step` apart on each axis, or anywhere.
    Points(unsigned seed, float step)
    {
        std::mt19937 engine(seed);
        std::uniform_real_distribution<float> any(-100.0f, 100.0f);
        dColor p(any(engine), any(engine), any(engine), any(engine));
        for (std::size_t i = 0; i < pointsTimed; ++i) {
            if (step > 0)
                p += dColor(step, 0.3f * step, 0.1f * step, 0.2f * step);
            else
                p = dColor(any(engine), any(engine), any(engine), any(engine));
            four.push_back(p);
            three.emplace_back(p.x(), p.y(), p.z());
        }
    }

    std::vector<dVector> three;
    std::vector<dColor> four;
};

/// The fastest of many short rounds: what else the machine does only ever adds. All take turns.
class Race {
public:
    /// `run` computes the noise at the first so many points, in batches with a set of instructions.
    void add(const std::string& name, std::size_t points, std::function<void(const Points&)> run,
             const VHLNoise::Batch* set = nullptr)
    {
        cases_.push_back({name, points, std::move(run), set});
    }

    void run(int rounds, const std::vector<Points>& points)
    {
        using Clock = std::chrono::steady_clock;
        for (Case& c : cases_)
            c.best = std::numeric_limits<double>::infinity();
        for (int round = 0; round < rounds; ++round)
            for (Case& c : cases_) {
                VHLNoise::chooseBatch(c.set);
                const Clock::time_point begin = Clock::now();
                c.run(points[std::size_t(round) % points.size()]);
                const std::chrono::duration<double, std::nano> time = Clock::now() - begin;
                c.best = std::min(c.best, time.count() / double(c.points));
            }
        for (const Case& c : cases_) {
            best_[c.name] = c.best;
            std::printf("%-36s %9.2f ns\n", c.name.c_str(), c.best);
        }
    }

    void ratio(const std::string& slow, const std::string& fast, double goal) const
    {
        if (!best_.contains(slow) || !best_.contains(fast))
            return;
        const double ratio = best_.at(slow) / best_.at(fast);
        std::printf("%-36s %7.2f times as fast as %-24s", fast.c_str(), ratio, slow.c_str());
        if (goal > 0)
            std::printf(" goal %g%s", goal, ratio >= goal ? "" : ", missed");
        std::printf("\n");
    }

private:
    struct Case {
        std::string name;
        std::size_t points;
        std::function<void(const Points&)> run;
        const VHLNoise::Batch* set;
        double best = std::numeric_limits<double>::infinity();
    };
    std::vector<Case> cases_;
    std::map<std::string, double> best_;
};

float sink[pointsTimed];

/// One call for each of the first so many points.
template <class Point, class Noise>
std::function<void(const Points&)> each(std::vector<Point> Points::*which, Noise noise,
                                        std::size_t size = pointsTimed)
{
    return [which, noise, size](const Points& points) {
        const Point* const at = (points.*which).data();
        for (std::size_t i = 0; i < size; ++i)
            sink[i] = float(noise(at[i]));
    };
}

} // namespace

/// The number of rounds may be given.
int main(int count, char** values)
{
    const int rounds = count > 1 ? std::atoi(values[1]) : 3000;
    VHLNoise::init_noise();
    const auto three = &Points::three;
    const auto four = &Points::four;
    const Classic classic;
    dScalar* const results = reinterpret_cast<dScalar*>(sink);
    constexpr std::size_t few = 50; // of the slow ones

    Race race;
    race.add("classic", pointsTimed,
             each(three, [&](const dVector& p) { return classic(p.x(), p.y(), p.z()); }));
#ifdef VHL_BENCH_STB
    race.add("stb_perlin", pointsTimed,
             each(three, [](const dVector& p) { return stb_perlin_noise3(p.x(), p.y(), p.z(), 0, 0, 0); }));
#endif
#ifdef VHL_BENCH_LIBNOISE
    race.add("libnoise gradient", pointsTimed, each(three, [](const dVector& p) {
                 return noise::GradientCoherentNoise3D(p.x(), p.y(), p.z(), 0, noise::QUALITY_BEST);
             }));
    const noise::module::Voronoi voronoi;
    race.add("libnoise Voronoi", few,
             each(
                 three, [&](const dVector& p) { return voronoi.GetValue(p.x(), p.y(), p.z()); }, few));
#endif
    race.add("plain rule inoise 3D", pointsTimed, each(three, [](const dVector& p) {
                 return rule::inoise(rule::Vector{p[0], p[1], p[2]});
             }));
    race.add("plain rule cellular", few,
             each(
                 three,
                 [](const dVector& p) {
                     return rule::cellular({p[0], p[1], p[2]}, 1.0f);
                 },
                 few));
    race.add("inoise 3D", pointsTimed, each(three, [](const dVector& p) { return VHLNoise::inoise(p); }));
    race.add("inoise 4D", pointsTimed, each(four, [](const dColor& p) { return VHLNoise::inoise(p); }));
    race.add("cellnoise", pointsTimed, each(three, [](const dVector& p) { return VHLNoise::cellnoise(p); }));
    race.add("cellular", pointsTimed,
             each(three, [](const dVector& p) { return VHLNoise::cellular(p, 1.0f).x(); }));
    const VHLNoise::Batch* const sets[] = {&VHLNoise::plainBatch, &VHLNoise::avx2Batch,
                                           &VHLNoise::avx512Batch};
    for (const VHLNoise::Batch* const set : sets) {
        if (!VHLNoise::chooseBatch(set)) {
            std::printf("this processor has no %s\n", set->name);
            continue;
        }
        const auto batch = [&](const std::string& what, auto run) {
            race.add(what + " batch, " + set->name, pointsTimed, run, set);
        };
        batch("inoise 3D", [=](const Points& p) { VHLNoise::inoise(p.three.data(), results, pointsTimed); });
        batch("inoise 4D", [=](const Points& p) { VHLNoise::inoise(p.four.data(), results, pointsTimed); });
        batch("cellnoise",
              [=](const Points& p) { VHLNoise::cellnoise(p.three.data(), results, pointsTimed); });
        batch("cellular",
              [=](const Points& p) { VHLNoise::cellular(p.three.data(), 1.0f, results, pointsTimed); });
    }
    for (const float step : {0.0f, 0.05f}) {
        std::printf(step > 0 ? "\npoints along lines\n" : "points anywhere\n");
        std::vector<Points> points;
        for (unsigned seed = 1; seed <= 50; ++seed)
            points.emplace_back(seed, step);
        race.run(rounds, points);
        std::printf("\n");
        race.ratio("stb_perlin", "inoise 3D", 2);
        race.ratio("classic", "inoise 3D", 0);
        race.ratio("plain rule inoise 3D", "inoise 3D", 0);
        race.ratio("inoise 3D", "inoise 4D", 0.6);
        race.ratio("plain rule cellular", "cellular", 10);
        race.ratio("libnoise Voronoi", "cellular", 20);
        race.ratio("stb_perlin", "inoise 3D batch, AVX2", 8);
        race.ratio("inoise 3D", "inoise 3D batch, AVX2", 0);
        race.ratio("inoise 4D", "inoise 4D batch, AVX2", 0);
        race.ratio("libnoise Voronoi", "cellular batch, AVX2", 70);
        race.ratio("stb_perlin", "inoise 3D batch, AVX-512", 14);
        race.ratio("inoise 3D", "inoise 3D batch, AVX-512", 0);
        race.ratio("inoise 4D", "inoise 4D batch, AVX-512", 0);
        race.ratio("libnoise Voronoi", "cellular batch, AVX-512", 0);
    }
    return 0;
}
