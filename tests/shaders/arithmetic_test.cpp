// SPDX-License-Identifier: BSD-3-Clause
// Every arithmetic shader against its rule, restated in the plainest form, over all that a float can be.
#include "arithmetic_orders.h"
#include "rules.h"

namespace {

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

Components inverted(const Inputs& in)
{
    return each([](float input, float maximum) { return maximum - input; }, in.at("input"),
                operand(in, "maximum", ""));
}

Components blended(const Inputs& in)
{
    return each([&](float a, float b) { return mixed(a, b, in.at("weight")[0]); }, operand(in, "input1", "1"),
                operand(in, "input2", "2"));
}

std::vector<Rule> rules()
{
    std::vector<Rule> all;
    const auto binary = [&all](const std::string& shader, const Binary& rule) {
        all.push_back({shader,
                       [&rule](const Inputs& in) {
                           return each(rule.apply, operand(in, "input1", "1"), operand(in, "input2", "2"));
                       },
                       rule.passes});
    };
    for (const char* const kind : {"Scalar_v1", "Vector_v1", "Color_v2"}) {
        for (const Binary& rule : binaries)
            binary("vh" + rule.name + kind, rule);
        for (const Unary& rule : unaries)
            all.push_back({"vh" + rule.name + kind,
                           [&rule](const Inputs& in) { return each(rule.apply, operand(in, "input", "")); },
                           rule.passes});
        all.push_back({std::string("vhInvert") + kind, inverted});
        all.push_back({std::string("vhMix") + kind, blended});
    }
    binary("vhSubAColor_v1", binaries[2]);
    all.push_back({"vhVectorNorm_v1", [](const Inputs& in) { return Components{length(in.at("input"))}; }});
    all.push_back({"vhNormalizeVector_v1", [](const Inputs& in) { return normalized(in.at("input")); }});
    return all;
}

TEST(ArithmeticRules, AreThereForEveryShader) { expectRulesForAll(rules(), arithmeticOrders()); }

class Arithmetic : public testing::TestWithParam<Rule> {};

TEST_P(Arithmetic, AgreesWithTheRule) { expectAgreement(GetParam()); }

INSTANTIATE_TEST_SUITE_P(Of, Arithmetic, testing::ValuesIn(rules()),
                         [](const auto& instance) { return instance.param.shader; });

} // namespace
