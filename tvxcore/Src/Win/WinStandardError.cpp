#include <CorePlatform/StandardError.h>

#include <algorithm>
#include <windows.h>

namespace tvxcore {
namespace debug {
namespace Platform {

// A process with windows has no such handle, and then the text is nobody's.
void WriteStandardError_Impl(const char* inBytes, std::size_t inCount) noexcept
{
    const DWORD callersError = ::GetLastError();
    const HANDLE file = ::GetStdHandle(STD_ERROR_HANDLE);
    if (file != nullptr && file != INVALID_HANDLE_VALUE) {
        DWORD written = 0;
        ::WriteFile(file, inBytes, static_cast<DWORD>(std::min<std::size_t>(inCount, MAXDWORD)), &written, nullptr);
    }
    ::SetLastError(callersError);
}

} // namespace Platform
} // namespace debug
} // namespace tvxcore
