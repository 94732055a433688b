#include <TimecodeFormats.h>

#include <ORLDebug.h>
#include <TimecodeDropFrame.h>
#include <Wrapping.h>

#include <tvxmediatypes/Constants.h>

#include <limits>

namespace ORL {
namespace TimecodeLocal {

using namespace tvxmediatypes;

namespace {

constexpr TickTime kOneDay(86400, FrameRate(1.0));

// Counts a label at a whole rate. The time of a negative label is the negated time of the label, so the fields are not
// negative here, unless a typed field overflowed 32 bits.
constexpr long long CountLabels(int inSeconds, long long inLabelsPerSecond, long long inFrames) noexcept
{
    return Wrapping::Add(inSeconds * inLabelsPerSecond, inFrames);
}

// Counts a label at any rate. The seconds are converted to unsigned, so negative ones become huge.
long long CountFrames(int inSeconds, const FrameRate& inRate, long long inFrames) noexcept
{
    const auto seconds = static_cast<double>(Wrapping::Bits(static_cast<long long>(inSeconds)));
    const unsigned long long whole = Wrapping::TruncateToUnsigned64(seconds * inRate.GetValue());
    return Wrapping::Add(static_cast<long long>(whole), inFrames);
}

// At a whole rate the double is exact for seconds that are not negative, so the integer count is used for them.
template <int kRate>
TickTime CountAtWholeRate(int inSeconds, long long inFrames) noexcept
{
    constexpr FrameRate rate(kRate);
    return TickTime(inSeconds >= 0 ? CountLabels(inSeconds, kRate, inFrames) : CountFrames(inSeconds, rate, inFrames),
                    rate);
}

// Equivalent to subtracting one day while the time is beyond the end of the day.
TickTime FoldFromAbove(const TickTime& inTime) noexcept
{
    const long long day = kOneDay.GetTicks();
    return TickTime::FromTicks((inTime.GetTicks() - 1) % day + 1);
}

// Equivalent to subtracting one day repeatedly, until the count wraps around.
TickTime FoldFromBelow(const TickTime& inTime) noexcept
{
    const auto day = Wrapping::Bits(kOneDay.GetTicks());
    const auto aboveLeast = Wrapping::Bits(inTime.GetTicks()) - Wrapping::Bits(std::numeric_limits<long long>::min());
    return TickTime::FromTicks(static_cast<long long>((1ull << 63) + aboveLeast % day - day));
}

TickTime FoldIntoOneDay(TickTime inTime) noexcept
{
    if (inTime > kOneDay) {
        inTime = FoldFromAbove(inTime);
    }
    return inTime < -kOneDay ? FoldFromBelow(inTime) : inTime;
}

} // namespace

FrameRate GetFrameRateForDisplayMode(TimeDisplay inTimeDisplay, const FrameRate& inFrameRate)
{
    switch (inTimeDisplay) {
    case kTimeDisplay_24Timecode:
        return kFrameRate_Film24;
    case kTimeDisplay_25Timecode:
        return kFrameRate_VideoPAL;
    case kTimeDisplay_2997DropTimecode:
    case kTimeDisplay_2997NonDropTimecode:
        return kFrameRate_VideoNTSC;
    case kTimeDisplay_30Timecode:
        return kFrameRate_Video30;
    case kTimeDisplay_50Timecode:
        return kFrameRate_VideoPAL_HD;
    case kTimeDisplay_5994DropTimecode:
    case kTimeDisplay_5994NonDropTimecode:
        return kFrameRate_VideoNTSC_HD;
    case kTimeDisplay_60Timecode:
        return kFrameRate_Video60;
    case kTimeDisplay_23976Timecode:
        return kFrameRate_23976;
    case kTimeDisplay_Frames:
    case kTimeDisplay_16mmFeetFrames:
    case kTimeDisplay_35mmFeetFrames:
    case kTimeDisplay_AudioSamplesTimecode:
        return inFrameRate;
    case kTimeDisplay_AudioMsTimecode:
        return FrameRate(1000.0);
    }
    ORL_ASSERT_AT(false, "Timecode", __LINE__, "ORL::`anonymous-namespace'::GetFrameRateForDisplayMode");
    return FrameRate();
}

TickTime HMSFToTime(int inHours, int inMinutes, int inSeconds, long long inFrames, bool inIsNegative,
                    const FrameRate& inFrameRate, TimeDisplay inTimeDisplay)
{
    using Wrapping::Add;
    using Wrapping::Multiply;
    const int seconds = Add(Multiply(Add(Multiply(inHours, 60), inMinutes), 60), inSeconds);
    TickTime time;
    switch (inTimeDisplay) {
    case kTimeDisplay_Frames:
        ORL_ASSERT_AT((inHours == 0) && (inMinutes == 0) && (inSeconds == 0), "Timecode", __LINE__,
                      "ORL::`anonymous-namespace'::HMSFToTime");
        time = TickTime(inFrames, inFrameRate);
        break;
    case kTimeDisplay_2997DropTimecode:
        time = NTSCDropFrame_HMSFToTime(inHours, inMinutes, inSeconds, inFrames, false);
        break;
    case kTimeDisplay_5994DropTimecode:
        time = NTSCDropFrame_HMSFToTime(inHours, inMinutes, inSeconds, inFrames, true);
        break;
    case kTimeDisplay_2997NonDropTimecode:
        time = TickTime(CountLabels(seconds, 30, inFrames), kFrameRate_VideoNTSC);
        break;
    case kTimeDisplay_5994NonDropTimecode:
        time = TickTime(CountLabels(seconds, 60, inFrames), kFrameRate_VideoNTSC_HD);
        break;
    case kTimeDisplay_23976Timecode:
        time = TickTime(CountLabels(seconds, 24, inFrames), kFrameRate_23976);
        break;
    case kTimeDisplay_24Timecode: time = CountAtWholeRate<24>(seconds, inFrames); break;
    case kTimeDisplay_25Timecode: time = CountAtWholeRate<25>(seconds, inFrames); break;
    case kTimeDisplay_30Timecode: time = CountAtWholeRate<30>(seconds, inFrames); break;
    case kTimeDisplay_50Timecode: time = CountAtWholeRate<50>(seconds, inFrames); break;
    case kTimeDisplay_60Timecode: time = CountAtWholeRate<60>(seconds, inFrames); break;
    case kTimeDisplay_AudioMsTimecode: time = CountAtWholeRate<1000>(seconds, inFrames); break;
    default: {
        const FrameRate rate = GetFrameRateForDisplayMode(inTimeDisplay, inFrameRate);
        time = TickTime(CountFrames(seconds, rate, inFrames), rate);
    }
    }
    return FoldIntoOneDay(inIsNegative ? -time : time);
}

} // namespace TimecodeLocal
} // namespace ORL
