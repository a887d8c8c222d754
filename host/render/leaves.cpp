// SPDX-License-Identifier: BSD-3-Clause
#include "host/render/leaves.h"

#include "host/render/vector.h"

#include <algorithm>

namespace host {

namespace {

/// Modes hold a bit for "force on" and, two bits higher, one for "force off": what is given neither way
/// passes the parent's.
miUint1 inheritedMode(miUint1 parent, miUint1 own)
{
    const unsigned given = (own | own >> 2) & 3u;
    const unsigned open = ~(given | given << 2) & 15u;
    return miUint1(own | (parent & open));
}

/// Bit `bit` of an object's mode as the instances on the path leave it.
bool resolved(miUint1 forced, miUint1 object, unsigned bit)
{
    if (forced & bit)
        return true;
    return (forced & bit << 2) == 0 && (object & bit) != 0;
}

std::string called(const Element& element)
{
    return element.name.empty() ? std::string("(no name)") : "\"" + element.name + "\"";
}

/// What an instance adds to what it inherits from the path above.
void inherit(Instance& below, const Instance& above, const Instance& own)
{
    miInstance& r = below.record;
    const miInstance& p = above.record;
    const miInstance& i = own.record;
    r.visible = i.visible ? i.visible : p.visible;
    r.shadow = inheritedMode(p.shadow, i.shadow);
    r.reflection = inheritedMode(p.reflection, i.reflection);
    r.refraction = inheritedMode(p.refraction, i.refraction);
    r.transparency = inheritedMode(p.transparency, i.transparency);
    r.caustic = inheritedMode(p.caustic, i.caustic);
    r.globillum = inheritedMode(p.globillum, i.globillum);
    r.finalgather = inheritedMode(p.finalgather, i.finalgather);
    r.face = i.face ? i.face : p.face;
    r.label = i.label ? i.label : p.label;
    r.userdata = i.userdata ? i.userdata : p.userdata;

    const bool takes = !own.materials.empty() && !p.mtl_override;
    below.materials = takes ? own.materials : above.materials;
    r.mtl_override = takes ? i.mtl_override : p.mtl_override;
    r.material = below.materials.empty() ? miNULLTAG : below.materials.front();
    r.mtl_array_size = below.materials.size() > 1 ? int(below.materials.size()) : 0;

    const Instance& lit = own.hasLights ? own : above;
    below.hasLights = lit.hasLights;
    below.lights = lit.lights;
    r.exclusive = lit.record.exclusive;
    const Instance& shadowed = own.hasShadowLights ? own : above;
    below.hasShadowLights = shadowed.hasShadowLights;
    below.shadowLights = shadowed.shadowLights;
    r.shadow_excl = shadowed.record.shadow_excl;

    r.gen_motion = i.gen_motion != inheritsMotion ? i.gen_motion : p.gen_motion;
}

/// Where a path stands, between world and local space.
struct Place {
    Matrix toLocal = identityMatrix;
    Matrix toWorld = identityMatrix;

    /// One instance further down.
    Place below(const miMatrix parentToLocal, const miMatrix localToParent) const
    {
        return {product(toLocal, widened(parentToLocal)), product(widened(localToParent), toWorld)};
    }
};

/// The same when the shutter opens and when it closes.
struct Places {
    Place open, closed;

    Places below(const Instance& own) const
    {
        const miTransform& tf = own.record.tf;
        Places result;
        result.open = open.below(tf.global_to_local, tf.local_to_global);
        if (own.record.gen_motion == stopsMotion)
            result.closed = result.open;
        else if (own.hasMotion)
            result.closed = closed.below(own.record.motion_transform, own.motionInverse);
        else
            result.closed = closed.below(tf.global_to_local, tf.local_to_global);
        return result;
    }
};

void place(Instance& leaf, const Places& places)
{
    const auto& [open, closed] = places;
    miTransform& tf = leaf.record.tf;
    narrow(open.toLocal, tf.global_to_local);
    narrow(open.toWorld, tf.local_to_global);
    tf.identity = open.toLocal == identityMatrix && open.toWorld == identityMatrix;
    narrow(closed.toLocal, leaf.record.motion_transform);
    narrow(closed.toWorld, leaf.motionInverse);
    narrow(difference(closed.toWorld, open.toWorld), leaf.drift);
    leaf.hasMotion = closed.toWorld != open.toWorld;
}

} // namespace

unsigned rayBits(const Object& object, const miInstance& leaf)
{
    const bool visible = leaf.visible ? leaf.visible == 2 : object.visible;
    unsigned bits = visible ? seenByEye : 0u;
    const auto mode = [&](miUint1 forced, miUint1 own, unsigned first, unsigned second) {
        bits |= (resolved(forced, own, 1) ? first : 0u) | (resolved(forced, own, 2) ? second : 0u);
    };
    mode(leaf.shadow, object.shadow, castsShadow, receivesShadow);
    mode(leaf.reflection, object.reflection, seenByReflection, castsReflection);
    mode(leaf.refraction, object.refraction, seenByRefraction, castsRefraction);
    mode(leaf.transparency, object.transparency, seenByTransparency, castsTransparency);
    return bits;
}

/// One walk over all paths, depth first, with the path on a stack of its own: scenes may nest deeper than the
/// machine's stack would bear.
class Leaves::Walk {
public:
    Walk(Leaves& leaves, const Group& root) : leaves_(leaves) { path_.emplace_back(&root, nullptr); }

