// SPDX-License-Identifier: BSD-3-Clause
#include "host/language/commands.h"

#include "host/report/message.h"

#include <algorithm>
#include <charconv>
#include <tuple>

namespace host::language {

namespace {

// The generation of the renderer whose scenes are read.
const std::vector<int> ourVersion = {3, 14};
constexpr std::string_view ourVersionText = "3.14";

/// "3.14.1" as 3, 14, 1; missing parts count as less than any number.
std::vector<int> parts(const Name& version)
{
    std::vector<int> numbers;
    const char* at = version.text.data();
    const char* const end = at + version.text.size();
    while (true) {
        int& part = numbers.emplace_back();
        const auto [stop, problem] = std::from_chars(at, end, part);
        if (problem != std::errc() || part < 0 || (stop != end && *stop != '.'))
            throw Error(version.where,
                        "a version is numbers with points between them, found " + inQuotes(version.text));
        if (stop == end)
            return numbers;
        at = stop + 1;
    }
}

} // namespace

void Commands::link(const Name& file)
{
    if (context_.session.linkLibraries)
        context_.session.libraries.link(context_.session.registry.expand(file.text, file.where),
                                        context_.session.paths.library, file.where);
}

void Commands::registryEntry(const Name& key)
{
    key_ = key.text;
    entry_ = {};
    entry_.where = key.where;
}

void Commands::registryLine(const std::string& key, const std::string& value)
{
    if (key == "value")
        entry_.value = value;
    else
        entry_.actions.emplace_back(key, value);
}

void Commands::endRegistryEntry()
{
    Session& session = context_.session;
    const Location where = entry_.where;
    session.registry.define(key_, std::move(entry_));
    for (const auto& [key, path, extra] :
         {std::tuple{"_MI_REG_LIBRARY", &session.paths.library, &session.registryFolders.library},
          std::tuple{"_MI_REG_INCLUDE", &session.paths.include, &session.registryFolders.include},
          std::tuple{"_MI_REG_TEXTURE", &session.paths.texture, &session.registryFolders.texture}}) {
        if (key_ != key && key_ != '{' + std::string(key) + '}')
            continue;
        // The folders of the registry are the last ones of the path.
        path->resize(path->size() - std::min(*extra, path->size()));
        const std::vector<std::string> folders =
            splitAt(session.registry.expand('{' + std::string(key) + '}', where), ":;");
        path->insert(path->end(), folders.begin(), folders.end());
        *extra = folders.size();
    }
}

void Commands::verbose(const Statement& level)
{
    const int number = level.integer(0, 0, 7);
    if (!context_.session.keepVerbosity)
        setVerbosity(number);
}

void Commands::minimumVersion(const Name& version)
{
    if (parts(version) > ourVersion)
        throw Error(version.where, "the scene needs version " + version.text + " or later, this is " +
                                       std::string(ourVersionText));
}

void Commands::maximumVersion(const Name& version)
{
    const std::vector<int> latest = parts(version);
    if (latest < ourVersion && !std::equal(latest.begin(), latest.end(), ourVersion.begin()))
        throw Error(version.where, "the scene needs version " + version.text + " or earlier, this is " +
                                       std::string(ourVersionText));
}

void Commands::echo(const std::string& text) { message(Level::info, "SCEN", text); }

void Commands::set(const Name& variable)
{
    variable_ = variable.text;
    setValue("");
}

void Commands::setValue(std::string value) { context_.session.variables[variable_] = std::move(value); }

void Commands::remove(const Name& name)
{
    removeWithNetwork(context_.session.database, context_.find(name, "element").tag);
}

void Commands::touch(const Name& name) { context_.find(name, "element"); }

void Commands::render(const Name& root, const Name& camera, const Name& options)
{
    RenderCommand command;
    command.root = context_.find<Group>(root, "group").tag;
    command.camera = context_.find<Instance>(camera, "instance").tag;
    command.options = context_.find<Options>(options, "options element").tag;
    command.where = root.where;
    if (context_.session.onRender)
        context_.session.onRender(command);
}

void Commands::unsupported(const char* what, const Location& where)
{
    throw Error(where, inQuotes(what) + " is not supported");
}

} // namespace host::language
