// SPDX-License-Identifier: BSD-3-Clause
#include "host/language/declarations.h"

namespace host::language {

void DeclarationBuilder::begin(Field result, const Name& name, std::vector<Field> parameters)
{
    declaration_ = {};
    declaration_.name = name.text;
    declaration_.result = std::move(result);
    declaration_.parameters = std::move(parameters);
    declaration_.where = name.where;
}

} // namespace host::language
