// Shared by the HSV and HSL families: channels, sectors, hues, and the stored integer forms.
#pragma once

#include <Core/Wrapping.h>
#include <ORLColor.h>

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

/// Red, green, blue, red, green: each channel is followed by the other two in order. Indexing needs no branch; a branch
/// on which channel is the largest would be unpredictable.
struct ChannelRing
{
    ChannelRing(float inRed, float inGreen, float inBlue) : mChannels{inRed, inGreen, inBlue, inRed, inGreen} {}

    float operator[](unsigned inChannel) const { return mChannels[inChannel]; }

    float mChannels[5];
};

inline constexpr unsigned kRed = 0;
inline constexpr unsigned kGreen = 1;
inline constexpr unsigned kBlue = 2;

/// Returns the hue as a fraction of the circle. inSpread is the largest channel minus the smallest.
inline float Hue(const ChannelRing& inColor, unsigned inLargest, float inSpread)
{
    static constexpr float kSectors[] = {-0.0f, 2, 4}; // adding -0 leaves every number unchanged
    static constexpr double kTurns[] = {-0.0, 6};
    const double sixths = (inColor[inLargest + 1] - inColor[inLargest + 2]) / inSpread + kSectors[inLargest];
    return static_cast<float>((sixths + kTurns[sixths < 0]) / 6.0);
}

/// Returns the largest channel as HSV chooses it; HSL chooses differently if channels are equal.
inline unsigned LargestOfHSV(const ChannelRing& inColor)
{
    const unsigned redOrGreen = inColor[kGreen] > inColor[kRed] ? kGreen : kRed;
    const unsigned isBlue = inColor[kBlue] > inColor[redOrGreen] ? 1 : 0;
    return (redOrGreen & (isBlue ^ 1u)) | (kBlue * isBlue); // compilers emit a branch for a second conditional
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

/// Converts a fraction, 0 to 1, to whole degrees or percent. Rounds by adding 0.5, in double precision.
inline unsigned int Whole(float inValue, float inWhole)
{
    return static_cast<unsigned int>(static_cast<int>(inValue * inWhole + 0.5));
}

/// Returns the low 8 bits of the rounded channel.
inline unsigned char StoredChannel(float inValue)
{
    return static_cast<unsigned char>(Wrapping::TruncateToInt(inValue * 255.0f + 0.5f));
}

inline ParamColor<unsigned long> Stored(const RGB& inColor)
{
    return {StoredChannel(inColor.mRed), StoredChannel(inColor.mGreen), StoredChannel(inColor.mBlue)};
}

/// Returns the low 32 bits of a truncated value; a negative one wraps.
inline unsigned int StoredNumber(double inValue)
{
    return static_cast<unsigned int>(Wrapping::TruncateToUnsigned64(inValue));
}

/// Same as Whole, for a fraction of any value. Rounds by adding 0.5, in single precision.
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

/// A colour in HSV or HSL. The spread is the largest channel minus the smallest. The families differ in the level, and
/// in the spread at which the saturation is 1.
struct Shade
{
    unsigned mLargest;
    float mLevel;
    float mSpread;
    float mFullSpread;
};

/// Stores hue and saturation if the colour has them. inStore converts a value and its full scale to an output. Stores
/// through references: returning a record with flags costs 50 % more.
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
