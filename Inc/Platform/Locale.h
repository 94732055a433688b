// Floor: Platform
// The user's locale as the system knows it.
#pragma once

#include <locale>

namespace ORL {
namespace Locale {
namespace Platform {

/// Returns the C++ library's locale of that name, the user's for the empty one; the classic locale where there is none. What
/// it says of numbers does not count. Never throws: it runs at load.
std::locale FindLocale_Impl(const char* inName) noexcept;

} // namespace Platform
} // namespace Locale
} // namespace ORL
