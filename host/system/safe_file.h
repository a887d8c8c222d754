// SPDX-License-Identifier: BSD-3-Clause
// Files that are written completely or not at all.
#pragma once

#include "host/report/error.h"

#include <string>
#include <string_view>

namespace host {

/// A file in memory that other code writes to by its path. Gone with its owner.
class MemoryFile {
public:
    MemoryFile();
    ~MemoryFile();
    MemoryFile(MemoryFile&& other) noexcept;
    MemoryFile(const MemoryFile&) = delete;
    MemoryFile& operator=(const MemoryFile&) = delete;

    std::string path() const;
    int descriptor() const { return descriptor_; }

private:
    int descriptor_;
};

/// Throws Error when a file of this name could not be written now: its folder is missing or closed, or the
/// name belongs to a folder. Leaves nothing behind.
void checkWritable(const std::string& name, const Location& where);

/// Makes the contents the file's. They are written to a temporary file beside it, which takes the name when
/// it is safely on the disk; a device or pipe is written to as it is. Throws Error with the system's reason,
/// and then nothing has changed.
void replaceFile(const std::string& name, const MemoryFile& contents);
void replaceFile(const std::string& name, std::string_view contents);

} // namespace host
