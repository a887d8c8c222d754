// SPDX-License-Identifier: BSD-3-Clause
#include "core/transforms.h"

#include "floats.h"

#include <gtest/gtest.h>

#include <cstring>
#include <functional>
#include <memory>
#include <string>
#include <vector>

using namespace VHL;

static_assert(std::is_abstract_v<dColorTransform> && std::is_abstract_v<dColorTransform1> &&
              std::is_abstract_v<dColorTransform4>);
static_assert(std::is_base_of_v<dColorTransform, dColorTransform1> &&
              std::is_base_of_v<dColorTransform, dColorTransform4>);
template <class Base, class... Transforms>
constexpr bool areAll = (std::is_base_of_v<Base, Transforms> && ...);
static_assert(areAll<dColorTransform1, dGamma, dSolarize, dClamp, dThreshold, dInvert, dBalance>);
static_assert(
    areAll<dColorTransform4, dExpand, dCompress, dMatteMult, dMatteDiv, dReorder, dSetColor, dSetAlpha>);
static_assert(kLogSpace == 0 && kLinearSpace == 1);

namespace {

const dColor one(1.0f);

void expectColor(const dColor& actual, const dColor& expected)
{
    for (int i = 0; i < 4; ++i)
        EXPECT_EQ(Exactly{actual[i]}, Exactly{expected[i]}) << "channel " << i;
}

/// A transform of single channels and the same in plain words.
struct Case {
    std::string name;
    std::shared_ptr<dColorTransform1> transform;
    std::function<float(float, int)> forward, backward;
};

float unchanged(float v, int) { return v; }

/// The power in more digits than a double has.
float power(float base, float exponent)
{
    return float(std::pow(static_cast<long double>(base), static_cast<long double>(exponent)));
}

Case clamp(dColor low, dColor high)
{
    return {"clamp", std::make_shared<dClamp>(low, high),
            [=](float v, int i) {
                if (low[i] > high[i])
                    return low[i];
                if (low[i] > v)
                    return low[i];
                if (v > high[i])
                    return high[i];
                return v;
            },
            unchanged};
}

Case solarize(dColor low, dColor mid, dColor high, float scale, int keepBelow, int keepAbove)
{
    return {"solarize " + std::to_string(keepBelow) + std::to_string(keepAbove),
            std::make_shared<dSolarize>(low, mid, high, scale, keepBelow, keepAbove),
            [=](float v, int i) {
                const float lowest = low[i] / scale, middle = mid[i] / scale, highest = high[i] / scale;
                if (lowest > v)
                    return keepBelow ? v : 0;
                if (middle > v)
                    return (v - lowest) / (middle - lowest);
                if (highest > v)
                    return (highest - v) / (highest - middle);
                return keepAbove ? v : 0;
            },
            [=](float v, int i) {
                const float lowest = low[i] / scale, middle = mid[i] / scale, highest = high[i] / scale;
                if (middle > v)
                    return lowest + (middle - lowest) * v;
                return highest - v * (highest - middle);
            }};
}

float bits(std::uint32_t pattern) { return std::bit_cast<float>(pattern); }

Case balance(_dColorSpace space, dColor offset, int unit)
{
    const std::string name = "balance " + std::to_string(space) + " unit " + std::to_string(unit);
    const auto transform = std::make_shared<dBalance>(space, offset, unit);
    if (space == kLogSpace) {
        const float k = unit == 1   ? bits(0x3a802008)
                        : unit == 2 ? bits(0x3c342d0b)
                        : unit == 3 ? bits(0x3d8721c8)
                                    : 0;
        return {name, transform, [=](float v, int i) { return v + offset[i] * k; },
                [=](float v, int i) { return v - offset[i] * k; }};
    }
    if (space == kLinearSpace) {
        const float k = unit == 1 ? bits(0x3c72b9f6) : unit == 2 ? bits(0x3e2aab8a) : unit == 3 ? 1 : 0;
        return {name, transform, [=](float v, int i) { return v * power(2, offset[i] * k); },
                [=](float v, int i) { return v / power(2, offset[i] * k); }};
    }
    return {name, transform, unchanged, unchanged};
}

/// Every transform of single channels, with settings that differ by channel.
std::vector<Case> cases()
{
    std::vector<Case> all;
    for (const dColor& gamma : {dColor(2.2f, 1, 0.45f, 1.8f), dColor(-1.5f, 0, -0.0f, 30)})
        all.push_back({"gamma", std::make_shared<dGamma>(gamma),
                       [=](float v, int i) { return power(v, 1 / gamma[i]); },
                       [=](float v, int i) { return power(v, gamma[i]); }});
    all.push_back(clamp({0, 0.2f, -1, 0.7f}, {1, 0.8f, 1, 0.3f}));
    const dColor threshold(0.5f, 0, -0.25f, 2);
    all.push_back({"threshold", std::make_shared<dThreshold>(threshold),
                   [=](float v, int i) { return threshold[i] > v ? 0 : v; }, unchanged});
    const dColor base(1, 0.5f, -1, 1.5f);
    all.push_back(
        {"invert", std::make_shared<dInvert>(base), [=](float v, int i) { return base[i] - v; }, unchanged});
    for (const int keep : {0, 1, 2, 3})
        all.push_back(solarize({0, 50, 100, 255}, {128, 100, 100, 128}, {255, 200, 100, 0}, 255, keep & 1,
                               -(keep & 2)));
    all.push_back(solarize(0.2f, 0.5f, 0.8f, 0, 1, 1));
    for (const int space : {0, 1, 2})
        for (const int unit : {0, 1, 2, 3, 4, -1})
            all.push_back(balance(_dColorSpace(space), {1, -7.5f, 1000.25f, 0.3f}, unit));
    return all;
}

/// Of a transformed channel in the integer's range: held in it, then to the nearest, halves down.
template <class Integer>
Integer rounded(float x)
{
    if (std::isnan(x))
        return 0;
    return Integer(std::ceil(std::min(std::max(double(x), 0.0), double(Integer(-1))) - 0.5));
}

} // namespace

