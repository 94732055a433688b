// Floor: System
// Finds the language identifier of the user's locale.
#pragma once

namespace ORL {
namespace Linux {

/// Returns the identifier for the locale in LC_ALL, LC_MESSAGES or LANG, whichever is set first. Reads the environment
/// once.
unsigned short UserLanguage() noexcept;

/// Returns the identifier for the name of a locale, such as "de_DE.UTF-8"; American English (1033) for an unknown one.
unsigned short LanguageOfLocale(const char* inName) noexcept;

} // namespace Linux
} // namespace ORL
