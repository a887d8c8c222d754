// SPDX-License-Identifier: BSD-3-Clause
// The progress line on a terminal.
#pragma once

#include <chrono>
#include <string>

namespace host {

/// Draws "rendering  42.3%" on the last line of a terminal's error stream, keeps messages above it, and wipes
/// it when it goes. Does nothing when the error stream is no terminal. One at a time.
class ProgressLine {
public:
    /// `label` stands before the number. `terminal`: whether the error stream is one.
    explicit ProgressLine(std::string label, bool terminal = errorsGoToTerminal());
    ~ProgressLine();
    ProgressLine(const ProgressLine&) = delete;
    ProgressLine& operator=(const ProgressLine&) = delete;

    /// Shows a fraction from 0 to 1; redraws ten times a second at most. From one thread at a time.
    void show(double fraction);

    static bool errorsGoToTerminal();

private:
    const std::string label_;
    const bool drawn_;
    std::chrono::steady_clock::time_point next_{};
};

} // namespace host
