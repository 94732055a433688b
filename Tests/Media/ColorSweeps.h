// Sweeps over the inputs of the colour functions. Each sweep hashes all results into one number: equal numbers on two
// builds mean equal bits for every value. Used by the tests and by a program built at several optimisation levels.
#pragma once

#include <ORLColor.h>

#include <cstdint>
#include <cstring>

namespace ORLTest {

class Digest
{
public:
    void Add(std::uint32_t inWord) { mValue = (mValue ^ inWord) * 0x100000001B3u; }

    void AddFloat(float inValue)
    {
        std::uint32_t bits;
        std::memcpy(&bits, &inValue, sizeof(bits));
        Add(bits);
    }

    std::uint64_t Value() const { return mValue; }

private:
    std::uint64_t mValue = 0xCBF29CE484222325u;
};

using Color = ORL::ParamColor<unsigned long>;

inline std::uint32_t Word(const Color& inColor)
{
    return static_cast<std::uint32_t>(inColor.GetValue());
}

inline char Signed(unsigned inByte)
{
    return static_cast<char>(static_cast<signed char>(static_cast<unsigned char>(inByte)));
}

inline std::uint32_t Byte(char inValue)
{
    return static_cast<unsigned char>(inValue);
}

using ToYuv = void (*)(unsigned, unsigned, unsigned, unsigned char&, char&, char&);
using FromYuv = void (*)(unsigned char, char, char, unsigned&, unsigned&, unsigned&);
using ToPolar = void (*)(const Color&, unsigned&, unsigned&, unsigned&, bool*, bool*);
using FromPolar = void (*)(unsigned, unsigned, unsigned, Color&);
using PolarToPolar = void (*)(unsigned, unsigned, unsigned, unsigned&, unsigned&, unsigned&);
using ThreeFloats = void (*)(float, float, float, float&, float&, float&);
using TwoFloats = void (*)(float, float, float, float&, float&);

// Visits byte triples. With an odd step, every byte takes every value.
template <class Visit>
void ForEachThreeBytes(std::uint32_t inStep, const Visit& inVisit)
{
    for (std::uint32_t value = 0; value < 0x1000000; value += inStep) {
        inVisit(value & 0xFF, (value >> 8) & 0xFF, value >> 16);
    }
}

// Visits degrees and percentages, and a few values beyond their ranges.
template <class Visit>
void ForEachPolar(std::uint32_t inStep, const Visit& inVisit)
{
    constexpr std::uint32_t kPercents = 104;
    for (std::uint32_t at = 0; at < 364 * kPercents * kPercents; at += inStep) {
        inVisit(at / (kPercents * kPercents), at / kPercents % kPercents, at % kPercents);
    }
}

// Visits triples of floats from inLeast to inMost, most of them with many digits.
template <class Visit>
void ForEachThreeFloats(std::uint32_t inStep, float inLeast, float inMost, const Visit& inVisit)
{
    constexpr std::uint32_t kParts = 96;
    const auto part = [&](std::uint32_t inPart) {
        return inLeast + (inMost - inLeast) * (static_cast<float>(inPart) / static_cast<float>(kParts));
    };
    for (std::uint32_t at = 0; at < (kParts + 1) * (kParts + 1) * (kParts + 1); at += inStep) {
        inVisit(part(at / ((kParts + 1) * (kParts + 1))), part(at / (kParts + 1) % (kParts + 1)),
                part(at % (kParts + 1)));
    }
}

inline std::uint64_t SweepRgbToYuv(std::uint32_t inStep)
{
    Digest digest;
    ForEachThreeBytes(inStep, [&](unsigned r, unsigned g, unsigned b) {
        unsigned char y = 0;
        char u = 0;
        char v = 0;
        ORL::ColorRGBtoYUV(Color(r | g << 8 | b << 16), y, u, v);
        digest.Add(y | Byte(u) << 8 | Byte(v) << 16);
    });
    return digest.Value();
}

inline std::uint64_t SweepYuvToRgb(std::uint32_t inStep)
{
    Digest digest;
    ForEachThreeBytes(inStep, [&](unsigned y, unsigned u, unsigned v) {
        Color color;
        const bool hasUnclamped = ORL::ColorYUVtoRGB(static_cast<unsigned char>(y), Signed(u), Signed(v), color);
        digest.Add(Word(color) | (hasUnclamped ? 1u << 24 : 0u));
    });
    return digest.Value();
}

inline std::uint64_t SweepYuvToRgbSingles(std::uint32_t inStep)
{
    Digest digest;
    ForEachThreeFloats(inStep, -140.0f, 300.0f, [&](float y, float u, float v) {
        Color color;
        ORL::ColorYUVtoRGBf(y, u, v, color);
        digest.Add(Word(color));
    });
    return digest.Value();
}

template <ToPolar Convert>
std::uint64_t SweepToPolar(std::uint32_t inStep)
{
    Digest digest;
    ForEachThreeBytes(inStep, [&](unsigned r, unsigned g, unsigned b) {
        unsigned h = 777;
        unsigned s = 888;
        unsigned l = 999;
        bool hasHue = false;
        bool hasSaturation = false;
        Convert(Color(r | g << 8 | b << 16), h, s, l, &hasHue, &hasSaturation);
        digest.Add(h | s << 10 | l << 20 | (hasHue ? 1u << 30 : 0u) | (hasSaturation ? 1u << 31 : 0u));
    });
    return digest.Value();
}

template <FromPolar Convert>
std::uint64_t SweepFromPolar(std::uint32_t inStep)
{
    Digest digest;
    ForEachPolar(inStep, [&](unsigned h, unsigned s, unsigned l) {
        Color color;
        Convert(h, s, l, color);
        digest.Add(Word(color));
    });
    return digest.Value();
}

template <PolarToPolar Convert>
std::uint64_t SweepPolarToPolar(std::uint32_t inStep)
{
    Digest digest;
    ForEachPolar(inStep, [&](unsigned h, unsigned s, unsigned l) {
        unsigned hue = 0;
        unsigned saturation = 0;
        unsigned level = 0;
        Convert(h, s, l, hue, saturation, level);
        digest.Add(hue | saturation << 10 | level << 20);
    });
    return digest.Value();
}

template <ToYuv Convert>
std::uint64_t SweepPolarToYuv(std::uint32_t inStep)
{
    Digest digest;
    ForEachPolar(inStep, [&](unsigned h, unsigned s, unsigned l) {
        unsigned char y = 0;
        char u = 0;
        char v = 0;
        Convert(h, s, l, y, u, v);
        digest.Add(y | Byte(u) << 8 | Byte(v) << 16);
    });
    return digest.Value();
}

template <FromYuv Convert>
std::uint64_t SweepYuvToPolar(std::uint32_t inStep)
{
    Digest digest;
    ForEachThreeBytes(inStep, [&](unsigned y, unsigned u, unsigned v) {
        unsigned h = 777;
        unsigned s = 888;
        unsigned l = 999;
        Convert(static_cast<unsigned char>(y), Signed(u), Signed(v), h, s, l);
        digest.Add(h | s << 10 | l << 20);
    });
    return digest.Value();
}

template <ThreeFloats Convert>
std::uint64_t SweepThreeFloats(std::uint32_t inStep)
{
    Digest digest;
    ForEachThreeFloats(inStep, -0.25f, 1.25f, [&](float first, float second, float third) {
        float results[] = {7, 8, 9};
        Convert(first, second, third, results[0], results[1], results[2]);
        for (const float result : results) {
            digest.AddFloat(result);
        }
    });
    return digest.Value();
}

template <TwoFloats Convert>
std::uint64_t SweepTwoFloats(std::uint32_t inStep)
{
    Digest digest;
    ForEachThreeFloats(inStep, -0.25f, 1.25f, [&](float first, float second, float third) {
        float results[] = {7, 8};
        Convert(first, second, third, results[0], results[1]);
        digest.AddFloat(results[0]);
        digest.AddFloat(results[1]);
    });
    return digest.Value();
}

// Adds 16 (has hue) and 32 (has saturation) to the third component, so that the digest covers the flags.
inline void PolarOfRgb(void (*inConvert)(float, float, float, float&, float&, float&, bool*, bool*), float r, float g,
                       float b, float& h, float& s, float& l)
{
    bool hasHue = false;
    bool hasSaturation = false;
    inConvert(r, g, b, h, s, l, &hasHue, &hasSaturation);
    l += (hasHue ? 16.0f : 0.0f) + (hasSaturation ? 32.0f : 0.0f);
}

inline void HsvOfRgb(float r, float g, float b, float& h, float& s, float& v)
{
    PolarOfRgb(&ORL::NormalizedRGBtoHSV, r, g, b, h, s, v);
}

inline void HslOfRgb(float r, float g, float b, float& h, float& s, float& l)
{
    PolarOfRgb(&ORL::NormalizedRGBtoHSL, r, g, b, h, s, l);
}

inline void HueOfPbPr(float pb, float pr, float, float& outHue, float& outOther)
{
    outOther = 0;
    ORL::ColorPbPrToHue(pb - 0.5f, pr - 0.5f, outHue);
}

struct Sweep
{
    const char* mName;
    std::uint64_t (*mRun)(std::uint32_t inStep);
};

inline constexpr Sweep kSweeps[] = {
    {"ColorRGBtoYUV", &SweepRgbToYuv},
    {"ColorYUVtoRGB", &SweepYuvToRgb},
    {"ColorYUVtoRGBf", &SweepYuvToRgbSingles},
    {"ColorRGBToYPbPr", &SweepThreeFloats<&ORL::ColorRGBToYPbPr>},
    {"ColorYPbPrToRGB", &SweepThreeFloats<&ORL::ColorYPbPrToRGB>},
    {"ColorYPbPrToYIQ", &SweepThreeFloats<&ORL::ColorYPbPrToYIQ>},
    {"ColorPbPrToHue", &SweepTwoFloats<&HueOfPbPr>},
    {"ColorYPbPrToHSL", &SweepThreeFloats<&ORL::ColorYPbPrToHSL>},
    {"ColorRGBToIRE", &SweepTwoFloats<&ORL::ColorRGBToIRE>},
    {"ColorRGBToMV", &SweepTwoFloats<&ORL::ColorRGBToMV>},
    {"ColorYPbPrToIRE", &SweepTwoFloats<&ORL::ColorYPbPrToIRE>},
    {"ColorYPbPrToMV", &SweepTwoFloats<&ORL::ColorYPbPrToMV>},
    {"NormalizedRGBtoHSV", &SweepThreeFloats<&HsvOfRgb>},
    {"NormalizedRGBtoHSL", &SweepThreeFloats<&HslOfRgb>},
    {"NormalizedHSVtoRGB", &SweepThreeFloats<&ORL::NormalizedHSVtoRGB>},
    {"NormalizedHSLtoRGB", &SweepThreeFloats<&ORL::NormalizedHSLtoRGB>},
    {"ColorRGBtoHSV", &SweepToPolar<&ORL::ColorRGBtoHSV>},
    {"ColorRGBtoHSL", &SweepToPolar<&ORL::ColorRGBtoHSL>},
    {"ColorHSVtoRGB", &SweepFromPolar<&ORL::ColorHSVtoRGB>},
    {"ColorHSLtoRGB", &SweepFromPolar<&ORL::ColorHSLtoRGB>},
    {"ColorHSLtoHSV", &SweepPolarToPolar<&ORL::ColorHSLtoHSV>},
    {"ColorHSVtoHSL", &SweepPolarToPolar<&ORL::ColorHSVtoHSL>},
    {"ColorHSLtoYUV", &SweepPolarToYuv<&ORL::ColorHSLtoYUV>},
    {"ColorHSVtoYUV", &SweepPolarToYuv<&ORL::ColorHSVtoYUV>},
    {"ColorYUVtoHSL", &SweepYuvToPolar<&ORL::ColorYUVtoHSL>},
    {"ColorYUVtoHSV", &SweepYuvToPolar<&ORL::ColorYUVtoHSV>},
};

} // namespace ORLTest
