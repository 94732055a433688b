#include <CorePlatform/Random.h>

#include <cerrno>
#include <fcntl.h>
#include <sys/random.h>
#include <unistd.h>

namespace tvxcore {
namespace utility {
namespace Platform {

namespace {

// Used if the kernel or a sandbox rejects the system call.
bool FillFromDevice(unsigned char* outBytes, std::size_t inCount) noexcept
{
    const int file = ::open("/dev/urandom", O_RDONLY | O_CLOEXEC);
    if (file < 0) {
        return false;
    }
    while (inCount != 0) {
        const ssize_t read = ::read(file, outBytes, inCount);
        if (read > 0) {
            outBytes += read;
            inCount -= static_cast<std::size_t>(read);
        } else if (read == 0 || errno != EINTR) {
            break;
        }
    }
    ::close(file);
    return inCount == 0;
}

} // namespace

bool FillRandom_Impl(void* outBytes, std::size_t inCount) noexcept
{
    unsigned char* bytes = static_cast<unsigned char*>(outBytes);
    while (inCount != 0) {
        const ssize_t given = ::getrandom(bytes, inCount, 0);
        if (given > 0) {
            bytes += given;
            inCount -= static_cast<std::size_t>(given);
        } else if (errno != EINTR) {
            return FillFromDevice(bytes, inCount);
        }
    }
    return true;
}

} // namespace Platform
} // namespace utility
} // namespace tvxcore
