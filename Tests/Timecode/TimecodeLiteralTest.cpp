// The rules define some results by repeated subtraction, but the library divides. This test repeats the literal
// subtractions; library and test must compute the same results, including signs and overflows.
#include "TimecodeTestSupport.h"

#include <Core/Wrapping.h>
#include <Media/TimecodeCarry.h>

#include <limits>
#include <random>

using namespace ORLTest;
using ORL::TimecodeLocal::Carry;
using ORL::TimecodeLocal::HMSFToTime;

namespace {

// Folds a time through a format whose label is the count itself, at one tick a frame.
TickTime Fold(long long inTicks)
{
    return HMSFToTime(0, 0, 0, inTicks, false, FrameRate::FromTicksPerFrame(1), kTimeDisplay_Frames);
}

TickTime FoldByLoops(long long inTicks)
{
    const TickTime day(86400.0);
    const TickTime minusDay(-86400.0);
    TickTime time = TickTime::FromTicks(inTicks);
    while (time > day) {
        time -= day;
    }
    while (time < minusDay) {
        time += minusDay;
    }
    return time;
}

template <class Field>
void CarryByLoops(Field& ioField, int& ioNext, Field inLimit)
{
    while (ioField >= inLimit) {
        ioField -= inLimit;
        ioNext = ORL::Wrapping::Add(ioNext, 1);
    }
    while (ioField < 0) {
        ioField += inLimit;
        ioNext = ORL::Wrapping::Subtract(ioNext, 1);
    }
}

template <class Field>
void ExpectSameCarry(Field inField, int inNext, Field inLimit)
{
    Field field = inField;
    int next = inNext;
    Field fieldByLoops = inField;
    int nextByLoops = inNext;
    Carry(field, next, inLimit);
    CarryByLoops(fieldByLoops, nextByLoops, inLimit);
    ASSERT_EQ(fieldByLoops, field) << inField << " at " << inLimit;
    ASSERT_EQ(nextByLoops, next) << inField << " at " << inLimit;
}

std::string SplitByLoops(long long inCount, long long inFramesPerSecond)
{
    const bool negative = inCount < 0;
    long long rest = negative ? -inCount : inCount;
    int fields[3] = {};
    const long long units[3] = {inFramesPerSecond * 3600, inFramesPerSecond * 60, inFramesPerSecond};
    for (int i = 0; i < 3; ++i) {
        while (rest >= units[i]) {
            rest -= units[i];
            ++fields[i];
        }
    }
    return (negative ? "-" : "") + std::to_string(fields[0]) + " " + std::to_string(fields[1]) + " "
           + std::to_string(fields[2]) + " " + std::to_string(rest);
}

} // namespace

TEST(TimecodeLiteral, FoldOfTimesAroundEachDay_IsThatOfTheLoops)
{
    const long long day = TickTime(86400.0).GetTicks();
    for (long long days = -4; days <= 4; ++days) {
        for (long long offset = -3; offset <= 3; ++offset) {
            const long long ticks = days * day + offset;
            EXPECT_EQ(FoldByLoops(ticks), Fold(ticks)) << days << " days and " << offset << " ticks";
        }
    }
}

TEST(TimecodeLiteral, FoldOfTheFarthestTimes_IsThatOfTheLoops)
{
    const long long most = std::numeric_limits<long long>::max();
    for (long long offset = 0; offset <= 100; ++offset) {
        EXPECT_EQ(FoldByLoops(most - offset), Fold(most - offset));
        EXPECT_EQ(FoldByLoops(-most - 1 + offset), Fold(-most - 1 + offset));
    }
}

TEST(TimecodeLiteral, FoldOfRandomTimes_IsThatOfTheLoops)
{
    std::mt19937_64 random(102);
    for (int i = 0; i < 2000; ++i) {
        const long long ticks = static_cast<long long>(random()) >> (random() % 40);
        ASSERT_EQ(FoldByLoops(ticks), Fold(ticks)) << ticks;
    }
}

TEST(TimecodeLiteral, FoldFromBelow_EndsAtTheTopOfTheCountAndNotInTheDay)
{
    const TickTime day(86400.0);
    EXPECT_EQ(-day, Fold((-day).GetTicks()));
    const TickTime folded = Fold((-day).GetTicks() - 1);
    EXPECT_GT(folded.GetTicks(), kTime_Max.GetTicks() - day.GetTicks());
    EXPECT_EQ(day, Fold(day.GetTicks())) << "a whole day is not folded";
    EXPECT_EQ(TickTime::FromTicks(1), Fold(day.GetTicks() + 1));
}

TEST(TimecodeLiteral, LastLabelsOfANonDropDay_LieBeyondTheDayAndAreFolded)
{
    // 30 labels a second at the NTSC rate run slower than the clock.
    const TickTime day(86400.0);
    TickTime time(2591999, kFrameRate_VideoNTSC);
    ASSERT_GT(time, day);
    TickTime expected = time;
    expected -= day;
    EXPECT_EQ(expected, HMSFToTime(23, 59, 59, 29, false, kFrameRate_VideoNTSC, kTimeDisplay_2997NonDropTimecode));
    EXPECT_EQ(FoldByLoops((-time).GetTicks()),
              HMSFToTime(23, 59, 59, 29, true, kFrameRate_VideoNTSC, kTimeDisplay_2997NonDropTimecode));
    EXPECT_GT(HMSFToTime(23, 59, 59, 29, true, kFrameRate_VideoNTSC, kTimeDisplay_2997NonDropTimecode), day)
        << "the second fold runs down, not back up";
}

