#include "LinuxTree.h"

#include <cerrno>
#include <cstdio>

namespace ORL {
namespace Linux {

namespace {

bool GetStatus(int inFolder, const char* inName, struct statx& outStatus)
{
    return System().mStatx(inFolder, inName, AT_SYMLINK_NOFOLLOW, STATX_TYPE | STATX_INO, &outStatus) == 0;
}

bool IsSame(const struct statx& inOne, const struct statx& inOther)
{
    return inOne.stx_ino == inOther.stx_ino && inOne.stx_dev_major == inOther.stx_dev_major
           && inOne.stx_dev_minor == inOther.stx_dev_minor;
}

int JoinFolders(int inFrom, const char* inName, int inTo)
{
    {
        const Descriptor from(OpenSubfolder(inFrom, inName));
        if (!from) {
            return errno;
        }
        const Descriptor to(OpenSubfolder(inTo, inName));
        const int failure = to ? MoveContents(from.Get(), to.Get()) : errno;
        if (failure != 0) {
            return failure;
        }
    }
    return System().mUnlinkAt(inFrom, inName, AT_REMOVEDIR) == 0 ? 0 : errno;
}

// The name is taken, or the file system cannot tell.
int MoveOver(int inFrom, const char* inName, int inTo)
{
    struct statx from;
    struct statx to;
    if (GetStatus(inFrom, inName, from) && GetStatus(inTo, inName, to)) {
        if (S_ISDIR(from.stx_mode) && S_ISDIR(to.stx_mode)) {
            return JoinFolders(inFrom, inName, inTo);
        }
        // To rename one name of a file to another name of it does nothing.
        if (IsSame(from, to)) {
            return System().mUnlinkAt(inFrom, inName, 0) == 0 ? 0 : errno;
        }
    }
    TreeHold replaced;
    const int failure = replaced.EnterFile(inTo, inName, kShareDelete, kShareAll);
    if (failure != 0) {
        return failure;
    }
    return System().mRenameAt(inFrom, inName, inTo, inName, 0) == 0 ? 0 : errno;
}

// A folder goes with all that is in it or stays where it is: nothing in it may be open to somebody who does not share that.
// One that may not be read can be moved all the same.
int HoldToMove(int inFolder, const TreeEntry& inEntry, TreeHold& outHold)
{
    const char* const name = inEntry.mName.c_str();
    int failure = ENOTDIR;
    if (inEntry.mType == DT_DIR || inEntry.mType == DT_UNKNOWN) {
        failure = outHold.EnterOpen(OpenSubfolder(inFolder, name), kShareDelete, kShareAll);
    }
    if (failure == 0) {
        return CheckContentsMayGo(outHold.File());
    }
    if (failure == EACCES) {
        return 0;
    }
    return failure == ENOTDIR || failure == ELOOP ? outHold.EnterFile(inFolder, name, kShareDelete, kShareAll) : failure;
}

// What is wiped is on disk elsewhere by then, with its name.
int MoveToOtherVolume(int inFrom, const TreeEntry& inEntry, int inTo)
{
    int failure = CopyEntry(inFrom, inEntry, inTo, CopyEnd::kIsOnDisk);
    failure = failure == 0 ? SyncFolder(inTo) : failure;
    return failure == 0 ? WipeEntry(inFrom, inEntry) : failure;
}

int MoveEntry(int inFrom, const TreeEntry& inEntry, int inTo)
{
    const char* const name = inEntry.mName.c_str();
    TreeHold hold;
    int failure = HoldToMove(inFrom, inEntry, hold);
    if (failure != 0) {
        return failure;
    }
    failure = System().mRenameAt(inFrom, name, inTo, name, RENAME_NOREPLACE) == 0 ? 0 : errno;
    if (failure == EEXIST || failure == EINVAL || failure == ENOSYS) {
        failure = MoveOver(inFrom, name, inTo);
    }
    if (failure == EXDEV) {
        failure = MoveToOtherVolume(inFrom, inEntry, inTo);
    }
    return failure;
}

} // namespace

int MoveContents(int inFrom, int inTo)
{
    std::vector<TreeEntry> entries;
    int failure = ListFolder(inFrom, entries);
    for (std::size_t i = 0; failure == 0 && i < entries.size(); ++i) {
        failure = MoveEntry(inFrom, entries[i], inTo);
    }
    return failure;
}

} // namespace Linux
} // namespace ORL
