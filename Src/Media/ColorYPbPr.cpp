// Converts between RGB, YPbPr and YIQ, and computes levels in IRE and millivolts.
#include <ORLColor.h>

#include <Media/Arctangent.h>

#include <cmath>

namespace ORL {

namespace {

constexpr float kMillivoltsPerIRE = 7.142857f;
constexpr float kFullCircle = 6.2831855f;

float Length(float inFirst, float inSecond)
{
    return std::sqrt(inFirst * inFirst + inSecond * inSecond);
}

void ToMillivolts(float& ioLuma, float& ioChroma)
{
    ioLuma *= kMillivoltsPerIRE;
    ioChroma *= kMillivoltsPerIRE;
}

float Luma(float inR, float inG, float inB)
{
    return 0.299f * inR + 0.587f * inG + 0.114f * inB;
}

} // namespace

void ColorRGBToYPbPr(float inR, float inG, float inB, float& outY, float& outPb, float& outPr)
{
    outY = Luma(inR, inG, inB);
    outPb = -0.168736f * inR - 0.331264f * inG + 0.5f * inB;
    outPr = 0.5f * inR - 0.418688f * inG - 0.081312f * inB;
}

void ColorYPbPrToRGB(float inY, float inPb, float inPr, float& outR, float& outG, float& outB)
{
    outR = 1.402f * inPr + inY;
    outG = inY - 0.344136f * inPb - 0.714136f * inPr;
    outB = 1.772f * inPb + inY;
}

void ColorYPbPrToYIQ(float inY, float inPb, float inPr, float& outY, float& outI, float& outQ)
{
    outY = inY;
    outI = -0.544639f * inPb + 0.838671f * inPr;
    outQ = 0.544639f * inPr + 0.838671f * inPb;
}

void ColorPbPrToHue(float inPb, float inPr, float& outHue)
{
    float angle = Arctangent2(-0.9475003f * inPb - 0.31975487f * inPr, -0.31975487f * inPb + 0.9475003f * inPr);
    if (angle < 0) {
        angle += kFullCircle;
    }
    outHue = angle / kFullCircle;
}

void ColorYPbPrToHSL(float inY, float inPb, float inPr, float& outH, float& outS, float& outL)
{
    float red = 0;
    float green = 0;
    float blue = 0;
    ColorYPbPrToRGB(inY, inPb, inPr, red, green, blue);
    NormalizedRGBtoHSL(red, green, blue, outH, outS, outL, nullptr, nullptr);
}

void ColorRGBToIRE(float inR, float inG, float inB, float& outLuma, float& outChroma)
{
    const float redDifference = 0.614975f * inR - 0.514965f * inG - 0.10001f * inB;
    const float blueDifference = -0.147141f * inR - 0.288869f * inG + 0.43601f * inB;
    outLuma = Luma(inR, inG, inB) * 100.0f;
    outChroma = Length(redDifference, blueDifference) * 100.0f;
}

void ColorRGBToMV(float inR, float inG, float inB, float& outLuma, float& outChroma)
{
    ColorRGBToIRE(inR, inG, inB, outLuma, outChroma);
    ToMillivolts(outLuma, outChroma);
}

void ColorYPbPrToIRE(float inY, float inPb, float inPr, float& outLuma, float& outChroma)
{
    outLuma = inY * 100.0f;
    outChroma = Length(1.23f * inPr, 0.87202f * inPb) * 100.0f;
}

void ColorYPbPrToMV(float inY, float inPb, float inPr, float& outLuma, float& outChroma)
{
    ColorYPbPrToIRE(inY, inPb, inPr, outLuma, outChroma);
    ToMillivolts(outLuma, outChroma);
}

} // namespace ORL
