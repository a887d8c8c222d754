// SPDX-License-Identifier: BSD-3-Clause
// Every arithmetic shader against its rule, restated in the plainest form, over all that a float can be.
#include "arithmetic_orders.h"
#include "components.h"
#include "tests/harness/call.h"

#include <gtest/gtest.h>

#include <bit>
#include <cmath>
#include <cstdint>
#include <functional>
#include <map>
#include <ostream>
#include <random>

namespace {

using Inputs = std::map<std::string, Components>;

struct Rule {
    std::string shader;
    std::function<Components(const Inputs&)> result;
    bool passes = false; ///< one of its inputs comes out as it went in, down to the bits of a NaN
};

std::ostream& operator<<(std::ostream& out, const Rule& rule) { return out << rule.shader; }

// ---- the rules

/// A parameter's value, with the alpha that its flag decides on where it has one.
Components operand(const Inputs& inputs, const std::string& parameter, const std::string& number)
{
    Components value = inputs.at(parameter);
    const auto flag = inputs.find("useAlpha" + number);
    if (flag != inputs.end() && flag->second[0] == 0)
        value[3] = inputs.at("alpha" + number)[0];
    return value;
}

float mixed(float a, float b, float weight)
{
    if (weight < 0)
        weight = 0;
    if (weight > 100)
        weight = 100;
    const float w = weight / 100;
    const float rest = 1 - w;
    const float fromA = rest * a;
    const float fromB = w * b;
    return fromA + fromB;
}

float length(const Components& v)
{
    float sum = v[0] * v[0];
    sum += v[1] * v[1];
    sum += v[2] * v[2];
    return static_cast<float>(std::sqrt(static_cast<double>(sum)));
}

Components normalized(Components v)
{
    const float norm = length(v);
    if (norm == 0)
        return v;
    const float factor = 1 / norm;
    for (float& component : v)
        component *= factor;
    return v;
}

struct Binary {
    std::string name;
    float (*apply)(float a, float b);
    bool passes = false;
};
const Binary binaries[] = {
    {"Add", [](float a, float b) { return a + b; }},
    {"Sub", [](float a, float b) { return a - b; }},
    {"SubA", [](float a, float b) { return std::abs(a - b); }},
    {"Mult", [](float a, float b) { return a * b; }},
    {"Div", [](float a, float b) { return a / b; }},
    {"Mod", [](float a, float b) { return static_cast<float>(std::fmod(double{a}, double{b})); }},
    {"Max", [](float a, float b) { return a >= b ? a : b; }, true},
    {"Min", [](float a, float b) { return a < b ? a : b; }, true},
};

struct Unary {
    std::string name;
    float (*apply)(float a);
    bool passes = false;
};
const Unary unaries[] = {
    {"Floor", [](float a) { return static_cast<float>(std::floor(double{a})); }},
    {"Ceil", [](float a) { return static_cast<float>(std::ceil(double{a})); }},
    {"Null", [](float a) { return a; }, true},
    {"Const", [](float a) { return a; }, true},
};

Components each(const Components& a, const std::function<float(float)>& apply)
{
    Components result;
    for (const float component : a)
        result.push_back(apply(component));
    return result;
}

Components each(const Components& a, const Components& b, const std::function<float(float, float)>& apply)
{
    Components result;
    for (std::size_t component = 0; component < a.size(); ++component)
        result.push_back(apply(a[component], b[component]));
    return result;
}

Components inverted(const Inputs& in)
{
    return each(in.at("input"), operand(in, "maximum", ""),
                [](float input, float maximum) { return maximum - input; });
}

Components blended(const Inputs& in)
{
    return each(operand(in, "input1", "1"), operand(in, "input2", "2"),
                [&](float a, float b) { return mixed(a, b, in.at("weight")[0]); });
}

std::vector<Rule> rules()
{
    std::vector<Rule> all;
    const auto binary = [&all](const std::string& shader, const Binary& rule) {
        all.push_back({shader,
                       [&rule](const Inputs& in) {
                           return each(operand(in, "input1", "1"), operand(in, "input2", "2"), rule.apply);
                       },
                       rule.passes});
    };
    for (const char* const kind : {"Scalar_v1", "Vector_v1", "Color_v2"}) {
        for (const Binary& rule : binaries)
            binary("vh" + rule.name + kind, rule);
        for (const Unary& rule : unaries)
            all.push_back({"vh" + rule.name + kind,
                           [&rule](const Inputs& in) { return each(operand(in, "input", ""), rule.apply); },
                           rule.passes});
        all.push_back({std::string("vhInvert") + kind, inverted});
        all.push_back({std::string("vhMix") + kind, blended});
    }
    binary("vhSubAColor_v1", binaries[2]);
    all.push_back({"vhVectorNorm_v1", [](const Inputs& in) { return Components{length(in.at("input"))}; }});
    all.push_back({"vhNormalizeVector_v1", [](const Inputs& in) { return normalized(in.at("input")); }});
    return all;
}

// ---- the numbers

/// Numbers of every sort from one seeded source, the same on every machine.
class Numbers {
public:
    /// Half are any 32 bits; the others meet more often what would be rare among these.
    float real()
    {
        const std::uint32_t choice = source_() % 8;
        if (choice < 4)
            return latest_ = std::bit_cast<float>(static_cast<std::uint32_t>(source_()));
        if (choice < 6)
            return latest_ = std::bit_cast<float>(edges[source_() % std::size(edges)]);
        if (choice < 7)
            return latest_ = static_cast<float>(source_()) * 0x1p-32f * 300 - 100; // percentages, mostly
        return latest_;
    }

