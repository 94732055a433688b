// Converts between RGB and HSL.
#include <ORLColor.h>

#include <Media/ColorMath.h>

namespace ORL {

using namespace ColorMath;

namespace {

unsigned Largest(const ChannelRing& inColor)
{
    const bool isBlue = inColor[kBlue] >= inColor[kRed] && inColor[kBlue] >= inColor[kGreen];
    const bool isGreen = inColor[kGreen] >= inColor[kRed] && inColor[kGreen] >= inColor[kBlue];
    return isBlue ? kBlue : isGreen ? kGreen : kRed;
}

float Smallest(const ChannelRing& inColor)
{
    const bool isBlue = inColor[kRed] >= inColor[kBlue] && inColor[kGreen] >= inColor[kBlue];
    const bool isGreen = inColor[kRed] >= inColor[kGreen] && inColor[kBlue] >= inColor[kGreen];
    return inColor[isBlue ? kBlue : isGreen ? kGreen : kRed];
}

RGB RGBFromHSL(unsigned int inH, float inS, unsigned int inL)
{
    RGB color;
    NormalizedHSLtoRGB(static_cast<float>(inH) / 360.0f, inS, static_cast<float>(inL) / 100.0f, color.mRed,
                       color.mGreen, color.mBlue);
    return color;
}

Shade ShadeOf(const ChannelRing& inColor)
{
    const unsigned largest = Largest(inColor);
    const float most = inColor[largest];
    const float least = Smallest(inColor);
    return {largest, (most + least) * 0.5f, most - least, 1.0f}; // a spread of 1 is full saturation at any lightness
}

} // namespace

void NormalizedRGBtoHSL(float inR, float inG, float inB, float& outH, float& outS, float& outL, bool* outHasHue,
                        bool* outHasSaturation)
{
    const ChannelRing color(inR, inG, inB);
    const Shade shade = ShadeOf(color);
    outL = shade.mLevel;
    StoreHueAndSaturation(color, shade, outH, outS, outHasHue, outHasSaturation,
                          [](float inValue, float) { return inValue; });
}

void ColorRGBtoHSL(const ParamColor<unsigned long>& inColor, unsigned int& outH, unsigned int& outS, unsigned int& outL,
                   bool* outHasHue, bool* outHasSaturation)
{
    const ChannelRing color = Normalized(inColor);
    const Shade shade = ShadeOf(color);
    outL = StoredInFloat(shade.mLevel, 100.0f);
    StoreHueAndSaturation(color, shade, outH, outS, outHasHue, outHasSaturation, &Whole);
}

void NormalizedHSLtoRGB(float inH, float inS, float inL, float& outR, float& outG, float& outB)
{
    const float v = inL <= 0.5f ? (inS + 1) * inL : inS + inL - inS * inL;
    outR = outG = outB = 0;
    if (!(v > 0)) {
        return;
    }
    const float sixths = 6 * inH;
    if (!(sixths > -1 && sixths < 6)) { // outside every sector, or NaN
        return;
    }
    const int sector = static_cast<int>(sixths);
    const float f = sixths - static_cast<float>(sector);
    const float m = 2 * inL - v;
    const float w = (v - m) / v * v * f; // not simplified: / v * v affects the last bits
    const float levels[] = {v, m, m + w, v - w};
    enum { V, M, U, Z };
    static constexpr unsigned char kLevels[6][3] = {{V, U, M}, {Z, V, M}, {M, V, U}, {M, Z, V}, {U, M, V}, {V, M, Z}};
    outR = levels[kLevels[sector][0]];
    outG = levels[kLevels[sector][1]];
    outB = levels[kLevels[sector][2]];
}

void ColorHSLtoRGB(unsigned int inH, unsigned int inS, unsigned int inL, ParamColor<unsigned long>& outColor)
{
    outColor = Stored(RGBFromHSL(inH, static_cast<float>(inS) / 100.0f, inL));
}

void ColorHSLtoHSV(unsigned int inH, unsigned int inS, unsigned int inL, unsigned int& outH, unsigned int& outS,
                   unsigned int& outV)
{
    float saturation = static_cast<float>(inS) / 100.0f;
    const RGB rgb = RGBFromHSL(inH, saturation, inL);
    const ChannelRing color(rgb.mRed, rgb.mGreen, rgb.mBlue);
    const float value = color[LargestOfHSV(color)];
    if (!IsNearZero(value)) {
        saturation = (value - SmallestOfHSV(color)) / value;
    }
    outH = inH;
    outS = StoredInFloat(saturation, 100.0f);
    outV = StoredInFloat(value, 100.0f);
}

} // namespace ORL