TEST(Transforms, FollowTheirRules)
{
    for (const Case& c : cases()) {
        SCOPED_TRACE(c.name);
        AnyFloat any(61);
        for (int round = 0; round < rounds / 10; ++round)
            for (int i = 0; i < 4; ++i) {
                // Half of the values where most settings are.
                const float v = round % 2 ? any() : std::ldexp(any(), -126);
                ASSERT_EQ(Exactly{c.transform->transformFl(v, i)}, Exactly{c.forward(v, i)})
                    << v << " in channel " << i;
                ASSERT_EQ(Exactly{c.transform->inverseFl(v, i)}, Exactly{c.backward(v, i)})
                    << v << " in channel " << i;
            }
        for (int step = -300; step <= 600; ++step)
            for (int i = 0; i < 4; ++i) {
                const float v = float(step) / 256;
                ASSERT_EQ(Exactly{c.transform->transformFl(v, i)}, Exactly{c.forward(v, i)})
                    << v << " in channel " << i;
                ASSERT_EQ(Exactly{c.transform->inverseFl(v, i)}, Exactly{c.backward(v, i)})
                    << v << " in channel " << i;
            }
    }
}

TEST(Transforms, EveryIntegerValueGoesThroughTheFloatRule)
{
    for (const Case& c : cases()) {
        SCOPED_TRACE(c.name);
        for (int i = 0; i < 4; ++i) {
            for (int v = 0; v < 256; ++v) {
                const auto value = static_cast<unsigned char>(v);
                const float x = float(v) / 255;
                ASSERT_EQ(c.transform->transformCh(value, i), rounded<unsigned char>(c.forward(x, i) * 255))
                    << v;
                ASSERT_EQ(c.transform->inverseCh(value, i), rounded<unsigned char>(c.backward(x, i) * 255))
                    << v;
            }
            for (int v = 0; v < 65536; ++v) {
                const auto value = static_cast<unsigned short>(v);
                const float x = float(v) / 65535;
                ASSERT_EQ(c.transform->transformSh(value, i),
                          rounded<unsigned short>(c.forward(x, i) * 65535))
                    << v;
                ASSERT_EQ(c.transform->inverseSh(value, i), rounded<unsigned short>(c.backward(x, i) * 65535))
                    << v;
            }
        }
    }
}

