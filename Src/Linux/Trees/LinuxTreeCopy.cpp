#include "../Files/LinuxCopyBytes.h"
#include "../Files/LinuxLinkTarget.h"
#include "../Files/LinuxTemporaryName.h"
#include "LinuxTree.h"
#include "LinuxTreePath.h"

#include <cerrno>
#include <utility>

namespace ORL {
namespace Linux {

namespace {

constexpr mode_t kPermissions = 0777;

struct timespec TimeOf(const struct statx_timestamp& inTime) noexcept
{
    return {static_cast<time_t>(inTime.tv_sec), static_cast<long>(inTime.tv_nsec)};
}

int CopyTimes(int inTo, const struct statx& inStatus)
{
    const struct timespec times[] = {TimeOf(inStatus.stx_atime), TimeOf(inStatus.stx_mtime)};
    return System().mFUTimens(inTo, times) == 0 ? 0 : errno;
}

// Sets permissions regardless of the umask. Not an error if the volume does not store permissions.
int SetMode(int inTo, mode_t inMode)
{
    const bool isSet = System().mFChMod(inTo, inMode) == 0;
    return isSet || errno == EPERM || errno == EOPNOTSUPP || errno == ENOSYS ? 0 : errno;
}

/// A new entry, which has a temporary name until it is complete.
class NewEntry
{
public:
    explicit NewEntry(int inFolder) : mFolder(inFolder) {}
    ~NewEntry()
    {
        if (mExists) {
            System().mUnlinkAt(mFolder, mName.c_str(), 0);
        }
    }
    NewEntry(const NewEntry&) = delete;
    NewEntry& operator=(const NewEntry&) = delete;

    /// Returns an open file, or an empty Descriptor with errno set.
    Descriptor MakeFile(mode_t inMode)
    {
        return Descriptor(Make([this, inMode](const char* inName) {
            return OpenByName(mFolder, inName, O_WRONLY | O_CREAT | O_EXCL, inMode).Release();
        }));
    }

    int MakeLink(const char* inTarget)
    {
        return Make([this, inTarget](const char* inName) { return System().mSymLinkAt(inTarget, mFolder, inName); })
                       == 0
                   ? 0
                   : errno;
    }

    int RenameTo(const char* inName)
    {
        if (System().mRenameAt(mFolder, mName.c_str(), mFolder, inName, 0) != 0) {
            return errno;
        }
        mExists = false;
        return 0;
    }

private:
    template <class Call>
    int Make(const Call& inCall)
    {
        const int answer = MakeUnderTemporaryName("copy", mName, inCall);
        mExists = answer >= 0;
        return answer;
    }

    const int mFolder;
    std::string mName;
    bool mExists = false;
};

// Copies the contents of one file into a new one, and closes the new one.
int FillCopy(int inFrom, const struct statx& inStatus, Descriptor& ioTo, CopyDurability inDurability)
{
    int failure = CopyBytes(inFrom, ioTo.Get(), inStatus.stx_size);
    if (failure != 0) {
        return failure;
    }
    CopyUserAttributes(inFrom, ioTo.Get(), ExistingAttributes::kNone);
    failure = CopyTimes(ioTo.Get(), inStatus);
    if (failure == 0 && inDurability == CopyDurability::kSynced) {
        failure = SetMode(ioTo.Get(), inStatus.stx_mode & kPermissions);
    }
    if (failure == 0 && inDurability == CopyDurability::kSynced) {
        failure = System().mFSync(ioTo.Get()) == 0 ? 0 : errno;
    }
    return failure == 0 ? ioTo.Close() : failure;
}

int CopyFileEntry(int inFrom, const char* inName, int inTo, CopyDurability inDurability)
{
    TreeEntryShare from;
    int failure = from.EnterOpen(OpenByName(inFrom, inName, O_RDONLY | O_NOFOLLOW | O_NONBLOCK), kShareRead, kShareAll);
    if (failure != 0) {
        return failure;
    }
    if (!S_ISREG(from.Status().stx_mode)) {
        return ENOTSUP;
    }
    // Other handles of the file to replace must share write access, as if this copy wrote into that file.
    TreeEntryShare replaced;
    failure = replaced.EnterFile(inTo, inName, kShareWrite, kShareRead | kShareWrite);
    if (failure != 0) {
        return failure;
    }
    NewEntry entry(inTo);
    Descriptor to = entry.MakeFile(from.Status().stx_mode & kPermissions);
    failure = to ? FillCopy(from.File(), from.Status(), to, inDurability) : errno;
    return failure == 0 ? entry.RenameTo(inName) : failure;
}

int CopyLinkEntry(int inFrom, const char* inName, int inTo)
{
    LinkTarget target;
    int failure = target.Read(inFrom, inName);
    if (failure != 0) {
        return failure;
    }
    NewEntry entry(inTo);
    failure = entry.MakeLink(target.Text());
    return failure == 0 ? entry.RenameTo(inName) : failure;
}

// If the listing does not report the type, queries the entry itself.
unsigned TypeOf(int inFolder, const TreeEntry& inEntry)
{
    if (inEntry.mType != DT_UNKNOWN) {
        return inEntry.mType;
    }
    struct statx status;
    if (System().mStatx(inFolder, inEntry.mName.c_str(), AT_SYMLINK_NOFOLLOW, STATX_TYPE, &status) != 0) {
        return DT_UNKNOWN;
    }
    return IFTODT(status.stx_mode);
}

/// Copies a tree step by step. A level is a folder being copied.
class TreeCopy
{
public:
    TreeCopy(int inFrom, int inTo, CopyDurability inDurability) : mFrom(inFrom), mTo(inTo), mDurability(inDurability) {}

