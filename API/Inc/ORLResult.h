// Floor: Core
// Codes for failures that a caller is expected to handle.
#pragma once

#include <ORLConfig.h>

#include <cstdint>
#include <type_traits>

namespace ORL {

/// Signed 32-bit code, negative for failure. Bit 31: failure. Bit 29: set in every non-zero code of this library. Bits
/// 16 to 27: the facility (0x00A object model, 0x00F foundation). Bits 0 to 15: the code, counted from 1.
using Result = std::int32_t;

inline constexpr Result kSuccess = 0;

// Success, informational.
inline constexpr Result kRegistryKeyExisted = 0x200F0001;
inline constexpr Result kWaitTimeout = 0x200F0002;

// Failure, object model.
inline constexpr Result kNoSuchInterface = static_cast<Result>(0xA00A0001u);
inline constexpr Result kClassNotRegistered = static_cast<Result>(0xA00A0002u);
inline constexpr Result kCategoryNotRegistered = static_cast<Result>(0xA00A0003u);
inline constexpr Result kCategoryIndexOutOfRange = static_cast<Result>(0xA00A0004u);

// Failure, foundation. 0xA00F0006 is not assigned.
inline constexpr Result kGeneralFailure = static_cast<Result>(0xA00F0001u);
inline constexpr Result kDiskFull = static_cast<Result>(0xA00F0002u);
inline constexpr Result kFileNotFound = static_cast<Result>(0xA00F0003u);
inline constexpr Result kPathNotFound = static_cast<Result>(0xA00F0004u);
inline constexpr Result kAccessDenied = static_cast<Result>(0xA00F0005u);
inline constexpr Result kOperationAborted = static_cast<Result>(0xA00F0007u);
inline constexpr Result kRegistryFailure = static_cast<Result>(0xA00F0008u);
inline constexpr Result kSharingViolation = static_cast<Result>(0xA00F0009u);
inline constexpr Result kAlreadyExists = static_cast<Result>(0xA00F000Au);
inline constexpr Result kWaitFailed = static_cast<Result>(0xA00F000Bu);

/// Returns whether the code is not a failure. Informational codes count as success.
constexpr bool ResultSucceeded(Result inResult) noexcept
{
    return inResult >= 0;
}

namespace Internal {

constexpr const char* DescribeResult(Result inResult) noexcept
{
    switch (inResult) {
    case kSuccess: return "kSuccess: The operation succeeded.";
    case kRegistryKeyExisted: return "kRegistryKeyExisted: The registry key already existed and has been opened.";
    case kWaitTimeout: return "kWaitTimeout: The time ran out before the wait ended.";
    case kNoSuchInterface: return "kNoSuchInterface: The object does not implement the requested interface.";
    case kClassNotRegistered: return "kClassNotRegistered: No class is registered under the identifier.";
    case kCategoryNotRegistered: return "kCategoryNotRegistered: No class is registered in the category.";
    case kCategoryIndexOutOfRange: return "kCategoryIndexOutOfRange: The category has fewer classes than the index.";
    case kGeneralFailure: return "kGeneralFailure: The operation failed for a reason without a code.";
    case kDiskFull: return "kDiskFull: The volume is full.";
    case kFileNotFound: return "kFileNotFound: The file or registry key does not exist.";
    case kPathNotFound: return "kPathNotFound: A folder of the path does not exist.";
    case kAccessDenied: return "kAccessDenied: The system denied the access.";
    case kOperationAborted: return "kOperationAborted: The caller aborted the operation.";
    case kRegistryFailure: return "kRegistryFailure: The registry operation failed.";
    case kSharingViolation: return "kSharingViolation: Another handle has the file open and does not share the access.";
    case kAlreadyExists: return "kAlreadyExists: A file or folder of the name already exists.";
    case kWaitFailed: return "kWaitFailed: The system could not wait.";
    case -1: return "-1: The operation failed without a code.";
    default: return inResult < 0 ? "(unknown failure)" : "(unknown success)";
    }
}

} // namespace Internal

/// Returns the name of a code and a sentence in English for logs: "kDiskFull: The volume is full." Never null; the
/// string is static. Returns "(unknown failure)" or "(unknown success)" for a number that is not a code. Thread-safe,
/// and may be called in a signal handler.
///
/// A template that accepts only a Result, so that a host's own Describe takes precedence.
template <class Code, std::enable_if_t<std::is_same_v<Code, Result>, int> = 0>
constexpr const char* Describe(Code inResult) noexcept
{
    return Internal::DescribeResult(inResult);
}

namespace Win {

/// Returns the code for a Windows error number. Call this function only after a failure: for 0, and for every number
/// without a code, returns kGeneralFailure.
ORL_API Result SystemErrorToORLResult(unsigned long inSystemError);

} // namespace Win
} // namespace ORL
