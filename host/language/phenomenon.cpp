// SPDX-License-Identifier: BSD-3-Clause
#include "host/language/phenomenon.h"

#include "host/language/builder.h"
#include "host/language/tokens.h"

#include <algorithm>

namespace host::language {

namespace {

/// The name before the elements of a network: the definition's own, or one that no other has. Either begins
/// with the names around, so that nothing inside can have the name of a definition that is being expanded.
std::string privateName(const Context& context, const Function& definition)
{
    if (!definition.name.empty())
        return definition.name;
    return context.setting().names.inside + definition.declaration().name + '(' +
           std::to_string(definition.tag) + ')';
}

std::string resultText(const Declaration& declaration) { return typeText(declaration.result); }

/// Structures may name their members differently.
bool sameKind(const Field& a, const Field& b)
{
    return a.type == b.type && a.size == b.size &&
           std::equal(a.members.begin(), a.members.end(), b.members.begin(), b.members.end(), sameKind);
}

void checkRoots(const Context& context, const Declaration& declaration, const Expansion& made)
{
    const Location& where = declaration.where;
    const std::string who = "phenomenon " + inQuotes(declaration.name);
    if (made.element != miNULLTAG) {
        const miScene_types kind = context.session.database.find(made.element)->kind;
        if (declaration.result.type != (kind == miSCENE_LIGHT ? Type::light : Type::material))
            throw Error(where, who + " is declared to give " + resultText(declaration) +
                                   ", but its root is a " + std::string(kindName(kind)));
        return;
    }
    if (made.roots.empty() && made.extra.empty())
        throw Error(where, who + " has no root");
    for (const miTag root : made.roots) {
        const auto* const function = context.session.database.findAs<Function>(root);
        if (!function)
            throw Error(where, who + " has a root that was deleted");
        const Declaration& found = function->declaration();
        if (!sameKind(found.result, declaration.result))
            throw Error(where, who + " is declared to give " + resultText(declaration) + ", but its root " +
                                   inQuotes(found.name) + " gives " + resultText(found));
    }
}

/// What a network costs: its words, and for each use of a parameter at most everything in a large block, the
/// elements of arrays among it.
std::size_t wordsOf(const PhenomenonBody& body, const Function& definition)
{
    constexpr std::size_t ordinary = 1024;
    const auto bytes = std::max(static_cast<std::size_t>(definition.record()->parameter_size), ordinary);
    return body.tokens.size() + body.interfaces * ((bytes - ordinary) / sizeof(float));
}

/// Reads the body into a definition's network; what the body says of the phenomenon itself.
Declaration makeNetwork(Context& context, Function& definition, NetworkMembers& former)
{
    const PhenomenonBody& body = *definition.declaration().body;
    definition.expansion = std::make_unique<Expansion>();
    Context inside(context, definition, {privateName(context, definition) + "::", body.names.inside}, former,
                   wordsOf(body, definition));
    Builder builder(inside);
    Replay tokens(body);
    Parser(tokens, builder).parse();
    checkRoots(context, definition.declaration(), *definition.expansion);
    return builder.declaration.take();
}

} // namespace

void expand(Context& context, Function& definition, NetworkMembers former)
{
    if (definition.declaration().body)
        makeNetwork(context, definition, former);
    else
        definition.expansion.reset();
    for (const miTag tag : former)
        removeWithNetwork(context.session.database, tag);
}

void PhenomenonBuilder::end(std::shared_ptr<PhenomenonBody> body)
{
    body->names = context_.setting().names;
    Declarations& declarations = context_.session.declarations;
    const Declaration* const known = declarations.find(declaration_.name);
    if (known && known->body && sameText(*known->body, *body)) {
        declaration_.body = known->body;
        declaration_.version = known->version;
        declarations.add(std::move(declaration_));
        return;
    }
    declaration_.body = std::move(body);
    layOut(declaration_);

    // Nothing of the trial stays, also when it fails.
    Database& database = context_.session.database;
    struct Trial {
        Database& database;
        miTag tag;
        ~Trial() { removeWithNetwork(database, tag); }
    };
    const Trial trial{database, database.add(std::make_unique<Function>(declaration_, std::vector<Argument>(),
                                                                        database, declaration_.where))};
    NetworkMembers former;
    Declaration traits = makeNetwork(context_, *database.findAs<Function>(trial.tag), former);
    declaration_.version = traits.version;
    declaration_.apply = std::move(traits.apply);
    Declaration finished = declaration_; // not moved: the trial looks at it until it ends
    declarations.add(std::move(finished));
}

void PhenomenonBuilder::refuseSecondRoot(const Location& where) const
{
    const Expansion& made = *context_.expansion();
    if (!made.roots.empty() || made.element != miNULLTAG)
        throw Error(where, "a phenomenon has one root only");
}

void PhenomenonBuilder::root(std::vector<ShaderUse> uses, const Location& where)
{
    refuseSecondRoot(where);
    context_.expansion()->roots = shaders_.make(std::move(uses));
}

void PhenomenonBuilder::extra(ExtraRoot::Kind kind, std::vector<ShaderUse> uses, int priority)
{
    context_.expansion()->extra.push_back({kind, priority, shaders_.make(std::move(uses))});
}

} // namespace host::language
