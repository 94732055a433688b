// Compares every value of the integer forms, and a grid of the float forms, with the independent formulas of
// ColorFormulas.h.
#include "ColorFormulas.h"
#include "ColorSweeps.h"

#include <cmath>
#include <cstring>
#include <gtest/gtest.h>

using namespace ORLTest;

namespace {

// Counts the values that differ, and reports the first one.
class Differences
{
public:
    explicit Differences(const char* inWhat) : mWhat(inWhat) {}
    ~Differences()
    {
        EXPECT_EQ(0u, mCount) << mWhat << ", first at " << mFirst[0] << ' ' << mFirst[1] << ' ' << mFirst[2];
    }

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

bool SameColor(const Color& inColor, const ByteTriple& inBytes)
{
    return inColor.GetValue()
           == (static_cast<unsigned>(inBytes.a) | static_cast<unsigned>(inBytes.b) << 8
               | static_cast<unsigned>(inBytes.c) << 16);
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
        const ByteTriple yuv =
            Formulas::YUVFromRGB(static_cast<int>(first), static_cast<int>(second), static_cast<int>(third));
        toYuv.Compare(yuv.a == y && yuv.b == static_cast<signed char>(u) && yuv.c == static_cast<signed char>(v), first,
                      second, third);
        Color color(0xFF000000ul);
        const char signedU = Signed(second);
        const char signedV = Signed(third);
        const bool hasUnclamped = ORL::ColorYUVtoRGB(static_cast<unsigned char>(first), signedU, signedV, color);
        bool isAnyInside = false;
        const ByteTriple rgb = Formulas::RGBFromYUV(static_cast<int>(first), static_cast<signed char>(signedU),
                                                    static_cast<signed char>(signedV), isAnyInside);
        fromYuv.Compare(SameColor(color, rgb) && hasUnclamped == isAnyInside, first, second, third);
    });
}

// Initial values of outputs, to detect which ones a function does not store.
constexpr unsigned kUntouched[] = {1001, 1002, 1003};

using ToWholeShade = void (*)(const Color&, unsigned&, unsigned&, unsigned&, bool*, bool*);

bool SameShade(ToWholeShade inConvert, const Color& inColor, const WholeShade& inExpected)
{
    unsigned given[] = {kUntouched[0], kUntouched[1], kUntouched[2]};
    bool hasHue = !inExpected.hue;
    bool hasSaturation = !inExpected.saturation;
    inConvert(inColor, given[0], given[1], given[2], &hasHue, &hasSaturation);
    return hasHue == inExpected.hue.has_value() && hasSaturation == inExpected.saturation.has_value()
           && given[0] == inExpected.hue.value_or(kUntouched[0])
           && given[1] == inExpected.saturation.value_or(kUntouched[1]) && given[2] == inExpected.level;
}

template <class Formulas>
void ComparePolar(std::uint32_t inStep)
{
    Differences toHsv("ColorRGBtoHSV");
    Differences toHsl("ColorRGBtoHSL");
    ForEachThreeBytes(inStep, [&](unsigned r, unsigned g, unsigned b) {
        const Color color(r | g << 8 | b << 16);
        toHsv.Compare(SameShade(&ORL::ColorRGBtoHSV, color, Formulas::WholeHSVFromRGB(r, g, b)), r, g, b);
        toHsl.Compare(SameShade(&ORL::ColorRGBtoHSL, color, Formulas::WholeHSLFromRGB(r, g, b)), r, g, b);
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
        const auto same = [](const unsigned(&inGiven)[3], const WholeShade& inExpected) {
            return inGiven[0] == inExpected.hue && inGiven[1] == inExpected.saturation
                   && inGiven[2] == inExpected.level;
        };
        Color color(0xFF000000ul);
        ORL::ColorHSVtoRGB(h, s, l, color);
        fromHsv.Compare(SameColor(color, Formulas::RGBFromWholeHSV(h, s, l)), h, s, l);
        ORL::ColorHSLtoRGB(h, s, l, color);
        fromHsl.Compare(SameColor(color, Formulas::RGBFromWholeHSL(h, s, l)), h, s, l);
        unsigned given[3] = {};
        ORL::ColorHSLtoHSV(h, s, l, given[0], given[1], given[2]);
        hslToHsv.Compare(same(given, Formulas::WholeHSVFromWholeHSL(h, s, l)), h, s, l);
        ORL::ColorHSVtoHSL(h, s, l, given[0], given[1], given[2]);
        hsvToHsl.Compare(same(given, Formulas::WholeHSLFromWholeHSV(h, s, l)), h, s, l);
    });
}

