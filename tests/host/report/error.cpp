// SPDX-License-Identifier: BSD-3-Clause
#include "host/report/error.h"

#include <gtest/gtest.h>

namespace {

using host::Error;
using host::Location;

TEST(Error, BeginsWithItsPlace)
{
    const Location where{host::fileName("a.mi"), 12, 3};
    EXPECT_EQ(where.text(), "a.mi:12:3");
    EXPECT_STREQ(Error(where, "no such thing").what(), "a.mi:12:3: no such thing");
    EXPECT_STREQ(Error(Location(), "no such thing").what(), "no such thing");
    EXPECT_EQ(Location().text(), "");
}

TEST(FileName, ThereIsOneCopyOfEach)
{
    const std::string* const a = host::fileName("a.mi");
    EXPECT_EQ(host::fileName("a.mi"), a);
    EXPECT_NE(host::fileName("b.mi"), a);
    EXPECT_EQ(*a, "a.mi");
}

} // namespace
