// SPDX-License-Identifier: BSD-3-Clause
// One open scene text and the place that has been reached in it.
#pragma once

#include "host/report/error.h"

#include <cstddef>
#include <cstdio>
#include <string>
#include <string_view>
#include <vector>

namespace host::language {

/// A $ifdef or $ifndef that is still open.
struct Conditional {
    Location where;
    bool selected = true;   ///< the text that is being read belongs to the scene
    bool otherwise = false; ///< its $else has been seen
};

/// Text from a file, a stream or memory, delivered piece by piece. Not copyable: it owns the file it opened.
class Source {
public:
    /// Opens a file. Throws Error, with the place that named it, for a folder or a file that cannot be read.
    Source(const std::string& file, const Location& namedAt);
    Source(std::FILE* stream, const std::string& name);
    Source(std::string_view text, const std::string& name);
    ~Source();
    Source(const Source&) = delete;
    Source& operator=(const Source&) = delete;

    /// Fills at most `size` bytes and returns how many there were; 0 at the end. Throws Error when reading
    /// fails.
    std::size_t read(char* bytes, std::size_t size);

    const std::string& name() const { return *place.file; }

    Location place; ///< of the next byte
    std::vector<Conditional> conditionals;

private:
    std::FILE* stream_ = nullptr;
    bool owned_ = false;
    std::string_view text_;
};

} // namespace host::language
