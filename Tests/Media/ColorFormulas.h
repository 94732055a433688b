// The colour formulas a second time, written down plainly and apart from the library's sources, as the tests' oracle.
//
// They are templates over the two number types they compute in. With float and double they run as fast as the sweeps
// need. With Rounded<...> each single operation is computed in a wider type and rounded once, so no compiler setting
// can contract, reorder or widen anything: the innermost arbiter for a sample of the values.
#pragma once

#include <cmath>
#include <cstddef>
#include <cstdint>

namespace ORLTest {

__extension__ typedef __float128 Quad;

/// A number of type T whose every operation is done in Wide and rounded to T. Wide has more than twice the digits of T,
/// so rounding twice gives what rounding once gives.
template <class T, class Wide>
class Rounded
{
public:
    Rounded(T inValue = 0) : mValue(inValue) {}
    template <class OtherT, class OtherWide>
    explicit Rounded(const Rounded<OtherT, OtherWide>& inOther) : mValue(static_cast<T>(inOther.Value()))
    {
    }

    T Value() const { return mValue; }

    friend Rounded operator+(Rounded l, Rounded r) { return Wide(l.mValue) + Wide(r.mValue); }
    friend Rounded operator-(Rounded l, Rounded r) { return Wide(l.mValue) - Wide(r.mValue); }
    friend Rounded operator*(Rounded l, Rounded r) { return Wide(l.mValue) * Wide(r.mValue); }
    friend Rounded operator/(Rounded l, Rounded r) { return Wide(l.mValue) / Wide(r.mValue); }
    friend bool operator<(Rounded l, Rounded r) { return l.mValue < r.mValue; }
    friend bool operator>(Rounded l, Rounded r) { return l.mValue > r.mValue; }
    friend bool operator>=(Rounded l, Rounded r) { return l.mValue >= r.mValue; }
    friend bool operator<=(Rounded l, Rounded r) { return l.mValue <= r.mValue; }
    friend bool operator==(Rounded l, Rounded r) { return l.mValue == r.mValue; }

private:
    Rounded(Wide inValue) : mValue(static_cast<T>(inValue)) {}

    T mValue;
};

using ExactSingle = Rounded<float, double>;
using ExactDouble = Rounded<double, Quad>;

inline float Plain(float inValue)
{
    return inValue;
}
inline double Plain(double inValue)
{
    return inValue;
}
template <class T, class Wide>
T Plain(Rounded<T, Wide> inValue)
{
    return inValue.Value();
}

/// S computes what is single, D what is double.
template <class S, class D>
struct ColorFormulas
{
    struct Channels
    {
        S r, g, b;
    };

    /// A hue and a saturation that are not stored have their flag off.
    struct Polar
    {
        S hue, saturation, level;
        bool hasHue, hasSaturation;
    };

    struct Yuv
    {
        int y, u, v; // u and v about 0
    };

    struct Bytes
    {
        int r, g, b;
        int inside; // how many channels needed no clamp
    };

    static long Cut(D inValue) { return static_cast<long>(Plain(inValue)); }
    static long CutSingle(S inValue) { return static_cast<long>(Plain(inValue)); }
    static int Clamped(long inValue) { return inValue < 0 ? 0 : inValue > 255 ? 255 : static_cast<int>(inValue); }

    static Yuv YuvOfBytes(int inR, int inG, int inB)
    {
        const D r(static_cast<double>(inR)), g(static_cast<double>(inG)), b(static_cast<double>(inB));
        const long y = Cut(D(0.257) * r + D(0.504) * g + D(0.098) * b + D(16.0));
        const long v = Cut(D(0.439) * r - D(0.368) * g - D(0.071) * b + D(128.0));
        const long u = Cut(D(-0.148) * r - D(0.291) * g + D(0.439) * b + D(128.0));
        return {Clamped(y), Clamped(u) - 128, Clamped(v) - 128};
    }

    static Bytes BytesOfYuv(int inY, int inU, int inV)
    {
        const D u(static_cast<double>(inU)), v(static_cast<double>(inV));
        const D y = D(static_cast<double>(inY - 16)) * D(1.164);
        const long wanted[] = {Cut(D(1.596) * v + y), Cut(y - D(0.392) * u - D(0.813) * v), Cut(D(2.017) * u + y)};
        Bytes bytes{Clamped(wanted[0]), Clamped(wanted[1]), Clamped(wanted[2]), 0};
        for (const long channel : wanted) {
            bytes.inside += channel >= 0 && channel <= 255 ? 1 : 0;
        }
        return bytes;
    }

    static int RoundedAwayFromZero(S inValue)
    {
        const D value(inValue);
        return Clamped(Plain(inValue) < 0 ? Cut(value - D(0.5)) : Cut(value + D(0.5)));
    }

