// Every value of the integer forms, and a grid of the float forms, against the formulas written down a second time.
#include "ColorFormulas.h"
#include "ColorSweeps.h"

#include <cmath>
#include <cstring>
#include <gtest/gtest.h>

using namespace ORLTest;

namespace {

// How many values differ; the first one is shown.
class Differences
{
public:
    explicit Differences(const char* inWhat) : mWhat(inWhat) {}
    ~Differences() { EXPECT_EQ(0u, mCount) << mWhat << ", first at " << mFirst[0] << ' ' << mFirst[1] << ' ' << mFirst[2]; }

    void Compare(bool inIsEqual, double inFirst, double inSecond, double inThird)
    {
        if (!inIsEqual && mCount++ == 0) {
            mFirst[0] = inFirst;
            mFirst[1] = inSecond;
            mFirst[2] = inThird;
        }
    }

private:
    const char* mWhat;
    std::uint64_t mCount = 0;
    double mFirst[3] = {};
};

bool SameBits(float inLeft, float inRight)
{
    return std::memcmp(&inLeft, &inRight, sizeof(inLeft)) == 0;
}

bool Same(const Color& inColor, const PlainColors::Bytes& inBytes)
{
    return inColor == Color(static_cast<unsigned char>(inBytes.r), static_cast<unsigned char>(inBytes.g),
                            static_cast<unsigned char>(inBytes.b));
}

template <class Formulas>
void CompareYuv(std::uint32_t inStep)
{
    Differences toYuv("ColorRGBtoYUV");
    Differences fromYuv("ColorYUVtoRGB");
    ForEachThreeBytes(inStep, [&](unsigned first, unsigned second, unsigned third) {
        unsigned char y = 0;
        char u = 0;
        char v = 0;
        ORL::ColorRGBtoYUV(Color(first | second << 8 | third << 16), y, u, v);
        const auto yuv =
            Formulas::YuvOfBytes(static_cast<int>(first), static_cast<int>(second), static_cast<int>(third));
        toYuv.Compare(yuv.y == y && yuv.u == static_cast<signed char>(u) && yuv.v == static_cast<signed char>(v), first,
                      second, third);
        Color color(0xFF000000ul);
        const char signedU = Signed(second);
        const char signedV = Signed(third);
        const bool hasUnclamped = ORL::ColorYUVtoRGB(static_cast<unsigned char>(first), signedU, signedV, color);
        const auto bytes = Formulas::BytesOfYuv(static_cast<int>(first), static_cast<signed char>(signedU),
                                                static_cast<signed char>(signedV));
        fromYuv.Compare(color.GetValue() == (static_cast<unsigned>(bytes.r) | static_cast<unsigned>(bytes.g) << 8
                                             | static_cast<unsigned>(bytes.b) << 16)
                            && hasUnclamped == (bytes.inside > 0),
                        first, second, third);
    });
}

// What a function leaves alone keeps these.
constexpr unsigned kUntouched[] = {1001, 1002, 1003};

template <class PolarBytes>
bool SamePolar(const PolarBytes& inExpected, const unsigned (&inGiven)[3], bool inHasHue, bool inHasSaturation)
{
    return inExpected.hasHue == inHasHue && inExpected.hasSaturation == inHasSaturation
           && inGiven[0] == (inHasHue ? inExpected.hue : kUntouched[0])
           && inGiven[1] == (inHasSaturation ? inExpected.saturation : kUntouched[1]) && inGiven[2] == inExpected.level;
}

template <class Formulas>
void ComparePolar(std::uint32_t inStep)
{
    Differences toHsv("ColorRGBtoHSV");
    Differences toHsl("ColorRGBtoHSL");
    ForEachThreeBytes(inStep, [&](unsigned r, unsigned g, unsigned b) {
        const Color color(r | g << 8 | b << 16);
        unsigned given[] = {kUntouched[0], kUntouched[1], kUntouched[2]};
        bool hasHue = false;
        bool hasSaturation = false;
        ORL::ColorRGBtoHSV(color, given[0], given[1], given[2], &hasHue, &hasSaturation);
        const int red = static_cast<int>(r);
        const int green = static_cast<int>(g);
        const int blue = static_cast<int>(b);
        toHsv.Compare(SamePolar(Formulas::HsvOfBytes(red, green, blue), given, hasHue, hasSaturation), r, g, b);
        std::memcpy(given, kUntouched, sizeof(given));
        ORL::ColorRGBtoHSL(color, given[0], given[1], given[2], &hasHue, &hasSaturation);
        toHsl.Compare(SamePolar(Formulas::HslOfBytes(red, green, blue), given, hasHue, hasSaturation), r, g, b);
    });
}

template <class Formulas>
void CompareFromPolar(std::uint32_t inStep)
{
    Differences fromHsv("ColorHSVtoRGB");
    Differences fromHsl("ColorHSLtoRGB");
    Differences hslToHsv("ColorHSLtoHSV");
    Differences hsvToHsl("ColorHSVtoHSL");
    ForEachPolar(inStep, [&](unsigned h, unsigned s, unsigned l) {
        const auto same = [](const Color& inColor, const auto& inBytes) {
            return inColor.GetValue() == (static_cast<unsigned>(inBytes.r) | static_cast<unsigned>(inBytes.g) << 8
                                          | static_cast<unsigned>(inBytes.b) << 16);
        };
        const auto samePolar = [](const unsigned (&inGiven)[3], const auto& inExpected) {
            return inGiven[0] == inExpected.hue && inGiven[1] == inExpected.saturation && inGiven[2] == inExpected.level;
        };
        Color color(0xFF000000ul);
        ORL::ColorHSVtoRGB(h, s, l, color);
        fromHsv.Compare(same(color, Formulas::BytesOfHsv(h, s, l)), h, s, l);
        ORL::ColorHSLtoRGB(h, s, l, color);
        fromHsl.Compare(same(color, Formulas::BytesOfHsl(h, s, l)), h, s, l);
        unsigned given[3] = {};
        ORL::ColorHSLtoHSV(h, s, l, given[0], given[1], given[2]);
        hslToHsv.Compare(samePolar(given, Formulas::HsvOfHsl(h, s, l)), h, s, l);
        ORL::ColorHSVtoHSL(h, s, l, given[0], given[1], given[2]);
        hsvToHsl.Compare(samePolar(given, Formulas::HslOfHsv(h, s, l)), h, s, l);
    });
}

// As the sweeps call them, with flags folded into the level.
bool SameChannels(const float (&inGiven)[3], float inFirst, float inSecond, float inThird)
{
    return SameBits(inGiven[0], inFirst) && SameBits(inGiven[1], inSecond) && SameBits(inGiven[2], inThird);
}

template <class Formulas, class Single>
void CompareFloats(std::uint32_t inStep)
{
    Differences toYPbPr("ColorRGBToYPbPr");
    Differences fromYPbPr("ColorYPbPrToRGB");
    Differences toYiq("ColorYPbPrToYIQ");
    Differences fromHsv("NormalizedHSVtoRGB");
    Differences fromHsl("NormalizedHSLtoRGB");
    ForEachThreeFloats(inStep, -0.25f, 1.25f, [&](float x, float y, float z) {
        const Single first(x);
        const Single second(y);
        const Single third(z);
        const auto same = [](const float (&inGiven)[3], const auto& inExpected) {
            return SameChannels(inGiven, Plain(inExpected.r), Plain(inExpected.g), Plain(inExpected.b));
        };
        float given[3] = {};
        ORL::ColorRGBToYPbPr(x, y, z, given[0], given[1], given[2]);
        toYPbPr.Compare(same(given, Formulas::YPbPrOfRgb(first, second, third)), x, y, z);
        ORL::ColorYPbPrToRGB(x, y, z, given[0], given[1], given[2]);
        fromYPbPr.Compare(same(given, Formulas::RgbOfYPbPr(first, second, third)), x, y, z);
        ORL::ColorYPbPrToYIQ(x, y, z, given[0], given[1], given[2]);
        toYiq.Compare(same(given, Formulas::YiqOfYPbPr(first, second, third)), x, y, z);
        float hsv[] = {7, 8, 9};
        typename Formulas::Channels channels{Single(7.0f), Single(8.0f), Single(9.0f)};
        ORL::NormalizedHSVtoRGB(x, y, z, hsv[0], hsv[1], hsv[2]);
        Formulas::RgbOfHsv(first, second, third, channels);
        fromHsv.Compare(same(hsv, channels), x, y, z);
        ORL::NormalizedHSLtoRGB(x, y, z, given[0], given[1], given[2]);
        fromHsl.Compare(same(given, Formulas::RgbOfHsl(first, second, third)), x, y, z);
    });
}

template <class Formulas, class Single>
void CompareNormalizedPolar(std::uint32_t inStep)
{
    Differences toHsv("NormalizedRGBtoHSV");
    Differences toHsl("NormalizedRGBtoHSL");
    ForEachThreeFloats(inStep, -0.25f, 1.25f, [&](float r, float g, float b) {
        const auto same = [](const float (&inGiven)[3], bool inHasHue, bool inHasSaturation, const auto& inExpected) {
            return inHasHue == inExpected.hasHue && inHasSaturation == inExpected.hasSaturation
                   && SameChannels(inGiven, inHasHue ? Plain(inExpected.hue) : 7.0f,
                                   inHasSaturation ? Plain(inExpected.saturation) : 8.0f, Plain(inExpected.level));
        };
        float hsv[] = {7, 8, 9};
        bool hasHue = false;
        bool hasSaturation = false;
        ORL::NormalizedRGBtoHSV(r, g, b, hsv[0], hsv[1], hsv[2], &hasHue, &hasSaturation);
        toHsv.Compare(same(hsv, hasHue, hasSaturation, Formulas::HsvOfRgb(Single(r), Single(g), Single(b))), r, g, b);
        float hsl[] = {7, 8, 9};
        ORL::NormalizedRGBtoHSL(r, g, b, hsl[0], hsl[1], hsl[2], &hasHue, &hasSaturation);
        toHsl.Compare(same(hsl, hasHue, hasSaturation, Formulas::HslOfRgb(Single(r), Single(g), Single(b))), r, g, b);
    });
}

} // namespace

