// SPDX-License-Identifier: BSD-3-Clause
// What shaders have allocated and not released.
#pragma once

#include <cstddef>
#include <string>
#include <vector>

namespace host {

/// Memory that shaders hold, by the place that they gave to the allocator.
struct MemoryUse {
    std::string file;
    int line = 0;
    std::size_t blocks = 0;
    std::size_t bytes = 0;
};

/// Places with blocks outstanding, in order of file and line. Safe from any thread.
std::vector<MemoryUse> memoryInUse();

/// How often blocks were allocated in this process so far. Safe from any thread.
std::size_t memoryAllocations();

} // namespace host
