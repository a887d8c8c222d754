// SPDX-License-Identifier: BSD-3-Clause
// mi_query: one piece of information by its code.
#include "host/session.h"
#include "host/shading/call.h"

#include <shader.h>

namespace {

using namespace host;

template <class T>
miBoolean answer(void* result, T value)
{
    *static_cast<T*>(result) = value;
    return miTRUE;
}

template <class T>
T* element(miTag tag)
{
    Session* const session = Session::current();
    return session ? session->database.findAs<T>(tag) : nullptr;
}

// The function that a code of the running function asks for: the one behind the tag, or the running one.
Function* functionOf(const miState* state, miTag tag)
{
    if (tag != miNULLTAG)
        return element<Function>(tag);
    return state && state->shader ? &Function::of(state->shader) : nullptr;
}

miBoolean queryInstance(miQ_type query, miTag tag, void* result)
{
    Instance* const instance = element<Instance>(tag);
    if (!instance)
        return miFALSE;
    miInstance& record = instance->record;
    switch (query) {
    case miQ_INST_FUNCTION:
        return answer<miTag>(result, record.tf.function);
    case miQ_INST_GLOBAL_TO_LOCAL:
        return answer<miScalar*>(result, record.tf.global_to_local);
    case miQ_INST_LOCAL_TO_GLOBAL:
        return answer<miScalar*>(result, record.tf.local_to_global);
    case miQ_INST_IDENTITY:
        return answer<miBoolean>(result, record.tf.identity);
    case miQ_INST_ITEM:
        return answer<miTag>(result, record.item);
    case miQ_INST_PARENT:
        return answer<miTag>(result, record.parent);
    default:
        return miFALSE;
    }
}

// Light codes take the light or an instance of it.
miBoolean queryLight(miQ_type query, miTag tag, void* result)
{
    if (const Instance* const instance = element<Instance>(tag))
        tag = instance->record.item;
    const Light* const light = element<Light>(tag);
    if (!light)
        return miFALSE;
    switch (query) {
    case miQ_LIGHT_AREA:
        return answer<int>(result, light->record.area);
    case miQ_LIGHT_AREA_SAMPLES_U:
        return answer<int>(result, light->record.samples_u);
    case miQ_LIGHT_AREA_SAMPLES_V:
        return answer<int>(result, light->record.samples_v);
    default:
        return miFALSE;
    }
}

// Internal space is world space, so three spaces are left: world, and those of camera and object, which the
// state's leaf instances know.
miBoolean queryTransform(miQ_type query, const miState* state, void* result)
{
    static miMatrix identity = {1, 0, 0, 0, 0, 1, 0, 0, 0, 0, 1, 0, 0, 0, 0, 1};
    const auto matrix = [result](miTag leaf, miScalar* (*pick)(miTransform&)) {
        Instance* const instance = element<Instance>(leaf);
        return instance ? answer<miScalar*>(result, pick(instance->record.tf)) : miFALSE;
    };
    const auto toLocal = [](miTransform& tf) -> miScalar* { return tf.global_to_local; };
    const auto toGlobal = [](miTransform& tf) -> miScalar* { return tf.local_to_global; };
    if (!state)
        return miFALSE;
    switch (query) {
    case miQ_TRANS_INTERNAL_TO_WORLD:
    case miQ_TRANS_WORLD_TO_INTERNAL:
        return answer<miScalar*>(result, identity);
    case miQ_TRANS_INTERNAL_TO_CAMERA:
    case miQ_TRANS_WORLD_TO_CAMERA:
        return matrix(state->camera_inst, toLocal);
    case miQ_TRANS_CAMERA_TO_INTERNAL:
    case miQ_TRANS_CAMERA_TO_WORLD:
        return matrix(state->camera_inst, toGlobal);
    case miQ_TRANS_INTERNAL_TO_OBJECT:
    case miQ_TRANS_WORLD_TO_OBJECT:
        return matrix(state->instance, toLocal);
    case miQ_TRANS_OBJECT_TO_INTERNAL:
    case miQ_TRANS_OBJECT_TO_WORLD:
        return matrix(state->instance, toGlobal);
    default:
        return miFALSE;
    }
}

} // namespace

miBoolean mi_query(const miQ_type query, miState* const state, miTag tag, void* const result, ...)
{
    // Shaders with data of their own ask for it in every call.
    if (query == miQ_FUNC_USERPTR && tag == miNULLTAG && state && state->shader)
        return answer<void**>(result, &Function::of(state->shader).userSlot);

    switch (query) {
    case miQ_FUNC_USERPTR:
        if (Function* const function = functionOf(state, tag))
            return answer<void**>(result, &function->userSlot);
        return miFALSE;
    case miQ_FUNC_LOCK:
        if (Function* const function = functionOf(state, tag))
            return answer<miLock*>(result, function->lock.handle());
        return miFALSE;
    case miQ_DECL_LOCK:
        if (const Function* const function = functionOf(state, tag); function && function->shader)
            return answer<miLock*>(result, function->shader->lock.handle());
        return miFALSE;
    case miQ_DECL_VERSION:
        if (const Function* const function = functionOf(state, tag))
            return answer<int>(result, function->declaration().version.value_or(0));
        return miFALSE;
    case miQ_INST_FUNCTION:
    case miQ_INST_GLOBAL_TO_LOCAL:
    case miQ_INST_LOCAL_TO_GLOBAL:
    case miQ_INST_IDENTITY:
    case miQ_INST_ITEM:
    case miQ_INST_PARENT:
        return queryInstance(query, tag, result);
    case miQ_LIGHT_AREA:
    case miQ_LIGHT_AREA_SAMPLES_U:
    case miQ_LIGHT_AREA_SAMPLES_V:
        return queryLight(query, tag, result);
    case miQ_TRANS_INTERNAL_TO_WORLD:
    case miQ_TRANS_INTERNAL_TO_CAMERA:
    case miQ_TRANS_INTERNAL_TO_OBJECT:
    case miQ_TRANS_WORLD_TO_INTERNAL:
    case miQ_TRANS_CAMERA_TO_INTERNAL:
    case miQ_TRANS_OBJECT_TO_INTERNAL:
    case miQ_TRANS_WORLD_TO_CAMERA:
    case miQ_TRANS_WORLD_TO_OBJECT:
    case miQ_TRANS_CAMERA_TO_WORLD:
    case miQ_TRANS_OBJECT_TO_WORLD:
        return queryTransform(query, state, result);
    default:
        return miFALSE; // unknown here, which shaders must expect of any code
    }
}
