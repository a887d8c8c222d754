// SPDX-License-Identifier: BSD-3-Clause
// `declare phenomenon ... end declare`, and what definitions of phenomena are expanded to.
#pragma once

#include "host/language/declarations.h"
#include "host/language/shaders.h"

#include <memory>
#include <vector>

namespace host::language {

class PhenomenonBuilder {
public:
    PhenomenonBuilder(Context& context, Shaders& shaders) : context_(context), shaders_(shaders) {}

    void begin(Field result, const Name& name, std::vector<Field> parameters)
    {
        declaration_ = declared(std::move(result), name, std::move(parameters));
    }

    /// Tries the body with default values, so that its mistakes are found where it stands.
    void end(std::shared_ptr<PhenomenonBody> body);

    // Statements of a body that is being expanded.
    void root(std::vector<ShaderUse> uses, const Location& where);
    void rootMaterial(const Name& name) { rootElement<Material>(name, "material"); }
    void rootLight(const Name& name) { rootElement<Light>(name, "light"); }
    void extra(ExtraRoot::Kind kind, std::vector<ShaderUse> uses, int priority);

private:
    template <class T>
    void rootElement(const Name& name, std::string_view kind)
    {
        const miTag tag = context_.find<T>(name, kind).tag;
        refuseSecondRoot(name.where);
        context_.expansion()->element = tag;
    }
    void refuseSecondRoot(const Location& where) const;

    Context& context_;
    Shaders& shaders_;
    Declaration declaration_;
};

/// Makes the network of a phenomenon's definition, which is in the database. `former` are the elements of the
/// network that it had before: those that are made again keep their tags, the others are removed. Does
/// nothing but that for a plain shader. Throws Error.
void expand(Context& context, Function& definition, NetworkMembers former);

} // namespace host::language
