// Numbers as the user reads them.
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

    /// True if at least one of the flags is set.
    constexpr bool Has(Bits inFlags) const noexcept { return (mBits & inFlags) != 0; }
    constexpr Bits GetBits() const noexcept { return mBits; }

private:
    Bits mBits = 0;
};

/// Leaves the separators between groups of digits out.
inline constexpr unsigned short kNumberFlag_NoGrouping = 1;

/// The number as the user's locale writes it. Point and grouping are those of UserNumberPunctuation (NumberPunctuation.h),
/// so a number that is shown here also reads back. On Linux digits and sign are those of ASCII; on Windows the sign stands
/// where the user's settings put it.
///
/// inIntegerDigits   0 leaves out the zero before the point of a number below 1; with any other value it is there.
/// inFractionDigits  exactly so many digits stand behind the point, 9 at most; rounded to nearest, ties to even.
/// inPrecision       so many digits count, from the first that is not zero; those behind become zero. A double has no
///                   more than 17 to tell one from another.
/// What rounds to zero has no sign. A number that is none is "NaN", the infinities are U+221E with the sign before it.
/// Throws std::bad_alloc. Thread-safe.
TVXCORE_API UTF16String NumberToString(double inNumber, std::size_t inIntegerDigits, std::size_t inFractionDigits,
                                       Flags<unsigned short> inFlags, long inPrecision);

} // namespace utility
} // namespace tvxcore
