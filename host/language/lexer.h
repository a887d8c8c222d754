// SPDX-License-Identifier: BSD-3-Clause
// Scene text to tokens: directives are carried out here, so the grammar sees one stream of tokens.
#pragma once

#include "host/language/source.h"
#include "host/language/tokens.h"
#include "host/session.h"

#include <cstddef>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace host::language {

/// Reads tokens with bounded memory, whatever the text holds. Every member throws Error with the exact place.
class Lexer : public TokenSource {
public:
    Lexer(Session& session, std::unique_ptr<Source> source);
    ~Lexer() override;

    Token next() override;
    const Location& place() const override { return sources_.back()->place; }
    void takeBody() override { takeBody_ = true; }

    /// Reads on to where something of that name is defined or declared; no file when it is not. Only after a
    /// mistake: there are no tokens left then.
    Location findDefinition(const std::string& name, UnknownName::Of of);

    // The rest is for the scanner's rules.

    /// How the text that follows is to be read.
    enum class Mode { tokens, skipped, argument };

    /// A piece of text has been recognised: the place moves past it.
    void advance(std::string_view text);
    const Location& tokenPlace() const { return tokenPlace_; }

    /// More text for the scanner, which holds the beginning of a token from `token` up to `bytes`.
    std::size_t read(char* bytes, std::size_t size, const char* token);

    Mode directive(std::string_view word);
    Mode skippedDirective(std::string_view word);

    /// The latest directive's argument. How many files it put on top, whose text comes next.
    int argument(const std::string& name, bool alongPathFirst);
    Mode modeAfterArgument() const { return modeAfterArgument_; }

    /// The text on top has ended: throws when it left a conditional open.
    void checkEnd();
    /// Goes back to the text that included it; false when there is none.
    bool leave();

    Token integer(std::string_view text) const;
    Token real(std::string_view text) const;
    Token string(std::string_view quoted) const;
    Token word(std::string_view text);
    Token binaryVector(const char* bytes) const;

    void beginBytes();
    void addBytes(std::string_view digits);
    Token endBytes();

    /// The text between the quotes, escapes resolved.
    std::string unquoted(std::string_view quoted) const;

    [[noreturn]] void unexpected(char byte) const;
    [[noreturn]] void fail(const std::string& text) const { throw Error(tokenPlace_, text); }

private:
    Token one();
    Token endOf(Token end);
    Token body();
    void countBrackets(const Token& token);
    Token skipBlock(const Token& opening);
    int lookUp(const std::string& key);
    void include(const std::string& name, const std::string& beside, bool alongPathFirst);
    void refuseLength(char first) const;

    Session& session_;
    std::vector<std::unique_ptr<Source>> sources_;
    void* scanner_ = nullptr;
    Location tokenPlace_;

    std::string directive_;
    Mode modeAfterArgument_ = Mode::tokens;
    int skippedDepth_ = 0; // conditionals inside skipped text

    std::string digits_;
    Location bytesPlace_;
    int depth_ = 0; // open brackets
    bool skipNextBlock_ = false;
    bool takeBody_ = false;
    std::optional<Token> ahead_;
    Parser::symbol_kind_type last_ = Parser::symbol_kind::S_YYEMPTY; // handed out
    bool lookingAhead_ = false;                                      // nothing that is read takes effect
};

} // namespace host::language
