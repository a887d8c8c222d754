// SPDX-License-Identifier: BSD-3-Clause
#include "host/language/context.h"

#include "host/report/message.h"

namespace host::language {

namespace {

std::string withArticle(std::string_view noun)
{
    const bool vowel = std::string_view("aeiou").find(noun.front()) != std::string_view::npos;
    return (vowel ? "an " : "a ") + std::string(noun);
}

} // namespace

Element& Context::find(const Name& name, std::string_view wanted) const
{
    if (Element* const element = session.database.find(session.database.lookup(name.text)))
        return *element;
    throw Error(name.where, "there is no " + std::string(wanted) + ' ' + inQuotes(name.text));
}

void Context::refuseKind(const Name& name, const Element& element, std::string_view wanted)
{
    const std::string kind = withArticle(kindName(element.kind));
    throw Error(name.where,
                inQuotes(name.text) + " is not the name of " + withArticle(wanted) + " but of " + kind);
}

miTag Context::add(std::unique_ptr<Element> element)
{
    if (!element->name.empty())
        warnIfTaken(element->name, element->where);
    return session.database.add(std::move(element));
}

void Context::alias(const Name& name, miTag tag)
{
    warnIfTaken(name.text, name.where);
    session.database.alias(name.text, tag);
}

void Context::warnIfTaken(const std::string& name, const Location& where) const
{
    if (const Element* const earlier = session.database.find(session.database.lookup(name)))
        warn(where, inQuotes(name) + " is defined again, it was defined at " + earlier->where.text());
}

void Context::warn(const Location& where, const std::string& text)
{
    message(Level::warning, "SCEN", where.text() + ": " + text);
}

void Context::ignored(const Location& where, const std::string& what)
{
    if (ignored_.insert(what).second)
        warn(where, what + (what.back() == 's' ? " are ignored" : " is ignored"));
}

} // namespace host::language
