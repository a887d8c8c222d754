// SPDX-License-Identifier: BSD-3-Clause
// Colour operations that are built once with their settings, then applied to any number of colours.
#pragma once

#include "api.h"
#include "boolean.h"
#include "color.h"
#include "scalar.h"

#include <cstddef>

namespace VHL {

/// A colour operation and the way back.
///
/// Every transform works on whole colours (Cl), on one channel as a float (Fl) and on one channel as an 8-bit
/// (Ch) or 16-bit (Sh) integer, where 255 and 65535 mean 1. A channel is 0 red, 1 green, 2 blue or 3 alpha;
/// any other is undefined. All floats are allowed, NaN and infinities included; nothing throws unless it says
/// so.
///
/// A call takes a few nanoseconds, a gamma some twenty for each channel; for many colours there are the batch
/// forms below. Applying a transform never changes it, so that threads may share one as long as none of them
/// sets a field.
class VHL_API dColorTransform {
public:
    dColorTransform() noexcept;
    dColorTransform(const dColorTransform&) noexcept = default;
    dColorTransform& operator=(const dColorTransform&) noexcept = default;
    virtual ~dColorTransform();

    // The order of these is contract.
    virtual dColor transformCl(dColor color) const = 0;
    virtual float transformFl(float value, int channel) const = 0;
    /// By transformFl, held within 0 and 255 and rounded to the nearest integer. Deliberate: halves go down.
    /// A NaN gives 0.
    virtual unsigned char transformCh(unsigned char value, int channel) const;
    /// The same within 0 and 65535.
    virtual unsigned short transformSh(unsigned short value, int channel) const;
    virtual dColor inverseCl(dColor color) const = 0;
    virtual float inverseFl(float value, int channel) const = 0;
    virtual unsigned char inverseCh(unsigned char value, int channel) const;
    virtual unsigned short inverseSh(unsigned short value, int channel) const;

    void setSkipAlpha(bool skip) noexcept;
    bool getSkipAlpha() const noexcept;

    /// Whether a transform of single channels leaves a colour's alpha alone; on at first. Alpha as a single
    /// channel (channel 3) is transformed all the same.
    bool skipAlpha = true;
};

/// A transform that takes each channel by itself: colours go channel by channel through transformFl or
/// inverseFl.
class VHL_API dColorTransform1 : public dColorTransform {
public:
    dColorTransform1() noexcept;
    dColorTransform1(const dColorTransform1&) noexcept = default;
    dColorTransform1& operator=(const dColorTransform1&) noexcept = default;
    ~dColorTransform1() override;

    dColor transformCl(dColor color) const override;
    dColor inverseCl(dColor color) const override;
};

/// A transform of whole colours. Single channels pass unchanged, and skipAlpha has no effect.
class VHL_API dColorTransform4 : public dColorTransform {
public:
    dColorTransform4() noexcept;
    dColorTransform4(const dColorTransform4&) noexcept = default;
    dColorTransform4& operator=(const dColorTransform4&) noexcept = default;
    ~dColorTransform4() override;

    float transformFl(float value, int channel) const override;
    float inverseFl(float value, int channel) const override;
};

/// pow(v, 1 / gamma); back pow(v, gamma). The power is taken in double precision and rounded once, so that it
/// is the float nearest to the exact power on every machine. A gamma of 0 is an exponent of infinity: 0 below
/// 1, infinity above.
class VHL_API dGamma : public dColorTransform1 {
public:
    explicit dGamma(dColor gamma) noexcept;
    ~dGamma() override;
    float transformFl(float value, int channel) const override;
    float inverseFl(float value, int channel) const override;
    void setGamma(dColor value) noexcept;

    dColor gamma;
};

/// Holds a value within low and high; low wins when they are swapped, and a NaN passes. Back: unchanged.
class VHL_API dClamp : public dColorTransform1 {
public:
    dClamp(dColor low, dColor high) noexcept;
    ~dClamp() override;
    float transformFl(float value, int channel) const override;
    float inverseFl(float value, int channel) const override;

    dColor low, high;
};

/// 0 below the threshold, else the value; a NaN passes. Back: unchanged.
class VHL_API dThreshold : public dColorTransform1 {
public:
    explicit dThreshold(dColor threshold) noexcept;
    ~dThreshold() override;
    float transformFl(float value, int channel) const override;
    float inverseFl(float value, int channel) const override;

    dColor threshold;
};

/// base - v. Back: unchanged, deliberately, although the same operation would be its own inverse.
class VHL_API dInvert : public dColorTransform1 {
public:
    explicit dInvert(dColor base) noexcept;
    ~dInvert() override;
    float transformFl(float value, int channel) const override;
    float inverseFl(float value, int channel) const override;

    dColor base;
};

/// A ramp up from low to mid and down again to high: 0, 1 and 0 there, and outside 0 or, where it is to be
/// kept, the value. A NaN counts as above high. Bounds that are equal divide by zero, without a guard.
///
/// Back: the rising ramp's inverse for what is below mid, else the falling one's. Deliberate: the ramp's
/// value is compared with mid, not with 1.
class VHL_API dSolarize : public dColorTransform1 {
public:
    /// All three colours are divided by the scale, so that they can be given in its range, say 0 to 255.
    dSolarize(dColor low, dColor mid, dColor high, float scale, int keepBelow, int keepAbove) noexcept;
    ~dSolarize() override;
    float transformFl(float value, int channel) const override;
    float inverseFl(float value, int channel) const override;

