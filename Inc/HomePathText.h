// Floor: Files
// The home platform's services over the text of paths, in portable code: what they give there, they give everywhere.
// Names are compared without regard to case, and "/" is an ordinary character. Every text is read up to its
// terminator.
#pragma once

#include <tvxcore/String.h>

#include <cstddef>

namespace ORL {
namespace PathUtils {
namespace HomeText {

/// What Combine and RelativePathTo give at most, the terminator included.
inline constexpr std::size_t kMaxPath = 260;

/// The first unit of the drive and ":"; the directory and a backslash, unless it ends in a separator; the file; the
/// extension behind a ".". What is empty adds nothing.
UTF16String MakePath(const UTF16String& inDrive, const UTF16String& inDirectory, const UTF16String& inFile,
                     const UTF16String& inExtension);

/// What follows the first backslash, or the first two where they stand together; else the end. Null for an empty text.
const unsigned short* FindNextComponent(const unsigned short* inPath) noexcept;

/// The way from one directory to the other. False, with outRelative untouched, when no name at their beginning is
/// common, when one alone is a UNC path, or when the result would not fit kMaxPath.
bool RelativePathTo(const UTF16String& inFrom, const UTF16String& inTo, UTF16String& outRelative);

/// inMore as seen from inBase: put behind it when relative, behind its root when it begins with a backslash, alone
/// when it has a drive or is UNC; then "." and ".." resolved. False, with outPath untouched, when the joined text would
/// not fit kMaxPath.
bool Combine(const UTF16String& inBase, const UTF16String& inMore, UTF16String& outPath);

/// Whether the text is a root: "\", "X:\", "\\", "\\server" or "\\server\share".
bool IsRoot(const UTF16String& inPath) noexcept;

} // namespace HomeText
} // namespace PathUtils
} // namespace ORL
