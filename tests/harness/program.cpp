// SPDX-License-Identifier: BSD-3-Clause
#include "tests/harness/program.h"

#include <gtest/gtest.h>

#include <array>
#include <csignal>
#include <sys/resource.h>
#include <sys/wait.h>
#include <thread>
#include <unistd.h>

namespace test {

namespace {

std::string readAll(int descriptor)
{
    std::string text;
    std::array<char, 65536> buffer;
    for (ssize_t count; (count = ::read(descriptor, buffer.data(), buffer.size())) > 0;)
        text.append(buffer.data(), static_cast<std::size_t>(count));
    ::close(descriptor);
    return text;
}

} // namespace

bool feedBytes(int descriptor, const char* bytes, std::size_t size)
{
    while (size > 0) {
        const ssize_t count = ::write(descriptor, bytes, size);
        if (count <= 0)
            return false;
        bytes += count;
        size -= static_cast<std::size_t>(count);
    }
    return true;
}

Outcome run(const std::string& program, const Launch& launch)
{
    std::signal(SIGPIPE, SIG_IGN); // a reader that gives up is an expected outcome
    std::array<int, 2> input{};
    std::array<int, 2> output{};
    std::array<int, 2> messages{};
    if (::pipe(input.data()) != 0 || ::pipe(output.data()) != 0 || ::pipe(messages.data()) != 0) {
        ADD_FAILURE() << "no pipes";
        return {};
    }
    std::vector<std::string> words = {program};
    words.insert(words.end(), launch.arguments.begin(), launch.arguments.end());
    std::vector<char*> arguments;
    for (std::string& word : words)
        arguments.push_back(word.data());
    arguments.push_back(nullptr);

    const pid_t child = ::fork();
    if (child == 0) {
        if (launch.fileSizeLimit >= 0) {
            const rlimit limit{static_cast<rlim_t>(launch.fileSizeLimit),
                               static_cast<rlim_t>(launch.fileSizeLimit)};
            ::setrlimit(RLIMIT_FSIZE, &limit);
            std::signal(SIGXFSZ, SIG_IGN); // then writing fails, as on a full disk
        }
        ::dup2(input[0], STDIN_FILENO);
        ::dup2(output[1], STDOUT_FILENO);
        ::dup2(messages[1], STDERR_FILENO);
        for (const auto& pipe : {input, output, messages})
            for (const int descriptor : pipe)
                ::close(descriptor);
        if (::chdir(launch.folder.c_str()) == 0)
            ::execv(program.c_str(), arguments.data());
        ::_exit(127);
    }
    ::close(input[0]);
    ::close(output[1]);
    ::close(messages[1]);

    Outcome outcome;
    std::thread feeder([&] {
        if (launch.feed)
            launch.feed(input[1]);
        ::close(input[1]);
    });
    std::thread reader([&] { outcome.output = readAll(output[0]); });
    outcome.messages = readAll(messages[0]);
    reader.join();
    feeder.join();
    int status = 0;
    ::waitpid(child, &status, 0);
    outcome.status = WIFEXITED(status) ? WEXITSTATUS(status) : 128 + WTERMSIG(status);
    return outcome;
}

} // namespace test
