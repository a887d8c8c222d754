// SPDX-License-Identifier: BSD-3-Clause
// Shaders against their rules, restated in the plainest form, over all that a float can be.
#pragma once

#include "components.h"
#include "orders.h"
#include "tests/harness/call.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <bit>
#include <cmath>
#include <cstdint>
#include <cstdio>
#include <functional>
#include <map>
#include <ostream>
#include <random>
#include <set>

/// Values by parameter.
using Inputs = std::map<std::string, Components>;

/// Numbers of every sort from one seeded source, the same on every machine.
class Numbers {
public:
    /// Half are any 32 bits; the others meet more often what would be rare among these.
    float real()
    {
        if (mode_ == Mode::few)
            return few_[source_() % 2];
        if (mode_ == Mode::plain)
            return plain();
        const std::uint32_t choice = source_() % 8;
        if (choice < 4)
            return latest_ = std::bit_cast<float>(static_cast<std::uint32_t>(source_()));
        if (choice < 6)
            return latest_ = std::bit_cast<float>(edges[source_() % std::size(edges)]);
        if (choice < 7)
            return latest_ = plain();
        return latest_;
    }

    /// Any word but 0 is on.
    miInteger boolean()
    {
        static constexpr miInteger words[] = {0, 1, 0, 1, 2, -1, 0x100, static_cast<miInteger>(0x80000000)};
        return words[source_() % std::size(words)];
    }

    /// Begins another set of inputs. Some have but two different numbers, so that equal vectors, equal colors
    /// and bounds without room between them are met; some have plain ones only, so that sums of products are.
    void nextRound()
    {
        mode_ = Mode::any;
        const float one = real(), other = real();
        few_ = {one, other};
        mode_ = static_cast<Mode>(source_() % 4);
    }

private:
    enum class Mode { few, plain, any }; // and any for every further number

    /// Percentages, mostly.
    float plain() { return static_cast<float>(source_()) * 0x1p-32f * 300 - 100; }

    static constexpr std::uint32_t edges[] = {
        0x00000000, 0x80000000, // zeros
        0x3F800000, 0xBF800000, // ones
        0x3F000000, 0xBF000000, // halves
        0x42C80000, 0x42C80001, // 100 and the next
        0x00000001, 0x80000001, // the least denormals
        0x007FFFFF, 0x00800000, // the largest denormal, the least normal number
        0x4B000001, 0x4AFFFFFF, // where fractions end
        0x7F7FFFFF, 0xFF7FFFFF, // the largest numbers
        0x7F800000, 0xFF800000, // infinities
        0x7FC00000, 0xFFC00000, // quiet NaNs
        0x7F800001, 0xFFBFFFFF, // signalling NaNs
        0x1FB504F3, 0x5F3504F3, // near them squares leave the range
    };

    std::mt19937 source_{20240229};
    float latest_ = 0;
    Mode mode_ = Mode::any;
    std::array<float, 2> few_{};
};

/// What a shader makes of its parameters.
struct Rule {
    std::string shader;
    std::function<Components(const Inputs&)> result;
    bool passes = false; ///< one of its inputs comes out as it went in, down to the bits of a NaN

    /// Numbers of the state that the result depends on too, by their names among the inputs.
    std::map<std::string, float miState::*> state{};
};

inline std::ostream& operator<<(std::ostream& out, const Rule& rule) { return out << rule.shader; }

/// A parameter's value, with the alpha that its flag decides on where it has one: useAlpha1 and alpha1 for
/// the suffix "1".
inline Components operand(const Inputs& inputs, const std::string& parameter, const std::string& suffix)
{
    Components value = inputs.at(parameter);
    const auto flag = inputs.find("useAlpha" + suffix);
    if (flag != inputs.end() && flag->second[0] == 0)
        value[3] = inputs.at("alpha" + suffix)[0];
    return value;
}

