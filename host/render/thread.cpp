// SPDX-License-Identifier: BSD-3-Clause
#include "host/render/thread.h"

#include "host/system/large_stack.h"

#include <cstddef>
#include <string>

namespace host {

RenderThread& RenderThread::of(const miState& state)
{
    if (RenderThread* const thread = find(state))
        return *thread;
    const Function* const asking = runningFunction();
    throw Error(asking ? asking->where : Location(),
                (asking ? asking->title() : std::string("a shader")) +
                    " asked for rays, lights or textures before rendering "
                    "began");
}

RenderThread* RenderThread::find(const miState& state)
{
    return state.ts ? static_cast<RenderThread*>(state.ts->render) : nullptr;
}

FrameScope::FrameScope(RenderThread& thread) : thread_(thread), frame_(enter(thread)) {}

Frame& FrameScope::enter(RenderThread& thread)
{
    // Rays nest on the stack with the networks that cast them, and scenes choose how deep both go.
    constexpr std::ptrdiff_t reserve = 8 * 1024 * 1024; // for the longest network, and what it calls
    const auto* const here = static_cast<const char*>(__builtin_frame_address(0));
    if (thread.depth_ == 0)
        thread.stackBegin_ = here;
    else if (thread.depth_ == mostNestedRays ||
             thread.stackBegin_ - here > std::ptrdiff_t(largeStack) - reserve)
        throw Error("rays and the shaders that cast them nest too deep, " + std::to_string(thread.depth_) +
                    " rays by now: lower the trace depth");
    if (thread.depth_ == thread.frames_.size())
        thread.frames_.push_back(std::make_unique<Frame>());
    Frame& frame = *thread.frames_[thread.depth_++];
    frame.surroundings = {};
    frame.hit = {};
    frame.opacity.reset();
    frame.loops.clear();
    frame.lightListsInUse = 0;
    return frame;
}

} // namespace host
