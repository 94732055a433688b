// RGB and HSL.
#include <ORLColor.h>

#include <ColorMath.h>

namespace ORL {

using namespace ColorMath;

namespace {

Channel Largest(const RGB& inColor)
{
    if (inColor.mBlue >= inColor.mRed && inColor.mBlue >= inColor.mGreen) {
        return kBlue;
    }
    return inColor.mGreen >= inColor.mRed && inColor.mGreen >= inColor.mBlue ? kGreen : kRed;
}

float Smallest(const RGB& inColor)
{
    if (inColor.mRed >= inColor.mBlue && inColor.mGreen >= inColor.mBlue) {
        return inColor.mBlue;
    }
    return inColor.mRed >= inColor.mGreen && inColor.mBlue >= inColor.mGreen ? inColor.mGreen : inColor.mRed;
}

RGB OfHSL(unsigned int inH, float inS, unsigned int inL)
{
    RGB color;
    NormalizedHSLtoRGB(static_cast<float>(inH) / 360.0f, inS, static_cast<float>(inL) / 100.0f, color.mRed,
                       color.mGreen, color.mBlue);
    return color;
}

} // namespace

void NormalizedRGBtoHSL(float inR, float inG, float inB, float& outH, float& outS, float& outL, bool* outHasHue,
                        bool* outHasSaturation)
{
    const RGB color{inR, inG, inB};
    const Channel largest = Largest(color);
    const float most = ValueOf(color, largest);
    const float least = Smallest(color);
    const float lightness = (most + least) * 0.5f;
    outL = lightness;
    if (IsNearZero(lightness)) {
        SetFlag(outHasSaturation, false);
        SetFlag(outHasHue, false);
        return;
    }
    const float saturation = most - least;
    outS = saturation;
    SetFlag(outHasSaturation, true);
    const bool hasHue = !IsNearZero(saturation);
    SetFlag(outHasHue, hasHue);
    if (hasHue) {
        outH = Hue(color, largest, saturation);
    }
}

void ColorRGBtoHSL(const ParamColor<unsigned long>& inColor, unsigned int& outH, unsigned int& outS,
                   unsigned int& outL, bool* outHasHue, bool* outHasSaturation)
{
    const RGB color = Normalized(inColor);
    float hue = 0;
    float saturation = 0;
    float lightness = 0;
    bool hasHue = false;
    bool hasSaturation = false;
    NormalizedRGBtoHSL(color.mRed, color.mGreen, color.mBlue, hue, saturation, lightness, &hasHue, &hasSaturation);
    if (hasHue) {
        outH = StoredInDouble(hue, 360.0f);
    }
    if (hasSaturation) {
        outS = StoredInDouble(saturation, 100.0f);
    }
    outL = StoredInFloat(lightness, 100.0f);
    SetFlag(outHasHue, hasHue);
    SetFlag(outHasSaturation, hasSaturation);
}

void NormalizedHSLtoRGB(float inH, float inS, float inL, float& outR, float& outG, float& outB)
{
    const float v = inL <= 0.5f ? (inS + 1) * inL : inS + inL - inS * inL;
    outR = outG = outB = 0;
    if (!(v > 0)) {
        return;
    }
    const float sixths = 6 * inH;
    if (!(sixths > -1 && sixths < 6)) { // truncated, it is no sector; NaN too
        return;
    }
    const int sector = static_cast<int>(sixths);
    const float f = sixths - static_cast<float>(sector);
    const float m = 2 * inL - v;
    const float w = (v - m) / v * v * f; // the division is not undone exactly
    const float levels[] = {v, m, m + w, v - w};
    enum { V, M, U, Z };
    static constexpr unsigned char kLevels[6][3] = {{V, U, M}, {Z, V, M}, {M, V, U}, {M, Z, V}, {U, M, V}, {V, M, Z}};
    outR = levels[kLevels[sector][0]];
    outG = levels[kLevels[sector][1]];
    outB = levels[kLevels[sector][2]];
}

void ColorHSLtoRGB(unsigned int inH, unsigned int inS, unsigned int inL, ParamColor<unsigned long>& outColor)
{
    outColor = Stored(OfHSL(inH, static_cast<float>(inS) / 100.0f, inL));
}

void ColorHSLtoHSV(unsigned int inH, unsigned int inS, unsigned int inL, unsigned int& outH, unsigned int& outS,
                   unsigned int& outV)
{
    float saturation = static_cast<float>(inS) / 100.0f;
    const RGB color = OfHSL(inH, saturation, inL);
    const float value = ValueOf(color, LargestOfHSV(color));
    if (!IsNearZero(value)) {
        saturation = (value - SmallestOfHSV(color)) / value;
    }
    outH = inH;
    outS = StoredInFloat(saturation, 100.0f);
    outV = StoredInFloat(value, 100.0f);
}

} // namespace ORL
