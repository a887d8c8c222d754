// SPDX-License-Identifier: BSD-3-Clause
#include "host/language/statement.h"

#include "host/language/context.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <limits>

namespace host::language {

std::string numberText(double number)
{
    std::array<char, 32> text{};
    const auto [end, problem] = std::to_chars(text.data(), text.data() + text.size(), number);
    return {text.data(), end};
}

void Statement::fail(const std::string& text) const { throw Error(where, inQuotes(keyword) + ' ' + text); }

void Statement::expect(std::initializer_list<std::size_t> counts) const
{
    if (std::find(counts.begin(), counts.end(), size()) != counts.end())
        return;
    std::vector<std::string> words;
    for (const std::size_t count : counts)
        words.push_back(count == 0 ? "no" : std::to_string(count));
    const bool one = counts.size() == 1 && *counts.begin() == 1;
    fail("takes " + alternatives(words) + (one ? " number" : " numbers") + ", found " +
         std::to_string(size()));
}

int Statement::integer(std::size_t i) const
{
    return integer(i, std::numeric_limits<int>::min(), std::numeric_limits<int>::max());
}

int Statement::integer(std::size_t i, int smallest, int largest) const
{
    const Number& number = numbers[i];
    if (number.kind != Number::Kind::integer)
        fail("takes integers, found " + numberText(number.value));
    const int value = static_cast<int>(number.value);
    if (value < smallest || value > largest)
        fail("takes integers from " + std::to_string(smallest) + " to " + std::to_string(largest) +
             ", found " + std::to_string(value));
    return value;
}

float Statement::positive(std::size_t i) const
{
    if (!(real(i) > 0))
        fail("must be above 0, found " + numberText(numbers[i].value));
    return real(i);
}

miColor Statement::color(float alpha) const
{
    expect({3, 4});
    return {real(0), real(1), real(2), size() == 4 ? real(3) : alpha};
}

void Statement::matrix(miMatrix result) const
{
    expect({16});
    for (std::size_t i = 0; i < 16; ++i)
        result[i] = real(i);
}

std::string alternatives(const std::vector<std::string>& words)
{
    std::string text;
    for (std::size_t i = 0; i < words.size(); ++i)
        text += (i == 0 ? "" : i + 1 == words.size() ? " or " : ", ") + words[i];
    return text;
}

int choose(std::string_view keyword, const std::string& word, const Location& where,
           std::initializer_list<std::pair<std::string_view, int>> choices)
{
    std::vector<std::string> words;
    for (const auto& [text, value] : choices) {
        if (text == word)
            return value;
        words.emplace_back(text);
    }
    throw Error(where, inQuotes(keyword) + " takes " + alternatives(words) + ", found " + inQuotes(word));
}

} // namespace host::language
