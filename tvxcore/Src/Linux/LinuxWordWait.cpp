#include <CorePlatform/WordWait.h>

#include <cerrno>
#include <climits>
#include <ctime>
#include <linux/futex.h>
#include <sys/syscall.h>
#include <unistd.h>

namespace tvxcore {
namespace threads {
namespace Platform {

namespace {

long Futex(std::atomic<std::uint32_t>& ioWord, int inOperation, std::uint32_t inValue, const timespec* inTimeout)
{
    return ::syscall(SYS_futex, &ioWord, inOperation | FUTEX_PRIVATE_FLAG, inValue, inTimeout, nullptr, 0);
}

} // namespace

bool WaitOnWord_Impl(std::atomic<std::uint32_t>& ioWord, std::uint32_t inExpected, std::int64_t inNanoseconds)
{
    constexpr std::int64_t kSecond = 1'000'000'000;
    timespec limit{};
    limit.tv_sec = static_cast<time_t>(inNanoseconds / kSecond);
    limit.tv_nsec = static_cast<long>(inNanoseconds % kSecond);
    const int callersError = errno;
    const bool isTimedOut =
        Futex(ioWord, FUTEX_WAIT, inExpected, inNanoseconds < 0 ? nullptr : &limit) != 0 && errno == ETIMEDOUT;
    errno = callersError;
    return !isTimedOut;
}

void WakeOneOnWord_Impl(std::atomic<std::uint32_t>& ioWord)
{
    Futex(ioWord, FUTEX_WAKE, 1, nullptr);
}

void WakeAllOnWord_Impl(std::atomic<std::uint32_t>& ioWord)
{
    Futex(ioWord, FUTEX_WAKE, INT_MAX, nullptr);
}

} // namespace Platform
} // namespace threads
} // namespace tvxcore
