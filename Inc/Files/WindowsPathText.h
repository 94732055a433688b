// The Windows path string functions, as portable code with the same results on every platform. Names are
// compared case-insensitively, and "/" is an ordinary character. Every string ends at its first zero unit.
#pragma once

#include <tvxcore/String.h>

#include <cstddef>

namespace ORL {
namespace PathUtils {
namespace WindowsText {

/// Maximum size of the results of Combine and RelativePathTo, terminator included.
inline constexpr std::size_t kMaxPath = 260;

/// Joins the first unit of the drive and ":"; the directory and a backslash, unless it ends in a separator; the file;
/// "." and the extension. Empty parts add nothing.
UTF16String MakePath(const UTF16String& inDrive, const UTF16String& inDirectory, const UTF16String& inFile,
                     const UTF16String& inExtension);

/// Returns a pointer past the first backslash, or past the first two if adjacent; the end of the path if there is no
/// backslash. Returns null for an empty path.
const unsigned short* FindNextComponent(const unsigned short* inPath) noexcept;

/// Stores the relative path between two directories. Returns false, with outRelative untouched, if their first
/// components differ, if only one is a UNC path, or if the result exceeds kMaxPath.
bool RelativePathTo(const UTF16String& inFrom, const UTF16String& inTo, UTF16String& outRelative);

/// Stores inMore resolved against inBase. A relative inMore is appended to inBase; one that begins with a backslash is
/// appended to the root of inBase; a UNC path or one with a drive replaces inBase. Then resolves "." and "..". Returns
/// false, with outPath untouched, if the joined path exceeds kMaxPath.
bool Combine(const UTF16String& inBase, const UTF16String& inMore, UTF16String& outPath);

/// Returns whether the path is a root: "\", "X:\", "\\", "\\server" or "\\server\share".
bool IsRoot(const UTF16String& inPath) noexcept;

} // namespace WindowsText
} // namespace PathUtils
} // namespace ORL
