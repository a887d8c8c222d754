// SPDX-License-Identifier: BSD-3-Clause
// What the declaration tool learns of a shader from its export line.
#pragma once

#include "fields.h"

#include <optional>
#include <span>
#include <string_view>

namespace VHL {

/// What an export line says besides the names.
struct About {
    std::string_view text; ///< one line: what the shader computes, and what it does at the edges
    std::string_view
        apply{}; ///< where applications offer it, "lens" for example; by the result when left out
    std::optional<Kind> result{}; ///< of a result of one word, which may be a boolean, an integer or a handle
    std::string_view order{}; ///< in words: what is evaluated in which order, and what only when it is needed
    std::string_view edges{}; ///< NaN, infinities, zero divisors, swapped bounds, empty arrays, what there is
    std::string_view messages{}; ///< what it may write to the log, with the severity; empty: nothing
    std::string_view notes{};    ///< what else users have to know: Markdown, for the reference page alone
};

/// A shader with everything that a scene has to know of it.
struct Description {
    std::string_view name;
    std::string_view unit; ///< the source that exports it
    int line;
    int version;
    Kind result;
    std::span<const Field> members; ///< of a result that is a structure
    std::span<const Field> fields;
    About about;
};

template <class Structure>
inline constexpr auto fieldList = Structure::fields();

/// A result that is a structure lists its members as parameters are listed.
template <class Result>
concept Structure = requires
{
    Result::fields();
};

/// The declared kind of a result: the one that was named, for a word; else what the type stands for.
template <class Result>
consteval Kind resultKind(std::optional<Kind> named)
{
    if constexpr (Structure<Result>)
        return Kind::structure;
    else if constexpr (sizeof(Result) == sizeof(miTag) && !std::is_same_v<Result, miScalar>) {
        if (!named || !isStoredAs<Result>(*named))
            throw "a word may be many things: name the result's kind, and one that is stored in this type";
        return *named;
    } else
        return kindOf<Result>();
}

template <class Result>
consteval std::span<const Field> membersOf()
{
    if constexpr (Structure<Result>) {
        static_assert(tiles<Result>() && documented<Result>(),
                      "fields() has to list and describe every member");
        return fieldList<Result>;
    } else
        return {};
}

template <class Shader>
consteval Description describe(std::string_view name, std::string_view unit, int line, const About& about)
{
    using Result = typename Shader::Result;
    return {name,
            unit,
            line,
            Shader::version(),
            resultKind<Result>(about.result),
            membersOf<Result>(),
            fieldList<typename Shader::Params>,
            about};
}

/// Takes a shader's description; defined by the tool. Called before main, from each export line.
bool declare(const Description& shader);

} // namespace VHL
