// SPDX-License-Identifier: BSD-3-Clause
// Scene text line by line.
#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace declare {

using Lines = std::vector<std::string>;

Lines linesOf(std::string_view text);

/// What a line has between quotes, in order, its comment left out.
Lines strings(std::string_view line);

} // namespace declare
