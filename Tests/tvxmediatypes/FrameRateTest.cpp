#include "Rates.h"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <random>
#include <type_traits>

using namespace tvxmediatypes;

namespace {

constexpr double kInfinity = std::numeric_limits<double>::infinity();
constexpr long long kLongest = std::numeric_limits<long long>::max();

// Rates in rising order, including extremes of every kind.
constexpr long long kRisingTicks[] = {-1, -2, -705600000, -kLongest, 0, kLongest, kLongest - 1, 70560000, 29429400, 1};

} // namespace

static_assert(std::is_trivially_copyable<FrameRate>::value && std::is_standard_layout<FrameRate>::value,
              "a rate is a plain value");
static_assert(FrameRate(44100.0).GetValue() == 44100.0, "rates work in constant expressions");

TEST(FrameRate, EachListedRate_LastsAWholeNumberOfTicks)
{
    for (const KnownRate& known : kKnownRates) {
        EXPECT_EQ(0, kTicksPerSecond * known.mSeconds % known.mFrames) << known.mName;
        EXPECT_EQ(kTicksPerSecond * known.mSeconds / known.mFrames, known.mRate.GetTicksPerFrame()) << known.mName;
    }
}

TEST(FrameRate, EachListedRate_HasTheNearestDoubleAsValue)
{
    for (const KnownRate& known : kKnownRates) {
        const double value = static_cast<double>(known.mFrames) / static_cast<double>(known.mSeconds);
        EXPECT_EQ(value, known.mRate.GetValue()) << known.mName;
        EXPECT_EQ(known.mRate, FrameRate(value)) << known.mName;
    }
}

TEST(FrameRate, ListedRates_AreDistinct)
{
    for (const KnownRate& left : kKnownRates) {
        for (const KnownRate& right : kKnownRates) {
            EXPECT_EQ(&left == &right, left.mRate == right.mRate) << left.mName << " and " << right.mName;
            EXPECT_EQ(&left != &right, left.mRate != right.mRate) << left.mName << " and " << right.mName;
            EXPECT_NE(kFrameRate_Zero, left.mRate);
        }
    }
}

TEST(FrameRate, Default_IsTheZeroRate)
{
    EXPECT_EQ(kFrameRate_Zero, FrameRate());
    EXPECT_EQ(0.0, FrameRate().GetValue());
    EXPECT_EQ(0, FrameRate().GetTicksPerFrame());
}

TEST(FrameRate, FromDouble_RoundsToTheNearestTick)
{
    struct Row
    {
        int mLine;
        double mRate;
        long long mTicks;
    };
    const Row rows[] = {
        {__LINE__, 29.97, 23543544},  // 23543543.54...: the decimal is not the fractional rate
        {__LINE__, 23.976, 29429429}, // 29429429.43...
        {__LINE__, 14.985, 47087087}, // 47087087.09...
        {__LINE__, 352800000.0, 2},
        {__LINE__, 470400000.0, 2}, // 1.5: halves round away from zero
        {__LINE__, 282240000.0, 3}, // 2.5
        {__LINE__, 282240001.0, 2},
        {__LINE__, 705600000.0, 1},
        // faster than one frame a tick
        {__LINE__, 1e9, 1},
        {__LINE__, 1.5e9, 1},
        {__LINE__, 1e300, 1},
        {__LINE__, kInfinity, 1},
        // too slow for the count to fit
        {__LINE__, 7.6e-11, kLongest},
        {__LINE__, 1e-300, kLongest},
        {__LINE__, 5e-324, kLongest},
        // values that are not a valid rate
        {__LINE__, 0.0, 0},
        {__LINE__, -0.0, 0},
        {__LINE__, std::numeric_limits<double>::quiet_NaN(), 0},
        // negative rates are mirrored
        {__LINE__, -25.0, -28224000},
        {__LINE__, -470400000.0, -2},
        {__LINE__, -kInfinity, -1},
        {__LINE__, -5e-324, -kLongest},
    };
    for (const Row& row : rows) {
        EXPECT_EQ(row.mTicks, FrameRate(row.mRate).GetTicksPerFrame()) << "row at line " << row.mLine;
    }
}

TEST(FrameRate, OfItsOwnValue_IsTheSameRate)
{
    for (long long ticks = 1; ticks <= 1000000; ++ticks) {
        ASSERT_EQ(ticks, FrameRate(FrameRate::FromTicksPerFrame(ticks).GetValue()).GetTicksPerFrame());
    }
    std::mt19937_64 random(20240229);
    for (int i = 0; i < 1000000; ++i) {
        // Tick counts that a double holds exactly, with a margin for two roundings.
        const long long ticks = static_cast<long long>(random() >> (14 + random() % 49)) * ((i & 1) != 0 ? 1 : -1);
        const FrameRate rate = FrameRate::FromTicksPerFrame(ticks);
        ASSERT_EQ(ticks, FrameRate(rate.GetValue()).GetTicksPerFrame());
    }
}

