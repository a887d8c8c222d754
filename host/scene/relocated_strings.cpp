// SPDX-License-Identifier: BSD-3-Clause
#include "host/scene/relocated_strings.h"

#include <cstring>

namespace host {

RelocatedStrings::Places::Places(const std::string& text)
    : size(text.size() + 1), memory(std::make_unique<char[]>(placeCount * size))
{
}

void RelocatedStrings::Places::arrive(const std::string& text)
{
    index = (index + 1) % placeCount;
    std::memcpy(current(), text.c_str(), size);
}

void RelocatedStrings::Places::leave() { std::memset(current(), *current() == '#' ? '?' : '#', size - 1); }

char* RelocatedStrings::pin(const Text& text, std::atomic<long>& pins)
{
    const std::lock_guard guard(lock_);
    const auto [found, isNew] = places_.try_emplace(text.tag, text.text);
    Places& places = found->second;
    if (pins.fetch_add(1, std::memory_order_relaxed) == 0 || isNew)
        places.arrive(text.text);
    return places.current();
}

bool RelocatedStrings::unpin(miTag tag, std::atomic<long>& pins)
{
    const std::lock_guard guard(lock_);
    const long before = pins.load(std::memory_order_relaxed);
    if (before <= 0)
        return false;
    pins.store(before - 1, std::memory_order_relaxed);
    const auto found = places_.find(tag);
    if (before == 1 && found != places_.end())
        found->second.leave();
    return true;
}

} // namespace host
