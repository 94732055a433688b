// Finds the default code page that Windows uses for a locale.
#pragma once

namespace ORL {
namespace Linux {

/// Returns the page for a locale name from the environment, such as "ru_RU.UTF-8" or "sr_RS@latin"; 1252 for an unknown
/// language.
unsigned int CodePageOfLocale(const char* inName) noexcept;

} // namespace Linux
} // namespace ORL