    static Bytes BytesOfYuvSingles(S inY, S inU, S inV)
    {
        const S y = (inY - S(16.0f)) * S(1.164f);
        const S r = S(1.596f) * inV + y;
        const S g = y - S(0.392f) * inU - S(0.813f) * inV;
        const S b = S(2.017f) * inU + y;
        return {RoundedAwayFromZero(r), RoundedAwayFromZero(g), RoundedAwayFromZero(b), 0};
    }

    /// Y, Pb, Pr in the places of r, g, b.
    static Channels YPbPrOfRgb(S r, S g, S b)
    {
        return {S(0.299f) * r + S(0.587f) * g + S(0.114f) * b, S(-0.168736f) * r - S(0.331264f) * g + S(0.5f) * b,
                S(0.5f) * r - S(0.418688f) * g - S(0.081312f) * b};
    }

    static Channels RgbOfYPbPr(S y, S pb, S pr)
    {
        return {S(1.402f) * pr + y, y - S(0.344136f) * pb - S(0.714136f) * pr, S(1.772f) * pb + y};
    }

    static Channels YiqOfYPbPr(S y, S pb, S pr)
    {
        return {y, S(-0.544639f) * pb + S(0.838671f) * pr, S(0.544639f) * pr + S(0.838671f) * pb};
    }

    // The red channel is 0, green 1, blue 2.
    static int LargestStrictly(const S (&c)[3])
    {
        if (c[1] > c[0]) {
            return c[2] > c[1] ? 2 : 1;
        }
        return c[2] > c[0] ? 2 : 0;
    }

    static int SmallestStrictly(const S (&c)[3])
    {
        if (c[0] > c[1]) {
            return c[1] > c[2] ? 2 : 1;
        }
        return c[0] > c[2] ? 2 : 0;
    }

    static int LargestOrEqual(const S (&c)[3])
    {
        for (const int candidate : {2, 1}) {
            if (c[candidate] >= c[0] && c[candidate] >= c[1] && c[candidate] >= c[2]) {
                return candidate;
            }
        }
        return 0;
    }

    static int SmallestOrEqual(const S (&c)[3])
    {
        for (const int candidate : {2, 1}) {
            if (c[candidate] <= c[0] && c[candidate] <= c[1] && c[candidate] <= c[2]) {
                return candidate;
            }
        }
        return 0;
    }

    static bool NearZero(S inValue) { return std::fabs(Plain(inValue)) < 0.0001f; }

    // The sector, then +6 and /6 in double with one rounding at the end.
    static S HueOf(const S (&c)[3], int inLargest, S inSpread)
    {
        S sixths = (c[(inLargest + 1) % 3] - c[(inLargest + 2) % 3]) / inSpread;
        if (inLargest != 0) {
            sixths = sixths + S(inLargest == 1 ? 2.0f : 4.0f);
        }
        D wide(sixths);
        if (Plain(wide) < 0) {
            wide = wide + D(6.0);
        }
        return S(wide / D(6.0));
    }

    static Polar HsvOfRgb(S r, S g, S b)
    {
        const S c[] = {r, g, b};
        const int most = LargestStrictly(c);
        Polar hsv{S(0.0f), S(0.0f), c[most], false, false};
        if (NearZero(hsv.level)) {
            return hsv;
        }
        const S spread = c[most] - c[SmallestStrictly(c)];
        hsv.hasSaturation = true;
        hsv.saturation = spread / hsv.level;
        hsv.hasHue = !NearZero(hsv.saturation);
        if (hsv.hasHue) {
            hsv.hue = HueOf(c, most, spread);
        }
        return hsv;
    }

    static Polar HslOfRgb(S r, S g, S b)
    {
        const S c[] = {r, g, b};
        const int most = LargestOrEqual(c);
        const int least = SmallestOrEqual(c);
        Polar hsl{S(0.0f), S(0.0f), (c[most] + c[least]) * S(0.5f), false, false};
        if (NearZero(hsl.level)) {
            return hsl;
        }
        hsl.hasSaturation = true;
        hsl.saturation = c[most] - c[least];
        hsl.hasHue = !NearZero(hsl.saturation);
        if (hsl.hasHue) {
            hsl.hue = HueOf(c, most, hsl.saturation);
        }
        return hsl;
    }

    /// False where R, G and B are untouched.
    static bool RgbOfHsv(S h, S s, S v, Channels& ioRgb)
    {
        if (Plain(s) == 0) {
            ioRgb = {v, v, v};
            return true;
        }
        const S sixths = (Plain(h) == 1 ? S(0.0f) : h) * S(6.0f);
        const float sector = std::floor(Plain(sixths));
        if (!(sector >= 0 && sector <= 5)) {
            return false;
        }
        const S f = sixths - S(sector);
        const S one(1.0f);
        const S p = (one - s) * v;
        const S q = (one - f * s) * v;
        const S t = (one - (one - f) * s) * v;
        const Channels table[] = {{v, t, p}, {q, v, p}, {p, v, t}, {p, q, v}, {t, p, v}, {v, p, q}};
        ioRgb = table[static_cast<int>(sector)];
        return true;
    }

