// Tests which outputs the colour functions store, and their results at the ends of the ranges.
#include <ORLColor.h>

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <gtest/gtest.h>
#include <limits>

using namespace ORL;

namespace {

using Color = ParamColor<unsigned long>;

constexpr float kNan = std::numeric_limits<float>::quiet_NaN();
constexpr float kInfinity = std::numeric_limits<float>::infinity();

struct Polar
{
    unsigned mHue = 1001;
    unsigned mSaturation = 1002;
    unsigned mLevel = 1003;
    bool mHasHue = true;
    bool mHasSaturation = true;
};

Polar HsvOf(const Color& inColor, bool inFlags = false)
{
    Polar polar;
    polar.mHasHue = polar.mHasSaturation = inFlags;
    ColorRGBtoHSV(inColor, polar.mHue, polar.mSaturation, polar.mLevel, &polar.mHasHue, &polar.mHasSaturation);
    return polar;
}

Polar HslOf(const Color& inColor, bool inFlags = false)
{
    Polar polar;
    polar.mHasHue = polar.mHasSaturation = inFlags;
    ColorRGBtoHSL(inColor, polar.mHue, polar.mSaturation, polar.mLevel, &polar.mHasHue, &polar.mHasSaturation);
    return polar;
}

Color OfHsv(unsigned inH, unsigned inS, unsigned inV)
{
    Color color(0xFFFFFFFFul);
    ColorHSVtoRGB(inH, inS, inV, color);
    return color;
}

Color OfHsl(unsigned inH, unsigned inS, unsigned inL)
{
    Color color(0xFFFFFFFFul);
    ColorHSLtoRGB(inH, inS, inL, color);
    return color;
}

} // namespace

TEST(ParamColor, HoldsRedInTheLowByteAnd32BitsInAll)
{
    constexpr Color orange(0xFF, 0x80, 0x01);
    EXPECT_EQ(0x0180FFul, orange.GetValue());
    EXPECT_EQ(0xFF, orange.GetRed());
    EXPECT_EQ(0x80, orange.GetGreen());
    EXPECT_EQ(0x01, orange.GetBlue());
    EXPECT_EQ(4u, sizeof(Color));
    EXPECT_EQ(0u, Color().GetValue());
    EXPECT_EQ(0xAB0180FFul, Color(static_cast<unsigned long>(0xCDEFAB0180FFull)).GetValue() & 0xFFFFFFFFul);
    EXPECT_NE(orange, Color(0xAB0180FFul));
}

TEST(ColorYUVtoRGB, AllThreeChannelsClamped_ReturnsFalse)
{
    Color color;
    EXPECT_FALSE(ColorYUVtoRGB(0, 0, 0, color)) << "all below 0";
    EXPECT_EQ(Color(0, 0, 0), color);
    EXPECT_FALSE(ColorYUVtoRGB(255, 0, 0, color)) << "all above 255";
    EXPECT_EQ(Color(255, 255, 255), color);
}

TEST(ColorYUVtoRGB, OneChannelUnclamped_ReturnsTrue)
{
    Color color;
    EXPECT_TRUE(ColorYUVtoRGB(0, 127, 0, color)) << "blue alone is inside";
    EXPECT_EQ(0, color.GetRed());
    EXPECT_EQ(0, color.GetGreen());
    EXPECT_EQ(237, color.GetBlue()) << "trunc(2.017 * 127 - 18.624)";
}

TEST(ColorYUVtoRGB, ReadsUAndVAsSignedBytes)
{
    Color color;
    ColorYUVtoRGB(128, static_cast<char>(-1), static_cast<char>(-2), color);
    EXPECT_EQ(Color(127, 132, 128), color) << "127.176, 132.386, 128.351, truncated";
}

