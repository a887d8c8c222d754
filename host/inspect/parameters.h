// SPDX-License-Identifier: BSD-3-Clause
// Parameters and results of shaders as text, spelled as a scene would.
#pragma once

#include "host/shading/function.h"

#include <string>
#include <vector>

namespace host {

/// The shortest decimal number that reads back as the same float; "nan", "inf" and "-inf" as they are.
std::string numberText(float value);

/// What a tag stands for: a name or text in quotation marks, the scene instance of a leaf, "null", or kind
/// and place of an element without name.
std::string elementText(const Database& database, miTag tag);

/// A value of the field's type: "on", "0.5 0.5 0.5 1", "\"name\"", "{ ... }". Elements without a name are
/// called by kind and place.
std::string valueText(const Database& database, const Field& field, const void* value);

/// What a connection hangs on: "\"name\"", "\"name.member\"", or the type and place of a shader without name. Of
/// one that has a source.
std::string sourceText(const Connection& connection);

/// The value that a connection has delivered, as the source made it.
std::string deliveredText(const Database& database, const Connection& connection, const void* value);

/// One line of a shader instance: a parameter, or a connected element or member of one.
struct Parameter {
    std::string name; ///< "input1", "values[2]", "layer.color"
    std::string text; ///< the literal value; what is connected within it stands as "= ..."
    const Connection* connection = nullptr; ///< connected to a shader: then there is no text
};

/// All parameters of an instance in declared order, each followed by what is connected within it. Of a long
/// array only the first elements stand in the text.
std::vector<Parameter> parametersOf(const Database& database, const Function& function);

} // namespace host
