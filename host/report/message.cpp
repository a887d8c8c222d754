// SPDX-License-Identifier: BSD-3-Clause
#include "host/report/message.h"

#include <algorithm>
#include <array>
#include <atomic>
#include <cstdio>
#include <mutex>
#include <vector>

namespace host {

namespace {

std::atomic<int> verbosityInForce{defaultVerbosity};
thread_local int messageThread = 0;

struct Output {
    std::mutex lock;
    std::function<void(Level, std::string_view)> sink;
};

Output& output()
{
    static Output instance;
    return instance;
}

constexpr std::array<const char*, 8> classWords = {"", "fatal", "error", "warn", "info", "progr", "debug", "vdebg"};

} // namespace

void setVerbosity(int verbosity) { verbosityInForce = std::clamp(verbosity, 0, 7); }

int verbosity() { return verbosityInForce; }

bool shown(Level level) { return static_cast<int>(level) <= verbosityInForce; }

void message(Level level, std::string_view module, std::string_view text)
{
    if (!shown(level))
        return;
    std::array<char, 64> prefix{};
    const int length =
        std::snprintf(prefix.data(), prefix.size(), "%-4.*s 0.%d  %-5s: ", static_cast<int>(module.size()),
                      module.data(), messageThread, classWords[static_cast<std::size_t>(level)]);
    std::string line(prefix.data(), static_cast<std::size_t>(length));
    line += text;
    std::replace(line.begin(), line.end(), '\n', ' ');

    Output& out = output();
    const std::lock_guard guard(out.lock);
    if (out.sink) {
        out.sink(level, line);
        return;
    }
    line += '\n';
    std::fwrite(line.data(), 1, line.size(), stderr);
}

void messageFormat(Level level, std::string_view module, const char* format, std::va_list arguments)
{
    if (!shown(level))
        return;
    std::va_list again;
    va_copy(again, arguments);
    const int length = std::vsnprintf(nullptr, 0, format, arguments);
    if (length >= 0) {
        std::vector<char> text(static_cast<std::size_t>(length) + 1);
        std::vsnprintf(text.data(), text.size(), format, again);
        message(level, module, {text.data(), static_cast<std::size_t>(length)});
    }
    va_end(again);
}

void setMessageThread(int number) { messageThread = number; }

void setMessageSink(std::function<void(Level, std::string_view)> sink)
{
    Output& out = output();
    const std::lock_guard guard(out.lock);
    out.sink = std::move(sink);
}

} // namespace host
