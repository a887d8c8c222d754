// SPDX-License-Identifier: BSD-3-Clause
// The fastest of several rounds, in turn with what it is compared with: what else the machine does only ever
// adds.
#pragma once

#include <algorithm>
#include <chrono>
#include <functional>
#include <limits>
#include <string>
#include <utility>
#include <vector>

class Race {
public:
    void add(std::string name, std::function<void()> run)
    {
        runners_.push_back({std::move(name), std::move(run)});
    }

    void run(int rounds)
    {
        using Clock = std::chrono::steady_clock;
        for (int k = 0; k < rounds; ++k)
            for (Runner& runner : runners_) {
                const Clock::time_point begin = Clock::now();
                runner.run();
                const std::chrono::duration<double> time = Clock::now() - begin;
                runner.seconds = std::min(runner.seconds, time.count());
            }
    }

    struct Runner {
        std::string name;
        std::function<void()> run;
        double seconds = std::numeric_limits<double>::infinity();
    };
    const std::vector<Runner>& runners() const { return runners_; }

private:
    std::vector<Runner> runners_;
};
