// The two folders of an ingest, and the folders below them by name.
#pragma once

#include "IngestSystem.h"

#include <string>
#include <tvxcore/String.h>
#include <vector>

namespace orl {

/// The two folders, in extended form, and as the user wrote them. Names below them have "/" between folders, as bytes
/// of the host; the empty name is the folder itself.
struct IngestRoots
{
    UTF16String mSource;
    UTF16String mDestination;
    std::string mShownSource;
    std::string mShownDestination;
    EntryIdentity mSourceIdentity;      // as they were at the start
    EntryIdentity mDestinationIdentity; // meaningful once mHasDestination is true
    bool mHasDestination = false;
    std::uint64_t mVolume = 0; // of the destination, or of the folder in which it will be created

    /// Opens a folder below the source, one name after the other, so that no path is too long. Links are followed.
    /// kPathNotFound where the source itself is gone or another folder has its place.
    ORL::Result OpenSource(const std::string& inFolder, HeldFolder& outFolder) const;

    /// The same for the destination.
    ORL::Result OpenDestination(const std::string& inFolder, HeldFolder& outFolder) const;
};

/// Takes the two arguments. Throws Failure where the source is no folder, or the destination lies inside it.
IngestRoots MakeRoots(const std::string& inSource, const std::string& inDestination);

/// Throws Failure if two destinations are the same folder or one lies inside the other.
void CheckApart(const IngestRoots& inOne, const IngestRoots& inOther);

/// Makes the destination where it is not there, with the folders above it. Their names are on disk when this returns.
/// Throws Failure.
void MakeDestination(IngestRoots& ioRoots);

/// Whether the source is not there any more: another folder has its place, as where a volume has left its mount point,
/// or it held something and holds nothing now, or cannot be listed.
bool IsSourceGone(const IngestRoots& inRoots, bool inHeldSomething);

bool IsDestinationGone(const IngestRoots& inRoots);

/// "a/b" and "c" of "a/b/c"; the first is empty for a name without a folder.
std::string FolderOf(const std::string& inName);
std::string LeafOf(const std::string& inName);
std::string Below(const std::string& inFolder, const std::string& inLeaf);

/// The folders that lead to one, from the root on, and itself: "", "a", "a/b".
std::vector<std::string> FoldersTo(const std::string& inFolder);

} // namespace orl
