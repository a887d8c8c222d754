// SPDX-License-Identifier: BSD-3-Clause
#include "host/shading/network.h"

#include "host/report/message.h"
#include "host/shading/call.h"

#include <algorithm>
#include <set>
#include <unordered_map>

namespace host {

namespace {

// Visits functions depth first with a stack of its own, since the depth is the scene's choice, and puts
// sources before their users.
class Gathering {
public:
    explicit Gathering(std::vector<Function*>& ordered) : ordered_(ordered) {}

    void gather(const std::vector<Function*>& roots)
    {
        pending_ = roots;
        while (!pending_.empty()) {
            Function* const root = pending_.back();
            pending_.pop_back();
            if (root && nodes_.count(root) == 0)
                visit(*root);
        }
    }

private:
    struct Node {
        bool finished = false;
        int depth = 0; // of the longest chain that ends here
    };
    struct Visit {
        Function* function;
        std::size_t next = 0; // source to look at
        int depth = 0;        // of the deepest source so far
    };

    void visit(Function& root)
    {
        enter(root);
        while (!path_.empty()) {
            Visit& top = path_.back();
            if (top.next < top.function->sources().size()) {
                Function& source = *top.function->sources()[top.next];
                const auto known = nodes_.find(&source);
                if (known == nodes_.end()) {
                    enter(source);
                    continue;
                }
                if (!known->second.finished)
                    failCycle(source);
                top.depth = std::max(top.depth, known->second.depth);
                ++top.next;
                continue;
            }
            leave();
        }
    }

    void enter(Function& function)
    {
        function.findSources();
        nodes_.emplace(&function, Node());
        path_.push_back({&function});
        const std::vector<Function*> callable = function.callable();
        pending_.insert(pending_.end(), callable.begin(), callable.end());
        // What the network of a phenomenon names stands in the definition's parameters.
        if (Function* const definition = function.phenomenon())
            pending_.push_back(definition);
    }

    void leave()
    {
        Function& function = *path_.back().function;
        const int depth = path_.back().depth + 1;
        if (depth > maximumNetworkDepth)
            throw Error(function.where, function.title() + ": more than " +
                                            std::to_string(maximumNetworkDepth) +
                                            " shaders are connected in a chain");
        nodes_[&function] = {true, depth};
        ordered_.push_back(&function);
        path_.pop_back();
    }

    [[noreturn]] void failCycle(const Function& source) const
    {
        const auto first = std::find_if(path_.begin(), path_.end(),
                                        [&source](const Visit& visit) { return visit.function == &source; });
        std::string text = "shaders are connected in a circle: ";
        for (auto visit = first; visit != path_.end(); ++visit)
            text += visit->function->title() + " -> ";
        throw Error(source.where, text + source.title());
    }

    std::vector<Function*>& ordered_;
    std::vector<Function*> pending_;
    std::vector<Visit> path_;
    std::unordered_map<const Function*, Node> nodes_;
};

/// Where the scene itself asks for a shader: of one within phenomena, the definition of the outermost.
const Location& placeOfUse(const Function& function)
{
    const Function* outermost = &function;
    while (const Function* const around = outermost->phenomenon())
        outermost = around;
    return outermost->where;
}

} // namespace

std::vector<Function*> reachable(const std::vector<Function*>& roots)
{
    std::vector<Function*> functions;
    Gathering(functions).gather(roots);
    return functions;
}

Network::Network(const std::vector<Function*>& roots, Libraries& libraries) : functions_(reachable(roots))
{
    std::set<const Shader*> checked;
    std::set<const Function*> sources;
    std::size_t number = 0;
    for (Function* const function : functions_) {
        function->number = number++;
        if (function->expansion)
            continue;
        function->shader = &libraries.resolve(function->declaration(), placeOfUse(*function));
        if (checked.insert(function->shader).second) {
            libraries.checkVersion(*function->shader);
            function->shader->initialised.reset();
            function->shader->wantsInstanceInit = false;
        }
        function->initialised.reset();
        function->userSlot = nullptr;
        function->reported = 0;
        for (Function* const source : function->sources())
            if (sources.insert(source).second) {
                source->resultOffset = resultBytes_;
                resultBytes_ += ResultCache::space(*source);
            }
    }
    exitState_.version = MI_STATE_VERSION;
    exitState_.global_lock = globalLock();
}

void Network::setExitState(const miState& state)
{
    exitState_.version = state.version;
    exitState_.camera_inst = state.camera_inst;
    exitState_.camera = state.camera;
    exitState_.options = state.options;
}

void Network::initialise(Function& function, miState& state)
{
    if (!function.shader)
        throw Error(function.where, function.title() + " is called, but nothing in the scene leads to it");
    if (!function.shader->initialised.done())
        initialiseShader(function, state);
    function.initialised.run([&] {
        if (!function.shader->wantsInstanceInit || !function.shader->init)
            return;
        const Observation observation(state.ts->observer, function, Observer::Entry::instanceInit, state);
        guarded(function, state, "init", [&] {
            miBoolean ignored = miFALSE;
            function.shader->init(&state, function.parameters(), &ignored);
        });
        const std::lock_guard guard(orderLock_);
        initialised_.push_back(&function);
    });
}

void Network::initialiseShader(Function& function, miState& state)
{
    Shader& shader = *function.shader;
    shader.initialised.run([&] {
        if (shader.init) {
            const Observation observation(state.ts->observer, function, Observer::Entry::shaderInit, state);
            guarded(function, state, "init", [&] {
                miBoolean request = miFALSE;
                shader.init(&state, nullptr, &request);
                shader.wantsInstanceInit = request != miFALSE;
            });
        }
        const std::lock_guard guard(orderLock_);
        initialisedShaders_.push_back(&function);
    });
}

void Network::exitInstance(Function& function, miState& state)
{
    // An exit that evaluates a connected shader whose exit has run initialises it anew, and that one is then
    // found again at the end of the list.
    function.initialised.reset();
    if (function.shader->exit)
        guarded(function, state, "exit", [&] { function.shader->exit(&state, function.parameters()); });
    function.userSlot = nullptr;
}

Network::~Network()
{
    const auto reporting = [](auto&& action) {
        try {
            action();
        } catch (const std::exception& error) {
            message(Level::error, "RC", error.what());
        }
    };
    miTs thread(*this, 0);
    exitState_.ts = &thread;
    const StateScope scope(exitState_);
    for (std::size_t k = 0; k < initialised_.size(); ++k)
        reporting([&] { exitInstance(*initialised_[k], exitState_); });
    for (std::size_t k = 0; k < initialisedShaders_.size(); ++k) {
        Function& function = *initialisedShaders_[k];
        function.shader->initialised.reset();
        if (function.shader->exit)
            reporting([&] {
                guarded(function, exitState_, "exit", [&] { function.shader->exit(&exitState_, nullptr); });
            });
    }
    for (Function* const function : functions_) {
        function->initialised.reset();
        function->shader = nullptr;
    }
}

} // namespace host
