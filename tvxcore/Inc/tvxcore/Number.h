// Formats numbers for the user's locale.
#pragma once

#include <tvxcore/Config.h>
#include <tvxcore/String.h>

#include <cstddef>

namespace tvxcore {
namespace utility {

/// A set of flags in an integer, empty by default.
template <class Bits>
class Flags
{
public:
    constexpr Flags() noexcept = default;
    constexpr explicit Flags(Bits inBits) noexcept : mBits(inBits) {}

    /// Returns whether at least one of the flags is set.
    constexpr bool Has(Bits inFlags) const noexcept { return (mBits & inFlags) != 0; }
    constexpr Bits GetBits() const noexcept { return mBits; }

private:
    Bits mBits = 0;
};

/// Omits the separators between groups of digits.
inline constexpr unsigned short kNumberFlag_NoGrouping = 1;

/// Formats the number for the user's locale. Decimal point and grouping are those of UserNumberPunctuation
/// (NumberPunctuation.h), so the number can be read back. On Linux digits and sign are ASCII; on Windows the
/// user's settings determine the position of the sign.
///
/// inIntegerDigits   0 omits the zero before the point of a number below 1; any other value writes it.
/// inFractionDigits  the exact number of digits after the point, at most 9; rounded to nearest, ties to even.
/// inPrecision       the number of significant digits, counted from the first nonzero one; later digits become
///                   zero. Values above 17 make no difference.
/// A number that rounds to zero has no sign. NaN is "NaN"; the infinities are U+221E after the sign. Throws
/// std::bad_alloc. Thread-safe.
TVXCORE_API UTF16String NumberToString(double inNumber, std::size_t inIntegerDigits, std::size_t inFractionDigits,
                                       Flags<unsigned short> inFlags, long inPrecision);

} // namespace utility
} // namespace tvxcore
