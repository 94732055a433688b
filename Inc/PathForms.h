// Floor: Files
// What the library itself asks about a path's form, and the steps of the public path functions that tests look into.
#pragma once

#include <tvxcore/String.h>

#include <cstddef>

namespace ORL {
namespace PathUtils {

/// Units that MakePath's buffer holds, the terminator included.
inline constexpr std::size_t kBufferLength = 2048;

/// Begins with two backslashes, or with an ASCII letter and ":".
bool IsRootedPath(const UTF16String& inPath) noexcept;

/// Exactly a letter and ":", or exactly \\?\ and a letter and ":".
bool IsDriveRootPath(const UTF16String& inPath) noexcept;

/// The shell's name of the path's last component, which is cut from ioPath, so that a caller can walk up. A path of
/// 261 characters or more is kept from the shell; one that ends in a backslash is then given whole and not cut.
UTF16String GetLeafDisplayName(UTF16String& ioPath);

/// Asks for the directory of temporary files as the system's GetTempPath answers: the length, or the size needed.
using GetTempPathFunction = unsigned long (*)(unsigned long inSize, unsigned short* outBuffer);

/// GetTempDirectory over any system.
UTF16String GetTempDirectoryFrom(GetTempPathFunction inGetTempPath);

} // namespace PathUtils
} // namespace ORL