TEST(ColorEveryValue, RgbToYuvAndEveryYuvTriple_AreThoseOfThePlainFormulas)
{
    CompareYuv<PlainColors>(1);
}

TEST(ColorEveryValue, RgbToHsvAndHsl_AreThoseOfThePlainFormulas)
{
    ComparePolar<PlainColors>(1);
}

TEST(ColorEveryValue, HsvAndHslToRgbAndToEachOther_AreThoseOfThePlainFormulas)
{
    CompareFromPolar<PlainColors>(1);
}

TEST(ColorEveryValue, FloatForms_AreThoseOfThePlainFormulasToTheLastBit)
{
    CompareFloats<PlainColors, float>(1);
    CompareNormalizedPolar<PlainColors, float>(1);
}

// With each operation done in a wider type and rounded once.
TEST(ColorEveryValue, ASampleOfAll_IsThatOfTheFormulasWithEachOperationRoundedOnce)
{
    CompareYuv<ExactColors>(97);
    ComparePolar<ExactColors>(97);
    CompareFromPolar<ExactColors>(31);
    CompareFloats<ExactColors, ExactSingle>(7);
    CompareNormalizedPolar<ExactColors, ExactSingle>(7);
}

TEST(ColorEveryValue, YuvSingles_AreThoseOfTheFormulasWithEachOperationRoundedOnce)
{
    Differences differences("ColorYUVtoRGBf");
    ForEachThreeFloats(3, -140.0f, 300.0f, [&](float y, float u, float v) {
        Color color;
        ORL::ColorYUVtoRGBf(y, u, v, color);
        const auto bytes = ExactColors::BytesOfYuvSingles(ExactSingle(y), ExactSingle(u), ExactSingle(v));
        const auto plain = PlainColors::BytesOfYuvSingles(y, u, v);
        differences.Compare(Same(color, plain) && bytes.r == plain.r && bytes.g == plain.g && bytes.b == plain.b, y, u, v);
    });
}

