// A locale's decimal point and digit grouping. Numbers are formatted and parsed with the same punctuation, so
// that a formatted number can be parsed back.
#pragma once

#include <tvxcore/Config.h>

#include <string>

namespace tvxcore {
namespace utility {

/// A value type. Defaults to the punctuation of the classic locale.
struct NumberPunctuation
{
    unsigned short mDecimalPoint = '.';       ///< between whole number and fraction
    unsigned short mThousandsSeparator = ','; ///< between groups of digits

    /// Sizes of the digit groups from the right, in the format of std::numpunct: each character is a number, the
    /// last one repeats, CHAR_MAX ends the grouping. Empty if digits are not grouped.
    std::string mGrouping;
};

/// Finds the punctuation of a locale by its name: "de-DE", or on Linux also "de_DE.UTF-8@euro". The locale need not be
/// installed.
///
/// Returns false, with outPunctuation untouched, for the classic locale ("C", "POSIX") and for an unknown name. Throws
/// std::bad_alloc. Thread-safe.
TVXCORE_API bool FindNumberPunctuation(const char* inLocale, NumberPunctuation& outPunctuation);

/// Returns the user's punctuation, which is determined on the first call and does not change afterwards.
///
/// On Linux the user's locale is that of LC_ALL, LC_NUMERIC or LANG, the first that is set. If this library does not
/// know the name but the locale is installed, the installed data apply; any other name is treated as the classic
/// locale. On Windows the user's settings apply. The first call throws std::bad_alloc. Thread-safe if no thread changes
/// the environment during the first call.
TVXCORE_API const NumberPunctuation& UserNumberPunctuation();

} // namespace utility
} // namespace tvxcore
