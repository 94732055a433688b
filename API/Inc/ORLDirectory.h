// Floor: Files
// A directory: listing it, testing whether it is writable, and copying, moving and deleting whole trees.
#pragma once

#include <ORLConfig.h>
#include <ORLException.h>
#include <ORLResult.h>
#include <tvxcore/String.h>

#include <vector>

namespace ORL {

/// Names a directory that existed when the object was created. A plain value that holds the path as it was passed.
///
/// Owner:    the caller. The object owns its path only, not the directory.
/// Threads:  not thread-safe: one thread at a time per object. Takes no lock.
/// Failure:  non-static queries throw eDirectoryNoLongerValid if the directory is gone. Operations on the disk return a
///           Result.
/// Listings: each path begins with the object's path as it was passed. The order is that of the file system. With
/// inRecursive a directory is listed after its contents. inLimit is tested before each entry, so a list may exceed it
/// by the depth of the tree; kNoLimit disables the test. Entries created or removed during a listing may or may not be
/// included, but if a directory is removed before it is walked, the listing throws eDirectoryNoLongerValid. An
/// unreadable directory is listed and treated as empty. Links to directories are followed, unless they point back to a
/// directory that is being walked. A listing is complete or throws: eDirectoryNotListed if the system aborts it or is
/// out of handles, std::bad_alloc if out of memory. Only memory limits the depth.
/// Trees:    Copy, Move and DeleteNotEmpty include hidden entries. Copy and Move overwrite files without asking. All
///           three accept only plain paths: for an extended path (\\?\) they report an assertion and return
///           kPathNotFound. Every other error is kGeneralFailure, and the work done before it is not undone.
/// On Linux: links are copied, moved and deleted as links, never followed. A file is first copied under a temporary
///           name, so the final name never refers to a partial copy.
/// Example:
///   std::vector<UTF16String> clips;
///   const ORL::Directory directory = ORL::Directory::ConstructDirectory(path);
///   directory.GetContainedFilePaths(ORL::MakeString(".mov"), clips, true, ORL::Directory::kNoLimit);
class ORL_API Directory
{
public:
    static constexpr unsigned int kNoLimit = 0xFFFFFFFFu; ///< lists all entries

    /// Throws eNotADirectoryPath unless inPath is a directory.
    static Directory ConstructDirectory(const UTF16String& inPath);

    /// Returns the path as it was passed.
    UTF16String AsString() const;

    /// Same as PathUtils::IsDirectory.
    static bool IsDirectory(const UTF16String& inPath);

    /// Returns whether the directory is empty. Hidden entries count.
    bool IsDirectoryEmpty() const;

    /// Returns whether a file can be created and written in the directory. Tests this with a temporary file, which is
    /// removed.
    bool IsDirectoryWriteable() const;

    /// Replaces outPaths with the paths of all entries.
    void GetContainedPaths(std::vector<UTF16String>& outPaths, bool inRecursive, unsigned int inLimit) const;

    /// Lists all entries: directories in outDirectories, all others in outFiles.
    void GetContainedFileAndDirectoryPaths(std::vector<UTF16String>& outFiles, std::vector<Directory>& outDirectories,
                                           bool inRecursive, unsigned int inLimit) const;

    /// Lists all entries except directories. Directories still count towards the limit.
    void GetContainedFilePaths(std::vector<UTF16String>& outFiles, bool inRecursive, unsigned int inLimit) const;

    /// Lists the files with an extension, which includes its dot (".wav" finds "A.WAV", "wav" finds nothing). Files
    /// that do not match count towards the limit. Fires an input contract if the extension is empty.
    void GetContainedFilePaths(const UTF16String& inFilterExtension, std::vector<UTF16String>& outFiles,
                               bool inRecursive, unsigned int inLimit) const;

    /// Creates the directory and its missing parents. Succeeds if the directory exists. The bool is ignored.
    static Result CreateOnDisk(const UTF16String& inPath, bool);

    /// Removes an empty directory. Returns kSharingViolation while the directory is open through another handle that
    /// does not share delete access.
    static Result Delete(const UTF16String& inPath);

    // Whole trees. Each of these three functions stops with kGeneralFailure at the first entry that fails, such as a
    // file that is open through another handle that does not share the required access. Completed work is not undone.

    /// Removes a directory with all its contents.
    static Result DeleteNotEmpty(const UTF16String& inPath);

    /// Copies the contents of inSource into inDestination, which is created if missing. Overwrites files of the same
    /// name and merges directories. Returns kGeneralFailure if there is nothing to copy.
    static Result Copy(const UTF16String& inSource, const UTF16String& inDestination);

    /// Moves the contents of inSource in the same way, even across volumes. Keeps inSource itself, which is then empty.
    static Result Move(const UTF16String& inSource, const UTF16String& inDestination);

private:
    explicit Directory(const UTF16String& inPath);

    UTF16String mPath;
};

namespace PathUtils {

/// Returns whether inFullPath is a read-only file (on Linux: no user has write permission) or a directory in which no
/// file can be created. Returns true for a rooted path that cannot be queried, false for one that is not rooted. Fires
/// an input contract for an empty path.
ORL_API bool IsReadOnly(const UTF16String& inFullPath);

} // namespace PathUtils
} // namespace ORL
