// Floor: Platform
// The user's locale as the system knows it.
#pragma once

#include <locale>

namespace ORL {
namespace Locale {
namespace Platform {

/// The locale of that name, the user's for the empty one, with the system's punctuation of numbers for char and wchar_t.
/// The classic locale where there is none. Never throws: it runs at load.
std::locale MakeLocale_Impl(const char* inName) noexcept;

} // namespace Platform
} // namespace Locale
} // namespace ORL
