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
    std::size_t memberOffset = 0; ///< bytes into the source's result; of an interface, into its block
    std::size_t fieldOffset = 0;  ///< bytes into the function's own block
    std::string field;            ///< "input1", "values[2]", "layer.color": for messages and graphs
    const Declaration* sourceDeclaration = nullptr; ///< of the source when it was connected
    bool interface = false; ///< to a parameter of the source, which is a phenomenon's definition

    // Found from the above whenever a network is prepared: a source, or else a value.
    Function* source = nullptr;
    std::size_t resultOffset = 0; ///< bytes into the result of `source`
    void* value = nullptr;        ///< in the block of a phenomenon's definition
};

/// Where a block is built: how its names are found, and whose parameters `interface` stands for.
struct Setting {
    Scope names;
    const Function* phenomenon = nullptr; ///< the definition that is being expanded; null outside of all
};

/// A parameter block while it is put together.
struct Block {
    std::vector<std::byte> bytes; ///< the fixed part, then array payloads
    std::vector<Connection> connections;
    std::vector<miTag> references; ///< shaders and textures that it names, which may be called by tag
};

/// Checks arguments against a declaration, resolves names and fills a block. What is not given is copied from
/// `previous`, an instance of the same declaration, or, without one, takes its default. Throws Error with the
/// argument's place, see Function; a parameter given twice is a warning.
Block buildBlock(const Declaration& declaration, const std::vector<Argument>& arguments, Database& database,
                 const Setting& setting, const Function* previous);

} // namespace host
