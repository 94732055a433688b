// From a library path to the bytes that the system takes, and back.
#pragma once

#include "LinuxDescriptor.h"

#include <Platform/SystemErrors.h>
#include <tvxcore/String.h>

#include <memory>
#include <string>

namespace ORL {
namespace Linux {

struct HostPath
{
    std::string mPath;                  ///< absolute; ends in "/" where the library path ends in a separator
    bool mIsRoot = false;               ///< it is the folder of a drive or share itself
    bool mHasTrailingSeparator = false; ///< and is no root

    // Of a path that is longer than the system takes: mPath leads through the open folder.
    std::string mWhole;
    std::shared_ptr<const Descriptor> mFolder;

    /// The path as text, whatever its length.
    const std::string& Whole() const noexcept { return mWhole.empty() ? mPath : mWhole; }
};

/// Resolves a library path as the home platform does. The plain form takes "/" for a separator too, resolves "." and
/// "..", drops doubled separators and the dots and blanks that end a path, and starts from the current folder when it
/// is relative; the extended form (\\?\) is taken as it stands. Plain paths may have any length.
/// Failures: 3 for an empty path, a drive that is not mounted or an unknown root, 53 for a share that is not mounted,
/// 123 for a name that no path may hold, 2 for one with a ":" inside. outHostPath is then untouched. The path need not
/// exist.
SystemError ResolveHostPath(const UTF16String& inPath, HostPath& outHostPath);

/// Resolves a path and makes it one that the system takes: a host path may have 4095 bytes, and a longer one is given by
/// way of an open folder, which has to be there (3).
SystemError ReachHostPath(const UTF16String& inPath, HostPath& outHostPath);

} // namespace Linux
} // namespace ORL
