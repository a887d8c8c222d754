// SPDX-License-Identifier: BSD-3-Clause
// Spreading work over threads.
#pragma once

#include <cstddef>
#include <functional>

namespace host {

/// How many threads a setting stands for: the number itself, or as many as the machine has for 0 and below.
int threadCount(int setting);

/// Calls work(thread, item) for every item below `count`, by up to `threads` threads with large stacks,
/// numbered from 0; no two calls with one thread number run at the same time. Returns when all are done.
/// Everything the caller wrote before is visible to the work, and everything the work wrote is visible
/// afterwards. When work throws, items that have not begun are left out, and the first exception is thrown
/// here.
void forEachItem(int threads, std::size_t count,
                 const std::function<void(int thread, std::size_t item)>& work);

} // namespace host
