// SPDX-License-Identifier: BSD-3-Clause
// Where the grammar's tokens come from: scene text, or the body of a phenomenon that was read before.
#pragma once

#include "host/language/grammar.h"
#include "host/scene/database.h"

#include <cstddef>
#include <memory>
#include <vector>

namespace host {

/// The text between a phenomenon's parameters and its end, read again for every definition.
struct PhenomenonBody {
    std::vector<language::Parser::symbol_type> tokens; ///< the last one is the end of the text
    std::size_t interfaces = 0;                        ///< how often parameters are used
    Scope names;                                       ///< of the declaration
};

namespace language {

class TokenSource {
public:
    using Token = Parser::symbol_type;

    TokenSource() = default;
    virtual ~TokenSource() = default;
    TokenSource(const TokenSource&) = delete;
    TokenSource& operator=(const TokenSource&) = delete;

    /// The next token; END_OF_FILE after the last one.
    virtual Token next() = 0;

    /// Where the next token is looked for.
    virtual const Location& place() const = 0;

    /// The next token is to be all tokens up to `end declare`, as one.
    virtual void takeBody() = 0;
};

/// The body of a phenomenon once more.
class Replay : public TokenSource {
public:
    explicit Replay(const PhenomenonBody& body) : body_(body) {}

    Token next() override;
    const Location& place() const override { return body_.tokens[next_].location; }
    void takeBody() override {} // phenomena are not declared inside phenomena

private:
    const PhenomenonBody& body_;
    bool begun_ = false;
    std::size_t next_ = 0;
};

/// True when two bodies say the same, wherever they stand.
bool sameText(const PhenomenonBody& a, const PhenomenonBody& b);

} // namespace language
} // namespace host
