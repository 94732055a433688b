// Floor: Files
// Between the paths of this library and the paths of the system it runs on.
//
// A library path is Windows-style on every platform: a drive or \\server\share, names behind backslashes. A host path
// is what the system's own programs take: on Windows the same in UTF-8, on Linux bytes behind slashes.
//
// On Linux a drive table says which folder stands behind each drive. At load it holds C: for "/", so every file has a
// library path. Names keep their identity: bytes that are no UTF-8 and characters that a library path cannot hold in
// a name travel as private code units (U+F000 and the byte) and come back to the same bytes. Names are matched as the
// volume matches them, which for most means exactly.
#pragma once

#include <ORLConfig.h>
#include <ORLResult.h>
#include <tvxcore/String.h>

#include <string>
#include <vector>

namespace ORL {
namespace PathUtils {

/// The library path of a host path, in plain form. A relative one is taken from the current folder. Empty when
/// inHostPath is empty, or when no drive leads there; on Windows also when it is no UTF-8. The path need not exist. Safe
/// from any thread.
ORL_API UTF16String FromHostPath(const std::string& inHostPath);

/// The host path of a library path, plain or extended. On Linux: kPathNotFound for a drive that is not mounted,
/// kGeneralFailure for a share that is not mounted and for a name that no path may hold. On Windows: kGeneralFailure for
/// a path with half a surrogate pair, which UTF-8 cannot say; the other operations take such a path as it is. outHostPath
/// is then untouched. The path need not exist. Safe from any thread.
ORL_API Result ToHostPath(const UTF16String& inPath, std::string& outHostPath);

/// One way into the host's folders.
struct MountPoint
{
    UTF16String mRoot;       ///< "C:\" or "\\server\share\"
    std::string mHostFolder; ///< what it leads to; on Windows the root again
};

/// The drive table: the drives in the order of their letters, then (on Linux) the mounted shares. Safe from any thread.
ORL_API std::vector<MountPoint> GetMountPoints();

/// The drive table of Linux. These functions exist in the Linux library alone; a host that runs on both calls them
/// from its Linux sources. Each may be called from any thread; a path that is being resolved meanwhile sees the table
/// as it was before or after.
namespace Linux {

/// As the functions of PathUtils above.
ORL_API UTF16String FromHostPath(const std::string& inHostPath);
ORL_API Result ToHostPath(const UTF16String& inPath, std::string& outHostPath);

/// Puts a host folder behind a drive letter (either case). kAlreadyExists when the letter is taken, kPathNotFound when
/// inHostFolder is no absolute path of an existing folder, kGeneralFailure when inLetter is no ASCII letter.
ORL_API Result MountDrive(char inLetter, const std::string& inHostFolder);

/// Takes a drive out of the table. kPathNotFound when it is not there.
ORL_API Result UnmountDrive(char inLetter);

/// The same for a share: inShare is "\\server\share", compared without regard to the case of ASCII letters.
/// kGeneralFailure when it has another shape.
ORL_API Result MountShare(const UTF16String& inShare, const std::string& inHostFolder);
ORL_API Result UnmountShare(const UTF16String& inShare);

} // namespace Linux
} // namespace PathUtils
} // namespace ORL