TEST(Transforms, ColorsGoChannelByChannelAndAlphaIsSkippedUnlessWanted)
{
    for (const Case& c : cases()) {
        SCOPED_TRACE(c.name);
        AnyFloat any(62);
        for (const bool skip : {true, false}) {
            c.transform->setSkipAlpha(skip);
            EXPECT_EQ(c.transform->getSkipAlpha(), skip);
            for (int round = 0; round < 1000; ++round) {
                const dColor in(any(), any(), any(), any());
                dColor forward(0), backward(0);
                for (int i = 0; i < 4; ++i) {
                    forward[i] = c.forward(in[i], i);
                    backward[i] = c.backward(in[i], i);
                }
                if (skip)
                    forward.a() = backward.a() = in.a();
                expectColor(c.transform->transformCl(in), forward);
                expectColor(c.transform->inverseCl(in), backward);
                if (HasFailure())
                    return;
            }
        }
    }
}

TEST(Transforms, SkipAlphaAtFirst)
{
    for (const Case& c : cases())
        EXPECT_TRUE(c.transform->skipAlpha && c.transform->getSkipAlpha()) << c.name;
    EXPECT_TRUE(dSetAlpha(1).skipAlpha);
}

// A transform of somebody else's: gives one value, whatever comes in.
struct Always : dColorTransform1 {
    explicit Always(float given) : value(given) {}
    float transformFl(float, int) const override { return value; }
    float inverseFl(float, int) const override { return value; }
    float value;
};

TEST(Transforms, IntegersRoundHalvesDown)
{
    int halves = 0;
    for (int k = 0; k < 255; ++k) {
        const Always always((float(k) + 0.5f) / 255);
        if (always.value * 255 != float(k) + 0.5f)
            continue; // the multiplication back has rounded
        ++halves;
        EXPECT_EQ(always.transformCh(0, 0), k);
        EXPECT_EQ(always.inverseCh(0, 0), k);
        const Always more(std::nextafter(always.value, 2.0f) + 1e-6f);
        EXPECT_EQ(more.transformCh(0, 0), k + 1);
    }
    EXPECT_GT(halves, 100);
    EXPECT_EQ(Always(0.5f).transformCh(0, 0), 127);
    EXPECT_EQ(Always(0.5f).transformSh(0, 0), 32767);
    EXPECT_EQ(Always(0.5f).inverseSh(0, 0), 32767);
}

TEST(Transforms, IntegersJustBelowAnotherRoundToIt)
{
    // Added to 1 in single precision these would round up, and be one too large.
    EXPECT_EQ(Always(std::nextafter(1.0f, 0.0f) / 255).transformCh(0, 0), 1);
    for (const float whole : {1.0f, 2.0f, 32.0f, 128.0f, 32768.0f}) {
        const float below = std::nextafter(whole, 0.0f);
        float value = below / 65535;
        while (value * 65535 > below)
            value = std::nextafter(value, 0.0f);
        EXPECT_EQ(Always(value).transformSh(0, 0), int(whole));
    }
}

TEST(Transforms, IntegersAreHeldInTheirRange)
{
    for (const float above : {1.001f, 2.0f, 1e30f, infinity}) {
        EXPECT_EQ(Always(above).transformCh(0, 0), 255);
        EXPECT_EQ(Always(above).inverseSh(0, 0), 65535);
        EXPECT_EQ(Always(-above).transformCh(0, 0), 0);
        EXPECT_EQ(Always(-above).inverseSh(0, 0), 0);
    }
    EXPECT_EQ(Always(NaN).transformCh(9, 0), 0);
    EXPECT_EQ(Always(NaN).transformSh(9, 0), 0);
}