TEST(TimecodeLiteral, Carry_IsThatOfTheLoops)
{
    for (int field = -10000; field <= 10000; ++field) {
        for (const int limit : {1, 2, 24, 59, 60, 61}) {
            ExpectSameCarry<int>(field, 5, limit);
            ExpectSameCarry<long long>(field, std::numeric_limits<int>::max() - 3, limit);
            ExpectSameCarry<long long>(field, std::numeric_limits<int>::min() + 3, limit);
        }
    }
    std::mt19937_64 random(60);
    for (int i = 0; i < 2000; ++i) {
        const long long limit = static_cast<long long>(random() % 192000) + 1;
        ExpectSameCarry<long long>(static_cast<long long>(random() % 20000000000ull) - 10000000000LL,
                                   static_cast<int>(random()), limit + 100000);
    }
}

TEST(TimecodeLiteral, CarryOfExtremes_IsThatOfTheLoops)
{
    constexpr int kMost = std::numeric_limits<int>::max();
    constexpr int kLeast = std::numeric_limits<int>::min();
    for (const int next : {0, kMost, kLeast}) {
        ExpectSameCarry<int>(kMost, next, 60);
        ExpectSameCarry<int>(kLeast, next, 60);
        ExpectSameCarry<long long>(std::numeric_limits<long long>::max(), next, std::numeric_limits<long long>::max());
        ExpectSameCarry<long long>(std::numeric_limits<long long>::min(), next, std::numeric_limits<long long>::max());
        ExpectSameCarry<long long>(-1, next, std::numeric_limits<long long>::max());
    }
    // With a limit that is not positive the subtractions would never end, so Carry changes nothing.
    long long field = 17;
    int next = 3;
    Carry<long long>(field, next, 0);
    Carry<long long>(field, next, -5);
    EXPECT_EQ(17, field);
    EXPECT_EQ(3, next);
}

TEST(TimecodeLiteral, CarryOf64BitFramesInto32BitSeconds_KeepsTheLow32Bits)
{
    // More seconds than an int can hold: single steps would wrap around the same number of times.
    long long frames = 25LL * 4294967296LL + 25LL * 7 + 3;
    int seconds = 1;
    Carry<long long>(frames, seconds, 25);
    EXPECT_EQ(3, frames);
    EXPECT_EQ(8, seconds);
    frames = -(25LL * 4294967296LL) - 1;
    Carry<long long>(frames, seconds, 25);
    EXPECT_EQ(24, frames);
    EXPECT_EQ(7, seconds);
}

TEST(TimecodeLiteral, FieldsOfATime_AreThoseOfTheLoops)
{
    std::mt19937_64 random(24);
    for (const Format& format : kClockFormats) {
        if (ORL::TimecodeLocal::IsDropFrame(format.mDisplay)) {
            continue; // skipped: for drop-frame the rule itself divides
        }
        for (int i = 0; i < 20000; ++i) {
            const long long count = static_cast<long long>(random() % 50000000) - 25000000;
            const Timecode::PrivateImpl record(Frames(count, format.mRate), format.mRate, format.mDisplay,
                                               Timecode::Style());
            ASSERT_EQ(SplitByLoops(count, format.mLabelsPerSecond), Fields(record)) << format.mName << " " << count;
        }
    }
    for (const double rate : {1.0, 1.5, 10.0, 12.5, 23.98, 100.0, 1000.0}) {
        const FrameRate own(rate);
        for (int i = 0; i < 20000; ++i) {
            const long long count = static_cast<long long>(random() % 10000000) - 5000000;
            const Timecode::PrivateImpl record(Frames(count, own), own, kTimeDisplay_16mmFeetFrames, Timecode::Style());
            ASSERT_EQ(SplitByLoops(count, static_cast<long long>(rate)), Fields(record)) << rate << " " << count;
        }
    }
}

TEST(TimecodeLiteral, LabelsAtAWholeRate_AreCountedThroughADoubleWithoutLoss)
{
    // These formats compute the seconds in a double, which keeps whole numbers exact.
    for (const Format& format : kClockFormats) {
        for (const int hours : {0, 1, 23, 24, 100, 596522}) {
            const long long count = (hours * 3600LL + 59 * 60 + 59) * format.mLabelsPerSecond + 1;
            if (!ORL::TimecodeLocal::IsDropFrame(format.mDisplay)) {
                EXPECT_EQ(FoldByLoops(Frames(count, format.mRate).GetTicks()),
                          HMSFToTime(hours, 59, 59, 1, false, format.mRate, format.mDisplay))
                    << format.mName << " " << hours;
            }
        }
    }
}

TEST(TimecodeLiteral, SecondsBeyond32Bits_WrapAround)
{
    // 596523 hours, 14 minutes and 8 seconds equal 2^31 seconds.
    EXPECT_EQ(HMSFToTime(0, 0, std::numeric_limits<int>::min(), 3, false, kFrameRate_VideoNTSC,
                         kTimeDisplay_2997NonDropTimecode),
              HMSFToTime(596523, 14, 8, 3, false, kFrameRate_VideoNTSC, kTimeDisplay_2997NonDropTimecode));
    // At a whole rate the negative seconds become an unsigned count that does not fit, 2^63 frames. If a frame has an
    // even number of ticks, the time of these frames is zero.
    EXPECT_EQ(Frames(3, kFrameRate_VideoPAL),
              HMSFToTime(596523, 14, 8, 3, false, kFrameRate_VideoPAL, kTimeDisplay_25Timecode));
    // If a frame has an odd number of ticks, the time of 2^63 frames is the lowest count of ticks.
    EXPECT_EQ(FoldByLoops(ORL::Wrapping::Add(std::numeric_limits<long long>::min(), 3LL * 3675)),
              HMSFToTime(596523, 14, 8, 3, false, kFrameRate_Audio192000, kTimeDisplay_AudioSamplesTimecode));
}
