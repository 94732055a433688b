// Deleting, moving and replacing names.
#include "LinuxCopyBytes.h"
#include "LinuxErrors.h"
#include "LinuxFileCopy.h"
#include "LinuxOpenFolder.h"
#include "LinuxTemporaryName.h"
#include "LinuxTree.h"
#include "SystemCalls.h"

#include <cerrno>
#include <climits>
#include <stdio.h>

namespace ORL {
namespace Files {
namespace Platform {

namespace {

using namespace ORL::Linux;
using namespace SystemErrors;

std::string WithoutTrailingSlash(const HostPath& inPath)
{
    return inPath.mHasTrailingSeparator ? inPath.mPath.substr(0, inPath.mPath.size() - 1) : inPath.mPath;
}

std::string FolderOf(const std::string& inHostPath)
{
    return inHostPath.substr(0, inHostPath.rfind('/') + 1);
}

bool IsBelow(const std::string& inHostPath, const std::string& inFolder)
{
    return inHostPath.size() > inFolder.size() && inHostPath[inFolder.size()] == '/'
           && inHostPath.compare(0, inFolder.size(), inFolder) == 0;
}

// Asks for the right to delete the name for a moment.
SystemError HoldToDelete(const std::string& inHostPath, EntryHold& outHold, struct stat& outStatus)
{
    const SystemError error = GetEntryStatus(inHostPath, outStatus);
    return error != kNoError ? error : outHold.Enter(inHostPath, outStatus, ORL::Linux::kShareDelete, kShareAll);
}

// For file systems that do not know how to rename without replacing.
SystemError RenameToFreeName(const std::string& inFrom, const std::string& inTo)
{
    struct stat status;
    const SystemError error = GetEntryStatus(inTo, status);
    if (error != kErrorFileNotFound) {
        return error == kNoError ? kErrorAlreadyExists : error;
    }
    return System().mRename(inFrom.c_str(), inTo.c_str()) == 0 ? kNoError
                                                                : SystemErrorFromErrno(errno, inTo, PathOperation::kMove);
}

// A link goes as a link, wherever it leads.
SystemError CopyLink(const std::string& inSource, const std::string& inDestination)
{
    char target[PATH_MAX];
    const ssize_t size = System().mReadLinkAt(AT_FDCWD, inSource.c_str(), target, sizeof(target) - 1);
    if (size < 0) {
        return SystemErrorFromErrno(errno, inSource);
    }
    target[size] = '\0';
    return System().mSymLinkAt(target, AT_FDCWD, inDestination.c_str()) == 0 ? kNoError
                                                                           : SystemErrorFromErrno(errno, inDestination);
}

SystemError CopyWhole(const HostPath& inSource, const HostPath& inDestination)
{
    CopyWish wish;
    wish.mDisposition = kCreateNew;
    wish.mSyncs = true; // the source goes next
    return CopyHostFile(inSource, inDestination, wish);
}

int OpenToSync(const std::string& inFolder)
{
    int folder = -1;
    do {
        folder = System().mOpen(inFolder.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC, 0);
    } while (folder < 0 && errno == EINTR);
    return folder;
}

SystemError SyncNamesOf(const std::string& inFolder)
{
    const Descriptor folder(OpenToSync(inFolder));
    return folder ? SystemErrorFromErrno(SyncFolder(folder.Get())) : SystemErrorFromErrno(errno, inFolder);
}

// A folder that may be written and not read cannot be asked; its names are then as safe as its volume makes them.
SystemError SyncNameOf(const HostPath& inPath)
{
    const Descriptor folder(OpenToSync(FolderOf(inPath.mPath)));
    if (!folder) {
        return errno == EACCES || errno == EPERM ? kNoError : SystemErrorFromErrno(errno, inPath.mPath);
    }
    return SystemErrorFromErrno(SyncFolder(folder.Get()));
}

// By a copy, which folders do not have: 5. The source goes when the copy and its name are on disk; one that cannot be
// deleted stays beside what has been moved.
SystemError MoveToOtherVolume(const HostPath& inSource, const HostPath& inDestination, const struct stat& inStatus)
{
    SystemError error = S_ISLNK(inStatus.st_mode) ? CopyLink(inSource.mPath, inDestination.mPath)
                                                  : CopyWhole(inSource, inDestination);
    if (error != kNoError) {
        return error == kErrorFileExists ? kErrorAlreadyExists : error;
    }
    error = SyncNameOf(inDestination);
    System().mUnlink((error == kNoError ? inSource : inDestination).mPath.c_str());
    return error;
}

// --- replacing -------------------------------------------------------------------------------------------------------

// What the replaced name held: a second name for it, or a copy where the file system has one name for each file.
class Backup
{
public:
    explicit Backup(const HostPath& inPath) : mPath(inPath) {}