template <class Triple>
bool SameTriple(const float (&inGiven)[3], const Triple& inExpected)
{
    return SameBits(inGiven[0], Plain(inExpected.a)) && SameBits(inGiven[1], Plain(inExpected.b))
           && SameBits(inGiven[2], Plain(inExpected.c));
}

template <class Formulas, class Single>
void CompareRgb(std::uint32_t inStep)
{
    Differences fromHsv("NormalizedHSVtoRGB");
    Differences fromHsl("NormalizedHSLtoRGB");
    ForEachThreeFloats(inStep, -0.25f, 1.25f, [&](float h, float s, float l) {
        const Single hue(h);
        const Single saturation(s);
        const Single level(l);
        float given[] = {7, 8, 9};
        ORL::NormalizedHSVtoRGB(h, s, l, given[0], given[1], given[2]);
        const typename Formulas::Triple untouched{7.0f, 8.0f, 9.0f};
        fromHsv.Compare(SameTriple(given, Formulas::RGBFromHSV(hue, saturation, level).value_or(untouched)), h, s, l);
        ORL::NormalizedHSLtoRGB(h, s, l, given[0], given[1], given[2]);
        fromHsl.Compare(SameTriple(given, Formulas::RGBFromHSL(hue, saturation, level)), h, s, l);
    });
}

template <class Formulas, class Single>
void CompareComponents(std::uint32_t inStep)
{
    Differences toYPbPr("ColorRGBToYPbPr");
    Differences fromYPbPr("ColorYPbPrToRGB");
    Differences toYiq("ColorYPbPrToYIQ");
    Differences toHue("ColorPbPrToHue");
    ForEachThreeFloats(inStep, -0.75f, 1.25f, [&](float x, float y, float z) {
        const Single first(x);
        const Single second(y);
        const Single third(z);
        float given[3] = {};
        ORL::ColorRGBToYPbPr(x, y, z, given[0], given[1], given[2]);
        toYPbPr.Compare(SameTriple(given, Formulas::YPbPrFromRGB(first, second, third)), x, y, z);
        ORL::ColorYPbPrToRGB(x, y, z, given[0], given[1], given[2]);
        fromYPbPr.Compare(SameTriple(given, Formulas::RGBFromYPbPr(first, second, third)), x, y, z);
        ORL::ColorYPbPrToYIQ(x, y, z, given[0], given[1], given[2]);
        toYiq.Compare(SameTriple(given, Formulas::YIQFromYPbPr(first, second, third)), x, y, z);
        ORL::ColorPbPrToHue(y, z, given[0]);
        toHue.Compare(SameBits(given[0], Plain(Formulas::HueFromPbPr(second, third))), x, y, z);
    });
}

using ToLevels = void (*)(float, float, float, float&, float&);

template <class Levels>
bool SameLevels(ToLevels inConvert, float inFirst, float inSecond, float inThird, const Levels& inExpected)
{
    float given[2] = {};
    inConvert(inFirst, inSecond, inThird, given[0], given[1]);
    return SameBits(given[0], Plain(inExpected.luma)) && SameBits(given[1], Plain(inExpected.chroma));
}

template <class Formulas, class Single>
void CompareLevels(std::uint32_t inStep)
{
    Differences fromRgb("ColorRGBToIRE, ColorRGBToMV");
    Differences fromYPbPr("ColorYPbPrToIRE, ColorYPbPrToMV");
    ForEachThreeFloats(inStep, -0.75f, 1.25f, [&](float x, float y, float z) {
        const auto ofRgb = Formulas::IREFromRGB(Single(x), Single(y), Single(z));
        fromRgb.Compare(SameLevels(&ORL::ColorRGBToIRE, x, y, z, ofRgb)
                            && SameLevels(&ORL::ColorRGBToMV, x, y, z, Formulas::Millivolts(ofRgb)),
                        x, y, z);
        const auto ofYPbPr = Formulas::IREFromYPbPr(Single(x), Single(y), Single(z));
        fromYPbPr.Compare(SameLevels(&ORL::ColorYPbPrToIRE, x, y, z, ofYPbPr)
                              && SameLevels(&ORL::ColorYPbPrToMV, x, y, z, Formulas::Millivolts(ofYPbPr)),
                          x, y, z);
    });
}

