// A media time.
#pragma once

#include <tvxmediatypes/Config.h>
#include <tvxmediatypes/FrameRate.h>

#include <chrono>
#include <limits>
#include <ratio>
#include <type_traits>

namespace tvxmediatypes {

/// A time or duration on a media timeline, in ticks of 1/705600000 second, stored as a signed 64-bit count.
///
/// The count spans about 414 years on either side of zero. Times from frames are exact. Sums, negation and products
/// wrap around in two's complement, so no operation is undefined.
/// Threads:  a plain value, without synchronisation.
/// Failure:  never throws.
/// Example:
///   const tvxmediatypes::TickTime time(90, tvxmediatypes::kFrameRate_Video30);
///   std::cout << time.ToFrame64(tvxmediatypes::kFrameRate_VideoPAL); // 75
///   const tvxmediatypes::TickTime later = time + tvxmediatypes::TickTime(std::chrono::milliseconds(1500));
///   std::cout << later.GetSeconds(); // 4.5
class TickTime
{
public:
    /// Constructs the time zero.
    constexpr TickTime() noexcept = default;

    /// Constructs from seconds, rounded to the nearest tick, ties away from zero. Times out of range become kTime_Max
    /// or kTime_Min; NaN becomes kTime_Invalid. Explicit, since a plain number could also be a count of frames or a
    /// rate.
    TVXMEDIATYPES_API explicit TickTime(double inSeconds) noexcept;

    /// Constructs the exact time of inFrames frames at a rate; the time zero for the zero rate.
    constexpr TickTime(long long inFrames, const FrameRate& inFrameRate) noexcept
        : mTicks(Wrap(Bits(inFrames) * Bits(inFrameRate.GetTicksPerFrame())))
    {
    }

    /// Constructs from a duration, rounded to the nearest tick, ties away from zero. Whole numbers of milliseconds
    /// are exact; a nanosecond is 0.7056 ticks. Durations out of range become kTime_Max or
    /// kTime_Min. A floating-point duration is converted as seconds are, so NaN becomes kTime_Invalid.
    template <class Rep, class Period, std::enable_if_t<std::is_arithmetic_v<Rep>, int> = 0>
    constexpr explicit TickTime(const std::chrono::duration<Rep, Period>& inDuration) noexcept
        : mTicks(TicksOf(inDuration))
    {
    }

    /// Constructs from a count of ticks.
    static constexpr TickTime FromTicks(long long inTicks) noexcept
    {
        TickTime time;
        time.mTicks = inTicks;
        return time;
    }

    constexpr long long GetTicks() const noexcept { return mTicks; } ///< returns the time in ticks

    /// Returns the time in seconds; NaN for kTime_Invalid. TickTime(GetSeconds()) is the same time up to 2^52 ticks (73
    /// days) on either side of zero; beyond that a double cannot distinguish neighbouring ticks.
    constexpr double GetSeconds() const noexcept
    {
        return mTicks == (std::numeric_limits<long long>::min)()
                   ? std::numeric_limits<double>::quiet_NaN()
                   : static_cast<double>(mTicks) / static_cast<double>(kTicksPerSecond);
    }

    /// Returns the time as a duration: time.ToDuration<std::chrono::milliseconds>(). Rounds to the nearest count, ties
    /// away from zero, so whole microseconds and longer units survive the conversion to ticks and back. A time that the
    /// duration cannot hold becomes Duration::max() or Duration::min(); kTime_Invalid is converted like the earliest
    /// time. A floating-point duration is computed from GetSeconds.
    template <class Duration>
    constexpr Duration ToDuration() const noexcept
    {
        using Rep = typename Duration::rep;
        static_assert(std::is_arithmetic_v<Rep>, "the count of the duration is a number");
        if constexpr (std::is_floating_point_v<Rep>) {
            return std::chrono::duration_cast<Duration>(std::chrono::duration<double>(GetSeconds()));
        } else {
            using Ratio = TicksPerUnit<typename Duration::period>;
            static_assert(Ratio::num <= (std::numeric_limits<long long>::max)() / Ratio::den,
                          "the period of the duration is too fine or too odd for ticks");
            constexpr auto kMost = static_cast<unsigned long long>((std::numeric_limits<Rep>::max)());
            constexpr unsigned long long kLeast = std::is_signed_v<Rep> ? kMost + 1 : 0;
            const bool isNegative = mTicks < 0;
            const unsigned long long count =
                Scale(Magnitude(mTicks), Ratio::den, Ratio::num, isNegative ? kLeast : kMost);
            return Duration(static_cast<Rep>(isNegative ? 0 - count : count));
        }
    }

