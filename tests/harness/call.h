// SPDX-License-Identifier: BSD-3-Clause
// Calling a shader of the built library the way a renderer does.
#pragma once

#include "host/session.h"
#include "host/shading/call.h"
#include "host/shading/network.h"
#include "tests/harness/values.h"

#include <cstring>
#include <functional>
#include <memory>
#include <set>
#include <stdexcept>
#include <string>
#include <vector>

namespace test {

/// One place from which a shader is called: a state, and what came of the latest call. A Call has one for the
/// test's own thread and gives one to each thread of onThreads.
class Sample {
public:
    Sample(host::Function& function, host::Network& network, const miState& state, int thread);

    /// Executes the shader once, with a fresh result cache and a cleared result. `R` is the result's C type.
    template <class R>
    R run()
    {
        R result{};
        run(&result, sizeof result);
        return result;
    }

    /// Names of the connected parameters that were evaluated in the latest run, in order: "input1 values[2]".
    const std::string& trace() const { return trace_; }

    /// What the latest run returned.
    int returned() const { return returned_; }

    miState state; ///< what the shader is given, and has left of it

private:
    void run(void* result, std::size_t size);

    host::Function& function_;
    miTs ts_;
    std::string trace_;
    int returned_ = 0;
};

/// A shader with its parameters, called through the whole protocol: version, init of shader and instance,
/// execute, exits. The block is laid out from the shader's declaration, and the shader is looked up by name
/// in the built library, as a scene would have it.
///
///     Call add("vhAddColor_v2");
///     add.set("useAlpha1", true).connectAll();
///     add.run<miColor>();
///     EXPECT_EQ(add.trace(), "input1 input2 useAlpha1 useAlpha2 alpha2");
///
/// What is not set has its declared default. A connected parameter has a probe behind it, a shader that
/// returns the value that was set and notes that it ran. Init happens in the first run; set and connect after
/// a run start over with a new instance, while change only replaces a value.
///
/// Calls share one Session: strings and elements that tests add stay until the process ends. Mistakes in the
/// test (an unknown parameter, a result of another size) and in the shader throw.
class Call {
public:
    /// A shader of libvhl.so, declared in the committed declarations.
    explicit Call(const std::string& shader);

    /// A shader of any shared object.
    Call(const host::Declaration& declaration, const std::string& library);

    /// Runs the exits that are due.
    ~Call();
    Call(const Call&) = delete;
    Call& operator=(const Call&) = delete;

    // ---- before the run

    /// Gives a parameter a value: a bool, int, float, miVector, miColor, const char* (a string, or the name
    /// of an element), or what values.h makes: list(...), structure({...}), null(), connection("name").
    template <class T>
    Call& set(const std::string& parameter, const T& given)
    {
        return setValue(parameter, value(given));
    }

    /// Puts a probe behind the parameter; behind each element of an array and each member of a structure.
    Call& connect(const std::string& parameter);
    Call& connectAll();

    /// Defines another shader instance for connection("name"). It may be one of the library or a probe:
    /// "probe_color" with "value" and "name".
    Call& define(const std::string& name, const std::string& shader,
                 const std::vector<host::Argument>& arguments);

    /// Notes every call into the shader, see events. Not when timing, and not to find races: it takes a lock.
    Call& record();

    // ---- running

    /// The state for the next run in this thread. Version, camera and options are set.
    miState& state() { return sample().state; }

    template <class R>
    R run()
    {
        return sample().run<R>();
    }

    const std::string& trace() { return sample().trace(); }
    int returned() { return sample().returned(); }

    /// Replaces the value of a plain parameter between two runs of the same instance: in the block, or in the
    /// probe behind it. For a great many values.
    template <class T>
    Call& change(const std::string& parameter, const T& given)
    {
        std::memcpy(place(parameter, sizeof given), &given, sizeof given);
        return *this;
    }
    Call& change(const std::string& parameter, bool on) { return change(parameter, miBoolean{on}); }

    /// Runs `action` in so many threads at the same time, all with this one instance; the first run in any of
    /// them is the one that brings init about, unless there was a run before. Throws what an action threw.
    void onThreads(int threads, const std::function<void(Sample&)>& action);

    // ---- afterwards

    /// Runs the exits now; the next run starts over.
    Call& end();

    /// After record(), in order: "version", "init", "init instance", "execute", "exit instance", "exit".
    std::vector<std::string> events() const;

    const host::Declaration& declaration() const { return declaration_; }

    /// The shader instance; made when it is first asked for.
    host::Function& function();

    /// What all calls share.
    static host::Session& session();

private:
    class Recorder;

    Call& setValue(const std::string& parameter, host::Value given);
    const host::Field& fieldOf(const std::string& parameter) const;
    std::vector<host::Argument> arguments();
    host::Value probed(const host::Field& field, const host::Value* given, const std::string& path);
    std::string makeProbe(const host::Field& field, const host::Value* given, const std::string& path);
    void* place(const std::string& parameter, std::size_t size);
    host::Network& network();
    Sample& sample();
    void drop();

    const host::Declaration& declaration_;
    std::vector<host::Argument> arguments_;
    std::set<std::string> connected_;
    std::vector<miTag> elements_; // functions made for this call
    std::vector<miTag> defined_;
    host::Function* function_ = nullptr;
    std::unique_ptr<Recorder> recorder_;
    std::unique_ptr<host::Network> network_;
    std::unique_ptr<Sample> sample_;
};

/// While this lives, strings move when their last pin is given back: what a shader reads later through a
/// pointer that it kept is garbage. Calls that run meanwhile have to be made, and to end, meanwhile.
class RelocatedStrings {
public:
    RelocatedStrings() { Call::session().database.relocateStrings(true); }
    ~RelocatedStrings() { Call::session().database.relocateStrings(false); }
    RelocatedStrings(const RelocatedStrings&) = delete;
    RelocatedStrings& operator=(const RelocatedStrings&) = delete;
};

} // namespace test
