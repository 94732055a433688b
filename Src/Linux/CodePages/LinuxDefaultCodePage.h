// The code page of a home machine with a given locale.
#pragma once

namespace ORL {
namespace Linux {

/// Returns the page for a locale name as the environment holds it, "ru_RU.UTF-8" or "sr_RS@latin"; 1252 if the name
/// says nothing.
unsigned int CodePageOfLocale(const char* inName) noexcept;

} // namespace Linux
} // namespace ORL
