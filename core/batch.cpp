// SPDX-License-Identifier: BSD-3-Clause
#include "batch.h"

#include "balance.h"
#include "integers.h"
#include "wide/kernels.h"

#include <algorithm>
#include <cmath>
#include <cstring>
#include <limits>
#include <numbers>
#include <typeinfo>

namespace VHL {

namespace {

const wide::Kernels& kernels(Processor processor)
{
    switch (processor) {
    case Processor::avx512Bytes:
    case Processor::avx512:
        return wide::avx512;
    case Processor::avx2:
        return wide::avx2;
    default:
        return wide::plain;
    }
}

/// The object as a T, if it is one and not something derived from it, which may do anything.
template <class T>
const T* exactly(const auto& object)
{
    return typeid(object) == typeid(T) ? static_cast<const T*>(&object) : nullptr;
}

/// Colours to transform, and on which processor.
struct Colors {
    const wide::Kernels& kernels;
    const float* in;
    float* out;
    std::size_t count;
    /// The one channel that all four floats of what counts as a colour are, if any.
    int only = none;

    static constexpr int none = -1;

    dColor settings(const dColor& ofChannels) const
    {
        return only == none ? ofChannels : dColor(ofChannels[only]);
    }

    void byChannels(wide::Kernels::Channels operation, std::initializer_list<dColor> ofChannels,
                    bool keepAlpha) const
    {
        float constants[5][4];
        float(*constant)[4] = constants;
        for (const dColor& each : ofChannels) {
            const dColor setting = settings(each);
            std::memcpy(constant++, &setting, sizeof setting);
        }
        operation(in, out, count, constants, keepAlpha && only == none);
    }

    /// For each channel: the channel that it becomes, or none and the value.
    struct Source {
        int channel;
        float value;
    };

    void arrange(const Source (&sources)[4]) const
    {
        unsigned masks[5][4] = {};
        for (int i = 0; i < 4; ++i)
            if (sources[i].channel == none)
                std::memcpy(&masks[4][i], &sources[i].value, sizeof(float));
            else
                masks[sources[i].channel][i] = ~0u;
        kernels.arrange(in, out, count, masks);
    }

    void copy() const
    {
        if (count != 0 && in != out)
            std::memcpy(out, in, count * sizeof(dColor));
    }
};

/// Of the numbers in the middle of the 128th parts from 1 to 2.
struct Inverses {
    Inverses() noexcept
    {
        for (int i = 0; i < 128; ++i) {
            number[i] = float(1 / (1 + (i + 0.5) / 128)); // short, so that products with mantissas are exact
            logarithm[i] = std::log2(number[i]);
        }
    }

