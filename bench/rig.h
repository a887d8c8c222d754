// SPDX-License-Identifier: BSD-3-Clause
// What the benchmarks of shaders share: a scene to call them in, and medians to compare.
#pragma once

#include "host/language/read.h"
#include "host/shading/call.h"
#include "host/shading/network.h"

#include <shader.h>

#include <benchmark/benchmark.h>

#include <cstdio>
#include <map>
#include <memory>
#include <string>
#include <vector>

/// Named shader instances of a scene, prepared for calling. The scene can use libvhl.so and plain.so with the
/// declarations of the former.
class Rig {
public:
    Rig(const std::string& shaders, const std::vector<std::string>& names)
    {
        session_.paths.library = {VHL_LIBRARY_DIR};
        session_.paths.include = {VHL_INCLUDE_DIR};
        host::readScene(session_, "link \"libvhl.so\"\n$include <vhl.mi>\nlink \"plain.so\"\n" + shaders,
                        "bench");
        std::vector<host::Function*> roots;
        for (const std::string& name : names)
            roots.push_back(&function(name));
        network_ = std::make_unique<host::Network>(roots, session_.libraries);
        thread_ = std::make_unique<miTs>(*network_, 0);
        state_.version = MI_STATE_VERSION;
        state_.ts = thread_.get();
        scope_ = std::make_unique<host::StateScope>(state_);
    }

    host::Function& function(const std::string& name)
    {
        return *session_.database.findAs<host::Function>(session_.database.lookup(name));
    }

    miState& state() { return state_; }

private:
    host::Session session_;
    std::unique_ptr<host::Network> network_;
    std::unique_ptr<miTs> thread_;
    miState state_{};
    std::unique_ptr<host::StateScope> scope_;
};

/// Times one call of the entry point, without the host around it.
inline void timeCall(Rig& rig, const std::string& name)
{
    benchmark::RegisterBenchmark(name.c_str(), [&rig, name](benchmark::State& bench) {
        host::Function& function = rig.function(name);
        miState& state = rig.state();
        miColor result{};
        host::call(function, &result, state); // initialises
        state.shader = function.record();
        for (auto _ : bench) {
            function.shader->execute(&result, &state, function.parameters(), nullptr);
            benchmark::DoNotOptimize(result);
        }
        state.shader = nullptr;
    });
}

/// Times one evaluation of a whole network: every shader that is needed runs.
inline void timeNetwork(Rig& rig, const std::string& name)
{
    benchmark::RegisterBenchmark(name.c_str(), [&rig, name](benchmark::State& bench) {
        host::Function& function = rig.function(name);
        miState& state = rig.state();
        miColor result{};
        for (auto _ : bench) {
            mi_flush_cache(&state);
            host::call(function, &result, state);
            benchmark::DoNotOptimize(result);
        }
    });
}

/// The median CPU time of each benchmark that ran.
class Medians {
public:
    /// Runs what was registered, 15 times in random interleaving unless the command line says otherwise.
    Medians(int count, char** values)
    {
        std::vector<char*> arguments(values, values + count);
        std::string repetitions = "--benchmark_repetitions=15";
        std::string aggregates = "--benchmark_report_aggregates_only=true";
        std::string interleaving = "--benchmark_enable_random_interleaving=true";
        arguments.insert(arguments.begin() + 1, {repetitions.data(), aggregates.data(), interleaving.data()});
        int argumentCount = static_cast<int>(arguments.size());
        benchmark::Initialize(&argumentCount, arguments.data());
        Reporter reporter;
        benchmark::RunSpecifiedBenchmarks(&reporter);
        nanoseconds_ = reporter.medians;
    }

    bool has(const std::string& name) const { return nanoseconds_.count(name) != 0; }
    double operator()(const std::string& name) const { return nanoseconds_.at(name); }

    /// Prints a line for each pair of which both ran: "x" and "plain x".
    void compareWithPlain(const std::vector<std::string>& names) const
    {
        std::printf("\n%-16s %10s %10s %8s\n", "shader", "ours/ns", "plain/ns", "ratio");
        for (const std::string& name : names)
            if (has(name) && has("plain " + name))
                std::printf("%-16s %10.2f %10.2f %8.3f\n", name.c_str(), (*this)(name),
                            (*this)("plain " + name), (*this)(name) / (*this)("plain " + name));
    }

private:
    /// Google Benchmark's own table, with the medians kept.
    class Reporter : public benchmark::ConsoleReporter {
    public:
        void ReportRuns(const std::vector<Run>& runs) override
        {
            benchmark::ConsoleReporter::ReportRuns(runs);
            for (const Run& run : runs)
                if (run.aggregate_name == "median")
                    medians[run.run_name.function_name] = run.GetAdjustedCPUTime();
        }

        std::map<std::string, double> medians;
    };

    std::map<std::string, double> nanoseconds_;
};

/// A chain of shaders with two inputs, each connected to the one before; its last one bears `name` alone.
inline std::string chain(const std::string& name, const std::string& type, int length)
{
    std::string text = "shader \"" + name + "0\" \"" + type + "\" ( \"input1\" 1, \"input2\" 1 )\n";
    for (int i = 1; i <= length; ++i)
        text += "shader \"" + name + (i < length ? std::to_string(i) : "") + "\" \"" + type +
                "\" ( \"input1\" = \"" + name + std::to_string(i - 1) + "\", \"input2\" 1 )\n";
    return text;
}
