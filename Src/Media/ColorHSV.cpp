// RGB and HSV.
#include <ORLColor.h>

#include <ColorMath.h>

namespace ORL {

using namespace ColorMath;

void NormalizedRGBtoHSV(float inR, float inG, float inB, float& outH, float& outS, float& outV, bool* outHasHue,
                        bool* outHasSaturation)
{
    const RGB color{inR, inG, inB};
    const Channel largest = LargestOfHSV(color);
    const float value = ValueOf(color, largest);
    outV = value;
    if (IsNearZero(value)) {
        SetFlag(outHasSaturation, false);
        SetFlag(outHasHue, false);
        return;
    }
    const float spread = value - SmallestOfHSV(color);
    const float saturation = spread / value;
    outS = saturation;
    SetFlag(outHasSaturation, true);
    const bool hasHue = !IsNearZero(saturation);
    SetFlag(outHasHue, hasHue);
    if (hasHue) {
        outH = Hue(color, largest, spread);
    }
}

void ColorRGBtoHSV(const ParamColor<unsigned long>& inColor, unsigned int& outH, unsigned int& outS,
                   unsigned int& outV, bool* outHasHue, bool* outHasSaturation)
{
    const RGB color = Normalized(inColor);
    float hue = 0;
    float saturation = 0;
    float value = 0;
    bool hasHue = false;
    bool hasSaturation = false;
    NormalizedRGBtoHSV(color.mRed, color.mGreen, color.mBlue, hue, saturation, value, &hasHue, &hasSaturation);
    if (hasHue) {
        outH = StoredInDouble(hue, 360.0f);
    }
    if (hasSaturation) {
        outS = StoredInDouble(saturation, 100.0f);
    }
    outV = StoredInDouble(value, 100.0f);
    SetFlag(outHasHue, hasHue);
    SetFlag(outHasSaturation, hasSaturation);
}

void NormalizedHSVtoRGB(float inH, float inS, float inV, float& outR, float& outG, float& outB)
{
    if (inS == 0) {
        outR = outG = outB = inV;
        return;
    }
    const float sixths = (inH == 1.0f ? 0.0f : inH) * 6.0f;
    if (!(sixths >= 0 && sixths < 6)) { // the floor is no sector; NaN too
        return;
    }
    const int sector = static_cast<int>(sixths);
    const float f = sixths - static_cast<float>(sector);
    const float levels[] = {inV, (1 - inS) * inV, (1 - f * inS) * inV, (1 - (1 - f) * inS) * inV};
    enum { v, p, q, t };
    static constexpr unsigned char kLevels[6][3] = {{v, t, p}, {q, v, p}, {p, v, t}, {p, q, v}, {t, p, v}, {v, p, q}};
    outR = levels[kLevels[sector][0]];
    outG = levels[kLevels[sector][1]];
    outB = levels[kLevels[sector][2]];
}

void ColorHSVtoRGB(unsigned int inH, unsigned int inS, unsigned int inV, ParamColor<unsigned long>& outColor)
{
    RGB color;
    NormalizedHSVtoRGB(static_cast<float>(inH) / 360.0f, static_cast<float>(inS) / 100.0f,
                       static_cast<float>(inV) / 100.0f, color.mRed, color.mGreen, color.mBlue);
    outColor = Stored(color);
}

void ColorHSVtoHSL(unsigned int inH, unsigned int inS, unsigned int inV, unsigned int& outH, unsigned int& outS,
                   unsigned int& outL)
{
    RGB color;
    float saturation = static_cast<float>(inS) / 100.0f;
    NormalizedHSVtoRGB(static_cast<float>(inH) / 360.0f, saturation, static_cast<float>(inV) / 100.0f, color.mRed,
                       color.mGreen, color.mBlue);
    float hue = 0;
    float lightness = 0;
    NormalizedRGBtoHSL(color.mRed, color.mGreen, color.mBlue, hue, saturation, lightness, nullptr, nullptr);
    outH = inH;
    outS = StoredInFloat(saturation, 100.0f);
    outL = StoredInFloat(lightness, 100.0f);
}

} // namespace ORL
