// Implements reads, writes, seeks, sizes and times of open files. OpenFile stores the position, and every read and
// write passes it to the kernel, so a seek needs no system call.
#include "LinuxFile.h"

#include "../Calls/LinuxErrors.h"
#include "../Calls/SystemCalls.h"
#include "LinuxPageCache.h"

#include <algorithm>
#include <cerrno>
#include <unistd.h>

namespace ORL {
namespace Files {
namespace Platform {

namespace {

using namespace ORL::Linux;
using namespace SystemErrors;

bool IsAligned(const OpenFile& inFile, const void* inBuffer, std::uint32_t inCount)
{
    const std::uint64_t all =
        reinterpret_cast<std::uintptr_t>(inBuffer) | inCount | static_cast<std::uint64_t>(inFile.mPosition);
    return !inFile.mIsUnbuffered || all % inFile.mAlignment == 0;
}

// Transfers inCount bytes in as many calls as needed: one call transfers at most 2 GiB and may be interrupted.
// inCall(done) transfers the rest and returns like the system call.
template <class Call>
SystemError Transfer(OpenFile& ioFile, std::uint32_t inCount, std::uint32_t& outDone, Call inCall)
{
    while (outDone < inCount) {
        const ssize_t moved = inCall(outDone);
        if (moved > 0) {
            outDone += static_cast<std::uint32_t>(moved);
            ioFile.mPosition += moved;
        } else if (moved == 0) {
            break;
        } else if (errno != EINTR) {
            return SystemErrorFromErrno(errno);
        }
    }
    return kNoError;
}

// Returns false if the system cannot report the size. A seek is the cheapest size query for a regular file; the
// descriptor's own position is not used.
bool GetSize(const OpenFile& inFile, std::int64_t& outSize)
{
    outSize = inFile.mIsRegular ? System().mSeek(inFile.File(), 0, SEEK_END) : -1;
    if (outSize >= 0) {
        return true;
    }
    struct stat status;
    if (System().mFStat(inFile.File(), &status) != 0) {
        return false;
    }
    outSize = S_ISDIR(status.st_mode) ? 0 : status.st_size;
    return true;
}

// An unbuffered read that transfers an unaligned number of bytes has reached the end of the file.
bool IsAtEnd(const OpenFile& inFile, std::uint32_t inDone)
{
    return inFile.mIsUnbuffered && inDone % inFile.mAlignment != 0;
}

} // namespace

SystemError ReadFile_Impl(Handle inFile, void* outBuffer, std::uint32_t inCount, std::uint32_t& outBytesRead)
{
    outBytesRead = 0;
    if (IsNoFile(inFile)) {
        return kErrorInvalidHandle;
    }
    OpenFile& file = FileOf(inFile);
    if (!file.mMayRead) {
        return kErrorAccessDenied;
    }
    if (!IsAligned(file, outBuffer, inCount)) {
        return kErrorInvalidParameter;
    }
    const std::int64_t start = file.mPosition;
    const SystemError error = Transfer(file, inCount, outBytesRead, [&](std::uint32_t inDone) {
        return IsAtEnd(file, inDone) ? ssize_t{0}
                                     : System().mPRead(file.File(), static_cast<char*>(outBuffer) + inDone,
                                                       inCount - inDone, file.mPosition);
    });
    if (file.mDropsPages) {
        DropPagesOfTransfer(file.File(), static_cast<std::uint64_t>(start), outBytesRead);
    }
    return error;
}

SystemError WriteFile_Impl(Handle inFile, const void* inBuffer, std::uint32_t inCount, std::uint32_t& outBytesWritten)
{
    outBytesWritten = 0;
    if (IsNoFile(inFile)) {
        return kErrorInvalidHandle;
    }
    OpenFile& file = FileOf(inFile);
    if (!file.mMayWrite) {
        return kErrorAccessDenied;
    }
    if (!IsAligned(file, inBuffer, inCount)) {
        return kErrorInvalidParameter;
    }
    return Transfer(file, inCount, outBytesWritten, [&](std::uint32_t inDone) {
        return System().mPWrite(file.File(), static_cast<const char*>(inBuffer) + inDone, inCount - inDone,
                                file.mPosition);
    });
}

int SetFilePointer_Impl(Handle inFile, std::int64_t inOffset, std::uint32_t inMethod, std::int64_t* outPosition)
{
    if (IsNoFile(inFile) || inMethod > kFromEnd) {
        return 0;
    }
    OpenFile& file = FileOf(inFile);
    std::int64_t base = inMethod == kFromCurrent ? file.mPosition : 0;
    if (inMethod == kFromEnd && !GetSize(file, base)) {
        return 0;
    }
    std::int64_t target = 0;
    if (__builtin_add_overflow(base, inOffset, &target) || target < 0) {
        return 0;
    }
    file.mPosition = target;
    if (outPosition != nullptr) {
        *outPosition = target;
    }
    return 1;
}

SystemError SetEndOfFile_Impl(Handle inFile)
{
    if (IsNoFile(inFile)) {
        return kErrorInvalidHandle;
    }
    const OpenFile& file = FileOf(inFile);
    if (!file.mMayWrite) {
        return kErrorAccessDenied;
    }
    return System().mFTruncate(file.File(), file.mPosition) == 0 ? kNoError : SystemErrorFromErrno(errno);
}

std::uint32_t GetFileSize_Impl(Handle inFile, std::uint32_t& outHigh)
{
    constexpr std::uint32_t kInvalidSize = 0xFFFFFFFF;
    std::int64_t size = 0;
    if (IsNoFile(inFile) || !GetSize(FileOf(inFile), size)) {
        return kInvalidSize;
    }
    outHigh = static_cast<std::uint32_t>(size >> 32);
    return static_cast<std::uint32_t>(size);
}

SystemError GetLastWriteTime_Impl(Handle inFile, std::uint64_t& outTime)
{
    struct stat status;
    if (IsNoFile(inFile)) {
        return kErrorInvalidHandle;
    }
    if (System().mFStat(FileOf(inFile).File(), &status) != 0) {
        return SystemErrorFromErrno(errno);
    }
    outTime = TimeOf(status.st_mtim);
    return kNoError;
}

SystemError GetSizeOfPath_Impl(const UTF16String& inPath, std::uint64_t& outSize)
{
    HostPath path;
    const SystemError error = ResolveToUsablePath(inPath, path);
    if (error != kNoError) {
        return error;
    }
    struct statx status;
    if (System().mStatx(AT_FDCWD, path.mPath.c_str(), 0, STATX_TYPE | STATX_SIZE, &status) != 0) {
        return path.mHasTrailingSeparator && errno == ENOTDIR ? kErrorInvalidName
                                                              : SystemErrorFromErrno(errno, path.mPath);
    }
    outSize = S_ISDIR(status.stx_mode) ? 0 : status.stx_size;
    return kNoError;
}

} // namespace Platform
} // namespace Files
} // namespace ORL
