// SPDX-License-Identifier: BSD-3-Clause
// What every kind of definition in a scene needs: names, references, warnings.
#pragma once

#include "host/session.h"

#include <memory>
#include <set>
#include <string>
#include <string_view>
#include <utility>

namespace host::language {

/// A name as it stands in the text.
struct Name {
    std::string text;
    Location where;
};

/// One reading of scene text into a session.
class Context {
public:
    explicit Context(Session& session) : session(session) {}

    Session& session;

    /// The command `incremental`: holds for the next definition, which takes it.
    void announceIncremental() { incremental_ = true; }
    bool takeIncremental() { return std::exchange(incremental_, false); }

    /// The element of that name, or throws Error when there is none or it is of another kind; `wanted` is
    /// what the message calls what it should have been.
    template <class T>
    T& find(const Name& name, std::string_view wanted) const
    {
        Element& element = find(name, wanted);
        if (T* const found = dynamic_cast<T*>(&element))
            return *found;
        refuseKind(name, element, wanted);
    }
    Element& find(const Name& name, std::string_view wanted) const;

    /// Puts a finished element into the database; a name that is taken already is one warning.
    miTag add(std::unique_ptr<Element> element);

    /// Another name for an element, with the same warning.
    void alias(const Name& name, miTag tag);

    /// What statement is being read, for "expected ..." when very much could follow.
    std::string_view expectation = "a command";

    static void warn(const Location& where, const std::string& text);

    /// One warning for each thing that is accepted and has no effect.
    void ignored(const Location& where, const std::string& what);

    [[noreturn]] static void refuseKind(const Name& name, const Element& element, std::string_view wanted);

private:
    void warnIfTaken(const std::string& name, const Location& where) const;

    bool incremental_ = false;
    std::set<std::string> ignored_;
};

/// The element that is being defined: a fresh one, which enters the database at its end, or after
/// `incremental` the one that is there already.
template <class T>
class Definition {
public:
    /// True for a change of an existing element.
    bool begin(Context& context, const Name& name, std::string_view kind)
    {
        fresh_.reset();
        if (context.takeIncremental()) {
            element_ = &context.find<T>(name, kind);
            return true;
        }
        fresh_ = std::make_unique<T>();
        fresh_->name = name.text;
        fresh_->where = name.where;
        element_ = fresh_.get();
        return false;
    }

    void end(Context& context)
    {
        if (fresh_)
            context.add(std::move(fresh_));
    }

    T* operator->() { return element_; }
    T& operator*() { return *element_; }

private:
    std::unique_ptr<T> fresh_;
    T* element_ = nullptr;
};

} // namespace host::language
