// SPDX-License-Identifier: BSD-3-Clause
// What does the frame cost? Shaders of the library against plain C ones that read the same parameters and
// make the same query, and a chain of connected adds against a chain of shaders that do nothing. See
// bench/README.md.
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

namespace {

constexpr int chainLength = 100;

/// The shaders under test in a scene of their own, prepared for calling.
class Rig {
public:
    Rig()
    {
        session_.paths.library = {VHL_LIBRARY_DIR};
        session_.paths.include = {VHL_INCLUDE_DIR};
        host::readScene(session_, scene(), "bench");
        std::vector<host::Function*> roots;
        for (const char* name :
             {"add scalar", "plain add scalar", "add color", "plain add color", "mix color",
              "plain mix color", "normalize", "plain normalize", "chain", "plain chain"})
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
    static std::string scene()
    {
        const std::string two = R"( ( "input1" .25, "input2" .5 )
        )";
        const std::string colors = R"( ( "input1" .1 .2 .3 .4, "useAlpha1" on, "alpha1" .5,
                                         "input2" .5 .6 .7 .8, "useAlpha2" off, "alpha2" .5 )
        )";
        const std::string mixed = R"( ( "input1" .1 .2 .3 .4, "useAlpha1" on, "alpha1" .5,
                                        "input2" .5 .6 .7 .8, "useAlpha2" off, "alpha2" .5, "weight" 30 )
        )";
        const std::string vector = R"( ( "input" 3 0 4 )
        )";
        std::string text = R"(link "libvhl.so"
            $include <vhl.mi>
            link "plain.so"
            declare shader scalar "plainAddScalar" ( scalar "input1", scalar "input2" ) end declare
            declare shader scalar "plainPass" ( scalar "input1", scalar "input2" ) end declare
            declare shader vector "plainNormalizeVector" ( vector "input" ) end declare
        )";
        for (const char* name : {"plainAddColor", "plainMixColor"})
            text += "declare shader color \"" + std::string(name) +
                    "\" ( color \"input1\", boolean \"useAlpha1\", scalar \"alpha1\", color \"input2\", "
                    "boolean \"useAlpha2\", scalar \"alpha2\", scalar \"weight\" ) end declare\n";
        // Directives stand in the first column.
        for (std::size_t at; (at = text.find("\n            ")) != std::string::npos;)
            text.erase(at + 1, 12);
        text += "shader \"add scalar\" \"vhAddScalar_v1\"" + two;
        text += "shader \"plain add scalar\" \"plainAddScalar\"" + two;
        text += "shader \"add color\" \"vhAddColor_v2\"" + colors;
        text += "shader \"plain add color\" \"plainAddColor\"" + colors;
        text += "shader \"mix color\" \"vhMixColor_v2\"" + mixed;
        text += "shader \"plain mix color\" \"plainMixColor\"" + mixed;
        text += "shader \"normalize\" \"vhNormalizeVector_v1\"" + vector;
        text += "shader \"plain normalize\" \"plainNormalizeVector\"" + vector;
        text += chain("chain", "vhAddScalar_v1") + chain("plain chain", "plainPass");
        return text;
    }

    /// A chain of shaders, each connected to the one before; its last one bears `name` alone.
    static std::string chain(const std::string& name, const std::string& type)
    {
        std::string text = "shader \"" + name + "0\" \"" + type + "\" ( \"input1\" 1, \"input2\" 1 )\n";
        for (int i = 1; i <= chainLength; ++i)
            text += "shader \"" + name + (i < chainLength ? std::to_string(i) : "") + "\" \"" + type +
                    "\" ( \"input1\" = \"" + name + std::to_string(i - 1) + "\", \"input2\" 1 )\n";
        return text;
    }

    host::Session session_;
    std::unique_ptr<host::Network> network_;
    std::unique_ptr<miTs> thread_;
    miState state_{};
    std::unique_ptr<host::StateScope> scope_;
};

/// One call of the entry point, without the host around it.
void execute(benchmark::State& bench, Rig& rig, const std::string& name)
{
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
}

/// One evaluation of a whole chain, every node of it run.
void evaluate(benchmark::State& bench, Rig& rig, const std::string& name)
{
    host::Function& function = rig.function(name);
    miState& state = rig.state();
    miColor result{};
    for (auto _ : bench) {
        mi_flush_cache(&state);
        host::call(function, &result, state);
        benchmark::DoNotOptimize(result);
    }
}

/// Google Benchmark's own table, with the medians kept for the comparison at the end.
class Medians : public benchmark::ConsoleReporter {
public:
    void ReportRuns(const std::vector<Run>& runs) override
    {
        benchmark::ConsoleReporter::ReportRuns(runs);
        for (const Run& run : runs)
            if (run.aggregate_name == "median")
                nanoseconds[run.run_name.function_name] = run.GetAdjustedCPUTime();
    }

    std::map<std::string, double> nanoseconds;
};

} // namespace

int main(int count, char** values)
{
    std::vector<char*> arguments(values, values + count);
    std::string repetitions = "--benchmark_repetitions=15";
    std::string aggregates = "--benchmark_report_aggregates_only=true";
    std::string interleaving = "--benchmark_enable_random_interleaving=true";
    arguments.insert(arguments.begin() + 1, {repetitions.data(), aggregates.data(), interleaving.data()});
    int argumentCount = static_cast<int>(arguments.size());
    benchmark::Initialize(&argumentCount, arguments.data());

    Rig rig;
    const std::vector<std::string> singles = {"add scalar", "add color", "mix color", "normalize"};
    for (const std::string& name : singles)
        for (const std::string& variant : {name, "plain " + name})
            benchmark::RegisterBenchmark(
                variant.c_str(), [&rig, variant](benchmark::State& bench) { execute(bench, rig, variant); });
    for (const char* variant : {"chain", "plain chain"})
        benchmark::RegisterBenchmark(variant,
                                     [&rig, variant](benchmark::State& b) { evaluate(b, rig, variant); });

    Medians medians;
    benchmark::RunSpecifiedBenchmarks(&medians);
    const auto& ns = medians.nanoseconds;
    std::printf("\n%-12s %10s %10s %8s\n", "shader", "ours/ns", "plain/ns", "ratio");
    for (const std::string& name : singles)
        if (ns.count(name) && ns.count("plain " + name))
            std::printf("%-12s %10.2f %10.2f %8.3f\n", name.c_str(), ns.at(name), ns.at("plain " + name),
                        ns.at(name) / ns.at("plain " + name));
    if (ns.count("chain") && ns.count("plain chain"))
        std::printf("chain of %d adds: %.2f ns per node, %.2f beyond an empty shader's\n", chainLength,
                    ns.at("chain") / chainLength, (ns.at("chain") - ns.at("plain chain")) / chainLength);
    return 0;
}
