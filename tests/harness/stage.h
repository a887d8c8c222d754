// SPDX-License-Identifier: BSD-3-Clause
// A session with shaders in it, for tests of the host itself.
#pragma once

#include "host/session.h"
#include "host/shading/call.h"
#include "host/shading/network.h"
#include "tests/harness/values.h"

#include <memory>
#include <string>
#include <vector>

namespace test {

/// Declares, makes and calls shaders of one shared object.
class Stage {
public:
    /// An empty `library` links none.
    explicit Stage(const std::string& library = {});

    /// Declares a shader and returns it laid out.
    const host::Declaration& declare(const std::string& name, host::Field result,
                                     std::vector<host::Field> parameters, int version = 1);

    /// A named instance of a declared shader.
    host::Function& make(const std::string& name, const std::string& shader,
                         const std::vector<host::Argument>& arguments = {});

    /// Ends the network that there was, which runs the exits, and prepares a new one.
    void prepare(const std::vector<host::Function*>& roots);
    void finish();

    host::Network& network() { return *network_; }

    /// Calls a function in a state of its own, which prepare has made reachable.
    template <class R>
    R run(host::Function& function)
    {
        R result{};
        miTs thread(*network_, 0);
        miState state = firstState(thread);
        const host::StateScope scope(state);
        host::call(function, &result, state);
        return result;
    }

    /// prepare, then run.
    template <class R>
    R runAlone(host::Function& function)
    {
        prepare({&function});
        return run<R>(function);
    }

    /// A state as the first one of a sample, without a cache.
    miState firstState(miTs& thread) const;

    /// A function that a library exports.
    template <class F>
    F* symbol(const std::string& name) const
    {
        return reinterpret_cast<F*>(session.libraries.symbol(name));
    }

    host::Session session;

private:
    host::Options& options_;
    host::Camera& camera_;
    std::unique_ptr<host::Network> network_;
};

/// The text of the Error that the action throws; "nothing was thrown" otherwise.
template <class Action>
std::string errorOf(Action&& action)
{
    try {
        action();
    } catch (const host::Error& error) {
        return error.what();
    }
    return "nothing was thrown";
}

} // namespace test
