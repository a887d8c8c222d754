// SPDX-License-Identifier: BSD-3-Clause
// `instance "name" "element" ... end instance` and `instgroup "name" ... end instgroup`.
#pragma once

#include "host/language/object.h"
#include "host/language/shaders.h"
#include "host/language/statement.h"

namespace host::language {

class InstanceBuilder {
public:
    InstanceBuilder(Context& context, Shaders& shaders) : context_(context), shaders_(shaders) {}

    void begin(const Name& name);
    void item(const Name& element);
    void geometry(std::vector<ShaderUse> uses);
    void end();
    miInstance& record() { return instance_->record; }

    // What the instance forces upon everything below it.
    void visible(const FlagMode& mode) { record().visible = mode.bits(2, 1, 2); }
    void shadow(const FlagMode& mode) { record().shadow = mode.bits(3, 6, 15); }
    void reflection(const FlagMode& mode) { record().reflection = mode.bits(3, 12, 15); }
    void refraction(const FlagMode& mode) { record().refraction = mode.bits(3, 12, 15); }
    void transparency(const FlagMode& mode) { record().transparency = mode.bits(3, 12, 15); }
    void caustic(const FlagMode& mode) { record().caustic = mode.bits(3, 12, 15); }
    void globillum(const FlagMode& mode) { record().globillum = mode.bits(3, 12, 15); }
    void finalgather(const FlagMode& mode) { record().finalgather = mode.bits(3, 12, 15); }
    void trace(const FlagMode& mode);
    void face(const Name& side);
    void shadingSamples(const Statement& number);
    void label(const Statement& number);

    /// Parent to local space; without numbers the identity. A singular one is a warning and the identity.
    void transform(const Statement& matrix);
    void motionTransform(const Statement& matrix);
    void motionOff();

    void materials(const std::vector<Name>& names);
    void lights(const std::vector<Name>& names, bool exclusive);
    void shadowLights(const std::vector<Name>& names, bool exclusive);

private:
    void warnUnlessLights(const Name& name, const Element& element) const;
    std::vector<miTag> lightTags(const std::vector<Name>& names) const;

    Context& context_;
    Shaders& shaders_;
    Definition<Instance> instance_;
    Name name_;
};

class GroupBuilder {
public:
    explicit GroupBuilder(Context& context) : context_(context) {}

    /// A change replaces the whole list.
    void begin(const Name& name);
    void member(const Name& instance);
    void end() { group_.end(context_); }

private:
    Context& context_;
    Definition<Group> group_;
};

} // namespace host::language
