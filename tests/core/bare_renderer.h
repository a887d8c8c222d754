// SPDX-License-Identifier: BSD-3-Clause
// The least renderer that a shader can live in: the functions that the library imports, and a log of their
// calls.
#pragma once

#include <shader.h>

#include <algorithm>
#include <cstddef>
#include <cstring>
#include <functional>
#include <map>
#include <string>
#include <vector>

/// One process-wide renderer, as shaders call plain functions. Not for several threads.
struct BareRenderer {
    struct Block {
        std::string unit;
        int line;
        int size;
        bool operator==(const Block&) const = default;
    };

    std::vector<std::string> calls;       ///< names of the functions called, in order
    std::vector<Block> allocated;         ///< every block taken, and
    std::vector<Block> released;          ///< every block given back, with the size it was taken with
    void* userSlot = nullptr;             ///< of the one shader instance that runs
    std::function<void*(void*)> evaluate; ///< what a connected parameter leads to
    std::map<miTag, int> pins;            ///< accesses less unpins
    std::vector<std::string> messages;    ///< printed, in order
    miColor opacity{};                    ///< set last
    int largestBlock = 1 << 20;           ///< what is larger is refused
    std::vector<miTag> opened;            ///< elements opened for changes, in order, and
    std::vector<miTag> closed;            ///< closed

    /// What is seen from a point in a direction; nothing when the test says nothing else.
    std::function<miBoolean(miColor*, const miVector&, const miVector&)> traceEye =
        [](miColor*, const miVector&, const miVector&) { return miFALSE; };
    /// What a texture has at a coordinate.
    std::function<miBoolean(miColor*, miTag, const miVector&)> lookUpTexture =
        [](miColor*, miTag, const miVector&) { return miFALSE; };
    /// The next sample of a light; none when the test says nothing else.
    std::function<miBoolean(miColor*, miVector*, float*, miState*, miTag, int*)> sampleLight =
        [](miColor*, miVector*, float*, miState*, miTag, int*) { return miFALSE; };
    /// What shadows leave of a light; they leave it alone when the test says nothing else.
    std::function<miBoolean(miColor*, miState*)> traceShadow = [](miColor*, miState*) { return miTRUE; };
    /// The inclusive and the exclusive light list, which stay as given when the test says nothing else.
    std::function<void(int*, miTag**)> inclusiveList = [](int*, miTag**) {};
    std::function<void(int*, miTag**)> exclusiveList = [](int*, miTag**) {};
    /// The type of an element; none when the test says nothing else.
    std::function<int(miTag)> type = [](miTag) { return miSCENE_NONE; };
    /// The matrix from the state's space to the world, for vectors: three rows.
    float toWorld[9] = {1, 0, 0, 0, 1, 0, 0, 0, 1};

    /// The data behind a tag; zeros when the test says nothing else, which is an empty text too.
    std::function<void*(miTag)> access = [](miTag) {
        alignas(16) static std::byte nothing[1024];
        return static_cast<void*>(nothing);
    };
    /// The name of an element; none when the test says nothing else.
    std::function<const char*(miTag)> lookUp = [](miTag) -> const char* { return nullptr; };

    /// Whether every block was given back, in whatever order.
    bool hasAllBlocks() const { return std::ranges::is_permutation(allocated, released); }

    /// The renderer in use. `reset` makes it as new.
    static BareRenderer& get();
    void reset() { *this = {}; }
};

/// A parameter structure with the function record before it and, elsewhere, its ghost tags.
template <class Params>
struct Block {
    Block()
    {
        std::memset(static_cast<void*>(this), 0, sizeof *this);
        state.shader = &function;
        state.camera = &camera;
        state.options = &options;
        function.ghost_offs =
            static_cast<int>(reinterpret_cast<char*>(&ghosts) - reinterpret_cast<char*>(&params));
    }
    Block(const Block&) = delete;
    Block& operator=(const Block&) = delete;

    /// Marks the parameter as connected, or with another tag, and switches the ghost tags on.
    template <class T>
    void connect(T& field, miTag tag = 1)
    {
        std::memcpy(reinterpret_cast<char*>(&field) + function.ghost_offs, &tag, sizeof tag);
        function.ghost_flag = 1;
    }

    Params before; ///< a place for ghost tags ahead of the parameters
    miFunction function;
    Params params;
    Params ghosts;
    miCamera camera;
    miOptions options;
    miState state;
};
