// How a locale separates the digits of a number. What shows numbers and what reads them both ask here, so that a number
// that was shown reads back.
#pragma once

#include <tvxcore/Config.h>

#include <string>

namespace tvxcore {
namespace utility {

/// As constructed, that of the classic locale.
struct NumberPunctuation
{
    unsigned short mDecimalPoint = '.';
    unsigned short mThousandsSeparator = ',';

    /// Sizes of the groups of digits from the right, as std::numpunct has them: each character is a number, the last one
    /// repeats, CHAR_MAX ends the grouping. Empty where digits are not grouped.
    std::string mGrouping;
};

/// Finds the punctuation of a locale by its name: "de-DE", or on Linux also "de_DE.UTF-8@euro".
///
/// Returns false, and leaves outPunctuation as it is, for the classic locale ("C", "POSIX") and for an unknown name. The
/// locale need not be installed. Throws std::bad_alloc. Thread-safe.
TVXCORE_API bool FindNumberPunctuation(const char* inLocale, NumberPunctuation& outPunctuation);

/// Returns the user's punctuation, found out at the first call and kept until the process exits.
///
/// On Linux the user's locale is that of LC_ALL, LC_NUMERIC or LANG, the first that is set. For a name that is unknown here
/// but installed, the C library decides; any other counts as the classic locale. On Windows it is that of the user's
/// settings. Throws std::bad_alloc at the first call. Thread-safe, as long as no thread changes the environment during the
/// first call.
TVXCORE_API const NumberPunctuation& UserNumberPunctuation();

} // namespace utility
} // namespace tvxcore
