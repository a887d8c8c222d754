// SPDX-License-Identifier: BSD-3-Clause
// The batch forms against the single ones, on every kind of processor that this machine is.
#include "core/batch.h"

#include "directions.h"
#include "floats.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstring>
#include <memory>
#include <string>
#include <vector>

using namespace VHL;

namespace {

std::vector<Processor> processors()
{
    std::vector<Processor> all;
    for (const Processor one : {Processor::plain, Processor::avx2, Processor::avx512})
        if (one <= processor())
            all.push_back(one);
    return all;
}

const char* name(Processor one)
{
    return one == Processor::plain ? "plain" : one == Processor::avx2 ? "avx2" : "avx512";
}

std::vector<std::shared_ptr<dColorTransform>> transforms()
{
    std::vector<std::shared_ptr<dColorTransform>> all;
    const auto add = [&](auto transform) {
        all.push_back(std::make_shared<decltype(transform)>(transform));
        transform.setSkipAlpha(false);
        all.push_back(std::make_shared<decltype(transform)>(transform));
    };
    const dColor low(0.1f, 0, -0.5f, 0.7f), mid(0.5f, 0.5f, 0, 0.7f), high(0.9f, 1, 0.5f, 0.2f);
    for (const dColor& gamma :
         {dColor(2.2f), dColor(1, 2.2f, 0.45f, 3), dColor(0.5f, 4, 1.5f, 1.8f), dColor(-1.5f, -0.9f, 0.3f, 1),
          dColor(0), dColor(2, 2, 2, 0), dColor(1, NaN, infinity, 1e-30f), dColor(30)})
        add(dGamma(gamma));
    add(dClamp(low, high));
    add(dClamp(dColor(NaN, 0, 0, -infinity), dColor(1, NaN, -0.0f, infinity)));
    add(dThreshold(mid));
    add(dInvert(high));
    for (const int keep : {0, 1, 2, 3})
        add(dSolarize(low, mid, high, 1, keep & 1, keep & 2));
    for (const int space : {0, 1, 2})
        for (const int unit : {0, 1, 2, 3})
            add(dBalance(_dColorSpace(space), {1, -7.5f, 100.25f, -0.0f}, unit));
    add(dExpand(low, high));
    add(dExpand(mid, mid));
    add(dCompress(low, high));
    for (const bool check : {false, true}) {
        add(dMatteMult(check));
        add(dMatteDiv(check));
    }
    for (const char* const order : {"bgr", "", "1110", "abgr", "RGBA", "x1", "aaaarrrr", "0a0"})
        add(dReorder(order));
    for (const int flags : {0, 1, 2, 4, 8, 15, 9}) {
        dSetColor setColor(high);
        setColor.setRed = (flags & 1) != 0;
        setColor.setGreen = (flags & 2) != 0;
        setColor.setBlue = (flags & 4) != 0;
        setColor.setAlpha = (flags & 8) != 0;
        add(setColor);
    }
    add(dSetAlpha(0.25f));
    return all;
}

/// Colours of all floats, with enough of what pictures hold: numbers up to some ones, and zeros.
std::vector<dColor> colors(std::size_t count, unsigned seed)
{
    AnyFloat any(seed);
    std::mt19937 engine(seed);
    std::uniform_real_distribution<float> usual(0, 2);
    std::vector<dColor> all(count, dColor(0));
    for (dColor& color : all)
        for (int i = 0; i < 4; ++i) {
            const unsigned kind = engine() % 8;
            color[i] = kind == 0 ? any() : kind == 1 ? 0 : usual(engine);
        }
    return all;
}

using Batch = void (*)(Processor, const dColorTransform&, const dColor*, dColor*, std::size_t);

/// Whether the batch's colours are what the single form gives.
void expectSame(Processor processor, const dColorTransform& transform, const std::vector<dColor>& in,
                bool forward)
{
    std::vector<dColor> out(in.size() + 1, dColor(0.123f));
    (forward ? static_cast<Batch>(batch::transformCl) : batch::inverseCl)(processor, transform, in.data(),
                                                                          out.data(), in.size());
    for (std::size_t k = 0; k < in.size(); ++k) {
        const dColor expected = forward ? transform.transformCl(in[k]) : transform.inverseCl(in[k]);
        for (int i = 0; i < 4; ++i)
            ASSERT_EQ(Exactly{out[k][i]}, Exactly{expected[i]})
                << name(processor) << ' ' << typeid(transform).name() << (forward ? "" : " back")
                << ", colour " << k << " of " << in.size() << ", channel " << i << ", from " << in[k][i];
    }
    ASSERT_FALSE(out.back() != dColor(0.123f)) << "written beyond the end";
}

} // namespace