TEST(FrameRate, OfARandomFraction_IsWithinHalfATick)
{
    __extension__ typedef __int128 Wide;
    std::mt19937_64 random(7056);
    for (int i = 0; i < 1000000; ++i) {
        const long long frames = static_cast<long long>(random() % 10000000) + 1;
        const long long seconds = static_cast<long long>(random() % 10000) + 1;
        const FrameRate rate(static_cast<double>(frames) / static_cast<double>(seconds));
        const Wide scaled = static_cast<Wide>(kTicksPerSecond) * seconds; // ticks of `frames` frames
        Wide error = static_cast<Wide>(rate.GetTicksPerFrame()) * frames - scaled;
        error = error < 0 ? -error : error;
        // The input value is itself rounded: allows one part in 2^52 of the quotient.
        ASSERT_LE(error * 2, static_cast<Wide>(frames) + (scaled >> 51) + 1) << frames << "/" << seconds;
    }
}

TEST(FrameRate, Order_IsThatOfFramesPerSecond)
{
    const std::size_t count = sizeof(kRisingTicks) / sizeof(kRisingTicks[0]);
    // The first four rates rise from the fastest negative rate to the slowest.
    const std::size_t rising[] = {0, 1, 2, 3, 4, 5, 6, 7, 8, 9};
    static_assert(sizeof(rising) / sizeof(rising[0]) == sizeof(kRisingTicks) / sizeof(kRisingTicks[0]), "");
    for (std::size_t i = 0; i < count; ++i) {
        for (std::size_t j = 0; j < count; ++j) {
            const FrameRate left = FrameRate::FromTicksPerFrame(kRisingTicks[rising[i]]);
            const FrameRate right = FrameRate::FromTicksPerFrame(kRisingTicks[rising[j]]);
            EXPECT_EQ(i < j, left < right) << i << " and " << j;
            EXPECT_EQ(i > j, left > right) << i << " and " << j;
            EXPECT_EQ(i <= j, left <= right) << i << " and " << j;
            EXPECT_EQ(i >= j, left >= right) << i << " and " << j;
        }
    }
}

TEST(FrameRate, OrderOfListedRates_IsThatOfTheirFractions)
{
    for (const KnownRate& left : kKnownRates) {
        for (const KnownRate& right : kKnownRates) {
            EXPECT_EQ(left.mFrames * right.mSeconds < right.mFrames * left.mSeconds, left.mRate < right.mRate)
                << left.mName << " and " << right.mName;
        }
    }
}

TEST(FrameRate, OfAWholeNumber_HasThatNumberAsValue)
{
    // Whole rates that differ by more than one tick round-trip exactly.
    for (int rate = 1; rate <= 18000; ++rate) {
        ASSERT_EQ(rate, FrameRate(rate).GetValue());
        ASSERT_EQ(rate, FrameRate(rate).GetTruncatedValue());
        ASSERT_EQ(-rate, FrameRate(-rate).GetValue());
        ASSERT_EQ(-rate, FrameRate(-rate).GetTruncatedValue());
    }
    EXPECT_NE(0, kTicksPerSecond % 11) << "11 is one of those that have no whole number of ticks";
}

TEST(FrameRate, BetweenWholeNumbers_HasTheQuotientAsValue)
{
    for (const double rate : {29.97, 14.985, 23.98, 0.5, 1.5, 12.5, 99.99, 29.999}) {
        const FrameRate held(rate);
        const double quotient = static_cast<double>(kTicksPerSecond) / static_cast<double>(held.GetTicksPerFrame());
        EXPECT_EQ(quotient, held.GetValue()) << rate;
        EXPECT_EQ(static_cast<long long>(rate), held.GetTruncatedValue()) << rate;
    }
}

TEST(FrameRate, GetTruncatedValue_IsTheValueTruncatedForEveryLengthOfFrame)
{
    for (long long ticks = -1000000; ticks <= 1000000; ++ticks) {
        const FrameRate rate = FrameRate::FromTicksPerFrame(ticks);
        ASSERT_EQ(static_cast<long long>(rate.GetValue()), rate.GetTruncatedValue()) << ticks;
    }
    // Rounding could only affect quotients just below and above a whole number.
    for (long long whole = 1; whole <= 200000; ++whole) {
        for (long long ticks = kTicksPerSecond / whole - 1; ticks <= kTicksPerSecond / whole + 2; ++ticks) {
            const FrameRate rate = FrameRate::FromTicksPerFrame(ticks);
            ASSERT_EQ(static_cast<long long>(rate.GetValue()), rate.GetTruncatedValue()) << ticks;
        }
    }
    for (const long long ticks : {kLongest, -kLongest - 1, 2 * kTicksPerSecond, 2 * kTicksPerSecond + 1,
                                  2 * kTicksPerSecond - 1, kTicksPerSecond + 1}) {
        const FrameRate rate = FrameRate::FromTicksPerFrame(ticks);
        EXPECT_EQ(static_cast<long long>(rate.GetValue()), rate.GetTruncatedValue()) << ticks;
    }
}
