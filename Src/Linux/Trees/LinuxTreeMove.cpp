#include "LinuxTree.h"
#include "LinuxTreePath.h"

#include <cerrno>
#include <cstdio>
#include <utility>

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

// Deletes the source only after the copy and its name have been synced.
int MoveToOtherVolume(int inFrom, const TreeEntry& inEntry, int inTo)
{
    int failure = CopyEntry(inFrom, inEntry, inTo, CopyDurability::kSynced);
    failure = failure == 0 ? SyncFolder(inTo) : failure;
    return failure == 0 ? WipeEntry(inFrom, inEntry) : failure;
}

/// Moves a tree step by step. A level is a folder whose entries are merged into another folder.
class TreeMove
{
public:
    TreeMove(int inFrom, int inTo) : mFrom(inFrom, kShareDelete, kShareAll), mTo(inTo) {}

    int Run(TreeEntries&& inEntries)
    {
        mLevels.push_back({std::move(inEntries), 0});
        int failure = 0;
        while (failure == 0 && !mLevels.empty()) {
            Level& level = mLevels.back();
            failure = level.mNext < level.mEntries.size() ? MoveNext(level.mEntries[level.mNext++]) : LeaveFolder();
        }
        return failure;
    }

private:
    struct Level
    {
        TreeEntries mEntries;
        std::size_t mNext;
    };

    int MoveNext(const TreeEntry& inEntry)
    {
        const char* const name = inEntry.mName.c_str();
        TreeEntryShare share;
        int failure = ShareForMove(inEntry, share);
        if (failure != 0) {
            return failure;
        }
        failure = System().mRenameAt(mFrom.Folder(), name, mTo.Folder(), name, RENAME_NOREPLACE) == 0 ? 0 : errno;
        if (failure == EEXIST || failure == EINVAL || failure == ENOSYS) {
            failure = MoveReplacing(name);
        }
        return failure == EXDEV ? MoveToOtherVolume(mFrom.Folder(), inEntry, mTo.Folder()) : failure;
    }

    // A folder moves with all its contents or not at all: nothing in it may be open without sharing delete access. A
    // folder without read permission is moved unchecked. Below a merged folder everything has been checked already.
    int ShareForMove(const TreeEntry& inEntry, TreeEntryShare& outShare) const
    {
        const char* const name = inEntry.mName.c_str();
        int failure = ENOTDIR;
        if (inEntry.mType == DT_DIR || inEntry.mType == DT_UNKNOWN) {
            failure = outShare.EnterOpen(OpenFolderByName(mFrom.Folder(), name, O_NOFOLLOW), kShareDelete, kShareAll);
        }
        if (failure == 0) {
            return mLevels.size() == 1 ? CheckContentsDeletable(outShare.File()) : 0;
        }
        if (failure == EACCES) {
            return 0;
        }
        return failure == ENOTDIR || failure == ELOOP
                   ? outShare.EnterFile(mFrom.Folder(), name, kShareDelete, kShareAll)
                   : failure;
    }

    // Called if the name already exists, or if the file system cannot rename without replacing.
    int MoveReplacing(const char* inName)
    {
        struct statx from;
        struct statx to;
        if (GetStatus(mFrom.Folder(), inName, from) && GetStatus(mTo.Folder(), inName, to)) {
            if (S_ISDIR(from.stx_mode) && S_ISDIR(to.stx_mode)) {
                return JoinFolders(inName);
            }
            // Renaming a file to another of its hard links does nothing, so delete the source name.
            if (IsSame(from, to)) {
                return System().mUnlinkAt(mFrom.Folder(), inName, 0) == 0 ? 0 : errno;
            }
        }
        TreeEntryShare replaced;
        const int failure = replaced.EnterFile(mTo.Folder(), inName, kShareDelete, kShareAll);
        if (failure != 0) {
            return failure;
        }
        return System().mRenameAt(mFrom.Folder(), inName, mTo.Folder(), inName, 0) == 0 ? 0 : errno;
    }

    int JoinFolders(const char* inName)
    {
        int failure = mFrom.Enter(inName);
        if (failure != 0) {
            return failure;
        }
        failure = mTo.Enter(inName);
        TreeEntries entries;
        failure = failure == 0 ? ListFolder(mFrom.Folder(), entries) : failure;
        if (failure == 0) {
            mLevels.push_back({std::move(entries), 0});
        }
        return failure;
    }

    int LeaveFolder()
    {
        mLevels.pop_back();
        if (mLevels.empty()) {
            return 0;
        }
        int failure = mFrom.OpenAbove();
        failure = failure == 0 ? mTo.OpenAbove() : failure;
        if (failure != 0) {
            return failure;
        }
        const Level& above = mLevels.back();
        const char* const name = above.mEntries[above.mNext - 1].mName.c_str();
        failure = System().mUnlinkAt(mFrom.Above(), name, AT_REMOVEDIR) == 0 ? 0 : errno;
        mFrom.Leave();
        mTo.Leave();
        return failure;
    }

    TreePath mFrom;
    TreePath mTo;
    std::vector<Level> mLevels;
};

} // namespace

int MoveContents(int inFrom, int inTo)
{
    TreeEntries entries;
    const int failure = ListFolder(inFrom, entries);
    return failure == 0 ? TreeMove(inFrom, inTo).Run(std::move(entries)) : failure;
}

} // namespace Linux
} // namespace ORL
