// Floor: Media
// What each format counts: its rate, and the time that a label stands for.
#pragma once

#include <tvxmediatypes/FrameRate.h>
#include <tvxmediatypes/TickTime.h>
#include <tvxmediatypes/TimeDisplay.h>

namespace ORL {
namespace TimecodeLocal {

/// The rate that a format converts with: its own, or inFrameRate where it has none. An unknown format fails an
/// assertion and gives the zero rate.
tvxmediatypes::FrameRate GetFrameRateForDisplayMode(tvxmediatypes::TimeDisplay inTimeDisplay,
                                                    const tvxmediatypes::FrameRate& inFrameRate);

/// The time of a label, folded into one day. The fold of a time below minus one day goes further down instead of back
/// up, until the count wraps around: a time that far below zero ends just below kTime_Max.
tvxmediatypes::TickTime HMSFToTime(int inHours, int inMinutes, int inSeconds, long long inFrames, bool inIsNegative,
                                   const tvxmediatypes::FrameRate& inFrameRate,
                                   tvxmediatypes::TimeDisplay inTimeDisplay);

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
