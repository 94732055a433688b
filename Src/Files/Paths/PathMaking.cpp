// Builds paths from parts and from other paths.
#include <Files/PathForms.h>
#include <Platform/Paths.h>

#include "PathParts.h"

#include <ORLDebug.h>
#include <ORLPathUtils.h>
#include <string>
#include <tvxcore/Text.h>

namespace ORL {
namespace PathUtils {

namespace {

// Returns inName with the number and the extension appended.
UTF16String Numbered(UTF16String inName, unsigned int inNumber, const UTF16String& inExtension)
{
    inName += tvxcore::utility::AsciiToUTF16(std::to_string(inNumber).c_str());
    return inName += inExtension;
}

// Sets outDirectory to the path's directory without its drive, with slashes replaced by backslashes. Returns false
// if nothing follows the drive.
bool DirectoryAfterDrive(const UTF16String& inPath, UTF16String& outDirectory)
{
    UTF16String path = inPath;
    tvxcore::utility::ReplaceAllStringInString(path, UTF16String(1, '/'), UTF16String(1, '\\'));
    if (path.find(':') == UTF16String::npos) {
        path.insert(0, TVX_UTF16("C:"));
    }
    path = GetFullDirectoryPart(path);
    const unsigned short* afterDrive = Platform::FindNextComponent_Impl(path.c_str());
    if (afterDrive == nullptr) {
        return false;
    }
    outDirectory = afterDrive;
    return true;
}

} // namespace

UTF16String MakePath(const UTF16String& inDrive, const UTF16String& inDirectory, const UTF16String& inFile,
                     const UTF16String& inExtension)
{
    const std::size_t len = inDrive.size() + inDirectory.size() + inFile.size() + inExtension.size() + 5;
    ORL_ASSERT_AT(len <= kBufferLength, "WinPathUtils", __LINE__, "ORL::PathUtils::MakePath");
    if (len > kBufferLength) {
        return UTF16String();
    }
    return Platform::MakePath_Impl(inDrive, inDirectory, inFile, inExtension);
}

UTF16String MakeFullPath(const UTF16String& inDrive, const UTF16String& inDirectory, const UTF16String& inFile,
                         const UTF16String& inExtension)
{
    return MakePath(inDrive, inDirectory, inFile, inExtension);
}

UTF16String GetFullDirectoryPart(const UTF16String& inFullPath)
{
    ORL_INPUT_CONTRACT_AT(IsValidPath(inFullPath), "WinPathUtils", __LINE__);
    return PathParts(inFullPath).DriveAndDirectory(inFullPath.data());
}

UTF16String MakeUniqueFilename(const UTF16String& inPath)
{
    if (!ExistsOnDisk(inPath)) {
        return inPath;
    }
    UTF16String candidate =
        Numbered(GetFullDirectoryPart(inPath) + GetFilePart(inPath) + UTF16String(1, '_'), 1, GetExtensionPart(inPath));
    for (unsigned int number = 2; ExistsOnDisk(candidate); ++number) {
        UTF16String name = GetFullDirectoryPart(candidate) + GetFilePart(candidate);
        name.erase(name.rfind('_') + 1);
        candidate = Numbered(std::move(name), number, GetExtensionPart(candidate));
    }
    return candidate;
}

bool ArePathsRelative(const UTF16String& inFrom, const UTF16String& inTo, UTF16String& outRelative)
{
    if (!IsRootedPath(inFrom) || !IsRootedPath(inTo)) {
        return false;
    }
    UTF16String from;
    UTF16String to;
    return DirectoryAfterDrive(inFrom, from) && DirectoryAfterDrive(inTo, to)
           && Platform::RelativePathTo_Impl(from, to, outRelative);
}

UTF16String CombinePaths(const UTF16String& inBase, const UTF16String& inMore)
{
    UTF16String path;
    if (IsRootedPath(inBase) && !Platform::CombinePaths_Impl(inBase, inMore, path)) {
        path.clear();
    }
    return path;
}

} // namespace PathUtils
} // namespace ORL
