// Tests TimeStamp at times that the test chooses.
#include <ORLTimeStamp.h>

#include <climits>
#include <cstring>
#include <gtest/gtest.h>
#include <type_traits>

using ORL::TimeStamp;

namespace {

static_assert(sizeof(TimeStamp) == sizeof(double) && std::is_trivially_copyable_v<TimeStamp>);

// Returns the stamp inElapsed milliseconds after the start.
TimeStamp StampAt(double inElapsed)
{
    double time;
    std::memcpy(&time, &TimeStamp::GetStartTime(), sizeof(time));
    time += inElapsed;
    TimeStamp stamp;
    std::memcpy(static_cast<void*>(&stamp), &time, sizeof(time));
    return stamp;
}

} // namespace

TEST(TimeStamp, OfTheStart_IsZeroInEveryUnit)
{
    const TimeStamp& start = TimeStamp::GetStartTime();
    EXPECT_EQ(0, start.GetElapsedValue());
    EXPECT_EQ(0, start.GetMilliSeconds());
    EXPECT_EQ(0, start.GetSeconds());
    EXPECT_EQ(0, start.GetMicroSeconds());
    EXPECT_EQ(0, start.GetSecondsPart());
    EXPECT_EQ(0, start.GetMilliSecondsPart());
    EXPECT_EQ(&start, &TimeStamp::GetStartTime());
}

TEST(TimeStamp, Of2500Milliseconds_HasItsTotalsAndParts)
{
    const TimeStamp stamp = StampAt(2500);
    EXPECT_EQ(2500, stamp.GetElapsedValue());
    EXPECT_EQ(2500, stamp.GetMilliSeconds());
    EXPECT_EQ(2.5, stamp.GetSeconds());
    EXPECT_EQ(2500000.0, stamp.GetMicroSeconds());
    EXPECT_EQ(2, stamp.GetSecondsPart());
    EXPECT_EQ(500, stamp.GetMilliSecondsPart());
}

TEST(TimeStamp, Parts_AreTruncatedAndKeepTheSign)
{
    const struct
    {
        int mLine;
        double mElapsed;
        int mSeconds, mMilliseconds;
    } rows[] = {
        {__LINE__, 999, 0, 999},
        {__LINE__, 1000, 1, 0},
        {__LINE__, 1999.9, 1, 999},
        {__LINE__, -2500, -2, -500},
        {__LINE__, -999, 0, -999},
        {__LINE__, -0.5, 0, 0},
        {__LINE__, 2147483647.0, 2147483, 647},
        {__LINE__, 2147483648.0, INT_MIN / 1000, INT_MIN % 1000}, // milliseconds beyond the range of an int
        {__LINE__, 1e300, INT_MIN / 1000, INT_MIN % 1000},
    };
    for (const auto& row : rows) {
        EXPECT_EQ(row.mSeconds, StampAt(row.mElapsed).GetSecondsPart()) << "row at line " << row.mLine;
        EXPECT_EQ(row.mMilliseconds, StampAt(row.mElapsed).GetMilliSecondsPart()) << "row at line " << row.mLine;
    }
}

TEST(TimeStamp, MicrosecondsPart_IsZeroForEveryStamp)
{
    for (const double elapsed : {0.0, 1.0, 0.25, 2500.125, -3.5, 1e12}) {
        EXPECT_EQ(0, StampAt(elapsed).GetMicroSecondsPart());
    }
    EXPECT_EQ(0, TimeStamp().GetMicroSecondsPart());
}

TEST(TimeStamp, Copies_HaveTheSameTime)
{
    const TimeStamp stamp = StampAt(1234);
    const TimeStamp copy(stamp);
    TimeStamp assigned;
    assigned = stamp;
    EXPECT_EQ(1234, copy.GetElapsedValue());
    EXPECT_EQ(1234, assigned.GetElapsedValue());
}

TEST(TimeStamp, Swap_ExchangesTheTimes)
{
    TimeStamp first = StampAt(1);
    TimeStamp second = StampAt(2);
    first.Swap(second);
    EXPECT_EQ(2, first.GetElapsedValue());
    EXPECT_EQ(1, second.GetElapsedValue());
    first.Swap(first);
    EXPECT_EQ(2, first.GetElapsedValue());
}

TEST(TimeStamp, NewStamps_AreWholeMillisecondsAndDoNotGoBackwards)
{
    double before = 0;
    for (int i = 0; i < 100000; ++i) {
        const double now = TimeStamp().GetMilliSeconds();
        ASSERT_GE(now, before);
        ASSERT_EQ(now, static_cast<double>(static_cast<long long>(now)));
        before = now;
    }
}
