#include <Platform/Paths.h>

#include "../Calls/LinuxErrors.h"
#include "../Calls/SystemCalls.h"
#include "LinuxHostPath.h"
#include "LinuxNames.h"
#include "LinuxOpenFolder.h"

#include <Files/WindowsPathText.h>
#include <ORLHostPath.h>
#include <cerrno>
#include <climits>
#include <cstdlib>
#include <utility>

namespace ORL {
namespace PathUtils {
namespace Platform {

namespace {

using namespace ORL::Linux;
using namespace SystemErrors;

enum class Links { kFollow, kNoFollow };

// Returns the status of the entry. If the entry is a link and inLinks is kFollow, returns the status of its target.
bool GetStatus(const std::string& inPath, Links inLinks, struct statx& outStatus)
{
    const int flags = inLinks == Links::kFollow ? 0 : AT_SYMLINK_NOFOLLOW;
    return System().mStatx(AT_FDCWD, inPath.c_str(), flags, STATX_TYPE | STATX_MODE, &outStatus) == 0;
}

bool IsFolder(const std::string& inPath)
{
    struct statx status;
    return GetStatus(inPath, Links::kFollow, status) && S_ISDIR(status.stx_mode);
}

std::string_view LeafOf(const std::string& inPath)
{
    std::string_view path = inPath;
    while (!path.empty() && path.back() == '/') {
        path.remove_suffix(1);
    }
    return path.substr(path.rfind('/') + 1);
}

// Returns true if a name matches a pattern: "*" matches any run of units, "?" one unit. The caller replaces "*.*",
// which matches every name.
bool Fits(const unsigned short* inName, const unsigned short* inPattern)
{
    const unsigned short* star = nullptr;
    const unsigned short* retry = nullptr;
    while (*inName != 0) {
        if (*inPattern == '*') {
            star = ++inPattern;
            retry = inName;
        } else if (*inPattern == '?' || *inPattern == *inName) {
            ++inPattern;
            ++inName;
        } else if (star != nullptr) {
            // Backtrack: let the last star match one more unit.
            inPattern = star;
            inName = ++retry;
        } else {
            return false;
        }
    }
    while (*inPattern == '*') {
        ++inPattern;
    }
    return *inPattern == 0;
}

bool FindByPattern(const UTF16String& inFolder, UTF16String inPattern)
{
    HostPath path;
    if (ResolveToUsablePath(inFolder, path) != kNoError) {
        return false;
    }
    if (inPattern == TVX_UTF16("*.*")) {
        inPattern = TVX_UTF16("*");
    }
    OpenFolder folder(path.mPath.c_str());
    // "*" matches every folder but a root even if it is empty, because Windows lists "." and ".." there.
    const bool fitsItself = !path.mIsRoot && inPattern == TVX_UTF16("*");
    return folder.IsOpen() && (fitsItself || folder.Entries().AnyEntry([&inPattern](std::string_view inName) {
               UTF16String name;
               AppendUnitsOfName(name, inName.data(), inName.size());
               return Fits(name.c_str(), inPattern.c_str());
           }));
}

} // namespace

UTF16String MakePath_Impl(const UTF16String& inDrive, const UTF16String& inDirectory, const UTF16String& inFile,
                          const UTF16String& inExtension)
{
    return WindowsText::MakePath(inDrive, inDirectory, inFile, inExtension);
}

bool FindEntry_Impl(const UTF16String& inPath)
{
    // The "?" in the prefix of the extended form is not a pattern.
    const std::size_t leaf = inPath.rfind('\\') + 1;
    if (leaf > 4 && inPath.find_first_of(TVX_UTF16("*?"), leaf) != UTF16String::npos) {
        return FindByPattern(UTF16String(inPath, 0, leaf), UTF16String(inPath, leaf));
    }
    HostPath path;
    if (ResolveToUsablePath(inPath, path) != kNoError || path.mIsRoot || path.mHasTrailingSeparator) {
        return false;
    }
    struct statx status;
    return GetStatus(path.mPath, Links::kNoFollow, status);
}

bool IsDirectory_Impl(const UTF16String& inPath)
{
    HostPath path;
    return ResolveToUsablePath(inPath, path) == kNoError && IsFolder(path.mPath);
}

bool IsDirectoryEmpty_Impl(const UTF16String& inPath)
{
    HostPath path;
    if (ResolveToUsablePath(inPath, path) != kNoError) {
        return false;
    }
    OpenFolder folder(path.mPath.c_str());
    return folder.IsOpen() && !folder.Entries().AnyEntry([](std::string_view) { return true; })
           && folder.Entries().Failure() == 0;
}

unsigned long GetFileAttributes_Impl(const UTF16String& inPath)
{
    HostPath path;
    struct statx status;
    if (ResolveToUsablePath(inPath, path) != kNoError) {
        return kInvalidAttributes;
    }
    // The fallback covers dangling links, which are entries too.
    if (!GetStatus(path.mPath, Links::kFollow, status) && !GetStatus(path.mPath, Links::kNoFollow, status)) {
        return kInvalidAttributes;
    }
    unsigned long attributes = S_ISDIR(status.stx_mode) ? kAttributeDirectory : 0;
    if (!path.mIsRoot && LeafOf(path.mPath).front() == '.') {
        attributes |= kAttributeHidden;
    }
    if ((status.stx_mode & (S_IWUSR | S_IWGRP | S_IWOTH)) == 0) {
        attributes |= kAttributeReadOnly;
    }
    return attributes != 0 ? attributes : kAttributeNormal;
}

namespace {

void MakeFolder(int inFolder, const std::string& inPath)
{
    inFolder == AT_FDCWD ? System().mMakeDir(inPath.c_str(), 0777)
                         : System().mMakeDirAt(inFolder, inPath.c_str(), 0777);
}

// Creates folders from the top down. A folder that already exists, or that another thread creates, is not an error.
void MakeFolders(int inFolder, const std::string& inPath)
{
    for (std::size_t slash = inPath.find('/', 1); slash != std::string::npos; slash = inPath.find('/', slash + 1)) {
        MakeFolder(inFolder, inPath.substr(0, slash));
    }
    MakeFolder(inFolder, inPath);
}

} // namespace

bool PreparePathForWrite_Impl(const UTF16String& inPath)
{
    HostPath path;
    if (ResolveHostPath(inPath, path) != kNoError) {
        return false;
    }
    // Walks a long path in steps, each as long as the kernel accepts.
    std::string rest = std::move(path.mPath);
    Descriptor folder;
    while (rest.size() >= PATH_MAX) {
        const std::size_t end = rest.rfind('/', PATH_MAX - 1);
        const std::string way(rest, 0, end);
        const int from = folder ? folder.Get() : AT_FDCWD;
        MakeFolders(from, way);
        folder = OpenByName(from, way.c_str(), O_PATH | O_DIRECTORY);
        if (!folder || end == std::string::npos) {
            return false;
        }
        rest.erase(0, end + 1);
    }
    const int from = folder ? folder.Get() : AT_FDCWD;
    MakeFolders(from, rest);
    struct statx status;
    return System().mStatx(from, rest.c_str(), 0, STATX_TYPE, &status) == 0 && S_ISDIR(status.stx_mode);
}

const unsigned short* FindNextComponent_Impl(const unsigned short* inPath)
{
    return WindowsText::FindNextComponent(inPath);
}

bool RelativePathTo_Impl(const UTF16String& inFrom, const UTF16String& inTo, UTF16String& outRelative)
{
    return WindowsText::RelativePathTo(inFrom, inTo, outRelative);
}

bool CombinePaths_Impl(const UTF16String& inBase, const UTF16String& inMore, UTF16String& outPath)
{
    return WindowsText::Combine(inBase, inMore, outPath);
}

// Uses $TMPDIR if it is an absolute path, otherwise /tmp. Like Windows, does not check that the folder exists.
unsigned long GetTempPath_Impl(unsigned long inSize, unsigned short* outBuffer)
{
    const char* folder = std::getenv("TMPDIR");
    if (folder == nullptr || *folder != '/') {
        folder = "/tmp";
    }
    UTF16String path = Linux::FromHostPath(folder);
    if (path.empty()) {
        return 0;
    }
    if (path.back() != '\\') {
        path += '\\';
    }
    if (path.size() >= inSize) {
        return static_cast<unsigned long>(path.size() + 1);
    }
    path.copy(outBuffer, path.size());
    outBuffer[path.size()] = 0;
    return static_cast<unsigned long>(path.size());
}

// Linux has no display names, so the caller shows the plain name.
bool GetShellName_Impl(const UTF16String&, UTF16String&)
{
    return false;
}

} // namespace Platform
} // namespace PathUtils
} // namespace ORL
