// The colour formulas as the tests' oracle: one plain function for each formula, with sums from left to right. The
// oracle was written from the formulas alone and shares no code with the library.
//
// Every function is a template over its single-precision and its double-precision type. float and double are fast
// enough for the sweeps; with ExactSingle and ExactDouble the compiler cannot change the result of any operation.
#pragma once

#include "RoundedNumber.h"

#include <cmath>
#include <optional>

namespace ORLTest {

struct ByteTriple
{
    int a, b, c;
};

/// A member is empty if the colour lacks that property.
struct WholeShade
{
    std::optional<unsigned> hue, saturation;
    unsigned level;
};

template <class Single, class Double>
struct ColorFormulas
{
    struct Triple
    {
        Single a, b, c;
    };

    struct Levels
    {
        Single luma, chroma;
    };

    /// A member is empty if the colour lacks that property.
    struct Shade
    {
        std::optional<Single> hue, saturation;
        Single level;
    };

    static bool NearZero(Single inValue) { return std::fabs(Plain(inValue)) < 0.0001f; }

    static double Truncated(Double inValue) { return std::trunc(Plain(inValue)); }

    static int Clamped(double inWhole) { return inWhole < 0.0 ? 0 : inWhole > 255.0 ? 255 : static_cast<int>(inWhole); }

    // Bytes and YUV

    /// Y from 0 to 255, U and V from -128 to 127.
    static ByteTriple YUVFromRGB(int inR, int inG, int inB)
    {
        const Double r = static_cast<double>(inR), g = static_cast<double>(inG), b = static_cast<double>(inB);
        const int y = Clamped(Truncated(0.257 * r + 0.504 * g + 0.098 * b + 16.0));
        const int v = Clamped(Truncated(0.439 * r - 0.368 * g - 0.071 * b + 128.0));
        const int u = Clamped(Truncated(-0.148 * r - 0.291 * g + 0.439 * b + 128.0));
        return {y, u - 128, v - 128};
    }

    /// outAnyInside reports whether at least one channel needed no clamping.
    static ByteTriple RGBFromYUV(int inY, int inU, int inV, bool& outAnyInside)
    {
        const Double u = static_cast<double>(inU), v = static_cast<double>(inV);
        const Double y = Double(inY - 16.0) * 1.164;
        const double channels[] = {Truncated(1.596 * v + y), Truncated(y - 0.392 * u - 0.813 * v),
                                   Truncated(2.017 * u + y)};
        outAnyInside = false;
        for (const double channel : channels) {
            if (channel >= 0.0 && channel <= 255.0) {
                outAnyInside = true;
            }
        }
        return {Clamped(channels[0]), Clamped(channels[1]), Clamped(channels[2])};
    }

    static int RoundedAwayFromZero(Single inValue)
    {
        const Double value(inValue);
        return Clamped(Truncated(value < 0.0 ? value - 0.5 : value + 0.5));
    }

    static ByteTriple RGBFromFloatYUV(Single inY, Single inU, Single inV)
    {
        const Single y = (inY - 16.0f) * 1.164f;
        return {RoundedAwayFromZero(1.596f * inV + y), RoundedAwayFromZero(y - 0.392f * inU - 0.813f * inV),
                RoundedAwayFromZero(2.017f * inU + y)};
    }

    // The component forms

    static Triple YPbPrFromRGB(Single inR, Single inG, Single inB)
    {
        return {0.299f * inR + 0.587f * inG + 0.114f * inB, -0.168736f * inR - 0.331264f * inG + 0.5f * inB,
                0.5f * inR - 0.418688f * inG - 0.081312f * inB};
    }

    static Triple RGBFromYPbPr(Single inY, Single inPb, Single inPr)
    {
        return {1.402f * inPr + inY, inY - 0.344136f * inPb - 0.714136f * inPr, 1.772f * inPb + inY};
    }

