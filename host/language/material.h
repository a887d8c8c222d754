// SPDX-License-Identifier: BSD-3-Clause
// `material "name" ... end material`.
#pragma once

#include "host/language/shaders.h"

namespace host::language {

class MaterialBuilder {
public:
    MaterialBuilder(Context& context, Shaders& shaders) : context_(context), shaders_(shaders) {}

    void begin(const Name& name);
    void end();

    void opaque() { material_->record.opaque = miTRUE; }

    /// The list without a keyword; in a change, none leaves the old one. A phenomenon that gives a material
    /// gives all of it.
    void surface(std::vector<ShaderUse> uses);

    // A keyword with a list sets it, a keyword alone clears it.
    void shadow(std::vector<ShaderUse> uses) { material_->shadow = shaders_.make(std::move(uses)); }
    void volume(std::vector<ShaderUse> uses) { material_->volume = shaders_.make(std::move(uses)); }
    void environment(std::vector<ShaderUse> uses) { material_->environment = shaders_.make(std::move(uses)); }

    /// A list that is checked and has no effect.
    void unused(const char* role, const Location& where, std::vector<ShaderUse> uses);

private:
    Context& context_;
    Shaders& shaders_;
    Definition<Material> material_;
};

} // namespace host::language
