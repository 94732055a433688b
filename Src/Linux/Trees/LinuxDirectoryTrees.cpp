// Implements the equivalent of SHFileOperation for the contents of a folder.
#include <Platform/Directory.h>

#include "../Calls/LinuxErrors.h"
#include "../Paths/LinuxHostPath.h"
#include "LinuxTree.h"

#include <Platform/Paths.h>
#include <cerrno>
#include <utility>

namespace ORL {
namespace Directories {
namespace Platform {

namespace {

using namespace ORL::Linux;
using namespace SystemErrors;

Descriptor OpenFolderAt(int inFolder, const char* inPath)
{
    return OpenFolderByName(inFolder, inPath, 0);
}

bool GetIdentity(int inFolder, struct stat& outStatus)
{
    return System().mFStat(inFolder, &outStatus) == 0;
}

bool IsSame(const struct stat& inOne, const struct stat& inOther)
{
    return inOne.st_dev == inOther.st_dev && inOne.st_ino == inOther.st_ino;
}

// Returns true if inFolder is inTop or below it. Follows ".." up to the root, which is its own parent. If the walk
// fails, returns true, so that nothing is copied into itself.
bool IsInside(int inFolder, int inTop)
{
    struct stat top;
    struct stat current;
    Descriptor folder;
    bool isKnown = GetIdentity(inTop, top) && GetIdentity(inFolder, current);
    while (isKnown && !IsSame(current, top)) {
        Descriptor parent = OpenFolderAt(folder ? folder.Get() : inFolder, "..");
        struct stat above;
        isKnown = parent && GetIdentity(parent.Get(), above);
        if (isKnown && IsSame(above, current)) {
            return false;
        }
        current = above;
        folder = std::move(parent);
    }
    return true;
}

// Opens the folder at a path, or its nearest existing ancestor.
Descriptor OpenNearest(std::string inPath)
{
    for (;;) {
        Descriptor folder = OpenFolderAt(AT_FDCWD, inPath.c_str());
        const std::size_t nameEnd = inPath.find_last_not_of('/');
        if (folder || (errno != ENOENT && errno != ENAMETOOLONG) || nameEnd == std::string::npos) {
            return folder;
        }
        inPath.resize(inPath.find_last_of('/', nameEnd) + 1);
    }
}

// A folder to delete must not be a link: that would delete the contents of its target and leave the link.
SystemError OpenSource(ShellFunction inFunction, const UTF16String& inFrom, Descriptor& outSource)
{
    HostPath path;
    const SystemError error = ResolveToUsablePath(inFrom, path);
    if (error != kNoError) {
        return error;
    }
    if (inFunction == ShellFunction::kDelete && path.mHasTrailingSeparator) {
        path.mPath.pop_back();
        outSource = OpenFolderByName(AT_FDCWD, path.mPath.c_str(), O_NOFOLLOW);
    } else {
        outSource = OpenFolderAt(AT_FDCWD, path.mPath.c_str());
    }
    return outSource ? kNoError : SystemErrorFromErrno(errno, path.mPath);
}

// Syncs the names of all folders on the path from inTop to the folder. inTop is the folder itself or an ancestor.
int SyncNamesBelow(int inTop, int inFolder)
{
    struct stat top;
    struct stat current;
    if (!GetIdentity(inTop, top) || !GetIdentity(inFolder, current)) {
        return errno;
    }
    Descriptor folder;
    while (!IsSame(current, top)) {
        Descriptor parent = OpenFolderAt(folder ? folder.Get() : inFolder, "..");
        struct stat above;
        if (!parent || !GetIdentity(parent.Get(), above)) {
            return errno;
        }
        const int failure = SyncFolder(parent.Get());
        if (failure != 0 || IsSame(above, current)) {
            return failure;
        }
        current = above;
        folder = std::move(parent);
    }
    return 0;
}

// Creates the destination if it is missing, but never inside the source. For a move, syncs the name of the destination,
// because the source is deleted later.
SystemError OpenDestination(ShellFunction inFunction, const UTF16String& inTo, int inSource, Descriptor& outDestination)
{
    HostPath path;
    SystemError error = ResolveHostPath(inTo, path);
    if (error != kNoError) {
        return error;
    }
    const Descriptor nearest = OpenNearest(path.mPath);
    if (!nearest) {
        return SystemErrorFromErrno(errno, path.mPath);
    }
    if (IsInside(nearest.Get(), inSource)) {
        return kErrorInvalidParameter;
    }
    PathUtils::Platform::PreparePathForWrite_Impl(inTo);
    error = ResolveToUsablePath(inTo, path);
    if (error != kNoError) {
        return error;
    }
    outDestination = OpenFolderAt(AT_FDCWD, path.mPath.c_str());
    if (!outDestination) {
        return SystemErrorFromErrno(errno, path.mPath);
    }
    // For a very long path, the ancestor checked above may be far from the destination, so check again.
    if (path.mFolder && IsInside(outDestination.Get(), inSource)) {
        return kErrorInvalidParameter;
    }
    return inFunction == ShellFunction::kMove
               ? SystemErrorFromErrno(SyncNamesBelow(nearest.Get(), outDestination.Get()))
               : kNoError;
}

// An empty folder is an error: the pattern matches nothing.
SystemError CheckNotEmpty(int inFolder)
{
    std::vector<TreeEntry> entries;
    const int failure = ListFolder(inFolder, entries);
    return failure != 0 ? SystemErrorFromErrno(failure) : entries.empty() ? kErrorFileNotFound : kNoError;
}

SystemError Transfer(ShellFunction inFunction, int inSource, const UTF16String& inTo)
{
    SystemError error = CheckNotEmpty(inSource);
    Descriptor destination;
    if (error == kNoError) {
        error = OpenDestination(inFunction, inTo, inSource, destination);
    }
    if (error != kNoError) {
        return error;
    }
    return SystemErrorFromErrno(inFunction == ShellFunction::kCopy
                                    ? CopyContents(inSource, destination.Get(), CopyDurability::kWritten)
                                    : MoveContents(inSource, destination.Get()));
}

} // namespace

unsigned long OperateOnFiles_Impl(ShellFunction inFunction, const UTF16String& inFrom, const UTF16String* inTo)
{
    // "*.*" matches every name.
    Descriptor source;
    const SystemError error = OpenSource(inFunction, UTF16String(inFrom, 0, inFrom.rfind('\\') + 1), source);
    if (error != kNoError) {
        return error;
    }
    return inFunction == ShellFunction::kDelete ? SystemErrorFromErrno(WipeContents(source.Get()))
                                                : Transfer(inFunction, source.Get(), *inTo);
}

} // namespace Platform
} // namespace Directories
} // namespace ORL
