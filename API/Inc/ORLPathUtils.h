// Floor: Files
// Path strings, and queries of the file system and the shell about paths.
//
// A path is Windows-style on every platform: a drive or \\server\share, then names separated by backslashes. Forms:
//   rooted: begins with two backslashes, or with an ASCII letter and ":"
//   drive root: is exactly a letter and ":", or \\?\ and a letter and ":"
//   normalized, or extended: begins with \\?\ and is not a drive root; may exceed the length limit of plain paths
//   normalized UNC: begins with exactly \\?\UNC\ (case-sensitive)
//
// Thread-safe; takes no lock. No function returns a system error: on failure queries return false, true or an empty
// string, as documented. ORLHostPath.h converts host paths to library paths and back.
#pragma once

#include <ORLConfig.h>
#include <tvxcore/String.h>

namespace ORL {
namespace PathUtils {

/// One backslash.
extern ORL_API const UTF16String kPathSeparator;
/// ".", the first character of an extension.
extern ORL_API const UTF16String kExtension;
/// The nine characters that a file name must not contain, separated by blanks, for display to a user.
extern ORL_API const UTF16String kIllegalFilenameCharactersDisplay;

// String operations. Functions with a parameter called inFullPath fire an input contract for an empty path.

/// Returns a copy of kPathSeparator.
ORL_API UTF16String GetPathSeparator();

/// Returns whether the path is not empty. Does not check its characters.
ORL_API bool IsValidPath(const UTF16String& inFullPath);

/// Returns false for an empty name, a name with any of \ / : * ? " < > | and a name of white space only. Does not check
/// length, reserved device names, or trailing dots and blanks.
ORL_API bool IsValidFileName(const UTF16String& inName);

/// Erases every illegal character. Returns whether it erased any.
ORL_API bool RemoveIllegalFileNameCharacters(UTF16String& ioName);

/// Splits a path. The drive is the first two characters if the second is ":". The directory ends with the last "/" or
/// backslash. The extension begins with the last dot of the file name. Stops at the first zero unit. Each output may be
/// null or the path itself; a missing part is stored as an empty string.
ORL_API void SplitPath(const UTF16String& inPath, UTF16String* outDrive, UTF16String* outDirectory,
                       UTF16String* outFile, UTF16String* outExtension);

/// Each returns one output of SplitPath.
ORL_API UTF16String GetDrivePart(const UTF16String& inFullPath);
ORL_API UTF16String GetDirectoryPart(const UTF16String& inFullPath);
ORL_API UTF16String GetFilePart(const UTF16String& inFullPath);
ORL_API UTF16String GetExtensionPart(const UTF16String& inFullPath);

/// Returns the file name with its extension.
ORL_API UTF16String GetFullFilePart(const UTF16String& inFullPath);

/// Returns the drive and the directory, with the trailing separator.
ORL_API UTF16String GetFullDirectoryPart(const UTF16String& inFullPath);

/// Returns whether the path ends in a backslash. A slash does not count.
ORL_API bool HasTrailingSlash(const UTF16String& inPath);

/// Returns the path with a backslash at its end. An empty path stays empty.
ORL_API UTF16String AddTrailingSlash(const UTF16String& inPath);

/// Returns the path without the backslash at its end. Removes only one backslash.
ORL_API UTF16String RemoveTrailingSlash(const UTF16String& inPath);

/// Returns whether the path's extension is inExtension, passed with or without its dot. Case-sensitive. Returns false
/// if either is empty.
ORL_API bool FileHasExtension(const UTF16String& inPath, const UTF16String& inExtension);

/// Joins the four parts. Adds the ":" of the drive, the trailing separator of the directory and the "." of the
/// extension if missing. If the sum of the lengths plus 5 exceeds 2048, reports an assertion and returns an empty path.
ORL_API UTF16String MakePath(const UTF16String& inDrive, const UTF16String& inDirectory, const UTF16String& inFile,
                             const UTF16String& inExtension);

/// Same as MakePath.
ORL_API UTF16String MakeFullPath(const UTF16String& inDrive, const UTF16String& inDirectory, const UTF16String& inFile,
                                 const UTF16String& inExtension);

/// Returns the extended form of a rooted path, and any other string unchanged. Keeps "/", "." and "..".
ORL_API UTF16String ToNormalizedPath(const UTF16String& inFullPath);

/// Returns whether the path is normalized. \\?\C:\ is, but \\?\C: is not.
ORL_API bool IsNormalizedPath(const UTF16String& inFullPath);

namespace Win {

/// Returns the plain form of a normalized path. For any other string, fires an assertion and returns an empty string.
ORL_API UTF16String StripUNC(const UTF16String& inPath);

} // namespace Win

/// Stores the relative path from the directory of inFrom to that of inTo. Returns false, with outRelative untouched, if
/// the paths have nothing in common or one is not rooted. Drives are not compared.
ORL_API bool ArePathsRelative(const UTF16String& inFrom, const UTF16String& inTo, UTF16String& outRelative);

/// Returns inMore resolved against inBase, without "." and ".." components. Returns an empty path if inBase is not
/// rooted or the result would exceed 259 characters.
ORL_API UTF16String CombinePaths(const UTF16String& inBase, const UTF16String& inMore);

// The file system. Every query returns false for a path that is not rooted.

/// Returns whether a file or directory exists.
ORL_API bool ExistsOnDisk(const UTF16String& inFullPath);

ORL_API bool IsDirectory(const UTF16String& inFullPath); ///< returns whether the path is an existing directory

/// Returns whether the path is an empty directory. Hidden entries count.
ORL_API bool IsDirectoryEmpty(const UTF16String& inFullPath);

/// Returns whether the entry is hidden (on Linux: its name begins with a dot). Returns true for a rooted path that does
/// not exist.
ORL_API bool IsHidden(const UTF16String& inPath);

/// Creates the directory and its missing parents. inPath should end in a backslash. Returns whether the directory
/// exists afterwards.
ORL_API bool PreparePathForWrite(const UTF16String& inPath);

/// Returns the path if nothing exists there, else the first unused of name_1.ext, name_2.ext and so on. The name is not
/// reserved: two callers may get the same one.
ORL_API UTF16String MakeUniqueFilename(const UTF16String& inPath);

/// Returns the directory for temporary files, with its trailing separator. If the path is longer than 512 characters,
/// reports an assertion and returns an empty path.
ORL_API UTF16String GetTempDirectory();

// The shell. On Linux a display name is the file name itself.

/// Returns the shell's display name of the last component of a normalized path, and any other string unchanged.
ORL_API UTF16String GetLeafDisplayStringFromPath(const UTF16String& inPath);

/// Returns a normalized path with the shell's display names, and any other string unchanged.
ORL_API UTF16String GetDisplayStringFromPath(const UTF16String& inPath);

} // namespace PathUtils
} // namespace ORL
