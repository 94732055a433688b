// Converts a library path to a kernel path, in bytes.
#pragma once

#include "../Files/LinuxDescriptor.h"

#include <Platform/SystemErrors.h>
#include <tvxcore/String.h>

#include <memory>
#include <string>

namespace ORL {
namespace Linux {

struct HostPath
{
    std::string mPath;                  // absolute; ends in "/" if the library path ends in a separator
    bool mIsRoot = false;               // true if the path is the folder of a drive or share
    bool mHasTrailingSeparator = false; // never true for a root

    // Set only if the path is longer than the kernel allows: mPath then begins with the open folder's path in /proc.
    std::string mWhole;
    std::shared_ptr<const Descriptor> mFolder;

    /// Returns the whole host path, however long.
    const std::string& Whole() const noexcept { return mWhole.empty() ? mPath : mWhole; }
};

/// Resolves a library path as Windows does. The plain form also accepts "/" as a separator, resolves "." and "..",
/// drops repeated separators and trailing dots and blanks, and starts from the current folder if it is relative. The
/// extended form (\\?\) is not normalised. Plain paths may have any length. The path need not exist. Returns 3 for an
/// empty path, a drive that is not mounted or an unknown root, 53 for a share that is not mounted, 123 for an invalid
/// name, 2 for a name that contains ":". On failure outHostPath is unchanged.
SystemError ResolveHostPath(const UTF16String& inPath, HostPath& outHostPath);

/// Resolves a path to a path that the kernel accepts, of at most 4095 bytes. A longer path is shortened by opening a
/// folder along it, which must exist (3 otherwise).
SystemError ResolveToUsablePath(const UTF16String& inPath, HostPath& outHostPath);

} // namespace Linux
} // namespace ORL