    dColor low, mid, high;
    float scale;
    int keepBelow, keepAbove;
};

/// What a dBalance's values are. Any other number leaves values as they are.
enum _dColorSpace : int {
    kLogSpace = 0,    ///< normalised 10-bit code values: offsets add
    kLinearSpace = 1, ///< linear light: offsets multiply by powers of two
};

/// Adds an offset, counted in printing units: 1 single code values, 2 sixths of a stop (11.25 code values), 3
/// stops (67.5 code values), any other none. Back: takes it away, in linear light by a division.
class VHL_API dBalance : public dColorTransform1 {
public:
    dBalance() noexcept;
    dBalance(_dColorSpace space, dColor offset, int unit) noexcept;
    dBalance(_dColorSpace space, float offset, int unit) noexcept;
    ~dBalance() override;
    float transformFl(float value, int channel) const override;
    float inverseFl(float value, int channel) const override;

    int unit;
    _dColorSpace space;
    dColor offset;
};

/// dColor::expand: low becomes 0 and high 1, alpha too; equal bounds divide by zero. Back: dColor::compress.
class VHL_API dExpand : public dColorTransform4 {
public:
    dExpand(dColor low, dColor high) noexcept;
    ~dExpand() override;
    dColor transformCl(dColor color) const override;
    dColor inverseCl(dColor color) const override;

    dColor low, high;
};

/// dColor::compress: 0 becomes low and 1 high, alpha too. Back: dColor::expand; equal bounds divide by zero.
class VHL_API dCompress : public dColorTransform4 {
public:
    dCompress(dColor low, dColor high) noexcept;
    ~dCompress() override;
    dColor transformCl(dColor color) const override;
    dColor inverseCl(dColor color) const override;

    dColor low, high;
};

/// Multiplies by alpha and keeps alpha. Back: divides by it. A colour whose alpha is 0 or less passes
/// unchanged if alpha is to be checked; else a division by an alpha of 0 gives black.
class VHL_API dMatteMult : public dColorTransform4 {
public:
    explicit dMatteMult(bool checkAlpha) noexcept;
    ~dMatteMult() override;
    dColor transformCl(dColor color) const override;
    dColor inverseCl(dColor color) const override;

    bool checkAlpha;
};

/// dMatteMult the other way round.
class VHL_API dMatteDiv : public dColorTransform4 {
public:
    explicit dMatteDiv(bool checkAlpha) noexcept;
    ~dMatteDiv() override;
    dColor transformCl(dColor color) const override;
    dColor inverseCl(dColor color) const override;

    bool checkAlpha;
};

/// Puts channels into another order. The character at a position says what goes there: r, g, b or a the
/// channel, 0 or 1 the number, any other, a capital too, what was there. What is beyond the fourth character
/// is ignored; positions that the order does not reach stay. Back: unchanged.
class VHL_API dReorder : public dColorTransform4 {
public:
    /// Keeps a copy; a null pointer counts as an empty order. Throws std::bad_alloc.
    explicit dReorder(const char* order);
    dReorder(const dReorder& other);
    dReorder& operator=(const dReorder& other);
    ~dReorder() override;
    dColor transformCl(dColor color) const override;
    dColor inverseCl(dColor color) const override;
    /// Replaces the copy, from any text, the present order too. Throws std::bad_alloc and then changes
    /// nothing.
    void setOrder(const char* order);

    /// Owned, from new[].
    char* order;
};

/// Sets the channels whose flags are set; at first none is. Back: unchanged.
class VHL_API dSetColor : public dColorTransform4 {
public:
    explicit dSetColor(dColor color) noexcept;
    ~dSetColor() override;
    dColor transformCl(dColor color) const override;
    dColor inverseCl(dColor color) const override;

    dColor color;
    dBoolean setRed, setGreen, setBlue, setAlpha;
};

/// Sets alpha. Back: unchanged.
class VHL_API dSetAlpha : public dColorTransform4 {
public:
    explicit dSetAlpha(dScalar alpha) noexcept;
    ~dSetAlpha() override;
    dColor transformCl(dColor color) const override;
    dColor inverseCl(dColor color) const override;

    dScalar alpha;
};

/// transform.transformCl for every one of `count` colours, bit for bit. Colours may be transformed in place;
/// arrays that overlap in another way are not allowed. The classes above take as many colours at a time as
/// the processor's vectors hold, and cost little more than reading and writing memory does; a gamma costs
/// some three times as much, and makes tables first, in some microseconds. Transforms of other classes are
/// called for each colour.
VHL_API void transformCl(const dColorTransform& transform, const dColor* in, dColor* out, std::size_t count);
/// The same for transform.inverseCl.
VHL_API void inverseCl(const dColorTransform& transform, const dColor* in, dColor* out, std::size_t count);

/// The same for arrays of one channel: transform.transformFl and so on for every value, bit for bit. Floats
/// and 16-bit values of the classes above go as colours do. For 256 bytes or more, each of the values that a
/// byte has is transformed once; a transform must give the same for the same value.
VHL_API void transformFl(const dColorTransform& transform, const float* in, float* out, std::size_t count,
                         int channel);
VHL_API void inverseFl(const dColorTransform& transform, const float* in, float* out, std::size_t count,
                       int channel);
VHL_API void transformCh(const dColorTransform& transform, const unsigned char* in, unsigned char* out,
                         std::size_t count, int channel);
VHL_API void inverseCh(const dColorTransform& transform, const unsigned char* in, unsigned char* out,
                       std::size_t count, int channel);
VHL_API void transformSh(const dColorTransform& transform, const unsigned short* in, unsigned short* out,
                         std::size_t count, int channel);
VHL_API void inverseSh(const dColorTransform& transform, const unsigned short* in, unsigned short* out,
                       std::size_t count, int channel);

} // namespace VHL
