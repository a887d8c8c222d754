// SPDX-License-Identifier: BSD-3-Clause
// Messages with the renderer's look: one line each on the error stream, filtered by verbosity.
#pragma once

#include <cstdarg>
#include <functional>
#include <string>
#include <string_view>

namespace host {

/// The renderer's classes in its order: verbosity N prints the first N, 0 prints nothing.
enum class Level { fatal = 1, error, warning, info, progress, debug, vdebug };

inline constexpr int defaultVerbosity = 3;

void setVerbosity(int verbosity);
int verbosity();

/// True when a message of this class would be printed, so that costly texts need not be built.
bool shown(Level level);

/// Prints "MOD  0.thread class: text" as one line: newlines in the text become blanks, lines of different
/// threads never interleave. `module` is a short name such as "RC", "MI", "SCEN".
void message(Level level, std::string_view module, std::string_view text);

/// The same for a printf format and its arguments: what the exported mi_info and its kin use.
void messageFormat(Level level, std::string_view module, const char* format, std::va_list arguments);

/// The number that stands after "0." in this thread's messages, 0 at first.
void setMessageThread(int number);

/// Receives every shown line (without its newline) in place of the error stream; an empty function restores the
/// stream. For tests and for front ends that draw progress. Called under a lock.
void setMessageSink(std::function<void(Level level, std::string_view line)> sink);

} // namespace host
