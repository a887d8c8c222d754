// SPDX-License-Identifier: BSD-3-Clause
// Instances as a shader meets them while rendering, without a scene around them.
#pragma once

#include "tests/harness/call.h"

#include <string>

namespace test {

/// A scene instance of this name, or without one when it is empty, of an object of another name.
inline miTag sceneInstance(const std::string& name)
{
    host::Database& database = Call::session().database;
    auto& scene = database.make<host::Instance>(name);
    scene.record.item = database.make<host::Object>("the object of " + name).tag;
    return scene.tag;
}

/// A leaf as a renderer makes one for each path to a scene instance: without a name of its own.
inline miTag leafOf(miTag scene)
{
    host::Database& database = Call::session().database;
    auto& leaf = database.make<host::Instance>();
    leaf.record.parent = scene;
    leaf.record.item = database.findAs<host::Instance>(scene)->record.item;
    return leaf.tag;
}

/// The leaf of a new scene instance.
inline miTag leafOf(const std::string& name) { return leafOf(sceneInstance(name)); }

} // namespace test
