// Floor: Files
// Conversion between library paths and host paths.
//
// A library path is Windows-style on every platform: a drive or \\server\share, then names separated by backslashes. A
// host path is what the system's own programs use: on Windows the same path in UTF-8, on Linux raw bytes
// separated by slashes.
//
// On Linux a drive table maps each drive to a host folder. Initially C: is "/", so every file has a library path. Names
// round-trip: bytes that are not UTF-8, and characters that a library path cannot hold in a name, are converted to
// private code units (U+F000 plus the byte) and back. Each volume determines how names match; most match exactly.
#pragma once

#include <ORLConfig.h>
#include <ORLResult.h>
#include <tvxcore/String.h>

#include <string>
#include <vector>

namespace ORL {
namespace PathUtils {

/// Returns the library path of a host path, in plain form. A relative path is resolved against the current folder.
/// Returns an empty path if inHostPath is empty or no drive contains it; on Windows also if inHostPath is not UTF-8.
/// The path need not exist. Thread-safe.
ORL_API UTF16String FromHostPath(const std::string& inHostPath);

/// Stores the host path of a library path, plain or extended. On Linux returns kPathNotFound for a drive that is not
/// mounted, and kGeneralFailure for a share that is not mounted or an invalid name. On Windows returns
/// kGeneralFailure for a path with an unpaired surrogate, which UTF-8 cannot represent; the other functions accept such
/// a path. A failure leaves outHostPath untouched. The path need not exist. Thread-safe.
ORL_API Result ToHostPath(const UTF16String& inPath, std::string& outHostPath);

/// An entry of the drive table.
struct MountPoint
{
    UTF16String mRoot;       ///< "C:\" or "\\server\share\"
    std::string mHostFolder; ///< the host folder; on Windows the same as the root
};

/// Returns the drive table: the drives in the order of their letters, then (on Linux) the mounted shares. Thread-safe.
ORL_API std::vector<MountPoint> GetMountPoints();

/// The Linux drive table. These functions exist only in the Linux library; a host for both platforms calls them from
/// its Linux-only source files. Thread-safe: a concurrent path conversion uses the table as it was either before or
/// after the change.
namespace Linux {

/// Same as PathUtils::FromHostPath and PathUtils::ToHostPath.
ORL_API UTF16String FromHostPath(const std::string& inHostPath);
ORL_API Result ToHostPath(const UTF16String& inPath, std::string& outHostPath);

/// Maps a drive letter (either case) to a host folder. Returns kAlreadyExists if the letter is in use, kPathNotFound if
/// inHostFolder is not the absolute path of an existing folder, kGeneralFailure if inLetter is not an ASCII letter.
ORL_API Result MountDrive(char inLetter, const std::string& inHostFolder);

/// Removes a drive from the table. Returns kPathNotFound if the drive is not mounted.
ORL_API Result UnmountDrive(char inLetter);

/// Same as MountDrive and UnmountDrive, for a share. inShare is "\\server\share", compared case-insensitively for ASCII
/// letters. Returns kGeneralFailure if inShare has another form.
ORL_API Result MountShare(const UTF16String& inShare, const std::string& inHostFolder);
ORL_API Result UnmountShare(const UTF16String& inShare);

} // namespace Linux
} // namespace PathUtils
} // namespace ORL
