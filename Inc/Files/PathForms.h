// Classification of paths, and steps of the public path functions that tests call directly.
#pragma once

#include <tvxcore/String.h>

#include <cstddef>

namespace ORL {
namespace PathUtils {

/// Capacity of MakePath's buffer in units, terminator included.
inline constexpr std::size_t kBufferLength = 2048;

/// Returns whether the path begins with two backslashes, or with an ASCII letter and ":".
bool IsRootedPath(const UTF16String& inPath) noexcept;

/// Returns whether the path is exactly a letter and ":", or exactly \\?\ and a letter and ":".
bool IsDriveRootPath(const UTF16String& inPath) noexcept;

/// Returns the shell's display name of the path's last component and removes that component from ioPath, so that a
/// caller can walk up. Paths of 261 characters or more are not passed to the shell; if such a path ends in a backslash,
/// returns all of it and does not change ioPath.
UTF16String GetLeafDisplayName(UTF16String& ioPath);

/// A function with the contract of the system's GetTempPath: returns the length, or the size needed.
using GetTempPathFunction = unsigned long (*)(unsigned long inSize, unsigned short* outBuffer);

/// Same as GetTempDirectory, with the system function as a parameter.
UTF16String GetTempDirectoryFrom(GetTempPathFunction inGetTempPath);

} // namespace PathUtils
} // namespace ORL
