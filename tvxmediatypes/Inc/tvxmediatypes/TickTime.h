// A media time.
#pragma once

#include <tvxmediatypes/Config.h>
#include <tvxmediatypes/FrameRate.h>

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

    /// Constructs from a count of ticks.
    static constexpr TickTime FromTicks(long long inTicks) noexcept
    {
        TickTime time;
        time.mTicks = inTicks;
        return time;
    }

    constexpr long long GetTicks() const noexcept { return mTicks; } ///< returns the time in ticks

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

    long long mTicks = 0;
};

static_assert(sizeof(TickTime) == 8, "a time is held in 8 bytes");

} // namespace tvxmediatypes