TEST(ColorRGBtoYUV, StoresUAndVAboutZero)
{
    unsigned char y = 0;
    char u = 0;
    char v = 0;
    ColorRGBtoYUV(Color(255, 0, 0), y, u, v);
    EXPECT_EQ(81, y);
    EXPECT_EQ(90 - 128, static_cast<signed char>(u));
    EXPECT_EQ(239 - 128, static_cast<signed char>(v));
    ColorRGBtoYUV(Color(0xFF000000ul), y, u, v);
    EXPECT_EQ(16, y) << "the top byte is no colour";
    EXPECT_EQ(0, u);
    EXPECT_EQ(0, v);
}

TEST(ColorYUVtoRGBf, RoundsTiesAwayFromZeroAndClamps)
{
    const struct
    {
        int mLine;
        float mY, mU, mV;
        Color mColor;
    } rows[] = {
        {__LINE__, 16, 0, 0, Color(0, 0, 0)},
        {__LINE__, 235, 0, 0, Color(255, 255, 255)},
        {__LINE__, 16.43f, 0, 0, Color(1, 1, 1)}, // 0.5005
        {__LINE__, 16.42f, 0, 0, Color(0, 0, 0)}, // 0.4889
        {__LINE__, 1e30f, 0, 0, Color(255, 255, 255)},
        {__LINE__, -1e30f, 0, 0, Color(0, 0, 0)},
        {__LINE__, kInfinity, 0, 0, Color(255, 255, 255)},
        {__LINE__, -kInfinity, 0, 0, Color(0, 0, 0)},
        {__LINE__, kNan, 0, 0, Color(0, 0, 0)},
        {__LINE__, 16, 0, kInfinity, Color(255, 0, 0)},
    };
    for (const auto& row : rows) {
        Color color(0xFFFFFFFFul);
        ColorYUVtoRGBf(row.mY, row.mU, row.mV, color);
        EXPECT_EQ(row.mColor.GetValue(), color.GetValue()) << "row at line " << row.mLine;
    }
}

TEST(ColorRGBtoHSV, Black_WritesOnlyTheValueAndBothFlagsAreFalse)
{
    const Polar hsv = HsvOf(Color(0, 0, 0), true);
    EXPECT_EQ(1001u, hsv.mHue);
    EXPECT_EQ(1002u, hsv.mSaturation);
    EXPECT_EQ(0u, hsv.mLevel);
    EXPECT_FALSE(hsv.mHasHue);
    EXPECT_FALSE(hsv.mHasSaturation);
}

TEST(ColorRGBtoHSV, Grey_WritesSaturationAndValueAndLeavesTheHue)
{
    const Polar hsv = HsvOf(Color(128, 128, 128), true);
    EXPECT_EQ(1001u, hsv.mHue);
    EXPECT_EQ(0u, hsv.mSaturation);
    EXPECT_EQ(50u, hsv.mLevel);
    EXPECT_FALSE(hsv.mHasHue);
    EXPECT_TRUE(hsv.mHasSaturation);
}

TEST(ColorRGBtoHSL, BlackAndGrey_LeaveWhatTheyDoNotHave)
{
    const Polar black = HslOf(Color(0, 0, 0), true);
    EXPECT_EQ(1001u, black.mHue);
    EXPECT_EQ(1002u, black.mSaturation);
    EXPECT_EQ(0u, black.mLevel);
    EXPECT_FALSE(black.mHasHue);
    EXPECT_FALSE(black.mHasSaturation);
    const Polar grey = HslOf(Color(128, 128, 128), true);
    EXPECT_EQ(1001u, grey.mHue);
    EXPECT_EQ(0u, grey.mSaturation);
    EXPECT_EQ(50u, grey.mLevel);
    EXPECT_FALSE(grey.mHasHue);
    EXPECT_TRUE(grey.mHasSaturation);
}

