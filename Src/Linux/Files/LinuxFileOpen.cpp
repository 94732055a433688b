// Opens and closes files.
#include "LinuxFile.h"

#include "../Calls/LinuxErrors.h"
#include "../Calls/SystemCalls.h"
#include "LinuxDirectAlignment.h"

#include <cerrno>
#include <memory>
#include <sys/sysmacros.h>

namespace ORL {

namespace Linux {

namespace {

using namespace SystemErrors;
using namespace Files::Platform;

bool Has(std::uint32_t inWord, std::uint32_t inBits) noexcept
{
    return (inWord & inBits) != 0;
}

bool MayTruncate(const OpenRequest& inRequest) noexcept
{
    return inRequest.mDisposition == kCreateAlways || inRequest.mDisposition == kTruncateExisting;
}

bool WantsToWrite(const OpenRequest& inRequest) noexcept
{
    return Has(inRequest.mAccess, kGenericWrite) || MayTruncate(inRequest);
}

SystemError CheckRequest(const OpenRequest& inRequest)
{
    const bool isKnown = inRequest.mDisposition >= kCreateNew && inRequest.mDisposition <= kTruncateExisting;
    const bool cannotTruncate = inRequest.mDisposition == kTruncateExisting && !Has(inRequest.mAccess, kGenericWrite);
    return isKnown && !cannotTruncate ? kNoError : kErrorInvalidParameter;
}

// The open mode of the descriptor. A write-only open adds read access for the share modes' locks.
int DescriptorMode(const OpenRequest& inRequest) noexcept
{
    const std::uint32_t any = kGenericRead | kGenericWrite | kGenericExecute | kAccessDelete;
    const bool onlyAsks =
        !Has(inRequest.mAccess, any) && !WantsToWrite(inRequest) && inRequest.mDisposition == kOpenExisting;
    return onlyAsks ? O_PATH : WantsToWrite(inRequest) ? O_RDWR : O_RDONLY;
}

// O_NONBLOCK: otherwise opening a pipe would block until its other end is open.
Descriptor OpenDescriptor(const std::string& inPath, int inFlags, mode_t inMode)
{
    return OpenByPath(inPath.c_str(), inFlags | O_NOCTTY | O_NONBLOCK, inMode);
}

// Opens an existing file. Other processes do not detect a write-only handle to a file without read permission, unless
// that handle shares nothing.
Descriptor OpenExisting(const std::string& inPath, const OpenRequest& inRequest)
{
    const int mode = DescriptorMode(inRequest);
    Descriptor file = OpenDescriptor(inPath, mode, 0);
    if (!file && errno == EACCES && mode == O_RDWR && !Has(inRequest.mAccess, kGenericRead | kGenericExecute)) {
        file = OpenDescriptor(inPath, O_WRONLY, 0);
    }
    if (!file && errno == EISDIR && Has(inRequest.mFlags, kFlagBackupSemantics) && !MayTruncate(inRequest)) {
        file = OpenDescriptor(inPath, O_RDONLY | O_DIRECTORY, 0);
    }
    return file;
}

Descriptor CreateNew(const std::string& inPath, const OpenRequest& inRequest)
{
    return OpenDescriptor(inPath, DescriptorMode(inRequest) | O_CREAT | O_EXCL, inRequest.mNewMode);
}

// Creates the file or opens the existing one. Tries both in turn, since each may fail while other threads or processes
// create and delete the name. If the name is a link to a missing file, creates that file.
Descriptor CreateOrOpen(const std::string& inPath, const OpenRequest& inRequest, bool& outIsNew)
{
    constexpr int kRounds = 4;
    for (int round = 0; round < kRounds; ++round) {
        Descriptor file = CreateNew(inPath, inRequest);
        outIsNew = static_cast<bool>(file);
        if (file || errno != EEXIST) {
            return file;
        }
        file = OpenExisting(inPath, inRequest);
        if (file || errno != ENOENT) {
            return file;
        }
    }
    outIsNew = true;
    return OpenDescriptor(inPath, DescriptorMode(inRequest) | O_CREAT, inRequest.mNewMode);
}

Descriptor OpenByDisposition(const std::string& inPath, const OpenRequest& inRequest, bool& outIsNew)
{
    outIsNew = inRequest.mDisposition == kCreateNew;
    switch (inRequest.mDisposition) {
    case kCreateNew: return CreateNew(inPath, inRequest);
    case kCreateAlways:
    case kOpenAlways: return CreateOrOpen(inPath, inRequest, outIsNew);
    default: return OpenExisting(inPath, inRequest);
    }
}

SystemError CheckKind(const struct stat& inStatus, const OpenRequest& inRequest, bool inIsNew)
{
    if (S_ISDIR(inStatus.st_mode)) {
        return Has(inRequest.mFlags, kFlagBackupSemantics) && !MayTruncate(inRequest) ? kNoError : kErrorAccessDenied;
    }
    if (!S_ISREG(inStatus.st_mode) && !S_ISBLK(inStatus.st_mode) && !S_ISCHR(inStatus.st_mode)) {
        return kErrorAccessDenied;
    }
    const bool changes = WantsToWrite(inRequest) || Has(inRequest.mFlags, kFlagDeleteOnClose);
    return changes && !inIsNew && IsReadOnly(inStatus) ? kErrorAccessDenied : kNoError;
}

unsigned UsesOf(const OpenRequest& inRequest, bool inIsNew) noexcept
{
    const bool deletes = Has(inRequest.mAccess, kAccessDelete) || Has(inRequest.mFlags, kFlagDeleteOnClose);
    const bool writes = Has(inRequest.mAccess, kGenericWrite) || (!inIsNew && MayTruncate(inRequest));
    return (Has(inRequest.mAccess, kGenericRead | kGenericExecute) ? kShareRead : 0u) | (writes ? kShareWrite : 0u)
           | (deletes ? kShareDelete : 0u);
}

// Bypasses the cache if the file system supports direct I/O. Even if it does not, unaligned reads and writes fail.
void BypassCache(OpenFile& ioFile, int inStatusFlags)
{
    ioFile.mIsUnbuffered = true;
    ioFile.mDropsPages = true;
    if (System().mSetFlags(ioFile.File(), inStatusFlags | O_DIRECT) != 0) {
        return;
    }
    const std::uint32_t alignment =
        FindDirectAlignment(ioFile.File(), ioFile.mMayRead ? TestRead::kAllowed : TestRead::kForbidden);
    if (alignment == 0) {
        System().mSetFlags(ioFile.File(), inStatusFlags);
        return;
    }
    ioFile.mAlignment = alignment;
    ioFile.mDropsPages = false;
}

void ApplyFlags(OpenFile& ioFile, const OpenRequest& inRequest, const struct stat& inStatus)
{
    if (S_ISCHR(inStatus.st_mode) || S_ISBLK(inStatus.st_mode)) {
        System().mSetFlags(ioFile.File(), 0); // make reads and writes blocking
    }
    if (Has(inRequest.mFlags, kFlagNoBuffering) && !S_ISDIR(inStatus.st_mode) && !S_ISCHR(inStatus.st_mode)) {
        BypassCache(ioFile, S_ISREG(inStatus.st_mode) ? O_NONBLOCK : 0);
    }
    if (Has(inRequest.mFlags, kFlagSequentialScan)) {
        System().mFAdvise(ioFile.File(), 0, 0, POSIX_FADV_SEQUENTIAL);
    }
}

// Prepares a file that has just been opened. On failure the caller destroys ioFile.
SystemError SetUp(OpenFile& ioFile, const OpenRequest& inRequest, bool inIsNew, struct stat& outStatus)
{
    if (System().mFStat(ioFile.File(), &outStatus) != 0) {
        return SystemErrorFromErrno(errno);
    }
    SystemError error = CheckKind(outStatus, inRequest, inIsNew);
    if (error != kNoError) {
        return error;
    }
    ioFile.mMayRead = Has(inRequest.mAccess, kGenericRead);
    ioFile.mMayWrite = Has(inRequest.mAccess, kGenericWrite);
    ioFile.mIsRegular = S_ISREG(outStatus.st_mode);
    ioFile.mIdentity = IdentityOf(outStatus);
    error = ioFile.mShares.Enter(ioFile.mIdentity, UsesOf(inRequest, inIsNew), inRequest.mShareMode,
                                 WantsToWrite(inRequest));
    if (error != kNoError) {
        return error;
    }
    if (!inIsNew && MayTruncate(inRequest) && outStatus.st_size != 0) {
        if (System().mFTruncate(ioFile.File(), 0) != 0) {
            return SystemErrorFromErrno(errno);
        }
        outStatus.st_size = 0;
    }
    ApplyFlags(ioFile, inRequest, outStatus);
    return kNoError;
}

// Removes a file created by an open that failed, unless another handle opened it first (32) or the name now belongs to
// another file.
void RemoveCreated(const std::string& inPath, const OpenFile& inFile, SystemError inError)
{
    struct statx made;
    struct stat named;
    const bool isOurs = inError != kErrorSharingViolation
                        && System().mStatx(inFile.File(), "", AT_EMPTY_PATH, STATX_INO, &made) == 0
                        && GetEntryStatus(inPath, named) == kNoError && named.st_ino == made.stx_ino
                        && named.st_dev == makedev(made.stx_dev_major, made.stx_dev_minor);
    if (isOurs) {
        System().mUnlink(inPath.c_str());
    }
}

// A file name cannot end in a separator: returns 3 if a folder on the path is missing, otherwise 123.
SystemError ErrorOfTrailingSeparator(const HostPath& inPath)
{
    struct stat status;
    const std::string name(inPath.mPath, 0, inPath.mPath.size() - 1);
    const SystemError error = GetEntryStatus(name, status);
    return error == kErrorPathNotFound ? error : kErrorInvalidName;
}

} // namespace

SystemError OpenFile::Close() noexcept
{
    if (!mNameToDelete.empty()) {
        // The name may now belong to another file.
        struct stat status;
        if (GetEntryStatus(mNameToDelete, status) == kNoError && IdentityOf(status) == mIdentity) {
            System().mUnlink(mNameToDelete.c_str());
        }
        mNameToDelete.clear();
    }
    return SystemErrorFromErrno(mShares.Release());
}

SystemError OpenHostFile(const HostPath& inPath, const OpenRequest& inRequest, std::unique_ptr<OpenFile>& outFile,
                         struct stat& outStatus, bool& outIsNew)
{
    SystemError error = CheckRequest(inRequest);
    if (error != kNoError) {
        return error;
    }
    std::unique_ptr<OpenFile> file(new OpenFile);
    const std::string& path = inPath.mPath;
    std::string nameToDelete(Has(inRequest.mFlags, kFlagDeleteOnClose) ? path : std::string());
    file->mShares.Own(OpenByDisposition(path, inRequest, outIsNew));
    if (file->File() < 0) {
        const bool isNoFolder = errno == ENOTDIR || errno == ENOENT || errno == EISDIR;
        error = SystemErrorFromErrno(errno, path);
        return inPath.mHasTrailingSeparator && isNoFolder ? ErrorOfTrailingSeparator(inPath) : error;
    }
    error = SetUp(*file, inRequest, outIsNew, outStatus);
    if (error != kNoError) {
        if (outIsNew) {
            RemoveCreated(path, *file, error);
        }
        return error;
    }
    file->mNameToDelete = std::move(nameToDelete);
    file->mFolderOfName = inPath.mFolder;
    outFile = std::move(file);
    return kNoError;
}

SystemError GetEntryStatus(const std::string& inHostPath, struct stat& outStatus)
{
    struct statx status;
    if (System().mStatx(AT_FDCWD, inHostPath.c_str(), AT_SYMLINK_NOFOLLOW, STATX_BASIC_STATS, &status) != 0) {
        return SystemErrorFromErrno(errno, inHostPath);
    }
    outStatus = {};
    outStatus.st_dev = makedev(status.stx_dev_major, status.stx_dev_minor);
    outStatus.st_ino = status.stx_ino;
    outStatus.st_mode = status.stx_mode;
    outStatus.st_size = static_cast<off_t>(status.stx_size);
    outStatus.st_uid = status.stx_uid;
    outStatus.st_gid = status.stx_gid;
    return kNoError;
}

SystemError EntryShare::Enter(const std::string& inHostPath, const struct stat& inStatus, unsigned inUses,
                              unsigned inShares)
{
    if (!S_ISREG(inStatus.st_mode) && !S_ISDIR(inStatus.st_mode)) {
        return kNoError;
    }
    mShares.Own(OpenDescriptor(inHostPath, O_RDONLY | O_NOFOLLOW, 0));
    mOpenError = mShares.File() < 0 ? errno : 0;
    return mShares.Enter(IdentityOf(inStatus), inUses, inShares);
}

} // namespace Linux

namespace Files {
namespace Platform {

using namespace ORL::Linux;
using namespace SystemErrors;

SystemError CreateFile_Impl(const UTF16String& inPath, std::uint32_t inAccess, std::uint32_t inShareMode,
                            std::uint32_t inDisposition, std::uint32_t inFlags, Handle& outFile)
{
    outFile = InvalidHandle();
    HostPath path;
    SystemError error = ResolveToUsablePath(inPath, path);
    if (error != kNoError) {
        return error;
    }
    OpenRequest request;
    request.mAccess = inAccess;
    request.mShareMode = inShareMode;
    request.mDisposition = inDisposition;
    request.mFlags = inFlags;
    std::unique_ptr<OpenFile> file;
    struct stat status;
    bool isNew = false;
    error = OpenHostFile(path, request, file, status, isNew);
    if (error == kNoError) {
        outFile = file.release();
    }
    return error;
}

void CloseFile_Impl(Handle inFile)
{
    if (!IsNoFile(inFile)) {
        delete &FileOf(inFile);
    }
}

} // namespace Platform
} // namespace Files
} // namespace ORL
