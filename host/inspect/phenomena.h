// SPDX-License-Identifier: BSD-3-Clause
// Which calls go into a phenomenon.
#pragma once

#include "host/shading/function.h"

#include <algorithm>
#include <cstddef>
#include <vector>

namespace host {

/// The definitions of the phenomena that a shader is inside of, the innermost first.
inline std::vector<const Function*> phenomenaAround(const Function& function)
{
    std::vector<const Function*> around;
    for (const Function* next = function.phenomenon(); next; next = next->phenomenon())
        around.push_back(next);
    return around;
}

/// How many of the phenomena around a shader a call goes into, innermost first: those that are not around its
/// caller too. A caller is one on the same state; who is called by a ray or the host has none.
template <class Definitions>
std::size_t entered(const Definitions& around, const Definitions& aroundCaller)
{
    const auto common =
        std::find_first_of(around.begin(), around.end(), aroundCaller.begin(), aroundCaller.end());
    return static_cast<std::size_t>(common - around.begin());
}

} // namespace host
