// Floor: Strings
// The user's locale, the classic locale, and numbers as people type them.
#pragma once

#include <ORLConfig.h>
#include <tvxcore/String.h>

#include <locale>

namespace ORL {
namespace Locale {

/// Returns the user's locale, which the environment names at load. Returns the classic locale if the machine lacks it
/// or none is named. Thread-safe.
ORL_API const std::locale& Native();

/// Returns the classic locale. The start of the library makes it the process's global locale.
ORL_API const std::locale& Default();

/// Returns the number at the start of a typed text. Reads it twice, by the rules of the user's locale and of the
/// classic locale. If both are above 0, returns the greater; if both are below 0, the smaller; otherwise the classic
/// reading. So in a locale with a decimal comma both "1,5" and "1.5" are 1.5. Known limitation: if one reading is 0 the
/// classic one wins, so ",5" is 0. Returns 0 for a text without a number. Thread-safe.
ORL_API double GetValueFromDisplayString(const UTF16String& inText);

} // namespace Locale
} // namespace ORL
