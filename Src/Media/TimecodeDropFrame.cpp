#include <Media/TimecodeDropFrame.h>

#include <Core/Wrapping.h>
#include <Media/TimecodeCarry.h>
#include <Media/TimecodeFormats.h>
#include <ORLDebug.h>

#include <tvxmediatypes/Constants.h>

namespace ORL {
namespace TimecodeLocal {

using namespace tvxmediatypes;

namespace {

// An hour is six blocks of ten minutes. The first minute of a block has all its labels; each of the other nine drops
// its first labels. Over an hour the labels therefore deviate from the clock by only 3.6 milliseconds.
struct DropFrame
{
    long long mLabelsPerSecond;
    long long mLabelsDropped;

    constexpr long long FirstSecond() const { return mLabelsPerSecond - mLabelsDropped; }
    constexpr long long FirstMinute() const { return 60 * mLabelsPerSecond; }
    constexpr long long OtherMinute() const { return FirstMinute() - mLabelsDropped; }
    constexpr long long TenMinutes() const { return FirstMinute() + 9 * OtherMinute(); }
    constexpr long long Hour() const { return 6 * TenMinutes(); }
};

constexpr DropFrame DropFrameOf(TimeDisplay inTimeDisplay)
{
    return {FormatOf(inTimeDisplay).mLabelsPerSecond, FormatOf(inTimeDisplay).mDroppedLabels};
}

constexpr DropFrame kNTSC = DropFrameOf(kTimeDisplay_2997DropTimecode);
constexpr DropFrame kNTSC_HD = DropFrameOf(kTimeDisplay_5994DropTimecode);

static_assert(kNTSC.Hour() == 107892 && kNTSC.TenMinutes() == 17982 && kNTSC.FirstMinute() == 1800
                  && kNTSC.OtherMinute() == 1798 && kNTSC.FirstSecond() == 28,
              "the counts of 29.97 drop-frame");
static_assert(kNTSC_HD.Hour() == 215784 && kNTSC_HD.TenMinutes() == 35964 && kNTSC_HD.FirstMinute() == 3600
                  && kNTSC_HD.OtherMinute() == 3596 && kNTSC_HD.FirstSecond() == 56,
              "the counts of 59.94 drop-frame");

// Returns the number of frames from the start of a ten-minute block to a label in one of its last nine minutes.
long long CountInShortMinute(const DropFrame& inDrop, int inOnes, int inSeconds, long long inFrames)
{
    const long long start = inDrop.FirstMinute() + (inOnes - 1LL) * inDrop.OtherMinute();
    if (inSeconds != 0) {
        const long long seconds = (inSeconds - 1LL) * inDrop.mLabelsPerSecond + inDrop.FirstSecond();
        return Wrapping::Add(start + seconds, inFrames);
    }
    if (inFrames > 0) {
        ORL_ASSERT_AT(inFrames != 1, "Timecode", __LINE__, "ORL::`anonymous-namespace'::NTSCDropFrame_HMSFToTime");
        return Wrapping::Add(start - inDrop.mLabelsDropped, inFrames);
    }
    return start;
}

// The counts are template arguments, so divisions compile to multiplications.
template <long long kLabelsPerSecond, long long kLabelsDropped>
void CountToHMSF(unsigned long long inRest, int& outHours, int& outMinutes, int& outSeconds, long long& outFrames)
{
    constexpr DropFrame drop = {kLabelsPerSecond, kLabelsDropped};
    constexpr unsigned long long hour = drop.Hour();
    constexpr unsigned long long tenMinutes = drop.TenMinutes();
    constexpr unsigned long long firstMinute = drop.FirstMinute();
    constexpr unsigned long long otherMinute = drop.OtherMinute();

    outHours = static_cast<int>(inRest / hour);
    auto rest = static_cast<unsigned>(inRest % hour);
    unsigned minutes = rest / static_cast<unsigned>(tenMinutes) * 10;
    rest %= static_cast<unsigned>(tenMinutes);
    if (rest >= firstMinute) {
        const unsigned others = (rest - static_cast<unsigned>(firstMinute)) / static_cast<unsigned>(otherMinute) + 1;
        minutes += others;
        // This leaves the minute's dropped labels in the rest, so the fields need no further correction.
        rest -= others * static_cast<unsigned>(otherMinute);
    }
    outMinutes = static_cast<int>(minutes);
    outSeconds = static_cast<int>(rest / static_cast<unsigned>(kLabelsPerSecond));
    outFrames = rest % static_cast<unsigned>(kLabelsPerSecond);
}

unsigned long long Magnitude(long long inCount)
{
    return Wrapping::Bits(inCount < 0 ? Wrapping::Negate(inCount) : inCount);
}

enum class Direction { kForwards, kBackwards };

// Moves off a dropped label: forwards to the next valid label, backwards to the last one before it. The limit is 2 at
// both rates, even at the one that drops 4 labels.
void StepOffDroppedLabel(Direction inDirection, int& ioMinutes, int& ioSeconds, long long& ioFrames,
                         int inLabelsPerSecond, int inLabelsDropped)
{
    if (ioMinutes % 10 == 0 || ioSeconds != 0 || ioFrames >= 2) {
        return;
    }
    if (inDirection == Direction::kBackwards) {
        ioMinutes -= 1;
        ioSeconds = 59;
        ioFrames = inLabelsPerSecond - 1;
    } else {
        ioFrames = inLabelsDropped;
    }
}

} // namespace

TickTime NTSCDropFrame_HMSFToTime(int inHours, int inMinutes, int inSeconds, long long inFrames, bool inIsHD)
{
    const DropFrame& drop = inIsHD ? kNTSC_HD : kNTSC;
    const int tens = inMinutes / 10;
    const int ones = inMinutes % 10;
    const long long inBlock = ones == 0 ? Wrapping::Add(inSeconds * drop.mLabelsPerSecond, inFrames)
                                        : CountInShortMinute(drop, ones, inSeconds, inFrames);
    const long long total = Wrapping::Add(inHours * drop.Hour() + tens * drop.TenMinutes(), inBlock);
    return TickTime(total, inIsHD ? kFrameRate_VideoNTSC_HD : kFrameRate_VideoNTSC);
}

void NTSCDropFrame_TimeToHMSF(const TickTime& inTime, int& outHours, int& outMinutes, int& outSeconds,
                              long long& outFrames, bool inIsHD)
{
    if (inIsHD) {
        const unsigned long long rest = Magnitude(inTime.ToFrame64(kFrameRate_VideoNTSC_HD));
        CountToHMSF<kNTSC_HD.mLabelsPerSecond, kNTSC_HD.mLabelsDropped>(rest, outHours, outMinutes, outSeconds,
                                                                        outFrames);
    } else {
        const unsigned long long rest = Magnitude(inTime.ToFrame64(kFrameRate_VideoNTSC));
        CountToHMSF<kNTSC.mLabelsPerSecond, kNTSC.mLabelsDropped>(rest, outHours, outMinutes, outSeconds, outFrames);
    }
}

void NTSCDropFrame_IncrementHMSF(int inAddHours, int inAddMinutes, int inAddSeconds, long long inAddFrames,
                                 int& ioHours, int& ioMinutes, int& ioSeconds, long long& ioFrames, bool& ioIsNegative,
                                 int inLabelsPerSecond, int inLabelsDropped)
{
    const long long labelsPerSecond = inLabelsPerSecond;
    long long frames = Wrapping::Add(ioFrames, inAddFrames);
    int seconds = ioSeconds;
    Carry(frames, seconds, labelsPerSecond);
    seconds = Wrapping::Add(seconds, inAddSeconds);
    int minutes = ioMinutes;
    Carry(seconds, minutes, 60);
    minutes = Wrapping::Add(minutes, inAddMinutes);
    int hours = ioHours;
    Carry(minutes, hours, 60);
    hours = Wrapping::Add(hours, inAddHours);

    // Here negative hours mean that the time has crossed zero; the other formats use the sign.
    if (hours < 0 && ioHours >= 0) {
        ioIsNegative = true;
        frames = labelsPerSecond - frames;
        seconds = 59 - seconds;
        minutes = 59 - minutes;
        hours += 1;
    }
    if (hours > 24 || hours < -24) {
        hours = hours > 24 ? 24 : -24;
        minutes = seconds = 0;
        frames = 0;
    }
    StepOffDroppedLabel(inAddFrames < 0 ? Direction::kBackwards : Direction::kForwards, minutes, seconds, frames,
                        inLabelsPerSecond, inLabelsDropped);
    if (hours < 0) {
        ioIsNegative = true;
        hours = -hours;
    }
    ioHours = hours;
    ioMinutes = minutes;
    ioSeconds = seconds;
    ioFrames = frames;
}

} // namespace TimecodeLocal
} // namespace ORL
