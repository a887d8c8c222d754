// SPDX-License-Identifier: BSD-3-Clause
#include "host/api/further.h"

#include "tests/harness/stage.h"

#include <gtest/gtest.h>

#include <thread>
#include <vector>

namespace {

TEST(Lock, LetsOneThreadInAtATime)
{
    miLock lock;
    mi_init_lock(&lock);
    int count = 0;
    std::vector<std::thread> threads;
    for (int t = 0; t < 4; ++t)
        threads.emplace_back([&] {
            for (int i = 0; i < 20'000; ++i) {
                mi_lock(lock);
                ++count;
                mi_unlock(lock);
            }
        });
    for (std::thread& thread : threads)
        thread.join();
    EXPECT_EQ(count, 80'000);
    mi_delete_lock(&lock);
    EXPECT_EQ(lock.lock, nullptr);
}

TEST(Lock, MayBeTakenAgainByWhoHoldsIt)
{
    miLock lock;
    mi_init_lock(&lock);
    mi_lock(lock);
    mi_lock(lock);
    mi_unlock(lock);
    mi_unlock(lock);
    std::thread([&] {
        mi_lock(lock);
        mi_unlock(lock);
    }).join();
    mi_delete_lock(&lock);
}

TEST(Lock, OneThatWasNeverInitialisedIsTold)
{
    const miLock none{};
    for (void (*const use)(miLock) : {mi_lock, mi_unlock})
        EXPECT_EQ(test::errorOf([&] { use(none); }), "takes or gives back a lock that was never initialised");
}

} // namespace
