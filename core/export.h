// SPDX-License-Identifier: BSD-3-Clause
// The four functions that the renderer finds for each shader, and the line that makes a shader class one.
#pragma once

#include "api.h"
#include "describe.h"
#include "fields.h"
#include "frame.h"

#include <shader.h>

namespace VHL {

/// What every shader's four functions do. `unit` and `line` label the cell in the renderer's memory
/// accounting.
///
/// Chain of ownership: the renderer keeps a user slot for each instance; the slot holds a cell from the
/// renderer's allocator; the cell holds the shader object, made with new. Nothing is checked: a renderer that
/// calls `execute` has called the instance's `init` before.
template <class Shader>
class Entry {
public:
    using Result = typename Shader::Result;
    using Params = typename Shader::Params;

    static_assert(tiles<Params>(), "fields() has to list every member of the parameter structure");
    static_assert(documented<Params>(), "every parameter needs a description");

    static void init(miState* state, Params* params, miBoolean* request, const char* unit, int line)
    {
        if (params == nullptr) {
            *request = miTRUE; // asks for a call for each instance
            Shader* const whole = new Shader;
            whole->initStatic();
            delete whole;
            return;
        }
        void** const slot = userSlot(state);
        Cell* const cell = static_cast<Cell*>(mi_mem_int_allocate(unit, line, sizeof(Cell)));
        *slot = cell;
        cell->shader = new Shader;
        try {
            cell->shader->init(state, params);
        } catch (...) { // what leaves init is the renderer's to tell; it will not call exit for this instance
            end(cell, unit, line);
            throw;
        }
    }

    static int execute(Result* result, miState* state, Params* params)
    {
        return static_cast<Cell*>(*userSlot(state))->shader->execute(result, state, params);
    }

    static void exit(miState* state, Params* params, const char* unit, int line)
    {
        if (params == nullptr) {
            Shader* const whole = new Shader;
            whole->exitStatic();
            delete whole;
            return;
        }
        Cell* const cell = static_cast<Cell*>(*userSlot(state));
        cell->shader->exit(state, params);
        end(cell, unit, line);
    }

private:
    struct Cell {
        Shader* shader;
    };
    static_assert(sizeof(Cell) == 8);

    static void end(Cell* cell, const char* unit, int line)
    {
        delete cell->shader;
        mi_mem_int_release(unit, line, cell);
    }

    static void** userSlot(miState* state)
    {
        void** slot = nullptr;
        mi_query(miQ_FUNC_USERPTR, state, miTag(0), &slot);
        return slot;
    }
};

} // namespace VHL

/// VHL_EXPORT_SHADER(name, Class, "Description.", options...) makes Class the shader that scenes know as
/// `name`. The options, `.apply = "lens"` for example, are members of VHL::About. VHL_UNIT is the source's
/// bare name, given by the build.
///
/// The sources are compiled twice: into the library, where the line becomes four functions, and with
/// VHL_DECLARE into the tool that writes declarations and reference, where it becomes an entry in the tool's
/// list.
#ifdef VHL_DECLARE
#define VHL_EXPORT_SHADER(name, Class, description, ...)                                                     \
    static const bool name##_declared = VHL::declare(                                                        \
        VHL::describe<Class>(#name, VHL_UNIT, __LINE__, {.text = description __VA_OPT__(, ) __VA_ARGS__}));
#else
// Some classes bear their shader's name, which hides the class once the function is declared; hence the
// alias.
#define VHL_EXPORT_SHADER(name, Class, description, ...)                                                     \
    using name##_class = Class;                                                                              \
    using name##_entry = VHL::Entry<Class>;                                                                  \
    extern "C" {                                                                                             \
    VHL_API int name##_version(void) { return name##_class::version(); }                                     \
    VHL_API void name##_init(miState* state, name##_entry::Params* params, miBoolean* request)               \
    {                                                                                                        \
        name##_entry::init(state, params, request, VHL_UNIT, __LINE__);                                      \
    }                                                                                                        \
    VHL_API int name(name##_entry::Result* result, miState* state, name##_entry::Params* params)             \
    {                                                                                                        \
        return name##_entry::execute(result, state, params);                                                 \
    }                                                                                                        \
    VHL_API void name##_exit(miState* state, name##_entry::Params* params)                                   \
    {                                                                                                        \
        name##_entry::exit(state, params, VHL_UNIT, __LINE__);                                               \
    }                                                                                                        \
    }
#endif