TEST(ColorRGBtoHSV, KnownColours_HaveTheirDegreesAndPercents)
{
    const struct
    {
        int mLine;
        Color mColor;
        unsigned mHue, mSaturationV, mValue, mSaturationL, mLightness;
    } rows[] = {
        {__LINE__, Color(255, 0, 0), 0, 100, 100, 100, 50},    {__LINE__, Color(255, 255, 0), 60, 100, 100, 100, 50},
        {__LINE__, Color(0, 255, 0), 120, 100, 100, 100, 50},  {__LINE__, Color(0, 255, 255), 180, 100, 100, 100, 50},
        {__LINE__, Color(0, 0, 255), 240, 100, 100, 100, 50},  {__LINE__, Color(255, 0, 255), 300, 100, 100, 100, 50},
        {__LINE__, Color(255, 128, 0), 30, 100, 100, 100, 50}, {__LINE__, Color(255, 0, 1), 360, 100, 100, 100, 50},
        {__LINE__, Color(192, 128, 128), 0, 33, 75, 25, 63},
    };
    for (const auto& row : rows) {
        const Polar hsv = HsvOf(row.mColor);
        EXPECT_EQ(row.mHue, hsv.mHue) << "row at line " << row.mLine;
        EXPECT_EQ(row.mSaturationV, hsv.mSaturation) << "row at line " << row.mLine;
        EXPECT_EQ(row.mValue, hsv.mLevel) << "row at line " << row.mLine;
        EXPECT_TRUE(hsv.mHasHue && hsv.mHasSaturation) << "row at line " << row.mLine;
        const Polar hsl = HslOf(row.mColor);
        EXPECT_EQ(row.mHue, hsl.mHue) << "row at line " << row.mLine;
        EXPECT_EQ(row.mSaturationL, hsl.mSaturation) << "row at line " << row.mLine << ": the plain difference";
        EXPECT_EQ(row.mLightness, hsl.mLevel) << "row at line " << row.mLine;
    }
}

TEST(ColorRGBtoHSV, NullFlags_AreFine)
{
    unsigned h = 5;
    unsigned s = 6;
    unsigned v = 7;
    ColorRGBtoHSV(Color(0, 0, 0), h, s, v, nullptr, nullptr);
    ColorRGBtoHSL(Color(9, 9, 9), h, s, v, nullptr, nullptr);
    bool hasHue = false;
    ColorRGBtoHSV(Color(9, 0, 0), h, s, v, &hasHue, nullptr);
    EXPECT_TRUE(hasHue);
    EXPECT_EQ(0u, h);
}

// The threshold is strict: 0.0001 itself is not near zero.
TEST(NormalizedRGBtoHSV, ThresholdOfNearZero_IsStrict)
{
    const float below = std::nextafter(0.0001f, 0.0f);
    const struct
    {
        int mLine;
        float mR, mG, mB;
        bool mHasSaturation, mHasHue;
    } rows[] = {
        {__LINE__, below, 0, 0, false, false},
        {__LINE__, 0.0001f, 0, 0, true, true},
        {__LINE__, -0.0001f, -0.0001f, -0.0001f, true, false},
        {__LINE__, 1, 1, 1, true, false},
        {__LINE__, 1, 1, 0.99991f, true, false},
        {__LINE__, 1, 1, 0.99989f, true, true},
    };
    for (const auto& row : rows) {
        float h = 7;
        float s = 8;
        float v = 9;
        bool hasHue = !row.mHasHue;
        bool hasSaturation = !row.mHasSaturation;
        NormalizedRGBtoHSV(row.mR, row.mG, row.mB, h, s, v, &hasHue, &hasSaturation);
        EXPECT_EQ(row.mHasSaturation, hasSaturation) << "row at line " << row.mLine;
        EXPECT_EQ(row.mHasHue, hasHue) << "row at line " << row.mLine;
        EXPECT_EQ(!row.mHasSaturation, s == 8) << "row at line " << row.mLine;
        EXPECT_EQ(!row.mHasHue, h == 7) << "row at line " << row.mLine;
    }
}

TEST(NormalizedRGBtoHSL, ThresholdOfNearZero_IsStrict)
{
    float h = 7;
    float s = 8;
    float l = 9;
    bool hasHue = true;
    bool hasSaturation = true;
    NormalizedRGBtoHSL(std::nextafter(0.0002f, 0.0f), 0, 0, h, s, l, &hasHue, &hasSaturation);
    EXPECT_FALSE(hasSaturation || hasHue);
    EXPECT_EQ(7, h);
    EXPECT_EQ(8, s);
    NormalizedRGBtoHSL(0.0002f, 0, 0, h, s, l, &hasHue, &hasSaturation);
    EXPECT_TRUE(hasSaturation && hasHue);
    EXPECT_EQ(0.0002f, s) << "not divided by the lightness";
    EXPECT_EQ(0.0001f, l);
}

