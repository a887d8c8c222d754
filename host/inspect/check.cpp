// SPDX-License-Identifier: BSD-3-Clause
#include "host/inspect/check.h"

#include <set>

namespace host {

namespace {

std::string counted(std::size_t count, const std::string& what)
{
    return std::to_string(count) + " " + what + (count == 1 ? "" : "s");
}

} // namespace

bool SceneCheck::ready(const Stage& stage, Network& network)
{
    std::set<const Object*> objects;
    std::size_t polygons = 0;
    for (const Instance* const leaf : stage.leaves.objects()) {
        const auto* const object = stage.database.findAs<Object>(leaf->record.item);
        if (objects.insert(object).second)
            polygons += object->polygons.size();
    }
    std::size_t shaders = 0; // definitions of phenomena are none themselves
    for (const Function* const function : network.functions())
        shaders += function->shader != nullptr;
    summary_ = counted(shaders, "shader") + ", " + counted(stage.surfaces.all().size(), "material") + ", " +
               counted(stage.lights.all().size(), "light") + ", " + counted(objects.size(), "object") +
               " with " + counted(polygons, "polygon") + " in " +
               counted(stage.leaves.objects().size(), "place");
    return false;
}

} // namespace host
