// SPDX-License-Identifier: BSD-3-Clause
#include "core/boolean.h"

#include <gtest/gtest.h>

using VHL::dBoolean;

static_assert(std::is_convertible_v<bool, dBoolean> && std::is_convertible_v<const dBoolean, bool>);
static_assert(dBoolean(true) && !dBoolean(false), "usable in constant expressions");
static_assert(requires(dBoolean a, const dBoolean b) {
    {
        a = b
        } -> std::same_as<dBoolean&>;
    {
        a = true
        } -> std::same_as<dBoolean&>;
    {
        a == b
        } -> std::same_as<bool>;
});

TEST(Boolean, HoldsTheValue)
{
    const dBoolean yes = true;
    dBoolean copy = false;
    EXPECT_FALSE(copy);
    copy = yes;
    EXPECT_TRUE(copy);
}

TEST(Boolean, AnyWordButZeroIsTrue)
{
    for (const int word : {1, 2, -1, 256})
        EXPECT_TRUE(dBoolean(word)) << word;
    EXPECT_FALSE(dBoolean(0));
}
