#include "LinuxTree.h"

#include <cerrno>
#include <sys/stat.h>
#include <sys/sysmacros.h>

namespace ORL {
namespace Linux {

namespace {

int ErrnoOf(SystemError inError)
{
    return inError == SystemErrors::kNoError ? 0 : ETXTBSY;
}

} // namespace

// A device must not be opened for a question, and what may not be read can be asked about inside this process alone.
int TreeHold::EnterFile(int inFolder, const char* inName, unsigned inUses, unsigned inShares)
{
    struct statx status;
    if (System().mStatx(inFolder, inName, AT_SYMLINK_NOFOLLOW, STATX_TYPE | STATX_INO, &status) != 0) {
        return errno == ENOENT ? 0 : errno;
    }
    if (!S_ISREG(status.stx_mode)) {
        return 0;
    }
    const int file = System().mOpenAt(inFolder, inName, O_RDONLY | O_NOFOLLOW | O_CLOEXEC | O_NONBLOCK, 0);
    if (file >= 0) {
        return EnterOpen(file, inUses, inShares);
    }
    if (errno != EACCES && errno != EPERM) {
        return errno == ENOENT || errno == ELOOP ? 0 : errno; // another entry has the name by now
    }
    const FileIdentity identity{makedev(status.stx_dev_major, status.stx_dev_minor), status.stx_ino};
    return ErrnoOf(mShares.Enter(-1, identity, inUses, inShares));
}

int TreeHold::EnterOpen(int inFile, unsigned inUses, unsigned inShares)
{
    if (inFile < 0) {
        return errno;
    }
    mFile = inFile;
    struct stat status;
    if (System().mFStat(mFile, &status) != 0) {
        return errno;
    }
    return ErrnoOf(mShares.Enter(mFile, FileIdentity{status.st_dev, status.st_ino}, inUses, inShares));
}

namespace {

int CheckEntryMayGo(int inFolder, const TreeEntry& inEntry)
{
    const char* const name = inEntry.mName.c_str();
    if (inEntry.mType != DT_DIR && inEntry.mType != DT_UNKNOWN) {
        TreeHold hold;
        return hold.EnterFile(inFolder, name, kShareDelete, kShareAll);
    }
    TreeHold hold;
    const int failure = hold.EnterOpen(OpenSubfolder(inFolder, name), kShareDelete, kShareAll);
    if (failure == ENOTDIR || failure == ELOOP) {
        TreeHold file;
        return file.EnterFile(inFolder, name, kShareDelete, kShareAll);
    }
    // Nothing can be asked of what is in a folder that may not be read.
    return failure == EACCES ? 0 : failure != 0 ? failure : CheckContentsMayGo(hold.File());
}

} // namespace

int CheckContentsMayGo(int inFolder)
{
    std::vector<TreeEntry> entries;
    int failure = ListFolder(inFolder, entries);
    for (std::size_t i = 0; failure == 0 && i < entries.size(); ++i) {
        failure = CheckEntryMayGo(inFolder, entries[i]);
        failure = failure == ENOENT ? 0 : failure; // it has gone by itself
    }
    return failure;
}

} // namespace Linux
} // namespace ORL
