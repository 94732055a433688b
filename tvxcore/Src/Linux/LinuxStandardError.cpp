#include <CorePlatform/StandardError.h>

#include <algorithm>
#include <cerrno>
#include <poll.h>
#include <unistd.h>

namespace tvxcore {
namespace debug {
namespace Platform {

namespace {

// A pipe that is ready accepts this many bytes without blocking. This library has only one writer at a time.
constexpr std::size_t kPipeChunk = 4096;
constexpr int kWriteTimeout = 100; // milliseconds

bool WaitUntilWritable(bool& ioReaderIsStuck)
{
    pollfd standardError{STDERR_FILENO, POLLOUT, 0};
    int ready = 0;
    do {
        ready = ::poll(&standardError, 1, ioReaderIsStuck ? 0 : kWriteTimeout);
    } while (ready < 0 && errno == EINTR);
    ioReaderIsStuck = ready == 0;
    // poll also reports a pipe without a reader as ready, and a write to it would raise SIGPIPE.
    return ready == 1 && standardError.revents == POLLOUT;
}

} // namespace

std::size_t WriteStandardError_Impl(const char* inBytes, std::size_t inCount, bool& ioReaderIsStuck) noexcept
{
    while (WaitUntilWritable(ioReaderIsStuck)) {
        const ssize_t written = ::write(STDERR_FILENO, inBytes, std::min(inCount, kPipeChunk));
        if (written >= 0 || errno != EINTR) {
            return static_cast<std::size_t>(std::max<ssize_t>(written, 0));
        }
    }
    return 0;
}

SystemErrorKeeper::SystemErrorKeeper() noexcept : mError(static_cast<unsigned long>(errno))
{
}

SystemErrorKeeper::~SystemErrorKeeper()
{
    errno = static_cast<int>(mError);
}

} // namespace Platform
} // namespace debug
} // namespace tvxcore
