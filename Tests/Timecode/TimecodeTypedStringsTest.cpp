// Checks a million typed strings against an independent implementation of the entry rules, which splits a string into
// pieces and computes in ticks; the library scans once and computes in frames.
#include <ORLTimecode.h>

#include "TypedStringGrammar.h"
#include <CheckRecorder.h>
#include <TextHelpers.h>

#include <cmath>
#include <cstdint>
#include <gtest/gtest.h>
#include <limits>
#include <optional>
#include <string>
#include <vector>

using namespace ORL;
using tvxmediatypes::FrameRate;
using tvxmediatypes::TickTime;
using tvxmediatypes::TimeDisplay;

namespace {

using Ticks = std::int64_t;
using Count = std::uint64_t; // unsigned, so that it wraps by definition

constexpr Ticks kSecond = 705600000;
constexpr Ticks kDay = 86400 * kSecond;

// ---- numbers

Count Number(const std::u16string& inText)
{
    Count value = 0;
    for (const char16_t unit : inText) {
        if (unit >= u'0' && unit <= u'9') {
            value = value * 10 + Count(unit - u'0');
        }
    }
    return value;
}

std::int32_t Narrow(Count inValue)
{
    return static_cast<std::int32_t>(static_cast<std::uint32_t>(inValue));
}

std::int32_t Sum(std::int32_t inLeft, std::int32_t inRight)
{
    return Narrow(Count(inLeft) + Count(inRight));
}

std::int32_t Product(std::int32_t inLeft, std::int32_t inRight)
{
    return Narrow(Count(inLeft) * Count(inRight));
}

Ticks Times(Count inFrames, Ticks inTicksPerFrame)
{
    return static_cast<Ticks>(inFrames * Count(inTicksPerFrame));
}

Ticks Plus(Ticks inLeft, Ticks inRight)
{
    return static_cast<Ticks>(Count(inLeft) + Count(inRight));
}

Ticks Negated(Ticks inTicks)
{
    return static_cast<Ticks>(Count(0) - Count(inTicks));
}

// ---- formats

bool IsFeet(int inDisplay)
{
    return inDisplay == 111 || inDisplay == 112;
}

FrameRate ConversionRate(int inDisplay, const FrameRate& inOwn)
{
    using namespace tvxmediatypes;
    switch (inDisplay) {
    case 100: return kFrameRate_Film24;
    case 101: return kFrameRate_VideoPAL;
    case 102:
    case 103: return kFrameRate_VideoNTSC;
    case 104: return kFrameRate_Video30;
    case 105: return kFrameRate_VideoPAL_HD;
    case 106:
    case 107: return kFrameRate_VideoNTSC_HD;
    case 108: return kFrameRate_Video60;
    case 110: return kFrameRate_23976;
    case 201: return FrameRate(1000.0);
    default: return inOwn;
    }
}

// ---- text in pieces

struct Pieces
{
    bool mIsNegative = false;
    bool mHasLead = false;
    std::vector<std::u16string> mFields;
};

bool IsSeparator(char16_t inUnit, bool inIsFeet)
{
    return inUnit == u':' || inUnit == u';' || inUnit == u'.' || (inIsFeet && inUnit == u'+');
}

// Splits at every separator. Returns nothing if a unit is neither digit nor separator, or if two separators are
// adjacent.
std::optional<std::vector<std::u16string>> Cut(const std::u16string& inText, bool inIsFeet)
{
    std::vector<std::u16string> fields(1);
    for (std::size_t i = 0; i < inText.size(); ++i) {
        if (IsSeparator(inText[i], inIsFeet)) {
            if (i > 0 && IsSeparator(inText[i - 1], inIsFeet)) {
                return std::nullopt;
            }
            fields.emplace_back();
        } else if (inText[i] >= u'0' && inText[i] <= u'9') {
            fields.back() += inText[i];
        } else {
            return std::nullopt;
        }
    }
    return fields;
}

std::u16string TakeSign(std::u16string inText, bool& outIsNegative)
{
    outIsNegative = !inText.empty() && inText[0] == u'-';
    const bool hasSign = !inText.empty() && (inText[0] == u'-' || inText[0] == u'+');
    return hasSign ? inText.substr(1) : inText;
}

// ---- feet and frames

std::optional<Ticks> ReadFeet(const std::u16string& inText, int inDisplay, const FrameRate& inRate, bool inPrevious)
{
    bool isNegative = false;
    const std::u16string text = TakeSign(inText, isNegative);
    const auto fields = Cut(text, true);
    if (!fields) {
        return std::nullopt;
    }
    Count feet = 0;
    Count frames = 0;
    const bool endsOnSeparator = fields->size() > 1 && fields->back().empty();
    const std::size_t filled = fields->size() - (endsOnSeparator ? 1 : 0);
    if (filled > 2) {
        return std::nullopt;
    }
    if (endsOnSeparator) {
        feet = Number(text.substr(0, text.size() - 1));
    } else if (filled == 2) {
        feet = Number((*fields)[0]);
        frames = Number((*fields)[1]);
    } else if (text.size() <= 2) {
        frames = Number(text);
    } else if (text.size() <= 8) {
        feet = Number(text.substr(0, text.size() - 2));
        frames = Number(text.substr(text.size() - 2));
    } else {
        return std::nullopt;
    }
    const Count perFoot = inDisplay == 112 ? 16 : 40;
    Ticks time = Times(perFoot * feet + frames, inRate.GetTicksPerFrame());
    time = inPrevious ? Plus(time, inRate.GetTicksPerFrame()) : time;
    return isNegative ? Negated(time) : time;
}

// ---- hours, minutes, seconds, frames

struct Label
{
    std::int32_t mHours = 0;
    std::int32_t mMinutes = 0;
    std::int32_t mSeconds = 0;
    std::int64_t mFrames = 0;
};

// Splits the digits of a single number: the frames take as many as the rate needs, each other field takes two.
Label SplitDigits(Count inValue, const FrameRate& inRate)
{
    Count base = 100;
    for (const double limit : {100.0, 1000.0, 10000.0}) {
        base = inRate > FrameRate(limit) ? base * 10 : base;
    }
    Label label;
    label.mFrames = static_cast<std::int64_t>(inValue < base ? inValue : inValue % base);
    Count rest = inValue < base ? 0 : inValue / base;
    label.mSeconds = Narrow(rest < 100 ? rest : rest % 100);
    rest = rest < 100 ? 0 : rest / 100;
    label.mMinutes = Narrow(rest < 100 ? rest : rest % 100);
    label.mHours = Narrow(rest < 100 ? 0 : rest / 100);
    return label;
}

Label FromFields(const std::vector<std::u16string>& inFields)
{
    Count values[4] = {0, 0, 0, 0}; // in the order frames, seconds, minutes, hours
    for (std::size_t i = 0; i < inFields.size(); ++i) {
        values[i] = Number(inFields[inFields.size() - 1 - i]);
    }
    return Label{Narrow(values[3]), Narrow(values[2]), Narrow(values[1]), static_cast<std::int64_t>(values[0])};
}

FrameRate Nominal(const FrameRate& inRate)
{
    using namespace tvxmediatypes;
    if (inRate == kFrameRate_VideoNTSC) {
        return kFrameRate_Video30;
    }
    if (inRate == kFrameRate_VideoNTSC_HD) {
        return kFrameRate_Video60;
    }
    return inRate == kFrameRate_23976 ? kFrameRate_Film24 : inRate;
}

// Converts like the processor: a double that does not fit becomes the lowest number.
std::int32_t ToInt32(double inValue)
{
    const bool fits = inValue > -2147483649.0 && inValue < 2147483648.0;
    return fits ? static_cast<std::int32_t>(inValue) : (std::numeric_limits<std::int32_t>::min)();
}

// Returns true if the frames still exceed the rate, which is reported.
bool CarryFrames(Label& ioLabel, FrameRate inRate)
{
    const auto isOver = [&] {
        return static_cast<double>(ioLabel.mFrames) > inRate.GetValue() && inRate.GetValue() >= 1.0;
    };
    if (!isOver()) {
        return false;
    }
    inRate = Nominal(inRate);
    const std::int32_t seconds = ToInt32(static_cast<double>(ioLabel.mFrames) / inRate.GetValue());
    const std::int64_t perSecond = static_cast<std::int64_t>(inRate.GetValue());
    ioLabel.mFrames = static_cast<std::int64_t>(Count(ioLabel.mFrames) - Count(seconds) * Count(perSecond));
    ioLabel.mSeconds = Sum(ioLabel.mSeconds, seconds);
    return isOver();
}

void CarrySixties(std::int32_t& ioLow, std::int32_t& ioHigh)
{
    if (ioLow > 59) {
        ioHigh = Sum(ioHigh, ioLow / 60);
        ioLow %= 60;
    }
}

// Frames are counted in 64 bits throughout.
Count DropFrames(const Label& inLabel, bool inIsHD, bool& outReports)
{
    const std::int64_t scale = inIsHD ? 2 : 1;
    const std::int64_t hours = inLabel.mHours;
    const std::int64_t seconds = inLabel.mSeconds;
    const std::int64_t tens = inLabel.mMinutes / 10;
    const std::int64_t ones = inLabel.mMinutes % 10;
    const std::int64_t blocks = (hours * 107892 + tens * 17982) * scale;
    if (ones == 0) {
        return Count(blocks + seconds * 30 * scale) + Count(inLabel.mFrames);
    }
    const std::int64_t minute = blocks + (1800 + (ones - 1) * 1798) * scale;
    if (seconds != 0) {
        return Count(minute + ((seconds - 1) * 30 + 28) * scale) + Count(inLabel.mFrames);
    }
    if (inLabel.mFrames <= 0) {
        return Count(minute);
    }
    outReports = outReports || inLabel.mFrames == 1;
    return Count(minute) + Count(inLabel.mFrames) - Count(2 * scale);
}

// Converts like Windows: a double that is too large becomes 2^63.
Count ToCount(double inValue)
{
    return inValue < 18446744073709551616.0 ? static_cast<Count>(inValue) : Count(1) << 63;
}

Count FramesOf(const Label& inLabel, int inDisplay, const FrameRate& inRate, bool& outReports)
{
    const std::int32_t seconds = Sum(Product(Sum(Product(inLabel.mHours, 60), inLabel.mMinutes), 60), inLabel.mSeconds);
    const Count wide = Count(static_cast<std::int64_t>(seconds));
    switch (inDisplay) {
    case 102: return DropFrames(inLabel, false, outReports);
    case 106: return DropFrames(inLabel, true, outReports);
    case 103: return wide * 30 + Count(inLabel.mFrames);
    case 107: return wide * 60 + Count(inLabel.mFrames);
    case 110: return wide * 24 + Count(inLabel.mFrames);
    default: return ToCount(static_cast<double>(wide) * inRate.GetValue()) + Count(inLabel.mFrames);
    }
}

// Subtracts days from a time above a day. Also subtracts days from a time below minus a day, until the count wraps.
Ticks Fold(Ticks inTime)
{
    if (inTime > kDay) {
        return inTime - (inTime - kDay + kDay - 1) / kDay * kDay;
    }
    if (inTime < -kDay) {
        const Count toTheEnd = Count(inTime) - Count((std::numeric_limits<Ticks>::min)());
        return static_cast<Ticks>(Count(inTime) - (toTheEnd / Count(kDay) + 1) * Count(kDay));
    }
    return inTime;
}

std::optional<Ticks> ReadLabel(const std::u16string& inText, int inDisplay, const FrameRate& inRate, bool inPrevious,
                               bool& outReports)
{
    bool isNegative = false;
    std::u16string text = TakeSign(inText, isNegative);
    const bool hasLead = !text.empty() && IsSeparator(text[0], false);
    text = hasLead ? text.substr(1) : text;
    if (text.empty()) {
        return std::nullopt;
    }
    const auto fields = Cut(text, false);
    if (!fields || fields->size() > (inDisplay == 109 ? 1u : 4u)) {
        return std::nullopt;
    }
    const Ticks frame = inRate.GetTicksPerFrame();
    const bool isLone = fields->size() == 1;
    if (isLone && (hasLead || inDisplay == 109)) {
        const Ticks time = Plus(Times(Number(text), frame), inPrevious ? frame : 0);
        return isNegative ? Negated(time) : time;
    }
    const FrameRate working = inDisplay == 201 ? FrameRate(1000.0) : inRate;
    Label label = isLone ? SplitDigits(Number(text), working) : FromFields(*fields);
    outReports = CarryFrames(label, working);
    CarrySixties(label.mSeconds, label.mMinutes);
    CarrySixties(label.mMinutes, label.mHours);
    label.mHours = label.mHours > 23 ? label.mHours % 24 : label.mHours;

    const FrameRate rate = ConversionRate(inDisplay, inRate);
    Ticks time = Times(FramesOf(label, inDisplay, rate, outReports), rate.GetTicksPerFrame());
    time = Fold(isNegative ? Negated(time) : time);
    return inPrevious ? Plus(time, frame) : time;
}

struct Reading
{
    std::optional<Ticks> mTicks; // nothing if the string cannot be parsed
    bool mReports = false;       // an assertion is reported
};

Reading Read(const UTF16String& inText, int inDisplay, const FrameRate& inRate, bool inPrevious)
{
    Reading reading;
    const std::u16string text(inText.begin(), inText.end());
    if (text.empty()) {
        reading.mTicks = 0;
    } else if (IsFeet(inDisplay)) {
        reading.mTicks = ReadFeet(text, inDisplay, inRate, inPrevious);
    } else {
        reading.mTicks = ReadLabel(text, inDisplay, inRate, inPrevious, reading.mReports);
    }
    return reading;
}

std::string Describe(const ORLTest::TypedStringGrammar::Typed& inTyped)
{
    return "'" + ORLTest::Show(inTyped.mText) + "' in format " + std::to_string(inTyped.mDisplay) + " at "
           + std::to_string(inTyped.mRate.GetValue()) + (inTyped.mPreviousFrame ? ", previous frame" : "");
}

} // namespace

