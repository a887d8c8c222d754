// SPDX-License-Identifier: BSD-3-Clause
// Instances to shade, without a scene around them.
#pragma once

#include "tests/harness/call.h"

#include <string>

/// A leaf instance as a renderer makes them: without a name of its own, derived from a scene instance of the
/// name that is given (none: from an instance without a name) and that instances an object of another name.
inline miTag leafOf(const std::string& name)
{
    host::Database& database = test::Call::session().database;
    auto& scene = database.make<host::Instance>(name);
    auto& leaf = database.make<host::Instance>();
    leaf.record.parent = scene.tag;
    leaf.record.item = scene.record.item = database.make<host::Object>("the object of " + name).tag;
    return leaf.tag;
}