    double number[128], logarithm[128];
};

/// False where the series would have to be longer.
bool makeTable(wide::PowerTable& table, float exponent)
{
    const double y = exponent;
    const double second = y * (y - 1) / 2, third = second * (y - 2) / 3, fourth = third * (y - 3) / 4,
                 fifth = fourth * (y - 4) / 5;
    // The rest is at most 1/256. Up to there its fourth power is nearly so many times its square; how nearly
    // counts to the error, as does the series' next term, with what follows it. Then the roundings of what is
    // multiplied here and there, and that of the C library's power, whose own rounding to a float is to be
    // met.
    constexpr double squares = 2 * std::numbers::sqrt2 - 2, nearly = squares * squares / 4;
    const double error = 1.25 * (nearly * std::abs(fourth) * 0x1p-32 + std::abs(fifth) * 0x1p-40) + 0x1p-48;
    if (!(error < 0x1p-28))
        return false;
    table.exponent = y;
    table.second = second + squares * 0x1p-16 * fourth;
    table.third = third;
    table.spread = (1 + error) / (1 - error);
    table.ofZero = float(std::pow(0.0, y));
    // 4^(k * y) from two factors; the products of the first with integers are exact.
    double coarse[8], fine[16];
    for (int i = 0; i < 8; ++i)
        coarse[i] = std::exp2((32 * i - 127) * y);
    for (int i = 0; i < 16; ++i)
        fine[i] = std::exp2(2 * i * y);
    for (int i = 0; i < 128; ++i)
        table.scale[i] = coarse[i / 16] * fine[i % 16];
    const double none = std::numeric_limits<double>::quiet_NaN();
    table.scale[0] = none;
    std::fill_n(table.scale + 127, 129, none);
    static const Inverses inverses;
    const double ofTwo = std::exp2(y);
    for (int i = 0; i < 128; ++i) {
        const double power = std::exp2(-y * inverses.logarithm[i]) * (1 - error);
        table.part[i] = {inverses.number[i], power};
        table.part[128 + i] = {inverses.number[i], ofTwo * power};
    }
    return true;
}

/// By tables, if there are enough colours and the series is good for the exponents.
bool takePower(const Colors& colors, const dColor& ofChannels, bool keepAlpha)
{
    constexpr std::size_t worthTables = 256;
    if (colors.count < worthTables)
        return false;
    const dColor exponents = colors.settings(ofChannels);
    keepAlpha = keepAlpha && colors.only == Colors::none;
    wide::PowerTable tables[4];
    const wide::PowerTable* byChannel[4];
    for (int i = 0; i < 4; ++i) {
        byChannel[i] = nullptr;
        const bool skipped = keepAlpha && i == 3;
        for (int earlier = 0; earlier < i && !byChannel[i]; ++earlier)
            if (skipped || exponents[earlier] == exponents[i])
                byChannel[i] = byChannel[earlier];
        if (byChannel[i])
            continue;
        if (!makeTable(tables[i], exponents[i]))
            return false;
        byChannel[i] = &tables[i];
    }
    colors.kernels.power(colors.in, colors.out, colors.count, byChannel, keepAlpha);
    return true;
}

dColor perChannel(const auto& operation) { return {operation(0), operation(1), operation(2), operation(3)}; }

void reorder(const Colors& colors, const char* order)
{
    Colors::Source sources[4] = {{0, 0}, {1, 0}, {2, 0}, {3, 0}};
    for (int i = 0; i < 4 && order[i] != '\0'; ++i) {
        const char* const channels = "rgba";
        const char* const channel = std::strchr(channels, order[i]);
        if (channel)
            sources[i].channel = int(channel - channels);
        else if (order[i] == '0' || order[i] == '1')
            sources[i] = {Colors::none, order[i] == '1' ? 1.0f : 0.0f};
    }
    colors.arrange(sources);
}

/// Whether single channels pass the transform unchanged.
bool passesChannels(const dColorTransform& transform)
{
    return exactly<dExpand>(transform) || exactly<dCompress>(transform) || exactly<dMatteMult>(transform) ||
           exactly<dMatteDiv>(transform) || exactly<dReorder>(transform) || exactly<dSetColor>(transform) ||
           exactly<dSetAlpha>(transform);
}

/// Whether there is a loop for the transform, which has then run.
bool transform(const dColorTransform& transform, const Colors& colors)
{
    const wide::Kernels& k = colors.kernels;
    const bool keep = transform.skipAlpha;
    if (colors.only != Colors::none && passesChannels(transform))
        return colors.copy(), true;
    if (const auto* const t = exactly<dGamma>(transform))
        return takePower(colors, perChannel([&](int i) { return 1.0f / t->gamma[i]; }), keep);
    if (const auto* const t = exactly<dClamp>(transform))
        return colors.byChannels(k.clamp, {t->low, t->high}, keep), true;
    if (const auto* const t = exactly<dThreshold>(transform))
        return colors.byChannels(k.threshold, {t->threshold}, keep), true;
    if (const auto* const t = exactly<dInvert>(transform))
        return colors.byChannels(k.invert, {t->base}, keep), true;
    if (const auto* const t = exactly<dSolarize>(transform))
        return colors.byChannels(
                   k.solarize, {t->low, t->mid, t->high, float(t->keepBelow != 0), float(t->keepAbove != 0)},
                   keep),
               true;
    if (const auto* const t = exactly<dBalance>(transform)) {
        if (t->space == kLogSpace)
            return colors.byChannels(k.add, {perChannel([&](int i) { return balance::summand(*t, i); })},
                                     keep),
                   true;
        if (t->space == kLinearSpace)
            return colors.byChannels(k.multiply, {perChannel([&](int i) { return balance::factor(*t, i); })},
                                     keep),
                   true;
        return colors.copy(), true;
    }
    if (const auto* const t = exactly<dExpand>(transform))
        return colors.byChannels(k.expand, {t->low, t->high}, false), true;
    if (const auto* const t = exactly<dCompress>(transform))
        return colors.byChannels(k.compress, {t->low, t->high}, false), true;
    if (const auto* const t = exactly<dMatteMult>(transform))
        return k.multiplyByAlpha(colors.in, colors.out, colors.count, t->checkAlpha), true;
    if (const auto* const t = exactly<dMatteDiv>(transform))
        return k.divideByAlpha(colors.in, colors.out, colors.count, t->checkAlpha), true;
    if (const auto* const t = exactly<dReorder>(transform))
        return reorder(colors, t->order), true;
    if (const auto* const t = exactly<dSetColor>(transform)) {
        const bool set[] = {t->setRed, t->setGreen, t->setBlue, t->setAlpha};
        Colors::Source sources[4];
        for (int i = 0; i < 4; ++i)
            sources[i] = {set[i] ? Colors::none : i, t->color[i]};
        return colors.arrange(sources), true;
    }
    if (const auto* const t = exactly<dSetAlpha>(transform))
        return colors.arrange({{0, 0}, {1, 0}, {2, 0}, {Colors::none, t->alpha}}), true;
    return false;
}

bool inverse(const dColorTransform& transform, const Colors& colors)
{
    const wide::Kernels& k = colors.kernels;
    const bool keep = transform.skipAlpha;
    if (colors.only != Colors::none && passesChannels(transform))
        return colors.copy(), true;
    if (const auto* const t = exactly<dGamma>(transform))
        return takePower(colors, t->gamma, keep);
    if (const auto* const t = exactly<dSolarize>(transform))
        return colors.byChannels(k.inverseSolarize, {t->low, t->mid, t->high}, keep), true;
    if (const auto* const t = exactly<dBalance>(transform)) {
        if (t->space == kLogSpace)
            return colors.byChannels(k.subtract, {perChannel([&](int i) { return balance::summand(*t, i); })},
                                     keep),
                   true;
        if (t->space == kLinearSpace)
            return colors.byChannels(k.divide, {perChannel([&](int i) { return balance::factor(*t, i); })},
                                     keep),
                   true;
        return colors.copy(), true;
    }
    if (const auto* const t = exactly<dExpand>(transform))
        return colors.byChannels(k.compress, {t->low, t->high}, false), true;
    if (const auto* const t = exactly<dCompress>(transform))
        return colors.byChannels(k.expand, {t->low, t->high}, false), true;
    if (const auto* const t = exactly<dMatteMult>(transform))
        return k.divideByAlpha(colors.in, colors.out, colors.count, t->checkAlpha), true;
    if (const auto* const t = exactly<dMatteDiv>(transform))
        return k.multiplyByAlpha(colors.in, colors.out, colors.count, t->checkAlpha), true;
    if (exactly<dClamp>(transform) || exactly<dThreshold>(transform) || exactly<dInvert>(transform) ||
        exactly<dReorder>(transform) || exactly<dSetColor>(transform) || exactly<dSetAlpha>(transform))
        return colors.copy(), true;
    return false;
}

/// Forward or backward: the loop for colours, and the single forms.
struct Way {
    bool (*loop)(const dColorTransform&, const Colors&);
    dColor (dColorTransform::*color)(dColor) const;
    float (dColorTransform::*number)(float, int) const;
    unsigned char (dColorTransform::*byte)(unsigned char, int) const;
    unsigned short (dColorTransform::*word)(unsigned short, int) const;
};
constexpr Way forward = {transform, &dColorTransform::transformCl, &dColorTransform::transformFl,
                         &dColorTransform::transformCh, &dColorTransform::transformSh};
constexpr Way backward = {inverse, &dColorTransform::inverseCl, &dColorTransform::inverseFl,
                          &dColorTransform::inverseCh, &dColorTransform::inverseSh};

void takeColors(const Way& way, Processor processor, const dColorTransform& transform, const dColor* in,
                dColor* out, std::size_t count)
{
    if (!way.loop(transform, {kernels(processor), reinterpret_cast<const float*>(in),
                              reinterpret_cast<float*>(out), count}))
        for (std::size_t i = 0; i < count; ++i)
            out[i] = (transform.*way.color)(in[i]);
}

void takeNumbers(const Way& way, Processor processor, const dColorTransform& transform, const float* in,
                 float* out, std::size_t count, int channel)
{
    // Four to a colour, and the rest of them one by one.
    std::size_t i =
        way.loop(transform, {kernels(processor), in, out, count / 4, channel}) ? count / 4 * 4 : 0;
    for (; i < count; ++i)
        out[i] = (transform.*way.number)(in[i], channel);
}

void takeBytes(const Way& way, const dColorTransform& transform, const unsigned char* in, unsigned char* out,
               std::size_t count, int channel)
{
    constexpr std::size_t values = 256;
    if (count < values) {
        for (std::size_t i = 0; i < count; ++i)
            out[i] = (transform.*way.byte)(in[i], channel);
        return;
    }
    unsigned char results[values];
    for (std::size_t value = 0; value < values; ++value)
        results[value] = (transform.*way.byte)(static_cast<unsigned char>(value), channel);
    for (std::size_t i = 0; i < count; ++i)
        out[i] = results[in[i]];
}

/// Whether integer channels go through floats in the way that all of these classes have.
bool goesThroughFloats(const dColorTransform& transform)
{
    return exactly<dGamma>(transform) || exactly<dClamp>(transform) || exactly<dThreshold>(transform) ||
           exactly<dInvert>(transform) || exactly<dSolarize>(transform) || exactly<dBalance>(transform) ||
           passesChannels(transform);
}

void takeWords(const Way& way, Processor processor, const dColorTransform& transform,
               const unsigned short* in, unsigned short* out, std::size_t count, int channel)
{
    // Not by a table: it would take more values than there are in most calls to be worth its making.
    if (!goesThroughFloats(transform)) {
        for (std::size_t i = 0; i < count; ++i)
            out[i] = (transform.*way.word)(in[i], channel);
        return;
    }
    constexpr std::size_t atOnce = 4096;
    float numbers[atOnce];
    while (count != 0) {
        const std::size_t some = std::min(count, atOnce);
        for (std::size_t i = 0; i < some; ++i)
            numbers[i] = toFloat(in[i]);
        takeNumbers(way, processor, transform, numbers, numbers, some, channel);
        for (std::size_t i = 0; i < some; ++i)
            out[i] = toInteger<unsigned short>(numbers[i]);
        in += some;
        out += some;
        count -= some;
    }
}

/// The single form for the loops' own use.
template <class Mapping, dVector (Mapping::*operation)(dVector) const>
void single(const float* in, float* out)
{
    const dVector result = (Mapping().*operation)({in[0], in[1], in[2]});
    std::memcpy(out, &result, sizeof result);
}

/// Runs the loop for a mapping of the class. False if it is of another one.
template <class Mapping, dVector (Mapping::*operation)(dVector) const>
bool map(const dPanoramicConversion& mapping, wide::Kernels::Mapping loop, const dVector* in, dVector* out,
         std::size_t count)
{
    if (!exactly<Mapping>(mapping))
        return false;
    loop(reinterpret_cast<const float*>(in), reinterpret_cast<float*>(out), count,
         single<Mapping, operation>);
    return true;
}

} // namespace

namespace batch {

void transformCl(Processor processor, const dColorTransform& transform, const dColor* in, dColor* out,
                 std::size_t count)
{
    takeColors(forward, processor, transform, in, out, count);
}
void transformFl(Processor processor, const dColorTransform& transform, const float* in, float* out,
                 std::size_t count, int channel)
{
    takeNumbers(forward, processor, transform, in, out, count, channel);
}
void transformSh(Processor processor, const dColorTransform& transform, const unsigned short* in,
                 unsigned short* out, std::size_t count, int channel)
{
    takeWords(forward, processor, transform, in, out, count, channel);
}

void inverseCl(Processor processor, const dColorTransform& transform, const dColor* in, dColor* out,
               std::size_t count)
{
    takeColors(backward, processor, transform, in, out, count);
}
void inverseFl(Processor processor, const dColorTransform& transform, const float* in, float* out,
               std::size_t count, int channel)
{
    takeNumbers(backward, processor, transform, in, out, count, channel);
}
void inverseSh(Processor processor, const dColorTransform& transform, const unsigned short* in,
               unsigned short* out, std::size_t count, int channel)
{
    takeWords(backward, processor, transform, in, out, count, channel);
}

void toTextureCoordinates(Processor processor, const dPanoramicConversion& m, const dVector* in, dVector* out,
                          std::size_t n)
{
    const wide::Kernels::Mappings& loops = kernels(processor).toTextureCoordinates;
    if (map<dSphericalMapping, &dSphericalMapping::toTextureCoordinates>(m, loops.spherical, in, out, n) ||
        map<dFisheyeMapping, &dFisheyeMapping::toTextureCoordinates>(m, loops.fisheye, in, out, n) ||
        map<dCubicMapping, &dCubicMapping::toTextureCoordinates>(m, loops.cubic, in, out, n) ||
        map<dBallMapping, &dBallMapping::toTextureCoordinates>(m, loops.ball, in, out, n) ||
        map<dAngularMapping, &dAngularMapping::toTextureCoordinates>(m, loops.angular, in, out, n))
        return;
    for (std::size_t i = 0; i < n; ++i)
        out[i] = m.toTextureCoordinates(in[i]);
}

void toDirection(Processor processor, const dPanoramicConversion& m, const dVector* in, dVector* out,
                 std::size_t n)
{
    const wide::Kernels::Mappings& loops = kernels(processor).toDirection;
    if (map<dSphericalMapping, &dSphericalMapping::toDirection>(m, loops.spherical, in, out, n) ||
        map<dFisheyeMapping, &dFisheyeMapping::toDirection>(m, loops.fisheye, in, out, n) ||
        map<dCubicMapping, &dCubicMapping::toDirection>(m, loops.cubic, in, out, n) ||
        map<dBallMapping, &dBallMapping::toDirection>(m, loops.ball, in, out, n) ||
        map<dAngularMapping, &dAngularMapping::toDirection>(m, loops.angular, in, out, n))
        return;
    for (std::size_t i = 0; i < n; ++i)
        out[i] = m.toDirection(in[i]);
}

} // namespace batch

void transformCl(const dColorTransform& transform, const dColor* in, dColor* out, std::size_t count)
{
    batch::transformCl(processor(), transform, in, out, count);
}
void transformFl(const dColorTransform& transform, const float* in, float* out, std::size_t count,
                 int channel)
{
    batch::transformFl(processor(), transform, in, out, count, channel);
}
void transformCh(const dColorTransform& transform, const unsigned char* in, unsigned char* out,
                 std::size_t count, int channel)
{
    takeBytes(forward, transform, in, out, count, channel);
}
void transformSh(const dColorTransform& transform, const unsigned short* in, unsigned short* out,
                 std::size_t count, int channel)
{
    batch::transformSh(processor(), transform, in, out, count, channel);
}
void inverseCl(const dColorTransform& transform, const dColor* in, dColor* out, std::size_t count)
{
    batch::inverseCl(processor(), transform, in, out, count);
}
void inverseFl(const dColorTransform& transform, const float* in, float* out, std::size_t count, int channel)
{
    batch::inverseFl(processor(), transform, in, out, count, channel);
}
void inverseCh(const dColorTransform& transform, const unsigned char* in, unsigned char* out,
               std::size_t count, int channel)
{
    takeBytes(backward, transform, in, out, count, channel);
}
void inverseSh(const dColorTransform& transform, const unsigned short* in, unsigned short* out,
               std::size_t count, int channel)
{
    batch::inverseSh(processor(), transform, in, out, count, channel);
}
void toTextureCoordinates(const dPanoramicConversion& mapping, const dVector* in, dVector* out,
                          std::size_t count)
{
    batch::toTextureCoordinates(processor(), mapping, in, out, count);
}
void toDirection(const dPanoramicConversion& mapping, const dVector* in, dVector* out, std::size_t count)
{
    batch::toDirection(processor(), mapping, in, out, count);
}

} // namespace VHL
