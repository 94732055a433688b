// Floor: Media
// Conversions of one colour between RGB, HSL, HSV, YUV, YPbPr and YIQ, and its luma and chroma in IRE and millivolts.
//
// Colours have two numeric forms. Normalised values are floats: 0 to 1 for R, G, B, H, S, L, V and Y, -0.5 to 0.5 for
// Pb and Pr. Integer values are for user interfaces: hue in degrees, 0 to 360; saturation, lightness and value in
// percent, 0 to 100; R, G, B and Y as bytes; U and V as signed bytes centred on 0. Values outside these ranges are
// computed with the same formulas; each function documents what it stores.
//
// Every operation is an IEEE single or double operation, in the order of the formula and never fused, so results are
// bit-identical on every platform and at every optimisation level. Conversions to integers truncate toward zero.
//
// All functions are thread-safe. They never throw, allocate nothing and take no lock.
//
// Sources of the formulas: RGB and YUV are ITU-R BT.601 with 16 to 235 for Y and 16 to 240 for chroma. YPbPr is BT.601
// with full-range chroma, as in JFIF. YIQ rotates the chroma plane by 33 degrees. HSV is A. R. Smith's hexcone (1978).
// HSL uses the hue of HSV; from RGB its saturation is the largest channel minus the smallest. IRE and millivolts are
// those of an NTSC signal without set-up: 100 IRE are 714.2857 mV.
#pragma once

#include <ORLConfig.h>

#include <cstdint>

namespace ORL {

template <class T>
class ParamColor;

/// A colour in 32 bits: red in the low byte, then green, then blue. The top byte is not part of the colour: every
/// function that stores a colour sets the top byte to 0, except MakeRGBNTSCSafe, which copies it. As thread-safe as an
/// integer.
template <>
class ParamColor<unsigned long>
{
public:
    constexpr ParamColor() noexcept = default;

    /// Keeps the low 32 bits.
    constexpr explicit ParamColor(unsigned long inValue) noexcept : mValue(static_cast<std::uint32_t>(inValue)) {}

    constexpr ParamColor(unsigned char inRed, unsigned char inGreen, unsigned char inBlue) noexcept
        : mValue(inRed | static_cast<std::uint32_t>(inGreen) << 8 | static_cast<std::uint32_t>(inBlue) << 16)
    {
    }

    constexpr unsigned long GetValue() const noexcept { return mValue; }                           ///< the 32 bits
    constexpr unsigned char GetRed() const noexcept { return static_cast<unsigned char>(mValue); } ///< 0 to 255
    constexpr unsigned char GetGreen() const noexcept { return static_cast<unsigned char>(mValue >> 8); } ///< 0 to 255
    constexpr unsigned char GetBlue() const noexcept { return static_cast<unsigned char>(mValue >> 16); } ///< 0 to 255

