#include "Rates.h"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <random>
#include <type_traits>

using namespace tvxmediatypes;

namespace {

__extension__ typedef __int128 Wide;
__extension__ typedef unsigned __int128 UnsignedWide;

constexpr long long kMost = std::numeric_limits<long long>::max();
constexpr long long kLeast = std::numeric_limits<long long>::min();

// Returns the low 64 bits of an exact result as a signed number.
long long Wrapped(Wide inValue)
{
    return static_cast<long long>(static_cast<unsigned long long>(static_cast<UnsignedWide>(inValue)));
}

// Returns a number of random bit length; one in eight is a limit, one in sixteen is from -2 to 2.
long long AnyLength(std::mt19937_64& ioRandom)
{
    switch (ioRandom() % 16) {
    case 0: return kLeast;
    case 1: return kMost;
    case 2: return static_cast<long long>(ioRandom() % 5) - 2;
    default: return static_cast<long long>(ioRandom()) >> (ioRandom() % 64);
    }
}

} // namespace

static_assert(std::is_trivially_copyable<TickTime>::value && std::is_standard_layout<TickTime>::value,
              "a time is a plain value");
static_assert(TickTime(90, kFrameRate_Video30).ToFrame64(kFrameRate_VideoPAL) == 75, "the example of the header");

TEST(TickTime, Default_IsZero)
{
    EXPECT_EQ(kTime_Zero, TickTime());
    EXPECT_EQ(0, TickTime().GetTicks());
}

TEST(TickTime, SpecialTimes_AreDistinctAndInOrder)
{
    EXPECT_LT(kTime_Invalid, kTime_Min);
    EXPECT_LT(kTime_Min, kTime_Zero);
    EXPECT_LT(kTime_Zero, kTime_Max);
    EXPECT_EQ(kTime_Max, -kTime_Min);
    EXPECT_EQ(kTime_Min, -kTime_Max);
    EXPECT_EQ(kTime_Invalid, -kTime_Invalid);
    EXPECT_EQ(kTime_Zero, -kTime_Zero);
}

TEST(TickTime, FromFramesOfEachListedRate_IsExactAndComesBack)
{
    for (const KnownRate& known : kKnownRates) {
        const long long perDay = known.mFrames * 86400 / known.mSeconds;
        for (const long long frames : {0LL, 1LL, 2LL, 29LL, 30LL, 1799LL, 1800LL, 107892LL, perDay, 400 * perDay}) {
            const TickTime time(frames, known.mRate);
            const Wide exact = static_cast<Wide>(frames) * known.mSeconds * kTicksPerSecond;
            EXPECT_TRUE(exact == static_cast<Wide>(time.GetTicks()) * known.mFrames) << known.mName << " " << frames;
            EXPECT_EQ(frames, time.ToFrame64(known.mRate)) << known.mName;
            EXPECT_EQ(-frames, (-time).ToFrame64(known.mRate)) << known.mName;
            EXPECT_EQ(-time, TickTime(-frames, known.mRate)) << known.mName;
        }
    }
}

TEST(TickTime, ToFrame64_CountsTowardZero)
{
    for (const KnownRate& known : kKnownRates) {
        for (const long long frames : {0LL, 1LL, 47LL, 1000003LL}) {
            const long long start = TickTime(frames, known.mRate).GetTicks();
            const long long last = start + known.mRate.GetTicksPerFrame() - 1;
            EXPECT_EQ(frames, TickTime::FromTicks(last).ToFrame64(known.mRate)) << known.mName;
            EXPECT_EQ(frames + 1, TickTime::FromTicks(last + 1).ToFrame64(known.mRate)) << known.mName;
            EXPECT_EQ(-frames, TickTime::FromTicks(-last).ToFrame64(known.mRate)) << known.mName;
            EXPECT_EQ(-frames - 1, TickTime::FromTicks(-last - 1).ToFrame64(known.mRate)) << known.mName;
        }
    }
}

TEST(TickTime, AddFrames_MovesByExactlyThoseFramesAlsoFromBetweenFrames)
{
    for (const KnownRate& known : kKnownRates) {
        for (const long long offset : {0LL, 1LL, -1LL, 1234567LL, -kTicksPerSecond * 86400}) {
            TickTime time = TickTime::FromTicks(offset);
            time.AddFrames(7, known.mRate);
            EXPECT_EQ(offset + 7 * known.mRate.GetTicksPerFrame(), time.GetTicks()) << known.mName;
            time.AddFrames(-7, known.mRate);
            EXPECT_EQ(offset, time.GetTicks()) << known.mName;
        }
    }
}

TEST(TickTime, AMillionSingleFrames_AddUpWithoutDrift)
{
    for (const KnownRate& known : kKnownRates) {
        TickTime time;
        for (int i = 0; i < 1000000; ++i) {
            time.AddFrames(1, known.mRate);
        }
        EXPECT_EQ(TickTime(1000000, known.mRate), time) << known.mName;
    }
}

TEST(TickTime, AtTheZeroRate_FramesLastNoTimeAndNoneAreCounted)
{
    EXPECT_EQ(kTime_Zero, TickTime(12345, kFrameRate_Zero));
    EXPECT_EQ(0, kTime_Max.ToFrame64(kFrameRate_Zero));
    TickTime time(1.0);
    time.AddFrames(99, kFrameRate_Zero);
    EXPECT_EQ(TickTime(1.0), time);
}

