// SPDX-License-Identifier: BSD-3-Clause
// What each rendering thread has to itself.
#pragma once

#include "host/render/stage.h"
#include "host/shading/call.h"

#include <deque>
#include <memory>
#include <optional>
#include <vector>

namespace host {

/// A running loop over the samples of a light: which of its leaves, and which sample of that, comes next.
struct LightLoop {
    const miState* state;
    miTag light;
    const std::vector<std::uint32_t>* leaves; ///< what `light` stands for
    std::uint32_t leaf;
    int sample;
    int before; ///< samples of the leaves before

    /// Goes on to the next leaf; this one counts as so many samples.
    void endLeaf(int count)
    {
        ++leaf;
        sample = 0;
        before += count;
    }
};

/// Rays that cast rays that cast rays: how deep they may nest. Less where long networks take the stack.
inline constexpr std::size_t mostNestedRays = 4096;

/// The whole lists behind the first shaders that a state names.
struct Surroundings {
    const FunctionList* environment = nullptr;
    const FunctionList* volume = nullptr;
    const FunctionList* refractionVolume = nullptr;
};

/// A ray's state and what belongs to it. Frames are reused; their memory stays.
struct Frame {
    miState state;
    Surroundings surroundings;
    Hit hit;                        ///< of the surface that is shaded; no body elsewhere
    std::optional<miColor> opacity; ///< as its shaders have set it
    std::vector<miVector> textures, bumpX, bumpY;
    SurfaceDerivatives derivatives;
    std::vector<Hit> occluders;
    std::vector<LightLoop> loops;
    std::deque<std::vector<miTag>>
        lightLists; ///< given to its shaders; the first `lightListsInUse` are taken
    std::size_t lightListsInUse = 0;
};

/// One thread of a rendering. Its rays nest, so their frames are a stack; a finished frame keeps its contents
/// until the next ray at the same depth, since shaders may look at the last child of their state.
class RenderThread {
public:
    RenderThread(const Stage& itsStage, Network& network, int number) : stage(itsStage), ts(network, number)
    {
        ts.render = this;
    }

    /// The thread that a state belongs to. Throws Error when nothing is being rendered: shaders of geometry
    /// have no rays.
    static RenderThread& of(const miState& state);

    /// The same; none when nothing is being rendered.
    static RenderThread* find(const miState& state);

    /// The frame of the innermost ray.
    Frame& top() { return *frames_[depth_ - 1]; }

    const Stage& stage;
    miTs ts;
    int nestedLights = 0;           ///< light shaders that run within one another
    std::size_t lens = 0;           ///< how many of the camera's lenses the current sample has entered
    std::vector<bool> listedLights; ///< scratch of light lists

private:
    friend class FrameScope;
    std::vector<std::unique_ptr<Frame>> frames_;
    std::size_t depth_ = 0;
    const char* stackBegin_ = nullptr; ///< where the sample's first ray found the stack
};

/// A frame for a new ray, for as long as this lives. Its state is what the last ray of this depth has left.
class FrameScope {
public:
    explicit FrameScope(RenderThread& thread);
    ~FrameScope() { --thread_.depth_; }
    FrameScope(const FrameScope&) = delete;
    FrameScope& operator=(const FrameScope&) = delete;

    Frame& operator*() const { return frame_; }
    Frame* operator->() const { return &frame_; }

private:
    static Frame& enter(RenderThread& thread);

    RenderThread& thread_;
    Frame& frame_;
};

} // namespace host