TEST(Transforms, HaveTheirOperationsInOrder)
{
    // As the platform's pointer to a virtual member holds it: the offset in the table, plus 1.
    const auto slot = [](auto member) {
        std::ptrdiff_t first = 0;
        std::memcpy(&first, &member, sizeof first);
        return (first - 1) / std::ptrdiff_t(sizeof(void*));
    };
    EXPECT_EQ(slot(&dColorTransform::transformCl), 2); // after the two destructors
    EXPECT_EQ(slot(&dColorTransform::transformFl), 3);
    EXPECT_EQ(slot(&dColorTransform::transformCh), 4);
    EXPECT_EQ(slot(&dColorTransform::transformSh), 5);
    EXPECT_EQ(slot(&dColorTransform::inverseCl), 6);
    EXPECT_EQ(slot(&dColorTransform::inverseFl), 7);
    EXPECT_EQ(slot(&dColorTransform::inverseCh), 8);
    EXPECT_EQ(slot(&dColorTransform::inverseSh), 9);
}

TEST(Gamma, OfOneChangesNothing)
{
    dGamma gamma(dColor(1, 1, 1, 0));
    AnyFloat any(63);
    for (int round = 0; round < 10'000; ++round) {
        const dColor c(any(), any(), any(), any());
        expectColor(gamma.transformCl(c), c);
        expectColor(gamma.inverseCl(c), c);
    }
}

TEST(Gamma, OfZeroIsAnInfinitePower)
{
    dGamma gamma(0.0f);
    expectColor(gamma.transformCl({0.5f, 2, 1, 0.25f}), {0, infinity, 1, 0.25f});
    gamma.setGamma({1, 1, 1, 0});
    expectColor(gamma.gamma, {1, 1, 1, 0});
    EXPECT_EQ(gamma.transformFl(0.25f, 3), 0.0f);
}

TEST(Gamma, OfANegativeColorIsNaN)
{
    EXPECT_TRUE(std::isnan(dGamma(2.2f).transformFl(-0.5f, 0)));
    EXPECT_EQ(dGamma(0.5f).transformFl(-3, 0), 9.0f);
    EXPECT_EQ(dGamma(-1.0f).transformFl(0.25f, 0), 4.0f);
}

TEST(Clamp, LowWinsWhenBoundsAreSwapped)
{
    const dClamp clamp(dColor(0.75f), dColor(0.25f));
    for (const float v : {-1.0f, 0.25f, 0.5f, 0.75f, 2.0f, NaN, infinity})
        EXPECT_EQ(clamp.transformFl(v, 1), 0.75f);
    EXPECT_TRUE(std::isnan(dClamp(0.0f, 1.0f).transformFl(NaN, 0)));
}

TEST(Invert, BackIsNotTheInverse)
{
    const dInvert invert(one);
    EXPECT_EQ(invert.inverseFl(0.25f, 0), 0.25f);
    expectColor(invert.inverseCl(invert.transformCl({0.25f, 0, 1, 0.5f})), {0.75f, 1, 0, 0.5f});
}

TEST(Solarize, BoundsBelongToWhatIsAbove)
{
    for (const int keep : {0, 1}) {
        const dSolarize solarize(0.25f, 0.5f, 1.0f, 1, keep, keep);
        EXPECT_EQ(solarize.transformFl(0.25f, 0), 0.0f);
        EXPECT_EQ(solarize.transformFl(0.375f, 0), 0.5f);
        EXPECT_EQ(solarize.transformFl(0.5f, 0), 1.0f);
        EXPECT_EQ(solarize.transformFl(0.75f, 0), 0.5f);
        EXPECT_EQ(solarize.transformFl(1, 0), float(keep));
        EXPECT_EQ(solarize.transformFl(0.125f, 0), keep ? 0.125f : 0.0f);
    }
}

