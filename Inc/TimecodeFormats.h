// Floor: Media
// The rate of each format, and the time of a label.
#pragma once

#include <tvxmediatypes/Constants.h>
#include <tvxmediatypes/FrameRate.h>
#include <tvxmediatypes/TickTime.h>
#include <tvxmediatypes/TimeDisplay.h>

namespace ORL {
namespace TimecodeLocal {

/// Returns the rate for the conversions of a format: its own, or inFrameRate if it has none. For an unknown format
/// fails an assertion and returns the zero rate.
tvxmediatypes::FrameRate GetFrameRateForDisplayMode(tvxmediatypes::TimeDisplay inTimeDisplay,
                                                    const tvxmediatypes::FrameRate& inFrameRate);

/// Returns the time of a label, folded into one day. A time below minus one day is folded in the wrong direction: days
/// are subtracted until the count wraps around, so the result is just below kTime_Max.
tvxmediatypes::TickTime HMSFToTime(int inHours, int inMinutes, int inSeconds, long long inFrames, bool inIsNegative,
                                   const tvxmediatypes::FrameRate& inFrameRate,
                                   tvxmediatypes::TimeDisplay inTimeDisplay);

/// How a format counts frames within a second: the carry limit of the frame field, and its maximum number of leading
/// zeros.
struct FrameFormat
{
    long long mFramesPerSecond;
    int mFrameDigits;
};

/// Returns the frame format for a rate of GetFrameRateForDisplayMode. It counts 30, 60 and 24 frames at the fractional
/// rates, else the truncated rate. mFrameDigits counts the divisions by ten while the rate is above ten.
constexpr FrameFormat FrameFormatOfRate(const tvxmediatypes::FrameRate& inRate) noexcept
{
    FrameFormat format = {0, 0};
    if (inRate == tvxmediatypes::kFrameRate_VideoNTSC) {
        format.mFramesPerSecond = 30;
    } else if (inRate == tvxmediatypes::kFrameRate_VideoNTSC_HD) {
        format.mFramesPerSecond = 60;
    } else if (inRate == tvxmediatypes::kFrameRate_23976) {
        format.mFramesPerSecond = 24;
    } else {
        format.mFramesPerSecond = inRate.GetTruncatedValue();
    }
    for (long long value = format.mFramesPerSecond; value > 10; value /= 10) {
        ++format.mFrameDigits;
    }
    return format;
}

/// Frames of film in one foot.
constexpr int FramesPerFoot(tvxmediatypes::TimeDisplay inTimeDisplay) noexcept
{
    return inTimeDisplay == tvxmediatypes::kTimeDisplay_35mmFeetFrames ? 16 : 40;
}

constexpr bool IsFeetFrames(tvxmediatypes::TimeDisplay inTimeDisplay) noexcept
{
    return inTimeDisplay == tvxmediatypes::kTimeDisplay_16mmFeetFrames
           || inTimeDisplay == tvxmediatypes::kTimeDisplay_35mmFeetFrames;
}

constexpr bool IsDropFrame(tvxmediatypes::TimeDisplay inTimeDisplay) noexcept
{
    return inTimeDisplay == tvxmediatypes::kTimeDisplay_2997DropTimecode
           || inTimeDisplay == tvxmediatypes::kTimeDisplay_5994DropTimecode;
}

} // namespace TimecodeLocal
} // namespace ORL