    static Channels RgbOfHsl(S h, S s, S l)
    {
        const Channels black{S(0.0f), S(0.0f), S(0.0f)};
        const S v = Plain(l) <= 0.5f ? (s + S(1.0f)) * l : s + l - s * l;
        if (!(Plain(v) > 0)) {
            return black;
        }
        const S m = S(2.0f) * l - v;
        const S sixths = S(6.0f) * h;
        const float sector = std::trunc(Plain(sixths));
        if (!(sector >= 0 && sector <= 5)) {
            return black;
        }
        const S f = sixths - S(sector);
        const S w = (v - m) / v * v * f;
        const S u = m + w;
        const S z = v - w;
        const Channels table[] = {{v, u, m}, {z, v, m}, {m, v, u}, {m, z, v}, {u, m, v}, {v, m, z}};
        return table[static_cast<int>(sector)];
    }

    static S Unit(unsigned inValue, float inWhole) { return S(static_cast<float>(inValue)) / S(inWhole); }

    static unsigned StoredInDouble(S inValue, float inWhole)
    {
        return static_cast<unsigned>(Cut(D(inValue * S(inWhole)) + D(0.5)));
    }

    static unsigned StoredInSingle(S inValue, float inWhole)
    {
        return static_cast<unsigned>(CutSingle(inValue * S(inWhole) + S(0.5f)));
    }

    static Bytes StoredBytes(const Channels& inRgb)
    {
        const auto low = [](S inValue) { return static_cast<int>(StoredInSingle(inValue, 255.0f) & 0xFFu); };
        return {low(inRgb.r), low(inRgb.g), low(inRgb.b), 0};
    }

    struct PolarBytes
    {
        unsigned hue, saturation, level;
        bool hasHue, hasSaturation;
    };

    static PolarBytes HsvOfBytes(int inR, int inG, int inB)
    {
        const Polar hsv = HsvOfRgb(Unit(static_cast<unsigned>(inR), 255), Unit(static_cast<unsigned>(inG), 255),
                                   Unit(static_cast<unsigned>(inB), 255));
        return {StoredInDouble(hsv.hue, 360), StoredInDouble(hsv.saturation, 100), StoredInDouble(hsv.level, 100),
                hsv.hasHue, hsv.hasSaturation};
    }

    static PolarBytes HslOfBytes(int inR, int inG, int inB)
    {
        const Polar hsl = HslOfRgb(Unit(static_cast<unsigned>(inR), 255), Unit(static_cast<unsigned>(inG), 255),
                                   Unit(static_cast<unsigned>(inB), 255));
        return {StoredInDouble(hsl.hue, 360), StoredInDouble(hsl.saturation, 100), StoredInSingle(hsl.level, 100),
                hsl.hasHue, hsl.hasSaturation};
    }

    static Bytes BytesOfHsv(unsigned inH, unsigned inS, unsigned inV)
    {
        Channels rgb{S(0.0f), S(0.0f), S(0.0f)};
        RgbOfHsv(Unit(inH, 360), Unit(inS, 100), Unit(inV, 100), rgb);
        return StoredBytes(rgb);
    }

    static Bytes BytesOfHsl(unsigned inH, unsigned inS, unsigned inL)
    {
        return StoredBytes(RgbOfHsl(Unit(inH, 360), Unit(inS, 100), Unit(inL, 100)));
    }

    static PolarBytes HsvOfHsl(unsigned inH, unsigned inS, unsigned inL)
    {
        const S saturation = Unit(inS, 100);
        const Channels rgb = RgbOfHsl(Unit(inH, 360), saturation, Unit(inL, 100));
        const S c[] = {rgb.r, rgb.g, rgb.b};
        const S most = c[LargestStrictly(c)];
        const S result = NearZero(most) ? saturation : (most - c[SmallestStrictly(c)]) / most;
        return {inH, StoredInSingle(result, 100), StoredInSingle(most, 100), true, true};
    }

    static PolarBytes HslOfHsv(unsigned inH, unsigned inS, unsigned inV)
    {
        const S saturation = Unit(inS, 100);
        Channels rgb{S(0.0f), S(0.0f), S(0.0f)};
        RgbOfHsv(Unit(inH, 360), saturation, Unit(inV, 100), rgb);
        const Polar hsl = HslOfRgb(rgb.r, rgb.g, rgb.b);
        const S kept = hsl.hasSaturation ? hsl.saturation : saturation;
        return {inH, StoredInSingle(kept, 100), StoredInSingle(hsl.level, 100), true, true};
    }
};

using PlainColors = ColorFormulas<float, double>;
using ExactColors = ColorFormulas<ExactSingle, ExactDouble>;

} // namespace ORLTest
