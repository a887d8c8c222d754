// SPDX-License-Identifier: BSD-3-Clause
// The scene database: owns every element and hands out tags.
#pragma once

#include "host/scene/element.h"

#include <atomic>
#include <deque>
#include <memory>
#include <string>
#include <string_view>
#include <unordered_map>

namespace host {

class RelocatedStrings;

/// Where names are defined and looked for: in a place of its own first, then from inside out.
struct Scope {
    std::string inside; ///< in front of the names defined here, "n::" in namespace n; nothing outside of all
    std::string around; ///< the same of the next place out

    /// The full name of what is defined here; "::name" stands outside of all namespaces.
    std::string qualified(std::string_view name) const;
};

/// Tags are 32-bit handles, 0 is the null tag. Adding, naming and removing happen in one thread while nothing
/// renders; everything else is safe from any thread.
class Database {
public:
    Database();
    ~Database();
    Database(const Database&) = delete;
    Database& operator=(const Database&) = delete;

    /// Takes the element, gives it a fresh tag and, when its name is not empty, makes the name point to it;
    /// an element that had the name keeps its tag and is reachable by it only.
    miTag add(std::unique_ptr<Element> element);

    template <class T>
    T& make(const std::string& name = {}, Location where = {})
    {
        auto element = std::make_unique<T>();
        T& result = *element;
        result.name = name;
        result.where = where;
        add(std::move(element));
        return result;
    }

    /// Puts the element in the place of one of the same kind, and destroys that: the tag and all names stay.
    void replace(miTag tag, std::unique_ptr<Element> element);

    /// Makes another name point to an element.
    void alias(const std::string& name, miTag tag) { names_[name] = tag; }

    /// Destroys the element, which aliases must not outlive. Its tag is never given again.
    void remove(miTag tag);

    /// The tag behind a name, 0 when there is none. "::name" is looked for outside of all namespaces only.
    miTag lookup(std::string_view name, const Scope& scope = {}) const;

    /// The element, or null for the null tag, an unknown or a removed one.
    Element* find(miTag tag) const noexcept;

    /// The element as a T, or null when it is not there or of another kind.
    template <class T>
    T* findAs(miTag tag) const noexcept
    {
        return dynamic_cast<T*>(find(tag));
    }

    /// Pins the element and returns its data: the same address for everybody until it is unpinned, and as
    /// long as the element exists unless strings are relocated. Null for an unknown tag. Counted: every pin
    /// needs one unpin.
    void* pin(miTag tag) noexcept;

    /// False when the element is not pinned or not there.
    bool unpin(miTag tag) noexcept;

    /// Pins that have not been given back.
    long pins(miTag tag) const noexcept;

    /// Off at first, as shaders may rely on strings that stay. On: a string goes to another address whenever
    /// its last pin is given back, and leaves garbage behind (relocated_strings.h). To be switched while
    /// nothing renders and no string is pinned.
    ///
    /// Only strings: shaders hold other records without pins, from their state or from mi_query.
    void relocateStrings(bool on);

    /// Highest tag in use.
    miTag last() const noexcept;

private:
    struct Entry {
        std::unique_ptr<Element> element;
        std::atomic<long> pins{0};
    };
    miTag named(const std::string& name) const;

    std::deque<Entry> entries_; // entry i holds tag i + 1
    std::unordered_map<std::string, miTag> names_;
    std::unique_ptr<RelocatedStrings> relocated_; // null: strings stay
};

} // namespace host
