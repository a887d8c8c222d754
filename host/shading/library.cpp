// SPDX-License-Identifier: BSD-3-Clause
#include "host/shading/library.h"

#include "host/report/message.h"
#include "host/scene/search.h"

#include <algorithm>
#include <dlfcn.h>
#include <filesystem>
#include <utility>

namespace host {

namespace {

// The loader's reason for the latest failure, with a word on the one that authors of shaders run into.
std::string loaderReason()
{
    const char* const text = dlerror();
    std::string reason = text ? text : "unknown reason";
    if (reason.find("undefined symbol: mi_") != std::string::npos)
        reason += " (this host has no such function)";
    return reason;
}

/// The library whose shaders a file of this system declares, as an example of what to link.
std::string libraryOf(const Location& declaration)
{
    const std::string file =
        declaration.file ? std::filesystem::path(*declaration.file).filename().string() : std::string();
    if (file == "base.mi")
        return ", such as link \"base.so\"";
    return file == "vhl.mi" ? ", such as link \"libvhl.so\"" : "";
}

} // namespace

Libraries::~Libraries()
{
    for (auto handle = handles_.rbegin(); handle != handles_.rend(); ++handle)
        dlclose(*handle);
}

void Libraries::link(const std::string& file, const std::vector<std::string>& searchPath,
                     const Location& where)
{
    const std::string found = findFile(file, where.file ? *where.file : std::string(), searchPath);
    // The loader takes a name without a slash for something to look for on its own path.
    const std::string path = found.empty() ? file : std::filesystem::absolute(found).string();
    dlerror();
    void* const handle = dlopen(path.c_str(), RTLD_NOW | RTLD_LOCAL);
    if (!handle)
        throw Error(where,
                    "library \"" + file + "\" cannot be linked: " + loaderReason() +
                        (found.empty() ? lookedIn(file, where.file ? *where.file : std::string(), searchPath)
                                       : std::string()));
    if (std::find(handles_.begin(), handles_.end(), handle) == handles_.end())
        handles_.push_back(handle);
    else
        dlclose(handle);
}

void* Libraries::symbol(const std::string& name) const
{
    for (void* const handle : handles_)
        if (void* const address = dlsym(handle, name.c_str()))
            return address;
    return nullptr;
}

Shader& Libraries::resolve(const Declaration& declaration, const Location& use)
{
    const auto known = shaders_.find(declaration.name);
    if (known != shaders_.end())
        return *known->second;

    void* const execute = symbol(declaration.name);
    if (!execute) {
        const std::string place = declaration.where.text();
        throw Error(use, "shader " + inQuotes(declaration.name) +
                             (place.empty() ? "" : ", declared at " + place + ',') +
                             (handles_.empty() ? " is in no library, as none is linked"
                                               : " is in none of the linked libraries") +
                             "; is a link missing" + libraryOf(declaration.where) + '?');
    }
    auto shader = std::make_unique<Shader>();
    shader->declaration = &declaration;
    shader->execute = reinterpret_cast<Shader::Execute>(execute);
    shader->init = reinterpret_cast<Shader::Init>(symbol(declaration.name + "_init"));
    shader->exit = reinterpret_cast<Shader::Exit>(symbol(declaration.name + "_exit"));
    shader->version = reinterpret_cast<Shader::Version>(symbol(declaration.name + "_version"));
    return *shaders_.emplace(declaration.name, std::move(shader)).first->second;
}

void Libraries::checkVersion(Shader& shader) const
{
    const Declaration& declaration = *shader.declaration;
    if (!shader.version) {
        if (!std::exchange(shader.versionTold, true))
            message(Level::warning, "LINK", "shader \"" + declaration.name + "\" has no version function");
        return;
    }
    const int declared = declaration.version.value_or(0);
    const int found = shader.version();
    if (found == declared)
        return;
    const Error mismatch(declaration.where, "shader \"" + declaration.name + "\" is declared with version " +
                                                std::to_string(declared) + ", but its library has version " +
                                                std::to_string(found));
    if (!ignoreVersions_)
        throw mismatch;
    if (!std::exchange(shader.versionTold, true))
        message(Level::error, "LINK", mismatch.what());
}

} // namespace host
