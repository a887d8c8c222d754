// SPDX-License-Identifier: BSD-3-Clause
// Locks that shaders share: of the rendering, of a shader and of an instance.
#pragma once

#include <shader.h>

#include <mutex>

namespace host {

/// What a shader's miLock points to. Who holds it may take it again: networks nest, and shaders that share a
/// lock may call one another.
using Mutex = std::recursive_mutex;

/// A lock together with the handle by which shaders know it. Neither ever moves.
class Lock {
public:
    Lock() = default;
    Lock(const Lock&) = delete;
    Lock& operator=(const Lock&) = delete;

    miLock* handle() { return &handle_; }

private:
    Mutex mutex_;
    miLock handle_ = {&mutex_};
};

} // namespace host
