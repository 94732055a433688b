// Floor: System
// The language of the user of this process, as a language identifier.
#pragma once

namespace ORL {
namespace Linux {

/// The identifier that belongs to LC_ALL, LC_MESSAGES or LANG, the first of them that is set; American English (1033)
/// for any other. The environment is read once.
unsigned short UserLanguage() noexcept;

/// The identifier that belongs to a locale's name such as "de_DE.UTF-8".
unsigned short LanguageOfLocale(const char* inName) noexcept;

} // namespace Linux
} // namespace ORL