    /// Compares all 32 bits.
    friend constexpr bool operator==(const ParamColor& inLeft, const ParamColor& inRight) noexcept
    {
        return inLeft.mValue == inRight.mValue;
    }
    friend constexpr bool operator!=(const ParamColor& inLeft, const ParamColor& inRight) noexcept
    {
        return !(inLeft == inRight);
    }

private:
    std::uint32_t mValue = 0;
};

// RGB and YUV

/// Computes in double: Y = 0.257 R + 0.504 G + 0.098 B + 16, V = 0.439 R - 0.368 G - 0.071 B, U = -0.148 R - 0.291 G +
/// 0.439 B. U and V are truncated after adding 128, which is then subtracted.
ORL_API void ColorRGBtoYUV(const ParamColor<unsigned long>& inColor, unsigned char& outY, char& outU, char& outV);

/// Computes in double, with y = (Y - 16) 1.164: R = 1.596 V + y, G = y - 0.392 U - 0.813 V, B = 2.017 U + y, truncated
/// and clamped to 0..255. Returns false if all three channels were clamped, else true.
ORL_API bool ColorYUVtoRGB(unsigned char inY, char inU, char inV, ParamColor<unsigned long>& outColor);

/// The formulas of ColorYUVtoRGB in float, with Y from 0 to 255 and signed U and V. Each channel is rounded, ties away
/// from zero, and clamped to 0..255; a channel that is not a number becomes 0.
ORL_API void ColorYUVtoRGBf(float inY, float inU, float inV, ParamColor<unsigned long>& outColor);

// RGB, YPbPr and YIQ, in float

/// Y = 0.299 R + 0.587 G + 0.114 B, Pb = -0.168736 R - 0.331264 G + 0.5 B, Pr = 0.5 R - 0.418688 G - 0.081312 B.
ORL_API void ColorRGBToYPbPr(float inR, float inG, float inB, float& outY, float& outPb, float& outPr);

/// R = 1.402 Pr + Y, G = Y - 0.344136 Pb - 0.714136 Pr, B = 1.772 Pb + Y. Nothing is clamped.
ORL_API void ColorYPbPrToRGB(float inY, float inPb, float inPr, float& outR, float& outG, float& outB);

/// Y is copied; I = -0.544639 Pb + 0.838671 Pr, Q = 0.544639 Pr + 0.838671 Pb.
ORL_API void ColorYPbPrToYIQ(float inY, float inPb, float inPr, float& outY, float& outI, float& outQ);

/// Stores the angle of the chroma vector, measured from red, as a fraction of the full circle: 0 to 1. Without chroma
/// the angle is 0. The library computes the arctangent itself, rounded to the nearest float, so it does not depend on
/// the C runtime.
ORL_API void ColorPbPrToHue(float inPb, float inPr, float& outHue);

/// Same as ColorYPbPrToRGB followed by NormalizedRGBtoHSL, which may leave hue and saturation untouched.
ORL_API void ColorYPbPrToHSL(float inY, float inPb, float inPr, float& outH, float& outS, float& outL);

// Levels: luma is 100 times the Y of YPbPr. Chroma is 100 times the length of the vector of two colour differences,
// scaled as for the subcarrier. The millivolt functions multiply both by 7.142857.

/// The colour differences are 0.614975 R - 0.514965 G - 0.10001 B and -0.147141 R - 0.288869 G + 0.43601 B.
ORL_API void ColorRGBToIRE(float inR, float inG, float inB, float& outLuma, float& outChroma);
ORL_API void ColorRGBToMV(float inR, float inG, float inB, float& outLuma, float& outChroma);

/// The colour differences are 1.23 Pr and 0.87202 Pb.
ORL_API void ColorYPbPrToIRE(float inY, float inPb, float inPr, float& outLuma, float& outChroma);
ORL_API void ColorYPbPrToMV(float inY, float inPb, float inPr, float& outLuma, float& outChroma);

// RGB, HSV and HSL
//
// A colour may have no saturation (V or L below 0.0001) or no hue (S below 0.0001). In that case the output is not
// stored and keeps the caller's value, so initialise it. The two flags report whether hue and saturation were stored;
// either pointer may be null. The hue is computed in sixths of the circle: 6 is added if it is negative, then it is
// divided by 6, both in double.

/// V is the largest channel, S = (largest - smallest) / V.
ORL_API void NormalizedRGBtoHSV(float inR, float inG, float inB, float& outH, float& outS, float& outV, bool* outHasHue,
                                bool* outHasSaturation);

/// L = (largest + smallest) 0.5, S = largest - smallest. The saturation is not divided by the lightness.
ORL_API void NormalizedRGBtoHSL(float inR, float inG, float inB, float& outH, float& outS, float& outL, bool* outHasHue,
                                bool* outHasSaturation);

/// A hue of exactly 1 is treated as 0. If S is not 0 and the hue is below 0, above 1 or not a number, the outputs stay
/// untouched.
ORL_API void NormalizedHSVtoRGB(float inH, float inS, float inV, float& outR, float& outG, float& outB);

/// Any hue outside the sectors 0 to 5 results in black, including a hue of 1, unlike in the HSV form. The sector is
/// truncated toward zero, so a hue between -1/6 and 0 is in sector 0.
ORL_API void NormalizedHSLtoRGB(float inH, float inS, float inL, float& outR, float& outG, float& outB);

/// Same as the normalised forms, with bytes divided by 255. Hue is stored in degrees, the other outputs in percent,
/// rounded to nearest. Outputs that the normalised form leaves untouched stay untouched.
ORL_API void ColorRGBtoHSV(const ParamColor<unsigned long>& inColor, unsigned int& outH, unsigned int& outS,
                           unsigned int& outV, bool* outHasHue, bool* outHasSaturation);
ORL_API void ColorRGBtoHSL(const ParamColor<unsigned long>& inColor, unsigned int& outH, unsigned int& outS,
                           unsigned int& outL, bool* outHasHue, bool* outHasSaturation);

/// Same as the normalised forms, with hue divided by 360 and the others by 100. Each channel is rounded and its low 8
/// bits are stored. Hue 360 is hue 0 in HSV but black in HSL; a larger hue is black, except in HSV with saturation 0.
ORL_API void ColorHSVtoRGB(unsigned int inH, unsigned int inS, unsigned int inV, ParamColor<unsigned long>& outColor);
ORL_API void ColorHSLtoRGB(unsigned int inH, unsigned int inS, unsigned int inL, ParamColor<unsigned long>& outColor);

/// Converts through RGB in float. Copies the hue, and also the saturation if the RGB colour has no saturation.
ORL_API void ColorHSLtoHSV(unsigned int inH, unsigned int inS, unsigned int inL, unsigned int& outH, unsigned int& outS,
                           unsigned int& outV);
ORL_API void ColorHSVtoHSL(unsigned int inH, unsigned int inS, unsigned int inV, unsigned int& outH, unsigned int& outS,
                           unsigned int& outL);

/// Same as ColorHSLtoRGB or ColorHSVtoRGB, followed by ColorRGBtoYUV.
ORL_API void ColorHSLtoYUV(unsigned int inH, unsigned int inS, unsigned int inL, unsigned char& outY, char& outU,
                           char& outV);
ORL_API void ColorHSVtoYUV(unsigned int inH, unsigned int inS, unsigned int inV, unsigned char& outY, char& outU,
                           char& outV);

/// Same as ColorYUVtoRGB followed by ColorRGBtoHSL or ColorRGBtoHSV, which may leave hue and saturation untouched.
ORL_API void ColorYUVtoHSL(unsigned char inY, char inU, char inV, unsigned int& outH, unsigned int& outS,
                           unsigned int& outL);
ORL_API void ColorYUVtoHSV(unsigned char inY, char inU, char inV, unsigned int& outH, unsigned int& outS,
                           unsigned int& outV);

// Safe colours

/// Clears the low 5 bits of each channel. Returns true if no channel changed.
ORL_API bool MakeRGBWebSafe(const ParamColor<unsigned long>& inColor, ParamColor<unsigned long>& outColor);

/// Copies the colour, top byte included, and returns true: every colour counts as safe.
ORL_API bool MakeRGBNTSCSafe(const ParamColor<unsigned long>& inColor, ParamColor<unsigned long>& outColor);

} // namespace ORL
