#include <TimecodeImpl.h>

#include <TimecodeFormats.h>
#include <TimecodeStrings.h>
#include <Wrapping.h>

#include <array>

namespace ORL {

namespace {

constexpr int kMaxIntUnits = 11;   // sign and ten digits
constexpr int kMaxInt64Units = 20; // sign and nineteen digits; 2^63 has as many

// "00" to "99".
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

// Builds a text on the stack, so that the string is allocated once and at its size.
class TextBuilder
{
public:
    void Append(char inUnit) { *mEnd++ = static_cast<unsigned short>(inUnit); }

    // For numbers from 0 to 99.
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
        // What an unsigned holds is divided faster, and most numbers are short.
        constexpr unsigned long long kBillion = 1000000000;
        if (magnitude >= kBillion) {
            AppendNumber(static_cast<long long>(magnitude / kBillion));
            AppendDigits(static_cast<unsigned>(magnitude % kBillion), 9);
        } else {
            const auto number = static_cast<unsigned>(magnitude);
            AppendDigits(number, CountDigits(number));
        }
    }

    // A number of exactly so many digits.
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

    // A field of the clock: two digits, where leading zeros are wanted.
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

    // One zero for each power of ten up to 10^inDigits that the value lies below. More than four digits get none.
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
    // Below a billion.
    static int CountDigits(unsigned inValue)
    {
        int digits = 1;
        for (unsigned limit = 10; inValue >= limit && digits < 9; limit *= 10) {
            ++digits;
        }
        return digits;
    }

    static unsigned short* PutPair(unsigned short* outUnits, unsigned inValue)
    {
        outUnits[0] = kPairs[2 * inValue];
        outUnits[1] = kPairs[2 * inValue + 1];
        return outUnits;
    }

    // sign, three fields with a zero and a separator each, four zeros and the frames
    unsigned short mUnits[1 + 3 * (1 + kMaxIntUnits + 1) + 4 + kMaxInt64Units];
    unsigned short* mEnd = mUnits;
};

// The sign that stands before the text. Plain frame counts and feet bring their own minus.
void AppendSign(TextBuilder& ioText, const Timecode::PrivateImpl& inImpl)
{
    if (!inImpl.mStyle.mShowSign) {
        return;
    }
    const bool bringsMinus =
        inImpl.mTimeDisplay == tvxmediatypes::kTimeDisplay_Frames || TimecodeLocal::IsFeetFrames(inImpl.mTimeDisplay);
    if (inImpl.mTime > tvxmediatypes::kTime_Zero) {
        ioText.Append('+');
    } else if (inImpl.mTime < tvxmediatypes::kTime_Zero && !bringsMinus) {
        ioText.Append('-');
    }
}

// Film runs at few rates, and a division by a constant is a multiplication.
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

template <int kFramesPerFoot>
void AppendFeetFrames(TextBuilder& ioText, const Timecode::PrivateImpl& inImpl)
{
    const long long count = CountFilmFrames(inImpl.mTime, inImpl.mFrameRate);
    int feet = static_cast<int>(Wrapping::Bits(count / kFramesPerFoot));
    int frames = static_cast<int>(count % kFramesPerFoot);
    if (inImpl.mTime < tvxmediatypes::kTime_Zero) {
        ioText.Append('-');
        feet = Wrapping::Negate(feet);
        frames = -frames;
    }
    ioText.AppendNumber(feet);
    ioText.Append('+');
    if (frames >= 0) {
        ioText.AppendPair(static_cast<unsigned>(frames));
        return;
    }
    // A negative rate counts against the time.
    if (frames > -10) {
        ioText.Append('0');
    }
    ioText.AppendNumber(frames);
}

// A negative time without a sign counts back from midnight on the hours alone.
int ShownHours(const Timecode::PrivateImpl& inImpl)
{
    const int hours = inImpl.mHours % 24;
    return !inImpl.mStyle.mShowSign && inImpl.mTime < tvxmediatypes::kTime_Zero ? 23 - hours : hours;
}

void AppendClock(TextBuilder& ioText, const Timecode::PrivateImpl& inImpl)
{
    const bool leadingZeros = !inImpl.mStyle.mNoLeadingZeros;
    const char separator = TimecodeLocal::IsDropFrame(inImpl.mTimeDisplay) ? ';' : ':';
    if (inImpl.mStyle.mHoursMode == 1) {
        ioText.AppendField(ShownHours(inImpl), leadingZeros);
        ioText.Append(separator);
    }
    ioText.AppendField(inImpl.mMinutes, leadingZeros);
    ioText.Append(separator);
    ioText.AppendField(inImpl.mSeconds, leadingZeros);
    ioText.Append(inImpl.mTimeDisplay == tvxmediatypes::kTimeDisplay_AudioMsTimecode ? '.' : separator);
    ioText.AppendFrames(inImpl.mFrames, leadingZeros ? inImpl.mFrameDigits : 0);
}

} // namespace

UTF16String Timecode::PrivateImpl::GetString() const
{
    TextBuilder text;
    AppendSign(text, *this);
    if (mTimeDisplay == tvxmediatypes::kTimeDisplay_Frames) {
        text.AppendNumber(mTime.ToFrame64(mFrameRate));
    } else if (mTimeDisplay == tvxmediatypes::kTimeDisplay_16mmFeetFrames) {
        AppendFeetFrames<40>(text, *this);
    } else if (mTimeDisplay == tvxmediatypes::kTimeDisplay_35mmFeetFrames) {
        AppendFeetFrames<16>(text, *this);
    } else {
        AppendClock(text, *this);
    }
    return text.GetText();
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
