// SPDX-License-Identifier: BSD-3-Clause
#include "host/language/context.h"

#include "host/language/read.h"
#include "host/report/message.h"

namespace host::language {

namespace {

void checkPrefix(const std::string& prefix, const Location& where)
{
    if (prefix.size() > maximumPrefix)
        throw Error(where, "the names of namespaces and phenomena around are longer than " +
                               std::to_string(maximumPrefix) + " bytes together");
}

std::string withArticle(std::string_view noun)
{
    const bool vowel = std::string_view("aeiou").find(noun.front()) != std::string_view::npos;
    return (vowel ? "an " : "a ") + std::string(noun);
}

} // namespace

void removeWithNetwork(Database& database, miTag tag)
{
    std::vector<miTag> due = {tag};
    for (std::size_t i = 0; i < due.size(); ++i) {
        const auto* const function = database.findAs<Function>(due[i]);
        if (function && function->expansion)
            due.insert(due.end(), function->expansion->members.begin(), function->expansion->members.end());
        database.remove(due[i]);
    }
}

Context::Context(Session& theSession) : session(theSession), reading_(std::make_shared<Reading>()) {}

Context::Context(const Context& outer, Function& definition, Scope names, NetworkMembers& former,
                 std::size_t words)
    : session(outer.session), setting_{std::move(names), &definition}, expansion_(definition.expansion.get()),
      former_(&former), depth_(outer.depth_ + 1), reading_(outer.reading_)
{
    checkPrefix(setting_.names.inside, definition.where);
    const auto fail = [&](const std::string& what) {
        throw Error(definition.where, "phenomenon " + inQuotes(definition.declaration().name) + ": " + what);
    };
    if (depth_ > maximumPhenomenonDepth)
        fail("phenomena are nested deeper than " + std::to_string(maximumPhenomenonDepth) + " levels");
    reading_->expandedWords += words;
    if (reading_->expandedWords > maximumExpandedWords)
        fail("all definitions of phenomena together take more than " + std::to_string(maximumExpandedWords) +
             " words");
}

void Context::enterNamespace(const Name& name)
{
    if (name.text.empty() || name.text.find(':') != std::string::npos)
        throw Error(name.where, "a namespace needs a name without colons, found " + inQuotes(name.text));
    const std::string& inside = setting_.names.inside;
    Scope scope{inside + name.text + "::", inside};
    checkPrefix(scope.inside, name.where);
    around_.push_back(std::exchange(setting_.names, std::move(scope)));
}

void Context::leaveNamespace()
{
    setting_.names = std::move(around_.back());
    around_.pop_back();
}

Element& Context::find(const Name& name, std::string_view wanted) const
{
    if (Element* const element = session.database.find(session.database.lookup(name.text, setting_.names)))
        return *element;
    throw UnknownName(name.text, wanted == "shader" ? UnknownName::Of::shader : UnknownName::Of::element,
                      name.where, "there is no " + std::string(wanted) + ' ' + inQuotes(name.text));
}

Element& Context::meant(Element& element) const
{
    const auto* const function = dynamic_cast<const Function*>(&element);
    if (!function || !function->expansion)
        return element;
    Element* const result = session.database.find(function->expansion->element);
    return result ? *result : element;
}

void Context::refuseKind(const Name& name, const Element& element, std::string_view wanted)
{
    const std::string kind = withArticle(kindName(element.kind));
    throw Error(name.where,
                inQuotes(name.text) + " is not the name of " + withArticle(wanted) + " but of " + kind);
}

Element* Context::taken(const std::string& name) const
{
    return session.database.find(session.database.lookup("::" + name));
}

miTag Context::add(std::unique_ptr<Element> element)
{
    Database& database = session.database;
    miTag tag = miNULLTAG;
    if (!element->name.empty()) {
        const bool outside = element->name.substr(0, 2) == "::";
        if (expansion_ && outside)
            throw Error(element->where, "what a phenomenon defines is its own: " + inQuotes(element->name));
        element->name = setting_.names.qualified(element->name);
        const Element* const earlier = taken(element->name);
        warnIfTaken(earlier, element->name, element->where);
        // A name may also be another one for an element; then that stays as it is.
        if (earlier && earlier->kind == element->kind && earlier->name == element->name) {
            tag = earlier->tag;
            database.replace(tag, std::move(element));
        }
    }
    if (tag == miNULLTAG)
        tag = database.add(std::move(element));
    if (former_)
        former_->erase(tag);
    if (expansion_)
        expansion_->members.push_back(tag);
    return tag;
}

NetworkMembers Context::networkOf(const std::string& name) const
{
    const auto* const function = dynamic_cast<const Function*>(taken(setting_.names.qualified(name)));
    if (!function || !function->expansion)
        return {};
    const std::vector<miTag>& members = function->expansion->members;
    return {members.begin(), members.end()};
}

void Context::alias(const Name& name, miTag tag)
{
    if (expansion_ && name.text.substr(0, 2) == "::")
        throw Error(name.where, "what a phenomenon defines is its own: " + inQuotes(name.text));
    const std::string full = setting_.names.qualified(name.text);
    warnIfTaken(taken(full), full, name.where);
    session.database.alias(full, tag);
}

void Context::warnIfTaken(const Element* earlier, const std::string& name, const Location& where) const
{
    const bool madeAnew = earlier && former_ && former_->contains(earlier->tag);
    if (earlier && !madeAnew)
        warn(where, inQuotes(name) + " is defined again, it was defined at " + earlier->where.text());
}

void Context::warn(const Location& where, const std::string& text)
{
    message(Level::warning, "SCEN", where.text() + ": " + text);
}

void Context::ignored(const Location& where, const std::string& what)
{
    if (reading_->ignored.insert(what).second)
        warn(where, what + (what.back() == 's' ? " are ignored" : " is ignored"));
}

} // namespace host::language
