// Locale functions that only the library and its tests use.
#pragma once

#include <tvxcore/String.h>

#include <locale>

namespace ORL {
namespace Locale {

/// Makes the classic locale the process's global one.
void Initialize();

/// Returns the locale of that name; an empty name means the user's locale. The locale's number punctuation is that of
/// NumberToString, so a number written by that function can be read back, even if the C library lacks the locale.
/// Returns the classic locale for an unknown name. Never throws: it runs at load.
std::locale MakeLocale(const char* inName) noexcept;

/// Returns the number in a string that a user typed, with inNative in place of the user's locale.
double GetValueFromDisplayString(const UTF16String& inText, const std::locale& inNative);

} // namespace Locale
} // namespace ORL
