// SPDX-License-Identifier: BSD-3-Clause
// Every comparison against its rule, restated in the plainest form, over all that a float can be.
#include "comparison_orders.h"
#include "rules.h"

namespace {

using Relation = bool (*)(float a, float b);

constexpr Relation equal = [](float a, float b) { return a == b; };
constexpr Relation lessThan = [](float a, float b) { return a < b; };
constexpr Relation lessOrEqual = [](float a, float b) { return a <= b; };
constexpr Relation greaterThan = [](float a, float b) { return a > b; };
constexpr Relation greaterOrEqual = [](float a, float b) { return a >= b; };

/// Whether so many components, from the first, are in the relation.
bool first(std::size_t count, Relation relation, const Components& a, const Components& b)
{
    bool all = true;
    for (std::size_t component = 0; component < count; ++component)
        all = all && relation(a[component], b[component]);
    return all;
}

/// The rule of one relation on so many components.
Rule rule(const std::string& shader, std::size_t count, Relation relation, bool negated = false)
{
    return {shader, [=](const Inputs& in) {
                return truth(first(count, relation, in.at("input1"), in.at("input2")) != negated);
            }};
}

bool inRange(std::size_t count, const Components& input, const Components& lower, const Components& upper,
             const Inputs& flags)
{
    bool passes = first(count, greaterThan, input, lower);
    if (flags.at("includeLower")[0] != 0 && first(count, greaterOrEqual, input, lower))
        passes = true;
    if (!passes)
        return false;
    if (flags.at("includeUpper")[0] != 0 && first(count, greaterOrEqual, upper, input))
        return true;
    return first(count, greaterThan, upper, input);
}

Rule rangeRule(const std::string& shader, std::size_t count)
{
    return {shader, [count](const Inputs& in) {
                return truth(inRange(count, in.at("input"), in.at("lower"), in.at("upper"), in));
            }};
}

Components rasterRectangle(const Inputs& in)
{
    return truth(inRange(2, {in.at("raster_x")[0], in.at("raster_y")[0]},
                         {in.at("lowerX")[0], in.at("lowerY")[0]}, {in.at("upperX")[0], in.at("upperY")[0]},
                         in));
}

float sumOfProducts(const Components& a, const Components& b)
{
    const float x = a[0] * b[0], y = a[1] * b[1], z = a[2] * b[2];
    const float xy = x + y;
    return xy + z;
}

Components inBetween(const Inputs& in)
{
    const auto minus = [](float a, float b) { return a - b; };
    Components d = each(minus, in.at("end"), in.at("start"));
    Components u = each(minus, in.at("input"), in.at("start"));
    Components w = each(minus, in.at("input"), in.at("end"));
    const float length = static_cast<float>(std::sqrt(static_cast<double>(sumOfProducts(d, d))));
    if (length != 0) {
        const float factor = 1 / length;
        for (Components* const vector : {&d, &u, &w})
            for (float& component : *vector)
                component *= factor;
    }
    float s1 = sumOfProducts(u, d);
    float s2 = sumOfProducts(w, d);
    if (s1 < -1)
        s1 = -1;
    if (s2 > 1)
        s2 = 1;
    return truth(!(s1 > 1) && !(s2 < -1));
}

std::vector<Rule> rules()
{
    std::vector<Rule> all = {
        rule("vhEqualScalar_v1", 1, equal),
        rule("vhEqualVector_v1", 3, equal),
        rule("vhEqualColor_v1", 4, equal),
        rule("vhNotEqualScalar_v1", 1, equal, true),
        rule("vhNotEqualVector_v1", 3, equal), // the same as equal
        rule("vhNotEqualColor_v1", 4, equal, true),
        rangeRule("vhInRangeScalar_v1", 1),
        rangeRule("vhInRangeVector_v1", 3),
        rangeRule("vhInRangeColor_v1", 3),
        {"vhInBetweenVector_v1", inBetween},
        {"vhInRasterPositionRange_v1",
         rasterRectangle,
         false,
         {{"raster_x", &miState::raster_x}, {"raster_y", &miState::raster_y}}},
    };
    const std::pair<std::string, Relation> inOrder[] = {{"LessThan", lessThan},
                                                        {"LessThanOrEqual", lessOrEqual},
                                                        {"GreaterThan", greaterThan},
                                                        {"GreaterThanOrEqual", greaterOrEqual}};
    for (const auto& [name, relation] : inOrder) {
        all.push_back(rule("vh" + name + "Scalar_v1", 1, relation));
        all.push_back(rule("vh" + name + "Vector_v1", 3, relation));
        all.push_back(rule("vh" + name + "Color_v1", 3, relation));
    }
    return all;
}

TEST(ComparisonRules, AreThereForEveryShader) { expectRulesForAll(rules(), comparisonOrders()); }

class Comparison : public testing::TestWithParam<Rule> {};

TEST_P(Comparison, AgreesWithTheRule)
{
    Rule rule = GetParam();
    int trueOnes = 0, falseOnes = 0;
    rule.result = [&](const Inputs& in) {
        const Components result = GetParam().result(in);
        ++(result == truth(true) ? trueOnes : falseOnes);
        return result;
    };
    expectAgreement(rule);
    EXPECT_GT(trueOnes, 200);
    EXPECT_GT(falseOnes, 200);
}

INSTANTIATE_TEST_SUITE_P(Of, Comparison, testing::ValuesIn(rules()),
                         [](const auto& instance) { return instance.param.shader; });

} // namespace
