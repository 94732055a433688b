// Floor: Strings
// The parts of the locale family that only the library and its tests reach.
#pragma once

#include <tvxcore/String.h>

#include <locale>

namespace ORL {
namespace Locale {

/// Makes the classic locale the process's global one.
void Initialize();

/// The value of a typed text under a given locale in the place of the user's.
double GetValueFromDisplayString(const UTF16String& inText, const std::locale& inNative);

} // namespace Locale
} // namespace ORL
