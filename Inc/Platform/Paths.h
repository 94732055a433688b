// Floor: Platform
// What the path functions need of the system. A path may be plain or extended; a plain one is resolved by the system,
// an extended one taken as it stands.
#pragma once

#include <tvxcore/String.h>

#include <cstddef>

namespace ORL {
namespace PathUtils {
namespace Platform {

/// What the system's path text functions take and give at most, the terminator included.
inline constexpr std::size_t kMaxPath = 260;

/// Attribute bits of an entry.
inline constexpr unsigned long kAttributeReadOnly = 0x01;
inline constexpr unsigned long kAttributeHidden = 0x02;
inline constexpr unsigned long kAttributeDirectory = 0x10;
inline constexpr unsigned long kAttributeNormal = 0x80;
inline constexpr unsigned long kInvalidAttributes = 0xFFFFFFFF;

/// Joins drive, directory, file and extension, adding ":", a trailing separator and "." where a part lacks it. The
/// lengths and 5 add up to at most kBufferLength.
UTF16String MakePath_Impl(const UTF16String& inDrive, const UTF16String& inDirectory, const UTF16String& inFile,
                          const UTF16String& inExtension);

/// Whether an entry of that name is in its directory; the last name may be a pattern. The root of a drive is no entry.
bool FindEntry_Impl(const UTF16String& inPath);

bool IsDirectory_Impl(const UTF16String& inPath);

/// A directory without any entry, hidden ones counted.
bool IsDirectoryEmpty_Impl(const UTF16String& inPath);

/// The attribute bits, or kInvalidAttributes for any failure.
unsigned long GetFileAttributes_Impl(const UTF16String& inPath);

/// Makes the directory and all above it where missing. True when it is there at the end.
bool PreparePathForWrite_Impl(const UTF16String& inPath);

/// What follows the first component of inPath, a pointer into it; null for an empty text.
const unsigned short* FindNextComponent_Impl(const unsigned short* inPath);

/// The relative path between two directories. False, with outRelative untouched, when they have nothing in common.
bool RelativePathTo_Impl(const UTF16String& inFrom, const UTF16String& inTo, UTF16String& outRelative);

/// inMore as seen from inBase, dots resolved. False, with outPath untouched, when it would not fit kMaxPath.
bool CombinePaths_Impl(const UTF16String& inBase, const UTF16String& inMore, UTF16String& outPath);

/// Fills the buffer with the directory for temporary files, trailing separator and terminator included, and gives its
/// length; or gives the size needed, terminator included, when inSize is too small. 0 is a failure.
unsigned long GetTempPath_Impl(unsigned long inSize, unsigned short* outBuffer);

/// The shell's name of the path's last component. False when the shell cannot tell; outName is then untouched.
bool GetShellName_Impl(const UTF16String& inPath, UTF16String& outName);

} // namespace Platform
} // namespace PathUtils
} // namespace ORL
