// SPDX-License-Identifier: BSD-3-Clause
#include "host/report/progress.h"

#include "host/report/message.h"

#include <cstdio>
#include <unistd.h>
#include <utility>

namespace host {

namespace {

constexpr const char* wipe = "\r\033[K"; // to the first column, erase to the end of the line

} // namespace

bool ProgressLine::errorsGoToTerminal() { return isatty(STDERR_FILENO); }

ProgressLine::ProgressLine(std::string label, bool terminal)
    : label_(std::move(label)), drawn_(terminal && shown(Level::error))
{
    if (drawn_)
        setMessageSink([](Level, std::string_view line) {
            std::fprintf(stderr, "%s%.*s\n", wipe, static_cast<int>(line.size()), line.data());
        });
}

ProgressLine::~ProgressLine()
{
    if (!drawn_)
        return;
    setMessageSink({});
    std::fputs(wipe, stderr);
}

void ProgressLine::show(double fraction)
{
    const auto now = std::chrono::steady_clock::now();
    if (!drawn_ || now < next_)
        return;
    next_ = now + std::chrono::milliseconds(100);
    std::fprintf(stderr, "%s%s %5.1f%%", wipe, label_.c_str(), 100.0 * fraction);
    std::fflush(stderr);
}

} // namespace host
