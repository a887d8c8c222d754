// SPDX-License-Identifier: BSD-3-Clause
// The library by its entry points, without a host.
#pragma once

#include <shader.h>

#include <dlfcn.h>

#include <stdexcept>
#include <string>
#include <string_view>

/// The loaded library; unloaded with the object.
class Library {
public:
    explicit Library(const char* file = VHL_LIBRARY) : handle_(dlopen(file, RTLD_NOW | RTLD_LOCAL))
    {
        if (!handle_)
            throw std::runtime_error(dlerror());
    }
    ~Library() { dlclose(handle_); }
    Library(const Library&) = delete;
    Library& operator=(const Library&) = delete;

    template <class Function>
    Function* function(const std::string& name) const
    {
        void* const address = dlsym(handle_, name.c_str());
        if (!address)
            throw std::runtime_error(dlerror());
        return reinterpret_cast<Function*>(address);
    }

private:
    void* handle_;
};

/// A shader's four functions.
struct EntryPoints {
    EntryPoints(const Library& library, std::string_view shader)
        : name(shader), execute(library.function<int(void*, miState*, void*)>(name)),
          init(library.function<void(miState*, void*, miBoolean*)>(name + "_init")),
          exit(library.function<void(miState*, void*)>(name + "_exit")),
          version(library.function<int()>(name + "_version"))
    {
    }

    std::string name;
    int (*execute)(void* result, miState* state, void* params);
    void (*init)(miState* state, void* params, miBoolean* request);
    void (*exit)(miState* state, void* params);
    int (*version)();
};

/// What a shader returns when its state and all its parameters are 0: some have nothing to give then, neither
/// values to select from nor a texture to look up, and a light does not light eye rays.
inline int returnedForZeros(std::string_view shader)
{
    return shader.starts_with("vhSelect") || shader == "vhEnvironmentPanoramic_v1" ||
                   shader == "vhParticleLight_v1"
               ? 0
               : 1;
}

/// Bytes that an instance takes from the renderer besides its cell, in one block: the shadow pass copies the
/// options.
inline std::size_t bytesBesidesTheCell(std::string_view shader)
{
    return shader == "vhShadowPass_v1" ? sizeof(miOptions) : 0;
}

/// Room for the parameters and the result of any shader.
struct AnyParams {
    alignas(8) char bytes[2048];
};
