// Floor: Platform
// The user's locale as the system defines it.
#pragma once

#include <locale>

namespace ORL {
namespace Locale {
namespace Platform {

/// Returns the C++ library's locale of that name; an empty name means the user's locale. Returns the classic locale if
/// there is no such locale. Callers ignore its number punctuation. Never throws: it runs at load.
std::locale FindLocale_Impl(const char* inName) noexcept;

} // namespace Platform
} // namespace Locale
} // namespace ORL
