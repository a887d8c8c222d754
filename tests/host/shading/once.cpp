// SPDX-License-Identifier: BSD-3-Clause
#include "host/shading/once.h"

#include "tests/harness/stage.h"

#include <gtest/gtest.h>

namespace {

using test::errorOf;

TEST(Once, RunsOnceUntilItIsReset)
{
    host::Once once;
    int runs = 0;
    EXPECT_FALSE(once.done());
    for (int k = 0; k < 3; ++k)
        once.run([&] { ++runs; });
    EXPECT_TRUE(once.done());
    EXPECT_EQ(runs, 1);
    once.reset();
    EXPECT_FALSE(once.done());
    once.run([&] { ++runs; });
    EXPECT_EQ(runs, 2);
}

TEST(Once, RemembersAFailureUntilItIsReset)
{
    host::Once once;
    int runs = 0;
    const auto failing = [&] {
        ++runs;
        throw host::Error("failed");
    };
    for (int k = 0; k < 3; ++k)
        EXPECT_EQ(errorOf([&] { once.run(failing); }), "failed");
    EXPECT_EQ(runs, 1);
    EXPECT_FALSE(once.done());
    once.reset();
    once.run([&] { ++runs; });
    EXPECT_TRUE(once.done());
}

TEST(Once, AnActionThatAsksForItselfIsToldSo)
{
    host::Once once;
    EXPECT_THROW(once.run([&] { once.run([] {}); }), std::logic_error);
    EXPECT_FALSE(once.done());
}

} // namespace
