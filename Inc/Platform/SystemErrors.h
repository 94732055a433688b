// Floor: Platform
// Windows error numbers. The platform functions report failures with these numbers on every platform, so that portable
// code returns the same results everywhere.
#pragma once

namespace ORL {

/// 0 is success.
using SystemError = unsigned long;

namespace SystemErrors {

inline constexpr SystemError kNoError = 0;
inline constexpr SystemError kErrorInvalidFunction = 1;
inline constexpr SystemError kErrorFileNotFound = 2;
inline constexpr SystemError kErrorPathNotFound = 3;
inline constexpr SystemError kErrorTooManyOpenFiles = 4;
inline constexpr SystemError kErrorAccessDenied = 5;
inline constexpr SystemError kErrorInvalidHandle = 6;
inline constexpr SystemError kErrorNotEnoughMemory = 8;
inline constexpr SystemError kErrorInvalidData = 13;
inline constexpr SystemError kErrorNotSameDevice = 17;
inline constexpr SystemError kErrorNoMoreFiles = 18;
inline constexpr SystemError kErrorWriteProtect = 19;
inline constexpr SystemError kErrorGeneral = 31;
inline constexpr SystemError kErrorSharingViolation = 32;
inline constexpr SystemError kErrorLockViolation = 33;
inline constexpr SystemError kErrorHandleEof = 38;
inline constexpr SystemError kErrorNotSupported = 50;
inline constexpr SystemError kErrorNetworkPathNotFound = 53;
inline constexpr SystemError kErrorUnexpectedNetworkError = 59;
inline constexpr SystemError kErrorFileExists = 80;
inline constexpr SystemError kErrorInvalidParameter = 87;
inline constexpr SystemError kErrorBrokenPipe = 109;
inline constexpr SystemError kErrorDiskFull = 112;
inline constexpr SystemError kErrorInvalidName = 123;
inline constexpr SystemError kErrorModNotFound = 126; // a module or one of its dependencies is missing
inline constexpr SystemError kErrorNegativeSeek = 131;
inline constexpr SystemError kErrorDirectoryNotEmpty = 145;
inline constexpr SystemError kErrorBadPathName = 161;
inline constexpr SystemError kErrorBusy = 170;
inline constexpr SystemError kErrorAlreadyExists = 183;
inline constexpr SystemError kErrorBadExeFormat = 193; // the file is not a module for this machine
inline constexpr SystemError kErrorFileNameTooLong = 206;
inline constexpr SystemError kErrorFileTooLarge = 223;
inline constexpr SystemError kErrorMoreData = 234;
inline constexpr SystemError kErrorNoMoreItems = 259;
inline constexpr SystemError kErrorDirectory = 267; // the name is not a directory where one is required
inline constexpr SystemError kErrorOperationAborted = 995;
inline constexpr SystemError kErrorIoPending = 997;
inline constexpr SystemError kErrorNoAccess = 998; // memory that is not readable or writable
inline constexpr SystemError kErrorRegistryIoFailed = 1016;
inline constexpr SystemError kErrorNotRegistryFile = 1017;
inline constexpr SystemError kErrorKeyDeleted = 1018;
inline constexpr SystemError kErrorIoDevice = 1117;
inline constexpr SystemError kErrorTooManyLinks = 1142;
inline constexpr SystemError kErrorUnableToMoveReplacement2 = 1177;
inline constexpr SystemError kErrorRequestAborted = 1235;
inline constexpr SystemError kErrorCannotResolveFileName = 1921;

} // namespace SystemErrors
} // namespace ORL
