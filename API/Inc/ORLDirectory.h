// Floor: Files
// A directory: what it holds, whether it takes new files, and whole trees copied, moved and wiped.
#pragma once

#include <ORLConfig.h>
#include <ORLException.h>
#include <ORLResult.h>
#include <tvxcore/String.h>

#include <vector>

namespace ORL {

/// Names a directory that existed when the object was made. A plain value that holds the path as it was passed.
///
/// Threads:  no locks and no statics; an object is used by one thread at a time.
/// Failure:  queries of an object throw eDirectoryNoLongerValid where its directory is gone; operations on the disk
///           give a Result.
/// Listings: paths are the object's path, in its own form, and the names below it, in the order that the file system
///           gives them. With inRecursive a directory follows what it holds. inLimit is looked at before each entry,
///           so a list may be longer by the depth of the tree; kNoLimit is none. Entries that come or go meanwhile are
///           seen or missed, but a directory that goes before it is walked ends the listing with
///           eDirectoryNoLongerValid. A directory that may not be read is listed and counts as empty. Links to
///           directories are walked like directories, unless they lead back to one that is being walked. A listing is
///           whole or throws: eDirectoryNotListed if the system breaks off or has no handle left, std::bad_alloc if
///           memory is out. The depth of the tree costs memory alone.
/// Trees:    Copy, Move and DeleteNotEmpty work on what the source holds, hidden entries too, and overwrite without
///           asking. They take plain paths alone: for one in the extended form (\\?\) they report an assertion and
///           give kPathNotFound. Everything else that goes wrong is kGeneralFailure, and what was done until then
///           stays done. On Linux links are copied, moved and deleted as links and never followed, and a file is
///           copied under another name first, so that no half file ever has the final one.
/// Example:
///   std::vector<UTF16String> clips;
///   const ORL::Directory directory = ORL::Directory::ConstructDirectory(path);
///   directory.GetContainedFilePaths(ORL::MakeString(".mov"), clips, true, ORL::Directory::kNoLimit);
class ORL_API Directory
{
public:
    static constexpr unsigned int kNoLimit = 0xFFFFFFFFu;

    /// Throws eNotADirectoryPath unless inPath is a directory.
    static Directory ConstructDirectory(const UTF16String& inPath);

    /// The path as it was passed.
    UTF16String AsString() const;

    /// The same as PathUtils::IsDirectory.
    static bool IsDirectory(const UTF16String& inPath);

    /// Whether nothing is in it, hidden entries counted.
    bool IsDirectoryEmpty() const;

    /// Whether a file can be made in it and written, found out by doing so. No trace is left.
    bool IsDirectoryWriteable() const;

    /// Everything in the directory. outPaths is replaced.
    void GetContainedPaths(std::vector<UTF16String>& outPaths, bool inRecursive, unsigned int inLimit) const;

    /// The same, sorted into directories and all else.
    void GetContainedFileAndDirectoryPaths(std::vector<UTF16String>& outFiles, std::vector<Directory>& outDirectories,
                                           bool inRecursive, unsigned int inLimit) const;

    /// The same without the directories, which count for the limit all the same.
    void GetContainedFilePaths(std::vector<UTF16String>& outFiles, bool inRecursive, unsigned int inLimit) const;

    /// Those with an extension, given with its dot (".wav" finds "A.WAV", "wav" finds nothing). The files that are
    /// dropped count for the limit. An empty extension breaks the input contract.
    void GetContainedFilePaths(const UTF16String& inFilterExtension, std::vector<UTF16String>& outFiles,
                               bool inRecursive, unsigned int inLimit) const;

    /// Makes the directory with all above it where missing; one that is there already is fine. The bool means nothing.
    static Result CreateOnDisk(const UTF16String& inPath, bool);

    /// Removes an empty directory. kSharingViolation while it is open to somebody who does not share its deletion.
    static Result Delete(const UTF16String& inPath);

    // Whole trees. The first entry that cannot be treated ends the work with kGeneralFailure, and what was done stays done. A
    // file that is open to somebody who does not share what is to be done with it is such an entry.

    /// Removes a directory with all that is in it.
    static Result DeleteNotEmpty(const UTF16String& inPath);

    /// Copies what inSource holds into inDestination, which is made where missing. Files of the same name are
    /// overwritten, directories joined. kGeneralFailure when there is nothing to copy.
    static Result Copy(const UTF16String& inSource, const UTF16String& inDestination);

    /// Moves it likewise, also to another volume. inSource itself stays, empty.
    static Result Move(const UTF16String& inSource, const UTF16String& inDestination);

private:
    explicit Directory(const UTF16String& inPath);

    UTF16String mPath;
};

namespace PathUtils {

/// Whether a file is read-only (on Linux: no one may write it), or a directory takes no new files. True for a rooted
/// path that cannot be asked, false for one that is not rooted. An empty path breaks the input contract.
ORL_API bool IsReadOnly(const UTF16String& inFullPath);

} // namespace PathUtils
} // namespace ORL
