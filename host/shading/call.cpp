// SPDX-License-Identifier: BSD-3-Clause
#include "host/shading/call.h"

#include "host/report/message.h"
#include "host/shading/network.h"

#include <cstring>

namespace host {

StateScope::StateScope(miState& state) : ts_(*state.ts)
{
    if (ts_.cachesInUse == ts_.caches.size())
        ts_.caches.push_back(std::make_unique<ResultCache>(ts_.network.resultBytes()));
    ResultCache& cache = *ts_.caches[ts_.cachesInUse++];
    cache.flush();
    state.cache = &cache;
}

namespace {

/// A phenomenon's own result: what its roots make of it one after another, or its material or light.
miBoolean callRoots(const Function& definition, void* result, miState& state, void* argument)
{
    if (definition.expansion->element != miNULLTAG) {
        *static_cast<miTag*>(result) = definition.expansion->element;
        return miTRUE;
    }
    miBoolean returned = miFALSE;
    for (Function* const root : definition.sources())
        returned = call(*root, result, state, argument);
    return returned;
}

} // namespace

miBoolean call(Function& function, void* result, miState& state, void* argument)
{
    if (!function.initialised.done()) {
        if (function.expansion) // never initialised itself
            return callRoots(function, result, state, argument);
        state.ts->network.initialise(function, state);
    }
    Observation observation(state.ts->observer, function, Observer::Entry::execute, state, result);
    return observation.returned(guarded(function, state, "execute", [&] {
        return function.shader->execute(result, &state, function.parameters(), argument);
    }));
}

miBoolean call(const Database& database, const ShaderList& list, void* result, miState& state)
{
    miBoolean returned = miFALSE;
    for (const miTag tag : list)
        if (Function* const function = database.findAs<Function>(tag))
            returned = call(*function, result, state);
    return returned;
}

miBoolean callNested(const std::vector<Function*>& list, void* result, miState& state, void* argument)
{
    struct Depth {
        explicit Depth(int& count) : count(count) { ++count; }
        ~Depth() { --count; }
        int& count;
    };
    const Depth depth(state.ts->nestedCalls);
    if (depth.count > maximumNetworkDepth)
        throw Error("shaders call one another more than " + std::to_string(maximumNetworkDepth) + " deep");
    miBoolean returned = miFALSE;
    for (Function* const function : list)
        returned = call(*function, result, state, argument);
    return returned;
}

void* evaluateConnected(miState& state, void* parameter)
{
    const miFunction& caller = *state.shader;
    miTag ghost;
    if (caller.ghost_flag != 1)
        return parameter;
    std::memcpy(&ghost, static_cast<const std::byte*>(parameter) + caller.ghost_offs, sizeof ghost);
    if (ghost == miNULLTAG || ghost == 0xFFFFFFFEu)
        return parameter;
    const Function& user = Function::of(&caller);
    const Connection& connection = user.connections()[ghost - 1];
    if (!connection.source)
        return connection.value;
    Function& source = *connection.source;
    ResultCache& cache = *static_cast<ResultCache*>(state.cache);
    std::byte* const result = cache.result(source);
    std::byte* const value = result + connection.resultOffset;
    Observer* const observer = state.ts->observer;
    const bool remembered = cache.holds(source);
    if (observer)
        observer->evaluating(user, connection);
    if (!remembered) {
        cache.clear(source);
        call(source, result, state);
        cache.store(source);
    }
    if (observer)
        observer->evaluated(user, connection, value, remembered);
    return value;
}

void CallScope::reportPins()
{
    const Running& now = running();
    if (firstTime(*now.function, Fault::unbalancedPins))
        message(Level::error, "RC",
                now.function->title() + ": " +
                    (now.pins > 0 ? "left " + std::to_string(now.pins) + " database elements pinned"
                                  : "unpinned " + std::to_string(-now.pins) + " database elements too many"));
}

void rethrowNaming(const Function& function, const char* what)
{
    const std::string who = function.title() + ": " + what + " failed";
    try {
        throw;
    } catch (const Error&) {
        throw;
    } catch (const std::exception& error) {
        throw Error(function.where, who + ": " + error.what());
    } catch (...) {
        throw Error(function.where, who);
    }
}

} // namespace host
