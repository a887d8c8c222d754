// SPDX-License-Identifier: BSD-3-Clause
// The message functions of shaders.
#include "tests/harness/messages.h"

#include <gtest/gtest.h>
#include <shader.h>

#include <string>

namespace {

using test::Messages;

TEST(Message, EachClassHasItsWord)
{
    Messages messages(7);
    mi_error("%d lights", 4);
    mi_warning("w");
    mi_info("shading %d %s", 4, "lights");
    mi_progress("p");
    mi_debug("d");
    mi_vdebug("v");
    EXPECT_EQ(messages.lines(),
              (std::vector<std::string>{"RC   0.0  error: 4 lights", "RC   0.0  warn : w",
                                        "RC   0.0  info : shading 4 lights", "RC   0.0  progr: p",
                                        "RC   0.0  debug: d", "RC   0.0  vdebg: v"}));
}

TEST(Message, VerbosityNPrintsTheFirstNClasses)
{
    for (int verbosity = 0; verbosity <= 7; ++verbosity) {
        Messages messages(verbosity);
        mi_error("x");
        mi_warning("x");
        mi_info("x");
        mi_progress("x");
        mi_debug("x");
        mi_vdebug("x");
        EXPECT_EQ(messages.lines().size(), static_cast<std::size_t>(std::max(0, verbosity - 1))) << verbosity;
    }
}

TEST(Message, AMessageIsOneLine)
{
    Messages messages;
    mi_info("two\nlines\n");
    mi_info("%s", "");
    const std::string longText(100'000, 'x');
    mi_info("%s", longText.c_str());
    EXPECT_EQ(messages.lines(), (std::vector<std::string>{"RC   0.0  info : two lines ", "RC   0.0  info : ",
                                                          "RC   0.0  info : " + longText}));
}

TEST(MessageDeathTest, FatalEndsTheProcess)
{
    GTEST_FLAG_SET(death_test_style, "threadsafe"); // libraries of the host start threads
    EXPECT_EXIT(mi_fatal("no more %s", "lamps"), testing::ExitedWithCode(1),
                "RC   0.0  fatal: no more lamps\n");
}

} // namespace
