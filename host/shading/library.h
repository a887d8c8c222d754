// SPDX-License-Identifier: BSD-3-Clause
// Shader libraries: linked shared objects, and the shaders found in them by name.
#pragma once

#include "host/shading/declaration.h"
#include "host/shading/lock.h"
#include "host/shading/once.h"

#include <shader.h>

#include <map>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

namespace host {

/// One shader of a library: its four entry points, and whether its own init has run.
struct Shader {
    // A C function may be called with more arguments than it looks at: `argument` is for those few shaders
    // that are called by other shaders with one.
    using Execute = miBoolean (*)(void* result, miState* state, void* parameters, void* argument);
    using Init = void (*)(miState* state, void* parameters, miBoolean* instanceInitRequest);
    using Exit = void (*)(miState* state, void* parameters);
    using Version = int (*)();

    const Declaration* declaration = nullptr;
    Execute execute = nullptr;
    Init init = nullptr;       ///< may be missing
    Exit exit = nullptr;       ///< may be missing
    Version version = nullptr; ///< may be missing

    Once initialised;               ///< `init` for the shader as a whole
    bool wantsInstanceInit = false; ///< what `init` asked for; valid once `initialised` is done
    Lock lock;                      ///< for all its instances
    bool versionTold = false;       ///< that it is another, or missing
};

/// Linked libraries and the shaders resolved in them. Linking and resolving happen while nothing renders.
class Libraries {
public:
    Libraries() = default;
    ~Libraries(); ///< closes the libraries, last linked first
    Libraries(const Libraries&) = delete;
    Libraries& operator=(const Libraries&) = delete;

    /// Loads a shared object, searched as given, beside the file that `where` names and along `searchPath`,
    /// and in the end where the loader looks by itself; a file linked before is left alone. Throws Error with
    /// the loader's own reason: not found, not a shared object, an undefined symbol.
    void link(const std::string& file, const std::vector<std::string>& searchPath, const Location& where);

    /// The shader of a declaration, looked up by its exported name on first use in the libraries in the order
    /// of linking. Throws Error, with the place of the use, when none of them exports it. The address never
    /// changes.
    Shader& resolve(const Declaration& declaration, const Location& use = {});

    /// Compares the shader's `_version` with its declaration: throws Error for another number, or prints it
    /// as an error message when mismatches are ignored; a missing `_version` is a warning. Each message comes
    /// once, however many pictures are rendered.
    void checkVersion(Shader& shader) const;

    /// A mismatch of versions then is an error message, and rendering goes on.
    void ignoreVersions(bool ignore) { ignoreVersions_ = ignore; }

    /// The address of an exported symbol, or null when no linked library has it.
    void* symbol(const std::string& name) const;

private:
    std::vector<void*> handles_; // in the order of linking
    std::map<std::string, std::unique_ptr<Shader>, std::less<>> shaders_;
    bool ignoreVersions_ = false;
};

} // namespace host
