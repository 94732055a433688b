#include <TimecodeImpl.h>

#include <TimecodeFormats.h>
#include <TimecodeStrings.h>
#include <Wrapping.h>

#include <array>

namespace ORL {

namespace {

constexpr int kMaxIntUnits = 11;   // sign and ten digits
constexpr int kMaxInt64Units = 20; // sign and nineteen digits

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
        *mEnd++ = kPairs[2 * inValue];
        *mEnd++ = kPairs[2 * inValue + 1];
    }

    void AppendNumber(long long inValue)
    {
        if (inValue < 0) {
            Append('-');
        }
        auto magnitude = Wrapping::Bits(inValue < 0 ? Wrapping::Negate(inValue) : inValue);
        unsigned short digits[kMaxInt64Units];
        unsigned short* digit = digits + kMaxInt64Units;
        do {
            *--digit = static_cast<unsigned short>('0' + magnitude % 10);
            magnitude /= 10;
        } while (magnitude != 0);
        while (digit != digits + kMaxInt64Units) {
            *mEnd++ = *digit++;
        }
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
        if (inDigits == 1 && inFrames >= 0 && inFrames < 100) {
            AppendPair(static_cast<unsigned>(inFrames));
            return;
        }
        constexpr int kMaxDigits = 4;
        long long limit = 1;
        for (int i = 0; i < inDigits && inDigits <= kMaxDigits; ++i) {
            limit *= 10;
            if (inFrames < limit) {
                Append('0');
            }
        }
        AppendNumber(inFrames);
    }

    UTF16String GetText() const { return UTF16String(mUnits, static_cast<std::size_t>(mEnd - mUnits)); }

private:
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

void AppendFeetFrames(TextBuilder& ioText, const Timecode::PrivateImpl& inImpl)
{
    const int framesPerFoot = TimecodeLocal::FramesPerFoot(inImpl.mTimeDisplay);
    const long long count = inImpl.mTime.ToFrame64(inImpl.mFrameRate);
    int feet = static_cast<int>(Wrapping::Bits(count / framesPerFoot));
    int frames = static_cast<int>(count % framesPerFoot);
    if (inImpl.mTime < tvxmediatypes::kTime_Zero) {
        ioText.Append('-');
        feet = Wrapping::Negate(feet);
        frames = -frames;
    }
    ioText.AppendNumber(feet);
    ioText.Append('+');
    if (frames > -10 && frames < 10) {
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
    } else if (TimecodeLocal::IsFeetFrames(mTimeDisplay)) {
        AppendFeetFrames(text, *this);
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
