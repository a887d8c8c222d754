// SPDX-License-Identifier: BSD-3-Clause
#include "host/shading/function.h"

#include <algorithm>
#include <cstring>

namespace host {

namespace {

constexpr std::size_t roundUp8(std::size_t size) { return (size + 7) / 8 * 8; }

} // namespace

Function::Function(const Declaration& declaration, const std::vector<Argument>& arguments, Database& database,
                   const Location& place, const Setting& setting)
    : Element(miSCENE_FUNCTION), database_(database)
{
    where = place;
    adopt(declaration, buildBlock(declaration, arguments, database, setting, nullptr), setting);
    record()->no_expl_params = arguments.empty();
}

void Function::redefine(const Declaration& declaration, const std::vector<Argument>& arguments,
                        const Location& place, const Setting& setting)
{
    const Function* const previous = &declaration == declaration_ ? this : nullptr;
    adopt(declaration, buildBlock(declaration, arguments, database_, setting, previous), setting);
    where = place;
}

void Function::adopt(const Declaration& declaration, Block block, const Setting& setting)
{
    const std::size_t space = roundUp8(std::max<std::size_t>(block.bytes.size(), 1));
    const bool ghosts = !block.connections.empty();
    const std::size_t head = offsetof(miFunction, parameters);
    // Value-initialised: everything is zero at first.
    auto memory = std::make_unique<std::byte[]>(head + space * (ghosts ? 2 : 1));
    std::copy(block.bytes.begin(), block.bytes.end(), memory.get() + head);
    for (std::size_t k = 0; k < block.connections.size(); ++k) {
        const miTag ghost = static_cast<miTag>(k + 1);
        std::memcpy(memory.get() + head + space + block.connections[k].fieldOffset, &ghost, sizeof ghost);
    }

    const miTag next = memory_ ? record()->next_function : miNULLTAG;
    memory_ = std::move(memory);
    connections_ = std::move(block.connections);
    references_ = std::move(block.references);
    declaration_ = &declaration;
    if (setting.phenomenon)
        phenomenon_ = setting.phenomenon->tag;

    miFunction& r = *record();
    r.sparep1[0].p = this;
    r.type = declaration.body ? miFUNCTION_PHEN : miFUNCTION_C;
    r.next_function = next;
    r.parameter_size = static_cast<int>(block.bytes.size());
    r.result_size = static_cast<int>(declaration.result.size);
    r.ghost_offs = ghosts ? static_cast<int>(space) : 0;
    r.ghost_flag = ghosts;
}

const Connection* Function::connectionAt(std::size_t fieldOffset) const
{
    const miFunction& r = *record();
    if (!r.ghost_flag)
        return nullptr;
    miTag ghost;
    std::memcpy(&ghost, reinterpret_cast<const char*>(r.parameters) + r.ghost_offs + fieldOffset,
                sizeof ghost);
    return ghost == miNULLTAG ? nullptr : &connections_[ghost - 1];
}

// Through the parameters of any number of phenomena, from the inside out, to a value or a shader; through the
// definitions of phenomena, from the outside in, to the shader that is their only root.
void Function::follow(Connection& connection) const
{
    const auto fail = [&](const std::string& text) {
        throw Error(where, title() + ": what \"" + connection.field + "\" is connected to " + text);
    };
    const Connection* last = &connection;
    Function* source = nullptr;
    while (true) {
        source = database_.findAs<Function>(last->sourceTag);
        if (!source)
            fail("has been deleted");
        if (!last->interface)
            break;
        if (&source->declaration() != last->sourceDeclaration)
            fail("has become another phenomenon, " + source->title());
        const Connection* const next = source->connectionAt(last->memberOffset);
        if (!next) {
            connection.source = nullptr;
            connection.value = static_cast<std::byte*>(source->parameters()) + last->memberOffset;
            return;
        }
        last = next;
    }
    if (&source->declaration() != last->sourceDeclaration &&
        !sameFields({source->declaration().result}, {last->sourceDeclaration->result}))
        fail("has become a shader with another result, " + source->title());
    for (int steps = 0; source->expansion && source->expansion->roots.size() == 1; ++steps) {
        source = database_.findAs<Function>(source->expansion->roots.front());
        if (!source)
            fail("has been deleted");
        if (steps == maximumNetworkDepth)
            fail("is a phenomenon that leads into itself, " + source->title());
    }
    connection.source = source;
    connection.resultOffset = last->memberOffset;
}

void Function::findSources()
{
    sources_.clear();
    if (expansion) { // its connections are those of the network's shaders
        for (const miTag root : expansion->roots)
            if (Function* const function = database_.findAs<Function>(root))
                sources_.push_back(function);
        return;
    }
    for (Connection& connection : connections_) {
        follow(connection);
        if (connection.source)
            sources_.push_back(connection.source);
    }
}

std::vector<Function*> Function::callable() const
{
    std::vector<Function*> found;
    const auto add = [&](miTag tag) {
        if (Function* const function = database_.findAs<Function>(tag))
            found.push_back(function);
    };
    for (const miTag tag : references_) {
        add(tag);
        if (const Texture* const texture = database_.findAs<Texture>(tag))
            std::for_each(texture->procedural.begin(), texture->procedural.end(), add);
    }
    return found;
}

std::string Function::title() const
{
    const std::string kind = declaration_->body ? "phenomenon " : "shader ";
    if (!name.empty())
        return kind + '"' + name + "\" (" + declaration_->name + ")";
    const std::string place = where.text();
    return kind + declaration_->name + (place.empty() ? "" : " at " + place);
}

namespace {

/// Shaders write as much as they declare: a result that is not what the caller waits for would go beyond its
/// memory, or leave most of it empty.
bool fits(const Field& result, Gives wanted)
{
    switch (wanted) {
    case Gives::color:
        return result.type == Type::color;
    case Gives::texture:
        return result.size <= sizeof(miColor) && !isTag(result.type);
    case Gives::geometry:
        return result.type == Type::geometry;
    }
    return false;
}

const char* nameOf(Gives wanted)
{
    return wanted == Gives::geometry ? "geometry"
           : wanted == Gives::color  ? "a color"
                                     : "a color, vector or number";
}

void addFunctions(const Database& database, const ShaderList& list, const Element& user, Gives wanted,
                  int depth, std::vector<Function*>& functions)
{
    const auto fail = [&](const std::string& text) {
        throw Error(user.where, std::string(kindName(user.kind)) + ' ' + inQuotes(user.name) + text);
    };
    if (depth > maximumNetworkDepth)
        fail(" lists a phenomenon that leads into itself");
    for (const miTag tag : list) {
        auto* const function = database.findAs<Function>(tag);
        if (!function)
            fail(" lists a shader that was deleted");
        if (function->expansion) {
            addFunctions(database, function->expansion->roots, user, wanted, depth + 1, functions);
            continue;
        }
        if (const Field& result = function->declaration().result; !fits(result, wanted))
            fail(" lists " + function->title() + ", which gives " + typeText(result) + ", not " +
                 nameOf(wanted));
        functions.push_back(function);
    }
}

} // namespace

std::vector<Function*> functionsOf(const Database& database, const ShaderList& list, const Element& user,
                                   Gives wanted)
{
    std::vector<Function*> functions;
    addFunctions(database, list, user, wanted, 0, functions);
    return functions;
}

bool firstTime(Function& function, Fault fault)
{
    const unsigned bit = static_cast<unsigned>(fault);
    return (function.reported.fetch_or(bit, std::memory_order_relaxed) & bit) == 0;
}

} // namespace host