    /// Any word but 0 is on.
    miInteger boolean()
    {
        static constexpr miInteger words[] = {0, 1, 0, 1, 2, -1, 0x100, static_cast<miInteger>(0x80000000)};
        return words[source_() % std::size(words)];
    }

private:
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
};

// ---- the comparison

bool same(float result, float expected, bool exactly)
{
    return (!exactly && std::isnan(result) && std::isnan(expected)) ||
           std::bit_cast<std::uint32_t>(result) == std::bit_cast<std::uint32_t>(expected);
}

bool same(const Components& result, const Components& expected, bool exactly)
{
    return std::equal(result.begin(), result.end(), expected.begin(), expected.end(),
                      [exactly](float a, float b) { return same(a, b, exactly); });
}

std::string text(const Components& values)
{
    std::string all;
    for (const float value : values) {
        char one[64];
        std::snprintf(one, sizeof one, " %.9g (0x%08X)", double{value}, std::bit_cast<std::uint32_t>(value));
        all += one;
    }
    return all;
}

std::string text(const Inputs& inputs)
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
Components change(const std::vector<test::Call*>& calls, const host::Field& parameter, Numbers& numbers)
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
        throw std::logic_error("no arithmetic shader has such a parameter");
    }
}

TEST(ArithmeticRules, AreThereForEveryShader)
{
    std::multiset<std::string> ruled, ordered;
    for (const Rule& rule : rules())
        ruled.insert(rule.shader);
    for (const Orders& orders : arithmeticOrders())
        ordered.insert(orders.shader);
    EXPECT_EQ(ruled, ordered);
}

class Arithmetic : public testing::TestWithParam<Rule> {};

TEST_P(Arithmetic, AgreesWithTheRule)
{
    const Rule& rule = GetParam();
    test::Call literal(rule.shader);
    test::Call connected(rule.shader);
    connected.connectAll();
    const std::vector<test::Call*> calls = {&literal, &connected};
    const std::size_t size = literal.declaration().result.size;
    Numbers numbers;
    for (int round = 0; round < 20000; ++round) {
        Inputs inputs;
        for (const host::Field& parameter : literal.declaration().parameters)
            inputs[parameter.name] = change(calls, parameter, numbers);
        const Components expected = rule.result(inputs);
        for (test::Call* const call : calls) {
            const Components result = run(*call, size);
            ASSERT_TRUE(same(result, expected, rule.passes))
                << (call == &literal ? "literal" : "connected") << " parameters:" << text(inputs) << "\ngave"
                << text(result) << "\nexpected" << text(expected);
            ASSERT_EQ(call->returned(), 1);
        }
    }
}

INSTANTIATE_TEST_SUITE_P(Of, Arithmetic, testing::ValuesIn(rules()),
                         [](const auto& instance) { return instance.param.shader; });

} // namespace