TEST(TimecodeTypedStrings, AMillionTexts_AreReadAsTheSecondReadingDoes)
{
    ORLTest::TypedStringGrammar grammar(20240229);
    ORLTest::CheckRecorder recorder;
    int readable = 0;
    int wrong = 0;
    for (int i = 0; i < 1000000 && wrong < 20; ++i) {
        const ORLTest::TypedStringGrammar::Typed typed = grammar.Next();
        const Reading expected = Read(typed.mText, typed.mDisplay, typed.mRate, typed.mPreviousFrame);
        const TickTime time = Timecode::StringToTime(typed.mText, typed.mRate, typed.mDisplay, typed.mPreviousFrame);
        const Ticks wanted = expected.mTicks ? *expected.mTicks : tvxmediatypes::kTime_Invalid.GetTicks();
        const bool reported = !recorder.Reports().empty();
        if (time.GetTicks() != wanted || reported != expected.mReports) {
            ++wrong;
            ADD_FAILURE() << Describe(typed) << " gives " << time.GetTicks() << (reported ? " and reports" : "")
                          << ", expected " << wanted << (expected.mReports ? " and a report" : "");
        }
        const bool isReadable = Timecode::FindUnreadable(typed.mText, typed.mDisplay) == UTF16String::npos;
        EXPECT_EQ(expected.mTicks.has_value(), isReadable) << Describe(typed);
        readable += expected.mTicks.has_value() ? 1 : 0;
        recorder.Clear();
    }
    EXPECT_GT(readable, 200000) << "most of what the grammar gives must not be junk";
    EXPECT_LT(readable, 900000) << "junk must come too";
}
