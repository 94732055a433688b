#include "Rates.h"

#include <gtest/gtest.h>

#include <chrono>
#include <cmath>
#include <cstdint>
#include <limits>
#include <random>
#include <type_traits>

using namespace tvxmediatypes;
using namespace std::chrono_literals;

namespace {

__extension__ typedef __int128 Wide;
__extension__ typedef unsigned __int128 UnsignedWide;

constexpr long long kMost = std::numeric_limits<long long>::max();
constexpr long long kLeast = std::numeric_limits<long long>::min();
constexpr TickTime kTick = TickTime::FromTicks(1);

long long Wrapped(Wide inValue)
{
    return static_cast<long long>(static_cast<unsigned long long>(static_cast<UnsignedWide>(inValue)));
}

// Returns a number of random length: small numbers, large numbers and the limits are equally frequent.
long long AnyLength(std::mt19937_64& ioRandom)
{
    switch (ioRandom() % 16) {
    case 0: return kLeast;
    case 1: return kMost;
    case 2: return static_cast<long long>(ioRandom() % 5) - 2;
    default: return static_cast<long long>(ioRandom()) >> (ioRandom() % 64);
    }
}

// Returns inValue * inNumerator / inDenominator, rounded to nearest, ties away from zero, within two limits.
long long Rounded(long long inValue, long long inNumerator, long long inDenominator, Wide inLeast, Wide inMost)
{
    const Wide product = Wide{inValue} * inNumerator;
    const Wide half = inDenominator / 2;
    // Exact for odd denominators too: no product then lies halfway.
    const Wide quotient = (product < 0 ? product - half : product + half) / inDenominator;
    return static_cast<long long>(quotient < inLeast ? inLeast : quotient > inMost ? inMost : quotient);
}

template <class Duration>
void ExpectExactConversions(const char* inName)
{
    using Ratio = std::ratio_multiply<typename Duration::period, std::ratio<kTicksPerSecond>>;
    std::mt19937_64 random(17);
    for (int round = 0; round < 20000; ++round) {
        const long long number = AnyLength(random);
        ASSERT_EQ(Rounded(number, Ratio::num, Ratio::den, -Wide{kMost}, kMost), TickTime(Duration(number)).GetTicks())
            << number << " " << inName;
        ASSERT_EQ(Rounded(number, Ratio::den, Ratio::num, kLeast, kMost),
                  TickTime::FromTicks(number).ToDuration<Duration>().count())
            << number << " ticks as " << inName;
    }
}

template <class Left, class Right, class = void>
struct CanMultiply : std::false_type
{
};
template <class Left, class Right>
struct CanMultiply<Left, Right, std::void_t<decltype(std::declval<Left>() * std::declval<Right>())>> : std::true_type
{
};

} // namespace

static_assert(TickTime(90, kFrameRate_Video30) + TickTime(1500ms) == TickTime(135, kFrameRate_Video30));
static_assert(TickTime(1h) == TickTime(3600 * 24, kFrameRate_Film24));
static_assert((kTick * 3 - kTick) / 2 == kTick && 7 * kTick % (kTick * 4) == kTick * 3);
static_assert(TickTime(1s).ToDuration<std::chrono::milliseconds>() == 1000ms);
static_assert(CanMultiply<TickTime, int>::value && CanMultiply<unsigned char, TickTime>::value);
static_assert(!CanMultiply<TickTime, double>::value && !CanMultiply<float, TickTime>::value, "it would be truncated");
static_assert(!CanMultiply<TickTime, TickTime>::value, "a product of two times is not a time");
static_assert(!std::is_convertible_v<std::chrono::seconds, TickTime>, "the conversion is written out");

TEST(TickTimeArithmetic, RandomOperands_WrapLikeTheExactResults)
{
    std::mt19937_64 random(1);
    for (int round = 0; round < 100000; ++round) {
        const long long left = AnyLength(random);
        const long long right = AnyLength(random);
        const TickTime a = TickTime::FromTicks(left);
        const TickTime b = TickTime::FromTicks(right);
        ASSERT_EQ(Wrapped(Wide{left} + right), (a + b).GetTicks()) << left << " " << right;
        ASSERT_EQ(Wrapped(Wide{left} - right), (a - b).GetTicks()) << left << " " << right;
        ASSERT_EQ(Wrapped(Wide{left} * right), (a * right).GetTicks()) << left << " " << right;
        ASSERT_EQ(Wrapped(Wide{left} * right), (right * a).GetTicks()) << left << " " << right;
        if (right != 0) {
            ASSERT_EQ(Wrapped(Wide{left} / right), (a / right).GetTicks()) << left << " " << right;
            ASSERT_EQ(Wrapped(Wide{left} / right), a / b) << left << " " << right;
            ASSERT_EQ(Wrapped(Wide{left} % right), (a % b).GetTicks()) << left << " " << right;
        }
        const auto positive = static_cast<unsigned long long>(right);
        ASSERT_EQ(Wrapped(Wide{left} * static_cast<Wide>(positive)), (a * positive).GetTicks()) << left << " " << right;
        if (positive != 0) {
            ASSERT_EQ(static_cast<long long>(left / static_cast<Wide>(positive)), (a / positive).GetTicks())
                << left << " " << positive;
        }
    }
}