TEST(Solarize, StoresItsColorsInTheRangeOfOne)
{
    const dSolarize solarize({0, 51, 102, 153}, 127.5f, 255.0f, 255, 7, 9);
    expectColor(solarize.low, {0, 51 / 255.0f, 102 / 255.0f, 153 / 255.0f});
    expectColor(solarize.mid, 0.5f);
    expectColor(solarize.high, 1.0f);
    EXPECT_EQ(solarize.scale, 255.0f);
    EXPECT_EQ(solarize.keepBelow, 7);
    EXPECT_EQ(solarize.keepAbove, 9);
    expectColor(dSolarize({0, 1, -1, 2}, one, one, 0, 0, 0).low, {NaN, infinity, -infinity, infinity});
}

TEST(Solarize, BackComparesWithMid)
{
    const dSolarize solarize(0.0f, 0.5f, 1.0f, 1, 0, 0);
    EXPECT_EQ(solarize.inverseFl(0.25f, 0), 0.125f);
    EXPECT_EQ(solarize.inverseFl(0.75f, 0), 0.625f); // on the rising ramp it would be 0.375
}

TEST(Balance, UnitsAreTheseBits)
{
    const std::uint32_t codes[] = {0x3a802008, 0x3c342d0b, 0x3d8721c8};
    for (int unit = 1; unit <= 3; ++unit)
        EXPECT_EQ(std::bit_cast<std::uint32_t>(dBalance(kLogSpace, 1.0f, unit).transformFl(0, 0)),
                  codes[unit - 1]);
    // 2^k has fewer digits than k: seen through large powers, where a bit of k is several of the result.
    const std::uint32_t factors[] = {0x3c72b9f6, 0x3e2aab8a, 0x3f800000};
    for (int unit = 1; unit <= 3; ++unit)
        for (float offset = -64; offset <= 64; ++offset) {
            const float exponent = offset * bits(factors[unit - 1]);
            EXPECT_EQ(dBalance(kLinearSpace, offset, unit).transformFl(1, 0), power(2, exponent));
        }
}

TEST(Balance, StopsDoubleLinearLight)
{
    EXPECT_EQ(dBalance(kLinearSpace, 3.0f, 3).transformFl(0.5f, 0), 4.0f);
    EXPECT_EQ(dBalance(kLinearSpace, 3.0f, 3).inverseFl(4, 0), 0.5f);
}

TEST(Balance, IsTheIdentityAtFirst)
{
    dBalance balance;
    EXPECT_EQ(balance.space, kLogSpace);
    expectColor(balance.offset, 0.0f);
    for (int unit = -1; unit < 5; ++unit) {
        balance.unit = unit;
        expectColor(balance.transformCl({0.1f, 2, -3, infinity}), {0.1f, 2, -3, infinity});
        expectColor(balance.inverseCl({0.1f, 2, -3, infinity}), {0.1f, 2, -3, infinity});
    }
}

TEST(Balance, OneFloatIsTheOffsetOfAllChannels)
{
    expectColor(dBalance(kLinearSpace, 0.5f, 2).offset, {0.5f, 0.5f, 0.5f, 0.5f});
    EXPECT_EQ(dBalance(kLinearSpace, 0.5f, 2).unit, 2);
}

