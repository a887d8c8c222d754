// SPDX-License-Identifier: BSD-3-Clause
#include "host/scene/registry.h"

namespace host {

namespace {

constexpr int maximumDepth = 32;
constexpr int maximumReplacements = 1000;
constexpr std::size_t maximumLength = std::size_t{64} * 1024;

class Expansion {
public:
    Expansion(const Registry& registry, const Location& where) : registry_(registry), where_(where) {}

    void append(std::string_view text, int depth)
    {
        while (true) {
            const std::size_t open = text.find('{');
            const std::size_t close = open == std::string_view::npos ? open : text.find('}', open);
            if (close == std::string_view::npos) {
                add(text);
                return;
            }
            // The key is the innermost pair of braces.
            const std::size_t begin = text.rfind('{', close);
            const std::string_view key = text.substr(begin, close + 1 - begin);
            add(text.substr(0, begin));
            const Registry::Entry* entry = registry_.find(key);
            if (!entry)
                entry = registry_.find(key.substr(1, key.size() - 2));
            if (!entry) {
                add(key);
            } else {
                if (depth == maximumDepth || ++replacements_ > maximumReplacements)
                    throw Error(where_, "registry entries lead to one another without end: " + inQuotes(key));
                append(entry->value, depth + 1);
            }
            text.remove_prefix(close + 1);
        }
    }

    std::string result;

private:
    void add(std::string_view text)
    {
        result += text;
        // Only replaced text is limited: what the scene writes out has its own limit.
        if (replacements_ > 0 && result.size() > maximumLength)
            throw Error(where_, "registry entries make a name longer than " + std::to_string(maximumLength) +
                                    " bytes");
    }

    const Registry& registry_;
    const Location& where_;
    int replacements_ = 0;
};

} // namespace

const Registry::Entry* Registry::find(std::string_view key) const
{
    const auto found = entries_.find(key);
    return found == entries_.end() ? nullptr : &found->second;
}

std::string Registry::expand(std::string_view text, const Location& where) const
{
    Expansion expansion(*this, where);
    expansion.append(text, 0);
    return std::move(expansion.result);
}

} // namespace host
