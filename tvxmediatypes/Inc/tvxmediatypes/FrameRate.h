// A rate of frames or samples, held as the time that one of them lasts.
#pragma once

#include <tvxmediatypes/Config.h>

namespace tvxmediatypes {

/// Ticks in one second. A tick is one flick: the largest unit of time of which every rate that media use, the
/// fractional video rates (24000, 30000 and 60000 in 1001 seconds) and all audio sample rates, lasts a whole number.
inline constexpr long long kTicksPerSecond = 705600000;

/// A rate, held as ticks per frame, so that rates compare exactly.
///
/// Zero frames per second is held as zero ticks and is the default. Rates that no whole number of ticks expresses are
/// rounded (see the constructor). A negative rate is allowed and orders below zero; nothing here is undefined.
/// Threads:  a plain value.
class FrameRate
{
public:
    /// Zero frames per second.
    constexpr FrameRate() noexcept = default;

    /// From frames per second: the nearest tick count, halves away from zero, of the quotient in double precision.
    /// Rates above one frame a tick become one frame a tick; rates so slow that the count does not fit get the
    /// largest count. Zero and NaN give zero. Explicit, since a plain number may as well be a time in seconds.
    constexpr explicit FrameRate(double inFramesPerSecond) noexcept
        : mTicksPerFrame(TicksOf(inFramesPerSecond))
    {
    }

    /// From the time that one frame lasts.
    static constexpr FrameRate FromTicksPerFrame(long long inTicks) noexcept
    {
        FrameRate rate;
        rate.mTicksPerFrame = inTicks;
        return rate;
    }

    /// How long one frame lasts; 0 for the zero rate.
    constexpr long long GetTicksPerFrame() const noexcept { return mTicksPerFrame; }

    /// Frames per second; 0 for the zero rate. For every listed rate this is the double nearest to the true value.
    /// Where the ticks are those of a whole rate it is the whole number: rounding to ticks must not make 10.9999999
    /// frames out of 11.
    constexpr double GetValue() const noexcept
    {
        if (mTicksPerFrame == 0) {
            return 0.0;
        }
        const long long whole = WholeRate();
        return whole != 0 ? static_cast<double>(whole)
                          : static_cast<double>(kTicksPerSecond) / static_cast<double>(mTicksPerFrame);
    }

    /// GetValue truncated toward zero.
    constexpr long long GetTruncatedValue() const noexcept
    {
        if (mTicksPerFrame == 0) {
            return 0;
        }
        // No quotient lies so close below a whole number that a double would be rounded up to it.
        const long long whole = WholeRate();
        return whole != 0 ? whole : kTicksPerSecond / mTicksPerFrame;
    }

    friend constexpr bool operator==(const FrameRate& inLeft, const FrameRate& inRight) noexcept
    {
        return inLeft.mTicksPerFrame == inRight.mTicksPerFrame;
    }
    friend constexpr bool operator!=(const FrameRate& inLeft, const FrameRate& inRight) noexcept
    {
        return !(inLeft == inRight);
    }
    /// By frames per second, exactly and totally.
    friend constexpr bool operator<(const FrameRate& inLeft, const FrameRate& inRight) noexcept
    {
        const int left = inLeft.Sign();
        const int right = inRight.Sign();
        return left != right ? left < right : inLeft.mTicksPerFrame > inRight.mTicksPerFrame;
    }
    friend constexpr bool operator>(const FrameRate& inLeft, const FrameRate& inRight) noexcept
    {
        return inRight < inLeft;
    }
    friend constexpr bool operator<=(const FrameRate& inLeft, const FrameRate& inRight) noexcept
    {
        return !(inRight < inLeft);
    }
    friend constexpr bool operator>=(const FrameRate& inLeft, const FrameRate& inRight) noexcept
    {
        return !(inLeft < inRight);
    }

private:
    constexpr int Sign() const noexcept { return (mTicksPerFrame > 0) - (mTicksPerFrame < 0); }

    // The whole rate nearest to this one if it rounds to the same ticks, else 0. Not for the zero rate.
    constexpr long long WholeRate() const noexcept
    {
        if (mTicksPerFrame > 2 * kTicksPerSecond || mTicksPerFrame < -2 * kTicksPerSecond) {
            return 0;
        }
        const long long ticks = mTicksPerFrame < 0 ? -mTicksPerFrame : mTicksPerFrame;
        const long long nearest = (kTicksPerSecond + ticks / 2) / ticks;
        // Halves round away from zero: up to half a tick too long, less than half a tick too short.
        const long long tooLong = 2 * (nearest * ticks - kTicksPerSecond);
        if (tooLong > nearest || tooLong <= -nearest) {
            return 0;
        }
        return mTicksPerFrame < 0 ? -nearest : nearest;
    }

    static constexpr long long TicksOf(double inFramesPerSecond) noexcept
    {
        if (inFramesPerSecond < 0.0) {
            return -TicksOf(-inFramesPerSecond);
        }
        if (!(inFramesPerSecond > 0.0)) {
            return 0;
        }
        constexpr long long kLongest = 0x7FFFFFFFFFFFFFFF;
        // Below this rate the quotient does not fit, and a rate next to zero would even make it infinite.
        constexpr double kSlowest = static_cast<double>(kTicksPerSecond) / 9223372036854775808.0;
        if (inFramesPerSecond <= kSlowest) {
            return kLongest;
        }
        const double quotient = static_cast<double>(kTicksPerSecond) / inFramesPerSecond;
        const long long whole = static_cast<long long>(quotient);
        const long long nearest = whole + (quotient - static_cast<double>(whole) >= 0.5 ? 1 : 0);
        return nearest != 0 ? nearest : 1;
    }

    long long mTicksPerFrame = 0;
};

static_assert(sizeof(FrameRate) == 8, "a rate is held in 8 bytes");

} // namespace tvxmediatypes