// Through RGB, one function after the other.
TEST(ColorEveryValue, CompoundForms_AreTheirPartsOneAfterTheOther)
{
    Differences toYuv("ColorHSVtoYUV, ColorHSLtoYUV");
    ForEachPolar(1, [&](unsigned h, unsigned s, unsigned l) {
        const auto same = [&](const Color& inColor, unsigned char inY, char inU, char inV) {
            unsigned char y = 0;
            char u = 0;
            char v = 0;
            ORL::ColorRGBtoYUV(inColor, y, u, v);
            toYuv.Compare(y == inY && u == inU && v == inV, h, s, l);
        };
        unsigned char y = 0;
        char u = 0;
        char v = 0;
        Color color;
        ORL::ColorHSVtoRGB(h, s, l, color);
        ORL::ColorHSVtoYUV(h, s, l, y, u, v);
        same(color, y, u, v);
        ORL::ColorHSLtoRGB(h, s, l, color);
        ORL::ColorHSLtoYUV(h, s, l, y, u, v);
        same(color, y, u, v);
    });
    Differences fromYuv("ColorYUVtoHSV, ColorYUVtoHSL");
    ForEachThreeBytes(1, [&](unsigned y, unsigned u, unsigned v) {
        unsigned given[] = {1, 2, 3};
        unsigned expected[] = {1, 2, 3};
        Color color;
        ORL::ColorYUVtoRGB(static_cast<unsigned char>(y), Signed(u), Signed(v), color);
        ORL::ColorYUVtoHSV(static_cast<unsigned char>(y), Signed(u), Signed(v), given[0], given[1], given[2]);
        ORL::ColorRGBtoHSV(color, expected[0], expected[1], expected[2], nullptr, nullptr);
        fromYuv.Compare(std::memcmp(given, expected, sizeof(given)) == 0, y, u, v);
        ORL::ColorYUVtoHSL(static_cast<unsigned char>(y), Signed(u), Signed(v), given[0], given[1], given[2]);
        ORL::ColorRGBtoHSL(color, expected[0], expected[1], expected[2], nullptr, nullptr);
        fromYuv.Compare(std::memcmp(given, expected, sizeof(given)) == 0, y, u, v);
    });
}

// Back from the bytes: the two truncations lose at most a few steps of a channel.
TEST(ColorEveryValue, RgbThroughYuvAndBack_StaysWithinFourSteps)
{
    Differences differences("RGB through YUV");
    ForEachThreeBytes(1, [&](unsigned r, unsigned g, unsigned b) {
        unsigned char y = 0;
        char u = 0;
        char v = 0;
        ORL::ColorRGBtoYUV(Color(r | g << 8 | b << 16), y, u, v);
        Color back;
        ORL::ColorYUVtoRGB(y, u, v, back);
        const auto near = [](unsigned inLeft, unsigned inRight) {
            return std::abs(static_cast<int>(inLeft) - static_cast<int>(inRight)) <= 4;
        };
        differences.Compare(near(r, back.GetRed()) && near(g, back.GetGreen()) && near(b, back.GetBlue()), r, g, b);
    });
}
