// SPDX-License-Identifier: BSD-3-Clause
// The shaders that the sources export.
#pragma once

#include "core/describe.h"

#include <span>
#include <string>
#include <vector>

namespace declare {

/// A parameter in words.
struct Parameter {
    std::string name, type, standard, range, about;
};

/// What readers are told of everything that a scene may name as a shader.
struct Subject {
    std::string name, text, result;
    std::string apply{}; ///< where applications offer it
    int version = 0;
    std::vector<Parameter> parameters{};
};
Subject subjectOf(const VHL::Description& shader);

/// All of them, by unit and by their place in it.
std::vector<VHL::Description> shaders();

/// What is wrong with the descriptions, one line each: a text that is missing, of more than one line where
/// one is meant or not plain ASCII, a name given twice.
std::vector<std::string> faults(std::span<const VHL::Description> shaders);

/// How scene text calls a type: "scalar", "color texture".
std::string_view typeName(VHL::Kind kind);

/// A parameter's default as scene text, with at most so many numbers; empty for a type without defaults.
std::string defaultText(const VHL::Field& field, int most = 16);

/// A parameter's type: "array of string".
std::string typeText(const VHL::Field& field);

/// Where applications offer a shader.
std::string_view applyText(const VHL::Description& shader);

/// A number as scene text: the shortest that is read back as the same float.
std::string number(float value);

} // namespace declare
