// SPDX-License-Identifier: BSD-3-Clause
#include "host/language/source.h"

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <filesystem>

namespace host::language {

namespace {

std::FILE* open(const std::string& file, const Location& namedAt)
{
    std::error_code ignored;
    if (std::filesystem::is_directory(file, ignored))
        throw Error(namedAt, "cannot read \"" + file + "\": it is a folder");
    std::FILE* const stream = std::fopen(file.c_str(), "rb");
    if (!stream)
        throw Error(namedAt, "cannot read \"" + file + "\": " + std::strerror(errno));
    return stream;
}

} // namespace

Source::Source(const std::string& file, const Location& namedAt)
    : place{fileName(file), 1, 1}, stream_(open(file, namedAt)), owned_(true)
{
}

Source::Source(std::FILE* stream, const std::string& name) : place{fileName(name), 1, 1}, stream_(stream) {}

Source::Source(std::string_view text, const std::string& name) : place{fileName(name), 1, 1}, text_(text) {}

Source::~Source()
{
    if (owned_)
        std::fclose(stream_);
}

std::size_t Source::read(char* bytes, std::size_t size)
{
    if (!stream_) {
        const std::size_t count = std::min(size, text_.size());
        std::copy_n(text_.data(), count, bytes);
        text_.remove_prefix(count);
        return count;
    }
    const std::size_t count = std::fread(bytes, 1, size, stream_);
    if (count == 0 && std::ferror(stream_))
        throw Error(place, std::string("reading fails: ") + std::strerror(errno));
    return count;
}

} // namespace host::language
