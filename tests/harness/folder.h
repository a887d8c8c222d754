// SPDX-License-Identifier: BSD-3-Clause
// A place for a test's files.
#pragma once

#include <string>
#include <vector>

namespace test {

/// A folder of its own for one test, removed with everything in it at the end.
class Folder {
public:
    Folder();
    ~Folder();
    Folder(const Folder&) = delete;
    Folder& operator=(const Folder&) = delete;

    /// The path of the folder, or of something in it.
    std::string path(const std::string& name = {}) const;
    /// Writes a file, in a folder of the folder when its name says so, and returns its path.
    std::string write(const std::string& name, const std::string& text) const;
    std::string read(const std::string& name) const;
    bool holds(const std::string& name) const;
    /// Names of everything in it, sorted.
    std::vector<std::string> names() const;

private:
    std::string path_;
};

} // namespace test
