// SPDX-License-Identifier: BSD-3-Clause
// Strings that do not stay where they were.
#pragma once

#include "host/scene/element.h"

#include <atomic>
#include <memory>
#include <mutex>
#include <unordered_map>

namespace host {

/// Makes shaders show that read a string after they have unpinned it: the text is at another address each
/// time that it is pinned anew, and is overwritten there when the last pin is given back.
///
/// What a kept pointer leads to is garbage of the text's length: '#', or '?' for a text that begins with '#'.
/// A text has a fixed number of places that it goes through in turn, so that such a pointer never leads out
/// of memory and memory does not grow; once in that many times it is right by chance. Safe from any thread.
class RelocatedStrings {
public:
    /// Adds a pin and returns the text.
    char* pin(const Text& text, std::atomic<long>& pins);

    /// Takes a pin away; false when there is none.
    bool unpin(miTag tag, std::atomic<long>& pins);

private:
    static constexpr std::size_t placeCount = 64;

    struct Places {
        explicit Places(const std::string& text);

        char* current() { return memory.get() + index * size; }
        void arrive(const std::string& text);
        void leave();

        std::size_t size; // of each
        std::unique_ptr<char[]> memory;
        std::size_t index = 0;
    };

    std::mutex lock_;
    std::unordered_map<miTag, Places> places_;
};

} // namespace host
