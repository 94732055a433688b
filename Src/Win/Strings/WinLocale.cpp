#include <Platform/Locale.h>

namespace ORL {
namespace Locale {
namespace Platform {

// The compiler's standard library has no named locales on Windows.
std::locale FindLocale_Impl(const char*) noexcept
{
    return std::locale::classic();
}

} // namespace Platform
} // namespace Locale
} // namespace ORL
