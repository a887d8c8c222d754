// SPDX-License-Identifier: BSD-3-Clause
// One run of the host: the scene database, declarations and libraries that everything else works on.
#pragma once

#include "host/scene/database.h"
#include "host/scene/registry.h"
#include "host/scene/search.h"
#include "host/shading/declaration.h"
#include "host/shading/edits.h"
#include "host/shading/library.h"

#include <functional>
#include <map>
#include <string>
#include <vector>

namespace host {

/// A `render` command: tags of the root group, the camera instance and the options.
struct RenderCommand {
    miTag root = 0;
    miTag camera = 0;
    miTag options = 0;
    Location where;
};

/// The members are used in this order of lifetimes: elements go before the libraries that they point into.
struct Session {
    Session();
    ~Session();
    Session(const Session&) = delete;
    Session& operator=(const Session&) = delete;

    Libraries libraries;
    Declarations declarations;
    Database database;
    Edits edits;
    SearchPaths paths;
    std::map<std::string, std::string> variables; ///< of `set`, for $ifdef
    Registry registry;
    /// How many folders at the end of each list of `paths` the registry has put there.
    struct {
        std::size_t include = 0, library = 0, texture = 0;
    } registryFolders;
    bool keepVerbosity = false; ///< the command line set it: `verbose` in scenes is ignored
    bool linkLibraries = true;  ///< false: `link` in scenes is read and does nothing

    /// Called for each `render` command while reading goes on; may throw Error.
    std::function<void(const RenderCommand&)> onRender;

    /// The session that the exported mi_* functions work on: the latest one alive, null without any. Sessions
    /// come and go in one thread.
    static Session* current();
};

} // namespace host