TEST(NormalizedHSVtoRGB, HueOfOne_GivesTheColourOfHueZero)
{
    float one[] = {7, 8, 9};
    float zero[] = {1, 2, 3};
    NormalizedHSVtoRGB(1, 0.75f, 0.5f, one[0], one[1], one[2]);
    NormalizedHSVtoRGB(0, 0.75f, 0.5f, zero[0], zero[1], zero[2]);
    for (int i = 0; i < 3; ++i) {
        EXPECT_EQ(zero[i], one[i]);
    }
    EXPECT_EQ(0.5f, zero[0]);
    EXPECT_EQ(0.125f, zero[1]);
}

TEST(NormalizedHSLtoRGB, HueOfOne_GivesBlack)
{
    float rgb[] = {7, 8, 9};
    NormalizedHSLtoRGB(1, 0.75f, 0.5f, rgb[0], rgb[1], rgb[2]);
    for (const float channel : rgb) {
        EXPECT_EQ(0, channel);
    }
}

TEST(NormalizedHSVtoRGB, HuesWithoutASector_LeaveTheOutputs)
{
    for (const float hue : {-0.0001f, 1.0001f, -1e30f, 1e30f, kInfinity, -kInfinity, kNan}) {
        float rgb[] = {7, 8, 9};
        NormalizedHSVtoRGB(hue, 0.5f, 0.5f, rgb[0], rgb[1], rgb[2]);
        EXPECT_TRUE(rgb[0] == 7 && rgb[1] == 8 && rgb[2] == 9) << hue;
        NormalizedHSVtoRGB(hue, 0, 0.25f, rgb[0], rgb[1], rgb[2]);
        EXPECT_TRUE(rgb[0] == 0.25f && rgb[1] == 0.25f && rgb[2] == 0.25f) << hue << " without saturation";
    }
}

TEST(NormalizedHSLtoRGB, HuesWithoutASector_GiveBlack)
{
    for (const float hue : {-0.17f, 1.0001f, -1e30f, 1e30f, kInfinity, -kInfinity, kNan}) {
        float rgb[] = {7, 8, 9};
        NormalizedHSLtoRGB(hue, 0.5f, 0.5f, rgb[0], rgb[1], rgb[2]);
        EXPECT_TRUE(rgb[0] == 0 && rgb[1] == 0 && rgb[2] == 0) << hue;
    }
    float rgb[] = {7, 8, 9};
    NormalizedHSLtoRGB(-0.125f, 0.5f, 0.5f, rgb[0], rgb[1], rgb[2]);
    EXPECT_EQ(0.75f, rgb[0]) << "truncated to the first sector";
}

TEST(NormalizedHSLtoRGB, LightnessThatIsNoNumber_GivesBlack)
{
    float rgb[] = {7, 8, 9};
    NormalizedHSLtoRGB(0.5f, 0.5f, kNan, rgb[0], rgb[1], rgb[2]);
    EXPECT_TRUE(rgb[0] == 0 && rgb[1] == 0 && rgb[2] == 0);
}

TEST(ColorHSLtoRGB, Hue360_GivesBlack)
{
    EXPECT_EQ(0ul, OfHsl(360, 100, 50).GetValue());
    EXPECT_EQ(Color(255, 0, 0), OfHsl(0, 100, 50));
}

TEST(ColorHSVtoRGB, Hue360_GivesTheColourOfHue0)
{
    for (unsigned s = 0; s <= 100; ++s) {
        EXPECT_EQ(OfHsv(0, s, 80), OfHsv(360, s, 80)) << s;
    }
}