    void run()
    {
        while (!path_.empty()) {
            Level& level = path_.back();
            if (level.next == level.group->members.size()) {
                path_.pop_back();
                continue;
            }
            visit(level.group->members[level.next++]);
        }
    }

private:
    struct Level {
        Level(const Group* group, const Instance* scene) : group(group), scene(scene) {}
        const Group* group;
        const Instance* scene; ///< the instance through which the path reached the group
        std::size_t next = 0;
        Instance inherited; ///< what members get from the path
        Places places;
    };

    void visit(miTag member)
    {
        const auto* const scene = leaves_.database_.findAs<Instance>(member);
        if (!scene || scene->record.off)
            return;
        if (++steps_ > maximumPathSteps)
            throw Error(scene->where, "the scene graph unfolds into more than " +
                                          std::to_string(maximumPathSteps) + " instances");
        const Element* const item = leaves_.database_.find(scene->record.item);
        if (!item)
            return;
        const Level& above = path_.back();
        const Places places = above.places.below(*scene);
        if (const auto* const group = dynamic_cast<const Group*>(item)) {
            enter(*group, *scene, places);
            return;
        }
        const miScene_types kind = item->kind;
        if (kind != miSCENE_OBJECT && kind != miSCENE_LIGHT && kind != miSCENE_CAMERA)
            throw Error(scene->where, "instance " + called(*scene) + " is of " + called(*item) +
                                          ", which is no object, light, camera or group");
        Instance& leaf = leaves_.database_.make<Instance>({}, scene->where);
        inherit(leaf, above.inherited, *scene);
        leaf.record.parent = member;
        leaf.record.item = item->tag;
        place(leaf, places);
        if (kind == miSCENE_LIGHT)
            addLight(leaf, member);
        else
            (kind == miSCENE_OBJECT ? leaves_.objects_ : leaves_.cameras_).push_back(&leaf);
    }

    void enter(const Group& group, const Instance& scene, const Places& places)
    {
        for (const Level& level : path_)
            if (level.group == &group)
                throw Error(scene.where,
                            "group " + called(group) + " contains itself, through instance " + called(scene));
        if (path_.size() == maximumGroupDepth)
            throw Error(scene.where,
                        "groups nest deeper than " + std::to_string(maximumGroupDepth) + " levels");
        const Instance& above = path_.back().inherited;
        path_.emplace_back(&group, &scene);
        Level& level = path_.back();
        inherit(level.inherited, above, scene);
        level.places = places;
    }

    void addLight(Instance& leaf, miTag member)
    {
        const auto index = std::uint32_t(leaves_.lights_.size());
        leaves_.lights_.push_back(&leaf);
        leaves_.lightsBelow_[leaf.tag].push_back(index);
        leaves_.lightsBelow_[member].push_back(index);
        for (const Level& level : path_)
            if (level.scene)
                leaves_.lightsBelow_[level.scene->tag].push_back(index);
    }

    Leaves& leaves_;
    std::deque<Level> path_; // levels stay where they are while others come and go
    std::size_t steps_ = 0;
};

Leaves::Leaves(Database& database, miTag root) : database_(database)
{
    const auto* const group = database.findAs<Group>(root);
    if (!group)
        throw Error("the root of the scene graph is not a group");
    try {
        Walk(*this, *group).run();
    } catch (...) {
        remove();
        throw;
    }
}

Leaves::~Leaves() { remove(); }

void Leaves::remove()
{
    for (const auto* const list : {&objects_, &lights_, &cameras_})
        for (const Instance* const leaf : *list)
            database_.remove(leaf->tag);
}

const std::vector<std::uint32_t>& Leaves::lightsBelow(miTag instance) const
{
    static const std::vector<std::uint32_t> none;
    const auto found = lightsBelow_.find(instance);
    return found == lightsBelow_.end() ? none : found->second;
}

Instance* Leaves::camera(miTag sceneInstance) const
{
    for (Instance* const leaf : cameras_)
        if (leaf->record.parent == sceneInstance)
            return leaf;
    return nullptr;
}

} // namespace host
