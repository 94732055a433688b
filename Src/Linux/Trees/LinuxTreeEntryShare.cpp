#include "LinuxTreeEntryShare.h"

#include <cerrno>
#include <sys/sysmacros.h>
#include <utility>

namespace ORL {
namespace Linux {

namespace {

int ErrnoOf(SystemError inError)
{
    return inError == SystemErrors::kNoError ? 0 : ETXTBSY;
}

FileIdentity IdentityOf(const struct statx& inStatus) noexcept
{
    return FileIdentity{makedev(inStatus.stx_dev_major, inStatus.stx_dev_minor), inStatus.stx_ino};
}

} // namespace

// Opens regular files only, because opening a device has side effects. A file without read permission is checked only
// inside this process.
int TreeEntryShare::EnterFile(int inFolder, const char* inName, unsigned inUses, unsigned inShares)
{
    struct statx status;
    if (System().mStatx(inFolder, inName, AT_SYMLINK_NOFOLLOW, STATX_TYPE | STATX_INO, &status) != 0) {
        return errno == ENOENT ? 0 : errno;
    }
    if (!S_ISREG(status.stx_mode)) {
        return 0;
    }
    Descriptor file = OpenByName(inFolder, inName, O_RDONLY | O_NOFOLLOW | O_NONBLOCK);
    if (file) {
        return EnterOpen(std::move(file), inUses, inShares);
    }
    if (errno != EACCES && errno != EPERM) {
        return errno == ENOENT || errno == ELOOP ? 0 : errno; // another entry now has this name
    }
    return ErrnoOf(mShares.Enter(IdentityOf(status), inUses, inShares));
}

int TreeEntryShare::EnterOpen(Descriptor&& ioFile, unsigned inUses, unsigned inShares)
{
    if (!ioFile) {
        return errno;
    }
    mShares.Own(std::move(ioFile));
    constexpr unsigned kAsked = STATX_TYPE | STATX_MODE | STATX_INO | STATX_SIZE | STATX_ATIME | STATX_MTIME;
    if (System().mStatx(File(), "", AT_EMPTY_PATH, kAsked, &mStatus) != 0) {
        return errno;
    }
    return ErrnoOf(mShares.Enter(Identity(), inUses, inShares));
}

FileIdentity TreeEntryShare::Identity() const noexcept
{
    return IdentityOf(mStatus);
}

} // namespace Linux
} // namespace ORL
