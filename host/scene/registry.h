// SPDX-License-Identifier: BSD-3-Clause
// `registry` entries: values that stand in file names, and what is done when an entry is looked up.
#pragma once

#include "host/report/error.h"

#include <cstddef>
#include <map>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace host {

class Registry {
public:
    struct Entry {
        std::string value;
        std::vector<std::pair<std::string, std::string>> actions; ///< "link", "mi" ... with their arguments
        Location where;
    };

    /// Replaces an entry of the same key.
    void define(const std::string& key, Entry entry) { entries_[key] = std::move(entry); }

    const Entry* find(std::string_view key) const;

    /// The text with each "{KEY}" replaced by the entry's value, in which the same is done; braces around
    /// anything else stay. Throws Error, with the place, when entries lead to one another without end.
    std::string expand(std::string_view text, const Location& where) const;

private:
    std::map<std::string, Entry, std::less<>> entries_;
};

} // namespace host