TEST(TickTimeArithmetic, Division_IsDefinedForEveryDivisor)
{
    const TickTime least = TickTime::FromTicks(kLeast);
    EXPECT_EQ(kTime_Invalid, kTick / 0);
    EXPECT_EQ(kTime_Invalid, kTick / 0u);
    EXPECT_EQ(0, kTick / kTime_Zero);
    EXPECT_EQ(kTick, kTick % kTime_Zero);
    EXPECT_EQ(least, least / -1) << "the quotient wraps as a negation does";
    EXPECT_EQ(kLeast, least / -kTick);
    EXPECT_EQ(kTime_Zero, least % -kTick);
    EXPECT_EQ(-kTick, least / 9223372036854775808u);
    EXPECT_EQ(kTime_Zero, kTime_Max / 9223372036854775808u);
}

TEST(TickTimeArithmetic, CompoundOperators_ChangeTheTime)
{
    TickTime time = kTick * 6;
    time *= 7;
    EXPECT_EQ(42, time.GetTicks());
    time /= std::size_t{4};
    EXPECT_EQ(10, time.GetTicks());
    (time *= 2) /= -3;
    EXPECT_EQ(-6, time.GetTicks());
}

TEST(TickTimeDurations, EachPeriod_ConvertsExactlyAndRoundsToNearest)
{
    ExpectExactConversions<std::chrono::nanoseconds>("nanoseconds");
    ExpectExactConversions<std::chrono::microseconds>("microseconds");
    ExpectExactConversions<std::chrono::milliseconds>("milliseconds");
    ExpectExactConversions<std::chrono::duration<long long>>("seconds");
    ExpectExactConversions<std::chrono::duration<long long, std::ratio<3600>>>("hours");
    ExpectExactConversions<std::chrono::duration<long long, std::ratio<1001, 30000>>>("frames");
    ExpectExactConversions<std::chrono::duration<long long, std::ratio<1, 48000>>>("samples");
    ExpectExactConversions<std::chrono::duration<long long, std::ratio<1, 90000>>>("clock ticks");
    ExpectExactConversions<std::chrono::duration<long long, std::ratio<7, 1000003>>>("odd units");
}

TEST(TickTimeDurations, WholeMicroseconds_SurviveBothConversions)
{
    std::mt19937_64 random(2);
    for (int round = 0; round < 100000; ++round) {
        const std::chrono::microseconds duration(static_cast<std::int64_t>(random()) >> 12);
        ASSERT_EQ(duration, TickTime(duration).ToDuration<std::chrono::microseconds>()) << duration.count();
    }
}

TEST(TickTimeDurations, OutOfRange_BecomesTheLimit)
{
    using Years = std::chrono::duration<int, std::ratio<31556952>>;
    EXPECT_EQ(kTime_Max, TickTime(Years(1000)));
    EXPECT_EQ(kTime_Min, TickTime(Years(-1000)));
    EXPECT_EQ(kTime_Max, TickTime(std::chrono::duration<unsigned long long>(~0ull)));
    EXPECT_EQ(kTime_Min, TickTime(std::chrono::duration<long long>(kLeast)));

    using ShortMilliseconds = std::chrono::duration<short, std::milli>;
    EXPECT_EQ(ShortMilliseconds::max(), TickTime(33s).ToDuration<ShortMilliseconds>());
    EXPECT_EQ(ShortMilliseconds::min(), TickTime(-33s).ToDuration<ShortMilliseconds>());
    EXPECT_EQ(-32768, TickTime(-32768ms).ToDuration<ShortMilliseconds>().count());
    using Unsigned = std::chrono::duration<unsigned int>;
    EXPECT_EQ(0u, TickTime(-5s).ToDuration<Unsigned>().count());
    EXPECT_EQ(5u, TickTime(5s).ToDuration<Unsigned>().count());
    EXPECT_EQ(std::chrono::nanoseconds::max(), kTime_Max.ToDuration<std::chrono::nanoseconds>());
    EXPECT_EQ(std::chrono::nanoseconds::min(), kTime_Invalid.ToDuration<std::chrono::nanoseconds>());
}

TEST(TickTimeDurations, FloatingPoint_ConvertsAsItsSecondsDo)
{
    EXPECT_EQ(TickTime(0.25), TickTime(std::chrono::duration<double, std::milli>(250.0)));
    EXPECT_EQ(TickTime(0.5), TickTime(std::chrono::duration<float>(0.5f)));
    EXPECT_EQ(kTime_Invalid, TickTime(std::chrono::duration<double>(std::nan(""))));
    EXPECT_EQ(kTime_Max, TickTime(std::chrono::duration<double>(1e300)));
    EXPECT_EQ(1250.0, (TickTime(1250ms).ToDuration<std::chrono::duration<double, std::milli>>().count()));
    EXPECT_TRUE(std::isnan(kTime_Invalid.ToDuration<std::chrono::duration<float>>().count()));
}

TEST(TickTimeSeconds, UpTo52Bits_ComeBackExactly)
{
    constexpr long long kLimit = 1ll << 52;
    for (const long long ticks : {0ll, 1ll, -1ll, kLimit, -kLimit, kLimit - 1, kTicksPerSecond, kTicksPerSecond - 1}) {
        EXPECT_EQ(ticks, TickTime(TickTime::FromTicks(ticks).GetSeconds()).GetTicks());
    }
    std::mt19937_64 random(3);
    for (int round = 0; round < 200000; ++round) {
        const long long ticks = static_cast<long long>(random()) >> (11 + random() % 50);
        ASSERT_EQ(ticks, TickTime(TickTime::FromTicks(ticks).GetSeconds()).GetTicks()) << ticks;
    }
    EXPECT_EQ(1.5, TickTime(1500ms).GetSeconds());
    EXPECT_TRUE(std::isnan(kTime_Invalid.GetSeconds()));
    EXPECT_EQ(kTime_Invalid, TickTime(kTime_Invalid.GetSeconds()));
}
