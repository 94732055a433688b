// Queries the file system about a path.
#include <Files/PathForms.h>
#include <Platform/Paths.h>

#include <ORLDebug.h>
#include <ORLPathUtils.h>
#include <vector>

namespace ORL {
namespace PathUtils {

bool ExistsOnDisk(const UTF16String& inFullPath)
{
    ORL_ASSERT_AT(IsValidPath(inFullPath), "WinPathUtils", __LINE__, "ORL::PathUtils::ExistsOnDisk");
    if (inFullPath.empty()) {
        return false;
    }
    const UTF16String path = ToNormalizedPath(RemoveTrailingSlash(inFullPath));
    if (!IsRootedPath(path)) {
        return false;
    }
    // FindEntry_Impl does not find the root of a drive, because no directory has an entry for it.
    return Platform::FindEntry_Impl(path) || IsDirectory(path);
}

bool IsDirectory(const UTF16String& inFullPath)
{
    ORL_ASSERT_AT(IsValidPath(inFullPath), "WinPathUtils", __LINE__, "ORL::PathUtils::IsDirectory");
    return IsRootedPath(inFullPath) && Platform::IsDirectory_Impl(ToNormalizedPath(inFullPath));
}

bool IsDirectoryEmpty(const UTF16String& inFullPath)
{
    ORL_INPUT_CONTRACT_AT(IsValidPath(inFullPath), "WinPathUtils", __LINE__);
    return IsRootedPath(inFullPath) && Platform::IsDirectoryEmpty_Impl(ToNormalizedPath(inFullPath));
}

// A failed query returns all bits set, so a path that does not exist counts as hidden.
bool IsHidden(const UTF16String& inPath)
{
    return IsRootedPath(inPath) && (Platform::GetFileAttributes_Impl(inPath) & Platform::kAttributeHidden) != 0;
}

bool PreparePathForWrite(const UTF16String& inPath)
{
    if (!IsRootedPath(inPath)) {
        return false;
    }
    ORL_ASSERT_AT(HasTrailingSlash(inPath), "WinPathUtils", __LINE__, "ORL::PathUtils::PreparePathForWrite");
    return Platform::PreparePathForWrite_Impl(inPath);
}

UTF16String GetTempDirectory()
{
    return GetTempDirectoryFrom(&Platform::GetTempPath_Impl);
}

UTF16String GetTempDirectoryFrom(GetTempPathFunction inGetTempPath)
{
    constexpr unsigned long kFirstSize = 512;
    std::vector<unsigned short> buffer(kFirstSize + 1);
    const unsigned long needed = inGetTempPath(kFirstSize, buffer.data());
    if (needed <= kFirstSize) {
        return UTF16String(buffer.data());
    }
    buffer.assign(needed + 1, 0);
    // This condition is inverted: if the query succeeds, the function asserts and returns an empty string. The
    // inversion is kept, because hosts expect an empty path and an assertion for a long path.
    if (inGetTempPath(needed, buffer.data()) == 0) {
        return UTF16String(buffer.data());
    }
    ORL_ASSERT_MESSAGE_AT(false, "false", "Could not get the current temporary directory!", "WinPathUtils", __LINE__,
                          "ORL::PathUtils::GetTempDirectory");
    return UTF16String();
}

} // namespace PathUtils
} // namespace ORL
