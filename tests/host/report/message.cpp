// SPDX-License-Identifier: BSD-3-Clause
#include "host/report/message.h"

#include <gtest/gtest.h>

#include <string>
#include <thread>
#include <vector>

namespace {

using namespace host;

class MessageTest : public testing::Test {
protected:
    ~MessageTest() override
    {
        setMessageSink({});
        setVerbosity(defaultVerbosity);
    }

    /// What goes to the error stream meanwhile.
    template <class Action>
    static std::string printed(Action&& action)
    {
        testing::internal::CaptureStderr();
        action();
        return testing::internal::GetCapturedStderr();
    }
};

TEST_F(MessageTest, ALineNamesModuleThreadAndClass)
{
    setVerbosity(7);
    EXPECT_EQ(printed([] { message(Level::info, "RC", "shading 4 lights"); }),
              "RC   0.0  info : shading 4 lights\n");
    EXPECT_EQ(printed([] { message(Level::warning, "SCEN", "text"); }), "SCEN 0.0  warn : text\n");
    setMessageThread(3);
    EXPECT_EQ(printed([] { message(Level::progress, "RC", "50%"); }), "RC   0.3  progr: 50%\n");
    setMessageThread(0);
}

TEST_F(MessageTest, ByDefaultErrorsAndWarningsAreShown)
{
    EXPECT_EQ(verbosity(), 3);
    EXPECT_TRUE(shown(Level::fatal));
    EXPECT_TRUE(shown(Level::warning));
    EXPECT_FALSE(shown(Level::info));
    EXPECT_EQ(printed([] { message(Level::info, "RC", "hidden"); }), "");
}

TEST_F(MessageTest, VerbosityStaysWithinItsRange)
{
    setVerbosity(99);
    EXPECT_EQ(verbosity(), 7);
    setVerbosity(-1);
    EXPECT_EQ(verbosity(), 0);
    EXPECT_FALSE(shown(Level::fatal));
}

TEST_F(MessageTest, LinesOfManyThreadsDoNotMix)
{
    constexpr int threads = 8;
    constexpr int each = 200;
    const std::string all = printed([] {
        std::vector<std::thread> running;
        for (int t = 0; t < threads; ++t)
            running.emplace_back([t] {
                setMessageThread(t);
                for (int k = 0; k < each; ++k)
                    message(Level::error, "RC", std::string(50, static_cast<char>('a' + t)) + "\nend");
            });
        for (std::thread& thread : running)
            thread.join();
    });
    std::vector<int> lines(threads, 0);
    for (std::size_t begin = 0; begin < all.size();) {
        const std::size_t end = all.find('\n', begin);
        ASSERT_NE(end, std::string::npos);
        const std::string line = all.substr(begin, end - begin);
        const int thread = line.at(7) - '0';
        ASSERT_TRUE(thread >= 0 && thread < threads) << line;
        EXPECT_EQ(line, "RC   0." + std::to_string(thread) +
                            "  error: " + std::string(50, static_cast<char>('a' + thread)) + " end");
        ++lines[static_cast<std::size_t>(thread)];
        begin = end + 1;
    }
    EXPECT_EQ(lines, std::vector<int>(threads, each));
}

TEST_F(MessageTest, ASinkTakesTheLinesInPlaceOfTheStream)
{
    std::vector<std::string> lines;
    setMessageSink([&](Level level, std::string_view line) {
        EXPECT_EQ(level, Level::error);
        lines.emplace_back(line);
    });
    EXPECT_EQ(printed([] { message(Level::error, "RC", "text"); }), "");
    EXPECT_EQ(lines, std::vector<std::string>{"RC   0.0  error: text"});
}

} // namespace
