// The table of formats, with the rate and the labels of each format, and the conversion of a label to a time.
#pragma once

#include <tvxmediatypes/Constants.h>
#include <tvxmediatypes/FrameRate.h>
#include <tvxmediatypes/TickTime.h>
#include <tvxmediatypes/TimeDisplay.h>

#include <cstddef>

namespace ORL {
namespace TimecodeLocal {

/// How a format writes and reads a time.
enum class TimecodeText { kClock, kFrames, kFeetFrames };

/// The properties of one format.
struct TimecodeFormat
{
    tvxmediatypes::TimeDisplay mDisplay;
    TimecodeText mText;
    tvxmediatypes::FrameRate mRate; // rate of conversions; zero if the caller's rate applies
    int mLabelsPerSecond = 0;       // 0 if the caller's rate determines it
    int mDroppedLabels = 0;         // number at the start of each minute except every tenth
    int mFramesPerFoot = 0;         // frames in one foot of film

    constexpr bool HasOwnRate() const noexcept { return mLabelsPerSecond != 0; }
    constexpr bool HasWholeRate() const noexcept { return mRate.GetTruncatedValue() == mLabelsPerSecond; }
};

inline constexpr TimecodeFormat kTimecodeFormats[] = {
    {tvxmediatypes::kTimeDisplay_24Timecode, TimecodeText::kClock, tvxmediatypes::kFrameRate_Film24, 24},
    {tvxmediatypes::kTimeDisplay_25Timecode, TimecodeText::kClock, tvxmediatypes::kFrameRate_VideoPAL, 25},
    {tvxmediatypes::kTimeDisplay_2997DropTimecode, TimecodeText::kClock, tvxmediatypes::kFrameRate_VideoNTSC, 30, 2},
    {tvxmediatypes::kTimeDisplay_2997NonDropTimecode, TimecodeText::kClock, tvxmediatypes::kFrameRate_VideoNTSC, 30},
    {tvxmediatypes::kTimeDisplay_30Timecode, TimecodeText::kClock, tvxmediatypes::kFrameRate_Video30, 30},
    {tvxmediatypes::kTimeDisplay_50Timecode, TimecodeText::kClock, tvxmediatypes::kFrameRate_VideoPAL_HD, 50},
    {tvxmediatypes::kTimeDisplay_5994DropTimecode, TimecodeText::kClock, tvxmediatypes::kFrameRate_VideoNTSC_HD, 60, 4},
    {tvxmediatypes::kTimeDisplay_5994NonDropTimecode, TimecodeText::kClock, tvxmediatypes::kFrameRate_VideoNTSC_HD, 60},
    {tvxmediatypes::kTimeDisplay_60Timecode, TimecodeText::kClock, tvxmediatypes::kFrameRate_Video60, 60},
    {tvxmediatypes::kTimeDisplay_Frames, TimecodeText::kFrames, {}},
    {tvxmediatypes::kTimeDisplay_23976Timecode, TimecodeText::kClock, tvxmediatypes::kFrameRate_23976, 24},
    {tvxmediatypes::kTimeDisplay_16mmFeetFrames, TimecodeText::kFeetFrames, {}, 0, 0, 40},
    {tvxmediatypes::kTimeDisplay_35mmFeetFrames, TimecodeText::kFeetFrames, {}, 0, 0, 16},
    {tvxmediatypes::kTimeDisplay_AudioSamplesTimecode, TimecodeText::kClock, {}},
    {tvxmediatypes::kTimeDisplay_AudioMsTimecode, TimecodeText::kClock, tvxmediatypes::FrameRate(1000.0), 1000},
};

/// The row of a format as a type, so that everything that depends only on the format is a compile-time constant.
template <std::size_t kIndex>
struct FormatConstant
{
    static constexpr const TimecodeFormat& kRow = kTimecodeFormats[kIndex];
};

/// Returns inKnown(FormatConstant of the format), or inUnknown() for a value that is not a format. Every displayed
/// frame needs this, so inKnown is compiled once for each format, with constant divisors.
template <class Known, class Unknown>
constexpr auto VisitFormat(tvxmediatypes::TimeDisplay inTimeDisplay, const Known& inKnown, const Unknown& inUnknown)
{
    using namespace tvxmediatypes;
    switch (inTimeDisplay) {
    case kTimeDisplay_24Timecode: return inKnown(FormatConstant<0>());
    case kTimeDisplay_25Timecode: return inKnown(FormatConstant<1>());
    case kTimeDisplay_2997DropTimecode: return inKnown(FormatConstant<2>());
    case kTimeDisplay_2997NonDropTimecode: return inKnown(FormatConstant<3>());
    case kTimeDisplay_30Timecode: return inKnown(FormatConstant<4>());
    case kTimeDisplay_50Timecode: return inKnown(FormatConstant<5>());
    case kTimeDisplay_5994DropTimecode: return inKnown(FormatConstant<6>());
    case kTimeDisplay_5994NonDropTimecode: return inKnown(FormatConstant<7>());
    case kTimeDisplay_60Timecode: return inKnown(FormatConstant<8>());
    case kTimeDisplay_Frames: return inKnown(FormatConstant<9>());
    case kTimeDisplay_23976Timecode: return inKnown(FormatConstant<10>());
    case kTimeDisplay_16mmFeetFrames: return inKnown(FormatConstant<11>());
    case kTimeDisplay_35mmFeetFrames: return inKnown(FormatConstant<12>());
    case kTimeDisplay_AudioSamplesTimecode: return inKnown(FormatConstant<13>());
    case kTimeDisplay_AudioMsTimecode: return inKnown(FormatConstant<14>());
    }
    return inUnknown();
}

/// Returns the row of a format, or an empty row for a value that is not a format.
constexpr TimecodeFormat FormatOf(tvxmediatypes::TimeDisplay inTimeDisplay)
{
    return VisitFormat(
        inTimeDisplay, [](auto inFormat) { return inFormat.kRow; },
        [] {
            return TimecodeFormat{tvxmediatypes::TimeDisplay(), TimecodeText::kClock, {}};
        });
}

constexpr bool LeadsEveryFormatToItsRow()
{
    for (const TimecodeFormat& format : kTimecodeFormats) {
        if (FormatOf(format.mDisplay).mDisplay != format.mDisplay) {
            return false;
        }
    }
    return true;
}
static_assert(LeadsEveryFormatToItsRow(), "the cases of VisitFormat are in the order of the table");

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

/// Returns the frame format for a rate from GetFrameRateForDisplayMode. The format counts 24, 30 and 60 frames at
/// 23.976, 29.97 and 59.94, else the truncated rate. mFrameDigits counts divisions by ten while the rate is above ten.
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

/// Returns the number of film frames in one foot, 40 for a format that does not count feet.
constexpr int FramesPerFoot(tvxmediatypes::TimeDisplay inTimeDisplay) noexcept
{
    constexpr int kUsual = 40;
    return VisitFormat(
        inTimeDisplay,
        [](auto inFormat) { return inFormat.kRow.mFramesPerFoot != 0 ? inFormat.kRow.mFramesPerFoot : kUsual; },
        [] { return kUsual; });
}

constexpr bool IsFeetFrames(tvxmediatypes::TimeDisplay inTimeDisplay) noexcept
{
    return VisitFormat(
        inTimeDisplay, [](auto inFormat) { return inFormat.kRow.mText == TimecodeText::kFeetFrames; },
        [] { return false; });
}

/// Returns the number of labels that a drop-frame format drops at the start of a minute, 0 for any other format.
constexpr int DroppedLabels(tvxmediatypes::TimeDisplay inTimeDisplay) noexcept
{
    return VisitFormat(
        inTimeDisplay, [](auto inFormat) { return inFormat.kRow.mDroppedLabels; }, [] { return 0; });
}

constexpr bool IsDropFrame(tvxmediatypes::TimeDisplay inTimeDisplay) noexcept
{
    return DroppedLabels(inTimeDisplay) != 0;
}

} // namespace TimecodeLocal
} // namespace ORL
