// SPDX-License-Identifier: BSD-3-Clause
#include "text.h"

#include <cstddef>
#include <cstring>
#include <string>

namespace VHL {

// By value because callers link against this signature.
// NOLINTNEXTLINE(performance-unnecessary-value-param)
char* join(char separator, std::vector<char*> pieces)
{
    std::string joined;
    for (const char* piece : pieces) {
        joined += piece;
        joined += separator;
    }
    return strdup(joined.c_str());
}

std::vector<char*> split(char separator, char* text)
{
    std::vector<char*> pieces;
    pieces.reserve(32);

    char* piece = text;
    const std::size_t length = std::strlen(text);
    for (std::size_t i = 1; i < length; ++i) {
        if (text[i] != separator)
            continue;
        text[i] = '\0';
        if (i + 1 < length) {
            pieces.push_back(piece);
            piece = text + i + 1;
        }
    }
    pieces.push_back(piece);
    return pieces;
}

} // namespace VHL
