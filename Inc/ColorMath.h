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

enum Channel { kRed, kGreen, kBlue };

inline bool IsNearZero(float inValue)
{
    return std::fabs(inValue) < 0.0001f;
}

/// The hue as a share of the circle. inSpread is the largest channel less the smallest.
inline float Hue(const RGB& inColor, Channel inLargest, float inSpread)
{
    float sixths = 0;
    switch (inLargest) {
    case kRed:
        sixths = (inColor.mGreen - inColor.mBlue) / inSpread;
        break;
    case kGreen:
        sixths = (inColor.mBlue - inColor.mRed) / inSpread + 2.0f;
        break;
    case kBlue:
        sixths = (inColor.mRed - inColor.mGreen) / inSpread + 4.0f;
        break;
    }
    const double wide = sixths;
    return static_cast<float>((wide < 0 ? wide + 6.0 : wide) / 6.0);
}

/// The two choices of the largest and the smallest channel differ where channels are equal.
inline Channel LargestOfHSV(const RGB& inColor)
{
    if (inColor.mGreen > inColor.mRed) {
        return inColor.mBlue > inColor.mGreen ? kBlue : kGreen;
    }
    return inColor.mBlue > inColor.mRed ? kBlue : kRed;
}

inline float SmallestOfHSV(const RGB& inColor)
{
    if (inColor.mRed > inColor.mGreen) {
        return inColor.mGreen > inColor.mBlue ? inColor.mBlue : inColor.mGreen;
    }
    return inColor.mRed > inColor.mBlue ? inColor.mBlue : inColor.mRed;
}

inline float ValueOf(const RGB& inColor, Channel inChannel)
{
    return inChannel == kRed ? inColor.mRed : inChannel == kGreen ? inColor.mGreen : inColor.mBlue;
}

inline RGB Normalized(const ParamColor<unsigned long>& inColor)
{
    return {inColor.GetRed() / 255.0f, inColor.GetGreen() / 255.0f, inColor.GetBlue() / 255.0f};
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

/// Degrees or percent of a normalised value; the 0.5 is added in double.
inline unsigned int StoredInDouble(float inValue, float inWhole)
{
    return StoredNumber(inValue * inWhole + 0.5);
}

/// The same with the 0.5 added in float.
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

} // namespace ColorMath
} // namespace ORL
