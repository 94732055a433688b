// Floor: Platform
// The system functions for paths. A path may be plain or extended; the system resolves a plain one and uses an extended
// one as given.
#pragma once

#include <tvxcore/String.h>

#include <cstddef>

namespace ORL {
namespace PathUtils {
namespace Platform {

/// Maximum size of arguments and results of the system's path string functions, terminator included.
inline constexpr std::size_t kMaxPath = 260;

/// Attribute bits of an entry.
inline constexpr unsigned long kAttributeReadOnly = 0x01;
inline constexpr unsigned long kAttributeHidden = 0x02;
inline constexpr unsigned long kAttributeDirectory = 0x10;
inline constexpr unsigned long kAttributeNormal = 0x80;
inline constexpr unsigned long kInvalidAttributes = 0xFFFFFFFF;

/// Joins drive, directory, file and extension. Adds ":", a trailing separator and "." if missing. The sum of the
/// lengths plus 5 must not exceed kBufferLength.
UTF16String MakePath_Impl(const UTF16String& inDrive, const UTF16String& inDirectory, const UTF16String& inFile,
                          const UTF16String& inExtension);

/// Returns whether the path's directory has an entry that matches the path's last component, which may be a pattern.
/// The root of a drive is not an entry.
bool FindEntry_Impl(const UTF16String& inPath);

bool IsDirectory_Impl(const UTF16String& inPath);

/// Returns whether the path is an empty directory. Hidden entries count.
bool IsDirectoryEmpty_Impl(const UTF16String& inPath);

/// Returns the attribute bits, or kInvalidAttributes on failure.
unsigned long GetFileAttributes_Impl(const UTF16String& inPath);

/// Creates the directory and its missing parents. Returns whether the directory exists afterwards.
bool PreparePathForWrite_Impl(const UTF16String& inPath);

/// Returns a pointer past the first component of inPath; null for an empty path.
const unsigned short* FindNextComponent_Impl(const unsigned short* inPath);

/// Stores the relative path between two directories. Returns false, with outRelative untouched, if there is no relative
/// path.
bool RelativePathTo_Impl(const UTF16String& inFrom, const UTF16String& inTo, UTF16String& outRelative);

/// Resolves inMore against inBase, then "." and "..". Returns false, with outPath untouched, if longer than kMaxPath.
bool CombinePaths_Impl(const UTF16String& inBase, const UTF16String& inMore, UTF16String& outPath);

/// Stores the path of the directory for temporary files, with trailing separator and terminator, and returns its
/// length. If inSize is too small, returns the size needed, terminator included. Returns 0 on failure.
unsigned long GetTempPath_Impl(unsigned long inSize, unsigned short* outBuffer);

/// Stores the shell's display name of the path's last component. Returns false, with outName untouched, if the shell
/// reports none.
bool GetShellName_Impl(const UTF16String& inPath, UTF16String& outName);

} // namespace Platform
} // namespace PathUtils
} // namespace ORL
