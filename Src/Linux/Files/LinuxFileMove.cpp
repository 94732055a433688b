// Deletes, moves and replaces names.
#include "../Calls/LinuxErrors.h"
#include "../Calls/SystemCalls.h"
#include "../Paths/LinuxOpenFolder.h"
#include "LinuxCopyBytes.h"
#include "LinuxDescriptor.h"
#include "LinuxFileCopy.h"
#include "LinuxLinkTarget.h"
#include "LinuxTemporaryName.h"

#include <cerrno>
#include <climits>
#include <optional>
#include <stdio.h>

namespace ORL {
namespace Files {
namespace Platform {

namespace {

using namespace ORL::Linux;
using namespace SystemErrors;

std::string WithoutTrailingSlash(const std::string& inHostPath)
{
    return inHostPath.size() > 1 && inHostPath.back() == '/' ? inHostPath.substr(0, inHostPath.size() - 1) : inHostPath;
}

std::string WithoutTrailingSlash(const HostPath& inPath)
{
    return WithoutTrailingSlash(inPath.mPath);
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

// Briefly requests delete access to the name.
SystemError ShareForDelete(const std::string& inHostPath, EntryShare& outShare, struct stat& outStatus)
{
    const SystemError error = GetEntryStatus(inHostPath, outStatus);
    return error != kNoError ? error : outShare.Enter(inHostPath, outStatus, ORL::Linux::kShareDelete, kShareAll);
}

// The fallback for kernels and file systems without RENAME_NOREPLACE.
SystemError RenameToFreeName(const std::string& inFrom, const std::string& inTo)
{
    struct stat status;
    const SystemError error = GetEntryStatus(inTo, status);
    if (error != kErrorFileNotFound) {
        return error == kNoError ? kErrorAlreadyExists : error;
    }
    return System().mRename(inFrom.c_str(), inTo.c_str()) == 0
               ? kNoError
               : SystemErrorFromErrno(errno, inTo, PathOperation::kMove);
}

// Copies a link as a link; ignores its target.
SystemError CopyLink(const std::string& inSource, const std::string& inDestination)
{
    LinkTarget target;
    const int failure = target.Read(AT_FDCWD, inSource.c_str());
    if (failure != 0) {
        return SystemErrorFromErrno(failure, inSource);
    }
    return System().mSymLinkAt(target.Text(), AT_FDCWD, inDestination.c_str()) == 0
               ? kNoError
               : SystemErrorFromErrno(errno, inDestination);
}

SystemError CopyWhole(const HostPath& inSource, const HostPath& inDestination)
{
    CopyOptions options;
    options.mDisposition = kCreateNew;
    options.mReplacesSource = true; // the source is deleted afterwards
    return CopyHostFile(inSource, inDestination, options);
}

// Opens for reading, else for writing: a copy has the permissions of its source, which may deny reading or writing.
Descriptor OpenAnyWay(const std::string& inFile)
{
    Descriptor file = OpenByPath(inFile.c_str(), O_RDONLY | O_NOFOLLOW);
    if (!file && errno == EACCES) {
        file = OpenByPath(inFile.c_str(), O_WRONLY | O_NOFOLLOW);
    }
    return file;
}

// A folder whose entries are to be synced to disk. The folder is opened before anything is changed, so that afterwards
// only the sync itself can fail.
class FolderToSync
{
public:
    explicit FolderToSync(const std::string& inFolder)
        : mFolder(OpenByPath(inFolder.c_str(), O_RDONLY | O_DIRECTORY)), mOpenError(mFolder ? 0 : errno)
    {
    }

    // A folder with write but without read permission cannot be opened; that is not an error here.
    SystemError OpenError(const std::string& inPath) const
    {
        return CanBeOpened() ? SystemErrorFromErrno(mOpenError, inPath) : kNoError;
    }

    bool IsOpen() const noexcept { return static_cast<bool>(mFolder); }

    // If the folder could not be opened, syncs the whole volume of inFile.
    SystemError Sync(int inFile) const noexcept
    {
        if (mFolder) {
            return SystemErrorFromErrno(SyncFolder(mFolder.Get()));
        }
        return System().mSyncVolume(inFile) == 0 ? kNoError : SystemErrorFromErrno(errno);
    }

    // Syncs for a caller without a descriptor for the new file.
    SystemError SyncWith(const std::string& inFile) const noexcept
    {
        if (mFolder) {
            return Sync(-1);
        }
        const Descriptor file(OpenAnyWay(inFile));
        return file ? Sync(file.Get()) : SystemErrorFromErrno(errno, inFile);
    }

private:
    bool CanBeOpened() const noexcept { return mOpenError != EACCES && mOpenError != EPERM; }

    const Descriptor mFolder;
    const int mOpenError;
};

// Moves by copying; fails with 5 for folders. The source is deleted after the copy and its name have been synced.
// Exception: a link in a destination folder without read permission is not synced, because no descriptor of its volume
// can be opened. If the source cannot be deleted, both files remain.
SystemError MoveToOtherVolume(const HostPath& inSource, const HostPath& inDestination, const struct stat& inStatus)
{
    const FolderToSync folder(FolderOf(inDestination.mPath));
    const bool isLink = S_ISLNK(inStatus.st_mode);
    SystemError error = folder.OpenError(inDestination.mPath);
    if (error == kNoError) {
        error = isLink ? CopyLink(inSource.mPath, inDestination.mPath) : CopyWhole(inSource, inDestination);
    }
    if (error != kNoError) {
        return error == kErrorFileExists ? kErrorAlreadyExists : error;
    }
    error = isLink && !folder.IsOpen() ? kNoError : folder.SyncWith(inDestination.mPath);
    System().mUnlink((error == kNoError ? inSource : inDestination).mPath.c_str());
    return error;
}

// --- replacing -------------------------------------------------------------------------------------------------------

// The backup of the replaced file: a hard link to the file, or a copy if the file system refuses the link. The backup
// is kept, or deleted when the replacement is done.
class Backup
{
public:
    Backup(const HostPath& inPath, BackupDisposition inBackupDisposition)
        : mPath(inPath), mIsDeletedWhenDone(inBackupDisposition == BackupDisposition::kDelete)
    {
    }

    // If the file system rejects the backup's name as invalid, uses a temporary name and deletes the backup when done.
    SystemError Make(const HostPath& inReplaced)
    {
        const SystemError error = MakeReplacing(inReplaced);
        if (error != kErrorInvalidName) {
            return error;
        }
        mIsDeletedWhenDone = true;
        return MakeUnderOwnName(inReplaced);
    }

    void Remove() const { System().mUnlink(mPath.mPath.c_str()); }

    // Call this function after the new contents have been synced.
    void RemoveIfDone() const
    {
        if (mIsDeletedWhenDone) {
            Remove();
        }
    }

private:
    SystemError MakeAt(const HostPath& inReplaced, std::uint32_t inDisposition) const
    {
        const int error = System().mLink(inReplaced.mPath.c_str(), mPath.mPath.c_str()) == 0 ? 0 : errno;
        if (error == EPERM || error == EOPNOTSUPP || error == ENOSYS || error == EMLINK || error == EXDEV) {
            CopyOptions options;
            options.mDisposition = inDisposition;
            options.mReplacesSource = true;
            return CopyHostFile(inReplaced, mPath, options);
        }
        return error == 0 ? kNoError : SystemErrorFromErrno(error, mPath.mPath);
    }

    SystemError MakeReplacing(const HostPath& inReplaced) const
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
    bool mIsDeletedWhenDone;
};

// One of the two files of a replacement, registered with the share modes.
struct SwapFile
{
    HostPath mPath;
    struct stat mStatus;
    EntryShare mShare;

    SystemError Find(const UTF16String& inPath)
    {
        const SystemError error = ResolveToUsablePath(inPath, mPath);
        return error != kNoError ? error : GetEntryStatus(WithoutTrailingSlash(mPath), mStatus);
    }

    // Resolves a link, so that its target is replaced and the link itself is kept.
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

    SystemError RegisterShare(unsigned inUses, unsigned inShares)
    {
        if (!S_ISREG(mStatus.st_mode) || IsReadOnly(mStatus)) {
            return kErrorAccessDenied;
        }
        const SystemError error = mShare.Enter(mPath.mPath, mStatus, inUses, inShares);
        return error != kNoError ? error : SystemErrorFromErrno(mShare.OpenError(), mPath.mPath);
    }
};

// The replaced name always has the old or the new contents. The replacement's own name exists as long as the replaced
// name has the old contents, so after an interruption its existence shows that the exchange is incomplete.
SystemError Exchange(const SwapFile& inReplaced, const SwapFile& inReplacement, Backup& ioBackup)
{
    const int contents = inReplacement.mShare.File();
    const mode_t mode = inReplaced.mStatus.st_mode & 07777;
    if (mode != (inReplacement.mStatus.st_mode & 07777)) {
        System().mFChMod(contents, mode); // failure is ignored: not every file system stores permissions
    }
    CopyUserAttributes(inReplaced.mShare.File(), contents, ExistingAttributes::kKeep);
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

// The folders of the replaced name and of its replacement, which may be the same folder.
class BothFolders
{
public:
    BothFolders(const SwapFile& inReplaced, const SwapFile& inReplacement) : mReplaced(FolderOf(inReplaced.mPath.mPath))
    {
        const std::string other = FolderOf(inReplacement.mPath.mPath);
        if (other != FolderOf(inReplaced.mPath.mPath)) {
            mReplacement.emplace(other);
        }
    }

    SystemError OpenError(const std::string& inPath) const
    {
        const SystemError error = mReplaced.OpenError(inPath);
        return error != kNoError || !mReplacement ? error : mReplacement->OpenError(inPath);
    }

    SystemError Sync(int inContents) const noexcept
    {
        const SystemError error = mReplaced.Sync(inContents);
        return error != kNoError || !mReplacement ? error : mReplacement->Sync(inContents);
    }

private:
    const FolderToSync mReplaced;
    std::optional<FolderToSync> mReplacement; // set if the replacement is in a different folder
};

// Acquires all memory and descriptors before the exchange.
SystemError ReplaceHeld(const SwapFile& inReplaced, const SwapFile& inReplacement, Backup& ioBackup)
{
    const BothFolders folders(inReplaced, inReplacement);
    SystemError error = folders.OpenError(inReplaced.mPath.mPath);
    if (error == kNoError) {
        error = Exchange(inReplaced, inReplacement, ioBackup);
    }
    if (error == kNoError) {
        error = folders.Sync(inReplacement.mShare.File());
    }
    if (error == kNoError) {
        ioBackup.RemoveIfDone();
    }
    return error;
}

} // namespace

SystemError DeleteFile_Impl(const UTF16String& inPath)
{
    HostPath path;
    SystemError error = ResolveToUsablePath(inPath, path);
    if (error != kNoError) {
        return error;
    }
    const std::string name = WithoutTrailingSlash(path);
    EntryShare share;
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
    error = share.Enter(name, status, ORL::Linux::kShareDelete, kShareAll);
    if (error != kNoError) {
        return error;
    }
    return System().mUnlink(name.c_str()) == 0 ? kNoError : SystemErrorFromErrno(errno, name);
}

SystemError MoveFile_Impl(const UTF16String& inSource, const UTF16String& inDestination)
{
    HostPath source;
    SystemError error = ResolveToUsablePath(inSource, source);
    if (error != kNoError) {
        return error;
    }
    HostPath destination;
    error = ResolveToUsablePath(inDestination, destination);
    if (error != kNoError) {
        return error;
    }
    const std::string from = WithoutTrailingSlash(source);
    const std::string to = WithoutTrailingSlash(destination);
    EntryShare share;
    struct stat status;
    error = ShareForDelete(from, share, status);
    if (error != kNoError || WithoutTrailingSlash(source.Whole()) == WithoutTrailingSlash(destination.Whole())) {
        return error;
    }
    if (S_ISDIR(status.st_mode) && IsBelow(destination.Whole(), WithoutTrailingSlash(source.Whole()))) {
        return kErrorSharingViolation;
    }
    if (System().mRenameTo(from.c_str(), to.c_str(), RENAME_NOREPLACE) == 0) {
        return kNoError;
    }
    switch (errno) {
    case EINVAL:
    case ENOSYS: return RenameToFreeName(from, to);
    case EXDEV: return MoveToOtherVolume(source, destination, status);
    default: return SystemErrorFromErrno(errno, to, PathOperation::kMove);
    }
}

SystemError ReplaceFile_Impl(const UTF16String& inReplaced, const UTF16String& inReplacement,
                             const UTF16String& inBackup, BackupDisposition inBackupDisposition)
{
    SwapFile replaced;
    SwapFile replacement;
    HostPath backupPath;
    SystemError error = replaced.Find(inReplaced);
    if (error == kNoError) {
        error = replaced.FollowLink();
    }
    if (error == kNoError) {
        error = replacement.Find(inReplacement);
    }
    if (error == kNoError) {
        error = ResolveToUsablePath(inBackup, backupPath);
    }
    if (error != kNoError) {
        return error;
    }
    if (IdentityOf(replaced.mStatus) == IdentityOf(replacement.mStatus)) {
        return kErrorUnableToMoveReplacement2;
    }
    error = replaced.RegisterShare(ORL::Linux::kShareRead | ORL::Linux::kShareDelete, kShareAll);
    if (error == kNoError) {
        error = replacement.RegisterShare(kShareAll, kShareNothing);
    }
    Backup backup(backupPath, inBackupDisposition);
    return error == kNoError ? ReplaceHeld(replaced, replacement, backup) : error;
}

} // namespace Platform
} // namespace Files
} // namespace ORL