    static Triple YIQFromYPbPr(Single inY, Single inPb, Single inPr)
    {
        return {inY, -0.544639f * inPb + 0.838671f * inPr, 0.544639f * inPr + 0.838671f * inPb};
    }

    /// Rounds the exact arctangent to the nearest single-precision number, because runtimes differ in their results.
    static Single HueFromPbPr(Single inPb, Single inPr)
    {
        const Single sine = -0.9475003f * inPb - 0.31975487f * inPr;
        const Single cosine = -0.31975487f * inPb + 0.9475003f * inPr;
        const Single fullCircle = 6.2831855f;
        Single angle = static_cast<float>(
            std::atan2(static_cast<long double>(Plain(sine)), static_cast<long double>(Plain(cosine))));
        if (angle < 0.0f) {
            angle = angle + fullCircle;
        }
        return angle / fullCircle;
    }

    /// Computes the root in double precision and rounds once.
    static Single Length(Single inFirst, Single inSecond)
    {
        const Single square = inFirst * inFirst + inSecond * inSecond;
        return static_cast<float>(std::sqrt(static_cast<double>(Plain(square))));
    }

    static Levels IREFromYPbPr(Single inY, Single inPb, Single inPr)
    {
        return {inY * 100.0f, Length(1.23f * inPr, 0.87202f * inPb) * 100.0f};
    }

    static Levels IREFromRGB(Single inR, Single inG, Single inB)
    {
        const Single a = 0.614975f * inR - 0.514965f * inG - 0.10001f * inB;
        const Single c = -0.147141f * inR - 0.288869f * inG + 0.43601f * inB;
        return {YPbPrFromRGB(inR, inG, inB).a * 100.0f, Length(a, c) * 100.0f};
    }

    static Levels Millivolts(const Levels& inIRE) { return {inIRE.luma * 7.142857f, inIRE.chroma * 7.142857f}; }

    // From RGB to hue, saturation, and value or lightness

    enum class Channel { Red, Green, Blue };

    static Single Of(Channel inChannel, Single inR, Single inG, Single inB)
    {
        return inChannel == Channel::Red ? inR : inChannel == Channel::Green ? inG : inB;
    }

    static Channel StrictLargest(Single inR, Single inG, Single inB)
    {
        if (inG > inR) {
            return inB > inG ? Channel::Blue : Channel::Green;
        }
        return inB > inR ? Channel::Blue : Channel::Red;
    }

    static Channel StrictSmallest(Single inR, Single inG, Single inB)
    {
        if (inR > inG) {
            return inG > inB ? Channel::Blue : Channel::Green;
        }
        return inR > inB ? Channel::Blue : Channel::Red;
    }

    static Channel LooseLargest(Single inR, Single inG, Single inB)
    {
        if (inB >= inR && inB >= inG) {
            return Channel::Blue;
        }
        return inG >= inR && inG >= inB ? Channel::Green : Channel::Red;
    }

    static Channel LooseSmallest(Single inR, Single inG, Single inB)
    {
        if (inR >= inB && inG >= inB) {
            return Channel::Blue;
        }
        return inR >= inG && inB >= inG ? Channel::Green : Channel::Red;
    }

    /// Adds the full circle and divides in double precision; the earlier steps are in single precision.
    static Single Hue(Channel inLargest, Single inD, Single inR, Single inG, Single inB)
    {
        Single sixths = 0.0f;
        switch (inLargest) {
        case Channel::Red: sixths = (inG - inB) / inD; break;
        case Channel::Green: sixths = (inB - inR) / inD + 2.0f; break;
        case Channel::Blue: sixths = (inR - inG) / inD + 4.0f; break;
        }
        Double whole(sixths);
        if (whole < 0.0) {
            whole = whole + 6.0;
        }
        return Single(whole / 6.0);
    }

