// SPDX-License-Identifier: BSD-3-Clause
// The border to oneTBB, of plain types only: what includes its headers is built without thread sanitizer, as
// the order that its library keeps is invisible to one. Use workers.h.
#pragma once

#include <cstddef>
#include <memory>

namespace host {

int machineThreads();

/// As long as it lives, parallel work of the whole process, that of libraries too, uses no more than this
/// many threads, and those that are started have large stacks. Threads stay, so one has to live before the
/// first are started.
class SchedulerLimits {
public:
    explicit SchedulerLimits(int threads);
    ~SchedulerLimits();
    SchedulerLimits(const SchedulerLimits&) = delete;
    SchedulerLimits& operator=(const SchedulerLimits&) = delete;

private:
    struct Controls;
    std::unique_ptr<Controls> controls_;
};

/// Calls body(data, thread, item) for every item below `count`. `body` must not throw.
void schedule(int threads, std::size_t count, void (*body)(void* data, int thread, std::size_t item),
              void* data);

} // namespace host
