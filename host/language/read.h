// SPDX-License-Identifier: BSD-3-Clause
// Reading scene text.
#pragma once

#include "host/session.h"

#include <cstdio>
#include <string>
#include <string_view>

namespace host {

/// Limits that keep hostile text from exhausting memory or stack.
inline constexpr int maximumNesting = 256; ///< brackets within one value or declaration
inline constexpr int maximumIncludes = 64; ///< $include within $include
inline constexpr std::size_t maximumToken = std::size_t(1024) * 1024; ///< bytes of one string, name or number
inline constexpr std::size_t maximumByteString = 1024;                ///< bytes of one byte string
inline constexpr std::size_t maximumPrefix = 1024; ///< bytes of the names of namespaces around
inline constexpr int maximumPhenomenonDepth = 64;  ///< phenomena within phenomena
inline constexpr std::size_t maximumExpandedWords = std::size_t(4) * 1024 * 1024; ///< of all their bodies

/// Reads a scene file; commands take effect as they are read. A name without the file is tried with ".mi"
/// appended. Throws Error with file, line and column and what was expected; whatever was read before stays.
void readScene(Session& session, const std::string& file);

/// The same from an open stream or from memory; `name` is used in messages and for files beside it.
void readScene(Session& session, std::FILE* stream, const std::string& name);
void readScene(Session& session, std::string_view text, const std::string& name);

} // namespace host