    static Shade HSVFromRGB(Single inR, Single inG, Single inB)
    {
        const Channel top = StrictLargest(inR, inG, inB);
        const Single largest = Of(top, inR, inG, inB);
        Shade shade{{}, {}, largest};
        if (NearZero(largest)) {
            return shade;
        }
        const Single d = largest - Of(StrictSmallest(inR, inG, inB), inR, inG, inB);
        shade.saturation = d / largest;
        if (!NearZero(*shade.saturation)) {
            shade.hue = Hue(top, d, inR, inG, inB);
        }
        return shade;
    }

    static Shade HSLFromRGB(Single inR, Single inG, Single inB)
    {
        const Channel top = LooseLargest(inR, inG, inB);
        const Single largest = Of(top, inR, inG, inB);
        const Single smallest = Of(LooseSmallest(inR, inG, inB), inR, inG, inB);
        Shade shade{{}, {}, (largest + smallest) * 0.5f};
        if (NearZero(shade.level)) {
            return shade;
        }
        shade.saturation = largest - smallest;
        if (!NearZero(*shade.saturation)) {
            shade.hue = Hue(top, *shade.saturation, inR, inG, inB);
        }
        return shade;
    }

    static Shade HSLFromYPbPr(Single inY, Single inPb, Single inPr)
    {
        const Triple rgb = RGBFromYPbPr(inY, inPb, inPr);
        return HSLFromRGB(rgb.a, rgb.b, rgb.c);
    }

    /// Multiplies in single precision and adds 0.5 in double precision.
    static unsigned Rounded(Single inValue, float inScale)
    {
        return static_cast<unsigned>(Truncated(Double(Single(inValue * inScale)) + 0.5));
    }

    /// Multiplies and adds 0.5 in single precision.
    static unsigned RoundedInSingle(Single inValue, float inScale)
    {
        return static_cast<unsigned>(Plain(Single(inValue * inScale + 0.5f)));
    }

    static WholeShade Whole(const Shade& inShade, unsigned inLevel)
    {
        WholeShade whole{{}, {}, inLevel};
        if (inShade.hue) {
            whole.hue = Rounded(*inShade.hue, 360.0f);
        }
        if (inShade.saturation) {
            whole.saturation = Rounded(*inShade.saturation, 100.0f);
        }
        return whole;
    }

    static Single Share(unsigned inPart, float inWhole) { return Single(static_cast<float>(inPart)) / inWhole; }

    static WholeShade WholeHSVFromRGB(unsigned inR, unsigned inG, unsigned inB)
    {
        const Shade shade = HSVFromRGB(Share(inR, 255.0f), Share(inG, 255.0f), Share(inB, 255.0f));
        return Whole(shade, Rounded(shade.level, 100.0f));
    }

    static WholeShade WholeHSLFromRGB(unsigned inR, unsigned inG, unsigned inB)
    {
        const Shade shade = HSLFromRGB(Share(inR, 255.0f), Share(inG, 255.0f), Share(inB, 255.0f));
        return Whole(shade, RoundedInSingle(shade.level, 100.0f));
    }

    // From hue, saturation, and value or lightness to RGB

    /// Returns nothing if the hue is outside the circle.
    static std::optional<Triple> RGBFromHSV(Single inH, Single inS, Single inV)
    {
        if (inS == 0.0f) {
            return Triple{inV, inV, inV};
        }
        const Single sixths = (inH == 1.0f ? Single(0.0f) : inH) * 6.0f;
        const float sector = std::floor(Plain(sixths));
        const Single one = 1.0f;
        const Single f = sixths - sector;
        const Single p = (one - inS) * inV;
        const Single q = (one - f * inS) * inV;
        const Single t = (one - (one - f) * inS) * inV;
        if (sector == 0.0f) {
            return Triple{inV, t, p};
        }
        if (sector == 1.0f) {
            return Triple{q, inV, p};
        }
        if (sector == 2.0f) {
            return Triple{p, inV, t};
        }
        if (sector == 3.0f) {
            return Triple{p, q, inV};
        }
        if (sector == 4.0f) {
            return Triple{t, p, inV};
        }
        if (sector == 5.0f) {
            return Triple{inV, p, q};
        }
        return {};
    }

