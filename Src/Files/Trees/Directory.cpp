// Implements the directory object: queries, creation and removal.
#include <ORLDirectory.h>

#include <Files/PathForms.h>
#include <Platform/Directory.h>
#include <Platform/Paths.h>

#include <ORLDebug.h>
#include <ORLPathUtils.h>
#include <tvxcore/Guid.h>

namespace ORL {

namespace Platform = Directories::Platform;

Directory::Directory(const UTF16String& inPath) : mPath(inPath)
{
}

Directory Directory::ConstructDirectory(const UTF16String& inPath)
{
    if (!PathUtils::IsDirectory(inPath)) {
        throw eNotADirectoryPath();
    }
    return Directory(inPath);
}

UTF16String Directory::AsString() const
{
    return mPath;
}

bool Directory::IsDirectory(const UTF16String& inPath)
{
    return PathUtils::IsDirectory(inPath);
}

bool Directory::IsDirectoryEmpty() const
{
    if (!PathUtils::IsDirectory(mPath)) {
        throw eDirectoryNoLongerValid();
    }
    return PathUtils::IsDirectoryEmpty(mPath);
}

namespace {

bool TakesNewFiles(const UTF16String& inDirectory)
{
    const UTF16String probe =
        PathUtils::AddTrailingSlash(inDirectory) + tvxcore::utility::Guid::CreateUnique().AsString();
    return Platform::WriteProbe_Impl(PathUtils::ToNormalizedPath(probe));
}

} // namespace

bool Directory::IsDirectoryWriteable() const
{
    return TakesNewFiles(mPath);
}

// The status is not a system error number, so every failure is mapped to kGeneralFailure.
Result Directory::CreateOnDisk(const UTF16String& inPath, bool)
{
    const unsigned long status = Platform::PrepareForWrite_Impl(PathUtils::ToNormalizedPath(inPath));
    return status == 0 ? kSuccess : Win::SystemErrorToORLResult(status);
}

Result Directory::Delete(const UTF16String& inPath)
{
    const SystemError error = Platform::RemoveDirectory_Impl(PathUtils::ToNormalizedPath(inPath));
    return error == SystemErrors::kNoError ? kSuccess : Win::SystemErrorToORLResult(error);
}

// A failed query returns all bits set, so a path that cannot be queried is reported as read-only.
bool PathUtils::IsReadOnly(const UTF16String& inFullPath)
{
    ORL_INPUT_CONTRACT_AT(IsValidPath(inFullPath), "WinPathUtils", __LINE__);
    if (!IsRootedPath(inFullPath)) {
        return false;
    }
    if (IsDirectory(inFullPath)) {
        return !TakesNewFiles(inFullPath); // also true if the directory has just been removed
    }
    const UTF16String path =
        IsNormalizedPath(inFullPath) ? RemoveTrailingSlash(inFullPath) : ToNormalizedPath(inFullPath);
    return (PathUtils::Platform::GetFileAttributes_Impl(path) & PathUtils::Platform::kAttributeReadOnly) != 0;
}

} // namespace ORL
