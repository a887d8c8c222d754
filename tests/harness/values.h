// SPDX-License-Identifier: BSD-3-Clause
// Short ways to write parameter values and declarations in tests.
#pragma once

#include "host/shading/declaration.h"
#include "host/shading/value.h"

#include <shader.h>

#include <initializer_list>
#include <string>
#include <vector>

namespace test {

// What scene text would give for a C++ value: booleans as words, integers, floats, a vector, a color, a
// string.
host::Value value(bool on);
host::Value value(int number);
host::Value value(float number);
host::Value value(double number);
host::Value value(const miVector& vector);
host::Value value(const miColor& color);
host::Value value(const char* text);
host::Value value(const std::string& text);
inline host::Value value(host::Value made) { return made; }

host::Value numbers(std::initializer_list<double> reals);
host::Value null();
host::Value connection(const std::string& source);
host::Value structure(std::vector<host::Argument> members);

/// An array of values of any kinds: list(1.0f, connection("tex"), 2.0f).
template <class... T>
host::Value list(const T&... elements)
{
    host::Value made;
    made.form = host::Elements{{value(elements)...}};
    return made;
}

/// The same from a vector.
template <class T>
host::Value list(const std::vector<T>& elements)
{
    host::Elements values;
    for (const T& element : elements)
        values.values.push_back(value(element));
    host::Value made;
    made.form = std::move(values);
    return made;
}

/// "name" value.
template <class T>
host::Argument argument(const std::string& name, const T& given)
{
    return {name, {}, value(given)};
}

// Fields of declarations.
host::Field field(host::Type type, const std::string& name, std::vector<double> defaults = {});
host::Field array(host::Field element);
host::Field structure(const std::string& name, std::vector<host::Field> members);

/// A declaration that is not laid out yet.
host::Declaration declaration(const std::string& name, host::Field result,
                              std::vector<host::Field> parameters, int version = 1);

} // namespace test
