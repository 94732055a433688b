// Integer arithmetic that wraps around in two's complement, and conversions of out-of-range doubles with the same
// results as the x86-64 instructions.
#pragma once

#include <limits>
#include <type_traits>

namespace ORL {
namespace Wrapping {

template <class T>
constexpr std::make_unsigned_t<T> Bits(T inValue) noexcept
{
    return static_cast<std::make_unsigned_t<T>>(inValue);
}

template <class T>
constexpr T Add(T inLeft, T inRight) noexcept
{
    return static_cast<T>(Bits(inLeft) + Bits(inRight));
}

template <class T>
constexpr T Subtract(T inLeft, T inRight) noexcept
{
    return static_cast<T>(Bits(inLeft) - Bits(inRight));
}

template <class T>
constexpr T Multiply(T inLeft, T inRight) noexcept
{
    return static_cast<T>(Bits(inLeft) * Bits(inRight));
}

template <class T>
constexpr T Negate(T inValue) noexcept
{
    return static_cast<T>(0 - Bits(inValue));
}

/// Truncates toward zero. Returns the smallest int for values that do not fit, and for NaN.
constexpr int TruncateToInt(double inValue) noexcept
{
    return inValue > -2147483649.0 && inValue < 2147483648.0 ? static_cast<int>(inValue)
                                                             : std::numeric_limits<int>::min();
}

/// Truncates toward zero. For a negative value, returns the bits of the signed conversion. Returns 2^63 for NaN and for
/// other values that do not fit.
constexpr unsigned long long TruncateToUnsigned64(double inValue) noexcept
{
    constexpr double kHalf = 9223372036854775808.0;
    if (inValue >= kHalf && inValue < 2 * kHalf) {
        return static_cast<unsigned long long>(inValue);
    }
    return inValue >= -kHalf && inValue < kHalf ? Bits(static_cast<long long>(inValue)) : 1ull << 63;
}

} // namespace Wrapping
} // namespace ORL