    constexpr TickTime operator-() const noexcept { return FromTicks(Wrap(0 - Bits(mTicks))); }

    constexpr TickTime& operator+=(const TickTime& inTime) noexcept
    {
        mTicks = Wrap(Bits(mTicks) + Bits(inTime.mTicks));
        return *this;
    }
    constexpr TickTime& operator-=(const TickTime& inTime) noexcept
    {
        mTicks = Wrap(Bits(mTicks) - Bits(inTime.mTicks));
        return *this;
    }

    /// Adds exactly inFrames frames of a rate. The time need not be on a frame boundary.
    constexpr void AddFrames(long long inFrames, const FrameRate& inFrameRate) noexcept
    {
        *this += TickTime(inFrames, inFrameRate);
    }

    /// Returns the number of whole frames of a rate, truncated toward zero: the count of -t is the negated count of t.
    /// Returns 0 for the zero rate.
    constexpr long long ToFrame64(const FrameRate& inFrameRate) const noexcept
    {
        const long long ticksPerFrame = inFrameRate.GetTicksPerFrame();
        // For frames of -1 tick, negates, which wraps around; dividing the smallest count by -1 would trap.
        if (ticksPerFrame == 0 || ticksPerFrame == -1) {
            return ticksPerFrame == 0 ? 0 : (-*this).mTicks;
        }
        return mTicks / ticksPerFrame;
    }

    friend constexpr bool operator==(const TickTime& inLeft, const TickTime& inRight) noexcept
    {
        return inLeft.mTicks == inRight.mTicks;
    }
    friend constexpr bool operator!=(const TickTime& inLeft, const TickTime& inRight) noexcept
    {
        return inLeft.mTicks != inRight.mTicks;
    }
    friend constexpr bool operator<(const TickTime& inLeft, const TickTime& inRight) noexcept
    {
        return inLeft.mTicks < inRight.mTicks;
    }
    friend constexpr bool operator>(const TickTime& inLeft, const TickTime& inRight) noexcept
    {
        return inLeft.mTicks > inRight.mTicks;
    }
    friend constexpr bool operator<=(const TickTime& inLeft, const TickTime& inRight) noexcept
    {
        return inLeft.mTicks <= inRight.mTicks;
    }
    friend constexpr bool operator>=(const TickTime& inLeft, const TickTime& inRight) noexcept
    {
        return inLeft.mTicks >= inRight.mTicks;
    }

private:
    // Computes on unsigned values, which wrap by definition.
    static constexpr unsigned long long Bits(long long inValue) noexcept
    {
        return static_cast<unsigned long long>(inValue);
    }
    static constexpr long long Wrap(unsigned long long inBits) noexcept { return static_cast<long long>(inBits); }

    template <class Period>
    using TicksPerUnit = std::ratio_multiply<Period, std::ratio<kTicksPerSecond>>;

    static constexpr unsigned long long Magnitude(long long inValue) noexcept
    {
        return inValue < 0 ? 0 - Bits(inValue) : Bits(inValue);
    }

    // Returns inValue * inNumerator / inDenominator, rounded to nearest, ties up, but at most inLimit. Numerator and
    // denominator must be above 0, and their product must fit.
    static constexpr unsigned long long Scale(unsigned long long inValue, unsigned long long inNumerator,
                                              unsigned long long inDenominator, unsigned long long inLimit) noexcept
    {
        const unsigned long long whole = inValue / inDenominator;
        const unsigned long long product = inValue % inDenominator * inNumerator;
        const unsigned long long rest = product % inDenominator;
        const unsigned long long part = product / inDenominator + (rest >= inDenominator - rest ? 1 : 0);
        if (part > inLimit || whole > (inLimit - part) / inNumerator) {
            return inLimit;
        }
        return whole * inNumerator + part;
    }

    template <class Rep, class Period>
    static constexpr long long TicksOf(const std::chrono::duration<Rep, Period>& inDuration) noexcept
    {
        if constexpr (std::is_floating_point_v<Rep>) {
            return TickTime(std::chrono::duration<double>(inDuration).count()).mTicks;
        } else {
            using Ratio = TicksPerUnit<Period>;
            constexpr auto kMost = static_cast<unsigned long long>((std::numeric_limits<long long>::max)());
            static_assert(Ratio::num <= (std::numeric_limits<long long>::max)() / Ratio::den,
                          "the period of the duration is too fine or too odd for ticks");
            const bool isNegative = inDuration.count() < Rep(0);
            const auto bits = static_cast<unsigned long long>(inDuration.count());
            const unsigned long long ticks = Scale(isNegative ? 0 - bits : bits, Ratio::num, Ratio::den, kMost);
            return Wrap(isNegative ? 0 - ticks : ticks);
        }
    }

