// SPDX-License-Identifier: BSD-3-Clause
#include "host/language/declarations.h"

namespace host::language {

Declaration declared(Field result, const Name& name, std::vector<Field> parameters)
{
    Declaration declaration;
    declaration.name = name.text;
    declaration.result = std::move(result);
    declaration.parameters = std::move(parameters);
    declaration.where = name.where;
    return declaration;
}

} // namespace host::language
