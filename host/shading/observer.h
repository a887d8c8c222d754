// SPDX-License-Identifier: BSD-3-Clause
// Watching the calls into shader libraries, for profiles and probes.
#pragma once

#include <shader.h>

namespace host {

class Function;
struct Connection;

/// Told of the calls of one thread, in their order; calls nest. Without one, a call costs a test of a
/// pointer.
class Observer {
public:
    enum class Entry { shaderInit, instanceInit, execute };

    virtual ~Observer() = default;

    /// A call begins.
    virtual void enter(const Function& function, Entry entry, const miState& state) = 0;

    /// It has ended, or what it threw is on its way out: then it returned false. `result` is as it was left,
    /// null for inits.
    virtual void leave(const Function& function, Entry entry, const void* result, miBoolean returned) = 0;

    /// The running call asks for a connected parameter.
    virtual void evaluating(const Function& user, const Connection& connection) = 0;

    /// It has got it: from a call, or `remembered` from an earlier one on the same state.
    virtual void evaluated(const Function& user, const Connection& connection, const void* value,
                           bool remembered) = 0;
};

/// The time of one call: tells an observer, if there is one, of its begin and end.
class Observation {
public:
    Observation(Observer* observer, const Function& function, Observer::Entry entry, const miState& state,
                const void* result = nullptr)
        : observer_(observer), function_(function), entry_(entry), result_(result)
    {
        if (observer_)
            observer_->enter(function, entry, state);
    }
    ~Observation()
    {
        if (observer_)
            observer_->leave(function_, entry_, result_, returned_);
    }
    Observation(const Observation&) = delete;
    Observation& operator=(const Observation&) = delete;

    /// Notes what the call returned, and hands it on.
    miBoolean returned(miBoolean value) { return returned_ = value; }

private:
    Observer* const observer_;
    const Function& function_;
    const Observer::Entry entry_;
    const void* const result_;
    miBoolean returned_ = miFALSE;
};

} // namespace host
