#include <Media/TimecodeImpl.h>

#include <Core/Wrapping.h>
#include <Media/TimecodeFormats.h>
#include <Media/TimecodeStrings.h>

#include <array>
#include <cstring>

namespace ORL {

namespace {

constexpr int kMaxIntUnits = 11;   // sign and ten digits
constexpr int kMaxInt64Units = 20; // sign and nineteen digits, also for 2^63

// Returns the digits of the numbers "00" to "99".
constexpr std::array<unsigned short, 200> MakePairs()
{
    std::array<unsigned short, 200> pairs{};
    for (unsigned i = 0; i < 100; ++i) {
        pairs[2 * i] = static_cast<unsigned short>('0' + i / 10);
        pairs[2 * i + 1] = static_cast<unsigned short>('0' + i % 10);
    }
    return pairs;
}

constexpr std::array<unsigned short, 200> kPairs = MakePairs();

// Writes a number from 0 to 99; copies both units at once.
unsigned short* PutPair(unsigned short* outUnits, unsigned inValue)
{
    std::memcpy(outUnits, &kPairs[2 * inValue], 2 * sizeof(unsigned short));
    return outUnits;
}

// Builds the text on the stack, so that the string is allocated once, with its final size.
class TextBuilder
{
public:
    void Append(char inUnit) { *mEnd++ = static_cast<unsigned short>(inUnit); }

    // Appends a number from 0 to 99.
    void AppendPair(unsigned inValue)
    {
        PutPair(mEnd, inValue);
        mEnd += 2;
    }

    void AppendNumber(long long inValue)
    {
        if (inValue < 0) {
            Append('-');
        }
        auto magnitude = Wrapping::Bits(inValue < 0 ? Wrapping::Negate(inValue) : inValue);
        // Division is faster on an unsigned int, and most numbers are short.
        constexpr unsigned long long kBillion = 1000000000;
        if (magnitude >= kBillion) {
            AppendNumber(static_cast<long long>(magnitude / kBillion));
            AppendDigits(static_cast<unsigned>(magnitude % kBillion), 9);
        } else {
            const auto number = static_cast<unsigned>(magnitude);
            AppendDigits(number, CountDigits(number));
        }
    }

    // Appends inValue with exactly inWidth digits.
    void AppendDigits(unsigned inValue, int inWidth)
    {
        unsigned short* digit = mEnd + inWidth;
        while (digit - mEnd >= 2) {
            digit = PutPair(digit - 2, inValue % 100);
            inValue /= 100;
        }
        if (digit != mEnd) {
            *mEnd = static_cast<unsigned short>('0' + inValue);
        }
        mEnd += inWidth;
    }

    // Appends hours, minutes or seconds, with at least two digits if leading zeros are requested.
    void AppendField(int inValue, bool inLeadingZeros)
    {
        if (inLeadingZeros && inValue >= 0 && inValue < 100) {
            AppendPair(static_cast<unsigned>(inValue));
            return;
        }
        if (inLeadingZeros && inValue < 10) {
            Append('0');
        }
        AppendNumber(inValue);
    }

    // Appends inFrames, with one leading zero for each power of ten from 10 to 10^inDigits that exceeds it. Appends no
    // leading zeros if inDigits is above four.
    void AppendFrames(long long inFrames, int inDigits)
    {
        constexpr int kMaxDigits = 4;
        constexpr long long kLimits[kMaxDigits + 1] = {10, 100, 1000, 10000, 100000};
        const int places = inDigits <= kMaxDigits ? inDigits : 0;
        if (inFrames >= 0 && inFrames < kLimits[places]) {
            AppendDigits(static_cast<unsigned>(inFrames), places + 1);
            return;
        }
        for (int i = 0; i < places; ++i) {
            if (inFrames < kLimits[i]) {
                Append('0');
            }
        }
        AppendNumber(inFrames);
    }

