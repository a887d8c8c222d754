// SPDX-License-Identifier: BSD-3-Clause
// Running vhrender as its users do: a process with arguments, files and streams.
#pragma once

#include <cstddef>
#include <functional>
#include <string>
#include <vector>

namespace testing_host {

struct Outcome {
    int status = -1;      ///< exit status; 128 + n when signal n ended it
    std::string output;   ///< standard output
    std::string messages; ///< error stream
};

/// A folder of its own for one test, removed with everything in it at the end.
class Folder {
public:
    Folder();
    ~Folder();
    Folder(const Folder&) = delete;
    Folder& operator=(const Folder&) = delete;

    std::string path(const std::string& name = {}) const;
    void write(const std::string& name, const std::string& text) const;
    std::string read(const std::string& name) const;
    bool holds(const std::string& name) const;
    /// Names of everything in it, sorted.
    std::vector<std::string> names() const;

private:
    std::string path_;
};

/// How a run differs from the plain one.
struct Launch {
    std::string folder; ///< working directory
    std::vector<std::string> arguments;
    std::function<void(int)> feed; ///< writes standard input to a descriptor; none: an empty one
    long fileSizeLimit = -1;       ///< bytes after which writing files fails; -1: none
};

/// Runs vhrender to its end.
Outcome run(const Launch& launch);

/// Writes all bytes, or stops quietly when the reader is gone; false then.
bool feedBytes(int descriptor, const char* bytes, std::size_t size);

} // namespace testing_host
