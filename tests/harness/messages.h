// SPDX-License-Identifier: BSD-3-Clause
// Catching the host's messages.
#pragma once

#include <string>
#include <vector>

namespace test {

/// Takes every message while it lives, at the verbosity given (7: all classes), in place of the error stream.
/// The threads that print have to be done before it is asked.
class Messages {
public:
    explicit Messages(int verbosity = 7);
    ~Messages();
    Messages(const Messages&) = delete;
    Messages& operator=(const Messages&) = delete;

    /// The lines so far, as they would have been printed.
    std::vector<std::string> lines() const;

    /// How many lines contain the text.
    int count(const std::string& text) const;

private:
    int outerVerbosity_;
    std::vector<std::string> lines_;
};

} // namespace test
