// SPDX-License-Identifier: BSD-3-Clause
// `declare shader ... end declare`.
#pragma once

#include "host/language/context.h"

#include <vector>

namespace host::language {

/// What every `declare` begins with.
Declaration declared(Field result, const Name& name, std::vector<Field> parameters);

class DeclarationBuilder {
public:
    explicit DeclarationBuilder(Context& context) : context_(context) {}

    void begin(Field result, const Name& name, std::vector<Field> parameters)
    {
        declaration_ = declared(std::move(result), name, std::move(parameters));
    }
    void version(int number) { declaration_.version = number; }
    void apply(std::string kind) { declaration_.apply.push_back(std::move(kind)); }
    Declaration take() { return std::move(declaration_); }
    void end() { context_.session.declarations.add(std::move(declaration_)); }

private:
    Context& context_;
    Declaration declaration_;
};

} // namespace host::language
