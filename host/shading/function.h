// SPDX-License-Identifier: BSD-3-Clause
// Shader instances: a declared shader with its parameter block and what is connected to it.
#pragma once

#include "host/shading/block.h"
#include "host/shading/library.h"

#include <atomic>
#include <cstddef>
#include <memory>
#include <string>
#include <vector>

namespace host {

/// A shader instance. The record with the parameter block behind it is one piece of memory that never moves,
/// as shaders keep pointers into it from init to exit: block, array payloads, then the ghost area.
class Function : public Element {
public:
    /// Checks the arguments against the declaration, resolves names in the database and builds the block.
    /// Throws Error, with the argument's place, for an unknown parameter, a value of the wrong form or with
    /// too many numbers, an unknown name, an element or a connection of the wrong type, and a block beyond
    /// maximumBlockSize. A parameter given twice keeps the later value; one left out takes its default, or
    /// zeros. Text elements are added for strings.
    Function(const Declaration& declaration, const std::vector<Argument>& arguments, Database& database,
             const Location& where);

    /// Changes an instance in place, as `incremental` does: parameters that are not given keep their values
    /// and connections, or start from their defaults when it becomes another shader. Tag and address stay, so
    /// lists and connections follow; a connection to a member needs the same result as before. Errors as
    /// above, and then nothing is changed. Not while anything renders.
    void redefine(const Declaration& declaration, const std::vector<Argument>& arguments,
                  const Location& place);

    void* data() override { return record(); }

    const Declaration& declaration() const { return *declaration_; }
    miFunction* record() { return reinterpret_cast<miFunction*>(memory_.get()); }
    const miFunction* record() const { return reinterpret_cast<const miFunction*>(memory_.get()); }
    void* parameters() { return record()->parameters; }
    const std::vector<Connection>& connections() const { return connections_; }

    /// Points the connections at the functions behind their tags, which may have been redefined or deleted
    /// since they were made; throws Error for one that is gone or whose result has changed.
    void findSources();

    /// The functions that the block names by tag: of `shader` parameters and of procedural textures. They may
    /// be called like those that are connected.
    std::vector<Function*> callable() const;

    /// Tags of the shaders and textures that the block names.
    const std::vector<miTag>& references() const { return references_; }

    /// The function whose record this is.
    static Function& of(const miFunction* record) { return *static_cast<Function*>(record->sparep1[0].p); }

    /// "shader "name" (type)" or "shader type at file:line:column": how messages call it.
    std::string title() const;

    // Filled when a network is prepared for rendering (network.h).
    Shader* shader = nullptr;
    std::size_t number = 0;       ///< its place in Network::functions
    std::size_t resultOffset = 0; ///< of its remembered result, see ResultCache
    Once initialised;             ///< ready to be called: its init has run, or it needs none
    void* userSlot = nullptr;     ///< the pointer that the instance's shader owns

    /// Mistakes of the shader that are reported once: bits of Fault.
    std::atomic<unsigned> reported{0};

private:
    void adopt(const Declaration& declaration, Block block);

    const Declaration* declaration_ = nullptr;
    Database& database_;
    std::unique_ptr<std::byte[]> memory_;
    std::vector<Connection> connections_;
    std::vector<miTag> references_;
};

/// What shaders do wrong, survive, and are told once per instance.
enum class Fault : unsigned { unbalancedPins = 1, badAccess = 2, badUnpin = 4 };

/// True the first time that it is called for the function and the fault. Safe from any thread.
bool firstTime(Function& function, Fault fault);

} // namespace host
