#include <Media/TimecodeStrings.h>

#include <Core/Wrapping.h>
#include <Media/TimecodeFormats.h>
#include <ORLDebug.h>

#include <tvxmediatypes/Constants.h>

namespace ORL {
namespace TimecodeLocal {

using namespace tvxmediatypes;

namespace {

constexpr std::size_t kReadable = UTF16String::npos;
constexpr int kMaxFields = 4;

// The result of the scan: the sign, whether a separator precedes the first field, and the numbers of the fields. The
// scan computes the same numbers as ParseDigits for each field.
struct ScannedText
{
    bool mIsNegative = false;
    bool mHasLeadSeparator = false;
    int mFieldCount = 1;
    unsigned long long mValues[kMaxFields];
};

// The fields of a label, read from the right, as typed.
struct TypedFields
{
    long long mFrames = 0;
    int mSeconds = 0;
    int mMinutes = 0;
    int mHours = 0;
};

// Reads the fields between inUnit and inEnd. Returns the first unit that it cannot parse, or null.
const unsigned short* ScanFields(const unsigned short* inUnit, const unsigned short* inEnd, TimeDisplay inTimeDisplay,
                                 ScannedText& outText)
{
    int field = 0;
    unsigned long long value = 0;
    bool afterSeparator = false;
    for (; inUnit != inEnd; ++inUnit) {
        if (IsDigit(*inUnit)) {
            value = value * 10 + (*inUnit - unsigned{'0'});
            afterSeparator = false;
            if (field == kMaxFields) {
                return inUnit;
            }
            continue;
        }
        // A plain frame count allows only the leading separator.
        if (!IsSeparator(*inUnit) || afterSeparator || inTimeDisplay == kTimeDisplay_Frames) {
            return inUnit;
        }
        outText.mValues[field++] = value;
        value = 0;
        afterSeparator = true;
    }
    if (field == kMaxFields) {
        return inEnd - 1; // the text has a fifth field, possibly empty
    }
    outText.mValues[field] = value;
    outText.mFieldCount = field + 1;
    return nullptr;
}

// Returns the index where reading stops, or kReadable.
std::size_t ScanSMPTE(const UTF16String& inText, TimeDisplay inTimeDisplay, ScannedText& outText)
{
    const unsigned short* const begin = inText.data();
    const unsigned short* const end = begin + inText.size();
    const unsigned short* unit = begin;
    if (unit != end && (*unit == '-' || *unit == '+')) {
        outText.mIsNegative = *unit == '-';
        ++unit;
    }
    if (unit != end && IsSeparator(*unit)) {
        outText.mHasLeadSeparator = true;
        ++unit;
    }
    const unsigned short* const stop = unit != end ? ScanFields(unit, end, inTimeDisplay, outText) : end;
    return stop != nullptr ? static_cast<std::size_t>(stop - begin) : kReadable;
}

// Converts a lone number that counts frames. The frame for inPreviousFrame is added before the sign is applied.
TickTime CountToTime(unsigned long long inCount, const FrameRate& inFrameRate, bool inPreviousFrame, bool inIsNegative)
{
    TickTime time(static_cast<long long>(inCount), inFrameRate);
    if (inPreviousFrame) {
        time.AddFrames(1, inFrameRate);
    }
    return inIsNegative ? -time : time;
}

// Returns 10 to the power of the number of digits in the rate's frame field.
unsigned long long ShorthandBase(const FrameRate& inRate)
{
    if (inRate > FrameRate(10000.0)) {
        return 100000;
    }
    if (inRate > FrameRate(1000.0)) {
        return 10000;
    }
    return inRate > FrameRate(100.0) ? 1000 : 100;
}

// Converts a typed field of any length, wrapped to 32 bits.
int ToField(unsigned long long inValue)
{
    return static_cast<int>(static_cast<unsigned>(inValue));
}

// Splits a run of digits into fields, from the right.
TypedFields SplitShorthand(unsigned long long inValue, const FrameRate& inRate)
{
    const unsigned long long base = ShorthandBase(inRate);
    TypedFields fields;
    fields.mFrames = static_cast<long long>(inValue);
    if (inValue < base) {
        return fields;
    }
    fields.mFrames = static_cast<long long>(inValue % base);
    const unsigned long long fromSeconds = inValue / base;
    if (fromSeconds < 100) {
        fields.mSeconds = ToField(fromSeconds);
        return fields;
    }
    fields.mSeconds = ToField(fromSeconds % 100);
    const unsigned long long fromMinutes = fromSeconds / 100;
    if (fromMinutes < 100) {
        fields.mMinutes = ToField(fromMinutes);
        return fields;
    }
    fields.mMinutes = ToField(fromMinutes % 100);
    fields.mHours = ToField(fromMinutes / 100);
    return fields;
}

TypedFields ReadFields(const ScannedText& inText)
{
    const int count = inText.mFieldCount;
    TypedFields fields;
    fields.mFrames = static_cast<long long>(inText.mValues[count - 1]);
    fields.mSeconds = count > 1 ? ToField(inText.mValues[count - 2]) : 0;
    fields.mMinutes = count > 2 ? ToField(inText.mValues[count - 3]) : 0;
    fields.mHours = count > 3 ? ToField(inText.mValues[count - 4]) : 0;
    return fields;
}

FrameRate NominalRate(const FrameRate& inRate)
{
    if (inRate == kFrameRate_VideoNTSC) {
        return kFrameRate_Video30;
    }
    if (inRate == kFrameRate_VideoNTSC_HD) {
        return kFrameRate_Video60;
    }
    return inRate == kFrameRate_23976 ? kFrameRate_Film24 : inRate;
}

// Returns true if the frames must carry into the seconds; a count equal to the rate does not carry.
bool Overflows(long long inFrames, const FrameRate& inRate)
{
    // Fast path, since the frame field rarely overflows: frames whose ticks make at most one second do not exceed the
    // rate.
    constexpr long long kFewFrames = 1000000;
    constexpr long long kFewTicks = 1000000000000;
    const long long ticks = inRate.GetTicksPerFrame();
    if (inFrames < 0) {
        return false; // the typed number exceeds 63 bits
    }
    if (inFrames <= kFewFrames && ticks > 0 && ticks <= kFewTicks && inFrames * ticks <= kTicksPerSecond) {
        return false;
    }
    return static_cast<double>(inFrames) > inRate.GetValue() && inRate.GetValue() >= 1;
}

void CarryFrames(TypedFields& ioFields, const FrameRate& inRate)
{
    if (!Overflows(ioFields.mFrames, inRate)) {
        return;
    }
    const FrameRate frameRate = NominalRate(inRate);
    const int count = Wrapping::TruncateToInt(static_cast<double>(ioFields.mFrames) / frameRate.GetValue());
    ioFields.mFrames = Wrapping::Subtract(ioFields.mFrames, count * frameRate.GetTruncatedValue());
    ioFields.mSeconds = Wrapping::Add(ioFields.mSeconds, count);
    // If the rate has no separate nominal rate, the remaining frames may exceed one second.
    ORL_ASSERT_MESSAGE_AT(!Overflows(ioFields.mFrames, frameRate),
                          "!(frames > frameRate.GetValue() && frameRate.GetValue() >= 1)", "", "Timecode", __LINE__,
                          "ORL::`anonymous-namespace'::SMPTEStringToTime");
}

// Carries seconds and minutes, and reduces the hours to one day.
void CarrySeconds(TypedFields& ioFields)
{
    if (ioFields.mSeconds > 59) {
        const int count = ioFields.mSeconds / 60;
        ioFields.mMinutes = Wrapping::Add(ioFields.mMinutes, count);
        ioFields.mSeconds -= 60 * count;
    }
    if (ioFields.mMinutes > 59) {
        const int count = ioFields.mMinutes / 60;
        ioFields.mHours = Wrapping::Add(ioFields.mHours, count);
        ioFields.mMinutes -= 60 * count;
    }
    if (ioFields.mHours > 23) {
        ioFields.mHours %= 24;
    }
}

} // namespace

TickTime SMPTEStringToTime(const UTF16String& inText, const FrameRate& inFrameRate, TimeDisplay inTimeDisplay,
                           bool inPreviousFrame)
{
    ScannedText text;
    if (ScanSMPTE(inText, inTimeDisplay, text) != kReadable) {
        return kTime_Invalid;
    }
    if (text.mFieldCount == 1 && (text.mHasLeadSeparator || inTimeDisplay == kTimeDisplay_Frames)) {
        return CountToTime(text.mValues[0], inFrameRate, inPreviousFrame, text.mIsNegative);
    }
    const FrameRate workingRate = inTimeDisplay == kTimeDisplay_AudioMsTimecode
                                      ? GetFrameRateForDisplayMode(inTimeDisplay, inFrameRate)
                                      : inFrameRate;
    TypedFields fields = text.mFieldCount == 1 ? SplitShorthand(text.mValues[0], workingRate) : ReadFields(text);
    CarryFrames(fields, workingRate);
    CarrySeconds(fields);
    TickTime time = HMSFToTime(fields.mHours, fields.mMinutes, fields.mSeconds, fields.mFrames, text.mIsNegative,
                               inFrameRate, inTimeDisplay);
    if (inPreviousFrame) {
        // Here the sign is applied first, so a negative entry ends one frame closer to zero.
        time.AddFrames(1, inFrameRate);
    }
    return time;
}

std::size_t FindUnreadableInSMPTE(const UTF16String& inText, TimeDisplay inTimeDisplay)
{
    ScannedText text;
    return ScanSMPTE(inText, inTimeDisplay, text);
}

} // namespace TimecodeLocal
} // namespace ORL
