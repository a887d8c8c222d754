// SPDX-License-Identifier: BSD-3-Clause
#include "tests/harness/values.h"

namespace test {

namespace {

host::Value one(double number, host::Number::Kind kind) { return {{}, host::Numbers{{{number, kind}}}}; }

} // namespace

host::Value value(bool on) { return one(on, host::Number::Kind::boolean); }
host::Value value(int number) { return one(number, host::Number::Kind::integer); }
host::Value value(float number) { return one(number, host::Number::Kind::real); }
host::Value value(double number) { return one(number, host::Number::Kind::real); }
host::Value value(const miVector& v) { return numbers({v.x, v.y, v.z}); }
host::Value value(const miColor& c) { return numbers({c.r, c.g, c.b, c.a}); }
host::Value value(const char* text) { return {{}, host::Word{text}}; }
host::Value value(const std::string& text) { return {{}, host::Word{text}}; }

host::Value numbers(std::initializer_list<double> reals)
{
    host::Numbers made;
    for (const double number : reals)
        made.numbers.push_back({number, host::Number::Kind::real});
    return {{}, made};
}

host::Value null() { return {{}, host::Null{}}; }
host::Value connection(const std::string& source) { return {{}, host::Connect{source}}; }
host::Value structure(std::vector<host::Argument> members) { return {{}, host::Members{std::move(members)}}; }

host::Field field(host::Type type, const std::string& name, std::vector<double> defaults)
{
    host::Field made;
    made.type = type;
    made.name = name;
    made.defaults = std::move(defaults);
    return made;
}

host::Field array(host::Field element)
{
    element.isArray = true;
    return element;
}

host::Field structure(const std::string& name, std::vector<host::Field> members)
{
    host::Field made = field(host::Type::structure, name);
    made.members = std::move(members);
    return made;
}

host::Declaration declaration(const std::string& name, host::Field result,
                              std::vector<host::Field> parameters, int version)
{
    host::Declaration made;
    made.name = name;
    made.result = std::move(result);
    made.parameters = std::move(parameters);
    made.version = version;
    return made;
}

} // namespace test
