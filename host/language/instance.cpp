// SPDX-License-Identifier: BSD-3-Clause
#include "host/language/instance.h"

#include "host/scene/matrix.h"

#include <algorithm>
#include <utility>

namespace host::language {

namespace {

constexpr miMatrix identity = {1, 0, 0, 0, 0, 1, 0, 0, 0, 0, 1, 0, 0, 0, 0, 1};

} // namespace

void InstanceBuilder::begin(const Name& name)
{
    name_ = name;
    instance_.begin(context_, name, "instance");
}

void InstanceBuilder::item(const Name& element)
{
    const Element& found = context_.meant(context_.find(element, "element"));
    constexpr std::array possible = {miSCENE_OBJECT, miSCENE_LIGHT, miSCENE_CAMERA, miSCENE_GROUP};
    if (std::find(possible.begin(), possible.end(), found.kind) == possible.end())
        Context::refuseKind(element, found, "object, light, camera or group");
    record().item = found.tag;
    instance_->geometry.clear();
}

void InstanceBuilder::geometry(std::vector<ShaderUse> uses)
{
    instance_->geometry = shaders_.make(std::move(uses));
    record().item = miNULLTAG;
}

void InstanceBuilder::end()
{
    if (record().item == miNULLTAG && instance_->geometry.empty())
        throw Error(name_.where, "instance " + inQuotes(name_.text) + " names no element");
    instance_.end(context_);
}

void InstanceBuilder::trace(const FlagMode& mode)
{
    reflection(mode);
    refraction(mode);
    finalgather(mode);
}

void InstanceBuilder::face(const Name& side)
{
    record().face = static_cast<char>(
        choose("face", side.text, side.where, {{"front", 'f'}, {"back", 'b'}, {"both", 'a'}}));
}

void InstanceBuilder::shadingSamples(const Statement& number)
{
    number.expect({1});
    record().shading_samples = number.real(0);
}

void InstanceBuilder::label(const Statement& number)
{
    number.expect({1});
    record().label = static_cast<miUint>(number.integer(0));
}

void InstanceBuilder::transform(const Statement& matrix)
{
    matrix.expect({0, 16});
    miTransform& tf = record().tf;
    std::copy_n(identity, 16, tf.global_to_local);
    if (matrix.size() == 16)
        matrix.matrix(tf.global_to_local);
    if (!invert(tf.global_to_local, tf.local_to_global)) {
        Context::warn(matrix.where, "the matrix of instance " + inQuotes(name_.text) +
                                        " is singular, the identity is used");
        std::copy_n(identity, 16, tf.global_to_local);
        std::copy_n(identity, 16, tf.local_to_global);
    }
    tf.identity = std::equal(identity, identity + 16, tf.global_to_local);
}

void InstanceBuilder::motionTransform(const Statement& matrix)
{
    matrix.expect({0, 16});
    std::copy_n(identity, 16, record().motion_transform);
    std::copy_n(identity, 16, instance_->motionInverse);
    instance_->hasMotion = matrix.size() == 16;
    if (instance_->hasMotion)
        matrix.matrix(record().motion_transform);
    if (!invert(record().motion_transform, instance_->motionInverse)) {
        Context::warn(matrix.where, "the motion matrix of instance " + inQuotes(name_.text) +
                                        " is singular and is ignored");
        std::copy_n(identity, 16, record().motion_transform);
        instance_->hasMotion = false;
    }
    record().gen_motion = instance_->hasMotion ? givesMotion : inheritsMotion;
}

void InstanceBuilder::motionOff()
{
    instance_->hasMotion = false;
    record().gen_motion = stopsMotion;
}

void InstanceBuilder::materials(const std::vector<Name>& names)
{
    instance_->materials.clear();
    for (const Name& name : names)
        instance_->materials.push_back(context_.find<Material>(name, "material").tag);
    record().material = names.empty() ? miNULLTAG : instance_->materials.front();
    record().mtl_array_size = static_cast<int>(names.size());
}

/// Names that a list of lights may hold, but that stand for none.
void InstanceBuilder::warnUnlessLights(const Name& name, const Element& element) const
{
    if (element.kind == miSCENE_LIGHT) {
        Context::warn(name.where, "light " + inQuotes(name.text) +
                                      " is listed by itself, which stands for nothing; name its instance");
        return;
    }
    const Element* const item =
        context_.session.database.find(static_cast<const Instance&>(element).record.item);
    if (item && item->kind != miSCENE_LIGHT && item->kind != miSCENE_GROUP)
        Context::warn(name.where, "instance " + inQuotes(name.text) + " is listed as a light and is none");
}

std::vector<miTag> InstanceBuilder::lightTags(const std::vector<Name>& names) const
{
    std::vector<miTag> tags;
    for (const Name& name : names) {
        const Element& element = context_.find(name, "light instance");
        if (element.kind != miSCENE_INSTANCE && element.kind != miSCENE_LIGHT)
            Context::refuseKind(name, element, "light instance");
        warnUnlessLights(name, element);
        tags.push_back(element.tag);
    }
    return tags;
}

void InstanceBuilder::lights(const std::vector<Name>& names, bool exclusive)
{
    instance_->lights = lightTags(names);
    instance_->hasLights = exclusive || !names.empty();
    record().exclusive = exclusive;
}

void InstanceBuilder::shadowLights(const std::vector<Name>& names, bool exclusive)
{
    instance_->shadowLights = lightTags(names);
    instance_->hasShadowLights = exclusive || !names.empty();
    record().shadow_excl = exclusive;
}

void GroupBuilder::begin(const Name& name)
{
    group_.begin(context_, name, "group");
    group_->members.clear();
}

void GroupBuilder::member(const Name& instance)
{
    group_->members.push_back(context_.find<Instance>(instance, "instance").tag);
}

} // namespace host::language
