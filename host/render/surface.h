// SPDX-License-Identifier: BSD-3-Clause
// Materials with their shaders resolved, so that nothing has to be looked up per ray.
#pragma once

#include "host/scene/database.h"
#include "host/shading/call.h"
#include "host/shading/function.h"

#include <map>
#include <memory>
#include <vector>

namespace host {

/// A shader list with its functions at hand.
using FunctionList = std::vector<Function*>;

/// Calls each in order on the same result; the value of the last, or 0 for an empty list.
miBoolean callAll(const FunctionList& list, void* result, miState& state);

/// A material.
struct Surface {
    miTag tag = 0;
    bool opaque = false;
    FunctionList shader;
    FunctionList shadow;
    FunctionList environment;
    FunctionList volume; ///< of the space behind the surface
};

/// The materials of one rendering. Read-only, and safe from any thread, once everything was added.
class Surfaces {
public:
    explicit Surfaces(const Database& database) : database_(database) {}

    /// Adds the material on first use; null for the null tag. Throws Error, with the place of the object or
    /// instance that names it, for a tag that is none.
    const Surface* add(miTag material, const Element& user);

    /// All of them, by tag.
    const std::map<miTag, Surface>& all() const { return surfaces_; }

    /// Appends all shaders of all materials.
    void collect(std::vector<Function*>& functions) const;

private:
    const Database& database_;
    std::map<miTag, Surface> surfaces_;
};

} // namespace host
