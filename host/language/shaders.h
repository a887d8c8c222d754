// SPDX-License-Identifier: BSD-3-Clause
// Shader definitions and lists of shaders.
#pragma once

#include "host/language/context.h"
#include "host/shading/function.h"

#include <string>
#include <vector>

namespace host::language {

/// One shader where the text wants one: a definition, named or not, or the name of an earlier one.
struct ShaderUse {
    Name type; ///< empty for a reference
    Name name;
    std::vector<Argument> arguments;

    const Location& place() const { return type.text.empty() ? name.where : type.where; }
};

/// A name for a list of shaders. No kind that shaders know: a parameter cannot hold it.
struct NamedList : Element {
    NamedList() : Element(miSCENE_NONE) {}
    void* data() override { return nullptr; }

    ShaderList shaders;
};

class Shaders {
public:
    explicit Shaders(Context& context) : context_(context) {}

    /// Makes the shaders that are defined here and looks the others up, in order; a name that stands for a
    /// list gives its whole list. Throws Error for a phenomenon whose result is an element.
    ShaderList make(std::vector<ShaderUse> uses);

    /// The same where a phenomenon may give a material: that material, or null and the list.
    const Material* makeMaterial(std::vector<ShaderUse> uses, ShaderList& list);

    /// `shader "name" list`: a single definition is a shader of that name, anything else a named list.
    void define(const Name& name, std::vector<ShaderUse> uses);

private:
    ShaderList makeAny(std::vector<ShaderUse> uses);
    void refuseElements(const ShaderList& list, const Location& where) const;
    void refer(const Name& name, ShaderList& list);
    const Declaration& declaration(const Name& type) const;
    std::string hintFor(const Name& undeclared) const;
    miTag create(const ShaderUse& use);
    void change(const Name& name, std::vector<ShaderUse> uses);

    Context& context_;
};

/// The tag that a record keeps for a list: its first shader's.
inline miTag first(const ShaderList& list) { return list.empty() ? miNULLTAG : list.front(); }

} // namespace host::language
