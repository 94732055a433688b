// Converts between RGB and HSV.
#include <ORLColor.h>

#include <Media/ColorMath.h>

namespace ORL {

using namespace ColorMath;

namespace {

Shade ShadeOf(const ChannelRing& inColor)
{
    const unsigned largest = LargestOfHSV(inColor);
    const float value = inColor[largest];
    return {largest, value, value - SmallestOfHSV(inColor), value};
}

} // namespace

void NormalizedRGBtoHSV(float inR, float inG, float inB, float& outH, float& outS, float& outV, bool* outHasHue,
                        bool* outHasSaturation)
{
    const ChannelRing color(inR, inG, inB);
    const Shade shade = ShadeOf(color);
    outV = shade.mLevel;
    StoreHueAndSaturation(color, shade, outH, outS, outHasHue, outHasSaturation,
                          [](float inValue, float) { return inValue; });
}

void ColorRGBtoHSV(const ParamColor<unsigned long>& inColor, unsigned int& outH, unsigned int& outS, unsigned int& outV,
                   bool* outHasHue, bool* outHasSaturation)
{
    const ChannelRing color = Normalized(inColor);
    const Shade shade = ShadeOf(color);
    outV = Whole(shade.mLevel, 100.0f);
    StoreHueAndSaturation(color, shade, outH, outS, outHasHue, outHasSaturation, &Whole);
}

void NormalizedHSVtoRGB(float inH, float inS, float inV, float& outR, float& outG, float& outB)
{
    if (inS == 0) {
        outR = outG = outB = inV;
        return;
    }
    const float sixths = (inH == 1.0f ? 0.0f : inH) * 6.0f;
    if (!(sixths >= 0 && sixths < 6)) { // outside every sector, or NaN
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