TEST(WholeColors, PassSingleChannelsAndIgnoreSkipAlpha)
{
    const dReorder reorder("1111");
    const dSetAlpha setAlpha(0.5f);
    const dExpand expand(0.25f, 0.5f);
    const dCompress compress(0.25f, 0.5f);
    const dMatteMult mult(false);
    const dMatteDiv div(false);
    dSetColor setColor(0.5f);
    setColor.setRed = setColor.setGreen = setColor.setBlue = setColor.setAlpha = true;
    const dColorTransform4* const all[] = {&reorder, &setAlpha, &expand, &compress, &mult, &div, &setColor};
    for (const dColorTransform4* const t : all) {
        for (int i = 0; i < 4; ++i) {
            for (const float v : oddFloats) {
                EXPECT_EQ(Exactly{t->transformFl(v, i)}, Exactly{v});
                EXPECT_EQ(Exactly{t->inverseFl(v, i)}, Exactly{v});
            }
            for (int v = 0; v < 256; ++v) {
                EXPECT_EQ(t->transformCh(static_cast<unsigned char>(v), i), v);
                EXPECT_EQ(t->inverseCh(static_cast<unsigned char>(v), i), v);
            }
            for (int v = 0; v < 65536; ++v) {
                ASSERT_EQ(t->transformSh(static_cast<unsigned short>(v), i), v);
                ASSERT_EQ(t->inverseSh(static_cast<unsigned short>(v), i), v);
            }
        }
    }
    expectColor(setAlpha.transformCl(0.25f), {0.25f, 0.25f, 0.25f, 0.5f});
    expectColor(expand.transformCl(0.5f), 1.0f);
}

TEST(Expand, AndCompressMapAllChannelsBothWays)
{
    AnyFloat any(64);
    for (int round = 0; round < rounds; ++round) {
        const dColor c(any(), any(), any(), any()), low(any(), any(), any(), any()),
            high(any(), any(), any(), any());
        const dExpand expand(low, high);
        const dCompress compress(low, high);
        const dColor expanded = expand.transformCl(c), compressed = compress.transformCl(c),
                     expandedBack = expand.inverseCl(c), compressedBack = compress.inverseCl(c);
        for (int i = 0; i < 4; ++i) {
            ASSERT_EQ(Exactly{expanded[i]}, Exactly{(c[i] - low[i]) / (high[i] - low[i])});
            ASSERT_EQ(Exactly{compressedBack[i]}, Exactly{(c[i] - low[i]) / (high[i] - low[i])});
            ASSERT_EQ(Exactly{compressed[i]}, Exactly{low[i] + c[i] * (high[i] - low[i])});
            ASSERT_EQ(Exactly{expandedBack[i]}, Exactly{low[i] + c[i] * (high[i] - low[i])});
        }
    }
}

TEST(Expand, EqualBoundsDivideByZero)
{
    expectColor(dExpand(0.5f, 0.5f).transformCl({0.5f, 1, 0, infinity}),
                {NaN, infinity, -infinity, infinity});
    expectColor(dCompress(0.5f, 0.5f).inverseCl({0.5f, 1, 0, infinity}),
                {NaN, infinity, -infinity, infinity});
}

TEST(Matte, MultipliesAndDividesByAlpha)
{
    AnyFloat any(65);
    for (int round = 0; round < rounds; ++round) {
        const dColor c(any(), any(), any(), any());
        const float alpha = c.a();
        for (const bool check : {false, true}) {
            dColor product = c, quotient = c;
            if (!check || !(alpha <= 0))
                for (int i = 0; i < 3; ++i) {
                    product[i] = c[i] * alpha;
                    quotient[i] = alpha == 0 ? 0 : c[i] / alpha;
                }
            expectColor(dMatteMult(check).transformCl(c), product);
            expectColor(dMatteMult(check).inverseCl(c), quotient);
            expectColor(dMatteDiv(check).transformCl(c), quotient);
            expectColor(dMatteDiv(check).inverseCl(c), product);
        }
        if (HasFailure())
            return;
    }
}

TEST(Matte, DividingByNoAlpha)
{
    expectColor(dMatteDiv(true).transformCl({0.5f, 0.25f, 1, 0}), {0.5f, 0.25f, 1, 0});
    expectColor(dMatteDiv(false).transformCl({0.5f, 0.25f, 1, 0}), {0, 0, 0, 0});
}

