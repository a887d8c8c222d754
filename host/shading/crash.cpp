// SPDX-License-Identifier: BSD-3-Clause
#include "host/shading/crash.h"

#include "host/report/message.h"
#include "host/shading/call.h"

#include <algorithm>
#include <array>
#include <csignal>
#include <cstdio>
#include <unistd.h>

namespace host {

namespace {

struct Crash {
    int signal;
    const char* text;
    struct sigaction before; ///< what was done about the signal
};

std::array<Crash, 5> crashes = {{{SIGSEGV, "invalid memory access", {}},
                                 {SIGBUS, "invalid memory access", {}},
                                 {SIGILL, "illegal instruction", {}},
                                 {SIGFPE, "arithmetic error", {}},
                                 {SIGABRT, "abort", {}}}};

/// "file:line:column: ", or nothing without a file.
std::array<char, 1024> where(const Location& location)
{
    std::array<char, 1024> text{};
    if (location.file)
        std::snprintf(text.data(), text.size(), "%s:%d:%d: ", location.file->c_str(), location.line,
                      location.column);
    return text;
}

/// The memory and the locks may be what is broken: the line takes none of them, which message() would.
void tell(const Running& now, const char* text)
{
    const Function& function = *now.function;
    const bool named = !function.name.empty();
    std::array<char, 3072> line;
    const int length =
        std::snprintf(line.data(), line.size(), "RC   0.%d  fatal: %sshader %s%s%s%s%s crashed: %s\n",
                      now.thread ? now.thread->number : 0, where(function.where).data(), named ? "\"" : "",
                      function.name.c_str(), named ? "\" (" : "", function.declaration().name.c_str(),
                      named ? ")" : "", text);
    const auto size = std::min(std::size_t(std::max(length, 0)), line.size() - 1);
    [[maybe_unused]] const auto written = ::write(STDERR_FILENO, line.data(), size); // no one is left to tell
}

void handle(int number, siginfo_t* info, void*)
{
    for (const Crash& crash : crashes)
        if (crash.signal == number) {
            if (running().function && shown(Level::fatal))
                tell(running(), crash.text);
            ::sigaction(number, &crash.before, nullptr);
            // An instruction that failed fails again; what was sent has to be sent again.
            if (info->si_code <= 0)
                ::raise(number);
        }
}

} // namespace

void nameCrashes()
{
    struct sigaction action = {};
    action.sa_sigaction = handle;
    action.sa_flags = SA_SIGINFO | SA_ONSTACK;
    for (Crash& crash : crashes)
        ::sigaction(crash.signal, &action, &crash.before);
}

} // namespace host
