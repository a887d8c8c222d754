// SPDX-License-Identifier: BSD-3-Clause
// Scene text to tokens: directives are carried out here, so the grammar sees one stream of tokens.
#pragma once

#include "host/language/grammar.h"
#include "host/language/source.h"
#include "host/session.h"

#include <cstddef>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

namespace host::language {

/// Reads tokens with bounded memory, whatever the text holds. Every member throws Error with the exact place.
class Lexer {
public:
    using Token = Parser::symbol_type;

    Lexer(Session& session, std::unique_ptr<Source> source);
    ~Lexer();
    Lexer(const Lexer&) = delete;
    Lexer& operator=(const Lexer&) = delete;

    /// The next token; END_OF_FILE after the last one.
    Token next();

    /// Where the next token is looked for.
    const Location& place() const { return sources_.back()->place; }

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

    /// The latest directive's argument. True when it put a file on top, whose text comes next.
    bool argument(const std::string& name, bool alongPathFirst);
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
    void countBrackets(const Token& token);
    Token skipBlock(const Token& opening);
    void include(const std::string& name, bool alongPathFirst);
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
};

} // namespace host::language
