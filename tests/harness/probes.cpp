// SPDX-License-Identifier: BSD-3-Clause
// Probe shaders: each returns the value it was given and notes its name when it runs. A library like any
// other: the host loads it and knows nothing of it; tests reach the notes through probes_trace.
#include <shader.h>

#include <cstring>
#include <string>

#define PROBES_API extern "C" __attribute__((visibility("default")))

namespace {

/// Names of the probes that have run in this thread, separated by blanks.
thread_local std::string trace;

template <class T>
struct Params {
    T value;
    miTag name; // string
};

/// The value is literal in the block: probes are ends of a network. Not zero-initialised strings: the name is
/// always given.
template <class T>
miBoolean probe(T* result, const Params<T>* params)
{
    if (!trace.empty())
        trace += ' ';
    trace += static_cast<const char*>(mi_db_access(params->name));
    mi_db_unpin(params->name);
    std::memcpy(result, &params->value, sizeof(T));
    return miTRUE;
}

struct Pair {
    miColor color;
    miScalar scalar;
};

} // namespace

/// The notes of this thread; the text is good until the next probe runs in it.
PROBES_API const char* probes_trace() { return trace.c_str(); }

/// Forgets the notes of this thread.
PROBES_API void probes_clear() { trace.clear(); }

// One probe for each declared type, as a declaration's name is the function's.
#define PROBE(type, T)                                                                                       \
    PROBES_API miBoolean probe_##type(T* result, miState*, const Params<T>* params)                          \
    {                                                                                                        \
        return probe(result, params);                                                                        \
    }                                                                                                        \
    PROBES_API int probe_##type##_version() { return 1; }

/// What a shader must not do: reads a string through the pointer that it had while the string was pinned in
/// init. Returns whether the text is still the one that the string has.
struct KeeperParams {
    miTag text; // string
};

PROBES_API void probe_keeper_init(miState* state, const KeeperParams* params, miBoolean* request)
{
    if (!params) {
        *request = miTRUE;
        return;
    }
    void** kept = nullptr;
    mi_query(miQ_FUNC_USERPTR, state, miNULLTAG, &kept);
    *kept = mi_db_access(params->text);
    mi_db_unpin(params->text);
}

PROBES_API miBoolean probe_keeper(miBoolean* result, miState* state, const KeeperParams* params)
{
    void** kept = nullptr;
    mi_query(miQ_FUNC_USERPTR, state, miNULLTAG, &kept);
    const char* const text = static_cast<const char*>(mi_db_access(params->text));
    *result = std::strcmp(static_cast<const char*>(*kept), text) == 0;
    mi_db_unpin(params->text);
    return miTRUE;
}
PROBES_API int probe_keeper_version() { return 1; }

PROBE(boolean, miBoolean)
PROBE(integer, miInteger)
PROBE(scalar, miScalar)
PROBE(vector, miVector)
PROBE(color, miColor)
PROBE(transform, miMatrix)
PROBE(string, miTag)
PROBE(color_texture, miTag)
PROBE(scalar_texture, miTag)
PROBE(vector_texture, miTag)
PROBE(light, miTag)
PROBE(material, miTag)
PROBE(geometry, miTag)
PROBE(shader, miTag)
PROBE(pair, Pair)
