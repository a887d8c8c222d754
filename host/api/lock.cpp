// SPDX-License-Identifier: BSD-3-Clause
// Locks of shaders. Those of the host itself come through the state and mi_query.
#include "host/shading/lock.h"

#include "host/api/further.h"
#include "host/shading/call.h"

namespace {

host::Mutex& mutexOf(const miLock& lock)
{
    if (lock.lock)
        return *static_cast<host::Mutex*>(lock.lock);
    const host::Function* const culprit = host::runningFunction();
    throw host::Error(culprit ? culprit->where : host::Location(),
                      (culprit ? culprit->title() + ": " : std::string()) +
                          "takes or gives back a lock that was never initialised");
}

} // namespace

void mi_init_lock(miLock* lock) { lock->lock = new host::Mutex; }

void mi_delete_lock(miLock* lock)
{
    delete static_cast<host::Mutex*>(lock->lock);
    lock->lock = nullptr;
}

void mi_lock(const miLock lock) { mutexOf(lock).lock(); }

void mi_unlock(const miLock lock) { mutexOf(lock).unlock(); }
