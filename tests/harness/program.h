// SPDX-License-Identifier: BSD-3-Clause
// Running a program as its users do: a process with arguments, files and streams.
#pragma once

#include <cstddef>
#include <functional>
#include <string>
#include <vector>

namespace test {

struct Outcome {
    int status = -1;      ///< exit status; 128 + n when signal n ended it
    std::string output;   ///< standard output
    std::string messages; ///< error stream
};

/// How a run differs from the plain one.
struct Launch {
    std::string folder; ///< working directory
    std::vector<std::string> arguments;
    std::function<void(int)> feed; ///< writes standard input to a descriptor; none: an empty one
    long fileSizeLimit = -1;       ///< bytes after which writing files fails; -1: none
};

/// Runs a program to its end.
Outcome run(const std::string& program, const Launch& launch);

/// Writes all bytes, or stops quietly when the reader is gone; false then.
bool feedBytes(int descriptor, const char* bytes, std::size_t size);

} // namespace test
