// SPDX-License-Identifier: BSD-3-Clause
#include "host/session.h"

#include <gtest/gtest.h>

#include <optional>

namespace {

TEST(Session, TheCurrentOneIsTheLatestAlive)
{
    EXPECT_EQ(host::Session::current(), nullptr);
    std::optional<host::Session> first(std::in_place);
    EXPECT_EQ(host::Session::current(), &*first);
    {
        host::Session second;
        EXPECT_EQ(host::Session::current(), &second);
    }
    EXPECT_EQ(host::Session::current(), &*first);
    host::Session third;
    first.reset();
    EXPECT_EQ(host::Session::current(), &third);
}

} // namespace
