// SPDX-License-Identifier: BSD-3-Clause
// Every conversion against its rule, restated in the plainest form, over all words and floats; its edges; and
// results that are structures, read member by member.
#include "conversion_orders.h"
#include "tests/core/floats.h"
#include "tests/harness/call.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <bit>
#include <climits>
#include <functional>
#include <map>
#include <set>

namespace {

using test::Call;

// ---- the rules, from words to words

using Words = std::vector<std::uint32_t>;
using Inputs = std::map<std::string, Words>;

float real(std::uint32_t word) { return std::bit_cast<float>(word); }
std::uint32_t word(float value) { return std::bit_cast<std::uint32_t>(value); }

Words filled(std::size_t count, float value) { return Words(count, word(value)); }

Words isOn(const Words& input)
{
    for (const std::uint32_t component : input)
        if (!(real(component) == 0))
            return {1};
    return {0};
}

float weighted(const Inputs& in)
{
    const Words& input = in.at("input");
    const Words& weights = in.at("weights");
    float sum = real(input[0]) * real(weights[0]);
    for (std::size_t i = 1; i < input.size(); ++i) {
        const float product = real(input[i]) * real(weights[i]);
        sum = sum + product;
    }
    return sum;
}

/// By way of doubles, which hold every integer.
Words truncated(float value)
{
    const double whole = std::isnan(value) ? 0 : std::trunc(double{value});
    const double held = std::clamp(whole, double{INT_MIN}, double{INT_MAX});
    return {static_cast<std::uint32_t>(static_cast<int>(held))};
}

Words joined(const Inputs& in, const std::vector<std::string>& parameters)
{
    Words all;
    for (const std::string& parameter : parameters)
        all.push_back(in.at(parameter)[0]);
    return all;
}

struct Rule {
    std::string shader;
    std::function<Words(const Inputs&)> result;
    bool sums = false; ///< which NaN a sum gives is the processor's choice
};

std::ostream& operator<<(std::ostream& out, const Rule& rule) { return out << rule.shader; }

std::vector<Rule> rules()
{
    const auto input = [](const Inputs& in) { return in.at("input"); };
    const auto filledFrom = [](std::size_t count, float (*value)(std::uint32_t)) {
        return [=](const Inputs& in) { return filled(count, value(in.at("input")[0])); };
    };
    const auto oneOrZero = [](std::uint32_t on) { return on == 0 ? 0.0f : 1.0f; };
    const auto number = [](std::uint32_t integer) { return static_cast<float>(static_cast<int>(integer)); };
    const auto on = [](const Inputs& in) { return isOn(in.at("input")); };
    const auto sum = [](const Inputs& in) { return Words{word(weighted(in))}; };
    const auto wholeSum = [](const Inputs& in) { return truncated(weighted(in)); };
    const auto repeated = [](std::size_t count) {
        return [count](const Inputs& in) { return Words(count, in.at("input")[0]); };
    };
    return {
        {"vhBoolean2Integer_v1", input},
        {"vhBoolean2Scalar_v1", filledFrom(1, oneOrZero)},
        {"vhBoolean2Vector_v1", filledFrom(3, oneOrZero)},
        {"vhBoolean2Color_v1", filledFrom(4, oneOrZero)},
        {"vhInteger2Boolean_v1", input},
        {"vhInteger2Scalar_v1", filledFrom(1, number)},
        {"vhInteger2Vector_v1", filledFrom(3, number)},
        {"vhInteger2Color_v1", filledFrom(4, number)},
        {"vhScalar2Boolean_v1", on},
        {"vhScalar2Integer_v1", [](const Inputs& in) { return truncated(real(in.at("input")[0])); }},
        {"vhScalar2Vector_v1", repeated(3)},
        {"vhScalar2Color_v1", repeated(4)},
        {"vhVector2Boolean_v1", on},
        {"vhVector2Integer_v1", wholeSum},
        {"vhVector2Scalar_v1", sum, true},
        {"vhVector2Color_v1",
         [](const Inputs& in) {
             const Words& v = in.at("input");
             return Words{v[0], v[1], v[2], word(1)};
         }},
        {"vhVector2Scalars_v1", input},
        {"vhColor2Boolean_v1", on},
        {"vhColor2Integer_v1", wholeSum},
        {"vhColor2Scalar_v1", sum, true},
        {"vhColor2Vector_v1",
         [](const Inputs& in) {
             const Words& c = in.at("input");
             return Words{c[0], c[1], c[2]};
         }},
        {"vhColor2Scalars_v1", input},
        {"vhScalars2Vector_v1",
         [](const Inputs& in) {
             return joined(in, {"x", "y", "z"});
         }},
        {"vhScalars2Color_v1",
         [](const Inputs& in) {
             return joined(in, {"r", "g", "b", "a"});
         }},
    };
}

// ---- the words

/// Any floats and integers, and the ones that matter often enough.
class AnyWord {
public:
    std::uint32_t real()
    {
        switch (choice_() % 8) {
        case 0: // where truncation shows
            return word(static_cast<float>(static_cast<int>(choice_() % 2001) - 1000) * 0.01f);
        case 1:
            return word(limits[choice_() % std::size(limits)]);
        default:
            return word(float_());
        }
    }

