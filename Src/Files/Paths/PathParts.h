// Finds where the parts of a path begin and end.
#pragma once

#include <tvxcore/String.h>

#include <cstddef>

namespace ORL {
namespace PathUtils {

/// Positions within a path: [0, drive) is the drive, [drive, file) the directory, [file, extension) the file and
/// [extension, end) the extension. To extract parts, pass the string that the positions were computed from.
class PathParts
{
public:
    explicit PathParts(const UTF16String& inPath) noexcept;

    UTF16String Drive(const unsigned short* inText) const { return UTF16String(inText, mDrive); }
    UTF16String Directory(const unsigned short* inText) const { return Cut(inText, mDrive, mFile); }
    UTF16String File(const unsigned short* inText) const { return Cut(inText, mFile, mExtension); }
    UTF16String Extension(const unsigned short* inText) const { return Cut(inText, mExtension, mEnd); }
    UTF16String FileAndExtension(const unsigned short* inText) const { return Cut(inText, mFile, mEnd); }
    UTF16String DriveAndDirectory(const unsigned short* inText) const { return UTF16String(inText, mFile); }

private:
    static UTF16String Cut(const unsigned short* inText, std::size_t inFrom, std::size_t inTo)
    {
        return UTF16String(inText + inFrom, inTo - inFrom);
    }

    std::size_t mDrive;
    std::size_t mFile;
    std::size_t mExtension;
    std::size_t mEnd;
};

} // namespace PathUtils
} // namespace ORL
