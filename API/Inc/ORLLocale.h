// Floor: Strings
// The user's locale, the classic one, and numbers as people type them.
#pragma once

#include <ORLConfig.h>
#include <tvxcore/String.h>

#include <locale>

namespace ORL {
namespace Locale {

/// The user's locale, taken from the environment at load. The classic one where the environment names none that this
/// machine has. Thread-safe.
ORL_API const std::locale& Native();

/// The classic locale, which the start of the library makes the process's global one.
ORL_API const std::locale& Default();

/// The number at the start of a typed text, read once as the user's locale writes numbers and once as the classic locale
/// does. Both above 0: the greater; both below 0: the smaller; in every other case the classic reading. So in a locale with
/// a decimal comma both "1,5" and "1.5" are 1.5. Known blind spot: where one reading is 0 the classic one wins, and ",5" is
/// 0. A text without a number is 0. Thread-safe.
ORL_API double GetValueFromDisplayString(const UTF16String& inText);

} // namespace Locale
} // namespace ORL
