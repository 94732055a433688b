// RGB and HSV.
#include <ORLColor.h>

#include <ColorMath.h>

namespace ORL {

using namespace ColorMath;

namespace {

// inStore makes an output of a value and its whole. Outputs are stored as they are found: a record of them, with flags,
// costs half as much again.
template <class Number, class Store>
inline void ToHSV(const ChannelRing& inColor, Number& outH, Number& outS, Number& outV, bool* outHasHue,
                  bool* outHasSaturation, const Store& inStore)
{
    const unsigned largest = LargestOfHSV(inColor);
    const float value = inColor[largest];
    outV = inStore(value, 100.0f);
    if (IsNearZero(value)) {
        SetFlag(outHasSaturation, false);
        SetFlag(outHasHue, false);
        return;
    }
    const float spread = value - SmallestOfHSV(inColor);
    const float saturation = spread / value;
    outS = inStore(saturation, 100.0f);
    SetFlag(outHasSaturation, true);
    const bool hasHue = !IsNearZero(saturation);
    SetFlag(outHasHue, hasHue);
    if (hasHue) {
        outH = inStore(Hue(inColor, largest, spread), 360.0f);
    }
}

} // namespace

void NormalizedRGBtoHSV(float inR, float inG, float inB, float& outH, float& outS, float& outV, bool* outHasHue,
                        bool* outHasSaturation)
{
    ToHSV(ChannelRing(inR, inG, inB), outH, outS, outV, outHasHue, outHasSaturation,
          [](float inValue, float) { return inValue; });
}

void ColorRGBtoHSV(const ParamColor<unsigned long>& inColor, unsigned int& outH, unsigned int& outS,
                   unsigned int& outV, bool* outHasHue, bool* outHasSaturation)
{
    ToHSV(Normalized(inColor), outH, outS, outV, outHasHue, outHasSaturation, &Whole);
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
