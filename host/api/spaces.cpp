// SPDX-License-Identifier: BSD-3-Clause
// Points, vectors and normals between internal space, which is world space, and those of leaf instances.
#include "host/api/further.h"
#include "host/render/trace.h"
#include "host/render/vector.h"
#include "host/scene/matrix.h"
#include "host/session.h"

namespace {

/// The space of a leaf instance; without one it is internal space.
class Space {
public:
    Space() = default;

    /// `time`: of the shutter, from 0 to 1.
    Space(miTag leaf, float time)
    {
        const host::Session* const session = host::Session::current();
        const auto* const instance = session ? session->database.findAs<host::Instance>(leaf) : nullptr;
        if (!instance)
            return;
        toLocal_ = instance->record.tf.global_to_local;
        toInternal_ = instance->record.tf.local_to_global;
        if (!instance->hasMotion || time == 0.0f)
            return;
        for (int i = 0; i < 16; ++i)
            moved_[i] = toInternal_[i] + instance->drift[i] * time;
        if (!host::invert(moved_, movedInverse_)) // half a turn flattens it for a moment
            return;
        toLocal_ = movedInverse_;
        toInternal_ = moved_;
    }
    Space(const Space&) = delete;
    Space& operator=(const Space&) = delete;

    miVector pointTo(miVector p) const { return toLocal_ ? host::transformPoint(p, toLocal_) : p; }
    miVector pointFrom(miVector p) const { return toLocal_ ? host::transformPoint(p, toInternal_) : p; }
    miVector vectorTo(miVector v) const { return toLocal_ ? host::transformVector(v, toLocal_) : v; }
    miVector vectorFrom(miVector v) const { return toLocal_ ? host::transformVector(v, toInternal_) : v; }
    miVector normalTo(miVector n) const
    {
        return host::normalised(toLocal_ ? host::transformNormal(n, toInternal_) : n);
    }
    miVector normalFrom(miVector n) const
    {
        return host::normalised(toLocal_ ? host::transformNormal(n, toLocal_) : n);
    }

private:
    const miScalar* toLocal_ = nullptr;
    const miScalar* toInternal_ = nullptr;
    miMatrix moved_, movedInverse_;
};

Space world(const miState*) { return {}; }
/// The picture's, which is that of the shutter's opening.
Space camera(const miState* state) { return {state->camera_inst, 0.0f}; }
Space object(const miState* state) { return {state->instance, host::shutterFraction(*state)}; }
Space light(const miState* state) { return {state->light_instance, host::shutterFraction(*state)}; }

} // namespace

// No more than the symbol.
#define CONVERSION(name, space, change)                                                                      \
    void name(const miState* state, miVector* result, const miVector* v)                                     \
    {                                                                                                        \
        *result = space(state).change(*v);                                                                   \
    }

CONVERSION(mi_point_to_world, world, pointTo)
CONVERSION(mi_point_from_world, world, pointFrom)
CONVERSION(mi_vector_to_world, world, vectorTo)
CONVERSION(mi_vector_from_world, world, vectorFrom)
CONVERSION(mi_normal_to_world, world, normalTo)
CONVERSION(mi_normal_from_world, world, normalFrom)
CONVERSION(mi_point_to_camera, camera, pointTo)
CONVERSION(mi_point_from_camera, camera, pointFrom)
CONVERSION(mi_vector_to_camera, camera, vectorTo)
CONVERSION(mi_vector_from_camera, camera, vectorFrom)
CONVERSION(mi_normal_to_camera, camera, normalTo)
CONVERSION(mi_normal_from_camera, camera, normalFrom)
CONVERSION(mi_point_to_object, object, pointTo)
CONVERSION(mi_point_from_object, object, pointFrom)
CONVERSION(mi_vector_to_object, object, vectorTo)
CONVERSION(mi_vector_from_object, object, vectorFrom)
CONVERSION(mi_normal_to_object, object, normalTo)
CONVERSION(mi_normal_from_object, object, normalFrom)
CONVERSION(mi_point_to_light, light, pointTo)
CONVERSION(mi_point_from_light, light, pointFrom)
CONVERSION(mi_vector_to_light, light, vectorTo)
CONVERSION(mi_vector_from_light, light, vectorFrom)
CONVERSION(mi_normal_to_light, light, normalTo)
CONVERSION(mi_normal_from_light, light, normalFrom)
