#include <CorePlatform/Random.h>

#include <windows.h>
// Requires windows.h to be included first.
#include <ntsecapi.h>

namespace tvxcore {
namespace utility {
namespace Platform {

bool FillRandom_Impl(void* outBytes, std::size_t inCount) noexcept
{
    return ::RtlGenRandom(outBytes, static_cast<ULONG>(inCount)) != FALSE;
}

} // namespace Platform
} // namespace utility
} // namespace tvxcore
