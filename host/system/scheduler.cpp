// SPDX-License-Identifier: BSD-3-Clause
#include "host/system/scheduler.h"

#include "host/system/large_stack.h"

#include <tbb/global_control.h>
#include <tbb/info.h>
#include <tbb/parallel_for.h>
#include <tbb/task_arena.h>

namespace host {

struct SchedulerLimits::Controls {
    tbb::global_control width, stack;
};

SchedulerLimits::SchedulerLimits(int threads)
    : controls_(new Controls{{tbb::global_control::max_allowed_parallelism, std::size_t(threads)},
                             {tbb::global_control::thread_stack_size, largeStack}})
{
}

SchedulerLimits::~SchedulerLimits() = default;

int machineThreads() { return tbb::info::default_concurrency(); }

void schedule(int threads, std::size_t count, void (*body)(void*, int, std::size_t), void* data)
{
    const SchedulerLimits limits(threads);
    tbb::task_arena arena(threads, 1);
    arena.execute([&] {
        tbb::parallel_for(
            std::size_t(0), count,
            [&](std::size_t item) { body(data, tbb::this_task_arena::current_thread_index(), item); },
            tbb::simple_partitioner());
    });
}

} // namespace host
