// SPDX-License-Identifier: BSD-3-Clause
// Something that happens once, however many threads ask for it at the same time.
#pragma once

#include <atomic>
#include <exception>
#include <mutex>
#include <stdexcept>

namespace host {

/// Runs an action once: the first thread runs it, others wait for its end. A failure is remembered and thrown
/// to everybody who asks. The action may run other actions of the kind, as long as no two wait for each
/// other.
class Once {
public:
    /// True after the action has succeeded; all that it wrote is then visible.
    bool done() const { return done_.load(std::memory_order_acquire); }

    /// Throws what the action throws, now or when it ran, and logic_error when the action asks for itself.
    template <class Action>
    void run(Action&& action)
    {
        const std::lock_guard guard(lock_);
        if (done_.load(std::memory_order_relaxed))
            return;
        if (failure_)
            std::rethrow_exception(failure_);
        if (running_)
            throw std::logic_error("its initialisation needs its own result");
        running_ = true;
        try {
            action();
        } catch (...) {
            failure_ = std::current_exception();
            running_ = false;
            throw;
        }
        running_ = false;
        done_.store(true, std::memory_order_release);
    }

    /// Forgets that it has run. No other thread may be using it.
    void reset()
    {
        failure_ = nullptr;
        done_.store(false, std::memory_order_relaxed);
    }

private:
    std::atomic<bool> done_{false};
    bool running_ = false;
    std::exception_ptr failure_;
    std::recursive_mutex
        lock_; // recursive, so that an action that asks for itself is told so and does not hang
};

} // namespace host
