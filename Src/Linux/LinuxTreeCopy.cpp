#include "LinuxCopyBytes.h"
#include "LinuxTemporaryName.h"
#include "LinuxTree.h"

#include <cerrno>

namespace ORL {
namespace Linux {

namespace {

constexpr mode_t kPermissions = 0777;

int KeepTimes(int inTo, const struct stat& inStatus)
{
    const struct timespec times[] = {inStatus.st_atim, inStatus.st_mtim};
    return System().mFUTimens(inTo, times) == 0 ? 0 : errno;
}

/// An entry that has a name of its own until it is whole.
class NewEntry
{
public:
    explicit NewEntry(int inFolder) : mFolder(inFolder) {}
    ~NewEntry()
    {
        if (mIsThere) {
            System().mUnlinkAt(mFolder, mName.c_str(), 0);
        }
    }
    NewEntry(const NewEntry&) = delete;
    NewEntry& operator=(const NewEntry&) = delete;

    /// An open file, or -1 and errno.
    int MakeFile(mode_t inMode)
    {
        return Make([this, inMode](const char* inName) {
            return System().mOpenAt(mFolder, inName, O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC, inMode);
        });
    }

    int MakeLink(const char* inTarget)
    {
        return Make([this, inTarget](const char* inName) { return System().mSymLinkAt(inTarget, mFolder, inName); }) == 0
                   ? 0
                   : errno;
    }

    int GiveName(const char* inName)
    {
        if (System().mRenameAt(mFolder, mName.c_str(), mFolder, inName, 0) != 0) {
            return errno;
        }
        mIsThere = false;
        return 0;
    }

private:
    template <class Call>
    int Make(const Call& inCall)
    {
        const int answer = MakeUnderTemporaryName("copy", mName, inCall);
        mIsThere = answer >= 0;
        return answer;
    }

    const int mFolder;
    std::string mName;
    bool mIsThere = false;
};

// The contents of one file in a new one, which is closed then.
int FillCopy(int inFrom, const struct stat& inStatus, Descriptor& ioTo, CopyEnd inEnd)
{
    int failure = CopyBytes(inFrom, ioTo.Get(), static_cast<std::uint64_t>(inStatus.st_size));
    if (failure != 0) {
        return failure;
    }
    CopyUserAttributes(inFrom, ioTo.Get(), AttributesThere::kNone);
    failure = KeepTimes(ioTo.Get(), inStatus);
    if (failure == 0 && inEnd == CopyEnd::kIsOnDisk) {
        failure = System().mFSync(ioTo.Get()) == 0 ? 0 : errno;
    }
    return failure == 0 ? ioTo.Close() : failure;
}

int CopyFileEntry(int inFrom, const char* inName, int inTo, CopyEnd inEnd)
{
    TreeHold from;
    int failure = from.EnterOpen(System().mOpenAt(inFrom, inName, O_RDONLY | O_NOFOLLOW | O_CLOEXEC | O_NONBLOCK, 0),
                                 kShareRead, kShareAll);
    struct stat status;
    if (failure != 0 || System().mFStat(from.File(), &status) != 0) {
        return failure != 0 ? failure : errno;
    }
    if (!S_ISREG(status.st_mode)) {
        return ENOTSUP;
    }
    // Who has the earlier file open to write must share that, as if it were written in its place.
    TreeHold replaced;
    failure = replaced.EnterFile(inTo, inName, kShareWrite, kShareRead | kShareWrite);
    if (failure != 0) {
        return failure;
    }
    NewEntry entry(inTo);
    Descriptor to(entry.MakeFile(status.st_mode & kPermissions));
    failure = to ? FillCopy(from.File(), status, to, inEnd) : errno;
    return failure == 0 ? entry.GiveName(inName) : failure;
}

int CopyLinkEntry(int inFrom, const char* inName, int inTo)
{
    char target[4096];
    const ssize_t size = System().mReadLinkAt(inFrom, inName, target, sizeof(target));
    if (size < 0 || static_cast<std::size_t>(size) == sizeof(target)) {
        return size < 0 ? errno : ENAMETOOLONG;
    }
    NewEntry entry(inTo);
    const int failure = entry.MakeLink(std::string(target, static_cast<std::size_t>(size)).c_str());
    return failure == 0 ? entry.GiveName(inName) : failure;
}

// A folder that is there already is joined and keeps its permissions.
int CopyFolderEntry(int inFrom, const char* inName, int inTo, CopyEnd inEnd)
{
    const Descriptor from(OpenSubfolder(inFrom, inName));
    struct stat status;
    if (!from || System().mFStat(from.Get(), &status) != 0) {
        return errno;
    }
    // Open for us until all is in it.
    const bool isNew = System().mMakeDirAt(inTo, inName, (status.st_mode & kPermissions) | S_IRWXU) == 0;
    if (!isNew && errno != EEXIST) {
        return errno;
    }
    const Descriptor to(OpenSubfolder(inTo, inName));
    if (!to) {
        return errno;
    }
    const int failure = CopyContents(from.Get(), to.Get(), inEnd);
    const bool isTooOpen = isNew && (status.st_mode & S_IRWXU) != S_IRWXU;
    if (failure == 0 && isTooOpen && System().mFChMod(to.Get(), status.st_mode & kPermissions) != 0) {
        return errno;
    }
    return failure == 0 && inEnd == CopyEnd::kIsOnDisk ? SyncFolder(to.Get()) : failure;
}

// What the listing does not tell is asked, of the entry itself.
unsigned TypeOf(int inFolder, const TreeEntry& inEntry)
{
    if (inEntry.mType != DT_UNKNOWN) {
        return inEntry.mType;
    }
    struct statx status;
    if (System().mStatx(inFolder, inEntry.mName.c_str(), AT_SYMLINK_NOFOLLOW, STATX_TYPE, &status) != 0) {
        return DT_UNKNOWN;
    }
    return S_ISDIR(status.stx_mode) ? DT_DIR : S_ISLNK(status.stx_mode) ? DT_LNK : DT_REG;
}

} // namespace

int CopyEntry(int inFrom, const TreeEntry& inEntry, int inTo, CopyEnd inEnd)
{
    const char* const name = inEntry.mName.c_str();
    switch (TypeOf(inFrom, inEntry)) {
    case DT_DIR:
        return CopyFolderEntry(inFrom, name, inTo, inEnd);
    case DT_LNK:
        return CopyLinkEntry(inFrom, name, inTo);
    case DT_REG:
    case DT_UNKNOWN:
        return CopyFileEntry(inFrom, name, inTo, inEnd);
    default:
        return ENOTSUP;
    }
}

int CopyContents(int inFrom, int inTo, CopyEnd inEnd)
{
    std::vector<TreeEntry> entries;
    int failure = ListFolder(inFrom, entries);
    for (std::size_t i = 0; failure == 0 && i < entries.size(); ++i) {
        failure = CopyEntry(inFrom, entries[i], inTo, inEnd);
    }
    return failure;
}

} // namespace Linux
} // namespace ORL
