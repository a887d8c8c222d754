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

/// A shader list that a phenomenon adds to the camera or the scene that it is used in.
struct ExtraRoot {
    enum class Kind { lens, environment, volume, geometry };

    Kind kind = Kind::lens;
    int priority = 0; ///< lower ones come first
    ShaderList shaders;
};

/// The network that a definition of a phenomenon stands for. The definition itself keeps the parameters;
/// elements of the network are connected to them.
struct Expansion {
    ShaderList roots;          ///< called for the result, or
    miTag element = miNULLTAG; ///< the material or light that is the result
    std::vector<ExtraRoot> extra;
    std::vector<miTag> members; ///< every element that belongs to it
};

/// Longest chain of connections that is accepted: evaluation nests that deep on the stack.
inline constexpr int maximumNetworkDepth = 1024;

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
             const Location& where, const Setting& setting = {});

    /// Changes an instance in place, as `incremental` does: parameters that are not given keep their values
    /// and connections, or start from their defaults when it becomes another shader. Tag and address stay, so
    /// lists and connections follow; a connection to a member needs the same result as before. Errors as
    /// above, and then nothing is changed. Not while anything renders.
    void redefine(const Declaration& declaration, const std::vector<Argument>& arguments,
                  const Location& place, const Setting& setting = {});

    void* data() override { return record(); }

    const Declaration& declaration() const { return *declaration_; }
    miFunction* record() { return reinterpret_cast<miFunction*>(memory_.get()); }
    const miFunction* record() const { return reinterpret_cast<const miFunction*>(memory_.get()); }
    void* parameters() { return record()->parameters; }
    const std::vector<Connection>& connections() const { return connections_; }

    /// Points the connections at the functions or values behind their tags, which may have been redefined or
    /// deleted since they were made; throws Error for one that is gone or whose result has changed.
    void findSources();

    /// What is called on the same state before or while this runs: what its connections lead to, or the roots
    /// of a phenomenon's definition. After findSources.
    const std::vector<Function*>& sources() const { return sources_; }

    /// The definition whose network this belongs to; null outside of phenomena.
    Function* phenomenon() const { return database_.findAs<Function>(phenomenon_); }

    /// The functions that the block names by tag: of `shader` parameters and of procedural textures. They may
    /// be called like those that are connected.
    std::vector<Function*> callable() const;

    /// Tags of the shaders and textures that the block names.
    const std::vector<miTag>& references() const { return references_; }

    /// The function whose record this is.
    static Function& of(const miFunction* record) { return *static_cast<Function*>(record->sparep1[0].p); }

    /// "shader "name" (type)" or "phenomenon type at file:line:column": how messages call it.
    std::string title() const;

    /// Of a definition of a phenomenon, which is no shader itself; null for a shader.
    std::unique_ptr<Expansion> expansion;

    // Filled when a network is prepared for rendering (network.h).
    Shader* shader = nullptr;
    std::size_t number = 0;       ///< its place in Network::functions
    std::size_t resultOffset = 0; ///< of its remembered result, see ResultCache
    Once initialised;             ///< ready to be called: its init has run, or it needs none
    void* userSlot = nullptr;     ///< the pointer that the instance's shader owns
    Lock lock;                    ///< of the instance, for its shader

    /// Mistakes of the shader that are reported once: bits of Fault.
    std::atomic<unsigned> reported{0};

private:
    void adopt(const Declaration& declaration, Block block, const Setting& setting);
    const Connection* connectionAt(std::size_t fieldOffset) const;
    void follow(Connection& connection) const;

    const Declaration* declaration_ = nullptr;
    Database& database_;
    std::unique_ptr<std::byte[]> memory_;
    std::vector<Connection> connections_;
    std::vector<miTag> references_;
    std::vector<Function*> sources_;
    miTag phenomenon_ = miNULLTAG;
};

/// What the shaders of a list are called for: a colour, the value of a texture, or a tag.
enum class Gives { color, texture, geometry };

/// The functions of a list, with the roots of phenomena in their place. Throws Error, which names the list's
/// user, for one that was deleted or gives something else, and for phenomena that lead into themselves.
std::vector<Function*> functionsOf(const Database& database, const ShaderList& list, const Element& user,
                                   Gives wanted = Gives::color);

/// What shaders do wrong, survive, and are told once per instance.
enum class Fault : unsigned { unbalancedPins = 1, badAccess = 2, badUnpin = 4 };

/// True the first time that it is called for the function and the fault. Safe from any thread.
bool firstTime(Function& function, Fault fault);

} // namespace host