TEST(ColorHSVtoRGB, ValuesFarOutOfRange_AreDefined)
{
    EXPECT_EQ(0ul, OfHsv(361, 100, 100).GetValue());
    EXPECT_EQ(0ul, OfHsv(4294967295u, 100, 100).GetValue());
    EXPECT_EQ(Color(128, 128, 128), OfHsv(361, 0, 50)) << "no saturation needs no hue";
    EXPECT_EQ(0ul, OfHsl(4294967295u, 100, 50).GetValue());
    EXPECT_EQ(Color(254, 254, 254), OfHsv(0, 0, 200)) << "510 in 8 bits";
    EXPECT_EQ(0ul, OfHsv(0, 0, 4294967295u).GetValue()) << "beyond 32 bits the low ones are 0";
    EXPECT_EQ(Color(255, 2, 2), OfHsv(0, 200, 100)) << "-254 in 8 bits";
}

namespace {

using ShadeToShade = void (*)(unsigned, unsigned, unsigned, unsigned&, unsigned&, unsigned&);

struct ShadeRow
{
    int mLine;
    unsigned mGiven[3];
    unsigned mExpected[3];
};

template <std::size_t N>
void ExpectShades(ShadeToShade inConvert, const ShadeRow (&inRows)[N])
{
    for (const ShadeRow& row : inRows) {
        unsigned shade[] = {7, 8, 9};
        inConvert(row.mGiven[0], row.mGiven[1], row.mGiven[2], shade[0], shade[1], shade[2]);
        for (int i = 0; i < 3; ++i) {
            EXPECT_EQ(row.mExpected[i], shade[i]) << "row at line " << row.mLine << ", number " << i;
        }
    }
}

} // namespace

TEST(ColorHSLtoHSV, PassesTheHueThroughAndKeepsTheSaturationOfBlack)
{
    ExpectShades(&ColorHSLtoHSV, {
                                     {__LINE__, {123, 45, 0}, {123, 45, 0}},
                                     {__LINE__, {360, 70, 50}, {360, 70, 0}}, // hue 360 becomes black
                                     {__LINE__, {0, 100, 50}, {0, 100, 100}},
                                 });
}

TEST(ColorHSVtoHSL, PassesTheHueThroughAndKeepsTheSaturationOfBlack)
{
    ExpectShades(&ColorHSVtoHSL, {
                                     {__LINE__, {123, 45, 0}, {123, 45, 0}},
                                     {__LINE__, {240, 50, 80}, {240, 40, 60}}, // 0.8 - 0.4
                                     {__LINE__, {400, 50, 80}, {400, 50, 0}},
                                 });
}

TEST(ColorYUVtoHSV, BlackAndGrey_LeaveWhatTheyDoNotHave)
{
    unsigned h = 1001;
    unsigned s = 1002;
    unsigned v = 1003;
    ColorYUVtoHSV(16, 0, 0, h, s, v);
    EXPECT_EQ(1001u, h);
    EXPECT_EQ(1002u, s);
    EXPECT_EQ(0u, v);
    ColorYUVtoHSL(128, 0, 0, h, s, v);
    EXPECT_EQ(1001u, h);
    EXPECT_EQ(0u, s);
    EXPECT_EQ(51u, v) << "130 of 255";
}

TEST(ColorHSVtoYUV, GoesThroughRGB)
{
    unsigned char y = 0;
    char u = 0;
    char v = 0;
    ColorHSVtoYUV(0, 100, 100, y, u, v);
    EXPECT_EQ(81, y);
    EXPECT_EQ(-38, static_cast<signed char>(u));
    EXPECT_EQ(111, static_cast<signed char>(v));
    ColorHSLtoYUV(360, 100, 50, y, u, v);
    EXPECT_EQ(16, y) << "hue 360 is black here";
}

