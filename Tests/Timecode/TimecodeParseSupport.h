// Helpers for the parsing tests: tables of timecode strings and their frame counts.
#pragma once

#include "TimecodeTestSupport.h"

#include <cstddef>
#include <limits>

namespace ORLTest {

inline TickTime Parse(const std::string& inText, const FrameRate& inRate, TimeDisplay inDisplay,
                      bool inPreviousFrame = false)
{
    return Timecode::StringToTime(Text(inText), inRate, inDisplay, inPreviousFrame);
}

inline constexpr long long kUnreadable = std::numeric_limits<long long>::min();

/// A string and the frame count that it represents, or kUnreadable.
struct ParseRow
{
    int mLine;
    const char* mText;
    long long mFrames;
};

template <std::size_t N>
void ExpectRows(const ParseRow (&inRows)[N], const FrameRate& inRate, TimeDisplay inDisplay,
                const FrameRate& inCountRate)
{
    CheckRecorder recorder;
    for (const ParseRow& row : inRows) {
        const TickTime expected = row.mFrames == kUnreadable ? kTime_Invalid : TickTime(row.mFrames, inCountRate);
        EXPECT_EQ(expected, Parse(row.mText, inRate, inDisplay)) << "\"" << row.mText << "\" at line " << row.mLine;
        EXPECT_EQ(row.mFrames == kUnreadable, Timecode::FindUnreadable(Text(row.mText), inDisplay) != UTF16String::npos)
            << "\"" << row.mText << "\" at line " << row.mLine;
    }
    EXPECT_TRUE(recorder.Reports().empty());
}

template <std::size_t N>
void ExpectPalRows(const ParseRow (&inRows)[N])
{
    ExpectRows(inRows, kFrameRate_VideoPAL, kTimeDisplay_25Timecode, kFrameRate_VideoPAL);
}

constexpr long long Pal(long long inHours, long long inMinutes, long long inSeconds, long long inFrames)
{
    return ((inHours * 60 + inMinutes) * 60 + inSeconds) * 25 + inFrames;
}

} // namespace ORLTest
