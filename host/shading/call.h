// SPDX-License-Identifier: BSD-3-Clause
// Calling shaders: threads, states, evaluation of connected parameters.
#pragma once

#include "host/shading/function.h"
#include "host/shading/observer.h"

#include <cstddef>
#include <cstdint>
#include <cstring>
#include <memory>
#include <vector>

namespace host {

/// Results of connected shaders remembered for one state. Every source function has a fixed place in it, so
/// that looking up costs an addition and a comparison, and forgetting everything is one increment.
class ResultCache {
public:
    /// `bytes` is the sum of `space` over all sources.
    explicit ResultCache(std::size_t bytes) : slots_(new std::byte[bytes]()) {}

    /// What a source takes: a stamp and its result, aligned for any renderer type.
    static std::size_t space(const Function& source) { return stampSpace + resultSpace(source); }

    std::byte* result(const Function& source) { return slots_.get() + source.resultOffset + stampSpace; }
    void clear(const Function& source)
    {
        // A step at a time, as most results are one: cheaper than a call for a size that is not known.
        std::byte* const begin = result(source);
        for (std::size_t done = 0; done < resultSpace(source); done += alignment)
            std::memset(begin + done, 0, alignment);
    }
    bool holds(const Function& source) const { return stamp(source) == generation_; }
    void store(const Function& source) { stamp(source) = generation_; }
    void flush() { ++generation_; }

private:
    static constexpr std::size_t alignment = 16;
    static constexpr std::size_t stampSpace = alignment;

    static std::size_t resultSpace(const Function& source)
    {
        const std::size_t size = static_cast<std::size_t>(source.record()->result_size);
        return (size + alignment - 1) / alignment * alignment;
    }

    std::uint64_t& stamp(const Function& source) const
    {
        return *reinterpret_cast<std::uint64_t*>(slots_.get() + source.resultOffset);
    }

    std::uint64_t generation_ = 1; // stamps start at 0: nothing is held
    std::unique_ptr<std::byte[]> slots_;
};

class Network;

} // namespace host

/// The renderer's per-thread data behind miState::ts. One per rendering thread and rendering.
struct miTs {
    miTs(host::Network& inNetwork, int itsNumber) : network(inNetwork), number(itsNumber) {}
    miTs(const miTs&) = delete;
    miTs& operator=(const miTs&) = delete;

    host::Network& network;
    const int number;
    void* render = nullptr;             ///< the renderer's own per-thread data, see render/
    host::Observer* observer = nullptr; ///< watches this thread's calls
    int nestedCalls = 0;                ///< calls by tag within one another

    // Caches are taken and given back in the order of nested states, so the pool is a stack.
    std::vector<std::unique_ptr<host::ResultCache>> caches;
    std::size_t cachesInUse = 0;
};

namespace host {

/// Gives a state its own, empty result cache for as long as this lives. Every new state needs one: the first
/// of a sample, a secondary ray's, a light's, a shadow's. The state's `ts` must be set. Scopes of one thread
/// nest.
class StateScope {
public:
    explicit StateScope(miState& state);
    ~StateScope() { --ts_.cachesInUse; }
    StateScope(const StateScope&) = delete;
    StateScope& operator=(const StateScope&) = delete;

private:
    miTs& ts_;
};

/// Calls a function on a state: initialises the shader and the instance first if this is their first call,
/// points state->shader at the record for the time of the call, and returns what the shader returned. The
/// caller clears `result` where it has to be cleared. Throws Error when there is no such shader in the
/// network, or when the shader throws. Safe from any thread with states of its own.
miBoolean call(Function& function, void* result, miState& state, void* argument = nullptr);

/// `call` for each function of a list, in order, on the same result; the last one's return value, or 0 for an
/// empty list.
miBoolean call(const Database& database, const ShaderList& list, void* result, miState& state);

/// The same for shaders that other shaders call: by tag, or as a procedural texture. Such calls may lead back
/// to themselves; throws Error when they nest deeper than maximumNetworkDepth.
miBoolean callNested(const std::vector<Function*>& list, void* result, miState& state, void* argument);

/// What mi_phen_eval does: the value of the connected field at `parameter`, a place in the block of the
/// function that state->shader names. The shader behind it runs unless its result is remembered for this
/// state. The value stays until the cache is flushed or the state ends. Of a field that nothing is connected
/// to, which shaders need not ask for, it is the field.
void* evaluateConnected(miState& state, void* parameter);

/// Drops what is remembered for the state.
inline void flushResults(miState& state) { static_cast<ResultCache*>(state.cache)->flush(); }

/// The call into a library that this thread is in.
struct Running {
    Function* function; ///< null outside calls
    miTs* thread;
    long pins; ///< pins minus unpins so far; as wide as its neighbours, which are copied along
};
namespace detail {
inline constinit thread_local Running runningNow{nullptr, nullptr, 0};
}
inline Running& running() { return detail::runningNow; }

/// The function that is running in this thread, for messages; null outside calls.
inline Function* runningFunction() { return running().function; }

/// The per-thread data of the call running in this thread; null outside calls.
inline miTs* runningThread() { return running().thread; }

/// For the time of a call into a library: state->shader is the function's record, and running() tells of it.
/// At the end both are as before, and so is the user data that the shader may have put into its state for
/// those that it calls, as it often lies on the shader's stack. Pins that the call has not given back are
/// reported.
class CallScope {
public:
    CallScope(Function& function, miState& state)
        : state_(state), outerShader_(state.shader), outerUser_(state.user), outerUserSize_(state.user_size),
          outer_(running())
    {
        state.shader = function.record();
        running() = {&function, state.ts, 0};
    }
    ~CallScope()
    {
        if (running().pins != 0)
            reportPins();
        running() = outer_;
        state_.shader = outerShader_;
        state_.user = outerUser_;
        state_.user_size = outerUserSize_;
    }
    CallScope(const CallScope&) = delete;
    CallScope& operator=(const CallScope&) = delete;

private:
    static void reportPins();

    miState& state_;
    const miFunction* outerShader_;
    void* outerUser_;
    int outerUserSize_;
    Running outer_;
};

/// Throws Error for the exception that is being handled: itself when it is an Error, which names its shader
/// already, or one that names this shader and `what` it was doing.
[[noreturn]] void rethrowNaming(const Function& function, const char* what);

/// Runs a call into a library: in a CallScope, with what it throws turned into Error.
template <class Action>
auto guarded(Function& function, miState& state, const char* what, Action&& action) -> decltype(action())
{
    const CallScope scope(function, state);
    try {
        return action();
    } catch (...) {
        rethrowNaming(function, what);
    }
}

} // namespace host
