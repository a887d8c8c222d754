// SPDX-License-Identifier: BSD-3-Clause
#include "host/render/geometry.h"

#include "host/render/surface.h"
#include "host/shading/call.h"
#include "host/shading/network.h"

#include <algorithm>
#include <set>

namespace host {

namespace {

/// Every instance with geometry shaders that the root can reach, each once.
std::vector<Instance*> geometryInstances(const Database& database, miTag root)
{
    std::vector<Instance*> found;
    std::vector<miTag> groups = {root};
    std::set<miTag> seen = {root};
    for (std::size_t i = 0; i < groups.size(); ++i) {
        const auto* const group = database.findAs<Group>(groups[i]);
        if (!group)
            continue;
        for (const miTag member : group->members) {
            auto* const instance = database.findAs<Instance>(member);
            if (!instance || instance->record.off || !seen.insert(member).second)
                continue;
            if (!instance->geometry.empty())
                found.push_back(instance);
            else if (seen.insert(instance->record.item).second)
                groups.push_back(instance->record.item);
        }
    }
    return found;
}

} // namespace

GeometryRun::GeometryRun(Session& session, const RenderCommand& command, const Camera& camera,
                         const Options& options)
    : database_(session.database), edits_(session.edits), lastBefore_(database_.last()),
      lastCreated_(lastBefore_)
{
    if (options.record.no_geometry)
        return;
    addPhenomena(command.root);
    const std::vector<Instance*> instances = geometryInstances(database_, command.root);
    try {
        if (!instances.empty())
            run(session, instances, camera, options);
        edits_.close(database_);
        lastCreated_ = database_.last();
    } catch (...) {
        edits_.close(database_);
        lastCreated_ = database_.last();
        undo();
        throw;
    }
}

GeometryRun::~GeometryRun()
{
    edits_.close(database_); // exits that edit come to nothing, but their pins are not to stay
    undo();
}

void GeometryRun::addPhenomena(miTag root)
{
    auto* const group = database_.findAs<Group>(root);
    std::vector<std::pair<int, Instance*>> added;
    for (miTag tag = 1; group && tag <= lastBefore_; ++tag) {
        const auto* const definition = database_.findAs<Function>(tag);
        if (!definition || !definition->expansion)
            continue;
        for (const ExtraRoot& extra : definition->expansion->extra)
            if (extra.kind == ExtraRoot::Kind::geometry) {
                auto& instance = database_.make<Instance>(std::string(), definition->where);
                instance.geometry = extra.shaders;
                added.emplace_back(extra.priority, &instance);
            }
    }
    std::stable_sort(added.begin(), added.end(),
                     [](const auto& a, const auto& b) { return a.first < b.first; });
    if (added.empty())
        return;
    root_ = root;
    rootMembers_ = group->members;
    for (const auto& [priority, instance] : added)
        group->members.push_back(instance->tag);
    lastCreated_ = database_.last();
}

void GeometryRun::undo()
{
    if (auto* const group = database_.findAs<Group>(root_))
        group->members = rootMembers_;
    for (const miTag tag : instances_)
        if (auto* const instance = database_.findAs<Instance>(tag))
            instance->record.item = miNULLTAG;
    for (miTag tag = lastCreated_; tag > lastBefore_; --tag)
        database_.remove(tag);
}

void GeometryRun::run(Session& session, const std::vector<Instance*>& instances, const Camera& camera,
                      const Options& options)
{
    std::vector<Function*> roots;
    for (const Instance* const instance : instances)
        for (Function* const function :
             functionsOf(database_, instance->geometry, *instance, Gives::geometry))
            roots.push_back(function);
    Network network(roots, session.libraries);
    miTs thread(network, 0);
    miState state{};
    state.version = MI_STATE_VERSION;
    state.camera = &camera.record;
    state.options = &options.record;
    state.global_lock = network.globalLock();
    state.ts = &thread;
    state.type = miRAY_NONE;
    network.setExitState(state);
    for (Instance* const instance : instances) {
        const StateScope scope(state);
        std::vector<miTag> results;
        for (Function* const function :
             functionsOf(database_, instance->geometry, *instance, Gives::geometry)) {
            miTag result = miNULLTAG;
            call(*function, &result, state);
            if (result != miNULLTAG)
                results.push_back(result);
        }
        instances_.push_back(instance->tag);
        instance->record.item = grouped(results);
    }
}

/// A single result as it is, several as a group of instances.
miTag GeometryRun::grouped(const std::vector<miTag>& results)
{
    if (results.size() < 2)
        return results.empty() ? miNULLTAG : results.front();
    auto& group = database_.make<Group>();
    for (const miTag result : results) {
        auto& instance = database_.make<Instance>();
        instance.record.item = result;
        group.members.push_back(instance.tag);
    }
    return group.tag;
}

} // namespace host
