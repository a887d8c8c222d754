// SPDX-License-Identifier: BSD-3-Clause
// What every kind of definition in a scene needs: names, references, warnings.
#pragma once

#include "host/session.h"

#include "host/shading/function.h"

#include <memory>
#include <set>
#include <string>
#include <string_view>
#include <unordered_set>
#include <utility>
#include <vector>

namespace host::language {

/// A name as it stands in the text.
struct Name {
    std::string text;
    Location where;
};

/// Elements of a phenomenon's network.
using NetworkMembers = std::unordered_set<miTag>;

/// Destroys an element, and the network of a phenomenon's definition with it.
void removeWithNetwork(Database& database, miTag tag);

/// One reading of scene text into a session: the text itself, or the body of a phenomenon for one definition.
class Context {
public:
    explicit Context(Session& session);

    /// The inside of a definition's network. Elements found in `former` are made anew and taken out of it.
    /// Throws Error when there is too much to expand.
    Context(const Context& outer, Function& definition, Scope names, NetworkMembers& former,
            std::size_t words);

    Session& session;

    /// How names are found here.
    const Setting& setting() const { return setting_; }

    /// `namespace "n"` and its end.
    void enterNamespace(const Name& name);
    void leaveNamespace();

    /// The network that is being made; null outside of phenomena.
    Expansion* expansion() const { return expansion_; }

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
        if (T* const found = dynamic_cast<T*>(&meant(element)))
            return *found;
        refuseKind(name, element, wanted);
    }
    Element& find(const Name& name, std::string_view wanted) const;

    /// The material or light that a definition of a phenomenon gives; other elements stand for themselves.
    Element& meant(Element& element) const;

    /// Puts a finished element into the database under its name as it stands in the text. A name that is
    /// taken already is one warning: an element of the same kind is then replaced for all who use it.
    miTag add(std::unique_ptr<Element> element);

    /// What `add` would replace is a definition of a phenomenon: the elements of its network.
    NetworkMembers networkOf(const std::string& name) const;

    /// Another name for an element, with the same warning.
    void alias(const Name& name, miTag tag);

    /// What statement is being read, for "expected ..." when very much could follow.
    std::string_view expectation = "a command";

    static void warn(const Location& where, const std::string& text);

    /// One warning for each thing that is accepted and has no effect.
    void ignored(const Location& where, const std::string& what);

    [[noreturn]] static void refuseKind(const Name& name, const Element& element, std::string_view wanted);

private:
    // What all contexts of one text share.
    struct Reading {
        std::set<std::string> ignored;
        std::size_t expandedWords = 0;
    };

    Element* taken(const std::string& name) const;
    void warnIfTaken(const Element* earlier, const std::string& name, const Location& where) const;

    Setting setting_;
    std::vector<Scope> around_; // of the namespaces that are open
    Expansion* expansion_ = nullptr;
    NetworkMembers* former_ = nullptr;
    int depth_ = 0; // of phenomena in phenomena
    bool incremental_ = false;
    std::shared_ptr<Reading> reading_;
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