    /// Also of booleans: any word but 0 is on.
    std::uint32_t integer()
    {
        return choice_() % 2 ? integers[choice_() % std::size(integers)]
                             : static_cast<std::uint32_t>(choice_());
    }

private:
    static constexpr float limits[] = {0x1p31f,  0x1.fffffep30f,  0x1.000002p31f,  0x1p32f, 0x1p24f,
                                       -0x1p31f, -0x1.fffffep30f, -0x1.000002p31f, 0.0f,    -0.0f};
    static constexpr std::uint32_t integers[] = {
        0,          1,          0xFFFFFFFF, 2,          5,          0x100,      0x10000,    0x01000000,
        0x01000001, 0x01000003, 0xFEFFFFFF, 0x7FFFFFFF, 0x7FFFFF40, 0x80000000, 0x80000001, 0x7FC00000,
    };

    std::mt19937 choice_{20260101};
    AnyFloat float_{20260102};
};

/// Gives a parameter of all calls the same new value.
Words change(const std::vector<Call*>& calls, const host::Field& parameter, AnyWord& any)
{
    const auto give = [&](auto words) {
        const bool whole = parameter.type == host::Type::boolean || parameter.type == host::Type::integer;
        for (std::uint32_t& each : words)
            each = whole ? any.integer() : any.real();
        for (Call* const call : calls)
            call->change(parameter.name, words);
        return Words(words.begin(), words.end());
    };
    switch (parameter.type) {
    case host::Type::boolean:
    case host::Type::integer:
    case host::Type::scalar:
        return give(std::array<std::uint32_t, 1>{});
    case host::Type::vector:
        return give(std::array<std::uint32_t, 3>{});
    case host::Type::color:
        return give(std::array<std::uint32_t, 4>{});
    default:
        throw std::logic_error("no conversion has such a parameter");
    }
}

Words run(Call& call)
{
    const auto words = [](const auto& result) { return Words(result.begin(), result.end()); };
    switch (call.declaration().result.size) {
    case 4:
        return words(call.run<std::array<std::uint32_t, 1>>());
    case 12:
        return words(call.run<std::array<std::uint32_t, 3>>());
    default:
        return words(call.run<std::array<std::uint32_t, 4>>());
    }
}

// ---- the comparison

bool same(const Words& result, const Words& expected, bool anyNaN)
{
    return result == expected || (anyNaN && std::isnan(real(result[0])) && std::isnan(real(expected[0])));
}

std::string text(const Words& words)
{
    std::string all;
    for (const std::uint32_t each : words) {
        char one[64];
        std::snprintf(one, sizeof one, " 0x%08X (%.9g)", each, double{real(each)});
        all += one;
    }
    return all;
}

TEST(ConversionRules, AreThereForEveryShader)
{
    std::multiset<std::string> ruled, ordered;
    for (const Rule& rule : rules())
        ruled.insert(rule.shader);
    for (const Orders& orders : conversionOrders())
        ordered.insert(orders.shader);
    EXPECT_EQ(ruled, ordered);
}

class Conversion : public testing::TestWithParam<Rule> {};

TEST_P(Conversion, AgreesWithTheRule)
{
    const Rule& rule = GetParam();
    Call literal(rule.shader);
    Call connected(rule.shader);
    connected.connectAll();
    const std::vector<Call*> calls = {&literal, &connected};
    AnyWord any;
    for (int round = 0; round < 20000; ++round) {
        Inputs inputs;
        std::string given;
        for (const host::Field& parameter : literal.declaration().parameters) {
            inputs[parameter.name] = change(calls, parameter, any);
            given += "\n  " + parameter.name + text(inputs[parameter.name]);
        }
        const Words expected = rule.result(inputs);
        for (Call* const call : calls) {
            const Words result = run(*call);
            ASSERT_TRUE(same(result, expected, rule.sums))
                << (call == &literal ? "literal" : "connected") << " parameters:" << given << "\ngave"
                << text(result) << "\nexpected" << text(expected);
            ASSERT_EQ(call->returned(), 1);
        }
    }
}

INSTANTIATE_TEST_SUITE_P(Of, Conversion, testing::ValuesIn(rules()),
                         [](const auto& instance) { return instance.param.shader; });

// ---- the edges

void expectVector(const miVector& result, const miVector& expected)
{
    EXPECT_EQ(Exactly{result.x}, Exactly{expected.x});
    EXPECT_EQ(Exactly{result.y}, Exactly{expected.y});
    EXPECT_EQ(Exactly{result.z}, Exactly{expected.z});
}

void expectColor(const miColor& result, const miColor& expected)
{
    EXPECT_EQ(Exactly{result.r}, Exactly{expected.r});
    EXPECT_EQ(Exactly{result.g}, Exactly{expected.g});
    EXPECT_EQ(Exactly{result.b}, Exactly{expected.b});
    EXPECT_EQ(Exactly{result.a}, Exactly{expected.a});
}

template <class Result, class Input>
Result converted(const char* shader, const Input& input)
{
    return Call(shader).set("input", input).template run<Result>();
}

/// A boolean parameter whose word is neither 0 nor 1.
template <class Result>
Result ofWord(const char* shader, miInteger word)
{
    Call call(shader);
    return call.change("input", word).template run<Result>();
}

miInteger integer(float input) { return converted<miInteger>("vhScalar2Integer_v1", input); }

template <class Result, class Input>
Result reduced(const char* shader, const Input& input, const Input& weights)
{
    return Call(shader).set("input", input).set("weights", weights).template run<Result>();
}

miScalar scalar(const miColor& input, const miColor& weights)
{
    return reduced<miScalar>("vhColor2Scalar_v1", input, weights);
}

TEST(ConversionEdges, Scalar2IntegerTruncatesTowardsZero)
{
    EXPECT_EQ(integer(-2.9f), -2);
    EXPECT_EQ(integer(2.9f), 2);
    EXPECT_EQ(integer(-0.5f), 0);
    EXPECT_EQ(integer(0.999999f), 0);
    EXPECT_EQ(integer(-0.0f), 0);
}

TEST(ConversionEdges, Scalar2IntegerHoldsToTheLimitsAndGives0ForNaN)
{
    EXPECT_EQ(integer(0x1.fffffep30f), 2147483520) << "the last float below the limit";
    EXPECT_EQ(integer(0x1p31f), INT_MAX);
    EXPECT_EQ(integer(3e38f), INT_MAX);
    EXPECT_EQ(integer(infinity), INT_MAX);
    EXPECT_EQ(integer(-0x1.fffffep30f), -2147483520);
    EXPECT_EQ(integer(-0x1p31f), INT_MIN);
    EXPECT_EQ(integer(-0x1.000002p31f), INT_MIN);
    EXPECT_EQ(integer(-infinity), INT_MIN);
    EXPECT_EQ(integer(NaN), 0);
    EXPECT_EQ(integer(-NaN), 0);
}

TEST(ConversionEdges, SumsOutsideTheIntegersAreHeldToo)
{
    const miColor one = {1, 1, 1, 1};
    EXPECT_EQ(reduced<miInteger>("vhColor2Integer_v1", miColor{2e9f, 2e9f, 0, 0}, one), INT_MAX);
    EXPECT_EQ(reduced<miInteger>("vhColor2Integer_v1", miColor{0, 0, -2e9f, -2e9f}, one), INT_MIN);
    EXPECT_EQ(reduced<miInteger>("vhColor2Integer_v1", miColor{0, NaN, 0, 7}, one), 0);
    EXPECT_EQ(reduced<miInteger>("vhVector2Integer_v1", miVector{infinity, -infinity, 7}, miVector{1, 1, 1}),
              0);
}

TEST(ConversionEdges, SumsAreTruncatedOnceAtTheirEnd)
{
    const miColor input = {0.75f, 0.75f, 0.75f, 0.75f};
    EXPECT_EQ(reduced<miInteger>("vhColor2Integer_v1", input, miColor{1, 1, 1, 1}), 3);
    EXPECT_EQ(reduced<miInteger>("vhColor2Integer_v1", input, miColor{-1, -1, -1, -0.5f}), -2);
    EXPECT_EQ(reduced<miInteger>("vhVector2Integer_v1", miVector{0.75f, 0.75f, 0.75f}, miVector{1, 1, 1}), 2);
}

TEST(ConversionEdges, Color2ScalarWithoutWeightIsZero)
{
    for (const miColor& color : {miColor{1, 2, 3, 4}, miColor{-1, -2, -3, -4}, miColor{3e38f, 3e38f, 0, 1}})
        EXPECT_EQ(scalar(color, {0, 0, 0, 0}), 0);
}

TEST(ConversionEdges, Color2ScalarWithAllWeights1IsTheSumAlphaIncluded)
{
    EXPECT_EQ(scalar({1, 20, 300, 4000}, {1, 1, 1, 1}), 4321);
}

TEST(ConversionEdges, WeightsLeftOutAre1)
{
    EXPECT_EQ(converted<miScalar>("vhColor2Scalar_v1", miColor{1, 20, 300, 4000}), 4321);
    EXPECT_EQ(converted<miInteger>("vhColor2Integer_v1", miColor{1, 20, 300, 4000}), 4321);
    EXPECT_EQ(converted<miScalar>("vhVector2Scalar_v1", miVector{1, 20, 300}), 321);
    EXPECT_EQ(converted<miInteger>("vhVector2Integer_v1", miVector{1, 20, 300}), 321);
}

TEST(ConversionEdges, WeightsPickAMeanOrAChannel)
{
    EXPECT_FLOAT_EQ(scalar({0.1f, 0.2f, 0.6f, 1}, {1.0f / 3, 1.0f / 3, 1.0f / 3, 0}), 0.3f);
    EXPECT_EQ(scalar({0.1f, 0.2f, 0.6f, 0.7f}, {0, 0, 0, 1}), 0.7f);
}

TEST(ConversionEdges, SumsAreOfSinglePrecisionInTheOrderOfTheComponents)
{
    EXPECT_EQ(scalar({1e8f, 1, -1e8f, 1}, {1, 1, 1, 1}), 1) << "the first 1 is lost, the last is not";
    EXPECT_EQ(scalar({3e38f, 3e38f, -3e38f, -3e38f}, {1, 1, 1, 1}), infinity);
    EXPECT_EQ(scalar({3e38f, -3e38f, 3e38f, -3e38f}, {1, 1, 1, 1}), 0);
    EXPECT_EQ(reduced<miScalar>("vhVector2Scalar_v1", miVector{1e8f, 1, -1e8f}, miVector{1, 1, 1}), 0);
    EXPECT_EQ(reduced<miScalar>("vhVector2Scalar_v1", miVector{1e8f, -1e8f, 1}, miVector{1, 1, 1}), 1);
}

TEST(ConversionEdges, ProductsAreRoundedBeforeTheyAreSummed)
{
    const float x = 1 + 0x1p-12f; // its square is 1 + 2^-11 + 2^-24, of which the last does not fit
    EXPECT_EQ(scalar({-(1 + 0x1p-11f), x, 0, 0}, {1, x, 0, 0}), 0);
    EXPECT_EQ(reduced<miScalar>("vhVector2Scalar_v1", miVector{-(1 + 0x1p-11f), x, 0}, miVector{1, x, 0}), 0);
}

TEST(ConversionEdges, IntegersAndBooleansShareTheirWord)
{
    for (const miInteger word : {5, 1, 0, -1, 0x100, INT_MAX, INT_MIN}) {
        EXPECT_EQ(converted<miInteger>("vhInteger2Boolean_v1", word), word);
        EXPECT_EQ(ofWord<miInteger>("vhBoolean2Integer_v1", word), word);
    }
}

TEST(ConversionEdges, AnyWordBut0IsOn)
{
    for (const miInteger word : {5, 1, -1, 0x100, 0x10000, INT_MAX, INT_MIN}) {
        EXPECT_EQ(ofWord<miScalar>("vhBoolean2Scalar_v1", word), 1.0f) << word;
        expectVector(ofWord<miVector>("vhBoolean2Vector_v1", word), {1, 1, 1});
        expectColor(ofWord<miColor>("vhBoolean2Color_v1", word), {1, 1, 1, 1});
    }
}

TEST(ConversionEdges, OffIsTransparentBlack)
{
    expectColor(converted<miColor>("vhBoolean2Color_v1", false), {0, 0, 0, 0});
    expectVector(converted<miVector>("vhBoolean2Vector_v1", false), {0, 0, 0});
    EXPECT_EQ(Exactly{converted<miScalar>("vhBoolean2Scalar_v1", false)}, Exactly{0});
}

TEST(ConversionEdges, BooleansOfNumbersAre0Or1)
{
    EXPECT_EQ(converted<miBoolean>("vhScalar2Boolean_v1", 5.0f), 1);
    EXPECT_EQ(converted<miBoolean>("vhScalar2Boolean_v1", 1e-45f), 1);
    EXPECT_EQ(converted<miBoolean>("vhScalar2Boolean_v1", 0.0f), 0);
    EXPECT_EQ(converted<miBoolean>("vhScalar2Boolean_v1", -0.0f), 0);
    EXPECT_EQ(converted<miBoolean>("vhVector2Boolean_v1", miVector{-0.0f, 0, -0.0f}), 0);
    EXPECT_EQ(converted<miBoolean>("vhColor2Boolean_v1", miColor{-0.0f, 0, -0.0f, -0.0f}), 0);
}

TEST(ConversionEdges, NaNIsOn)
{
    EXPECT_EQ(converted<miBoolean>("vhScalar2Boolean_v1", NaN), 1);
    EXPECT_EQ(converted<miBoolean>("vhVector2Boolean_v1", miVector{0, 0, NaN}), 1);
    EXPECT_EQ(converted<miBoolean>("vhColor2Boolean_v1", miColor{NaN, 0, 0, 0}), 1);
    EXPECT_EQ(converted<miBoolean>("vhColor2Boolean_v1", miColor{0, 0, 0, NaN}), 1);
}

TEST(ConversionEdges, EachComponentAloneIsOnAlphaIncluded)
{
    for (int place = 0; place < 4; ++place) {
        std::array<float, 4> color{};
        color[static_cast<std::size_t>(place)] = 0.5f;
        EXPECT_EQ(converted<miBoolean>("vhColor2Boolean_v1", std::bit_cast<miColor>(color)), 1) << place;
        if (place < 3) {
            EXPECT_EQ(converted<miBoolean>("vhVector2Boolean_v1", miVector{color[0], color[1], color[2]}), 1)
                << place;
        }
    }
}

TEST(ConversionEdges, Color2BooleanCountsAlpha)
{
    EXPECT_EQ(converted<miBoolean>("vhColor2Boolean_v1", miColor{0, 0, 0, 0.5f}), 1);
}

TEST(ConversionEdges, AlphaIs1FromAVectorAndDroppedToAVector)
{
    expectColor(converted<miColor>("vhVector2Color_v1", miVector{1, 2, 3}), {1, 2, 3, 1});
    expectVector(converted<miVector>("vhColor2Vector_v1", miColor{1, 2, 3, NaN}), {1, 2, 3});
}

TEST(ConversionEdges, AScalarOrAnIntegerFillsAlphaToo)
{
    expectColor(converted<miColor>("vhScalar2Color_v1", 0.25f), {0.25f, 0.25f, 0.25f, 0.25f});
    expectColor(converted<miColor>("vhInteger2Color_v1", -3), {-3, -3, -3, -3});
}

TEST(ConversionEdges, IntegersAreRoundedToTheNearestFloatTiesToEven)
{
    EXPECT_EQ(converted<miScalar>("vhInteger2Scalar_v1", 16777217), 16777216.0f);
    EXPECT_EQ(converted<miScalar>("vhInteger2Scalar_v1", 16777219), 16777220.0f);
    EXPECT_EQ(converted<miScalar>("vhInteger2Scalar_v1", INT_MAX), 0x1p31f);
    EXPECT_EQ(converted<miScalar>("vhInteger2Scalar_v1", INT_MIN), -0x1p31f);
    EXPECT_EQ(Exactly{converted<miScalar>("vhInteger2Scalar_v1", 0)}, Exactly{0.0f});
}

TEST(ConversionEdges, AColorOfScalarsIsOpaqueWhenAlphaIsLeftOut)
{
    expectColor(Call("vhScalars2Color_v1").set("r", 0.1f).set("g", 0.2f).set("b", 0.3f).run<miColor>(),
                {0.1f, 0.2f, 0.3f, 1});
}

// ---- structures

using test::argument;
using test::connection;

TEST(ConversionMembers, OfAColorAreConnectedOneByOne)
{
    Call color("vhScalars2Color_v1");
    color.define("split", "vhColor2Scalars_v1", {argument("input", miColor{0.1f, 0.2f, 0.3f, 0.4f})});
    color.set("r", connection("split.b")).set("g", connection("split.a"));
    color.set("b", connection("split.r")).set("a", connection("split.g"));
    expectColor(color.run<miColor>(), {0.3f, 0.4f, 0.1f, 0.2f});
}

TEST(ConversionMembers, OfAVectorAreConnectedOneByOne)
{
    Call vector("vhScalars2Vector_v1");
    vector.define("split", "vhVector2Scalars_v1", {argument("input", miVector{1, 2, 3})});
    vector.set("x", connection("split.z")).set("y", connection("split.x")).set("z", connection("split.y"));
    expectVector(vector.run<miVector>(), {3, 1, 2});
}

TEST(ConversionMembers, ThatAreUnknownAreToldOf)
{
    Call color("vhScalars2Color_v1");
    color.define("split", "vhColor2Scalars_v1", {}).set("r", connection("split.x"));
    EXPECT_THROW(color.run<miColor>(), host::Error);
}

TEST(ConversionMembers, ComeOfOneRunHoweverManyAreRead)
{
    Call calls("vhColor2Scalars_v1"); // its record has the calls of all instances
    calls.record();
    Call color("vhScalars2Color_v1");
    color.define("leaf", "probe_color", {argument("value", miColor{1, 2, 3, 4}), argument("name", "leaf")})
        .define("split", "vhColor2Scalars_v1", {argument("input", connection("leaf"))});
    for (const char* const member : {"r", "g", "b", "a"})
        color.set(member, connection(std::string("split.") + member));
    expectColor(color.run<miColor>(), {1, 2, 3, 4});
    EXPECT_EQ(color.trace(), "leaf");
    EXPECT_EQ(std::ranges::count(calls.events(), "execute"), 1);
    color.run<miColor>();
    EXPECT_EQ(std::ranges::count(calls.events(), "execute"), 2) << "once more in the next sample";
}

} // namespace
