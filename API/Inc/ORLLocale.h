// Floor: Strings
// The user's locale, the classic locale, and the parsing of numbers that a user types.
#pragma once

#include <ORLConfig.h>
#include <tvxcore/String.h>

#include <locale>

namespace ORL {
namespace Locale {

/// Returns the user's locale, as named by the environment when the library was loaded. Returns the classic locale if
/// the environment named none or the machine lacks it. Thread-safe.
ORL_API const std::locale& Native();

/// Returns the classic locale. Starting the library makes it the process's global locale.
ORL_API const std::locale& Default();

/// Returns the number at the start of a string that a user typed. Parses it twice, in the user's and in the classic
/// locale. If both numbers are above 0, returns the greater; if both are below 0, the smaller; otherwise the classic
/// one. So in a locale with a decimal comma both "1,5" and "1.5" are 1.5. Known limitation: if one number is 0, returns
/// the classic one, so ",5" is 0. Returns 0 for a string without a number. Thread-safe.
ORL_API double GetValueFromDisplayString(const UTF16String& inText);

} // namespace Locale
} // namespace ORL
