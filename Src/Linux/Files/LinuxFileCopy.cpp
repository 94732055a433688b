// Copies whole files by name: contents, the user's attributes and the last-write time.
#include "LinuxFileCopy.h"

#include "../Calls/LinuxErrors.h"
#include "../Calls/SystemCalls.h"
#include "LinuxCopyBytes.h"

#include <cerrno>
#include <sys/sysmacros.h>

namespace ORL {

namespace Linux {

namespace {

using namespace SystemErrors;
using namespace Files::Platform;

// Returns true for a failed call, unless the file system does not support what the call sets.
bool Fails(int inAnswer)
{
    return inAnswer != 0 && errno != EPERM && errno != EOPNOTSUPP && errno != ENOSYS;
}

// Copies the last-write time, and the read-only attribute if the destination already existed.
SystemError CopyMarks(int inTo, const struct stat& inSource, const struct stat& inDestination, bool inIsNew)
{
    const struct timespec times[2] = {{0, UTIME_OMIT}, inSource.st_mtim};
    if (Fails(System().mFUTimens(inTo, times))) {
        return SystemErrorFromErrno(errno);
    }
    const mode_t readOnly = inDestination.st_mode & 07777 & ~static_cast<mode_t>(S_IWUSR | S_IWGRP | S_IWOTH);
    if (!inIsNew && IsReadOnly(inSource) && Fails(System().mFChMod(inTo, readOnly))) {
        return SystemErrorFromErrno(errno);
    }
    return kNoError;
}

SystemError CopyContents(int inFrom, const struct stat& inSource, int inTo, const struct stat& inDestination,
                         bool inIsNew, const CopyOptions& inOptions)
{
    if (inDestination.st_size != 0 && System().mFTruncate(inTo, 0) != 0) {
        return SystemErrorFromErrno(errno);
    }
    const int failure =
        CopyBytes(inFrom, inTo, static_cast<std::uint64_t>(inSource.st_size), inOptions.mProgress, inOptions.mData);
    if (failure != 0) {
        return failure == ECANCELED ? kErrorRequestAborted : SystemErrorFromErrno(failure);
    }
    CopyUserAttributes(inFrom, inTo, inIsNew ? ExistingAttributes::kNone : ExistingAttributes::kReplace);
    SystemError error = CopyMarks(inTo, inSource, inDestination, inIsNew);
    if (error == kNoError && inOptions.mReplacesSource && Fails(System().mFChMod(inTo, inSource.st_mode & 0777))) {
        error = SystemErrorFromErrno(errno);
    }
    if (error == kNoError && inOptions.mReplacesSource && System().mFSync(inTo) != 0) {
        error = SystemErrorFromErrno(errno);
    }
    return error;
}

// Removes the destination if the copy fails or throws. If the destination name is a link, the link is
// kept.
class UnfinishedCopy
{
public:
    UnfinishedCopy(const std::string& inHostPath, const FileIdentity& inFile) : mHostPath(inHostPath), mFile(inFile) {}
    ~UnfinishedCopy()
    {
        if (!mIsDone && IsStillThere()) {
            System().mUnlink(mHostPath.c_str());
        }
    }
    UnfinishedCopy(const UnfinishedCopy&) = delete;
    UnfinishedCopy& operator=(const UnfinishedCopy&) = delete;

    void Done() { mIsDone = true; }

private:
    bool IsStillThere() const
    {
        struct statx status;
        return System().mStatx(AT_FDCWD, mHostPath.c_str(), AT_SYMLINK_NOFOLLOW, STATX_INO, &status) == 0
               && FileIdentity{makedev(status.stx_dev_major, status.stx_dev_minor), status.stx_ino} == mFile;
    }

    const std::string& mHostPath;
    const FileIdentity mFile;
    bool mIsDone = false;
};

} // namespace

SystemError CopyHostFile(const HostPath& inSource, const HostPath& inDestination, const CopyOptions& inOptions)
{
    OpenRequest wish;
    wish.mAccess = kGenericRead;
    wish.mShareMode = kShareAll;
    wish.mDisposition = kOpenExisting;
    std::unique_ptr<OpenFile> from;
    struct stat source;
    bool isNew = false;
    SystemError error = OpenHostFile(inSource, wish, from, source, isNew);
    if (error != kNoError) {
        return error;
    }
    wish.mAccess = kGenericWrite;
    wish.mShareMode = kShareRead | kShareWrite;
    wish.mDisposition = inOptions.mDisposition;
    wish.mNewMode = source.st_mode & 0777;
    std::unique_ptr<OpenFile> to;
    struct stat destination;
    error = OpenHostFile(inDestination, wish, to, destination, isNew);
    if (error != kNoError) {
        return error;
    }
    if (to->mIdentity == from->mIdentity) {
        return kErrorSharingViolation;
    }
    UnfinishedCopy copy(inDestination.mPath, to->mIdentity);
    error = CopyContents(from->File(), source, to->File(), destination, isNew, inOptions);
    if (error == kNoError) {
        error = to->Close(); // some file systems report a full disk only on close
    }
    if (error == kNoError) {
        copy.Done();
    }
    return error;
}

} // namespace Linux

namespace Files {
namespace Platform {

using namespace ORL::Linux;
using namespace SystemErrors;

SystemError CopyFile_Impl(const UTF16String& inSource, const UTF16String& inDestination, CopyProgress inProgress,
                          void* inData)
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
    CopyOptions wish;
    wish.mProgress = inProgress;
    wish.mData = inData;
    return CopyHostFile(source, destination, wish);
}

} // namespace Platform
} // namespace Files
} // namespace ORL
