#include <Media/TimecodeStrings.h>

#include <Media/TimecodeFormats.h>

#include <tvxmediatypes/Constants.h>

namespace ORL {
namespace TimecodeLocal {

using namespace tvxmediatypes;

namespace {

constexpr std::size_t kReadable = UTF16String::npos;

// The positions of feet and frames in a string without its sign.
struct FeetFramesText
{
    bool mIsNegative = false;
    const unsigned short* mFeetBegin = nullptr;
    const unsigned short* mFeetEnd = nullptr;
    const unsigned short* mFramesBegin = nullptr;
    const unsigned short* mFramesEnd = nullptr;
};

constexpr bool IsFeetSeparator(unsigned short inUnit)
{
    return IsSeparator(inUnit) || inUnit == '+';
}

// Splits a lone number of up to eight digits: the last two are the frames.
const unsigned short* SplitLoneNumber(const unsigned short* inBegin, const unsigned short* inEnd,
                                      FeetFramesText& outText)
{
    constexpr std::ptrdiff_t kFrameDigits = 2;
    constexpr std::ptrdiff_t kMaxDigits = 8;
    const std::ptrdiff_t count = inEnd - inBegin;
    if (count > kMaxDigits) {
        return inBegin + kMaxDigits;
    }
    outText.mFramesBegin = count > kFrameDigits ? inEnd - kFrameDigits : inBegin;
    outText.mFeetEnd = outText.mFramesBegin;
    return nullptr;
}

// Returns the first unit that it cannot parse, or null.
const unsigned short* ScanFields(const unsigned short* inBegin, const unsigned short* inEnd, FeetFramesText& outText)
{
    outText.mFeetBegin = inBegin;
    outText.mFramesBegin = outText.mFramesEnd = inEnd;
    int fieldCount = 1;
    bool afterSeparator = false;
    for (const unsigned short* unit = inBegin; unit != inEnd; ++unit) {
        if (IsFeetSeparator(*unit)) {
            if (afterSeparator) {
                return unit;
            }
            // Each separator moves the end of the feet, even one after the second field.
            outText.mFeetEnd = unit;
            afterSeparator = true;
            continue;
        }
        if (!IsDigit(*unit) || (afterSeparator && fieldCount == 2)) {
            return unit;
        }
        if (afterSeparator) {
            ++fieldCount;
            outText.mFramesBegin = unit;
            afterSeparator = false;
        }
    }
    if (afterSeparator) {
        outText.mFramesBegin = inEnd; // the text ends in a separator, so all digits are feet
        return nullptr;
    }
    return fieldCount == 1 ? SplitLoneNumber(inBegin, inEnd, outText) : nullptr;
}

std::size_t ScanFeetFrames(const UTF16String& inText, FeetFramesText& outText)
{
    const unsigned short* const begin = inText.data();
    const unsigned short* unit = begin;
    if (!inText.empty() && (*unit == '-' || *unit == '+')) {
        outText.mIsNegative = *unit == '-';
        ++unit;
    }
    const unsigned short* const stop = ScanFields(unit, begin + inText.size(), outText);
    return stop != nullptr ? static_cast<std::size_t>(stop - begin) : kReadable;
}

unsigned long long Value(const unsigned short* inBegin, const unsigned short* inEnd)
{
    return ParseDigits(inBegin, static_cast<std::size_t>(inEnd - inBegin));
}

} // namespace

TickTime FeetFramesStringToTime(const UTF16String& inText, const FrameRate& inFrameRate, TimeDisplay inTimeDisplay,
                                bool inPreviousFrame)
{
    FeetFramesText text;
    if (ScanFeetFrames(inText, text) != kReadable) {
        return kTime_Invalid;
    }
    const auto framesPerFoot = static_cast<unsigned long long>(FramesPerFoot(inTimeDisplay));
    const unsigned long long count =
        framesPerFoot * Value(text.mFeetBegin, text.mFeetEnd) + Value(text.mFramesBegin, text.mFramesEnd);
    TickTime time(static_cast<long long>(count), inFrameRate);
    if (inPreviousFrame) {
        time.AddFrames(1, inFrameRate);
    }
    return text.mIsNegative ? -time : time;
}

std::size_t FindUnreadableInFeetFrames(const UTF16String& inText)
{
    FeetFramesText text;
    return ScanFeetFrames(inText, text);
}

} // namespace TimecodeLocal
} // namespace ORL
