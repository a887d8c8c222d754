// SPDX-License-Identifier: BSD-3-Clause
#include "host/inspect/check.h"
#include "tests/host/inspect/scene.h"

#include <gtest/gtest.h>

using namespace host;

TEST(SceneCheck, CountsWhatTheRenderingWouldUse)
{
    SceneCheck check;
    EXPECT_FALSE(test::look(check,
                            "shader \"s\" \"split\" ( )\n"
                            "shader \"unused\" \"choose\" ( )\n"
                            "shader \"surface\" \"total\" ( \"start\" = \"s.mask\" )\n",
                            1, "instance \"quad-2\" \"quad\" end instance\n", "\"quad-2\""));
    EXPECT_EQ(check.summary(), "2 shaders, 1 material, 0 lights, 1 object with 1 polygon in 2 places");
}

TEST(SceneCheck, FindsWhatRenderingWouldFind)
{
    SceneCheck check;
    EXPECT_THROW(test::look(check, "declare shader color \"nowhere\" ( ) version 1 end declare\n"
                                   "shader \"surface\" \"nowhere\" ( )\n"),
                 Error);
    EXPECT_EQ(check.summary(), "");
}
