// SPDX-License-Identifier: BSD-3-Clause
// What a reader is told about text that the grammar does not take.
#include "host/language/lexer.h"

#include <algorithm>
#include <array>
#include <set>

namespace host::language {

namespace {

using Kind = Parser::symbol_kind;

constexpr int mostAlternatives = 8;
constexpr std::size_t longestQuote = 40;

bool isKeyword(Parser::symbol_kind_type kind)
{
    return kind >= Kind::S_ACCELERATION && kind <= Kind::S_WRITABLE;
}

std::string clipped(const std::string& text)
{
    return inQuotes(text.size() > longestQuote ? text.substr(0, longestQuote) + "..." : text);
}

std::string found(const Parser::symbol_type& token)
{
    switch (token.kind()) {
    case Kind::S_STRING:
        return "the string " + clipped(token.value.as<std::string>());
    case Kind::S_SYMBOL:
        return "the name " + clipped(token.value.as<std::string>());
    case Kind::S_INTEGER:
        return std::to_string(token.value.as<int>());
    case Kind::S_FLOAT:
        return numberText(token.value.as<double>());
    default:
        break;
    }
    const std::string name = Parser::symbol_name(token.kind());
    if (isKeyword(token.kind()))
        return "the keyword " + inQuotes(name);
    return name.size() == 1 ? inQuotes(name) : name;
}

/// What the keywords have in common that could have come, where they are too many to be listed.
std::string_view summary(const std::set<Parser::symbol_kind_type>& kinds, std::string_view statement)
{
    struct Family {
        Parser::symbol_kind_type member; ///< in no other family
        std::string_view name;
    };
    constexpr std::array families = {Family{Kind::S_BOOLEAN, "a type"},
                                     Family{Kind::S_APPLY, "a property of the shader"}};
    if (kinds.contains(Kind::S_ROOT) && kinds.contains(Kind::S_APPLY))
        return "a phenomenon statement";
    for (const Family& family : families)
        if (kinds.contains(family.member))
            return family.name;
    const bool commands = kinds.contains(Kind::S_YYEOF) || kinds.contains(Kind::S_END_NAMESPACE);
    if (kinds.contains(Kind::S_INSTGROUP) && !commands)
        return "a definition";
    const bool statements = kinds.contains(Kind::S_END) || commands;
    return statements ? statement : "a kind of shader";
}

/// What could have come, in the words of a reader: an integer is a number where a number is welcome.
std::string expected(const Parser::context& context, std::string_view expectation)
{
    constexpr int most = Kind::YYNTOKENS;
    std::array<Parser::symbol_kind_type, most> kinds{};
    const int count = context.expected_tokens(kinds.data(), most);
    const std::set<Parser::symbol_kind_type> all(kinds.begin(), kinds.begin() + count);

    std::vector<std::string> words;
    const auto keywords = std::count_if(all.begin(), all.end(), isKeyword);
    if (all.contains(Kind::S_STRING))
        words.push_back(all.contains(Kind::S_SYMBOL) ? "a name" : "a string");
    else if (all.contains(Kind::S_SYMBOL))
        words.push_back("a word");
    if (all.contains(Kind::S_FLOAT))
        words.push_back("a number");
    else if (all.contains(Kind::S_INTEGER))
        words.push_back("an integer");
    for (const Parser::symbol_kind_type kind : all) {
        const std::string name = Parser::symbol_name(kind);
        const bool named = kind == Kind::S_STRING || kind == Kind::S_SYMBOL || kind == Kind::S_FLOAT ||
                           kind == Kind::S_INTEGER || kind == Kind::S_BINARY_VECTOR ||
                           kind == Kind::S_YYEOF || kind == Kind::S_BODY_BEGIN;
        const bool synonym = kind == Kind::S_TRUE || kind == Kind::S_FALSE;
        if (named || synonym || (isKeyword(kind) && keywords > mostAlternatives && kind != Kind::S_END))
            continue;
        words.push_back(isKeyword(kind) || name.size() == 1 ? inQuotes(name) : name);
    }
    if (keywords > mostAlternatives)
        words.insert(words.begin(), std::string(summary(all, expectation)));
    return alternatives(words);
}

} // namespace

void Parser::report_syntax_error(const context& where) const
{
    const symbol_type& token = where.lookahead();
    const std::string wanted = expected(where, scene.context.expectation);
    throw Error(token.location, "found " + found(token) + (wanted.empty() ? "" : ", expected " + wanted));
}

// Never called: every mistake is thrown where it is found.
void Parser::error(const location_type& where, const std::string& text) { throw Error(where, text); }

} // namespace host::language
