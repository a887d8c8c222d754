// SPDX-License-Identifier: BSD-3-Clause
// A shader of the built library on the least renderer, its parameters by their places in the block.
#pragma once

#include "entry_points.h"
#include "tests/core/bare_renderer.h"

#include <geoshader.h>

#include <algorithm>
#include <iterator>
#include <string>
#include <utility>
#include <vector>

using Strings = std::vector<std::string>;

/// An instance with its parameter block in the middle of much memory, so that arrays may begin before it and
/// behind it. Making one resets the renderer; of several, the renderer's answers are set after the last.
class Arena {
public:
    Arena(const Library& library, const std::string& name) : shader_(library, name)
    {
        renderer.reset();
        renderer.access = [this](miTag tag) -> void* {
            if (tag == leafTag || tag == miNULLTAG)
                return tag == leafTag ? &leaf_ : &nothing_;
            return tag > 0 && tag <= texts_.size() ? texts_[tag - 1].data() : nullptr;
        };
        renderer.lookUp = [this](miTag tag) {
            return tag == parentTag && hasName_ ? parentName_.c_str() : nullptr;
        };
        leaf_.item = 2001;
        leaf_.parent = parentTag;
        block_.state.instance = leafTag;
    }

    /// The word or value at a byte of the block.
    template <class T>
    T& at(int byte)
    {
        return *reinterpret_cast<T*>(block_.params.bytes + middle + byte);
    }

    /// Writes an array's start and count at a byte, and its elements where that leaves them.
    template <class T>
    void array(int byte, int start, const std::vector<T>& elements)
    {
        at<int>(byte) = start;
        at<int>(byte + 4) = static_cast<int>(elements.size());
        for (std::size_t k = 0; k < elements.size(); ++k)
            at<T>(byte + 8 + (start + static_cast<int>(k)) * static_cast<int>(sizeof(T))) = elements[k];
    }

    void connect(int byte) { block_.connect(at<int>(byte)); }

    /// Connects parameters and notes, from now on, at which bytes any are evaluated.
    void watch(const std::vector<int>& bytes)
    {
        for (const int byte : bytes)
            connect(byte);
        renderer.evaluate = [this](void* parameter) {
            evaluated.push_back(static_cast<int>(static_cast<char*>(parameter) - &at<char>(0)));
            return parameter;
        };
    }

    miTag text(const std::string& text)
    {
        texts_.push_back(text);
        return static_cast<miTag>(texts_.size());
    }
    std::vector<miTag> texts(const Strings& all)
    {
        std::vector<miTag> tags;
        std::ranges::transform(all, std::back_inserter(tags),
                               [this](const std::string& t) { return text(t); });
        return tags;
    }

    void shade(const std::string& parentName)
    {
        hasName_ = true;
        parentName_ = parentName;
    }
    void shadeNothing() { block_.state.instance = miNULLTAG; }
    void shadeNameless() { hasName_ = false; }

    void init()
    {
        const Slot slot(*this);
        miBoolean request = miFALSE;
        shader_.init(&block_.state, params(), &request);
    }
    template <class T>
    int execute(T& result)
    {
        const Slot slot(*this);
        return shader_.execute(&result, &block_.state, params());
    }
    void exit()
    {
        const Slot slot(*this);
        shader_.exit(&block_.state, params());
    }

    miState& state() { return block_.state; }
    miOptions& options() { return block_.options; }

    /// Overwrites the texts, as a renderer may that has moved them.
    void spoilTexts()
    {
        for (std::string& text : texts_)
            std::ranges::fill(text, 'x');
    }

    BareRenderer& renderer = BareRenderer::get();
    std::vector<int> evaluated;

    static constexpr miTag leafTag = 1000, parentTag = 1001;

private:
    static constexpr int middle = 1024;

    /// The renderer's user slot is this instance's during a call.
    class Slot {
    public:
        explicit Slot(Arena& arena) : arena_(arena) { std::swap(arena_.renderer.userSlot, arena_.userSlot_); }
        ~Slot() { std::swap(arena_.renderer.userSlot, arena_.userSlot_); }
        Slot(const Slot&) = delete;
        Slot& operator=(const Slot&) = delete;

    private:
        Arena& arena_;
    };

    void* params() { return block_.params.bytes + middle; }

    EntryPoints shader_;
    Block<AnyParams> block_;
    void* userSlot_ = nullptr;
    miInstance leaf_{};
    miInstance nothing_{};
    std::vector<std::string> texts_;
    bool hasName_ = true;
    std::string parentName_;
};

/// Calls of the renderer other than the frame's own.
inline Strings calls(const BareRenderer& renderer)
{
    Strings calls = renderer.calls;
    std::erase_if(calls,
                  [](const std::string& call) { return call == "mi_query" || call.starts_with("mi_mem_"); });
    return calls;
}
