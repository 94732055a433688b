// A rate of frames or samples, stored as the duration of one frame or sample.
#pragma once

#include <tvxmediatypes/Config.h>

namespace tvxmediatypes {

/// Ticks in one second. A tick is one flick: the largest time unit that divides the frame duration of every rate used
/// in media, including the fractional video rates (24000, 30000, 60000 frames per 1001 s) and all audio sample rates.
inline constexpr long long kTicksPerSecond = 705600000;

/// A rate, stored as ticks per frame, so that rates compare exactly.
///
/// Zero frames per second is the default, stored as zero ticks. Rates whose frame is not a whole number of ticks are
/// rounded (see the constructor). A negative rate is allowed and orders below zero; no operation is undefined.
/// Threads:  a plain value, without synchronisation.
/// Failure:  never throws.
class FrameRate
{
public:
    /// Constructs a rate of zero frames per second.
    constexpr FrameRate() noexcept = default;

    /// Constructs from frames per second. Rounds the tick count, computed in double precision, to nearest, ties away
    /// from zero. Rates above one frame per tick become one frame per tick; a tick count that does not fit becomes the
    /// largest count. Zero and NaN become zero. Explicit, since a plain number could also be a time in seconds.
    constexpr explicit FrameRate(double inFramesPerSecond) noexcept : mTicksPerFrame(TicksOf(inFramesPerSecond)) {}

    /// Constructs from the duration of one frame, in ticks.
    static constexpr FrameRate FromTicksPerFrame(long long inTicks) noexcept
    {
        FrameRate rate;
        rate.mTicksPerFrame = inTicks;
        return rate;
    }

    /// Returns the duration of one frame in ticks; 0 for the zero rate.
    constexpr long long GetTicksPerFrame() const noexcept { return mTicksPerFrame; }

    /// Returns frames per second; 0 for the zero rate. For each rate in Constants.h, the double nearest to the true
    /// value. If the ticks are those of a whole rate, returns the whole number, so that rounding to ticks does not turn
    /// 11 frames into 10.9999999.
    constexpr double GetValue() const noexcept
    {
        if (mTicksPerFrame == 0) {
            return 0.0;
        }
        const long long whole = WholeRate();
        return whole != 0 ? static_cast<double>(whole)
                          : static_cast<double>(kTicksPerSecond) / static_cast<double>(mTicksPerFrame);
    }

    /// Returns GetValue truncated toward zero.
    constexpr long long GetTruncatedValue() const noexcept
    {
        if (mTicksPerFrame == 0) {
            return 0;
        }
        // Truncates like GetValue: no quotient is so close below a whole number that its double rounds to that number.
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
    /// Orders exactly by frames per second; the order is total.
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

    // Returns the nearest whole rate if it rounds to the same ticks, else 0. Must not be called for the zero rate.
    constexpr long long WholeRate() const noexcept
    {
        if (mTicksPerFrame > 2 * kTicksPerSecond || mTicksPerFrame < -2 * kTicksPerSecond) {
            return 0;
        }
        const long long ticks = mTicksPerFrame < 0 ? -mTicksPerFrame : mTicksPerFrame;
        const long long nearest = (kTicksPerSecond + ticks / 2) / ticks;
        // Ties round away from zero, so ticks may be up to half a tick too long, but less than half a tick too short.
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
        // Below this rate the quotient does not fit into a tick count; for a rate near zero it is infinite.
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
