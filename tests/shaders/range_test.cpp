// SPDX-License-Identifier: BSD-3-Clause
// Every range shader against its rule, restated in the plainest form, over all that a float can be.
#include "range_orders.h"
#include "rules.h"

namespace {

float clamped(float input, float lower, float upper)
{
    if (input < lower)
        return lower;
    if (upper < input)
        return upper;
    return input;
}

float compressed(float input, float lower, float upper)
{
    const float room = upper - lower;
    const float way = input * room;
    return lower + way;
}

float expanded(float input, float lower, float upper)
{
    const float way = input - lower;
    const float room = upper - lower;
    return way / room;
}

float reaching(float input, float threshold)
{
    const bool tooLittle = input < threshold || std::isnan(input) || std::isnan(threshold);
    return tooLittle ? 0 : input;
}

float exceeding(float input, float threshold) { return input == threshold ? 0 : reaching(input, threshold); }

using Three = float (*)(float input, float lower, float upper);

std::function<Components(const Inputs&)> withinBounds(Three apply)
{
    return [apply](const Inputs& in) {
        return each(apply, in.at("input"), operand(in, "lower", "Lower"), operand(in, "upper", "Upper"));
    };
}

/// Clamps the channels whose flags are on.
std::function<Components(const Inputs&)> byChannel(const std::string& channels)
{
    return [channels](const Inputs& in) {
        Components result = in.at("input");
        const Components all = withinBounds(clamped)(in);
        for (std::size_t channel = 0; channel < channels.size(); ++channel)
            if (in.at(std::string("clamp") + channels[channel])[0] != 0)
                result[channel] = all[channel];
        return result;
    };
}

std::function<Components(const Inputs&)> threshold(float (*apply)(float input, float threshold))
{
    return [apply](const Inputs& in) { return each(apply, in.at("input"), operand(in, "threshold", "")); };
}

std::vector<Rule> rules()
{
    return {
        {"vhClampScalar_v1", withinBounds(clamped), true},
        {"vhClampVector_v2", byChannel("XYZ"), true},
        {"vhClampColor_v3", byChannel("RGBA"), true},
        {"vhCompressScalar_v1", withinBounds(compressed)},
        {"vhCompressVector_v1", withinBounds(compressed)},
        {"vhCompressColor_v2", withinBounds(compressed)},
        {"vhExpandScalar_v1", withinBounds(expanded)},
        {"vhExpandVector_v1", withinBounds(expanded)},
        {"vhExpandColor_v2", withinBounds(expanded)},
        {"vhThresholdScalar_v1", threshold(reaching), true},
        {"vhThresholdVector_v1", threshold(reaching), true},
        {"vhThresholdColor_v2", threshold(exceeding), true},
    };
}

TEST(RangeRules, AreThereForEveryShader) { expectRulesForAll(rules(), rangeOrders()); }

class Range : public testing::TestWithParam<Rule> {};

TEST_P(Range, AgreesWithTheRule) { expectAgreement(GetParam()); }

INSTANTIATE_TEST_SUITE_P(Of, Range, testing::ValuesIn(rules()),
                         [](const auto& instance) { return instance.param.shader; });

} // namespace