    // A name that is too long for the file system could not be used by anybody: one of our own stands for it then.
    SystemError Make(const HostPath& inReplaced)
    {
        const SystemError error = MakeOver(inReplaced);
        mIsOurs = error == kErrorInvalidName;
        return mIsOurs ? MakeUnderOwnName(inReplaced) : error;
    }

    void Remove() const { System().mUnlink(mPath.mPath.c_str()); }

    // When the new contents are safe.
    void RemoveIfOurs() const
    {
        if (mIsOurs) {
            Remove();
        }
    }

private:
    SystemError MakeAt(const HostPath& inReplaced, std::uint32_t inDisposition) const
    {
        const int error = System().mLink(inReplaced.mPath.c_str(), mPath.mPath.c_str()) == 0 ? 0 : errno;
        if (error == EPERM || error == EOPNOTSUPP || error == ENOSYS || error == EMLINK || error == EXDEV) {
            CopyWish wish;
            wish.mDisposition = inDisposition;
            wish.mSyncs = true;
            return CopyHostFile(inReplaced, mPath, wish);
        }
        return error == 0 ? kNoError : SystemErrorFromErrno(error, mPath.mPath);
    }

    SystemError MakeOver(const HostPath& inReplaced) const
    {
        const SystemError error = MakeAt(inReplaced, kOpenAlways);
        const bool isFree = error == kErrorFileExists && System().mUnlink(mPath.mPath.c_str()) == 0;
        return isFree ? MakeAt(inReplaced, kOpenAlways) : error;
    }

    SystemError MakeUnderOwnName(const HostPath& inReplaced)
    {
        SystemError error = kNoError;
        std::string name;
        MakeUnderTemporaryName("swap", name, [&](const char* inName) {
            mPath.mPath = FolderOf(inReplaced.mPath) + inName;
            error = MakeAt(inReplaced, kCreateNew);
            errno = error == kErrorFileExists ? EEXIST : 0;
            return error == kNoError ? 0 : -1;
        });
        return error;
    }

    HostPath mPath;
    bool mIsOurs = false;
};

// The two files of a replacement, held against others.
struct Replacing
{
    HostPath mPath;
    struct stat mStatus;
    EntryHold mHold;

    SystemError Find(const UTF16String& inPath)
    {
        const SystemError error = ResolveHostPath(inPath, mPath);
        return error != kNoError ? error : GetEntryStatus(WithoutTrailingSlash(mPath), mStatus);
    }

    // A link stays, and leads to the new contents.
    SystemError FollowLink()
    {
        char target[PATH_MAX];
        if (!S_ISLNK(mStatus.st_mode)) {
            return kNoError;
        }
        if (System().mRealPath(mPath.mPath.c_str(), target) == nullptr) {
            return SystemErrorFromErrno(errno, mPath.mPath);
        }
        mPath.mPath = target;
        return GetEntryStatus(mPath.mPath, mStatus);
    }

