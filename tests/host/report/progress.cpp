// SPDX-License-Identifier: BSD-3-Clause
#include "host/report/progress.h"

#include "host/report/message.h"

#include <gtest/gtest.h>

namespace {

/// What a progress line and a message leave on the error stream.
std::string drawn(bool terminal)
{
    testing::internal::CaptureStderr();
    {
        host::ProgressLine line("rendering frame 1", terminal);
        line.show(0.5);
        line.show(0.75); // too soon to be drawn again
        host::message(host::Level::warning, "RC", "careful");
    }
    return testing::internal::GetCapturedStderr();
}

} // namespace

TEST(ProgressLine, ATerminalShowsItBelowTheMessagesAndWipesIt)
{
    const std::string wipe = "\r\033[K";
    EXPECT_EQ(drawn(true), wipe + "rendering frame 1  50.0%" + wipe + "RC   0.0  warn : careful\n" + wipe);
}

TEST(ProgressLine, APipeHasTheMessagesAlone) { EXPECT_EQ(drawn(false), "RC   0.0  warn : careful\n"); }

TEST(ProgressLine, SilenceIsSilence)
{
    host::setVerbosity(0);
    EXPECT_EQ(drawn(true), "");
    host::setVerbosity(host::defaultVerbosity);
}
