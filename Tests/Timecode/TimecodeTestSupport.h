// Shared helpers for the Timecode tests: string conversion, formats with matching rates, and records of fields.
#pragma once

#include <CheckRecorder.h>
#include <Media/TimecodeFormats.h>
#include <Media/TimecodeImpl.h>
#include <ORLTimecode.h>

#include <tvxcore/Text.h>
#include <tvxmediatypes/Constants.h>

#include <gtest/gtest.h>

#include <ostream>
#include <string>

namespace tvxmediatypes {

// Formats a time for the messages of failed expectations.
inline void PrintTo(const TickTime& inTime, std::ostream* outStream)
{
    *outStream << inTime.GetTicks() << " ticks";
}

inline void PrintTo(const FrameRate& inRate, std::ostream* outStream)
{
    *outStream << inRate.GetValue() << " per second";
}

} // namespace tvxmediatypes

namespace ORLTest {

using namespace tvxmediatypes;
using ORL::Timecode;

inline UTF16String Text(const std::string& inText)
{
    return UTF16String(inText.begin(), inText.end());
}

inline std::string Narrow(const UTF16String& inText)
{
    std::string narrow;
    for (const unsigned short unit : inText) {
        narrow += static_cast<char>(unit);
    }
    return narrow;
}

/// A format with a matching rate.
struct Format
{
    const char* mName;
    TimeDisplay mDisplay;
    FrameRate mRate;
    long long mLabelsPerSecond; // frames in one second of the label; 0 for plain counts
};

inline constexpr Format kClockFormats[] = {
    {"24", kTimeDisplay_24Timecode, kFrameRate_Film24, 24},
    {"25", kTimeDisplay_25Timecode, kFrameRate_VideoPAL, 25},
    {"2997Drop", kTimeDisplay_2997DropTimecode, kFrameRate_VideoNTSC, 30},
    {"2997NonDrop", kTimeDisplay_2997NonDropTimecode, kFrameRate_VideoNTSC, 30},
    {"30", kTimeDisplay_30Timecode, kFrameRate_Video30, 30},
    {"50", kTimeDisplay_50Timecode, kFrameRate_VideoPAL_HD, 50},
    {"5994Drop", kTimeDisplay_5994DropTimecode, kFrameRate_VideoNTSC_HD, 60},
    {"5994NonDrop", kTimeDisplay_5994NonDropTimecode, kFrameRate_VideoNTSC_HD, 60},
    {"60", kTimeDisplay_60Timecode, kFrameRate_Video60, 60},
    {"23976", kTimeDisplay_23976Timecode, kFrameRate_23976, 24},
};

/// Returns the time of inFrames frames.
inline TickTime Frames(long long inFrames, const FrameRate& inRate)
{
    return TickTime(inFrames, inRate);
}

inline Timecode::Style SignedStyle()
{
    Timecode::Style style;
    style.mShowSign = true;
    return style;
}

inline Timecode::Style PreviousFrameStyle()
{
    Timecode::Style style;
    style.mPreviousFrame = true;
    return style;
}

/// Returns the fields of a record as one printable value.
inline std::string Fields(const Timecode::PrivateImpl& inImpl)
{
    return (inImpl.mIsNegative ? "-" : "") + std::to_string(inImpl.mHours) + " " + std::to_string(inImpl.mMinutes) + " "
           + std::to_string(inImpl.mSeconds) + " " + std::to_string(inImpl.mFrames);
}

/// Returns a record with exactly the given fields, not normalised; its time is computed from them.
inline Timecode::PrivateImpl RecordOf(int inHours, int inMinutes, int inSeconds, long long inFrames,
                                      const FrameRate& inRate, TimeDisplay inDisplay, bool inIsNegative = false)
{
    Timecode::PrivateImpl record(kTime_Zero, inRate, inDisplay, Timecode::Style());
    record.mHours = inHours;
    record.mMinutes = inMinutes;
    record.mSeconds = inSeconds;
    record.mFrames = inFrames;
    record.mIsNegative = inIsNegative;
    record.mTime =
        ORL::TimecodeLocal::HMSFToTime(inHours, inMinutes, inSeconds, inFrames, inIsNegative, inRate, inDisplay);
    return record;
}

} // namespace ORLTest
