// SPDX-License-Identifier: BSD-3-Clause
// Building parameter blocks: from values as the scene gives them to the bytes that a shader reads.
#pragma once

#include "host/scene/database.h"
#include "host/shading/declaration.h"
#include "host/shading/value.h"

#include <cstddef>
#include <string>
#include <vector>

namespace host {

class Function;

/// One connected parameter: the ghost tag k stands for connection k - 1 of the function.
struct Connection {
    miTag sourceTag = 0;
    std::size_t memberOffset = 0; ///< bytes into the source's result
    std::size_t fieldOffset = 0;  ///< bytes into the function's own block
    std::string field;            ///< "input1", "values[2]", "layer.color": for messages and graphs
    const Declaration* sourceDeclaration = nullptr; ///< of the source when it was connected
    Function* source = nullptr;                     ///< found from the tag whenever a network is prepared
};

/// A parameter block while it is put together.
struct Block {
    std::vector<std::byte> bytes; ///< the fixed part, then array payloads
    std::vector<Connection> connections;
    std::vector<miTag> references; ///< shaders and textures that it names, which may be called by tag
};

/// Checks arguments against a declaration, resolves names and fills a block. What is not given is copied from
/// `previous`, an instance of the same declaration, or, without one, takes its default. Throws Error with the
/// argument's place, see Function.
Block buildBlock(const Declaration& declaration, const std::vector<Argument>& arguments, Database& database,
                 const Function* previous);

} // namespace host
