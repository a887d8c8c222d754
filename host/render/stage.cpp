// SPDX-License-Identifier: BSD-3-Clause
#include "host/render/stage.h"

#include "host/report/message.h"
#include "host/shading/network.h"

#include <algorithm>
#include <set>

namespace host {

namespace {

Instance& placed(const Leaves& leaves, const RenderCommand& command)
{
    Instance* const leaf = leaves.camera(command.camera);
    if (!leaf)
        throw Error(command.where, "the camera instance is not in the scene that is to be rendered");
    return *leaf;
}

/// The string option "composite opacity", which is on unless the scene says otherwise.
bool compositesOpacity(const Options& options)
{
    const auto found = options.strings.find("composite opacity");
    if (found == options.strings.end())
        return true;
    const bool* const on = std::get_if<bool>(&found->second);
    return !on || *on;
}

bool blurs(const Options& options) { return options.record.motion && options.record.shutter > 0.0f; }

} // namespace

Stage::Stage(Session& session, const RenderCommand& command, const Camera& theCamera,
             const Options& theOptions)
    : database(session.database), options(theOptions), camera(theCamera),
      leaves(session.database, command.root), cameraLeaf(placed(leaves, command)),
      rays(camera.record, cameraLeaf), surfaces(database), world(database, leaves, surfaces, blurs(options)),
      lights(database, leaves, blurs(options)),
      environment(functionsOf(database, camera.environment, camera)), textures(database, session.paths),
      compositesOpacity(host::compositesOpacity(theOptions))
{
    if (!options.record.no_lens)
        lenses = functionsOf(database, camera.lens, camera);
    if (!options.record.no_volume)
        volume = functionsOf(database, camera.volume, camera);
}

void Stage::addPhenomena()
{
    // What is added may use further phenomena.
    for (std::set<const Function*> known;;) {
        std::vector<std::pair<const ExtraRoot*, const Function*>> due;
        for (const Function* const function : reachable(roots()))
            if (function->expansion && known.insert(function).second)
                for (const ExtraRoot& extra : function->expansion->extra)
                    due.emplace_back(&extra, function);
        if (due.empty())
            return;
        std::stable_sort(due.begin(), due.end(),
                         [](const auto& a, const auto& b) { return a.first->priority < b.first->priority; });
        for (const auto& [extra, definition] : due) {
            const FunctionList added = functionsOf(database, extra->shaders, *definition);
            if (extra->kind == ExtraRoot::Kind::lens && !options.record.no_lens)
                lenses.insert(lenses.end(), added.begin(), added.end());
            if (extra->kind == ExtraRoot::Kind::environment)
                environment.insert(environment.end(), added.begin(), added.end());
            if (extra->kind == ExtraRoot::Kind::volume && !options.record.no_volume)
                volume.insert(volume.end(), added.begin(), added.end());
        }
    }
}

void Stage::warnOfSegments() const
{
    const bool filled = !volume.empty() || std::ranges::any_of(surfaces.all(), [](const auto& entry) {
        return !entry.second.volume.empty();
    });
    if (options.record.shadow == 's' && filled)
        message(Level::warning, "RC",
                "options " + inQuotes(options.name) +
                    ": shadow segments are taken as sort: volume shaders are not called for light");
}

std::vector<Function*> Stage::roots() const
{
    std::vector<Function*> functions = lenses;
    for (const FunctionList* const list : {&environment, &volume})
        functions.insert(functions.end(), list->begin(), list->end());
    surfaces.collect(functions);
    lights.collect(functions);
    return functions;
}

void Stage::loadTextures(const Network& network)
{
    for (const Function* const function : network.functions())
        for (const miTag tag : function->references())
            textures.load(tag);
}

} // namespace host
