// SPDX-License-Identifier: BSD-3-Clause
#include "host/language/tokens.h"

#include <algorithm>

namespace host::language {

namespace {

bool sameToken(const Parser::symbol_type& a, const Parser::symbol_type& b)
{
    using Kind = Parser::symbol_kind;
    const auto same = [&]<class T>(T) { return a.value.as<T>() == b.value.as<T>(); };
    if (a.kind() != b.kind())
        return false;
    switch (a.kind()) {
    case Kind::S_STRING:
    case Kind::S_SYMBOL:
        return same(std::string());
    case Kind::S_INTEGER:
        return same(int());
    case Kind::S_FLOAT:
        return same(double());
    case Kind::S_BYTES:
        return same(std::vector<unsigned char>());
    case Kind::S_BINARY_VECTOR: {
        const auto &v = a.value.as<miVector>(), &w = b.value.as<miVector>();
        return v.x == w.x && v.y == w.y && v.z == w.z;
    }
    default:
        return true;
    }
}

} // namespace

Replay::Token Replay::next()
{
    if (!std::exchange(begun_, true))
        return Parser::make_BODY_BEGIN(place());
    const Token& token = body_.tokens[next_];
    next_ = std::min(next_ + 1, body_.tokens.size() - 1);
    return token;
}

bool sameText(const PhenomenonBody& a, const PhenomenonBody& b)
{
    return std::equal(a.tokens.begin(), a.tokens.end(), b.tokens.begin(), b.tokens.end(), sameToken);
}

} // namespace host::language
