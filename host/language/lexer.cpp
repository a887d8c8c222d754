// SPDX-License-Identifier: BSD-3-Clause
#include "host/language/lexer.h"

#include "host/language/read.h"

#include <algorithm>
#include <array>
#include <bit>
#include <cfloat>
#include <charconv>
#include <cmath>
#include <cstdint>
#include <cstdlib>
#include <limits>
#include <unordered_map>

// What the scanner's file gives.
void* sceneNewScanner(host::language::Lexer* lexer);
void sceneDeleteScanner(void* scanner);
host::language::Lexer::Token sceneNextToken(host::language::Lexer& lexer, void* scanner);

namespace host::language {

namespace {

using Kind = Parser::token::token_kind_type;

/// The grammar's keywords are its tokens from the first to the last one, spelled as the grammar spells them.
const std::unordered_map<std::string_view, Kind>& keywords()
{
    static const auto table = [] {
        std::unordered_map<std::string_view, Kind> words;
        for (int kind = Parser::token::ACCELERATION; kind <= Parser::token::WRITABLE; ++kind)
            words[Parser::symbol_name(static_cast<Parser::symbol_kind_type>(kind))] = static_cast<Kind>(kind);
        return words;
    }();
    return table;
}

bool opens(Parser::symbol_kind_type kind)
{
    return kind == Parser::symbol_kind::S_OPEN_PARENTHESIS || kind == Parser::symbol_kind::S_OPEN_BRACKET ||
           kind == Parser::symbol_kind::S_OPEN_BRACE;
}

bool closes(Parser::symbol_kind_type kind)
{
    return kind == Parser::symbol_kind::S_CLOSE_PARENTHESIS || kind == Parser::symbol_kind::S_CLOSE_BRACKET ||
           kind == Parser::symbol_kind::S_CLOSE_BRACE;
}

float bigEndianFloat(const char* bytes)
{
    std::uint32_t word = 0;
    for (int i = 0; i < 4; ++i)
        word = word << 8 | static_cast<unsigned char>(bytes[i]);
    return std::bit_cast<float>(word);
}

/// A line or column further on; there is no place beyond the largest number.
int later(int place, std::size_t steps)
{
    constexpr int last = std::numeric_limits<int>::max();
    return steps > static_cast<std::size_t>(last - place) ? last : place + static_cast<int>(steps);
}

int hexValue(char digit) { return digit <= '9' ? digit - '0' : (digit | 0x20) - 'a' + 10; }

} // namespace

Lexer::Lexer(Session& session, std::unique_ptr<Source> source) : session_(session)
{
    sources_.push_back(std::move(source));
    tokenPlace_ = place();
    scanner_ = sceneNewScanner(this);
}

Lexer::~Lexer() { sceneDeleteScanner(scanner_); }

Lexer::Token Lexer::next()
{
    if (std::exchange(takeBody_, false))
        return body();
    if (ahead_) {
        Token token = std::move(*ahead_);
        ahead_.reset();
        last_ = token.kind();
        return token;
    }
    Token token = one();
    last_ = token.kind();
    return token.kind() == Parser::symbol_kind::S_END ? endOf(std::move(token)) : token;
}

// `end namespace` is one token: what it ends may itself have an end that can be left out.
Lexer::Token Lexer::endOf(Token end)
{
    Token what = one();
    if (what.kind() == Parser::symbol_kind::S_NAMESPACE)
        return Parser::make_END_NAMESPACE(end.location);
    ahead_.emplace(std::move(what));
    return end;
}

Lexer::Token Lexer::body()
{
    auto result = std::make_shared<PhenomenonBody>();
    const Location begin = place();
    while (true) {
        Token token = one();
        if (token.kind() == Parser::symbol_kind::S_YYEOF)
            throw Error(token.location, "found the end of the text, expected \"end declare\"");
        const bool end = token.kind() == Parser::symbol_kind::S_DECLARE && !result->tokens.empty() &&
                         result->tokens.back().kind() == Parser::symbol_kind::S_END;
        if (end)
            break;
        result->interfaces += token.kind() == Parser::symbol_kind::S_INTERFACE;
        result->tokens.push_back(std::move(token));
    }
    const Location end = result->tokens.back().location;
    result->tokens.pop_back();
    result->tokens.push_back(Parser::make_END_OF_FILE(end));
    return Parser::make_PHENOMENON_BODY(std::move(result), begin);
}

namespace {

bool begins(Parser::symbol_kind_type kind)
{
    using Kinds = Parser::symbol_kind;
    constexpr std::array all = {Kinds::S_OPTIONS, Kinds::S_CAMERA,   Kinds::S_LIGHT,    Kinds::S_MATERIAL,
                                Kinds::S_OBJECT,  Kinds::S_INSTANCE, Kinds::S_INSTGROUP};
    return std::find(all.begin(), all.end(), kind) != all.end();
}

} // namespace

Location Lexer::findDefinition(const std::string& name, UnknownName::Of of)
try {
    using Kinds = Parser::symbol_kind;
    lookingAhead_ = true;
    auto open = Kinds::S_YYEMPTY; // the element that is being defined
    auto last = last_;
    bool declares = last == Kinds::S_DECLARE; // the next name outside of brackets is a declaration's
    bool phenomenon = false;
    while (true) {
        const Token token = one();
        const auto kind = token.kind();
        if (kind == Kinds::S_YYEOF)
            return {};
        const bool outside = open == Kinds::S_YYEMPTY && !declares && depth_ == 0;
        if (kind == Kinds::S_STRING || kind == Kinds::S_SYMBOL) {
            const bool declared = declares && depth_ == 0;
            const bool shader = last == Kinds::S_SHADER && !declares && depth_ == 0;
            const bool element = shader || (outside && (last == Kinds::S_TEXTURE || begins(last)));
            const bool wanted = of == UnknownName::Of::declaration ? declared
                                : of == UnknownName::Of::shader    ? shader
                                                                   : element;
            if (wanted && token.value.as<std::string>() == name)
                return token.location;
            if (outside && begins(last))
                open = last;
            if (declared && phenomenon) // what is inside is private
                open = Kinds::S_DECLARE;
            declares = declares && !declared;
        } else if (outside && kind == Kinds::S_DECLARE && last != Kinds::S_END) {
            declares = true;
            phenomenon = false;
        } else if (declares && kind == Kinds::S_PHENOMENON) {
            phenomenon = true;
        } else if (kind == open && last == Kinds::S_END) {
            open = Kinds::S_YYEMPTY;
        }
        last = kind;
    }
} catch (const Error&) {
    return {};
}

Lexer::Token Lexer::one()
{
    Token token = sceneNextToken(*this, scanner_);
    if (skipNextBlock_ && opens(token.kind()))
        return skipBlock(token);
    countBrackets(token);
    return token;
}

void Lexer::countBrackets(const Token& token)
{
    if (closes(token.kind()))
        depth_ = std::max(0, depth_ - 1);
    else if (opens(token.kind()) && ++depth_ > maximumNesting)
        throw Error(token.location,
                    "brackets are nested deeper than " + std::to_string(maximumNesting) + " levels");
}

// What hosts put behind `gui` and `hardware` is a language of its own: it is taken as one token.
Lexer::Token Lexer::skipBlock(const Token& opening)
{
    skipNextBlock_ = false;
    const int outside = depth_;
    countBrackets(opening);
    while (depth_ > outside) {
        const Token token = sceneNextToken(*this, scanner_);
        if (token.kind() == Parser::symbol_kind::S_YYEOF)
            throw Error(opening.location, "this bracket is never closed");
        countBrackets(token);
    }
    return Parser::make_BLOCK(opening.location);
}

void Lexer::advance(std::string_view text)
{
    if (text.size() > maximumToken)
        refuseLength(text[0]);
    Location& place = sources_.back()->place;
    tokenPlace_ = place;
    const std::size_t lastNewline = text.rfind('\n');
    if (lastNewline == std::string_view::npos) {
        place.column = later(place.column, text.size());
        return;
    }
    place.line = later(place.line, static_cast<std::size_t>(std::count(text.begin(), text.end(), '\n')));
    place.column = static_cast<int>(text.size() - lastNewline);
}

std::size_t Lexer::read(char* bytes, std::size_t size, const char* token)
{
    if (static_cast<std::size_t>(bytes - token) > maximumToken) {
        tokenPlace_ = place();
        refuseLength(*token);
    }
    return sources_.back()->read(bytes, size);
}

void Lexer::refuseLength(char first) const
{
    const bool string = first == '"';
    const bool number = (first >= '0' && first <= '9') || first == '-' || first == '.';
    throw Error(place(), std::string("a ") +
                             (string   ? "string"
                              : number ? "number"
                                       : "name") +
                             " is longer than " + std::to_string(maximumToken) + " bytes");
}

void Lexer::unexpected(char byte) const
{
    if (byte > ' ' && byte < 127)
        fail(std::string("unexpected character '") + byte + "'");
    constexpr std::string_view digits = "0123456789abcdef";
    const auto code = static_cast<unsigned char>(byte);
    fail(std::string("unexpected byte 0x") + digits[code >> 4] + digits[code & 15]);
}

Lexer::Token Lexer::integer(std::string_view text) const
{
    int value = 0;
    const auto [end, problem] = std::from_chars(text.data(), text.data() + text.size(), value);
    if (problem != std::errc())
        fail("the integer " + std::string(text) + " does not fit into 32 bits");
    return Parser::make_INTEGER(value, tokenPlace_);
}

Lexer::Token Lexer::real(std::string_view text) const
{
    double value = 0;
    const auto [end, problem] = std::from_chars(text.data(), text.data() + text.size(), value);
    if (problem != std::errc())
        value = std::strtod(std::string(text).c_str(), nullptr); // tells too small from too large
    if (std::abs(value) > FLT_MAX)
        fail("the number " + std::string(text) + " is too large");
    return Parser::make_FLOAT(value, tokenPlace_);
}

std::string Lexer::unquoted(std::string_view quoted) const
{
    const std::string_view text = quoted.substr(1, quoted.size() - 2);
    if (text.find('\0') != std::string_view::npos)
        fail("a string holds a zero byte");
    std::string result;
    result.reserve(text.size());
    for (std::size_t i = 0; i < text.size(); ++i) {
        const bool escape = text[i] == '\\' && (text[i + 1] == '"' || text[i + 1] == '\\');
        result += text[escape ? ++i : i];
    }
    return result;
}

Lexer::Token Lexer::string(std::string_view quoted) const
{
    return Parser::make_STRING(unquoted(quoted), tokenPlace_);
}

Lexer::Token Lexer::word(std::string_view text)
{
    const auto keyword = keywords().find(text);
    if (keyword == keywords().end())
        return Parser::make_SYMBOL(std::string(text), tokenPlace_);
    skipNextBlock_ = keyword->second == Parser::token::GUI || keyword->second == Parser::token::HARDWARE;
    return Token(keyword->second, tokenPlace_);
}

Lexer::Token Lexer::binaryVector(const char* bytes) const
{
    const miVector vector{bigEndianFloat(bytes), bigEndianFloat(bytes + 4), bigEndianFloat(bytes + 8)};
    if (!std::isfinite(vector.x) || !std::isfinite(vector.y) || !std::isfinite(vector.z))
        fail("a binary vector holds a number that is not finite");
    return Parser::make_BINARY_VECTOR(vector, tokenPlace_);
}

void Lexer::beginBytes()
{
    digits_.clear();
    bytesPlace_ = tokenPlace_;
}

void Lexer::addBytes(std::string_view digits)
{
    digits_ += digits;
    if (digits_.size() > 2 * maximumByteString)
        fail("a byte string is longer than " + std::to_string(maximumByteString) + " bytes");
}

Lexer::Token Lexer::endBytes()
{
    if (digits_.size() % 2 != 0)
        fail("a byte string has an odd number of digits");
    std::vector<unsigned char> bytes(digits_.size() / 2);
    for (std::size_t i = 0; i < bytes.size(); ++i)
        bytes[i] = static_cast<unsigned char>(hexValue(digits_[2 * i]) * 16 + hexValue(digits_[2 * i + 1]));
    return Parser::make_BYTES(std::move(bytes), bytesPlace_);
}

} // namespace host::language
