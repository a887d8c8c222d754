// SPDX-License-Identifier: BSD-3-Clause
#include "host/shading/function.h"

#include <algorithm>
#include <cstring>

namespace host {

namespace {

constexpr std::size_t roundUp8(std::size_t size) { return (size + 7) / 8 * 8; }

} // namespace

Function::Function(const Declaration& declaration, const std::vector<Argument>& arguments, Database& database,
                   const Location& place)
    : Element(miSCENE_FUNCTION), database_(database)
{
    where = place;
    adopt(declaration, buildBlock(declaration, arguments, database, nullptr));
    record()->no_expl_params = arguments.empty();
}

void Function::redefine(const Declaration& declaration, const std::vector<Argument>& arguments,
                        const Location& place)
{
    const Function* const previous = &declaration == declaration_ ? this : nullptr;
    adopt(declaration, buildBlock(declaration, arguments, database_, previous));
    where = place;
}

void Function::adopt(const Declaration& declaration, Block block)
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

    miFunction& r = *record();
    r.sparep1[0].p = this;
    r.type = miFUNCTION_C;
    r.next_function = next;
    r.parameter_size = static_cast<int>(block.bytes.size());
    r.result_size = static_cast<int>(declaration.result.size);
    r.ghost_offs = ghosts ? static_cast<int>(space) : 0;
    r.ghost_flag = ghosts;
}

void Function::findSources()
{
    for (Connection& connection : connections_) {
        Function* const source = database_.findAs<Function>(connection.sourceTag);
        const auto fail = [&](const std::string& text) {
            throw Error(where, title() + ": what \"" + connection.field + "\" is connected to " + text);
        };
        if (!source)
            fail("has been deleted");
        else if (&source->declaration() != connection.sourceDeclaration &&
                 !sameFields({source->declaration().result}, {connection.sourceDeclaration->result}))
            fail("has become a shader with another result, " + source->title());
        connection.source = source;
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
    if (!name.empty())
        return "shader \"" + name + "\" (" + declaration_->name + ")";
    const std::string place = where.text();
    return "shader " + declaration_->name + (place.empty() ? "" : " at " + place);
}

bool firstTime(Function& function, Fault fault)
{
    const unsigned bit = static_cast<unsigned>(fault);
    return (function.reported.fetch_or(bit, std::memory_order_relaxed) & bit) == 0;
}

} // namespace host
