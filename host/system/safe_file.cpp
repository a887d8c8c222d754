// SPDX-License-Identifier: BSD-3-Clause
#include "host/system/safe_file.h"

#include <cerrno>
#include <cstring>
#include <fcntl.h>
#include <filesystem>
#include <sys/mman.h>
#include <sys/stat.h>
#include <unistd.h>
#include <utility>
#include <vector>

namespace host {

namespace {

namespace fs = std::filesystem;

[[noreturn]] void fail(const std::string& name, const Location& where = {})
{
    throw Error(where, "cannot write \"" + name + "\": " + std::strerror(errno));
}

/// An open file that is closed, and one with a name that is removed as well unless it was kept.
class OpenFile {
public:
    OpenFile(std::string path, int flags)
        : path_(std::move(path)), descriptor_(open(path_.c_str(), flags | O_WRONLY | O_CLOEXEC, 0666)),
          temporary_(flags & O_CREAT)
    {
    }
    ~OpenFile()
    {
        if (descriptor_ < 0)
            return;
        ::close(descriptor_);
        if (temporary_)
            unlink(path_.c_str());
    }
    OpenFile(const OpenFile&) = delete;
    OpenFile& operator=(const OpenFile&) = delete;

    bool isOpen() const { return descriptor_ >= 0; }
    int descriptor() const { return descriptor_; }

    /// True when the file has got its final name.
    bool rename(const std::string& name)
    {
        temporary_ = ::rename(path_.c_str(), name.c_str()) != 0;
        return !temporary_;
    }

private:
    std::string path_;
    int descriptor_;
    bool temporary_;
};

/// The file that a name leads to, past symbolic links: replacing it must not replace a link.
std::string resolved(const std::string& name)
{
    std::error_code ignored;
    const fs::path real = fs::canonical(name, ignored);
    return ignored ? name : real.string();
}

/// Beside the target, so that renaming it needs no copy; hidden, and of this process only.
std::string temporaryFor(const std::string& target)
{
    const fs::path path(target);
    std::string name = ".";
    name.append(path.filename().string()).append(".").append(std::to_string(getpid())).append(".tmp");
    return (path.parent_path() / name).string();
}

bool isDevice(const std::string& target)
{
    std::error_code ignored;
    const fs::file_status status = fs::status(target, ignored);
    return fs::exists(status) && !fs::is_regular_file(status) && !fs::is_directory(status);
}

bool writeAll(int to, const char* bytes, std::size_t count)
{
    for (std::size_t written = 0; written < count;) {
        const ssize_t now = write(to, bytes + written, count - written);
        if (now < 0 && errno != EINTR)
            return false;
        written += std::size_t(std::max<ssize_t>(now, 0));
    }
    return true;
}

bool copy(int from, int to)
{
    std::vector<char> block(1 << 20);
    off_t offset = 0;
    for (;;) {
        const ssize_t count = pread(from, block.data(), block.size(), offset);
        if (count == 0)
            return true;
        if (count < 0)
            return false;
        offset += count;
        if (!writeAll(to, block.data(), std::size_t(count)))
            return false;
    }
}

} // namespace

MemoryFile::MemoryFile() : descriptor_(memfd_create("picture", MFD_CLOEXEC))
{
    if (descriptor_ < 0)
        throw Error(std::string("no memory for a picture file: ") + std::strerror(errno));
}

MemoryFile::~MemoryFile()
{
    if (descriptor_ >= 0)
        close(descriptor_);
}

MemoryFile::MemoryFile(MemoryFile&& other) noexcept : descriptor_(std::exchange(other.descriptor_, -1)) {}

std::string MemoryFile::path() const { return "/proc/self/fd/" + std::to_string(descriptor_); }

void checkWritable(const std::string& name, const Location& where)
{
    const std::string target = resolved(name);
    if (isDevice(target))
        return;
    if (fs::is_directory(target)) {
        errno = EISDIR;
        fail(name, where);
    }
    if (!OpenFile(temporaryFor(target), O_CREAT | O_TRUNC | O_NOFOLLOW).isOpen())
        fail(name, where);
}

void replaceFile(const std::string& name, const MemoryFile& contents)
{
    const std::string target = resolved(name);
    if (isDevice(target)) {
        const OpenFile device(target, 0);
        if (!device.isOpen() || !copy(contents.descriptor(), device.descriptor()))
            fail(name);
        return;
    }
    OpenFile file(temporaryFor(target), O_CREAT | O_TRUNC | O_NOFOLLOW);
    if (!file.isOpen() || !copy(contents.descriptor(), file.descriptor()) || fsync(file.descriptor()) != 0 ||
        !file.rename(target))
        fail(name);
    // The new name is in the folder, which has to reach the disk too; a folder that cannot be opened is no
    // loss.
    const fs::path folder = fs::path(target).parent_path();
    const int directory = open(folder.empty() ? "." : folder.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC);
    if (directory >= 0) {
        fsync(directory);
        close(directory);
    }
}

void replaceFile(const std::string& name, std::string_view contents)
{
    const MemoryFile file;
    if (!writeAll(file.descriptor(), contents.data(), contents.size()))
        fail(name);
    replaceFile(name, file);
}

} // namespace host
