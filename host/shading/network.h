// SPDX-License-Identifier: BSD-3-Clause
// All shader instances that one rendering can reach, checked and ready to be called.
#pragma once

#include "host/shading/function.h"

#include <cstddef>
#include <mutex>
#include <vector>

namespace host {

/// Everything that `roots` are connected to or name by tag, themselves included; sources come before what is
/// connected to them. Throws Error as Network does.
std::vector<Function*> reachable(const std::vector<Function*>& roots);

/// Life of the shaders in one rendering. Its destructor runs the exits. A function belongs to one network at
/// a time.
class Network {
public:
    /// Gathers everything that `roots` are connected to or name by tag, definitions of phenomena included,
    /// resolves its shaders and compares their versions. Throws Error for a cycle (naming the shaders on it),
    /// a chain deeper than maximumNetworkDepth, a connection to a deleted shader, and what Libraries::resolve
    /// and checkVersion throw.
    Network(const std::vector<Function*>& roots, Libraries& libraries);

    /// Calls the exits, in this thread: of every initialised instance, then of every initialised shader, each
    /// in the order of initialisation. Also when rendering failed. What a shader throws here becomes a
    /// message.
    ~Network();
    Network(const Network&) = delete;
    Network& operator=(const Network&) = delete;

    /// Everything reachable; sources come before what is connected to them.
    const std::vector<Function*>& functions() const { return functions_; }

    /// Bytes that remembered results take for one state.
    std::size_t resultBytes() const { return resultBytes_; }

    /// What exit calls are told about the rendering: version, camera and options are taken from `state`. The
    /// records behind them must outlive the network.
    void setExitState(const miState& state);

    /// The lock that all shaders of the rendering share.
    miLock globalLock() { return *lock_.handle(); }

    /// Runs the init calls that are due before the function's first call. Called by `call`.
    void initialise(Function& function, miState& state);

private:
    void initialiseShader(Function& function, miState& state);
    void exitInstance(Function& function, miState& state);

    std::vector<Function*> functions_;
    std::size_t resultBytes_ = 0;
    miState exitState_{};
    Lock lock_;

    // Guarded by orderLock_ while rendering goes on. A shader as a whole is represented by the function whose
    // call brought its init about.
    std::mutex orderLock_;
    std::vector<Function*> initialised_;
    std::vector<Function*> initialisedShaders_;
};

} // namespace host
