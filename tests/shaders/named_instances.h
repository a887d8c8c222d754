// SPDX-License-Identifier: BSD-3-Clause
// Instances as a shader meets them while rendering.
#pragma once

#include "tests/harness/call.h"

#include <string>

namespace test {

/// The tag of a leaf: an instance without a name, made from a scene instance that bears this one, or none at
/// all.
inline miTag leafOf(const std::string& name)
{
    host::Database& database = Call::session().database;
    host::Instance& leaf = database.make<host::Instance>();
    leaf.record.item = database.make<host::Object>(name + " as an object").tag;
    leaf.record.parent = database.make<host::Instance>(name).tag;
    return leaf.tag;
}

} // namespace test
