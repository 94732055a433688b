#include "OutputSystem.h"

#include <cerrno>
#include <fcntl.h>
#include <unistd.h>

namespace orl {

std::FILE* CreateNewFile(const std::filesystem::path& inPath)
{
    constexpr ::mode_t kMode = 0666; // minus the bits of the umask
    const int descriptor = ::open(inPath.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC, kMode);
    if (descriptor < 0) {
        return nullptr;
    }
    std::FILE* const file = ::fdopen(descriptor, "wb");
    if (file == nullptr) {
        const int error = errno;
        ::close(descriptor);
        ::unlink(inPath.c_str());
        errno = error;
    }
    return file;
}

std::FILE* OpenForWriting(const std::filesystem::path& inPath)
{
    return std::fopen(inPath.c_str(), "wb");
}

// Does not wait for a reader if a pipe has taken the file's place.
bool CanWrite(const std::filesystem::path& inPath)
{
    const int descriptor = ::open(inPath.c_str(), O_WRONLY | O_NONBLOCK | O_CLOEXEC);
    if (descriptor >= 0) {
        ::close(descriptor);
    }
    return descriptor >= 0;
}

std::filesystem::path WithoutLimit(const std::filesystem::path& inPath)
{
    return inPath;
}

} // namespace orl