TEST(Batch, KnowsTheProcessor)
{
    EXPECT_EQ(processor() >= Processor::avx2,
              __builtin_cpu_supports("avx2") && __builtin_cpu_supports("fma"));
    EXPECT_EQ(processor() >= Processor::avx512Bytes,
              __builtin_cpu_supports("avx512dq") && __builtin_cpu_supports("avx512bw") &&
                  __builtin_cpu_supports("avx512vl") && __builtin_cpu_supports("avx512vbmi"));
    EXPECT_EQ(processor() >= Processor::avx512,
              __builtin_cpu_supports("avx512f") != 0 && __builtin_cpu_supports("avx512dq") != 0);
}

TEST(Batch, TransformsColorsBitForBit)
{
    for (const Processor processor : processors())
        for (const auto& transform : transforms())
            for (const bool forward : {true, false})
                for (const std::size_t count :
                     {0, 1, 2, 3, 4, 5, 7, 8, 9, 31, 255, 256, 257, 319, 321, 2000}) {
                    expectSame(processor, *transform, colors(count, unsigned(count) + 81), forward);
                    if (HasFatalFailure())
                        return;
                }
}

TEST(Batch, GammasRoundAsTheSingleForm)
{
    // Squares of numbers with 13 digits lie in the middle between two floats, or exactly on one.
    std::vector<dColor> in = colors(200'000, 82);
    for (int i = 0; i < 4096; ++i)
        in.push_back(dColor(1 + float(i) / 4096, 1 + float(i) / 8192, float(i) / 4096,
                            std::ldexp(float(i), i % 200 - 100)));
    for (int exponent = -149; exponent < 128; ++exponent)
        for (const float m : {1.0f, 1.5f, std::nextafter(2.0f, 0.0f), std::nextafter(1.0f, 2.0f)})
            in.push_back(std::ldexp(m, exponent));
    for (const Processor processor : processors())
        for (const float gamma : {2.2f, 1 / 2.2f, 2.4f, 0.5f, 2.0f, 1.0f, 3.0f, 0.25f, -1.0f, -2.0f}) {
            dGamma transform(dColor(gamma, gamma, gamma, 1.8f));
            transform.setSkipAlpha(false);
            expectSame(processor, transform, in, true);
            expectSame(processor, transform, in, false);
            if (HasFatalFailure())
                return;
        }
}

TEST(Batch, WorksInPlaceAndAtAnyAddress)
{
    for (const Processor processor : processors())
        for (const auto& transform : transforms()) {
            const std::vector<dColor> in = colors(300, 83);
            std::vector<float> room(4 * in.size() + 1);
            // One float on: no address of a vector's.
            auto* const colors = reinterpret_cast<dColor*>(room.data() + 1);
            std::memcpy(static_cast<void*>(colors), in.data(), in.size() * sizeof(dColor));
            batch::transformCl(processor, *transform, colors, colors, in.size());
            for (std::size_t k = 0; k < in.size(); ++k) {
                const dColor expected = transform->transformCl(in[k]);
                for (int i = 0; i < 4; ++i)
                    ASSERT_EQ(Exactly{colors[k][i]}, Exactly{expected[i]}) << typeid(*transform).name();
            }
        }
}

namespace {

/// A batch form of one channel on a processor, and the single form.
template <class Value>
struct Channels {
    void (*batch)(Processor, const dColorTransform&, const Value*, Value*, std::size_t, int);
    Value (dColorTransform::*single)(Value, int) const;
};

/// Bytes have one form for all processors.
template <auto form>
void onAny(Processor, const dColorTransform& transform, const unsigned char* in, unsigned char* out,
           std::size_t count, int channel)
{
    form(transform, in, out, count, channel);
}

const Channels<float> floatForms[] = {{batch::transformFl, &dColorTransform::transformFl},
                                      {batch::inverseFl, &dColorTransform::inverseFl}};
using BytesForm = void (*)(const dColorTransform&, const unsigned char*, unsigned char*, std::size_t, int);
const Channels<unsigned char> byteForms[] = {
    {onAny<static_cast<BytesForm>(transformCh)>, &dColorTransform::transformCh},
    {onAny<static_cast<BytesForm>(inverseCh)>, &dColorTransform::inverseCh}};
const Channels<unsigned short> wordForms[] = {{batch::transformSh, &dColorTransform::transformSh},
                                              {batch::inverseSh, &dColorTransform::inverseSh}};

Exactly exactly(float value) { return {value}; }
int exactly(int value) { return value; }

/// In place, between values that have to stay, and at no vector's address.
template <class Value>
void expectSame(const Channels<Value>& form, const dColorTransform& transform, const std::vector<Value>& in)
{
    for (const Processor processor : processors())
        for (int channel = 0; channel < 4; ++channel) {
            std::vector<Value> values(in.size() + 2, Value(42));
            std::ranges::copy(in, values.begin() + 1);
            form.batch(processor, transform, values.data() + 1, values.data() + 1, in.size(), channel);
            for (std::size_t k = 0; k < in.size(); ++k)
                ASSERT_EQ(exactly(values[k + 1]), exactly((transform.*form.single)(in[k], channel)))
                    << name(processor) << ' ' << typeid(transform).name() << ", value " << k << " of "
                    << in.size() << ", from " << +in[k] << " in channel " << channel;
            ASSERT_TRUE(values.front() == Value(42) && values.back() == Value(42))
                << "written beyond the ends";
        }
}

/// Those transforms that single channels tell apart: skipAlpha makes no difference to them.
std::vector<std::shared_ptr<dColorTransform>> channelTransforms()
{
    auto all = transforms();
    std::erase_if(all, [](const auto& transform) { return !transform->skipAlpha; });
    return all;
}

/// From 0 up to so many, and over again.
template <class Value>
std::vector<Value> counted(std::size_t count)
{
    std::vector<Value> values(count);
    for (std::size_t k = 0; k < count; ++k)
        values[k] = static_cast<Value>(k);
    return values;
}

} // namespace

TEST(Batch, TransformsFloatsOfAChannelBitForBit)
{
    for (const auto& transform : channelTransforms())
        for (const Channels<float>& form : floatForms)
            for (const std::size_t count : {0, 1, 2, 3, 4, 5, 7, 8, 63, 1023, 1024, 1027, 3001}) {
                AnyFloat any(unsigned(count) + 86);
                std::vector<float> in(count);
                for (std::size_t k = 0; k < count; ++k)
                    in[k] = k % 4 == 0 ? any() : float(k) / float(count);
                expectSame(form, *transform, in);
                if (HasFatalFailure())
                    return;
            }
}

TEST(Batch, TransformsEveryByteOfAChannel)
{
    for (const auto& transform : channelTransforms())
        for (const Channels<unsigned char>& form : byteForms)
            for (const std::size_t count : {0, 1, 7, 255, 256, 1000}) {
                expectSame(form, *transform, counted<unsigned char>(count));
                if (HasFatalFailure())
                    return;
            }
}

TEST(Batch, TransformsEvery16BitValueOfAChannel)
{
    for (const auto& transform : channelTransforms())
        for (const Channels<unsigned short>& form : wordForms)
            for (const std::size_t count : {0, 1, 3, 5000, 65536}) {
                expectSame(form, *transform, counted<unsigned short>(count));
                if (HasFatalFailure())
                    return;
            }
}

TEST(Batch, CallsWhatOthersDeriveForChannels)
{
    struct Mine : dInvert {
        Mine() : dInvert(1.0f) {}
        float transformFl(float value, int channel) const override { return value + float(channel); }
        float inverseFl(float, int) const override { return 0.25f; }
        unsigned char transformCh(unsigned char value, int) const override { return value ^ 1; }
        unsigned short transformSh(unsigned short value, int) const override { return value ^ 2; }
    };
    const Mine mine;
    std::vector<float> floats(9, 0.5f);
    transformFl(mine, floats.data(), floats.data(), floats.size(), 3);
    EXPECT_EQ(floats, std::vector<float>(9, 3.5f));
    inverseFl(mine, floats.data(), floats.data(), floats.size(), 3);
    EXPECT_EQ(floats, std::vector<float>(9, 0.25f));
    for (const std::size_t count : {5, 500}) {
        std::vector<unsigned char> bytes(count, 4);
        transformCh(mine, bytes.data(), bytes.data(), count, 0);
        EXPECT_EQ(bytes, std::vector<unsigned char>(count, 5));
        inverseCh(mine, bytes.data(), bytes.data(), count, 0);
        EXPECT_EQ(bytes, std::vector<unsigned char>(count, 64)); // a quarter of 255 is 63.75
        std::vector<unsigned short> words(count, 4);
        transformSh(mine, words.data(), words.data(), count, 0);
        EXPECT_EQ(words, std::vector<unsigned short>(count, 6));
        inverseSh(mine, words.data(), words.data(), count, 0);
        EXPECT_EQ(words, std::vector<unsigned short>(count, 16384)); // a quarter of 65535 is 16383.75
    }
    transformFl(mine, nullptr, nullptr, 0, 0);
    transformCh(mine, nullptr, nullptr, 0, 0);
    inverseSh(dClamp(0.0f, 1.0f), nullptr, nullptr, 0, 0);
}

TEST(Batch, CallsWhatOthersDerive)
{
    struct Mine : dClamp {
        Mine() : dClamp(0.0f, 1.0f) {}
        dColor transformCl(dColor color) const override { return {color.b(), 7, color.r(), 0}; }
        dColor inverseCl(dColor) const override { return 3.0f; }
    };
    const std::vector<dColor> in = colors(10, 84);
    std::vector<dColor> out(10, 0.0f);
    transformCl(Mine(), in.data(), out.data(), in.size());
    for (std::size_t k = 0; k < in.size(); ++k)
        EXPECT_FALSE(out[k] != Mine().transformCl(in[k]) && out[k].g() != 7);
    EXPECT_EQ(out[3].g(), 7.0f);
    inverseCl(Mine(), in.data(), out.data(), in.size());
    EXPECT_EQ(out[9].a(), 3.0f);

    struct Elsewhere : dBallMapping {
        dVector toTextureCoordinates(dVector) const override { return {1, 2, 3}; }
        dVector toDirection(dVector) const override { return {4, 5, 6}; }
    };
    const dVector vectors[] = {{0, 0, 1}, {0, 1, 0}};
    dVector results[] = {0.0f, 0.0f};
    toTextureCoordinates(Elsewhere(), vectors, results, 2);
    EXPECT_EQ(results[1].y(), 2.0f);
    toDirection(Elsewhere(), vectors, results, 2);
    EXPECT_EQ(results[1].z(), 6.0f);
}

TEST(Batch, UsesThisProcessor)
{
    const std::vector<dColor> in = colors(1000, 85);
    std::vector<dColor> out(in.size(), 0.0f);
    const dCompress compress(0.25f, 0.75f);
    transformCl(compress, in.data(), out.data(), in.size());
    for (std::size_t k = 0; k < in.size(); ++k)
        ASSERT_EQ(Exactly{out[k].g()}, Exactly{compress.transformCl(in[k]).g()});
    transformCl(compress, nullptr, nullptr, 0);
    inverseCl(dClamp(0.0f, 1.0f), nullptr, nullptr, 0);
}

namespace {

const dSphericalMapping spherical;
const dFisheyeMapping fisheye;
const dCubicMapping cubic;
const dBallMapping ball;
const dAngularMapping angular;
const dPanoramicConversion* const mappings[] = {&spherical, &fisheye, &cubic, &ball, &angular};

bool bothNaN(const dVector& a, const dVector& b)
{
    bool nan = false;
    for (int i = 0; i < 3; ++i) {
        if (std::isnan(a[i]) != std::isnan(b[i]))
            return false;
        nan = nan || std::isnan(a[i]);
    }
    return nan;
}

void expectNear(Processor processor, const dPanoramicConversion& mapping, const std::vector<dVector>& in,
                bool toPlaces)
{
    std::vector<dVector> out(in.size() + 1, dVector(0.123f));
    if (toPlaces)
        batch::toTextureCoordinates(processor, mapping, in.data(), out.data(), in.size());
    else
        batch::toDirection(processor, mapping, in.data(), out.data(), in.size());
    for (std::size_t k = 0; k < in.size(); ++k) {
        const dVector expected = toPlaces ? mapping.toTextureCoordinates(in[k]) : mapping.toDirection(in[k]);
        ASSERT_TRUE(distance(out[k], expected) <= 1e-6 || bothNaN(out[k], expected))
            << name(processor) << ' ' << typeid(mapping).name() << (toPlaces ? " place" : " direction")
            << " of (" << in[k].x() << ", " << in[k].y() << ", " << in[k].z() << "): (" << out[k].x() << ", "
            << out[k].y() << ", " << out[k].z() << ") instead of (" << expected.x() << ", " << expected.y()
            << ", " << expected.z() << ")";
    }
    ASSERT_EQ(out.back().x(), 0.123f) << "written beyond the end";
}

} // namespace

TEST(Batch, MapsUnitDirections)
{
    std::vector<dVector> directions;
    forDirections([&](const dVector& d) { directions.push_back(d); });
    for (const Processor processor : processors())
        for (const dPanoramicConversion* const mapping : mappings) {
            expectNear(processor, *mapping, directions, true);
            if (HasFatalFailure())
                return;
        }
}

TEST(Batch, MapsAnyFloats)
{
    std::vector<dVector> vectors;
    for (const float x : oddFloats)
        for (const float y : oddFloats)
            for (const float z : oddFloats)
                vectors.push_back({x, y, z});
    AnyFloat any(86);
    for (int i = 0; i < 100'000; ++i)
        vectors.push_back({any(), any(), any()});
    std::mt19937 engine(87);
    std::normal_distribution<float> normal(0, 0.7f);
    for (int i = 0; i < 100'000; ++i)
        vectors.push_back({normal(engine), normal(engine), normal(engine)});
    for (const Processor processor : processors())
        for (const dPanoramicConversion* const mapping : mappings)
            for (const bool toPlaces : {true, false}) {
                expectNear(processor, *mapping, vectors, toPlaces);
                if (HasFatalFailure())
                    return;
            }
}

TEST(Batch, MapsPlaces)
{
    std::vector<dVector> places;
    for (int i = -20; i <= 420; ++i)
        for (int j = -20; j <= 620; ++j) // on the cube's seams too
            places.push_back({float(i) / 400, float(j) / 600, 0.5f});
    for (int i = 0; i < 20'000; ++i) { // and on rims
        const double angle = i * 3.14159265358979 / 10'000;
        places.push_back({float(0.5 + 0.5 * std::cos(angle)), float(0.5 + 0.5 * std::sin(angle)), 0});
    }
    for (const Processor processor : processors())
        for (const dPanoramicConversion* const mapping : mappings) {
            expectNear(processor, *mapping, places, false);
            if (HasFatalFailure())
                return;
        }
}

TEST(Batch, MapsAnyNumberInPlace)
{
    for (const Processor processor : processors())
        for (const dPanoramicConversion* const mapping : mappings)
            for (std::size_t count = 0; count < 40; ++count) {
                std::vector<dVector> vectors, places, directions;
                for (std::size_t i = 0; i <= count; ++i) {
                    vectors.push_back(unit(std::cos(double(i)), std::sin(double(i)), double(i % 5) - 3));
                    places.push_back(i < count ? mapping->toTextureCoordinates(vectors[i]) : vectors[i]);
                    directions.push_back(i < count ? mapping->toDirection(places[i]) : vectors[i]);
                }
                batch::toTextureCoordinates(processor, *mapping, vectors.data(), vectors.data(), count);
                for (std::size_t i = 0; i <= count; ++i)
                    ASSERT_LE(distance(vectors[i], places[i]), 1e-6);
                batch::toDirection(processor, *mapping, vectors.data(), vectors.data(), count);
                for (std::size_t i = 0; i <= count; ++i)
                    ASSERT_LE(distance(vectors[i], directions[i]), 3e-6);
            }
}