    UTF16String GetText() const { return UTF16String(mUnits, static_cast<std::size_t>(mEnd - mUnits)); }

private:
    // inValue must be below a billion.
    static int CountDigits(unsigned inValue)
    {
        int digits = 1;
        for (unsigned limit = 10; inValue >= limit && digits < 9; limit *= 10) {
            ++digits;
        }
        return digits;
    }

    // sign, three fields with a zero and a separator each, four zeros and the frames
    unsigned short mUnits[1 + 3 * (1 + kMaxIntUnits + 1) + 4 + kMaxInt64Units];
    unsigned short* mEnd = mUnits;
};

// Appends the sign before the text. AppendNumber writes the minus sign of a plain frame count.
void AppendSign(TextBuilder& ioText, const Timecode::PrivateImpl& inImpl)
{
    if (!inImpl.mStyle.mShowSign) {
        return;
    }
    const bool bringsMinus = inImpl.mTimeDisplay == tvxmediatypes::kTimeDisplay_Frames;
    if (inImpl.mTime > tvxmediatypes::kTime_Zero) {
        ioText.Append('+');
    } else if (inImpl.mTime < tvxmediatypes::kTime_Zero && !bringsMinus) {
        ioText.Append('-');
    }
}

// Special-cases the common film rates, because a division by a constant compiles to a multiplication.
long long CountFilmFrames(const tvxmediatypes::TickTime& inTime, const tvxmediatypes::FrameRate& inRate)
{
    if (inRate == tvxmediatypes::kFrameRate_Film24) {
        return inTime.ToFrame64(tvxmediatypes::kFrameRate_Film24);
    }
    if (inRate == tvxmediatypes::kFrameRate_23976) {
        return inTime.ToFrame64(tvxmediatypes::kFrameRate_23976);
    }
    if (inRate == tvxmediatypes::kFrameRate_VideoPAL) {
        return inTime.ToFrame64(tvxmediatypes::kFrameRate_VideoPAL);
    }
    return inTime.ToFrame64(inRate);
}

// Computes the count from the bits, because the processor mispredicts a loop over irregular lengths.
std::size_t CountDecimalDigits(unsigned inValue)
{
    constexpr unsigned kPowers[] = {1, 10, 100, 1000, 10000, 100000, 1000000, 10000000, 100000000, 1000000000};
    const unsigned bits = 32u - static_cast<unsigned>(__builtin_clz(inValue | 1u));
    const unsigned atMost = bits * 1233 >> 12; // bits * log10(2), rounded down: the number of digits or one less
    return atMost + (inValue >= kPowers[atMost] || inValue == 0 ? 1 : 0);
}

// Writes the digits of inValue before outEnd.
void PutDigitsBefore(unsigned short* outEnd, unsigned inValue)
{
    for (; inValue >= 100; inValue /= 100) {
        outEnd = PutPair(outEnd - 2, inValue % 100);
    }
    if (inValue >= 10) {
        PutPair(outEnd - 2, inValue);
    } else {
        outEnd[-1] = static_cast<unsigned short>('0' + inValue);
    }
}

// Writes into the string itself: copying from the stack would stall on the units just stored.
inline UTF16String FeetFramesText(bool inIsNegative, bool inHasPlus, int inFeet, int inFrames)
{
    const auto feet = static_cast<unsigned>(inFeet);
    const std::size_t length = (inIsNegative || inHasPlus ? 1 : 0) + CountDecimalDigits(feet) + 3;
    UTF16String text(length, '+');
    unsigned short* const end = text.data() + length;
    PutPair(end - 2, static_cast<unsigned>(inFrames));
    PutDigitsBefore(end - 3, feet);
    if (inIsNegative) {
        text[0] = '-';
    }
    return text;
}

// A negative rate reverses the sign of the count, so both numbers may be negative after the sign.
[[gnu::noinline]] UTF16String NegativeFeetFramesText(bool inIsNegative, bool inHasPlus, int inFeet, int inFrames)
{
    TextBuilder text;
    if (inIsNegative || inHasPlus) {
        text.Append(inIsNegative ? '-' : '+');
    }
    text.AppendNumber(inFeet);
    text.Append('+');
    if (inFrames > -10 && inFrames < 10) {
        text.Append('0');
    }
    text.AppendNumber(inFrames);
    return text.GetText();
}

template <int kFramesPerFoot>
[[gnu::noinline]] UTF16String FeetFrames(const Timecode::PrivateImpl& inImpl)
{
    const long long count = CountFilmFrames(inImpl.mTime, inImpl.mFrameRate);
    int feet = static_cast<int>(Wrapping::Bits(count / kFramesPerFoot));
    int frames = static_cast<int>(count % kFramesPerFoot);
    const bool isNegative = inImpl.mTime < tvxmediatypes::kTime_Zero;
    if (isNegative) {
        feet = Wrapping::Negate(feet);
        frames = -frames;
    }
    const bool hasPlus = inImpl.mStyle.mShowSign && inImpl.mTime > tvxmediatypes::kTime_Zero;
    return feet >= 0 && frames >= 0 ? FeetFramesText(isNegative, hasPlus, feet, frames)
                                    : NegativeFeetFramesText(isNegative, hasPlus, feet, frames);
}

// A negative time displayed without a sign shows 23 minus its hours; the other fields show magnitudes.
int ShownHours(const Timecode::PrivateImpl& inImpl)
{
    const int hours = inImpl.mHours % 24;
    return !inImpl.mStyle.mShowSign && inImpl.mTime < tvxmediatypes::kTime_Zero ? 23 - hours : hours;
}

[[gnu::noinline]] UTF16String ClockText(const Timecode::PrivateImpl& inImpl)
{
    TextBuilder text;
    AppendSign(text, inImpl);
    const bool leadingZeros = !inImpl.mStyle.mNoLeadingZeros;
    const char separator = TimecodeLocal::IsDropFrame(inImpl.mTimeDisplay) ? ';' : ':';
    if (inImpl.mStyle.mHoursMode == 1) {
        text.AppendField(ShownHours(inImpl), leadingZeros);
        text.Append(separator);
    }
    text.AppendField(inImpl.mMinutes, leadingZeros);
    text.Append(separator);
    text.AppendField(inImpl.mSeconds, leadingZeros);
    text.Append(inImpl.mTimeDisplay == tvxmediatypes::kTimeDisplay_AudioMsTimecode ? '.' : separator);
    text.AppendFrames(inImpl.mFrames, leadingZeros ? inImpl.mFrameDigits : 0);
    return text.GetText();
}

[[gnu::noinline]] UTF16String FramesText(const Timecode::PrivateImpl& inImpl)
{
    TextBuilder text;
    AppendSign(text, inImpl);
    text.AppendNumber(inImpl.mTime.ToFrame64(inImpl.mFrameRate));
    return text.GetText();
}

} // namespace

UTF16String Timecode::PrivateImpl::GetString() const
{
    using TimecodeLocal::TimecodeText;
    return TimecodeLocal::VisitFormat(
        mTimeDisplay,
        [this](auto inFormat) {
            constexpr const TimecodeLocal::TimecodeFormat& row = decltype(inFormat)::kRow;
            if constexpr (row.mText == TimecodeText::kFrames) {
                return FramesText(*this);
            } else if constexpr (row.mText == TimecodeText::kFeetFrames) {
                return FeetFrames<row.mFramesPerFoot>(*this);
            } else {
                return ClockText(*this);
            }
        },
        [this] { return ClockText(*this); });
}

namespace TimecodeLocal {

UTF16String IntToString(int inValue)
{
    return Int64ToString(inValue);
}

UTF16String Int64ToString(long long inValue)
{
    TextBuilder text;
    text.AppendNumber(inValue);
    return text.GetText();
}

} // namespace TimecodeLocal

} // namespace ORL
