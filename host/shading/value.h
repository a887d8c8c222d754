// SPDX-License-Identifier: BSD-3-Clause
// Parameter values as the scene text gives them, before they are checked against a declaration.
#pragma once

#include "host/report/error.h"

#include <string>
#include <utility>
#include <variant>
#include <vector>

namespace host {

struct Value;

/// One parameter or member with its value.
struct Argument;

/// A number as it was written: only integers may fill boolean and integer fields, only words (on, off, true,
/// false) or 0 and 1 booleans.
struct Number {
    enum class Kind { integer, real, boolean };
    double value = 0;
    Kind kind = Kind::integer;
};

struct Numbers {
    std::vector<Number> numbers;
};
struct Word {
    std::string text;
};              ///< "text": a string, or the name of an element
struct Null {}; ///< null
struct Connect {
    std::string source;
}; ///< = "name" or = "name.member.member"
struct Interface {
    std::string parameter;
}; ///< = interface "name" or = interface "name.member": the phenomenon's own parameter
struct Elements {
    std::vector<Value> values;
}; ///< [ ... ]
struct Members {
    std::vector<Argument> arguments;
}; ///< { "m" v, ... }

struct Value {
    Location where;
    std::variant<Numbers, Word, Null, Connect, Interface, Elements, Members> form;
};

struct Argument {
    std::string name;
    Location where;
    Value value;
};

} // namespace host
