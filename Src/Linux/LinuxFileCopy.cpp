// Copies: left to the kernel, which clones where the volume can, in steps small enough to tell of; small files and
// those that the kernel does not copy by itself through a buffer of ours.
#include "LinuxFileCopy.h"

#include "LinuxErrors.h"
#include "SystemCalls.h"

#include <tvxcore/SmallBlockAllocator.h>

#include <algorithm>
#include <cerrno>
#include <new>

namespace ORL {

namespace Linux {

namespace {

using namespace SystemErrors;
using namespace Files::Platform;

constexpr std::size_t kStepWithProgress = std::size_t{4} << 20;
constexpr std::size_t kStepWithout = std::size_t{128} << 20;
constexpr std::size_t kBufferSize = std::size_t{128} << 10;

class Buffer
{
public:
    Buffer() = default;
    ~Buffer()
    {
        if (mBytes != nullptr) {
            tvxcore::utility::SmallBlockAllocator::Dispose(mBytes, kBufferSize);
        }
    }
    Buffer(const Buffer&) = delete;
    Buffer& operator=(const Buffer&) = delete;

    void* Get()
    {
        if (mBytes == nullptr) {
            mBytes = tvxcore::utility::SmallBlockAllocator::Allocate(kBufferSize);
        }
        return mBytes;
    }

private:
    void* mBytes = nullptr;
};

class CopyJob
{
public:
    CopyJob(int inFrom, int inTo, std::uint64_t inTotal, const CopyWish& inWish)
        : mFrom(inFrom), mTo(inTo), mTotal(inTotal), mWish(inWish), mUsesKernel(inTotal > kBufferSize)
    {
    }

    SystemError Run()
    {
        if (!Tell()) {
            return kErrorRequestAborted;
        }
        for (;;) {
            const ssize_t moved = MoveStep();
            if (moved < 0) {
                return SystemErrorFromErrno(errno);
            }
            if (moved == 0) {
                return kNoError;
            }
            mDone += static_cast<std::uint64_t>(moved);
            if (!Tell()) {
                return kErrorRequestAborted;
            }
        }
    }

private:
    // The file may have grown meanwhile.
    bool Tell() const
    {
        return mWish.mProgress == nullptr || mWish.mProgress(std::max(mTotal, mDone), mDone, mWish.mData);
    }

    // Bytes moved, 0 at the end, -1 and errno for a failure.
    ssize_t MoveStep()
    {
        if (mUsesKernel) {
            const ssize_t moved = MoveByKernel();
            // Some file systems refuse, and some show no size or no bytes to the kernel: a plain read tells.
            if (moved > 0 || (moved < 0 && !IsRefusal(errno))) {
                return moved;
            }
            mUsesKernel = false;
        }
        return MoveThroughBuffer();
    }

    static bool IsRefusal(int inErrno) noexcept
    {
        return inErrno == EXDEV || inErrno == EINVAL || inErrno == ENOSYS || inErrno == EOPNOTSUPP || inErrno == EBADF
               || inErrno == EPERM;
    }

    ssize_t MoveByKernel()
    {
        const std::size_t step = mWish.mProgress != nullptr ? kStepWithProgress : kStepWithout;
        ssize_t moved = 0;
        do {
            off_t from = static_cast<off_t>(mDone);
            off_t to = from;
            moved = System().mCopyRange(mFrom, &from, mTo, &to, step);
        } while (moved < 0 && errno == EINTR);
        return moved;
    }

    ssize_t MoveThroughBuffer()
    {
        char* const bytes = static_cast<char*>(mBuffer.Get());
        if (bytes == nullptr) {
            errno = ENOMEM;
            return -1;
        }
        ssize_t count = 0;
        do {
            count = System().mPRead(mFrom, bytes, kBufferSize, static_cast<off_t>(mDone));
        } while (count < 0 && errno == EINTR);
        return count > 0 ? WriteAll(bytes, count) : count;
    }

    ssize_t WriteAll(const char* inBytes, ssize_t inCount)
    {
        ssize_t written = 0;
        while (written < inCount) {
            const ssize_t moved =
                System().mPWrite(mTo, inBytes + written, static_cast<std::size_t>(inCount - written),
                                 static_cast<off_t>(mDone) + written);
            if (moved < 0 && errno != EINTR) {
                return -1;
            }
            written += std::max<ssize_t>(moved, 0);
        }
        return written;
    }

    const int mFrom;
    const int mTo;
    const std::uint64_t mTotal;
    const CopyWish& mWish;
    bool mUsesKernel;
    std::uint64_t mDone = 0;
    Buffer mBuffer;
};

// The last write's time, and the mark of a read-only file where the destination was there before. A file system that
// keeps none of them is no failure.
SystemError CopyMarks(int inTo, const struct stat& inSource, const struct stat& inDestination, bool inIsNew)
{
    const auto fails = [](int inAnswer) {
        return inAnswer != 0 && errno != EPERM && errno != EOPNOTSUPP && errno != ENOSYS;
    };
    const struct timespec times[2] = {{0, UTIME_OMIT}, inSource.st_mtim};
    if (fails(System().mFUTimens(inTo, times))) {
        return SystemErrorFromErrno(errno);
    }
    const mode_t readOnly = inDestination.st_mode & 07777 & ~static_cast<mode_t>(S_IWUSR | S_IWGRP | S_IWOTH);
    if (!inIsNew && IsReadOnly(inSource) && fails(System().mFChMod(inTo, readOnly))) {
        return SystemErrorFromErrno(errno);
    }
    return kNoError;
}

SystemError CopyContents(int inFrom, const struct stat& inSource, int inTo, const struct stat& inDestination,
                         bool inIsNew, const CopyWish& inWish)
{
    if (inDestination.st_size != 0 && System().mFTruncate(inTo, 0) != 0) {
        return SystemErrorFromErrno(errno);
    }
    SystemError error = CopyJob(inFrom, inTo, static_cast<std::uint64_t>(inSource.st_size), inWish).Run();
    if (error == kNoError) {
        error = CopyMarks(inTo, inSource, inDestination, inIsNew);
    }
    if (error == kNoError && inWish.mSyncs && System().mFSync(inTo) != 0) {
        error = SystemErrorFromErrno(errno);
    }
    return error;
}

// A copy that has failed leaves nothing. Where the name is a link, the link stays.
void RemoveCopy(const std::string& inHostPath, const FileIdentity& inFile)
{
    struct stat status;
    if (GetEntryStatus(inHostPath, status) == kNoError && IdentityOf(status) == inFile) {
        System().mUnlink(inHostPath.c_str());
    }
}

} // namespace

SystemError CopyHostFile(const HostPath& inSource, const HostPath& inDestination, const CopyWish& inWish)
{
    OpenWish wish;
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
    wish.mDisposition = inWish.mDisposition;
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
    error = CopyContents(from->mDescriptor, source, to->mDescriptor, destination, isNew, inWish);
    if (error != kNoError) {
        RemoveCopy(inDestination.mPath, to->mIdentity);
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
    SystemError error = ResolveHostPath(inSource, source);
    if (error != kNoError) {
        return error;
    }
    HostPath destination;
    error = ResolveHostPath(inDestination, destination);
    if (error != kNoError) {
        return error;
    }
    CopyWish wish;
    wish.mProgress = inProgress;
    wish.mData = inData;
    return CopyHostFile(source, destination, wish);
}

} // namespace Platform
} // namespace Files
} // namespace ORL
