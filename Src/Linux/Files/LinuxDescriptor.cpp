#include "LinuxDescriptor.h"

namespace ORL {
namespace Linux {

namespace {

template <class Call>
Descriptor OpenUninterrupted(const Call& inCall) noexcept
{
    int file = -1;
    do {
        file = inCall();
    } while (file < 0 && errno == EINTR);
    return Descriptor(file);
}

} // namespace

Descriptor OpenByPath(const char* inPath, int inFlags, mode_t inMode) noexcept
{
    return OpenUninterrupted([=] { return System().mOpen(inPath, inFlags | O_CLOEXEC, inMode); });
}

Descriptor OpenByName(int inFolder, const char* inName, int inFlags, mode_t inMode) noexcept
{
    return OpenUninterrupted([=] { return System().mOpenAt(inFolder, inName, inFlags | O_CLOEXEC, inMode); });
}

// O_NONBLOCK has no effect on a folder, but prevents any other entry with this name, such as a pipe, from blocking the
// open.
Descriptor OpenFolderByName(int inFolder, const char* inName, int inLink) noexcept
{
    return OpenByName(inFolder, inName, O_RDONLY | O_DIRECTORY | O_NONBLOCK | inLink);
}

} // namespace Linux
} // namespace ORL
