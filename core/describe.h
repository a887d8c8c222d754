// SPDX-License-Identifier: BSD-3-Clause
// What the declaration tool learns of a shader from its export line.
#pragma once

#include "fields.h"

#include <span>
#include <string_view>

namespace VHL {

/// What an export line says besides the names.
struct About {
    std::string_view text; ///< one line: what the shader computes, and what it does at the edges
    std::string_view
        apply{}; ///< where applications offer it, "lens" for example; by the result when left out
};

/// A shader with everything that a scene has to know of it.
struct Description {
    std::string_view name;
    std::string_view unit; ///< the source that exports it
    int line;
    int version;
    Kind result;
    std::span<const Field> fields;
    About about;
};

template <class Params>
inline constexpr auto fieldList = Params::fields();

template <class Shader>
Description describe(std::string_view name, std::string_view unit, int line, const About& about)
{
    return {name,
            unit,
            line,
            Shader::version(),
            kindOf<typename Shader::Result>(),
            fieldList<typename Shader::Params>,
            about};
}

/// Takes a shader's description; defined by the tool. Called before main, from each export line.
bool declare(const Description& shader);

} // namespace VHL
