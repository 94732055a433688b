#include <Media/TimecodeFormats.h>

#include <Core/Wrapping.h>
#include <Media/TimecodeDropFrame.h>
#include <ORLDebug.h>

#include <tvxmediatypes/Constants.h>

#include <limits>

namespace ORL {
namespace TimecodeLocal {

using namespace tvxmediatypes;

namespace {

constexpr TickTime kOneDay(86400, FrameRate(1.0));

int SecondsOf(int inHours, int inMinutes, int inSeconds) noexcept
{
    using Wrapping::Add;
    using Wrapping::Multiply;
    return Add(Multiply(Add(Multiply(inHours, 60), inMinutes), 60), inSeconds);
}

// Counts the frames before a label at an integer rate. The time of a negative label is the negated time of the label,
// so the fields are not negative here, unless a typed field overflowed 32 bits.
constexpr long long CountLabels(int inSeconds, long long inLabelsPerSecond, long long inFrames) noexcept
{
    return Wrapping::Add(inSeconds * inLabelsPerSecond, inFrames);
}

// Counts the frames before a label at any rate. The seconds are converted to unsigned, so negative numbers become huge.
long long CountFrames(int inSeconds, const FrameRate& inRate, long long inFrames) noexcept
{
    const auto seconds = static_cast<double>(Wrapping::Bits(static_cast<long long>(inSeconds)));
    const unsigned long long whole = Wrapping::TruncateToUnsigned64(seconds * inRate.GetValue());
    return Wrapping::Add(static_cast<long long>(whole), inFrames);
}

// At an integer rate the two counts differ only for negative seconds, so all other seconds use the integer count.
template <int kRate>
TickTime CountAtWholeRate(int inSeconds, long long inFrames) noexcept
{
    constexpr FrameRate rate(kRate);
    return TickTime(inSeconds >= 0 ? CountLabels(inSeconds, kRate, inFrames) : CountFrames(inSeconds, rate, inFrames),
                    rate);
}

// Equivalent to subtracting one day while the time exceeds one day.
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
    return VisitFormat(
        inTimeDisplay, [&](auto inFormat) { return inFormat.kRow.HasOwnRate() ? inFormat.kRow.mRate : inFrameRate; },
        [] {
            ORL_ASSERT_AT(false, "Timecode", __LINE__, "ORL::`anonymous-namespace'::GetFrameRateForDisplayMode");
            return FrameRate();
        });
}

namespace {

template <class Format>
TickTime LabelToTime(Format, int inHours, int inMinutes, int inSeconds, long long inFrames,
                     const FrameRate& inFrameRate)
{
    constexpr const TimecodeFormat& row = Format::kRow;
    const int seconds = SecondsOf(inHours, inMinutes, inSeconds);
    if constexpr (row.mText == TimecodeText::kFrames) {
        ORL_ASSERT_AT((inHours == 0) && (inMinutes == 0) && (inSeconds == 0), "Timecode", __LINE__,
                      "ORL::`anonymous-namespace'::HMSFToTime");
        return TickTime(inFrames, inFrameRate);
    } else if constexpr (row.mDroppedLabels != 0) {
        return NTSCDropFrame_HMSFToTime(inHours, inMinutes, inSeconds, inFrames, row.mLabelsPerSecond == 60);
    } else if constexpr (!row.HasOwnRate()) {
        return TickTime(CountFrames(seconds, inFrameRate, inFrames), inFrameRate);
    } else if constexpr (row.HasWholeRate()) {
        return CountAtWholeRate<row.mLabelsPerSecond>(seconds, inFrames);
    } else {
        return TickTime(CountLabels(seconds, row.mLabelsPerSecond, inFrames), row.mRate);
    }
}

} // namespace

TickTime HMSFToTime(int inHours, int inMinutes, int inSeconds, long long inFrames, bool inIsNegative,
                    const FrameRate& inFrameRate, TimeDisplay inTimeDisplay)
{
    const TickTime time = VisitFormat(
        inTimeDisplay,
        [&](auto inFormat) { return LabelToTime(inFormat, inHours, inMinutes, inSeconds, inFrames, inFrameRate); },
        [&] {
            const FrameRate rate = GetFrameRateForDisplayMode(inTimeDisplay, inFrameRate); // reports the unknown format
            return TickTime(CountFrames(SecondsOf(inHours, inMinutes, inSeconds), rate, inFrames), rate);
        });
    return FoldIntoOneDay(inIsNegative ? -time : time);
}

} // namespace TimecodeLocal
} // namespace ORL
