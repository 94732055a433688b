#include <TextPlatform.h>

#include <windows.h>
// Needs windows.h before it.
#include <ntsecapi.h>

namespace tvxcore {
namespace platform {

bool FillRandom(void* outBytes, std::size_t inCount) noexcept
{
    return ::RtlGenRandom(outBytes, static_cast<ULONG>(inCount)) != FALSE;
}

} // namespace platform
} // namespace tvxcore
