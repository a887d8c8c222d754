// SPDX-License-Identifier: BSD-3-Clause
#include "transforms.h"

#include "balance.h"
#include "integers.h"
#include "wide/rules.h"

#include <cmath>
#include <cstring>
#include <utility>

namespace VHL {

namespace {

/// An integer channel by way of a float one.
template <class Integer>
Integer throughFloat(Integer value, const auto& operation)
{
    return toInteger<Integer>(operation(toFloat(value)));
}

dColor perChannel(const dColor& color, bool skipAlpha, const auto& operation)
{
    dColor result(operation(color[0], 0), operation(color[1], 1), operation(color[2], 2),
                  operation(color[3], 3));
    if (skipAlpha)
        result.a() = color.a();
    return result;
}

/// A rule for one channel with its settings.
template <class Rule>
float apply(float value, auto... settings)
{
    static_assert(sizeof...(settings) == Rule::constants);
    const float constants[] = {settings...};
    return Rule::apply(value, constants);
}

/// The float nearest to the power. The C library's single-precision power is not always that one, and which
/// it is depends on the processor.
float power(float base, float exponent) { return float(std::pow(double(base), double(exponent))); }

} // namespace

dColorTransform::dColorTransform() noexcept = default;
dColorTransform::~dColorTransform() = default;

unsigned char dColorTransform::transformCh(unsigned char value, int channel) const
{
    return throughFloat(value, [&](float v) { return transformFl(v, channel); });
}
unsigned short dColorTransform::transformSh(unsigned short value, int channel) const
{
    return throughFloat(value, [&](float v) { return transformFl(v, channel); });
}
unsigned char dColorTransform::inverseCh(unsigned char value, int channel) const
{
    return throughFloat(value, [&](float v) { return inverseFl(v, channel); });
}
unsigned short dColorTransform::inverseSh(unsigned short value, int channel) const
{
    return throughFloat(value, [&](float v) { return inverseFl(v, channel); });
}

void dColorTransform::setSkipAlpha(bool skip) noexcept { skipAlpha = skip; }
bool dColorTransform::getSkipAlpha() const noexcept { return skipAlpha; }

dColorTransform1::dColorTransform1() noexcept = default;
dColorTransform1::~dColorTransform1() = default;

dColor dColorTransform1::transformCl(dColor color) const
{
    return perChannel(color, skipAlpha, [this](float v, int channel) { return transformFl(v, channel); });
}
dColor dColorTransform1::inverseCl(dColor color) const
{
    return perChannel(color, skipAlpha, [this](float v, int channel) { return inverseFl(v, channel); });
}

dColorTransform4::dColorTransform4() noexcept = default;
dColorTransform4::~dColorTransform4() = default;
float dColorTransform4::transformFl(float value, int) const { return value; }
float dColorTransform4::inverseFl(float value, int) const { return value; }

dGamma::dGamma(dColor gamma) noexcept : gamma(gamma) {}
dGamma::~dGamma() = default;
float dGamma::transformFl(float value, int channel) const { return power(value, 1.0f / gamma[channel]); }
float dGamma::inverseFl(float value, int channel) const { return power(value, gamma[channel]); }
void dGamma::setGamma(dColor value) noexcept { gamma = value; }

dClamp::dClamp(dColor low, dColor high) noexcept : low(low), high(high) {}
dClamp::~dClamp() = default;
float dClamp::transformFl(float value, int channel) const
{
    return apply<rules::Clamp>(value, low[channel], high[channel]);
}
float dClamp::inverseFl(float value, int) const { return value; }

dThreshold::dThreshold(dColor threshold) noexcept : threshold(threshold) {}
dThreshold::~dThreshold() = default;
float dThreshold::transformFl(float value, int channel) const
{
    return apply<rules::Threshold>(value, threshold[channel]);
}
float dThreshold::inverseFl(float value, int) const { return value; }

dInvert::dInvert(dColor base) noexcept : base(base) {}
dInvert::~dInvert() = default;
float dInvert::transformFl(float value, int channel) const
{
    return apply<rules::Invert>(value, base[channel]);
}
float dInvert::inverseFl(float value, int) const { return value; }

// A colour's own division would give 0 for a scale of 0.
static dColor scaledDown(const dColor& color, float scale)
{
    return {color[0] / scale, color[1] / scale, color[2] / scale, color[3] / scale};
}

dSolarize::dSolarize(dColor low, dColor mid, dColor high, float scale, int keepBelow, int keepAbove) noexcept
    : low(scaledDown(low, scale)), mid(scaledDown(mid, scale)), high(scaledDown(high, scale)), scale(scale),
      keepBelow(keepBelow), keepAbove(keepAbove)
{
}
dSolarize::~dSolarize() = default;
float dSolarize::transformFl(float value, int channel) const
{
    return apply<rules::Solarize>(value, low[channel], mid[channel], high[channel], float(keepBelow != 0),
                                  float(keepAbove != 0));
}
float dSolarize::inverseFl(float value, int channel) const
{
    return apply<rules::InverseSolarize>(value, low[channel], mid[channel], high[channel]);
}

dBalance::dBalance() noexcept : dBalance(kLogSpace, 0.0f, 1) {}
dBalance::dBalance(_dColorSpace space, dColor offset, int unit) noexcept
    : unit(unit), space(space), offset(offset)
{
}
dBalance::dBalance(_dColorSpace space, float offset, int unit) noexcept
    : dBalance(space, dColor(offset), unit)
{
}
dBalance::~dBalance() = default;
float dBalance::transformFl(float value, int channel) const
{
    switch (space) {
    case kLogSpace:
        return apply<rules::Add>(value, balance::summand(*this, channel));
    case kLinearSpace:
        return apply<rules::Multiply>(value, balance::factor(*this, channel));
    }
    return value;
}
float dBalance::inverseFl(float value, int channel) const
{
    switch (space) {
    case kLogSpace:
        return apply<rules::Subtract>(value, balance::summand(*this, channel));
    case kLinearSpace:
        return apply<rules::Divide>(value, balance::factor(*this, channel));
    }
    return value;
}

dExpand::dExpand(dColor low, dColor high) noexcept : low(low), high(high) {}
dExpand::~dExpand() = default;
dColor dExpand::transformCl(dColor color) const { return dColor::expand(color, low, high); }
dColor dExpand::inverseCl(dColor color) const { return dColor::compress(color, low, high); }

dCompress::dCompress(dColor low, dColor high) noexcept : low(low), high(high) {}
dCompress::~dCompress() = default;
dColor dCompress::transformCl(dColor color) const { return dColor::compress(color, low, high); }
dColor dCompress::inverseCl(dColor color) const { return dColor::expand(color, low, high); }

/// The colour with its alpha, of `operation` on the colour and its alpha as a colour.
static dColor byAlpha(const dColor& color, bool checkAlpha, const auto& operation)
{
    if (checkAlpha && color.a() <= 0)
        return color;
    dColor result = operation(color, dColor(color.a()));
    result.a() = color.a();
    return result;
}

static dColor premultiplied(const dColor& color, bool checkAlpha)
{
    return byAlpha(color, checkAlpha, [](const dColor& c, const dColor& alpha) { return c * alpha; });
}
static dColor unpremultiplied(const dColor& color, bool checkAlpha)
{
    return byAlpha(color, checkAlpha, [](const dColor& c, const dColor& alpha) { return c / alpha; });
}

dMatteMult::dMatteMult(bool checkAlpha) noexcept : checkAlpha(checkAlpha) {}
dMatteMult::~dMatteMult() = default;
dColor dMatteMult::transformCl(dColor color) const { return premultiplied(color, checkAlpha); }
dColor dMatteMult::inverseCl(dColor color) const { return unpremultiplied(color, checkAlpha); }

dMatteDiv::dMatteDiv(bool checkAlpha) noexcept : checkAlpha(checkAlpha) {}
dMatteDiv::~dMatteDiv() = default;
dColor dMatteDiv::transformCl(dColor color) const { return unpremultiplied(color, checkAlpha); }
dColor dMatteDiv::inverseCl(dColor color) const { return premultiplied(color, checkAlpha); }

static char* copyOf(const char* text)
{
    const std::size_t size = text ? std::strlen(text) + 1 : 1;
    char* const copy = new char[size];
    copy[0] = '\0';
    if (text)
        std::memcpy(copy, text, size);
    return copy;
}

dReorder::dReorder(const char* order) : order(copyOf(order)) {}
dReorder::dReorder(const dReorder& other) : dColorTransform4(other), order(copyOf(other.order)) {}
dReorder& dReorder::operator=(const dReorder& other)
{
    setOrder(other.order);
    dColorTransform4::operator=(other);
    return *this;
}
dReorder::~dReorder() { delete[] order; }
void dReorder::setOrder(const char* text) { delete[] std::exchange(order, copyOf(text)); }

dColor dReorder::transformCl(dColor color) const
{
    dColor result = color;
    for (int i = 0; i < 4 && order[i] != '\0'; ++i)
        switch (order[i]) {
        case 'r':
            result[i] = color.r();
            break;
        case 'g':
            result[i] = color.g();
            break;
        case 'b':
            result[i] = color.b();
            break;
        case 'a':
            result[i] = color.a();
            break;
        case '0':
            result[i] = 0.0f;
            break;
        case '1':
            result[i] = 1.0f;
            break;
        default:
            break;
        }
    return result;
}
dColor dReorder::inverseCl(dColor color) const { return color; }

dSetColor::dSetColor(dColor color) noexcept
    : color(color), setRed(false), setGreen(false), setBlue(false), setAlpha(false)
{
}
dSetColor::~dSetColor() = default;
dColor dSetColor::transformCl(dColor c) const
{
    return {setRed ? color.r() : c.r(), setGreen ? color.g() : c.g(), setBlue ? color.b() : c.b(),
            setAlpha ? color.a() : c.a()};
}
dColor dSetColor::inverseCl(dColor c) const { return c; }

dSetAlpha::dSetAlpha(dScalar alpha) noexcept : alpha(alpha) {}
dSetAlpha::~dSetAlpha() = default;
dColor dSetAlpha::transformCl(dColor color) const
{
    color.a() = alpha;
    return color;
}
dColor dSetAlpha::inverseCl(dColor color) const { return color; }

} // namespace VHL
