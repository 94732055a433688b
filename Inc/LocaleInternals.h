// Floor: Strings
// The parts of the locale family that only the library and its tests reach.
#pragma once

#include <tvxcore/String.h>

#include <locale>

namespace ORL {
namespace Locale {

/// Makes the classic locale the process's global one.
void Initialize();

/// Returns the locale of that name, the user's for the empty one, with the punctuation of numbers that NumberToString uses:
/// a number that is shown reads back, even where the C library has no such locale. The classic locale where the name is
/// unknown. Never throws: it runs at load.
std::locale MakeLocale(const char* inName) noexcept;

/// The value of a typed text under a given locale in the place of the user's.
double GetValueFromDisplayString(const UTF16String& inText, const std::locale& inNative);

} // namespace Locale
} // namespace ORL
