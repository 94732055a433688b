// A media time.
#pragma once

#include <tvxmediatypes/Config.h>
#include <tvxmediatypes/FrameRate.h>

namespace tvxmediatypes {

/// A time or duration on a media timeline, in ticks of 1/705600000 second, held in a signed 64-bit count.
///
/// The count spans about 414 years on either side of zero. Times made from frames are exact. Sums, negation and
/// products wrap around in two's complement, so that no operation is undefined and every loop over times ends.
/// Threads:  a plain value.
/// Example:
///   const tvxmediatypes::TickTime time(90, tvxmediatypes::kFrameRate_Video30);
///   std::cout << time.ToFrame64(tvxmediatypes::kFrameRate_VideoPAL); // 75
class TickTime
{
public:
    /// Zero.
    constexpr TickTime() noexcept = default;

    /// From seconds: the nearest tick, halves away from zero. Times beyond the count become kTime_Max or kTime_Min;
    /// NaN becomes kTime_Invalid. Explicit, since a plain number may as well be a count of frames or a rate.
    TVXMEDIATYPES_API explicit TickTime(double inSeconds) noexcept;

    /// inFrames frames of a rate, exactly. Any number of frames of the zero rate lasts no time.
    constexpr TickTime(long long inFrames, const FrameRate& inFrameRate) noexcept
        : mTicks(Wrap(Bits(inFrames) * Bits(inFrameRate.GetTicksPerFrame())))
    {
    }

    /// From a count of ticks.
    static constexpr TickTime FromTicks(long long inTicks) noexcept
    {
        TickTime time;
        time.mTicks = inTicks;
        return time;
    }

    constexpr long long GetTicks() const noexcept { return mTicks; }

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

    /// Moves the time by exactly inFrames frames of a rate, also from between two frames.
    constexpr void AddFrames(long long inFrames, const FrameRate& inFrameRate) noexcept
    {
        *this += TickTime(inFrames, inFrameRate);
    }

    /// Whole frames of a rate, counted toward zero: the count of -t is the count of t with its sign changed.
    /// 0 for the zero rate.
    constexpr long long ToFrame64(const FrameRate& inFrameRate) const noexcept
    {
        const long long ticksPerFrame = inFrameRate.GetTicksPerFrame();
        // -1 tick is negation, which wraps where the division would trap.
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
    // Sums are taken on the bits, where they wrap by definition.
    static constexpr unsigned long long Bits(long long inValue) noexcept
    {
        return static_cast<unsigned long long>(inValue);
    }
    static constexpr long long Wrap(unsigned long long inBits) noexcept { return static_cast<long long>(inBits); }

    long long mTicks = 0;
};

static_assert(sizeof(TickTime) == 8, "a time is held in 8 bytes");

} // namespace tvxmediatypes
