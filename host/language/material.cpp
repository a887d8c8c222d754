// SPDX-License-Identifier: BSD-3-Clause
#include "host/language/material.h"

namespace host::language {

void MaterialBuilder::begin(const Name& name) { material_.begin(context_, name, "material"); }

void MaterialBuilder::end()
{
    miMaterial& r = material_->record;
    r.shader = first(material_->shader);
    r.shadow = first(material_->shadow);
    r.volume = first(material_->volume);
    r.environment = first(material_->environment);
    material_.end(context_);
}

void MaterialBuilder::surface(std::vector<ShaderUse> uses)
{
    if (uses.empty())
        return;
    Material& material = *material_;
    const Material* const given = shaders_.makeMaterial(std::move(uses), material.shader);
    if (!given)
        return;
    material.shader = given->shader;
    material.shadow = given->shadow;
    material.volume = given->volume;
    material.environment = given->environment;
    material.record.opaque = given->record.opaque;
}

void MaterialBuilder::unused(const char* role, const Location& where, std::vector<ShaderUse> uses)
{
    if (!shaders_.make(std::move(uses)).empty())
        context_.ignored(where, "the " + std::string(role) + " shaders of materials");
}

} // namespace host::language
