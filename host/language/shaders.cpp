// SPDX-License-Identifier: BSD-3-Clause
#include "host/language/shaders.h"

#include "host/language/lexer.h"
#include "host/language/phenomenon.h"
#include "host/report/guess.h"

#include <array>
#include <filesystem>
#include <string_view>

namespace host::language {

namespace {

constexpr std::string_view baseFile = "base.mi";

/// The files of declarations that come with this system.
constexpr std::array<std::string_view, 3> ownFiles = {"vhl.mi", "recipes.mi", baseFile};

/// One of these files, found as `$include` finds it. Nothing when it is nowhere, or is no file of a size that
/// is worth a hint.
std::string ownFile(std::string_view name, const Name& use, const Session& session)
{
    constexpr std::uintmax_t most = 4 << 20;
    std::string file =
        findFile(std::string(name), use.where.file ? *use.where.file : std::string(), session.paths.include);
    std::error_code error;
    const bool readable = std::filesystem::is_regular_file(file, error) &&
                          std::filesystem::file_size(file, error) <= most && !error;
    return readable ? file : std::string();
}

bool declares(const std::string& file, const std::string& shader, Session& session)
try {
    Lexer lexer(session, std::make_unique<Source>(file, Location()));
    const Location found = lexer.findDefinition(shader, UnknownName::Of::declaration);
    return found.file && *found.file == file; // and not in what it includes
} catch (const Error&) {
    return false; // it cannot be opened
}

} // namespace

ShaderList Shaders::make(std::vector<ShaderUse> uses)
{
    const Location where = uses.empty() ? Location() : uses.front().place();
    ShaderList list = makeAny(std::move(uses));
    refuseElements(list, where);
    return list;
}

const Material* Shaders::makeMaterial(std::vector<ShaderUse> uses, ShaderList& list)
{
    const Location where = uses.empty() ? Location() : uses.front().place();
    list = makeAny(std::move(uses));
    Element* const only = list.size() == 1 ? context_.session.database.find(list.front()) : nullptr;
    if (only)
        if (const auto* const material = dynamic_cast<const Material*>(&context_.meant(*only)))
            return material;
    refuseElements(list, where);
    return nullptr;
}

void Shaders::refuseElements(const ShaderList& list, const Location& where) const
{
    for (const miTag tag : list) {
        auto* const function = context_.session.database.findAs<Function>(tag);
        if (!function) // of a named list, and deleted since
            continue;
        const Element& given = context_.meant(*function);
        if (&given != function)
            throw Error(where, function->title() + " gives a " + std::string(kindName(given.kind)) +
                                   ", it cannot be called as a shader");
    }
}

ShaderList Shaders::makeAny(std::vector<ShaderUse> uses)
{
    ShaderList list;
    for (const ShaderUse& use : uses) {
        if (use.type.text.empty())
            refer(use.name, list);
        else
            list.push_back(create(use));
    }
    return list;
}

const Declaration& Shaders::declaration(const Name& type) const
{
    if (const Declaration* const found = context_.session.declarations.find(type.text))
        return *found;
    throw UnknownName(type.text, UnknownName::Of::declaration, type.where,
                      "the shader " + inQuotes(type.text) + " is not declared", hintFor(type));
}

std::string Shaders::hintFor(const Name& undeclared) const
{
    bool knowsBase = false;
    for (const std::string_view name : ownFiles)
        if (const std::string file = ownFile(name, undeclared, context_.session); !file.empty()) {
            if (declares(file, undeclared.text, context_.session))
                return "; is $include " + inQuotes(name) + " missing?";
            knowsBase = knowsBase || name == baseFile;
        }
    Guess guess(undeclared.text);
    const std::string versioned = undeclared.text + "_v";
    std::string version; // the last of those that the name was given without
    for (const auto& [name, declaration] : context_.session.declarations.all()) {
        guess.offer(name);
        if (name.compare(0, versioned.size(), versioned) == 0)
            version = name;
    }
    if (!version.empty())
        return "; did you mean " + inQuotes(version) + '?';
    if (const std::string near = guess.text(); !near.empty())
        return near;
    if (knowsBase && undeclared.text.starts_with("mib_"))
        return "; this host's base library has no such shader, docs/base.md lists those that there are";
    return "; is a $include missing?";
}

miTag Shaders::create(const ShaderUse& use)
{
    auto function = std::make_unique<Function>(declaration(use.type), use.arguments,
                                               context_.session.database, use.type.where, context_.setting());
    function->name = use.name.text;
    NetworkMembers former = use.name.text.empty() ? NetworkMembers() : context_.networkOf(use.name.text);
    Function& made = *function;
    const miTag tag = context_.add(std::move(function));
    expand(context_, made, std::move(former));
    return tag;
}

void Shaders::refer(const Name& name, ShaderList& list)
{
    Element& element = context_.find(name, "shader");
    if (const auto* const named = dynamic_cast<const NamedList*>(&element))
        list.insert(list.end(), named->shaders.begin(), named->shaders.end());
    else
        list.push_back(context_.find<Function>(name, "shader").tag);
}

void Shaders::define(const Name& name, std::vector<ShaderUse> uses)
{
    if (context_.takeIncremental())
        return change(name, std::move(uses));
    ShaderUse& head = uses.front();
    const bool definition = !head.type.text.empty() && head.name.text.empty();
    if (uses.size() == 1 && definition) {
        head.name = name;
        create(head);
        return;
    }
    ShaderList shaders = make(std::move(uses));
    if (shaders.size() == 1) // may be connected, which a list may not
        return context_.alias(name, shaders.front());
    auto list = std::make_unique<NamedList>();
    list->name = name.text;
    list->where = name.where;
    list->shaders = std::move(shaders);
    context_.add(std::move(list));
}

// The element itself changes, so that lists and connections made to it follow.
void Shaders::change(const Name& name, std::vector<ShaderUse> uses)
{
    if (auto* const list = dynamic_cast<NamedList*>(&context_.find(name, "shader"))) {
        list->shaders = make(std::move(uses));
        return;
    }
    Function& function = context_.find<Function>(name, "shader");
    const ShaderUse& head = uses.front();
    if (uses.size() != 1 || head.type.text.empty() || !head.name.text.empty())
        throw Error(name.where, "a single shader can only be changed into a single shader");
    NetworkMembers former;
    if (function.expansion)
        former.insert(function.expansion->members.begin(), function.expansion->members.end());
    function.redefine(declaration(head.type), head.arguments, head.type.where, context_.setting());
    expand(context_, function, std::move(former));
}

} // namespace host::language
