#include <CorePlatform/WordWait.h>

#include <CorePlatform/Thread.h>

#include <algorithm>
#include <windows.h>

namespace tvxcore {
namespace threads {
namespace Platform {

bool WaitOnWord_Impl(std::atomic<std::uint32_t>& ioWord, std::uint32_t inExpected, std::int64_t inNanoseconds)
{
    // Rounded up, so that a wait is never too short. A time too long for the type is clamped; the caller checks again.
    DWORD limit = INFINITE;
    if (inNanoseconds >= 0) {
        limit = static_cast<DWORD>(std::min<std::int64_t>((inNanoseconds + 999'999) / 1'000'000, INFINITE - 1));
    }
    const DWORD callersError = ::GetLastError();
    const bool isTimedOut =
        ::WaitOnAddress(&ioWord, &inExpected, sizeof(inExpected), limit) == FALSE && ::GetLastError() == ERROR_TIMEOUT;
    ::SetLastError(callersError);
    return !isTimedOut;
}

// Does nothing at process exit: all sleepers have been stopped, and one may hold a lock of the system's wait list.
void WakeOneOnWord_Impl(std::atomic<std::uint32_t>& ioWord)
{
    if (!ProcessIsEnding_Impl()) {
        ::WakeByAddressSingle(&ioWord);
    }
}

void WakeAllOnWord_Impl(std::atomic<std::uint32_t>& ioWord)
{
    if (!ProcessIsEnding_Impl()) {
        ::WakeByAddressAll(&ioWord);
    }
}

} // namespace Platform
} // namespace threads
} // namespace tvxcore