TEST(TickTime, Sums_WrapAroundInTwosComplement)
{
    TickTime time = kTime_Max;
    time += TickTime::FromTicks(1);
    EXPECT_EQ(kTime_Invalid, time);
    time -= TickTime::FromTicks(1);
    EXPECT_EQ(kTime_Max, time);
    time += kTime_Max;
    EXPECT_EQ(TickTime::FromTicks(-2), time);
    time = kTime_Invalid;
    time += kTime_Invalid;
    EXPECT_EQ(kTime_Zero, time);
    time.AddFrames(kMost, FrameRate::FromTicksPerFrame(2));
    EXPECT_EQ(TickTime::FromTicks(-2), time);
    EXPECT_EQ(kLeast, kTime_Invalid.ToFrame64(FrameRate::FromTicksPerFrame(-1)));
}

TEST(TickTime, AddedToItself_ReadsItsOldValue)
{
    TickTime time = TickTime::FromTicks(21);
    const TickTime& same = time;
    time += same;
    EXPECT_EQ(42, time.GetTicks());
    time -= same;
    EXPECT_EQ(kTime_Zero, time);
}

TEST(TickTime, EveryOperation_AgreesWith128BitArithmetic)
{
    std::mt19937_64 random(1001);
    for (int i = 0; i < 2000000; ++i) {
        const long long a = AnyLength(random);
        const long long b = AnyLength(random);
        const TickTime left = TickTime::FromTicks(a);
        const TickTime right = TickTime::FromTicks(b);
        const FrameRate rate = FrameRate::FromTicksPerFrame(b);
        TickTime time = left;
        time += right;
        ASSERT_EQ(Wrapped(static_cast<Wide>(a) + b), time.GetTicks()) << a << " + " << b;
        time = left;
        time -= right;
        ASSERT_EQ(Wrapped(static_cast<Wide>(a) - b), time.GetTicks()) << a << " - " << b;
        ASSERT_EQ(Wrapped(-static_cast<Wide>(a)), (-left).GetTicks()) << a;
        ASSERT_EQ(Wrapped(static_cast<Wide>(a) * b), TickTime(a, rate).GetTicks()) << a << " * " << b;
        time = right;
        time.AddFrames(a, rate);
        ASSERT_EQ(Wrapped(static_cast<Wide>(a) * b + b), time.GetTicks()) << a << " * " << b;
        ASSERT_EQ(b == 0 ? 0 : Wrapped(static_cast<Wide>(a) / b), left.ToFrame64(rate)) << a << " / " << b;
        ASSERT_EQ(a < b, left < right);
        ASSERT_EQ(a > b, left > right);
        ASSERT_EQ(a <= b, left <= right);
        ASSERT_EQ(a >= b, left >= right);
        ASSERT_EQ(a == b, left == right);
        ASSERT_EQ(a != b, left != right);
    }
}

TEST(TickTime, FromSeconds_RoundsToTheNearestTick)
{
    struct Row
    {
        int mLine;
        double mSeconds;
        long long mTicks;
    };
    const double kTick = 1.0 / 512.0; // exactly 1378125 ticks: no smaller power of two is a whole number of ticks
    const Row rows[] = {
        {__LINE__, 0.0, 0},
        {__LINE__, -0.0, 0},
        {__LINE__, 1.0, 705600000},
        {__LINE__, 86400.0, 60963840000000},
        {__LINE__, -86400.0, -60963840000000},
        {__LINE__, kTick, 1378125},
        // 1378125 is odd, so half of it ends on half a tick and rounds away from zero
        {__LINE__, kTick / 2, 689063},
        {__LINE__, -kTick / 2, -689063},
        {__LINE__, std::nextafter(kTick / 2, 0.0), 689062},
        {__LINE__, std::nextafter(kTick / 2, 1.0), 689063},
        {__LINE__, 3 * kTick / 2, 2067188},
        {__LINE__, 0.1, 70560000},
        {__LINE__, 1.0 / 48000.0, 14700},
        {__LINE__, 1001.0 / 30000.0, 23543520},
        // almost zero
        {__LINE__, 7e-10, 0},
        {__LINE__, 7.1e-10, 1},
        {__LINE__, -7.1e-10, -1},
        {__LINE__, 1e-30, 0},
        {__LINE__, 5e-324, 0},
        // the limits of the count
        {__LINE__, 13071672387.832731, 9223372036854775168},
        {__LINE__, -13071672387.832731, -9223372036854775168},
        {__LINE__, std::nextafter(13071672387.832731, 1e11), kMost},
        {__LINE__, -std::nextafter(13071672387.832731, 1e11), -kMost},
        {__LINE__, 1e300, kMost},
        {__LINE__, -1e300, -kMost},
        {__LINE__, std::numeric_limits<double>::infinity(), kMost},
        {__LINE__, -std::numeric_limits<double>::infinity(), -kMost},
        {__LINE__, std::numeric_limits<double>::quiet_NaN(), kLeast},
    };
    for (const Row& row : rows) {
        EXPECT_EQ(row.mTicks, TickTime(row.mSeconds).GetTicks()) << "row at line " << row.mLine;
    }
}

TEST(TickTime, FromRandomSeconds_AgreesWith128BitArithmetic)
{
    std::mt19937_64 random(86400);
    for (int i = 0; i < 2000000; ++i) {
        // significand / 2^places seconds, within the range of the count, with every length of fraction
        const int places = static_cast<int>(random() % 70);
        const long long significand = static_cast<long long>((random() >> 11) >> (random() % 53));
        const double seconds = std::ldexp(static_cast<double>(significand), -places);
        if (seconds > 1e10) {
            continue;
        }
        const Wide scaled = static_cast<Wide>(significand) * kTicksPerSecond;
        const Wide half = places != 0 ? static_cast<Wide>(1) << (places - 1) : 0;
        const long long expected = static_cast<long long>((scaled + half) >> places);
        ASSERT_EQ(expected, TickTime(seconds).GetTicks()) << significand << " / 2^" << places;
        ASSERT_EQ(-expected, TickTime(-seconds).GetTicks()) << significand << " / 2^" << places;
    }
}
