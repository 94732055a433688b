#include "LinuxErrors.h"

#include "SystemCalls.h"

#include <cerrno>

namespace ORL {
namespace Linux {

namespace {

using namespace SystemErrors;

struct Row
{
    int mErrno;
    SystemError mError;
};

constexpr Row kRows[] = {
    {0, kNoError},
    // names and paths
    {ENOENT, kErrorFileNotFound},
    {ENOTDIR, kErrorPathNotFound},
    {EEXIST, kErrorFileExists},
    {EISDIR, kErrorAccessDenied},
    {ENOTEMPTY, kErrorDirectoryNotEmpty},
    {ENAMETOOLONG, kErrorInvalidName},
    {EILSEQ, kErrorInvalidName},
    {ELOOP, kErrorCannotResolveFileName},
    {EXDEV, kErrorNotSameDevice},
    {EMLINK, kErrorTooManyLinks},
    // rights and sharing
    {EACCES, kErrorAccessDenied},
    {EPERM, kErrorAccessDenied},
    {EROFS, kErrorWriteProtect},
    {ETXTBSY, kErrorSharingViolation},
    {EBUSY, kErrorBusy},
    {EAGAIN, kErrorBusy},
    {EDEADLK, kErrorLockViolation},
    {ENOLCK, kErrorLockViolation},
    // space and other resources
    {ENOSPC, kErrorDiskFull},
    {EDQUOT, kErrorDiskFull},
    {EFBIG, kErrorFileTooLarge},
    {ENOMEM, kErrorNotEnoughMemory},
    {ENOBUFS, kErrorNotEnoughMemory},
    {EMFILE, kErrorTooManyOpenFiles},
    {ENFILE, kErrorTooManyOpenFiles},
    // handles and values
    {EBADF, kErrorInvalidHandle},
    {EINVAL, kErrorInvalidParameter},
    {EFAULT, kErrorNoAccess},
    {EOVERFLOW, kErrorInvalidParameter},
    {ESPIPE, kErrorInvalidParameter},
    // devices and the system
    {EIO, kErrorIoDevice},
    {ENXIO, kErrorIoDevice},
    {ENODEV, kErrorIoDevice},
    {EPIPE, kErrorBrokenPipe},
    {ENOSYS, kErrorNotSupported},
    {EOPNOTSUPP, kErrorNotSupported},
    {ECANCELED, kErrorOperationAborted},
    {EINTR, kErrorOperationAborted},
    // network file systems
    {ESTALE, kErrorUnexpectedNetworkError},
    {EREMOTEIO, kErrorUnexpectedNetworkError},
    {ETIMEDOUT, kErrorUnexpectedNetworkError},
    {EHOSTDOWN, kErrorNetworkPathNotFound},
    {EHOSTUNREACH, kErrorNetworkPathNotFound},
    {ENETUNREACH, kErrorNetworkPathNotFound},
};

// Returns the folder that contains the path's last component.
std::string ParentOf(const std::string& inHostPath)
{
    const std::size_t nameEnd = inHostPath.find_last_not_of('/');
    if (nameEnd == std::string::npos) {
        return "/";
    }
    const std::size_t slash = inHostPath.find_last_of('/', nameEnd);
    if (slash == std::string::npos) {
        return ".";
    }
    return inHostPath.substr(0, slash + 1);
}

bool IsFolder(const std::string& inHostPath)
{
    struct statx status;
    return System().mStatx(AT_FDCWD, inHostPath.c_str(), 0, STATX_TYPE, &status) == 0 && S_ISDIR(status.stx_mode);
}

} // namespace

SystemError SystemErrorFromErrno(int inErrno) noexcept
{
    for (const Row& row : kRows) {
        if (row.mErrno == inErrno) {
            return row.mError;
        }
    }
    return kErrorGeneral;
}

SystemError SystemErrorFromErrno(int inErrno, const std::string& inHostPath, PathOperation inOperation)
{
    switch (inErrno) {
    case ENOENT: return IsFolder(ParentOf(inHostPath)) ? kErrorFileNotFound : kErrorPathNotFound;
    case ENOTDIR:
        // Either the last component is a file instead of a folder, or a component above it is.
        return inOperation == PathOperation::kRemoveFolder && IsFolder(ParentOf(inHostPath)) ? kErrorDirectory
                                                                                             : kErrorPathNotFound;
    case EEXIST:
        return inOperation == PathOperation::kOpen           ? kErrorFileExists
               : inOperation == PathOperation::kRemoveFolder ? kErrorDirectoryNotEmpty
                                                             : kErrorAlreadyExists;
    default: return SystemErrorFromErrno(inErrno);
    }
}

} // namespace Linux
} // namespace ORL
