// SPDX-License-Identifier: BSD-3-Clause
#include "host/system/workers.h"

#include "host/system/scheduler.h"

#include <atomic>
#include <exception>
#include <mutex>

namespace host {

namespace {

/// One loop. Reading `order` before each piece of work and adding to it afterwards puts the pieces in the
/// order that the scheduler ran them in, in a way that a thread sanitizer can see, as it cannot look into the
/// scheduler's library.
struct Loop {
    const std::function<void(int, std::size_t)>& work;
    std::atomic<std::size_t> order{0};
    std::atomic<bool> stopped{false};
    std::mutex lock{};
    std::exception_ptr failure{};

    void attempt(int thread, std::size_t item)
    {
        try {
            work(thread, item);
        } catch (...) {
            stopped.store(true, std::memory_order_relaxed);
            const std::lock_guard guard(lock);
            if (!failure)
                failure = std::current_exception();
        }
    }

    void run(int thread, std::size_t item)
    {
        static_cast<void>(order.load(std::memory_order_acquire));
        if (!stopped.load(std::memory_order_relaxed))
            attempt(thread, item);
        order.fetch_add(1, std::memory_order_release);
    }
};

} // namespace

int threadCount(int setting) { return setting > 0 ? setting : machineThreads(); }

void forEachItem(int threads, std::size_t count, const std::function<void(int, std::size_t)>& work)
{
    Loop loop{work};
    loop.order.store(0, std::memory_order_release);
    schedule(
        threads, count,
        [](void* data, int thread, std::size_t item) { static_cast<Loop*>(data)->run(thread, item); }, &loop);
    static_cast<void>(loop.order.load(std::memory_order_acquire));
    if (loop.failure)
        std::rethrow_exception(loop.failure);
}

} // namespace host