    /// Returns black if the hue is outside the circle or exactly 1.
    static Triple RGBFromHSL(Single inH, Single inS, Single inL)
    {
        const Triple black{0.0f, 0.0f, 0.0f};
        const Single v = inL <= 0.5f ? (inS + 1.0f) * inL : inS + inL - inS * inL;
        if (!(v > 0.0f)) {
            return black;
        }
        const Single m = 2.0f * inL - v;
        const Single sixths = 6.0f * inH;
        const float sector = std::trunc(Plain(sixths));
        const Single f = sixths - sector;
        const Single w = (v - m) / v * v * f;
        const Single u = m + w;
        const Single z = v - w;
        if (sector == 0.0f) {
            return {v, u, m};
        }
        if (sector == 1.0f) {
            return {z, v, m};
        }
        if (sector == 2.0f) {
            return {m, v, u};
        }
        if (sector == 3.0f) {
            return {m, z, v};
        }
        if (sector == 4.0f) {
            return {u, m, v};
        }
        if (sector == 5.0f) {
            return {v, m, z};
        }
        return black;
    }

    /// Returns the low 8 bits of the rounded channel.
    static int Byte(Single inChannel)
    {
        return static_cast<int>(Truncated(Double(Single(inChannel * 255.0f)) + 0.5)) & 0xFF;
    }

    static ByteTriple Bytes(const Triple& inColor) { return {Byte(inColor.a), Byte(inColor.b), Byte(inColor.c)}; }

    /// Integer forms start from black, so a hue outside the circle is black.
    static Triple RGBOfWholeHSV(unsigned inH, unsigned inS, unsigned inV)
    {
        return RGBFromHSV(Share(inH, 360.0f), Share(inS, 100.0f), Share(inV, 100.0f))
            .value_or(Triple{0.0f, 0.0f, 0.0f});
    }

    static Triple RGBOfWholeHSL(unsigned inH, unsigned inS, unsigned inL)
    {
        return RGBFromHSL(Share(inH, 360.0f), Share(inS, 100.0f), Share(inL, 100.0f));
    }

    static ByteTriple RGBFromWholeHSV(unsigned inH, unsigned inS, unsigned inV)
    {
        return Bytes(RGBOfWholeHSV(inH, inS, inV));
    }

    static ByteTriple RGBFromWholeHSL(unsigned inH, unsigned inS, unsigned inL)
    {
        return Bytes(RGBOfWholeHSL(inH, inS, inL));
    }

    static WholeShade WholeHSVFromWholeHSL(unsigned inH, unsigned inS, unsigned inL)
    {
        const Triple rgb = RGBOfWholeHSL(inH, inS, inL);
        const Single largest = Of(StrictLargest(rgb.a, rgb.b, rgb.c), rgb.a, rgb.b, rgb.c);
        const Single smallest = Of(StrictSmallest(rgb.a, rgb.b, rgb.c), rgb.a, rgb.b, rgb.c);
        const Single saturation = NearZero(largest) ? Share(inS, 100.0f) : (largest - smallest) / largest;
        return {inH, Rounded(saturation, 100.0f), Rounded(largest, 100.0f)};
    }

    static WholeShade WholeHSLFromWholeHSV(unsigned inH, unsigned inS, unsigned inV)
    {
        const Triple rgb = RGBOfWholeHSV(inH, inS, inV);
        const Shade shade = HSLFromRGB(rgb.a, rgb.b, rgb.c);
        const Single saturation = shade.saturation.value_or(Share(inS, 100.0f));
        return {inH, Rounded(saturation, 100.0f), Rounded(shade.level, 100.0f)};
    }
};

using PlainColors = ColorFormulas<float, double>;
using ExactColors = ColorFormulas<ExactSingle, ExactDouble>;

} // namespace ORLTest
