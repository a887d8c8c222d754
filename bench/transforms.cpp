// SPDX-License-Identifier: BSD-3-Clause
// How many colours a second do the transforms' batch forms take on one core, against copying them? See
// bench/README.md.
#include "core/batch.h"

#include "fastest.h"

#include <cstdio>
#include <cstdlib>
#include <memory>
#include <random>

using namespace VHL;

namespace {

using Colors = std::vector<dColor>;

/// A loop as anybody writes it; the compiler must not make the C library's copy of it.
[[gnu::optimize("no-tree-loop-distribute-patterns")]] void copy(const Colors& in, Colors& out)
{
    for (std::size_t i = 0; i < in.size(); ++i)
        out[i] = in[i];
}

/// A colour every picture could have, none like the other.
Colors picture(std::size_t size)
{
    std::mt19937 engine(1);
    std::uniform_real_distribution<float> channel(0, 1);
    Colors colors;
    colors.reserve(size);
    while (colors.size() < size)
        colors.emplace_back(channel(engine), channel(engine), channel(engine), channel(engine));
    return colors;
}

const std::vector<std::pair<const char*, std::shared_ptr<dColorTransform>>> transforms = {
    {"dGamma", std::make_shared<dGamma>(2.2f)},
    {"dCompress", std::make_shared<dCompress>(0.1f, 0.9f)},
    {"dExpand", std::make_shared<dExpand>(0.1f, 0.9f)},
    {"dBalance", std::make_shared<dBalance>(kLinearSpace, 0.5f, 3)},
    {"dInvert", std::make_shared<dInvert>(1.0f)},
    {"dClamp", std::make_shared<dClamp>(0.1f, 0.9f)},
    {"dThreshold", std::make_shared<dThreshold>(0.5f)},
    {"dSolarize", std::make_shared<dSolarize>(0.1f, 0.5f, 0.9f, 1, 0, 1)},
    {"dMatteMult", std::make_shared<dMatteMult>(false)},
    {"dMatteDiv", std::make_shared<dMatteDiv>(false)},
    {"dReorder", std::make_shared<dReorder>("bgr")},
    {"dSetAlpha", std::make_shared<dSetAlpha>(1.0f)},
};

void report(const char* what, std::size_t size, int times, int rounds)
{
    const Colors in = picture(size);
    Colors out(size, 0.0f);
    Race race;
    const auto repeated = [times](auto run) {
        return [times, run] {
            for (int i = 0; i < times; ++i)
                run();
        };
    };
    race.add("copying loop", repeated([&] { copy(in, out); }));
    for (const auto& [name, transform] : transforms) {
        race.add(std::string(name) + ", plain", repeated([&] {
                     batch::transformCl(Processor::plain, *transform, in.data(), out.data(), size);
                 }));
        race.add(name, repeated([&] { transformCl(*transform, in.data(), out.data(), size); }));
    }
    const std::size_t few = std::min<std::size_t>(size, 100'000);
    race.add("dGamma, single form", [&] {
        for (std::size_t i = 0; i < few; ++i)
            out[i] = transforms[0].second->transformCl(in[i]);
    });
    race.run(rounds);

    std::printf("%s, %zu colours\n%-22s %10s %14s\n", what, size, "", "Mpixel/s", "time to copy's");
    const double copying = race.runners()[0].seconds;
    for (const Race::Runner& runner : race.runners()) {
        const bool single = &runner == &race.runners().back();
        const double count = single ? double(few) : double(size) * times;
        const double perColor = runner.seconds / count;
        std::printf("%-22s %10.0f %14.2f\n", runner.name.c_str(), 1e-6 / perColor,
                    perColor * double(size) * times / copying);
    }
    std::printf("\n");
}

/// Arrays of one channel, one by one and in the batch forms.
template <class Value>
void reportChannel(const char* what, Value most, auto single, auto batch, int rounds)
{
    std::mt19937 engine(2);
    std::uniform_real_distribution<double> part(0, 1);
    std::vector<Value> in(rounds > 1 ? 1'000'000 : 1'000), out(in.size());
    for (Value& value : in)
        value = static_cast<Value>(part(engine) * most);
    for (const auto& [name, transform] : {transforms[0], transforms[3], transforms[5]}) {
        Race race;
        race.add("", [&, t = transform.get()] {
            for (std::size_t i = 0; i < in.size(); ++i)
                out[i] = (t->*single)(in[i], 0);
        });
        race.add("", [&, t = transform.get()] { batch(*t, in.data(), out.data(), in.size(), 0); });
        race.run(rounds);
        const auto speed = [&](std::size_t which) {
            return 1e-6 * double(in.size()) / race.runners()[which].seconds;
        };
        std::printf("%-10s %-12s %10.0f %10.0f\n", name, what, speed(0), speed(1));
    }
}

} // namespace

/// The number of rounds may be given.
int main(int count, char** values)
{
    const int rounds = count > 1 ? std::atoi(values[1]) : 30;
    report("from memory to memory", rounds > 1 ? 3840 * 2160 : 10'000, 1, rounds);
    report("in the caches", 4096, rounds > 1 ? 16 : 1, 20 * rounds);
    std::printf("%-10s %-12s %21s\n%-10s %-12s %10s %10s\n", "one", "", "million values/s", "channel", "",
                "single", "batch");
    reportChannel<float>(
        "floats", 1, &dColorTransform::transformFl, [](auto&&... all) { transformFl(all...); }, rounds);
    reportChannel<unsigned short>(
        "16 bits", 65535, &dColorTransform::transformSh, [](auto&&... all) { transformSh(all...); }, rounds);
    reportChannel<unsigned char>(
        "8 bits", 255, &dColorTransform::transformCh, [](auto&&... all) { transformCh(all...); }, rounds);
    return 0;
}
