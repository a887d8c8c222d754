// SPDX-License-Identifier: BSD-3-Clause
// Running something that nests deeper than an ordinary thread's stack bears.
#pragma once

#include <cstddef>
#include <functional>

namespace host {

/// Threads that run shaders have stacks of this size: networks nest up to maximumNetworkDepth calls deep.
/// Memory is taken as it is used.
inline constexpr std::size_t largeStack = 64 * 1024 * 1024;

/// Calls the action in a thread of its own with a large stack, waits for it, and throws what it throws.
void onLargeStack(const std::function<void()>& action);

} // namespace host
