#include <CorePlatform/StandardError.h>

#include <CoreMutex.h>

#include <algorithm>
#include <cerrno>
#include <mutex>
#include <poll.h>
#include <unistd.h>

namespace tvxcore {
namespace debug {
namespace Platform {

namespace {

// A pipe that is ready takes this much without blocking; one writer at a time, so that nobody takes the room away.
constexpr std::size_t kPipeRoom = 4096;
constexpr int kPatience = 100; // milliseconds

threads::CoreMutex sMutex;
bool sReaderIsStuck = false; // guarded by sMutex: patience is spent once, not for each text

bool WaitUntilWritable()
{
    pollfd standardError{STDERR_FILENO, POLLOUT, 0};
    int ready = 0;
    do {
        ready = ::poll(&standardError, 1, sReaderIsStuck ? 0 : kPatience);
    } while (ready < 0 && errno == EINTR);
    sReaderIsStuck = ready == 0;
    // A pipe without a reader is "ready" too, and a write would raise SIGPIPE.
    return ready == 1 && standardError.revents == POLLOUT;
}

} // namespace

void WriteStandardError_Impl(const char* inBytes, std::size_t inCount) noexcept
{
    const int callersError = errno;
    const std::lock_guard<threads::CoreMutex> lock(sMutex);
    while (inCount != 0 && WaitUntilWritable()) {
        const ssize_t written = ::write(STDERR_FILENO, inBytes, std::min(inCount, kPipeRoom));
        if (written > 0) {
            inBytes += written;
            inCount -= static_cast<std::size_t>(written);
        } else if (errno != EINTR) {
            break;
        }
    }
    errno = callersError;
}

} // namespace Platform
} // namespace debug
} // namespace tvxcore
