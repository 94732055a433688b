#include "LinuxOpenFolder.h"

#include <cerrno>

namespace ORL {
namespace Linux {

namespace {

bool IsDotEntry(const char* inName) noexcept
{
    return inName[0] == '.' && (inName[1] == '\0' || (inName[1] == '.' && inName[2] == '\0'));
}

} // namespace

OpenFolder::OpenFolder(const char* inPath)
    : mFile(OpenByPath(inPath, O_RDONLY | O_DIRECTORY | O_NONBLOCK)), mEntries(mFile.Get())
{
}

const dirent64* FolderEntries::Next()
{
    while (mAt < mSize || Fill()) {
        const dirent64* entry = reinterpret_cast<const dirent64*>(mBuffer + mAt);
        mAt += entry->d_reclen;
        if (!IsDotEntry(entry->d_name)) {
            return entry;
        }
    }
    return nullptr;
}

bool FolderEntries::Fill()
{
    ssize_t size = 0;
    do {
        size = System().mGetDents(mFile, mBuffer, sizeof(mBuffer));
    } while (size < 0 && errno == EINTR);
    mFailure = size < 0 ? errno : 0;
    mAt = 0;
    mSize = size > 0 ? static_cast<std::size_t>(size) : 0;
    return size > 0;
}

int SyncFolder(int inFolder) noexcept
{
    return System().mFSync(inFolder) == 0 || errno == EINVAL || errno == EOPNOTSUPP ? 0 : errno;
}

} // namespace Linux
} // namespace ORL