    SystemError Hold(unsigned inUses, unsigned inShares)
    {
        if (!S_ISREG(mStatus.st_mode) || IsReadOnly(mStatus)) {
            return kErrorAccessDenied;
        }
        const SystemError error = mHold.Enter(mPath.mPath, mStatus, inUses, inShares);
        return error != kNoError ? error : SystemErrorFromErrno(mHold.OpenError(), mPath.mPath);
    }
};

// From here on the name holds the new contents or the old ones, and the replacement's name stands as long as it holds
// the old ones: whoever is interrupted sees by that name whether it was done.
SystemError Exchange(const Replacing& inReplaced, const Replacing& inReplacement, Backup& ioBackup)
{
    const int contents = inReplacement.mHold.Descriptor();
    const mode_t mode = inReplaced.mStatus.st_mode & 07777;
    if (mode != (inReplacement.mStatus.st_mode & 07777)) {
        System().mFChMod(contents, mode); // the permissions belong to the name; not every file system keeps them
    }
    CopyUserAttributes(inReplaced.mHold.Descriptor(), contents, AttributesThere::kAreKept);
    if (System().mFSync(contents) != 0) {
        return SystemErrorFromErrno(errno);
    }
    const SystemError error = ioBackup.Make(inReplaced.mPath);
    if (error != kNoError) {
        return error;
    }
    if (System().mRename(inReplacement.mPath.mPath.c_str(), inReplaced.mPath.mPath.c_str()) != 0) {
        const int reason = errno;
        ioBackup.Remove();
        return SystemErrorFromErrno(reason, inReplaced.mPath.mPath, PathOperation::kMove);
    }
    return kNoError;
}

SystemError SyncNames(const Replacing& inReplaced, const Replacing& inReplacement)
{
    const std::string folder = FolderOf(inReplaced.mPath.mPath);
    const std::string other = FolderOf(inReplacement.mPath.mPath);
    const SystemError error = SyncNamesOf(folder);
    return error != kNoError || other == folder ? error : SyncNamesOf(other);
}

} // namespace

SystemError DeleteFile_Impl(const UTF16String& inPath)
{
    HostPath path;
    SystemError error = ResolveHostPath(inPath, path);
    if (error != kNoError) {
        return error;
    }
    const std::string name = WithoutTrailingSlash(path);
    EntryHold hold;
    struct stat status;
    error = GetEntryStatus(name, status);
    if (error != kNoError) {
        return error;
    }
    if (S_ISDIR(status.st_mode)) {
        return kErrorAccessDenied;
    }
    if (path.mHasTrailingSeparator) {
        return kErrorInvalidName;
    }
    if (S_ISREG(status.st_mode) && IsReadOnly(status)) {
        return kErrorAccessDenied;
    }
    error = hold.Enter(name, status, ORL::Linux::kShareDelete, kShareAll);
    if (error != kNoError) {
        return error;
    }
    return System().mUnlink(name.c_str()) == 0 ? kNoError : SystemErrorFromErrno(errno, name);
}

SystemError MoveFile_Impl(const UTF16String& inSource, const UTF16String& inDestination)
{
    HostPath source;
    SystemError error = ResolveHostPath(inSource, source);
    if (error != kNoError) {
        return error;
    }
    HostPath destination;
    error = ResolveHostPath(inDestination, destination);
    if (error != kNoError) {
        return error;
    }
    const std::string from = WithoutTrailingSlash(source);
    const std::string to = WithoutTrailingSlash(destination);
    EntryHold hold;
    struct stat status;
    error = HoldToDelete(from, hold, status);
    if (error != kNoError || from == to) {
        return error;
    }
    if (S_ISDIR(status.st_mode) && IsBelow(to, from)) {
        return kErrorSharingViolation;
    }
    if (System().mRenameTo(from.c_str(), to.c_str(), RENAME_NOREPLACE) == 0) {
        return kNoError;
    }
    switch (errno) {
    case EINVAL:
    case ENOSYS:
        return RenameToFreeName(from, to);
    case EXDEV:
        return MoveToOtherVolume(source, destination, status);
    default:
        return SystemErrorFromErrno(errno, to, PathOperation::kMove);
    }
}

SystemError ReplaceFile_Impl(const UTF16String& inReplaced, const UTF16String& inReplacement,
                             const UTF16String& inBackup)
{
    Replacing replaced;
    Replacing replacement;
    HostPath backupPath;
    SystemError error = replaced.Find(inReplaced);
    if (error == kNoError) {
        error = replaced.FollowLink();
    }
    if (error == kNoError) {
        error = replacement.Find(inReplacement);
    }
    if (error == kNoError) {
        error = ResolveHostPath(inBackup, backupPath);
    }
    if (error != kNoError) {
        return error;
    }
    if (IdentityOf(replaced.mStatus) == IdentityOf(replacement.mStatus)) {
        return kErrorUnableToMoveReplacement2;
    }
    error = replaced.Hold(ORL::Linux::kShareRead | ORL::Linux::kShareDelete, kShareAll);
    if (error == kNoError) {
        error = replacement.Hold(kShareAll, kShareNothing);
    }
    Backup backup(backupPath);
    if (error == kNoError) {
        error = Exchange(replaced, replacement, backup);
    }
    if (error == kNoError) {
        error = SyncNames(replaced, replacement);
    }
    if (error == kNoError) {
        backup.RemoveIfOurs();
    }
    return error;
}

} // namespace Platform
} // namespace Files
} // namespace ORL
