// SPDX-License-Identifier: BSD-3-Clause
// What does it cost to look a decision up, by the number of instances that have one? In one thread and in
// two, and by reading through a list. See bench/README.md.
#include "shaders/decisions.h"

#include <benchmark/benchmark.h>

#include <algorithm>
#include <atomic>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <limits>
#include <random>
#include <thread>
#include <utility>
#include <vector>

namespace {

using Tags = std::vector<miTag>;

constexpr std::size_t timedLookUps = 50'000; // short, to fall between what else the machine does

/// So many decisions, as a table and as a list.
struct Decided {
    explicit Decided(std::size_t size)
    {
        for (std::size_t k = 0; k < size; ++k) {
            const miTag tag = tagOf(k);
            table.insert(tag, static_cast<int>(k));
            list.emplace_back(static_cast<int>(k), tag);
            all.push_back(tag);
        }
        std::shuffle(all.begin(), all.end(), std::mt19937(1));
        for (std::size_t k = 0; k < 64; ++k)
            few.push_back(tagOf(k * size / 64));
    }

    /// A renderer's tags: in order, with gaps.
    static miTag tagOf(std::size_t k) { return static_cast<miTag>(1000 + 3 * k); }

    VHL::Decisions table;
    std::vector<std::pair<int, miTag>> list;
    Tags few; ///< from everywhere, over and over: neighbouring samples see the same instances
    Tags all; ///< each once in a while, in an order that no cache foresees
};

/// Looks tags up, going round in them.
template <class Find>
void lookUp(const Tags& tags, std::size_t first, std::size_t count, const Find& find)
{
    std::size_t at = first % tags.size();
    for (std::size_t k = 0; k < count; ++k) {
        benchmark::DoNotOptimize(find(tags[at]));
        at = at + 1 < tags.size() ? at + 1 : 0;
    }
}

/// Nanoseconds for a look-up in each of so many threads that begin together; of the slowest thread.
template <class Find>
double nanoseconds(int threads, const Tags& tags, std::size_t first, std::size_t count, const Find& find)
{
    using Clock = std::chrono::steady_clock;
    std::atomic<int> waiting = threads;
    std::vector<Clock::duration> times(static_cast<std::size_t>(threads));
    const auto work = [&](std::size_t number) {
        --waiting;
        while (waiting > 0) // without sleeping, to be awake when it begins
            ;
        const Clock::time_point begin = Clock::now();
        lookUp(tags, first + number * tags.size() / 2, count, find);
        times[number] = Clock::now() - begin;
    };
    std::vector<std::thread> others;
    for (std::size_t k = 1; k < times.size(); ++k)
        others.emplace_back(work, k);
    work(0);
    for (std::thread& other : others)
        other.join();
    const std::chrono::duration<double, std::nano> slowest = *std::ranges::max_element(times);
    return slowest.count() / static_cast<double>(count);
}

/// The fastest of several rounds: what else the machine does only ever adds.
struct Fastest {
    void round(const Decided& decided, std::size_t number)
    {
        const auto keep = [](double& best, double time) { best = std::min(best, time); };
        const std::size_t first = number * timedLookUps;
        const auto find = [&](miTag tag) { return *decided.table.find(tag); };
        keep(few, nanoseconds(1, decided.few, first, timedLookUps, find));
        keep(fewInTwo, nanoseconds(2, decided.few, first, timedLookUps, find));
        keep(all, nanoseconds(1, decided.all, first, timedLookUps, find));
        keep(allInTwo, nanoseconds(2, decided.all, first, timedLookUps, find));
        // To the end of the list, as the last entry of a tag is the one that counts.
        const auto readThrough = [&](miTag tag) {
            int found = -1;
            for (const auto& [answer, entry] : decided.list)
                if (entry == tag)
                    found = answer;
            return found;
        };
        keep(list, nanoseconds(1, decided.few, first, 1 + timedLookUps / decided.list.size(), readThrough));
    }

    double few = std::numeric_limits<double>::infinity();
    double fewInTwo = few, all = few, allInTwo = few, list = few;
};

} // namespace

/// The number of rounds may be given.
int main(int count, char** values)
{
    const int rounds = count > 1 ? std::atoi(values[1]) : 300;
    std::printf("%10s | %21s %24s | %8s %24s | %14s\n", "instances", "few of them/ns", "in two threads",
                "all/ns", "in two threads", "list/ns");
    double ofTen = 0;
    for (const std::size_t size : {10, 1'000, 100'000, 1'000'000}) {
        const Decided decided(size);
        Fastest fastest;
        for (int k = 0; k < rounds; ++k)
            fastest.round(decided, static_cast<std::size_t>(k));
        if (ofTen == 0)
            ofTen = fastest.few;
        std::printf("%10zu | %12.2f (x%5.2f) %10.2f times as many | %8.2f %10.2f times as many | %14.2f\n",
                    size, fastest.few, fastest.few / ofTen, 2 * fastest.few / fastest.fewInTwo, fastest.all,
                    2 * fastest.all / fastest.allInTwo, fastest.list);
    }
    return 0;
}
