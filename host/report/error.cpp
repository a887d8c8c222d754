// SPDX-License-Identifier: BSD-3-Clause
#include "host/report/error.h"

#include <mutex>
#include <set>

namespace host {

std::string inQuotes(std::string_view text)
{
    std::string result(1, '"');
    for (const char c : text)
        result += (c >= 0 && c < ' ') || c == 127 ? '?' : c;
    result += '"';
    return result;
}

std::string Location::text() const
{
    return file ? *file + ':' + std::to_string(line) + ':' + std::to_string(column) : std::string();
}

const std::string* fileName(const std::string& name)
{
    static std::mutex lock;
    static std::set<std::string> names;
    const std::lock_guard guard(lock);
    return &*names.insert(name).first;
}

Error::Error(const Location& where, const std::string& text)
    : std::runtime_error(where.file ? where.text() + ": " + text : text)
{
}

} // namespace host
