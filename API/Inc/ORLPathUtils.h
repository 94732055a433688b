// Floor: Files
// Paths as text, and what the file system and the shell say of them.
//
// A path is Windows-style on every platform: a drive of two characters or \\server\share, names behind backslashes, a
// file name whose extension keeps its leading dot. Its forms:
//   rooted:          it begins with two backslashes, or with an ASCII letter and ":"
//   drive root:      it is exactly a letter and ":", or \\?\ and a letter and ":"
//   normalized:      it begins with \\?\ and is no drive root; it passes the length limit of plain paths
//   normalized UNC:  it begins with \\?\UNC\ as it stands
//
// Every function is safe from any thread and takes no lock. None gives a system error: queries answer false, true or
// an empty text as told at each. ORLHostPath.h leads from paths of the host's own system to these and back.
#pragma once

#include <ORLConfig.h>
#include <tvxcore/String.h>

namespace ORL {
namespace PathUtils {

/// One backslash.
extern ORL_API const UTF16String kPathSeparator;
/// ".", with which an extension begins.
extern ORL_API const UTF16String kExtension;
/// The nine characters that a file name may not hold, with a blank between each two: for showing to a user.
extern ORL_API const UTF16String kIllegalFilenameCharactersDisplay;

// Text alone. The functions whose argument is called inFullPath fire the input contract for an empty path.

/// A copy of kPathSeparator.
ORL_API UTF16String GetPathSeparator();

/// True when the path is not empty. No character is looked at.
ORL_API bool IsValidPath(const UTF16String& inFullPath);

/// False for an empty name, a name with any of \ / : * ? " < > | and a name of white space alone. Length, reserved
/// device names, trailing dots and blanks do not matter.
ORL_API bool IsValidFileName(const UTF16String& inName);

/// Erases every illegal character. True if there was one.
ORL_API bool RemoveIllegalFileNameCharacters(UTF16String& ioName);

/// Takes a path apart: the drive is the first two characters if the second is ":"; the directory ends with its last
/// "/" or backslash; the extension begins with the last dot of the file name. Reads up to the terminator. An output
/// may be null; each that is given is overwritten, also where it comes out empty, and may be the path itself.
ORL_API void SplitPath(const UTF16String& inPath, UTF16String* outDrive, UTF16String* outDirectory,
                       UTF16String* outFile, UTF16String* outExtension);

/// The outputs of SplitPath, one by one.
ORL_API UTF16String GetDrivePart(const UTF16String& inFullPath);
ORL_API UTF16String GetDirectoryPart(const UTF16String& inFullPath);
ORL_API UTF16String GetFilePart(const UTF16String& inFullPath);
ORL_API UTF16String GetExtensionPart(const UTF16String& inFullPath);

/// File and extension together.
ORL_API UTF16String GetFullFilePart(const UTF16String& inFullPath);

/// Drive and directory together, with the trailing separator.
ORL_API UTF16String GetFullDirectoryPart(const UTF16String& inFullPath);

/// Whether the path ends in a backslash. A slash does not count.
ORL_API bool HasTrailingSlash(const UTF16String& inPath);

/// The path with a backslash at its end. An empty path stays empty.
ORL_API UTF16String AddTrailingSlash(const UTF16String& inPath);

/// The path without the backslash at its end. Only one is removed.
ORL_API UTF16String RemoveTrailingSlash(const UTF16String& inPath);

/// Whether the path's extension is inExtension, given with or without its dot. Case counts. False if either is empty.
ORL_API bool FileHasExtension(const UTF16String& inPath, const UTF16String& inExtension);

/// The four parts joined, a ":", a trailing separator and a "." added where a part lacks it. Empty, with an
/// assertion, when their lengths and 5 add up to more than 2048.
ORL_API UTF16String MakePath(const UTF16String& inDrive, const UTF16String& inDirectory, const UTF16String& inFile,
                             const UTF16String& inExtension);

/// The same as MakePath.
ORL_API UTF16String MakeFullPath(const UTF16String& inDrive, const UTF16String& inDirectory, const UTF16String& inFile,
                                 const UTF16String& inExtension);

/// The extended form of a rooted path; any other text comes back as it is. Slashes stay and dots are not resolved.
ORL_API UTF16String ToNormalizedPath(const UTF16String& inFullPath);

/// Whether the path is normalized. \\?\C: is not, \\?\C:\ is.
ORL_API bool IsNormalizedPath(const UTF16String& inFullPath);

namespace Win {

/// The plain form of a normalized path. Empty, with an assertion, for any other text.
ORL_API UTF16String StripUNC(const UTF16String& inPath);

} // namespace Win

/// Puts the relative path from one rooted path's directory to the other's into outRelative. False, with outRelative
/// untouched, when they have nothing in common or one is not rooted. Drives are not compared.
ORL_API bool ArePathsRelative(const UTF16String& inFrom, const UTF16String& inTo, UTF16String& outRelative);

/// The second path as seen from the first, dots resolved. Empty when the first is not rooted or the result would pass
/// 259 characters.
ORL_API UTF16String CombinePaths(const UTF16String& inBase, const UTF16String& inMore);

// The file system. A path that is not rooted answers false everywhere.

/// Whether a file or a directory is there.
ORL_API bool ExistsOnDisk(const UTF16String& inFullPath);

ORL_API bool IsDirectory(const UTF16String& inFullPath);

/// Whether it is a directory with nothing in it, hidden entries counted.
ORL_API bool IsDirectoryEmpty(const UTF16String& inFullPath);

/// Whether the entry is hidden (on Linux: its name begins with a dot). True for a rooted path that does not exist.
ORL_API bool IsHidden(const UTF16String& inPath);

/// Makes the directory with all above it where missing; inPath should end in a backslash. True when it is there.
ORL_API bool PreparePathForWrite(const UTF16String& inPath);

/// The path itself if nothing is there, else the first of name_1.ext, name_2.ext and so on that is free. The name is
/// not reserved: two callers may get the same.
ORL_API UTF16String MakeUniqueFilename(const UTF16String& inPath);

/// The directory for temporary files, with its trailing separator. Empty, with an assertion, when it is longer than
/// 512 characters.
ORL_API UTF16String GetTempDirectory();

// The shell (on Linux each name stands for itself).

/// The shell's name of the last component of a normalized path; any other text comes back as it is.
ORL_API UTF16String GetLeafDisplayStringFromPath(const UTF16String& inPath);

/// A normalized path in the shell's names; any other text comes back as it is.
ORL_API UTF16String GetDisplayStringFromPath(const UTF16String& inPath);

} // namespace PathUtils
} // namespace ORL
