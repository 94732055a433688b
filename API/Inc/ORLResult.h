// Floor: Core
// Codes for failures that a caller is expected to handle.
#pragma once

#include <ORLConfig.h>

#include <cstdint>

namespace ORL {

/// 32-bit signed code, negative for failure. Bit 31: failure. Bit 29: set in every non-zero code of this library. Bits
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

namespace Win {

/// Returns the code for a Windows error number. Call this function only after a failure: for 0, and for every number
/// without a code, returns kGeneralFailure.
ORL_API Result SystemErrorToORLResult(unsigned long inSystemError);

} // namespace Win
} // namespace ORL
