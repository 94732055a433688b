// Deleting, moving and replacing names.
#include "LinuxCopyBytes.h"
#include "LinuxErrors.h"
#include "LinuxFileCopy.h"
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

// By a copy, which folders do not have: 5. A source that cannot be deleted stays beside what has been moved.
SystemError MoveToOtherVolume(const HostPath& inSource, const HostPath& inDestination, const struct stat& inStatus)
{
    const SystemError error = S_ISLNK(inStatus.st_mode) ? CopyLink(inSource.mPath, inDestination.mPath)
                                                        : CopyWhole(inSource, inDestination);
    if (error != kNoError) {
        return error == kErrorFileExists ? kErrorAlreadyExists : error;
    }
    System().mUnlink(inSource.mPath.c_str());
    return kNoError;
}

// --- replacing -------------------------------------------------------------------------------------------------------

// A file system without a way to sync folders keeps its names safe by itself.
SystemError SyncFolder(const std::string& inFolder)
{
    const int folder = System().mOpen(inFolder.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC, 0);
    if (folder < 0) {
        return SystemErrorFromErrno(errno, inFolder);
    }
    const int error = System().mFSync(folder) == 0 ? 0 : errno;
    System().mClose(folder);
    return error == EINVAL || error == EOPNOTSUPP ? kNoError : SystemErrorFromErrno(error);
}

// A second name for the contents of the replaced file; a copy of them where the file system has one name for each file.
SystemError MakeBackup(const HostPath& inReplaced, const HostPath& inBackup)
{
    const char* const from = inReplaced.mPath.c_str();
    const char* const to = inBackup.mPath.c_str();
    int error = System().mLink(from, to) == 0 ? 0 : errno;
    if (error == EEXIST && System().mUnlink(to) == 0) {
        error = System().mLink(from, to) == 0 ? 0 : errno;
    }
    if (error == EPERM || error == EOPNOTSUPP || error == ENOSYS || error == EMLINK || error == EXDEV) {
        CopyWish wish;
        wish.mSyncs = true;
        return CopyHostFile(inReplaced, inBackup, wish);
    }
    return error == 0 ? kNoError : SystemErrorFromErrno(error, inBackup.mPath);
}

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
SystemError Exchange(const Replacing& inReplaced, const Replacing& inReplacement, const HostPath& inBackup)
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
    const SystemError error = MakeBackup(inReplaced.mPath, inBackup);
    if (error != kNoError) {
        return error;
    }
    if (System().mRename(inReplacement.mPath.mPath.c_str(), inReplaced.mPath.mPath.c_str()) != 0) {
        const int reason = errno;
        System().mUnlink(inBackup.mPath.c_str());
        return SystemErrorFromErrno(reason, inReplaced.mPath.mPath, PathOperation::kMove);
    }
    return kNoError;
}

SystemError SyncNames(const Replacing& inReplaced, const Replacing& inReplacement)
{
    const std::string folder = FolderOf(inReplaced.mPath.mPath);
    const std::string other = FolderOf(inReplacement.mPath.mPath);
    const SystemError error = SyncFolder(folder);
    return error != kNoError || other == folder ? error : SyncFolder(other);
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
    HostPath backup;
    SystemError error = replaced.Find(inReplaced);
    if (error == kNoError) {
        error = replaced.FollowLink();
    }
    if (error == kNoError) {
        error = replacement.Find(inReplacement);
    }
    if (error == kNoError) {
        error = ResolveHostPath(inBackup, backup);
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
    if (error == kNoError) {
        error = Exchange(replaced, replacement, backup);
    }
    return error != kNoError ? error : SyncNames(replaced, replacement);
}

} // namespace Platform
} // namespace Files
} // namespace ORL
