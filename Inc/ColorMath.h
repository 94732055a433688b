// Floor: Media
// What the HSV and HSL families share: channels, sectors, hues, and the stored integer forms.
#pragma once

#include <ORLColor.h>
#include <Wrapping.h>

#include <cmath>

namespace ORL {
namespace ColorMath {

struct RGB
{
    float mRed = 0;
    float mGreen = 0;
    float mBlue = 0;
};

inline bool IsNearZero(float inValue)
{
    return std::fabs(inValue) < 0.0001f;
}

/// Red, green and blue, and the first two again: behind each channel stand the two others in their order. Indexing needs
/// no branch, and which channel of a colour is the largest cannot be predicted.
struct ChannelRing
{
    ChannelRing(float inRed, float inGreen, float inBlue) : mChannels{inRed, inGreen, inBlue, inRed, inGreen} {}

    float operator[](unsigned inChannel) const { return mChannels[inChannel]; }

    float mChannels[5];
};

inline constexpr unsigned kRed = 0;
inline constexpr unsigned kGreen = 1;
inline constexpr unsigned kBlue = 2;

/// The hue as a share of the circle. inSpread is the largest channel less the smallest.
inline float Hue(const ChannelRing& inColor, unsigned inLargest, float inSpread)
{
    static constexpr float kSectors[] = {-0.0f, 2, 4}; // adding -0 changes no number
    static constexpr double kTurns[] = {-0.0, 6};
    const double sixths = (inColor[inLargest + 1] - inColor[inLargest + 2]) / inSpread + kSectors[inLargest];
    return static_cast<float>((sixths + kTurns[sixths < 0]) / 6.0);
}

/// The two choices of the largest and the smallest channel differ where channels are equal.
inline unsigned LargestOfHSV(const ChannelRing& inColor)
{
    const unsigned redOrGreen = inColor[kGreen] > inColor[kRed] ? kGreen : kRed;
    const unsigned isBlue = inColor[kBlue] > inColor[redOrGreen] ? 1 : 0;
    return (redOrGreen & (isBlue ^ 1u)) | (kBlue * isBlue); // compilers branch on a second choice
}

inline float SmallestOfHSV(const ChannelRing& inColor)
{
    const float redOrGreen = inColor[kRed] > inColor[kGreen] ? inColor[kGreen] : inColor[kRed];
    return redOrGreen > inColor[kBlue] ? inColor[kBlue] : redOrGreen;
}

inline ChannelRing Normalized(const ParamColor<unsigned long>& inColor)
{
    return {inColor.GetRed() / 255.0f, inColor.GetGreen() / 255.0f, inColor.GetBlue() / 255.0f};
}

/// Degrees or percent of a value from 0 to 1; the 0.5 is added in double.
inline unsigned int Whole(float inValue, float inWhole)
{
    return static_cast<unsigned int>(static_cast<int>(inValue * inWhole + 0.5));
}

/// Low 8 bits of the rounded channel.
inline unsigned char StoredChannel(float inValue)
{
    return static_cast<unsigned char>(Wrapping::TruncateToInt(inValue * 255.0f + 0.5f));
}

inline ParamColor<unsigned long> Stored(const RGB& inColor)
{
    return {StoredChannel(inColor.mRed), StoredChannel(inColor.mGreen), StoredChannel(inColor.mBlue)};
}

/// The low 32 bits of a truncated value; a negative one wraps.
inline unsigned int StoredNumber(double inValue)
{
    return static_cast<unsigned int>(Wrapping::TruncateToUnsigned64(inValue));
}

/// Degrees or percent of any value; the 0.5 is added in float.
inline unsigned int StoredInFloat(float inValue, float inWhole)
{
    return StoredNumber(inValue * inWhole + 0.5f);
}

inline void SetFlag(bool* outFlag, bool inValue)
{
    if (outFlag != nullptr) {
        *outFlag = inValue;
    }
}

/// A colour as the HSV and the HSL family see it: each has its own level, and its own spread that is a saturation of 1.
/// The spread is the largest channel less the smallest.
struct Shade
{
    unsigned mLargest;
    float mLevel;
    float mSpread;
    float mFullSpread;
};

/// Stores hue and saturation where the colour has them. inStore makes an output of a value and its whole. Outputs are
/// stored as they are found: a record of them, with flags, costs half as much again.
template <class Number, class Store>
inline void StoreHueAndSaturation(const ChannelRing& inColor, const Shade& inShade, Number& outH, Number& outS,
                                  bool* outHasHue, bool* outHasSaturation, const Store& inStore)
{
    if (IsNearZero(inShade.mLevel)) {
        SetFlag(outHasSaturation, false);
        SetFlag(outHasHue, false);
        return;
    }
    const float saturation = inShade.mSpread / inShade.mFullSpread;
    outS = inStore(saturation, 100.0f);
    SetFlag(outHasSaturation, true);
    const bool hasHue = !IsNearZero(saturation);
    SetFlag(outHasHue, hasHue);
    if (hasHue) {
        outH = inStore(Hue(inColor, inShade.mLargest, inShade.mSpread), 360.0f);
    }
}

} // namespace ColorMath
} // namespace ORL