    int Run(TreeEntries&& inEntries)
    {
        mLevels.push_back({std::move(inEntries), 0, 0, false});
        int failure = 0;
        while (failure == 0 && !mLevels.empty()) {
            Level& level = mLevels.back();
            failure = level.mNext < level.mEntries.size() ? CopyNext(level.mEntries[level.mNext++]) : LeaveFolder();
        }
        return failure;
    }

private:
    struct Level
    {
        TreeEntries mEntries;
        std::size_t mNext;
        mode_t mMode;
        bool mSetsModeAtEnd; // mMode is set after all contents
    };

    int CopyNext(const TreeEntry& inEntry)
    {
        const char* const name = inEntry.mName.c_str();
        switch (TypeOf(mFrom.Folder(), inEntry)) {
        case DT_DIR: return EnterFolder(name);
        case DT_LNK: return CopyLinkEntry(mFrom.Folder(), name, mTo.Folder());
        case DT_REG:
        case DT_UNKNOWN: return CopyFileEntry(mFrom.Folder(), name, mTo.Folder(), mDurability);
        default: return ENOTSUP;
        }
    }

    // An existing folder is merged and keeps its permissions.
    int EnterFolder(const char* inName)
    {
        int failure = mFrom.Enter(inName);
        if (failure != 0) {
            return failure;
        }
        // Through a bind mount, the destination may be inside the source.
        if (mTo.ContainsDeepestOf(mFrom)) {
            return EINVAL;
        }
        const mode_t mode = mFrom.Status().stx_mode & kPermissions;
        const bool isNew = System().mMakeDirAt(mTo.Folder(), inName, mode | S_IRWXU) == 0;
        if (!isNew && errno != EEXIST) {
            return errno;
        }
        failure = mTo.Enter(inName);
        TreeEntries entries;
        failure = failure == 0 ? ListFolder(mFrom.Folder(), entries) : failure;
        if (failure == 0) {
            mLevels.push_back({std::move(entries), 0, mode,
                               isNew && (mDurability == CopyDurability::kSynced || (mode & S_IRWXU) != S_IRWXU)});
        }
        return failure;
    }

    // Opens the parents first: with its final permissions the folder may no longer be searchable.
    int LeaveFolder()
    {
        const Level level = std::move(mLevels.back());
        mLevels.pop_back();
        if (mLevels.empty()) {
            return 0;
        }
        int failure = mFrom.OpenAbove();
        failure = failure == 0 ? mTo.OpenAbove() : failure;
        if (failure == 0 && level.mSetsModeAtEnd) {
            failure = SetMode(mTo.Folder(), level.mMode);
        }
        if (failure == 0 && mDurability == CopyDurability::kSynced) {
            failure = SyncFolder(mTo.Folder());
        }
        mFrom.Leave();
        mTo.Leave();
        return failure;
    }

    TreePath mFrom;
    TreePath mTo;
    const CopyDurability mDurability;
    std::vector<Level> mLevels;
};

} // namespace

int CopyEntry(int inFrom, const TreeEntry& inEntry, int inTo, CopyDurability inDurability)
{
    return TreeCopy(inFrom, inTo, inDurability).Run({inEntry});
}

int CopyContents(int inFrom, int inTo, CopyDurability inDurability)
{
    TreeEntries entries;
    const int failure = ListFolder(inFrom, entries);
    return failure == 0 ? TreeCopy(inFrom, inTo, inDurability).Run(std::move(entries)) : failure;
}

} // namespace Linux
} // namespace ORL
