#include <ORLPathUtils.h>

#include "PathParts.h"

#include <Core/ExportedText.h>
#include <ORLDebug.h>
#include <algorithm>

namespace ORL {
namespace PathUtils {

ORL_EXPORTED_TEXT(kPathSeparator, "_ZN3ORL9PathUtils14kPathSeparator", "\\");
ORL_EXPORTED_TEXT(kExtension, "_ZN3ORL9PathUtils10kExtension", ".");
ORL_EXPORTED_TEXT(kIllegalFilenameCharactersDisplay, "_ZN3ORL9PathUtils33kIllegalFilenameCharactersDisplay",
                  "\\ / : * ? \" < > |");

namespace {

// Functions in this file may run before the constants above are constructed, so they do not use these constants.
constexpr char kIllegalFilenameCharacters[] = "\\/:*?\"<>|";

bool IsIllegal(unsigned short inUnit) noexcept
{
    return std::any_of(std::begin(kIllegalFilenameCharacters), std::end(kIllegalFilenameCharacters) - 1,
                       [inUnit](char illegal) { return inUnit == static_cast<unsigned char>(illegal); });
}

bool IsWhiteSpace(unsigned short inUnit) noexcept
{
    return inUnit == 0x0009 || inUnit == 0x0020 || inUnit == 0x00A0 || (inUnit >= 0x2000 && inUnit <= 0x200B)
           || inUnit == 0x202F || inUnit == 0x205F || inUnit == 0x3000;
}

} // namespace

UTF16String GetPathSeparator()
{
    return kPathSeparator;
}

bool IsValidPath(const UTF16String& inFullPath)
{
    return !inFullPath.empty();
}

bool IsValidFileName(const UTF16String& inName)
{
    return std::none_of(inName.begin(), inName.end(), IsIllegal)
           && !std::all_of(inName.begin(), inName.end(), IsWhiteSpace);
}

bool RemoveIllegalFileNameCharacters(UTF16String& ioName)
{
    const auto kept = std::remove_if(ioName.begin(), ioName.end(), IsIllegal);
    const bool removed = kept != ioName.end();
    ioName.erase(kept, ioName.end());
    return removed;
}

void SplitPath(const UTF16String& inPath, UTF16String* outDrive, UTF16String* outDirectory, UTF16String* outFile,
               UTF16String* outExtension)
{
    const PathParts parts(inPath);
    const unsigned short* text = inPath.data();
    // An output may alias the path, so all parts are copied before any output is written.
    UTF16String drive = outDrive != nullptr ? parts.Drive(text) : UTF16String();
    UTF16String directory = outDirectory != nullptr ? parts.Directory(text) : UTF16String();
    UTF16String file = outFile != nullptr ? parts.File(text) : UTF16String();
    UTF16String extension = outExtension != nullptr ? parts.Extension(text) : UTF16String();
    if (outDrive != nullptr) {
        *outDrive = std::move(drive);
    }
    if (outDirectory != nullptr) {
        *outDirectory = std::move(directory);
    }
    if (outFile != nullptr) {
        *outFile = std::move(file);
    }
    if (outExtension != nullptr) {
        *outExtension = std::move(extension);
    }
}

UTF16String GetDrivePart(const UTF16String& inFullPath)
{
    ORL_INPUT_CONTRACT_AT(IsValidPath(inFullPath), "PathUtils", __LINE__);
    return PathParts(inFullPath).Drive(inFullPath.data());
}

UTF16String GetDirectoryPart(const UTF16String& inFullPath)
{
    ORL_INPUT_CONTRACT_AT(IsValidPath(inFullPath), "PathUtils", __LINE__);
    return PathParts(inFullPath).Directory(inFullPath.data());
}

UTF16String GetFilePart(const UTF16String& inFullPath)
{
    ORL_INPUT_CONTRACT_AT(IsValidPath(inFullPath), "PathUtils", __LINE__);
    return PathParts(inFullPath).File(inFullPath.data());
}

UTF16String GetExtensionPart(const UTF16String& inFullPath)
{
    ORL_INPUT_CONTRACT_AT(IsValidPath(inFullPath), "PathUtils", __LINE__);
    return PathParts(inFullPath).Extension(inFullPath.data());
}

UTF16String GetFullFilePart(const UTF16String& inFullPath)
{
    ORL_INPUT_CONTRACT_AT(IsValidPath(inFullPath), "PathUtils", __LINE__);
    return PathParts(inFullPath).FileAndExtension(inFullPath.data());
}

bool HasTrailingSlash(const UTF16String& inPath)
{
    return !inPath.empty() && inPath.back() == '\\';
}

UTF16String AddTrailingSlash(const UTF16String& inPath)
{
    UTF16String path = inPath;
    if (!path.empty() && path.back() != '\\') {
        path += '\\';
    }
    return path;
}

UTF16String RemoveTrailingSlash(const UTF16String& inPath)
{
    return UTF16String(inPath, 0, inPath.size() - (HasTrailingSlash(inPath) ? 1 : 0));
}

bool FileHasExtension(const UTF16String& inPath, const UTF16String& inExtension)
{
    if (inPath.empty() || inExtension.empty()) {
        return false;
    }
    const UTF16String extension = GetExtensionPart(inPath);
    return extension == inExtension
           || (!extension.empty() && extension.compare(1, UTF16String::npos, inExtension) == 0);
}

} // namespace PathUtils
} // namespace ORL
