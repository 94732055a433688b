// Converts between RGB and YUV with the coefficients in the headers. The order of the terms determines the last bits of
// a result.
#include <ORLColor.h>

#include <cmath>

namespace ORL {

namespace {

unsigned char ClampToByte(int inValue)
{
    return static_cast<unsigned char>(inValue < 0 ? 0 : inValue > 255 ? 255 : inValue);
}

bool IsByte(int inValue)
{
    return inValue >= 0 && inValue <= 255;
}

// Removes the offset of 128. Adding 128 has the same effect as subtracting it, because 8-bit arithmetic wraps.
char RemoveOffset(int inByte)
{
    return static_cast<char>(inByte + 128);
}

// Clamps before the conversion, because a float may exceed the range of integers.
unsigned char RoundToByte(float inValue)
{
    const double rounded = std::trunc(inValue < 0 ? inValue - 0.5 : inValue + 0.5);
    if (!(rounded > 0)) { // or NaN
        return 0;
    }
    return static_cast<unsigned char>(rounded < 255 ? rounded : 255);
}

} // namespace

void ColorRGBtoYUV(const ParamColor<unsigned long>& inColor, unsigned char& outY, char& outU, char& outV)
{
    const double red = inColor.GetRed();
    const double green = inColor.GetGreen();
    const double blue = inColor.GetBlue();
    // Y stays in [16, 235], U and V in [16, 239], so no clamp is needed.
    const int y = static_cast<int>(0.257 * red + 0.504 * green + 0.098 * blue + 16);
    const int v = static_cast<int>(0.439 * red - 0.368 * green - 0.071 * blue + 128);
    const int u = static_cast<int>(-0.148 * red - 0.291 * green + 0.439 * blue + 128);
    outY = static_cast<unsigned char>(y);
    outU = RemoveOffset(u);
    outV = RemoveOffset(v);
}

bool ColorYUVtoRGB(unsigned char inY, char inU, char inV, ParamColor<unsigned long>& outColor)
{
    const double y = (inY - 16) * 1.164;
    const double u = static_cast<signed char>(inU);
    const double v = static_cast<signed char>(inV);
    const int red = static_cast<int>(1.596 * v + y);
    const int green = static_cast<int>(y - 0.392 * u - 0.813 * v);
    const int blue = static_cast<int>(2.017 * u + y);
    outColor = ParamColor<unsigned long>(ClampToByte(red), ClampToByte(green), ClampToByte(blue));
    return IsByte(red) || IsByte(green) || IsByte(blue);
}

void ColorYUVtoRGBf(float inY, float inU, float inV, ParamColor<unsigned long>& outColor)
{
    const float y = (inY - 16.0f) * 1.164f;
    const float red = 1.596f * inV + y;
    const float green = y - 0.392f * inU - 0.813f * inV;
    const float blue = 2.017f * inU + y;
    outColor = ParamColor<unsigned long>(RoundToByte(red), RoundToByte(green), RoundToByte(blue));
}

void ColorHSLtoYUV(unsigned int inH, unsigned int inS, unsigned int inL, unsigned char& outY, char& outU, char& outV)
{
    ParamColor<unsigned long> color;
    ColorHSLtoRGB(inH, inS, inL, color);
    ColorRGBtoYUV(color, outY, outU, outV);
}

void ColorHSVtoYUV(unsigned int inH, unsigned int inS, unsigned int inV, unsigned char& outY, char& outU, char& outV)
{
    ParamColor<unsigned long> color;
    ColorHSVtoRGB(inH, inS, inV, color);
    ColorRGBtoYUV(color, outY, outU, outV);
}

void ColorYUVtoHSL(unsigned char inY, char inU, char inV, unsigned int& outH, unsigned int& outS, unsigned int& outL)
{
    ParamColor<unsigned long> color;
    ColorYUVtoRGB(inY, inU, inV, color);
    ColorRGBtoHSL(color, outH, outS, outL, nullptr, nullptr);
}

void ColorYUVtoHSV(unsigned char inY, char inU, char inV, unsigned int& outH, unsigned int& outS, unsigned int& outV)
{
    ParamColor<unsigned long> color;
    ColorYUVtoRGB(inY, inU, inV, color);
    ColorRGBtoHSV(color, outH, outS, outV, nullptr, nullptr);
}

} // namespace ORL
