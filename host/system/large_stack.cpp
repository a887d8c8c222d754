// SPDX-License-Identifier: BSD-3-Clause
#include "host/system/large_stack.h"

#include "host/report/error.h"

#include <exception>
#include <pthread.h>

namespace host {

namespace {

struct Task {
    const std::function<void()>& action;
    std::exception_ptr thrown;
};

void* run(void* argument)
{
    Task& task = *static_cast<Task*>(argument);
    try {
        task.action();
    } catch (...) {
        task.thrown = std::current_exception();
    }
    return nullptr;
}

} // namespace

void onLargeStack(const std::function<void()>& action)
{
    Task task{action, nullptr};
    pthread_attr_t attributes;
    pthread_attr_init(&attributes);
    pthread_t thread;
    const bool started = pthread_attr_setstacksize(&attributes, largeStack) == 0 &&
                         pthread_create(&thread, &attributes, run, &task) == 0;
    pthread_attr_destroy(&attributes);
    if (!started)
        throw Error("cannot start a thread with a stack of 64 MiB");
    pthread_join(thread, nullptr);
    if (task.thrown)
        std::rethrow_exception(task.thrown);
}

} // namespace host