template <class Single>
float ValueOr(const std::optional<Single>& inValue, float inUntouched)
{
    return inValue ? Plain(*inValue) : inUntouched;
}

template <class Shade>
bool SameValues(const float (&inGiven)[3], const Shade& inExpected)
{
    return SameBits(inGiven[0], ValueOr(inExpected.hue, 7)) && SameBits(inGiven[1], ValueOr(inExpected.saturation, 8))
           && SameBits(inGiven[2], Plain(inExpected.level));
}

using ToShade = void (*)(float, float, float, float&, float&, float&, bool*, bool*);

template <class Shade>
bool SameShade(ToShade inConvert, float inR, float inG, float inB, const Shade& inExpected)
{
    float given[] = {7, 8, 9};
    bool hasHue = !inExpected.hue;
    bool hasSaturation = !inExpected.saturation;
    inConvert(inR, inG, inB, given[0], given[1], given[2], &hasHue, &hasSaturation);
    return hasHue == inExpected.hue.has_value() && hasSaturation == inExpected.saturation.has_value()
           && SameValues(given, inExpected);
}

template <class Formulas, class Single>
void CompareNormalizedPolar(std::uint32_t inStep)
{
    Differences toHsv("NormalizedRGBtoHSV");
    Differences toHsl("NormalizedRGBtoHSL");
    Differences fromYPbPr("ColorYPbPrToHSL");
    ForEachThreeFloats(inStep, -0.25f, 1.25f, [&](float x, float y, float z) {
        const Single first(x);
        const Single second(y);
        const Single third(z);
        toHsv.Compare(SameShade(&ORL::NormalizedRGBtoHSV, x, y, z, Formulas::HSVFromRGB(first, second, third)), x, y,
                      z);
        toHsl.Compare(SameShade(&ORL::NormalizedRGBtoHSL, x, y, z, Formulas::HSLFromRGB(first, second, third)), x, y,
                      z);
        float given[] = {7, 8, 9};
        ORL::ColorYPbPrToHSL(x, y, z, given[0], given[1], given[2]);
        fromYPbPr.Compare(SameValues(given, Formulas::HSLFromYPbPr(first, second, third)), x, y, z);
    });
}

template <class Formulas, class Single>
void CompareFloats(std::uint32_t inStep)
{
    CompareRgb<Formulas, Single>(inStep);
    CompareComponents<Formulas, Single>(inStep);
    CompareLevels<Formulas, Single>(inStep);
    CompareNormalizedPolar<Formulas, Single>(inStep);
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
}

// The reference computes each operation in a wider type and rounds once.
TEST(ColorEveryValue, ASampleOfAll_IsThatOfTheFormulasWithEachOperationRoundedOnce)
{
    CompareYuv<ExactColors>(97);
    ComparePolar<ExactColors>(97);
    CompareFromPolar<ExactColors>(31);
    CompareFloats<ExactColors, ExactSingle>(7);
}

TEST(ColorEveryValue, YuvSingles_AreThoseOfTheFormulasWithEachOperationRoundedOnce)
{
    Differences differences("ColorYUVtoRGBf");
    ForEachThreeFloats(3, -140.0f, 300.0f, [&](float y, float u, float v) {
        Color color;
        ORL::ColorYUVtoRGBf(y, u, v, color);
        const ByteTriple exact = ExactColors::RGBFromFloatYUV(ExactSingle(y), ExactSingle(u), ExactSingle(v));
        const ByteTriple plain = PlainColors::RGBFromFloatYUV(y, u, v);
        differences.Compare(SameColor(color, exact) && SameColor(color, plain), y, u, v);
    });
}

// The compound forms convert through RGB.
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

// The two truncations of a round trip lose at most four steps of a channel.
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
