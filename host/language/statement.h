// SPDX-License-Identifier: BSD-3-Clause
// The numbers behind a statement's keyword, checked.
#pragma once

#include "host/report/error.h"
#include "host/shading/value.h"

#include <shader.h>

#include <cstddef>
#include <initializer_list>
#include <string>
#include <string_view>
#include <vector>

namespace host::language {

/// A statement with its numbers: everything that a message about them needs.
struct Statement {
    std::string_view keyword;
    Location where;
    std::vector<Number> numbers;

    std::size_t size() const { return numbers.size(); }

    /// Throws Error unless the statement has one of these counts of numbers.
    void expect(std::initializer_list<std::size_t> counts) const;

    float real(std::size_t i) const { return static_cast<float>(numbers[i].value); }

    /// Throws Error for a number that is written with a point, or is outside the range.
    int integer(std::size_t i, int smallest, int largest) const;
    int integer(std::size_t i) const;

    /// Throws Error unless the number is above 0.
    float positive(std::size_t i) const;

    miVector vector(std::size_t first) const { return {real(first), real(first + 1), real(first + 2)}; }

    /// Three numbers or four; without the fourth the alpha is the one given here.
    miColor color(float alpha) const;

    void matrix(miMatrix result) const;

    [[noreturn]] void fail(const std::string& text) const;
};

/// The shortest text that is read as this number again.
std::string numberText(double number);

/// "a" or "a or b" or "a, b or c".
std::string alternatives(const std::vector<std::string>& words);

/// The letter or number of a word among those that a statement takes. Throws Error that lists them.
int choose(std::string_view keyword, const std::string& word, const Location& where,
           std::initializer_list<std::pair<std::string_view, int>> choices);

} // namespace host::language
