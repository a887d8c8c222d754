// SPDX-License-Identifier: BSD-3-Clause
#include "host/render/surface.h"

namespace host {

miBoolean callAll(const FunctionList& list, void* result, miState& state)
{
    miBoolean last = miFALSE;
    for (Function* const function : list)
        last = call(*function, result, state);
    return last;
}

const Surface* Surfaces::add(miTag tag, const Element& user)
{
    if (tag == miNULLTAG)
        return nullptr;
    const auto [place, isNew] = surfaces_.try_emplace(tag);
    Surface& surface = place->second;
    if (!isNew)
        return &surface;
    const auto* const material = database_.findAs<Material>(tag);
    if (!material)
        throw Error(user.where, "\"" + user.name + "\" has a material that was deleted or is none");
    surface.tag = tag;
    surface.opaque = material->record.opaque;
    surface.shader = functionsOf(database_, material->shader, *material);
    surface.shadow = functionsOf(database_, material->shadow, *material);
    surface.environment = functionsOf(database_, material->environment, *material);
    surface.volume = functionsOf(database_, material->volume, *material);
    return &surface;
}

void Surfaces::collect(std::vector<Function*>& functions) const
{
    for (const auto& [tag, surface] : surfaces_)
        for (const FunctionList* const list :
             {&surface.shader, &surface.shadow, &surface.environment, &surface.volume})
            functions.insert(functions.end(), list->begin(), list->end());
}

} // namespace host
