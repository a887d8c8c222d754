// SPDX-License-Identifier: BSD-3-Clause
#include "host/api/memory.h"

#include "host/report/message.h"
#include "host/shading/call.h"

#include <shader.h>

#include <cstdlib>
#include <map>
#include <mutex>
#include <unordered_map>

namespace {

using Place = std::pair<std::string, int>;

struct Use {
    std::size_t blocks = 0;
    std::size_t bytes = 0;
};

struct Allocation {
    Use* use;
    std::size_t bytes;
};

struct Accounts {
    std::mutex lock;
    std::map<Place, Use> places;
    std::unordered_map<void*, Allocation> blocks;
    std::size_t allocations = 0;
};

Accounts& accounts()
{
    static Accounts instance;
    return instance;
}

} // namespace

namespace host {

std::vector<MemoryUse> memoryInUse()
{
    Accounts& all = accounts();
    const std::lock_guard guard(all.lock);
    std::vector<MemoryUse> found;
    for (const auto& [place, use] : all.places)
        if (use.blocks != 0)
            found.push_back({place.first, place.second, use.blocks, use.bytes});
    return found;
}

std::size_t memoryAllocations()
{
    Accounts& all = accounts();
    const std::lock_guard guard(all.lock);
    return all.allocations;
}

} // namespace host

void* mi_mem_int_allocate(const char* const file, const int line, const int size)
{
    const std::string unit = file ? file : "?";
    // Zeroed, and aligned for any type; a block of no bytes has an address of its own.
    void* const block = size < 0 ? nullptr : std::calloc(1, static_cast<std::size_t>(size) + (size == 0));
    if (!block)
        mi_fatal("%s:%d: cannot allocate %d bytes", unit.c_str(), line, size);
    Accounts& all = accounts();
    const std::lock_guard guard(all.lock);
    Use& use = all.places[{unit, line}];
    const std::size_t bytes = static_cast<std::size_t>(size);
    ++use.blocks;
    use.bytes += bytes;
    ++all.allocations;
    all.blocks.emplace(block, Allocation{&use, bytes});
    return block;
}

void mi_mem_int_release(const char* const file, const int line, void* block)
{
    if (!block)
        return;
    Accounts& all = accounts();
    {
        const std::lock_guard guard(all.lock);
        const auto found = all.blocks.find(block);
        if (found != all.blocks.end()) {
            --found->second.use->blocks;
            found->second.use->bytes -= found->second.bytes;
            all.blocks.erase(found);
            std::free(block);
            return;
        }
    }
    const host::Function* const culprit = host::runningFunction();
    mi_error("%s:%d: released memory that was not allocated here, or twice%s%s", file ? file : "?", line,
             culprit ? ", by " : "", culprit ? culprit->title().c_str() : "");
}
