#include <Platform/Locale.h>

#include <stdexcept>

namespace ORL {
namespace Locale {
namespace Platform {

std::locale FindLocale_Impl(const char* inName) noexcept
{
    try {
        return std::locale(inName);
    } catch (const std::exception&) {
        return std::locale::classic(); // the locale named by the environment is not installed
    }
}

} // namespace Platform
} // namespace Locale
} // namespace ORL
