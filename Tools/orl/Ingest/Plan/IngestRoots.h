// The source and the destination of an ingest, and the names of the folders below them.
#pragma once

#include "../IngestSystem.h"

#include <string>
#include <tvxcore/String.h>
#include <vector>

namespace orl {

/// The two folders, in extended form and as the user wrote them. Names below them are raw bytes with "/" between
/// components; the empty name is the folder itself.
struct IngestRoots
{
    UTF16String mSource;
    UTF16String mDestination;
    std::string mShownSource;
    std::string mShownDestination;
    EntryIdentity mSourceIdentity;      // as it was at the start of the ingest
    EntryIdentity mDestinationIdentity; // valid if mHasDestination is true
    bool mHasDestination = false;
    std::uint64_t mVolume = 0; // identity of the destination, or of the folder in which it will be created

    /// Opens a folder below the source, one name at a time, so that on Linux paths may have any length. Follows links.
    /// Returns kPathNotFound if the source is gone or a different folder is at its path.
    ORL::Result OpenSource(const std::string& inFolder, HeldFolder& outFolder) const;

    /// Opens a folder below the destination in the same way.
    ORL::Result OpenDestination(const std::string& inFolder, HeldFolder& outFolder,
                                Links inLinks = Links::kFollow) const;

    /// Returns whether this user may write to the destination, or if it does not exist, create it.
    ORL::Result CheckDestinationWritable() const;
};

/// Parses the two arguments. Throws Failure if the source is not a folder or the destination lies inside it.
IngestRoots MakeRoots(const std::string& inSource, const std::string& inDestination);

/// Throws Failure if two destinations are the same folder or one lies inside the other.
void CheckApart(const IngestRoots& inOne, const IngestRoots& inOther);

/// Creates the destination and its missing parent folders. Their names are on disk when this returns. Throws Failure.
void MakeDestination(IngestRoots& ioRoots);

enum class SourceWas { kEmpty, kNotEmpty };

/// Returns whether the source is gone: a different folder is at its path (for example after an unmount), or the source
/// had entries and is now empty or cannot be listed. A source that cannot be opened for lack of resources is not gone.
bool IsSourceGone(const IngestRoots& inRoots, SourceWas inSourceWas);

bool IsDestinationGone(const IngestRoots& inRoots);

/// FolderOf("a/b/c") is "a/b", LeafOf("a/b/c") is "c". FolderOf a name without a folder is empty.
std::string FolderOf(const std::string& inName);
std::string LeafOf(const std::string& inName);
std::string NameBelow(const std::string& inFolder, const std::string& inLeaf);

/// Returns all folders from the root down to inFolder: "", "a", "a/b".
std::vector<std::string> FoldersTo(const std::string& inFolder);

} // namespace orl
