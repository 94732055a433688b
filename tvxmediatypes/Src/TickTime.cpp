#include <tvxmediatypes/Constants.h>
#include <tvxmediatypes/TickTime.h>

#include <cmath>
#include <cstdint>

namespace tvxmediatypes {

namespace {

// The product of a 53-bit significand and kTicksPerSecond needs 83 bits; rounding uses all of them.
__extension__ typedef unsigned __int128 Wide;

constexpr int kSignificandBits = 53;

// Returns the ticks of a time, which must not be negative and must fit; the shift is then at least 19.
long long NearestTick(double inSeconds) noexcept
{
    int exponent = 0;
    const double fraction = std::frexp(inSeconds, &exponent);
    const auto significand = static_cast<std::uint64_t>(std::ldexp(fraction, kSignificandBits));
    const Wide product = static_cast<Wide>(significand) * static_cast<Wide>(kTicksPerSecond);
    const int shift = kSignificandBits - exponent;
    if (shift > 100) {
        return 0; // the time is far below half a tick
    }
    const Wide half = static_cast<Wide>(1) << (shift - 1);
    return static_cast<long long>((product + half) >> shift);
}

} // namespace

TickTime::TickTime(double inSeconds) noexcept
{
    // The largest double whose ticks fit: 640 ticks below the largest count; the next double is 705 ticks above it.
    constexpr double kLast = 9223372036854775808.0 / static_cast<double>(kTicksPerSecond);
    if (std::isnan(inSeconds)) {
        *this = kTime_Invalid;
    } else if (inSeconds > kLast) {
        *this = kTime_Max;
    } else if (inSeconds < -kLast) {
        *this = kTime_Min;
    } else {
        mTicks = inSeconds < 0.0 ? -NearestTick(-inSeconds) : NearestTick(inSeconds);
    }
}

} // namespace tvxmediatypes