    long long mTicks = 0;
};

static_assert(sizeof(TickTime) == 8, "a time is held in 8 bytes");

namespace Internal {

template <class Time>
using IfTickTime = std::enable_if_t<std::is_same_v<Time, TickTime>, int>;

template <class Number>
using IfWhole = std::enable_if_t<std::is_integral_v<Number> && sizeof(Number) <= sizeof(long long), int>;

/// Returns a quotient truncated toward zero. Must not be called with 0.
template <class Number>
constexpr long long DivideTicks(long long inTicks, Number inDivisor) noexcept
{
    constexpr long long kLeast = (std::numeric_limits<long long>::min)();
    if constexpr (std::is_unsigned_v<Number>) {
        constexpr auto kMost = static_cast<unsigned long long>((std::numeric_limits<long long>::max)());
        if (inDivisor > kMost) {
            return inTicks == kLeast && inDivisor == kMost + 1 ? -1 : 0;
        }
    } else if (inDivisor == -1) {
        return (-TickTime::FromTicks(inTicks)).GetTicks(); // the negation wraps; a division would trap
    }
    return inTicks / static_cast<long long>(inDivisor);
}

} // namespace Internal

// Arithmetic. Sums and products wrap around. The operators are templates because overload resolution prefers
// non-template functions: a host's own operator for TickTime takes precedence instead of becoming ambiguous.

/// Adds two times.
template <class Time, Internal::IfTickTime<Time> = 0>
constexpr Time operator+(const Time& inLeft, const Time& inRight) noexcept
{
    Time sum = inLeft;
    return sum += inRight;
}

/// Subtracts inRight from inLeft.
template <class Time, Internal::IfTickTime<Time> = 0>
constexpr Time operator-(const Time& inLeft, const Time& inRight) noexcept
{
    Time difference = inLeft;
    return difference -= inRight;
}

/// Multiplies by a whole number. A product with a fraction does not compile; use GetSeconds, which rounds.
template <class Time, class Number, Internal::IfTickTime<Time> = 0, Internal::IfWhole<Number> = 0>
constexpr Time operator*(const Time& inTime, Number inFactor) noexcept
{
    // The low 64 bits of a product do not depend on the signs of its factors.
    return Time::FromTicks(static_cast<long long>(static_cast<unsigned long long>(inTime.GetTicks())
                                                  * static_cast<unsigned long long>(inFactor)));
}

/// Multiplies by a whole number.
template <class Time, class Number, Internal::IfTickTime<Time> = 0, Internal::IfWhole<Number> = 0>
constexpr Time operator*(Number inFactor, const Time& inTime) noexcept
{
    return inTime * inFactor;
}

/// Divides by a whole number, truncated toward zero. Division by 0 returns kTime_Invalid.
template <class Time, class Number, Internal::IfTickTime<Time> = 0, Internal::IfWhole<Number> = 0>
constexpr Time operator/(const Time& inTime, Number inDivisor) noexcept
{
    return Time::FromTicks(inDivisor == 0 ? (std::numeric_limits<long long>::min)()
                                          : Internal::DivideTicks(inTime.GetTicks(), inDivisor));
}

/// Returns how many times inRight fits into inLeft, truncated toward zero; 0 if inRight is zero.
template <class Time, Internal::IfTickTime<Time> = 0>
constexpr long long operator/(const Time& inLeft, const Time& inRight) noexcept
{
    return inRight.GetTicks() == 0 ? 0 : Internal::DivideTicks(inLeft.GetTicks(), inRight.GetTicks());
}

/// Returns the remainder of that division, with the sign of inLeft: inLeft itself if inRight is zero.
template <class Time, Internal::IfTickTime<Time> = 0>
constexpr Time operator%(const Time& inLeft, const Time& inRight) noexcept
{
    return inLeft - inRight * (inLeft / inRight);
}

/// Multiplies the time by a whole number.
template <class Time, class Number, Internal::IfTickTime<Time> = 0, Internal::IfWhole<Number> = 0>
constexpr Time& operator*=(Time& ioTime, Number inFactor) noexcept
{
    return ioTime = ioTime * inFactor;
}

/// Divides the time by a whole number, like operator/.
template <class Time, class Number, Internal::IfTickTime<Time> = 0, Internal::IfWhole<Number> = 0>
constexpr Time& operator/=(Time& ioTime, Number inDivisor) noexcept
{
    return ioTime = ioTime / inDivisor;
}

} // namespace tvxmediatypes
