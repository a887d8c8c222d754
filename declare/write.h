// SPDX-License-Identifier: BSD-3-Clause
// The texts made from the shaders' descriptions.
#pragma once

#include "core/describe.h"

#include <span>
#include <string>

namespace declare {

/// The declaration file: one `declare shader` for each, with hints for applications, in plain ASCII.
std::string declarations(std::span<const VHL::Description> shaders);

/// One shader's part of it.
std::string declaration(const VHL::Description& shader);

/// A reference page for the shaders of one unit, and the page that lists all units.
std::string referencePage(std::span<const VHL::Description> shaders);
std::string referenceIndex(std::span<const VHL::Description> shaders);

} // namespace declare