TEST(Reorder, PutsChannelsWhereTheOrderSays)
{
    const dColor c(0.1f, 0.2f, 0.3f, 0.4f);
    const std::vector<std::pair<const char*, dColor>> orders = {
        {"bgr", {0.3f, 0.2f, 0.1f, 0.4f}},
        {"", c},
        {"1110", {1, 1, 1, 0}},
        {"abgr", {0.4f, 0.3f, 0.2f, 0.1f}},
        {"RGBA", c},
        {"x1", {0.1f, 1, 0.3f, 0.4f}},
        {"aaaarrrr", dColor(0.4f)},
        {"0", {0, 0.2f, 0.3f, 0.4f}},
        {" r-b", {0.1f, 0.1f, 0.3f, 0.3f}},
    };
    for (const auto& [order, expected] : orders) {
        SCOPED_TRACE(order);
        const dReorder reorder(order);
        EXPECT_STREQ(reorder.order, order);
        expectColor(reorder.transformCl(c), expected);
        expectColor(reorder.inverseCl(c), c);
    }
    const dColor odd(NaN, -0.0f, infinity, 1e-45f);
    expectColor(dReorder("abgr").transformCl(odd), {1e-45f, infinity, -0.0f, NaN});
}

TEST(Reorder, KeepsACopyOfItsOwn)
{
    char text[] = "bgr";
    dReorder reorder(text);
    text[0] = '1';
    EXPECT_STREQ(reorder.order, "bgr");

    dReorder copy(reorder);
    EXPECT_NE(static_cast<void*>(copy.order), static_cast<void*>(reorder.order));
    copy.setOrder("a");
    copy.skipAlpha = false;
    EXPECT_STREQ(reorder.order, "bgr");
    reorder = copy;
    EXPECT_STREQ(reorder.order, "a");
    EXPECT_FALSE(reorder.skipAlpha);
    const dReorder& same = reorder;
    reorder = same;
    reorder.setOrder(reorder.order);
    EXPECT_STREQ(reorder.order, "a");
    const dReorder moved(std::move(copy));
    EXPECT_STREQ(moved.order, "a");
    std::vector<dReorder> many(3, moved);
    many.erase(many.begin());
    EXPECT_STREQ(many.back().order, "a");
}

TEST(Reorder, OfNoTextChangesNothing)
{
    dReorder reorder(nullptr);
    expectColor(reorder.transformCl({1, 2, 3, 4}), {1, 2, 3, 4});
    reorder.setOrder("1");
    reorder.setOrder(nullptr);
    expectColor(reorder.transformCl({1, 2, 3, 4}), {1, 2, 3, 4});
}

TEST(SetColor, SetsTheChannelsThatAreWanted)
{
    const dColor c(0.1f, 0.2f, 0.3f, 0.4f), set(1, 2, 3, 4);
    for (int flags = 0; flags < 16; ++flags) {
        dSetColor setColor(set);
        EXPECT_FALSE(setColor.setRed || setColor.setGreen || setColor.setBlue || setColor.setAlpha);
        setColor.setRed = (flags & 1) != 0;
        setColor.setGreen = (flags & 2) != 0;
        setColor.setBlue = (flags & 4) != 0;
        setColor.setAlpha = (flags & 8) != 0;
        dColor expected = c;
        for (int i = 0; i < 4; ++i)
            if (flags >> i & 1)
                expected[i] = set[i];
        expectColor(setColor.transformCl(c), expected);
        expectColor(setColor.inverseCl(c), c);
    }
}

TEST(SetAlpha, SetsAlphaAlone)
{
    const dSetAlpha setAlpha(0.5f);
    expectColor(setAlpha.transformCl({1, NaN, -0.0f, 4}), {1, NaN, -0.0f, 0.5f});
    expectColor(setAlpha.inverseCl({1, 2, 3, 4}), {1, 2, 3, 4});
    EXPECT_EQ(float(setAlpha.alpha), 0.5f);
}