/// An operation on floats for each component of its operands.
template <class Apply, class... More>
Components each(const Apply& apply, const Components& first, const More&... more)
{
    Components result;
    for (std::size_t component = 0; component < first.size(); ++component)
        result.push_back(apply(first[component], more[component]...));
    return result;
}

/// A result that is a boolean, as the number with its bits.
inline Components truth(bool holds) { return {std::bit_cast<float>(std::int32_t{holds})}; }

namespace rules {

inline bool same(float result, float expected, bool exactly)
{
    return (!exactly && std::isnan(result) && std::isnan(expected)) ||
           std::bit_cast<std::uint32_t>(result) == std::bit_cast<std::uint32_t>(expected);
}

inline bool same(const Components& result, const Components& expected, bool exactly)
{
    return std::equal(result.begin(), result.end(), expected.begin(), expected.end(),
                      [exactly](float a, float b) { return same(a, b, exactly); });
}

inline std::string text(const Components& values)
{
    std::string all;
    for (const float value : values) {
        char one[64];
        std::snprintf(one, sizeof one, " %.9g (0x%08X)", double{value}, std::bit_cast<std::uint32_t>(value));
        all += one;
    }
    return all;
}

inline std::string text(const Inputs& inputs)
{
    std::string all;
    for (const auto& [parameter, values] : inputs)
        all += "\n  " + parameter + text(values);
    return all;
}

template <std::size_t Count>
Components changeReal(const std::vector<test::Call*>& calls, const std::string& parameter, Numbers& numbers)
{
    std::array<float, Count> values;
    for (float& value : values)
        value = numbers.real();
    for (test::Call* const call : calls)
        call->change(parameter, values);
    return {values.begin(), values.end()};
}

/// Gives a parameter of all calls the same new value.
inline Components change(const std::vector<test::Call*>& calls, const host::Field& parameter,
                         Numbers& numbers)
{
    switch (parameter.type) {
    case host::Type::scalar:
        return changeReal<1>(calls, parameter.name, numbers);
    case host::Type::vector:
        return changeReal<3>(calls, parameter.name, numbers);
    case host::Type::color:
        return changeReal<4>(calls, parameter.name, numbers);
    case host::Type::boolean: {
        const miInteger word = numbers.boolean();
        for (test::Call* const call : calls)
            call->change(parameter.name, word);
        return {static_cast<float>(word)};
    }
    default:
        throw std::logic_error("no shader with a rule has such a parameter");
    }
}

} // namespace rules

/// Fails unless there is one rule for each shader of a family.
inline void expectRulesForAll(const std::vector<Rule>& rules, const std::vector<Orders>& family)
{
    std::multiset<std::string> ruled, ordered;
    for (const Rule& rule : rules)
        ruled.insert(rule.shader);
    for (const Orders& orders : family)
        ordered.insert(orders.shader);
    EXPECT_EQ(ruled, ordered);
}

/// Runs the rule's shader with a great many inputs, literal and connected.
inline void expectAgreement(const Rule& rule)
{
    test::Call literal(rule.shader);
    test::Call connected(rule.shader);
    connected.connectAll();
    const std::vector<test::Call*> calls = {&literal, &connected};
    const std::size_t size = literal.declaration().result.size;
    Numbers numbers;
    for (int round = 0; round < 20000; ++round) {
        numbers.nextRound();
        Inputs inputs;
        for (const host::Field& parameter : literal.declaration().parameters)
            inputs[parameter.name] = rules::change(calls, parameter, numbers);
        for (const auto& [name, member] : rule.state) {
            const float number = numbers.real();
            inputs[name] = {number};
            for (test::Call* const call : calls)
                call->state().*member = number;
        }
        const Components expected = rule.result(inputs);
        for (test::Call* const call : calls) {
            const Components result = run(*call, size);
            ASSERT_TRUE(rules::same(result, expected, rule.passes))
                << (call == &literal ? "literal" : "connected") << " parameters:" << rules::text(inputs)
                << "\ngave" << rules::text(result) << "\nexpected" << rules::text(expected);
            ASSERT_EQ(call->returned(), 1);
        }
    }
}