TEST(ColorPbPrToHue, CountsFromRedOverBlueOnceAround)
{
    const struct
    {
        int mLine;
        float mR, mG, mB, mHue;
    } rows[] = {
        {__LINE__, 1, 0, 0, 0.0f}, {__LINE__, 1, 1, 0, 0.1725f}, {__LINE__, 0, 1, 0, 0.3417f},
        {__LINE__, 0, 1, 1, 0.5f}, {__LINE__, 0, 0, 1, 0.6725f}, {__LINE__, 1, 0, 1, 0.8417f},
    };
    for (const auto& row : rows) {
        float y = 0;
        float pb = 0;
        float pr = 0;
        ColorRGBToYPbPr(row.mR, row.mG, row.mB, y, pb, pr);
        float hue = -1;
        ColorPbPrToHue(pb, pr, hue);
        const float distance = std::fabs(hue - row.mHue);
        EXPECT_LT(std::min(distance, 1 - distance), 0.0005f) << "row at line " << row.mLine << ": " << hue;
        EXPECT_GE(hue, 0);
        EXPECT_LE(hue, 1);
    }
    float hue = -1;
    ColorPbPrToHue(0, 0, hue);
    EXPECT_EQ(0, hue) << "no chroma";
}

TEST(ColorRGBToIRE, WhiteIs100IREAnd714Millivolts)
{
    float luma = 0;
    float chroma = 0;
    ColorRGBToIRE(1, 1, 1, luma, chroma);
    EXPECT_NEAR(100, luma, 1e-4);
    EXPECT_NEAR(0, chroma, 1e-3);
    ColorRGBToMV(1, 1, 1, luma, chroma);
    EXPECT_NEAR(714.2857, luma, 1e-3);
    ColorRGBToIRE(1, 0, 0, luma, chroma);
    EXPECT_NEAR(29.9, luma, 1e-4);
    EXPECT_NEAR(63.2331, chroma, 1e-3) << "the burst of pure red";
    ColorYPbPrToIRE(0.299f, -0.168736f, 0.5f, luma, chroma);
    EXPECT_NEAR(29.9, luma, 1e-4);
    EXPECT_NEAR(63.23, chroma, 0.05) << "nearly the same by the other road";
    ColorYPbPrToMV(1, 0, 0, luma, chroma);
    EXPECT_NEAR(714.2857, luma, 1e-3);
    EXPECT_EQ(0, chroma);
}

TEST(ColorYPbPrToHSL, GreyLeavesTheHue)
{
    float h = 7;
    float s = 8;
    float l = 9;
    ColorYPbPrToHSL(0.5f, 0, 0, h, s, l);
    EXPECT_EQ(7, h);
    EXPECT_EQ(0, s);
    EXPECT_EQ(0.5f, l);
    ColorYPbPrToHSL(0, 0, 0, h, s, l);
    EXPECT_EQ(7, h);
    EXPECT_EQ(0, l);
}

TEST(MakeRGBWebSafe, ClearsTheLowFiveBitsAndTellsWhetherAnyWasSet)
{
    Color color(0xFFFFFFFFul);
    EXPECT_TRUE(MakeRGBWebSafe(Color(0xE0, 0x20, 0x40), color));
    EXPECT_EQ(Color(0xE0, 0x20, 0x40), color);
    EXPECT_FALSE(MakeRGBWebSafe(Color(0xE1, 0x20, 0x40), color));
    EXPECT_EQ(Color(0xE0, 0x20, 0x40), color);
    EXPECT_TRUE(MakeRGBWebSafe(Color(0xAB4020E0ul), color)) << "the top byte is no channel";
    EXPECT_EQ(0x4020E0ul, color.GetValue());
    Color same(0x1F, 0xFF, 0x3F);
    EXPECT_FALSE(MakeRGBWebSafe(same, same)) << "in place";
    EXPECT_EQ(Color(0, 0xE0, 0x20), same);
}

TEST(MakeRGBNTSCSafe, CopiesEveryColourAndReturnsTrue)
{
    for (std::uint64_t value = 0; value <= 0xFFFFFFFFu; value += 0x10101 * 7 + 3) {
        Color color;
        ASSERT_TRUE(MakeRGBNTSCSafe(Color(static_cast<unsigned long>(value)), color));
        ASSERT_EQ(value, color.GetValue());
    }
}
