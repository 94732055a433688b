// Implements the public drive table functions, and converts host paths to library paths.
#include "../Calls/SystemCalls.h"
#include "LinuxDriveTable.h"
#include "LinuxHostPath.h"
#include "LinuxNames.h"

#include <ORLHostPath.h>
#include <algorithm>
#include <limits.h>

namespace ORL {
namespace PathUtils {

namespace {

using namespace ORL::Linux;
using namespace SystemErrors;

Result ResultOf(SystemError inError)
{
    return inError == kNoError ? kSuccess : Win::SystemErrorToORLResult(inError);
}

// Returns the name after the slashes at ioPosition, up to the next slash, and moves ioPosition to its end.
std::string NextName(const std::string& inPath, std::size_t& ioPosition)
{
    const std::size_t start = inPath.find_first_not_of('/', ioPosition);
    if (start == std::string::npos) {
        ioPosition = inPath.size();
        return std::string();
    }
    ioPosition = std::min(inPath.find('/', start), inPath.size());
    return inPath.substr(start, ioPosition - start);
}

// ".." after a link means the parent of its target, so the path is resolved first; a path that does not exist just
// loses its last component.
void GoUp(std::string& ioPath)
{
    char resolved[PATH_MAX];
    if (System().mRealPath(ioPath.empty() ? "/" : ioPath.c_str(), resolved) != nullptr) {
        ioPath = resolved;
    }
    const std::size_t slash = ioPath.find_last_of('/');
    ioPath.resize(slash == std::string::npos ? 0 : slash);
}

// Returns an absolute path without ".", ".." and repeated or trailing slashes; "/" for the root, empty for a relative
// path.
std::string Clean(const std::string& inHostPath)
{
    std::string path;
    if (inHostPath.empty() || inHostPath[0] != '/') {
        return path;
    }
    for (std::size_t position = 0; position < inHostPath.size();) {
        const std::string name = NextName(inHostPath, position);
        if (name == "..") {
            GoUp(path);
        } else if (!name.empty() && name != ".") {
            path.append(1, '/').append(name);
        }
    }
    return path.empty() ? "/" : path;
}

// Returns an empty string if the current folder no longer exists.
std::string InCurrentFolder(const std::string& inHostPath)
{
    char folder[PATH_MAX];
    return System().mGetCwd(folder, sizeof(folder)) != nullptr ? std::string(folder) + "/" + inHostPath : std::string();
}

SystemError CheckFolder(const std::string& inFolder)
{
    if (inFolder.empty()) {
        return kErrorPathNotFound;
    }
    struct statx status;
    if (System().mStatx(AT_FDCWD, inFolder.c_str(), 0, STATX_TYPE, &status) != 0 || !S_ISDIR(status.stx_mode)) {
        return kErrorPathNotFound;
    }
    return kNoError;
}

// Returns true for exactly "\\server\share".
bool IsShare(const UTF16String& inShare)
{
    if (inShare.size() < 2 || inShare[0] != '\\' || inShare[1] != '\\') {
        return false;
    }
    const std::size_t middle = inShare.find('\\', 2);
    return middle != UTF16String::npos && CheckName(inShare.data() + 2, middle - 2) == kNoError
           && CheckName(inShare.data() + middle + 1, inShare.size() - middle - 1) == kNoError;
}

} // namespace

UTF16String FromHostPath(const std::string& inHostPath)
{
    return Linux::FromHostPath(inHostPath);
}

Result ToHostPath(const UTF16String& inPath, std::string& outHostPath)
{
    return Linux::ToHostPath(inPath, outHostPath);
}

std::vector<MountPoint> GetMountPoints()
{
    return TheDriveTable().List();
}

namespace Linux {

UTF16String FromHostPath(const std::string& inHostPath)
{
    UTF16String path;
    if (inHostPath.empty()) {
        return path;
    }
    const std::string clean = Clean(inHostPath[0] == '/' ? inHostPath : InCurrentFolder(inHostPath));
    std::string rest;
    if (clean.empty() || !TheDriveTable().FindFolderAbove(clean, path, rest)) {
        return UTF16String();
    }
    bool hasNames = false;
    for (std::size_t position = 0; position < rest.size();) {
        const std::string name = NextName(rest, position);
        path += '\\';
        AppendUnitsOfName(path, name.data(), name.size());
        hasNames = true;
    }
    if (!hasNames || inHostPath.back() == '/') {
        path += '\\';
    }
    return path;
}

Result ToHostPath(const UTF16String& inPath, std::string& outHostPath)
{
    HostPath hostPath;
    const SystemError error = ResolveHostPath(inPath, hostPath);
    if (error == kNoError) {
        outHostPath = std::move(hostPath.mPath);
    }
    return ResultOf(error);
}

Result MountDrive(char inLetter, const std::string& inHostFolder)
{
    const std::string folder = Clean(inHostFolder);
    const SystemError error = CheckFolder(folder);
    return ResultOf(error != kNoError ? error : TheDriveTable().MountDrive(inLetter, folder));
}

Result UnmountDrive(char inLetter)
{
    return ResultOf(TheDriveTable().UnmountDrive(inLetter));
}

Result MountShare(const UTF16String& inShare, const std::string& inHostFolder)
{
    if (!IsShare(inShare)) {
        return ResultOf(kErrorInvalidParameter);
    }
    const std::string folder = Clean(inHostFolder);
    const SystemError error = CheckFolder(folder);
    return ResultOf(error != kNoError ? error : TheDriveTable().MountShare(inShare, folder));
}

Result UnmountShare(const UTF16String& inShare)
{
    return ResultOf(TheDriveTable().UnmountShare(inShare));
}

} // namespace Linux
} // namespace PathUtils
} // namespace ORL
