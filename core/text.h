// SPDX-License-Identifier: BSD-3-Clause
// Joining and splitting text at a separator.
#pragma once

#include "api.h"

#include <vector>

namespace VHL {

/// The pieces one after another, each followed by the separator, the last one too. An empty list gives an
/// empty text. The caller frees the result with free().
VHL_API char* join(char separator, std::vector<char*> pieces);

/// Cuts the text in place, writing a NUL over each separator, and returns the pieces: pointers into the text.
///
/// The first character is never a separator. Separators side by side give empty pieces; one at the end gives
/// no empty last piece. An empty text is one empty piece.
VHL_API std::vector<char*> split(char separator, char* text);

} // namespace VHL
